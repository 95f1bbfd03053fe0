#include "commands.h"
#include "shared/commandline.h"

#include <objbase.h>

int main(int argc, char** argv)
{
    CLI::App app("Reference host: loads the plug-in as a dashboard does and calls it.", "vlhost");
    app.require_subcommand(1);
    app.fallthrough();
    options_t options;
    app.add_option("--plugin", options.plugin, "The plug-in's DLL, instead of the registered one");
    app.add_flag("--json", options.json, "Print JSON");
    addBackupCommand(app, options);
    addBundleCommand(app, options);
    addDashboardCommands(app, options);
    addRegistrationCommands(app, options);
    addStoreCommands(app, options);
    addRestoreCommand(app, options);
    addCallCommands(app, options);
    addDoctorCommand(app, options);
    addDrillCommand(app, options);
    addTraceCommands(app, options);

    const HRESULT com = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    const int status = runTool(app, argc, argv);
    if (SUCCEEDED(com))
        CoUninitialize();
    return status;
}
