#include "variantjson.h"

#include "common/scoped.h"
#include "common/text.h"
#include "print.h"
#include "shared/hextext.h"
#include "shared/systemerror.h"
#include "variants.h"
#include "vlonlineids.h"

#include <sstream>

using namespace VLONLINEIDSLib;

namespace {

std::string utf8FromBstr(BSTR text)
{
    return text ? utf8FromWide({text, SysStringLen(text)}) : std::string();
}

std::string typeName(VARTYPE type)
{
    const struct {
        VARTYPE type;
        const char* name;
    } names[] = {
        {VT_EMPTY, "VT_EMPTY"},
        {VT_NULL, "VT_NULL"},
        {VT_I1, "VT_I1"},
        {VT_I2, "VT_I2"},
        {VT_I4, "VT_I4"},
        {VT_I8, "VT_I8"},
        {VT_INT, "VT_INT"},
        {VT_UI1, "VT_UI1"},
        {VT_UI2, "VT_UI2"},
        {VT_UI4, "VT_UI4"},
        {VT_UI8, "VT_UI8"},
        {VT_UINT, "VT_UINT"},
        {VT_R4, "VT_R4"},
        {VT_R8, "VT_R8"},
        {VT_CY, "VT_CY"},
        {VT_DATE, "VT_DATE"},
        {VT_DECIMAL, "VT_DECIMAL"},
        {VT_BSTR, "VT_BSTR"},
        {VT_BOOL, "VT_BOOL"},
        {VT_ERROR, "VT_ERROR"},
        {VT_VARIANT, "VT_VARIANT"},
        {VT_UNKNOWN, "VT_UNKNOWN"},
        {VT_DISPATCH, "VT_DISPATCH"},
    };
    const auto element = static_cast<VARTYPE>(type & VT_TYPEMASK);
    std::ostringstream number; // of a type without a name
    number << "0x" << std::hex << std::uppercase << element;
    std::string text = number.str();
    for (const auto& row : names)
        if (row.type == element)
            text = row.name;
    if (type & VT_ARRAY)
        text = "VT_ARRAY | " + text;
    if (type & VT_BYREF)
        text = "VT_BYREF | " + text;
    return text;
}

Json::Value jsonOfElement(SAFEARRAY* array, VARTYPE type, LONG index)
{
    CVariant element;
    HRESULT status = S_OK;
    if (type == VT_VARIANT) {
        status = SafeArrayGetElement(array, &index, element.Get());
    } else {
        element.Get()->vt = type;
        status = SafeArrayGetElement(array, &index, &element.Get()->llVal);
    }
    if (FAILED(status)) {
        element.Get()->vt = VT_EMPTY;
        return statusText(status);
    }
    return type == VT_VARIANT ? jsonOfVariant(element.Value())
                              : jsonOfVariant(element.Value())["value"];
}

Json::Value jsonOfArray(SAFEARRAY* array, VARTYPE type)
{
    if (!array)
        return {};
    Json::Value json(Json::objectValue);
    LONG lower = 0;
    LONG upper = -1;
    if (SafeArrayGetDim(array) != 1 || FAILED(SafeArrayGetLBound(array, 1, &lower)) ||
        FAILED(SafeArrayGetUBound(array, 1, &upper))) {
        json["dimensions"] = SafeArrayGetDim(array); // the plug-in has no use for more than one
        return json;
    }
    json["lower"] = static_cast<Json::Int64>(lower);
    json["upper"] = static_cast<Json::Int64>(upper);
    if (type == VT_UI1) {
        VARIANT loan;
        loan.vt = VT_ARRAY | VT_UI1;
        loan.parray = array;
        json["bytes"] = hexText(bytesOf(loan));
        return json;
    }
    Json::Value& elements = json["elements"] = Json::Value(Json::arrayValue);
    for (int64_t i = lower; i <= upper; ++i)
        elements.append(jsonOfElement(array, type, static_cast<LONG>(i)));
    return json;
}

std::string objectText(IUnknown* object)
{
    if (!object)
        return "null";
    IUnknown* element = nullptr;
    if (FAILED(
            object->QueryInterface(__uuidof(IVLKTElementUI), reinterpret_cast<void**>(&element))))
        return "an object";
    element->Release();
    return "an object with IVLKTElementUI";
}

} // namespace

Json::Value jsonOfVariant(const VARIANT& value)
{
    Json::Value json(Json::objectValue);
    json["type"] = typeName(value.vt);
    if (value.vt & VT_BYREF)
        return json;
    if (value.vt & VT_ARRAY) {
        json["value"] = jsonOfArray(value.parray, static_cast<VARTYPE>(value.vt & VT_TYPEMASK));
        return json;
    }
    switch (value.vt) {
    case VT_BSTR:
        json["value"] = utf8FromBstr(value.bstrVal);
        break;
    case VT_BOOL:
        json["value"] = value.boolVal != VARIANT_FALSE;
        break;
    case VT_I4:
    case VT_INT:
        json["value"] = static_cast<Json::Int>(value.lVal);
        break;
    case VT_ERROR:
        json["value"] = jsonOfStatus(value.scode);
        break;
    case VT_UI4:
    case VT_UINT:
        json["value"] = static_cast<Json::UInt>(value.ulVal);
        break;
    case VT_UNKNOWN:
    case VT_DISPATCH:
        json["value"] = objectText(value.punkVal);
        break;
    case VT_EMPTY:
    case VT_NULL:
        break;
    default: {
        CVariant text;                                     // of all other simple types
        auto* const source = const_cast<VARIANT*>(&value); // an input only, in spite of its type
        if (SUCCEEDED(VariantChangeTypeEx(text.Get(), source, LOCALE_INVARIANT, 0, VT_BSTR)))
            json["value"] = utf8FromBstr(text.Value().bstrVal);
    }
    }
    return json;
}
