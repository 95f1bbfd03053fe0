#pragma once

#include "support/patchimport.h"
#include "tracecore/realtracer.h"
#include "tracecore/traceconfig.h"
#include "tracecore/tracer.h"

#include <atomic>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <string>
#include <utility>

#include <gtest/gtest.h>

inline std::atomic<DWORD> testTicks{1000000}; // what GetTickCount tells the program under test
inline SYSTEMTIME testTime{};                 // and all its clocks, once a test has set them

// tracingFixture gives each test the tracer as it is when a process starts, an empty configuration
// in the registry, a folder of its own, and the clocks.
class tracingFixture : public testing::Test
{
protected:
    static constexpr const wchar_t* tracingKey = L"SOFTWARE\\Veltrano\\Tracing";

    tracingFixture()
    {
        reset();
        folder = std::filesystem::temp_directory_path() /
                 (L"trace" + std::to_wstring(GetCurrentProcessId()));
        std::filesystem::remove_all(folder);
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
        lastStamp = {};
        debuggerPresent = -1;
        sweepDone = 0;
    }

    static void setValue(const std::wstring& subkey, const wchar_t* name, DWORD type,
                         const void* data, size_t size)
    {
        const std::wstring key = L"SOFTWARE\\Veltrano\\" + subkey;
        ASSERT_EQ(RegSetKeyValueW(HKEY_LOCAL_MACHINE, key.c_str(), name, type, data,
                                  static_cast<DWORD>(size)),
                  ERROR_SUCCESS);
    }
    static void setNumber(const wchar_t* name, DWORD value)
    {
        setValue(L"Tracing", name, REG_DWORD, &value, sizeof value);
    }
    static void setText(const wchar_t* name, const std::wstring& text)
    {
        setValue(L"Tracing", name, REG_EXPAND_SZ, text.c_str(), 2 * text.size() + 2);
    }
    static bool hasSwitch()
    {
        return !RegGetValueW(HKEY_LOCAL_MACHINE, tracingKey, L"DoTrace", RRF_RT_ANY, nullptr,
                             nullptr, nullptr);
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

    static std::string bytesOf(const std::filesystem::path& path)
    {
        std::ifstream file(path, std::ios::binary);
        std::ostringstream bytes;
        bytes << file.rdbuf();
        return bytes.str();
    }

    // Stops all clocks at a local time.
    void at(WORD year, WORD month, WORD day, WORD hour, WORD minute, WORD second, WORD ms)
    {
        testTime = {year, month, 0, day, hour, minute, second, ms};
        if (localClock)
            return;
        localClock.emplace(program(), "GetLocalTime", reinterpret_cast<void*>(readLocal));
        for (auto [patch, name] : {std::pair(&coarseClock, "GetSystemTimeAsFileTime"),
                                   std::pair(&fineClock, "GetSystemTimePreciseAsFileTime")})
            patch->emplace(program(), name, reinterpret_cast<void*>(readSystem));
    }

    // fake replaces a platform call of the program for the life of the result.
    template <class R, class... A>
    [[nodiscard]] static importPatch_t fake(const char* name, R(WINAPI* call)(A...))
    {
        return importPatch_t(program(), name, reinterpret_cast<void*>(call));
    }

    static HMODULE program() { return GetModuleHandleW(nullptr); }

    std::filesystem::path folder;

private:
    static DWORD WINAPI readTicks() { return testTicks; }
    static void WINAPI readLocal(SYSTEMTIME* time) { *time = testTime; }
    static void WINAPI readSystem(FILETIME* utc)
    {
        FILETIME local;
        SystemTimeToFileTime(&testTime, &local);
        LocalFileTimeToFileTime(&local, utc);
    }

    importPatch_t tickClock{program(), "GetTickCount", reinterpret_cast<void*>(readTicks)};
    std::optional<importPatch_t> localClock, coarseClock, fineClock;
};
