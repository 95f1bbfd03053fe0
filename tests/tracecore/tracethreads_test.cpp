#include "support/meeting.h"
#include "support/tracetree.h"
#include "tracefixture.h"

#include <algorithm>
#include <map>
#include <random>
#include <thread>

using namespace tracecore;

using TraceThreads = tracingFixture;

// More threads than there are slots, which this one pretends to be in turn.
TEST(ThreadStacks, EachThreadFindsItsOwnWhereverItLies)
{
    static DWORD thread;
    thread = 4; // builds the table, and stays in it
    std::map<DWORD, std::vector<std::string>> model = {{thread, {}}};
    std::minstd_rand random(1);
    std::string wrong; // said at the end: the test's library asks for the thread as well
    {
        const importPatch_t id{"GetCurrentThreadId", +[] { return thread; }};
        threadStacks_t stacks;
        for (int step = 0; step < 20000; ++step) {
            thread = 4 + random() % 100 * 4;
            auto& open = model[thread];
            if (random() % 2) {
                stacks.push(open.emplace_back(std::to_string(step)).c_str());
            } else {
                stacks.pop();
                open.resize(open.empty() ? 0 : open.size() - 1);
            }
            const auto used = std::ranges::count_if(
                model, [](const auto& one) { return one.first == 4 || !one.second.empty(); });
            if (stacks.current().name != (open.empty() ? "main" : open.back()) ||
                stacks.threads() != static_cast<size_t>(used))
                wrong += std::to_string(step) + ' ';
        }
    }
    EXPECT_EQ(wrong, "");
}

TEST_F(TraceThreads, RecordsAreWholeAndFunctionsNestThoughNobodyMayWaitForTheMutex)
{
    const std::wstring name = formatWide(L"Global\\VLMAX_tracemutex_%04X", GetCurrentProcessId());
    CKernelHandle own(theTracer().mutex.release());
    theTracer().mutex.reset(OpenMutexW(READ_CONTROL, FALSE, name.c_str()));
    constexpr int writers = 90, rounds = 20;
    const size_t before = theTracer().stacks.threads(); // this one's is among them, and stays
    DWORD ids[writers];
    const decodedTrace_t trace = traced([&ids] {
        meeting_t inside(writers);
        std::vector<std::jthread> threads;
        for (int writer = 0; writer < writers; ++writer)
            threads.emplace_back([writer, &inside, &ids] {
                ids[writer] = GetCurrentThreadId();
                for (int i = 0; i < rounds; ++i) {
                    const traceScope_t outer(std::to_string(writer).c_str());
                    if (i == 0)
                        inside.arriveAndWait();
                    const traceScope_t inner("inner");
                    traceFormat(0, "%d.%d", writer, i);
                }
            });
    });
    theTracer().mutex = std::move(own);
    EXPECT_EQ(theTracer().stacks.threads(), before);
    for (int writer = 0; writer < writers; ++writer) {
        const std::string number = std::to_string(writer);
        std::string expected;
        for (int i = 0; i < rounds; ++i)
            expected +=
                "> " + number + "\n > inner\n  U " + number + '.' + std::to_string(i) + '\n';
        EXPECT_EQ(traceTree(trace, ids[writer]), expected);
    }
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
