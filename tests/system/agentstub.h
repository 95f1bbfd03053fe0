#pragma once

#include <windows.h>

#include "agent/linknames.h"
#include "common/scoped.h"

// agentStub_t is an agent in this process: its window, and its objects with the answer given
// beforehand.
struct agentStub_t {
    agentStub_t()
    {
        WNDCLASSW windowClass = {};
        windowClass.lpfnWndProc = DefWindowProcW;
        windowClass.lpszClassName = agentWindowName;
        RegisterClassW(&windowClass);
        m_window = CreateWindowExW(0, agentWindowName, agentWindowName, 0, 0, 0, 1, 1, nullptr,
                                   nullptr, nullptr, nullptr);
    }
    ~agentStub_t() { DestroyWindow(m_window); }
    agentStub_t(agentStub_t&&) = delete;

    void answer() const { SetEvent(m_acknowledge.get()); }

private:
    HWND m_window = nullptr;
    CKernelHandle m_acknowledge{CreateEventW(nullptr, FALSE, FALSE, L"VLMAX_NIPC_BUFFER_READY")};
    CKernelHandle m_semaphore{CreateSemaphoreW(nullptr, 1, 1, L"VLMAX_NIPC_MUTEX")};
    CKernelHandle m_dataReady{CreateEventW(nullptr, FALSE, FALSE, L"VLMAX_NIPC_DATA_READY")};
    CKernelHandle m_buffer{CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0,
                                              0x1000, L"VLMAX_NIPC_BUFFER")};
};
