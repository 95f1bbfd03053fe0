#include "agent/discovery.h"
#include "commands.h"
#include "common/text.h"
#include "print.h"
#include "restoreplan.h"
#include "restorereport.h"
#include "safetycopy.h"
#include "secretstore.h"
#include "shared/backupinput.h"
#include "shared/commandline.h"
#include "shared/inputfile.h"
#include "shared/systemerror.h"
#include "shared/terminal.h"
#include "takebackup.h"
#include "undo.h"
#include "undocommand.h"
#include "variants.h"

#include <iostream>
#include <optional>
#include <set>
#include <tuple>

using namespace VLONLINEIDSLib;

namespace {

struct arguments_t {
    std::string file;
    std::string entry = "1";
    unsigned long flags = 0;
    std::optional<int> secretFrom;
    bool dryRun = false;
    bool force = false;
    bool undo = false;
    std::optional<unsigned> undoNumber;
    bool listUndo = false;
};

HRESULT restore(const CPluginHost& host, const arguments_t& arguments, const bytes_t& bytes,
                const CSecretBytes& secret)
{
    if (arguments.entry == "plugin-data") {
        const CSecretBytes list =
            secret.bytes.empty() ? CSecretBytes() : encodeSecretList(protectedStorage, secret);
        return host.Get<IVLKTBackupRestore3>().get()->SetPluginData(
            static_cast<ULONG>(list.bytes.size()), list.bytes.data(),
            static_cast<ULONG>(bytes.size()), bytes.data());
    }
    CVariant data;
    setBytes(data, bytes);
    const auto target = host.Get<IVLKTBackupRestore2>();
    return arguments.entry == "2" ? target.get()->SetStorageData2(arguments.flags, data.Get())
                                  : target.get()->SetStorageData(data.Get());
}

// readSecret takes the secret before anything is touched. The plug-in hands it to the agent, and
// doesn't report that no agent is running.
CSecretBytes readSecret(const arguments_t& arguments)
{
    if (!arguments.secretFrom)
        return {};
    if (!findAgentWindow())
        throw CToolError("no agent is running, so the secret would be lost",
                         "nothing was touched; start vlagent.exe first");
    return readSecretFrom(*arguments.secretFrom);
}

void compareSecret(const CSecretBytes& secret, std::vector<difference_t>& differences)
{
    if (secret.bytes.empty())
        return;
    const CSecretStore store;
    if (!store.Exists(protectedStorage) || store.Read(protectedStorage).bytes != secret.bytes)
        differences.push_back({utf8FromWide(protectedStorage),
                               "the secret did not arrive in the store: see the agent's journal"});
}

auto fieldsOf(const BackupLink& link)
{
    return std::tie(link.name, link.target, link.manifest, link.profile, link.manifestid,
                    link.wocred);
}

// compareLinks takes a backup of what is there now and looks for the links of the restored one in
// it.
void compareLinks(const CPluginHost& host, const CBackupView& wanted,
                  std::vector<difference_t>& differences)
{
    if (wanted.links.empty())
        return; // and spare a backup
    const bytes_t now = takeBackupIfAny(host);
    CBackupView found;
    if (now.empty() || !found.Decode(now))
        return; // the plug-in takes no backup of a user without its data file and a secret
    std::set<decltype(fieldsOf(wanted.links.front()))> links;
    for (const auto& link : found.links)
        links.insert(fieldsOf(link));
    for (const auto& link : wanted.links)
        if (!links.contains(fieldsOf(link)))
            differences.push_back({link.name, "the quick link is not there (its program or "
                                              "template may be missing on this machine)"});
}

constexpr char undoHint[] = "'vlhost restore --undo' puts the old state back";
constexpr char untouched[] = "nothing was touched";

// judge refuses bytes that the plug-in would restore only in part: it checks nothing but the
// number of elements, and has deleted the old files by then. It shows all that has to be looked at.
void judge(const CBackupView& backup, const restorePlan_t& plan, bool force, CRestoreReport& report)
{
    Json::Value& list = report["findings"] = Json::Value(Json::arrayValue);
    const auto show = [&](const BackupFinding& finding) {
        Json::Value one(Json::objectValue);
        one["grade"] = gradeName(finding.grade);
        one["where"] = finding.where;
        one["what"] = finding.what;
        list.append(one);
        report.Text(findingText(std::cout, finding) + '\n');
    };
    for (const auto& finding : backup.findings)
        if (finding.grade != BackupFinding::Grade::note)
            show(finding);
    for (const auto& stray : plan.strays)
        show({BackupFinding::Grade::warning, stray, strayText});
    if (force)
        return;
    const bool restorable = backup.Restorable();
    if (restorable && plan.strays.empty())
        return;
    report.Print();
    throw CToolError(restorable ? "the backup writes to folders that are not this profile's"
                                : "the backup is not sound",
                     std::string(untouched) +
                         (restorable ? "; 'vlhost setting set path_alienstorage_dirs' names "
                                       "further folders, and --force restores it all the same"
                                     : "; --force restores it all the same"));
}

void restoreFile(const arguments_t& arguments, const options_t& options)
{
    const bytes_t bytes = readInput(arguments.file, std::cin);
    CBackupView backup;
    if (!decodeBackup(bytes, backup))
        refuseBackup(arguments.file, bytes, backup);
    const CPluginHost host(options.plugin);
    CRestoreReport report("vlhost-restore-1", options.json);
    const restorePlan_t plan = planRestore(backup);
    report["elements"] = backup.elementCount;
    report.Text("backup: " + backupVersionText(backup.elementCount) + '\n');
    report.Plan(jsonOfPlan(plan, backup));
    judge(backup, plan, arguments.force, report);
    if (arguments.dryRun)
        return report.NothingDone();
    const CSecretBytes secret = readSecret(arguments);
    CSafetyCopies copies;
    const unsigned copy = copies.Make(plan.Touched(), {});
    report.SafetyCopy(copy);
    const HRESULT status = restore(host, arguments, bytes, secret);
    if (FAILED(status)) {
        report["status"] = jsonOfStatus(status);
        report.Print();
        throw CToolError("the plug-in's restore failed: " + statusText(status), undoHint);
    }
    finishCopy(copies, copy);
    report["done"] = true;
    std::vector<difference_t> differences = compareRestored(backup, plan);
    compareLinks(host, backup, differences);
    compareSecret(secret, differences);
    report.Differences(differences);
    report.Print();
    if (!differences.empty())
        throw CToolError("not everything came back as the backup has it", undoHint);
    report.Text("restored and compared: " +
                coloured(std::cout, colour_t::green, "all is as the backup has it") + '\n');
}

} // namespace

void addRestoreCommand(const CCommand& tool, const options_t& options)
{
    const CCommand command =
        tool.AddCommand("restore", "Put a backup back, after a safety copy of what it replaces",
                        "vlhost restore logons.vlb --dry-run");
    const auto arguments = std::make_shared<arguments_t>();
    const COption file =
        command.AddOption("file", arguments->file, "The backup; - is standard input");
    command
        .AddOption("--entry", arguments->entry,
                   "The operation to use: SetStorageData, SetStorageData2 or SetPluginData")
        .OneOf({"1", "2", "plugin-data"})
        .ShowDefault();
    command.AddOption("--flags", arguments->flags, "Passed on to the agent by --entry 2");
    command.AddOption("--secret-from", arguments->secretFrom,
                      "File descriptor with the secret's value, for --entry plugin-data");
    command.AddFlag("--dry-run", arguments->dryRun, "Show the plan, and stop");
    command.AddFlag("--force", arguments->force,
                    "Restore a backup that is not sound, or that writes to other folders than "
                    "this profile's");
    const COption undoOption = command.AddTaken<std::string>(
        "--undo",
        [arguments](const std::vector<std::string>& given) {
            arguments->undo = true;
            if (given.empty() || given.front().empty())
                return;
            unsigned number = 0;
            if (!readNumber(given.front(), number) || number == 0)
                throw CToolError("'" + given.front() + "' is no number of a safety copy",
                                 "'vlhost restore --list-undo' lists them", exitStatus::wrongUsage);
            arguments->undoNumber = number;
        },
        "Put back what the last restore replaced, or the safety copy of that number");
    undoOption.Values(0, 1).ValueName("NUMBER").Excludes(file);
    command.AddFlag("--list-undo", arguments->listUndo, "List the safety copies, newest first")
        .Excludes(file)
        .Excludes(undoOption);
    command.Do([arguments, &options] {
        if (arguments->file.empty() && !arguments->undo && !arguments->listUndo)
            throw CToolError("a backup is wanted", "vlhost restore FILE", exitStatus::wrongUsage);
        if (arguments->secretFrom && arguments->entry != "plugin-data")
            throw CToolError("only --entry plugin-data takes a secret", "", exitStatus::wrongUsage);
        if (arguments->flags && arguments->entry != "2")
            throw CToolError("only --entry 2 takes flags", "", exitStatus::wrongUsage);
        if (arguments->listUndo)
            listUndo(options);
        else if (arguments->undo)
            undoRestore(arguments->undoNumber, arguments->dryRun, options);
        else
            restoreFile(*arguments, options);
    });
}
