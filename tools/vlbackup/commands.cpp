#include "commands.h"

#include "difference.h"
#include "extraction.h"
#include "formats/text/printable.h"
#include "report.h"
#include "shared/backupinput.h"
#include "shared/commandline.h"
#include "shared/inputfile.h"
#include "shared/jsontext.h"

#include <algorithm>
#include <optional>
#include <unordered_set>

namespace {

// Call is one run of a verb: its arguments, and the streams.
struct Call {
    std::istream& in;
    std::ostream& out;
    std::ostream& err;
    std::string backup = {};
    std::string other = {}; // a second backup, or a stored name
    std::string folder = {};
    bool json = false;
    bool strict = false;
    bool restored = false;
    bool force = false;
};

// OpenBackup is a backup's bytes and the view of them, with the findings counted only.
struct OpenBackup {
    OpenBackup(const std::string& name, std::istream& in)
        : bytes(readInput(name, in)), readable(decodeBackup(bytes, view))
    {}

    std::vector<uint8_t> bytes;
    CBackupView view{[](const BackupFinding&) {}};
    bool readable;
};

OpenBackup openBackup(const std::string& name, std::istream& in)
{
    OpenBackup backup(name, in);
    if (!backup.readable)
        refuseBackup(name, backup.bytes, backup.view);
    return backup;
}

int list(const Call& call)
{
    const OpenBackup backup = openBackup(call.backup, call.in);
    if (call.json)
        listJson(backup.view, call.out);
    else
        listText(backup.view, call.out);
    return exitStatus::good;
}

int info(const Call& call)
{
    const OpenBackup backup = openBackup(call.backup, call.in);
    if (call.json)
        infoJson(backup.view, call.out);
    else
        infoText(backup.view, call.out);
    return exitStatus::good;
}

[[noreturn]] void refuseName(const Call& call)
{
    throw CToolError("no " + call.other + " in " + shownInput(call.backup),
                     "vlbackup ls shows the stored names");
}

// Of files with the same name, a restore leaves the last on the disk.
std::optional<BackupFile> findFile(const CBackupView& backup, const std::string& name)
{
    for (size_t i = backup.files.size(); i-- > 0;)
        if (BackupFile file = backup.files[i]; file.name == name)
            return file;
    return std::nullopt;
}

std::span<const uint8_t> contentOf(const CBackupView& backup, const Call& call)
{
    if (const auto file = findFile(backup, call.other))
        return file->content;
    const std::string& document = backup.settings.document;
    if (call.other == "settings" && backup.settings.form == SettingsForm::document)
        return {reinterpret_cast<const uint8_t*>(document.data()), document.size()};
    refuseName(call);
}

int cat(const Call& call)
{
    const OpenBackup backup = openBackup(call.backup, call.in);
    const auto content = contentOf(backup.view, call);
    if (call.json) {
        CJsonDocument document(call.out);
        document.Base64("base64", content);
        document.Member("name", call.other);
        document.Member("size", Json::UInt64{content.size()});
    } else {
        call.out.write(reinterpret_cast<const char*>(content.data()),
                       static_cast<std::streamsize>(content.size()));
    }
    return exitStatus::good;
}

void addCatOptions(CLI::App& command, Call& call)
{
    command.add_option("name", call.other, "The stored name as ls shows it, or settings")
        ->required();
}

// COutcomes reports what became of each stored file, as text or in a JSON document.
class COutcomes
{
public:
    explicit COutcomes(const Call& call) : m_call(call)
    {
        if (call.json)
            m_document.emplace(call.out).BeginList("files");
    }
    ~COutcomes()
    {
        if (m_document)
            m_document->EndList();
    }
    COutcomes(const COutcomes&) = delete;
    COutcomes& operator=(const COutcomes&) = delete;

    void Written(const BackupFile& file, const std::string& path)
    {
        if (m_document)
            Item(file, "path", path);
        else
            m_call.out << printable(path) << '\n';
    }

    void Refused(const BackupFile& file, const std::string& why)
    {
        m_status = exitStatus::failed;
        if (m_document)
            Item(file, "failure", why);
        else
            m_call.err << "vlbackup: " << printable(why) << '\n';
    }

    int Status() const noexcept { return m_status; }

private:
    void Item(const BackupFile& file, const char* what, const std::string& text)
    {
        Json::Value item;
        item["name"] = file.name;
        item[what] = text;
        m_document->Item(item);
    }

    const Call& m_call;
    std::optional<CJsonDocument> m_document;
    int m_status = exitStatus::good;
};

// lastOfEach says of each file whether a restore leaves it on the disk.
std::vector<bool> lastOfEach(const CBackupFiles& files)
{
    std::vector<bool> last(files.size());
    std::unordered_set<std::u16string> later;
    for (size_t i = files.size(); i-- > 0;)
        last[i] = later.insert(files[i].Key()).second;
    return last;
}

int extract(const Call& call)
{
    if (call.folder == "-")
        throw CToolError("a folder can't be standard output", "vlbackup cat writes one file there",
                         exitStatus::wrongUsage);
    const OpenBackup backup = openBackup(call.backup, call.in);
    const CBackupFiles& files = backup.view.files;
    const auto chosen = call.other.empty() ? std::nullopt : findFile(backup.view, call.other);
    if (!call.other.empty() && !chosen)
        refuseName(call);
    const CExtraction extraction(call.folder, call.force, call.backup);
    COutcomes outcomes(call);
    const auto write = [&](const BackupFile& file) {
        try {
            outcomes.Written(file, extraction.Write(file));
        } catch (const CToolError& error) {
            outcomes.Refused(file, error.what());
        }
    };
    if (chosen) {
        write(*chosen);
        return outcomes.Status();
    }
    const std::vector<bool> last = lastOfEach(files);
    for (size_t i = 0; i < files.size(); ++i) {
        const BackupFile file = files[i];
        if (last[i])
            write(file);
        else
            outcomes.Refused(file, '"' + file.name +
                                       "\" is the same file as a later one, and isn't written "
                                       "(a restore keeps the last)");
    }
    return outcomes.Status();
}

void addExtractOptions(CLI::App& command, Call& call)
{
    command.add_option("folder", call.folder, "Where the files go; made if it is missing")
        ->required();
    command.add_option("name", call.other, "The one stored name to write, as ls shows it");
    command.add_flag("--force", call.force, "Replace files that exist");
}

// In JSON, bytes that are no backup are a finding as well; a reader gets a better line.
int verify(const Call& call)
{
    const std::vector<uint8_t> bytes = readInput(call.backup, call.in);
    std::optional<CJsonDocument> document;
    if (call.json)
        document.emplace(call.out).BeginList("findings");
    CBackupView view([&](const BackupFinding& finding) {
        if (document)
            document->Item(findingJson(finding));
        else
            call.out << printable(findingText(finding)) << '\n';
    });
    if (!decodeBackup(bytes, view)) {
        if (!document)
            refuseBackup(call.backup, bytes, view);
        view.Find({BackupFinding::Grade::error, "backup", view.refusal});
    }
    if (document) {
        document->EndList();
        document->Member("verdict", verdictName(view));
    } else {
        call.out << verdictText(view) << '\n';
    }
    const bool good = call.strict ? view.Sound() : view.Restorable();
    return good ? exitStatus::good : exitStatus::failed;
}

void addVerifyOptions(CLI::App& command, Call& call)
{
    command.add_flag("--strict", call.strict, "Exit status 1 for a warning, too");
}

// After a restore of the first, what the format itself makes different is reported with its reason,
// and is no difference.
int diff(const Call& call)
{
    if (call.backup == "-" && call.other == "-")
        throw CToolError("both backups can't come from standard input", "save one to a file",
                         exitStatus::wrongUsage);
    const OpenBackup first = openBackup(call.backup, call.in);
    const OpenBackup second = openBackup(call.other, call.in);
    std::vector<BackupDifference> differences = compareBackups(first.view, second.view);
    if (call.restored)
        for (BackupDifference& difference : differences)
            difference.reason = reasonAfterRestore(difference);
    if (call.json)
        diffJson(differences, call.restored, call.out);
    else
        diffText(differences, call.out);
    const bool equal = std::all_of(differences.begin(), differences.end(),
                                   [](const auto& found) { return !found.reason.empty(); });
    return equal ? exitStatus::good : exitStatus::failed;
}

void addDiffOptions(CLI::App& command, Call& call)
{
    command.add_option("other", call.other, "The other backup")->required();
    command.add_flag("--restored", call.restored,
                     "The other was taken after restoring this one: pass what the format makes "
                     "different");
}

// Verb is one command of the program. run gives the exit status; addOptions adds what the verb
// takes besides a backup, and may be null.
struct Verb {
    const char* name;
    const char* what;
    int (*run)(const Call& call);
    void (*addOptions)(CLI::App& command, Call& call);
};
constexpr Verb verbs[] = {
    {"ls", "List everything in it", list, nullptr},
    {"info", "Show its version, counts, sizes and verdict", info, nullptr},
    {"cat", "Write the bytes of a stored file, or the settings document", cat, addCatOptions},
    {"extract", "Write its stored files below a folder; exit status 1 if one can't be", extract,
     addExtractOptions},
    {"verify", "Check its form and what it would restore; exit status 1 for an error", verify,
     addVerifyOptions},
    {"diff", "Compare it with another; exit status 1 if they differ", diff, addDiffOptions},
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
    Call call{in, out, err};
    app.add_flag("--json", call.json, "Print JSON");
    int status = exitStatus::good;
    for (const Verb& verb : verbs) {
        CLI::App* const command = app.add_subcommand(verb.name, verb.what);
        command->add_option("backup", call.backup, "The backup")->required();
        if (verb.addOptions)
            verb.addOptions(*command, call);
        command->callback([&] { status = verb.run(call); });
    }
    return runTool(app, std::move(arguments), out, err, [&] { return status; });
}
