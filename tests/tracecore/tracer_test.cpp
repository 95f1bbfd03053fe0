#include "tracecore/tracer.h"

#include "security/objectsecurity.h"
#include "support/patchimport.h"
#include "support/tracerecorder.h"
#include "tracecore/realtracer.h"

#include <aclapi.h>

#include <stdexcept>

#include <gtest/gtest.h>

using namespace tracecore;

TEST(Tracer, MessagesHaveTheirForms)
{
    traceRecorder_t recorder;
    traceText("caf\xC3\xA9");
    traceText(nullptr);
    traceFormat(0, "%s|%c|%5d|%ls|%%s", "narrow", 'c', 42, L"wide");
    traceFormat(0, "%s", std::string(500, 'x').c_str());
    traceStatus("text", E_ACCESSDENIED);
    traceStatus(nullptr, 7);
    traceStatusW(std::wstring(2000, L'y'), -1);
    traceIfFailed("failed", E_FAIL);
    traceIfFailed("succeeded", 5);
    traceNotePair("a", "b");
    SetLastError(ERROR_FILE_NOT_FOUND);
    traceLastError(L"open");
    EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
    EXPECT_EQ(traceException("label: ", std::runtime_error("what")), E_UNEXPECTED);
    traceState().traceDisabled = 1;
    traceScope_t scope("f");
    EXPECT_EQ(theTracer().stacks.frames()->depth, 0u);
    traceText("x");
    EXPECT_FALSE(traceActive());
    traceState().traceDisabled = 0;
    EXPECT_EQ(recorder.joined(), L"|U caf\u00E9|U |U narrow|c|   42|wide|%hs|U " +
                                     std::wstring(399, L'x') + L"|E -2147024891 text|E 7 |E -1 " +
                                     std::wstring(2000, L'y') +
                                     L"|E -2147467259 failed|E 0 ab|E -2147024894 open"
                                     L"|E 0 label: what");
}

// For a tool that looks the mutex up, and for callers of other users in one process.
TEST(Tracer, WritersMutexLetsEveryUserIn)
{
    const std::wstring name = formatWide(L"Global\\VLMAX_tracemutex_%04X", GetCurrentProcessId());
    const CKernelHandle mutex(OpenMutexW(READ_CONTROL, FALSE, name.c_str()));
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    GetSecurityInfo(mutex.get(), SE_KERNEL_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr,
                    nullptr, nullptr, &descriptor);
    const CLocalMemory owner(descriptor);
    EXPECT_EQ(securityToString(static_cast<SECURITY_DESCRIPTOR*>(descriptor)),
              L"D:(A;;GA;;;AU)(A;;GA;;;SY)(A;;GA;;;BA)(A;;GA;;;BU)");
    const importPatch_t create(
        "CreateMutexW", +[]() -> HANDLE { return SetLastError(ERROR_ACCESS_DENIED), nullptr; });
    EXPECT_TRUE(realTracer_t().mutex); // of another user, opened
}
