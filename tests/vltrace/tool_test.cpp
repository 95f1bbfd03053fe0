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
    const std::string in = name(sample), none = name("none.trc3"), longName(240, 'x');
    const std::string target = name(longName), stats = run({"stats", in}).out;
    const auto before = fileBytes(m_folder / sample);
    const std::tuple<std::vector<std::string>, int, std::string> cases[] = {
        {{"stats", "--output", target, in, none}, 1, ""},
        {{"stats", "--output", target, in}, 0, stats},
        {{"cat", "--output", target, in}, 1, stats},
        {{"cat", "--force", "--output", in, in}, 1, stats},
        {{"cat", "--force", "--output", target, in, none}, 1, stats},
        {{"cat", "--force", "--output", target, in}, 0, run({"cat", in}).out},
    };
    for (const auto& [arguments, status, written] : cases) {
        SCOPED_TRACE(testing::PrintToString(arguments));
        EXPECT_EQ(run(arguments).status, status);
        EXPECT_EQ(fileBytes(m_folder / longName), written);
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(m_folder), {}),
                  written.empty() ? 1 : 2);
    }
    EXPECT_EQ(fileBytes(m_folder / sample), before);
}

TEST_F(VltraceTool, TailFollowsFilesThatGrowAreReplacedAndComeIntoAFolder)
{
    std::istringstream in;
    std::ostringstream out, err;
    int looks = 0;
    runVltrace({"tail", "-n1", "-f", name("")}, in, out, err, [&] {
        if (looks == 1)
            std::filesystem::remove(m_folder / sample);
        write(sample, traceBytes_t(looks == 1 ? "trace3\r\n.\r\n" : "").records(8, {"Umore"}));
        if (looks == 2)
            write("new.TRC3", traceBytes_t().records(9, {"Ucome"}));
        return ++looks < 4;
    });
    const std::string more = "  4242  0x0008  U more\n", day = "2017-07-15 00:00:00.005";
    const std::string unknown = "---------- --:--:--.---";
    const std::string lines = out.str();
    EXPECT_EQ(lines.substr(lines.find(day)),
              day + "  4242  0x03C8    E note\n" + day + more + "\n# 4242: " + name(sample) +
                  "\n# trace3\n" + unknown + more + "\n# #2: " + name("new.TRC3") +
                  "\n# trace3\n# Compiled: Jul 14 2017 15:59:04\n# Trace Ver: 3.0.2\n# " +
                  "07/14/2017 15:59:04.123\n" + unknown + more +
                  "2017-07-14 --:--:--.---  #2  0x0009  U come\n");
    EXPECT_EQ(err.str(), "");
}

} // namespace
