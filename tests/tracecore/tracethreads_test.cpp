#include "support/meeting.h"
#include "support/tracetree.h"
#include "tracefixture.h"

#include <thread>

using namespace tracecore;

constexpr int rounds = 20; // for each writer

using TraceThreads = tracingFixture;

TEST_F(TraceThreads, RecordsAreWholeAndFunctionsNestThoughThereAreMoreThreadsThanSlots)
{
    setNumber(L"NewFileAlways", 0);
    CKernelHandle own;
    for (const int writers : {90, 20}) {
        if (writers == 20) { // the mutex is another's, who lets nobody wait for it
            const std::wstring name =
                formatWide(L"Global\\VLMAX_tracemutex_%04X", GetCurrentProcessId());
            own.reset(theTracer().mutex.release());
            theTracer().mutex.reset(OpenMutexW(READ_CONTROL, FALSE, name.c_str()));
        }
        // Of its own: a file that is appended to has a note of the writer who opens it.
        const std::filesystem::path path = traceTo(std::to_wstring(writers).c_str());
        threadStacks_t& stacks = theTracer().stacks;
        const size_t before = stacks.threads(); // this thread's is among them, and stays
        meeting_t inside(writers + 1);
        DWORD ids[90];
        std::vector<std::jthread> threads;
        for (int writer = 0; writer < writers; ++writer) {
            threads.emplace_back([writer, &inside, &ids] {
                ids[writer] = GetCurrentThreadId();
                for (int i = 0; i < rounds; ++i) {
                    traceScope_t outer(std::to_string(writer).c_str());
                    for (int wait = 0; i == 0 && wait < 2; ++wait)
                        inside.arriveAndWait();
                    traceScope_t inner("inner");
                    traceFormat(0, "%d.%d", writer, i);
                }
            });
        }
        inside.arriveAndWait();
        EXPECT_EQ(stacks.threads(), before + threads.size());
        inside.arriveAndWait();
        threads.clear();
        EXPECT_EQ(stacks.threads(), before);
        setNumber(L"DoTrace", 0);
        follow();
        const decodedTrace_t trace = decodeTrace(fileBytes(path));
        for (int writer = 0; writer < writers; ++writer) {
            const std::string name = std::to_string(writer);
            std::string expected;
            for (int i = 0; i < rounds; ++i)
                expected +=
                    "> " + name + "\n > inner\n  U " + name + "." + std::to_string(i) + "\n";
            EXPECT_EQ(traceTree(trace, ids[writer]), expected);
        }
    }
    theTracer().mutex = std::move(own);
}

TEST_F(TraceThreads, ThreadThatEndedWithTheMutexKeepsNobodyOut)
{
    const HANDLE mutex = theTracer().mutex.get();
    traceTo(L"ended");
    std::thread([mutex] { WaitForSingleObject(mutex, INFINITE); }).join();
    traceText("by the next one");
    std::thread([mutex] {
        EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_OBJECT_0);
        ReleaseMutex(mutex);
    }).join();
}
