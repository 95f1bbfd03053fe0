#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include <windows.h>

#include "common/scoped.h"
#include "support/patchimport.h"

// installation_t is a folder of its own with the DLL's resources under the DLL's name and the
// language files that a test puts beside it. Everything is as it was built.
class installation_t
{
public:
    installation_t();
    ~installation_t();
    installation_t(const installation_t&) = delete;
    installation_t& operator=(const installation_t&) = delete;

    // install puts the built language file of a language into a folder, and gives its path there.
    std::filesystem::path install(const std::wstring& folder, const std::wstring& language);

    std::filesystem::path dllPath() const { return m_folder / L"VLOnlineIDs.dll"; }

    // dll is the loaded DLL.
    HMODULE dll();

private:
    std::filesystem::path m_folder;
    CLoadedModule m_dll;
};

// builtFile is a file that the build made, by its path below the folder of the test program.
std::filesystem::path builtFile(const std::wstring& name);

std::vector<uint8_t> readFile(const std::filesystem::path& path);
void writeFile(const std::filesystem::path& path, const std::vector<uint8_t>& bytes);

// uiLanguages_t makes this the UI language of the user and of the system for this program.
class uiLanguages_t
{
public:
    explicit uiLanguages_t(LANGID user, LANGID system = 1033);

private:
    importPatch_t m_user;
    importPatch_t m_system;
};

// openedFiles_t notes the files that this program opens through CreateFileW, and lets them be
// opened.
class openedFiles_t
{
public:
    openedFiles_t();
    ~openedFiles_t();
    openedFiles_t(const openedFiles_t&) = delete;
    openedFiles_t& operator=(const openedFiles_t&) = delete;

    // folders gives the names of the folders of the language files asked for, in order.
    std::vector<std::wstring> folders() const;

private:
    importPatch_t m_patch;
};
