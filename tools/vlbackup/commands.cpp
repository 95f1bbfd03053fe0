#include "commands.h"

#include "difference.h"
#include "formats/text/printable.h"
#include "report.h"
#include "shared/backupinput.h"
#include "shared/commandline.h"
#include "shared/inputfile.h"
#include "shared/jsontext.h"

#include <algorithm>
#include <functional>

namespace {

struct options_t {
    std::string backup;
    std::string other; // a second backup, or a stored name
    bool json = false;
    bool strict = false;
    bool restored = false;
};

// A backup's bytes and the view of them.
struct openBackup_t {
    openBackup_t(const std::string& name, std::istream& in)
        : bytes(readInput(name, in)), readable(decodeBackup(bytes, view))
    {}

    std::vector<uint8_t> bytes;
    CBackupView view;
    bool readable;
};

// CCommands has one operation for each verb. Each gives the exit status.
class CCommands
{
public:
    CCommands(const options_t& options, std::istream& in, std::ostream& out)
        : m_options(options), m_in(in), m_out(out)
    {}

    int List() const
    {
        const openBackup_t backup = Open(m_options.backup);
        if (m_options.json)
            WriteJson(listJson(backup.view));
        else
            listText(backup.view, m_out);
        return exitStatus::good;
    }

    int Info() const
    {
        const openBackup_t backup = Open(m_options.backup);
        if (m_options.json)
            WriteJson(infoJson(backup.view));
        else
            infoText(backup.view, m_out);
        return exitStatus::good;
    }

    int Cat() const
    {
        const openBackup_t backup = Open(m_options.backup);
        const auto content = ContentOf(backup.view);
        if (m_options.json) {
            Json::Value value;
            value["name"] = m_options.other;
            value["size"] = Json::UInt64{content.size()};
            value["base64"] = base64(content);
            WriteJson(value);
        } else {
            m_out.write(reinterpret_cast<const char*>(content.data()),
                        static_cast<std::streamsize>(content.size()));
        }
        return exitStatus::good;
    }

    // In JSON, bytes that are no backup are a finding as well; a reader gets a better line.
    int Verify() const
    {
        const openBackup_t backup(m_options.backup, m_in);
        if (m_options.json)
            WriteJson(verifyJson(backup.view));
        else if (backup.readable)
            verifyText(backup.view, m_out);
        else
            refuseBackup(m_options.backup, backup.bytes, backup.view);
        const bool good = m_options.strict ? backup.view.Sound() : backup.view.Restorable();
        return good ? exitStatus::good : exitStatus::failed;
    }

    // After a restore of the first, what the format itself makes different is reported with its
    // reason, and is no difference.
    int Diff() const
    {
        if (m_options.backup == "-" && m_options.other == "-")
            throw CToolError("both backups can't come from standard input", "save one to a file",
                             exitStatus::wrongUsage);
        const openBackup_t first = Open(m_options.backup);
        const openBackup_t second = Open(m_options.other);
        const auto differences = compareBackups(first.view, second.view);
        bool equal = true;
        Json::Value value;
        value["equal"] = differences.empty();
        value["differences"] = Json::arrayValue;
        for (const BackupDifference& difference : differences) {
            const std::string reason =
                m_options.restored ? reasonAfterRestore(difference) : std::string();
            equal = equal && !reason.empty();
            Json::Value entry;
            entry["element"] = difference.element;
            entry["item"] = difference.item;
            entry["what"] = difference.what;
            if (m_options.restored)
                entry["reason"] = reason;
            value["differences"].append(std::move(entry));
            if (!m_options.json)
                m_out << difference.element << (difference.item.empty() ? "" : " ")
                      << printable(difference.item) << ": " << printable(difference.what)
                      << (reason.empty() ? "" : " (" + reason + ")") << '\n';
        }
        if (m_options.json)
            WriteJson(value);
        else if (equal)
            m_out << (differences.empty() ? "equal\n" : "equal except for that\n");
        return equal ? exitStatus::good : exitStatus::failed;
    }

private:
    openBackup_t Open(const std::string& name) const
    {
        openBackup_t backup(name, m_in);
        if (!backup.readable)
            refuseBackup(name, backup.bytes, backup.view);
        return backup;
    }

    void WriteJson(const Json::Value& value) const { m_out << jsonText(value, true) << '\n'; }

    std::span<const uint8_t> ContentOf(const CBackupView& backup) const
    {
        // Of files with the same name, a restore leaves the last on the disk.
        const auto file =
            std::find_if(backup.files.rbegin(), backup.files.rend(),
                         [&](const BackupFile& f) { return f.name == m_options.other; });
        if (file != backup.files.rend())
            return file->content;
        const std::string& document = backup.settings.document;
        if (m_options.other == "settings" && backup.settings.form == SettingsForm::document)
            return {reinterpret_cast<const uint8_t*>(document.data()), document.size()};
        throw CToolError("no " + m_options.other + " in " + shownInput(m_options.backup),
                         "vlbackup ls shows the stored names");
    }

    const options_t& m_options;
    std::istream& m_in;
    std::ostream& m_out;
};

} // namespace

int runVlbackup(std::vector<std::string> arguments, std::istream& in, std::ostream& out,
                std::ostream& err)
{
    CLI::App app("Looks into backups of the password manager. A backup named - is read from "
                 "standard input.",
                 "vlbackup");
    app.require_subcommand(1);
    app.fallthrough();
    options_t options;
    const CCommands commands(options, in, out);
    app.add_flag("--json", options.json, "Print JSON");
    std::function<int()> chosen;
    const auto add = [&](const char* verb, const char* what, int (CCommands::*operation)() const) {
        CLI::App* const command = app.add_subcommand(verb, what);
        command->add_option("backup", options.backup, "The backup")->required();
        command->callback(
            [&, operation] { chosen = [&, operation] { return (commands.*operation)(); }; });
        return command;
    };
    add("ls", "List everything in it", &CCommands::List);
    add("info", "Show its version, counts, sizes and verdict", &CCommands::Info);
    add("cat", "Write the bytes of a stored file, or the settings document", &CCommands::Cat)
        ->add_option("name", options.other, "The stored name as ls shows it, or settings")
        ->required();
    add("verify", "Check its form and what it would restore; exit status 1 for an error",
        &CCommands::Verify)
        ->add_flag("--strict", options.strict, "Exit status 1 for a warning, too");
    CLI::App* const diff =
        add("diff", "Compare it with another; exit status 1 if they differ", &CCommands::Diff);
    diff->add_option("other", options.other, "The other backup")->required();
    diff->add_flag("--restored", options.restored,
                   "The other was taken after restoring this one: pass what the format makes "
                   "different");
    return runTool(app, std::move(arguments), out, err, [&] { return chosen(); });
}
