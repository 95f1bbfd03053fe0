#include "surroundings.h"

#include "storage/textfile.h"

TextLines linesOf(const std::wstring& file)
{
    TextLines lines = {"old"};
    load_textfile(file, lines);
    return lines;
}

TEST(TextFile, TheMarkDecidesTheEncoding)
{
    using namespace std::string_literals;
    const std::string mark = "\xFF\xFE";
    const std::pair<std::string, std::string> cases[] = {
        {"", ""},
        {"\xFF", "\xFF"},
        {mark, ""},
        {mark + "a", ""},            // half a unit
        {mark + "a\0\0\0b\0"s, "a"}, // ends at the zero
        {mark + "\xE4\0\x3D\xD8\x00\xDE\x3D\xD8z"s, "\xC3\xA4\xF0\x9F\x98\x80\xEF\xBF\xBD"},
        {"\xFE\xFF\0a"s, "\xFE\xFF\0a"s},
        {"\xEF\xBB\xBF["s, "\xEF\xBB\xBF["s}};
    const std::wstring file = scratchFolder() + L"t.txt";
    for (const auto& [bytes, decoded] : cases) {
        writeFile(file, bytes);
        MappedFile mapped = mapfile_open(file);
        std::string text = "old";
        decodetext(mapped, text);
        EXPECT_EQ(text, decoded);
        mapfile_close(mapped);
        EXPECT_TRUE(!mapped.view && DeleteFileW(file.c_str())); // let go of
    }
}

template <class Error> HANDLE raise(const wchar_t*, DWORD, DWORD, void*, DWORD, DWORD, HANDLE)
{
    throw Error();
}
struct badSum : errors::fileload_error {
    badSum() : fileload_error(4, "sum \xE4") {}
};

TEST(TextFile, NoFailureReachesTheCaller)
{
    const std::wstring folder = scratchFolder(), large = folder + L"large";
    traceRecorder_t traces;
    writeFile(folder + L"empty", "");
    writeFile(large, "a\n");
    std::filesystem::resize_file(large, 100 << 20);
    std::ofstream writer(std::filesystem::path(large), std::ios::app);
    for (const std::wstring& file : {folder + L"empty", folder + L"missing", folder, large})
        EXPECT_EQ(linesOf(file), TextLines());
    writer.close();
    EXPECT_EQ(linesOf(large), (TextLines{"a", std::string((100 << 20) - 2, '\0')}));
    for (const auto call : {raise<badSum>, raise<std::bad_alloc>, raise<int>}) {
        const auto calls = catchCalls("CreateFileW", call);
        EXPECT_EQ(linesOf(large), TextLines());
    }
    EXPECT_EQ(traces.messages(),
              (texts{L"E 0 load_textfile [badcrc]: 'sum \u00E4'",
                     L"E 0 load_textfile: std::bad_alloc", L"E 0 load_textfile oo"}));
    EXPECT_EQ(fileloadword(6) + fileloadword(5) + fileloadword(-1), "[6]nodll[-1]");
}
