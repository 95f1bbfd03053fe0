#include "common/systemtext.h"
#include "formats/trace/levels.h"
#include "tracecore/sinks.h"
#include "tracecore/tracer.h"

#include <cwchar>
#include <cwctype>

namespace tracecore {

namespace {

constexpr WORD plainColour = 7;
constexpr WORD errorColour = 12;
constexpr size_t directiveLength = 7; // as in '`I04`'

// Reads the colour directive at the front of a text; false for a text without one or with a colour
// above 15. What isn't two hexadecimal digits is no colour: read as a number it would be black.
bool readColour(const std::wstring& text, WORD& colour)
{
    if (text.size() < directiveLength || text.compare(0, 3, L"'`I") != 0)
        return false;
    if (!std::iswxdigit(text[3]) || !std::iswxdigit(text[4]))
        return false;
    const unsigned long value = std::wcstoul(text.substr(3, 2).c_str(), nullptr, 16);
    if (value > 15)
        return false;
    colour = static_cast<WORD>(value);
    return true;
}

// What a line shows for the text of an error record, "code message".
std::wstring shownStatus(const std::wstring& text)
{
    const size_t blank = text.find(L' ');
    if (blank == std::wstring::npos)
        return {};
    const std::wstring code = text.substr(0, blank);
    const auto status = static_cast<DWORD>(std::wcstoll(code.c_str(), nullptr, 10));
    std::wstring message = text.substr(blank + 1);
    if (status == 0)
        return message;
    const std::wstring known = systemText(status, 0x400);
    if (known.empty())
        return formatWide(L"%08X", status); // the message is dropped here. Intended.
    return known + L' ' + message;
}

} // namespace

void outputStorageWindow_t::write(char level, const std::wstring& text, const std::string& function)
{
    if (level == levelTime) {
        timeText = text;
        return;
    }
    const bool status = isOfUse(level, levelUse_t::status);
    if (!status && !isOfUse(level, levelUse_t::message))
        return;
    prepare();
    std::wstring shown;
    bool coloured = false;
    WORD colour = errorColour;
    if (console && status) {
        coloured = true;
    } else if (console && readColour(text, colour)) {
        coloured = true;
        shown = text.substr(directiveLength);
    }
    if (coloured)
        SetConsoleTextAttribute(console, colour);
    if (status)
        shown = shownStatus(text);
    emit(formatWide(L"0x%x %s %S() %s%s\n", GetCurrentThreadId(), timeText.c_str(),
                    function.c_str(), status ? L"*ERR* " : L"",
                    (shown.empty() ? text : shown).c_str()));
    if (coloured)
        SetConsoleTextAttribute(console, plainColour);
}

void outputStorageIDE_t::emit(const std::wstring& line)
{
    OutputDebugStringW(line.c_str());
}

} // namespace tracecore
