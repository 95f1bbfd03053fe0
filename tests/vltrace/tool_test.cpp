#include "support/texts.h"
#include "support/toolrun.h"
#include "support/tracebytes.h"
#include "vltrace/commands.h"

#include <filesystem>
#include <random>
#include <sstream>

#include <gtest/gtest.h>

using namespace vltrace;

namespace {

toolRun_t run(std::vector<std::string> arguments)
{
    return runTool(runVltrace, std::move(arguments), std::string(), [] { return false; });
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

} // namespace
