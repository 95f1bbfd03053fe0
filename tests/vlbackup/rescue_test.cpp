#include "formats/backup/elementtree.h"
#include "formats/der/derreader.h"
#include "formats/text/printable.h"
#include "shared/backupinput.h"
#include "vlbackup/backups.h"

#include <algorithm>
#include <functional>

namespace {

// Names differ in more than one bit and in more than case, so that no damage makes two equal.
const std::string inside = "Geheimnis\r\n0\x1E\4";
const std::vector<std::vector<bytes>> entries = {
    {filePair(L"Konto.vlm", inside), filePair(L"alien|C:\\Users\\Weber\\Post 1.vlm", "Passwort"),
     filePair(L"Anna.vls", std::string(200, 'z')), filePair(L"updata.vls", "")},
    {link(L"Sparkasse", L"https://sparkasse.example/?kunde=4711", L"Konto.vlm", 1, L"Kennung"),
     link(L"Bank", L"Z.exe", L"Konto.vlm", 6, L"Kennung")},
    {seq({wide(L"Privat"), wide(L"Sparkasse")}), seq({wide(L"Dienst"), wide(L"")})},
};
const bytes document =
    settings(R"("open_guard_desk_qa":"Ctrl+Q","path_dontpromptlist_filename":"K\u00f6ln")");
const bytes sample = seq({seq(entries[0]), seq(entries[1]), seq(entries[2]), document});
const std::vector<bytes> samples = {
    sample,
    seq({seq(entries[0]),
         seq({seq({narrow("n"), narrow("t"), narrow("Konto.vlm"), integer(3), narrow("i")})})}),
    seq({seq(entries[0]), seq(entries[1]), seq(entries[2])}),
    seq({seq({}), seq({}), seq({}), seq({integer(1), wide(L"Alt+W"), octets("Liste")})}),
    seq({seq({}), seq({}), seq({}), document, seq({octets("Zusatz")})}),
    seq({tlv(0x30, {0x1E, 0x81, 2, 0, 'W', 4, 1, 'x'}), octets("Weber"), seq({integer(1)}),
         seq({})}),
};

bytes asBytes(const std::string& text)
{
    return {text.begin(), text.end()};
}

// Calls with every cut of the bytes, and with a bit of every byte flipped.
void damageEach(const bytes& whole, const std::function<void(const bytes&, size_t, bool)>& use)
{
    for (size_t i = 0; i < whole.size() && !testing::Test::HasFailure(); ++i) {
        SCOPED_TRACE(i);
        use({whole.data(), whole.data() + i}, i, true); // a read past it is seen
        for (const size_t bit : {i % 8, (i + 5) % 8}) {
            bytes flipped = whole;
            flipped[i] ^= static_cast<uint8_t>(1U << bit);
            use(flipped, i, false);
        }
    }
}

// Whole lines and documents, and nothing in them that steers a terminal.
TEST(Vlbackup, AnyBytesGiveWholeAnswers)
{
    const char* const commands[] = {"ls -", "verify - --json", "ls - --json"};
    const auto check = [&](const bytes& backup, size_t command) {
        const auto [status, out, err] = vlbackup(wordsOf(commands[command]), backup);
        EXPECT_EQ(out + err, printableLines(out + err));
        if (command != 0 && err.empty())
            parsed(out);
    };
    const bytes mark = wide(L"\u001b\u202e");
    for (const bytes& last : {seq({narrow("\x1B")}), seq({integer(1), mark})})
        for (const size_t command : {0U, 1U, 2U})
            check(seq({seq({seq({mark, octets("")})}),
                       seq({seq({mark, mark, mark, integer(1), mark})}), seq({seq({mark, mark})}),
                       last}),
                  command);
    damageEach(sample, [&](const bytes& damaged, size_t at, bool cut) {
        check(damaged, at % 3);
        EXPECT_TRUE(!cut || vlbackup({"verify", "-"}, damaged).status == 1);
    });
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
    stored.push_back(document);
    const std::vector<std::string> all = contentsOf(sample);
    ASSERT_EQ(all.size(), stored.size());
    EXPECT_EQ(asBytes(vlbackup({"recover", "-", "-"}, sample).out), sample);
    damageEach(sample, [&](const bytes& damaged, size_t at, bool cut) {
        const auto [status, out, err] = vlbackup({"recover", "-", "-"}, damaged);
        EXPECT_EQ(out.empty() ? 0 : vlbackup({"verify", "-"}, out).status, 0);
        const auto back = out.empty() ? std::vector<std::string>() : contentsOf(asBytes(out));
        auto from = sample.begin();
        for (size_t i = 0; i < stored.size(); ++i) {
            from = std::search(from, sample.end(), stored[i].begin(), stored[i].end());
            const auto begin = static_cast<size_t>(from - sample.begin());
            const bool intact = begin + stored[i].size() <= at || (!cut && begin > at);
            EXPECT_TRUE(!intact || std::ranges::count(back, all[i]) == 1) << all[i];
            // A part of the whole is named.
            EXPECT_TRUE(!cut || intact || status == 1);
        }
        EXPECT_EQ(cut && !out.empty(), cut && err.find("lost: byte ") < 200) << err;
    });
    const toolRun_t repeated = vlbackup(
        {"recover", "-", "-"},
        seq({seq({filePair(L"a.vlm", "1"), filePair(L"nul.vlm", "2"), filePair(L"A.vlm", "3")}),
             seq({})}));
    EXPECT_EQ(contentsOf(asBytes(repeated.out)), std::vector<std::string>({"A.vlm3", ""}));
    expectIn(repeated.err, {"\"nul.vlm\" names a device"});
}

// The tags and lengths, with their places. One tag that nothing reads is as good as another.
std::string shapeOf(const bytes& backup)
{
    std::string shape;
    walkElements(backup, [&](const BackupElement& e) {
        const char tag = e.header != 0 ? static_cast<char>(e.tag) : 'x';
        shape += std::to_string(e.place.offset) + ' ' + pathText(e.place) + ' ' +
                 std::to_string(std::string("\2\4\x1E\x30").find(tag)) + ' ' +
                 std::to_string(e.length) + '\n';
    });
    return shape;
}

TEST(Redact, KeepsTheShapeAndNothingPersonal)
{
    const auto findings = [](const bytes& backup) {
        std::string all;
        const Json::Value json = parsed(vlbackup({"verify", "-", "--json"}, backup).out);
        for (const Json::Value& one : json["findings"])
            for (const char* const member : {"grade", "path", "offset"})
                all += one[member].asString() + ' ';
        return all;
    };
    const auto check = [&](const bytes& backup, bool whole) {
        const toolRun_t result = vlbackup({"redact", "-", "-"}, backup);
        if (!beginsAsBackup(backup)) {
            EXPECT_EQ(result.status, 1);
            return;
        }
        const bytes redacted = asBytes(result.out);
        EXPECT_EQ(shapeOf(redacted), shapeOf(backup));
        std::string texts = result.out;
        std::erase(texts, '\0'); // wide ones too
        for (const char* const word :
             {"Konto", "Geheim", "Weber", "Post", "Passw", "Anna", "Spark", "kunde", "4711", "Bank",
              "Kennung", "Privat", "Dienst", "00f6", "ln\"", "Liste", "Zusatz"})
            EXPECT_EQ(texts.find(word), texts.npos) << word;
        if (whole) {
            EXPECT_EQ(findings(redacted), findings(backup));
        }
    };
    for (const bytes& backup : samples)
        check(backup, true);
    damageEach(sample, [&](const bytes& damaged, size_t, bool) { check(damaged, false); });
}

TEST(Json, MakesTheSameBackupAgain)
{
    // Of a damaged one only the outer length may be written otherwise.
    const auto check = [](const bytes& backup, bool damaged) {
        const toolRun_t json = vlbackup({"to-json", "-", "-"}, backup);
        const toolRun_t back = vlbackup({"from-json", "-", "-"}, json.out);
        EXPECT_EQ(back.status, json.status) << back.err;
        const bytes made = asBytes(back.out);
        std::span<const uint8_t> one = made, other = backup;
        if (json.status == 0 && damaged) {
            EXPECT_TRUE(CDerReader(made).Read(0x30, one) && CDerReader(backup).Read(0x30, other));
        }
        EXPECT_TRUE(json.status != 0 || std::ranges::equal(one, other)) << json.out;
        return json.out;
    };
    for (const bytes& backup : samples) {
        EXPECT_NE(check(backup, false), "");
        damageEach(backup, [&](const bytes& damaged, size_t, bool) { check(damaged, true); });
    }
    // Damaged JSON makes a backup, or one line.
    damageEach(asBytes(check(samples[2], false)), [&](const bytes& damaged, size_t, bool cut) {
        const auto [status, out, err] = vlbackup({"from-json", "-", "-"}, damaged);
        EXPECT_EQ(status == 0, err.empty()) << err;
        EXPECT_EQ(out.empty(), status != 0);
        EXPECT_TRUE(!cut || status == 1 || damaged.back() == '}');
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
    for (const auto& [text, part] : wrong)
        expectIn(vlbackup({"from-json", "-", "-"}, text).err, {part});
}

TEST(Hex, ShowsEveryByteOnceWhateverTheDamage)
{
    damageEach(sample, [](const bytes& damaged, size_t, bool) {
        if (!beginsAsBackup(damaged))
            return;
        const Json::Value json = parsed(vlbackup({"hex", "-", "--json", "--all"}, damaged).out);
        size_t at = 0;
        for (const Json::Value& element : json["elements"]) {
            EXPECT_EQ(element["offset"].asUInt(), at);
            at += element["header"].asUInt() + element["hex"].asString().size() / 2;
        }
        EXPECT_EQ(at, damaged.size());
    });
    expectIn(
        vlbackup({"hex", "-"}, sample).out,
        {"1e         20  0/0/0               name \"Konto.vlm\"\n", "Sparkasse", "72 more bytes"});
}

TEST(Find, LooksIntoEveryPartAndEncoding)
{
    const bytes backup = seq({seq({filePair(L"K\u00f6ln.vlm", {"\0K\0\xf6\0l\0n\0", 9}),
                                   filePair(L"b.vlm", "xx K\xC3\xB6ln K\xC3\xB6ln")}),
                              seq(entries[1]), seq(entries[2]), document});
    // Half of one character and half of the next are none.
    EXPECT_EQ(
        vlbackup({"find", "-", "B"}, seq({seq({filePair(L"\u4100\u4200", "")}), seq({})})).out, "");
    const std::pair<const char*, const char*> cases[] = {
        {"find - K\u00f6ln",
         "byte 10, element 0/0/0: name of K\u00f6ln.vlm (once, UTF-16BE)\n"
         "byte 31, element 0/0/1: content of K\u00f6ln.vlm (once, UTF-16LE)\n"
         "byte 60, element 0/1/1: content of b.vlm (2 times, UTF-8)\n"
         "byte 450, element 3/0: document of settings.current.path_dontpromptlist_filename (once, "
         "UTF-8)\n"},
        {"find - z.EXE", ""},
        {"find -i - z.EXE", "byte 239, element 1/1/1: target of Bank (once, UTF-16BE)\n"},
    };
    for (const auto& [command, found] : cases) {
        SCOPED_TRACE(found);
        const toolRun_t result = vlbackup(wordsOf(command), backup);
        EXPECT_EQ(result.out, found);
        EXPECT_EQ(result.status, result.out.empty() ? 1 : 0);
    }
}

} // namespace
