#include "commands.h"
#include "common/text.h"
#include "print.h"
#include "secretstore.h"
#include "shared/commandline.h"
#include "shared/habits.h"
#include "shared/systemerror.h"
#include "storage/settings.h"

namespace {

struct arguments_t {
    std::string name = utf8FromWide(protectedStorage);
    std::string value;
    int descriptor = 0;
};

constexpr char secretSchema[] = "vlhost-secret-1";

Json::Value done(const char* what, const std::string& name)
{
    Json::Value json(Json::objectValue);
    json[what] = name;
    return json;
}

void addSecretCommands(CLI::App& app, const options_t& options)
{
    CLI::App* const secret =
        app.add_subcommand("secret", "The named secret that the host keeps beside a backup");
    secret->require_subcommand(1);
    const auto arguments = std::make_shared<arguments_t>();
    secret->add_option("--name", arguments->name, "Its name")->capture_default_str();

    CLI::App* const store =
        secret->add_subcommand("store", "Store it; the value is never on the command line");
    store->add_option("--from", arguments->descriptor, "File descriptor to read it from")
        ->capture_default_str();
    addExample(*store, "vlhost secret store < password.txt");
    store->callback([arguments, &options] {
        const CSecretBytes value = readSecretFrom(arguments->descriptor);
        CSecretStore().Store(wideFromUtf8(arguments->name), value);
        printDone(secretSchema, done("stored", arguments->name), options.json);
    });

    const auto target = std::make_shared<int>(1);
    CLI::App* const show = secret->add_subcommand("read", "Write its value to a file descriptor");
    show->add_option("--to", *target, "File descriptor to write it to")->capture_default_str();
    addExample(*show, "vlhost secret read | vlhost restore logons.vlb --entry plugin-data "
                      "--secret-from 0");
    show->callback([arguments, target] {
        writeSecretTo(*target, CSecretStore().Read(wideFromUtf8(arguments->name)));
    });

    CLI::App* const ask =
        secret->add_subcommand("exists", "Check whether it is there; exit status 1 if not");
    addExample(*ask, "vlhost secret exists");
    ask->callback([arguments, &options] {
        Json::Value json(Json::objectValue);
        json["name"] = arguments->name;
        const bool exists = CSecretStore().Exists(wideFromUtf8(arguments->name));
        json["exists"] = exists;
        printDone(secretSchema, json, options.json);
        if (!exists)
            throw CToolError("there is no secret '" + arguments->name + "'");
    });

    CLI::App* const remove = secret->add_subcommand("delete", "Remove it");
    addExample(*remove, "vlhost secret delete");
    remove->callback([arguments, &options] {
        CSecretStore().Delete(wideFromUtf8(arguments->name));
        printDone(secretSchema, done("deleted", arguments->name), options.json);
    });
}

[[noreturn]] void settingFailed(const std::string& key, HRESULT status)
{
    const bool missing = status == E_NOTIMPL;
    throw CToolError("the setting '" + key + "': " + statusText(status),
                     missing ? "VloSet.dll is not in the installation's bin folder"
                             : "is the key spelt right?");
}

constexpr char settingSchema[] = "vlhost-setting-1";

// settingOf has the key as a member for people alone: in JSON it could be the name of another one.
Json::Value settingOf(const std::string& key, const std::string& value, bool asJson)
{
    Json::Value json(Json::objectValue);
    if (!asJson) {
        json[key] = value;
        return json;
    }
    json["key"] = key;
    json["value"] = value;
    return json;
}

void addSettingsCommands(CLI::App& app, const options_t& options)
{
    CLI::App* const settings =
        app.add_subcommand("setting", "The settings of the settings provider");
    settings->require_subcommand(1);
    const auto arguments = std::make_shared<arguments_t>();

    CLI::App* const get = settings->add_subcommand("get", "Read one");
    get->add_option("key", arguments->name, "Its key")->required();
    addExample(*get, "vlhost setting get path_localstorage_dir");
    get->callback([arguments, &options] {
        std::wstring value;
        const HRESULT status = settings_query(wideFromUtf8(arguments->name), value);
        if (FAILED(status))
            settingFailed(arguments->name, status);
        printResult(settingSchema, settingOf(arguments->name, utf8FromWide(value), options.json),
                    options.json);
    });

    CLI::App* const set = settings->add_subcommand("set", "Write one");
    set->add_option("key", arguments->name, "Its key")->required();
    set->add_option("value", arguments->value, "Its new value")->required();
    addExample(*set, "vlhost setting set path_localstorage_dir D:\\Logons\\");
    set->callback([arguments, &options] {
        const HRESULT status =
            settings_set(wideFromUtf8(arguments->name), wideFromUtf8(arguments->value));
        if (FAILED(status))
            settingFailed(arguments->name, status);
        printDone(settingSchema, settingOf(arguments->name, arguments->value, options.json),
                  options.json);
    });
}

} // namespace

void addStoreCommands(CLI::App& app, const options_t& options)
{
    addSecretCommands(app, options);
    addSettingsCommands(app, options);
}
