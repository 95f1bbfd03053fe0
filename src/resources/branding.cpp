#include "resources/branding.h"

#include <atomic>
#include <cstring>
#include <iterator>
#include <memory>

#include "common/initorder.h"
#include "common/scoped.h"
#include "resources/resourceids.h"
#include "tracecore/tracer.h"

using namespace tracecore;

namespace {

constexpr wchar_t defaultKey[] = L"SOFTWARE\\Veltrano\\Branding\\Common";
constexpr char function[] = "CBranding::LoadResourceDLL";
constexpr DWORD pathSize = 260;
using pathBuffer = wchar_t[pathSize];

struct loadedBranding_t {
    HMODULE module;
    std::wstring path;
};

// published_t frees the record at the end of the module; the branding DLL itself stays to the process's end.
struct published_t {
    std::atomic<const loadedBranding_t*> record = nullptr;

    published_t() = default;
    published_t(const published_t&) = delete;
    published_t& operator=(const published_t&) = delete;
    ~published_t() { std::unique_ptr<const loadedBranding_t>(record.exchange(nullptr)); }
};
[[gnu::init_priority(initCaches)]] published_t published;

CRegistryKey openKey(const wchar_t* path)
{
    CRegistryKey key;
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, path, 0, KEY_QUERY_VALUE, key.put()) != ERROR_SUCCESS)
        return {};
    return key;
}

CRegistryKey openBrandingKey()
{
    pathBuffer path = {};
    if (LoadStringW(GetModuleHandleW(nullptr), IDS_HOST_BRANDING_KEY, path, pathSize) == 0)
        std::memcpy(path, defaultKey, sizeof defaultKey);
    CRegistryKey key = openKey(path);
    if (!key)
        key = openKey(defaultKey); // also if that was the one that just failed
    if (!key) {
        const traceScope_t scope(function);
        traceFormat(0, "Open Branding key %ls in registry Failed", path);
    }
    return key;
}

bool readDllPath(HKEY key, pathBuffer& path)
{
    DWORD type = 0;
    DWORD size = sizeof path;
    const LSTATUS status =
        RegQueryValueExW(key, L"DLLPath", nullptr, &type, reinterpret_cast<BYTE*>(path), &size);
    if (status != ERROR_SUCCESS || (type != REG_SZ && type != REG_EXPAND_SZ))
        return false;
    if (size == 0) {
        path[0] = L'\0';
        return true;
    }
    return size % sizeof(wchar_t) == 0 && path[size / sizeof(wchar_t) - 1] == L'\0';
}

CLoadedModule loadDll(const wchar_t* path)
{
    CLoadedModule dll(LoadLibraryExW(path, nullptr, LOAD_LIBRARY_AS_DATAFILE));
    if (!dll) {
        const DWORD error = GetLastError();
        const traceScope_t scope(function);
        traceFormat(0, "failed to load resource dll , GetLastError returned 0x%08x", error);
    }
    return dll;
}

} // namespace

HMODULE CBranding::LoadResourceDLL()
{
    if (const auto* const loaded = published.record.load(std::memory_order_acquire))
        return loaded->module;
    const CRegistryKey key = openBrandingKey();
    if (!key)
        return nullptr;
    pathBuffer path = {};
    if (!readDllPath(key.get(), path)) {
        const traceScope_t scope(function);
        traceFormat(0, "Failed to find DllPath under Branding key in registry");
        return nullptr;
    }
    CLoadedModule dll = loadDll(path);
    if (!dll)
        return nullptr;
    auto own = std::make_unique<const loadedBranding_t>(loadedBranding_t{dll.get(), path});
    const loadedBranding_t* first = nullptr;
    if (!published.record.compare_exchange_strong(first, own.get(), std::memory_order_acq_rel))
        return first->module; // another thread was quicker: ours goes
    static_cast<void>(dll.release());
    return own.release()->module;
}

std::wstring CBranding::DllPath()
{
    const auto* const loaded = published.record.load(std::memory_order_acquire);
    return loaded ? loaded->path : std::wstring();
}
