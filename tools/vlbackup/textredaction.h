#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <unordered_map>

// CTextRedaction replaces the words of texts by others that say nothing, in place and unit by unit. Punctuation, blanks at
// ends and control characters stay, and so do the words that the format and its judgement know: extensions, the mark,
// drives, device names, folders of the system, schemes of addresses. Words that are equal except for case stay so, in all
// texts of one encoding.
class CTextRedaction
{
public:
    // units: UTF-16
    void Wide(std::span<uint8_t> units, bool highFirst);
    // text: UTF-8, or any bytes
    void Narrow(std::span<uint8_t> text);
    // document: JSON, or any bytes; the names of its known members, and what is no text, stay
    void Document(std::span<uint8_t> document);

private:
    template <class Units> void Words(const Units& units);
    template <class Units> void Word(const Units& units, size_t begin, size_t end);
    void String(std::span<uint8_t> text);
    std::string PlaceholderOf(const std::u16string& word, size_t length);

    std::unordered_map<size_t, uint32_t> m_numbers; // by the hash of a word and its length
    std::array<std::unordered_map<size_t, uint32_t>, 2> m_last; // given to words of a length
};
