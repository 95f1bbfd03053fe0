#pragma once

#include "agent/sharedblock.h"
#include "neighbours/linknames.h"

#include <windows.h>

#include <cstdint>
#include <string>

// sendToAgent hands name and body to the agent through named shared memory. It blocks the calling
// thread, without a time limit, until the agent has acknowledged.
//
// message:    the number of the registered message that the agent is to give itself
// name, body: UTF-8
// Returns:    false only when both are empty. True doesn't say that the agent received anything.
// Errors:     are traced
bool sendToAgent(HWND window, uint32_t message, const std::string& name, const std::string& body);

// The steps of an exchange, below sendToAgent.

// agentTransfer_t is the state of one transfer. It wipes its copy of the body: it may be a secret.
struct agentTransfer_t {
    void* buffer = nullptr; // the mapped request buffer, the connection's
    int32_t remaining = 1;  // blocks still to send
    HWND window = nullptr;
    uint32_t message = 0;
    std::string name;
    std::string body;
    LinkNames names{};
    mappedBlock_t payload;

    agentTransfer_t() = default;
    agentTransfer_t(const agentTransfer_t&) = delete;
    agentTransfer_t& operator=(const agentTransfer_t&) = delete;
    ~agentTransfer_t() { SecureZeroMemory(body.data(), body.size()); }
};

// heldSemaphore owns one count of a semaphore.
struct heldSemaphore {
    using value_type = HANDLE;
    static HANDLE empty() noexcept { return nullptr; }
    static void close(HANDLE semaphore) noexcept { ReleaseSemaphore(semaphore, 1, nullptr); }
};

// agentConnection_t holds the objects of one exchange. They go from the last to the first: no other
// client comes in before all else is closed.
struct agentConnection_t {
    CKernelHandle semaphore;
    CScoped<heldSemaphore> held; // set once the semaphore was taken
    mappedBlock_t buffer;
    CKernelHandle ackEvent;
    CKernelHandle readyEvent;

    agentConnection_t() = default;
    agentConnection_t(agentConnection_t&&) = default;
    agentConnection_t& operator=(agentConnection_t&&) = delete; // would close the first one first

    // isComplete is true if an exchange has all that it needs.
    bool isComplete() const noexcept;
};

// linkEvents are the events of the link. Whoever opens them or makes them, the agent's stand-in
// too, goes through this list.
struct linkEvent_t {
    const wchar_t* LinkNames::*name;
    CKernelHandle agentConnection_t::*handle;
    DWORD clientAccess;
    const char* missing; // as traced
};
inline constexpr linkEvent_t linkEvents[] = {
    {&LinkNames::acknowledge, &agentConnection_t::ackEvent, SYNCHRONIZE, "no AckEvent"},
    {&LinkNames::dataReady, &agentConnection_t::readyEvent, EVENT_MODIFY_STATE, "no ReadyEvent"},
};

// _callserverprocess runs the whole exchange. Failures are traced, and readers of traces search for
// this very name.
void _callserverprocess(const LinkNames& names, agentTransfer_t& transfer);

// connectToAgent takes the semaphore, without a time limit, and opens the agent's objects. What it
// couldn't get stays null, and is traced.
void connectToAgent(const LinkNames& names, agentConnection_t& connection);

// fillRequestBlock makes the payload block and writes body and request, all in one block.
//
// Errors: raises std::runtime_error "MMF.failed" when the payload block can't be made, or when one
//         of the two blocks is too short for what it is to hold; nothing is written then
void fillRequestBlock(agentTransfer_t& transfer);
