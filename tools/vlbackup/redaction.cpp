#include "redaction.h"

#include "formats/backup/elementtree.h"
#include "formats/der/derheader.h"
#include "textredaction.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <vector>

namespace {

using Kind = ElementKind;

// CRedactedOutput writes filler for every byte that isn't put.
class CRedactedOutput
{
public:
    CRedactedOutput(std::span<const uint8_t> backup, std::ostream& out)
        : m_begin(backup.data()), m_size(backup.size()), m_out(out)
    {}
    ~CRedactedOutput() { FillTo(m_size); }
    CRedactedOutput(const CRedactedOutput&) = delete;
    CRedactedOutput& operator=(const CRedactedOutput&) = delete;

    void Put(size_t offset, std::span<const uint8_t> bytes)
    {
        FillTo(offset);
        m_out.write(reinterpret_cast<const char*>(bytes.data()),
                    static_cast<std::streamsize>(bytes.size()));
        m_written += bytes.size();
    }

    void Keep(std::span<const uint8_t> bytes)
    {
        Put(static_cast<size_t>(bytes.data() - m_begin), bytes);
    }

private:
    void FillTo(size_t offset)
    {
        std::array<char, 4096> filler{};
        filler.fill('x');
        while (m_written < offset) {
            const size_t count = std::min(filler.size(), offset - m_written);
            m_out.write(filler.data(), static_cast<std::streamsize>(count));
            m_written += count;
        }
    }

    const uint8_t* m_begin;
    size_t m_size;
    std::ostream& m_out;
    size_t m_written = 0;
};

bool isKnownTag(uint8_t tag)
{
    static constexpr uint8_t tags[] = {
        derTag::integer,        derTag::octetString,     derTag::utf8String,
        derTag::numericString,  derTag::printableString, derTag::t61String,
        derTag::videotexString, derTag::ia5String,       derTag::graphicString,
        derTag::visibleString,  derTag::bmpString,       derTag::sequence};
    return std::find(std::begin(tags), std::end(tags), tag) != std::end(tags);
}

// redactTag replaces a tag that nothing reads, as damage may have made it of text, by another one of its size.
void redactTag(std::span<uint8_t> header)
{
    constexpr uint8_t unread = 0x05;
    constexpr uint8_t inMoreOctets = 0x1F;
    if ((header[0] & inMoreOctets) != inMoreOctets) {
        header[0] = unread;
        return;
    }
    header[0] = inMoreOctets;
    size_t at = 1;
    for (; (header[at] & 0x80) != 0; ++at)
        header[at] = 0x81;
    header[at] = 0x01;
}

bool isText(Kind kind)
{
    switch (kind) {
    case Kind::name:
    case Kind::target:
    case Kind::manifest:
    case Kind::manifestId:
    case Kind::text:
    case Kind::hotKey:
        return true;
    default:
        return false;
    }
}

bool isNumber(Kind kind)
{
    return kind == Kind::profile || kind == Kind::wocred || kind == Kind::prompt;
}

void redactText(const BackupElement& element, CTextRedaction& texts, std::span<uint8_t> content)
{
    if (element.kind == Kind::document)
        texts.Document(content);
    else if (element.tag == derTag::octetString || element.tag == derTag::utf8String)
        texts.Narrow(content);
    else
        texts.Wide(content, element.tag == derTag::bmpString);
}

} // namespace

void redactBackup(std::span<const uint8_t> backup, std::ostream& out)
{
    CRedactedOutput output(backup, out);
    CTextRedaction texts;
    std::vector<uint8_t> content;
    walkElements(backup, [&](const BackupElement& element) {
        const size_t begin = element.place.offset + element.header;
        const auto header = backup.subspan(element.place.offset, element.header);
        content.assign(header.begin(), header.end());
        if (!content.empty() && !isKnownTag(element.tag))
            redactTag(content);
        output.Put(element.place.offset, content);
        if (element.inner)
            return;
        if (isText(element.kind) || element.kind == Kind::document) {
            content.assign(element.content.begin(), element.content.end());
            redactText(element, texts, content);
            output.Put(begin, content);
        } else if (isNumber(element.kind) && element.tag == derTag::integer &&
                   element.content.size() <= 4) {
            output.Keep(element.content);
        } else if (element.kind == Kind::damage && element.content.size() > 1) {
            constexpr uint8_t unreadable[] = {derTag::octetString, 0x80}; // an indefinite length
            output.Put(begin, unreadable);
        }
    });
}
