#include "surroundings.h"

namespace {

constexpr wchar_t krs[] = LR"(SOFTWARE\Veltrano\Applications\KRS)";
constexpr wchar_t applications[] = LR"(SOFTWARE\Veltrano\Applications)";

class BinDir : public testing::Test
{
protected:
    BinDir() { clearRegistry(); }
    ~BinDir() override { clearRegistry(); }

    environment_t m_programs{L"ProgramFiles", LR"(C:\Programs)"};
    environment_t m_programs86{L"ProgramFiles(x86)", LR"(C:\Programs86\)"};
};

TEST_F(BinDir, IsTheFirstOfItsSources)
{
    const struct {
        const wchar_t* native[2]; // KRS, Applications
        const wchar_t* narrow[2];
        const wchar_t* discovered[2]; // from the native view, from the 32-bit one
    } cases[] = {
        {{L"C:\\a", L"C:\\b"}, {L"C:\\c", L"C:\\d"}, {L"C:\\a\\", L"C:\\c\\"}},
        {{L"", L"C:\\b"}, {L"", L"C:\\d"}, {L"C:\\b\\", L"C:\\d\\"}},
        {{nullptr, nullptr}, {L"C:\\c", L"C:\\d"}, {L"C:\\c\\x64\\", L"C:\\c\\"}},
        {{nullptr, nullptr}, {nullptr, L"C:\\d/"}, {L"C:\\d/x64\\", L"C:\\d/"}},
        {{nullptr, nullptr}, {nullptr, nullptr}, {L"x64\\", L"C:\\Programs86\\veltrano\\bin\\"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.discovered[0]);
        clearRegistry();
        for (const int i : {0, 1}) {
            const wchar_t* key = i == 0 ? krs : applications;
            if (c.native[i])
                setValue(HKEY_LOCAL_MACHINE, key, L"BinDir", REG_SZ, bytesOf(c.native[i]));
            if (c.narrow[i])
                setValue(HKEY_LOCAL_MACHINE, key, L"BinDir", REG_SZ, bytesOf(c.narrow[i]),
                         KEY_WOW64_32KEY);
        }
        EXPECT_EQ(bindir_discover(true), c.discovered[0]);
        EXPECT_EQ(bindir_discover(false), c.discovered[1]);
        EXPECT_EQ(bindir_file(L"f.dll"), std::wstring(c.discovered[0]) + L"f.dll");
    }
}

TEST_F(BinDir, EachReaderHasItsOwnViewOfDamage)
{
    const std::wstring fits(259, L'x');
    const struct {
        DWORD type;
        std::string bytes;
        std::wstring read;   // by the chain and the plain reader
        std::wstring view64; // which looks at neither type nor end
    } cases[] = {
        {REG_SZ, bytesOf(L"C:\\App"), L"C:\\App\\", L"C:\\App\\"},
        {REG_SZ, bytesOf(L"C:/App/"), L"C:/App/", L"C:/App/\\"},
        {REG_EXPAND_SZ, bytesOf(L"%TEMP%\\bin"), L"%TEMP%\\bin\\", L"%TEMP%\\bin\\"},
        {REG_BINARY, bytesOf(L"C:\\App"), L"", L"C:\\App\\"},
        {REG_DWORD, std::string("A\0B\0", 4), L"", L"AB\\"},
        {REG_SZ, std::string("a\0b\0c", 5), L"", L"abc\\"}, // half a character
        {REG_SZ, std::string("a\0b\0X", 4), L"", L"ab\\"},  // no end
        {REG_SZ, std::string(), L"", L"\\"},
        {REG_SZ, bytesOf(fits), fits + L"\\", fits + L"\\"},
        {REG_SZ, bytesOf(fits + L"x"), L"", L"\\"}, // more than 520 bytes
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.view64);
        std::string bytes = c.bytes + "X"; // not zero behind the value, so that no end is added
        setValue(HKEY_LOCAL_MACHINE, applications, L"BinDir", c.type,
                 std::string_view(bytes).substr(0, c.bytes.size()));
        EXPECT_EQ(bindir_fromkey(applications, true), c.read);
        EXPECT_EQ(bindir_plain(), c.read);
        EXPECT_EQ(templates_bindir(), c.read + L"templates\\");
        EXPECT_EQ(bindir_view64(), c.view64);
    }
}

TEST_F(BinDir, AMissingKeyIsNotAMissingValue)
{
    EXPECT_EQ(bindir_plain(), LR"(C:\Programs\veltrano\bin\)");
    EXPECT_EQ(bindir_view64(), L"");
    setValue(HKEY_LOCAL_MACHINE, applications, L"Other", REG_SZ, bytesOf(L"x"));
    EXPECT_EQ(bindir_plain(), L"");
    EXPECT_EQ(bindir_view64(), L"\\");
}

} // namespace
