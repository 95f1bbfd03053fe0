#include "common/text.h"

#include <windows.h>

namespace {

std::wstring wideFrom(UINT codePage, std::string_view text)
{
    const int length = static_cast<int>(text.size());
    const int size = MultiByteToWideChar(codePage, 0, text.data(), length, nullptr, 0);
    std::wstring wide(static_cast<size_t>(size), L'\0');
    MultiByteToWideChar(codePage, 0, text.data(), length, wide.data(), size);
    return wide;
}

} // namespace

std::string utf8FromWide(std::wstring_view text)
{
    const int length = static_cast<int>(text.size());
    const int size =
        WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    std::string utf8(static_cast<size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), length, utf8.data(), size, nullptr, nullptr);
    return utf8;
}

std::wstring wideFromUtf8(std::string_view text)
{
    return wideFrom(CP_UTF8, text);
}

std::wstring wideFromAnsi(std::string_view text)
{
    return wideFrom(CP_ACP, text);
}
