#pragma once

#include "atl/comutil.h"
#include "backup/restore.h"
#include "backup/storagedata.h"
#include "common/scoped.h"
#include "common/text.h"
#include "neighbours/linknames.h"
#include "plugin/vlktpages.h"
#include "quicklinks/quicklinks.h"
#include "support/agentstub.h"
#include "support/backupbytes.h"
#include "support/fakesettings.h"
#include "support/surroundings.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

using fileMap = std::map<std::wstring, std::string>; // name and content
using postings = std::vector<std::pair<WPARAM, LPARAM>>;

// backupTest has the plug-in's object, folders and settings of one user, and an agent.
class backupTest : public Surroundings
{
protected:
    backupTest() { clear(); }

    void clear() // to empty folders, no categories and the first settings
    {
        std::filesystem::remove_all(m_root);
        std::filesystem::create_directories(m_personal);
        std::filesystem::create_directories(m_cache);
        RegDeleteTreeW(HKEY_CURRENT_USER, LR"(SOFTWARE\Veltrano)");
        m_settings.values = {{L"path_localstorage_dir", m_personal},
                             {L"path_cachestorage_dir", m_cache},
                             {L"path_quicklink_filename", m_root + L"quicklinks.txt"},
                             {L"show_training_prompt", L"0"},
                             {L"show_training_prompt_def", L"1"},
                             {L"useGrabbingCreds", L"2"}, // only 1 is yes
                             {L"is_personalMode", L"1"}};
    }

    void write(const std::wstring& path, const std::string& content) const // below the root
    {
        writeFile(m_root + path, content);
    }
    fileMap files() const // all below the root
    {
        fileMap found;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(m_root))
            if (entry.is_regular_file())
                found[entry.path().wstring().substr(m_root.size())] = fileBytes(entry.path());
        return found;
    }

    HRESULT restore(const bytes& backup)
    {
        ATL::CComVariant data;
        byteArray(data, backup);
        return m_plugin.SetStorageData(&data);
    }
    bool traced(const std::wstring& message) // "U text" or "E status text"; forgets all messages
    {
        return (m_traces.joined() + L'|').find(L'|' + message + L'|') != std::wstring::npos;
    }
    postings posted() const // to the agent, taken once
    {
        postings found;
        const UINT number = RegisterWindowMessageW(restoreDoneName);
        for (MSG message = {}; PeekMessageW(&message, m_agent.window, number, number, PM_REMOVE);)
            found.emplace_back(message.wParam, message.lParam);
        return found;
    }

    const std::wstring m_personal = m_root + L"personal\\";
    const std::wstring m_cache = m_root + L"cache\\";
    fakeSettings_t m_settings;
    const agentStub_t m_agent;
    CComObject<CVLKTPages> m_plugin;
};
