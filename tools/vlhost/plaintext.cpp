#include "plaintext.h"

#include "formats/text/printable.h"

#include <algorithm>
#include <iterator>

namespace {

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
