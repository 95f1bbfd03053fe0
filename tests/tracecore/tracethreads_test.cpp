#include "tracefixture.h"

#include "support/meeting.h"

#include <functional>
#include <map>
#include <thread>

using namespace tracecore;

namespace {

constexpr int rounds = 20; // at least, for each writer

class TraceThreads : public tracingFixture
{
protected:
    // Runs the writers while the calling thread does something else, and looks at what came out.
    // If it is whole, functions nest and no message is missing; otherwise the order is right.
    void run(int writers, bool whole, const std::function<void()>& meanwhile)
    {
        setNumber(L"NewFileAlways", 0);
        const std::filesystem::path path = traceTo(L"t.trc3");
        traceText("first");
        threadStacks_t& stacks = theTracer().stacks;
        const size_t before = stacks.threads(); // this thread's is among them, and stays
        meeting_t inside(writers + 1);
        std::atomic<bool> enough{false};
        std::vector<std::jthread> threads;
        for (int writer = 0; writer < writers; ++writer) {
            threads.emplace_back([writer, &inside, &enough] {
                traceLeave(); // without a frame: the main frame, which has been written, ends
                for (int i = 0; i < rounds || !enough; ++i) {
                    traceScope_t outer(("outer" + std::to_string(writer)).c_str());
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
        meanwhile();
        enough = true;
        threads.clear();
        EXPECT_EQ(stacks.threads(), before);
        sink.store(nullptr);

        std::map<uint32_t, strings> open;
        std::map<std::string, int> next;
        for (const decodedRecord_t& record : decodeTrace(fileBytes(path)).records) {
            strings& stack = open[record.thread];
            if (record.level == '>') {
                stack.push_back(record.text);
            } else if (record.level == '<' && !stack.empty()) {
                stack.pop_back();
            } else if (record.level == 'U' && record.text != "first") {
                const std::string writer = record.text.substr(0, record.text.find('.'));
                const int number = std::stoi(record.text.substr(writer.size() + 1));
                ASSERT_GE(number, next[writer]);
                if (whole) {
                    ASSERT_EQ(stack, (strings{"outer" + writer, "inner"}));
                    ASSERT_EQ(number, next[writer]);
                }
                next[writer] = number + 1;
            }
        }
        for (int writer = 0; whole && writer < writers; ++writer)
            EXPECT_GE(next[std::to_string(writer)], rounds);
    }
};

TEST_F(TraceThreads, NoRecordIsLostAndFunctionsNestThoughThereAreMoreThreadsThanSlots)
{
    run(90, true, [] {});
}

TEST_F(TraceThreads, SwitchFlippedUnderEightWritersTearsNoRecord)
{
    run(8, false, [] {
        for (DWORD flip = 0; flip < 40; ++flip) {
            setNumber(L"DoTrace", flip % 2);
            follow();
        }
    });
}

} // namespace
