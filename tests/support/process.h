#pragma once

#include "common/scoped.h"
#include "support/files.h"

#include <windows.h>

#include <filesystem>
#include <string>

#include <gtest/gtest.h>

struct processResult_t {
    DWORD status;
    std::string out, err;
};

// process_t is a program that was started, with its streams in files of its own.
class process_t
{
public:
    explicit process_t(const std::filesystem::path& program, const std::wstring& arguments = L"",
                       const std::string& input = "", DWORD flags = 0)
    {
        writeFile(m_streams / L"0", input);
        SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
        CFileHandle streams[3];
        for (size_t i = 0; i < 3; ++i)
            streams[i].reset(CreateFileW(
                (m_streams / std::to_wstring(i)).c_str(), i ? GENERIC_WRITE : GENERIC_READ,
                FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited, OPEN_ALWAYS, 0, nullptr));
        STARTUPINFOW startup{};
        startup.cb = sizeof startup, startup.dwFlags = STARTF_USESTDHANDLES;
        startup.hStdInput = streams[0].get(), startup.hStdOutput = streams[1].get();
        startup.hStdError = streams[2].get();
        std::wstring line = L'"' + program.wstring() + L"\" " + arguments;
        PROCESS_INFORMATION process{};
        EXPECT_TRUE(CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, flags, nullptr,
                                   nullptr, &startup, &process))
            << "error " << GetLastError();
        m_thread.reset(process.hThread);
        m_process.reset(process.hProcess);
    }

    HANDLE handle() const { return m_process.get(); }
    bool runs(DWORD milliseconds) const
    {
        return WaitForSingleObject(handle(), milliseconds) == WAIT_TIMEOUT;
    }
    void stop() const { SuspendThread(m_thread.get()); }
    void goOn() const { ResumeThread(m_thread.get()); }
    void load(const std::filesystem::path& library) const // into it
    {
        const std::wstring& name = library.native();
        const size_t size = (name.size() + 1) * sizeof(wchar_t);
        void* const there = VirtualAllocEx(handle(), nullptr, size, MEM_COMMIT, PAGE_READWRITE);
        WriteProcessMemory(handle(), there, name.c_str(), size, nullptr);
        const CKernelHandle thread(CreateRemoteThread(
            handle(), nullptr, 0,
            reinterpret_cast<LPTHREAD_START_ROUTINE>(reinterpret_cast<void*>(&LoadLibraryW)), there,
            0, nullptr));
        EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(thread.get(), 60000)) << "hangs";
    }
    void kill() const
    {
        TerminateProcess(handle(), 9);
        WaitForSingleObject(handle(), INFINITE);
    }

    // result waits for the end, but no longer than a minute.
    processResult_t result() const
    {
        EXPECT_FALSE(runs(60000)) << "hangs";
        kill();
        DWORD status = STILL_ACTIVE;
        GetExitCodeProcess(handle(), &status);
        return {status, fileBytes(m_streams / L"1"), fileBytes(m_streams / L"2")};
    }

private:
    static inline int count = 0;
    const std::filesystem::path m_streams =
        std::filesystem::temp_directory_path() / L"streams" /
        (std::to_wstring(GetCurrentProcessId()) + L'.' + std::to_wstring(++count));
    CKernelHandle m_process, m_thread;
};
