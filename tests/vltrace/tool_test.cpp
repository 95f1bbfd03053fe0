#include "tracebytes.h"

#include "commands.h"
#include "exports.h"
#include "common/statusnames.h"
#include "stats.h"
#include "tracefile.h"

#include <gtest/gtest.h>
#include <json/json.h>

#include <fstream>
#include <map>
#include <random>
#include <sstream>

using namespace tracecore;
using namespace vltrace;

namespace {

struct result_t {
    int status;
    std::string out;
    std::string err;
};

result_t run(
    std::vector<std::string> arguments, const std::function<bool()>& wait = [] { return false; })
{
    std::ostringstream out;
    std::ostringstream err;
    const int status = runVltrace(std::move(arguments), out, err, wait);
    return {status, out.str(), err.str()};
}

Json::Value parsed(const std::string& text)
{
    Json::Value value;
    EXPECT_TRUE(Json::Reader().parse(text, value)) << text;
    return value;
}

// A folder of the test's own, with a name that is no ASCII, and the sample trace in it.
class VltraceTool : public testing::Test
{
protected:
    VltraceTool()
    {
        std::filesystem::create_directories(m_folder);
        write(sample, sampleTrace().bytes);
    }
    ~VltraceTool() override { std::filesystem::remove_all(m_folder); }

    std::string name(const std::string& file) const
    {
        const auto path = (m_folder / pathOf(file)).u8string();
        return {path.begin(), path.end()};
    }
    void write(const std::string& file, const std::vector<uint8_t>& bytes,
               std::ios::openmode mode = std::ios::trunc) const
    {
        std::ofstream(m_folder / pathOf(file), std::ios::binary | mode)
            << std::string(bytes.begin(), bytes.end());
    }
    std::string contents(const std::string& file) const
    {
        return fileBytes(m_folder / pathOf(file));
    }

    const std::string sample = "host.x64.vlonlineids.dll~~07.14.17_at_15.59.04.123~~1.4242.trc3";
    const std::filesystem::path m_folder =
        std::filesystem::temp_directory_path() /
        pathOf("vltrace-Größe-日-" + std::to_string(std::random_device()()));
};

TEST_F(VltraceTool, CatShowsTimeThreadNestingAndStatusAndErrorsWithTheirChain)
{
    const auto linesOf = [this](std::vector<std::string> options) {
        options.insert(options.begin(), {"cat", name(sample)});
        const result_t result = run(std::move(options));
        EXPECT_EQ(std::to_string(result.status) + result.err, "0");
        EXPECT_NE(result.out.find("# trace3\n"), std::string::npos);
        return result.out.substr(result.out.find("2017-"));
    };
    EXPECT_EQ(linesOf({}),
              "2017-07-14 15:59:04.100  0x01A4  > SetStorageData\n"
              "2017-07-14 15:59:04.110  0x01A4    > RestoreBackup\n"
              "2017-07-14 15:59:04.150  0x01A4      E 0x80070005 ERROR_ACCESS_DENIED (access is "
              "denied): Größe of 日\n"
              "2017-07-14 15:59:04.020  0x02B0  > Poll\n"
              "2017-07-14 15:59:04.160  0x02B0    U [colour 04] NoVLAgent\n"
              "2017-07-14 15:59:04.160  0x02B0  < Poll  140 ms\n"
              "2017-07-14 15:59:04.160  0x01A4    < RestoreBackup  50 ms\n"
              "2017-07-14 15:59:04.300  0x01A4  < SetStorageData  200 ms\n"
              "2017-07-14 15:59:04.300  0x03C8  N 07-14-2017\n"
              "2017-07-15 00:00:00.005  0x03C8  > main\n"
              "2017-07-15 00:00:00.005  0x03C8    E note\n");
    EXPECT_EQ(linesOf({"--errors", "--level", "E"}),
              "2017-07-14 15:59:04.150  0x01A4  E 0x80070005 ERROR_ACCESS_DENIED (access is "
              "denied): Größe of 日\n"
              "    in SetStorageData, entered 15:59:04.100\n"
              "    in RestoreBackup, entered 15:59:04.110\n"
              "2017-07-15 00:00:00.005  0x03C8  E note\n"
              "    in main, entered 00:00:00.005\n");
    traceBytes_t more("");
    more.record(8, 'U', "a\nb\x1B\xC2\x9B\tc").record(8, '<');
    write(sample, more.bytes, std::ios::app);
    EXPECT_NE(linesOf({"--no-marks"}).find("a\\nb\\x1B\\x9B\tc"), std::string::npos);
    EXPECT_NE(linesOf({}).find("entry is not known"), std::string::npos);
}

TEST_F(VltraceTool, FiltersLeaveWhatMeetsAllOfThem)
{
    const struct {
        std::vector<std::string> filter;
        const char* levels; // of the records left
    } cases[] = {
        {{}, ">>E>U<<<N>E"},
        {{"--thread", "0x2B0"}, ">U<"},
        {{"--thread", "688", "--thread", "0x3c8"}, ">U<N>E"},
        {{"--level", "EU"}, "EUE"},
        {{"--level", "tT"}, "tTTTTTTtT"},
        {{"--function", "restoreb"}, ">E<"},
        {{"--function", "SetStorageData"}, ">>E<<"},
        {{"--text", "agent"}, "U"},
        {{"--text", "Poll"}, "><"},
        {{"--from", "2017-07-15"}, ">E"},
        {{"--to", "2017-07-14"}, ">>E>U<<<N"},
        {{"--from", "15:59:04.150", "--to", "15:59:04.160"}, "EU<<"},
        {{"--from", "2017-07-14T15:59:04.150", "--to", "2017-07-14 15:59"}, "EU<<<N"},
        {{"--level", "E", "--thread", "0x2B0"}, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.filter));
        std::vector<std::string> arguments = {"export", name(sample)};
        arguments.insert(arguments.end(), c.filter.begin(), c.filter.end());
        std::istringstream lines(run(arguments).out);
        std::string levels;
        for (std::string line; std::getline(lines, line);) {
            const Json::Value object = parsed(line);
            if (object["type"].asString() == "record")
                levels += object["level"].asString();
        }
        EXPECT_EQ(levels, c.levels);
    }
}

TEST_F(VltraceTool, WrongUseIsOneLineAndAStatus)
{
    write("taken", {1});
    write("plain.txt", std::vector<uint8_t>(500, 'x'));
    write("empty.trc3", {});
    const struct {
        std::vector<std::string> arguments;
        int status;
        const char* hint;
    } cases[] = {
        {{}, 2, "--help"},
        {{"dog", "x"}, 2, "--help"},
        {{"cat"}, 2, "--help"},
        {{"cat", name("none.trc3")}, 1, "check the name"},
        {{"tail", "-f", name("none.trc3")}, 1, "check the name"},
        {{"cat", name("")}, 1, "folder"},
        {{"cat", name("plain.txt")}, 1, ".trc3"},
        {{"cat", name("empty.trc3")}, 0, "is empty"},
        {{"cat", "--from", "noon", name(sample)}, 2, "2017-07-14T15:59:04.123"},
        {{"cat", "--from", "2017-02-30", name(sample)}, 2, "no time"},
        {{"cat", "--thread", "0x", name(sample)}, 2, "0x1A4"},
        {{"cat", "--level", "X", name(sample)}, 2, "none of"},
        {{"export", "--format", "xml", name(sample)}, 2, "jsonl"},
        {{"cat", "--output", name("taken"), name(sample)}, 1, "--force"},
        {{"cat", "--force", "--output", name(sample), name(sample)}, 1, "the trace itself"},
        {{"cat", "--output", name("no/such/file"), name(sample)}, 1, "check the folder"},
        {{"cat", "--help"}, 0, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.arguments));
        const result_t result = run(c.arguments);
        EXPECT_EQ(result.status, c.status);
        EXPECT_NE(result.err.find(c.hint), std::string::npos) << result.err;
        EXPECT_LE(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
    }
    EXPECT_EQ(contents("taken"), "\x01");
    EXPECT_EQ(contents(sample).size(), sampleTrace().bytes.size());
    EXPECT_EQ(run({"cat", "--force", "--output", name("taken"), name(sample)}).out, "");
    EXPECT_EQ(contents("taken"), run({"cat", name(sample)}).out);
    // A file that can't be read doesn't keep the next one back.
    EXPECT_NE(run({"cat", name("none"), name(sample)}).out.find("RestoreBackup"),
              std::string::npos);
}

TEST_F(VltraceTool, TailFollowsGrowthTruncationAndANewFile)
{
    const std::string last = run({"tail", "-n", "3", name(sample)}).out;
    EXPECT_EQ(std::count(last.begin(), last.end(), '\n'), 3);

    const auto traceOf = [](const char* text) { return traceBytes_t().record(8, 'U', text).bytes; };
    const auto moreOf = [](const char* text) {
        return traceBytes_t("").record(8, 'U', text).bytes;
    };
    write("t", traceOf("number 1"));
    const auto half = moreOf("number 3");
    const std::vector<std::function<void()>> changes = {
        [&] { write("t", moreOf("number 2"), std::ios::app); },
        [&] {
            write("t", {half.begin(), half.begin() + 9}, std::ios::app);
        },
        [&] {
            write("t", {half.begin() + 9, half.end()}, std::ios::app);
        },
        [&] { write("t", traceOf("4, in a shorter file")); },
        [&] { write("t", moreOf(std::string(2000, '5').c_str()), std::ios::app); },
        [&] { write("t", moreOf("6, cut off again"), std::ios::app); },
        [&] { std::filesystem::resize_file(m_folder / "t", contents("t").size() - 23); },
        [&] { std::filesystem::remove(m_folder / "t"); },
        [&] {
            auto longer = traceOf("7, in a longer file with another beginning");
            longer[30] ^= 1; // the header's date
            write("t", longer);
        },
        [] {},
    };
    size_t change = 0;
    const result_t result = run({"tail", "-f", name("t")}, [&] {
        if (change == changes.size())
            return false;
        changes[change++]();
        return true;
    });
    EXPECT_EQ(result.status, 0);
    std::string seen;
    for (size_t at = result.out.find("U "); at != std::string::npos;
         at = result.out.find("U ", at + 1))
        seen += result.out.substr(at + 2, 8) + "|";
    EXPECT_EQ(seen,
              "number 1|number 2|number 3|4, in a |55555555|6, cut o|4, in a |55555555|7, in a |");
    EXPECT_EQ(result.out.find("skipped"), std::string::npos) << result.out;
}

TEST_F(VltraceTool, StatsSumUpCallsErrorsAndDurations)
{
    traceBytes_t trace;
    for (const auto& [level, text] : std::initializer_list<std::pair<char, const char*>>{
             {'t', "07/14/17"},
             {'T', "10:00:00.000"},
             {'>', "outer"},
             {'T', "10:00:00.100"},
             {'>', "again"},
             {'T', "10:00:00.200"},
             {'>', "again"},
             {'E', "-1 x"},
             {'U', "y"},
             {'T', "10:00:00.500"},
             {'<', ""},
             {'T', "10:00:01.000"},
             {'<', ""},
             {'>', "back"}, // and then the clock is set back
             {'T', "09:00:00.000"},
             {'<', ""}})
        trace.record(8, level, text);
    write("t", trace.bytes);
    const auto table = [this](const char* order) {
        std::string rows = run({"stats", "--sort", order, name("t")}).out;
        rows.erase(0, rows.find('\n') + 1);
        const auto blanks = [](char a, char b) { return a == ' ' && b == ' '; };
        rows.erase(std::unique(rows.begin(), rows.end(), blanks), rows.end());
        return rows;
    };
    EXPECT_EQ(table("total"), " 2 1 1 0 900 450 900 again\n" // the inner 300 ms are not added
                              " 1 0 0 0 0 0 0 back\n"
                              " 1 0 0 1 - - - outer\n");
    EXPECT_EQ(table("calls"), table("total"));
    EXPECT_LT(table("name").find("back"), table("name").find("outer"));
}

// Checks what viewers rely on: the fields of each event, each thread's time going forward, and an E
// of the same name for each B. Gives the events of the first thread.
std::string goodChrome(const std::vector<uint8_t>& bytes)
{
    std::ostringstream out;
    chromeTrace_t chrome({}, out);
    chrome.begin("~~07.14.17_at_15.59.04.123~~1.4242.trc3");
    traceFeed_t feed(chrome);
    feed.feed(bytes);
    feed.finish();
    chrome.end();
    chrome.finish();
    std::map<unsigned, std::vector<std::string>> open;
    std::map<unsigned, int64_t> last;
    std::string seen;
    const Json::Value root = parsed(out.str());
    for (const Json::Value& event : root["traceEvents"]) {
        EXPECT_TRUE(event["ts"].isIntegral() && event["pid"].asUInt() == 4242) << event;
        const unsigned thread = event["tid"].asUInt();
        const int64_t ts = event["ts"].asInt64();
        const std::string phase = event["ph"].asString();
        const std::string name = event["name"].asString();
        if (phase == "M" || name == "damage")
            continue;
        EXPECT_TRUE(!last.count(thread) || ts > last[thread]) << event;
        last[thread] = ts;
        if (thread == 0x1A4)
            seen += phase + std::to_string(ts % 60'000'000) + name +
                    event["args"]["statusName"].asString() + "\n";
        if (phase == "B") {
            open[thread].push_back(name);
        } else if (phase == "E" && !open[thread].empty()) {
            EXPECT_EQ(open[thread].back(), name);
            open[thread].pop_back();
        } else {
            EXPECT_EQ(phase + event["s"].asString(), "it");
        }
    }
    for (const auto& [thread, names] : open)
        EXPECT_TRUE(names.empty()) << thread;
    return seen;
}

TEST(ChromeExport, IsBalancedForWholeCutAndDamagedTraces)
{
    const auto bytes = sampleTrace().bytes;
    EXPECT_EQ(goodChrome(bytes), "B4100000SetStorageData\nB4110000RestoreBackup\n"
                                 "i4150000Größe of 日ERROR_ACCESS_DENIED\n"
                                 "E4160000RestoreBackup\nE4300000SetStorageData\n");
    for (size_t i = 0; i < bytes.size() && !testing::Test::HasFailure(); ++i) {
        SCOPED_TRACE(i);
        goodChrome({bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(i)});
        auto flipped = bytes;
        flipped[i] ^= static_cast<uint8_t>(1U << i % 8);
        goodChrome(flipped);
    }
}

TEST_F(VltraceTool, ChromeExportKeepsFilesWithOneProcessIdApart)
{
    const Json::Value root = parsed(
        run({"export", "--format", "chrome", "--level", ">E", name(sample), name(sample)}).out);
    std::map<unsigned, int> events;
    for (const Json::Value& event : root["traceEvents"])
        ++events[event["pid"].asUInt()];
    EXPECT_EQ(events, (std::map<unsigned, int>{{4242, 14}, {4243, 14}}));
}

TEST(StatusNames, DecodeByTableAndByRule)
{
    const struct {
        uint32_t status;
        const char* hex;
        const char* name;
        const char* text;
    } cases[] = {
        {0, "0x00000000", "S_OK", "done"},
        {2, "0x00000002", "ERROR_FILE_NOT_FOUND", "not found"},
        {0x80070005, "0x80070005", "ERROR_ACCESS_DENIED", "access is denied"},
        {0x80070648, "0x80070648", "ERROR_UNKNOWN_PROPERTY", "no such property"},
        {0x80070032, "0x80070032", "ERROR_NOT_SUPPORTED", "not supported"},
        {0x8007FFFE, "0x8007FFFE", "error 65534", ""},
        {0x8000FFFF, "0x8000FFFF", "E_UNEXPECTED", "unexpected failure"},
        {0x8009310B, "0x8009310B", "CRYPT_E_ASN1_BADTAG", "another DER tag than expected"},
        {0xC0000001, "0xC0000001", "STATUS_UNSUCCESSFUL", "unspecified failure of the system"},
        {0xDEADBEEF, "0xDEADBEEF", "", ""},
        {0x00010005, "0x00010005", "", ""}, // no error of the platform: above 65535
    };
    for (const auto& c : cases) {
        const tools::statusInfo_t info = tools::describeStatus(static_cast<int32_t>(c.status));
        EXPECT_EQ(info.hex, c.hex);
        EXPECT_EQ(info.name, c.name) << c.hex;
        EXPECT_EQ(info.text, c.text) << c.hex;
    }
}

} // namespace
