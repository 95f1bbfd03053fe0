#include "atl/comutil.h"

#include <cerrno>
#include <string>
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

CComBSTR::CComBSTR(UINT length, const wchar_t* text)
    : m_str(orThrow(SysAllocStringLen(text, length)))
{}

CComBSTR& CComBSTR::operator=(CComBSTR other) noexcept
{
    std::swap(m_str, other.m_str);
    return *this;
}

void CComBSTR::Append(const wchar_t* text)
{
    std::wstring joined(m_str ? m_str : L"", Length());
    joined += text;
    *this = CComBSTR(static_cast<UINT>(joined.size()), joined.c_str());
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

CComVariant::CComVariant(const wchar_t* text) : CComVariant(CComBSTR(text)) {}

CComVariant::CComVariant(CComBSTR&& text) noexcept : CComVariant()
{
    vt = VT_BSTR;
    bstrVal = text.Detach();
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
