#include "commands.h"

#include <algorithm>
#include <iostream>
#include <optional>

#include "agent/discovery.h"
#include "common/commandline.h"
#include "common/text.h"
#include "print.h"
#include "safetycopy.h"
#include "secretstore.h"
#include "takebackup.h"
#include "variants.h"

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
};

// verify refuses bytes that the plug-in would restore only in part: it checks nothing but the
// number of elements, and has deleted the old files by then.
void verify(const CBackupView& backup, bool decoded, bool force)
{
    const char* const hint = "nothing was touched; 'vlbackup verify' tells more";
    if (!decoded)
        throw CToolError("the file is no backup", hint);
    if (backup.Restorable())
        return;
    for (const auto& finding : backup.findings)
        if (finding.grade != BackupFinding::Grade::note)
            std::cerr << "vlhost: " << finding.where << ": " << finding.what << '\n';
    if (!force)
        throw CToolError("the backup is not sound",
                         "nothing was touched; --force restores it all the same");
}

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
// doesn't tell when there is none.
CSecretBytes readSecret(const arguments_t& arguments)
{
    if (!arguments.secretFrom)
        return {};
    if (!findAgentWindow())
        throw CToolError("no agent is running, so the secret would be lost",
                         "nothing was touched; start vlagent.exe first");
    return readSecretFrom(*arguments.secretFrom);
}

void compareSecret(const CSecretBytes& secret, std::vector<std::string>& differences)
{
    if (secret.bytes.empty())
        return;
    const CSecretStore store;
    if (!store.Exists(protectedStorage) || store.Read(protectedStorage).bytes != secret.bytes)
        differences.push_back("the secret did not arrive in the store: see the agent's journal");
}

bool sameLink(const BackupLink& one, const BackupLink& other)
{
    return one.name == other.name && one.target == other.target && one.manifest == other.manifest &&
           one.profile == other.profile && one.manifestid == other.manifestid &&
           one.wocred == other.wocred;
}

// compareLinks takes a backup of what is there now and looks for the links of the restored one in
// it.
void compareLinks(const CPluginHost& host, const CBackupView& wanted,
                  std::vector<std::string>& differences)
{
    const bytes_t now = takeBackupIfAny(host);
    CBackupView found;
    if (now.empty() || !found.Decode(now))
        return; // the plug-in takes no backup of a user without its data file and a secret
    for (const auto& link : wanted.links)
        if (std::none_of(found.links.begin(), found.links.end(),
                         [&](const BackupLink& other) { return sameLink(link, other); }))
            differences.push_back(
                "the quick link '" + link.name +
                "' is not there (its program or template may be missing on this machine)");
}

Json::Value restoreFile(const CPluginHost& host, const arguments_t& arguments)
{
    const bytes_t bytes = readFile(arguments.file);
    CBackupView backup;
    const bool decoded = backup.Decode(bytes);
    verify(backup, decoded, arguments.force);
    const restorePlan_t plan = planRestore(backup);
    Json::Value json(Json::objectValue);
    json["backup"] = backupVersionText(backup.elementCount);
    json["plan"] = jsonOfPlan(plan);
    if (arguments.dryRun)
        return json;
    const CSecretBytes secret = readSecret(arguments);
    makeSafetyCopy(host, plan);
    const HRESULT status = restore(host, arguments, bytes, secret);
    if (FAILED(status))
        throw CToolError("the plug-in's restore failed: " + statusText(status),
                         "'vlhost restore --undo' puts the old state back");
    std::vector<std::string> differences = compareRestored(backup, plan);
    compareLinks(host, backup, differences);
    compareSecret(secret, differences);
    json["differences"] = Json::Value(Json::arrayValue);
    for (const auto& difference : differences)
        json["differences"].append(difference);
    json["safetyCopy"] = utf8FromWide(safetyCopyFolder());
    return json;
}

} // namespace

void addRestoreCommand(CLI::App& app, const options_t& options)
{
    CLI::App* const command =
        app.add_subcommand("restore", "Put a backup back, after a safety copy of what it replaces");
    const auto arguments = std::make_shared<arguments_t>();
    auto* const file =
        command->add_option("file", arguments->file, "The backup; - is standard input");
    command
        ->add_option("--entry", arguments->entry,
                     "The operation to use: SetStorageData, SetStorageData2 or SetPluginData")
        ->check(CLI::IsMember({"1", "2", "plugin-data"}))
        ->capture_default_str();
    command->add_option("--flags", arguments->flags, "Passed on to the agent by --entry 2");
    command->add_option("--secret-from", arguments->secretFrom,
                        "File descriptor with the secret's value, for --entry plugin-data");
    command->add_flag("--dry-run", arguments->dryRun,
                      "Tell what would be deleted and replaced, and stop");
    command->add_flag("--force", arguments->force, "Restore a backup that is not sound");
    command->add_flag("--undo", arguments->undo, "Put back what the last restore replaced")
        ->excludes(file);
    command->callback([arguments, &options] {
        if (arguments->file.empty() && !arguments->undo)
            throw CToolError("a backup is wanted", "vlhost restore FILE", 2);
        if (arguments->secretFrom && arguments->entry != "plugin-data")
            throw CToolError("only --entry plugin-data takes a secret", "", 2);
        if (arguments->flags && arguments->entry != "2")
            throw CToolError("only --entry 2 takes flags", "", 2);
        const CPluginHost host(options.plugin);
        const Json::Value json =
            arguments->undo ? undoRestore(host, arguments->dryRun) : restoreFile(host, *arguments);
        printResult(json, options.json);
        if (!json["differences"].empty())
            throw CToolError("not everything came back as the backup has it",
                             "'vlhost restore --undo' puts the old state back");
    });
}
