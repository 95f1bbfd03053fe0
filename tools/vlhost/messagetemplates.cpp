#include "messagetemplates.h"

#include <algorithm>
#include <cctype>
#include <set>

namespace {

constexpr size_t shortestText = 4; // shorter ones are chance, and say nothing
constexpr size_t keySize = 2;
constexpr char gap[] = "<...>";

bool isText(uint8_t c)
{
    return (c >= 0x20 && c < 0x7F) || c == '\t' || c == '\r' || c == '\n';
}

// textsIn gives the texts of a module that end in a zero, step bytes to a character.
void textsIn(std::span<const uint8_t> module, size_t step, std::set<std::string>& texts)
{
    std::string text;
    for (size_t i = 0; i + step <= module.size(); i += step) {
        const bool plain = step == 1 || module[i + 1] == 0;
        if (plain && isText(module[i])) {
            text += static_cast<char>(module[i]);
            continue;
        }
        if (plain && module[i] == 0 && text.size() >= shortestText)
            texts.insert(text);
        text.clear();
    }
}

bool isNumber(std::string_view value)
{
    return !value.empty() && std::ranges::all_of(value, [](unsigned char c) {
        return std::isxdigit(c) || c == '-' || c == ' ';
    });
}

// sizeOfPlace gives the length of a place for a value, as printf has it; 0 for none.
size_t sizeOfPlace(std::string_view text, bool& number)
{
    const size_t kind = text.find_first_not_of("0123456789+-#. *hlLIzjtw", 1);
    if (kind == text.npos || std::string_view("diouxXcCsSp").find(text[kind]) == text.npos)
        return 0;
    number = std::string_view("cCsS").find(text[kind]) == text.npos;
    return kind + 1;
}

} // namespace

CMessageTemplates::CMessageTemplates(std::span<const uint8_t> module)
{
    std::set<std::string> texts;
    textsIn(module, 1, texts);
    textsIn(module, 2, texts);
    for (const std::string& text : texts)
        Add(text);
}

void CMessageTemplates::Add(std::string_view text)
{
    template_t made;
    std::string part;
    while (!text.empty()) {
        bool number = false;
        const size_t place = text[0] == '%' ? sizeOfPlace(text, number) : 0;
        if (place > 0) {
            made.parts.push_back(std::move(part));
            made.numbers.push_back(number);
            part.clear();
        } else {
            part += text[0];
        }
        text.remove_prefix(std::max<size_t>(place, text.starts_with("%%") ? 2 : 1));
    }
    made.parts.push_back(std::move(part));
    for (const std::string& one : made.parts)
        made.size += one.size();
    const std::string& first = made.parts.front();
    if (made.size < shortestText)
        return;
    m_templates.emplace(first.substr(0, keySize), made);
    if (made.parts.size() == 1) { // it may be put in front of something
        made.parts.emplace_back();
        made.numbers.push_back(false);
        m_templates.emplace(first.substr(0, keySize), std::move(made));
    }
}

bool CMessageTemplates::Fill(const template_t& candidate, std::string_view message,
                             std::string& filled)
{
    const std::vector<std::string>& parts = candidate.parts;
    if (!message.starts_with(parts.front()))
        return false;
    filled = parts.front();
    message.remove_prefix(parts.front().size());
    for (size_t i = 1; i < parts.size(); ++i) {
        const bool last = i + 1 == parts.size();
        if (last && !message.ends_with(parts[i]))
            return false;
        const size_t at = last ? message.size() - parts[i].size() : message.find(parts[i]);
        if (at == message.npos)
            return false;
        const std::string_view value = message.substr(0, at);
        filled += candidate.numbers[i - 1] && isNumber(value) ? std::string(value) : gap;
        filled += parts[i];
        message.remove_prefix(at + parts[i].size());
    }
    return message.empty();
}

std::string CMessageTemplates::Redact(const std::string& message) const
{
    std::string best = gap;
    size_t size = 0;
    for (size_t length = 0; length <= keySize; ++length) {
        const auto [begin, end] = m_templates.equal_range(message.substr(0, length));
        for (auto at = begin; at != end; ++at) {
            std::string filled;
            const size_t worth = at->second.size * 2 + (at->second.parts.size() == 1 ? 1 : 0);
            if (worth > size && Fill(at->second, message, filled)) {
                best = std::move(filled);
                size = worth;
            }
        }
        if (length == message.size())
            break;
    }
    return best;
}
