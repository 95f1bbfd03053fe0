#include "commands.h"

#include "common/usage.h"
#include "exports.h"
#include "filter.h"
#include "lines.h"
#include "stats.h"
#include "tracefile.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <deque>
#include <fstream>
#include <memory>
#include <ostream>

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
    std::string output;
    bool force = false;
    bool errorsOnly = false;
    bool noMarks = false;
    bool follow = false;
    size_t lines = 20;
    std::string order = "total";
    std::string format = "jsonl";
};

void addShared(CLI::App& command, options_t& options)
{
    command.add_option("FILE", options.files, "trace files (.trc3)")->required();
    const char* const filters = "Filters (all that are given must hold)";
    command
        .add_option("--thread", options.threads,
                    "thread id, decimal or 0x and hexadecimal; repeatable")
        ->group(filters)
        ->allow_extra_args(false);
    command.add_option("--level", options.levels, "level letters out of ><UEDNTt, as in EU")
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
    command.add_option("--output", options.output,
                       "write to this file instead of the standard output");
    command.add_flag("--force", options.force, "let --output replace a file");
}

void addLineOptions(CLI::App& command, options_t& options)
{
    command.add_flag("--errors", options.errorsOnly,
                     "only errors, each with its chain of open functions");
    command.add_flag("--no-marks", options.noMarks, "leave colour directives out");
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
    if (options.levels.find_first_not_of("><UEDNTt") != std::string::npos)
        throw CLI::ValidationError("--level", "\"" + options.levels +
                                                  "\" has a letter that is none of ><UEDNTt");
    filter.levels = options.levels;
    filter.functions = options.functions;
    filter.texts = options.texts;
    filter.from = instantOf("--from", options.from, false);
    filter.to = instantOf("--to", options.to, true);
    return filter;
}

// openOutput gives the file of --output, or null if there is none.
std::unique_ptr<std::ofstream> openOutput(const options_t& options)
{
    if (options.output.empty())
        return nullptr;
    const std::filesystem::path path = pathOf(options.output);
    std::error_code error;
    for (const std::string& file : options.files)
        if (std::filesystem::equivalent(path, pathOf(file), error))
            throw toolError_t(options.output + " is the trace itself: give --output another name");
    if (!options.force && std::filesystem::exists(path, error))
        throw toolError_t(options.output + " exists: give another name, or --force to replace it");
    auto file = std::make_unique<std::ofstream>(path, std::ios::binary | std::ios::trunc);
    if (!*file)
        throw toolError_t(options.output + " can't be written: check the folder and your rights");
    return file;
}

// readAll reads the files one after the other; one that can't be read doesn't keep the others back.
int readAll(const options_t& options, traceConsumer_i& consumer, bool tellDamage, std::ostream& err)
{
    int status = 0;
    for (const std::string& name : options.files) {
        try {
            const traceFeed_t feed = readTrace(name, consumer);
            if (feed.size > 0 && feed.records == 0 && !feed.marked)
                throw toolError_t(name + " holds no trace: its name should end in .trc3");
            if (feed.size == 0)
                err << "vltrace: " << name << " is empty: nothing has been traced into it yet\n";
            else if (tellDamage && feed.damages > 0)
                err << "vltrace: " << name << " is damaged in " << feed.damages << " places, "
                    << feed.skipped << " bytes skipped: see vltrace cat\n";
        } catch (const toolError_t& error) {
            err << "vltrace: " << error.what() << '\n';
            status = 1;
        }
    }
    consumer.finish();
    return status;
}

int runTail(const options_t& options, std::ostream& out, std::ostream& err,
            const std::function<bool()>& wait)
{
    std::deque<std::string> last;
    bool live = false;
    linePrinter_t printer(filterOf(options), {options.errorsOnly, !options.noMarks},
                          [&](const std::string& line) {
                              if (live) {
                                  out << line;
                                  return;
                              }
                              last.push_back(line);
                              if (last.size() > options.lines)
                                  last.pop_front();
                          });
    const auto showLast = [&] {
        for (const std::string& line : last)
            out << line;
        out.flush();
    };
    if (!options.follow) {
        const int status = readAll(options, printer, false, err);
        showLast();
        return status;
    }
    if (options.files.size() != 1)
        throw toolError_t("one file can be followed: start vltrace for each");
    traceFollower_t follower(options.files[0], printer);
    follower.poll();
    showLast();
    live = true;
    while (out && wait()) {
        follower.poll();
        out.flush();
    }
    return 0;
}

int run(const CLI::App& app, const options_t& options, std::ostream& standardOut, std::ostream& err,
        const std::function<bool()>& wait)
{
    const filter_t filter = filterOf(options);
    const auto file = openOutput(options);
    std::ostream& out = file ? *file : standardOut;
    int status = 0;
    if (app.got_subcommand("tail")) {
        status = runTail(options, out, err, wait);
    } else if (app.got_subcommand("cat")) {
        linePrinter_t printer(filter, {options.errorsOnly, !options.noMarks},
                              [&](const std::string& line) { out << line; });
        status = readAll(options, printer, false, err);
    } else if (app.got_subcommand("stats")) {
        statsTable_t stats(filter, options.order, out);
        status = readAll(options, stats, true, err);
    } else if (options.format == "chrome") {
        chromeTrace_t chrome(filter, out);
        status = readAll(options, chrome, true, err);
    } else {
        jsonLines_t lines(filter, out);
        status = readAll(options, lines, true, err);
    }
    out.flush();
    if (!out)
        throw toolError_t("the output could not be written whole: is the disk full?");
    return status;
}

} // namespace

int runVltrace(std::vector<std::string> arguments, std::ostream& out, std::ostream& err,
               const std::function<bool()>& wait)
{
    options_t options;
    CLI::App app("Reads trace files of the plug-in, damaged ones too.", "vltrace");
    app.require_subcommand(1);
    CLI::App& cat = *app.add_subcommand("cat", "Show the records as lines");
    CLI::App& tail =
        *app.add_subcommand("tail", "Show the last lines, and go on as the file grows");
    CLI::App& stats =
        *app.add_subcommand("stats", "Show the functions by calls, errors and duration");
    CLI::App& exports = *app.add_subcommand("export", "Write the records for other programs");
    for (CLI::App* command : {&cat, &tail, &stats, &exports})
        addShared(*command, options);
    addLineOptions(cat, options);
    addLineOptions(tail, options);
    tail.add_flag("-f,--follow", options.follow,
                  "go on until interrupted; the file may be made anew meanwhile");
    tail.add_option("-n,--lines", options.lines, "number of lines")->capture_default_str();
    stats.add_option("--sort", options.order, "what the table is in the order of")
        ->check(CLI::IsMember({"name", "calls", "errors", "total", "longest"}))
        ->capture_default_str();
    exports
        .add_option("--format", options.format,
                    "jsonl: JSON Lines; chrome: for Perfetto, speedscope and the like")
        ->check(CLI::IsMember({"jsonl", "chrome"}))
        ->capture_default_str();
    try {
        std::reverse(arguments.begin(), arguments.end());
        app.parse(std::move(arguments));
        return run(app, options, out, err, wait);
    } catch (const CLI::Success& help) {
        return app.exit(help, out, err);
    } catch (const CLI::Error& error) {
        err << "vltrace: " << usageError(app, error) << " (vltrace --help tells more)\n";
        return 2;
    } catch (const std::exception& error) {
        err << "vltrace: " << error.what() << '\n';
        return 1;
    }
}

} // namespace vltrace
