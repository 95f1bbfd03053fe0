#pragma once

#include "common/module.h"
#include "common/scoped.h"
#include "support/files.h"
#include "support/patchimport.h"

#include <windows.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

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

// installation_t is the DLL's resources under the DLL's name, loaded, and the language files that a
// test puts beside it.
struct installation_t {
    installation_t()
    {
        fs::create_directories(folder);
        fs::copy_file(builtFile(L"resources_test/VLOnlineIDs.dll"), dllPath);
        dll.reset(LoadLibraryW(dllPath.c_str()));
        EXPECT_TRUE(dll);
    }

    // install puts the built file of a language into a folder, and gives its path there. Bytes of its
    // configuration data can be changed, as in "de-DE+0+28".
    fs::path install(const std::wstring& into, const std::wstring& language) const
    {
        std::wistringstream parts(language);
        std::wstring part;
        std::getline(parts, part, L'+');
        std::string file = fileBytes(builtFile(part + L"/VLOnlineIDs.dll.mui"));
        while (std::getline(parts, part, L'+'))
            file.at(file.find("\xCD\xFE\xCD\xFE") + std::stoul(part)) ^= 4;
        const fs::path path = folder / into / L"VLOnlineIDs.dll.mui";
        writeFile(path, file);
        return path;
    }

    inline static int count = 0;
    const fs::path folder = fs::temp_directory_path() /
                            (std::to_wstring(GetCurrentProcessId()) + std::to_wstring(++count));
    const fs::path dllPath = folder / L"VLOnlineIDs.dll";
    CLoadedModule dll;
};

// uiLanguages_t makes these the UI languages of the user and of the system for this program.
struct uiLanguages_t {
    explicit uiLanguages_t(LANGID user, LANGID system = 1033) { now = {user, system}; }
    inline static std::pair<LANGID, LANGID> now;
    importPatch_t ofUser{"GetUserDefaultUILanguage", +[] { return now.first; }};
    importPatch_t ofSystem{"GetSystemDefaultUILanguage", +[] { return now.second; }};
};

// givenString_t makes this the string of a number for this program, whatever the module.
struct givenString_t {
    givenString_t(UINT id, const std::wstring& text) { given = {id, text}; }
    static int WINAPI load(HINSTANCE module, UINT id, LPWSTR buffer, int size)
    {
        if (id != given.first)
            return original(module, id, buffer, size);
        return static_cast<int>(given.second.copy(buffer, given.second.size()));
    }
    inline static const auto original = reinterpret_cast<decltype(&LoadStringW)>(
        importedFunction(GetModuleHandleW(nullptr), "LoadStringW"));
    inline static std::pair<UINT, std::wstring> given;
    importPatch_t patch{"LoadStringW", load};
};
