#include "backupcheck.h"

#include "common/text.h"
#include "files.h"
#include "quicklinks/quicklinks.h"
#include "shared/progress.h"
#include "shared/systemerror.h"
#include "shared/toolerror.h"
#include "storage/folderlist.h"
#include "storage/paths.h"
#include "storage/settings.h"
#include "storage/textfile.h"

#include <map>
#include <unordered_map>

namespace {

struct storedFile_t {
    std::string name; // in the backup, UTF-8
    std::wstring path;
    bool isTemplate = true;
};

// filesToStore lists the files that an export stores; it looks at the folders in the same way.
std::vector<storedFile_t> filesToStore()
{
    FolderSet folders;
    std::vector<FileRec> found;
    prepfolderlist(folders);
    collectall(folders, found);
    std::vector<storedFile_t> files;
    files.reserve(found.size() + 2);
    for (const auto& file : found)
        files.push_back({utf8FromWide(storedname(file)), file.folder + file.name});
    const std::wstring personal = addslash(unifyslashes(personalFolder()));
    for (const wchar_t* name : {L"updata.vls", L"updata_temp.vls"})
        files.push_back({utf8FromWide(name), personal + name, false});
    return files;
}

// differenceOf compares one stored file with the disk; empty for none.
std::string differenceOf(const storedFile_t& file, std::span<const uint8_t> content)
{
    if (fileHolds(file.path, content))
        return {};
    const auto now = fileAt(file.path);
    if (!now && isThere(file.path))
        return "is a folder, of which a restore would make an empty file: rename it";
    if (!now)
        return content.empty() && !file.isTemplate ? "" : "is not on the disk any more";
    if (const CFilePieces opened(file.path); opened.Error() != 0)
        return "could not be read: " + errorText(opened.Error());
    if (content.empty())
        return "is empty in the backup and has " + std::to_string(now->size) +
               " bytes on the disk: does another program hold it open?";
    return "is not the same as on the disk: did it change just now?";
}

void compareFiles(const CBackupView& backup, backupContents_t& contents,
                  std::vector<difference_t>& differences)
{
    std::unordered_multimap<std::string, std::span<const uint8_t>> stored;
    for (const auto& file : backup.files)
        stored.emplace(file.name, file.content);
    const std::vector<storedFile_t> files = filesToStore();
    CProgress progress("comparing", files.size());
    for (const auto& file : files) {
        progress.Step();
        const auto found = stored.find(file.name);
        std::string what = "is not in the backup";
        if (found != stored.end()) {
            what = differenceOf(file, found->second);
            stored.erase(found);
        }
        if (!what.empty())
            differences.push_back({utf8FromWide(file.path), what});
        if (file.isTemplate)
            ++contents.templates;
        else if (isThere(file.path))
            ++contents.dataFiles;
    }
    for (const auto& [name, content] : stored)
        differences.push_back({name, "is in the backup, but not in the folders of the settings"});
}

// checkReadable looks at a file that the plug-in reads only in passing, in the way that it does.
void checkReadable(const wchar_t* setting, std::vector<difference_t>& differences)
{
    const std::wstring path = settings_getpath(setting);
    const auto now = path.empty() ? std::nullopt : fileAt(path);
    if (now && now->size != 0 && !mappedfile_scope(path).get().view)
        differences.push_back({utf8FromWide(path), "could not be read, and is not in the backup: "
                                                   "does another program hold it open?"});
}

void compareCategories(const CBackupView& backup, std::vector<difference_t>& differences)
{
    std::map<std::wstring, std::wstring> stored;
    for (const auto& category : backup.categories)
        stored.emplace(wideFromUtf8(category.name), wideFromUtf8(category.text));
    for (const auto& value : readDashboard().categories.value_or(std::vector<registryValue_t>())) {
        const auto found = stored.find(value.name);
        const char* what = nullptr;
        if (found == stored.end())
            what = "the category is not in the backup: from the first value that is no text, the "
                   "plug-in leaves them out";
        else if (bytesOfText(found->second) != value.data)
            what = "the category has another text in the backup";
        if (what)
            differences.push_back({utf8FromWide(value.name), what});
    }
}

} // namespace

void refuseBackupOfNothing()
{
    std::wstring folder;
    const HRESULT status = settings_query(L"path_localstorage_dir", folder);
    if (FAILED(status))
        throw CToolError("there is nothing to back up without settings: " + statusText(status),
                         status == E_NOTIMPL
                             ? "VloSet.dll is not in the installation's bin folder"
                             : "the settings provider knows no path_localstorage_dir");
}

std::vector<difference_t> compareWithDisk(const CBackupView& backup, backupContents_t& contents)
{
    std::vector<difference_t> differences;
    compareFiles(backup, contents, differences);
    checkReadable(L"path_quicklink_filename", differences);
    checkReadable(L"path_dontpromptlist_filename", differences);
    contents.quickLinks = backup.links.size();
    if (const size_t now = QL().filtered.size(); now != contents.quickLinks)
        differences.push_back({"quick links", std::to_string(contents.quickLinks) +
                                                  " are in the backup, and " + std::to_string(now) +
                                                  " would be now"});
    contents.categories = backup.categories.size();
    compareCategories(backup, differences);
    if (backup.settings.form != SettingsForm::document)
        differences.push_back({"settings", "are not in the backup"});
    return differences;
}
