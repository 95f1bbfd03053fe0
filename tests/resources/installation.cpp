#include "installation.h"

#include <fstream>

#include <gtest/gtest.h>

#include "common/module.h"

namespace fs = std::filesystem;

namespace {

LANGID userLanguage;
LANGID systemLanguage;
std::vector<std::wstring> opened;
decltype(&CreateFileW) createFile;

LANGID WINAPI fakeUserLanguage()
{
    return userLanguage;
}

LANGID WINAPI fakeSystemLanguage()
{
    return systemLanguage;
}

HANDLE WINAPI notingCreateFile(LPCWSTR name, DWORD access, DWORD share,
                               SECURITY_ATTRIBUTES* security, DWORD disposition, DWORD flags,
                               HANDLE pattern)
{
    opened.emplace_back(name);
    return createFile(name, access, share, security, disposition, flags, pattern);
}

fs::path newFolder()
{
    static int count = 0;
    wchar_t temporary[MAX_PATH] = {};
    GetTempPathW(MAX_PATH, temporary);
    const fs::path folder = fs::path(temporary) / (L"res" + std::to_wstring(GetCurrentProcessId()) +
                                                   L"-" + std::to_wstring(++count));
    fs::create_directories(folder);
    return folder;
}

} // namespace

fs::path builtFile(const std::wstring& name)
{
    return fs::path(moduleFileName(nullptr)).parent_path() / name;
}

std::vector<uint8_t> readFile(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void writeFile(const fs::path& path, const std::vector<uint8_t>& bytes)
{
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
    ASSERT_TRUE(file.good());
}

installation_t::installation_t() : m_folder(newFolder())
{
    fs::copy_file(builtFile(L"resources_test/VLOnlineIDs.dll"), dllPath());
}

installation_t::~installation_t()
{
    m_dll.reset();
    // Not remove_all: it tries for ever when a language file is still mapped.
    std::error_code ignored;
    std::vector<fs::path> contents(1, m_folder);
    for (const auto& entry : fs::recursive_directory_iterator(m_folder, ignored))
        contents.push_back(entry.path());
    for (; !contents.empty(); contents.pop_back())
        fs::remove(contents.back(), ignored);
}

fs::path installation_t::install(const std::wstring& folder, const std::wstring& language)
{
    const fs::path path = m_folder / folder / L"VLOnlineIDs.dll.mui";
    fs::create_directories(path.parent_path());
    fs::copy_file(builtFile(language + L"/VLOnlineIDs.dll.mui"), path);
    return path;
}

HMODULE installation_t::dll()
{
    if (!m_dll)
        m_dll.reset(LoadLibraryW(dllPath().c_str()));
    return m_dll.get();
}

uiLanguages_t::uiLanguages_t(LANGID user, LANGID system)
    : m_user(GetModuleHandleW(nullptr), "GetUserDefaultUILanguage",
             reinterpret_cast<void*>(&fakeUserLanguage)),
      m_system(GetModuleHandleW(nullptr), "GetSystemDefaultUILanguage",
               reinterpret_cast<void*>(&fakeSystemLanguage))
{
    EXPECT_TRUE(m_user.found() && m_system.found());
    userLanguage = user;
    systemLanguage = system;
}

openedFiles_t::openedFiles_t()
    : m_patch(GetModuleHandleW(nullptr), "CreateFileW", reinterpret_cast<void*>(&notingCreateFile))
{
    EXPECT_TRUE(m_patch.found());
    createFile = importOriginal<decltype(&CreateFileW)>(m_patch);
    opened.clear();
}

openedFiles_t::~openedFiles_t()
{
    opened.clear();
}

std::vector<std::wstring> openedFiles_t::folders() const
{
    std::vector<std::wstring> names;
    for (const fs::path path : opened) {
        if (path.extension() == L".mui")
            names.push_back(path.parent_path().filename().wstring());
    }
    return names;
}
