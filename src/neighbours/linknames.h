#pragma once

#include <cstdint>

// What the plug-in and the agent must agree on: names, and the layout of the request buffer. The
// names carry no namespace prefix, so the objects are those of one logon.

inline constexpr wchar_t agentWindowName[] = L"Veltrano Pro Agent"; // class and title
inline constexpr wchar_t restoreDoneName[] = L"WM_VL_AGENT_PMRESTOREDONE";
inline constexpr wchar_t restore2DoneName[] = L"WM_VL_AGENT_PMRESTORE2DONE";

// LinkNames is one set of object names. The agent makes the first four objects; the plug-in makes
// a new payload block for each request.
struct LinkNames {
    const wchar_t* admission;    // semaphore, 1 of 1: the client that holds it is the one inside
    const wchar_t* acknowledge;  // event, the agent's answer
    const wchar_t* dataReady;    // event, the client's call
    const wchar_t* buffer;       // the request
    uint32_t bufferSize;         // bytes
    const wchar_t* payload;      // the body: UTF-8, ended by a zero byte
    const wchar_t* blockToAgent; // the last two are the agent's own
    const wchar_t* blockToBrowser;
};

enum LinkSet { linkNipc, linkBipc, linkAipc };

// Only the first set is ever selected here.
inline constexpr LinkNames linkSets[] = {
    {L"VLMAX_NIPC_MUTEX", L"VLMAX_NIPC_BUFFER_READY", L"VLMAX_NIPC_DATA_READY",
     L"VLMAX_NIPC_BUFFER", 0x1000, L"VLTEMPLATE", L"BLOCK_TO_VL", L"BLOCK_TO_FF"},
    {L"VLMAX_BIPC_MUTEX", L"VLMAX_BIPC_BUFFER_READY", L"VLMAX_BIPC_DATA_READY",
     L"VLMAX_BIPC_BUFFER", 0x1000, L"VLTEMPLATE", L"BLOCK_TO_VL", L"BLOCK_TO_FF"},
    {L"VLMAX_AIPC_MUTEX", L"VLMAX_AIPC_BUFFER_READY", L"VLMAX_AIPC_DATA_READY",
     L"VLMAX_AIPC_BUFFER", 0x1000, L"VLTEMPLATE", L"BLOCK_TO_VL", L"BLOCK_TO_FF"},
};

// RequestHeader stands at offset 0 of the request buffer, little-endian; the name follows in
// UTF-8, ended by a zero byte.
struct RequestHeader {
    uint32_t command;
    uint32_t processId; // the client's
    uint32_t window;    // the low 32 bits of the agent's window handle
    uint32_t message;   // the number of the registered message
};
static_assert(sizeof(RequestHeader) == 16);

inline constexpr uint32_t commandRestoreSecret = 2; // the only one
