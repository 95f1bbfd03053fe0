#include "tracecore/tracer.h"

#include "common/scoped.h"
#include "support/tracerecorder.h"
#include "tracecore/realtracer.h"

#include <aclapi.h>

#include <atomic>
#include <stdexcept>
#include <thread>

#include <gtest/gtest.h>

using namespace tracecore;

namespace {

using strings = std::vector<std::wstring>;

// The records as "level text [function]".
strings lines(traceRecorder_t& recorder)
{
    strings result;
    for (const traceRecord_t& r : recorder.all())
        result.push_back(formatWide(L"%c %s [%hs]", r.level, r.text.c_str(), r.function.c_str()));
    return result;
}

TEST(Tracer, MessageWritesTheOpenFunctionsOutermostFirstAndTheirExits)
{
    traceRecorder_t recorder;
    {
        std::string name = "outer";
        traceScope_t outer(name.c_str());
        name = "gone!"; // the name was copied
        {
            traceScope_t silent("silent");
        }
        traceScope_t inner(nullptr);
        traceText("one");
        traceWrite('>', L"nothing");
        {
            traceScope_t sibling("sibling");
        }
    }
    {
        traceScope_t again("again");
    }
    EXPECT_EQ(lines(recorder),
              (strings{L"> outer [outer]", L">  []", L"U one []", L"<  []", L"<  [outer]"}));
}

TEST(Tracer, MessagesHaveTheirForms)
{
    traceRecorder_t recorder;
    traceScope_t scope("f");
    traceText("caf\xC3\xA9");
    traceText(nullptr);
    traceFormat(0, "%s|%c|%5d|%ls|%%s", "narrow", 'c', 42, L"wide");
    traceFormat(0, "");
    traceFormat(0, "%s", std::string(500, 'x').c_str());
    traceStatus("text", E_ACCESSDENIED);
    traceStatus(nullptr, 7);
    traceStatusW(L"wide", -1);
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
    EXPECT_EQ(recorder.messages(),
              (strings{L"U caf\u00E9", L"U ", L"U narrow|c|   42|wide|%hs",
                       L"U " + std::wstring(399, L'x'), L"E -2147024891 text", L"E 7 ",
                       L"E -1 wide", L"E -2147467259 failed", L"E 0 note", L"E 0 noteW", L"E 0 ab",
                       L"E -2147024894 open", L"E -2147024891 status", L"E 0 label: what"}));
}

TEST(Tracer, FormatterKnowsThePlatformsConversions)
{
    const std::wstring longText(2000, L'y');
    EXPECT_EQ(formatWide(L"100%% %s %hs %S %ls", L"a", "b", "c", L"d"), L"100% a b c d");
    EXPECT_EQ(formatWide(L"%+05d|%-4d|%#x|%08X|% d|%.3s", 7, 7, 255, 0xBEEF, 7, L"abcdef"),
              L"+0007|7   |0xff|0000BEEF| 7|abc");
    EXPECT_EQ(formatWide(L"%I64d %hd %04X", 0x123456789LL, 70000, 0x12345),
              L"4886718345 4464 12345");
    EXPECT_EQ(formatWide(L"%s", longText.c_str()), longText);
}

TEST(Tracer, MessageOutsideAllFunctionsHasTheMainFrameOnce)
{
    traceRecorder_t recorder;
    traceText("a");
    traceText("b");
    traceLeave(); // the main frame is written: its exit is, too
    EXPECT_EQ(lines(recorder),
              (strings{L"> main [main]", L"U a [main]", L"U b [main]", L"<  [main]"}));
}

TEST(Tracer, DisabledFlagEmptiesAllCalls)
{
    traceRecorder_t recorder;
    traceDisabled = 1;
    const traceScope_t scope("f");
    EXPECT_EQ(theTracer().stacks.frames()->depth, 0u);
    traceText("x");
    EXPECT_FALSE(traceActive());
    EXPECT_EQ(traceException("x", std::runtime_error("y")), E_UNEXPECTED);
    traceDisabled = 0;
    EXPECT_TRUE(recorder.all().empty());
}

TEST(Tracer, StacksOfManyThreadsAndDepthsStayApartAndGoWithTheLastFrame)
{
    constexpr int threads = 90; // more than there are slots
    const auto depth = [](int i) { return i ? 1 : 3000; };
    threadStacks_t& stacks = theTracer().stacks;
    EXPECT_EQ(stacks.ownerThread, GetCurrentThreadId());
    const size_t before = stacks.threads();
    traceRecorder_t recorder;
    std::atomic<int> inside{0};
    const CKernelHandle allInside(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    const CKernelHandle counted(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    std::vector<std::thread> workers;
    workers.reserve(threads);
    for (int i = 0; i < threads; ++i) {
        workers.emplace_back([&, i] {
            traceLeave(); // without a frame: nothing
            traceScope_t outer(("outer" + std::to_string(i)).c_str());
            if (++inside == threads)
                SetEvent(allInside.get());
            WaitForSingleObject(counted.get(), 30000);
            for (int k = depth(i); k > 0; --k)
                traceEnter(std::to_string(k).c_str());
            traceText(std::to_string(i).c_str());
            for (int k = depth(i); k > 0; --k)
                traceLeave();
        });
    }
    WaitForSingleObject(allInside.get(), 30000);
    EXPECT_EQ(stacks.threads(), before + threads);
    SetEvent(counted.get());
    for (std::thread& worker : workers)
        worker.join();
    EXPECT_EQ(stacks.threads(), before); // this thread's stays
    size_t entries = 0;
    size_t exits = 0;
    for (const traceRecord_t& record : recorder.all()) {
        entries += record.level == '>';
        exits += record.level == '<';
        if (record.level == 'U') {
            EXPECT_EQ(record.function, "1");
        }
    }
    EXPECT_EQ(entries, 2u * (threads - 1) + 1 + 3000);
    EXPECT_EQ(exits, entries);
}

TEST(Tracer, WritersMutexIsFoundByProcessIdAndLetsUsersIn)
{
    const std::wstring name = formatWide(L"Global\\VLMAX_tracemutex_%04X", GetCurrentProcessId());
    const CKernelHandle mutex(OpenMutexW(MUTEX_ALL_ACCESS, FALSE, name.c_str()));
    ASSERT_TRUE(mutex);
    ACL* list = nullptr;
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    ASSERT_EQ(GetSecurityInfo(mutex.get(), SE_KERNEL_OBJECT, DACL_SECURITY_INFORMATION, nullptr,
                              nullptr, &list, nullptr, &descriptor),
              DWORD{ERROR_SUCCESS});
    const CLocalMemory owner(descriptor);
    const WELL_KNOWN_SID_TYPE allowed[] = {WinAuthenticatedUserSid, WinLocalSystemSid,
                                           WinBuiltinAdministratorsSid, WinBuiltinUsersSid};
    ASSERT_EQ(list->AceCount, std::size(allowed));
    for (DWORD i = 0; i < list->AceCount; ++i) {
        void* entry = nullptr;
        ASSERT_TRUE(GetAce(list, i, &entry));
        const auto ace = static_cast<ACCESS_ALLOWED_ACE*>(entry);
        EXPECT_TRUE(IsWellKnownSid(&ace->SidStart, allowed[i]));
        EXPECT_EQ(ace->Header.AceFlags, 0);
    }
}

TEST(Tracer, WithoutTheMutexMessagesAreWrittenAllTheSame)
{
    traceRecorder_t recorder;
    CKernelHandle held = std::move(theTracer().mutex);
    traceText("without");
    theTracer().mutex = std::move(held);
    EXPECT_EQ(recorder.messages(), strings{L"U without"});
}

} // namespace
