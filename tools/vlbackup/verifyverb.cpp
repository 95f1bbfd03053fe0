#include "shared/backupinput.h"
#include "shared/checksumfile.h"
#include "shared/exitstatus.h"
#include "shared/jsondocument.h"
#include "verbs.h"

#include <optional>

namespace {

void findingItem(const BackupFinding& finding, CJsonDocument& document)
{
    document.BeginObject(nullptr);
    document.Text("grade", gradeName(finding.grade));
    document.Number("offset", finding.place.offset);
    document.Text("path", pathText(finding.place));
    document.Text("what", finding.what);
    document.Text("where", finding.where);
    document.EndObject();
}

// "error: templates[3]: ... (byte 120, element 0/3)"
std::string findingLine(const std::ostream& out, const BackupFinding& finding)
{
    const std::string path = pathText(finding.place);
    return findingText(out, finding) + " (byte " + std::to_string(finding.place.offset) +
           (path.empty() ? ")\n" : ", element " + path + ")\n");
}

// judgeChecksum compares the file with the checksum beside it, if there is one.
// Returns: the outcome's word
const char* judgeChecksum(const std::string& name, std::span<const uint8_t> bytes,
                          CBackupView& view)
{
    using Grade = BackupFinding::Grade;
    switch (compareChecksum(name, bytes)) {
    case checksum_t::equal:
        return "equal";
    case checksum_t::different:
        view.Find({Grade::error, "backup",
                   "has another checksum than " + checksumFileName(name) +
                       " says; it was changed or damaged since"});
        return "different";
    case checksum_t::unreadable:
        view.Find(
            {Grade::warning, "backup",
             "can't be compared: no checksum of it can be read from " + checksumFileName(name)});
        return "unreadable";
    default:
        return "absent";
    }
}

} // namespace

// In JSON, bytes that are no backup are a finding as well; a reader gets a better line.
int verbs::verify(const Call& call)
{
    const CInput input(call.input, call.in);
    std::optional<CJsonDocument> document;
    if (call.json)
        document.emplace(call.out, "vlbackup-verify-1").BeginList("findings");
    CBackupView view([&](const BackupFinding& finding) {
        if (document)
            findingItem(finding, *document);
        else
            call.out << findingLine(call.out, finding);
    });
    if (!decodeBackup(input.Bytes(), view)) {
        if (!document)
            refuseBackup(call.input, input.Bytes(), view);
        view.Find({BackupFinding::Grade::error, "backup", view.refusal, view.refusedAt});
    }
    const char* const checksum = judgeChecksum(call.input, input.Bytes(), view);
    if (document) {
        document->EndList();
        document->Text("checksum", checksum);
        document->Text("verdict", verdictName(view));
    } else {
        call.out << verdictText(call.out, view) << '\n';
    }
    const bool good = call.strict ? view.Sound() : view.Restorable();
    return good ? exitStatus::good : exitStatus::failed;
}
