#include "commands.h"

#include <iostream>

#include "common/commandline.h"
#include "common/outputfile.h"
#include "takebackup.h"
#include "print.h"
#include "secretstore.h"

void addBackupCommand(CLI::App& app, const options_t& options)
{
    CLI::App* const command =
        app.add_subcommand("backup", "Take a backup of the user's stored logons");
    struct arguments_t {
        std::string file;
        bool force = false;
    };
    const auto arguments = std::make_shared<arguments_t>();
    command->add_option("file", arguments->file, "Where the bytes go")->required();
    command->add_flag("--force", arguments->force, "Replace the file");
    command->callback([arguments, &options] {
        refuseExisting(arguments->file, arguments->force);
        const CPluginHost host(options.plugin);
        const backup_t backup = takeBackup(host);
        COutputFile file(arguments->file, arguments->force, {}, std::cout);
        file.Stream().write(reinterpret_cast<const char*>(backup.bytes.data()),
                            static_cast<std::streamsize>(backup.bytes.size()));
        file.Complete();
        Json::Value json(Json::objectValue);
        json["file"] = arguments->file;
        json["bytes"] = backup.bytes.size();
        json["secrets"] = Json::Value(Json::arrayValue);
        for (const auto& name : backup.secretNames)
            json["secrets"].append(name);
        printResult(json, options.json);
    });
}
