#include "common/scoped.h"
#include "common/status.h"
#include "neighbours/vlfpapi.h"

namespace {

constexpr wchar_t policyKey[] = L"SOFTWARE\\Veltrano\\VLFPApi\\Policy";
constexpr LONG statusOfMachine = 0;
constexpr LONG statusOfUser = 1;

LSTATUS readSetting(HKEY root, const wchar_t* name, DWORD& value)
{
    DWORD type = 0;
    DWORD data = 0;
    DWORD size = sizeof(data);
    CRegistryKey key;
    LSTATUS error = RegOpenKeyExW(root, policyKey, 0, KEY_QUERY_VALUE, key.put());
    if (error == ERROR_SUCCESS)
        error = RegQueryValueExW(key.get(), name, nullptr, &type, reinterpret_cast<BYTE*>(&data),
                                 &size);
    if (error == ERROR_MORE_DATA ||
        (error == ERROR_SUCCESS && (type != REG_DWORD || size != sizeof(data))))
        return ERROR_INVALID_DATA;
    if (error == ERROR_SUCCESS)
        value = data;
    return error;
}

LONG getSetting(VLFPPolicyRecord& record)
{
    DWORD value = 0;
    LONG status = statusOfMachine;
    LSTATUS error = readSetting(HKEY_LOCAL_MACHINE, record.name, value);
    if (error == ERROR_FILE_NOT_FOUND) {
        status = statusOfUser;
        error = readSetting(HKEY_CURRENT_USER, record.name, value);
    }
    if (error != ERROR_SUCCESS)
        return statusFromError(static_cast<DWORD>(error));
    record.size = sizeof(value);
    record.value = value;
    return status;
}

LONG setSetting(const VLFPPolicyRecord& record)
{
    const auto value = static_cast<DWORD>(record.value);
    CRegistryKey key;
    LSTATUS error =
        RegCreateKeyExW(HKEY_LOCAL_MACHINE, policyKey, 0, nullptr, REG_OPTION_NON_VOLATILE,
                        KEY_SET_VALUE, nullptr, key.put(), nullptr);
    if (error == ERROR_SUCCESS)
        error = RegSetValueExW(key.get(), record.name, 0, REG_DWORD,
                               reinterpret_cast<const BYTE*>(&value), sizeof(value));
    return statusFromError(static_cast<DWORD>(error));
}

bool areUsable(uint32_t count, const VLFPPolicyRecord* records)
{
    if (!records)
        return false;
    for (uint32_t i = 0; i < count; ++i) {
        if (!records[i].name || !*records[i].name)
            return false;
    }
    return true;
}

} // namespace

LONG VLFPGetPolicySettingsEx(uint32_t count, VLFPPolicyRecord* records)
{
    if (!areUsable(count, records))
        return E_INVALIDARG;
    for (uint32_t i = 0; i < count; ++i)
        records[i].status = getSetting(records[i]);
    return S_OK;
}

LONG VLFPSetPolicySettingsEx(uint32_t count, VLFPPolicyRecord* records)
{
    if (!areUsable(count, records))
        return E_INVALIDARG;
    for (uint32_t i = 0; i < count; ++i) {
        records[i].status = setSetting(records[i]);
        if (FAILED(records[i].status))
            return records[i].status;
    }
    return S_OK;
}
