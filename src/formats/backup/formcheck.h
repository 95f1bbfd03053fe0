#pragma once

#include "formats/backup/finding.h"
#include "formats/backup/records.h"

#include <cstdint>
#include <span>
#include <string>
#include <utility>

// damageOf gives the finding for bytes that are not one sequence of elements: where they stop being one.
BackupFinding damageOf(std::span<const uint8_t> backup);

// CFormCheck adds a finding for each part of one element of a backup that doesn't have the form in which an export writes
// it. What a restore makes of that part is what records.h decodes.
class CFormCheck
{
public:
    // backup: the bytes that all elements are views of
    // name:   of the element, for the findings
    CFormCheck(FindingSink sink, std::span<const uint8_t> backup, size_t position,
               const char* name);

    // List and Entry enter the element, or one of its entries. False, with items empty, if it is no sequence.
    bool List(const CDerElement& element, CDerSequenceView& items);
    bool Entry(const CDerSequenceView& list, size_t index, CDerSequenceView& items);

    // These check what was entered. File is false for one without a name, which a restore passes over.
    bool File(const CDerSequenceView& pair);
    void Link(const CDerSequenceView& record, TextForm form);
    void Category(const CDerSequenceView& pair);
    void Settings(const CDerSequenceView& items);

private:
    using Grade = BackupFinding::Grade;

    bool Sequence(const CDerElement& element, CDerSequenceView& items);
    void Count(const CDerSequenceView& pair);
    void Text(const CDerSequenceView& record, size_t item, TextForm form, const char* name);
    void Wide(const CDerElement& element);
    void Narrow(const CDerElement& element);
    void Integer(const CDerSequenceView& record, size_t item, const char* name);
    // EnterItem makes an item the place of the findings until LeaveItem. A missing one has the offset of its entry.
    CDerElement EnterItem(const CDerSequenceView& record, size_t item, const char* name);
    void LeaveItem() noexcept { m_item = nullptr; }
    size_t OffsetOf(const CDerElement& element, size_t missing) const noexcept;
    void Find(Grade grade, const std::string& what);

    FindingSink m_sink;
    const uint8_t* m_begin;
    const char* m_name;
    BackupPlace m_place;
    const char* m_item = nullptr; // its name, while one is checked
    size_t m_itemPosition = 0;
    size_t m_itemOffset = 0;
};
