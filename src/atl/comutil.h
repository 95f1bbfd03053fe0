#pragma once

#include "atl/exception.h"

#include <windows.h>
#include <oleauto.h>

#include <string>

namespace ATL {

// CComBSTR owns one BSTR, which may be null. A failed allocation raises CAtlException with
// E_OUTOFMEMORY.
class CComBSTR
{
public:
    CComBSTR() noexcept = default;
    explicit CComBSTR(const wchar_t* text); // null gives null
    explicit CComBSTR(const std::wstring& text) : CComBSTR(text.c_str()) {}
    CComBSTR(const CComBSTR&) = delete;
    CComBSTR& operator=(const CComBSTR&) = delete;
    ~CComBSTR() { SysFreeString(m_str); }

    operator BSTR() const noexcept { return m_str; }
    UINT Length() const noexcept { return SysStringLen(m_str); }

    void Append(const wchar_t* text);

    // Copy gives a copy byte for byte, the caller's; null for null.
    [[nodiscard]] BSTR Copy() const;
    [[nodiscard]] BSTR Detach() noexcept;

    // operator& gives the place where a call stores a string; what is held is freed.
    BSTR* operator&() noexcept;

    BSTR m_str = nullptr;
};

// CComVariant owns what its VARIANT holds.
//
// Source: VariantInit, VariantClear
class CComVariant : public tagVARIANT
{
public:
    CComVariant() noexcept { VariantInit(this); }
    explicit CComVariant(const wchar_t* text);       // VT_BSTR; null gives a null payload
    explicit CComVariant(IUnknown* object) noexcept; // VT_UNKNOWN, with a reference of its own
    CComVariant(const CComVariant&) = delete;
    CComVariant& operator=(const CComVariant&) = delete;
    ~CComVariant() { Clear(); }

    HRESULT Clear() noexcept { return VariantClear(this); }

    // Detach clears the target and moves this one's bits there. A target that can't be cleared
    // keeps what it holds, and so does this one.
    HRESULT Detach(VARIANT* target) noexcept;
};

// AtlCrtErrorCheck passes 0 and STRUNCATE; ENOMEM raises E_OUTOFMEMORY, EINVAL and ERANGE
// E_INVALIDARG, all others E_FAIL.
//
// error: as the C runtime's checked copies return it
void AtlCrtErrorCheck(int error);

} // namespace ATL
