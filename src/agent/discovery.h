#pragma once

#include <windows.h>

// findAgentWindow searches for the top-level window of the running agent at each call.
//
// Returns: null if there is none. That is traced: in full once per process, then in short, and as
//          an error only when the windows couldn't be searched.
// Source:  FindWindowExW, by class and title
HWND findAgentWindow();

// The numbers of the two registered messages, kept once known.
UINT restoreDoneMessage();  // WM_VL_AGENT_PMRESTOREDONE, posted
UINT restore2DoneMessage(); // WM_VL_AGENT_PMRESTORE2DONE, written into a request
