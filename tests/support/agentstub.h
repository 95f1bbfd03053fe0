#pragma once

#include "common/scoped.h"
#include "neighbours/linknames.h"

#include <windows.h>

// agentStub_t is an agent in this process: its window, and its objects by their literal names. answer
// gives the answer beforehand.
struct agentStub_t {
    agentStub_t()
    {
        WNDCLASSW windowClass = {};
        windowClass.lpfnWndProc = DefWindowProcW;
        windowClass.lpszClassName = agentWindowName;
        RegisterClassW(&windowClass);
        window = CreateWindowExW(0, agentWindowName, agentWindowName, 0, 0, 0, 1, 1, nullptr,
                                 nullptr, nullptr, nullptr);
    }
    ~agentStub_t() { DestroyWindow(window); }
    agentStub_t(agentStub_t&&) = delete;

    void answer() const { SetEvent(acknowledge.get()); }

    HWND window = nullptr;
    CKernelHandle acknowledge{CreateEventW(nullptr, FALSE, FALSE, L"VLMAX_NIPC_BUFFER_READY")};
    CKernelHandle semaphore{CreateSemaphoreW(nullptr, 1, 1, L"VLMAX_NIPC_MUTEX")};
    CKernelHandle dataReady{CreateEventW(nullptr, FALSE, FALSE, L"VLMAX_NIPC_DATA_READY")};
    CKernelHandle buffer{CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0,
                                            0x1000, L"VLMAX_NIPC_BUFFER")};
};
