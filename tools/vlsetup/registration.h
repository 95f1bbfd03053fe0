#pragma once

#include "record.h"

#include <string>
#include <vector>

// The plug-in's registration with the dashboard. The plug-in writes and removes it itself; the
// record has it so that what another plug-in of its class had there comes back.

// planRegistration adds the registration's values to what will be recorded.
//
// before:  the record of what is installed there; empty if nothing is
// Returns: lines for people: what comes back with the removal
// Errors:  CToolError
std::vector<std::string> planRegistration(const std::wstring& root, const record_t& before,
                                          std::vector<written_t>& values);

// registerPlugin lets the plug-in register itself.
//
// Errors: CToolError
void registerPlugin(const std::wstring& root);

// noteRegistration records the current registration as ours if it is that of this DLL.
//
// Errors: CToolError
void noteRegistration(const std::wstring& root, record_t& record);

// unregisterPlugin lets the plug-in take its registration back, so that it writes its list, unless
// another one has it now. The plug-in also removes keys that hold nothing but values, even those of
// others: these values go into the record first, as what was there, and come back with the rest.
//
// Errors: CToolError
void unregisterPlugin(const std::wstring& root, record_t& record);
