#include "backupjson.h"
#include "formats/backup/records.h"
#include "formats/der/dernode.h"
#include "formats/der/derreader.h"
#include "formats/text/unicode.h"
#include "shared/jsontext.h"
#include "shared/toolerror.h"

#include <algorithm>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>

#include <json/reader.h>

namespace {

// Place is a value and where it stands in the document, such as "templates[3].name".
struct Place {
    const Json::Value& value;
    std::string path;

    [[noreturn]] void Fail(const std::string& what) const
    {
        throw CToolError((path.empty() ? "the document" : path) + ' ' + what,
                         "vlbackup to-json writes such a document");
    }

    Place operator[](const char* member) const
    {
        return {value[member], path.empty() ? member : path + '.' + member};
    }
    Place At(Json::ArrayIndex index) const
    {
        return {value[index], path + '[' + std::to_string(index) + ']'};
    }

    // MustHave checks an object's members: all of the required ones, and none that isn't named.
    void MustHave(std::initializer_list<const char*> required,
                  std::initializer_list<const char*> optional = {}) const
    {
        if (!value.isObject())
            Fail("must be an object");
        for (const char* const name : required)
            if (!value.isMember(name))
                Fail(std::string("lacks its member ") + name);
        for (const std::string& name : value.getMemberNames())
            if (std::ranges::find(required, name) == required.end() &&
                std::ranges::find(optional, name) == optional.end())
                Fail("has an unknown member " + name);
    }

    std::string Text() const
    {
        if (!value.isString())
            Fail("must be a string");
        std::string text = value.asString();
        if (text.find('\0') != std::string::npos)
            Fail("has a character U+0000, which ends a text");
        if (utf8FromUtf16(utf16FromUtf8(text)) != text)
            Fail("is not of whole characters");
        return text;
    }

    uint32_t Number() const
    {
        if (!value.isIntegral() || !value.isUInt())
            Fail("must be a number from 0 to 4294967295");
        return value.asUInt();
    }

    std::shared_ptr<const std::vector<uint8_t>> Bytes() const
    {
        const char* begin = nullptr;
        const char* end = nullptr;
        if (!value.isString() || !value.getString(&begin, &end))
            Fail("must be a string");
        auto bytes = bytesOfBase64({begin, end});
        if (!bytes)
            Fail("is no Base64 with its padding");
        return std::make_shared<const std::vector<uint8_t>>(*std::move(bytes));
    }
};

// CEncoder makes the tree of a backup. Bytes that it borrows stay as long as it does.
class CEncoder
{
public:
    std::vector<uint8_t> Encode(const Place& document)
    {
        const bool settings = document.value.isMember("settings");
        const bool more = document.value.isMember("more");
        const bool categories = settings || more || document.value.isMember("categories");
        if (settings && more)
            document.Fail("can't have both settings and more");
        document.MustHave({"schema", "templates", "quicklinks"},
                          {"categories", "settings", "more"});
        if (categories)
            document.MustHave({"categories"},
                              {"schema", "templates", "quicklinks", "settings", "more"});
        const Json::ArrayIndex extra = more ? document["more"].value.size() : 0;
        if (more && (!document["more"].value.isArray() || extra < 2))
            document["more"].Fail("must be a list of two or more elements");
        CDerTree backup;
        backup.SetSequence(settings ? 4U : more ? 3U + extra : categories ? 3U : 2U);
        m_form = versionOf(backup.Count()).linkTexts;
        List(document["templates"], backup.Child(0), &CEncoder::File);
        List(document["quicklinks"], backup.Child(1), &CEncoder::Link);
        if (categories)
            List(document["categories"], backup.Child(2), &CEncoder::Category);
        if (settings)
            Settings(document["settings"], backup.Child(3));
        for (Json::ArrayIndex i = 0; i < extra; ++i)
            if (!Bytes(document["more"].At(i), backup.Child(3 + i)))
                document["more"].At(i).Fail("lacks its member der");
        return backup.Encode();
    }

private:
    using EntryEncoder = void (CEncoder::*)(const Place& entry, CDerNode& node);

    // Bytes takes an element that is given by its bytes; false if it isn't.
    bool Bytes(const Place& element, CDerNode& node)
    {
        if (!element.value.isObject() || !element.value.isMember("der"))
            return false;
        element.MustHave({"der"});
        m_kept.push_back(element["der"].Bytes());
        const std::span<const uint8_t> bytes = *m_kept.back();
        std::span<const uint8_t> whole;
        if (!CDerReader(bytes).ReadElement(whole) || whole.size() != bytes.size())
            element["der"].Fail("is not one element");
        node.SetEncoded(bytes);
        return true;
    }

    void List(const Place& list, CDerNode& node, EntryEncoder encode)
    {
        if (Bytes(list, node))
            return;
        if (!list.value.isArray())
            list.Fail("must be a list");
        node.SetSequence(list.value.size());
        for (Json::ArrayIndex i = 0; i < list.value.size(); ++i)
            if (const Place entry = list.At(i); !Bytes(entry, node.Child(i)))
                (this->*encode)(entry, node.Child(i));
    }

    void File(const Place& entry, CDerNode& node)
    {
        entry.MustHave({"name", "content"});
        node.SetSequence(2);
        SetText(node.Child(0), entry["name"], TextForm::wide);
        const auto content = entry["content"].Bytes();
        node.Child(1).SetOctets(*content, content);
    }

    void Link(const Place& entry, CDerNode& node)
    {
        entry.MustHave({"name", "target", "manifest", "profile", "manifestid"}, {"wocred"});
        const bool hasFlag = entry.value.isMember("wocred");
        node.SetSequence(hasFlag ? 6 : 5);
        SetText(node.Child(0), entry["name"], m_form);
        SetText(node.Child(1), entry["target"], m_form);
        SetText(node.Child(2), entry["manifest"], m_form);
        node.Child(3).SetInteger(entry["profile"].Number());
        SetText(node.Child(4), entry["manifestid"], m_form);
        if (hasFlag && !entry["wocred"].value.isBool())
            entry["wocred"].Fail("must be true or false");
        if (hasFlag)
            node.Child(5).SetInteger(entry["wocred"].value.asBool() ? 1 : 0);
    }

    void Category(const Place& entry, CDerNode& node)
    {
        entry.MustHave({"name", "text"});
        node.SetSequence(2);
        SetText(node.Child(0), entry["name"], TextForm::wide);
        SetText(node.Child(1), entry["text"], TextForm::wide);
    }

    void Settings(const Place& settings, CDerNode& node)
    {
        if (Bytes(settings, node))
            return;
        if (settings.value.isObject() && settings.value.isMember("document")) {
            settings.MustHave({"document"});
            node.SetSequence(1);
            SetText(node.Child(0), settings["document"], TextForm::octets);
            return;
        }
        settings.MustHave({"showPrompt", "hotKey"}, {"dontPromptList"});
        const bool hasList = settings.value.isMember("dontPromptList");
        node.SetSequence(hasList ? 3 : 2);
        node.Child(0).SetInteger(settings["showPrompt"].Number());
        SetText(node.Child(1), settings["hotKey"], TextForm::wide);
        if (hasList) {
            m_kept.push_back(settings["dontPromptList"].Bytes());
            node.Child(2).SetEncoded(*m_kept.back());
        }
    }

    static void SetText(CDerNode& node, const Place& place, TextForm form)
    {
        if (form == TextForm::wide)
            node.SetWide(utf16FromUtf8(place.Text()));
        else
            node.SetNarrow(place.Text());
    }

    TextForm m_form = TextForm::wide; // of the links
    std::vector<std::shared_ptr<const std::vector<uint8_t>>> m_kept;
};

// The parser's message has a line for the place and one for the reason.
std::string firstFault(const std::string& errors)
{
    std::string fault;
    for (size_t i = 0; i < errors.size(); ++i) {
        if (errors[i] == '\n' && !fault.empty() && errors.find("\n  ", i) != i)
            break;
        if (errors[i] != '*' && errors[i] != '\n')
            fault += errors[i];
    }
    return fault.substr(std::min(fault.find_first_not_of(' '), fault.size()));
}

} // namespace

std::vector<uint8_t> backupOfJson(std::string_view text)
{
    Json::CharReaderBuilder builder;
    Json::CharReaderBuilder::strictMode(&builder.settings_);
    const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    Json::Value root;
    std::string errors;
    try {
        if (!reader->parse(text.data(), text.data() + text.size(), &root, &errors))
            throw CToolError("not JSON: " + firstFault(errors));
    } catch (const Json::Exception& error) { // nested too deeply
        throw CToolError(std::string("not JSON: ") + error.what());
    }
    const Place document{root, {}};
    if (!root.isObject())
        document.Fail("must be an object");
    if (!root["schema"].isString() || root["schema"] != backupSchema)
        document["schema"].Fail(std::string("must be \"") + backupSchema + '"');
    return CEncoder().Encode(document);
}
