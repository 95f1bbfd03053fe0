#include "commands.h"
#include "common/text.h"
#include "neighbours/dashboardkeys.h"
#include "pluginhost.h"
#include "print.h"
#include "shared/commandline.h"
#include "shared/systemerror.h"
#include "variantjson.h"
#include "variants.h"

#include <array>
#include <functional>

using namespace VLONLINEIDSLib;

namespace {

template <size_t count>
const char* meaningOf(const std::array<const char*, count>& meanings, int64_t number)
{
    return number >= 0 && number < static_cast<int64_t>(count)
               ? meanings.at(static_cast<size_t>(number))
               : "unknown";
}

constexpr std::array statusMeanings = {"not set up", "ready", "at risk"};
constexpr std::array levelMeanings = {"unknown", "at risk: the user has to act",
                                      "not set up: the user is advised", "all is well",
                                      "not set up, and the user has dismissed the advice"};
constexpr LONG levelDismissed = 4;
constexpr std::array switchMeanings = {"on: no policy, or none that can be read", "on, by policy",
                                       "off, by the user's own setting", "off, by policy"};

void addNumber(Json::Value& json, const char* name, int64_t number, const char* meaning)
{
    json[name] = Json::Value::Int64{number};
    json[std::string(name) + "Meaning"] = meaning;
}

// property reads one property; if the plug-in refuses it, its status takes the place of a value.
Json::Value property(IVLKTElementUI* element, ULONG id)
{
    CVariant value;
    const HRESULT status = element->GetProperty(id, value.Get());
    if (FAILED(status))
        return statusText(status);
    const Json::Value json = jsonOfVariant(value.Value());
    return json.isMember("value") ? json["value"] : json;
}

LONG securityLevel(const CPluginHost& host)
{
    CVariant value;
    const HRESULT status =
        host.Get<IVLKTElementUI>().get()->GetProperty(propertySecurityLevel, value.Get());
    if (FAILED(status))
        throw CToolError("the plug-in gave no level: " + statusText(status));
    return value.Value().lVal;
}

Json::Value statusOf(const CPluginHost& host)
{
    ULONG status = 0;
    CVariant text;
    text.Get()->vt = VT_BSTR;
    text.Get()->bstrVal = nullptr;
    const HRESULT result =
        host.Get<IVLKSecurityStatus>().get()->GetStatus(&status, &text.Get()->bstrVal);
    const bool off = result == E_NOTIMPL; // how the plug-in says that policy switched it off
    if (FAILED(result) && !off)
        throw CToolError("the plug-in gave no status: " + statusText(result));
    Json::Value json(Json::objectValue);
    addNumber(json, "status", status, off ? "switched off" : meaningOf(statusMeanings, status));
    json["text"] = jsonOfVariant(text.Value())["value"];
    json["disabledByPolicy"] = off;
    const LONG level = securityLevel(host);
    addNumber(json, "level", level, meaningOf(levelMeanings, level));
    ULONG switched = 0;
    const HRESULT asked = host.Get<IVLKTDisableApp>().get()->GetStatus(&switched);
    if (FAILED(asked))
        throw CToolError("the plug-in did not say whether it is switched off: " +
                         statusText(asked));
    addNumber(json, "switch", switched, meaningOf(switchMeanings, switched));
    return json;
}

// eachNotification calls use with every notification and its place in the list, from 1.
void eachNotification(const CPluginHost& host,
                      const std::function<void(unsigned, IVLKTElementUI*)>& use)
{
    CVariant value;
    const HRESULT status =
        host.Get<IVLKTElementUI>().get()->GetProperty(propertyNotifications, value.Get());
    if (FAILED(status))
        throw CToolError("the plug-in gave no notifications: " + statusText(status));
    unsigned number = 0;
    for (IUnknown* object : notificationsIn(value.Value())) {
        ++number;
        CInterface<IVLKTElementUI> notice;
        if (SUCCEEDED(object->QueryInterface(__uuidof(IVLKTElementUI),
                                             reinterpret_cast<void**>(notice.put()))))
            use(number, notice.get());
    }
}

Json::Value notificationsOf(const CPluginHost& host)
{
    Json::Value list(Json::arrayValue);
    eachNotification(host, [&](unsigned number, IVLKTElementUI* notice) {
        Json::Value json(Json::objectValue);
        json["number"] = number;
        json["caption"] = property(notice, notificationCaption);
        json["explanation"] = property(notice, propertyExplanation);
        json["level"] = property(notice, propertySecurityLevel);
        json["shown"] = property(notice, notificationShown);
        CVariant actions;
        json["canOpenConsole"] = SUCCEEDED(notice->GetProperty(notificationActions, actions.Get()));
        list.append(json);
    });
    return list;
}

Json::Value interfacesOf(const CPluginHost& host)
{
    const struct {
        const char* name;
        IID iid;
    } interfaces[] = {
        {"IVLKTPages", __uuidof(IVLKTPages)},
        {"IVLKTElementUI", __uuidof(IVLKTElementUI)},
        {"IVLKSecurityStatus", __uuidof(IVLKSecurityStatus)},
        {"IVLKTPluginInfo", __uuidof(IVLKTPluginInfo)},
        {"IVLKTDisableApp", __uuidof(IVLKTDisableApp)},
        {"IVLKTBackupRestore3", __uuidof(IVLKTBackupRestore3)},
        {"IVLKTBackupRestore2", __uuidof(IVLKTBackupRestore2)},
        {"IVLKTTraySubscribe", __uuidof(IVLKTTraySubscribe)},
    };
    Json::Value list(Json::arrayValue);
    for (const auto& row : interfaces) {
        CInterface<IUnknown> found;
        if (SUCCEEDED(
                host.Object()->QueryInterface(row.iid, reinterpret_cast<void**>(found.put()))))
            list.append(row.name);
    }
    return list;
}

Json::Value infoOf(const CPluginHost& host)
{
    CVariant identifier;
    host.Get<IVLKTPluginInfo>().get()->GetInfo(0, identifier.Get());
    const auto element = host.Get<IVLKTElementUI>();
    Json::Value json(Json::objectValue);
    json["file"] = utf8FromWide(host.Path());
    json["classIdentifier"] = jsonOfVariant(identifier.Value())["value"];
    json["name"] = property(element.get(), propertyName);
    json["fixedName"] = property(element.get(), propertyFixedName);
    json["description"] = property(element.get(), propertyDescription);
    json["icon"] = property(element.get(), propertyIconLocation);
    json["kind"] = property(element.get(), propertyKind);
    json["explanation"] = property(element.get(), propertyExplanation);
    json["interfaces"] = interfacesOf(host);
    json["state"] = statusOf(host);
    json["notifications"] = notificationsOf(host);
    return json;
}

const std::wstring dismissedKey =
    std::wstring(dashboardDismissedKey) + L"\\{42F9948B-B690-4325-A073-63A8BF31FF32}";
constexpr wchar_t dismissedLevel[] = L"2"; // the value that turns level 2 into level 4

// undismiss takes the user's dismissal back. A dismissed notification can't do that itself: it is
// of level 4, and writes its flag under that number.
void undismiss()
{
    const LSTATUS error =
        RegDeleteKeyValueW(HKEY_CURRENT_USER, dismissedKey.c_str(), dismissedLevel);
    if (error != ERROR_SUCCESS && error != ERROR_FILE_NOT_FOUND)
        throw CToolError("the dismissal can't be taken back: " +
                             errorText(static_cast<DWORD>(error)),
                         "it is the value 2 of HKCU\\" + utf8FromWide(dismissedKey));
}

// shownNow is what the dashboard shows of the notifications.
Json::Value shownNow(const CPluginHost& host)
{
    Json::Value json(Json::objectValue);
    const LONG level = securityLevel(host);
    addNumber(json, "level", level, meaningOf(levelMeanings, level));
    json["notifications"] = notificationsOf(host);
    return json;
}

// setShown shows or dismisses what the dashboard shows now, and asks the plug-in if that worked.
Json::Value setShown(const CPluginHost& host, bool shown)
{
    CVariant flag;
    flag.Get()->vt = VT_BOOL;
    flag.Get()->boolVal = shown ? VARIANT_TRUE : VARIANT_FALSE;
    if (shown && securityLevel(host) == levelDismissed)
        undismiss();
    eachNotification(host, [&](unsigned, IVLKTElementUI* notice) {
        const HRESULT status = notice->SetProperty(commandSetShown, flag.Get());
        if (FAILED(status))
            throw CToolError("the notification refused: " + statusText(status));
    });
    eachNotification(host, [&](unsigned, IVLKTElementUI* notice) {
        CVariant now;
        const bool always = FAILED(notice->GetProperty(notificationShown, now.Get()));
        if ((always || now.Value().boolVal != VARIANT_FALSE) != shown)
            throw CToolError(std::string("the notification is still ") +
                                 (shown ? "dismissed" : "shown"),
                             always ? "while the user is at risk it can't be dismissed"
                                    : "may HKCU\\" + utf8FromWide(dismissedKey) + " be written?");
    });
    return shownNow(host);
}

Json::Value openConsole(const CPluginHost& host)
{
    Json::Value json(Json::objectValue);
    json["started"] = false; // without a notification
    eachNotification(host, [&](unsigned, IVLKTElementUI* notice) {
        const HRESULT status = notice->SetProperty(commandOpenConsole, nullptr);
        if (FAILED(status))
            throw CToolError("the notification refused: " + statusText(status));
        json["started"] = true;
    });
    return json;
}

std::string explained(HRESULT status)
{
    if (status == E_ACCESSDENIED)
        return "the setting is the machine's: run this as an administrator";
    if (status == static_cast<HRESULT>(0x80070000u | ERROR_MOD_NOT_FOUND))
        return "VLFPApi.dll is not in the system folder: install it first";
    return {};
}

Json::Value switchTo(const CPluginHost& host, bool on)
{
    const HRESULT status = host.Get<IVLKTDisableApp>().get()->DisableLocal(on ? 0 : 1);
    if (FAILED(status))
        throw CToolError("the application can't be switched " + std::string(on ? "on: " : "off: ") +
                             statusText(status),
                         explained(status));
    return statusOf(host);
}

constexpr char statusSchema[] = "vlhost-status-1";
constexpr char shownSchema[] = "vlhost-notifications-1";

} // namespace

void addDashboardCommands(const CCommand& tool, const options_t& options)
{
    const auto add = [&](const char* name, const char* help, auto body, auto print,
                         const char* schema) {
        const CCommand command = tool.AddCommand(name, help, std::string("vlhost ") + name);
        command.Do([&options, body, print, schema] {
            const CPluginHost host(options.plugin);
            print(schema, body(host), options.json);
        });
    };
    add("info", "Everything that a dashboard shows of the plug-in", infoOf, printResult,
        "vlhost-info-1");
    add("status", "Status, level, and whether the application is switched off", statusOf,
        printResult, statusSchema);
    add("notifications", "What the user should look at", shownNow, printResult, shownSchema);
    add(
        "dismiss", "Dismiss the notification",
        [](const CPluginHost& host) { return setShown(host, false); }, printDone, shownSchema);
    add(
        "show", "Show the notification again",
        [](const CPluginHost& host) { return setShown(host, true); }, printDone, shownSchema);
    add("console", "Open the console at the plug-in's page", openConsole, printDone,
        "vlhost-console-1");
    add(
        "enable", "Switch the application on",
        [](const CPluginHost& host) { return switchTo(host, true); }, printDone, statusSchema);
    add(
        "disable", "Switch the application off",
        [](const CPluginHost& host) { return switchTo(host, false); }, printDone, statusSchema);
}
