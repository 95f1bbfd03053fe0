#include "commands.h"
#include "common/text.h"
#include "doctor.h"
#include "formats/text/printable.h"
#include "formats/trace/levels.h"
#include "formats/trace/tracereader.h"
#include "messagetemplates.h"
#include "pluginhost.h"
#include "print.h"
#include "shared/commandline.h"
#include "shared/filesystem.h"
#include "shared/habits.h"
#include "shared/inputfile.h"
#include "shared/jsontext.h"
#include "shared/outputfile.h"
#include "takebackup.h"
#include "traceswitch.h"
#include "tracewatch.h"
#include "vlbackup/redaction.h"
#include "ziparchive.h"

#include <filesystem>
#include <fstream>
#include <iostream>

using namespace tracecore;

namespace {

constexpr char readme[] =
    "What 'vlhost bundle' packs for who helps: the state of an installation, with nothing of the\n"
    "user's own.\n\n"
    "doctor.json   what is good and what isn't; what was found is left out, as it may be a path\n"
    "version.txt   versions of the program, of its formats and of the system\n"
    "trace-N.txt   the newest traces, decoded. All that doesn't come from the plug-in's own file,\n"
    "              such as names, paths and addresses, is replaced by <...>\n"
    "backup.vlb    a backup of the same shape as the user's, with its texts and contents "
    "replaced\n";

constexpr size_t newestTraces = 5;

struct arguments_t {
    std::string file;
    bool force = false;
};

std::string doctorText(const options_t& options)
{
    std::vector<checkup_t> checkups = examine(options.plugin);
    for (checkup_t& one : checkups)
        one.what.clear();
    return jsonText(jsonOf(checkups), true) + '\n';
}

std::string systemText()
{
    OSVERSIONINFOW system{};
    system.dwOSVersionInfoSize = sizeof system;
    GetVersionExW(&system);
    return "\nWindows " + std::to_string(system.dwMajorVersion) + '.' +
           std::to_string(system.dwMinorVersion) + '.' + std::to_string(system.dwBuildNumber) +
           '\n';
}

// lineOf is one record. A status and the stamps are numbers; the rest is what the templates leave.
std::string lineOf(const traceRecord_t& record, const CMessageTemplates& templates)
{
    const levelInfo_t* const level = levelOf(record.level);
    std::string text = record.text;
    std::string status;
    if (level && level->use == levelUse_t::status) {
        const size_t end = text.find_first_not_of("-0123456789");
        status = text.substr(0, end) + ' ';
        text.erase(0, status.size());
    }
    const bool isStamp = level && level->shape && hasShape(text, *level->shape);
    return std::to_string(record.thread) + ' ' + record.level + ' ' + status +
           (isStamp || text.empty() ? text : printable(templates.Redact(text))) + '\n';
}

std::string decodedTrace(const std::filesystem::path& file, const CMessageTemplates& templates)
{
    std::ifstream stream(file, std::ios::binary);
    std::vector<uint8_t> piece(1 << 16);
    traceReader_t reader;
    std::string text;
    const auto takeAll = [&] {
        while (const auto item = reader.next()) {
            if (const auto* const header = std::get_if<traceHeader_t>(&*item))
                for (const std::string& line : header->lines)
                    text += printableLines(templates.Redact(line + "\r\n"));
            else if (const auto* const record = std::get_if<traceRecord_t>(&*item))
                text += lineOf(*record, templates);
            else
                text += "damaged here\n";
        }
    };
    while (stream.read(reinterpret_cast<char*>(piece.data()),
                       static_cast<std::streamsize>(piece.size())) ||
           stream.gcount() > 0) {
        reader.append(std::span(piece).first(static_cast<size_t>(stream.gcount())));
        takeAll();
    }
    reader.finish();
    takeAll();
    return text;
}

size_t addTraces(CZipArchive& archive, const std::wstring& plugin)
{
    const std::filesystem::path path(plugin);
    const std::wstring folder = readTraceSwitch().Folder(path.parent_path().wstring() + L'\\');
    std::vector<traceFile_t> files = traceFilesIn(folder);
    if (files.size() > newestTraces)
        files.erase(files.begin(), files.end() - newestTraces);
    if (files.empty())
        return 0;
    const CMessageTemplates templates(readInput(utf8FromWide(plugin), std::cin));
    for (size_t i = 0; i < files.size(); ++i)
        archive.Add("trace-" + std::to_string(i + 1) + ".txt",
                    decodedTrace(pathOf(utf8FromWide(folder + files[i].name)), templates));
    return files.size();
}

bool addBackup(CZipArchive& archive, const options_t& options)
{
    try {
        const CPluginHost host(options.plugin);
        std::ostringstream redacted;
        redactBackup(takeBackup(host).bytes, redacted);
        archive.Add("backup.vlb", redacted.str());
        return true;
    } catch (const CToolError&) {
        return false; // which doctor.json explains
    }
}

void bundle(const arguments_t& arguments, const options_t& options, const std::string& version)
{
    refuseExisting(arguments.file, arguments.force);
    CZipArchive archive;
    archive.Add("README.txt", readme);
    archive.Add("doctor.json", doctorText(options));
    archive.Add("version.txt", version + systemText());
    const std::wstring plugin = options.plugin.empty()
                                    ? registeredPluginPath(L"UIElements\\BackupRestore")
                                    : wideFromUtf8(options.plugin);
    Json::Value json(Json::objectValue);
    json["file"] = arguments.file;
    json["traces"] = plugin.empty() ? 0 : addTraces(archive, plugin);
    json["backup"] = addBackup(archive, options);
    const std::string bytes = archive.Finish();
    json["bytes"] = bytes.size();
    COutputFile file(arguments.file, arguments.force, {}, std::cout);
    file.Stream() << bytes;
    file.Complete();
    if (arguments.file != "-")
        printDone("vlhost-bundle-1", json, options.json);
}

} // namespace

void addBundleCommand(const CCommand& tool, const options_t& options)
{
    const CCommand command = tool.AddCommand(
        "bundle", "Pack what a helper needs to know, with nothing of the user's own in it",
        "vlhost bundle support.zip");
    const auto arguments = std::make_shared<arguments_t>();
    command.AddOption("file", arguments->file, "The ZIP archive; - is standard output").Required();
    command.AddFlag("--force", arguments->force, "Replace the file");
    command.Do([arguments, &options] { bundle(*arguments, options, versionText("vlhost")); });
}
