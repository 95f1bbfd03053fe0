#pragma once

#include "common/scoped.h"

#include <string>

// CScratchProfile gives this process an empty user profile: a temporary folder for the user's data,
// and a registry key for the user's keys. The user's own are out of reach of whatever this process loads, and so is a running agent, for the
// thread that made it. One that ended before its profile was removed leaves it to the next.
//
// Errors: CToolError; also if the settings provider still gives places of the user
class CScratchProfile
{
public:
    CScratchProfile();
    ~CScratchProfile();
    CScratchProfile(const CScratchProfile&) = delete;
    CScratchProfile& operator=(const CScratchProfile&) = delete;

    // Folder is where all of it lies, with a backslash at its end.
    const std::wstring& Folder() const noexcept { return m_folder; }

private:
    void HideAgent();
    void MakeFolders() const;
    void Remove() noexcept;

    std::wstring m_folder;
    std::wstring m_key;
    CRegistryKey m_user;
};
