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

inline CLoadedModule loadAsData(const fs::path& path)
{
    return CLoadedModule(LoadLibraryExW(path.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE));
}

// newFolder makes a folder of its own; it goes with the test program's prefix.
inline fs::path newFolder()
{
    static int count = 0;
    const fs::path path = fs::temp_directory_path() / (std::to_wstring(GetCurrentProcessId()) +
                                                       L"-" + std::to_wstring(++count));
    fs::create_directories(path);
    return path;
}

// installation_t is the DLL's resources under the DLL's name, loaded, and the language files that a test puts beside
// it, all of them as they were built.
struct installation_t {
    installation_t()
    {
        fs::copy_file(builtFile(L"resources_test/VLOnlineIDs.dll"), dllPath);
        dll.reset(LoadLibraryW(dllPath.c_str()));
        EXPECT_TRUE(dll);
    }

    // install puts the built file of a language into a folder, and gives its path there.
    fs::path install(const std::wstring& into, const std::wstring& language) const
    {
        const fs::path path = folder / into / L"VLOnlineIDs.dll.mui";
        fs::create_directories(path.parent_path());
        fs::copy_file(builtFile(language + L"/VLOnlineIDs.dll.mui"), path);
        return path;
    }

    const fs::path folder = newFolder();
    const fs::path dllPath = folder / L"VLOnlineIDs.dll";
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
    }

private:
    template <size_t which> static LANGID WINAPI language() { return languages[which]; }
    inline static LANGID languages[2];
    importPatch_t m_user{"GetUserDefaultUILanguage", language<0>};
    importPatch_t m_system{"GetSystemDefaultUILanguage", language<1>};
};
