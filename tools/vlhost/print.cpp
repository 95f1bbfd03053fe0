#include "print.h"

#include <iostream>
#include <sstream>

#include <json/writer.h>

#include "common/scoped.h"
#include "common/text.h"
#include "common/statusnames.h"
#include "vlonlineids.h"

using namespace VLONLINEIDSLib;

namespace {

std::string utf8FromBstr(BSTR text)
{
    return text ? utf8FromWide({text, SysStringLen(text)}) : std::string();
}

std::string hexadecimal(unsigned long number)
{
    std::ostringstream text;
    text << "0x" << std::hex << std::uppercase << number;
    return text.str();
}

std::string typeName(VARTYPE type)
{
    const struct {
        VARTYPE type;
        const char* name;
    } names[] = {
        {VT_EMPTY, "VT_EMPTY"},
        {VT_NULL, "VT_NULL"},
        {VT_I2, "VT_I2"},
        {VT_I4, "VT_I4"},
        {VT_R8, "VT_R8"},
        {VT_BSTR, "VT_BSTR"},
        {VT_DISPATCH, "VT_DISPATCH"},
        {VT_ERROR, "VT_ERROR"},
        {VT_BOOL, "VT_BOOL"},
        {VT_VARIANT, "VT_VARIANT"},
        {VT_UNKNOWN, "VT_UNKNOWN"},
        {VT_UI1, "VT_UI1"},
        {VT_UI4, "VT_UI4"},
        {VT_I8, "VT_I8"},
        {VT_UI8, "VT_UI8"},
    };
    const auto element = static_cast<VARTYPE>(type & VT_TYPEMASK);
    std::string text = hexadecimal(element);
    for (const auto& row : names)
        if (row.type == element)
            text = row.name;
    if (type & VT_ARRAY)
        text = "VT_ARRAY | " + text;
    if (type & VT_BYREF)
        text = "VT_BYREF | " + text;
    return text;
}

Json::Value jsonOfArray(SAFEARRAY* array, VARTYPE element)
{
    Json::Value json(Json::objectValue);
    if (!array)
        return {};
    LONG lower = 0;
    LONG upper = -1;
    SafeArrayGetLBound(array, 1, &lower);
    SafeArrayGetUBound(array, 1, &upper);
    json["lower"] = static_cast<Json::Int64>(lower);
    json["upper"] = static_cast<Json::Int64>(upper);
    void* data = nullptr;
    if (FAILED(SafeArrayAccessData(array, &data)))
        return json;
    const auto count = static_cast<size_t>(upper - lower + 1);
    if (element == VT_UI1) {
        std::ostringstream hex;
        hex << std::hex;
        for (size_t i = 0; i < count; ++i) {
            const unsigned byte = static_cast<const BYTE*>(data)[i];
            hex << (byte >> 4) << (byte & 15);
        }
        json["bytes"] = hex.str();
    } else {
        Json::Value& elements = json["elements"] = Json::Value(Json::arrayValue);
        for (size_t i = 0; i < count; ++i) {
            if (element == VT_BSTR)
                elements.append(utf8FromBstr(static_cast<BSTR*>(data)[i]));
            else if (element == VT_VARIANT)
                elements.append(jsonOfVariant(static_cast<VARIANT*>(data)[i]));
        }
    }
    SafeArrayUnaccessData(array);
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

void append(std::string& text, const Json::Value& value, const std::string& indent)
{
    const auto names = value.isObject() ? value.getMemberNames() : Json::Value::Members();
    for (Json::ArrayIndex i = 0; i < value.size(); ++i) {
        const std::string label = value.isObject() ? names[i] + ":" : "-";
        const Json::Value& member = value.isObject() ? value[names[i]] : value[i];
        text += indent + label;
        if ((member.isObject() || member.isArray()) && !member.empty()) {
            text += '\n';
            append(text, member, indent + "  ");
        } else {
            text += ' ' + plainText(member) + '\n';
        }
    }
}

} // namespace

std::string errorText(DWORD error)
{
    wchar_t* raw = nullptr;
    const DWORD length = FormatMessageW(
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
        nullptr, error, 0, reinterpret_cast<wchar_t*>(&raw), 0, nullptr);
    const CLocalMemory owner(raw);
    std::string text = utf8FromWide({raw ? raw : L"", length});
    while (!text.empty() && (text.back() == '\r' || text.back() == '\n' || text.back() == ' '))
        text.pop_back();
    return text.empty() ? "error " + hexadecimal(error) : text;
}

std::string statusText(HRESULT status)
{
    const tools::statusInfo_t known = tools::describeStatus(status);
    std::string text = known.hex;
    if (!known.name.empty())
        text += ' ' + known.name;
    return text + ": " + errorText(static_cast<DWORD>(status));
}

Json::Value jsonOfStatus(HRESULT status)
{
    const tools::statusInfo_t known = tools::describeStatus(status);
    Json::Value json(Json::objectValue);
    json["number"] = known.hex;
    json["name"] = known.name;
    json["text"] = errorText(static_cast<DWORD>(status));
    return json;
}

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
    case VT_ERROR:
        json["value"] = static_cast<Json::Int>(value.lVal);
        break;
    case VT_UI4:
        json["value"] = static_cast<Json::UInt>(value.ulVal);
        break;
    case VT_UNKNOWN:
    case VT_DISPATCH:
        json["value"] = objectText(value.punkVal);
        break;
    default:
        break;
    }
    return json;
}

std::string plainText(const Json::Value& value)
{
    if (value.isNull())
        return "none";
    if (value.isBool())
        return value.asBool() ? "yes" : "no";
    if (value.isObject() || value.isArray()) {
        std::string text;
        append(text, value, "");
        return text.empty() ? "none" : text;
    }
    return value.asString();
}

void printResult(const Json::Value& value, bool asJson)
{
    if (asJson) {
        Json::StreamWriterBuilder builder;
        builder["indentation"] = "  ";
        builder["emitUTF8"] = true;
        std::cout << Json::writeString(builder, value) << '\n';
    } else {
        std::cout << plainText(value);
    }
}
