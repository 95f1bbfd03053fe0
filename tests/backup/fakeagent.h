#pragma once

#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <windows.h>

#include "common/scoped.h"

// agentWindow_t is a window that the plug-in takes for the agent's, of the calling thread.
class agentWindow_t
{
public:
    agentWindow_t();
    ~agentWindow_t();
    agentWindow_t(const agentWindow_t&) = delete;
    agentWindow_t& operator=(const agentWindow_t&) = delete;

    // posted takes what was posted under the restore message: the two parameters of each, oldest
    // first.
    using postings = std::vector<std::pair<WPARAM, LPARAM>>;
    postings posted() const;

private:
    HWND m_window = nullptr;
};

// agentServer_t is an agent that takes one request and acknowledges it.
class agentServer_t
{
public:
    agentServer_t();
    ~agentServer_t();
    agentServer_t(const agentServer_t&) = delete;
    agentServer_t& operator=(const agentServer_t&) = delete;

    struct request_t {
        uint32_t message;
        std::string name;
        std::string body;
    };
    // taken waits for the serving thread: nothing if no request came.
    std::optional<request_t> taken();

private:
    void serve();

    CKernelHandle m_buffer;
    CKernelHandle m_acknowledge;
    CKernelHandle m_dataReady;
    CKernelHandle m_stop;
    std::optional<request_t> m_request;
    std::thread m_thread;
};
