#include "support/surroundings.h"

using BinDir = Surroundings;

TEST_F(BinDir, IsTheFirstOfItsSources)
{
    EXPECT_EQ(bindir_file(L"f"), LR"(x64\f)");
    const std::wstring narrow = LR"(SOFTWARE\Wow6432Node\Veltrano\Applications)";
    const std::tuple<std::wstring, const wchar_t*, const wchar_t*> cases[] = {
        {narrow, L"C:/d/", LR"(C:/d/x64\)"},
        {narrow + L"\\KRS", LR"(C:\c)", LR"(C:\c\x64\)"},
        {applications, LR"(C:\b)", LR"(C:\b\)"},
        {LR"(SOFTWARE\Veltrano\Applications\KRS)", LR"(C:\a)", LR"(C:\a\)"}};
    for (const auto& [key, text, found] : cases) { // each goes before those above it
        setValue(HKEY_LOCAL_MACHINE, key, L"BinDir", text);
        EXPECT_EQ(bindir_discover(true), found);
    }
}

TEST_F(BinDir, EachReaderHasItsOwnViewOfDamageAndAbsence)
{
    SetEnvironmentVariableW(L"ProgramFiles", LR"(C:\P)");
    EXPECT_EQ(bindir_plain() + bindir_view64(), LR"(C:\P\veltrano\bin\)");
    const std::wstring fits(259, L'x');
    const std::tuple<DWORD, std::wstring, DWORD, std::wstring> cases[] = {
        {REG_EXPAND_SZ, L"%TEMP%/", 0, LR"(%TEMP%/templates\|%TEMP%/\)"},
        {REG_BINARY, L"C:\\A", 0, LR"(templates\|C:\A\)"},
        {REG_SZ, L"abc", 4, LR"(templates\|ab\)"}, // no end
        {REG_SZ, fits, 0, fits + LR"(\templates\|)" + fits + L"\\"},
        {REG_SZ, fits + L"x", 0, LR"(templates\|\)"}}; // more than 520 bytes
    for (const auto& [type, text, bytes, strictThenLoose] : cases) {
        setValue(HKEY_LOCAL_MACHINE, applications, L"BinDir", text, type, bytes);
        EXPECT_EQ(templates_bindir() + L"|" + bindir_view64(), strictThenLoose);
    }
}
