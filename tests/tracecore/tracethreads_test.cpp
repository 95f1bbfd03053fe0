#include "tracefixture.h"

#include "support/meeting.h"
#include "support/tracetree.h"

#include <set>
#include <thread>

using namespace tracecore;

constexpr int rounds = 20; // at least, for each writer

using TraceThreads = tracingFixture;

// A switch that is flipped meanwhile loses records, but tears none: the reader throws at such a
// one.
TEST_F(TraceThreads, RecordsAreWholeAndFunctionsNestThoughThereAreMoreThreadsThanSlots)
{
    setNumber(L"NewFileAlways", 0);
    for (const auto& [writers, flips] : {std::pair(90, 0u), {8, 40u}}) {
        const std::filesystem::path path = traceTo(L"t.trc3");
        threadStacks_t& stacks = theTracer().stacks;
        const size_t before = stacks.threads(); // this thread's is among them, and stays
        meeting_t inside(writers + 1);
        std::atomic<bool> enough{false};
        std::vector<std::jthread> threads;
        for (int writer = 0; writer < writers; ++writer) {
            threads.emplace_back([writer, &inside, &enough] {
                for (int i = 0; i < rounds || !enough; ++i) {
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
        for (DWORD flip = 0; flip < flips; ++flip) {
            setNumber(L"DoTrace", flip % 2);
            follow();
        }
        enough = true;
        threads.clear();
        EXPECT_EQ(stacks.threads(), before);
        const decodedTrace_t trace = decodeTrace(fileBytes(path));
        std::set<uint32_t> ids;
        for (const decodedRecord_t& record : trace.records)
            ids.insert(record.thread);
        for (const uint32_t id : flips ? std::set<uint32_t>() : ids) {
            const std::string tree = traceTree(trace, id),
                              writer = tree.substr(2, tree.find('\n') - 2);
            std::string expected;
            for (int i = 0; i < rounds || expected.size() < tree.size(); ++i)
                expected +=
                    "> " + writer + "\n > inner\n  U " + writer + "." + std::to_string(i) + "\n";
            EXPECT_EQ(tree, expected);
        }
        EXPECT_TRUE(flips || std::ssize(ids) == writers);
    }
}
