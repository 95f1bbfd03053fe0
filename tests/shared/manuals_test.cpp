#include "support/manuals.h"

#include "support/files.h"
#include "support/toolrun.h"
#include "vlbackup/commands.h"
#include "vltrace/commands.h"

#include <cstdlib>

namespace {

std::string vlbackup(const commandLine_t& arguments)
{
    return runTool(runVlbackup, arguments, std::string()).out;
}

std::string vltrace(const commandLine_t& arguments)
{
    return runTool(vltrace::runVltrace, arguments, std::string(), [] { return false; }).out;
}

TEST(Manuals, HaveEachOptionOfEachCommand)
{
    expectManuals("vlbackup", vlbackup);
    expectManuals("vltrace", vltrace);
}

#ifndef _WIN32
TEST(Manuals, AreReadByShellAndFormatter)
{
    const std::filesystem::path folder = std::filesystem::temp_directory_path() / "vl-manuals";
    const auto output = [&](const std::string& command) {
        const std::string line = "cd " + folder.string() + " && { " + command + "; } >out 2>&1";
        EXPECT_EQ(std::system(line.c_str()), 0) << command;
        return fileBytes(folder / "out");
    };
    writeFile(folder / "completion", vltrace({"--completion", "bash"}));
    const std::pair<const char*, const char*> cases[] = {
        {"vltrace ex", "export\n"},
        {"vltrace export --form", "--format\n"},
        {"vltrace export --format ch", "chrome\n"},
        {"vltrace cat --no-marks --q", "--quiet\n"},
        {"vltrace cat --output ", "\n"}, // files are the shell's
        {"vltrace cat ", "\n"},
    };
    writeFile(folder / "typed", R"(source ./completion
complete -p vltrace >complete
IFS=" " read -ra COMP_WORDS <<<"$1"
[[ "$1" != *" " ]] || COMP_WORDS+=("")
COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
_vltrace
echo "${COMPREPLY[@]}")");
    for (const auto& [typed, offered] : cases)
        EXPECT_EQ(output("bash typed '" + std::string(typed) + "'"), offered) << typed;
    writeFile(folder / "page", vltrace({"--man"}));
    EXPECT_EQ(output("! command -v groff >/dev/null || groff -ww -man -z page"), "");
    std::filesystem::remove_all(folder);
}
#endif

} // namespace
