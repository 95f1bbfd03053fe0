#include "commands.h"

#include "shared/commandline.h"
#include "verbs.h"

namespace {

void addCatOptions(const CCommand& command, Call& call)
{
    command.AddOption("name", call.other, "The stored name as ls shows it, or settings").Required();
}

void addNames(const CCommand& command, Call& call)
{
    command.AddOption("name", call.names,
                      "Only these names, as ls shows them; * stands for any characters, ? for one");
}

void addExtractOptions(const CCommand& command, Call& call)
{
    command.AddOption("folder", call.output, "Where the files go; made if it is missing")
        .Required();
    addNames(command, call);
    command.AddFlag("--force", call.force, "Replace files that exist");
}

void addVerifyOptions(const CCommand& command, Call& call)
{
    command.AddFlag("--strict", call.strict, "Exit status 1 for a warning, too");
}

void addDiffOptions(const CCommand& command, Call& call)
{
    command.AddOption("other", call.other, "The other backup");
    command.AddFlag("--live", call.live,
                    "Compare with the profile as it is now: vlhost, which must be beside, takes a "
                    "backup of it (Windows)");
    command.AddFlag("--restored", call.restored,
                    "The other was taken after restoring this one: pass what the format makes "
                    "different");
}

void addMergeOptions(const CCommand& command, Call& call)
{
    command.AddOption("other", call.other, "The second backup").Required();
    command.AddOption("-o,--output", call.output, "The file to write; - is standard output");
    command.AddOption("--prefer", call.prefer, "Which one's to take of what both have differently")
        .OneOf({"first", "second"});
    command.AddFlag("--dry-run", call.dryRun, "Write nothing, only show what it would be");
    command.AddFlag("--force", call.force, "Replace the file if it exists");
}

void addFindOptions(const CCommand& command, Call& call)
{
    command.AddOption("text", call.other, "What to look for").Required();
    command.AddFlag("-i,--ignore-case", call.fold, "Take a letter from A to Z for its small one");
}

void addHexOptions(const CCommand& command, Call& call)
{
    command.AddFlag("--all", call.all, "Show every byte of a long content");
}

void addOutput(const CCommand& command, Call& call)
{
    command.AddOption("output", call.output, "The file to write; - is standard output").Required();
    command.AddFlag("--force", call.force, "Replace the file if it exists");
}

// Verb is one command of the program. addOptions adds what the verb takes besides a backup, and may be null.
struct Verb {
    const char* name;
    const char* what;
    const char* example;
    int (*run)(const Call& call);
    void (*addOptions)(const CCommand& command, Call& call);
    const char* inputWhat = "The backup";
};
constexpr Verb table[] = {
    {"ls", "List everything in it, or what has one of the names", "vlbackup ls first.vlb \"*.vlm\"",
     verbs::ls, addNames},
    {"info", "Show its version, counts, sizes, checksum and verdict", "vlbackup info first.vlb",
     verbs::info, nullptr},
    {"verify",
     "Check its form, what it would restore, and its checksum; exit status 1 for an error",
     "vlbackup verify --strict first.vlb", verbs::verify, addVerifyOptions},
    {"find", "Find a text in its names, links, categories, settings and file contents",
     "vlbackup find -i first.vlb bank.example", verbs::find, addFindOptions},
    {"cat", "Write the bytes of a stored file, or the settings document",
     "vlbackup cat first.vlb bank.vlm >bank.vlm", verbs::cat, addCatOptions},
    {"extract", "Write its stored files below a folder; exit status 1 if one can't be",
     "vlbackup extract first.vlb out \"*.vlm\"", verbs::extract, addExtractOptions},
    {"diff", "Compare it with another, or with the profile; exit status 1 if they differ",
     "vlbackup diff --restored first.vlb second.vlb", verbs::diff, addDiffOptions},
    {"merge",
     "Make a new backup of all that is in two; exit status 1 if they differ in what both have",
     "vlbackup merge --prefer first first.vlb second.vlb -o both.vlb", verbs::merge,
     addMergeOptions},
    {"recover",
     "Make a new backup of what is intact in a damaged one; exit status 1 if some is lost",
     "vlbackup recover damaged.vlb recovered.vlb", verbs::recover, addOutput},
    {"redact", "Make a copy of the same shape without anything personal, for a support case",
     "vlbackup redact first.vlb case.vlb", verbs::redact, addOutput},
    {"to-json", "Write all of it as JSON, to edit or to process",
     "vlbackup to-json first.vlb first.json", verbs::toJson, addOutput},
    {"from-json", "Make a backup from the JSON that to-json writes",
     "vlbackup from-json first.json first.vlb", verbs::fromJson, addOutput, "The JSON document"},
    {"hex", "Show its bytes, element by element", "vlbackup hex first.vlb", verbs::hex,
     addHexOptions},
};

} // namespace

int runVlbackup(std::vector<std::string> arguments, std::istream& in, std::ostream& out,
                std::ostream& err)
{
    const CTool tool("vlbackup", "Looks into backups of the password manager. A backup named - is "
                                 "read from standard input.");
    Call call{in, out, err};
    tool.AddFlag("--json", call.json, "Print JSON");
    int status = exitStatus::good;
    for (const Verb& verb : table) {
        const CCommand command = tool.AddCommand(verb.name, verb.what, verb.example);
        command.AddOption("backup", call.input, verb.inputWhat).Required();
        if (verb.addOptions)
            verb.addOptions(command, call);
        command.Do([&] { status = verb.run(call); });
    }
    return runTool(tool, std::move(arguments), out, err, [&] { return status; });
}
