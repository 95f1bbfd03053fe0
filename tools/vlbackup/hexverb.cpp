#include "formats/backup/elementtree.h"
#include "formats/der/derheader.h"
#include "formats/der/derview.h"
#include "formats/text/printable.h"
#include "formats/text/unicode.h"
#include "shared/backupinput.h"
#include "shared/exitstatus.h"
#include "shared/hextext.h"
#include "shared/jsondocument.h"
#include "verbs.h"

#include <algorithm>
#include <iomanip>
#include <optional>

namespace {

constexpr size_t perLine = 16;
constexpr size_t shownOfLong = 8 * perLine;

// meaningOf gives a word for the element, with the value of a short one.
std::string meaningOf(const BackupElement& element, std::span<const uint8_t> backup)
{
    std::string meaning = kindName(element.kind);
    if (element.inner || element.header == 0 || !element.whole ||
        element.content.size() > shownOfLong)
        return meaning;
    const CDerElement value(
        backup.subspan(element.place.offset, element.header + element.content.size()));
    if (element.tag == derTag::integer)
        return meaning + ' ' + std::to_string(value.Integer());
    if (element.tag == derTag::bmpString)
        return meaning + " \"" + utf8FromUtf16(value.WideText()) + '"';
    return meaning;
}

std::string asciiOf(std::span<const uint8_t> bytes)
{
    std::string text;
    for (const uint8_t byte : bytes)
        text += byte >= 0x20 && byte < 0x7F ? static_cast<char>(byte) : '.';
    return text;
}

// CHexText writes the elements for a reader: a line for each, and its bytes below.
class CHexText
{
public:
    CHexText(const Call& call, std::span<const uint8_t> backup)
        : m_out(call.out), m_all(call.all), m_backup(backup)
    {
        m_out << "    offset  tag    length  path          meaning\n";
    }

    void Add(const BackupElement& element)
    {
        m_out << std::setw(10) << element.place.offset << "  ";
        if (element.header != 0)
            m_out << hexText({&element.tag, 1});
        else
            m_out << "--";
        m_out << std::setw(11) << element.length << "  " << std::left << std::setw(12)
              << pathText(element.place) << std::right << "  "
              << std::string(2 * element.depth, ' ') << printable(meaningOf(element, m_backup));
        if (!element.whole && element.header != 0)
            m_out << ", cut after " << element.content.size();
        m_out << '\n';
        if (!element.inner)
            Bytes(element);
    }

private:
    void Bytes(const BackupElement& element)
    {
        std::span<const uint8_t> rest = element.content;
        size_t offset = element.place.offset + element.header;
        const size_t shown = m_all ? rest.size() : std::min(rest.size(), shownOfLong);
        const size_t left = rest.size() - shown;
        for (rest = rest.first(shown); !rest.empty();) {
            const auto line = rest.first(std::min(perLine, rest.size()));
            rest = rest.subspan(line.size());
            m_out << std::setw(10) << offset << std::string(9, ' ');
            for (size_t i = 0; i < perLine; ++i)
                m_out << ' ' << (i < line.size() ? hexText(line.subspan(i, 1)) : "  ");
            m_out << "  " << asciiOf(line) << '\n';
            offset += line.size();
        }
        if (left != 0)
            m_out << std::setw(10) << offset << std::string(10, ' ') << countText(left, "more byte")
                  << " (--all shows all)\n";
    }

    std::ostream& m_out;
    bool m_all;
    std::span<const uint8_t> m_backup;
};

void addItem(const BackupElement& element, std::span<const uint8_t> backup, bool all,
             CJsonDocument& document)
{
    const size_t shown =
        all ? element.content.size() : std::min(element.content.size(), shownOfLong);
    document.BeginObject(nullptr);
    if (!element.inner)
        document.Text("hex", hexText(element.content.first(shown)));
    document.Number("header", element.header);
    document.Number("length", element.length);
    document.Text("meaning", meaningOf(element, backup));
    document.Number("offset", element.place.offset);
    document.Text("path", pathText(element.place));
    if (element.header != 0)
        document.Number("tag", element.tag);
    document.Flag("whole", element.whole);
    document.EndObject();
}

} // namespace

int verbs::hex(const Call& call)
{
    const OpenBackup backup(call.input, call.in);
    const std::span<const uint8_t> bytes = backup.input.Bytes();
    if (!beginsAsBackup(bytes))
        refuseBackup(call.input, bytes, backup.view);
    std::optional<CJsonDocument> document;
    if (call.json) {
        document.emplace(call.out, "vlbackup-hex-1").BeginList("elements");
        walkElements(bytes, [&](const BackupElement& element) {
            addItem(element, bytes, call.all, *document);
        });
        document->EndList();
        document.reset();
    } else {
        CHexText text(call, bytes);
        walkElements(bytes, [&](const BackupElement& element) { text.Add(element); });
    }
    if (!backup.readable)
        refuseBackup(call.input, bytes, backup.view);
    return exitStatus::good;
}
