#include "backup/settingsdocument.h"

#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>

#include <windows.h>
#include <wincrypt.h>

#include <gtest/gtest.h>
#include <json/value.h>

#include "backup/blob/derview.h"
#include "common/scoped.h"
#include "support/fakesettings.h"
#include "support/tracerecorder.h"

namespace {

using bytes = std::vector<uint8_t>;
using Messages = std::vector<std::wstring>;
using Values = std::map<std::wstring, std::wstring>;

class SettingsDocument : public testing::Test
{
protected:
    SettingsDocument() { std::filesystem::remove(listFile); }
    ~SettingsDocument() override { std::filesystem::remove(listFile); }

    // exported gives the document of an export.
    static std::string exported()
    {
        CDerNode slot;
        EXPECT_TRUE(ExportSettings(&slot));
        const bytes encoded = slot.Encode();
        CDerSequenceView elements;
        EXPECT_TRUE(elements.Decode(encoded));
        EXPECT_EQ(elements.Count(), 1u);
        std::span<const uint8_t> contents;
        EXPECT_TRUE(elements[0].DecodeOctets(contents));
        EXPECT_EQ(contents.back(), 0);
        return std::string(contents.begin(), contents.end() - 1);
    }
    static bool restored(bytes encoded)
    {
        const CRYPT_DATA_BLOB blob{static_cast<DWORD>(encoded.size()), encoded.data()};
        return RestoreSettings(&blob);
    }
    static bool restoredDocument(const std::string& text)
    {
        CDerNode element;
        element.SetSequence(1);
        element.Child(0).SetNarrow(text);
        return restored(element.Encode());
    }
    static std::string get(const std::filesystem::path& path)
    {
        std::ostringstream text;
        text << std::ifstream(path, std::ios::binary).rdbuf();
        return text.str();
    }

    const std::filesystem::path listFile =
        std::filesystem::temp_directory_path() / "SettingsDocument.txt";
    fakeSettings_t settings;
    traceRecorder_t recorder;
};

TEST_F(SettingsDocument, ExportTakesDefaultsForWhatIsUnset)
{
    const struct {
        const char* what;
        Values values;
        const char* current;
    } cases[] = {
        {"nothing set",
         {},
         R"("open_guard_desk_qa":"Ctrl+Win+72","show_training_prompt":false,"useGrabbingCreds":false)"},
        {"empty hot key",
         {{L"open_guard_desk_qa", L""}},
         R"("open_guard_desk_qa":"Ctrl+Win+72","show_training_prompt":false,"useGrabbingCreds":false)"},
        {"the default shows",
         {{L"show_training_prompt_def", L"1"}},
         R"("open_guard_desk_qa":"Ctrl+Win+72","show_training_prompt":true,"useGrabbingCreds":false)"},
        {"0 is the default",
         {{L"show_training_prompt_def", L"1"}, {L"show_training_prompt", L"0"}},
         R"("open_guard_desk_qa":"Ctrl+Win+72","show_training_prompt":true,"useGrabbingCreds":false)"},
        {"negative hides",
         {{L"show_training_prompt_def", L"1"}, {L"show_training_prompt", L"-1"}},
         R"("open_guard_desk_qa":"Ctrl+Win+72","show_training_prompt":false,"useGrabbingCreds":false)"},
        {"grabbing is exactly 1",
         {{L"useGrabbingCreds", L"1"}, {L"open_guard_desk_qa", L"\"\\\n"}},
         R"("open_guard_desk_qa":"\"\\\n","show_training_prompt":false,"useGrabbingCreds":true)"},
        {"not 2",
         {{L"useGrabbingCreds", L"2"}, {L"show_training_prompt", L"2"}},
         R"("open_guard_desk_qa":"Ctrl+Win+72","show_training_prompt":true,"useGrabbingCreds":false)"},
        {"no list file",
         {{L"path_dontpromptlist_filename", L"C:\\gone"}},
         R"("open_guard_desk_qa":"Ctrl+Win+72","show_training_prompt":false,"useGrabbingCreds":false)"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        settings.values = c.values;
        EXPECT_EQ(exported(), std::string(R"({"settings":{"current":{)") + c.current + "}}}");
    }
    EXPECT_FALSE(ExportSettings(nullptr));
}

TEST_F(SettingsDocument, ExportCarriesTheListAndTracesInOrder)
{
    std::ofstream(listFile, std::ios::binary) << std::string_view("\xFF\xFE"
                                                                  "a\0\r\0\xE9\0",
                                                                  8);
    settings.values = {{L"path_dontpromptlist_filename", listFile.wstring()},
                       {L"show_training_prompt_def", L"1"},
                       {L"show_training_prompt", L"-1"},
                       {L"open_guard_desk_qa", L"Alt+\u4E00"},
                       {L"useGrabbingCreds", L"1"}};
    const std::string text = exported();
    EXPECT_EQ(recorder.messages(),
              (Messages{L"U Pre train [default] = Show", L"U Pre train [current] = Hide",
                        L"U Hotkey    [current] = Alt+\u4E00",
                        L"U Dont prmpt[size=4] = " + listFile.wstring(),
                        L"U Use Grabbing Creds  = Yes"}));
    EXPECT_NE(text.find("\"path_dontpromptlist_filename\":\"a\\r\\u00e9\""), std::string::npos)
        << text;

    // The way back: the same values, and the list file left alone.
    std::ofstream(listFile, std::ios::binary) << "other";
    Values expected = settings.values;
    settings.values = {{L"path_dontpromptlist_filename", listFile.wstring()},
                       {L"show_training_prompt_def", L"1"}};
    EXPECT_TRUE(restoredDocument(text));
    EXPECT_EQ(settings.values, expected);
    EXPECT_EQ(get(listFile), "other");
}

TEST_F(SettingsDocument, MembersOfEachTypeAreAppliedAsTold)
{
    const auto document = [](const std::string& member, const std::string& value) {
        return R"({"settings":{"current":{")" + member + "\":" + value + "}}}";
    };
    const struct {
        const char* value;
        const wchar_t* flag; // what a boolean setting becomes; empty: stays
        const wchar_t* text; // what the hot key becomes; null: raises
    } cases[] = {
        {"true", L"1", L"true"}, {"false", L"-1", L"false"},
        {"null", L"", L""},      {"[]", L"", L""},
        {"{}", L"", L""},        {"\"\"", L"-1", L""},
        {"\"0\"", L"1", L"0"},   {"\"\\u4e00\\ud83d\\ude00\"", L"1", L"\u4E00\U0001F600"},
        {"0", L"-1", nullptr},   {"-0.0", L"-1", nullptr},
        {"2", L"1", nullptr},    {"-1", L"1", nullptr},
        {"0.5", L"1", nullptr},  {"18446744073709551615", L"1", nullptr},
        {"[0]", L"1", nullptr},  {"{\"a\":null}", L"1", nullptr},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.value);
        for (const char* member : {"show_training_prompt", "useGrabbingCreds"}) {
            settings.values.clear();
            EXPECT_TRUE(restoredDocument(document(member, c.value)));
            const std::wstring key(member, member + strlen(member));
            EXPECT_EQ(settings.values, *c.flag ? (Values{{key, c.flag}}) : Values{});
        }
        settings.values.clear();
        for (const char* member : {"open_guard_desk_qa", "path_dontpromptlist_filename"}) {
            // A member that raises keeps the others from being applied.
            std::string text = document(member, c.value);
            text.insert(text.size() - 3, ",\"show_training_prompt\":true");
            settings.values.clear();
            if (c.text) {
                EXPECT_TRUE(restoredDocument(text));
                Values expected{{L"show_training_prompt", L"1"}};
                if (*c.text && *member == 'o')
                    expected[L"open_guard_desk_qa"] = c.text;
                EXPECT_EQ(settings.values, expected);
                continue;
            }
            try {
                restoredDocument(text);
                ADD_FAILURE() << "raises nothing";
            } catch (const std::exception& exception) {
                EXPECT_STREQ(exception.what(), "Type is not convertible to string");
            }
            EXPECT_EQ(settings.values, Values{});
        }
    }
    EXPECT_EQ(recorder.messages(), Messages{});
}

TEST_F(SettingsDocument, RefusedElementsAreTracedAndChangeNothing)
{
    const std::string valid = R"({"settings":{"current":{"useGrabbingCreds":true}}})";
    const bytes number{0x30, 3, 2, 1, 1};
    EXPECT_FALSE(RestoreSettings(nullptr));
    EXPECT_EQ(recorder.messages(), Messages{L"U Invalid BLOB pointer."});
    for (const bytes& encoded : {bytes{}, bytes{0x30, 0}, bytes{0x30, 1, 4}, bytes{4, 1, 0}}) {
        EXPECT_FALSE(restored(encoded));
        EXPECT_EQ(recorder.messages(), Messages{L"E 0 Unsupported settings format."});
    }
    const struct {
        std::string text;
        const wchar_t* traced;
    } cases[] = {
        {"", L"U Empty json data."},
        {std::string("\0{}", 3), L"U Empty json data."},
        {valid.substr(0, valid.size() - 1), L"U Bad json format."},
        {"{'a':1}", L"U Bad json format."},
        {"\xEF\xBB\xBF" + valid, L"U Bad json format."},
        {valid.substr(0, 9) + std::string(1, '\0') + valid.substr(9), L"U Bad json format."},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_FALSE(restoredDocument(c.text));
        EXPECT_EQ(recorder.messages(), Messages{c.traced});
    }
    EXPECT_FALSE(restored(number)); // a text that isn't one: its encoded bytes are the text
    EXPECT_EQ(recorder.messages(), Messages{L"U Bad json format."});
    EXPECT_EQ(settings.values, Values{});
}

TEST_F(SettingsDocument, DocumentsOfOtherShapesSetNothing)
{
    const struct {
        const char* text;
        bool raises; // what the library says of a member of a value that is no object
    } cases[] = {
        {"{}", false},
        {"null", false},
        {R"({"settings":null})", false},
        {R"({"settings":[]})", false},
        {R"({"settings":{"current":[]}})", false},
        {R"({"settings":{"other":{"useGrabbingCreds":true}}})", false},
        {"/* a */ {\"settings\": // b\n {\"current\":{}} } // c", false},
        {"[1]", true},
        {R"({"settings":[1]})", true},
        {R"({"settings":{"current":"text"}})", true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        if (c.raises)
            EXPECT_THROW(restoredDocument(c.text), std::exception);
        else
            EXPECT_TRUE(restoredDocument(c.text));
        EXPECT_EQ(settings.values, Values{});
    }
}

// onSmallStack runs a body on a thread with a quarter of the stack that a host's thread has.
void onSmallStack(const std::function<void()>& body)
{
    const auto run = [](void* given) -> DWORD {
        (*static_cast<const std::function<void()>*>(given))();
        return 0;
    };
    std::function<void()> copy = body;
    const CKernelHandle thread(
        CreateThread(nullptr, 256 * 1024, run, &copy, STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr));
    ASSERT_TRUE(thread);
    ASSERT_EQ(WaitForSingleObject(thread.get(), 60000), WAIT_OBJECT_0);
}

TEST_F(SettingsDocument, DeepNestingRaisesBeforeTheStackEnds)
{
    onSmallStack([] {
        for (const std::string open : {"[", "{\"a\":"}) {
            std::string text;
            for (int i = 0; i < 998; ++i)
                text += open;
            EXPECT_FALSE(restoredDocument(text)); // not too deep, only unfinished
            for (int i = 0; i < 100000; ++i)
                text += open;
            EXPECT_THROW(restoredDocument(text), std::exception);
        }
    });
    EXPECT_EQ(settings.values, Values{});
}

TEST_F(SettingsDocument, LegacyElementsSetPromptAndHotKeyAndHalfTheList)
{
    const bytes hotKey{0x1E, 4, 0, 'K', 0, 0};
    const struct {
        const char* what;
        std::vector<bytes> elements;
        const wchar_t* prompt;
        const char* list; // null: no file
    } cases[] = {
        {"shown", {{2, 1, 1}, hotKey}, L"1", nullptr},
        {"any other number hides", {{2, 1, 2}, hotKey}, L"-1", nullptr},
        {"no number hides", {{4, 1, 1}, hotKey}, L"-1", nullptr},
        {"four elements", {{2, 1, 1}, hotKey, {4, 2, 'a', 'b'}, {4, 0}}, L"1", nullptr},
        {"the list with its tag and length",
         {{2, 1, 1}, hotKey, {4, 4, 'a', 'b', 0, 'c'}},
         L"1",
         "\4\0\4\0"},
        {"an empty list ends at its length", {{2, 1, 1}, hotKey, {4, 0}}, L"1", "\4"},
    };
    const size_t listSizes[] = {0, 0, 0, 0, 4, 1};
    settings.values[L"path_dontpromptlist_filename"] = listFile.wstring();
    const Values before = settings.values;
    for (size_t i = 0; i < std::size(cases); ++i) {
        const auto& c = cases[i];
        SCOPED_TRACE(c.what);
        settings.values = before;
        bytes encoded{0x30, 0};
        for (const bytes& element : c.elements)
            encoded.insert(encoded.end(), element.begin(), element.end());
        encoded[1] = static_cast<uint8_t>(encoded.size() - 2);
        EXPECT_TRUE(restored(encoded));
        Values expected = before;
        expected[L"show_training_prompt"] = c.prompt;
        expected[L"open_guard_desk_qa"] = L"K";
        EXPECT_EQ(settings.values, expected);
        ASSERT_EQ(std::filesystem::exists(listFile), c.list != nullptr);
        const Messages traced = recorder.messages();
        if (!c.list) {
            EXPECT_EQ(traced, Messages{});
            continue;
        }
        EXPECT_EQ(get(listFile), std::string(c.list, listSizes[i]));
        EXPECT_EQ(traced, Messages{L"U file name='" + listFile.wstring() + L"', dataLen = " +
                                   std::to_wstring(listSizes[i]) + L"."});
    }

    // A list file that can't be made is passed over, and so is a path that isn't set.
    for (const wchar_t* path : {L"C:\\gone\\list.txt", L""}) {
        settings.values[L"path_dontpromptlist_filename"] = path;
        EXPECT_TRUE(restored({0x30, 13, 2, 1, 1, 0x1E, 4, 0, 'K', 0, 0, 4, 2, 'a', 'b'}));
        EXPECT_EQ(recorder.messages(), Messages{});
    }
}

TEST_F(SettingsDocument, TextOfAValueIsOneLineAndEmptyForEmptyOnes)
{
    Json::Value value;
    std::string text = "old";
    for (const Json::ValueType type : {Json::nullValue, Json::arrayValue, Json::objectValue}) {
        jv2s(Json::Value(type), text);
        EXPECT_EQ(text, "");
        text = "old";
    }
    jv2s(Json::Value("a\n"), text);
    EXPECT_EQ(text, "\"a\\n\"");
    value["b"][0] = 1;
    value["a"] = Json::Value();
    jv2s(value, text);
    EXPECT_EQ(text, "{\"a\":null,\"b\":[1]}");
}

} // namespace
