#include "commands.h"
#include "common/text.h"
#include "pluginhost.h"
#include "print.h"
#include "shared/commandline.h"
#include "shared/systemerror.h"
#include "shared/windowsfiles.h"

#include <json/value.h>

namespace {

// registerWith calls one of the DLL's two registration functions.
void registerWith(const options_t& options, const char* function, bool registered)
{
    std::wstring path;
    if (!options.plugin.empty()) {
        path = wideFromUtf8(options.plugin);
    } else if (registered) {
        path = registeredPluginPath();
    } else {
        path = programFolder() + L"\\VLOnlineIDs.dll";
    }
    const CLoadedModule library = loadPlugin(path);
    using registration = HRESULT(WINAPI*)();
    const auto call = reinterpret_cast<registration>(
        reinterpret_cast<void*>(GetProcAddress(library.get(), function)));
    if (!call)
        throw CToolError(utf8FromWide(path) + " has no " + function, "is this the plug-in's DLL?");
    const HRESULT status = call();
    if (FAILED(status))
        throw CToolError(
            utf8FromWide(path) + ": " + statusText(status),
            status == E_ACCESSDENIED
                ? "the dashboard's keys are the machine's: run this as an administrator"
                : "");
    Json::Value json(Json::objectValue);
    json["file"] = utf8FromWide(path);
    json["done"] = function;
    printDone("vlhost-register-1", json, options.json);
}

} // namespace

void addRegistrationCommands(const CCommand& tool, const options_t& options)
{
    const auto add = [&](const char* name, const char* help, const char* function,
                         bool registered) {
        const CCommand command = tool.AddCommand(name, help, std::string("vlhost ") + name);
        command.Do([=, &options] { registerWith(options, function, registered); });
    };
    add("register", "Register the plug-in with the dashboard", "DllRegisterServer", false);
    add("unregister", "Take the plug-in out of the dashboard", "DllUnregisterServer", true);
}
