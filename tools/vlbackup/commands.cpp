#include "commands.h"

#include "common/usage.h"
#include "difference.h"
#include "document.h"
#include "report.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace {

constexpr int done = 0;
constexpr int amiss = 1;
constexpr int failed = 2;

// A failure that ends the program; what() is the one line told.
struct failure : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// A backup's bytes and the view of them.
struct openBackup {
    std::string name;
    std::vector<uint8_t> bytes;
    CBackupView view;
    bool readable = false;
};

std::vector<uint8_t> readAll(std::istream& from)
{
    std::vector<uint8_t> bytes;
    char block[65536];
    do {
        from.read(block, sizeof block);
        bytes.insert(bytes.end(), block, block + from.gcount());
    } while (from);
    return bytes;
}

void open(const std::string& name, std::istream& in, openBackup& backup)
{
    backup.name = name;
    if (name == "-") {
        backup.bytes = readAll(in);
    } else {
        const std::filesystem::path path(std::u8string(name.begin(), name.end()));
        std::error_code error;
        std::ifstream file;
        if (!std::filesystem::is_directory(path, error))
            file.open(path, std::ios::binary);
        if (!file.is_open())
            throw failure("can't read " + printable(name) +
                          " (give a saved backup's path, or - for standard input)");
        backup.bytes = readAll(file);
    }
    backup.readable = backup.view.Decode(backup.bytes);
    if (backup.readable)
        completeFindings(backup.view);
}

void openReadable(const std::string& name, std::istream& in, openBackup& backup)
{
    open(name, in, backup);
    if (!backup.readable)
        throw failure(printable(name) + " is no backup: " + backup.view.findings.back().what +
                      " (vlbackup verify tells more)");
}

void writeJson(const Json::Value& value, std::ostream& out)
{
    out << jsonText(value, true) << '\n';
}

std::span<const uint8_t> contentOf(const openBackup& backup, const std::string& name)
{
    // The last of a name is what a restore leaves on the disk.
    const auto& files = backup.view.files;
    const auto file = std::find_if(files.rbegin(), files.rend(),
                                   [&](const BackupFile& f) { return f.name == name; });
    if (file != files.rend())
        return file->content;
    const std::string& document = backup.view.settings.document;
    if (name == "settings" && backup.view.settings.form == SettingsForm::document)
        return {reinterpret_cast<const uint8_t*>(document.data()), document.size()};
    throw failure("no " + printable(name) + " in " + printable(backup.name) +
                  " (vlbackup ls tells the stored names)");
}

int cat(const openBackup& backup, const std::string& name, bool json, std::ostream& out)
{
    const auto content = contentOf(backup, name);
    if (json) {
        Json::Value value;
        value["name"] = cleanUtf8(name);
        value["size"] = Json::UInt64{content.size()};
        value["base64"] = base64(content);
        writeJson(value, out);
    } else {
        out.write(reinterpret_cast<const char*>(content.data()),
                  static_cast<std::streamsize>(content.size()));
    }
    return done;
}

// restored: the second was taken after restoring the first; what the format itself makes different
//           is then told with its reason, and no difference
int diff(const openBackup& first, const openBackup& second, bool restored, bool json,
         std::ostream& out)
{
    const auto differences = compareBackups(first.view, second.view);
    bool amissAny = false;
    Json::Value value;
    value["equal"] = differences.empty();
    value["differences"] = Json::arrayValue;
    for (const BackupDifference& difference : differences) {
        Json::Value entry;
        entry["element"] = difference.element;
        entry["item"] = cleanUtf8(difference.item);
        entry["what"] = cleanUtf8(difference.what);
        const std::string reason = restored ? reasonAfterRestore(difference) : std::string();
        amissAny = amissAny || reason.empty();
        if (restored)
            entry["reason"] = reason;
        if (!json) {
            out << difference.element << (difference.item.empty() ? "" : " ")
                << printable(difference.item) << ": " << printable(difference.what)
                << (reason.empty() ? "" : " (" + reason + ")") << '\n';
        }
        value["differences"].append(std::move(entry));
    }
    if (json)
        writeJson(value, out);
    else if (differences.empty())
        out << "equal\n";
    else if (!amissAny)
        out << "equal but for that\n";
    return amissAny ? amiss : done;
}

} // namespace

int runVlbackup(std::vector<std::string> arguments, std::istream& in, std::ostream& out,
                std::ostream& err)
{
    // Told at the end of each command, since a full disk shows only when the last block goes out.
    const auto finish = [&out](int status) {
        if (!out.flush())
            throw failure("can't write the output (is the disk full, or the reader gone?)");
        return status;
    };
    CLI::App app("Looks into backups of the password manager. A backup named - is read from "
                 "standard input.",
                 "vlbackup");
    app.require_subcommand(1);
    app.fallthrough();
    bool json = false;
    app.add_flag("--json", json, "Tell it as JSON");
    std::string name;
    std::string other;
    const auto command = [&](const char* verb, const char* what) {
        CLI::App* sub = app.add_subcommand(verb, what);
        sub->add_option("backup", name, "The backup")->required();
        return sub;
    };
    const auto* ls = command("ls", "List everything in it, readable");
    const auto* info = command("info", "Tell its version, counts and sizes");
    auto* catCommand = command("cat", "Write the bytes of a stored file, or the settings document");
    catCommand->add_option("name", other, "The stored name as ls shows it, or settings")
        ->required();
    const auto* verify =
        command("verify", "Check its form, and the stored names; exit status 1 if it isn't sound");
    auto* diffCommand = command("diff", "Compare it with another; exit status 1 if they differ");
    diffCommand->add_option("other", other, "The other backup")->required();
    bool restored = false;
    diffCommand->add_flag(
        "--restored", restored,
        "The other was taken after restoring this one: pass what the format makes different");
    try {
        std::reverse(arguments.begin(), arguments.end()); // as the parser wants them
        app.parse(std::move(arguments));
        openBackup backup;
        if (verify->parsed()) {
            open(name, in, backup);
            if (json)
                writeJson(verifyJson(backup.view), out);
            else
                verifyText(backup.view, out);
            return finish(backup.view.Sound() ? done : amiss);
        }
        if (diffCommand->parsed() && name == "-" && other == "-")
            throw failure("both backups can't come from standard input (save one to a file)");
        openReadable(name, in, backup);
        if (catCommand->parsed())
            return finish(cat(backup, other, json, out));
        if (diffCommand->parsed()) {
            openBackup second;
            openReadable(other, in, second);
            return finish(diff(backup, second, restored, json, out));
        }
        if (ls->parsed() && json)
            writeJson(listJson(backup.view), out);
        else if (ls->parsed())
            listText(backup.view, out);
        else if (info->parsed() && json)
            writeJson(infoJson(backup.view), out);
        else
            infoText(backup.view, out);
        return finish(done);
    } catch (const CLI::Success&) {
        out << app.help();
        return done;
    } catch (const CLI::ParseError& error) {
        err << "vlbackup: " << printable(usageError(app, error))
            << " (vlbackup --help tells the commands)\n";
    } catch (const failure& error) {
        err << "vlbackup: " << error.what() << '\n';
    } catch (const std::bad_alloc&) {
        err << "vlbackup: not enough memory for the backup (close other programs and try again)\n";
    }
    return failed;
}
