#include "commands.h"

#include <chrono>
#include <iostream>
#include <thread>

#ifdef _WIN32
#include <windows.h>

#include <fcntl.h>
#include <io.h>
#include <shellapi.h>

#include <memory>
#endif

namespace {

bool waitALittle()
{
    std::this_thread::sleep_for(std::chrono::milliseconds(250));
    return true;
}

#ifdef _WIN32
std::string utf8(const wchar_t* text)
{
    const int size = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
    std::string converted(size > 0 ? static_cast<size_t>(size) : 1, '\0');
    WideCharToMultiByte(CP_UTF8, 0, text, -1, converted.data(), size, nullptr, nullptr);
    converted.pop_back();
    return converted;
}

// The narrow arguments are in the active code page and lose characters, so the wide ones are taken.
std::vector<std::string> wideArguments()
{
    int count = 0;
    const std::unique_ptr<LPWSTR[], decltype(&LocalFree)> words(
        CommandLineToArgvW(GetCommandLineW(), &count), &LocalFree);
    std::vector<std::string> arguments;
    for (int i = 1; words && i < count; ++i)
        arguments.push_back(utf8(words[static_cast<size_t>(i)]));
    return arguments;
}

// utf8Console_t has the console take UTF-8 for as long as it lives; the setting is the console's,
// not the process's.
class utf8Console_t
{
public:
    utf8Console_t() { SetConsoleOutputCP(CP_UTF8); }
    ~utf8Console_t() { SetConsoleOutputCP(m_before); }
    utf8Console_t(const utf8Console_t&) = delete;
    utf8Console_t& operator=(const utf8Console_t&) = delete;

private:
    const UINT m_before = GetConsoleOutputCP();
};
#endif

} // namespace

int main([[maybe_unused]] int argc, [[maybe_unused]] char** argv)
{
#ifdef _WIN32
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
    const utf8Console_t console;
    std::vector<std::string> arguments = wideArguments();
#else
    std::vector<std::string> arguments(argv + 1, argv + argc);
#endif
    std::ios::sync_with_stdio(false);
    return vltrace::runVltrace(std::move(arguments), std::cout, std::cerr, waitALittle);
}
