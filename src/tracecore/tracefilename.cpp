#include "tracecore/tracefilename.h"

#include "common/module.h"
#include "common/osversion.h"
#include "formats/text/pathpart.h"
#include "tracecore/tracer.h"

#include <atomic>
#include <cwchar>

namespace tracecore {

namespace {

constexpr wchar_t separators[] = L"\\/";

std::wstring trimBlanks(const std::wstring& text)
{
    const size_t first = text.find_first_not_of(L' ');
    if (first == std::wstring::npos)
        return {};
    return text.substr(first, text.find_last_not_of(L' ') - first + 1);
}

// The name may be a short one, as a component can be registered by it.
std::wstring longModuleName(HMODULE module)
{
    const std::wstring path = moduleFileName(module);
    wchar_t full[MAX_PATH] = {};
    const DWORD length = GetLongPathNameW(path.c_str(), full, MAX_PATH);
    return length && length < MAX_PATH ? std::wstring(full, length) : path;
}

std::wstring lastComponent(const std::wstring& path)
{
    return path.substr(folderPart(path).size());
}

// The runtime's own lower case knows letters of ASCII alone.
std::wstring lowerCase(std::wstring text)
{
    const auto length = static_cast<int>(text.size());
    LCMapStringEx(LOCALE_NAME_INVARIANT, LCMAP_LOWERCASE, text.data(), length, text.data(), length,
                  nullptr, nullptr, 0);
    return text;
}

void makeFolders(const std::wstring& folder)
{
    // Failures are ignored here: a folder that is missing shows when the file is opened.
    for (size_t end = folder.find_first_of(separators, 1); end != std::wstring::npos;
         end = folder.find_first_of(separators, end + 1))
        CreateDirectoryW(folder.substr(0, end).c_str(), nullptr);
    CreateDirectoryW(folder.c_str(), nullptr);
}

// All separators become the one that comes first.
void unifySeparators(std::wstring& path)
{
    const size_t first = path.find_first_of(separators);
    if (first == std::wstring::npos)
        return;
    const wchar_t wanted = path[first];
    for (wchar_t& c : path) {
        if (c == L'\\' || c == L'/')
            c = wanted;
    }
}

DWORD readSessionId() noexcept
{
    const osVersion_t& version = osVersionAtStart();
    const HMODULE kernel = GetModuleHandleW(L"kernel32.dll");
    if (!kernel || !version.isNt() || !version.atLeast(5, 1))
        return 0;
    const auto function = reinterpret_cast<BOOL(WINAPI*)(DWORD, DWORD*)>(
        reinterpret_cast<void*>(GetProcAddress(kernel, "ProcessIdToSessionId")));
    DWORD session = 0;
    return function && function(GetCurrentProcessId(), &session) ? session : 0;
}

DWORD sessionId() noexcept
{
    constexpr int64_t unknown = -1;
    static std::atomic<int64_t> known{unknown};
    int64_t session = known;
    if (session == unknown)
        known = session = readSessionId();
    return static_cast<DWORD>(session);
}

std::wstring timeStamp()
{
    SYSTEMTIME now;
    GetLocalTime(&now);
    const std::wstring date = formatWide(L"%02d.%02d.%02d", now.wMonth, now.wDay, now.wYear % 100);
    const std::wstring time =
        formatWide(L"%02d.%02d.%02d.%03d", now.wHour, now.wMinute, now.wSecond, now.wMilliseconds);
    return formatWide(L"%ls%ls%ls", date.c_str(), L"_at_", time.c_str());
}

} // namespace

std::wstring baseNameOf(const std::wstring& path)
{
    std::wstring name = lastComponent(path);
    const size_t dot = name.rfind(L'.');
    if (dot != std::wstring::npos && dot + 1 != name.size())
        name.erase(dot);
    return name;
}

std::wstring composeTraceFileName(HMODULE module, bool newFileAlways, bool ie1, bool noTimestamp,
                                  const std::wstring& fileName, const std::wstring& tracePath)
{
    std::wstring given = trimBlanks(fileName);
    if (!given.empty())
        return given;

    const std::wstring exe = baseNameOf(longModuleName(nullptr));
    const std::wstring modulePath = longModuleName(module);
    const std::wstring dll = lowerCase(lastComponent(modulePath));

    bool stamped = newFileAlways;
    // The extension is gone by now, so only a name such as iexplore.exe.exe is meant. Intended.
    if (!ie1 && !_wcsicmp(exe.c_str(), L"iexplore.exe"))
        stamped = true;
    if (!noTimestamp)
        stamped = true;

    std::wstring folder = trimBlanks(tracePath);
    if (!folder.empty())
        makeFolders(folder);
    else
        folder = modulePath.substr(0, modulePath.size() - dll.size());
    if (folder.empty() || (folder.back() != L'\\' && folder.back() != L'/'))
        folder += L'\\';
    unifySeparators(folder);

    const std::wstring stamp = stamped ? formatWide(L"~~%s~~%d.%d", timeStamp().c_str(),
                                                    sessionId(), GetCurrentProcessId())
                                       : formatWide(L"%d.0", sessionId());
    return formatWide(L"%s%s%s%s.%s%s%hs", folder.c_str(), L"", exe.c_str(), L".x64", dll.c_str(),
                      stamp.c_str(), ".trc3");
}

} // namespace tracecore
