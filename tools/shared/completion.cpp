#include "shared/completion.h"

#include <algorithm>
#include <sstream>
#include <utility>

namespace {

// word_t is a word that can come next, with its explanation.
struct word_t {
    std::string word;
    std::string help;
};

// at_t is what can come after a command: the state that a script is in when it has read it.
struct at_t {
    std::string state; // the command's path without the program's name: empty, or " trace on"
    std::vector<word_t> commands;
    std::vector<word_t> options;
    // By the name of the option before it; without choices it is any value, such as a file.
    std::vector<std::pair<std::string, std::vector<std::string>>> values;
};

std::vector<at_t> statesOf(const std::vector<command_t>& tree)
{
    std::vector<at_t> states;
    for (size_t place = 0; place < tree.size(); ++place) {
        at_t& at = states.emplace_back();
        at.state = tree[place].path.substr(tree.front().path.size());
        for (const size_t inner : tree[place].commands)
            at.commands.push_back({nameOf(tree[inner]), tree[inner].help});
        for (const commandOption_t& option : optionsAt(tree, place))
            for (const std::string& name : option.names) {
                at.options.push_back({name, option.help});
                if (!option.value.empty() && !option.valueOptional)
                    at.values.emplace_back(name, option.choices);
            }
    }
    return states;
}

// quoted puts text in single quotes; quote stands for one in it.
std::string quoted(const std::string& text, const char* quote)
{
    std::string out = "'";
    for (const char c : text)
        if (c == '\'')
            out += quote;
        else
            out += c;
    return out + "'";
}

std::string shell(const std::string& text)
{
    return quoted(text, "'\\''");
}

std::string joined(const std::vector<std::string>& words, const char* separator)
{
    std::string out;
    for (const std::string& word : words)
        out += (out.empty() ? "" : separator) + word;
    return out;
}

std::string namesOf(const std::vector<word_t>& words)
{
    std::string names;
    for (const word_t& one : words)
        names += (names.empty() ? "" : " ") + one.word;
    return names;
}

// statePatterns gives the states below the program, as patterns of a case.
std::string statePatterns(const std::vector<at_t>& states)
{
    std::vector<std::string> patterns;
    for (size_t i = 1; i < states.size(); ++i)
        patterns.push_back(shell(states[i].state));
    return joined(patterns, " | ");
}

// Where nothing is offered, bash completes names of files itself.
std::string bashScript(const std::string& program, const std::vector<at_t>& states)
{
    std::ostringstream out;
    out << "# bash completion of " << program << "\n_" << program << "()\n{\n"
        << "    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}\n"
        << "    local state= words= i\n"
        << "    for ((i = 1; i < COMP_CWORD; ++i)); do\n"
        << "        case \"$state ${COMP_WORDS[i]}\" in\n        " << statePatterns(states)
        << ")\n            state=\"$state ${COMP_WORDS[i]}\" ;;\n        esac\n    done\n"
        << "    COMPREPLY=()\n    case \"$state $before\" in\n";
    for (const at_t& at : states)
        for (const auto& [name, choices] : at.values)
            out << "    " << shell(at.state + ' ' + name)
                << ") words=" << shell(joined(choices, " ")) << " ;;\n";
    out << "    *)\n        case $state in\n";
    for (const at_t& at : states) {
        out << "        " << shell(at.state) << ") ";
        if (at.commands.empty())
            out << "[[ $word != -* ]] || ";
        out << "words=" << shell(namesOf(at.commands) + ' ' + namesOf(at.options)) << " ;;\n";
    }
    out << "        esac ;;\n    esac\n"
        << "    COMPREPLY=($(compgen -W \"$words\" -- \"$word\"))\n}\n"
        << "complete -o default -F _" << program << ' ' << program;
    return out.str();
}

// described gives words for _describe, which takes a colon as the end of the word.
std::string described(const std::vector<word_t>& words)
{
    std::string out;
    for (const word_t& one : words)
        out += ' ' + shell(one.word + ':' + one.help);
    return out;
}

std::string zshScript(const std::string& program, const std::vector<at_t>& states)
{
    std::ostringstream out;
    out << "#compdef " << program << "\nlocal state= i\nlocal -a commands options\n"
        << "for ((i = 2; i < CURRENT; ++i)); do\n    case \"$state $words[i]\" in\n    ("
        << statePatterns(states) << ") state=\"$state $words[i]\" ;;\n    esac\ndone\n"
        << "case \"$state $words[CURRENT - 1]\" in\n";
    for (const at_t& at : states)
        for (const auto& [name, choices] : at.values)
            out << '(' << shell(at.state + ' ' + name) << ") "
                << (choices.empty() ? "_files" : "compadd -- " + joined(choices, " "))
                << "; return ;;\n";
    out << "esac\ncase $state in\n";
    for (const at_t& at : states)
        out << '(' << shell(at.state) << ") commands=(" << described(at.commands) << ") options=("
            << described(at.options) << ") ;;\n";
    out << "esac\nif [[ $PREFIX == -* ]]; then\n    _describe option options\n"
        << "elif (($#commands)); then\n    _describe command commands\nelse\n    _files\nfi";
    return out.str();
}

std::string fish(const std::string& text)
{
    std::string escaped;
    for (const char c : text)
        escaped += c == '\\' ? "\\\\" : std::string(1, c);
    return quoted(escaped, "\\'");
}

std::string fishScript(const std::string& program, const std::vector<at_t>& states)
{
    std::ostringstream out;
    out << "# fish completion of " << program << "\nfunction __" << program << "_at\n"
        << "    set -l state ''\n    for word in (commandline -opc)[2..-1]\n"
        << "        switch \"$state $word\"\n            case";
    for (size_t i = 1; i < states.size(); ++i)
        out << ' ' << fish(states[i].state);
    out << "\n                set state \"$state $word\"\n        end\n    end\n"
        << "    test \"$state\" = \"$argv\"\nend\n";
    for (const at_t& at : states) {
        const std::string begin =
            "complete -c " + program + " -n " + fish("__" + program + "_at \"" + at.state + '"');
        for (const word_t& one : at.commands)
            out << begin << " -f -a " << one.word << " -d " << fish(one.help) << '\n';
        for (const word_t& one : at.options) {
            out << begin << (one.word.starts_with("--") ? " -l " : " -s ")
                << one.word.substr(one.word.find_first_not_of('-')) << " -d " << fish(one.help);
            const auto value = std::ranges::find(at.values, one.word,
                                                 [](const auto& known) { return known.first; });
            if (value != at.values.end())
                out << (value->second.empty() ? " -r"
                                              : " -x -a " + fish(joined(value->second, " ")));
            out << '\n';
        }
    }
    std::string text = out.str();
    text.pop_back();
    return text;
}

// listed gives texts as members of a list.
std::string listed(const std::vector<std::string>& texts)
{
    std::string members;
    for (const std::string& text : texts)
        members += (members.empty() ? "" : ", ") + quoted(text, "''");
    return "@(" + members + ')';
}

std::string powershellScript(const std::string& program, const std::vector<at_t>& states)
{
    std::ostringstream out;
    out << "# PowerShell completion of " << program
        << "; each word is followed by its explanation\n$words = @{\n";
    for (const at_t& at : states) {
        std::vector<std::string> words;
        for (const auto* const list : {&at.commands, &at.options})
            for (const word_t& one : *list)
                words.push_back(one.word + ' ' + one.help);
        out << "    " << quoted(at.state, "''") << " = " << listed(words) << '\n';
    }
    out << "}\n$values = @{\n";
    for (const at_t& at : states)
        for (const auto& [name, choices] : at.values)
            out << "    " << quoted(at.state + ' ' + name, "''") << " = " << listed(choices)
                << '\n';
    out << "}\nRegister-ArgumentCompleter -Native -CommandName " << program << " -ScriptBlock {\n"
        << "    param($word, $line, $cursor)\n    $state = ''\n    $before = ''\n"
        << "    foreach ($element in $line.CommandElements | Select-Object -Skip 1) {\n"
        << "        if ($element.Extent.EndOffset -ge $cursor) { break }\n"
        << "        $before = \"$element\"\n"
        << "        if ($words.ContainsKey(\"$state $before\")) { $state = \"$state $before\" }\n"
        << "    }\n    $offered = $values[\"$state $before\"]\n"
        << "    if ($null -eq $offered) { $offered = $words[$state] }\n"
        << "    if (!$word) { $offered = $offered -notlike '-*' }\n" // then it completes files
        << "    $offered | Where-Object { $_.StartsWith($word) } | ForEach-Object {\n"
        << "        $name, $help = $_ -split ' ', 2\n        if (!$help) { $help = $name }\n"
        << "        [System.Management.Automation.CompletionResult]::new(\n"
        << "            $name, $name, 'ParameterValue', $help)\n    }\n}.GetNewClosure()";
    return out.str();
}

constexpr struct {
    const char* name;
    std::string (*write)(const std::string& program, const std::vector<at_t>& states);
} shells[] = {{"bash", bashScript},
              {"zsh", zshScript},
              {"fish", fishScript},
              {"powershell", powershellScript}};

} // namespace

std::vector<std::string> completionShells()
{
    std::vector<std::string> names;
    for (const auto& one : shells)
        names.emplace_back(one.name);
    return names;
}

std::string completionScript(const std::vector<command_t>& tree, const std::string& shell)
{
    const auto* const chosen =
        std::ranges::find(shells, shell, [](const auto& one) { return std::string(one.name); });
    return chosen == std::end(shells) ? "" : chosen->write(tree.front().path, statesOf(tree));
}
