#include "shared/exitstatus.h"
#include "shared/jsondocument.h"
#include "verbs.h"

namespace {

std::span<const uint8_t> contentOf(const CBackupView& backup, const Call& call)
{
    const size_t file = findFile(backup, call.other);
    if (file < backup.files.size())
        return backup.files[file].content;
    const std::string& document = backup.settings.document;
    if (call.other == "settings" && backup.settings.form == SettingsForm::document)
        return {reinterpret_cast<const uint8_t*>(document.data()), document.size()};
    throw missingName(call, call.other);
}

} // namespace

int verbs::cat(const Call& call)
{
    const OpenBackup backup = openBackup(call.input, call.in);
    const auto content = contentOf(backup.view, call);
    if (call.json) {
        CJsonDocument document(call.out, "vlbackup-cat-1");
        document.Base64("base64", content);
        document.Text("name", call.other);
        document.Number("size", content.size());
    } else {
        call.out.write(reinterpret_cast<const char*>(content.data()),
                       static_cast<std::streamsize>(content.size()));
    }
    return exitStatus::good;
}
