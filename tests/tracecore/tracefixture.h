#pragma once

#include "support/patchimport.h"
#include "support/registry.h"
#include "support/tracedecoder.h"
#include "tracecore/realtracer.h"
#include "tracecore/sinks.h"
#include "tracecore/traceconfig.h"
#include "tracecore/tracer.h"

#include <atomic>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

inline std::atomic<DWORD> testTicks{1000000}; // what GetTickCount gives the program under test
inline SYSTEMTIME testTime{};                 // what all its clocks show, local

// tracingFixture gives each test the tracer as it is when a process starts, an empty configuration
// in the registry, a folder of its own, and stopped clocks.
class tracingFixture : public testing::Test
{
protected:
    using strings = std::vector<std::string>;

    tracingFixture()
    {
        using namespace tracecore;
        for (const wchar_t* key : {L"SOFTWARE\\Veltrano", L"SOFTWARE\\Policies\\Veltrano"})
            RegDeleteTreeW(HKEY_LOCAL_MACHINE, key);
        realTracer_t& tracer = theTracer();
        traceState().sinkKind = sinkNone;
        tracer.mode = sinkNowhere;
        tracer.nextPoll = 0;
        tracer.fileFailed = 0;
        tracer.stacks.mainFrame.setWritten(false);
        tracer.stacks.clock = readSystem;
        traceState().lastStamp = {};
        traceState().debuggerPresent = -1;
        traceState().sweepDone = 0;
        testTime = {2017, 7, 0, 14, 1, 2, 3, 45};
        std::filesystem::create_directories(folder);
    }
    ~tracingFixture() override
    {
        tracecore::traceState().sink.store(nullptr);
        std::filesystem::remove_all(folder);
    }

    static void setNumber(const wchar_t* name, DWORD value, const std::wstring& subkey = L"Tracing",
                          DWORD type = REG_DWORD)
    {
        const std::wstring bytes = {static_cast<wchar_t>(value), static_cast<wchar_t>(value >> 16)};
        setValue(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Veltrano\\" + subkey, name, bytes, type, 4);
    }
    static void setText(const wchar_t* name, const std::wstring& text,
                        const std::wstring& subkey = L"Tracing")
    {
        setValue(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Veltrano\\" + subkey, name, text, REG_EXPAND_SZ);
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

    // The records written by body into such a file, off again so that the file is closed.
    template <class Body> decodedTrace_t traced(Body body)
    {
        const std::filesystem::path path = traceTo(L"t.trc3");
        body();
        setNumber(L"DoTrace", 0);
        follow();
        return decodeTrace(fileBytes(path));
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

    const importPatch_t ticks{"GetTickCount", +[] { return testTicks.load(); }};
    const importPatch_t clock{"GetLocalTime", +[](SYSTEMTIME* time) { *time = testTime; }};
    const importPatch_t coarse{"GetSystemTimeAsFileTime", readSystem};
};
