// The plug-in for a host whose process ends at the moment of a restore that VL_END numbers: an even one
// is before a call of the platform by the plug-in or the settings provider, an odd one after it.

#include "common/module.h"
#include "support/importhooks.h"

#include <filesystem>

namespace {

int untilEnd = _wtoi(_wgetenv(L"VL_END"));

// Also the place to which a call returns, with the stack of a return.
[[gnu::force_align_arg_pointer]] void end()
{
    TerminateProcess(GetCurrentProcess(), 77);
}

bool countDown(const hookedCall_t& call)
{
    if (untilEnd == 0)
        end();
    if (untilEnd == 1)
        const_cast<ULONGLONG*>(call.saved)[4] = reinterpret_cast<ULONGLONG>(&end);
    untilEnd -= 2;
    if (std::string_view("ImpersonateSelf") == call.function) // a backup: the host compares
        untilEnd = -1;
    return false;
}

HMODULE hooked(const wchar_t* name)
{
    const auto folder = std::filesystem::path(moduleFileName(nullptr)).parent_path();
    const HMODULE module = LoadLibraryW((folder / name).c_str());
    const auto functions = hookedFunctions(
        "FindFirstFileW FindNextFileW FindClose DeleteFileW CreateFileW WriteFile CloseHandle "
        "SetNamedSecurityInfoW _wfopen fputs fclose RegOpenKeyExW RegDeleteKeyW RegCreateKeyExW "
        "RegSetValueExW RegCloseKey FindWindowExW PostMessageW OpenSemaphoreW WaitForSingleObject "
        "SetEvent ReleaseSemaphore ImpersonateSelf");
    new importHooks_t(module, functions, countDown); // for as long as the process lives
    return module;
}

} // namespace

extern "C" __declspec(dllexport) HRESULT WINAPI
    DllGetClassObject(REFCLSID clsid, REFIID iid, void** out)
{
    hooked(L"VloSet.dll");
    return reinterpret_cast<decltype(&DllGetClassObject)>(reinterpret_cast<void*>(
        GetProcAddress(hooked(L"VLOnlineIDs.dll"), "DllGetClassObject")))(clsid, iid, out);
}
