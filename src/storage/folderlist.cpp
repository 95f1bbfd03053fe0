#include "storage/folderlist.h"

#include "common/scoped.h"
#include "common/status.h"
#include "formats/backup/storedmark.h"
#include "security/objectsecurity.h"
#include "storage/paths.h"
#include "storage/settings.h"
#include "tracecore/tracer.h"

#include <comdef.h>

#include <algorithm>

using namespace tracecore;

namespace {

constexpr wchar_t templateExtension[] = L".vlm";

std::wstring templatemask(const std::wstring& path)
{
    return path + L'*' + templateExtension;
}

void addfolder(FolderSet& folders, const FolderRec& folder, const wchar_t* duplicate)
{
    if (!folders.insert(folder).second)
        traceStatusFormat(S_OK, duplicate, folder.path.c_str());
}

void addchecked(FolderSet& folders, FolderRec folder, const wchar_t* duplicate)
{
    if (checkpath(folder))
        addfolder(folders, folder, duplicate);
    else
        traceStatusFormat(S_OK, L"path is invalid '%s'", folder.path.c_str());
}

std::vector<std::wstring> splitlist(const std::wstring& list)
{
    std::vector<std::wstring> items;
    size_t start = list.find_first_not_of(L'|');
    while (start != std::wstring::npos) {
        const size_t end = list.find(L'|', start);
        items.push_back(list.substr(start, end - start));
        start = list.find_first_not_of(L'|', end);
    }
    return items;
}

void addfurther(FolderSet& folders)
{
    std::vector<std::wstring> items;
    if (!settings_getbool(L"is_personalMode", false))
        items = splitlist(settings_getpath(L"path_alienstorage_dirs"));
    const std::wstring bin = settings_getpath(L"path_bin_dir");
    if (!bin.empty())
        items.push_back(addslash(bin) + L"templates");
    for (const std::wstring& item : items) {
        const std::wstring path = expandenv(item);
        if (!path.empty())
            addchecked(folders, {unifyslashes(addslash(path)), true, false, true},
                       L"duplicated path in alien folders");
    }
}

// A folder of the plug-in's own: it is made, and is in the list whether that succeeded or not. Its
// path is the provider's text with unified separators: not expanded, and none added at its end.
void addowned(FolderSet& folders, const FolderRec& folder, const wchar_t* made,
              const wchar_t* failed, const wchar_t* duplicate)
{
    if (makedirs(folder.path)) {
        traceFormatW(made, folder.path.c_str());
        allowapppackages(folder.path);
    } else if (const DWORD error = GetLastError(); error == ERROR_ALREADY_EXISTS) {
        allowapppackages(folder.path);
    } else {
        traceStatusFormat(statusFromError(error), failed, folder.path.c_str());
    }
    addfolder(folders, folder, duplicate);
}

void addworkgroup(FolderSet& folders, const wchar_t* key)
{
    // Not expanded, unlike the further folders.
    const std::wstring path = settings_getpath(key);
    addchecked(folders, {unifyslashes(addslash(path)), true, true, true}, L"duplicated path '%s'");
}

void addall(FolderSet& folders)
{
    const std::wstring adminFolder = settings_getpath(L"path_wkgKrsAdmin_dir");
    const bool isAdmin = !adminFolder.empty() && direxists(adminFolder);
    if (!isAdmin) {
        addfurther(folders);
        addowned(folders,
                 {unifyslashes(settings_getpath(L"path_cachestorage_dir")), true, true, true},
                 L"cache '%s'", L"cache '%s' create failed", L"duplicated path in cached folders");
    }
    addowned(folders, {unifyslashes(settings_getpath(L"path_localstorage_dir")), false, true, true},
             L"local '%s'", L"local '%s' create failed",
             L"duplicated path in personal storage folder");
    addworkgroup(folders,
                 isAdmin ? L"path_wkgKrsAdmin_notinusetestdir" : L"path_wrgKrs_notinusetestdir");
    addworkgroup(folders, isAdmin ? L"path_wkgKrsAdmin_inusedir" : L"path_wrgKrs_inusedir");
    traceText("done\n");
}

// Traces what is being handled; a COM error has a status of its own.
void tracecaught(HRESULT otherwise)
{
    try {
        throw;
    } catch (const _com_error& error) {
        traceStatus("[COM]", error.Error());
    } catch (const std::exception& error) {
        traceStatusFormat(otherwise, L"[STD]%hs", error.what());
    } catch (...) {
        traceStatus("oo", otherwise);
    }
}

bool isreadable(const std::wstring& path)
{
    WIN32_FIND_DATAW entry;
    const CSearchHandle search(FindFirstFileW(templatemask(path).c_str(), &entry));
    return search || GetLastError() == ERROR_FILE_NOT_FOUND;
}

bool isusable(FolderRec& folder)
{
    if (folder.path.starts_with(LR"(\\)")) {
        folder.fixeddrive = false;
        return true;
    }
    if (folder.path.size() < 2 || folder.path[1] != L':') {
        traceStatusFormat(S_OK, L"strange path '%s'", folder.path.c_str());
        return false;
    }
    const UINT type = GetDriveTypeW(folder.path.substr(0, 3).c_str());
    if (type != DRIVE_FIXED && type != DRIVE_REMOTE) {
        traceStatusFormat(S_OK, L"unknown drive type = %d", type);
        return false;
    }
    folder.fixeddrive = type == DRIVE_FIXED;
    return true;
}

void listfolder(const FolderRec& folder, std::vector<FileRec>& files)
{
    const std::wstring mask = templatemask(folder.path);
    if (traceActive())
        traceFormatW(L"  '%s'", shortpath(mask).c_str());
    WIN32_FIND_DATAW entry;
    const CSearchHandle search(FindFirstFileW(mask.c_str(), &entry));
    if (!search) {
        const DWORD error = GetLastError();
        if (error != ERROR_FILE_NOT_FOUND && error != ERROR_PATH_NOT_FOUND)
            traceStatusFormat(statusFromError(error), L"failed access files from folder '%s'",
                              folder.path.c_str());
        return;
    }
    do
        files.push_back({folder.path, entry.cFileName, folder.alien});
    while (FindNextFileW(search.get(), &entry));
    const DWORD error = GetLastError();
    if (error != ERROR_NO_MORE_FILES)
        traceStatusFormat(statusFromError(error), L"failed enum files from folder '%s'",
                          folder.path.c_str());
}

} // namespace

void prepfolderlist(FolderSet& folders)
{
    const traceScope_t scope("prepfolderlist");
    try {
        addall(folders);
    } catch (...) {
        tracecaught(S_OK);
    }
}

bool checkpath(FolderRec& folder)
{
    const traceScope_t scope("checkpath");
    bool usable = false;
    try {
        usable = isusable(folder);
        // An unreadable network folder stays in the list.
        if (usable && !folder.fixeddrive && !isreadable(folder.path))
            folder.accessible = false;
    } catch (...) {
        traceNote("exception");
    }
    return usable;
}

void enumfnames(const FolderRec& folder, std::vector<FileRec>& files)
{
    const traceScope_t scope("enumfnames");
    try {
        listfolder(folder, files);
    } catch (...) {
        tracecaught(E_UNEXPECTED);
    }
}

void collectall(const FolderSet& folders, std::vector<FileRec>& files)
{
    const traceScope_t scope("collectall");
    const auto islocal = [](const FolderRec& folder) { return folder.fixeddrive; };
    if (std::none_of(folders.begin(), folders.end(), islocal)) {
        traceText("no local folders");
        return;
    }
    traceText("local folders");
    for (const FolderRec& folder : folders) {
        if (islocal(folder))
            enumfnames(folder, files);
    }
}

std::wstring storedname(const FileRec& file)
{
    std::wstring name = file.name;
    if (file.alien)
        name.insert(0, file.folder).insert(0, storedMark<wchar_t>);
    return name;
}
