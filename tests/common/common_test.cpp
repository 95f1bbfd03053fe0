#include "common/scoped.h"
#include "common/status.h"

#include <gtest/gtest.h>

TEST(Status, ErrorsBecomeStatusesAndStatusesStay)
{
    // Bit 16 makes it a status, and bit 29 is outside the mask.
    std::vector<DWORD> statuses;
    for (const DWORD error : {0u, 2u, 0xFFFFu, 0x10000u, 0x20000001u, 0xE0000001u})
        statuses.emplace_back(statusFromError(error));
    EXPECT_EQ(statuses,
              (std::vector<DWORD>{0, 0x80070002, 0x8007FFFF, 0x10000, 0x80070001, 0xE0000001}));
}

TEST(Scoped, ClosingKeepsTheLastErrorAndHappensOnce)
{
    HANDLE raw = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    CKernelHandle first(raw), second(std::move(first));
    SetLastError(1234);
    second.reset();
    EXPECT_EQ(GetLastError(), 1234u);
    EXPECT_FALSE(first || CloseHandle(raw)); // it was closed
}
