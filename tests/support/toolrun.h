#pragma once

#include <iterator>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

struct toolRun_t {
    int status;
    std::string out, err;
};

// wordsOf takes a command line apart at its blanks.
inline std::vector<std::string> wordsOf(const std::string& line)
{
    std::istringstream in(line);
    return {std::istream_iterator<std::string>(in), {}};
}

// runTool runs the main function of a tool on streams in memory: runTool(runVlbackup, {"ls", "-"},
// backup). More are the arguments that the function takes after its streams.
template <class Tool, class... More>
toolRun_t runTool(Tool tool, std::vector<std::string> arguments, const auto& input, More... more)
{
    std::istringstream in(std::string(input.begin(), input.end()));
    std::ostringstream out, err;
    const int status = tool(std::move(arguments), in, out, err, more...);
    return {status, out.str(), err.str()};
}
