#pragma once

#include <windows.h>

// findAgentWindow finds the top-level window of the running agent, anew at each call; null if there
// is none.
HWND findAgentWindow();

// The numbers of the two registered messages, kept once known.
UINT restoreDoneMessage();  // WM_VL_AGENT_PMRESTOREDONE, posted
UINT restore2DoneMessage(); // WM_VL_AGENT_PMRESTORE2DONE, written into a request
