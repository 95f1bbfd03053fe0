#include <cerrno>

#include <gtest/gtest.h>

#include "atl/comutil.h"
#include "common/scoped.h"
#include "common/status.h"
#include "common/text.h"

TEST(Status, ErrorsBecomeStatusesAndStatusesStay)
{
    // Bit 16 makes it a status, and bit 29 is outside the mask.
    const DWORD errors[] = {0, 2, 0xFFFF, 0x10000, 0x20000001, 0x80070005, 0x10000000, 0xE0000001};
    const DWORD statuses[] = {0,          0x80070002, 0x8007FFFF, 0x10000,
                              0x80070001, 0x80070005, 0x10000000, 0xE0000001};
    for (size_t i = 0; i < std::size(errors); ++i)
        EXPECT_EQ(static_cast<DWORD>(statusFromError(errors[i])), statuses[i]);
    std::vector<HRESULT> raised; // for errors of the C runtime
    for (const int error : {0, STRUNCATE, ENOMEM, EINVAL, ERANGE, EBADF}) {
        try {
            ATL::AtlCrtErrorCheck(error);
        } catch (const ATL::CAtlException& exception) {
            raised.push_back(exception.m_hr);
        }
    }
    EXPECT_EQ(raised, (std::vector{E_OUTOFMEMORY, E_INVALIDARG, E_INVALIDARG, E_FAIL}));
}

TEST(Scoped, ClosingKeepsTheLastErrorAndHappensOnce)
{
    HANDLE raw = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    CKernelHandle first(raw), second(std::move(first));
    EXPECT_FALSE(first);
    SetLastError(1234);
    second.reset();
    EXPECT_EQ(GetLastError(), 1234u);
    EXPECT_FALSE(CloseHandle(raw)); // it was closed
}

TEST(Text, ConvertsBothWaysWithZerosInside)
{
    const std::wstring wide(L"a\0\u00e9\U0001F600", 5);
    const std::string utf8("a\0\xC3\xA9\xF0\x9F\x98\x80", 8);
    EXPECT_EQ(utf8FromWide(wide), utf8);
    EXPECT_EQ(wideFromUtf8(utf8), wide);
}
