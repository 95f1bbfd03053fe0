#pragma once

#include "support/patchimport.h"
#include "support/tracedecoder.h"
#include "tracecore/realtracer.h"
#include "tracecore/sinks.h"
#include "tracecore/traceconfig.h"
#include "tracecore/tracer.h"

#include <atomic>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

inline std::atomic<DWORD> testTicks{1000000}; // what GetTickCount tells the program under test
inline SYSTEMTIME testTime{};                 // what all its clocks tell, local

// tracingFixture gives each test the tracer as it is when a process starts, an empty configuration
// in the registry, a folder of its own, and stopped clocks.
class tracingFixture : public testing::Test
{
protected:
    using strings = std::vector<std::string>;

    tracingFixture()
    {
        reset();
        std::filesystem::create_directories(folder);
    }
    ~tracingFixture() override
    {
        reset();
        std::filesystem::remove_all(folder);
    }

    static void reset()
    {
        using namespace tracecore;
        RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Veltrano");
        realTracer_t& tracer = theTracer();
        sink.store(nullptr);
        sinkKind = sinkNone;
        tracer.mode = sinkNowhere;
        tracer.nextPoll = 0;
        tracer.fileFailed = 0;
        tracer.stacks.mainFrame.setWritten(false);
        tracer.stacks.clock = readSystem;
        lastStamp = {};
        debuggerPresent = -1;
        sweepDone = 0;
        at(2017, 7, 14, 1, 2, 3, 45);
    }

    // Stops all clocks at a local time.
    static void at(WORD year, WORD month, WORD day, WORD hour, WORD minute, WORD second, WORD ms)
    {
        testTime = {year, month, 0, day, hour, minute, second, ms};
    }

    static void setValue(const wchar_t* name, DWORD type, const void* data, size_t size,
                         const std::wstring& subkey = L"Tracing")
    {
        const std::wstring key = L"SOFTWARE\\Veltrano\\" + subkey;
        ASSERT_EQ(RegSetKeyValueW(HKEY_LOCAL_MACHINE, key.c_str(), name, type, data,
                                  static_cast<DWORD>(size)),
                  ERROR_SUCCESS);
    }
    static void setNumber(const wchar_t* name, DWORD value)
    {
        setValue(name, REG_DWORD, &value, sizeof value);
    }
    static void setText(const wchar_t* name, const std::wstring& text,
                        const std::wstring& subkey = L"Tracing")
    {
        setValue(name, REG_EXPAND_SZ, text.c_str(), 2 * text.size() + 2, subkey);
    }

    // Lets the interval of the configuration pass, and enters a function.
    static void follow()
    {
        testTicks += 30001;
        tracecore::traceScope_t scope("follow");
    }

    // Switches on tracing to the file name in the folder.
    std::filesystem::path traceTo(const wchar_t* name)
    {
        setNumber(L"DoTrace", 1);
        setText(L"FileName", (folder / name).wstring());
        follow();
        return folder / name;
    }

    // fake replaces a platform call of the program for the life of the result.
    template <class R, class... A>
    [[nodiscard]] static importPatch_t fake(const char* name, R(WINAPI* call)(A...))
    {
        return {GetModuleHandleW(nullptr), name, reinterpret_cast<void*>(call)};
    }

    const std::filesystem::path folder =
        std::filesystem::temp_directory_path() / std::to_wstring(GetCurrentProcessId());

private:
    static void WINAPI readSystem(FILETIME* utc)
    {
        FILETIME local;
        SystemTimeToFileTime(&testTime, &local);
        LocalFileTimeToFileTime(&local, utc);
    }

    const importPatch_t ticks = fake(
        "GetTickCount", +[]() -> DWORD { return testTicks; });
    const importPatch_t clock = fake(
        "GetLocalTime", +[](SYSTEMTIME* time) { *time = testTime; });
    const importPatch_t coarse = fake("GetSystemTimeAsFileTime", readSystem);
};
