#pragma once

#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

using commandLine_t = std::vector<std::string>;

// linesAbout gives what a page or completion says of a command, such as "vltrace cat", alone.
inline std::string linesAbout(const std::string& command, const std::string& document)
{
    const size_t blank = command.find(' ');
    const std::string state = blank == std::string::npos ? "" : command.substr(blank);
    std::istringstream lines(document);
    std::string about;
    bool inSection = true; // of the manual page, whose front is of the program
    for (std::string line; std::getline(lines, line);) {
        std::erase(line, '\\'); // before a dash of the page
        if (line.starts_with(".SS "))
            inSection = line == ".SS " + command;
        const bool ofManual = document.starts_with(".TH") && inSection;
        if (ofManual || line.find(state + '\'') != line.npos || line.find(state + '"') != line.npos)
            about += line + '\n';
    }
    return about;
}

// shownWords gives the long options or the commands that a help text lists.
inline commandLine_t shownWords(const std::string& help, bool options)
{
    commandLine_t words;
    std::istringstream lines(help);
    for (std::string line; std::getline(lines, line);) {
        const size_t at = options ? line.substr(0, 8).find("--") : 2;
        if (line.starts_with("  ") && line.size() > 2 && line[2] != ' ' && at != line.npos)
            words.push_back(line.substr(at, line.find_first_of(" ,", at) - at));
    }
    return words;
}

// expectManuals follows --help down to the last command, and looks for each option and command in
// the manual page and in the completion of each shell.
inline void expectManuals(const std::string& program,
                          const std::function<std::string(const commandLine_t&)>& run)
{
    std::vector<std::string> documents;
    for (const commandLine_t& one : {commandLine_t{"--man"},
                                     {"--completion", "bash"},
                                     {"--completion", "zsh"},
                                     {"--completion", "fish"},
                                     {"--completion", "powershell"}})
        documents.push_back(run(one));
    const auto expectWord = [&](const std::string& command, const std::string& word) {
        for (const std::string& document : documents) {
            const std::string about = linesAbout(command, document);
            const bool there = about.find(word) != about.npos || // fish has no dashes
                               about.find(" -l " + word.substr(2)) != about.npos;
            EXPECT_TRUE(there) << command << ": " << word << " in " << document.substr(0, 40);
        }
    };
    const std::function<void(std::string, commandLine_t)> visit = [&](const std::string& command,
                                                                      commandLine_t line) {
        line.emplace_back("--help");
        const std::string help = run(line);
        if (line.size() == 2) {
            EXPECT_EQ(run({"help", line.front()}), help);
        }
        const size_t inner = std::min(help.find("\nSubcommands:"), help.size());
        EXPECT_NE(help.find(inner == help.size() ? "Example:\n  " + command : ""), help.npos)
            << help;
        for (const std::string& option : shownWords(help.substr(0, inner), true))
            expectWord(command, option);
        for (const std::string& name : shownWords(help.substr(inner), false)) {
            expectWord(command + ' ' + name, name);
            line.back() = name;
            visit(command + ' ' + name, line);
        }
    };
    visit(program, {});
}
