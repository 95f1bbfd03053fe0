#include "quicklinks/quicklinks.h"

#include "common/text.h"
#include "support/fakesettings.h"
#include "support/surroundings.h"

#include <fcntl.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <sstream>

#include <gtest/gtest.h>

namespace {

using namespace std::string_literals;

// QuickLinks has no quick link file in its folder, the current one, but the templates "t" and, in the
// user's own folder, "%O%".
struct QuickLinks : Surroundings {
    QuickLinks()
    {
        SetEnvironmentVariableW(L"O", (own / "o").c_str());
        settings.values[L"path_quicklink_filename"] = file;
        for (const std::filesystem::path& path : {folder / "t", folder / "IExplore.exe", own / "o"})
            writeFile(path, "x");
        std::filesystem::current_path(folder);
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
    std::string traced() { return utf8FromWide(m_traces.joined()); }

    const std::filesystem::path folder = m_root, file = folder / "links.txt";
    const std::filesystem::path own = LR"(C:\A\R\Veltrano\KRS\Templates)";
    fakeSettings_t settings;
};

TEST_F(QuickLinks, LoadReadsTheFileAndFiltersItByTheDialogList)
{
    const struct {
        const char *text, *records, *filtered = "", *traced = "";
    } cases[] = {
        {"[SHORTCUTRECORD]\nmANIFEST=t\nUrl=a=b\nName=n\nProfile=7\nManifestID=i\nQLwoCred=1",
         "0 k1 ua=b d mt nn p7 ii w1;", "n"},
        {"Manifest=t\n[ShortCutRecord] \nUrl=u\n[x=y\n=y\ny=\nplain\n Url=v",
         "0 k1 uu d mt n p0 i w0;", "",
         "|E 0 inv.line '[ShortCutRecord] '|E 0 inv.line '=y'|E 0 inv.line 'plain'"},
        {"Name=\n[ShortCutRecord]\nManifestID=i\nKRSURLs=a\nKRSDlgPaths=c\nManifest=.", ""},
        // a record whose manifest is missing leaves its fields to the next one
        {"Url=v\nName=n\nProfile=3\nQLwoCred=1\nManifest=gone\n[ShortCutRecord]\n"
         "Manifest=t\nDlgpath=gone\n[ShortCutRecord]\nManifest=%O%\nName=m",
         "0 k1 uv d mt nn p3 i w1;1 k0 u d m%O% nm p0 i w0;", "nm"},
        {"Manifest=alien|t\nProfile=12abc\n[ShortCutRecord]\n"
         "Manifest=t\nProfile=1\nProfile=\nQLwoCred=2",
         "0 k0 u d malien|t n p12 i w0;1 k0 u d mt n p0 i w0;"},
        {"Manifest=t\nDlgpath=t\nUrl=u\n[ShortCutRecord]\nManifest=t\nUrl=u\n"
         "Dlgpath=IEXPLORE.EXE dlg\nDlgpath=%O%", // a program's path is not expanded
         "0 k1 uu dt mt n p0 i w0;1 k2 uu dIEXPLORE.EXE dlg mt n p0 i w0;"},
        // the user's own: listed without its query, or only as an address, or by a part of it
        {"KRSURLs=b\nKRSDlgPaths=,,x,,a,bc, abc\nName=a\nManifest=%O%\nUrl=A?1\n[ShortCutRecord]\n"
         "Name=b\nManifest=%O%\nUrl=b\n[ShortCutRecord]\nName=c\nManifest=%O%\nUrl=abc",
         nullptr, "bc"},
        // another folder's: in the list, with the target of the user's own, or in another case
        {"KRSDlgPaths=u?1\nName=a\nManifest=t\nUrl=u?1\n[ShortCutRecord]\n"
         "Name=b\nManifest=%O%\nUrl=u?2\n[ShortCutRecord]\nName=c\nManifest=%O%\nUrl=U",
         nullptr, "ac"},
        {"KRSDlgPaths=,\nName=a\nManifest=%O%", nullptr, "a"}, // no item, not even an empty one
        {"Name=a\nManifest=t\n[ShortCutRecord]\nName=b\nManifest=%O%", nullptr, "a"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        writeFile(file, c.text);
        const QL ql;
        EXPECT_EQ(shown(ql.records), c.records ? c.records : shown(ql.records));
        std::string filtered;
        for (const QLRecord& record : ql.filtered)
            filtered += record.name;
        EXPECT_EQ(filtered + traced(), c.filtered + std::string(c.traced));
        EXPECT_TRUE(!ql.records.empty() || ql.krsurls.empty()); // lists without records go too
    }
}

TEST_F(QuickLinks, SaveWritesWhatReadsBack)
{
    const std::string text = "[ShortCutRecord]\r\nManifest=t\r\nUrl=u=\xC3\xA9\r\n"
                             "Name=n [x] = \r\nProfile=4294967295\r\nManifestID=\r\n"
                             "QLwoCred=0\r\n[ShortCutRecord]\r\nManifest=%O%\r\nDlgpath=t\r\n"
                             "Name=d\r\nProfile=5\r\nManifestID=i\r\nQLwoCred=1\r\n"
                             "KRSURLs=u\r\nKRSDlgPaths=a,b";
    writeFile(file, text);
    QL ql;
    ql.records.emplace(ql.records.begin() + 1); // without a kind: not written
    ql.krsdlgpaths.append("\0c", 2);            // a zero ends the file
    _fmode = _O_BINARY;                         // a host's own habit
    EXPECT_TRUE(ql.save(file, true));
    _fmode = _O_TEXT;
    EXPECT_EQ(fileBytes(file), text);
    EXPECT_EQ(traced(), "|U save " + utf8FromWide(shortpath(file)));
    const importPatch_t full(
        "fputs", +[] { return EOF; });
    const std::wstring longName(261 - m_root.size(), L'x');
    for (const std::wstring& name : {L""s, m_root + longName, m_root + L"n\\n", file.wstring()}) {
        EXPECT_FALSE(ql.save(name, false));
        EXPECT_EQ(traced(), name.empty() ? "|E 0 empty fname" : "|E 0 savefile exception");
    }
    EXPECT_FALSE(DeleteFileW(file.c_str())); // the stream stays open
    _fcloseall();
}

TEST_F(QuickLinks, FilterExpandsTheDialogItLooksUp)
{
    QL ql;
    ql.records = {{2, "", "%APPDATA%", "%O%", "", 0, 0, "", false},
                  {2, "", "%APPDATA%", "t", "", 0, 1, "", false}};
    ql.filter("x", ql.filtered);
    EXPECT_EQ(ql.filtered.size(), 2u);
    ql.filter(utf8FromWide(expandenv(L"%APPDATA%")), ql.filtered);
    EXPECT_EQ(ql.filtered.size(), 1u);
}

TEST_F(QuickLinks, AddTracesThenRefusesCreatesOrUpdates)
{
    const std::string longName(76, 'x');
    const std::array<std::string, 5> cases[] = {
        {"n", "", "x:A", "x:a", "name: 'n'|U   url : ''|U   QL created"},
        {"", "u", "x:A", "x:a", "name: ''|U   url : 'u'|U   QL created"},
        {"n", "u", "A\\", "a\\", "name: 'n'|U   url : 'u'|E 0 Cannot split manifest path"},
        {longName, "a.exe.", (own / "A").string(), "kri::a",
         "name: '" + longName.substr(1) + " ...'|U   url : 'a.exe.'|U   QL created"},
        {"m", "b.EXE", "d:/A", "d:/a", "name: 'm'|U   dlgpath : 'b.EXE'|U   QL updated"},
        {"m", "IExplore.exe?", "a", "a", "name: 'm'|U   dlgpath : 'IExplore.exe?'|U   QL created"}};
    QL ql;
    for (const auto& [name, target, manifest, shortManifest, rest] : cases) {
        ql.add(name, target, manifest, 7, name, name == "m"); // the update changes all
        EXPECT_EQ(traced(), "|U QL for: " + shortManifest + "|U   prof:  7|U   " + rest);
        EXPECT_EQ(ql.dirty, !ql.records.empty());
    }
    // The update kept the path that was stored, and the address that no longer counts.
    EXPECT_EQ(shown(ql.records), "-1 k2 ua.exe. db.EXE m%appdata%\\Veltrano\\KRS\\Templates\\A "
                                 "nm p7 im w1;-1 k2 u dIExplore.exe? ma nm p7 im w1;");
    ql.flush();
    EXPECT_EQ(fileBytes(file).find("\nKRS"), std::string::npos); // both lists are empty
    EXPECT_TRUE(ql.dirty && QL::removefile());                   // dirty of a save that worked
    settings.values.clear();
    ql.flush();
    EXPECT_FALSE(ql.dirty || QL::removefile()); // of one that failed
    const std::wstring longPath = m_root + std::wstring(249 - m_root.size(), L'q');
    settings.values[L"path_quicklink_filename"] = longPath;
    writeFile(longPath, "");
    const importPatch_t calls("DeleteFileW", notePath<FALSE, 0>);
    EXPECT_FALSE(QL::removefile());
    EXPECT_EQ(noted, LR"(\\?\)" + longPath + L'|');
}

TEST_F(QuickLinks, FindTakesTheFirstMatchAsAWalkWould)
{
    const uint32_t profiles[] = {0, 1, 256, 0xFFFFFFFF};
    const char* const paths[] = {"a", "A", "t", "d:\\x\\a", "x:A", "d:/t", "%O%"};
    std::mt19937 random(1);
    const auto any = [&](const auto& list) { return list[random() % std::size(list)]; };
    QL ql;
    for (int round = 0; round < 1000; ++round) {
        ql.add("n", "u", any(paths), any(profiles), "", false);
        if (round % 16 == 9)
            ql.records.resize(1);
        if (round % 16 < 2)
            ql.parse({round % 2 ? "Manifest=t" : "Manifest=%O%", "Profile=256", "[ShortCutRecord]",
                      "Manifest=t"});
        for (const std::string wanted : {"a", "A", "t", "%O%", ""})
            for (const uint32_t profile : profiles) {
                const auto first = std::ranges::find_if(ql.records, [&](const QLRecord& r) {
                    return std::filesystem::path(r.manifest).filename() == wanted &&
                           (profile == 0xFFFFFFFF || profile == r.profile);
                });
                ASSERT_EQ(ql.find("y/" + wanted, profile),
                          first == ql.records.end() ? nullptr : &*first);
            }
    }
}

} // namespace
