#include "common/text.h"

#include <windows.h>

#include <limits>
#include <new>

namespace {

// converted runs a conversion call twice, for the size and for the text: convert(length, out, size)
// gives the number of characters, 0 when it fails. A text is never handed on half converted.
template <class Out, class Convert> Out converted(size_t length, const Convert& convert)
{
    if (length == 0)
        return {};
    if (length > std::numeric_limits<int>::max())
        throw std::bad_alloc();
    const int size = convert(static_cast<int>(length), nullptr, 0);
    Out out(static_cast<size_t>(size), 0);
    if (size == 0 || convert(static_cast<int>(length), out.data(), size) != size)
        throw std::bad_alloc();
    return out;
}

std::wstring wideFrom(UINT codePage, std::string_view text)
{
    return converted<std::wstring>(text.size(), [&](int length, wchar_t* out, int size) {
        return MultiByteToWideChar(codePage, 0, text.data(), length, out, size);
    });
}

} // namespace

std::string utf8FromWide(std::wstring_view text)
{
    return converted<std::string>(text.size(), [&](int length, char* out, int size) {
        return WideCharToMultiByte(CP_UTF8, 0, text.data(), length, out, size, nullptr, nullptr);
    });
}

std::wstring wideFromUtf8(std::string_view text)
{
    return wideFrom(CP_UTF8, text);
}

std::wstring wideFromAnsi(std::string_view text)
{
    return wideFrom(CP_ACP, text);
}
