#include "formats/backup/elementtree.h"
#include "formats/der/derheader.h"
#include "formats/der/derview.h"
#include "formats/text/printable.h"
#include "formats/text/unicode.h"
#include "shared/backupinput.h"
#include "shared/jsondocument.h"
#include "shared/toolerror.h"
#include "verbs.h"

#include <algorithm>
#include <array>
#include <optional>

namespace {

constexpr uint8_t caseBit = 0x20;

// Pattern is the text in one encoding, as bytes. A letter from A to Z is one that its case bit may differ in.
struct Pattern {
    struct Octet {
        uint8_t value;
        bool letter;
    };
    const char* encoding;
    std::vector<Octet> octets;

    // FindIn gives the position of the first match from there on; the size of the bytes if there is none.
    size_t FindIn(std::span<const uint8_t> bytes, size_t from) const
    {
        const auto found = std::search(
            bytes.begin() + static_cast<std::ptrdiff_t>(from), bytes.end(), octets.begin(),
            octets.end(), [](uint8_t byte, const Octet& octet) {
                return byte == octet.value || (octet.letter && (byte ^ caseBit) == octet.value);
            });
        return static_cast<size_t>(found - bytes.begin());
    }
};

bool isLetter(char16_t unit)
{
    return (unit >= 'A' && unit <= 'Z') || (unit >= 'a' && unit <= 'z');
}

Pattern narrowPattern(const std::string& text, bool fold)
{
    Pattern pattern{"UTF-8", {}};
    for (const char c : text) {
        const auto octet = static_cast<uint8_t>(c);
        pattern.octets.push_back({octet, fold && isLetter(octet)});
    }
    return pattern;
}

Pattern widePattern(const std::string& text, bool fold, bool highFirst)
{
    Pattern pattern{highFirst ? "UTF-16BE" : "UTF-16LE", {}};
    for (const char16_t unit : utf16FromUtf8(text)) {
        const Pattern::Octet high{static_cast<uint8_t>(unit >> 8), false};
        const Pattern::Octet low{static_cast<uint8_t>(unit), fold && isLetter(unit)};
        pattern.octets.push_back(highFirst ? high : low);
        pattern.octets.push_back(highFirst ? low : high);
    }
    return pattern;
}

// CSearch looks for a text in the elements of a backup, and reports each element that has it.
class CSearch
{
public:
    CSearch(const Call& call, std::span<const uint8_t> backup)
        : m_backup(backup),
          m_patterns{narrowPattern(call.other, call.fold), widePattern(call.other, call.fold, true),
                     widePattern(call.other, call.fold, false)},
          m_out(call.out)
    {
        if (call.json)
            m_document.emplace(call.out, "vlbackup-find-1").BeginList("matches");
    }
    ~CSearch()
    {
        if (m_document)
            m_document->EndList();
    }
    CSearch(const CSearch&) = delete;
    CSearch& operator=(const CSearch&) = delete;

    void Look(const BackupElement& element)
    {
        if (element.depth == 2)
            m_name.clear();
        if (element.kind == ElementKind::name)
            m_name = NameIn(element);
        if (element.inner || element.tag == derTag::integer)
            return;
        if (element.kind == ElementKind::document && LookIntoDocument(element))
            return;
        const bool wide = element.tag == derTag::bmpString && element.header != 0;
        for (const Pattern& pattern : m_patterns) {
            if (wide != (&pattern == &m_patterns[highFirst]) ||
                (&pattern == &m_patterns[lowFirst] && !HoldsAnyBytes(element)))
                continue;
            size_t first = 0;
            const size_t count = Count(pattern, element.content, wide ? 2 : 1, first);
            if (count != 0)
                Report(element, element.place.offset + element.header + first, count,
                       pattern.encoding, {});
        }
    }

    bool Found() const noexcept { return m_found; }

private:
    std::string NameIn(const BackupElement& element) const
    {
        const CDerElement name(m_backup.subspan(element.place.offset));
        return element.tag == derTag::octetString ? std::string(name.NarrowText())
                                                  : utf8FromUtf16(name.WideText());
    }

    // Everything else is a text of one encoding.
    static bool HoldsAnyBytes(const BackupElement& element)
    {
        return element.kind == ElementKind::content ||
               element.kind >= ElementKind::dontPromptList || element.kind == ElementKind::unknown;
    }

    static size_t Count(const Pattern& pattern, std::span<const uint8_t> bytes, size_t unit,
                        size_t& first)
    {
        size_t count = 0;
        for (size_t at = 0; (at = pattern.FindIn(bytes, at)) < bytes.size(); ++at)
            if (at % unit == 0 && count++ == 0)
                first = at;
        return count;
    }

    // The texts of a JSON document may be written with escapes. False if it isn't JSON.
    bool LookIntoDocument(const BackupElement& element)
    {
        const CDerElement value(m_backup.subspan(element.place.offset));
        const auto document = parseDocument(std::string(value.NarrowText()));
        if (document)
            LookIntoValue(element, *document, {});
        return document.has_value();
    }

    void LookIntoValue(const BackupElement& element, const Json::Value& value,
                       const std::string& path)
    {
        const std::string prefix = path.empty() ? path : path + '.';
        if (value.isObject())
            for (const std::string& name : value.getMemberNames())
                LookIntoValue(element, value[name], prefix + name);
        else if (value.isArray())
            for (const Json::Value& item : value)
                LookIntoValue(element, item, path);
        if (value.isObject() || value.isArray())
            return;
        const std::string text = path + '\n' + value.asString(); // no match spans both
        size_t first = 0;
        const size_t count = Count(
            m_patterns[0], {reinterpret_cast<const uint8_t*>(text.data()), text.size()}, 1, first);
        if (count != 0)
            Report(element,
                   element.place.offset + element.header +
                       static_cast<size_t>(value.getOffsetStart()),
                   count, m_patterns[0].encoding, path);
    }

    void Report(const BackupElement& element, size_t offset, size_t count, const char* encoding,
                const std::string& setting)
    {
        m_found = true;
        const bool entry = element.depth == 3;
        const std::string name = entry ? m_name : setting;
        const std::string path = pathText(element.place);
        if (m_document) {
            m_document->BeginObject(nullptr);
            m_document->Number("count", count);
            m_document->Text("encoding", encoding);
            m_document->Text("name", name);
            m_document->Number("offset", offset);
            m_document->Text("path", path);
            m_document->Text("where", kindName(element.kind));
            m_document->EndObject();
        } else {
            m_out << "byte " << offset << ", element " << (path.empty() ? "none" : path) << ": "
                  << kindName(element.kind) << (name.empty() ? "" : " of " + printable(name))
                  << " (" << (count == 1 ? "once" : std::to_string(count) + " times") << ", "
                  << encoding << ")\n";
        }
    }

    std::span<const uint8_t> m_backup;
    static constexpr size_t highFirst = 1; // as in backups
    static constexpr size_t lowFirst = 2;  // as in files
    std::array<Pattern, 3> m_patterns;     // UTF-8, and the two
    std::ostream& m_out;
    std::optional<CJsonDocument> m_document;
    std::string m_name; // of the entry that is looked into
    bool m_found = false;
};

} // namespace

int verbs::find(const Call& call)
{
    if (call.other.empty())
        throw CToolError("an empty text is everywhere", "say what to look for",
                         exitStatus::wrongUsage);
    const OpenBackup backup = openBackup(call.input, call.in);
    CSearch search(call, backup.input.Bytes());
    walkElements(backup.input.Bytes(), [&](const BackupElement& element) { search.Look(element); });
    return search.Found() ? exitStatus::good : exitStatus::failed;
}
