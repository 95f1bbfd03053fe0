#include "linkfixture.h"

#include <cstring>

#include <winternl.h>
#include <gtest/gtest.h>

#include "common/status.h"

uintptr_t WINAPI failing(...)
{
    ++failingCalls;
    SetLastError(failingError);
    return 0;
}

size_t openHandles()
{
    struct entry_t {
        ULONG owner;
        ULONG rest[5];
    };
    std::vector<entry_t> table(1 << 17);
    constexpr auto handleInformation = static_cast<SYSTEM_INFORMATION_CLASS>(16);
    const auto size = static_cast<ULONG>(table.size() * sizeof table[0]);
    EXPECT_EQ(0, NtQuerySystemInformation(handleInformation, table.data(), size, nullptr));
    size_t own = 0;
    const auto first = reinterpret_cast<const BYTE*>(table.data()) + 8; // behind the count
    for (ULONG i = 0; i < table[0].owner; ++i) {
        entry_t entry;
        std::memcpy(&entry, first + i * sizeof entry, sizeof entry);
        own += (entry.owner & 0xFFFF) == GetCurrentProcessId(); // its upper half is something else
    }
    return own;
}

std::wstring win32(DWORD error)
{
    return L"E " + std::to_wstring(statusFromError(error)) + L' ';
}

agentObjects_t::agentObjects_t()
    : semaphore(CreateSemaphoreW(nullptr, 1, 1, L"VLMAX_NIPC_MUTEX")),
      acknowledge(CreateEventW(nullptr, FALSE, FALSE, L"VLMAX_NIPC_BUFFER_READY")),
      dataReady(CreateEventW(nullptr, FALSE, FALSE, L"VLMAX_NIPC_DATA_READY")),
      buffer(CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 0x1000,
                                L"VLMAX_NIPC_BUFFER")),
      view(static_cast<uint8_t*>(MapViewOfFile(buffer.get(), FILE_MAP_WRITE, 0, 0, 0)))
{
    std::memset(view, 0xEE, 0x1000);
}

void agentObjects_t::drop(const std::wstring& name)
{
    if (name == L"VLMAX_NIPC_MUTEX")
        semaphore.reset();
    if (name == L"VLMAX_NIPC_BUFFER_READY")
        acknowledge.reset();
    if (name == L"VLMAX_NIPC_DATA_READY")
        dataReady.reset();
    if (name == L"VLMAX_NIPC_BUFFER" && buffer) {
        UnmapViewOfFile(view);
        view = nullptr;
        buffer.reset();
    }
}
