#pragma once

#include "common/module.h"
#include "common/scoped.h"
#include "common/text.h"
#include "support/process.h"
#include "support/registry.h"
#include "support/state.h"
#include "support/texts.h"

#include <windows.h>

#include <optional>

#include <gtest/gtest.h>

namespace fs = std::filesystem;

inline const std::wstring folder = L"C:\\vlhost test\\"; // the current one
inline const std::wstring own = folder + L"own\\";
inline const fs::path userData = fs::path(_wgetenv(L"LOCALAPPDATA")) / L"Veltrano\\KRS";
inline const fs::path copies = userData / L"SafetyCopies";
inline const fs::path bin = fs::path(moduleFileName(nullptr)).parent_path();
inline const std::wstring dashboardKey = L"SOFTWARE\\Veltrano\\Applications\\DashBoard";
inline const std::wstring categoriesKey = dashboardKey + L"\\QLCategories";

inline bool has(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

inline processResult_t host(const std::wstring& arguments, const std::string& input = "")
{
    return process_t(bin / L"vlhost.exe", arguments, input).result();
}

inline std::string hostText(const std::wstring& arguments, const std::string& input = "")
{
    const processResult_t result = host(arguments, input);
    EXPECT_EQ(0u, result.status) << utf8FromWide(arguments) << '\n' << result.err << result.out;
    return result.out;
}

// refused gives all that vlhost prints when it ends with this status.
inline std::string refused(const std::wstring& arguments, DWORD status = 1)
{
    const processResult_t result = host(arguments);
    EXPECT_EQ(status, result.status) << utf8FromWide(arguments);
    return result.out + result.err;
}

inline void expectOneLine(const std::wstring& arguments, DWORD status, const char* part = "")
{
    SCOPED_TRACE(utf8FromWide(arguments));
    const auto [got, out, err] = host(arguments);
    EXPECT_EQ(status, got);
    EXPECT_EQ("", out);
    EXPECT_EQ(err.size() - 1, err.find('\n')) << err;
    EXPECT_TRUE(err.starts_with("vlhost: ") || err.starts_with("{")) << err;
    expectIn(err, {part});
}

// agent_t is an agent that has made its window and its objects.
struct agent_t {
    agent_t()
    {
        const CKernelHandle ready(CreateEventW(nullptr, FALSE, FALSE, L"vlhost-test-agent"));
        process.emplace(bin / L"vlagent.exe",
                        L"--ready-event vlhost-test-agent --journal journal.jsonl");
        EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(ready.get(), 60000));
    }
    ~agent_t()
    {
        process_t(bin / L"vlagent.exe", L"--quit").result();
        process->result();
    }
    agent_t(const agent_t&) = delete;

    std::optional<process_t> process;
};

// utf16 gives a text as it is in a backup.
inline std::string utf16(const std::wstring& text)
{
    std::string octets;
    for (const wchar_t unit : text)
        octets.append({static_cast<char>(unit >> 8), static_cast<char>(unit)});
    return octets;
}

inline std::string renamed(std::string backup, const std::wstring& from, const std::wstring& to)
{
    return backup.replace(backup.find(utf16(from)), from.size() * 2, utf16(to));
}

inline CFileHandle held(const wchar_t* path)
{
    return CFileHandle(CreateFileW(path, GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
}

// Host has a user with templates, quick links, categories and settings, made again for each test.
class Host : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        fs::create_directories(folder);
        fs::current_path(folder);
        setBin();
        CopyFileW((bin / L"VLFPApi.dll").c_str(), L"C:\\windows\\system32\\VLFPApi.dll", TRUE);
        hostText(L"--plugin \"" + (bin / L"VLOnlineIDs.dll").wstring() + L"\" info");
        hostText(L"register");
        hostText(L"setting set path_localstorage_dir \"C:\\vlhost test\\own\\\\\"");
        hostText(L"setting set path_quicklink_filename \"C:\\vlhost test\\links.txt\"");
        hostText(L"setting set path_dontpromptlist_filename \"C:\\vlhost test\\never.txt\"");
        hostText(L"setting set show_training_prompt 0"); // an undo can't take a setting away
    }

    static void setBin(const std::wstring& place = bin)
    {
        for (const wchar_t* key : {L"", L"\\KRS"})
            setValue(HKEY_LOCAL_MACHINE, std::wstring(L"SOFTWARE\\Veltrano\\Applications") + key,
                     L"BinDir", place);
    }

    void SetUp() override
    {
        fs::remove_all(own);
        writeFile(L"own\\bank.vlm", "bank");
        writeFile(L"own\\Köln.vlm", "post");
        writeFile(L"own\\updata.vls", "state");
        writeFile(L"never.txt", "https://never.example/\r\n");
        writeFile(L"links.txt",
                  "[ShortCutRecord]\r\nUrl=https://bank.example/\r\nName=Bank\r\nProfile=1\r\n"
                  "Manifest=C:\\vlhost test\\own\\bank.vlm\r\n"
                  "ManifestID=m\r\nUnknown=kept by none but a raw copy\r\n");
        fs::remove_all(copies);
        RegDeleteTreeW(HKEY_CURRENT_USER, dashboardKey.c_str());
        setValue(HKEY_CURRENT_USER, categoriesKey, L"Work", L"%x%;bank", REG_EXPAND_SZ);
        setValue(HKEY_CURRENT_USER, dashboardKey, L"LastQLCategory", L"Work");
        hostText(L"setting set open_guard_desk_qa Ctrl+1");
        hostText(L"setting set useGrabbingCreds 1");
        hostText(L"backup --force good.vlb");
        m_good = fileBytes(L"good.vlb");
    }

    // All that a restore may touch, byte for byte.
    static state_t state()
    {
        state_t all;
        addFiles(all, folder, 1);
        addValues(all, HKEY_CURRENT_USER, dashboardKey);
        addValues(all, HKEY_CURRENT_USER, L"SOFTWARE\\Veltrano\\Settings");
        std::erase_if(all, [](const auto& one) { return one.first.ends_with(L".vlb"); });
        return all;
    }
    static void expectState(const state_t& expected)
    {
        EXPECT_EQ("", difference(state(), expected));
    }

    // Makes what a later user would have, so that a restore of the first state has much to do.
    static void change()
    {
        fs::remove(L"own\\bank.vlm");
        writeFile(L"own\\late.vlm", "late");
        writeFile(L"own\\updata_temp.vls", "temp");
        writeFile(L"own\\updata.vls", "later state");
        setValue(HKEY_CURRENT_USER, categoriesKey, L"Late", L"late", REG_EXPAND_SZ);
        RegDeleteKeyValueW(HKEY_CURRENT_USER, dashboardKey.c_str(), L"LastQLCategory");
        hostText(L"setting set open_guard_desk_qa Ctrl+2");
    }

    std::string m_good; // a backup of the user
};
