#include "tracecore/tracer.h"

#include "support/tracerecorder.h"

#include <gtest/gtest.h>

using namespace tracecore;

namespace {

// The records as "level text [function]".
std::vector<std::wstring> lines(traceRecorder_t& recorder)
{
    std::vector<std::wstring> result;
    for (const traceRecord_t& r : recorder.all())
        result.push_back(formatWide(L"%c %s [%hs]", r.level, r.text.c_str(), r.function.c_str()));
    return result;
}

using strings = std::vector<std::wstring>;

TEST(Tracer, MessageWritesTheOpenFunctionsOutermostFirstAndTheirExits)
{
    traceRecorder_t recorder;
    {
        traceScope_t outer("outer");
        {
            traceScope_t silent("silent");
        }
        traceScope_t inner("inner");
        traceText("one");
        traceStatus(nullptr, E_ACCESSDENIED);
    }
    EXPECT_EQ(lines(recorder), (strings{L"> outer [outer]", L"> inner [inner]", L"U one [inner]",
                                        L"E -2147024891  [inner]", L"<  [inner]", L"<  [outer]"}));
}

} // namespace
