#include <functional>
#include <stdexcept>

#include <gtest/gtest.h>

#include "atl/exception.h"
#include "common/status.h"
#include "plugin/errorframe.h"
#include "support/tracerecorder.h"
#include "tracecore/realtracer.h"

namespace {

HRESULT statusAfter(const std::function<void()>& body)
{
    try {
        body();
        return S_OK;
    } catch (...) {
        return frameStatus("GetProperty");
    }
}

} // namespace

TEST(ErrorFrame, EachKindOfFailureHasItsStatusAndLine)
{
    const struct {
        std::function<void()> body;
        HRESULT status;
        std::vector<std::wstring> lines;
    } cases[] = {
        {[] { throw std::runtime_error("why"); }, E_UNEXPECTED, {L"E 0 GetProperty[std]why"}},
        {[] { raiseStatus(E_POINTER); }, E_POINTER, {L"E -2147467261 GetProperty[com]"}},
        {[] { raiseStatus(S_FALSE); }, S_FALSE, {}}, // no failure: passes through without a line
        {[] { raiseError(ERROR_ACCESS_DENIED); },
         E_ACCESSDENIED,
         {L"E -2147024891 GetProperty[com]"}},
        {[] { ATL::AtlThrow(E_OUTOFMEMORY); },
         E_FAIL,
         {L"E 0 GetPropertyoo"}}, // its status is lost
        {[] { throw 1; }, E_FAIL, {L"E 0 GetPropertyoo"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        traceRecorder_t trace;
        EXPECT_EQ(statusAfter(c.body), c.status);
        EXPECT_EQ(trace.messages(), c.lines);
    }
}

TEST(ErrorFrame, AClosedTracerChangesNoStatusAndStillAsksForTheText)
{
    struct asked_t : std::exception {
        int* count;
        explicit asked_t(int* c) : count(c) {}
        const char* what() const noexcept override { return ++*count, "text"; }
    };
    tracecore::traceDisabled = 1;
    int asked = 0;
    EXPECT_EQ(statusAfter([&] { throw asked_t(&asked); }), E_UNEXPECTED);
    EXPECT_GT(asked, 0);
    EXPECT_EQ(statusAfter([] { raiseStatus(E_POINTER); }), E_POINTER);
    EXPECT_EQ(statusAfter([] { throw 1; }), E_FAIL);
    tracecore::traceDisabled = 0;
}
