#pragma once

#include <cstdlib>
#include <iostream>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "common/module.h"
#include "common/scoped.h"
#include "storage/paths.h"

// IN_FRESH_PROCESS runs a block in a new process of this program, where nothing has been remembered
// yet: the test runs there again up to this place.
template <class Body> [[noreturn]] void checkAndExit(const Body& body)
{
    body();
    const auto& result = *testing::UnitTest::GetInstance()->current_test_info()->result();
    for (int i = 0; i < result.total_part_count(); ++i)
        std::cerr << result.GetTestPartResult(i).message() << std::endl;
    std::exit(testing::Test::HasFailure() ? 1 : 0);
}
#define IN_FRESH_PROCESS(...)                                                                      \
    EXPECT_EXIT(checkAndExit([&] __VA_ARGS__), testing::ExitedWithCode(0), "")

inline bool inFreshProcess()
{
    return testing::internal::InDeathTestChild();
}

// environment_t sets or (null) removes a variable for the life of the object.
class environment_t
{
public:
    environment_t(const wchar_t* name, const wchar_t* value) : m_name(name)
    {
        std::wstring old(32767, L'\0');
        const DWORD size = GetEnvironmentVariableW(name, old.data(), 32767);
        if (size)
            m_old = old.substr(0, size);
        SetEnvironmentVariableW(name, value);
    }
    ~environment_t() { SetEnvironmentVariableW(m_name, m_old ? m_old->c_str() : nullptr); }
    environment_t(const environment_t&) = delete;
    environment_t& operator=(const environment_t&) = delete;

private:
    const wchar_t* m_name;
    std::optional<std::wstring> m_old;
};

inline std::wstring programFolder()
{
    const std::wstring program = moduleFileName(nullptr);
    return program.substr(0, program.rfind(L'\\') + 1);
}

// scratchFolder makes an empty folder of its own, with a trailing separator.
inline std::wstring scratchFolder()
{
    static int count = 0;
    const std::wstring folder = addslash(envvalue(L"TEMP")) + L"storage" +
                                std::to_wstring(GetCurrentProcessId()) + L"_" +
                                std::to_wstring(++count) + L"\\";
    EXPECT_TRUE(makedirs(folder));
    return folder;
}

inline void writeFile(const std::wstring& name, std::string_view bytes)
{
    const CFileHandle file(
        CreateFileW(name.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    DWORD written = 0;
    EXPECT_TRUE(file && WriteFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()),
                                  &written, nullptr));
}

// setValue writes any bytes of any type into a view of the registry.
inline void setValue(HKEY root, const wchar_t* key, const wchar_t* name, DWORD type,
                     std::string_view bytes, REGSAM view = KEY_WOW64_64KEY)
{
    CRegistryKey opened;
    RegCreateKeyExW(root, key, 0, nullptr, 0, KEY_ALL_ACCESS | view, nullptr, opened.put(),
                    nullptr);
    EXPECT_EQ(RegSetValueExW(opened.get(), name, 0, type,
                             reinterpret_cast<const BYTE*>(bytes.data()),
                             static_cast<DWORD>(bytes.size())),
              ERROR_SUCCESS);
}

// bytesOf gives a text's bytes with its terminator.
inline std::string bytesOf(const std::wstring& text)
{
    return std::string(reinterpret_cast<const char*>(text.c_str()), text.size() * 2 + 2);
}

// clearRegistry removes what the installation has in both views.
inline void clearRegistry()
{
    for (const REGSAM view : {REGSAM{KEY_WOW64_64KEY}, REGSAM{KEY_WOW64_32KEY}}) {
        CRegistryKey software;
        RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"SOFTWARE", 0, KEY_ALL_ACCESS | view, software.put());
        RegDeleteTreeW(software.get(), L"Veltrano");
    }
    RegDeleteTreeW(HKEY_CURRENT_USER, LR"(SOFTWARE\Veltrano)");
}
