#include "shared/jsontext.h"

#include "shared/jsonstring.h"

#include <algorithm>
#include <memory>
#include <sstream>

#include <json/writer.h>

namespace {

std::unique_ptr<Json::StreamWriter> makeWriter(const char* indentation)
{
    Json::StreamWriterBuilder builder;
    builder["emitUTF8"] = true;
    builder["enableYAMLCompatibility"] = true; // no blank before a colon
    builder["indentation"] = indentation;
    return std::unique_ptr<Json::StreamWriter>(builder.newStreamWriter());
}

constexpr std::string_view digits =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

} // namespace

std::string jsonText(const Json::Value& value, bool indented)
{
    // Making a writer takes longer than a short text.
    static const std::unique_ptr<Json::StreamWriter> writers[] = {makeWriter(""), makeWriter("  ")};
    std::ostringstream text;
    writers[indented ? 1 : 0]->write(value, &text);
    return escapeSteering(text.str());
}

std::string base64(std::span<const uint8_t> bytes)
{
    std::string out;
    out.reserve((bytes.size() + 2) / 3 * 4);
    for (size_t i = 0; i < bytes.size(); i += 3) {
        const size_t count = std::min<size_t>(3, bytes.size() - i);
        uint32_t group = 0;
        for (size_t k = 0; k < 3; ++k)
            group = group << 8 | (k < count ? bytes[i + k] : 0U);
        for (size_t k = 0; k < 4; ++k)
            out += k <= count ? digits[group >> (18 - 6 * k) & 0x3F] : '=';
    }
    return out;
}

std::optional<std::vector<uint8_t>> bytesOfBase64(std::string_view text)
{
    if (text.size() % 4 != 0)
        return std::nullopt;
    const size_t padding = text.ends_with("==") ? 2 : text.ends_with('=') ? 1 : 0;
    std::vector<uint8_t> bytes;
    bytes.reserve(text.size() / 4 * 3);
    uint32_t group = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        const bool padded = i >= text.size() - padding;
        const size_t digit = padded ? 0 : digits.find(text[i]);
        if (digit == std::string_view::npos)
            return std::nullopt;
        group = group << 6 | static_cast<uint32_t>(digit);
        if (i % 4 == 3)
            for (const unsigned shift : {16U, 8U, 0U})
                bytes.push_back(static_cast<uint8_t>(group >> shift));
    }
    bytes.resize(bytes.size() - padding);
    return bytes;
}
