#include "shared/manpage.h"

#include "shared/exitstatus.h"

#include <algorithm>
#include <cctype>
#include <sstream>

namespace {

// roff gives text that the formatter prints as it is.
std::string roff(const std::string& text)
{
    std::string out = text.starts_with('.') || text.starts_with('\'') ? "\\&" : "";
    for (const char c : text) {
        if (c == '\\')
            out += "\\e";
        else if (c == '-')
            out += "\\-";
        else if (c == '\n')
            out += "\n\\&";
        else
            out += c;
    }
    return out;
}

std::string bold(const std::string& text)
{
    return "\\fB" + roff(text) + "\\fP";
}

std::string italic(const std::string& text)
{
    return "\\fI" + roff(text) + "\\fP";
}

std::string upper(std::string text)
{
    std::ranges::transform(text, text.begin(),
                           [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return text;
}

std::string shownArgument(const commandArgument_t& argument)
{
    const std::string name = italic(argument.name) + (argument.repeated ? " ..." : "");
    return argument.required ? name : '[' + name + ']';
}

void writeOptions(std::ostream& out, const command_t& command)
{
    for (const commandArgument_t& argument : command.arguments)
        if (!argument.help.empty())
            out << ".TP\n" << italic(argument.name) << '\n' << roff(argument.help) << '\n';
    for (const commandOption_t& option : command.options) {
        out << ".TP\n";
        const char* separator = "";
        for (const std::string& name : option.names) {
            out << separator << bold(name);
            separator = ", ";
        }
        std::string value = italic(option.value);
        if (!option.choices.empty()) {
            value.clear();
            for (const std::string& choice : option.choices)
                value += (value.empty() ? "" : "|") + bold(choice);
        }
        if (!option.value.empty())
            out << ' ' << (option.valueOptional ? '[' + value + ']' : value);
        out << '\n' << roff(option.help) << '\n';
    }
}

void writeCommand(std::ostream& out, const command_t& command)
{
    out << ".SS " << roff(command.path) << '\n' << roff(command.help) << ".\n";
    if (command.commands.empty()) {
        out << ".PP\n" << bold(command.path) << " [" << italic("options") << ']';
        for (const commandArgument_t& argument : command.arguments)
            out << ' ' << shownArgument(argument);
        out << '\n';
    }
    command_t shown = command;
    std::erase_if(shown.options, [](const commandOption_t& option) {
        return option.names.back() == "--help"; // every command has it
    });
    writeOptions(out, shown);
    if (!command.example.empty())
        out << ".PP\nExample:\n.PP\n.RS\n.nf\n"
            << roff(command.example.substr(0, command.example.size() - 1)) << "\n.fi\n.RE\n";
}

} // namespace

std::string manualPage(const std::vector<command_t>& tree, const std::string& version,
                       const std::string& date)
{
    const command_t& program = tree.front();
    std::string purpose = program.help.substr(0, program.help.find(". "));
    purpose.resize(purpose.find_last_not_of('.') + 1);
    std::ostringstream out;
    out << ".TH " << upper(program.path) << " 1 \"" << date << "\" \"VLOnlineIDs " << version
        << "\" \"User Commands\"\n.SH NAME\n"
        << roff(program.path) << " \\- " << roff(purpose) << "\n.SH SYNOPSIS\n"
        << bold(program.path) << ' ' << italic("command") << " [" << italic("options") << "] ["
        << italic("arguments") << "]\n.SH DESCRIPTION\n"
        << roff(program.help) << "\n.SH OPTIONS\nEvery command takes these.\n";
    writeOptions(out, program);
    out << ".SH COMMANDS\n";
    std::for_each(tree.begin() + 1, tree.end(),
                  [&](const command_t& command) { writeCommand(out, command); });
    out << ".SH EXIT STATUS\n";
    for (const auto& [status, meaning] : exitStatus::meanings)
        out << ".TP\n" << bold(std::to_string(status)) << '\n' << roff(meaning) << '\n';
    out << ".SH ENVIRONMENT\n.TP\n"
        << bold("NO_COLOR") << "\nNo colours, if it is set and " << bold("--color")
        << " isn't given.";
    return out.str();
}
