#include "linkfixture.h"

#include <cstdio>
#include <cstring>
#include <thread>
#include <vector>

#include <winternl.h>
#include <gtest/gtest.h>

#include "common/status.h"

namespace {

DWORD fakeMajor = 0;
DWORD fakeMinor = 0;

BOOL WINAPI tellFakeVersion(OSVERSIONINFOW* info)
{
    info->dwPlatformId = VER_PLATFORM_WIN32_NT;
    info->dwMajorVersion = fakeMajor;
    info->dwMinorVersion = fakeMinor;
    return TRUE;
}

} // namespace

fakeVersion_t::fakeVersion_t(DWORD major, DWORD minor)
    : m_patch(GetModuleHandleW(nullptr), "GetVersionExW", reinterpret_cast<void*>(tellFakeVersion))
{
    EXPECT_TRUE(m_patch.found());
    fakeMajor = major;
    fakeMinor = minor;
}

size_t openHandles()
{
    struct entry_t {
        ULONG owner;
        BYTE rest[20];
    };
    std::vector<BYTE> table(1 << 22);
    constexpr auto handleInformation = static_cast<SYSTEM_INFORMATION_CLASS>(16);
    EXPECT_EQ(0, NtQuerySystemInformation(handleInformation, table.data(),
                                          static_cast<ULONG>(table.size()), nullptr));
    ULONG count = 0;
    std::memcpy(&count, table.data(), sizeof count);
    const auto entries = reinterpret_cast<const entry_t*>(table.data() + 8);
    size_t own = 0;
    for (ULONG i = 0; i < count; ++i)
        own += (entries[i].owner & 0xFFFF) == (GetCurrentProcessId() & 0xFFFF);
    return own;
}

void within(DWORD milliseconds, const std::function<void()>& body)
{
    const CKernelHandle done(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    std::thread worker([&] {
        body();
        SetEvent(done.get());
    });
    if (WaitForSingleObject(done.get(), milliseconds) != WAIT_OBJECT_0) {
        std::fprintf(stderr, "not finished after %lu ms\n", milliseconds);
        TerminateProcess(GetCurrentProcess(), 1);
    }
    worker.join();
}

agentObjects_t::agentObjects_t(bool make)
{
    if (!make)
        return;
    semaphore.reset(CreateSemaphoreW(nullptr, 1, 1, L"VLMAX_NIPC_MUTEX"));
    acknowledge.reset(CreateEventW(nullptr, FALSE, FALSE, L"VLMAX_NIPC_BUFFER_READY"));
    dataReady.reset(CreateEventW(nullptr, FALSE, FALSE, L"VLMAX_NIPC_DATA_READY"));
    buffer.reset(CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 0x1000,
                                    L"VLMAX_NIPC_BUFFER"));
    view = static_cast<uint8_t*>(MapViewOfFile(buffer.get(), FILE_MAP_WRITE, 0, 0, 0));
    std::memset(view, 0xEE, 0x1000);
}

void agentObjects_t::closeBuffer()
{
    if (view)
        UnmapViewOfFile(view);
    view = nullptr;
    buffer.reset();
}

int semaphoreCount()
{
    const CKernelHandle semaphore(
        OpenSemaphoreW(SYNCHRONIZE | SEMAPHORE_MODIFY_STATE, FALSE, L"VLMAX_NIPC_MUTEX"));
    if (!semaphore)
        return -1;
    if (WaitForSingleObject(semaphore.get(), 0) != WAIT_OBJECT_0)
        return 0;
    ReleaseSemaphore(semaphore.get(), 1, nullptr);
    return 1;
}

std::wstring win32(DWORD error)
{
    return L"E " + std::to_wstring(statusFromError(error)) + L' ';
}
