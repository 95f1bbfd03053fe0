#include "atl/commodule.h"
#include "common/module.h"
#include "neighbours/dashboardkeys.h"
#include "plugin/cleanup.h"
#include "plugin/registrar.h"
#include "vlonlineids.h"

using VLONLINEIDSLib::CLSID_CVLKTPages;

namespace {

constexpr wchar_t roleAppControl[] = L"UIElements\\AppControl";
constexpr wchar_t roleBackupRestore[] = L"UIElements\\BackupRestore";
constexpr wchar_t roleTrayIcon[] = L"TrayIcon";

// The user data that the uninstaller has to remove. Only it knows what the flags mean.
struct CleanupRow {
    const wchar_t* kind;
    const wchar_t* path;
    uint32_t flags;
    const wchar_t* name;
};
constexpr CleanupRow cleanupRows[] = {
    {L"HKU", dashboardCardKey, 0x8, nullptr},
    {L"HKU", dashboardKey, 0x1001, dashboardLastCategory},
    {L"HKU", dashboardCategoriesKey, 0x100C, nullptr},
    {L"HKU", L"SOFTWARE\\Veltrano\\Applications\\KRAppSettings", 0x1005, L"OpenGuardDesk"},
    {L"HKU", L"SOFTWARE\\Veltrano\\Applications\\KRAppSettings", 0x1005, L"ShowTrainingPrompt"},
    {L"HK", dashboardKey, 0x1008, nullptr},
    {L"FILE", L"Veltrano\\KRS\\Templates\\*", 0x1001, nullptr},
    {L"FILE", L"Veltrano\\KRS\\VLIconCache\\*", 0x1001, nullptr},
    {L"FILE", L"Veltrano\\KRS\\*", 0x1001, nullptr},
    {L"FILE", L"Veltrano\\*", 0x1001, nullptr},
    {L"DIR", L"Veltrano", 0x1000, nullptr},
};

HRESULT registerRole(VLKT_SDK::CRegisterComponents& registrar, const wchar_t* role,
                     const wchar_t* path)
{
    HRESULT status = registrar.Status();
    if (SUCCEEDED(status))
        status = registrar.PrepareComponent(CLSID_CVLKTPages, path);
    VLKT_SDK::CTaskText classId;
    if (SUCCEEDED(status))
        status = StringFromCLSID(CLSID_CVLKTPages, classId.put());
    if (SUCCEEDED(status))
        status = registrar.RegisterComponent(role, classId.get(), path);
    return status;
}

} // namespace

STDAPI DllRegisterServer()
{
    VLKT_SDK::CRegisterComponents registrar;
    try {
        const std::wstring path = moduleFileName(_AtlBaseModule.GetModuleInstance());
        for (const auto* role : {roleAppControl, roleBackupRestore}) {
            const HRESULT status = registerRole(registrar, role, path.c_str());
            if (FAILED(status))
                return status;
        }
        registerRole(registrar, roleTrayIcon, path.c_str()); // a dashboard without a tray is fine
        return S_OK;
    } catch (...) {
        return E_OUTOFMEMORY; // the path's text is all that can raise
    }
}

STDAPI DllUnregisterServer()
{
    // No failure here stops the unregistering.
    for (const auto& row : cleanupRows)
        AddCleanupLine(row.kind, row.path, row.flags, row.name);
    VLKT_SDK::CUnregisterComponents registrar;
    // Not the order of registering. Intended.
    for (const auto* role : {roleBackupRestore, roleAppControl, roleTrayIcon})
        registrar.UnregisterComponent(role, CLSID_CVLKTPages);
    return S_OK;
}
