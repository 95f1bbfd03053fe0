#include "formats/backup/formcheck.h"

#include "formats/der/derheader.h"
#include "formats/der/derreader.h"

#include <algorithm>
#include <string_view>

namespace {

bool hasMoreAfterZero(std::u16string_view units)
{
    const size_t zero = std::min(units.find(u'\0'), units.size());
    return units.find_first_not_of(u'\0', zero) != std::u16string_view::npos;
}

} // namespace

std::string damageText(std::span<const uint8_t> backup)
{
    CDerReader outer(backup);
    std::span<const uint8_t> contents;
    if (backup.empty())
        return "empty";
    if (backup[0] != derTag::sequence || outer.Announced() == 0)
        return "not a sequence of elements";
    if (outer.Announced() > backup.size())
        return "cut at byte " + std::to_string(backup.size()) + " of " +
               std::to_string(outer.Announced());
    size_t at = outer.Announced();
    if (outer.Read(derTag::sequence, contents)) {
        at -= contents.size();
        CDerReader reader(contents);
        for (std::span<const uint8_t> element; reader.ReadElement(element);)
            at += element.size();
    }
    return "the element at byte " + std::to_string(at) + " is damaged";
}

void CFormCheck::Find(Grade grade, const std::string& where, const std::string& what)
{
    m_sink({grade, where, what});
}

bool CFormCheck::Sequence(const CDerElement& element, const std::string& where,
                          CDerSequenceView& items)
{
    items = {};
    if (items.Decode(element))
        return true;
    Find(Grade::error, where, "not a sequence");
    return false;
}

void CFormCheck::Count(const CDerSequenceView& pair, const std::string& where)
{
    if (pair.Count() != 2)
        Find(Grade::error, where, countText(pair.Count(), "element") + " in a pair");
}

void CFormCheck::Text(const CDerElement& element, TextForm form, const std::string& where)
{
    if (form == TextForm::wide)
        Wide(element, where);
    else
        Narrow(element, where);
}

void CFormCheck::Wide(const CDerElement& element, const std::string& where)
{
    std::u16string units;
    uint8_t tag = 0;
    std::span<const uint8_t> contents;
    if (!element.DecodeWide(units))
        Find(Grade::error, where, "not a wide text; a restore takes its encoded bytes for one");
    else if (!CDerReader(element.Encoded()).ReadAny(tag, contents) || tag != derTag::bmpString)
        Find(Grade::note, where, "a text of another kind than exports write");
    else if (hasMoreAfterZero(units) || contents.size() % 2 != 0)
        Find(Grade::error, where, "a text with more than a restore takes of it");
    else if (units.empty() || units.find(u'\0') != units.size() - 1)
        Find(Grade::warning, where, "a text that doesn't end with its one terminating zero");
}

void CFormCheck::Narrow(const CDerElement& element, const std::string& where)
{
    std::span<const uint8_t> contents;
    const size_t length = element.NarrowText().size();
    if (!element.DecodeOctets(contents))
        Find(Grade::error, where, "not a narrow text; a restore takes its encoded bytes for one");
    else if (std::any_of(contents.begin() + static_cast<std::ptrdiff_t>(length), contents.end(),
                         [](uint8_t octet) { return octet != 0; }))
        Find(Grade::error, where, "a text with more than a restore takes of it");
    else if (length + 1 != contents.size())
        Find(Grade::warning, where, "a text that doesn't end with its one terminating zero");
}

void CFormCheck::Integer(const CDerElement& element, const std::string& where)
{
    std::span<const uint8_t> contents;
    if (!element.DecodeInteger(contents))
        Find(Grade::error, where, "not an integer; a restore reads 0");
    else if (contents.empty() || contents.size() > 4)
        Find(Grade::error, where,
             "an integer of " + countText(contents.size(), "byte") + "; a restore reads 0");
}

void CFormCheck::File(const CDerSequenceView& pair, const std::string& where)
{
    Count(pair, where);
    Wide(pair[0], where + " name");
    std::span<const uint8_t> contents;
    if (pair.Count() > 1 && !pair[1].DecodeOctets(contents))
        Find(Grade::error, where,
             "its content isn't an octet string; a restore writes the encoded bytes");
    if (pair[0].WideText().empty())
        Find(Grade::error, where, "no name; a restore writes no file");
}

void CFormCheck::Link(const CDerSequenceView& record, TextForm form, const std::string& where)
{
    if (record.Count() != 5 && record.Count() != 6) {
        Find(Grade::error, where,
             countText(record.Count(), "element") + "; a restore drops the record");
        return;
    }
    Text(record[0], form, where + " name");
    Text(record[1], form, where + " target");
    Text(record[2], form, where + " manifest");
    Integer(record[3], where + " profile");
    Text(record[4], form, where + " manifestid");
    if (record.Count() == 6) {
        Integer(record[5], where + " wocred");
        if (record[5].Integer() > 1)
            Find(Grade::error, where, "wocred is neither 0 nor 1; a restore reads 0");
    } else if (form == TextForm::wide) {
        Find(Grade::note, where, "no wocred, as in an earlier version; a restore reads 0");
    }
}

void CFormCheck::Category(const CDerSequenceView& pair, const std::string& where)
{
    Count(pair, where);
    if (pair.Count() > 0)
        Wide(pair[0], where + " name");
    if (pair.Count() > 1)
        Wide(pair[1], where + " text");
}

void CFormCheck::Settings(const CDerSequenceView& items)
{
    switch (settingsFormOf(items.Count())) {
    case SettingsForm::document:
        Narrow(items[0], "settings document");
        if (items[0].NarrowText().empty())
            Find(Grade::error, "settings",
                 "an empty document; a restore leaves the settings as they are");
        break;
    case SettingsForm::legacy:
        Integer(items[0], "settings prompt");
        Wide(items[1], "settings hot key");
        Find(Grade::note, "settings",
             countText(items.Count(), "element") + " without a document, as in an earlier version");
        break;
    default:
        Find(Grade::error, "settings", "no elements; a restore leaves the settings as they are");
    }
}
