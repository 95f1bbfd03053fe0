#include "merging.h"

#include "backupparts.h"
#include "formats/backup/storednames.h"
#include "formats/der/dernode.h"
#include "formats/der/derreader.h"
#include "formats/text/unicode.h"
#include "shared/backupinput.h"
#include "shared/jsontext.h"

#include <algorithm>
#include <set>
#include <unordered_map>
#include <utility>

#include <json/writer.h>

namespace {

constexpr size_t none = SIZE_MAX;

std::u16string keyOf(const BackupFile& file)
{
    return file.Key();
}

// Windows finds the template of a link in any case.
std::u16string keyOf(const BackupLink& link)
{
    return caseKey(utf8FromUtf16(link.Key()));
}

std::u16string keyOf(const BackupCategory& category)
{
    return category.Key();
}

std::string bothTexts(const std::string& name, const std::string& mine, const std::string& other)
{
    return mine == other ? "" : name + ": \"" + mine + "\" and \"" + other + '"';
}

// differenceOf says what two items of one key don't share; empty if they are equal.
std::string differenceOf(const BackupFile& mine, const BackupFile& other)
{
    if (std::ranges::equal(mine.content, other.content))
        return {};
    return "content: " + std::to_string(mine.content.size()) + " and " +
           std::to_string(other.content.size()) + " bytes that differ";
}

std::string differenceOf(const BackupLink& mine, const BackupLink& other)
{
    std::string all;
    for (const std::string& one :
         {bothTexts("name", mine.name, other.name), bothTexts("target", mine.target, other.target),
          bothTexts("manifestid", mine.manifestid, other.manifestid),
          bothTexts("wocred", mine.wocred ? "1" : "0", other.wocred ? "1" : "0")})
        if (!one.empty())
            all += (all.empty() ? "" : "; ") + one;
    return all;
}

std::string differenceOf(const BackupCategory& mine, const BackupCategory& other)
{
    return bothTexts("text", mine.text, other.text);
}

// An export stores a data file that isn't on the disk as an empty one.
bool standsForNothing(const BackupFile& file)
{
    return isDataFile(file.name) && file.content.empty();
}

bool standsForNothing(const auto&)
{
    return false;
}

// Items of one key are partners, each of at most one: keys of links that are equal here need not be the same ones.
template <class Items> std::vector<size_t> partnersOf(const Items& mine, const Items& others)
{
    std::unordered_multimap<std::u16string, size_t> byKey;
    for (size_t i = 0; i < others.size(); ++i)
        byKey.emplace(keyOf(others[i]), i);
    std::vector<size_t> partners(mine.size(), none);
    for (size_t i = 0; i < partners.size(); ++i) {
        const auto& item = mine[i];
        const auto [begin, end] = byKey.equal_range(keyOf(item));
        if (begin == end)
            continue;
        const auto same = std::find_if(
            begin, end, [&](const auto& one) { return others[one.second].Key() == item.Key(); });
        const auto partner = same == end ? begin : same;
        partners[i] = partner->second;
        byKey.erase(partner);
    }
    return partners;
}

Json::Value documentOf(const CBackupView& backup)
{
    const std::string& text = backup.settings.document;
    return parseDocument(text).value_or(
        Json::Value()); // without an error, only an empty text is no JSON
}

// CMerge takes one element after the other into the new backup.
class CMerge
{
public:
    CMerge(const OpenBackup& first, const OpenBackup& second, MergeSource preferred,
           const std::function<void(MergedItem)>& sink)
        : m_first(first), m_second(second), m_preferred(preferred), m_sink(sink)
    {}

    std::vector<uint8_t> Run()
    {
        const CBackupView& mine = m_first.view;
        const CBackupView& other = m_second.view;
        List("templates", mine.files, other.files, m_parts.files);
        List("quicklinks", mine.links, other.links, m_parts.links);
        List("categories", mine.categories, other.categories, m_parts.categories);
        Rest();
        return encodeBackup(m_parts, std::max(mine.elementCount, other.elementCount));
    }

private:
    using Records = BackupParts::Records;

    template <class Items>
    void List(const char* element, const Items& mine, const Items& others, Records& records)
    {
        const auto add = [&](const OpenBackup& backup, size_t offset) {
            std::span<const uint8_t> record;
            (void)CDerReader(backup.input.Bytes().subspan(offset)).ReadElement(record);
            records.push_back(record);
        };
        const std::vector<size_t> partners = partnersOf(mine, others);
        std::vector<bool> met(others.size());
        for (size_t i = 0; i < mine.size(); ++i) {
            const auto& item = mine[i];
            if (partners[i] == none) {
                add(m_first, item.offset);
                m_sink({element, item.name, MergeSource::first});
                continue;
            }
            met[partners[i]] = true;
            const auto& other = others[partners[i]];
            MergedItem merged{element, item.name, MergeSource::both, differenceOf(item, other)};
            if (!merged.conflict.empty()) {
                const bool empty = standsForNothing(item), otherEmpty = standsForNothing(other);
                merged.source = empty        ? MergeSource::second
                                : otherEmpty ? MergeSource::first
                                             : m_preferred;
                if (empty || otherEmpty)
                    merged.conflict.clear();
            }
            if (merged.source == MergeSource::second)
                add(m_second, other.offset);
            else
                add(m_first, item.offset);
            m_sink(std::move(merged));
        }
        for (size_t i = 0; i < others.size(); ++i) {
            if (met[i])
                continue;
            add(m_second, others[i].offset);
            m_sink({element, others[i].name, MergeSource::second});
        }
    }

    // What comes after the categories: documents are put together, anything else is one thing.
    void Rest()
    {
        const auto restOf = [](const CBackupView& backup) {
            const size_t before = std::min<size_t>(backup.elements.size(), 3);
            return Records(backup.elements.begin() + static_cast<std::ptrdiff_t>(before),
                           backup.elements.end());
        };
        const Records mine = restOf(m_first.view);
        const Records other = restOf(m_second.view);
        const auto mergeable = [](const CBackupView& backup, const Records& rest) {
            return rest.empty() || backup.settings.form == SettingsForm::document;
        };
        if (mergeable(m_first.view, mine) && mergeable(m_second.view, other)) {
            Documents(mine, other);
            return;
        }
        MergedItem merged{"settings", {}, MergeSource::both};
        if (mine.empty() || other.empty()) {
            merged.source = mine.empty() ? MergeSource::second : MergeSource::first;
        } else if (!std::ranges::equal(mine, other, std::ranges::equal)) {
            merged.source = m_preferred;
            merged.conflict = "of another form, or not the same";
        }
        m_parts.rest = merged.source == MergeSource::second ? other : mine;
        m_sink(std::move(merged));
    }

    void Documents(const Records& mine, const Records& other)
    {
        const Json::Value first = documentOf(m_first.view);
        const Json::Value second = documentOf(m_second.view);
        const Json::Value merged = Members(first, second, {});
        if (!mine.empty() && merged == first) {
            m_parts.rest = mine;
        } else if (!other.empty() && merged == second) {
            m_parts.rest = other;
        } else if (!mine.empty()) {
            Json::StreamWriterBuilder writer;
            writer["indentation"] = ""; // as an export writes it
            writer["commentStyle"] = "None";
            writer["emitUTF8"] = true;
            CDerTree settings;
            settings.SetSequence(1);
            settings.Child(0).SetNarrow(Json::writeString(writer, merged));
            m_settings = settings.Encode();
            m_parts.rest = {m_settings};
        }
    }

    // What is empty counts as missing, as it does to a restore.
    Json::Value Members(const Json::Value& mine, const Json::Value& other, const std::string& path)
    {
        const bool objects =
            (mine.empty() || mine.isObject()) && (other.empty() || other.isObject());
        if (objects && !(mine.empty() && other.empty())) {
            std::set<std::string> names;
            for (const Json::Value* const value : {&mine, &other})
                if (!value->empty())
                    for (std::string& name : value->getMemberNames())
                        names.insert(std::move(name));
            const std::string before = path.empty() ? path : path + '.';
            Json::Value merged(Json::objectValue);
            for (const std::string& name : names)
                merged[name] = Members(mine.empty() ? Json::Value() : mine[name],
                                       other.empty() ? Json::Value() : other[name], before + name);
            return merged;
        }
        MergedItem item{"settings", path, MergeSource::both};
        if (mine.empty() || other.empty()) {
            item.source = mine.empty() ? MergeSource::second : MergeSource::first;
        } else if (mine != other) {
            item.source = m_preferred;
            item.conflict = jsonText(mine, false) + " and " + jsonText(other, false);
        }
        const bool isSecond = item.source == MergeSource::second;
        if (!(mine.empty() && other.empty()))
            m_sink(std::move(item));
        return isSecond ? other : mine;
    }

    const OpenBackup& m_first;
    const OpenBackup& m_second;
    MergeSource m_preferred;
    const std::function<void(MergedItem)>& m_sink;
    BackupParts m_parts;
    std::vector<uint8_t> m_settings; // put together
};

} // namespace

std::vector<uint8_t> mergeBackups(const OpenBackup& first, const OpenBackup& second,
                                  MergeSource preferred,
                                  const std::function<void(MergedItem)>& sink)
{
    return CMerge(first, second, preferred, sink).Run();
}
