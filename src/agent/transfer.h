#pragma once

#include <cstdint>
#include <string>

#include <windows.h>

// sendToAgent hands name and body to the agent through named shared memory. It blocks the calling
// thread, without a time limit, until the agent has acknowledged.
//
// name, body: UTF-8
// Returns:    false only when both are empty. True doesn't say that the agent received anything.
bool sendToAgent(HWND window, uint32_t message, const std::string& name, const std::string& body);
