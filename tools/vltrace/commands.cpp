#include "commands.h"

#include "exports.h"
#include "filter.h"
#include "formats/text/printable.h"
#include "formats/trace/levels.h"
#include "lines.h"
#include "shared/commandline.h"
#include "shared/inputfile.h"
#include "shared/outputfile.h"
#include "stats.h"
#include "tracefeed.h"

#include <algorithm>
#include <deque>
#include <istream>
#include <ostream>

using tracecore::levelLetters;

namespace vltrace {

namespace {

struct options_t {
    std::vector<std::string> files;
    std::vector<std::string> threads;
    std::string levels;
    std::vector<std::string> functions;
    std::vector<std::string> texts;
    std::string from;
    std::string to;
    std::string output = "-";
    bool force = false;
    bool errors = false;
    bool notes = false;
    bool noMarks = false;
    bool follow = false;
    size_t lines = 20;
    std::string order = "total";
    std::string format = "jsonl";
};

struct streams_t {
    std::istream& in;
    std::ostream& out;
    std::ostream& err;
};

// job_t is what a verb gets to do: the options, checked, and where its output goes.
struct job_t {
    const options_t& options;
    const filter_t& filter;
    const streams_t& streams;
    const std::function<bool()>& wait;
    std::ostream& out;
};

void addShared(CLI::App& command, options_t& options)
{
    command.add_option("FILE", options.files, "trace files (.trc3); - is standard input")
        ->required();
    const char* const filters = "Filters (all that are given must hold)";
    command
        .add_option("--thread", options.threads,
                    "thread id, decimal or 0x and hexadecimal; repeatable")
        ->group(filters)
        ->allow_extra_args(false);
    command
        .add_option("--level", options.levels,
                    "level letters out of " + levelLetters() + ", as in EU")
        ->group(filters);
    command
        .add_option("--function", options.functions,
                    "part of the name of an open function; repeatable")
        ->group(filters)
        ->allow_extra_args(false);
    command.add_option("--text", options.texts, "part of the text; repeatable")
        ->group(filters)
        ->allow_extra_args(false);
    const char* const instant = "YYYY-MM-DD, HH:MM[:SS[.mmm]] or both joined by T";
    command.add_option("--from", options.from, instant)->group(filters);
    command.add_option("--to", options.to, instant)->group(filters);
    command.add_option("--output", options.output, "write to this file; - is standard output");
    command.add_flag("--force", options.force, "let --output replace a file");
}

void addKinds(CLI::App& command, options_t& options)
{
    command.add_flag("--errors", options.errors,
                     "only errors, which have a status other than 0; lines with the functions "
                     "that were open");
    command.add_flag("--notes", options.notes,
                     "only notes, which have the status 0; with --errors both");
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
                     "go on until interrupted; the file may be replaced meanwhile");
    command.add_option("-n,--lines", options.lines, "number of lines")->capture_default_str();
}

void addStatsOptions(CLI::App& command, options_t& options)
{
    command.add_option("--sort", options.order, "what the table is in the order of")
        ->check(CLI::IsMember({"name", "calls", "errors", "total", "longest"}))
        ->capture_default_str();
}

void addExportOptions(CLI::App& command, options_t& options)
{
    addKinds(command, options);
    command
        .add_option("--format", options.format,
                    "jsonl: JSON Lines; chrome: for Perfetto, speedscope and the like")
        ->check(CLI::IsMember({"jsonl", "chrome"}))
        ->capture_default_str();
}

lineOptions_t lineOptionsOf(const options_t& options)
{
    return {options.errors || options.notes, !options.noMarks};
}

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

filter_t filterOf(const options_t& options)
{
    filter_t filter;
    for (const std::string& text : options.threads) {
        const auto thread = parseThread(text);
        if (!thread)
            throw CLI::ValidationError("--thread",
                                       "\"" + text + "\" is no thread id: write 420 or 0x1A4");
        filter.threads.push_back(*thread);
    }
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
    filter.from = instantOf("--from", options.from, false);
    filter.to = instantOf("--to", options.to, true);
    return filter;
}

// readAll reads the files one after the other; one that can't be read doesn't stop the others.
int readAll(const job_t& job, traceConsumer_i& consumer)
{
    int status = exitStatus::good;
    const auto complain = [&](const std::string& line) {
        job.streams.err << "vltrace: " << printable(line) << '\n';
    };
    for (const std::string& name : job.options.files) {
        try {
            const traceFeed_t feed = readTrace(name, job.streams.in, consumer);
            if (feed.cutOffset)
                complain(shownInput(name) + " is cut at byte " + std::to_string(*feed.cutOffset) +
                         ": the rest is no whole record (is it still being written?)");
            else if (feed.damages > 0)
                complain(shownInput(name) + " is damaged in " + std::to_string(feed.damages) +
                         (feed.damages == 1 ? " place, " : " places, ") +
                         std::to_string(feed.skipped) + " bytes skipped (vltrace cat shows where)");
        } catch (const CToolError& error) {
            complain(error.what());
            status = error.ExitStatus();
        }
    }
    consumer.finish();
    return status;
}

int runCat(const job_t& job)
{
    linePrinter_t printer(job.filter, lineOptionsOf(job.options),
                          [&](const std::string& line) { job.out << line; });
    return readAll(job, printer);
}

int runTail(const job_t& job)
{
    std::deque<std::string> last;
    bool live = false;
    linePrinter_t printer(job.filter, lineOptionsOf(job.options), [&](const std::string& line) {
        if (live) {
            job.out << line;
            return;
        }
        last.push_back(line);
        if (last.size() > job.options.lines)
            last.pop_front();
    });
    const auto showLast = [&] {
        for (const std::string& line : last)
            job.out << line;
        job.out.flush();
    };
    if (!job.options.follow) {
        const int status = readAll(job, printer);
        showLast();
        return status;
    }
    traceFollower_t follower(job.options.files[0], printer);
    follower.poll();
    showLast();
    live = true;
    while (job.out && job.wait()) {
        follower.poll();
        job.out.flush();
    }
    return exitStatus::good;
}

int runStats(const job_t& job)
{
    statsTable_t stats(job.filter, job.options.order, job.out);
    return readAll(job, stats);
}

int runExport(const job_t& job)
{
    if (job.options.format == "chrome") {
        chromeTrace_t chrome(job.filter, job.out);
        return readAll(job, chrome);
    }
    jsonLines_t lines(job.filter, job.out);
    return readAll(job, lines);
}

struct verb_t {
    const char* name;
    const char* help;
    void (*addOptions)(CLI::App& command, options_t& options); // beside those of all verbs
    int (*run)(const job_t& job);                              // gives the exit status
};

constexpr verb_t verbs[] = {
    {"cat", "Show the records as lines", addLineOptions, runCat},
    {"tail", "Show the last lines, and go on as the file grows", addTailOptions, runTail},
    {"stats", "Show the functions by calls, errors and duration", addStatsOptions, runStats},
    {"export", "Write the records for other programs", addExportOptions, runExport},
};

void checkUse(const options_t& options)
{
    const auto refuse = [](const char* what, const char* hint) {
        throw CToolError(what, hint, exitStatus::wrongUsage);
    };
    const auto& files = options.files;
    if (std::count(files.begin(), files.end(), "-") > 1)
        refuse("standard input can be read only once", "save it to a file");
    if (!options.follow)
        return;
    if (files.size() != 1)
        refuse("one file can be followed", "start vltrace for each");
    if (files[0] == "-")
        refuse("standard input can't be followed", "name the file");
    if (options.output != "-")
        refuse("what is followed has no end, so --output would never be complete",
               "redirect the standard output");
}

int run(const verb_t& verb, const options_t& options, const streams_t& streams,
        const std::function<bool()>& wait)
{
    checkUse(options);
    const filter_t filter = filterOf(options);
    COutputFile file(options.output, options.force, options.files, streams.out);
    const int status = verb.run({options, filter, streams, wait, file.Stream()});
    if (status == exitStatus::good || options.output == "-")
        file.Complete();
    else
        streams.err << "vltrace: " << printable(options.output)
                    << " is not written, as not all could be read (leave out what can't)\n";
    return status;
}

} // namespace

int runVltrace(std::vector<std::string> arguments, std::istream& in, std::ostream& out,
               std::ostream& err, const std::function<bool()>& wait)
{
    options_t options;
    const verb_t* chosen = nullptr;
    CLI::App app("Reads trace files of the plug-in, damaged ones too.", "vltrace");
    app.require_subcommand(1);
    for (const verb_t& verb : verbs) {
        CLI::App& command = *app.add_subcommand(verb.name, verb.help);
        addShared(command, options);
        verb.addOptions(command, options);
        command.callback([&] { chosen = &verb; });
    }
    return runTool(app, std::move(arguments), out, err, [&] {
        return run(*chosen, options, {in, out, err}, wait);
    });
}

} // namespace vltrace
