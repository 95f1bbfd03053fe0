#include "formats/der/dernode.h"
#include "formats/trace/recordformat.h"
#include "rounds.h"
#include "vlbackup/commands.h"
#include "vltrace/commands.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <span>
#include <sstream>

// The portable tools against the least that they must do: reading a backup once, descrambling a
// trace once. Both tools run in this process, their output goes nowhere.
namespace {

namespace fs = std::filesystem;

fs::path folder;
volatile size_t sink;

struct nowhere_t : std::streambuf {
    std::streamsize xsputn(const char*, std::streamsize count) override { return count; }
    int overflow(int c) override { return traits_type::not_eof(c); }
};

void require(bool good, const char* what)
{
    if (good)
        return;
    std::cerr << "tools_bench: " << what << '\n';
    std::exit(2);
}

template <class Tool> void run(Tool tool, const std::vector<std::string>& arguments)
{
    nowhere_t nowhere;
    std::ostream out(&nowhere);
    std::istringstream none;
    std::ostringstream err;
    const int status = tool(arguments, none, out, err);
    require(status == 0, err.str().c_str());
}

void vlbackup(const std::vector<std::string>& arguments)
{
    run(runVlbackup, arguments);
}

void vltrace(const std::vector<std::string>& arguments)
{
    run([](auto&&... parts) { return vltrace::runVltrace(parts..., [] { return false; }); },
        arguments);
}

void write(const fs::path& path, std::span<const uint8_t> bytes)
{
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
    require(file.good(), "a file can't be written");
}

// backupFile makes a sound backup of templates.
std::string backupFile(const char* name, size_t count, size_t size)
{
    const std::vector<uint8_t> content(size, 'x');
    CDerTree backup;
    backup.SetSequence(4);
    backup.Child(0).SetSequence(count);
    for (size_t i = 0; i < count; ++i) {
        CDerNode& pair = backup.Child(0).Child(i);
        std::u16string template16;
        for (const char c : "t" + std::to_string(i) + ".vlm")
            template16 += static_cast<char16_t>(c);
        pair.SetSequence(2);
        pair.Child(0).SetWide(template16);
        pair.Child(1).SetOctets(content);
    }
    backup.Child(1).SetSequence(0);
    backup.Child(2).SetSequence(0);
    backup.Child(3).SetSequence(1);
    backup.Child(3).Child(0).SetNarrow(R"({"settings":{"current":{"useGrabbingCreds":true}}})");
    write(folder / name, backup.Encode());
    return folder / name;
}

constexpr char traceHeader[] = "trace3\r\nCompiled: Jul 14 2017 15:59:04\r\nTrace Ver: 3.0.2\r\n"
                               "07/14/2017 15:59:04.123\r\n.\r\n";

// traceFile makes a trace of calls with two messages each: a clock record, an entry, two messages
// and an exit.
std::string traceFile(const char* name, size_t records)
{
    std::vector<uint8_t> bytes(traceHeader, traceHeader + sizeof traceHeader - 1);
    const auto add = [&bytes](char level, std::string text) {
        tracecore::scrambleText(reinterpret_cast<uint8_t*>(text.data()), text.size());
        const uint8_t head[] = {0xA4,
                                1,
                                0,
                                0,
                                static_cast<uint8_t>(level),
                                static_cast<uint8_t>(text.size()),
                                static_cast<uint8_t>(text.size() >> 8)};
        bytes.insert(bytes.end(), std::begin(head), std::end(head));
        bytes.insert(bytes.end(), text.begin(), text.end());
    };
    add('t', "07/14/17");
    for (size_t i = 0; i < records / 5; ++i) {
        char clock[16] = "";
        std::snprintf(clock, sizeof clock, "%02zu:%02zu:%02zu.%03zu", 10 + i / 3600000 % 10,
                      i / 60000 % 60, i / 1000 % 60, i % 1000);
        add('T', clock);
        add('>', "CStorageData::Restore");
        add('U', "template " + std::to_string(i) + " of the personal folder");
        add('E', "-2147024894 not found");
        add('<', {});
    }
    write(folder / name, bytes);
    return folder / name;
}

void readOnce(const std::string& path)
{
    std::vector<char> piece(1 << 20);
    const int file = open(path.c_str(), O_RDONLY);
    while (read(file, piece.data(), piece.size()) > 0)
        sink = static_cast<size_t>(piece[0]);
    close(file);
}

// descrambleOnce reads the file and makes each record's text plain, in place.
void descrambleOnce(const std::string& path)
{
    std::vector<uint8_t> bytes(fs::file_size(path));
    std::ifstream(path, std::ios::binary)
        .read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    size_t at = sizeof traceHeader - 1;
    while (bytes.size() - at >= tracecore::recordHeaderSize) {
        const size_t size = bytes[at + 5] | static_cast<size_t>(bytes[at + 6]) << 8;
        at += tracecore::recordHeaderSize;
        tracecore::unscrambleText(bytes.data() + at, size);
        at += size;
    }
    sink = at;
}

// reportPeak runs a program and prints the most memory that it held, in bytes. A child's peak counts
// from its parent's size, so the parent has to be small.
void reportPeak(char** arguments)
{
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t child = 0;
    const bool started =
        posix_spawn(&child, arguments[0], &actions, nullptr, arguments, environ) == 0;
    posix_spawn_file_actions_destroy(&actions);
    int status = 0;
    rusage used{};
    require(started && wait4(child, &status, 0, &used) == child && status == 0, "vlbackup failed");
    std::cout << 1024 * used.ru_maxrss << '\n';
}

std::string quoted(const fs::path& path)
{
    return '\'' + path.string() + '\'';
}

// peakOf has a small process of its own run a command.
double peakOf(const std::string& command)
{
    FILE* const report =
        popen((quoted(fs::read_symlink("/proc/self/exe")) + ' ' + command).c_str(), "r");
    long peak = 0;
    require(report && std::fscanf(report, "%ld", &peak) == 1 && pclose(report) == 0,
            "no peak was reported");
    return static_cast<double>(peak);
}

void backups(const fs::path& bin)
{
    const std::string large = backupFile("large.vlb", 200, 1 << 20);
    bench::CGroup group;
    const size_t verify = group.Add([&] { vlbackup({"verify", large}); });
    const size_t reading = group.Add([&] { readOnce(large); });
    group.Run();
    bench::row("vlbackup verify / reading the file once", "200 MiB", group.Ratios(verify, reading),
               1.3);
    fs::remove(large);

    const std::string many = backupFile("many.vlb", 100000, 100);
    std::vector<double> peaks;
    for (int round = 0; round < 9; ++round)
        peaks.push_back(peakOf(quoted(bin / "vlbackup") + " --json ls " + quoted(fs::path(many))) /
                        static_cast<double>(fs::file_size(many)));
    bench::row("vlbackup ls --json, peak memory / file bytes", "100,000 entries", peaks, 3);
}

void traces()
{
    const std::string trace = traceFile("large.trc3", 2000000);
    bench::CGroup group;
    const size_t cat = group.Add([&] { vltrace({"cat", trace}); });
    const size_t chrome = group.Add([&] { vltrace({"export", "--format", "chrome", trace}); });
    const size_t lines = group.Add([&] { vltrace({"export", "--format", "jsonl", trace}); });
    const size_t stats = group.Add([&] { vltrace({"stats", trace}); });
    const size_t floor = group.Add([&] { descrambleOnce(trace); });
    group.Run(9);
    const std::string workload =
        std::to_string(fs::file_size(trace) >> 20) + " MiB, 2 million records";
    const auto row = [&](const char* name, size_t which, double target) {
        bench::row(std::string("vltrace ") + name + " / descrambling the file once", workload,
                   group.Ratios(which, floor), target);
    };
    row("cat", cat, 2);
    row("export to Chrome", chrome, 4);
    row("export to JSON Lines", lines, 4);
    row("stats", stats, 1.5);
    fs::remove(trace);
}

void growth()
{
    const std::string few = backupFile("few.vlb", 1000, 64);
    const std::string many = backupFile("many.vlb", 100000, 64);
    const std::string brief = traceFile("brief.trc3", 1000);
    const std::string lengthy = traceFile("long.trc3", 100000);
    bench::CGroup group;
    std::vector<std::string> names;
    // The smaller one is repeated, so that the start of a command does not hide how it grows.
    const auto pair = [&](const std::string& name, auto body, const auto& less, const auto& more) {
        names.push_back(name);
        group.Add([=] {
            for (int i = 0; i < 100; ++i)
                body(less);
        });
        group.Add([=] { body(more); });
    };
    using arguments_t = std::vector<std::string>;
    pair("vlbackup verify", vlbackup, arguments_t{"verify", few}, arguments_t{"verify", many});
    pair("vlbackup ls", vlbackup, arguments_t{"ls", few}, arguments_t{"ls", many});
    pair("vlbackup diff", vlbackup, arguments_t{"diff", few, few}, arguments_t{"diff", many, many});
    pair("vltrace cat", vltrace, arguments_t{"cat", brief}, arguments_t{"cat", lengthy});
    pair("vltrace stats", vltrace, arguments_t{"stats", brief}, arguments_t{"stats", lengthy});
    pair("vltrace export to Chrome", vltrace, arguments_t{"export", "--format", "chrome", brief},
         arguments_t{"export", "--format", "chrome", lengthy});
    group.Run(9);
    for (size_t i = 0; i < names.size(); ++i) {
        std::vector<double> slopes = group.Slopes(2 * i, 2 * i + 1, 100);
        for (double& slope : slopes)
            slope += 1; // for the 100 times
        bench::row("slope of " + names[i], "1,000 to 100,000", slopes, 1.10);
    }
}

} // namespace

int main(int argc, char** argv)
{
    if (argc > 1) {
        reportPeak(argv + 1);
        return 0;
    }
    folder = fs::temp_directory_path() / ("vl_tools_bench." + std::to_string(getpid()));
    fs::create_directories(folder);
    backups(fs::absolute(argv[0]).parent_path());
    growth();
    traces();
    fs::remove_all(folder);
    return 0;
}
