#include "shared/commandtree.h"

#include <algorithm>
#include <cctype>
#include <sstream>

#include <CLI/CLI.hpp>

namespace {

// choicesOf reads what the parser shows of a checked value: "TEXT:{file,console}", or with numbers
// that stand for them "{none->0,missing->1}".
std::vector<std::string> choicesOf(const std::string& typeName)
{
    const size_t begin = typeName.find('{');
    if (begin == std::string::npos)
        return {};
    std::istringstream words(typeName.substr(begin + 1, typeName.find('}') - begin - 1));
    std::vector<std::string> choices;
    for (std::string word; std::getline(words, word, ',');)
        choices.push_back(word.substr(0, word.find("->")));
    return choices;
}

std::string helpOf(const CLI::Option& option)
{
    const std::string& standard = option.get_default_str();
    return option.get_description() + (standard.empty() ? "" : " (default: " + standard + ")");
}

commandOption_t optionOf(const CLI::Option& option)
{
    commandOption_t found;
    for (const std::string& name : option.get_snames())
        found.names.push_back('-' + name);
    for (const std::string& name : option.get_lnames())
        found.names.push_back("--" + name);
    found.help = helpOf(option);
    if (option.get_items_expected_max() > 0) {
        const std::string type = option.get_type_name();
        found.choices = choicesOf(type);
        found.value = type.substr(0, type.find_first_of(":{ "));
        found.valueOptional = option.get_items_expected_min() == 0;
    }
    return found;
}

void add(const CLI::App& app, const std::string& path, size_t parent, std::vector<command_t>& tree)
{
    const size_t place = tree.size();
    command_t command;
    command.path = path;
    command.help = app.get_description();
    command.parent = parent;
    std::istringstream footer(app.get_footer());
    for (std::string line; std::getline(footer, line);)
        if (line.starts_with("  "))
            command.example += line.substr(2) + '\n';
    for (const CLI::Option* const option : app.get_options()) {
        if (option->get_positional())
            command.arguments.push_back({option->get_name(), helpOf(*option),
                                         option->get_required(),
                                         option->get_items_expected_max() > 1});
        else if (!option->get_group().empty())
            command.options.push_back(optionOf(*option));
    }
    tree.push_back(std::move(command));
    for (const CLI::App* const inner : app.get_subcommands([](const CLI::App*) { return true; })) {
        tree[place].commands.push_back(tree.size());
        add(*inner, path + ' ' + inner->get_name(), place, tree);
    }
}

} // namespace

std::vector<command_t> commandTree(const CLI::App& app)
{
    std::vector<command_t> tree;
    add(app, app.get_name(), 0, tree);
    return tree;
}

std::vector<commandOption_t> optionsAt(const std::vector<command_t>& tree, size_t place)
{
    std::vector<commandOption_t> options = tree[place].options;
    while (place != tree[place].parent) {
        place = tree[place].parent;
        for (const commandOption_t& option : tree[place].options)
            if (std::ranges::none_of(options, [&](const commandOption_t& nearer) {
                    return nearer.names.back() == option.names.back();
                }))
                options.push_back(option);
    }
    return options;
}

std::string nameOf(const command_t& command)
{
    return command.path.substr(command.path.rfind(' ') + 1);
}
