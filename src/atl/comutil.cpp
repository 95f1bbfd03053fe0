#include "atl/comutil.h"

#include <algorithm>
#include <cerrno>
#include <cwchar>
#include <utility>

namespace ATL {

namespace {

BSTR orThrow(BSTR made)
{
    if (!made)
        AtlThrow(E_OUTOFMEMORY);
    return made;
}

} // namespace

CComBSTR::CComBSTR(const wchar_t* text) : m_str(text ? orThrow(SysAllocString(text)) : nullptr) {}

void CComBSTR::Append(const wchar_t* text)
{
    const size_t length = std::wcslen(text);
    CComBSTR joined;
    joined.m_str = orThrow(SysAllocStringLen(nullptr, Length() + static_cast<UINT>(length)));
    std::copy_n(text, length, std::copy_n(m_str, Length(), joined.m_str));
    std::swap(m_str, joined.m_str);
}

BSTR CComBSTR::Copy() const
{
    if (!m_str)
        return nullptr;
    return orThrow(
        SysAllocStringByteLen(reinterpret_cast<const char*>(m_str), SysStringByteLen(m_str)));
}

BSTR CComBSTR::Detach() noexcept
{
    return std::exchange(m_str, nullptr);
}

BSTR* CComBSTR::operator&() noexcept
{
    SysFreeString(Detach());
    return &m_str;
}

CComVariant::CComVariant(const wchar_t* text) : CComVariant()
{
    bstrVal = CComBSTR(text).Detach();
    vt = VT_BSTR;
}

CComVariant::CComVariant(IUnknown* object) noexcept : CComVariant()
{
    vt = VT_UNKNOWN;
    punkVal = object;
    if (object)
        object->AddRef();
}

HRESULT CComVariant::Detach(VARIANT* target) noexcept
{
    const HRESULT cleared = VariantClear(target);
    if (FAILED(cleared))
        return cleared;
    *target = *this;
    vt = VT_EMPTY;
    return S_OK;
}

void AtlCrtErrorCheck(int error)
{
    switch (error) {
    case 0:
    case STRUNCATE:
        return;
    case ENOMEM:
        AtlThrow(E_OUTOFMEMORY);
    case EINVAL:
    case ERANGE:
        AtlThrow(E_INVALIDARG);
    default:
        AtlThrow(E_FAIL);
    }
}

} // namespace ATL
