#include "commands.h"
#include "pluginhost.h"
#include "print.h"
#include "secretstore.h"
#include "shared/commandline.h"
#include "shared/inputfile.h"
#include "shared/systemerror.h"
#include "variantjson.h"
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
        if (!readNumber(arguments.value, value.Get()->lVal))
            throw CToolError("'" + arguments.value + "' is no number", "", exitStatus::wrongUsage);
    } else if (arguments.type == "bool") {
        if (arguments.value != "true" && arguments.value != "false")
            throw CToolError("the value is neither true nor false",
                             "give --value true, or another --type", exitStatus::wrongUsage);
        value.Get()->vt = VT_BOOL;
        value.Get()->boolVal = arguments.value == "true" ? VARIANT_TRUE : VARIANT_FALSE;
    }
    const auto element = elementOf(host, arguments.notification);
    return outcome(element.get()->SetProperty(arguments.command,
                                              arguments.type == "null" ? nullptr : value.Get()));
}

Json::Value getStatus(const CPluginHost& host, const arguments_t&)
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

Json::Value getInfo(const CPluginHost& host, const arguments_t& arguments)
{
    CVariant value;
    const HRESULT status =
        host.Get<IVLKTPluginInfo>().get()->GetInfo(arguments.number, value.Get());
    return withValue(status, value);
}

Json::Value disableStatus(const CPluginHost& host, const arguments_t&)
{
    ULONG status = 0;
    Json::Value json = outcome(host.Get<IVLKTDisableApp>().get()->GetStatus(&status));
    json["number"] = static_cast<Json::UInt>(status);
    return json;
}

Json::Value setStorageData(const CPluginHost& host, const arguments_t& arguments)
{
    CVariant data;
    setBytes(data, readInput(arguments.file, std::cin));
    return outcome(host.Get<IVLKTBackupRestore2>().get()->SetStorageData(data.Get()));
}

Json::Value getStorageData(const CPluginHost& host, const arguments_t&)
{
    CVariant names;
    CVariant data;
    Json::Value json =
        outcome(host.Get<IVLKTBackupRestore2>().get()->GetStorageData(names.Get(), data.Get()));
    json["secretNames"] = jsonOfVariant(names.Value());
    json["storageData"] = jsonOfVariant(data.Value());
    return json;
}

Json::Value setStorageData2(const CPluginHost& host, const arguments_t& arguments)
{
    CVariant data;
    setBytes(data, readInput(arguments.file, std::cin));
    return outcome(
        host.Get<IVLKTBackupRestore2>().get()->SetStorageData2(arguments.number, data.Get()));
}

Json::Value setPluginData(const CPluginHost& host, const arguments_t& arguments)
{
    const bytes_t storage = readInput(arguments.file, std::cin);
    const CSecretBytes secrets =
        arguments.secretsFile.empty() ? CSecretBytes() : readSecretFile(arguments.secretsFile);
    return outcome(host.Get<IVLKTBackupRestore3>().get()->SetPluginData(
        static_cast<ULONG>(secrets.bytes.size()), secrets.bytes.data(),
        static_cast<ULONG>(storage.size()), storage.data()));
}

// CCalls adds one command for each operation.
class CCalls
{
public:
    CCalls(const CCommand& call, const options_t& options) : m_call(call), m_options(options) {}

    void AddProperties()
    {
        const CCommand get = Add("get-property", "IVLKTElementUI::GetProperty", " 1", getProperty);
        get.AddOption("id", m_arguments->number, "Number of the property").Required();
        const CCommand set = Add("set-property", "IVLKTElementUI::SetProperty",
                                 " 1 --type bool --value false", setProperty);
        set.AddOption("id", m_arguments->command, "Number of the command").Required();
        set.AddOption("--type", m_arguments->type, "Type of the value; null is no VARIANT at all")
            .OneOf({"bool", "number", "text", "empty", "null"})
            .ShowDefault();
        set.AddOption("--value", m_arguments->value, "true, false, a number or a text");
        for (const CCommand command : {get, set})
            command.AddOption("--notification", m_arguments->notification,
                              "Of that notification, the first is 1, instead of the plug-in");
        Add("get-info", "IVLKTPluginInfo::GetInfo", " 0", getInfo)
            .AddOption("id", m_arguments->number, "Number of the information")
            .Required();
    }

    void AddState()
    {
        Add("add-pages", "IVLKTPages::AddPages", "",
            [](const CPluginHost& host, const arguments_t&) {
                return outcome(host.Get<IVLKTPages>().get()->AddPages());
            });
        Add("get-status", "IVLKSecurityStatus::GetStatus", "", getStatus);
        Add("disable-status", "IVLKTDisableApp::GetStatus", "", disableStatus);
        Add("disable-local", "IVLKTDisableApp::DisableLocal", " 1",
            [](const CPluginHost& host, const arguments_t& arguments) {
                return outcome(host.Get<IVLKTDisableApp>().get()->DisableLocal(arguments.number));
            })
            .AddOption("flag", m_arguments->number, "1 switches it off, 0 on")
            .Required();
        Add("subscribe", "IVLKTTraySubscribe::Subscribe", "",
            [](const CPluginHost& host, const arguments_t&) {
                return outcome(host.Get<IVLKTTraySubscribe>().get()->Subscribe());
            });
    }

    void AddBackup()
    {
        Add("get-storage-data", "IVLKTBackupRestore2::GetStorageData", "", getStorageData);
        Add("set-storage-data", "IVLKTBackupRestore2::SetStorageData", " logons.vlb",
            setStorageData)
            .AddOption("file", m_arguments->file, "The backup")
            .Required();
        const CCommand second = Add("set-storage-data2", "IVLKTBackupRestore2::SetStorageData2",
                                    " 7 logons.vlb", setStorageData2);
        second.AddOption("flags", m_arguments->number, "Passed on to the agent").Required();
        second.AddOption("file", m_arguments->file, "The backup").Required();
        const CCommand third = Add("set-plugin-data", "IVLKTBackupRestore3::SetPluginData",
                                   " logons.vlb --secrets list.der", setPluginData);
        third.AddOption("file", m_arguments->file, "The backup").Required();
        third.AddOption("--secrets", m_arguments->secretsFile,
                        "The encoded secret list; - is standard input");
    }

private:
    using body_t = Json::Value (*)(const CPluginHost&, const arguments_t&);

    // sample: the arguments of the example, with a blank in front
    CCommand Add(const char* name, const char* help, const char* sample, body_t body)
    {
        const CCommand command =
            m_call.AddCommand(name, help, std::string("vlhost call ") + name + sample);
        command.Do([&options = m_options, arguments = m_arguments, body] {
            const CPluginHost host(options.plugin);
            const Json::Value result = body(host, *arguments);
            printResult("vlhost-call-1", result, options.json);
            const Json::Value& status = result["status"];
            if (result["failed"].asBool())
                throw CToolError("the operation failed: " + status["number"].asString() + ' ' +
                                 status["name"].asString());
        });
        return command;
    }

    const CCommand m_call;
    const options_t& m_options;
    const std::shared_ptr<arguments_t> m_arguments = std::make_shared<arguments_t>();
};

} // namespace

void addCallCommands(const CCommand& tool, const options_t& options)
{
    const CCommand call = tool.AddGroup("call", "Call one operation and print all that it gives");
    CCalls calls(call, options);
    calls.AddProperties();
    calls.AddState();
    calls.AddBackup();
}
