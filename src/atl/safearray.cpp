#include "atl/safearray.h"

#include <cstring>
#include <utility>

using ATL::AtlThrow;

namespace {

void throwIfFailed(HRESULT status)
{
    if (FAILED(status))
        AtlThrow(status);
}

HRESULT vartypeOf(SAFEARRAY* array, VARTYPE& type) noexcept
{
    const HRESULT status = SafeArrayGetVartype(array, &type);
    constexpr USHORT dispatch = FADF_HAVEIID | FADF_DISPATCH;
    // The platform answers VT_UNKNOWN for arrays of dispatch objects too.
    if (SUCCEEDED(status) && type == VT_UNKNOWN && (array->fFeatures & dispatch) == dispatch)
        type = VT_DISPATCH;
    return status;
}

} // namespace

HRESULT CVLSafeArray::Resize(ULONG newCount, LONG lowerBound)
{
    if (!m_array)
        AtlThrow(E_FAIL);
    if ((m_array->fFeatures & FADF_FIXEDSIZE) != 0)
        return E_FAIL;
    HRESULT status = SafeArrayUnlock(m_array); // a locked array can't be resized
    if (FAILED(status))
        return status;
    SAFEARRAYBOUND bound{newCount, lowerBound};
    status = SafeArrayRedim(m_array, &bound);
    const HRESULT locked = SafeArrayLock(m_array);
    if (FAILED(locked)) // without the holder's lock it could not be released either
        SafeArrayDestroy(std::exchange(m_array, nullptr));
    return FAILED(status) ? status : locked;
}

LONG CVLSafeArray::LowerBound() const
{
    LONG bound = 0;
    throwIfFailed(SafeArrayGetLBound(m_array, 1, &bound));
    return bound;
}

LONG CVLSafeArray::UpperBound() const
{
    LONG bound = 0;
    throwIfFailed(SafeArrayGetUBound(m_array, 1, &bound));
    return bound;
}

HRESULT CVLSafeArray::Release() noexcept
{
    if (!m_array)
        return S_OK;
    HRESULT status = SafeArrayUnlock(m_array);
    if (SUCCEEDED(status))
        status = SafeArrayDestroy(m_array);
    if (SUCCEEDED(status))
        m_array = nullptr;
    return status;
}

void CVLSafeArray::Wrap(VARIANT& variant)
{
    VARTYPE type = VT_EMPTY;
    HRESULT status = m_array ? vartypeOf(m_array, type) : E_INVALIDARG;
    if (SUCCEEDED(status))
        status = SafeArrayUnlock(m_array);
    if (FAILED(status)) {
        variant.vt = VT_ERROR;
        variant.scode = status;
        AtlThrow(status);
    }
    variant.vt = static_cast<VARTYPE>(type | VT_ARRAY);
    variant.parray = std::exchange(m_array, nullptr);
}

HRESULT CVLSafeArray::CreateOnDemand(VARTYPE type) noexcept
{
    if (m_array)
        return S_OK;
    SAFEARRAYBOUND none{0, 0};
    SAFEARRAY* made = SafeArrayCreate(type, 1, &none);
    if (!made)
        return E_OUTOFMEMORY;
    const HRESULT status = SafeArrayLock(made);
    if (FAILED(status))
        SafeArrayDestroy(made);
    else
        m_array = made;
    return status;
}

HRESULT CVLSafeArray::Grow(VARTYPE type, ULONG count, LONG& first)
{
    HRESULT status = CreateOnDemand(type);
    if (FAILED(status))
        return status;
    const LONG lower = LowerBound();
    const auto old = static_cast<ULONG>(UpperBound() - lower + 1);
    if (count > static_cast<ULONG>(MAXLONG) - old)
        return E_OUTOFMEMORY;
    status = Resize(old + count, lower);
    if (SUCCEEDED(status))
        first = UpperBound() - static_cast<LONG>(count) + 1;
    return status;
}

HRESULT CVLSafeArray::Element(LONG index, void*& place) const
{
    place = nullptr;
    const LONG lower = LowerBound();
    const LONG upper = UpperBound();
    if (index < lower || index > upper)
        return E_INVALIDARG;
    return SafeArrayPtrOfIndex(m_array, &index, &place);
}

HRESULT CVLBstrArray::SetAt(LONG index, const wchar_t* text)
{
    if (!text)
        return E_INVALIDARG;
    void* place = nullptr;
    const HRESULT status = Element(index, place);
    if (FAILED(status))
        return status;
    BSTR copy = SysAllocString(text);
    if (!copy)
        return E_OUTOFMEMORY;
    SysFreeString(std::exchange(*static_cast<BSTR*>(place), copy));
    return S_OK;
}

HRESULT CVLBstrArray::Add(const wchar_t* text)
{
    LONG index = 0;
    const HRESULT status = Grow(VT_BSTR, 1, index);
    return FAILED(status) ? status : SetAt(index, text);
}

HRESULT CVLVariantArray::SetAt(LONG index, VARIANT& value)
{
    void* place = nullptr;
    const HRESULT status = Element(index, place);
    return FAILED(status) ? status : VariantCopyInd(static_cast<VARIANT*>(place), &value);
}

HRESULT CVLVariantArray::Add(VARIANT& value)
{
    LONG index = 0;
    const HRESULT status = Grow(VT_VARIANT, 1, index);
    return FAILED(status) ? status : SetAt(index, value);
}

HRESULT CVLByteArray::SetAt(LONG index, uint8_t value)
{
    if (!m_array)
        return E_FAIL;
    void* place = nullptr;
    const HRESULT status = Element(index, place);
    if (SUCCEEDED(status))
        *static_cast<uint8_t*>(place) = value;
    return status;
}

HRESULT CVLByteArray::Add(std::span<const uint8_t> bytes)
{
    if (bytes.size() > MAXLONG)
        return E_OUTOFMEMORY;
    std::span<uint8_t> place;
    const HRESULT status = Extend(static_cast<ULONG>(bytes.size()), place);
    if (SUCCEEDED(status) && !bytes.empty())
        std::memcpy(place.data(), bytes.data(), bytes.size());
    return status;
}

HRESULT CVLByteArray::Extend(ULONG count, std::span<uint8_t>& place)
{
    place = {};
    LONG first = 0;
    HRESULT status = Grow(VT_UI1, count, first);
    if (FAILED(status) || count == 0)
        return status;
    void* start = nullptr;
    status = Element(first, start);
    if (SUCCEEDED(status))
        place = {static_cast<uint8_t*>(start), count};
    return status;
}

HRESULT CVLByteArray::CopyFrom(SAFEARRAY* source)
{
    if (!source)
        AtlThrow(E_INVALIDARG);
    VARTYPE type = VT_EMPTY;
    throwIfFailed(vartypeOf(source, type));
    if (type != VT_UI1)
        AtlThrow(E_INVALIDARG);
    throwIfFailed(Release());
    throwIfFailed(SafeArrayCopy(source, &m_array));
    const HRESULT status = SafeArrayLock(m_array);
    if (FAILED(status))
        SafeArrayDestroy(std::exchange(m_array, nullptr));
    return status;
}

std::span<const uint8_t> CVLByteArray::Bytes() const noexcept
{
    if (!m_array || !m_array->pvData)
        return {};
    size_t count = m_array->cbElements;
    for (USHORT i = 0; i < m_array->cDims; ++i)
        count *= m_array->rgsabound[i].cElements;
    return {static_cast<const uint8_t*>(m_array->pvData), count};
}

void handOver(VARIANT* output, ATL::CComVariant& local)
{
    if (!output || FAILED(VariantClear(output))) {
        local.Clear();
        return;
    }
    const VARIANT& bits = local;
    ATL::AtlCrtErrorCheck(memcpy_s(output, sizeof *output, &bits, sizeof bits));
    local.vt = VT_EMPTY;
}
