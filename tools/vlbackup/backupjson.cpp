#include "backupjson.h"

#include "formats/backup/records.h"
#include "formats/der/derheader.h"
#include "formats/der/dernode.h"
#include "formats/der/derreader.h"
#include "formats/text/unicode.h"
#include "shared/jsondocument.h"

#include <algorithm>
#include <optional>

namespace {

// isShortest is true for an element whose length is written as an export writes it.
bool isShortest(const CDerElement& element)
{
    uint8_t tag = 0;
    std::span<const uint8_t> contents;
    const std::span<const uint8_t> encoded = element.Encoded();
    return CDerReader(encoded).ReadAny(tag, contents) &&
           encoded.size() == derHeaderSize(contents.size()) + contents.size();
}

// sequenceIn reads a sequence in the form of an export; false for anything else.
bool sequenceIn(const CDerElement& element, CDerSequenceView& items)
{
    return isShortest(element) && items.Decode(element);
}

bool encodesAs(const CDerElement& element, CDerNode& node)
{
    const std::vector<uint8_t> bytes = node.Encode();
    return std::ranges::equal(bytes, element.Encoded());
}

// textIn gives a text that the same element can be made from; nothing if there is none.
std::optional<std::string> textIn(const CDerElement& element, TextForm form)
{
    CDerTree node;
    std::string text;
    if (form == TextForm::wide) {
        text = utf8FromUtf16(element.WideText());
        node.SetWide(utf16FromUtf8(text));
    } else {
        text = utf8FromUtf16(utf16FromUtf8(element.NarrowText())); // JSON is UTF-8
        node.SetNarrow(text);
    }
    return encodesAs(element, node) ? std::optional(text) : std::nullopt;
}

std::optional<uint32_t> numberIn(const CDerElement& element)
{
    CDerTree node;
    node.SetInteger(element.Integer());
    return encodesAs(element, node) ? std::optional(element.Integer()) : std::nullopt;
}

// CWriter writes each entry by its values, or by its bytes if they don't make it.
class CWriter
{
public:
    CWriter(size_t elementCount, std::ostream& out)
        : m_document(out, backupSchema), m_form(versionOf(elementCount).linkTexts)
    {}

    using EntryWriter = bool (CWriter::*)(const CDerElement& entry);

    void List(const char* name, std::span<const uint8_t> encoded, EntryWriter write)
    {
        CDerSequenceView list;
        const CDerElement element(encoded);
        if (!sequenceIn(element, list)) {
            Bytes(name, element);
            return;
        }
        m_document.BeginList(name);
        for (const CDerElement& entry : list)
            if (!(this->*write)(entry))
                Bytes(nullptr, entry);
        m_document.EndList();
    }

    bool File(const CDerElement& entry)
    {
        CDerSequenceView pair;
        std::span<const uint8_t> content;
        if (!sequenceIn(entry, pair) || pair.Count() != 2 || !isShortest(pair[1]) ||
            !pair[1].DecodeOctets(content))
            return false;
        const auto name = textIn(pair[0], TextForm::wide);
        if (!name)
            return false;
        m_document.BeginObject(nullptr);
        m_document.Base64("content", content);
        m_document.Text("name", *name);
        m_document.EndObject();
        return true;
    }

    bool Link(const CDerElement& entry)
    {
        CDerSequenceView record;
        if (!sequenceIn(entry, record) || (record.Count() != 5 && record.Count() != 6))
            return false;
        const auto name = textIn(record[0], m_form);
        const auto target = textIn(record[1], m_form);
        const auto manifest = textIn(record[2], m_form);
        const auto profile = numberIn(record[3]);
        const auto manifestid = textIn(record[4], m_form);
        const auto wocred = record.Count() == 6 ? numberIn(record[5]) : 0;
        if (!name || !target || !manifest || !profile || !manifestid || !wocred || *wocred > 1)
            return false;
        m_document.BeginObject(nullptr);
        m_document.Text("manifest", *manifest);
        m_document.Text("manifestid", *manifestid);
        m_document.Text("name", *name);
        m_document.Number("profile", *profile);
        m_document.Text("target", *target);
        if (record.Count() == 6)
            m_document.Flag("wocred", *wocred == 1);
        m_document.EndObject();
        return true;
    }

    bool Category(const CDerElement& entry)
    {
        CDerSequenceView pair;
        if (!sequenceIn(entry, pair) || pair.Count() != 2)
            return false;
        const auto name = textIn(pair[0], TextForm::wide);
        const auto text = textIn(pair[1], TextForm::wide);
        if (!name || !text)
            return false;
        m_document.BeginObject(nullptr);
        m_document.Text("name", *name);
        m_document.Text("text", *text);
        m_document.EndObject();
        return true;
    }

    void Settings(std::span<const uint8_t> encoded)
    {
        CDerSequenceView items;
        const CDerElement element(encoded);
        const bool known = sequenceIn(element, items) && items.Count() >= 1 && items.Count() <= 3;
        const auto document =
            known && items.Count() == 1 ? textIn(items[0], TextForm::octets) : std::nullopt;
        const auto prompt = known && items.Count() > 1 ? numberIn(items[0]) : std::nullopt;
        const auto hotKey = prompt ? textIn(items[1], TextForm::wide) : std::nullopt;
        if (!document && !hotKey) {
            Bytes("settings", element);
            return;
        }
        m_document.BeginObject("settings");
        if (document) {
            m_document.Text("document", *document);
        } else {
            if (items.Count() == 3)
                m_document.Base64("dontPromptList", items[2].Encoded());
            m_document.Text("hotKey", *hotKey);
            m_document.Number("showPrompt", *prompt);
        }
        m_document.EndObject();
    }

    void More(std::span<const std::span<const uint8_t>> elements)
    {
        m_document.BeginList("more");
        for (const auto& element : elements)
            Bytes(nullptr, CDerElement(element));
        m_document.EndList();
    }

private:
    void Bytes(const char* name, const CDerElement& element)
    {
        m_document.BeginObject(name);
        m_document.Base64("der", element.Encoded());
        m_document.EndObject();
    }

    CJsonDocument m_document;
    TextForm m_form; // of the links
};

} // namespace

void writeBackupJson(std::span<const std::span<const uint8_t>> elements, std::ostream& out)
{
    CWriter writer(elements.size(), out);
    writer.List("templates", elements[0], &CWriter::File);
    writer.List("quicklinks", elements[1], &CWriter::Link);
    if (elements.size() > 2)
        writer.List("categories", elements[2], &CWriter::Category);
    if (elements.size() == 4)
        writer.Settings(elements[3]);
    else if (elements.size() > 4)
        writer.More(elements.subspan(3));
}
