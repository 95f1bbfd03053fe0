#pragma once

#include <string>

#include <CLI/CLI.hpp>

// options_t is what every command of the host takes.
struct options_t {
    std::string plugin; // UTF-8 path of the DLL; empty finds it in the registry
    bool json = false;
};

// Each adds its commands to the program; options lives as long as the program.
void addBackupCommand(CLI::App& app, const options_t& options);
void addDashboardCommands(CLI::App& app, const options_t& options);
void addRegistrationCommands(CLI::App& app, const options_t& options);
void addStoreCommands(CLI::App& app, const options_t& options);
void addRestoreCommand(CLI::App& app, const options_t& options);
void addBundleCommand(CLI::App& app, const options_t& options);
void addCallCommands(CLI::App& app, const options_t& options);
void addDoctorCommand(CLI::App& app, const options_t& options);
void addDrillCommand(CLI::App& app, const options_t& options);
void addTraceCommands(CLI::App& app, const options_t& options);
