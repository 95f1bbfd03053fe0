#include "common/text.h"
#include "setup.h"
#include "shared/commandline.h"
#include "shared/windowsfiles.h"

#include <windows.h>

#include <algorithm>
#include <cstdio>

namespace {

const std::vector<std::string> standInWords = {"none", "missing", "all"}; // as in standIns_t

std::wstring environment(const wchar_t* name)
{
    wchar_t text[MAX_PATH] = {};
    GetEnvironmentVariableW(name, text, MAX_PATH);
    return text;
}

// What was done stands, whether or not somebody can read it: an installer starts this program without
// a console, and would take the work back if it were to fail.
void print(const std::vector<std::string>& lines)
{
    for (const std::string& line : lines)
        std::puts(line.c_str());
    std::fflush(stdout);
}

} // namespace

int main(int argc, char** argv)
{
    const CTool tool("vlsetup", "Installs and removes the plug-in, its tools and its texts.");
    std::string root = utf8FromWide(environment(L"ProgramFiles") + L"\\Veltrano");
    std::string from = utf8FromWide(programFolder());
    std::string uninstaller;
    std::string standIns = "missing";
    bool replace = false;

    const CCommand installCommand = tool.AddCommand("install", "Install, repair or upgrade",
                                                    "vlsetup install --stand-ins none");
    installCommand.AddOption("folder", root, "The product's folder").ShowDefault();
    installCommand.AddOption("--from", from,
                             "The unpacked package, instead of this program's folder");
    installCommand
        .AddOption(
            "--stand-ins", standIns,
            "Stand-ins for the product's neighbours: none, missing (where nothing is), or all")
        .OneOf(standInWords)
        .ShowDefault();
    installCommand.AddFlag("--replace", replace,
                           "Replace files of the same name; the removal puts them back");
    installCommand.AddOption("--uninstaller", uninstaller,
                             "File of the package for the list of installed programs");
    installCommand.Do([&] {
        const auto at = std::ranges::find(standInWords, standIns) - standInWords.begin();
        print(install({wideFromUtf8(from), wideFromUtf8(root), wideFromUtf8(uninstaller),
                       static_cast<standIns_t>(at), replace}));
        print({"installed in " + utf8FromWide(fullPath(wideFromUtf8(root) + L"\\bin"))});
    });

    const CCommand uninstallCommand = tool.AddCommand(
        "uninstall", "Remove what was installed, and nothing else", "vlsetup uninstall");
    uninstallCommand.AddOption("folder", root, "The product's folder").ShowDefault();
    uninstallCommand.Do([&] {
        const removed_t result = uninstall(wideFromUtf8(root));
        print(result.lines);
        if (!result.complete)
            throw CToolError("not everything could be removed", "see above, and run it again");
        print({"uninstalled; what belongs to users stays"});
    });
    return runTool(tool, argc, argv);
}
