#include "tracecore/tracer.h"

#include "common/scoped.h"
#include "support/tracerecorder.h"
#include "tracecore/realtracer.h"

#include <aclapi.h>
#include <sddl.h>

#include <regex>
#include <stdexcept>

#include <gtest/gtest.h>

using namespace tracecore;

namespace {

TEST(Tracer, MessagesHaveTheirForms)
{
    traceRecorder_t recorder;
    traceText("caf\xC3\xA9");
    traceText(nullptr);
    traceFormat(0, "%s|%c|%5d|%ls|%%s", "narrow", 'c', 42, L"wide");
    traceFormat(0, "");
    traceFormat(0, "%s", std::string(500, 'x').c_str());
    traceStatus("text", E_ACCESSDENIED);
    traceStatus(nullptr, 7);
    traceStatusW(std::wstring(2000, L'y'), -1);
    traceIfFailed("failed", E_FAIL);
    traceIfFailed("succeeded", S_OK);
    traceIfFailed("succeeded", 5);
    traceNote("note");
    traceNoteW(L"noteW");
    traceNotePair("a", "b");
    SetLastError(ERROR_FILE_NOT_FOUND);
    traceLastError(L"open");
    EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
    SetLastError(0x80070005);
    traceLastError(L"status");
    EXPECT_EQ(traceException("label: ", std::runtime_error("what")), E_UNEXPECTED);
    traceDisabled = 1;
    traceScope_t scope("f");
    EXPECT_EQ(theTracer().stacks.frames()->depth, 0u);
    traceText("x");
    EXPECT_FALSE(traceActive());
    EXPECT_EQ(traceException("x", std::runtime_error("y")), E_UNEXPECTED);
    traceDisabled = 0;
    EXPECT_EQ(
        recorder.messages(),
        (std::vector<std::wstring>{L"U caf\u00E9", L"U ", L"U narrow|c|   42|wide|%hs",
                                   L"U " + std::wstring(399, L'x'), L"E -2147024891 text", L"E 7 ",
                                   L"E -1 " + std::wstring(2000, L'y'), L"E -2147467259 failed",
                                   L"E 0 note", L"E 0 noteW", L"E 0 ab", L"E -2147024894 open",
                                   L"E -2147024891 status", L"E 0 label: what"}));
}

TEST(Tracer, WritersMutexIsFoundByProcessIdAndLetsUsersIn)
{
    const std::wstring name = formatWide(L"Global\\VLMAX_tracemutex_%04X", GetCurrentProcessId());
    const CKernelHandle mutex(OpenMutexW(MUTEX_ALL_ACCESS, FALSE, name.c_str()));
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    ASSERT_EQ(GetSecurityInfo(mutex.get(), SE_KERNEL_OBJECT, DACL_SECURITY_INFORMATION, nullptr,
                              nullptr, nullptr, nullptr, &descriptor),
              DWORD{ERROR_SUCCESS});
    const CLocalMemory owner(descriptor);
    wchar_t* text = nullptr;
    ASSERT_TRUE(ConvertSecurityDescriptorToStringSecurityDescriptorW(
        descriptor, SDDL_REVISION_1, DACL_SECURITY_INFORMATION, &text, nullptr));
    const CLocalMemory textOwner(text);
    const std::wregex allowed(L"D:\\(A;;(\\w+);;;AU\\)\\(A;;\\1;;;SY\\)\\(A;;\\1;;;BA\\)"
                              L"\\(A;;\\1;;;BU\\)");
    EXPECT_TRUE(std::regex_match(text, allowed));
}

} // namespace
