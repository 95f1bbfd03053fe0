#include "shared/jsontext.h"

#include "formats/text/printable.h"
#include "formats/text/unicode.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>
#include <sstream>
#include <utility>

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

} // namespace

std::string escapeSteering(std::string_view json)
{
    std::string out;
    out.reserve(json.size());
    while (!json.empty()) {
        if (static_cast<unsigned char>(json[0]) < 0x7F) { // the writer has escaped these
            out += json[0];
            json.remove_prefix(1);
            continue;
        }
        const std::string_view before = json;
        const char32_t character = takeCharacter(json);
        if (isSteering(character)) {
            std::array<char, 8> escape{};
            std::snprintf(escape.data(), escape.size(), "\\u%04x",
                          static_cast<unsigned>(character));
            out += escape.data();
        } else if (character == 0xFFFD) {
            out += "\uFFFD";
        } else {
            out += before.substr(0, before.size() - json.size());
        }
    }
    return out;
}

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
    static constexpr char digits[] =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
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

CJsonDocument::CJsonDocument(std::ostream& out) : m_out(out)
{
    m_out << '{';
}

CJsonDocument::~CJsonDocument()
{
    m_out << "\n}\n";
}

void CJsonDocument::Name(const char* name)
{
    m_out << std::exchange(m_separator, ",\n") << "  " << jsonText(name, false) << ": ";
}

// A line end in JSON text is never part of a value.
void CJsonDocument::Value(const Json::Value& value, const char* indentation)
{
    for (const char c : jsonText(value, true)) {
        m_out << c;
        if (c == '\n')
            m_out << indentation;
    }
}

void CJsonDocument::Member(const char* name, const Json::Value& value)
{
    Name(name);
    Value(value, "  ");
}

void CJsonDocument::Base64(const char* name, std::span<const uint8_t> bytes)
{
    constexpr size_t piece = 3 << 14; // of whole groups
    Name(name);
    m_out << '"';
    for (; !bytes.empty(); bytes = bytes.subspan(std::min(piece, bytes.size())))
        m_out << base64(bytes.first(std::min(piece, bytes.size())));
    m_out << '"';
}

void CJsonDocument::BeginList(const char* name)
{
    Name(name);
    m_out << '[';
    m_firstItem = true;
}

void CJsonDocument::Item(const Json::Value& value)
{
    m_out << (std::exchange(m_firstItem, false) ? "\n    " : ",\n    ");
    Value(value, "    ");
}

void CJsonDocument::EndList()
{
    m_out << (m_firstItem ? "]" : "\n  ]");
}
