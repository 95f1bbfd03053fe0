#include "commands.h"
#include "common/text.h"
#include "formats/text/printable.h"
#include "print.h"
#include "relocation.h"
#include "restoreplan.h"
#include "scratchprofile.h"
#include "shared/backupinput.h"
#include "shared/commandline.h"
#include "shared/difference.h"
#include "shared/inputfile.h"
#include "shared/systemerror.h"
#include "shared/terminal.h"
#include "storage/settings.h"
#include "takebackup.h"
#include "variants.h"

#include <algorithm>
#include <filesystem>
#include <iostream>

using namespace VLONLINEIDSLib;

namespace {

// reasonOf explains a difference that every restore makes, on this machine or another.
std::string reasonOf(const BackupDifference& difference, const CBackupView& tried)
{
    const BackupVersion version = versionOf(tried.elementCount);
    const bool absent =
        (difference.element == "categories" && !version.categories) ||
        (difference.element == "settings" && !version.settings) ||
        (difference.element == "backup" && tried.elementCount != currentBackupElements);
    return absent ? "an earlier form of backup has less in it" : reasonAfterRestore(difference);
}

// straysLeavingNothing lists those of the user's own profile, and removes the folders of the settings again, which are
// made when they are asked for.
std::vector<std::string> straysLeavingNothing(const CBackupView& backup)
{
    std::vector<std::filesystem::path> missing; // the innermost first
    for (const wchar_t* key : {L"path_localstorage_dir", L"path_cachestorage_dir"})
        for (std::filesystem::path folder = settings_getpath(key);
             folder.has_relative_path() && !isThere(folder.wstring());
             folder = folder.parent_path())
            missing.push_back(folder);
    std::vector<std::string> strays = straysOf(backup);
    std::error_code ignored;
    for (const std::filesystem::path& folder : missing)
        std::filesystem::remove(folder, ignored); // one with something in it stays
    return strays;
}

// restoreAndTake gives a backup of what a restore of this one makes of an empty profile.
bytes_t restoreAndTake(const bytes_t& bytes, const options_t& options)
{
    const CScratchProfile profile;
    CRelocation relocation(profile.Folder() + L"e\\");
    CVariant data;
    setBytes(data, relocation.Move(bytes));
    std::wstring list;
    for (const std::wstring& folder : relocation.Folders()) {
        std::filesystem::create_directories(folder);
        list += (list.empty() ? L"" : L"|") + folder;
    }
    for (const auto& [key, value] :
         {std::pair(L"path_alienstorage_dirs", list),
          std::pair(L"path_bin_dir", profile.Folder() + L"bin\\")}) // it may have templates
        if (const HRESULT status = settings_set(key, value); FAILED(status))
            throw CToolError("the setting '" + utf8FromWide(key) + "': " + statusText(status),
                             "'vlhost doctor' says what is missing");
    const CPluginHost host(options.plugin);
    const HRESULT status = host.Get<IVLKTBackupRestore2>().get()->SetStorageData(data.Get());
    if (FAILED(status))
        throw CToolError("the backup can't be restored: " + statusText(status),
                         "'vlbackup verify' says what is wrong with it");
    return relocation.MoveBack(takeBackup(host).bytes);
}

Json::Value jsonOf(const BackupDifference& difference, const std::string& reason)
{
    Json::Value json(Json::objectValue);
    json["element"] = difference.element;
    json["item"] = difference.item;
    json["what"] = difference.what;
    json["reason"] = reason;
    return json;
}

void drill(const std::string& file, const options_t& options)
{
    const bytes_t bytes = readInput(file, std::cin);
    CBackupView wanted;
    if (!decodeBackup(bytes, wanted))
        refuseBackup(file, bytes, wanted);
    if (!wanted.Restorable())
        throw CToolError(shownInput(file) + " is not sound", "'vlbackup verify' says why");
    const std::vector<std::string> strays = straysLeavingNothing(wanted);
    const bytes_t again = restoreAndTake(bytes, options);
    CBackupView found;
    decodeBackup(again, found);
    Json::Value json(Json::objectValue);
    json["backup"] = file;
    json["files"] = wanted.files.size();
    json["quickLinks"] = wanted.links.size();
    json["categories"] = wanted.categories.size();
    json["outside"] = Json::Value(Json::arrayValue);
    for (const std::string& stray : strays) {
        json["outside"].append(stray);
        if (!options.json && !isQuiet())
            std::cout << findingText(std::cout, {BackupFinding::Grade::warning, stray, strayText})
                      << "; a restore asks for --force\n";
    }
    json["differences"] = Json::Value(Json::arrayValue);
    size_t lost = 0;
    compareBackups(wanted, found, [&](const BackupDifference& difference) {
        const std::string reason = reasonOf(difference, wanted);
        json["differences"].append(jsonOf(difference, reason));
        lost += reason.empty();
        if (!options.json && !isQuiet())
            std::cout << (reason.empty() ? coloured(std::cout, colour_t::red, "difference")
                                         : coloured(std::cout, colour_t::green, "as expected"))
                      << ": "
                      << printable(difference.element + (difference.item.empty() ? "" : " ") +
                                   difference.item + ": " + difference.what)
                      << (reason.empty() ? "" : " (" + reason + ')') << '\n';
    });
    json["restorable"] = lost == 0;
    if (options.json)
        printResult("vlhost-drill-1", json, true);
    if (lost != 0)
        throw CToolError("not everything would come back from " + shownInput(file),
                         "your own profile was not touched");
    if (!options.json && !isQuiet())
        std::cout << "restored into a throw-away profile, backed up there and compared: "
                  << wanted.files.size() << " files, " << wanted.links.size() << " quick links, "
                  << wanted.categories.size() << " categories and the settings "
                  << coloured(std::cout, colour_t::green, "come back") << '\n';
}

} // namespace

void addDrillCommand(const CCommand& tool, const options_t& options)
{
    const CCommand command = tool.AddCommand(
        "drill",
        "Prove that a backup can be restored, in a throw-away profile; exit status 1 if not",
        "vlhost drill logons.vlb");
    const auto file = std::make_shared<std::string>();
    command.AddOption("file", *file, "The backup; - is standard input").Required();
    command.Do([file, &options] { drill(*file, options); });
}
