#include "commands.h"
#include "pluginhost.h"
#include "print.h"
#include "secretstore.h"
#include "shared/commandline.h"
#include "shared/inputfile.h"
#include "variants.h"

#include <iostream>

using namespace VLONLINEIDSLib;

namespace {

// arguments_t is what the operations take, filled by the parser.
struct arguments_t {
    unsigned long number = 0;
    long command = 0;
    unsigned notification = 0; // 1 is the first; 0 the plug-in itself
    std::string type = "bool";
    std::string value;
    std::string file;
    std::string secretsFile;
};

Json::Value outcome(HRESULT status)
{
    Json::Value json(Json::objectValue);
    json["status"] = jsonOfStatus(status);
    json["failed"] = FAILED(status);
    return json;
}

Json::Value withValue(HRESULT status, const CVariant& value)
{
    Json::Value json = outcome(status);
    json["value"] = jsonOfVariant(value.Value());
    return json;
}

// elementOf gives the object whose properties are meant.
CInterface<IVLKTElementUI> elementOf(const CPluginHost& host, unsigned notification)
{
    auto element = host.Get<IVLKTElementUI>();
    if (notification == 0)
        return element;
    CVariant list;
    const HRESULT status = element.get()->GetProperty(propertyNotifications, list.Get());
    if (FAILED(status))
        throw CToolError("the plug-in gave no notifications: " + statusText(status));
    const auto found = notificationsIn(list.Value());
    if (notification > found.size())
        throw CToolError("there are " + std::to_string(found.size()) + " notifications",
                         "the first is number 1");
    CInterface<IVLKTElementUI> wanted;
    const HRESULT asked = found[notification - 1]->QueryInterface(
        __uuidof(IVLKTElementUI), reinterpret_cast<void**>(wanted.put()));
    if (FAILED(asked))
        throw CToolError("the notification has no properties: " + statusText(asked));
    return wanted;
}

Json::Value getProperty(const CPluginHost& host, const arguments_t& arguments)
{
    CVariant value;
    const auto element = elementOf(host, arguments.notification);
    const HRESULT status = element.get()->GetProperty(arguments.number, value.Get());
    return withValue(status, value);
}

Json::Value setProperty(const CPluginHost& host, const arguments_t& arguments)
{
    CVariant value;
    if (arguments.type == "text") {
        setText(value, arguments.value);
    } else if (arguments.type == "number") {
        value.Get()->vt = VT_I4;
        if (!CLI::detail::lexical_cast(arguments.value, value.Get()->lVal))
            throw CToolError("'" + arguments.value + "' is no number", "", 2);
    } else if (arguments.type == "bool") {
        if (arguments.value != "true" && arguments.value != "false")
            throw CToolError("the value is neither true nor false",
                             "--value true; --type tells what else it may be", 2);
        value.Get()->vt = VT_BOOL;
        value.Get()->boolVal = arguments.value == "true" ? VARIANT_TRUE : VARIANT_FALSE;
    }
    const auto element = elementOf(host, arguments.notification);
    return outcome(element.get()->SetProperty(arguments.command,
                                              arguments.type == "null" ? nullptr : value.Get()));
}

Json::Value getStatus(const CPluginHost& host)
{
    ULONG status = 0;
    BSTR text = nullptr;
    const HRESULT result = host.Get<IVLKSecurityStatus>().get()->GetStatus(&status, &text);
    CVariant owner; // the text is the caller's, also with a failure
    owner.Get()->vt = VT_BSTR;
    owner.Get()->bstrVal = text;
    Json::Value json = withValue(result, owner);
    json["number"] = static_cast<Json::UInt>(status);
    return json;
}

Json::Value getStorageData(const CPluginHost& host)
{
    CVariant names;
    CVariant data;
    Json::Value json =
        outcome(host.Get<IVLKTBackupRestore2>().get()->GetStorageData(names.Get(), data.Get()));
    json["secretNames"] = jsonOfVariant(names.Value());
    json["storageData"] = jsonOfVariant(data.Value());
    return json;
}

} // namespace

void addCallCommands(CLI::App& app, const options_t& options)
{
    CLI::App* const call =
        app.add_subcommand("call", "Call one operation and print all that it gives");
    call->require_subcommand(1);
    const auto arguments = std::make_shared<arguments_t>();

    const auto operation = [call, &options](const char* name, const char* help, auto body) {
        CLI::App* const command = call->add_subcommand(name, help);
        command->callback([&options, body] {
            const CPluginHost host(options.plugin);
            const Json::Value result = body(host);
            printResult(result, options.json);
            const Json::Value& status = result["status"];
            if (result["failed"].asBool())
                throw CToolError("the operation failed: " + status["number"].asString() + ' ' +
                                 status["name"].asString());
        });
        return command;
    };

    operation("add-pages", "IVLKTPages::AddPages", [](const CPluginHost& host) {
        return outcome(host.Get<IVLKTPages>().get()->AddPages());
    });
    const auto onNotification = [arguments](CLI::App* command) {
        command->add_option("--notification", arguments->notification,
                            "Of that notification, the first is 1, instead of the plug-in");
    };
    CLI::App* const get =
        operation("get-property", "IVLKTElementUI::GetProperty",
                  [arguments](const CPluginHost& host) { return getProperty(host, *arguments); });
    get->add_option("id", arguments->number)->required();
    onNotification(get);
    CLI::App* const set =
        operation("set-property", "IVLKTElementUI::SetProperty",
                  [arguments](const CPluginHost& host) { return setProperty(host, *arguments); });
    set->add_option("id", arguments->command)->required();
    set->add_option("--type", arguments->type, "Type of the value; null is no VARIANT at all")
        ->check(CLI::IsMember({"bool", "number", "text", "empty", "null"}))
        ->capture_default_str();
    set->add_option("--value", arguments->value, "true, false, a number or a text");
    onNotification(set);
    operation("get-status", "IVLKSecurityStatus::GetStatus", getStatus);
    operation("get-info", "IVLKTPluginInfo::GetInfo",
              [arguments](const CPluginHost& host) {
                  CVariant value;
                  const HRESULT status =
                      host.Get<IVLKTPluginInfo>().get()->GetInfo(arguments->number, value.Get());
                  return withValue(status, value);
              })
        ->add_option("id", arguments->number)
        ->required();
    operation("disable-status", "IVLKTDisableApp::GetStatus", [](const CPluginHost& host) {
        ULONG status = 0;
        Json::Value json = outcome(host.Get<IVLKTDisableApp>().get()->GetStatus(&status));
        json["number"] = static_cast<Json::UInt>(status);
        return json;
    });
    operation("disable-local", "IVLKTDisableApp::DisableLocal",
              [arguments](const CPluginHost& host) {
                  return outcome(
                      host.Get<IVLKTDisableApp>().get()->DisableLocal(arguments->number));
              })
        ->add_option("flag", arguments->number)
        ->required();
    operation("subscribe", "IVLKTTraySubscribe::Subscribe", [](const CPluginHost& host) {
        return outcome(host.Get<IVLKTTraySubscribe>().get()->Subscribe());
    });
    operation("get-storage-data", "IVLKTBackupRestore2::GetStorageData", getStorageData);
    operation("set-storage-data", "IVLKTBackupRestore2::SetStorageData",
              [arguments](const CPluginHost& host) {
                  CVariant data;
                  setBytes(data, readInput(arguments->file, std::cin));
                  return outcome(host.Get<IVLKTBackupRestore2>().get()->SetStorageData(data.Get()));
              })
        ->add_option("file", arguments->file)
        ->required();
    CLI::App* const second =
        operation("set-storage-data2", "IVLKTBackupRestore2::SetStorageData2",
                  [arguments](const CPluginHost& host) {
                      CVariant data;
                      setBytes(data, readInput(arguments->file, std::cin));
                      return outcome(host.Get<IVLKTBackupRestore2>().get()->SetStorageData2(
                          arguments->number, data.Get()));
                  });
    second->add_option("flags", arguments->number)->required();
    second->add_option("file", arguments->file)->required();
    CLI::App* const third =
        operation("set-plugin-data", "IVLKTBackupRestore3::SetPluginData",
                  [arguments](const CPluginHost& host) {
                      const bytes_t storage = readInput(arguments->file, std::cin);
                      const CSecretBytes secrets = arguments->secretsFile.empty()
                                                       ? CSecretBytes()
                                                       : readSecretFile(arguments->secretsFile);
                      return outcome(host.Get<IVLKTBackupRestore3>().get()->SetPluginData(
                          static_cast<ULONG>(secrets.bytes.size()), secrets.bytes.data(),
                          static_cast<ULONG>(storage.size()), storage.data()));
                  });
    third->add_option("file", arguments->file, "The backup")->required();
    third->add_option("--secrets", arguments->secretsFile,
                      "The encoded secret list; - is standard input");
}
