#include "scratchprofile.h"

#include "common/text.h"
#include "files.h"
#include "formats/text/pathpart.h"
#include "shared/systemerror.h"
#include "shared/toolerror.h"
#include "storage/settings.h"

#include <windows.h>

#include <filesystem>

namespace fs = std::filesystem;

namespace {

constexpr wchar_t folderPrefix[] = L"vlhost-drill-";
constexpr wchar_t drillsKey[] = L"SOFTWARE\\Veltrano-Drill";

[[noreturn]] void failed(const char* what, DWORD error)
{
    throw CToolError(std::string("no throw-away profile can be made: ") + what + ": " +
                         errorText(error),
                     "nothing was touched; is there a temporary folder that can be written?");
}

bool runs(DWORD process)
{
    const CKernelHandle handle(OpenProcess(SYNCHRONIZE, FALSE, process));
    return handle ? WaitForSingleObject(handle.get(), 0) == WAIT_TIMEOUT
                  : GetLastError() == ERROR_ACCESS_DENIED;
}

// removeFormer removes the folders and keys of drills that were ended.
void removeFormer(const fs::path& place)
{
    CRegistryKey drills;
    RegOpenKeyExW(HKEY_CURRENT_USER, drillsKey, 0, KEY_READ, drills.put());
    wchar_t process[32] = L"";
    DWORD size = std::size(process);
    for (DWORD i = 0; drills && RegEnumKeyExW(drills.get(), i, process, &size, nullptr, nullptr,
                                              nullptr, nullptr) == ERROR_SUCCESS;
         size = std::size(process))
        if (runs(std::wcstoul(process, nullptr, 10)) ||
            RegDeleteTreeW(drills.get(), process) != ERROR_SUCCESS)
            ++i;
    std::error_code ignored;
    for (const auto& entry : fs::directory_iterator(place, ignored)) {
        const std::wstring name = entry.path().filename();
        if (name.starts_with(folderPrefix) &&
            !runs(std::wcstoul(name.c_str() + std::size(folderPrefix) - 1, nullptr, 10)))
            fs::remove_all(entry.path(), ignored);
    }
}

} // namespace

CScratchProfile::CScratchProfile()
{
    const fs::path place = fs::temp_directory_path();
    removeFormer(place);
    const std::wstring process = std::to_wstring(GetCurrentProcessId());
    m_folder = (place / (folderPrefix + process)).wstring() + L'\\';
    m_key = drillsKey + (L'\\' + process);
    std::error_code ignored;
    fs::remove_all(m_folder, ignored);
    std::error_code error;
    if (!fs::create_directory(m_folder, error))
        failed("the folder", static_cast<DWORD>(error.value()));
    try {
        HideAgent();
        LSTATUS made = RegCreateKeyExW(HKEY_CURRENT_USER, m_key.c_str(), 0, nullptr, 0,
                                       KEY_ALL_ACCESS, nullptr, m_user.put(), nullptr);
        if (made == ERROR_SUCCESS)
            made = RegOverridePredefKey(HKEY_CURRENT_USER, m_user.get());
        if (made != ERROR_SUCCESS)
            failed("the registry", static_cast<DWORD>(made));
        SetEnvironmentVariableW(L"APPDATA", (m_folder + L"Roaming").c_str());
        SetEnvironmentVariableW(L"LOCALAPPDATA", (m_folder + L"Local").c_str());
        MakeFolders();
    } catch (...) {
        Remove();
        throw;
    }
}

CScratchProfile::~CScratchProfile()
{
    Remove();
}

// A restore notifies the agent, which would look for news in the user's own profile. A thread finds no
// windows but those of its desktop.
void CScratchProfile::HideAgent()
{
    const HDESK desktop =
        CreateDesktopW(L"vlhost-drill", nullptr, nullptr, 0, GENERIC_ALL, nullptr);
    if (!desktop || !SetThreadDesktop(desktop)) // it is closed with the process
        failed("the desktop", GetLastError());
}

// A restore makes no folders. A provider that keeps its settings elsewhere than in the registry would
// not have followed.
void CScratchProfile::MakeFolders() const
{
    for (const wchar_t* const key : {L"path_localstorage_dir", L"path_cachestorage_dir",
                                     L"path_quicklink_filename", L"path_dontpromptlist_filename"}) {
        std::wstring value;
        const HRESULT status = settings_query(key, value);
        if (FAILED(status))
            throw CToolError("the setting '" + utf8FromWide(key) + "': " + statusText(status),
                             "'vlhost doctor' says what is missing");
        if (!fileKey(value).starts_with(fileKey(m_folder)))
            throw CToolError("the settings provider gives the user's own " + utf8FromWide(value) +
                                 " to a throw-away profile, too",
                             "nothing was touched; a drill isn't possible with this provider");
        fs::create_directories(folderPart(value));
    }
}

void CScratchProfile::Remove() noexcept
{
    RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
    m_user.reset();
    RegDeleteTreeW(HKEY_CURRENT_USER, m_key.c_str());
    RegDeleteKeyW(HKEY_CURRENT_USER, drillsKey); // unless another drill is at work
    std::error_code ignored;
    fs::remove_all(m_folder, ignored);
}
