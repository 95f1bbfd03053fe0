#include <functional>
#include <new>

#include <gtest/gtest.h>

#include "atl/exception.h"
#include "common/status.h"
#include "plugin/errorframe.h"

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

TEST(ErrorFrame, EachKindOfFailureHasItsStatus)
{
    const struct {
        std::function<void()> body;
        HRESULT status;
    } cases[] = {
        {[] { throw std::bad_alloc(); }, E_UNEXPECTED},
        {[] { raiseStatus(E_POINTER); }, E_POINTER},
        {[] { raiseStatus(S_FALSE); }, S_FALSE}, // a status that is no failure passes through
        {[] { raiseError(ERROR_ACCESS_DENIED); }, E_ACCESSDENIED},
        {[] { ATL::AtlThrow(E_OUTOFMEMORY); }, E_FAIL}, // a container's status is lost
        {[] { throw 1; }, E_FAIL},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        EXPECT_EQ(statusAfter(c.body), c.status);
    }
}
