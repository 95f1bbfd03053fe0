#include "common/registry.h"
#include "common/text.h"
#include "doctor.h"
#include "files.h"
#include "pluginhost.h"
#include "resources/resourceids.h"
#include "shared/registryvalue.h"
#include "shared/systemerror.h"
#include "shared/toolerror.h"
#include "shared/windowsfiles.h"
#include "storage/paths.h"
#include "storage/settings.h"

#include <cstring>
#include <filesystem>

namespace {

namespace fs = std::filesystem;

constexpr char installAgain[] = "vlsetup install";
constexpr char registerAgain[] = "vlhost register";
constexpr const wchar_t* roles[] = {L"UIElements\\AppControl", L"UIElements\\BackupRestore",
                                    L"TrayIcon"};

std::string utf8(const fs::path& path)
{
    return utf8FromWide(path.wstring());
}

checkup_t keys(const std::wstring& plugin)
{
    std::string wrong;
    for (const wchar_t* const role : roles)
        if (plugin.empty() || fileKey(registeredPluginPath(role)) != fileKey(plugin))
            wrong += (wrong.empty() ? "" : ", ") + utf8FromWide(role);
    if (wrong.empty())
        return {"keys", true, "all three roles lead to that file", ""};
    return {"keys", false, "no key, or another file: " + wrong, registerAgain};
}

// machineOf reads which machine the file is for; 0 if it is no program or library.
WORD machineOf(const std::wstring& path)
{
    CFilePieces file(path);
    const auto front = file.Next();
    IMAGE_DOS_HEADER dos{};
    if (front.size() < sizeof dos)
        return 0;
    std::memcpy(&dos, front.data(), sizeof dos);
    const auto at = static_cast<size_t>(dos.e_lfanew);
    IMAGE_NT_HEADERS headers{};
    if (dos.e_magic != IMAGE_DOS_SIGNATURE || at > front.size() ||
        front.size() - at < sizeof headers)
        return 0;
    std::memcpy(&headers, front.data() + at, sizeof headers);
    return headers.Signature == IMAGE_NT_SIGNATURE ? headers.FileHeader.Machine : WORD{0};
}

checkup_t bitness(const std::wstring& plugin)
{
    const WORD machine = machineOf(plugin);
    if (machine == IMAGE_FILE_MACHINE_AMD64)
        return {"bitness", true, "64 bits", ""};
    return {"bitness", false,
            machine == 0 ? "it is no library" : "it is not the library for 64-bit hosts",
            registerAgain};
}

checkup_t component(const std::string& chosen)
{
    try {
        const CPluginHost host(chosen);
        return {"component", true, "it loads, and makes an object", ""};
    } catch (const CToolError& error) {
        return {"component", false, error.What(), installAgain};
    }
}

checkup_t binFolder()
{
    const std::wstring folder = bindir_registry(true);
    if (folder.empty())
        return {"bin folder", false, "no BinDir below HKLM\\SOFTWARE\\Veltrano\\Applications",
                installAgain};
    std::error_code ignored;
    const bool there = fs::is_directory(folder, ignored);
    return {"bin folder", there, utf8FromWide(folder) + (there ? "" : " is not there"),
            there ? "" : installAgain};
}

checkup_t settingsProvider()
{
    std::wstring value;
    const HRESULT status = settings_query(L"path_localstorage_dir", value);
    const std::string name = utf8FromWide(bindir_file(L"VloSet.dll"));
    if (SUCCEEDED(status))
        return {"settings provider", true, name, ""};
    return {"settings provider", false, name + ": " + statusText(status), installAgain};
}

checkup_t policyLibrary()
{
    const std::wstring file = sysdir() + L"VLFPApi.dll"; // where the plug-in looks for it
    if (const CLoadedModule library(LoadLibraryW(file.c_str())); library)
        return {"policy library", true, utf8FromWide(file), ""};
    return {"policy library", false, utf8FromWide(file) + ": " + errorText(GetLastError()),
            installAgain};
}

checkup_t console()
{
    const std::wstring file = bindir_view64() + L"VLUserConsole.exe";
    const bool there = fileAt(file).has_value();
    return {"console program", there, utf8FromWide(file) + (there ? "" : " is no file"),
            there ? "" : installAgain};
}

checkup_t branding()
{
    constexpr wchar_t path[] = L"SOFTWARE\\Veltrano\\Branding\\Common";
    const CRegistryKey key = openKey(HKEY_LOCAL_MACHINE, path, KEY_QUERY_VALUE);
    registryValue_t value{L"DLLPath", REG_SZ, {}};
    if (!key || readValue(key.get(), value) != ERROR_SUCCESS)
        return {"branding", false, "no DLLPath in HKLM\\" + utf8FromWide(path), installAgain};
    value.data.insert(value.data.end(), 2, 0);
    const auto* const file = reinterpret_cast<const wchar_t*>(value.data.data());
    const CLoadedModule library(LoadLibraryExW(file, nullptr, LOAD_LIBRARY_AS_DATAFILE));
    wchar_t name[MAX_PATH] = {};
    if (library && LoadStringW(library.get(), IDS_PRODUCT_NAME, name, MAX_PATH) > 0)
        return {"branding", true, utf8FromWide(file) + ": " + utf8FromWide(name), ""};
    return {"branding", false,
            utf8FromWide(file) + (library ? " has no product name" : " can't be loaded"),
            installAgain};
}

checkup_t languages(const std::wstring& plugin)
{
    const fs::path file = plugin;
    const std::wstring name = file.filename().wstring() + L".mui";
    std::string found;
    std::error_code ignored;
    for (const auto& entry : fs::directory_iterator(file.parent_path(), ignored))
        if (isThere((entry.path() / name).wstring()))
            found += (found.empty() ? "" : ", ") + utf8(entry.path().filename());
    const bool good = isThere((file.parent_path() / L"en-US" / name).wstring());
    return {"language files", good,
            good ? found
                 : utf8(file.parent_path() / L"en-US" / name) +
                       " is missing, which every other language falls back to",
            good ? "" : installAgain};
}

} // namespace

void examineInstallation(const std::string& chosen, std::vector<checkup_t>& checkups)
{
    const std::wstring registered = registeredPluginPath(roles[1]);
    const std::wstring plugin = chosen.empty() ? registered : wideFromUtf8(chosen);
    checkups.push_back(
        {"registration", !registered.empty(),
         registered.empty() ? "the dashboard knows no plug-in" : utf8FromWide(registered),
         registered.empty() ? registerAgain : ""});
    checkups.push_back(keys(plugin));
    const bool there = fileAt(plugin).has_value();
    checkups.push_back({"file", there,
                        there ? utf8FromWide(plugin) : '"' + utf8FromWide(plugin) + "\" is no file",
                        there ? "" : installAgain});
    checkups.push_back(bitness(plugin));
    checkups.push_back(component(chosen));
    checkups.push_back(binFolder());
    checkups.push_back(settingsProvider());
    checkups.push_back(policyLibrary());
    checkups.push_back(console());
    checkups.push_back(branding());
    checkups.push_back(languages(plugin));
}
