#include "print.h"

#include "common/scoped.h"
#include "common/text.h"
#include "formats/text/printable.h"
#include "shared/jsontext.h"
#include "shared/statusnames.h"
#include "variants.h"
#include "vlonlineids.h"

#include <algorithm>
#include <iomanip>
#include <iostream>
#include <sstream>

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

// The order for people: what matters first. The parser's own order is alphabetical.
constexpr const char* memberOrder[] = {
    // of a plug-in and its notifications
    "file", "name", "number", "fixedName", "description", "caption", "explanation", "shown",
    "canOpenConsole", "classIdentifier", "icon", "kind", "interfaces", "state", "notifications",
    // of a state
    "status", "level", "switch", "disabledByPolicy",
    // of a backup and a restore
    "backup", "bytes", "secrets", "plan", "deletes", "writes", "quickLinkFile",
    "replacesCategories", "appliesSettings", "differences", "putBack", "removed", "categories",
    "settings", "safetyCopy",
    // of tracing
    "tracing", "to", "until", "excluded", "folder", "values", "followed", "files", "size",
    "modified", "process", "open", "result",
    // of a single call
    "failed", "type", "text", "value", "lower", "upper"};

size_t rankOf(const std::string& name)
{
    const auto* const found = std::find(std::begin(memberOrder), std::end(memberOrder), name);
    return static_cast<size_t>(found - std::begin(memberOrder));
}

Json::Value::Members orderedMembers(const Json::Value& value)
{
    Json::Value::Members names = value.getMemberNames();
    std::stable_sort(
        names.begin(), names.end(),
        [](const std::string& one, const std::string& two) { return rankOf(one) < rankOf(two); });
    return names;
}

// Names of members as words: "canOpenConsole" is "can open console". Names that aren't ours, such
// as those of settings, stay as they are.
std::string labelOf(const std::string& name)
{
    if (rankOf(name) == std::size(memberOrder))
        return name;
    std::string label;
    for (const char c : name) {
        const bool upper = c >= 'A' && c <= 'Z';
        if (upper)
            label += ' ';
        label += upper ? static_cast<char>(c - 'A' + 'a') : c;
    }
    return label;
}

constexpr char meaningSuffix[] = "Meaning";

void append(std::string& text, const Json::Value& value, const std::string& indent);

void appendMember(std::string& text, const Json::Value& member, const std::string& meaning,
                  const std::string& indent)
{
    if ((member.isObject() || member.isArray()) && !member.empty()) {
        text += '\n';
        append(text, member, indent + "  ");
        return;
    }
    text += ' ' + plainText(member) + (meaning.empty() ? "" : " (" + meaning + ")") + '\n';
}

void append(std::string& text, const Json::Value& value, const std::string& indent)
{
    if (value.isArray()) {
        for (const auto& element : value) {
            text += indent + '-';
            appendMember(text, element, "", indent);
        }
        return;
    }
    for (const auto& name : orderedMembers(value)) {
        if (name.ends_with(meaningSuffix))
            continue; // shown after what it explains
        text += indent + printable(labelOf(name)) + ':';
        appendMember(text, value[name], value[name + meaningSuffix].asString(), indent);
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

std::string hexText(const bytes_t& bytes)
{
    constexpr char digits[] = "0123456789abcdef";
    std::string hex;
    hex.reserve(2 * bytes.size());
    for (const BYTE one : bytes) {
        hex += digits[one >> 4];
        hex += digits[one & 15];
    }
    return hex;
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
    return printable(value.asString());
}

std::string textOfPlan(const Json::Value& plan)
{
    std::ostringstream text;
    for (const auto& file : plan["files"])
        text << "  " << std::left << std::setw(6) << file["action"].asString() << std::right
             << std::setw(12) << file["bytes"].asUInt64() << "  "
             << printable(file["path"].asString()) << '\n';
    for (const auto& [member, label] :
         {std::pair("quickLinks", "quick links"), std::pair("doNotPromptList", "addresses")})
        if (const Json::Value& file = plan[member]; file.isObject()) {
            text << "  " << label << ": ";
            if (file.isMember("count"))
                text << file["count"].asUInt64() << ", ";
            text << file["action"].asString() << ' ' << printable(file["path"].asString()) << '\n';
        }
    if (const Json::Value& categories = plan["categories"]; categories.isObject())
        text << "  categories: " << categories["count"].asUInt64() << " in place of "
             << categories["now"].asUInt64() << '\n';
    if (plan["appliesSettings"].asBool())
        text << "  settings: as in the backup\n";
    for (const auto& key : plan["settings"].getMemberNames())
        text << "  setting " << printable(key) << ": "
             << printable(plan["settings"][key].asString()) << '\n';
    return text.str();
}

void printResult(const Json::Value& value, bool asJson)
{
    if (asJson) {
        std::cout << jsonText(value, true) << '\n';
    } else {
        std::cout << plainText(value);
    }
}

CProgress::CProgress(const char* what, size_t total) : m_what(what), m_total(total)
{
    DWORD mode = 0;
    m_terminal = GetConsoleMode(GetStdHandle(STD_ERROR_HANDLE), &mode) != 0;
}

CProgress::~CProgress()
{
    if (m_terminal && m_shown != decltype(m_shown)())
        std::cerr << '\r' << std::string(40, ' ') << '\r' << std::flush;
}

void CProgress::Step()
{
    ++m_done;
    const auto now = std::chrono::steady_clock::now();
    if (!m_terminal || now - m_shown < std::chrono::milliseconds(100))
        return;
    m_shown = now;
    std::cerr << '\r' << m_what << ": " << m_done << " of " << m_total << std::flush;
}
