#include "formats/backup/formcheck.h"

#include "formats/der/derheader.h"
#include "formats/der/derreader.h"

#include <algorithm>
#include <string_view>

namespace {

using Grade = BackupFinding::Grade;

// isAsExported is true for a BMPString with one zero, at its end. Most are, and this takes no memory.
bool isAsExported(const CDerElement& element)
{
    std::span<const uint8_t> octets;
    CDerReader reader(element.Encoded());
    if (!reader.Read(derTag::bmpString, octets) || octets.size() % 2 != 0)
        return false;
    size_t zero = 0;
    while (zero < octets.size() && (octets[zero] | octets[zero + 1]) != 0)
        zero += 2;
    return zero + 2 == octets.size();
}

bool hasMoreAfterZero(std::u16string_view units)
{
    const size_t zero = std::min(units.find(u'\0'), units.size());
    return units.find_first_not_of(u'\0', zero) != std::u16string_view::npos;
}

} // namespace

BackupFinding damageOf(std::span<const uint8_t> backup)
{
    const auto at = [](std::string what, size_t offset, size_t element = BackupPlace::none) {
        return BackupFinding{
            Grade::error, "backup", std::move(what), {.element = element, .offset = offset}};
    };
    CDerReader outer(backup);
    std::span<const uint8_t> contents;
    if (backup.empty())
        return at("empty", 0);
    if (backup[0] != derTag::sequence || outer.Announced() == 0)
        return at("not a sequence of elements", 0);
    if (outer.Announced() > backup.size())
        return at("cut at byte " + std::to_string(backup.size()) + " of " +
                      std::to_string(outer.Announced()),
                  backup.size());
    size_t offset = outer.Announced();
    size_t element = 0;
    if (outer.Read(derTag::sequence, contents)) {
        offset -= contents.size();
        CDerReader reader(contents);
        for (std::span<const uint8_t> whole; reader.ReadElement(whole); ++element)
            offset += whole.size();
    }
    return at("the element at byte " + std::to_string(offset) + " is damaged", offset, element);
}

CFormCheck::CFormCheck(FindingSink sink, std::span<const uint8_t> backup, size_t position,
                       const char* name)
    : m_sink(std::move(sink)), m_begin(backup.data()), m_name(name)
{
    m_place.element = position;
}

size_t CFormCheck::OffsetOf(const CDerElement& element, size_t missing) const noexcept
{
    const std::span<const uint8_t> encoded = element.Encoded();
    return encoded.empty() ? missing : static_cast<size_t>(encoded.data() - m_begin);
}

void CFormCheck::Find(Grade grade, const std::string& what)
{
    BackupPlace place = m_place;
    std::string where = place.entry == BackupPlace::none ? m_name : placeText(m_name, place.entry);
    if (m_item) {
        where += std::string(" ") + m_item;
        place.offset = m_itemOffset;
        (place.entry == BackupPlace::none ? place.entry : place.item) = m_itemPosition;
    }
    m_sink({grade, where, what, place});
}

bool CFormCheck::Sequence(const CDerElement& element, CDerSequenceView& items)
{
    items = {};
    if (items.Decode(element))
        return true;
    Find(Grade::error, "not a sequence");
    return false;
}

bool CFormCheck::List(const CDerElement& element, CDerSequenceView& items)
{
    m_place.offset = OffsetOf(element, 0);
    return Sequence(element, items);
}

bool CFormCheck::Entry(const CDerSequenceView& list, size_t index, CDerSequenceView& items)
{
    m_place.entry = index;
    m_place.offset = OffsetOf(list[index], m_place.offset);
    return Sequence(list[index], items);
}

CDerElement CFormCheck::EnterItem(const CDerSequenceView& record, size_t item, const char* name)
{
    m_item = name;
    m_itemPosition = item;
    m_itemOffset = OffsetOf(record[item], m_place.offset);
    return record[item];
}

void CFormCheck::Count(const CDerSequenceView& pair)
{
    if (pair.Count() != 2)
        Find(Grade::error, countText(pair.Count(), "element") + " in a pair");
}

void CFormCheck::Text(const CDerSequenceView& record, size_t item, TextForm form, const char* name)
{
    const CDerElement element = EnterItem(record, item, name);
    if (form == TextForm::wide)
        Wide(element);
    else
        Narrow(element);
    LeaveItem();
}

void CFormCheck::Wide(const CDerElement& element)
{
    if (isAsExported(element))
        return;
    std::u16string units;
    uint8_t tag = 0;
    std::span<const uint8_t> contents;
    if (!element.DecodeWide(units))
        Find(Grade::error, "not a wide text; a restore takes its encoded bytes for one");
    else if (!CDerReader(element.Encoded()).ReadAny(tag, contents) || tag != derTag::bmpString)
        Find(Grade::note, "a text of another kind than exports write");
    else if (hasMoreAfterZero(units) || contents.size() % 2 != 0)
        Find(Grade::error, "a text with more than a restore takes of it");
    else if (units.empty() || units.find(u'\0') != units.size() - 1)
        Find(Grade::warning, "a text that doesn't end with its one terminating zero");
}

void CFormCheck::Narrow(const CDerElement& element)
{
    std::span<const uint8_t> contents;
    const size_t length = element.NarrowText().size();
    if (!element.DecodeOctets(contents))
        Find(Grade::error, "not a narrow text; a restore takes its encoded bytes for one");
    else if (std::any_of(contents.begin() + static_cast<std::ptrdiff_t>(length), contents.end(),
                         [](uint8_t octet) { return octet != 0; }))
        Find(Grade::error, "a text with more than a restore takes of it");
    else if (length + 1 != contents.size())
        Find(Grade::warning, "a text that doesn't end with its one terminating zero");
}

void CFormCheck::Integer(const CDerSequenceView& record, size_t item, const char* name)
{
    std::span<const uint8_t> contents;
    if (!EnterItem(record, item, name).DecodeInteger(contents))
        Find(Grade::error, "not an integer; a restore reads 0");
    else if (contents.empty() || contents.size() > 4)
        Find(Grade::error,
             "an integer of " + countText(contents.size(), "byte") + "; a restore reads 0");
    LeaveItem();
}

bool CFormCheck::File(const CDerSequenceView& pair)
{
    Count(pair);
    Text(pair, 0, TextForm::wide, "name");
    std::span<const uint8_t> contents;
    const bool named = !pair[0].WideText().empty();
    if (pair.Count() > 1 && !pair[1].DecodeOctets(contents))
        Find(Grade::error, "its content isn't an octet string; a restore writes the encoded bytes");
    if (!named)
        Find(Grade::error, "no name; a restore writes no file");
    return named;
}

void CFormCheck::Link(const CDerSequenceView& record, TextForm form)
{
    if (record.Count() != 5 && record.Count() != 6) {
        Find(Grade::error, countText(record.Count(), "element") + "; a restore drops the record");
        return;
    }
    Text(record, 0, form, "name");
    Text(record, 1, form, "target");
    Text(record, 2, form, "manifest");
    Integer(record, 3, "profile");
    Text(record, 4, form, "manifestid");
    if (record.Count() == 6) {
        Integer(record, 5, "wocred");
        if (record[5].Integer() > 1)
            Find(Grade::error, "wocred is neither 0 nor 1; a restore reads 0");
    } else if (form == TextForm::wide) {
        Find(Grade::note, "no wocred, as in an earlier version; a restore reads 0");
    }
}

void CFormCheck::Category(const CDerSequenceView& pair)
{
    Count(pair);
    if (pair.Count() > 0)
        Text(pair, 0, TextForm::wide, "name");
    if (pair.Count() > 1)
        Text(pair, 1, TextForm::wide, "text");
}

void CFormCheck::Settings(const CDerSequenceView& items)
{
    switch (settingsFormOf(items.Count())) {
    case SettingsForm::document:
        Text(items, 0, TextForm::octets, "document");
        if (items[0].NarrowText().empty())
            Find(Grade::error, "an empty document; a restore leaves the settings as they are");
        break;
    case SettingsForm::legacy:
        Integer(items, 0, "prompt");
        Text(items, 1, TextForm::wide, "hot key");
        Find(Grade::note,
             countText(items.Count(), "element") + " without a document, as in an earlier version");
        break;
    default:
        Find(Grade::error, "no elements; a restore leaves the settings as they are");
    }
}
