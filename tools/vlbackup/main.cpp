#include "commands.h"

#include <iostream>

#ifdef _WIN32
#include "backup/blob/unicode.h"

#include <windows.h>

#include <fcntl.h>
#include <io.h>
#include <shellapi.h>

#include <memory>
#endif

namespace {

#ifdef _WIN32
// The narrow arguments are in the active code page and lose characters, so the wide ones are taken.
std::vector<std::string> wideArguments()
{
    int count = 0;
    const std::unique_ptr<LPWSTR[], decltype(&LocalFree)> words(
        CommandLineToArgvW(GetCommandLineW(), &count), &LocalFree);
    std::vector<std::string> arguments;
    for (int i = 1; words && i < count; ++i) {
        const std::wstring_view word(words[static_cast<size_t>(i)]);
        arguments.push_back(utf8FromUtf16(std::u16string(word.begin(), word.end())));
    }
    return arguments;
}

// utf8Console has the console take UTF-8 for as long as it lives; the setting is the console's, not
// the process's.
class utf8Console
{
public:
    utf8Console() { SetConsoleOutputCP(CP_UTF8); }
    ~utf8Console() { SetConsoleOutputCP(m_before); }
    utf8Console(const utf8Console&) = delete;
    utf8Console& operator=(const utf8Console&) = delete;

private:
    const UINT m_before = GetConsoleOutputCP();
};
#endif

} // namespace

int main([[maybe_unused]] int argc, [[maybe_unused]] char** argv)
{
#ifdef _WIN32
    _setmode(_fileno(stdin), _O_BINARY);
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
    const utf8Console console;
    std::vector<std::string> arguments = wideArguments();
#else
    std::vector<std::string> arguments(argv + 1, argv + argc);
#endif
    std::ios::sync_with_stdio(false);
    return runVlbackup(std::move(arguments), std::cin, std::cout, std::cerr);
}
