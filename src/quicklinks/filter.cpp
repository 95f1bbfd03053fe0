#include "common/text.h"
#include "quicklinks/ascii.h"
#include "quicklinks/quicklinks.h"
#include "storage/paths.h"

#include <algorithm>
#include <unordered_set>

namespace {

// isown is true if a manifest, in its short form, lies in the user's roaming templates folder.
bool isown(std::wstring_view shortManifest)
{
    return asciiequal<wchar_t>(shortManifest.substr(0, 5), L"kri::");
}

std::string_view urlhead(std::string_view url)
{
    return url.substr(0, url.find('?'));
}

// targetof is what the record opens; empty for a record without a kind.
std::wstring targetof(const QLRecord& record)
{
    if (record.kind == 1)
        return wideFromUtf8(urlhead(record.url));
    if (record.kind == 2)
        return wideFromUtf8(record.dlgpath);
    return {};
}

// TargetIndex holds, of one list of records, the targets of those whose manifest isn't the user's
// own.
class TargetIndex
{
public:
    explicit TargetIndex(const std::vector<QLRecord>& records)
    {
        m_own.reserve(records.size());
        for (const QLRecord& record : records) {
            m_own.push_back(isown(shortpath(expandenv(wideFromUtf8(record.manifest)))));
            // A dialog target goes in unexpanded, and is looked up expanded. Intended.
            if (!m_own.back())
                m_foreign.insert(targetof(record));
        }
    }

    bool own(size_t position) const { return m_own[position]; }
    bool hasforeign(const std::wstring& target) const { return m_foreign.contains(target); }

private:
    std::vector<bool> m_own;
    std::unordered_set<std::wstring> m_foreign; // records without a target share the empty one
};

// ItemList is a list of items separated by commas, compared without regard to ASCII case.
class ItemList
{
public:
    explicit ItemList(std::string_view list)
    {
        while (!list.empty()) {
            const std::string_view item = list.substr(0, list.find(','));
            if (!item.empty())
                m_items.insert(asciilower(item));
            list.remove_prefix(std::min(item.size() + 1, list.size()));
        }
    }

    bool inlist(const std::wstring& target) const
    {
        return !m_items.empty() && m_items.contains(asciilower(utf8FromWide(target)));
    }

private:
    std::unordered_set<std::string> m_items; // in lower case, none empty
};

} // namespace

void QL::filter(const std::string& list, std::vector<QLRecord>& keep) const
{
    keep.clear();
    const TargetIndex index(records);
    const ItemList items(list);
    for (size_t i = 0; i < records.size(); ++i) {
        const QLRecord& record = records[i];
        if (index.own(i)) {
            std::wstring target = targetof(record);
            if (record.kind == 2)
                target = expandenv(target);
            if (items.inlist(target) || index.hasforeign(target))
                continue;
        }
        keep.push_back(record);
    }
}
