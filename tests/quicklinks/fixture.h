#pragma once

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <windows.h>

#include <gtest/gtest.h>

#include "common/text.h"
#include "quicklinks/quicklinks.h"
#include "support/fakesettings.h"
#include "support/tracerecorder.h"

// QuickLinks gives each test an empty folder with a roaming one in it, and settings that name a
// quick link file. The folder has the same name each time: the path prefixes are computed once in a
// process.
class QuickLinks : public testing::Test
{
protected:
    QuickLinks()
    {
        std::filesystem::remove_all(folder);
        std::filesystem::create_directories(own(""));
        SetEnvironmentVariableW(L"APPDATA", (folder / "Roaming").c_str());
        SetEnvironmentVariableW(L"LOCALAPPDATA", (folder / "Local").c_str());
        settings.values[L"path_quicklink_filename"] = file.wstring();
    }
    ~QuickLinks() override
    {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }

    // own and shared give the UTF-8 path of a template in the user's roaming templates folder or in
    // another.
    std::string own(const char* name) const
    {
        return utf8(folder / "Roaming" / "Veltrano" / "KRS" / "Templates" / name);
    }
    std::string shared(const char* name) const { return utf8(folder / name); }

    static std::string utf8(const std::filesystem::path& path)
    {
        return utf8FromWide(path.wstring());
    }
    static void put(const std::filesystem::path& path, std::string_view bytes)
    {
        std::ofstream(path, std::ios::binary) << bytes;
    }
    static std::string get(const std::filesystem::path& path)
    {
        std::ostringstream text;
        text << std::ifstream(path, std::ios::binary).rdbuf();
        return text.str();
    }

    const std::filesystem::path folder = std::filesystem::temp_directory_path() / "Quick Links";
    const std::filesystem::path file = folder / "links.txt";
    fakeSettings_t settings;
};
