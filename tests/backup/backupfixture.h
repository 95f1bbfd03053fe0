#pragma once

#include <map>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "atl/comutil.h"
#include "backup/restore.h"
#include "backup/storagedata.h"
#include "common/scoped.h"
#include "support/backupbytes.h"
#include "support/fakesettings.h"
#include "support/tracerecorder.h"
#include "vlonlineids.h"

using fileMap = std::map<std::wstring, std::string>; // name and content

// agentServer_t is an agent that takes one request and acknowledges it.
class agentServer_t
{
public:
    agentServer_t();
    ~agentServer_t() { taken(); }

    struct request_t {
        uint32_t message;
        std::string name;
        std::string body;
    };
    std::optional<request_t> taken(); // ends the serving

private:
    void serve();

    CKernelHandle m_buffer, m_acknowledge, m_dataReady, m_stop;
    std::optional<request_t> m_request;
    std::thread m_thread;
};

// backupTest has the plug-in's object, folders and settings of one user, and an agent's window.
class backupTest : public testing::Test
{
protected:
    backupTest();
    ~backupTest() override;

    void write(const std::wstring& path, const std::string& content) const;
    fileMap files(const std::wstring& folder) const;
    void clear() const; // all files, and the categories
    void setCategory(const std::wstring& name, const std::wstring& text) const;
    std::wstring category(const std::wstring& name) const;

    HRESULT restore(const bytes& backup) const;
    bool traced(const std::wstring& message); // "U text" or "E status text"; forgets all messages
    std::vector<std::pair<WPARAM, LPARAM>> posted() const; // to the agent, taken once

    std::wstring m_root, m_personal, m_cache, m_quickLinks; // the last is a file
    fakeSettings_t m_settings;
    traceRecorder_t m_trace;
    HWND m_agent = nullptr;
    VLONLINEIDSLib::IVLKTBackupRestore2* m_plugin = nullptr;
    VLONLINEIDSLib::IVLKTBackupRestore3* m_plugin3 = nullptr;
};
