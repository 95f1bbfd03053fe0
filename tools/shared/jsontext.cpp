#include "shared/jsontext.h"

#include "formats/text/printable.h"
#include "formats/text/unicode.h"

#include <array>
#include <cstdio>
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
