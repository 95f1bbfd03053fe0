#include "registration.h"

#include "common/scoped.h"
#include "common/text.h"
#include "places.h"
#include "productpaths.h"

#include <windows.h>

#include <algorithm>

namespace {

const std::wstring pluginsKey = L"SOFTWARE\\Veltrano\\VLKT\\Plugins";
const std::wstring classId = L"{42F9948B-B690-4325-A073-63A8BF31FF32}";
const std::wstring registrationKeys[] = {pluginsKey + L"\\UIElements\\AppControl\\" + classId,
                                         pluginsKey + L"\\UIElements\\BackupRestore\\" + classId,
                                         pluginsKey + L"\\TrayIcon\\" + classId};
constexpr const wchar_t* registrationValues[] = {L"", L"TargetShellVersions"};

// callPlugin calls DllRegisterServer or DllUnregisterServer.
void callPlugin(const std::wstring& path, const char* function)
{
    const CLoadedModule library(
        LoadLibraryExW(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH));
    if (!library)
        failed("can't load", path, GetLastError());
    const auto entry = reinterpret_cast<HRESULT(WINAPI*)()>(
        reinterpret_cast<void*>(GetProcAddress(library.get(), function)));
    const HRESULT status = entry ? entry() : E_NOINTERFACE;
    if (FAILED(status))
        failed("the dashboard's registration failed:", path, static_cast<DWORD>(status));
}

} // namespace

std::vector<std::string> planRegistration(const std::wstring& root, const record_t& before,
                                          std::vector<written_t>& values)
{
    std::vector<std::string> lines;
    for (const std::wstring& key : registrationKeys) {
        const std::string registered = valueContent(key, L"");
        const bool foreign =
            !registered.empty() && registered != textValue(pluginOf(root), REG_EXPAND_SZ);
        if (foreign && !find(before.values, key))
            lines.push_back("HKLM\\" + utf8FromWide(key) +
                            " comes back when this plug-in is removed");
        for (const wchar_t* name : registrationValues) {
            const written_t* const old = find(before.values, key, name);
            written_t entry{key, name, old ? old->contents : std::vector<std::string>(),
                            old ? old->former : ""};
            if (const std::string now = valueContent(key, name); foreign && !entry.ours(now))
                entry.former = now;
            values.push_back(entry);
        }
    }
    return lines;
}

void registerPlugin(const std::wstring& root)
{
    callPlugin(pluginOf(root), "DllRegisterServer");
}

void noteRegistration(const std::wstring& root, record_t& record)
{
    const std::string ours = textValue(pluginOf(root), REG_EXPAND_SZ);
    for (written_t& entry : record.values)
        if (std::ranges::find(registrationKeys, entry.path) != std::end(registrationKeys) &&
            valueContent(entry.path, L"") == ours)
            entry.contents = {valueContent(entry.path, entry.name)};
}

void unregisterPlugin(const std::wstring& root, record_t& record)
{
    const std::wstring plugin = pluginOf(root);
    const std::string ours = textValue(plugin, REG_EXPAND_SZ);
    const written_t* const file = find(record.files, plugin);
    if (!file || !file->ours(fileContent(plugin)) ||
        std::ranges::none_of(registrationKeys,
                             [&](const auto& key) { return valueContent(key, L"") == ours; }))
        return;
    const registryTree_t tree = readTree(pluginsKey);
    for (const auto& [key, values] : tree)
        for (const auto& [name, content] : values) {
            written_t* const known = find(record.values, key, name);
            if (!known)
                record.values.push_back({key, name, {}, content});
            else if (!known->ours(content))
                known->former = content;
        }
    writeRecord(recordOf(root), record);
    callPlugin(plugin, "DllUnregisterServer");
    for (const auto& [key, values] : tree)
        if (std::ranges::find(record.keys, key) == record.keys.end())
            makeKey(key);
}
