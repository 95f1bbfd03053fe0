#include "operations.h"

#include <functional>

namespace {

using Tracing = operationsTest;

TEST_F(Tracing, OffFormatsTakesAndMarksNothing)
{
    static DWORD passed = 0; // milliseconds, more than a look at the switch waits for
    const auto turn = [this](DWORD on) {
        setTracing(on);
        passed += 40000;
    };
    turn(0);
    const plugin_t plugin;
    const HMODULE dll = GetModuleHandleW(L"VLOnlineIDs.dll");
    const importPatch_t ticks(dll, "GetTickCount",
                              reinterpret_cast<void*>(+[] { return GetTickCount() + passed; }));

    // Switched on in the middle of a call, it shows the functions that were entered before.
    static std::function<void()> onSearch;
    onSearch = [&] { turn(1); };
    {
        const importPatch_t search(
            dll, "FindFirstFileW",
            reinterpret_cast<void*>(+[](const wchar_t* mask, WIN32_FIND_DATAW* found) {
                if (wcsstr(mask, L"*.vlm"))
                    onSearch();
                return FindFirstFileW(mask, found);
            }));
        run(plugin, "backup");
    }
    EXPECT_TRUE(traced().starts_with(wholeTree("> CVLKTPages::GetStorageData\n > collectall\n"
                                               "  > enumfnames | U   'krs::cache\\*.vlm'\n")))
        << traced();

    turn(0);
    callAndFail(plugin); // looks at the switch
    const std::string before = traced();
    static int calls = 0;
    const auto count = reinterpret_cast<void*>(+[] { ++calls; });
    const importPatch_t format(dll, "_vsnwprintf", count), wait(dll, "WaitForSingleObject", count);
    for (const char* name : {"information", "status", "backup", "restore", "refusals"})
        run(plugin, name);
    EXPECT_EQ(0, calls);
    EXPECT_EQ(before, traced());
}

} // namespace
