#include "surroundings.h"

constexpr wchar_t krs[] = LR"(SOFTWARE\Veltrano\Applications\KRS)";
constexpr wchar_t applications[] = LR"(SOFTWARE\Veltrano\Applications)";

TEST(BinDir, IsTheFirstOfItsSources)
{
    const environment_t programs(L"ProgramFiles(x86)", LR"(C:\P86\)");
    clearRegistry();
    EXPECT_EQ(bindir_file(L"f"), LR"(x64\f)");
    EXPECT_EQ(bindir_discover(false), LR"(C:\P86\veltrano\bin\)");
    setValue(HKEY_LOCAL_MACHINE, applications, L"BinDir", REG_SZ, bytesOf(L"C:\\d/"), narrow);
    EXPECT_EQ(bindir_discover(true), LR"(C:\d/x64\)");
    setValue(HKEY_LOCAL_MACHINE, krs, L"BinDir", REG_SZ, bytesOf(L"C:\\c"), narrow);
    EXPECT_EQ(bindir_discover(true), LR"(C:\c\x64\)");
    setValue(HKEY_LOCAL_MACHINE, applications, L"BinDir", REG_SZ, bytesOf(L"C:\\b"));
    EXPECT_EQ(bindir_discover(true), LR"(C:\b\)");
    setValue(HKEY_LOCAL_MACHINE, krs, L"BinDir", REG_SZ, bytesOf(L"C:\\a"));
    EXPECT_EQ(bindir_discover(true), LR"(C:\a\)");
    EXPECT_EQ(bindir_discover(false), LR"(C:\c\)");
}

TEST(BinDir, EachReaderHasItsOwnViewOfDamageAndAbsence)
{
    const environment_t programs(L"ProgramFiles", LR"(C:\P)");
    clearRegistry();
    EXPECT_EQ(bindir_plain() + bindir_view64(), LR"(C:\P\veltrano\bin\)");
    const std::wstring fits(259, L'x');
    const std::tuple<DWORD, std::string, std::wstring, std::wstring> cases[] = {
        {REG_SZ, bytesOf(L"C:/A/"), L"C:/A/", L"C:/A/\\"},
        {REG_EXPAND_SZ, bytesOf(L"%TEMP%\\b"), L"%TEMP%\\b\\", L"%TEMP%\\b\\"},
        {REG_BINARY, bytesOf(L"C:\\A"), L"", L"C:\\A\\"},
        {REG_SZ, std::string("a\0b\0c", 5), L"", L"abc\\"}, // half a character
        {REG_SZ, std::string("a\0b\0", 4), L"", L"ab\\"},   // no end
        {REG_SZ, bytesOf(fits), fits + L"\\", fits + L"\\"},
        {REG_SZ, bytesOf(fits + L"x"), L"", L"\\"}, // more than 520 bytes
    };
    for (const auto& [type, bytes, strict, loose] : cases) {
        setValue(HKEY_LOCAL_MACHINE, applications, L"BinDir", type, bytes);
        EXPECT_EQ(bindir_fromkey(applications, true), strict);
        EXPECT_EQ(templates_bindir(), strict + L"templates\\");
        EXPECT_EQ(bindir_view64(), loose);
    }
}
