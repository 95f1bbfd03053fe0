#include "common/scoped.h"
#include "common/status.h"
#include "plugin/errorframe.h"
#include "plugin/vlktpages.h"
#include "storage/paths.h"
#include "tracecore/tracer.h"

#include <cstdint>

using tracecore::traceIfFailed;
using tracecore::traceScope_t;

namespace {

// policyRecord_t is what the policy library exchanges, one setting per call, in its layout.
struct policyRecord_t {
    const wchar_t* name = L"CommonSettings\\{42F9948B-B690-4325-A073-63A8BF31FF32}\\DisableApps";
    uint32_t status = 0; // on read: 0 or 1 with a value, 0x80070002 without
    uint32_t filler = 0;
    uint64_t valueSize = 0; // 4 for a write
    uint64_t value = 0;     // the low half counts
    uint64_t reserved = 0;
};
static_assert(sizeof(policyRecord_t) == 40);

constexpr auto noSuchSetting = static_cast<HRESULT>(0x80070002);

using policyCall = HRESULT(WINAPI*)(ULONG count, policyRecord_t* records);

// callPolicyLibrary loads the library for this one call and passes it the record.
//
// Errors: raises the last error when the library or the function is missing, and the library's own
//         failure
// Source: VLFPApi.dll in the system folder
void callPolicyLibrary(const char* function, policyRecord_t& record)
{
    const CLoadedModule library(LoadLibraryW((sysdir() + L"VLFPApi.dll").c_str()));
    if (!library)
        raiseLastError();
    const auto call = reinterpret_cast<policyCall>(
        reinterpret_cast<void*>(GetProcAddress(library.get(), function)));
    if (!call)
        raiseLastError();
    const HRESULT status = call(1, &record);
    if (FAILED(status))
        raiseStatus(status);
}

// The status input is reset when the application is switched off; a failure is ignored.
void forgetStatusInput() noexcept
{
    CRegistryKey key;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, L"SOFTWARE\\Veltrano\\Applications\\DashBoard\\IDCard", 0,
                      KEY_WRITE, key.put()) == ERROR_SUCCESS)
        RegDeleteValueW(key.get(), L"IDCard_SS");
}

} // namespace

HRESULT CVLKTPages::GetGPOSettings(ULONG* value)
{
    const traceScope_t scope("GetGPOSettings"); // without the class. Intended.
    *value = 0;
    try {
        policyRecord_t record;
        callPolicyLibrary("VLFPGetPolicySettingsEx", record);
        const auto status = static_cast<HRESULT>(record.status);
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
            policyRecord_t record;
            record.valueSize = sizeof disable;
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
