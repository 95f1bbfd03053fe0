#include "common/registry.h"
#include "common/scoped.h"
#include "storage/paths.h"

namespace {

constexpr wchar_t krsKey[] = LR"(SOFTWARE\Veltrano\Applications\KRS)";
constexpr wchar_t applicationsKey[] = LR"(SOFTWARE\Veltrano\Applications)";
constexpr wchar_t binDirValue[] = L"BinDir";
constexpr wchar_t modulesFolder[] = LR"(x64\)";
constexpr wchar_t defaultFolder[] = LR"(veltrano\bin\)";
constexpr DWORD binDirBytes = 520;

std::wstring readbindir(const CRegistryKey& key)
{
    wchar_t text[binDirBytes / sizeof(wchar_t)] = {};
    return queryText(key.get(), binDirValue, text) == ERROR_SUCCESS ? text : std::wstring();
}

} // namespace

std::wstring bindir_fromkey(const std::wstring& subkey, bool nativeView)
{
    const REGSAM access = nativeView ? KEY_READ : KEY_READ | KEY_WOW64_32KEY;
    const CRegistryKey key = openKey(HKEY_LOCAL_MACHINE, subkey.c_str(), access);
    return key ? addslash(readbindir(key)) : std::wstring();
}

std::wstring bindir_registry(bool nativeView)
{
    const std::wstring folder = bindir_fromkey(krsKey, nativeView);
    return folder.empty() ? bindir_fromkey(applicationsKey, nativeView) : folder;
}

std::wstring bindir_default(bool nativeView)
{
    // Assigned, not appended: the settings link resolves the bare "x64\" against the plug-in's own
    // folder.
    if (nativeView)
        return modulesFolder;
    return addslash(envvalue(L"ProgramFiles(x86)")) + defaultFolder;
}

std::wstring bindir_discover(bool nativeView)
{
    std::wstring folder = bindir_registry(nativeView);
    if (!folder.empty())
        return folder;
    if (nativeView) {
        folder = bindir_registry(false);
        if (!folder.empty())
            return folder + modulesFolder;
    }
    return bindir_default(nativeView);
}

std::wstring bindir_file(const std::wstring& fileName)
{
    return bindir_discover(true) + fileName;
}

std::wstring bindir_plain()
{
    const CRegistryKey key = openKey(HKEY_LOCAL_MACHINE, applicationsKey, KEY_READ);
    if (!key)
        return addslash(envvalue(L"ProgramFiles")) + defaultFolder;
    // An installation whose key lost its value gets no default.
    return addslash(readbindir(key));
}

std::wstring templates_bindir()
{
    return bindir_plain() + LR"(templates\)";
}

std::wstring bindir_view64()
{
    const CRegistryKey key =
        openKey(HKEY_LOCAL_MACHINE, applicationsKey, KEY_READ | KEY_WOW64_64KEY);
    if (!key)
        return {};
    wchar_t text[binDirBytes / sizeof(wchar_t) + 1] = {};
    DWORD size = binDirBytes;
    // Neither the type nor the end of the value is looked at here.
    const LSTATUS read = RegQueryValueExW(key.get(), binDirValue, nullptr, nullptr,
                                          reinterpret_cast<BYTE*>(text), &size);
    std::wstring folder = read == ERROR_SUCCESS ? text : L"";
    // Only the backslash counts, and an empty text becomes a lone one.
    if (!folder.ends_with(L'\\'))
        folder += L'\\';
    return folder;
}
