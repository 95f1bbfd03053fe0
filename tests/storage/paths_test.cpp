#include "surroundings.h"

#include <atomic>
#include <thread>
#include <vector>

#include <shlobj.h>

#include "support/patchimport.h"
#include "support/tracerecorder.h"

namespace {

using texts = std::vector<std::wstring>;

TEST(UserFolders, ComeFromTheEnvironmentOrAreEmptyAndTraced)
{
    traceRecorder_t traces;
    const std::wstring longest(259, L'x');
    const std::wstring tooLong(260, L'x');
    const struct {
        const wchar_t* value;
        std::wstring base;
    } cases[] = {
        {LR"(C:\A)", LR"(C:\A\)"},
        {LR"(C:/A\b)", L"C:/A/b/"},
        {longest.c_str(), longest + L"\\"},
        {tooLong.c_str(), L""},
        {nullptr, L""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.base);
        const environment_t roaming(L"APPDATA", c.value);
        const auto below = [&](const wchar_t* suffix) {
            return c.base.empty() ? c.base : c.base + suffix;
        };
        EXPECT_EQ(appdata_rootdir(), below(LR"(Veltrano\KRS\)"));
        EXPECT_EQ(appdata_templatesdir(), below(LR"(Veltrano\KRS\Templates\)"));
    }
    EXPECT_EQ(traces.messages().back(), L"E -2147024693 failed to get appdata"); // 0x800700CB
}

HRESULT WINAPI noFolder(HWND, int, HANDLE, DWORD, wchar_t*)
{
    return E_FAIL;
}

TEST(UserFolders, LocalDataFallsBackToTheShell)
{
    traceRecorder_t traces;
    {
        const environment_t local(L"LOCALAPPDATA", LR"(C:\L)");
        EXPECT_EQ(localappdata_rootdir(), LR"(C:\L\Veltrano\KRS\)");
    }
    const environment_t local(L"LOCALAPPDATA", nullptr);
    wchar_t known[MAX_PATH] = {};
    SHGetFolderPathW(nullptr, CSIDL_LOCAL_APPDATA, nullptr, 0, known);
    EXPECT_EQ(localappdata_dir(), std::wstring(known) + L"\\");
    EXPECT_EQ(traces.messages(), texts());

    using lookup_t = FARPROC (*)(HMODULE, const char*);
    const lookup_t lookups[] = {
        [](HMODULE, const char*) -> FARPROC {
            SetLastError(ERROR_PROC_NOT_FOUND);
            return nullptr;
        },
        [](HMODULE, const char*) {
            SetLastError(ERROR_PROC_NOT_FOUND);
            return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&noFolder));
        },
    };
    for (const lookup_t lookup : lookups) {
        const importPatch_t patch(GetModuleHandleW(nullptr), "GetProcAddress",
                                  reinterpret_cast<void*>(lookup));
        ASSERT_TRUE(patch.found());
        EXPECT_EQ(localappdata_rootdir(), L"");
    }
    EXPECT_EQ(traces.messages(), (texts{L"E -2147024769 no SHGetFolderPath_",
                                        L"E -2147024769 failed to get localappdata"}));
}

TEST(PathTools, Separators)
{
    const struct {
        const wchar_t *path, *added, *unified;
    } cases[] = {
        {L"", L"", L""},
        {L"a", L"a\\", L"a"},
        {L"a/b\\c", L"a/b\\c\\", L"a/b/c"},
        {L"a\\b/", L"a\\b/", L"a\\b\\"},
        {L"/\\x", L"/\\x\\", L"//x"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.path);
        EXPECT_EQ(addslash(c.path), c.added);
        EXPECT_EQ(unifyslashes(c.path), c.unified);
    }
}

TEST(PathTools, OnlyTheExactMarkIsAMark)
{
    const struct {
        const wchar_t* text;
        bool marked;
        const wchar_t* rest;
    } cases[] = {
        {L"alien|", true, L""},      {L"alien|alien|x", true, L"alien|x"},
        {L"alien", false, L"alien"}, {L"ALIEN|x", false, L"ALIEN|x"},
        {L"", false, L""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        bool marked = !c.marked;
        EXPECT_EQ(stripalienmark(c.text, marked), c.rest);
        EXPECT_EQ(marked, c.marked);
    }
}

TEST(PathTools, LongPathsGetTheLongForm)
{
    const std::wstring prefix = LR"(\\?\)";
    const std::wstring shorter(248, L'x');
    const std::wstring longer(249, L'x');
    EXPECT_EQ(longform(shorter), shorter);
    EXPECT_EQ(longform(longer), prefix + longer);
    EXPECT_EQ(longform(prefix + longer), prefix + longer);
    EXPECT_EQ(lowerpath(L"ABZ\u00C4[\u0130"), L"abz\u00C4[\u0130");
}

TEST(PathTools, EnvironmentReferences)
{
    const std::wstring large(300, L'v');
    const environment_t variable(L"VL_LARGE", large.c_str());
    EXPECT_EQ(expandenv(L"a%VL_LARGE%b%VL_NONE%"), L"a" + large + L"b%VL_NONE%");
    EXPECT_EQ(expandenv(L""), L"");

    const struct {
        const wchar_t *roaming, *local, *path, *collapsed;
    } cases[] = {
        {L"C:\\R", L"C:\\L", L"C:\\R\\C:\\R\\x", L"%appdata%\\C:\\R\\x"},
        {L"C:\\R", L"C:\\L", L"C:\\L\\x", L"%localappdata%\\x"},
        {L"C:\\L\\R", L"C:\\L", L"C:\\L\\R\\x", L"%appdata%\\x"},
        {L"C:\\R", L"C:\\L", L"c:\\r\\x", L"c:\\r\\x"},
        {nullptr, L"C:\\L", L"C:\\L\\x", L"%appdata%C:\\L\\x"},
        {L"C:\\R", nullptr, L"D:\\x", L"%localappdata%D:\\x"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.collapsed);
        const environment_t roaming(L"APPDATA", c.roaming);
        const environment_t local(L"LOCALAPPDATA", c.local);
        EXPECT_EQ(collapseenv(c.path), c.collapsed);
    }
}

class ShortPath : public testing::Test
{
protected:
    ShortPath()
    {
        clearRegistry();
        setValue(HKEY_LOCAL_MACHINE, LR"(SOFTWARE\Veltrano\Applications)", L"BinDir", REG_SZ,
                 bytesOf(LR"(C:\App)"));
    }
    ~ShortPath() override { clearRegistry(); }

    environment_t m_roaming{L"APPDATA", LR"(C:\Users\A\AppData\Roaming)"};
    environment_t m_local{L"LOCALAPPDATA", LR"(C:\Users\A\AppData\Local)"};
};

TEST_F(ShortPath, NamesTheFirstFolderThatIsInThePath)
{
    const struct {
        const wchar_t *path, *shorter;
    } cases[] = {
        {LR"(C:\Users\A\AppData\Roaming\Veltrano\KRS\Templates\X.vlm)", L"kri::x.vlm"},
        {L"C:/Users/A/AppData/Roaming/Veltrano/KRS/Templates/x.vlm", L"kri::x.vlm"},
        {LR"(C:\Users\A/AppData\Roaming\Veltrano\KRS\q.txt)", L"krs::q.txt"},
        {LR"(C:\Users\A\AppData\Local\Veltrano\KRS\a)", L"usr::a"},
        {LR"(C:\APP\Templates\a)", L"dbg::a"},
        {LR"(C:\App\a)", L"bin::a"},
        {LR"(D:\C:\App\a)", LR"(d:\bin::a)"}, // anywhere
        {LR"(D:\Other\A)", LR"(d:\other\a)"},
        {L"", L""},
    };
    IN_FRESH_PROCESS({
        for (const auto& c : cases) {
            SCOPED_TRACE(c.path);
            EXPECT_EQ(shortpath(c.path), c.shorter);
        }
        EXPECT_EQ(shortpath_utf8("C:\\App\\\xC3\x84"), L"bin::\u00C4");
        const environment_t moved(L"APPDATA", LR"(D:\Other)");
        EXPECT_EQ(shortpath(cases[0].path), cases[0].shorter); // remembered
    });
}

TEST_F(ShortPath, AnUnknownFolderIsFoundInFrontOfEveryPath)
{
    IN_FRESH_PROCESS({
        EXPECT_EQ(shortpath(L""), L""); // looks nothing up
        const environment_t unset(L"APPDATA", nullptr);
        EXPECT_EQ(shortpath(LR"(C:\App\A)"), LR"(kri::c:\app\a)");
    });
}

TEST_F(ShortPath, ThreadsMayMeetAtTheFirstUse)
{
    IN_FRESH_PROCESS({
        std::atomic<int> right{0};
        std::vector<std::thread> threads;
        for (int i = 0; i < 8; ++i)
            threads.emplace_back([&] { right += shortpath(LR"(C:\App\a)") == L"bin::a"; });
        for (std::thread& thread : threads)
            thread.join();
        EXPECT_EQ(right, 8);
    });
}

TEST(Folders, AreMadeLevelByLevel)
{
    const std::wstring root = scratchFolder();
    writeFile(root + L"file", "x");
    const std::wstring deep = root + std::wstring(120, L'a') + L"\\" + std::wstring(120, L'b');
    const struct {
        std::wstring path;
        bool made;
        DWORD error;
    } cases[] = {
        {root, true, 0},
        {root + L"a\\b/c", true, 0},
        {LR"(\\?\)" + root + L"d\\", true, 0},
        {deep + L"\\c\\", true, 0}, // more than 260
        {root + L"file\\sub", false, ERROR_PATH_NOT_FOUND},
        {root + L"file", false, ERROR_ALREADY_EXISTS},
        {root + L"q?\\x", false, ERROR_INVALID_NAME},
        {L"", false, ERROR_PATH_NOT_FOUND},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.path);
        EXPECT_EQ(makedirs(c.path), c.made);
        if (c.made)
            EXPECT_TRUE(direxists(c.path));
        else
            EXPECT_EQ(GetLastError(), c.error);
    }
    EXPECT_TRUE(fileexists(root + L"file"));
    EXPECT_FALSE(fileexists(root + L"a"));
    EXPECT_FALSE(fileexists(root + L"none"));
    EXPECT_FALSE(direxists(root + L"none"));
}

texts createdFolders;

BOOL WINAPI badPathName(const wchar_t* path, SECURITY_ATTRIBUTES*)
{
    createdFolders.push_back(path);
    SetLastError(ERROR_BAD_PATHNAME);
    return FALSE;
}

TEST(Folders, TheServerOfANetworkPathCannotBeMade)
{
    const importPatch_t patch(GetModuleHandleW(nullptr), "CreateDirectoryW",
                              reinterpret_cast<void*>(&badPathName));
    ASSERT_TRUE(patch.found());
    createdFolders.clear();
    EXPECT_FALSE(makedirs(LR"(\\server\share\x)"));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_BAD_PATHNAME});
    EXPECT_EQ(createdFolders, (texts{LR"(\\server)", LR"(\\server\share)"}));

    createdFolders.clear();
    const std::wstring longName = LR"(Q:\)" + std::wstring(260, L'x');
    EXPECT_FALSE(makedirs(longName + L"\\y"));
    EXPECT_EQ(createdFolders, (texts{L"Q:"}));
}

} // namespace
