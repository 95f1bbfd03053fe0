// The smallest dashboard: for each plug-in that is registered it prints path, name, status and
// security level. Exit status: 0 if there is one and each of them answered.
//
//     cl /std:c++17 /I include examples\host.cpp advapi32.lib ole32.lib oleaut32.lib uuid.lib
//     x86_64-w64-mingw32-g++-posix -static -I include examples/host.cpp -lole32 -loleaut32 -luuid

#include "vlonlineids.h"

#include <stdio.h>

using namespace VLONLINEIDSLib;

namespace {

constexpr wchar_t pluginsKey[] = L"SOFTWARE\\Veltrano\\VLKT\\Plugins\\UIElements\\AppControl";

// print writes UTF-8, whatever the console's code page is.
void print(const char* label, const wchar_t* text)
{
    char utf8[1024] = "(too long)";
    WideCharToMultiByte(CP_UTF8, 0, text ? text : L"", -1, utf8, sizeof utf8, nullptr, nullptr);
    printf("%-8s%s\n", label, utf8);
}

// reference owns one reference to an interface.
template <class Interface> struct reference {
    Interface* object = nullptr;

    reference() = default;
    reference(const reference&) = delete;
    reference& operator=(const reference&) = delete;
    ~reference()
    {
        if (object)
            object->Release();
    }
    void** put() { return reinterpret_cast<void**>(&object); }
};

// show prints what the dashboard shows about one plug-in.
HRESULT show(IUnknown* plugin)
{
    reference<IVLKTElementUI> element;
    HRESULT status = plugin->QueryInterface(__uuidof(IVLKTElementUI), element.put());
    VARIANT value; // the caller's to clear, after each call
    VariantInit(&value);
    if (SUCCEEDED(status))
        status = element.object->GetProperty(propertyName, &value);
    if (SUCCEEDED(status))
        print("name", value.bstrVal);
    VariantClear(&value);

    reference<IVLKSecurityStatus> security;
    if (SUCCEEDED(status))
        status = plugin->QueryInterface(__uuidof(IVLKSecurityStatus), security.put());
    if (FAILED(status))
        return status;
    ULONG number = 0;
    BSTR text = nullptr;
    // E_NOTIMPL with a text is an application that an administrator has switched off.
    status = security.object->GetStatus(&number, &text);
    const bool off = status == E_NOTIMPL && text;
    if (SUCCEEDED(status) || off)
        print(off ? "off" : "status", text);
    SysFreeString(text); // filled by a failure too
    if (FAILED(status) && !off)
        return status;

    status = element.object->GetProperty(propertySecurityLevel, &value);
    if (SUCCEEDED(status))
        printf("level   %ld\n", static_cast<long>(value.lVal));
    VariantClear(&value);
    return status;
}

// load makes an object of the class in the DLL. The class isn't registered with COM, so the DLL
// itself is asked for its factory.
HRESULT load(const wchar_t* path, REFCLSID classId, IUnknown** plugin)
{
    // Stays loaded until the process ends.
    const HMODULE library = LoadLibraryExW(path, nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    using entry_t = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);
    const auto entry = library ? reinterpret_cast<entry_t>(reinterpret_cast<void*>(
                                     GetProcAddress(library, "DllGetClassObject")))
                               : nullptr;
    if (!entry)
        return HRESULT_FROM_WIN32(GetLastError());
    reference<IClassFactory> factory;
    const HRESULT status = entry(classId, IID_IClassFactory, factory.put());
    if (FAILED(status))
        return status;
    return factory.object->CreateInstance(nullptr, IID_IUnknown, reinterpret_cast<void**>(plugin));
}

} // namespace

int main()
{
    int shown = 0, failed = 0;
    HKEY plugins = nullptr;
    RegOpenKeyExW(HKEY_LOCAL_MACHINE, pluginsKey, 0, KEY_READ | KEY_WOW64_64KEY, &plugins);
    wchar_t name[64]; // a class identifier in braces
    for (DWORD i = 0, size = 64; RegEnumKeyExW(plugins, i, name, &size, nullptr, nullptr, nullptr,
                                               nullptr) == ERROR_SUCCESS;
         ++i, size = 64) {
        wchar_t path[MAX_PATH];
        DWORD bytes = sizeof path;
        CLSID classId;
        // REG_EXPAND_SZ, which RegGetValueW expands.
        if (RegGetValueW(plugins, name, nullptr, RRF_RT_REG_SZ, nullptr, path, &bytes) ||
            FAILED(CLSIDFromString(name, &classId)))
            continue;
        print("plug-in", path);
        reference<IUnknown> plugin;
        HRESULT status = load(path, classId, &plugin.object);
        if (SUCCEEDED(status))
            status = plugin.object ? show(plugin.object) : E_NOINTERFACE;
        if (FAILED(status)) {
            printf("failed  0x%08lX\n", static_cast<unsigned long>(status));
            ++failed;
        }
        ++shown;
    }
    RegCloseKey(plugins);
    if (!shown)
        fputs("no plug-in is registered\n", stderr);
    return shown && !failed ? 0 : 1;
}
