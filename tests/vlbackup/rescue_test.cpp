#include "formats/backup/elementtree.h"
#include "formats/der/derreader.h"
#include "shared/backupinput.h"
#include "support/backupbytes.h"
#include "support/toolrun.h"
#include "vlbackup/commands.h"

#include <algorithm>
#include <functional>

#include <gtest/gtest.h>
#include <json/json.h>

namespace {

bytes link(const std::wstring& name, uint8_t profile, const std::wstring& target)
{
    return seq({wide(name), wide(target), wide(L"Konto.vlm"), integer(profile), wide(L"Kennung"),
                integer(0)});
}

// Names differ in more than one bit and in more than case, so that no damage makes two equal.
const std::string inside = "Geheimnis\r\n0\x1E\4";
const std::vector<std::vector<bytes>> entries = {
    {filePair(L"Konto.vlm", inside), filePair(L"alien|C:\\Users\\Weber\\Post 1.vlm", "Passwort"),
     filePair(L"Anna.vls", std::string(200, 'z')), filePair(L"updata.vls", "")},
    {link(L"Sparkasse", 1, L"https://sparkasse.example/?kunde=4711"), link(L"Bank", 6, L"Z.exe")},
    {seq({wide(L"Privat"), wide(L"Sparkasse")}), seq({wide(L"Dienst"), wide(L"")})},
};
const bytes settings = seq({narrow(
    R"({"settings":{"current":{"open_guard_desk_qa":"Ctrl+Q","path_dontpromptlist_filename":"K\u00f6ln"}}})")});
const bytes sample = seq({seq(entries[0]), seq(entries[1]), seq(entries[2]), settings});
const std::vector<bytes> samples = {
    sample,
    seq({seq(entries[0]),
         seq({seq({narrow("n"), narrow("t"), narrow("Konto.vlm"), integer(3), narrow("i")})})}),
    seq({seq(entries[0]), seq(entries[1]), seq(entries[2])}),
    seq({seq({}), seq({}), seq({}), seq({integer(1), wide(L"Alt+W"), octets("Liste")})}),
    seq({seq({}), seq({}), seq({}), settings, seq({octets("Zusatz")})}),
    seq({tlv(0x30, {0x1E, 0x81, 2, 0, 'W', 4, 1, 'x'}), octets("Weber"), seq({integer(1)}),
         seq({})}),
};

toolRun_t vlbackup(std::vector<std::string> arguments, const bytes& input)
{
    return runTool(runVlbackup, std::move(arguments), input);
}

bytes asBytes(const std::string& text)
{
    return {text.begin(), text.end()};
}

// Calls with every cut of the bytes, and with a bit of every byte flipped.
void damageEach(const bytes& whole, const std::function<void(const bytes&, size_t, bool)>& use)
{
    for (size_t i = 0; i < whole.size() && !testing::Test::HasFailure(); ++i) {
        SCOPED_TRACE(i);
        use({whole.data(), whole.data() + i}, i, true);
        for (const size_t bit : {i % 8, (i + 5) % 8}) {
            bytes flipped = whole;
            flipped[i] ^= static_cast<uint8_t>(1U << bit);
            use(flipped, i, false);
        }
    }
}

// What a backup holds, one text for each entry, the same in every version's form.
std::vector<std::string> contentsOf(const bytes& backup)
{
    CBackupView view;
    EXPECT_TRUE(decodeBackup(backup, view)) << view.refusal;
    std::vector<std::string> contents;
    for (const BackupFile& file : view.files)
        contents.push_back(file.name + std::string(file.content.begin(), file.content.end()));
    for (const BackupLink& one : view.links)
        contents.push_back(one.name + one.target + one.manifest + std::to_string(one.profile));
    for (const BackupCategory& category : view.categories)
        contents.push_back(category.name + '=' + category.text);
    contents.push_back(view.settings.document);
    return contents;
}

TEST(Recover, BringsBackWhatIsIntactAroundEveryDamage)
{
    std::vector<bytes> stored;
    for (const auto& list : entries)
        stored.insert(stored.end(), list.begin(), list.end());
    stored.push_back(settings);
    const std::vector<std::string> all = contentsOf(sample);
    ASSERT_EQ(all.size(), stored.size());
    EXPECT_EQ(asBytes(vlbackup({"recover", "-", "-"}, sample).out), sample);
    damageEach(sample, [&](const bytes& damaged, size_t at, bool cut) {
        const toolRun_t result = vlbackup({"recover", "-", "-"}, damaged);
        const bytes recovered = asBytes(result.out);
        EXPECT_EQ(recovered.empty() ? 0 : vlbackup({"verify", "-"}, recovered).status, 0);
        const auto back = recovered.empty() ? std::vector<std::string>() : contentsOf(recovered);
        auto from = sample.begin();
        for (size_t i = 0; i < stored.size(); ++i) {
            from = std::search(from, sample.end(), stored[i].begin(), stored[i].end());
            const auto begin = static_cast<size_t>(from - sample.begin());
            const bool intact = begin + stored[i].size() <= at || (!cut && begin > at);
            EXPECT_TRUE(!intact || std::ranges::count(back, all[i]) == 1) << all[i];
            // A part of the whole is named.
            EXPECT_TRUE(!cut || intact || result.status == 1);
        }
        EXPECT_EQ(cut && !recovered.empty(), cut && result.err.find("lost: byte ") < 200)
            << result.err;
    });
    const toolRun_t repeated = vlbackup(
        {"recover", "-", "-"},
        seq({seq({filePair(L"a.vlm", "1"), filePair(L"nul.vlm", "2"), filePair(L"A.vlm", "3")}),
             seq({})}));
    EXPECT_EQ(contentsOf(asBytes(repeated.out)), std::vector<std::string>({"A.vlm3", ""}));
    EXPECT_NE(repeated.err.find("\"nul.vlm\" names a device"), std::string::npos) << repeated.err;
}

// The tags and lengths, with their places. One tag that nothing reads is as good as another.
std::string shapeOf(const bytes& backup)
{
    std::string shape;
    walkElements(backup, [&](const BackupElement& e) {
        shape +=
            std::to_string(e.place.offset) + ' ' + pathText(e.place) + ' ' +
            std::to_string(
                std::string("\2\4\x1E\x30").find(e.header != 0 ? static_cast<char>(e.tag) : 'x')) +
            ' ' + std::to_string(e.length) + '\n';
    });
    return shape;
}

TEST(Redact, KeepsTheShapeAndNothingPersonal)
{
    const auto check = [](const bytes& backup, bool whole) {
        const toolRun_t result = vlbackup({"redact", "-", "-"}, backup);
        const bytes redacted = asBytes(result.out);
        if (!beginsAsBackup(backup)) {
            EXPECT_EQ(result.status, 1);
            return;
        }
        EXPECT_EQ(shapeOf(redacted), shapeOf(backup));
        for (const std::wstring word : {L"Konto", L"Geheim", L"Weber", L"Post", L"Passw", L"Anna",
                                        L"Spark", L"kunde", L"4711", L"Bank", L"Kennung", L"Privat",
                                        L"Dienst", L"00f6", L"ln\"", L"Liste", L"Zusatz"}) {
            const bytes narrowWord = narrow({word.begin(), word.end()}), wideWord = wide(word);
            // Half of it may be a part of something else where a flip has cut it off.
            const auto has = [&](const bytes& tlv, ptrdiff_t zero) {
                return std::search(redacted.begin(), redacted.end(), tlv.begin() + 2,
                                   tlv.end() - zero) != redacted.end();
            };
            EXPECT_FALSE(has(narrowWord, 1) || has(wideWord, 2))
                << std::string(word.begin(), word.end());
        }
        if (!whole)
            return;
        Json::Value findings[2];
        for (const int i : {0, 1})
            ASSERT_TRUE(Json::Reader().parse(
                vlbackup({"verify", "-", "--json"}, i == 0 ? backup : redacted).out, findings[i]));
        ASSERT_EQ(findings[0]["findings"].size(), findings[1]["findings"].size());
        for (Json::ArrayIndex i = 0; i < findings[0]["findings"].size(); ++i)
            for (const char* const member : {"grade", "path", "offset"})
                EXPECT_EQ(findings[0]["findings"][i][member], findings[1]["findings"][i][member]);
    };
    for (const bytes& backup : samples)
        check(backup, true);
    damageEach(sample, [&](const bytes& damaged, size_t, bool) { check(damaged, false); });
}

TEST(Json, MakesTheSameBackupAgain)
{
    const auto outer = [](const bytes& backup) {
        std::span<const uint8_t> contents;
        EXPECT_TRUE(CDerReader(backup).Read(0x30, contents));
        return bytes(contents.begin(), contents.end());
    };
    const auto check = [&](const bytes& backup) {
        const toolRun_t json = vlbackup({"to-json", "-", "-"}, backup);
        const toolRun_t back = vlbackup({"from-json", "-", "-"}, asBytes(json.out));
        EXPECT_EQ(back.status, json.status) << back.err;
        if (json.status == 0) { // only the outer length may be written otherwise
            EXPECT_EQ(outer(asBytes(back.out)), outer(backup)) << json.out;
        }
    };
    for (const bytes& backup : samples) {
        EXPECT_EQ(asBytes(vlbackup({"from-json", "-", "-"},
                                   asBytes(vlbackup({"to-json", "-", "-"}, backup).out))
                              .out),
                  backup);
        damageEach(backup, [&](const bytes& damaged, size_t, bool) { check(damaged); });
    }
    // Damaged JSON makes a backup, or one line.
    damageEach(asBytes(vlbackup({"to-json", "-", "-"}, samples[2]).out),
               [&](const bytes& damaged, size_t, bool cut) {
                   const toolRun_t result = vlbackup({"from-json", "-", "-"}, damaged);
                   EXPECT_EQ(result.status == 0, result.err.empty()) << result.err;
                   EXPECT_EQ(result.out.empty(), result.status != 0);
                   EXPECT_TRUE(!cut || result.status == 1 || damaged.back() == '}');
               });
    const std::string head = R"({"schema":"vlbackup-backup-1","templates":)";
    const std::pair<std::string, const char*> wrong[] = {
        {head + "[{\"name\":\"a\",\"content\":\"!\"}],\"quicklinks\":[]}",
         "templates[0].content is no Base64"},
        {head + "[{\"name\":1,\"content\":\"\"}],\"quicklinks\":[]}",
         "templates[0].name must be a string"},
        {head + "[{\"nam\":\"a\"}],\"quicklinks\":[]}", "templates[0] lacks its member name"},
        {head + "[],\"quicklinks\":[{\"der\":\"BAEx\"},{\"der\":\"BAEy/w==\"}]}",
         "quicklinks[1].der is not one"},
        {head + "[],\"quicklinks\":[],\"x\":1}", "unknown member x"},
        {"{\"schema\":\"vlbackup-backup-2\"}", "schema must be"},
        {head + "[],,", "Line 1, Column"},
    };
    for (const auto& [document, part] : wrong)
        EXPECT_NE(vlbackup({"from-json", "-", "-"}, asBytes(document)).err.find(part),
                  std::string::npos)
            << part;
}

TEST(Hex, ShowsEveryByteOnceWhateverTheDamage)
{
    damageEach(sample, [](const bytes& damaged, size_t, bool) {
        Json::Value json;
        const toolRun_t result = vlbackup({"hex", "-", "--json", "--all"}, damaged);
        if (!beginsAsBackup(damaged))
            return;
        ASSERT_TRUE(Json::Reader().parse(result.out, json)) << result.out;
        size_t at = 0;
        for (const Json::Value& element : json["elements"]) {
            EXPECT_EQ(element["offset"].asUInt(), at);
            at += element["header"].asUInt() + element["hex"].asString().size() / 2;
        }
        EXPECT_EQ(at, damaged.size());
    });
    const std::string text = vlbackup({"hex", "-"}, sample).out;
    EXPECT_NE(text.find("1e         20  0/0/0               name \"Konto.vlm\"\n"),
              std::string::npos)
        << text;
    EXPECT_NE(text.find("Sparkasse"), std::string::npos);
    EXPECT_NE(text.find("72 more bytes"), std::string::npos);
}

TEST(Find, LooksIntoEveryPartAndEncoding)
{
    const bytes backup = seq({seq({filePair(L"K\u00f6ln.vlm", {"\0K\0\xf6\0l\0n\0", 9}),
                                   filePair(L"b.vlm", "xx K\xC3\xB6ln K\xC3\xB6ln")}),
                              seq(entries[1]), seq(entries[2]), settings});
    const struct {
        std::vector<std::string> arguments;
        const char* out;
    } cases[] = {
        {{"find", "-", "K\u00f6ln"},
         "byte 10, element 0/0/0: name of K\u00f6ln.vlm (once, UTF-16BE)\n"
         "byte 31, element 0/0/1: content of K\u00f6ln.vlm (once, UTF-16LE)\n"
         "byte 60, element 0/1/1: content of b.vlm (2 times, UTF-8)\n"
         "byte 450, element 3/0: document of settings.current.path_dontpromptlist_filename (once, "
         "UTF-8)\n"},
        {{"find", "-", "z.EXE"}, ""},
        {{"find", "-i", "-", "z.EXE"},
         "byte 239, element 1/1/1: target of Bank (once, UTF-16BE)\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.arguments.back());
        const toolRun_t result = vlbackup(c.arguments, backup);
        EXPECT_EQ(result.out, c.out);
        EXPECT_EQ(result.status, result.out.empty() ? 1 : 0);
    }
}

} // namespace
