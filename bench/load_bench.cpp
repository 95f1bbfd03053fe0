#include "child.h"
#include "rounds.h"

#include <windows.h>

#include <string>

// The load and the release of a DLL against those of an empty one that imports the same functions:
// the first in a new process, and later ones in a process that has it no more. As in a host, the
// system's libraries are there already.
namespace {

constexpr const wchar_t* systemLibraries[] = {L"advapi32", L"msvcrt",  L"ole32",  L"oleaut32",
                                              L"shell32",  L"shlwapi", L"user32", L"crypt32"};
constexpr int loadsInProcess = 20;

// loadSeconds is the child's work: what the first load and release took, and the later ones.
int loadSeconds(const wchar_t* path)
{
    for (const wchar_t* library : systemLibraries)
        LoadLibraryW(library);
    const auto once = [path] {
        const HMODULE module = LoadLibraryW(path);
        if (!module)
            std::exit(2);
        FreeLibrary(module);
    };
    const double first = bench::secondsOf(once);
    const double later = bench::secondsOf([&] {
        for (int i = 0; i < loadsInProcess; ++i)
            once();
    });
    std::printf("%.9f %.9f\n", first, later);
    return 0;
}

struct times_t {
    double first = 0;
    double later = 0;
};

times_t runChild(const std::wstring& dll)
{
    const std::string text =
        bench::runProgram(L"load_bench.exe", L"\"" + bench::programFolder() + dll + L"\"");
    times_t times;
    if (std::sscanf(text.c_str(), "%lf %lf", &times.first, &times.later) != 2)
        std::exit(2);
    return times;
}

void compare(const std::wstring& dll, const std::wstring& empty, const char* name)
{
    std::vector<double> first;
    std::vector<double> later;
    for (int round = -1; round < 2 * bench::usualRounds; ++round) {
        times_t its;
        times_t floor;
        if (round % 2 == 0) {
            floor = runChild(empty);
            its = runChild(dll);
        } else {
            its = runChild(dll);
            floor = runChild(empty);
        }
        if (round < 0)
            continue;
        first.push_back(its.first / floor.first);
        later.push_back(its.later / floor.later);
    }
    const std::string what = std::string("load and free of ") + name + " / an empty DLL";
    bench::row(what, "in a new process", first, 1.3);
    bench::row(what, "in a process that had it", later, 1.3);
}

} // namespace

int wmain(int argc, wchar_t** argv)
{
    if (argc > 1)
        return loadSeconds(argv[1]);
    compare(L"VLOnlineIDs.dll", L"empty_VLOnlineIDs.dll", "the plug-in");
    compare(L"VLFPApi.dll", L"empty_VLFPApi.dll", "the policy library");
    return 0;
}
