#pragma once

#include "shared/commandline.h"

#include <string>

// options_t is what every command of the host takes.
struct options_t {
    std::string plugin; // UTF-8 path of the DLL; empty finds it in the registry
    bool json = false;
};

// Each adds its commands to the program; options lives as long as the program.
void addBackupCommand(const CCommand& tool, const options_t& options);
void addDashboardCommands(const CCommand& tool, const options_t& options);
void addRegistrationCommands(const CCommand& tool, const options_t& options);
void addStoreCommands(const CCommand& tool, const options_t& options);
void addRestoreCommand(const CCommand& tool, const options_t& options);
void addBundleCommand(const CCommand& tool, const options_t& options);
void addCallCommands(const CCommand& tool, const options_t& options);
void addDoctorCommand(const CCommand& tool, const options_t& options);
void addDrillCommand(const CCommand& tool, const options_t& options);
void addTraceCommands(const CCommand& tool, const options_t& options);
