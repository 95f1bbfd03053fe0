#include "formats/text/printable.h"
#include "merging.h"
#include "shared/exitstatus.h"
#include "shared/jsondocument.h"
#include "shared/terminal.h"
#include "shared/toolerror.h"
#include "verbs.h"
#include "writtenfile.h"

#include <algorithm>
#include <array>

namespace {

constexpr char schema[] = "vlbackup-merge-1";

OpenBackup openSound(const std::string& name, std::istream& in)
{
    OpenBackup backup = openBackup(name, in);
    if (!backup.view.Restorable())
        throw CToolError(shownInput(name) + " is not sound",
                         "vlbackup verify says why, and vlbackup recover saves what is intact");
    return backup;
}

// CMergeReport says what came from where.
class CMergeReport
{
public:
    explicit CMergeReport(const Call& call) : m_call(call) {}

    void Add(MergedItem item)
    {
        m_conflicts += size_t{!item.conflict.empty()};
        ++m_counts.at(static_cast<size_t>(item.source));
        m_items.push_back(std::move(item));
    }

    size_t Conflicts() const noexcept { return m_conflicts; }
    bool Open() const noexcept { return m_conflicts != 0 && m_call.prefer.empty(); }

    void Json(CJsonDocument& document) const
    {
        document.BeginList("items");
        for (const MergedItem& item : m_items) {
            document.BeginObject(nullptr);
            if (!item.conflict.empty())
                document.Text("conflict", item.conflict);
            document.Text("element", item.element);
            document.Text("from", Word(item));
            document.Text("item", item.item);
            document.EndObject();
        }
        document.EndList();
    }

    void Text(std::ostream& out) const
    {
        for (const MergedItem& item : m_items) {
            if (item.source == MergeSource::both || (isQuiet() && !Open()))
                continue;
            const bool conflict = !item.conflict.empty();
            out << coloured(out,
                            !conflict ? colour_t::green
                            : Open()  ? colour_t::red
                                      : colour_t::yellow,
                            item.element)
                << (item.item.empty() ? "" : " ") << printable(item.item) << ": "
                << printable(item.conflict);
            if (!Open() || !conflict)
                out << (conflict ? "; from the " : "only in the ") << Word(item);
            out << '\n';
        }
        if (!isQuiet() && !Open())
            out << "merged: " << m_counts[0] << " from both, " << m_counts[1] << " from the first, "
                << m_counts[2] << " from the second\n";
    }

private:
    const char* Word(const MergedItem& item) const
    {
        constexpr std::array words = {"both", "first", "second"};
        return Open() && !item.conflict.empty() ? "neither"
                                                : words.at(static_cast<size_t>(item.source));
    }

    const Call& m_call;
    std::vector<MergedItem> m_items;
    std::array<size_t, 3> m_counts{};
    size_t m_conflicts = 0;
};

} // namespace

int verbs::merge(const Call& call)
{
    if (call.dryRun == !call.output.empty())
        throw CToolError(call.dryRun ? "--dry-run writes nothing" : "where to write is missing",
                         "give either --output or --dry-run", exitStatus::wrongUsage);
    refuseTwoInputs(call);
    const OpenBackup first = openSound(call.input, call.in);
    const OpenBackup second = openSound(call.other, call.in);
    CMergeReport report(call);
    const std::vector<uint8_t> merged = mergeBackups(
        first, second, call.prefer == "second" ? MergeSource::second : MergeSource::first,
        [&](MergedItem item) { report.Add(std::move(item)); });
    std::ostream& out = call.output == "-" ? call.err : call.out;
    if (!report.Open() && !call.dryRun) {
        CWrittenFile file(call);
        file.Stream().write(reinterpret_cast<const char*>(merged.data()),
                            static_cast<std::streamsize>(merged.size()));
        file.Complete(schema, [&](CJsonDocument& document) { report.Json(document); });
    } else if (call.json) {
        CJsonDocument document(out, schema);
        report.Json(document);
    }
    if (!call.json)
        report.Text(out);
    if (report.Open())
        throw CToolError(shownInput(call.input) + " and " + shownInput(call.other) + " differ in " +
                             countText(report.Conflicts(), "thing") +
                             " that both have, and nothing is written",
                         "--prefer first or --prefer second says which to take");
    return exitStatus::good;
}
