#include "formats/backup/elementtree.h"
#include "formats/der/derreader.h"
#include "formats/text/printable.h"
#include "shared/backupinput.h"
#include "vlbackup/backups.h"

#include <algorithm>
#include <functional>
#include <map>

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

// A finding's path and offset are those of one element.
void expectPlaces(const Json::Value& findings, const bytes& backup)
{
    std::map<std::string, size_t> offsets;
    walkElements(backup, [&](const BackupElement& element) {
        offsets.try_emplace(pathText(element.place), element.place.offset);
    });
    for (const Json::Value& found : findings) {
        const auto at = offsets.find(found["path"].asString());
        if (at != offsets.end() && !at->first.empty()) { // else it is what a missing one lacks
            EXPECT_EQ(found["offset"].asUInt(), at->second) << found;
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
            expectPlaces(parsed(out)["findings"], backup);
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
}

} // namespace
