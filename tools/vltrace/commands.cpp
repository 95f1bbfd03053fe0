#include "commands.h"

#include "chrometrace.h"
#include "csvlines.h"
#include "foldedstacks.h"
#include "formats/text/printable.h"
#include "jsonlines.h"
#include "lines.h"
#include "merge.h"
#include "options.h"
#include "otlp.h"
#include "rundiff.h"
#include "shared/commandline.h"
#include "shared/filesystem.h"
#include "shared/outputfile.h"
#include "shared/terminal.h"
#include "stats.h"
#include "textout.h"
#include "viewpage.h"

#include <algorithm>
#include <deque>
#include <istream>
#include <memory>
#include <ostream>

namespace vltrace {

namespace {

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

    void complain(const CToolError& error) const
    {
        reportFailure(streams.err, "vltrace", error, options.json);
    }
    inputs_t inputs(const std::vector<std::string>& names) const
    {
        return {names, streams.in, filter, [this](const CToolError& error) { complain(error); }};
    }
    inputs_t inputs() const { return inputs(options.files); }
};

int runCat(const job_t& job)
{
    textOut_t out(job.out);
    linePrinter_t printer(lineOptionsOf(job.options, job.out), [&](const std::string& line) {
        out.text += line;
        out.written();
    });
    return readInOrder(job.inputs(), printer);
}

int runTail(const job_t& job)
{
    std::deque<std::string> last;
    bool live = false;
    linePrinter_t printer(lineOptionsOf(job.options, job.out), [&](std::string& line) {
        if (live) {
            job.out << line;
            return;
        }
        if (last.size() < job.options.lines) {
            last.push_back(line);
        } else if (!last.empty()) { // the oldest one's memory is used again
            last.push_back(std::move(last.front()));
            last.pop_front();
            last.back().swap(line);
        }
    });
    const auto showLast = [&] {
        for (const std::string& line : last)
            job.out << line;
        job.out.flush();
    };
    if (!job.options.follow) {
        const int status = readInOrder(job.inputs(), printer);
        showLast();
        return status;
    }
    traceFollower_t follower(job.inputs(), printer);
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
    statsTable_t stats(job.options.order, job.options.json, job.out);
    return readEach(job.inputs(), stats);
}

int runExport(const job_t& job)
{
    const std::string& format = job.options.format;
    const int utcOffset = utcOffsetOf(job.options);
    std::unique_ptr<traceConsumer_i> consumer;
    if (format == "csv")
        consumer = std::make_unique<csvLines_t>(job.out);
    else if (format == "jsonl")
        consumer = std::make_unique<jsonLines_t>(job.out);
    if (consumer)
        return readInOrder(job.inputs(), *consumer);
    if (format == "chrome")
        consumer = std::make_unique<chromeTrace_t>(job.out);
    else if (format == "folded")
        consumer = std::make_unique<foldedStacks_t>(job.out);
    else
        consumer = std::make_unique<otlpTrace_t>(utcOffset, job.out);
    return readEach(job.inputs(), *consumer);
}

int runView(const job_t& job)
{
    constexpr size_t many = 1'000'000; // a browser shows more, but slowly
    if (isTerminal(job.out))
        throw CToolError("a page is nothing for a terminal", "name a file: -o trace.html",
                         exitStatus::wrongUsage);
    viewPage_t page(job.out);
    const int status = readEach(job.inputs(), page);
    if (page.events() > many)
        job.complain(CToolError(
            "the page has " + std::to_string(page.events()) + " records and will be slow",
            "--from, --to and the other filters leave some out", exitStatus::good));
    return status;
}

constexpr int differs = -1; // an answer, and no failure to read

int runDiff(const job_t& job)
{
    lineTable_t table;
    run_t runs[] = {run_t(table), run_t(table)};
    for (size_t i = 0; i < 2; ++i) {
        const std::vector<std::string> name = {job.options.files[i]};
        const int status = readInOrder(job.inputs(name), runs[i]);
        if (status != exitStatus::good)
            return status;
    }
    const std::string names = "--- " + printable(job.options.files[0]) + "\n+++ " +
                              printable(job.options.files[1]) + "\n";
    textOut_t out(job.out);
    const bool equal =
        compareRuns(runs[0], runs[1], table, [&, first = true](const std::string& line) mutable {
            if (std::exchange(first, false))
                out.text += names;
            out.text += line[0] == '-'   ? coloured(job.out, colour_t::red, line)
                        : line[0] == '+' ? coloured(job.out, colour_t::green, line)
                                         : line;
            out.text += '\n';
            out.written();
        });
    return equal ? exitStatus::good : differs;
}

struct verb_t {
    const char* name;
    const char* help;
    const char* example;
    void (*addInputs)(const CCommand& command, options_t& options);
    void (*addOptions)(const CCommand& command, options_t& options); // beside those of all verbs
    int (*run)(const job_t& job);                                    // gives the exit status
};

constexpr verb_t verbs[] = {
    {"cat", "Show the records as lines", "vltrace cat --errors C:\\Traces", addFiles,
     addLineOptions, runCat},
    {"tail", "Show the last lines, and go on as the file grows", "vltrace tail -f C:\\Traces",
     addFiles, addTailOptions, runTail},
    {"stats", "Show the functions by calls, errors and duration",
     "vltrace stats --sort longest restore.trc3", addFiles, addStatsOptions, runStats},
    {"diff", "Compare two runs, without their times and ids", "vltrace diff good.trc3 bad.trc3",
     addRuns, addLineOptions, runDiff},
    {"view", "Make a page that shows the records in a browser",
     "vltrace view -o restore.html restore.trc3", addFiles, addKinds, runView},
    {"export", "Write the records for other programs",
     "vltrace export --format chrome -o restore.json restore.trc3", addFiles, addExportOptions,
     runExport},
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
    if (std::count(files.begin(), files.end(), "-") > 0)
        refuse("standard input can't be followed", "name the file");
    if (options.output != "-")
        refuse("what is followed has no end, so --output would never be complete",
               "redirect the standard output");
}

// everyFile gives the files that are read, also those in folders, for the check that the output is
// none of them.
std::vector<std::string> everyFile(const std::vector<std::string>& names)
{
    std::vector<std::string> files;
    for (const std::string& name : names) {
        files.push_back(name);
        if (name == "-" || entryKind(pathOf(name)) != entryKind_t::folder)
            continue;
        try {
            const auto inside = tracesIn(name);
            files.insert(files.end(), inside.begin(), inside.end());
        } catch (const CToolError&) {
            continue; // reading it reports that
        }
    }
    return files;
}

int run(const verb_t& verb, const options_t& options, const streams_t& streams,
        const std::function<bool()>& wait)
{
    checkUse(options);
    const filter_t filter = filterOf(options);
    COutputFile file(options.output, options.force, everyFile(options.files), streams.out);
    const job_t job{options, filter, streams, wait, file.Stream()};
    const int status = verb.run(job);
    if (status == exitStatus::good || status == differs || options.output == "-")
        file.Complete();
    else
        job.complain(CToolError(options.output + " is not written, as not all could be read",
                                "leave out what can't"));
    return status == differs ? exitStatus::failed : status;
}

} // namespace

int runVltrace(std::vector<std::string> arguments, std::istream& in, std::ostream& out,
               std::ostream& err, const std::function<bool()>& wait)
{
    options_t options;
    const verb_t* chosen = nullptr;
    const CTool tool("vltrace", "Reads trace files of the plug-in, damaged ones too.");
    for (const verb_t& verb : verbs) {
        const CCommand command = tool.AddCommand(verb.name, verb.help, verb.example);
        verb.addInputs(command, options);
        addShared(command, options);
        verb.addOptions(command, options);
        command.Do([&] { chosen = &verb; });
    }
    return runTool(tool, std::move(arguments), out, err, [&] {
        return run(*chosen, options, {in, out, err}, wait);
    });
}

} // namespace vltrace
