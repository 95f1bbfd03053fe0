#include "textredaction.h"

#include "formats/backup/documentsettings.h"
#include "formats/backup/storednames.h"
#include "formats/text/unicode.h"

#include <algorithm>
#include <string_view>

namespace {

// Units of a text in its bytes.
struct WideUnits {
    std::span<uint8_t> bytes;
    bool highFirst;

    size_t size() const { return bytes.size() / 2; }
    char16_t get(size_t i) const
    {
        return static_cast<char16_t>(bytes[2 * i + !highFirst] << 8 | bytes[2 * i + highFirst]);
    }
    void set(size_t i, char c) const
    {
        bytes[2 * i + highFirst] = static_cast<uint8_t>(c);
        bytes[2 * i + !highFirst] = 0;
    }
};
struct NarrowUnits {
    std::span<uint8_t> bytes;

    size_t size() const { return bytes.size(); }
    char16_t get(size_t i) const { return bytes[i]; }
    void set(size_t i, char c) const { bytes[i] = static_cast<uint8_t>(c); }
};

std::u16string wordOf(const WideUnits& units, size_t begin, size_t end)
{
    std::u16string word;
    for (size_t i = begin; i < end; ++i)
        word += units.get(i);
    return word;
}

std::u16string wordOf(const NarrowUnits& units, size_t begin, size_t end)
{
    return utf16FromUtf8({reinterpret_cast<const char*>(units.bytes.data()) + begin, end - begin});
}

bool isDigit(char16_t c)
{
    return c >= '0' && c <= '9';
}

bool isLetter(char16_t c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

// A byte of UTF-8 from 80 to 9F is no control character.
bool steers(const WideUnits& /*units*/, char16_t c)
{
    return isSteering(c);
}
bool steers(const NarrowUnits& /*units*/, char16_t /*c*/)
{
    return false;
}

template <class Units> bool isOfWord(const Units& units, size_t i)
{
    const char16_t c = units.get(i);
    return isLetter(c) || isDigit(c) || c == '_' || c == ' ' || (c >= 0x80 && !steers(units, c));
}

// Words that stay; small letters.
bool stays(const std::u16string& key)
{
    static constexpr std::u16string_view words[] = {
        u"alien",         u"updata",     u"updata_temp", u"vlm",
        u"vls",           u"vlmx",       u"unc",         u"http",
        u"https",         u"ftp",        u"mailto",      u"file",
        u"data",          u"javascript", u"vbscript",    u"localhost",
        u"exe",           u"com",        u"bat",         u"cmd",
        u"lnk",           u"js",         u"vbs",         u"msi",
        u"scr",           u"con",        u"prn",         u"aux",
        u"nul",           u"windows",    u"system32",    u"users",
        u"program files", u"x86",        u"programdata", u"documents and settings",
        u"ctrl",          u"alt",        u"shift",       u"win"};
    const auto isNumbered = [&](std::u16string_view device) { // com1, lpt1
        return key.size() == 4 && key.starts_with(device);
    };
    return std::find(std::begin(words), std::end(words), key) != std::end(words) ||
           isNumbered(u"com") || isNumbered(u"lpt");
}

} // namespace

std::string CTextRedaction::PlaceholderOf(const std::u16string& word, size_t length)
{
    const bool digits = std::all_of(word.begin(), word.end(), isDigit);
    // Letters that make no word and no device's name; the filler is none of them.
    const std::string_view alphabet = digits ? "012345678" : "bcdfghjklmnqrstvwz";
    std::string text(length, digits ? '9' : 'x');
    const size_t hash = std::hash<std::u16string>()(word) + 31 * length;
    const auto [known, isNew] = m_numbers.try_emplace(hash, 0);
    if (isNew)
        known->second = m_last.at(digits)[length]++;
    uint32_t number = known->second;
    for (size_t i = length; i-- > 0; number /= static_cast<uint32_t>(alphabet.size())) {
        text[i] = alphabet[number % alphabet.size()];
        if (number < alphabet.size())
            break;
    }
    return text;
}

template <class Units> void CTextRedaction::Word(const Units& units, size_t begin, size_t end)
{
    const auto at = [&](size_t i) { return i < units.size() ? units.get(i) : u'\0'; };
    const bool drive = end - begin == 1 && isLetter(at(begin)) && at(end) == ':' &&
                       (at(end + 1) == '\\' || at(end + 1) == '/');
    const std::u16string word = utf16FromUtf8(utf8FromUtf16(wordOf(units, begin, end)));
    const std::u16string key = caseKey(utf8FromUtf16(word));
    if (drive || stays(key))
        return;
    const std::string placeholder = PlaceholderOf(key, end - begin);
    for (size_t i = begin; i < end; ++i)
        units.set(i, placeholder[i - begin]);
}

template <class Units> void CTextRedaction::Words(const Units& units)
{
    for (size_t begin = 0; begin < units.size(); ++begin) {
        if (!isOfWord(units, begin) || units.get(begin) == ' ')
            continue;
        size_t end = begin;
        while (end < units.size() && isOfWord(units, end))
            ++end;
        size_t last = end;
        while (units.get(last - 1) == ' ')
            --last;
        Word(units, begin, last);
        begin = end - 1;
    }
}

void CTextRedaction::Wide(std::span<uint8_t> units, bool highFirst)
{
    Words(WideUnits{units, highFirst});
    if (units.size() % 2 != 0)
        units.back() = 'x';
}

void CTextRedaction::Narrow(std::span<uint8_t> text)
{
    Words(NarrowUnits{text});
}

// text: between the quotes. What an escape stands for is replaced, too, unless it is a control character.
void CTextRedaction::String(std::span<uint8_t> text)
{
    const std::string_view name(reinterpret_cast<const char*>(text.data()), text.size());
    if (name == "settings" || name == "current" ||
        std::any_of(std::begin(documentSettings), std::end(documentSettings),
                    [&](const DocumentSetting& setting) { return setting.name == name; }))
        return;
    size_t begin = 0;
    while (begin < text.size()) {
        const auto escape =
            std::find(text.begin() + static_cast<std::ptrdiff_t>(begin), text.end(), '\\');
        const auto end = static_cast<size_t>(escape - text.begin());
        Narrow(text.subspan(begin, end - begin));
        begin = std::min(end + 2, text.size());
        if (begin == end + 2 && text[end + 1] == 'u') {
            constexpr std::string_view letter = "0078";
            const auto code = text.subspan(begin, std::min<size_t>(4, text.size() - begin));
            const bool control = code.size() == 4 &&
                                 std::equal(code.begin(), code.begin() + 2, letter.begin()) &&
                                 code[2] < '2';
            if (!control)
                std::copy_n(letter.begin(), code.size(), code.begin());
            begin += code.size();
        }
    }
}

void CTextRedaction::Document(std::span<uint8_t> document)
{
    const NarrowUnits units{document};
    for (size_t i = 0; i < document.size(); ++i) {
        const size_t begin = i;
        if (document[i] == '"') {
            while (++i < document.size() && document[i] != '"')
                i += document[i] == '\\';
            i = std::min(i, document.size());
            String(document.subspan(begin + 1, i - begin - 1));
            continue;
        }
        while (i < document.size() && isOfWord(units, i) && document[i] != ' ')
            ++i;
        if (i == begin)
            continue;
        const auto token = document.subspan(begin, i-- - begin);
        const std::string_view text(reinterpret_cast<const char*>(token.data()), token.size());
        if (text == "true" || text == "false" || text == "null")
            continue;
        const bool number = isDigit(token[0]);
        for (uint8_t& c : token)
            c = isDigit(c) ? '1' : number && (c == 'e' || c == 'E') ? c : 'x';
    }
}
