#pragma once

#include <filesystem>
#include <fstream>
#include <vector>

#include <gtest/gtest.h>

#include "common/module.h"
#include "common/scoped.h"
#include "storage/paths.h"
#include "support/patchimport.h"
#include "support/tracerecorder.h"

using texts = std::vector<std::wstring>;

// IN_FRESH_PROCESS runs a block in a new process of this program, where nothing has been remembered
// yet: the test runs there again up to this place.
template <class Body> [[noreturn]] void checkAndExit(const Body& body)
{
    body();
    std::exit(testing::Test::HasFailure() ? 1 : 0);
}
#define IN_FRESH_PROCESS(...)                                                                      \
    EXPECT_EXIT(checkAndExit([&] __VA_ARGS__), testing::ExitedWithCode(0), "")

// environment_t sets or (null) removes a variable for the life of the object.
struct environment_t {
    environment_t(const wchar_t* variable, const wchar_t* value)
        : name(variable), old(envvalue(variable))
    {
        SetEnvironmentVariableW(name, value);
    }
    ~environment_t() { SetEnvironmentVariableW(name, old.empty() ? nullptr : old.c_str()); }
    const wchar_t* name;
    const std::wstring old;
};

// catchCalls puts a function in the place of one that this program imports.
template <class Function> importPatch_t catchCalls(const char* name, Function* function)
{
    return importPatch_t(GetModuleHandleW(nullptr), name, reinterpret_cast<void*>(function));
}

// scratchFolder makes an empty folder of its own, with a trailing separator.
inline std::wstring scratchFolder()
{
    static int count = 0;
    const std::wstring folder = envvalue(L"TEMP") + L"\\storage" + std::to_wstring(++count) + L"\\";
    std::filesystem::remove_all(folder);
    EXPECT_TRUE(makedirs(folder));
    return folder;
}

constexpr REGSAM narrow = KEY_WOW64_32KEY; // the 32-bit view

inline void writeFile(const std::wstring& name, std::string_view bytes)
{
    std::ofstream(std::filesystem::path(name), std::ios::binary) << bytes;
}

// setValue writes any bytes of any type into a view of the registry. A byte that is not zero stands
// behind them, so that no terminator is added.
inline void setValue(HKEY root, const wchar_t* key, const wchar_t* name, DWORD type,
                     const std::string& bytes, REGSAM view = KEY_WOW64_64KEY)
{
    CRegistryKey opened;
    RegCreateKeyExW(root, key, 0, nullptr, 0, KEY_WRITE | view, nullptr, opened.put(), nullptr);
    RegSetValueExW(opened.get(), name, 0, type, reinterpret_cast<const BYTE*>((bytes + "X").data()),
                   static_cast<DWORD>(bytes.size()));
}

// bytesOf gives a text's bytes with its terminator.
inline std::string bytesOf(const std::wstring& text)
{
    return std::string(reinterpret_cast<const char*>(text.c_str()), text.size() * 2 + 2);
}

// clearRegistry removes what the installation and its user have, in both views.
inline void clearRegistry()
{
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, LR"(SOFTWARE\Veltrano)");
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, LR"(SOFTWARE\Wow6432Node\Veltrano)");
    RegDeleteTreeW(HKEY_CURRENT_USER, LR"(SOFTWARE\Veltrano)");
}
