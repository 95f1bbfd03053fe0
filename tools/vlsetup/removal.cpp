#include "removal.h"

#include "common/text.h"
#include "places.h"
#include "productpaths.h"

#include <algorithm>
#include <functional>

removed_t removal_t::run()
{
    std::erase_if(m_record.values,
                  [&](const written_t& entry) { return attempt([&] { takeBackValue(entry); }); });
    std::erase_if(m_record.files,
                  [&](const written_t& entry) { return attempt([&] { takeBackFile(entry); }); });
    innermostFirst(m_record.keys, removeKeyIfEmpty);
    const std::wstring path = recordOf(m_root);
    if (!m_result.complete) {
        attempt([&] { writeRecord(path, m_record); });
    } else if (attempt([&] { takeAway(path); })) {
        innermostFirst(m_record.folders, removeFolderIfEmpty);
    }
    return std::move(m_result);
}

void removal_t::takeBackValue(const written_t& entry)
{
    const std::string now = valueContent(entry.path, entry.name);
    if (!now.empty() && !entry.ours(now)) {
        if (now != entry.former)
            m_result.lines.push_back("HKLM\\" + utf8FromWide(entry.path + L'\\' + entry.name) +
                                     " was changed since and stays");
    } else if (!entry.former.empty()) {
        putValue(entry.path, entry.name, entry.former);
    } else {
        removeValue(entry.path, entry.name);
    }
}

void removal_t::takeBackFile(const written_t& entry)
{
    const std::string now = fileContent(entry.path);
    const std::wstring former = wideFromUtf8(entry.former);
    const bool waits = !former.empty() && !fileContent(former).empty();
    if (!now.empty() && !entry.ours(now)) {
        if (waits || former.empty()) // else it is the one from before, not yet moved
            m_result.lines.push_back(utf8FromWide(entry.path) + " was changed since and stays" +
                                     (waits ? ", as does " + entry.former : ""));
        return;
    }
    takeAway(entry.path);
    if (waits)
        moveTo(former, entry.path);
}

void removal_t::innermostFirst(std::vector<std::wstring>& made, void (*remove)(const std::wstring&))
{
    std::ranges::stable_sort(made, std::greater(), &std::wstring::size);
    for (const std::wstring& one : made)
        attempt([&] { remove(one); });
}
