#pragma once

#include "formats/backup/finding.h"
#include "formats/backup/records.h"

#include <cstdint>
#include <span>
#include <string>
#include <utility>

// damageText says where bytes stop being one sequence of elements; they are not one.
std::string damageText(std::span<const uint8_t> backup);

// CFormCheck adds a finding for each part of an element that doesn't have the form in which an
// export writes it. What a restore makes of that part is what records.h decodes.
class CFormCheck
{
public:
    explicit CFormCheck(FindingSink sink) : m_sink(std::move(sink)) {}

    // Sequence is false, with items empty, if the element is none.
    bool Sequence(const CDerElement& element, const std::string& where, CDerSequenceView& items);

    void File(const CDerSequenceView& pair, const std::string& where);
    void Link(const CDerSequenceView& record, TextForm form, const std::string& where);
    void Category(const CDerSequenceView& pair, const std::string& where);
    void Settings(const CDerSequenceView& items);

private:
    using Grade = BackupFinding::Grade;

    void Find(Grade grade, const std::string& where, const std::string& what);
    void Count(const CDerSequenceView& pair, const std::string& where);
    void Text(const CDerElement& element, TextForm form, const std::string& where);
    void Wide(const CDerElement& element, const std::string& where);
    void Narrow(const CDerElement& element, const std::string& where);
    void Integer(const CDerElement& element, const std::string& where);

    FindingSink m_sink;
};
