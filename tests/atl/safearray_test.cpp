#include "atl/safearray.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using bytes = std::vector<uint8_t>;

// The status that a call raises; S_OK for none.
template <class Call> HRESULT raised(const Call& call)
{
    try {
        call();
        return S_OK;
    } catch (const ATL::CAtlException& e) {
        return e.m_hr;
    }
}

TEST(SafeArrays, GrowAreReplacedInPlaceAndWrapped)
{
    CVLBstrArray names;
    CVLByteArray array;
    EXPECT_EQ(names.SetAt(0, nullptr), E_INVALIDARG); // before the bounds are asked for
    EXPECT_NE(raised([&] { names.SetAt(0, L"x"); }), S_OK);
    EXPECT_EQ(array.SetAt(0, 1), E_FAIL);
    EXPECT_EQ(raised([&] { array.Resize(1, 0); }), E_FAIL);
    EXPECT_EQ(names.Add(L"first") | names.Add(L"second") | names.SetAt(0, L"new"), S_OK);
    EXPECT_EQ(array.Add({}), S_OK);
    EXPECT_EQ(array.UpperBound(), -1);
    EXPECT_EQ(array.Add(bytes{1, 2, 3}) | array.Resize(2, 7) | array.SetAt(8, 9), S_OK);
    EXPECT_EQ(array.Add(bytes{5, 6}), S_OK); // after index 8
    EXPECT_EQ(names.SetAt(-1, L"x") & array.SetAt(6, 9), E_INVALIDARG);
    EXPECT_EQ(bytes(array.Bytes().begin(), array.Bytes().end()), (bytes{1, 9, 5, 6}));
    SafeArrayLock(array.Get()); // somebody else's
    EXPECT_EQ(array.Resize(9, 0) & array.Release(), DISP_E_ARRAYISLOCKED);
    ATL::CComVariant wrapped, failure;
    names.Wrap(wrapped);
    EXPECT_TRUE(wrapped.vt == (VT_ARRAY | VT_BSTR) && wrapped.parray->cLocks == 0);
    EXPECT_EQ(raised([&] { names.Wrap(failure); }), E_INVALIDARG); // there is none any more
    EXPECT_EQ(failure.scode, E_INVALIDARG);
    const auto* texts = static_cast<BSTR*>(wrapped.parray->pvData);
    EXPECT_EQ(texts[0] + std::wstring(texts[1]), L"newsecond");
    SAFEARRAY* const held = wrapped.parray;
    SafeArrayLock(held);
    ATL::CComVariant other(L"other");
    handOver(&wrapped, other); // can't free it, and so gives nothing
    EXPECT_TRUE(wrapped.vt != VT_BSTR && other.vt == VT_EMPTY);
    SafeArrayUnlock(held);
}

} // namespace
