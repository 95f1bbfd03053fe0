#include "common/osversion.h"
#include "common/scoped.h"
#include "formats/backup/storedmark.h"
#include "storage/paths.h"

#include <windows.h>
#include <shlwapi.h>

#include <algorithm>
#include <cwchar>
#include <cwctype>
#include <new>
#include <string_view>

namespace {

constexpr std::wstring_view longprefix = LR"(\\?\)";
constexpr wchar_t separators[] = LR"(\/)";
constexpr size_t longformLength = 249;

bool isseparator(wchar_t c) noexcept
{
    return c == L'\\' || c == L'/';
}

// A level that is there already is no failure, nor is the server of a network path, which can't be
// made.
bool makelevel(const std::wstring& level)
{
    if (CreateDirectoryW(longform(level).c_str(), nullptr))
        return true;
    const DWORD error = GetLastError();
    if (error == ERROR_ALREADY_EXISTS)
        return true;
    const bool isServer = error == ERROR_BAD_PATHNAME && PathIsUNCServerW(level.c_str());
    SetLastError(error);
    return isServer;
}

bool replacefirst(std::wstring& path, const std::wstring& value, const wchar_t* reference)
{
    const size_t at = path.find(value);
    if (at == std::wstring::npos)
        return false;
    path.replace(at, value.size(), reference);
    return true;
}

} // namespace

std::wstring addslash(const std::wstring& path)
{
    return path.empty() || isseparator(path.back()) ? path : path + L'\\';
}

std::wstring unifyslashes(const std::wstring& path)
{
    const size_t first = path.find_first_of(separators);
    if (first == std::wstring::npos)
        return path;
    std::wstring unified = path;
    std::replace_if(unified.begin(), unified.end(), isseparator, path[first]);
    return unified;
}

std::wstring lowerpath(const std::wstring& path)
{
    std::wstring lower = path;
    for (wchar_t& c : lower)
        c = static_cast<wchar_t>(std::towlower(c));
    return lower;
}

std::wstring expandenv(const std::wstring& text)
{
    if (text.empty())
        return {};
    const DWORD size = ExpandEnvironmentStringsW(text.c_str(), nullptr, 0);
    if (size == 0)
        return {};
    try {
        std::wstring expanded(size_t{size} + 1, L'\0');
        // The environment may have grown in between.
        if (ExpandEnvironmentStringsW(text.c_str(), expanded.data(), size) > size)
            return {};
        expanded.resize(std::wcslen(expanded.c_str()));
        return expanded;
    } catch (const std::bad_alloc&) {
        return {};
    }
}

std::wstring collapseenv(const std::wstring& path)
{
    // An unset variable is an empty text, which is found at the front of every path. Intended.
    std::wstring collapsed = path;
    if (!replacefirst(collapsed, envvalue(L"appdata"), L"%appdata%"))
        replacefirst(collapsed, envvalue(L"localappdata"), L"%localappdata%");
    return collapsed;
}

std::wstring longform(const std::wstring& path)
{
    if (path.size() < longformLength || path.starts_with(longprefix) || !osVersionAtStart().isNt())
        return path;
    return std::wstring(longprefix) + path;
}

bool hasalienmark(const std::wstring& text)
{
    return text.starts_with(storedMark<wchar_t>);
}

std::wstring stripalienmark(const std::wstring& text, bool& hadMark)
{
    hadMark = hasalienmark(text);
    return hadMark ? text.substr(storedMark<wchar_t>.size()) : text;
}

bool direxists(const std::wstring& path)
{
    WIN32_FIND_DATAW entry;
    const CSearchHandle search(FindFirstFileW((addslash(path) + L'*').c_str(), &entry));
    return static_cast<bool>(search);
}

bool fileexists(const std::wstring& path)
{
    WIN32_FIND_DATAW entry;
    const CSearchHandle search(FindFirstFileW(path.c_str(), &entry));
    return search && !(entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY);
}

bool makedirs(const std::wstring& path)
{
    const std::wstring whole = path.starts_with(longprefix) ? path.substr(longprefix.size()) : path;
    for (size_t at = whole.find_first_of(separators); at != std::wstring::npos;
         at = whole.find_first_of(separators, at + 1)) {
        const std::wstring level = whole.substr(0, at);
        if (!level.empty() && !direxists(level) && !makelevel(level))
            return false;
    }
    // An empty path is no folder to make, though a search for everything would look into the
    // current one.
    if (!whole.empty() && direxists(whole))
        return true;
    return CreateDirectoryW(longform(whole).c_str(), nullptr) != FALSE;
}
