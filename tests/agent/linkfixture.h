#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include <windows.h>

#include "common/scoped.h"
#include "support/patchimport.h"

// fakeVersion_t makes the system tell another version, for the life of the object.
class fakeVersion_t
{
public:
    fakeVersion_t(DWORD major, DWORD minor);

private:
    importPatch_t m_patch;
};

// openHandles counts the handles of this process.
size_t openHandles();

// within runs body on another thread. A body that doesn't return in time ends the whole program, as
// a failure.
void within(DWORD milliseconds, const std::function<void()>& body);

// agentObjects_t makes the agent's four objects, by their literal names. Members may be reset to
// leave one out.
struct agentObjects_t {
    CKernelHandle semaphore, acknowledge, dataReady, buffer;
    uint8_t* view = nullptr; // of the request buffer, 0x1000 bytes, filled with 0xEE

    explicit agentObjects_t(bool make = true);
    ~agentObjects_t() { closeBuffer(); }
    agentObjects_t(const agentObjects_t&) = delete;
    agentObjects_t& operator=(const agentObjects_t&) = delete;
    void closeBuffer();
};

// semaphoreCount is the count that is left of the admission semaphore, at most 1; -1 when there is
// none.
int semaphoreCount();

// win32 gives the front of an error record: "E ", the status of a platform error in decimal, a
// blank.
std::wstring win32(DWORD error);
