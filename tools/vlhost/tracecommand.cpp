#include "commands.h"
#include "common/text.h"
#include "pluginhost.h"
#include "print.h"
#include "shared/commandline.h"
#include "shared/windowsfiles.h"
#include "traceswitch.h"
#include "tracewatch.h"

#include <filesystem>
#include <functional>
#include <optional>

namespace fs = std::filesystem;

namespace {

constexpr char traceSchema[] = "vlhost-trace-1";
constexpr unsigned everyProcess = 0;
constexpr unsigned usualPatience = 90; // seconds: a process looks at the switch each 30

struct arguments_t {
    std::string until;
    std::string to = "file";
    std::string folder;
    std::optional<unsigned> process; // to be waited for
    unsigned timeout = usualPatience;
};

// The plug-in as tracing knows it: its file name and folder.
struct module_t {
    fs::path file = fs::path(programFolder()) / L"VLOnlineIDs.dll";

    explicit module_t(const std::string& plugin)
    {
        try {
            file = plugin.empty() ? registeredPluginPath() : wideFromUtf8(plugin);
        } catch (const CToolError&) {
            // tracing can be switched before the plug-in is registered
        }
    }
    std::wstring Name() const { return file.filename(); }
    std::wstring Folder() const { return file.parent_path(); }
    std::wstring Component() const { return file.stem(); }
};

std::string stateText(const traceSwitch_t& set, bool excluded)
{
    const DWORD value = set.doTrace.value_or(0);
    if (value == 0)
        return "off";
    if (value != 1 && !dayIsToCome(value))
        return "off: the last day was before " + dayOf(value);
    if (excluded)
        return "off for the plug-in: it is listed in ComponentsNOT";
    return value == 1 ? "on, with no end" : "on until the beginning of " + dayOf(value);
}

const char* targetText(const traceSwitch_t& set)
{
    switch (set.traceToFile.value_or(1)) {
    case static_cast<DWORD>(traceTarget_t::file):
        return "file";
    case static_cast<DWORD>(traceTarget_t::console):
        return "console";
    case static_cast<DWORD>(traceTarget_t::debugger):
        return "debugger, or a console without one";
    default:
        return "nowhere: TraceToFile is none of 1, 3 and 4";
    }
}

std::string timeText(const FILETIME& time)
{
    FILETIME local{};
    SYSTEMTIME fields{};
    FileTimeToLocalFileTime(&time, &local);
    FileTimeToSystemTime(&local, &fields);
    char text[32];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", fields.wYear, fields.wMonth,
                  fields.wDay, fields.wHour, fields.wMinute, fields.wSecond);
    return text;
}

// Values that are set beyond the switch itself, by their names.
Json::Value valuesOf(const traceSwitch_t& set)
{
    Json::Value json(Json::objectValue);
    const auto number = [&](const char* name, const std::optional<DWORD>& value) {
        if (value)
            json[name] = static_cast<Json::UInt>(*value);
    };
    const auto text = [&](const char* name, const std::wstring& value) {
        if (!value.empty())
            json[name] = utf8FromWide(value);
    };
    number("DoTrace", set.doTrace);
    number("TraceToFile", set.traceToFile);
    number("NewFileAlways", set.newFileAlways);
    number("noTimestamp", set.noTimestamp);
    text("FileName", set.fileName);
    text("TracePathLow", set.tracePathLow);
    text("TracePath", set.tracePath);
    return json;
}

Json::Value statusOf(const module_t& module)
{
    const traceSwitch_t set = readTraceSwitch();
    const std::wstring folder = set.Folder(module.Folder());
    Json::Value json(Json::objectValue);
    json["tracing"] = stateText(set, excludedFromTracing(module.Component()));
    json["to"] = targetText(set);
    json["folder"] = utf8FromWide(folder);
    json["values"] = valuesOf(set);
    json["files"] = Json::Value(Json::arrayValue);
    for (const auto& file : traceFilesIn(folder)) {
        Json::Value one(Json::objectValue);
        one["name"] = utf8FromWide(file.name);
        one["size"] = static_cast<Json::Value::UInt64>(file.size);
        one["modified"] = timeText(file.modified);
        if (file.process != 0)
            one["process"] = static_cast<Json::UInt>(file.process);
        one["open"] = file.open;
        json["files"].append(one);
    }
    return json;
}

// processesToFollow gives those that --wait means. Before anything is switched it refuses what
// can't be waited for or can't be seen from outside.
std::vector<DWORD> processesToFollow(const arguments_t& arguments, const module_t& module, bool on)
{
    if (!arguments.process)
        return {};
    if (on && arguments.to != "file")
        throw CToolError("--wait can prove it by a trace file alone", "leave --wait out",
                         exitStatus::wrongUsage);
    if (!readTraceSwitch().Stamped())
        throw CToolError("--wait needs a trace file for each process, and a value under "
                         "HKLM\\SOFTWARE\\Veltrano\\Tracing gives all one name",
                         "remove FileName, or NewFileAlways or noTimestamp");
    if (on && excludedFromTracing(module.Component()))
        throw CToolError("the plug-in writes no trace: it is listed in ComponentsNOT",
                         "remove it there, below HKLM\\SOFTWARE\\Veltrano\\Tracing");
    if (*arguments.process == everyProcess)
        return processesWith(module.Name());
    checkWatchable(*arguments.process, module.Name());
    return {*arguments.process};
}

// waitForAll waits for the processes. The switch is set and stays so, whatever they do.
Json::Value waitForAll(const std::vector<DWORD>& processes, const arguments_t& arguments,
                       const module_t& module, bool toFile)
{
    const auto deadline =
        std::chrono::steady_clock::now() + std::chrono::seconds(arguments.timeout);
    const std::wstring folder = readTraceSwitch().Folder(module.Folder());
    Json::Value list(Json::arrayValue);
    std::string late;
    for (const DWORD process : processes) {
        const followed_t result =
            waitUntilFollowed(process, module.Name(), folder, toFile, deadline);
        Json::Value one(Json::objectValue);
        one["process"] = static_cast<Json::UInt>(process);
        one["result"] = result == followed_t::yes     ? "followed"
                        : result == followed_t::ended ? "ended meanwhile"
                                                      : "not yet";
        list.append(one);
        if (result == followed_t::no)
            late += (late.empty() ? "" : ", ") + std::to_string(process);
    }
    if (!late.empty())
        throw CToolError("not followed within " + std::to_string(arguments.timeout) +
                             " seconds: process " + late,
                         std::string("tracing stays ") +
                             (toFile ? "on, until 'vlhost trace off'" : "off") +
                             "; a process looks when the plug-in is next called, and one that "
                             "traced before keeps its folder until it was switched off");
    return list;
}

// change switches, waits and prints.
void change(const arguments_t& arguments, const options_t& options, bool on,
            const std::function<void()>& makeChange)
{
    const module_t module(options.plugin);
    const std::vector<DWORD> processes = processesToFollow(arguments, module, on);
    CTraceSwitchGuard guard;
    makeChange();
    guard.Keep();
    Json::Value followed;
    if (arguments.process)
        followed = waitForAll(processes, arguments, module, on);
    Json::Value json = statusOf(module);
    if (arguments.process)
        json["followed"] = followed;
    printDone(traceSchema, json, options.json);
}

void switchOn(const arguments_t& arguments, const options_t& options)
{
    const DWORD until = arguments.until.empty() ? 1 : noonOf(arguments.until);
    const std::wstring folder = wideFromUtf8(arguments.folder);
    const bool full = folder.size() > 2 &&
                      (folder.starts_with(L"\\\\") || folder[1] == L':' || folder[0] == L'%');
    if (!folder.empty() && !full)
        throw CToolError("'" + arguments.folder + "' is no full path",
                         "every process would take it from its own current folder",
                         exitStatus::wrongUsage);
    const traceTarget_t target = arguments.to == "console"    ? traceTarget_t::console
                                 : arguments.to == "debugger" ? traceTarget_t::debugger
                                                              : traceTarget_t::file;
    change(arguments, options, true, [&] { switchTraceOn(until, target, folder); });
}

void addWait(const CCommand& command, const std::shared_ptr<arguments_t>& arguments)
{
    command
        .AddTaken<unsigned>(
            "--wait",
            [arguments](const std::vector<unsigned>& given) {
                arguments->process = given.empty() ? everyProcess : given.front();
            },
            "Wait until that process, or without a number every one that has the plug-in loaded, "
            "has followed: its trace file is open, or closed")
        .Values(0, 1)
        .ValueName("PROCESS");
    command.AddOption("--timeout", arguments->timeout, "Seconds that --wait waits at the most")
        .ShowDefault();
}

} // namespace

void addTraceCommands(const CCommand& tool, const options_t& options)
{
    const CCommand trace = tool.AddGroup("trace", "The plug-in's tracing");
    const auto arguments = std::make_shared<arguments_t>();

    const CCommand on = trace.AddCommand(
        "on", "Switch it on", "vlhost trace on --dir C:\\traces --until 2026-12-31 --wait");
    on.AddOption("--until", arguments->until, "The first day without it, such as 2026-12-31");
    on.AddOption("--to", arguments->to, "Where it goes")
        .OneOf({"file", "console", "debugger"})
        .ShowDefault();
    on.AddOption("--dir", arguments->folder,
                 "Folder of the trace files, which the plug-in makes; it stays set");
    addWait(on, arguments);
    on.Do([arguments, &options] { switchOn(*arguments, options); });

    const CCommand off = trace.AddCommand("off", "Switch it off", "vlhost trace off --wait 4711");
    addWait(off, arguments);
    off.Do([arguments, &options] { change(*arguments, options, false, switchTraceOff); });

    const CCommand status = trace.AddCommand(
        "status", "What is set, and which trace files lie there", "vlhost trace status");
    status.Do(
        [&options] { printResult(traceSchema, statusOf(module_t(options.plugin)), options.json); });
}
