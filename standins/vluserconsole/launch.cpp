#include "vluserconsole/launch.h"

#include "common/scoped.h"
#include "common/text.h"
#include "journal/journal.h"

#include <windows.h>
#include <shellapi.h>

#include <iterator>

namespace {

std::wstring environment(const wchar_t* name)
{
    std::wstring value(GetEnvironmentVariableW(name, nullptr, 0), L'\0');
    if (!value.empty())
        value.resize(GetEnvironmentVariableW(name, value.data(), static_cast<DWORD>(value.size())));
    return value;
}

std::wstring fullPath(const std::wstring& path)
{
    wchar_t full[1024] = {};
    const DWORD length =
        GetFullPathNameW(path.c_str(), static_cast<DWORD>(std::size(full)), full, nullptr);
    return length < std::size(full) ? std::wstring(full, length) : path;
}

void splitTarget(launch_t& launch)
{
    const size_t last = launch.target.rfind(L':');
    const size_t first = last == std::wstring::npos || last == 0
                             ? std::wstring::npos
                             : launch.target.rfind(L':', last - 1);
    if (first == std::wstring::npos)
        return;
    launch.plugin = launch.target.substr(0, first);
    launch.page = launch.target.substr(first + 1, last - first - 1);
    launch.item = launch.target.substr(last + 1);
}

void readArguments(launch_t& launch)
{
    int count = 0;
    const CLocalMemory block(CommandLineToArgvW(launch.commandLine.c_str(), &count));
    const auto* const values = static_cast<wchar_t* const*>(block.get());
    for (int i = 1; values && i < count; ++i)
        launch.arguments.emplace_back(values[i]);
    for (size_t i = 0; i < launch.arguments.size(); ++i) {
        const std::wstring& argument = launch.arguments[i];
        if (argument == L"--no-window") {
            launch.window = false;
        } else if (argument == L"--log") {
            if (i + 1 == launch.arguments.size())
                launch.complaint = L"--log needs the name of a file after it";
            else
                launch.log = launch.arguments[++i];
        } else if (argument.starts_with(L"--")) {
            launch.complaint =
                L"unknown option " + argument + L": there are --log FILE and --no-window";
        } else if (launch.target.empty()) {
            launch.target = argument;
        } else {
            launch.complaint = L"more than one target: " + argument;
        }
    }
}

std::string logLine(const launch_t& launch)
{
    return journalLine_t()
        .number("process", GetCurrentProcessId())
        .texts("arguments", launch.arguments)
        .text("plugin", utf8FromWide(launch.plugin))
        .text("page", utf8FromWide(launch.page))
        .text("item", utf8FromWide(launch.item))
        .flag("window", launch.window)
        .finished();
}

void makeFolders(const std::wstring& file)
{
    for (size_t slash = file.find(L'\\'); slash != std::wstring::npos;
         slash = file.find(L'\\', slash + 1))
        CreateDirectoryW(file.substr(0, slash).c_str(), nullptr); // most are there already
}

} // namespace

launch_t readLaunch()
{
    launch_t launch;
    launch.commandLine = GetCommandLineW();
    launch.log = environment(L"VLUSERCONSOLE_LOG");
    launch.window = environment(L"VLUSERCONSOLE_NO_WINDOW").empty();
    readArguments(launch);
    splitTarget(launch);
    if (launch.log.empty())
        launch.log = environment(L"LOCALAPPDATA") + L"\\Veltrano\\KRS\\VLUserConsole.log";
    launch.log = fullPath(launch.log);
    return launch;
}

unsigned long writeLog(const launch_t& launch)
{
    makeFolders(launch.log);
    // Append access alone: two consoles at a time each write their line whole.
    const CFileHandle file(CreateFileW(launch.log.c_str(), FILE_APPEND_DATA,
                                       FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_ALWAYS,
                                       FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file)
        return GetLastError();
    const std::string line = logLine(launch);
    DWORD written = 0;
    if (!WriteFile(file.get(), line.data(), static_cast<DWORD>(line.size()), &written, nullptr))
        return GetLastError();
    return written == line.size() ? 0 : ERROR_DISK_FULL;
}
