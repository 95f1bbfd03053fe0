#include "child.h"
#include "common/registry.h"
#include "neighbours/dashboardkeys.h"
#include "neighbours/vlfpapi.h"
#include "resources/resourceids.h"
#include "rounds.h"
#include "vlhost/pluginhost.h"
#include "vlhost/variants.h"

// The small calls that a dashboard makes, each against the calls of the platform and of the policy
// library that it needs, made raw.
namespace {

using namespace VLONLINEIDSLib;

constexpr int times = 20;

const std::wstring policyLibrary = [] {
    wchar_t system[MAX_PATH] = {};
    GetSystemDirectoryW(system, MAX_PATH);
    return std::wstring(system) + L"\\VLFPApi.dll";
}();

HMODULE plugin;
volatile int sink;

// The branded strings: nothing is found here, as where the system reads language files itself.
void rawText(UINT id)
{
    const auto block = MAKEINTRESOURCEW(id / 16 + 1);
    const auto strings = MAKEINTRESOURCEW(6);
    FindResourceExW(plugin, strings, block, 0);
    FindResourceExW(plugin, strings, block, GetUserDefaultUILanguage() & 0x3FF);
    FindResourceW(plugin, strings, block);
    wchar_t text[260] = {};
    sink = LoadStringW(plugin, id, text, 260);
    SysFreeString(SysAllocString(text));
}

void rawPolicy()
{
    wchar_t system[MAX_PATH] = {};
    GetSystemDirectoryW(system, MAX_PATH);
    const CLoadedModule library(LoadLibraryW(policyLibrary.c_str()));
    const auto call = reinterpret_cast<decltype(&VLFPGetPolicySettingsEx)>(
        reinterpret_cast<void*>(GetProcAddress(library.get(), "VLFPGetPolicySettingsEx")));
    VLFPPolicyRecord record{};
    record.name = L"CommonSettings\\{42F9948B-B690-4325-A073-63A8BF31FF32}\\DisableApps";
    sink = call(1, &record);
}

void rawValue(const wchar_t* path, const wchar_t* name)
{
    const CRegistryKey key = openKey(HKEY_CURRENT_USER, path, KEY_READ);
    DWORD value = 0;
    DWORD type = 0;
    DWORD size = sizeof value;
    sink =
        RegQueryValueExW(key.get(), name, nullptr, &type, reinterpret_cast<BYTE*>(&value), &size);
}

void rawStatus()
{
    rawPolicy();
    rawValue(dashboardCardKey, dashboardCardStatus);
    rawText(IDS_STATUS_AT_RISK);
}

void setValue(const wchar_t* path, const wchar_t* name, DWORD value)
{
    RegSetKeyValueW(HKEY_CURRENT_USER, path, name, REG_DWORD, &value, sizeof value);
}

} // namespace

int main()
{
    CopyFileW((bench::programFolder() + L"VLFPApi.dll").c_str(), policyLibrary.c_str(), FALSE);
    const std::wstring dismissed =
        std::wstring(dashboardDismissedKey) + L"\\{42F9948B-B690-4325-A073-63A8BF31FF32}";
    setValue(dashboardCardKey, dashboardCardStatus, 1);
    setValue(dismissed.c_str(), L"1", 0);
    const std::wstring path = bench::programFolder() + L"VLOnlineIDs.dll";
    const CPluginHost host(std::string(path.begin(), path.end()));
    plugin = GetModuleHandleW(L"VLOnlineIDs.dll");
    const auto element = host.Get<IVLKTElementUI>();
    const auto security = host.Get<IVLKSecurityStatus>();
    const auto application = host.Get<IVLKTDisableApp>();
    const auto property = [&](ULONG id) {
        return [&element, id] {
            CVariant value;
            element.get()->GetProperty(id, value.Get());
        };
    };
    bench::CGroup group;
    const auto compare = [&](auto mine, auto raw) {
        for (const std::function<void()>& body :
             {std::function<void()>(mine), std::function<void()>(raw)})
            group.Add([body] {
                for (int i = 0; i < times; ++i)
                    body();
            });
    };
    const char* const names[] = {"property 1",   "property 100",       "property 101",
                                 "property 103", "GetStatus, of card", "GetStatus, of application"};
    compare(property(1), [] { rawText(IDS_PLUGIN_NAME); });
    compare(property(100), rawStatus);
    compare(property(101), rawStatus);
    compare(property(103), [&] {
        rawStatus();
        rawStatus();
        rawValue(dismissed.c_str(), L"1");
    });
    compare(
        [&] {
            ULONG status = 0;
            BSTR text = nullptr;
            security.get()->GetStatus(&status, &text);
            SysFreeString(text);
        },
        rawStatus);
    compare(
        [&] {
            ULONG status = 0;
            application.get()->GetStatus(&status);
        },
        rawPolicy);
    group.Run(3 * bench::usualRounds);
    for (size_t i = 0; i < std::size(names); ++i)
        bench::row(std::string(names[i]) + " / its calls made raw",
                   std::to_string(times) + " calls", group.Ratios(2 * i, 2 * i + 1), 1.05);
    return 0;
}
