#include "common/initorder.h"
#include "common/text.h"
#include "storage/paths.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <memory>

namespace {

struct PrefixRow {
    const wchar_t* prefix;
    std::wstring (*folder)();
};
constexpr PrefixRow prefixrows[] = {
    {L"kri::", appdata_templatesdir}, {L"krs::", appdata_rootdir}, {L"usr::", localappdata_rootdir},
    {L"dbg::", templates_bindir},     {L"bin::", bindir_plain},
};
constexpr size_t prefixcount = std::size(prefixrows);

// PrefixCache keeps the lower-case folder of each row from its first use on. Threads that meet at
// a first use may all look the folder up; the first to store it wins.
class PrefixCache
{
public:
    constexpr PrefixCache() noexcept = default;
    ~PrefixCache()
    {
        for (auto& folder : m_folders)
            const owned last(folder.exchange(nullptr));
    }
    PrefixCache(const PrefixCache&) = delete;
    PrefixCache& operator=(const PrefixCache&) = delete;

    const std::wstring& folder(size_t row)
    {
        const std::wstring* known = m_folders[row].load(std::memory_order_acquire);
        if (!known) {
            owned made = std::make_unique<const std::wstring>(lowerpath(prefixrows[row].folder()));
            if (m_folders[row].compare_exchange_strong(known, made.get()))
                known = made.release();
        }
        return *known;
    }

private:
    using owned = std::unique_ptr<const std::wstring>;
    std::array<std::atomic<const std::wstring*>, prefixcount> m_folders{};
};
[[gnu::init_priority(initCaches)]] constinit PrefixCache prefixcache;

} // namespace

std::wstring shortpath(const std::wstring& path)
{
    if (path.empty())
        return {};
    std::wstring work = lowerpath(unifyslashes(path));
    std::wstring backslashed = work;
    std::replace(backslashed.begin(), backslashed.end(), L'/', L'\\');
    for (size_t row = 0; row < prefixcount; ++row) {
        const std::wstring& folder = prefixcache.folder(row);
        // A folder that is not known is an empty text, which is found at the front. Intended: the
        // classes of quick links build on it.
        size_t at = work.find(folder);
        if (at == std::wstring::npos) // a path written with forward slashes lies there all the same
            at = backslashed.find(folder);
        if (at != std::wstring::npos)
            return work.replace(at, folder.size(), prefixrows[row].prefix);
    }
    return work;
}

std::wstring shortpath_utf8(const std::string& path)
{
    return shortpath(wideFromUtf8(path));
}
