#pragma once

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <windows.h>

#include <gtest/gtest.h>

#include "common/module.h"
#include "common/scoped.h"
#include "support/patchimport.h"

namespace fs = std::filesystem;

// builtFile is a file that the build made, by its path below the folder of the test program.
inline fs::path builtFile(const std::wstring& name)
{
    return fs::path(moduleFileName(nullptr)).parent_path() / name;
}

inline std::string fileContents(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    std::string contents(fs::file_size(path), '\0');
    file.read(contents.data(), static_cast<std::streamsize>(contents.size()));
    return contents;
}

// testFolder_t is a folder of its own for the life of the object.
class testFolder_t
{
public:
    testFolder_t()
    {
        static int count = 0;
        const auto name =
            L"vl" + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(++count);
        path = fs::temp_directory_path() / name;
        fs::create_directories(path);
    }
    ~testFolder_t()
    {
        // Not remove_all: it tries for ever when a file is still mapped.
        std::error_code ignored;
        std::vector<fs::path> contents(1, path);
        for (const auto& entry : fs::recursive_directory_iterator(path, ignored))
            contents.push_back(entry.path());
        for (; !contents.empty(); contents.pop_back())
            fs::remove(contents.back(), ignored);
    }
    testFolder_t(const testFolder_t&) = delete;
    testFolder_t& operator=(const testFolder_t&) = delete;

    fs::path path;
};

// installation_t is the DLL's resources under the DLL's name, loaded, and the language files that a test puts beside
// it, all of them as they were built.
struct installation_t {
    installation_t()
    {
        fs::copy_file(builtFile(L"resources_test/VLOnlineIDs.dll"), dllPath());
        dll.reset(LoadLibraryW(dllPath().c_str()));
        EXPECT_TRUE(dll);
    }

    fs::path dllPath() const { return folder.path / L"VLOnlineIDs.dll"; }

    // install puts the built file of a language into a folder, and gives its path there.
    fs::path install(const std::wstring& into, const std::wstring& language) const
    {
        const fs::path path = folder.path / into / L"VLOnlineIDs.dll.mui";
        fs::create_directories(path.parent_path());
        fs::copy_file(builtFile(language + L"/VLOnlineIDs.dll.mui"), path);
        return path;
    }

    testFolder_t folder;
    CLoadedModule dll;
};

// uiLanguages_t makes these the UI languages of the user and of the system for this program.
class uiLanguages_t
{
public:
    explicit uiLanguages_t(LANGID user, LANGID system = 1033)
    {
        languages[0] = user;
        languages[1] = system;
        EXPECT_TRUE(m_user.found() && m_system.found());
    }

private:
    inline static LANGID languages[2];
    static LANGID WINAPI user() { return languages[0]; }
    static LANGID WINAPI system() { return languages[1]; }
    const HMODULE m_self = GetModuleHandleW(nullptr);
    importPatch_t m_user{m_self, "GetUserDefaultUILanguage", reinterpret_cast<void*>(&user)};
    importPatch_t m_system{m_self, "GetSystemDefaultUILanguage", reinterpret_cast<void*>(&system)};
};
