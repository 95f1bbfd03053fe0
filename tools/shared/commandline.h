#pragma once

#include "shared/toolerror.h"

#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

// The commands and options of a tool, declared by the files that carry them out. The library that
// parses them is left out of here, as its header takes longer to compile than any of those files.
namespace CLI {
class App;
class Option;
} // namespace CLI

// COption is an option of a command, or an argument; on loan from the command. Each of its
// operations gives the option back.
class COption
{
public:
    explicit COption(CLI::Option& option) noexcept : m_option(&option) {}

    COption Required() const;
    COption ShowDefault() const;                      // help shows the value that it has now
    COption ValueName(const std::string& word) const; // for its value in help
    COption Group(const std::string& title) const;    // heading in help; an empty one hides it
    COption Excludes(const COption& other) const;
    COption OneEachTime() const; // it takes one value each time, not all words that follow
    COption Values(int least, int most) const; // how many it takes

    // OneOf checks a value: it is one of the words, which completion and manual page then offer.
    COption OneOf(const std::vector<std::string>& words) const;
    // Check asks what is wrong with a value; nothing for an empty text.
    COption Check(std::function<std::string(const std::string& value)> fault) const;

private:
    CLI::Option* m_option;
};

// CCommand is a tool or one of its commands; on loan from the tool.
class CCommand
{
public:
    explicit CCommand(CLI::App& command) noexcept : m_command(&command) {}

    // AddCommand adds a command below this one, AddGroup one that only has others below it.
    //
    // example: as it is typed, for help and manual page
    CCommand AddCommand(const std::string& name, const std::string& help,
                        const std::string& example) const;
    CCommand AddGroup(const std::string& name, const std::string& help) const;

    // AddOption adds an option, or an argument if its name has no dashes. Its value goes into
    // value, which lives as long as the tool. AddFlag adds an option without one.
    //
    // names: such as "-o,--output"
    // T:     one of the types at the end of commandline.cpp
    template <class T>
    COption AddOption(const std::string& names, T& value, const std::string& help) const;
    COption AddFlag(const std::string& names, bool& value, const std::string& help) const;

    // AddTaken is AddOption with a function that takes the values that were given.
    template <class T>
    COption AddTaken(const std::string& names, std::function<void(const std::vector<T>&)> take,
                     const std::string& help) const;

    // Do sets what the command does. The work may raise whatever runTool reports.
    void Do(std::function<void()> work) const;

protected:
    CLI::App* m_command;
};

// CTool is a command line tool, which wants one of its commands.
class CTool : public CCommand
{
public:
    CTool(const std::string& name, const std::string& help);
    ~CTool();
    CTool(const CTool&) = delete;
    CTool& operator=(const CTool&) = delete;

    CLI::App& App() const noexcept { return *m_command; }

private:
    explicit CTool(std::unique_ptr<CLI::App> app);

    std::unique_ptr<CLI::App> m_app;
};

// runTool is the frame of every tool: it parses the arguments, does the chosen command's work and
// then work, and reports whatever failure they raise in one printable line on err.
//
// arguments: UTF-8, without the program's name
// out:       UTF-8, or bytes as they are; flushed at the end
// work:      what remains to be done after parsing; gives the exit status
// Returns:   the exit status: work's or good; failed; wrongUsage; or that of a CToolError
int runTool(const CTool& tool, std::vector<std::string> arguments, std::ostream& out,
            std::ostream& err, const std::function<int()>& work = {});

// The same on the process's own streams and arguments, which on Windows come from the wide command
// line.
int runTool(const CTool& tool, int argc, char** argv);

// refuseOption raises what runTool reports as a wrong value of an option.
[[noreturn]] void refuseOption(const std::string& name, const std::string& why);

// readNumber reads a whole number as options do, decimal or 0x and hexadecimal.
//
// T:       long or unsigned
// Returns: whether the text is one; number is untouched if not
template <class T> bool readNumber(const std::string& text, T& number);
