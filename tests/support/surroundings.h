#pragma once

#include "common/module.h"
#include "common/scoped.h"
#include "storage/paths.h"
#include "support/files.h"
#include "support/freshprocess.h"
#include "support/patchimport.h"
#include "support/registry.h"
#include "support/tracerecorder.h"

#include <string>

#include <gtest/gtest.h>

constexpr wchar_t applications[] = LR"(SOFTWARE\Veltrano\Applications)";

inline std::wstring noted; // the paths of the calls that notePath caught, a bar after each

template <INT_PTR result, DWORD error> INT_PTR notePath(const wchar_t* path)
{
    noted += path + std::wstring(L"|");
    SetLastError(error);
    return result;
}

// Surroundings is a machine on which nothing is installed, with an empty folder for the test.
class Surroundings : public testing::Test
{
protected:
    Surroundings()
    {
        if (testing::internal::InDeathTestChild()) // finds what its test has done before
            return;
        RegDeleteTreeW(HKEY_LOCAL_MACHINE, LR"(SOFTWARE\Veltrano)");
        RegDeleteTreeW(HKEY_LOCAL_MACHINE, LR"(SOFTWARE\Wow6432Node\Veltrano)"); // 32-bit view
        RegDeleteTreeW(HKEY_CURRENT_USER, LR"(SOFTWARE\Veltrano)");
        SetEnvironmentVariableW(L"APPDATA", LR"(C:\A\R)");
        SetEnvironmentVariableW(L"LOCALAPPDATA", LR"(C:\A\L)");
        EXPECT_TRUE(makedirs(m_root));
        noted.clear();
    }

    // shown is text with R:\ in the place of the test's folder; traced shows what was traced.
    std::wstring shown(std::wstring text) const
    {
        for (size_t at = 0; (at = text.find(m_root)) != std::wstring::npos;)
            text.replace(at, m_root.size(), L"R:\\");
        return text;
    }
    std::wstring traced() { return shown(m_traces.joined()); }

    inline static int s_roots = 0;
    const std::wstring m_root =
        lowerpath(envvalue(L"TEMP")) + L"\\storage" + std::to_wstring(++s_roots) + L"\\";
    traceRecorder_t m_traces;
};
