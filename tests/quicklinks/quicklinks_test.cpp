#include "quicklinks/quicklinks.h"

#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>

#include <gtest/gtest.h>

#include "common/text.h"
#include "support/fakesettings.h"
#include "support/tracerecorder.h"

namespace {

using namespace std::string_literals;

// QuickLinks gives each test an empty folder with some files. In texts, @ stands for it and ~ for
// the user's templates folder. Its name is fixed: path prefixes are computed once in a process.
struct QuickLinks : testing::Test {
    QuickLinks()
    {
        std::filesystem::remove_all(folder);
        std::filesystem::create_directories(own);
        SetEnvironmentVariableW(L"APPDATA", (folder / "Roaming").c_str());
        settings.values[L"path_quicklink_filename"] = file;
        for (const char* name : {"@\\t", "@\\IExplore.exe", "~\\o"})
            std::ofstream(real(name)) << "x";
    }
    std::string real(std::string_view text) const
    {
        std::string all;
        for (const char c : text)
            all += c == '@' ? folder.string() : c == '~' ? own.string() : std::string(1, c);
        return all;
    }
    static std::string get(const std::filesystem::path& path)
    {
        return (std::ostringstream() << std::ifstream(path, std::ios::binary).rdbuf()).str();
    }
    // shown gives the fields of the records.
    static std::string shown(const std::vector<QLRecord>& records)
    {
        std::ostringstream out;
        for (const QLRecord& r : records)
            out << r.index << " k" << r.kind << " u" << r.url << " d" << r.dlgpath << " m"
                << r.manifest << " n" << r.name << " p" << r.profile << " i" << r.manifestid << " w"
                << r.wocred << ';';
        return out.str();
    }
    // traced gives the messages since the last look.
    std::string traced()
    {
        std::string all;
        for (const std::wstring& text : recorder.messages())
            all += utf8FromWide(text) + '|';
        return all;
    }

    const std::filesystem::path folder = std::filesystem::temp_directory_path() / "Quick Links";
    const std::filesystem::path own = folder / "Roaming\\Veltrano\\KRS\\Templates";
    const std::filesystem::path file = folder / "links.txt";
    fakeSettings_t settings;
    traceRecorder_t recorder;
};

TEST_F(QuickLinks, LoadReadsTheFileAndFiltersItByTheDialogList)
{
    const struct {
        const char *text, *records, *filtered, *traced;
    } cases[] = {
        {"[SHORTCUTRECORD]\nmANIFEST=@\\t\nUrl=a=b\nName=n\nProfile=7\nManifestID=i\nQLwoCred=1",
         "0 k1 ua=b d m@\\t nn p7 ii w1;", "n", ""},
        {"Manifest=@\\t\n[ShortCutRecord] \nUrl=u\n[x=y\n=y\ny=\nplain\n Url=v",
         "0 k1 uu d m@\\t n p0 i w0;", "",
         "E 0 inv.line '[ShortCutRecord] '|E 0 inv.line '=y'|E 0 inv.line 'plain'|"},
        {"Name=\n[ShortCutRecord]\nManifestID=i\nKRSURLs=a\nKRSDlgPaths=c", "", "", ""},
        {"Url=u\n[ShortCutRecord]\nManifest=@", "", "", ""}, // a folder is no manifest
        // a record whose manifest is missing leaves its fields to the next one
        {"Url=v\nName=n\nProfile=3\nQLwoCred=1\nManifest=@\\gone\n[ShortCutRecord]\n"
         "Manifest=@\\t\nDlgpath=@\\gone\n[ShortCutRecord]\nManifest=~\\o\nName=m",
         "0 k1 uv d m@\\t nn p3 i w1;1 k0 u d m~\\o nm p0 i w0;", "nm", ""},
        {"Manifest=alien|@\\t", "0 k0 u d malien|@\\t n p0 i w0;", "", ""},
        {"Manifest=@\\t\nDlgpath=@\\t\nUrl=u", "0 k1 uu d@\\t m@\\t n p0 i w0;", "", ""},
        {"Manifest=@\\t\nUrl=u\nDlgpath=@\\IEXPLORE.EXE dlg",
         "0 k2 uu d@\\IEXPLORE.EXE dlg m@\\t n p0 i w0;", "", ""},
        {"Dlgpath=%APPDATA%\\..\\t\nManifest=%APPDATA%\\..\\t", // the manifest alone is expanded
         "0 k0 u d m%APPDATA%\\..\\t n p0 i w0;", "", ""},
        {"Manifest=@\\t\nProfile=12abc\nQLwoCred=2", "0 k0 u d m@\\t n p12 i w0;", "", ""},
        {"Manifest=@\\t\nProfile=1\nProfile=\nQLwoCred=x", "0 k0 u d m@\\t n p0 i w0;", "", ""},
        // the user's own: listed without its query, or only as an address, or by a part of it
        {"Name=a\nManifest=~\\o\nUrl=A?1\n[ShortCutRecord]\nName=b\nManifest=~\\o\nUrl=b\n"
         "[ShortCutRecord]\nName=c\nManifest=~\\o\nUrl=abc\nKRSURLs=b\nKRSDlgPaths=,,x,,a,bc, abc",
         nullptr, "bc", ""},
        // another folder's: in the list, with the target of the user's own, or in another case
        {"Name=a\nManifest=@\\t\nUrl=u?1\n[ShortCutRecord]\nName=b\nManifest=~\\o\nUrl=u?2\n"
         "[ShortCutRecord]\nName=c\nManifest=~\\o\nUrl=U?2\nKRSDlgPaths=u?1",
         nullptr, "ac", ""},
        {"Name=a\nManifest=@\\t\n[ShortCutRecord]\nName=b\nManifest=~\\o", nullptr, "a", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        std::ofstream(file) << real(c.text);
        const QL ql;
        EXPECT_EQ(shown(ql.records), c.records ? real(c.records) : shown(ql.records));
        std::string filtered;
        for (const QLRecord& record : ql.filtered)
            filtered += record.name;
        EXPECT_EQ(filtered, c.filtered);
        EXPECT_EQ(traced(), c.traced);
        EXPECT_TRUE(!ql.records.empty() || ql.krsurls.empty()); // lists without records go too
    }
}

TEST_F(QuickLinks, SaveWritesWhatReadsBack)
{
    QL ql;
    EXPECT_TRUE(ql.save(file.wstring(), false));
    EXPECT_EQ(get(file), "");
    ql.records = {{1, "u=\xC3\xA9", "no", real("~\\o"), "", 4294967295, -1, "n [x] = ", false},
                  {0, "no", "", real("~\\o"), "", 0, -1, "", false},
                  {2, "no", real("@\\t"), real("~\\o"), "i", 5, -1, "d", true}};
    ql.krsurls = "u";
    ql.krsdlgpaths = "a,b";
    EXPECT_TRUE(ql.save(file.wstring(), false));
    EXPECT_EQ(get(file), real("[ShortCutRecord]\r\nManifest=~\\o\r\nUrl=u=\xC3\xA9\r\n"
                              "Name=n [x] = \r\nProfile=4294967295\r\nManifestID=\r\nQLwoCred=0\r\n"
                              "[ShortCutRecord]\r\nManifest=~\\o\r\nDlgpath=@\\t\r\n"
                              "Name=d\r\nProfile=5\r\nManifestID=i\r\nQLwoCred=1\r\n"
                              "KRSURLs=u\r\nKRSDlgPaths=a,b\r\n"));
    EXPECT_EQ(shown(QL().records), real("0 k1 uu=\xC3\xA9 d m~\\o nn [x] =  p4294967295 i w0;"
                                        "1 k2 u d@\\t m~\\o nd p5 ii w1;"));
    ql.records[0].url[1] = '\0';
    EXPECT_TRUE(ql.save(file.wstring(), false));
    EXPECT_EQ(get(file), real("[ShortCutRecord]\r\nManifest=~\\o\r\nUrl=u")); // ends there
    const std::wstring longName = folder.wstring() + L"\\" + std::wstring(260, L'x');
    for (const std::wstring& name : {L""s, longName.substr(0, 261), folder.wstring() + L"\\n\\n"}) {
        EXPECT_FALSE(ql.save(name, false));
        EXPECT_EQ(traced(), name.empty() ? "E 0 empty fname|" : "E 0 savefile exception|");
    }
}

TEST_F(QuickLinks, AddTracesThenRefusesCreatesOrUpdates)
{
    const std::string longName(76, 'x');
    const struct {
        std::string name, target, manifest, shortManifest, traced;
        size_t records;
    } cases[] = {
        {"n", "", "x:A", "x:a", "name: 'n'|U   url : ''|U   QL created|", 0},
        {"", "u", "x:A", "x:a", "name: ''|U   url : 'u'|U   QL created|", 0},
        {"n", "u", "A\\", "a\\", "name: 'n'|U   url : 'u'|E 0 Cannot split manifest path|", 0},
        {longName, "a.exe.", real("~\\A"), "kri::a",
         "name: '" + longName.substr(1) + " ...'|U   url : 'a.exe.'|U   QL created|", 1},
        {"m", "b.EXE", "d:/A", "d:/a", "name: 'm'|U   dlgpath : 'b.EXE'|U   QL updated|", 1},
        {"m", "IExplore.exe?", "a", "a", "name: 'm'|U   dlgpath : 'IExplore.exe?'|U   QL created|",
         2},
    };
    QL ql;
    for (const auto& c : cases) {
        ql.add(c.name, c.target, c.manifest, 7, "i", true);
        EXPECT_EQ(traced(), "U QL for: " + c.shortManifest + "|U   prof:  7|U   " + c.traced);
        EXPECT_TRUE(ql.records.size() == c.records && ql.dirty == (c.records > 0)) << c.manifest;
    }
    // The update kept the path that was stored, and the address that no longer counts.
    EXPECT_EQ(shown(ql.records), "-1 k2 ua.exe. db.EXE m%appdata%\\Veltrano\\KRS\\Templates\\A "
                                 "nm p7 ii w1;-1 k2 u dIExplore.exe? ma nm p7 ii w1;");
    ql.flush();
    EXPECT_TRUE(ql.dirty && QL::removefile()); // dirty of a save that worked
    settings.values.clear();
    ql.flush();
    EXPECT_FALSE(ql.dirty || QL::removefile()); // of one that failed
}

TEST_F(QuickLinks, FindTakesTheFirstMatchAsAWalkWould)
{
    const uint32_t profiles[] = {0, 1, 256, 0xFFFFFFFF};
    const char* const paths[] = {"a", "A", "@\\t", "d:\\x\\a", "x:A", "d:/t", "o"};
    std::mt19937 random(1);
    const auto any = [&](const auto& list) { return list[random() % std::size(list)]; };
    QL ql;
    for (int round = 0; round < 1000; ++round) {
        ql.add("n", "u", real(any(paths)), any(profiles), "", false);
        if (round % 16 == 9)
            ql.records.resize(1);
        if (round % 16 < 2)
            ql.parse({real(round % 2 ? "Manifest=@\\t" : "Manifest=~\\o"), "Profile=256",
                      "[ShortCutRecord]", real("Manifest=@\\t")});
        for (const std::string wanted : {"a", "A", "t", "o", ""})
            for (const uint32_t profile : profiles) {
                QLRecord* first = nullptr;
                for (QLRecord& r : ql.records)
                    if (!first && std::filesystem::path(r.manifest).filename() == wanted &&
                        (profile == 0xFFFFFFFF || profile == r.profile))
                        first = &r;
                ASSERT_EQ(ql.find("y/" + wanted, profile), first) << round << wanted << profile;
            }
    }
}

} // namespace
