#include "source.h"

#include "shared/filesystem.h"
#include "shared/inputfile.h"
#include "shared/toolerror.h"

#include <algorithm>
#include <charconv>
#include <map>
#include <string_view>
#include <utility>

namespace fs = std::filesystem;

namespace vltrace {

namespace {

std::string lastPart(const std::string& name)
{
    const size_t slash = name.find_last_of("/\\");
    return slash == std::string::npos ? name : name.substr(slash + 1);
}

// extensionOf gives the size of a trace's extension; 0 if the name is none of a trace.
size_t extensionOf(std::string_view name)
{
    const auto same = [](char a, char b) {
        return a == b || (a >= 'A' && a <= 'Z' && a + 32 == b);
    };
    for (const std::string_view extension : {".trc3", ".trc3.gz"})
        if (name.size() > extension.size() &&
            std::ranges::equal(name.substr(name.size() - extension.size()), extension, same))
            return extension.size();
    return 0;
}

} // namespace

std::optional<uint32_t> processOf(const std::string& name)
{
    const size_t stamp = name.rfind("~~");
    const size_t dot = stamp == std::string::npos ? stamp : name.find('.', stamp);
    uint32_t pid = 0;
    if (dot == std::string::npos)
        return std::nullopt;
    const auto [end, error] =
        std::from_chars(name.data() + dot + 1, name.data() + name.size(), pid);
    return error == std::errc() && pid != 0 ? std::optional(pid) : std::nullopt;
}

source_t sourceOf(std::string name, size_t number)
{
    const auto process = processOf(name);
    std::string shown = shownInput(name);
    return {std::move(name), std::move(shown), number, process, {}};
}

std::string programOf(const std::string& name)
{
    const std::string last = lastPart(name);
    const std::string unstamped = last.substr(0, last.find("~~"));
    const size_t machine = unstamped.rfind(".x64.");
    if (machine != std::string::npos && machine > 0)
        return unstamped.substr(0, machine);
    return last.substr(0, last.size() - extensionOf(last));
}

std::vector<std::string> tracesIn(const std::string& folder)
{
    const bool separated = folder.find_last_of("/\\") + 1 == folder.size();
    const std::string prefix = separated ? folder : folder + '/';
    std::vector<std::string> names;
    std::error_code error;
    for (fs::directory_iterator entry(pathOf(folder), error), end; !error && entry != end;
         entry.increment(error)) {
        const auto last = entry->path().filename().u8string();
        const std::string name(last.begin(), last.end());
        if (extensionOf(name) != 0 && entryKind(entry->path()) == entryKind_t::file)
            names.push_back(prefix + name);
    }
    if (error)
        throw CToolError(folder + " can't be listed: " + reasonOf(error), "may you read it?");
    if (names.empty())
        throw CToolError(folder + " is a folder with no trace in it", "traces end in .trc3");
    std::ranges::sort(names);
    return names;
}

void labelSources(const std::vector<source_t*>& sources)
{
    std::map<uint32_t, size_t> processes;
    for (const source_t* source : sources)
        if (source->process)
            ++processes[*source->process];
    for (source_t* source : sources) {
        if (sources.size() == 1)
            source->label.clear();
        else if (source->process && processes[*source->process] == 1)
            source->label = std::to_string(*source->process);
        else
            source->label = "#" + std::to_string(source->number);
    }
}

} // namespace vltrace
