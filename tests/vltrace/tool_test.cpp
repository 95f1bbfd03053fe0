#include "support/texts.h"
#include "support/toolrun.h"
#include "support/tracebytes.h"
#include "vltrace/commands.h"

#include <algorithm>
#include <filesystem>
#include <random>
#include <sstream>

#include <gtest/gtest.h>
#include <json/json.h>

using namespace vltrace;

namespace {

toolRun_t run(std::vector<std::string> arguments, const std::vector<uint8_t>& input = {})
{
    return runTool(runVltrace, std::move(arguments), input, [] { return false; });
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
        write(sample, sampleTrace());
    }
    ~VltraceTool() override { std::filesystem::remove_all(m_folder); }

    std::string name(const std::string& file) const
    {
        const auto path = (m_folder / file).u8string();
        return {path.begin(), path.end()};
    }
    void write(const std::string& file, const traceBytes_t& trace) const
    {
        std::ofstream(m_folder / file, std::ios::binary | std::ios::app)
            << std::string(trace.bytes.begin(), trace.bytes.end());
    }

    const std::string sample = "host.x64.vlonlineids.dll~~07.14.17_at_15.59.04.123~~1.4242.trc3";
    const std::filesystem::path m_folder =
        std::filesystem::temp_directory_path() /
        (std::filesystem::path(u8"vltrace-Größe-日-") += std::to_string(std::random_device()()));
};

TEST_F(VltraceTool, CatShowsTimeThreadNestingAndStatusAndErrorsWithTheirChain)
{
    const auto linesOf = [this](std::vector<std::string> options) {
        options.insert(options.begin(), {"cat", name(sample)});
        const toolRun_t result = run(std::move(options));
        EXPECT_EQ(std::to_string(result.status) + result.err, "0");
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
    const std::string error = "2017-07-14 15:59:04.150  0x01A4  E 0x80070005 ERROR_ACCESS_DENIED "
                              "(access is denied): Größe of 日\n"
                              "    in SetStorageData, entered 15:59:04.100\n"
                              "    in RestoreBackup, entered 15:59:04.110\n";
    const std::string note = "2017-07-15 00:00:00.005  0x03C8  E note\n"
                             "    in main, entered 00:00:00.005\n";
    EXPECT_EQ(linesOf({"--errors"}), error);
    EXPECT_EQ(linesOf({"--notes"}), note);
    EXPECT_EQ(linesOf({"--notes", "--errors"}), error + note);
    write("fine.trc3", traceBytes_t().records(8, {"Ufine"}));
    const std::string folder = run({"cat", "--errors", name("")}).out;
    EXPECT_TRUE(folder.starts_with("# 4242: ") && folder.find("fine") == folder.npos) << folder;
    write(sample, traceBytes_t("").records(8, {"Ua\nb\x1B\xC2\x9B\u202E"})); // at the end
    expectIn(linesOf({"--no-marks"}), {"a\\nb\\x1B\\u{9B}\\u{202E}"});
}

TEST_F(VltraceTool, FiltersLeaveWhatMeetsAllOfThem)
{
    const std::pair<std::vector<std::string>, const char*> cases[] = {
        {{"--thread", "688", "--thread", "0x3c8"}, ">U<N>E"},
        {{"--level", "EU"}, "EUE"},
        {{"--errors", "--level", "EU"}, "E"},
        {{"--function", "restoreb"}, ">E<"},
        {{"--function", "SetStorageData"}, ">>E<<"},
        {{"--text", "Poll"}, "><"},
        {{"-e", "storage|^p.ll$", "-i"}, ">><<"},
        {{"-e", "storage|^P.ll$", "-e", "^no.e$"}, "><E"},
        {{"--process", "0x1092", "--level", "E"}, "EE"},
        {{"--process", "7"}, ""},
        {{"--from", "2017-07-15"}, ">E"},
        {{"--from", "15:59:04.150", "--to", "15:59:04.160"}, "EU<<"},
        {{"--from", "2017-07-14T15:59:04.150", "--to", "2017-07-14 15:59"}, "EU<<<N"},
        {{"--to", "2017-07-14 15:59:04"}, ">>E>U<<<N"}, // to the end of the second
    };
    for (const auto& [filter, left] : cases) {
        std::vector<std::string> arguments = {"export", name(sample)};
        arguments.insert(arguments.end(), filter.begin(), filter.end());
        const toolRun_t result = run(arguments);
        EXPECT_EQ(result.err.empty(), *left != 0) << "nothing left has a line of its own";
        std::istringstream lines(result.out);
        std::string levels; // of the records left
        for (std::string line; std::getline(lines, line);)
            levels += parsed(line)["level"].asString();
        EXPECT_EQ(levels, left) << testing::PrintToString(filter);
    }
    write("t", sampleTrace()); // a name without a process
    EXPECT_EQ(run({"export", name("t"), "--process", "4242"}).out.find("record"),
              std::string::npos);
}

TEST_F(VltraceTool, OutputIsWholeOrUntouched)
{
    const std::string in = name(sample), none = name("none.trc3");
    const auto before = fileBytes(m_folder / sample);
    for (const std::string& file : {std::string("old.txt"), std::string(240, 'x')}) {
        const std::string target = name(file);
        const auto written = [&] { return fileBytes(m_folder / file); };
        const std::tuple<std::vector<std::string>, int, const char*> cases[] = {
            {{"stats", "--output", target, in, none}, 1, "is not written"}, // there is none yet
            {{"stats", "--output", target, in}, 0, ""},
            {{"cat", "--output", target, in}, 1, "--force"},
            {{"cat", "--force", "--output", in, in}, 1, "is what is read"},
            {{"cat", "--force", "--output", name(""), in}, 1, "is a folder"},
            {{"cat", "--output", name("none/x"), in}, 1, "folder does not exist"},
            {{"cat", "--force", "--output", target, none}, 1, "does not exist"},
            {{"stats", "--force", "--output", target, in, none}, 1, "is not written"},
            {{"cat", "--force", "--from", "2017-02-30", "--output", target, in}, 2, "no time"},
            {{"cat", "--force", "-e", "(", "--output", target, in}, 2, "no regular expression"},
            {{"tail", "-f", "--force", "--output", target, in}, 2, "redirect"},
        };
        for (const auto& [arguments, status, hint] : cases) {
            SCOPED_TRACE(testing::PrintToString(arguments));
            const toolRun_t result = run(arguments);
            EXPECT_EQ(result.status, status);
            expectIn(result.err, {hint});
            const bool made = &arguments != &std::get<0>(cases[0]);
            EXPECT_EQ(written(), made ? run({"stats", in}).out : "");
            EXPECT_EQ(std::distance(std::filesystem::directory_iterator(m_folder), {}), 1 + made);
        }
        namespace fs = std::filesystem;
        fs::permissions(m_folder / file, fs::perms::owner_read | fs::perms::owner_write);
        const fs::perms kept = fs::status(m_folder / file).permissions();
        EXPECT_EQ(run({"cat", "--force", "--output", target, in}).status, 0);
        EXPECT_EQ(fs::status(m_folder / file).permissions(), kept);
        EXPECT_EQ(written(), run({"cat", "--output", "-", in}).out);
        std::filesystem::remove(m_folder / file);
    }
    EXPECT_EQ(fileBytes(m_folder / sample), before);
    // On standard output one that can't be read doesn't keep the next one back.
    EXPECT_EQ(run({"cat", none, "-"}, sampleTrace().bytes).out,
              run({"cat", "-"}, sampleTrace().bytes).out);
}

TEST_F(VltraceTool, TailFollowsFilesThatGrowAreReplacedAndComeIntoAFolder)
{
    std::istringstream in;
    std::ostringstream out, err;
    const std::string longText = "U" + std::string(5000, 'x');
    int looks = 0;
    runVltrace({"tail", "-n1", "-f", name("")}, in, out, err, [&] {
        if (looks == 1)
            std::filesystem::remove(m_folder / sample);
        write(sample, traceBytes_t(looks == 1 ? traceBytes_t::header : "")
                          .records(8, {"Ume\xFFnded", "T01:02:03.004"}));
        if (looks == 2)
            write("new.TRC3", traceBytes_t().records(9, {longText, "Unew"}));
        if (looks == 3) { // it becomes shorter
            std::filesystem::resize_file(m_folder / "new.TRC3", 0);
            write("new.TRC3", traceBytes_t().records(9, {longText}));
        }
        return ++looks < 5;
    });
    const std::string lines = out.str() + err.str();
    const std::string mended = "  4242  0x0008  U me\uFFFDnded  -- the text is damaged --\n";
    const std::string header =
        "\n# trace3\n# Compiled: Jul 14 2017 15:59:04\n"
        "# Trace Ver: 3.0.2\n# 07/14/2017 15:59:04.123\n2017-07-14 --:--:--.---";
    const std::string longLine = "  #2  0x0009  U " + longText.substr(1) + "\n";
    const std::string later = "2017-07-14 01:02:03.004" + mended;
    EXPECT_EQ(lines.substr(lines.find("2017-0")),
              "2017-07-15 00:00:00.005  4242  0x03C8    E note\n2017-07-15 00:00:00.005" + mended +
                  "\n# 4242: " + name(sample) + header + mended + "\n# #2: " + name("new.TRC3") +
                  header + longLine + "2017-07-14 --:--:--.---  #2  0x0009  U new\n" + later +
                  "\n# #2: " + name("new.TRC3") + header + longLine + later);
}

TEST_F(VltraceTool, StatsSumUpCallsErrorsAndDurations)
{
    // The clock is set back at the end.
    write("t", traceBytes_t().records(8, {"t07/14/17", "T10:00:00.000", ">outer", "T10:00:00.100",
                                          ">twice", "T10:00:00.200", ">twice", "E-1 x", "E0 z",
                                          "Uy", "T10:00:00.500", "<", "T10:00:01.000", "<", ">back",
                                          "T09:00:00.000", "<"}));
    EXPECT_EQ(
        run({"stats", name("t")}).out, // the inner 300 ms are not added
        "      calls     errors      notes   messages unfinished   total ms    mean ms longest ms  "
        "function\n"
        "          2          1          1          1          0        900        450        900  "
        "twice\n"
        "          1          0          0          0          0          0          0          0  "
        "back\n"
        "          1          0          0          0          1          -          -          -  "
        "outer\n");
}

TEST_F(VltraceTool, FoldedStacksEndAtAHundredFunctions)
{
    traceBytes_t trace;
    for (int i = 0; i < 150; ++i)
        trace.records(8, {">f"});
    write("t", trace);
    const std::string stacks = run({"export", "--format", "folded", name("t")}).out;
    EXPECT_EQ(100, std::count(stacks.begin(), stacks.end(), '\n'));
    const std::string last = stacks.substr(stacks.rfind('\n', stacks.size() - 2) + 1);
    EXPECT_EQ(100, std::count(last.begin(), last.end(), ';'));
    EXPECT_TRUE(last.ends_with("f 101\n")) << last;
}

} // namespace
