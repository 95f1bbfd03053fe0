#include "fakeagent.h"

#include "agent/discovery.h"
#include "agent/linknames.h"

agentWindow_t::agentWindow_t()
{
    WNDCLASSW windowClass = {};
    windowClass.lpfnWndProc = DefWindowProcW;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.lpszClassName = agentWindowName;
    RegisterClassW(&windowClass);
    m_window = CreateWindowExW(0, agentWindowName, agentWindowName, WS_OVERLAPPED, 0, 0, 1, 1,
                               nullptr, nullptr, windowClass.hInstance, nullptr);
}

agentWindow_t::~agentWindow_t()
{
    DestroyWindow(m_window);
    UnregisterClassW(agentWindowName, GetModuleHandleW(nullptr));
}

agentWindow_t::postings agentWindow_t::posted() const
{
    postings found;
    const UINT number = RegisterWindowMessageW(restoreDoneName);
    MSG message = {};
    while (PeekMessageW(&message, m_window, number, number, PM_REMOVE))
        found.emplace_back(message.wParam, message.lParam);
    return found;
}

agentServer_t::agentServer_t()
    : m_buffer(CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0,
                                  linkSets[linkNipc].bufferSize, linkSets[linkNipc].buffer)),
      m_acknowledge(CreateEventW(nullptr, FALSE, FALSE, linkSets[linkNipc].acknowledge)),
      m_dataReady(CreateEventW(nullptr, FALSE, FALSE, linkSets[linkNipc].dataReady)),
      m_stop(CreateEventW(nullptr, TRUE, FALSE, nullptr)),
      m_thread([this] { serve(); })
{}

agentServer_t::~agentServer_t()
{
    taken();
}

std::optional<agentServer_t::request_t> agentServer_t::taken()
{
    SetEvent(m_stop.get());
    if (m_thread.joinable())
        m_thread.join();
    return m_request;
}

void agentServer_t::serve()
{
    const HANDLE handles[] = {m_dataReady.get(), m_stop.get()};
    if (WaitForMultipleObjects(2, handles, FALSE, 60000) != WAIT_OBJECT_0)
        return;
    auto* const buffer = MapViewOfFile(m_buffer.get(), FILE_MAP_READ, 0, 0, 0);
    const CKernelHandle payload(OpenFileMappingW(FILE_MAP_READ, FALSE, linkSets[linkNipc].payload));
    auto* const body = MapViewOfFile(payload.get(), FILE_MAP_READ, 0, 0, 0);
    if (buffer && body)
        m_request = {static_cast<const requestHeader_t*>(buffer)->message,
                     static_cast<const char*>(buffer) + sizeof(requestHeader_t),
                     static_cast<const char*>(body)};
    UnmapViewOfFile(body);
    UnmapViewOfFile(buffer);
    SetEvent(m_acknowledge.get());
}
