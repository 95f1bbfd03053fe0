#pragma once

#include "shared/commandtree.h"

// manualPage writes the page of section 1, in the man macros.
//
// version, date: of the product, as they are shown
std::string manualPage(const std::vector<command_t>& tree, const std::string& version,
                       const std::string& date);
