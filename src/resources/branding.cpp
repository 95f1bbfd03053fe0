#include "resources/branding.h"

#include "common/initorder.h"
#include "common/registry.h"
#include "common/scoped.h"
#include "resources/resourceids.h"
#include "tracecore/tracer.h"

#include <atomic>
#include <cstring>
#include <memory>

using namespace tracecore;

namespace {

constexpr wchar_t defaultKey[] = L"SOFTWARE\\Veltrano\\Branding\\Common";
constexpr char function[] = "CBranding::LoadResourceDLL";
constexpr int pathSize = 260; // characters, of the key's path and of the DLL's

struct LoadedBranding {
    HMODULE module;
    std::wstring path;
};

// CPublished frees the record at the end of the module; the branding DLL itself stays to the end
// of the process.
struct CPublished {
    std::atomic<const LoadedBranding*> record = nullptr;

    CPublished() = default;
    CPublished(const CPublished&) = delete;
    CPublished& operator=(const CPublished&) = delete;
    ~CPublished() { const std::unique_ptr<const LoadedBranding> last(record.exchange(nullptr)); }
};
[[gnu::init_priority(initCaches)]] CPublished published;

CRegistryKey openBrandingKey()
{
    wchar_t path[pathSize] = {};
    if (LoadStringW(GetModuleHandleW(nullptr), IDS_HOST_BRANDING_KEY, path, pathSize) == 0)
        std::memcpy(path, defaultKey, sizeof defaultKey);
    CRegistryKey key = openKey(HKEY_LOCAL_MACHINE, path, KEY_QUERY_VALUE);
    if (!key)
        // Also if that was the one that just failed.
        key = openKey(HKEY_LOCAL_MACHINE, defaultKey, KEY_QUERY_VALUE);
    if (!key) {
        const traceScope_t scope(function);
        traceFormat(0, "Open Branding key %ls in registry Failed", path);
    }
    return key;
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
    wchar_t path[pathSize] = {};
    if (queryText(key.get(), L"DLLPath", path) != ERROR_SUCCESS) {
        const traceScope_t scope(function);
        traceFormat(0, "Failed to find DllPath under Branding key in registry");
        return nullptr;
    }
    CLoadedModule dll = loadDll(path);
    if (!dll)
        return nullptr;
    auto own = std::make_unique<const LoadedBranding>(LoadedBranding{dll.get(), path});
    const LoadedBranding* first = nullptr;
    if (!published.record.compare_exchange_strong(first, own.get(), std::memory_order_acq_rel))
        return first->module; // another thread was quicker: ours is freed
    (void)dll.release();
    return own.release()->module;
}

std::wstring CBranding::DllPath()
{
    const auto* const loaded = published.record.load(std::memory_order_acquire);
    return loaded ? loaded->path : std::wstring();
}
