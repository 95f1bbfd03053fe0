#include "backupcheck.h"
#include "commands.h"
#include "formats/text/printable.h"
#include "print.h"
#include "shared/backupinput.h"
#include "shared/checksumfile.h"
#include "shared/commandline.h"
#include "shared/outputfile.h"
#include "shared/terminal.h"
#include "takebackup.h"

#include <iostream>

namespace {

struct arguments_t {
    std::string file;
    bool force = false;
    bool checksum = false;
};

std::string counted(size_t count, const char* thing, const char* things)
{
    return std::to_string(count) + ' ' + (count == 1 ? thing : things);
}

std::string contentsText(const backupContents_t& contents, const backup_t& backup)
{
    std::string text = counted(contents.templates, "template", "templates") + " and " +
                       counted(contents.dataFiles, "data file", "data files") +
                       ", equal to the disk; " +
                       counted(contents.quickLinks, "quick link", "quick links") + "; " +
                       counted(contents.categories, "category", "categories") + "; settings";
    for (const auto& name : backup.secretNames)
        text += "; the secret is not inside: store " + printable(name) + " apart";
    return text;
}

Json::Value jsonOf(const backupContents_t& contents, const backup_t& backup)
{
    Json::Value json(Json::objectValue);
    json["bytes"] = backup.bytes.size();
    json["templates"] = contents.templates;
    json["dataFiles"] = contents.dataFiles;
    json["quickLinks"] = contents.quickLinks;
    json["categories"] = contents.categories;
    json["secrets"] = Json::Value(Json::arrayValue);
    for (const auto& name : backup.secretNames)
        json["secrets"].append(name);
    return json;
}

void report(Json::Value& json, const BackupFinding& finding, bool asJson)
{
    Json::Value one(Json::objectValue);
    one["grade"] = gradeName(finding.grade);
    one["item"] = finding.where;
    one["what"] = finding.what;
    json["findings"].append(one);
    if (!asJson && (finding.grade == BackupFinding::Grade::error || !isQuiet()))
        std::cerr << "vlhost: " << findingText(std::cerr, finding) << '\n';
}

// A checksum that lies there of the backup that is replaced would be wrong from now on.
void write(const arguments_t& arguments, const bytes_t& bytes)
{
    COutputFile file(arguments.file, arguments.force, {}, std::cout);
    file.Stream().write(reinterpret_cast<const char*>(bytes.data()),
                        static_cast<std::streamsize>(bytes.size()));
    file.Complete();
    if (arguments.checksum || compareChecksum(arguments.file, bytes) != checksum_t::absent)
        writeChecksum(arguments.file, bytes, arguments.force);
}

void takeAndCheck(const arguments_t& arguments, const options_t& options)
{
    const bool toOutput = arguments.file == "-";
    if (toOutput && options.json)
        throw CToolError("standard output can't take the backup and the JSON text",
                         "name a file, or leave --json out", exitStatus::wrongUsage);
    if (toOutput && arguments.checksum)
        throw CToolError("a checksum lies beside a file", "name one, or leave --checksum out",
                         exitStatus::wrongUsage);
    refuseExisting(arguments.file, arguments.force);
    if (arguments.checksum)
        refuseExisting(checksumFileName(arguments.file), arguments.force);
    refuseBackupOfNothing();
    const CPluginHost host(options.plugin);
    const backup_t backup = takeBackup(host);
    CBackupView view;
    decodeBackup(backup.bytes, view);
    backupContents_t contents;
    std::vector<BackupFinding> findings = view.findings;
    for (const auto& difference : compareWithDisk(view, contents))
        findings.push_back({BackupFinding::Grade::error, difference.item, difference.what});
    Json::Value json = jsonOf(contents, backup);
    json["file"] = arguments.file;
    json["findings"] = Json::Value(Json::arrayValue);
    bool good = true; // a warning is about what is on the disk as well
    for (const auto& finding : findings) {
        if (finding.grade != BackupFinding::Grade::note)
            report(json, finding, options.json);
        good = good && finding.grade != BackupFinding::Grade::error;
    }
    json["written"] = good;
    if (good)
        write(arguments, backup.bytes);
    if (options.json)
        printResult("vlhost-backup-1", json, true);
    if (!good)
        throw CToolError("the plug-in gave a backup that is not whole",
                         "nothing was written to " + arguments.file +
                             "; mend what is listed, and try again");
    if (!options.json && !isQuiet())
        (toOutput ? std::cerr : std::cout)
            << "file: " << printable(arguments.file) << "\nbytes: " << backup.bytes.size()
            << "\ncontents: " << contentsText(contents, backup) << '\n';
}

} // namespace

void addBackupCommand(const CCommand& tool, const options_t& options)
{
    const CCommand command = tool.AddCommand(
        "backup", "Take a backup of the user's stored logons, and compare it with the disk",
        "vlhost backup logons.vlb --checksum");
    const auto arguments = std::make_shared<arguments_t>();
    command.AddOption("file", arguments->file, "Where the bytes go; - is standard output")
        .Required();
    command.AddFlag("--force", arguments->force, "Replace the file");
    command.AddFlag("--checksum", arguments->checksum,
                    "Write its SHA-256 beside it, as FILE.sha256, which 'vlbackup verify' checks");
    command.Do([arguments, &options] { takeAndCheck(*arguments, options); });
}
