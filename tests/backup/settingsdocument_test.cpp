#include "backup/settingsdocument.h"

#include "common/text.h"
#include "formats/der/derview.h"
#include "support/backupbytes.h"
#include "support/fakesettings.h"
#include "support/tracedecoder.h"
#include "support/tracerecorder.h"

#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

namespace {

using namespace std::string_literals;
// documentOf gives the element of a document with those members.
bytes documentOf(const std::string& current)
{
    return seq({narrow("{\"settings\":{\"current\":{" + current + "}}}")});
}

struct SettingsDocument : testing::Test {
    // restored gives how a restore ended, what it traced and the settings then; and forgets them.
    std::wstring restored(const bytes& encoded)
    {
        const CDerElement element(encoded);
        std::wstring all;
        try {
            all = RestoreSettings(&element) ? L"true" : L"false";
        } catch (const std::exception& exception) {
            all = wideFromUtf8(exception.what());
        }
        all += recorder.joined();
        for (const auto& [key, value] : std::exchange(settings.values, {}))
            all.append(L"|").append(key).append(L"=").append(value);
        return all;
    }

    const std::filesystem::path listFile = std::filesystem::temp_directory_path() / "list.txt";
    fakeSettings_t settings;
    traceRecorder_t recorder;
};

TEST_F(SettingsDocument, ListTravelsAndIsNotWrittenBack)
{
    const std::string list = "a\r\xE9\xC3\xA9\xFF\x7F\"\x01"; // not all of it UTF-8
    std::ofstream(listFile, std::ios::binary) << list << '\0' << "beyond";
    settings.values = {{L"path_dontpromptlist_filename", listFile},
                       {L"open_guard_desk_qa", L"\"\u00E9"},
                       {L"show_training_prompt_def", L"1"},
                       {L"show_training_prompt", L"-1"},
                       {L"useGrabbingCreds", L"1"}};
    CDerNode node;
    EXPECT_TRUE(ExportSettings(&node));
    EXPECT_FALSE(ExportSettings(nullptr));
    const bytes element = node.Encode();
    EXPECT_EQ(element, documentOf("\"open_guard_desk_qa\":\"\\\"\xC3\xA9\","
                                  "\"path_dontpromptlist_filename\":"
                                  "\"a\\r\xE9\xC3\xA9\xFF\x7F\\\"\\u0001\","
                                  "\"show_training_prompt\":false,\"useGrabbingCreds\":true"));
    EXPECT_EQ(recorder.joined(), L"|U Pre train [default] = Show|U Pre train [current] = Hide"
                                 L"|U Hotkey    [current] = \"\u00E9|U Dont prmpt[size=16] = " +
                                     listFile.wstring() + L"|U Use Grabbing Creds  = Yes");
    settings.values = {{L"path_dontpromptlist_filename", listFile}};
    EXPECT_EQ(restored(element), L"true|open_guard_desk_qa=\"\u00E9|path_dontpromptlist_filename=" +
                                     listFile.wstring() +
                                     L"|show_training_prompt=-1|useGrabbingCreds=1");
    EXPECT_EQ(fileBytes(listFile).size(), list.size() + 7);
}

TEST_F(SettingsDocument, OtherShapesAreRefusedOrSetNothing)
{
    EXPECT_FALSE(RestoreSettings(nullptr));
    EXPECT_EQ(recorder.joined(), L"|U Invalid BLOB pointer.");
    for (const bytes& encoded : {bytes{}, bytes{0x30, 0}, bytes{0x30, 1, 4}, bytes{4, 1, 0}})
        EXPECT_EQ(restored(encoded), L"false|E 0 Unsupported settings format.");
    for (const bytes& encoded : {seq({narrow("")}), bytes{0x30, 5, 4, 3, 0, '{', '}'}})
        EXPECT_EQ(restored(encoded), L"false|U Empty json data.");
    for (const std::string& text : {"{"s, "{'a':1}"s, "\xEF\xBB\xBF{}"s, std::string(100000, '[')})
        EXPECT_EQ(restored(seq({narrow(text)})), L"false|U Bad json format.");
    for (const char* text : {"{}", "null", R"({"settings":null})", R"({"settings":{"current":[]}})",
                             "/*a*/{//b\n}//c"})
        EXPECT_EQ(restored(seq({narrow(text)})), L"true") << text;
    for (const char* text : {"[1]", R"({"settings":1})", R"({"settings":{"current":[1]}})"})
        EXPECT_NE(restored(seq({narrow(text)})).find(L"requires objectValue"), std::wstring::npos)
            << text;
}

TEST_F(SettingsDocument, HalfOfALegacyListIsWrittenAndTraced)
{
    settings.values = {{L"path_dontpromptlist_filename", listFile}};
    const std::wstring file = listFile.wstring();
    EXPECT_EQ(restored(seq({integer(1), wide(L"K"), octets("ab\0c"s)})),
              L"true|U file name='" + file + L"', dataLen = 4.|open_guard_desk_qa=K|" +
                  L"path_dontpromptlist_filename=" + file + L"|show_training_prompt=1");
    EXPECT_EQ(fileBytes(listFile), "\4\0\4\0"s);
}

} // namespace
