#include "child.h"
#include "rounds.h"

#include <windows.h>

#include <string>
#include <vector>

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

// A process may wait for the system's server once more than another one does: a round takes the
// median of several.
constexpr int processesInRound = 7;

struct times_t {
    std::vector<double> first;
    std::vector<double> later;
};

void runChild(const std::wstring& dll, times_t& times)
{
    const std::string text =
        bench::runProgram(L"load_bench.exe", L"\"" + bench::programFolder() + dll + L"\"");
    double first = 0;
    double later = 0;
    if (std::sscanf(text.c_str(), "%lf %lf", &first, &later) != 2)
        std::exit(2);
    times.first.push_back(first);
    times.later.push_back(later);
}

void compare(const std::wstring& dll, const std::wstring& empty, const char* name)
{
    std::vector<double> first;
    std::vector<double> later;
    for (int round = -1; round < bench::usualRounds; ++round) {
        times_t its;
        times_t floor;
        for (int i = 0; i < processesInRound; ++i) {
            const bool emptyFirst = (round + i) % 2 == 0;
            runChild(emptyFirst ? empty : dll, emptyFirst ? floor : its);
            runChild(emptyFirst ? dll : empty, emptyFirst ? its : floor);
        }
        if (round < 0)
            continue;
        first.push_back(bench::quantile(its.first, 0.5) / bench::quantile(floor.first, 0.5));
        later.push_back(bench::quantile(its.later, 0.5) / bench::quantile(floor.later, 0.5));
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
