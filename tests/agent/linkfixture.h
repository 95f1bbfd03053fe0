#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <windows.h>

#include "common/scoped.h"
#include "support/patchimport.h"

using texts_t = std::vector<std::wstring>;

// patched replaces one imported function of the test program, for the life of the result.
template <class Function> importPatch_t patched(const char* name, Function* replacement)
{
    return {GetModuleHandleW(nullptr), name, reinterpret_cast<void*>(replacement)};
}

// failing is what a patched call does that gives null or FALSE: it sets this error and counts.
inline DWORD failingError = 0;
inline int failingCalls = 0;
uintptr_t WINAPI failing(...);

// openHandles counts the handles of this process.
size_t openHandles();

// win32 gives the front of an error record: "E ", the status of a platform error in decimal, a
// blank.
std::wstring win32(DWORD error);

// agentObjects_t makes the agent's four objects, by their literal names; drop leaves one out.
struct agentObjects_t {
    agentObjects_t();
    ~agentObjects_t() { drop(L"VLMAX_NIPC_BUFFER"); }
    void drop(const std::wstring& name);

    CKernelHandle semaphore, acknowledge, dataReady, buffer;
    uint8_t* view = nullptr; // of the request buffer, 0x1000 bytes, filled with 0xEE
};
