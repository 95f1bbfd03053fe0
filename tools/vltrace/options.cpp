#include "options.h"

#include "formats/trace/levels.h"

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
        refuseOption(option,
                     "\"" + text + "\" is no time: write 2017-07-14T15:59:04.123 or a part");
    return instant;
}

std::vector<uint32_t> idsOf(const char* option, const std::vector<std::string>& texts)
{
    std::vector<uint32_t> ids;
    for (const std::string& text : texts) {
        const auto id = parseId(text);
        if (!id)
            refuseOption(option, "\"" + text + "\" is no id: write 420 or 0x1A4");
        ids.push_back(*id);
    }
    return ids;
}

} // namespace

void addKinds(const CCommand& command, options_t& options)
{
    command.AddFlag("--errors", options.errors,
                    "only errors, which have a status other than 0; lines with the functions "
                    "that were open");
    command.AddFlag("--notes", options.notes,
                    "only notes, which have the status 0; with --errors both");
}

void addFiles(const CCommand& command, options_t& options)
{
    command
        .AddOption("FILE", options.files,
                   "trace files (.trc3, .trc3.gz), and folders with some; - is standard input")
        .Required();
}

void addRuns(const CCommand& command, options_t& options)
{
    command.AddOption("RUN", options.files, "two trace files, or folders with some")
        .Required()
        .Values(2, 2);
}

void addShared(const CCommand& command, options_t& options)
{
    const char* const filters = "Filters (all that are given must hold)";
    const auto addList = [&](const char* name, std::vector<std::string>& list, const char* help) {
        command.AddOption(name, list, help).Group(filters).OneEachTime();
    };
    addList("--process", options.processes,
            "process id, decimal or 0x and hexadecimal; repeatable");
    addList("--thread", options.threads, "thread id, likewise; repeatable");
    command
        .AddOption("--level", options.levels,
                   "level letters out of " + levelLetters() + ", as in EU")
        .Group(filters);
    addList("--function", options.functions, "part of the name of an open function; repeatable");
    addList("--text", options.texts, "part of the text; repeatable");
    addList("-e,--regex", options.patterns,
            "regular expression (Perl's) that is found in the text; repeatable");
    command.AddFlag("-i,--ignore-case", options.ignoreCase, "in --regex").Group(filters);
    const char* const instant = "YYYY-MM-DD, HH:MM[:SS[.mmm]] or both joined by T";
    command.AddOption("--from", options.from, instant).Group(filters);
    command.AddOption("--to", options.to, instant).Group(filters);
    command.AddOption("-o,--output", options.output, "write to this file; - is standard output");
    command.AddFlag("--force", options.force, "let --output replace a file");
}

void addLineOptions(const CCommand& command, options_t& options)
{
    addKinds(command, options);
    command.AddFlag("--no-marks", options.noMarks, "leave colour directives out");
}

void addTailOptions(const CCommand& command, options_t& options)
{
    addLineOptions(command, options);
    command.AddFlag("-f,--follow", options.follow,
                    "go on until interrupted; files may be replaced meanwhile, and new ones come "
                    "into a folder");
    command.AddOption("-n,--lines", options.lines, "number of lines")
        .Check([](const std::string& text) {
            return text.starts_with('-') ? '"' + text + "\" is no number of lines" : "";
        })
        .ShowDefault();
}

void addStatsOptions(const CCommand& command, options_t& options)
{
    command.AddOption("--sort", options.order, "what the table is in the order of")
        .OneOf({"name", "calls", "errors", "total", "longest"})
        .ShowDefault();
    command.AddFlag("--json", options.json, "print JSON");
}

void addExportOptions(const CCommand& command, options_t& options)
{
    addKinds(command, options);
    command
        .AddOption("--format", options.format,
                   "jsonl: JSON Lines; csv: comma-separated values; chrome: for Perfetto, "
                   "speedscope and the like; folded: for flame graphs; otlp: for OpenTelemetry "
                   "collectors")
        .OneOf({"jsonl", "csv", "chrome", "folded", "otlp"})
        .ShowDefault();
    command
        .AddOption("--utc-offset", options.utcOffset,
                   "what the trace's clock is ahead of UTC, for otlp")
        .ShowDefault();
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
        refuseOption("--utc-offset", "\"" + text + "\" is no offset: write +02:00");
    return (text[0] == '-' ? -1 : 1) * (hours * 60 + minutes);
}

filter_t filterOf(const options_t& options)
{
    filter_t filter;
    filter.processes = idsOf("--process", options.processes);
    filter.threads = idsOf("--thread", options.threads);
    if (options.levels.find_first_not_of(levelLetters()) != std::string::npos)
        refuseOption("--level",
                     "\"" + options.levels + "\" has a letter that is none of " + levelLetters());
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
