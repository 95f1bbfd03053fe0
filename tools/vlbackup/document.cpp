#include "document.h"

#include "backup/blob/unicode.h"

#include <memory>

std::optional<Json::Value> parseDocument(const std::string& text)
{
    const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
    Json::Value value;
    std::string errors;
    try {
        if (reader->parse(text.data(), text.data() + text.size(), &value, &errors))
            return value;
    } catch (const Json::Exception&) {
        // nested too deeply to be read
    }
    return std::nullopt;
}

std::string jsonText(const Json::Value& value, bool indented)
{
    Json::StreamWriterBuilder builder;
    builder["emitUTF8"] = true;
    builder["enableYAMLCompatibility"] = true; // no blank before a colon
    builder["indentation"] = indented ? "  " : "";
    return Json::writeString(builder, value);
}

std::string cleanUtf8(const std::string& text)
{
    return utf8FromUtf16(utf16FromUtf8(text));
}

std::string printable(const std::string& text)
{
    static constexpr char digits[] = "0123456789abcdef";
    std::u16string out;
    for (const char16_t unit : utf16FromUtf8(text)) {
        if (unit < 0x20 || (unit >= 0x7F && unit < 0xA0)) {
            out += u"\\x";
            out += static_cast<char16_t>(digits[unit >> 4 & 0xF]);
            out += static_cast<char16_t>(digits[unit & 0xF]);
        } else {
            out += unit;
        }
    }
    return utf8FromUtf16(out);
}
