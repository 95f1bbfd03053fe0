#include "tracedecoder.h"
#include "tracefixture.h"

#include <map>
#include <thread>

using namespace tracecore;

namespace {

constexpr int writers = 8;
constexpr int rounds = 60; // at least, for each writer

class TraceThreads : public tracingFixture
{
protected:
    // Runs the writers while the calling thread does something else, until it has done enough of
    // it, and decodes what came out.
    template <class Meanwhile> decodedTrace_t run(Meanwhile meanwhile)
    {
        setNumber(L"NewFileAlways", 0);
        const std::filesystem::path path = traceTo(L"t.trc3");
        traceText("first");
        std::vector<std::thread> threads;
        std::atomic<bool> enough{false};
        for (int i = 0; i < writers; ++i)
            threads.emplace_back([i, &enough] { write(i, enough); });
        meanwhile();
        enough = true;
        for (std::thread& thread : threads)
            thread.join();
        sink.store(nullptr);
        return decodeTrace(bytesOf(path));
    }

private:
    static void write(int writer, const std::atomic<bool>& enough)
    {
        for (int i = 0; i < rounds || !enough; ++i) {
            traceScope_t outer(("outer" + std::to_string(writer)).c_str());
            {
                traceScope_t silent("silent");
            }
            traceScope_t inner("inner");
            traceFormat(0, "%d.%d", writer, i);
        }
    }
};

TEST_F(TraceThreads, NoRecordIsLostAndFunctionsNestInEachThread)
{
    const decodedTrace_t trace = run([] {});
    std::map<uint32_t, std::vector<std::string>> open;
    std::map<std::string, int> next;
    int messages = 0;
    for (const decodedRecord_t& record : trace.records) {
        auto& stack = open[record.thread];
        if (record.level == '>') {
            stack.push_back(record.text);
        } else if (record.level == '<') {
            ASSERT_FALSE(stack.empty());
            stack.pop_back();
        } else if (record.level == 'U' && record.text != "first") {
            const size_t dot = record.text.find('.');
            const std::string writer = record.text.substr(0, dot);
            EXPECT_EQ(stack, (std::vector<std::string>{"outer" + writer, "inner"}));
            EXPECT_EQ(record.text.substr(dot + 1), std::to_string(next[writer]++));
            ++messages;
        }
    }
    EXPECT_GE(messages, writers * rounds);
    open.erase(GetCurrentThreadId()); // its main frame has no end
    for (const auto& [thread, stack] : open)
        EXPECT_TRUE(stack.empty());
}

TEST_F(TraceThreads, SwitchFlippedUnderTheWritersTearsNoRecord)
{
    const decodedTrace_t trace = run([] {
        for (DWORD flip = 0; flip < 40; ++flip) {
            setNumber(L"DoTrace", flip % 2);
            follow();
        }
    });
    std::map<std::string, int> last;
    for (const decodedRecord_t& record : trace.records) {
        if (record.level != 'U' || record.text == "first")
            continue;
        const size_t dot = record.text.find('.');
        const int number = std::stoi(record.text.substr(dot + 1)) + 1;
        int& before = last[record.text.substr(0, dot)];
        EXPECT_GT(number, before);
        before = number;
    }
}

} // namespace
