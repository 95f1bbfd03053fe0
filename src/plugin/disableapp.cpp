#include "common/guardedcall.h"
#include "common/registry.h"
#include "common/status.h"
#include "neighbours/dashboardkeys.h"
#include "neighbours/vlfpapi.h"
#include "plugin/errorframe.h"
#include "plugin/vlktpages.h"
#include "storage/paths.h"
#include "tracecore/tracer.h"

using tracecore::traceIfFailed;
using tracecore::traceScope_t;

namespace {

constexpr wchar_t settingName[] =
    L"CommonSettings\\{42F9948B-B690-4325-A073-63A8BF31FF32}\\DisableApps";
constexpr auto noSuchSetting = static_cast<HRESULT>(0x80070002);

using policyCall = decltype(&VLFPGetPolicySettingsEx);

// callPolicyLibrary loads the library for this one call and passes it the record, of the setting
// that switches the application off.
//
// Errors: raises the last error when the library or the function is missing, and the library's own
//         failure
// Source: VLFPApi.dll in the system folder
void callPolicyLibrary(const char* function, VLFPPolicyRecord& record)
{
    const CLoadedModule library(LoadLibraryW((sysdir() + L"VLFPApi.dll").c_str()));
    if (!library)
        raiseLastError();
    const auto call = reinterpret_cast<policyCall>(
        reinterpret_cast<void*>(GetProcAddress(library.get(), function)));
    if (!call)
        raiseLastError();
    record.name = settingName;
    const HRESULT status = callGuarded(call, 1, &record);
    if (FAILED(status))
        raiseStatus(status);
}

// The status input is reset when the application is switched off; a failure is ignored.
void forgetStatusInput() noexcept
{
    if (const CRegistryKey key = openKey(HKEY_CURRENT_USER, dashboardCardKey, KEY_WRITE))
        RegDeleteValueW(key.get(), dashboardCardStatus);
}

} // namespace

HRESULT CVLKTPages::GetGPOSettings(ULONG* value)
{
    const traceScope_t scope("GetGPOSettings"); // without the class. Intended.
    *value = 0;
    try {
        VLFPPolicyRecord record{};
        callPolicyLibrary("VLFPGetPolicySettingsEx", record);
        const HRESULT status = record.status;
        if (status == noSuchSetting)
            return status;
        if (status == 0 || status == 1)
            *value = static_cast<ULONG>(record.value);
        return status;
    } catch (...) {
        return frameStatus("GetGPOSettings");
    }
}

STDMETHODIMP CVLKTPages::DisableLocal(ULONG disable)
{
    const traceScope_t scope("CVLKTPages::DisableLocal");
    HRESULT result = S_OK;
    try {
        try {
            VLFPPolicyRecord record{};
            record.size = sizeof disable;
            record.value = disable;
            callPolicyLibrary("VLFPSetPolicySettingsEx", record);
        } catch (const _com_error& error) {
            result = error.Error();
            traceIfFailed("", result);
        } catch (...) {
            result = E_UNEXPECTED;
            traceIfFailed("", result);
        }
        // Also after a failed policy write.
        if (disable)
            forgetStatusInput();
    } catch (const _com_error& error) {
        result = error.Error();
    } catch (...) {
        result = E_UNEXPECTED;
    }
    traceIfFailed("", result); // a failed policy write is traced again here
    return result;
}

STDMETHODIMP CVLKTPages::Subscribe()
{
    const traceScope_t scope("CVLKTPages::Subscribe");
    tracecore::traceText("'`I04`'N/A");
    return S_OK;
}
