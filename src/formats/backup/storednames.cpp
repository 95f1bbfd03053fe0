#include "formats/backup/storednames.h"

#include "formats/text/unicode.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

namespace {

constexpr size_t longestName = 255; // of a part, in UTF-16 units

// capitals_t are capital letters and where their small ones are: all further on by the same number,
// or, where both lie side by side, each after its capital, which is even or odd.
struct capitals_t {
    enum : int16_t { even = -1, odd = -2 }; // which no distance is

    char16_t first;
    char16_t last;
    int16_t distance;
};

constexpr capitals_t capitals[] = {
    {'A', 'Z', 32},
    {0xC0, 0xD6, 32},
    {0xD8, 0xDE, 32},
    {0x100, 0x12F, capitals_t::even},
    {0x132, 0x137, capitals_t::even},
    {0x139, 0x148, capitals_t::odd},
    {0x14A, 0x177, capitals_t::even},
    {0x178, 0x178, -121},
    {0x179, 0x17E, capitals_t::odd},
    {0x181, 0x181, 210}, // Hausa's and Azerbaijani's
    {0x18A, 0x18A, 205},
    {0x18F, 0x18F, 202},
    {0x198, 0x199, capitals_t::even},
    {0x1A0, 0x1A5, capitals_t::even},
    {0x1AF, 0x1B0, capitals_t::odd},
    {0x1B3, 0x1B4, capitals_t::odd},
    {0x1CD, 0x1DC, capitals_t::odd},
    {0x1DE, 0x1EF, capitals_t::even},
    {0x1F4, 0x1F5, capitals_t::even},
    {0x1F8, 0x21F, capitals_t::even},
    {0x222, 0x233, capitals_t::even},
    {0x386, 0x386, 38},
    {0x388, 0x38A, 37},
    {0x38C, 0x38C, 64},
    {0x38E, 0x38F, 63},
    {0x391, 0x3A1, 32},
    {0x3A3, 0x3AB, 32},
    {0x400, 0x40F, 80},
    {0x410, 0x42F, 32},
    {0x460, 0x481, capitals_t::even},
    {0x48A, 0x4BF, capitals_t::even},
    {0x4C0, 0x4C0, 15},
    {0x4C1, 0x4CE, capitals_t::odd},
    {0x4D0, 0x52F, capitals_t::even},
    {0x531, 0x556, 48},
    {0x1E00, 0x1E95, capitals_t::even},
    {0x1EA0, 0x1EFF, capitals_t::even},
    {0xFF21, 0xFF3A, 32},
};

char16_t folded(char16_t c) noexcept
{
    const auto* const range = std::find_if(std::begin(capitals), std::end(capitals),
                                           [c](const capitals_t& one) { return c <= one.last; });
    if (range == std::end(capitals) || c < range->first)
        return c;
    switch (range->distance) {
    case capitals_t::even:
        return static_cast<char16_t>(c | 1);
    case capitals_t::odd:
        return static_cast<char16_t>(c + (c & 1));
    default:
        return static_cast<char16_t>(c + range->distance);
    }
}

bool isLetter(char16_t c) noexcept
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

std::u16string_view trimmedEnd(std::u16string_view part) noexcept
{
    const size_t last = part.find_last_not_of(u" .");
    return part.substr(0, last == std::u16string_view::npos ? 0 : last + 1);
}

std::vector<std::u16string_view> partsOf(std::u16string_view path)
{
    std::vector<std::u16string_view> parts;
    for (size_t begin = 0; begin <= path.size();) {
        const size_t end = std::min(path.find(u'\\', begin), path.size());
        const std::u16string_view part = path.substr(begin, end - begin);
        begin = end + 1;
        if (part == u"..") {
            if (!parts.empty())
                parts.pop_back();
        } else if (!trimmedEnd(part).empty()) {
            parts.push_back(trimmedEnd(part));
        }
    }
    return parts;
}

// The names that stand for a device in every folder, whatever extension follows.
bool isDevice(std::u16string_view name)
{
    const std::u16string_view base = trimmedEnd(name.substr(0, name.find_first_of(u".:")));
    static constexpr std::array<std::u16string_view, 6> names{u"con", u"prn",    u"aux",
                                                              u"nul", u"conin$", u"conout$"};
    if (std::find(names.begin(), names.end(), base) != names.end())
        return true;
    return base.size() == 4 && (base.starts_with(u"com") || base.starts_with(u"lpt")) &&
           std::u16string_view(u"0123456789\u00B9\u00B2\u00B3").find(base[3]) !=
               std::u16string_view::npos;
}

// schemeOf gives the scheme of an address, lower-case, read as leniently as a browser does.
std::string schemeOf(const std::string& target)
{
    std::string scheme;
    for (size_t i = 0; i < target.size(); ++i) {
        const auto c = static_cast<unsigned char>(target[i]);
        if (c <= ' ')
            continue;
        if (c == ':') { // a number after a host is its port
            const bool host = scheme == "localhost" || scheme.find('.') != std::string::npos;
            return host && i + 1 < target.size() && target[i + 1] <= '9' ? std::string() : scheme;
        }
        const bool digit = c >= '0' && c <= '9';
        if (!isLetter(c) && (scheme.empty() || (!digit && c != '+' && c != '-' && c != '.')))
            return {};
        scheme += static_cast<char>(folded(c));
    }
    return {};
}

bool endsAsProgram(std::string_view lower)
{
    static constexpr std::array<std::string_view, 18> endings{
        ".bat", ".cmd", ".com", ".cpl", ".hta", ".jar", ".js",  ".jse", ".lnk",
        ".msc", ".msi", ".pif", ".ps1", ".reg", ".scr", ".url", ".vbs", ".wsf"};
    return std::any_of(endings.begin(), endings.end(),
                       [&](std::string_view ending) { return lower.ends_with(ending); });
}

} // namespace

std::u16string caseKey(const std::string& text)
{
    std::u16string out = utf16FromUtf8(text);
    std::transform(out.begin(), out.end(), out.begin(), folded);
    return out;
}

std::u16string pathKey(const std::string& path)
{
    std::u16string text = caseKey(path);
    std::replace(text.begin(), text.end(), u'/', u'\\');
    for (const std::u16string_view prefix : {u"\\\\?\\", u"\\\\.\\", u"\\??\\"})
        if (text.starts_with(prefix)) {
            text.erase(0, prefix.size());
            if (text.starts_with(u"unc\\"))
                text.replace(0, 3, u"\\");
            break;
        }
    std::u16string key;
    std::vector<std::u16string_view> parts;
    if (text.size() > 2 && isLetter(text[0]) && text[1] == u':' && text[2] == u'\\') {
        key = text.substr(0, 2);
        parts = partsOf(std::u16string_view(text).substr(2));
    } else if (text.starts_with(u"\\\\")) {
        key = u"\\";
        parts = partsOf(std::u16string_view(text).substr(1));
    }
    if (parts.empty() && key == u"\\")
        return {};
    for (const std::u16string_view part : parts)
        key.append(u"\\").append(part);
    return key;
}

std::u16string nameKey(const std::string& name)
{
    return std::u16string(trimmedEnd(caseKey(name)));
}

bool isBelow(std::u16string_view key, std::u16string_view folder) noexcept
{
    return !folder.empty() && key.size() > folder.size() && key.starts_with(folder) &&
           key[folder.size()] == u'\\';
}

bool isGuardedPlace(std::u16string_view key) noexcept
{
    if (key.size() < 4 || key[1] != u':')
        return false;
    const std::u16string_view rest = key.substr(3);
    const size_t end = rest.find(u'\\');
    if (end == std::u16string_view::npos)
        return false; // a file in the drive's own folder
    const std::u16string_view first = rest.substr(0, end);
    // With localised, older and short names.
    static constexpr std::array<std::u16string_view, 4> names{
        u"users", u"documents and settings", u"system volume information", u"boot"};
    static constexpr std::array<std::u16string_view, 7> beginnings{
        u"windows", u"winnt", u"program", u"progra~", u"docume~", u"system~", u"$"};
    return std::find(names.begin(), names.end(), first) != names.end() ||
           std::any_of(beginnings.begin(), beginnings.end(),
                       [&](std::u16string_view name) { return first.starts_with(name); });
}

const char* nameFault(const std::string& name)
{
    const std::u16string text = caseKey(name);
    if (isDevice(text))
        return "names a device";
    if (text.find(u':') != std::u16string::npos)
        return "names a stream of a file";
    if (std::any_of(text.begin(), text.end(), [](char16_t c) { return c < 0x20; }) ||
        text.find_first_of(u"<>\"|?*") != std::u16string::npos)
        return "has a character that no file name can have";
    if (trimmedEnd(text).size() != text.size())
        return "ends in a blank or a dot, which the file system drops";
    if (text.size() > longestName)
        return "is longer than a file name can be";
    return nullptr;
}

bool isDataFile(const std::string& name) noexcept
{
    return name == "updata.vls" || name == "updata_temp.vls";
}

const char* targetWarning(const std::string& target)
{
    std::string lower = target;
    std::transform(lower.begin(), lower.end(), lower.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    // What a restore takes for a program, whatever comes before it.
    if (lower.ends_with(".exe") || lower.find("iexplore.exe") != std::string::npos)
        return "opens a program";
    const std::string scheme = schemeOf(target);
    if (scheme == "http" || scheme == "https" || scheme == "ftp")
        return nullptr;
    if (scheme.size() > 1)
        return "is an address that is not one of the web";
    if (scheme.size() == 1 || lower.starts_with("\\\\"))
        return endsAsProgram(lower) ? "opens a program" : "opens a file";
    const bool host = lower.find('/') == std::string::npos && lower.find('\\') == std::string::npos;
    return endsAsProgram(lower) && !(host && lower.ends_with(".com")) ? "opens a program" : nullptr;
}
