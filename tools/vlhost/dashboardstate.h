#pragma once

#include <optional>
#include <string>
#include <vector>

#include <windows.h>

#include "files.h"

// What a dashboard keeps of the quick link categories in the registry, and a restore replaces.

// registryValue_t is one value as it stands in the registry.
struct registryValue_t {
    std::wstring name;
    DWORD type = REG_SZ;
    bytes_t data;
};

// dashboardState_t is empty where key or value isn't there.
struct dashboardState_t {
    std::optional<std::vector<registryValue_t>> categories;
    std::optional<registryValue_t> lastCategory; // the one chosen last, which a restore empties
};

// readDashboard reads the state, writeDashboard makes the registry equal to it.
//
// Errors: CToolError
dashboardState_t readDashboard();
void writeDashboard(const dashboardState_t& state);
