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

HMODULE language; // the plug-in's language file
volatile int sink;

// A branded string, with no branding DLL there.
void rawText(UINT id)
{
    const auto block = MAKEINTRESOURCEW(id / 16 + 1);
    const auto strings = MAKEINTRESOURCEW(6);
    const HRSRC found = FindResourceExW(language, strings, block, 0);
    const HGLOBAL loaded = LoadResource(language, found);
    sink = *static_cast<const char*>(LockResource(loaded)) +
           static_cast<int>(SizeofResource(language, found));
    FreeResource(loaded);
    wchar_t text[260] = {};
    LoadStringW(GetModuleHandleW(nullptr), IDS_HOST_BRANDING_KEY, text, 260);
    for (int i = 0; i < 2; ++i)
        sink = openKey(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Veltrano\\Branding\\Common", KEY_QUERY_VALUE)
                   ? 1
                   : 0;
    sink = LoadStringW(nullptr, IDS_PRODUCT_NAME, text, 260);
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

// On a current system the strings come with the module, and Wine finds none there. So the calls are
// made in a process for which the system is an older one.
int main(int argc, char**)
{
    if (argc == 1) {
        RegSetKeyValueW(HKEY_CURRENT_USER, L"Software\\Wine", L"Version", REG_SZ, L"winxp64", 16);
        std::fputs(bench::runProgram(L"call_bench.exe", L"older").c_str(), stdout);
        return 0;
    }
    CopyFileW((bench::programFolder() + L"VLFPApi.dll").c_str(), policyLibrary.c_str(), FALSE);
    const std::wstring dismissed =
        std::wstring(dashboardDismissedKey) + L"\\{42F9948B-B690-4325-A073-63A8BF31FF32}";
    setValue(dashboardCardKey, dashboardCardStatus, 1);
    setValue(dismissed.c_str(), L"1", 0);
    const std::wstring path = bench::programFolder() + L"VLOnlineIDs.dll";
    const CPluginHost host(std::string(path.begin(), path.end()));
    language = LoadLibraryExW((bench::programFolder() + L"en-US\\VLOnlineIDs.dll.mui").c_str(),
                              nullptr, LOAD_LIBRARY_AS_DATAFILE);
    if (!language)
        return 2;
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
