#pragma once

#include "shared/registryvalue.h"

#include <optional>
#include <vector>

// What a dashboard keeps about quick link categories in the registry, and a restore replaces.

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
