#include "formats/text/printable.h"
#include "livebackup.h"
#include "shared/backupinput.h"
#include "shared/difference.h"
#include "shared/jsondocument.h"
#include "shared/terminal.h"
#include "shared/toolerror.h"
#include "verbs.h"

#include <optional>

namespace {

constexpr char liveName[] = "the profile";

void differenceItem(const BackupDifference& difference, bool withReason, CJsonDocument& document)
{
    document.BeginObject(nullptr);
    document.Text("element", difference.element);
    document.Text("item", difference.item);
    if (withReason)
        document.Text("reason", difference.reason);
    document.Text("what", difference.what);
    document.EndObject();
}

std::string differenceLine(const std::ostream& out, const BackupDifference& difference)
{
    const std::string& reason = difference.reason;
    return coloured(out, reason.empty() ? colour_t::red : colour_t::yellow, difference.element) +
           (difference.item.empty() ? "" : " ") + printable(difference.item) + ": " +
           printable(difference.what) + (reason.empty() ? "" : " (" + reason + ")") + '\n';
}

// After a restore of the first, what the format itself makes different is reported with its reason,
// and is no difference.
int compare(const CBackupView& first, const CBackupView& second, const Call& call)
{
    std::optional<CJsonDocument> document;
    if (call.json)
        document.emplace(call.out, "vlbackup-diff-1").BeginList("differences");
    bool equal = true; // except for what has a reason
    bool identical = true;
    compareBackups(first, second, [&](BackupDifference difference) {
        if (call.restored)
            difference.reason = reasonAfterRestore(difference);
        identical = false;
        equal = equal && !difference.reason.empty();
        if (document)
            differenceItem(difference, call.restored, *document);
        else
            call.out << differenceLine(call.out, difference);
    });
    if (document) {
        document->EndList();
        document->Flag("equal", identical);
    } else if (equal) {
        call.out << coloured(call.out, colour_t::green, "equal")
                 << (identical ? "\n" : " except for that\n");
    }
    return equal ? exitStatus::good : exitStatus::failed;
}

} // namespace

int verbs::diff(const Call& call)
{
    if (call.live == !call.other.empty())
        throw CToolError(call.live ? "--live compares with the profile, not with another backup"
                                   : "the other backup is missing",
                         "name the other backup, or give --live", exitStatus::wrongUsage);
    refuseTwoInputs(call);
    const OpenBackup first = openBackup(call.input, call.in);
    if (!call.live)
        return compare(first.view, openBackup(call.other, call.in).view, call);
    const std::vector<uint8_t> live = takeLiveBackup();
    CBackupView second([](const BackupFinding&) {});
    if (!decodeBackup(live, second))
        refuseBackup(liveName, live, second);
    return compare(first.view, second, call);
}
