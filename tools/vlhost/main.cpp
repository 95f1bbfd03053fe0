#include "commands.h"
#include "shared/commandline.h"

#include <objbase.h>

int main(int argc, char** argv)
{
    const CTool tool("vlhost",
                     "Reference host: loads the plug-in as a dashboard does and calls it.");
    options_t options;
    tool.AddOption("--plugin", options.plugin, "The plug-in's DLL, instead of the registered one");
    tool.AddFlag("--json", options.json, "Print JSON");
    addBackupCommand(tool, options);
    addBundleCommand(tool, options);
    addDashboardCommands(tool, options);
    addRegistrationCommands(tool, options);
    addStoreCommands(tool, options);
    addRestoreCommand(tool, options);
    addCallCommands(tool, options);
    addDoctorCommand(tool, options);
    addDrillCommand(tool, options);
    addTraceCommands(tool, options);

    const HRESULT com = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    const int status = runTool(tool, argc, argv);
    if (SUCCEEDED(com))
        CoUninitialize();
    return status;
}
