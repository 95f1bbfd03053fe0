#include "formats/text/printable.h"
#include "support/files.h"
#include "support/tracebytes.h"
#include "vlbackup/backups.h"
#include "vltrace/commands.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <random>

#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;

using tool_t = std::function<toolRun_t(std::vector<std::string>)>;

void expectOneLine(const toolRun_t& result, int status, const std::string& part)
{
    EXPECT_EQ(result.status, status);
    EXPECT_EQ(result.out, "");
    ASSERT_TRUE(result.err.ends_with("\n"));
    const std::string line = result.err.substr(0, result.err.size() - 1);
    EXPECT_EQ(line, printable(line));
    expectIn(line, {part});
    EXPECT_TRUE(line.ends_with(line[0] == '{' ? "}" : ")")) << line; // the hint
}

TEST(BadInput, IsOneLineWithItsReasonFromEveryCommand)
{
    const fs::path folder =
        fs::temp_directory_path() / ("bad\u202Einput-" + std::to_string(std::random_device()()));
    fs::create_directories(folder);
    const auto name = [&](const char* file) {
        const auto path = (folder / file).u8string();
        return std::string(path.begin(), path.end());
    };
    const bytes backup = seq({seq({filePair(L"a.vlm", std::string(300, 'x'))}), seq({})});
    const std::vector<uint8_t> traceBytes = sampleTrace().bytes;
    const tool_t ofBackups = [&](auto words) { return vlbackup(words, backup); };
    const tool_t ofTraces = [&](auto words) {
        return runTool(vltrace::runVltrace, words, backup, [] { return false; });
    };
    const auto write = [&](const char* file, const auto& content) {
        std::ofstream(folder / file, std::ios::binary)
            << std::string(content.begin(), content.end());
        return file;
    };
    const auto cut = [](const auto& all) { return std::string(all.begin(), all.end() - 3); };
    std::vector<std::pair<const char*, std::string>> shared = {
        {"none\x1B[31m", "does not exist"},
        {"", "is a folder"},
        {write("empty", std::string()), "it is empty"},
        {write("text", std::string("0123 plain\r\n")), "it is text"},
        {write("zip", std::string("PK\3\4....")), "it is a ZIP archive"},
        {write("zeros", std::string(5000, '\0')), "it is nothing but zeros"},
        {write("noise", std::string("\xFE\1\2\3")), "it is bytes that begin FE 01 02 03"},
    };
    fs::permissions(folder / write("locked", backup), fs::perms::none);
    if (!std::ifstream(folder / "locked")) // an administrator may read it
        shared.emplace_back("locked", "permission denied");
    const std::pair<const char*, std::string> json = {write("json", std::string(" {\"a\":1}")),
                                                      "it is JSON text"},
                                              trace = {write("trace", traceBytes),
                                                       "it is a trace, which vltrace reads"};
    const struct {
        const char* name;
        tool_t run;
        std::vector<std::string> commands; // "*" is the file
        std::vector<std::pair<const char*, std::string>> more;
    } tools[] = {
        {"vlbackup",
         ofBackups,
         {"verify *", "extract * out", "diff - *"},
         {{write("cut", cut(backup)), "cut at byte " + std::to_string(backup.size() - 3) + " of "},
          json,
          trace}},
        {"vltrace",
         ofTraces,
         {"cat *", "tail *", "stats *", "export *", "diff * -"},
         {{write("backup", backup), "it is a backup, which vlbackup reads"}, json}},
    };
    for (const auto& tool : tools) {
        auto inputs = tool.more;
        inputs.insert(inputs.end(), shared.begin(), shared.end());
        for (const auto& command : tool.commands) {
            for (const auto& [file, reason] : inputs) {
                SCOPED_TRACE(tool.name + (' ' + command) + ' ' + reason);
                auto arguments = wordsOf(command);
                std::ranges::replace(arguments, "*", name(file));
                std::ranges::replace(arguments, "out", name("out"));
                const toolRun_t result = tool.run(arguments);
                // A table of nothing is a table still.
                expectOneLine(
                    {result.status, arguments[0] == "stats" ? "" : result.out, result.err}, 1,
                    reason);
            }
            SCOPED_TRACE(tool.name + (' ' + command));
            auto wrong = wordsOf(command);
            wrong.emplace_back("--w\xFFrong\x1B");
            expectOneLine(tool.run(wrong), 2, "rong");
        }
        expectOneLine(tool.run({}), 2, "--help");
        expectOneLine(tool.run({"what\n"}), 2, "what\\n");
        expectOneLine(tool.run({name("text")}), 2, "a command goes before");
    }
    fs::permissions(folder / "locked", fs::perms::owner_all);
    fs::remove_all(folder);
}

} // namespace
