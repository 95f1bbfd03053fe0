#include "options.h"

#include "formats/trace/levels.h"
#include "shared/habits.h"

#include <charconv>
#include <optional>

using tracecore::levelLetters;

namespace vltrace {

namespace {

std::optional<instant_t> instantOf(const char* option, const std::string& text, bool latest)
{
    if (text.empty())
        return std::nullopt;
    const auto instant = parseInstant(text, latest);
    if (!instant)
        throw CLI::ValidationError(
            option, "\"" + text + "\" is no time: write 2017-07-14T15:59:04.123 or a part");
    return instant;
}

std::vector<uint32_t> idsOf(const char* option, const std::vector<std::string>& texts)
{
    std::vector<uint32_t> ids;
    for (const std::string& text : texts) {
        const auto id = parseId(text);
        if (!id)
            throw CLI::ValidationError(option, "\"" + text + "\" is no id: write 420 or 0x1A4");
        ids.push_back(*id);
    }
    return ids;
}

} // namespace

void addKinds(CLI::App& command, options_t& options)
{
    command.add_flag("--errors", options.errors,
                     "only errors, which have a status other than 0; lines with the functions "
                     "that were open");
    command.add_flag("--notes", options.notes,
                     "only notes, which have the status 0; with --errors both");
}

void addFiles(CLI::App& command, options_t& options)
{
    command
        .add_option("FILE", options.files,
                    "trace files (.trc3, .trc3.gz), and folders with some; - is standard input")
        ->required();
}

void addRuns(CLI::App& command, options_t& options)
{
    command.add_option("RUN", options.files, "two trace files, or folders with some")
        ->required()
        ->expected(2);
}

void addShared(CLI::App& command, options_t& options)
{
    const char* const filters = "Filters (all that are given must hold)";
    const auto addList = [&](const char* name, std::vector<std::string>& list, const char* help) {
        command.add_option(name, list, help)->group(filters)->allow_extra_args(false);
    };
    addList("--process", options.processes,
            "process id, decimal or 0x and hexadecimal; repeatable");
    addList("--thread", options.threads, "thread id, likewise; repeatable");
    command
        .add_option("--level", options.levels,
                    "level letters out of " + levelLetters() + ", as in EU")
        ->group(filters);
    addList("--function", options.functions, "part of the name of an open function; repeatable");
    addList("--text", options.texts, "part of the text; repeatable");
    addList("-e,--regex", options.patterns,
            "regular expression (Perl's) that is found in the text; repeatable");
    command.add_flag("-i,--ignore-case", options.ignoreCase, "in --regex")->group(filters);
    const char* const instant = "YYYY-MM-DD, HH:MM[:SS[.mmm]] or both joined by T";
    command.add_option("--from", options.from, instant)->group(filters);
    command.add_option("--to", options.to, instant)->group(filters);
    command.add_option("-o,--output", options.output, "write to this file; - is standard output");
    command.add_flag("--force", options.force, "let --output replace a file");
}

void addLineOptions(CLI::App& command, options_t& options)
{
    addKinds(command, options);
    command.add_flag("--no-marks", options.noMarks, "leave colour directives out");
}

void addTailOptions(CLI::App& command, options_t& options)
{
    addLineOptions(command, options);
    command.add_flag("-f,--follow", options.follow,
                     "go on until interrupted; files may be replaced meanwhile, and new ones come "
                     "into a folder");
    command.add_option("-n,--lines", options.lines, "number of lines")
        ->check([](const std::string& text) {
            return text.starts_with('-') ? '"' + text + "\" is no number of lines" : "";
        })
        ->capture_default_str();
}

void addStatsOptions(CLI::App& command, options_t& options)
{
    command.add_option("--sort", options.order, "what the table is in the order of")
        ->check(oneOf({"name", "calls", "errors", "total", "longest"}))
        ->capture_default_str();
    command.add_flag("--json", options.json, "print JSON");
}

void addExportOptions(CLI::App& command, options_t& options)
{
    addKinds(command, options);
    command
        .add_option("--format", options.format,
                    "jsonl: JSON Lines; csv: comma-separated values; chrome: for Perfetto, "
                    "speedscope and the like; folded: for flame graphs; otlp: for OpenTelemetry "
                    "collectors")
        ->check(oneOf({"jsonl", "csv", "chrome", "folded", "otlp"}))
        ->capture_default_str();
    command
        .add_option("--utc-offset", options.utcOffset,
                    "what the trace's clock is ahead of UTC, for otlp")
        ->capture_default_str();
}

lineOptions_t lineOptionsOf(const options_t& options, const std::ostream& out)
{
    return {options.errors || options.notes, !options.noMarks, &out};
}

int utcOffsetOf(const options_t& options)
{
    const std::string& text = options.utcOffset;
    int hours = 0;
    int minutes = 0;
    const auto takes = [&](size_t at, int& number) {
        const char* const end = text.data() + at + 2;
        return std::from_chars(text.data() + at, end, number).ptr == end;
    };
    if (text.size() != 6 || (text[0] != '+' && text[0] != '-') || text[3] != ':' ||
        !takes(1, hours) || !takes(4, minutes) || hours > 14 || minutes > 59)
        throw CLI::ValidationError("--utc-offset", "\"" + text + "\" is no offset: write +02:00");
    return (text[0] == '-' ? -1 : 1) * (hours * 60 + minutes);
}

filter_t filterOf(const options_t& options)
{
    filter_t filter;
    filter.processes = idsOf("--process", options.processes);
    filter.threads = idsOf("--thread", options.threads);
    if (options.levels.find_first_not_of(levelLetters()) != std::string::npos)
        throw CLI::ValidationError(
            "--level", "\"" + options.levels + "\" has a letter that is none of " + levelLetters());
    filter.levels = options.levels;
    if (options.errors)
        filter.kinds.push_back(kind_t::error);
    if (options.notes)
        filter.kinds.push_back(kind_t::note);
    filter.functions = options.functions;
    filter.texts = options.texts;
    for (const std::string& pattern : options.patterns)
        filter.patterns.emplace_back(pattern, options.ignoreCase);
    filter.from = instantOf("--from", options.from, false);
    filter.to = instantOf("--to", options.to, true);
    return filter;
}

} // namespace vltrace
