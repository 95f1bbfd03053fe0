#include "commands.h"
#include "common/text.h"
#include "print.h"
#include "secretstore.h"
#include "shared/commandline.h"
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

void addSecretCommands(const CCommand& tool, const options_t& options)
{
    const CCommand secret =
        tool.AddGroup("secret", "The named secret that the host keeps beside a backup");
    const auto arguments = std::make_shared<arguments_t>();
    secret.AddOption("--name", arguments->name, "Its name").ShowDefault();

    const CCommand store =
        secret.AddCommand("store", "Store it; the value is never on the command line",
                          "vlhost secret store < password.txt");
    store.AddOption("--from", arguments->descriptor, "File descriptor to read it from")
        .ShowDefault();
    store.Do([arguments, &options] {
        const CSecretBytes value = readSecretFrom(arguments->descriptor);
        CSecretStore().Store(wideFromUtf8(arguments->name), value);
        printDone(secretSchema, done("stored", arguments->name), options.json);
    });

    const auto target = std::make_shared<int>(1);
    const CCommand show =
        secret.AddCommand("read", "Write its value to a file descriptor",
                          "vlhost secret read | vlhost restore logons.vlb --entry plugin-data "
                          "--secret-from 0");
    show.AddOption("--to", *target, "File descriptor to write it to").ShowDefault();
    show.Do([arguments, target] {
        writeSecretTo(*target, CSecretStore().Read(wideFromUtf8(arguments->name)));
    });

    const CCommand ask = secret.AddCommand(
        "exists", "Check whether it is there; exit status 1 if not", "vlhost secret exists");
    ask.Do([arguments, &options] {
        Json::Value json(Json::objectValue);
        json["name"] = arguments->name;
        const bool exists = CSecretStore().Exists(wideFromUtf8(arguments->name));
        json["exists"] = exists;
        printDone(secretSchema, json, options.json);
        if (!exists)
            throw CToolError("there is no secret '" + arguments->name + "'");
    });

    const CCommand remove = secret.AddCommand("delete", "Remove it", "vlhost secret delete");
    remove.Do([arguments, &options] {
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

void addSettingsCommands(const CCommand& tool, const options_t& options)
{
    const CCommand settings = tool.AddGroup("setting", "The settings of the settings provider");
    const auto arguments = std::make_shared<arguments_t>();

    const CCommand get =
        settings.AddCommand("get", "Read one", "vlhost setting get path_localstorage_dir");
    get.AddOption("key", arguments->name, "Its key").Required();
    get.Do([arguments, &options] {
        std::wstring value;
        const HRESULT status = settings_query(wideFromUtf8(arguments->name), value);
        if (FAILED(status))
            settingFailed(arguments->name, status);
        printResult(settingSchema, settingOf(arguments->name, utf8FromWide(value), options.json),
                    options.json);
    });

    const CCommand set = settings.AddCommand(
        "set", "Write one", "vlhost setting set path_localstorage_dir D:\\Logons\\");
    set.AddOption("key", arguments->name, "Its key").Required();
    set.AddOption("value", arguments->value, "Its new value").Required();
    set.Do([arguments, &options] {
        const HRESULT status =
            settings_set(wideFromUtf8(arguments->name), wideFromUtf8(arguments->value));
        if (FAILED(status))
            settingFailed(arguments->name, status);
        printDone(settingSchema, settingOf(arguments->name, arguments->value, options.json),
                  options.json);
    });
}

} // namespace

void addStoreCommands(const CCommand& tool, const options_t& options)
{
    addSecretCommands(tool, options);
    addSettingsCommands(tool, options);
}
