#include "fixture.h"

#include <random>

namespace {

using Messages = std::vector<std::wstring>;

TEST_F(QuickLinks, AddTracesThenRefusesCreatesOrUpdates)
{
    const std::string text75(75, 'x');
    const std::wstring wide75(75, L'x');
    const std::string manifest = own("A.vlm");
    const struct {
        const char* what;
        std::string name;
        std::string target;
        std::string manifest;
        Messages traced;
        size_t records;
    } cases[] = {
        {"no target",
         "n",
         "",
         manifest,
         {L"U QL for: kri::a.vlm", L"U   prof:  7", L"U   name: 'n'", L"U   url : ''",
          L"U   QL created"},
         0},
        {"no name",
         "",
         "u",
         manifest,
         {L"U QL for: kri::a.vlm", L"U   prof:  7", L"U   name: ''", L"U   url : 'u'",
          L"U   QL created"},
         0},
        {"no file name",
         "n",
         "u",
         "c:\\a\\",
         {L"U QL for: c:\\a\\", L"U   prof:  7", L"U   name: 'n'", L"U   url : 'u'",
          L"E 0 Cannot split manifest path"},
         0},
        {"new",
         text75,
         text75 + "y",
         manifest,
         {L"U QL for: kri::a.vlm", L"U   prof:  7", L"U   name: '" + wide75 + L"'",
          L"U   url : '" + wide75 + L" ...'", L"U   QL created"},
         1},
        {"same file in another folder",
         "m",
         "c:\\b.exe",
         "d:/x/A.vlm",
         {L"U QL for: d:/x/a.vlm", L"U   prof:  7", L"U   name: 'm'", L"U   dlgpath : 'c:\\b.exe'",
          L"U   QL updated"},
         1},
        {"same file in another case",
         "m",
         "u",
         "a.vlm",
         {L"U QL for: a.vlm", L"U   prof:  7", L"U   name: 'm'", L"U   url : 'u'",
          L"U   QL created"},
         2},
    };
    QL ql;
    traceRecorder_t recorder;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        ql.add(c.name, c.target, c.manifest, 7, "id", true);
        EXPECT_EQ(recorder.messages(), c.traced);
        EXPECT_EQ(ql.records.size(), c.records);
        EXPECT_EQ(ql.dirty, c.records > 0);
    }
    // The update kept the path that was stored and the address that no longer counts.
    const QLRecord& updated = ql.records[0];
    EXPECT_EQ(updated.manifest, "%appdata%\\Veltrano\\KRS\\Templates\\A.vlm");
    EXPECT_EQ(updated.kind, 2u);
    EXPECT_EQ(updated.dlgpath, "c:\\b.exe");
    EXPECT_EQ(updated.url, text75 + "y");
    EXPECT_EQ(updated.name, "m");
    EXPECT_EQ(updated.index, -1);
    EXPECT_TRUE(updated.wocred);

    ql.tracing = false;
    ql.add("n", "u", "a:", 7, "", false);
    EXPECT_EQ(recorder.messages(), Messages{L"E 0 Cannot split manifest path"});
}

TEST_F(QuickLinks, FlushSavesWhatWasAddedAndKeepsItsOddDirty)
{
    put(own("a.vlm"), "x");
    QL ql;
    ql.flush();
    EXPECT_FALSE(std::filesystem::exists(file)); // nothing was added
    ql.add("n", "u", own("a.vlm"), 1, "", false);
    EXPECT_TRUE(ql.filtered.empty());
    ql.flush();
    EXPECT_TRUE(ql.dirty); // of a save that worked
    const QL back;
    ASSERT_EQ(back.records.size(), 1u);
    EXPECT_EQ(back.records[0].index, 0);
    EXPECT_EQ(back.filtered.size(), 1u);

    settings.values[L"path_quicklink_filename"] = folder / "gone" / "links.txt";
    ql.flush();
    EXPECT_FALSE(ql.dirty); // of one that failed
    EXPECT_FALSE(QL::removefile());
    settings.values[L"path_quicklink_filename"] = file;
    EXPECT_TRUE(QL::removefile());
    EXPECT_FALSE(std::filesystem::exists(file));
    EXPECT_FALSE(QL::removefile());
    settings.values.clear();
    EXPECT_FALSE(QL::removefile());
    EXPECT_TRUE(QL().records.empty());
}

TEST_F(QuickLinks, FindTakesTheFirstMatchAsAWalkWould)
{
    const auto walk = [](QL& list, std::string_view wanted, uint32_t profile) -> QLRecord* {
        for (QLRecord& record : list.records) {
            const std::string_view path = record.manifest;
            const size_t at = path.find_last_of("\\/:");
            const std::string_view name = at == path.npos ? path : path.substr(at + 1);
            if (name == wanted && (profile == 0xFFFFFFFF || profile == record.profile))
                return &record;
        }
        return nullptr;
    };
    const char* const folders[] = {"d:\\x\\", "", "x:", "d:/"};
    const char* const names[] = {"a.vlm", "A.vlm", "b.vlm", "c", ""};
    const uint32_t profiles[] = {0, 1, 2, 256, 0xFFFFFFFF};
    for (const char* name : names)
        put(folder / (std::string("p") + name), "x");
    std::mt19937 random(1);
    const auto any = [&](const auto& list) { return list[random() % std::size(list)]; };
    QL ql;
    ql.tracing = false;
    for (int round = 0; round < 5000; ++round) {
        const unsigned action = random() % 100;
        const std::string manifest = std::string(any(folders)) + any(names);
        if (action < 40) {
            ql.add("n", "u", manifest, any(profiles), "", false);
        } else if (action < 42) {
            ql.records.emplace_back().manifest = manifest;
        } else if (action == 42) {
            ql.records.resize(ql.records.size() / 2);
        } else if (action == 43) {
            TextLines lines;
            for (int i = 0; i < 4; ++i)
                lines.insert(lines.end(),
                             {"Manifest=" + shared("p") + any(names),
                              "Profile=" + std::to_string(any(profiles)), "[ShortCutRecord]"});
            ql.parse(lines);
        }
        for (const char* name : {"a.vlm", "A.vlm", "b.vlm", "pa.vlm", "pc", ""})
            for (const uint32_t profile : profiles)
                ASSERT_EQ(ql.find(std::string("y/") + name, profile), walk(ql, name, profile))
                    << round << ' ' << name << ' ' << profile;
    }
}

TEST_F(QuickLinks, FilterKeepsWhatABackupCarries)
{
    put(folder / "Local.exe", "x");
    struct Row {
        uint32_t kind;
        const char* target;
        bool own;
    };
    const struct {
        const char* what;
        std::vector<Row> rows;
        const char* list;
        std::vector<int> kept;
    } cases[] = {
        {"own and other", {{1, "u", true}, {1, "v", false}}, "", {0, 1}},
        {"none", {}, "u", {}},
        {"listed, in any case, without the query",
         {{1, "A.b/c?x=1", true}, {1, "d", true}},
         ",,a,,a.B/C,",
         {1}},
        {"an item is no part of a target", {{1, "abc", true}}, "ab,b,abcd, abc", {0}},
        {"only ASCII has case", {{1, "\xC3\x84", true}}, "\xC3\xA4", {0}},
        {"another folder's wins",
         {{1, "u?1", true}, {1, "u?2", false}, {1, "U", true}},
         "",
         {1, 2}},
        {"another folder's is kept though listed", {{1, "u", false}}, "u", {0}},
        {"a dialog's target is looked up expanded",
         {{2, "%VLQL%\\x.exe", true}, {2, "c:\\q\\x.exe", true}},
         "C:\\Q\\X.EXE",
         {}},
        {"and indexed as it stands",
         {{2, "%VLQL%\\x.exe", true}, {2, "%VLQL%\\x.exe", false}},
         "",
         {0, 1}},
        {"an address isn't expanded", {{1, "%VLQL%", true}}, "c:\\q", {0}},
        {"no target is a target of its own",
         {{0, "", true}, {0, "", false}, {0, "", true}},
         "",
         {1}},
        {"and is in no list", {{0, "", true}}, ",", {0}},
    };
    SetEnvironmentVariableW(L"VLQL", L"c:\\q");
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        QL ql;
        for (const Row& row : c.rows) {
            QLRecord& record = ql.records.emplace_back();
            record.kind = row.kind;
            (row.kind == 1 ? record.url : record.dlgpath) = row.target;
            record.manifest =
                row.own ? "%appdata%\\veltrano/KRS\\Templates\\t.vlm" : shared("t.vlm");
            record.profile = static_cast<uint32_t>(ql.records.size() - 1);
        }
        std::vector<QLRecord> keep(3);
        ql.filter(c.list, keep);
        std::vector<int> kept;
        for (const QLRecord& record : keep)
            kept.push_back(static_cast<int>(record.profile));
        EXPECT_EQ(kept, c.kept);
    }
    SetEnvironmentVariableW(L"VLQL", nullptr);
}

TEST_F(QuickLinks, TheDialogListAloneDecidesAfterALoad)
{
    put(own("t.vlm"), "x");
    const std::string records = "Manifest=" + own("t.vlm") +
                                "\nUrl=u\nName=1\n[ShortCutRecord]\n"
                                "Manifest=" +
                                own("t.vlm") + "\nUrl=v\nName=2\n";
    put(file, records + "KRSURLs=u\nKRSDlgPaths=v\n");
    const QL ql;
    EXPECT_EQ(ql.records.size(), 2u);
    ASSERT_EQ(ql.filtered.size(), 1u);
    EXPECT_EQ(ql.filtered[0].name, "1");
    EXPECT_EQ(ql.filtered[0].index, 0);
}

} // namespace
