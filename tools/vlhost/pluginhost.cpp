#include "pluginhost.h"

#include "common/text.h"
#include "shared/systemerror.h"
#include "shared/toolerror.h"
#include "storage/paths.h"

using namespace VLONLINEIDSLib;

namespace {

constexpr wchar_t pluginsKey[] = L"SOFTWARE\\Veltrano\\VLKT\\Plugins\\";
constexpr wchar_t classKey[] = L"\\{42F9948B-B690-4325-A073-63A8BF31FF32}";

using getClassObject = HRESULT(WINAPI*)(REFCLSID, REFIID, void**);

} // namespace

std::wstring registeredPluginPath(const wchar_t* role)
{
    wchar_t stored[MAX_PATH] = {};
    DWORD size = sizeof stored;
    DWORD type = REG_NONE;
    // RegGetValueW terminates the text. Expanded it is here: Wine would write past the buffer's end.
    constexpr DWORD asItIs = RRF_RT_REG_SZ | RRF_RT_REG_EXPAND_SZ | RRF_NOEXPAND;
    if (RegGetValueW(HKEY_LOCAL_MACHINE, (pluginsKey + (role + std::wstring(classKey))).c_str(),
                     L"", asItIs, &type, stored, &size) != ERROR_SUCCESS)
        return {};
    return type == REG_EXPAND_SZ ? expandenv(stored) : stored;
}

std::wstring registeredPluginPath()
{
    std::wstring path = registeredPluginPath(L"UIElements\\BackupRestore");
    if (path.empty())
        throw CToolError(
            "the plug-in is not registered with the dashboard",
            "run 'vlhost register' as an administrator, or name the DLL with --plugin");
    return path;
}

CLoadedModule loadPlugin(const std::wstring& path)
{
    CLoadedModule library(LoadLibraryExW(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH));
    if (!library) {
        const DWORD error = GetLastError();
        throw CToolError("can't load " + utf8FromWide(path) + ": " + errorText(error),
                         error == ERROR_BAD_EXE_FORMAT
                             ? "it has to be the 64-bit DLL"
                             : "is the file there? --plugin names another");
    }
    return library;
}

CPluginHost::CPluginHost(const std::string& path)
    : m_path(path.empty() ? registeredPluginPath() : wideFromUtf8(path)),
      m_library(loadPlugin(m_path))
{
    const auto entry = reinterpret_cast<getClassObject>(
        reinterpret_cast<void*>(GetProcAddress(m_library.get(), "DllGetClassObject")));
    if (!entry)
        throw CToolError(utf8FromWide(m_path) + " is no component: it has no DllGetClassObject",
                         "is this the plug-in's DLL?");
    CInterface<IClassFactory> factory;
    HRESULT status =
        entry(CLSID_CVLKTPages, IID_IClassFactory, reinterpret_cast<void**>(factory.put()));
    if (SUCCEEDED(status))
        status = factory.get()->CreateInstance(nullptr, IID_IUnknown,
                                               reinterpret_cast<void**>(m_object.put()));
    if (FAILED(status))
        throw CToolError("the plug-in made no object: " + statusText(status),
                         "is this the plug-in's DLL?");
}

void CPluginHost::Query(REFIID iid, void** out) const
{
    const HRESULT status = m_object.get()->QueryInterface(iid, out);
    if (FAILED(status))
        throw CToolError("the plug-in has no such interface: " + statusText(status),
                         "is it an older version of the plug-in?");
}
