#include "formats/text/printable.h"
#include "salvage.h"
#include "shared/backupinput.h"
#include "shared/jsondocument.h"
#include "shared/terminal.h"
#include "shared/toolerror.h"
#include "verbs.h"
#include "writtenfile.h"

#include <algorithm>

namespace {

void lostItems(const std::vector<Loss>& losses, CJsonDocument& document)
{
    document.BeginList("lost");
    for (const Loss& loss : losses) {
        document.BeginObject(nullptr);
        document.Text("name", loss.name);
        document.Number("offset", loss.offset);
        document.Number("size", loss.size);
        document.Text("what", loss.what);
        document.EndObject();
    }
    document.EndList();
}

void recoveredCounts(const Salvage& salvage, CJsonDocument& document)
{
    document.BeginObject("recovered");
    document.Number("categories", salvage.categories.size());
    document.Number("quicklinks", salvage.links.size());
    document.Flag("settings", !salvage.rest.empty());
    document.Number("templates", salvage.files.size());
    document.EndObject();
}

void report(const Salvage& salvage, std::ostream& out)
{
    for (const Loss& loss : salvage.losses)
        out << coloured(out, colour_t::red, "lost") << ": byte " << loss.offset << ", "
            << countText(loss.size, "byte") << ": "
            << (loss.name.empty() ? "" : '"' + printable(loss.name) + "\" ") << printable(loss.what)
            << '\n';
    if (!isQuiet())
        out << coloured(out, colour_t::green, "recovered") << ": "
            << countText(salvage.files.size(), "template") << ", "
            << countText(salvage.links.size(), "quick link") << ", " << salvage.categories.size()
            << (salvage.categories.size() == 1 ? " category, " : " categories, ")
            << (salvage.rest.empty() ? "no settings\n" : "settings\n");
}

} // namespace

int verbs::recover(const Call& call)
{
    const OpenBackup backup(call.input, call.in);
    const std::span<const uint8_t> bytes = backup.input.Bytes();
    Salvage salvage = salvageBackup(bytes);
    const bool damaged = beginsAsBackup(bytes) && !salvage.losses.empty();
    if (salvage.Empty() && !backup.readable && !damaged)
        refuseBackup(call.input, bytes, backup.view);
    const std::vector<uint8_t> recovered =
        rebuildBackup(salvage, bytes, backup.readable ? backup.view.elementCount : 0);
    if (salvage.Empty() && !salvage.losses.empty())
        throw CToolError("nothing in " + shownInput(call.input) + " is intact",
                         "take another backup");
    std::ranges::sort(salvage.losses, {}, &Loss::offset);
    CWrittenFile file(call);
    file.Stream().write(reinterpret_cast<const char*>(recovered.data()),
                        static_cast<std::streamsize>(recovered.size()));
    file.Complete("vlbackup-recover-1", [&](CJsonDocument& document) {
        recoveredCounts(salvage, document);
        lostItems(salvage.losses, document);
    });
    if (!call.json)
        report(salvage, call.output == "-" ? call.err : call.out);
    return salvage.losses.empty() ? exitStatus::good : exitStatus::failed;
}
