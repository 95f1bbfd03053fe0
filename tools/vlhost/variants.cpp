#include "variants.h"

#include "common/text.h"

#include <algorithm>
#include <new>

void setBytes(CVariant& value, const bytes_t& bytes)
{
    SAFEARRAY* const array = SafeArrayCreateVector(VT_UI1, 0, static_cast<ULONG>(bytes.size()));
    void* data = nullptr;
    if (!array || FAILED(SafeArrayAccessData(array, &data)))
        throw std::bad_alloc();
    std::copy(bytes.begin(), bytes.end(), static_cast<BYTE*>(data));
    SafeArrayUnaccessData(array);
    VariantClear(value.Get());
    value.Get()->vt = VT_ARRAY | VT_UI1;
    value.Get()->parray = array;
}

namespace {

template <class Element, class Take> void eachElement(const VARIANT& value, VARTYPE type, Take take)
{
    if (value.vt != (VT_ARRAY | type) || !value.parray)
        return;
    LONG lower = 0;
    LONG upper = -1;
    void* data = nullptr;
    if (FAILED(SafeArrayGetLBound(value.parray, 1, &lower)) ||
        FAILED(SafeArrayGetUBound(value.parray, 1, &upper)) ||
        FAILED(SafeArrayAccessData(value.parray, &data)))
        return;
    const auto* const elements = static_cast<const Element*>(data);
    take(elements, elements + (upper - lower + 1));
    SafeArrayUnaccessData(value.parray);
}

} // namespace

bytes_t bytesOf(const VARIANT& value)
{
    bytes_t bytes;
    eachElement<BYTE>(value, VT_UI1,
                      [&](const BYTE* first, const BYTE* last) { bytes.assign(first, last); });
    return bytes;
}

std::vector<std::string> textsOf(const VARIANT& value)
{
    std::vector<std::string> texts;
    eachElement<BSTR>(value, VT_BSTR, [&](const BSTR* first, const BSTR* last) {
        for (; first != last; ++first)
            texts.push_back(*first ? utf8FromWide({*first, SysStringLen(*first)}) : std::string());
    });
    return texts;
}

void setText(CVariant& value, const std::string& utf8)
{
    const std::wstring text = wideFromUtf8(utf8);
    BSTR const copy = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    if (!copy)
        throw std::bad_alloc();
    VariantClear(value.Get());
    value.Get()->vt = VT_BSTR;
    value.Get()->bstrVal = copy;
}

std::vector<IUnknown*> notificationsIn(const VARIANT& value)
{
    std::vector<IUnknown*> objects;
    eachElement<VARIANT>(value, VT_VARIANT, [&](const VARIANT* first, const VARIANT* last) {
        for (; first != last; ++first)
            if (first->vt == VT_UNKNOWN && first->punkVal)
                objects.push_back(first->punkVal);
    });
    return objects;
}
