#include "storage/textfile.h"

#include "support/surroundings.h"

using TextFile = Surroundings;

TEST_F(TextFile, MarkDecidesTheEncoding)
{
    using namespace std::string_literals;
    const std::pair<std::string, TextLines> cases[] = {
        {"\xFF", {"\xFF"}},
        {"\xFF\xFE", {}},
        {"\xFF\xFE\x61", {}},                 // half a unit
        {"\xFF\xFE\x61\0\0\0\x62\0"s, {"a"}}, // ends at the zero
        {"\xFF\xFE\xE4\0\x3D\xD8\x00\xDE\x3D\xD8z"s, {"\xC3\xA4\xF0\x9F\x98\x80\xEF\xBF\xBD"}},
        {"\n\n a\rb\r\n\r\n\t", {" a", "b", "\t"}},
        {"\xEF\xBB\xBF[", {"\xEF\xBB\xBF["}}};
    const std::filesystem::path file = m_root + L"t";
    for (const auto& [bytes, expected] : cases) {
        std::ofstream writer(file, std::ios::binary); // which the last reader has let go of
        writer << bytes << std::flush;
        TextLines lines = {"old"};
        load_textfile(file, lines);
        EXPECT_EQ(lines, TextLines()); // still held
        writer.close();
        load_textfile(file, lines);
        EXPECT_EQ(lines, expected);
    }
}

TEST_F(TextFile, NoFailureReachesTheCaller)
{
    writeFile(m_root + L"t", "a");
    TextLines lines;
    const auto badSum = []() -> HANDLE { throw errors::fileload_error(4, "sum \xE4"); };
    for (HANDLE (*const call)() : {+badSum, &raise<std::bad_alloc>, &raise<int>}) {
        const importPatch_t calls("CreateFileW", call);
        load_textfile(m_root + L"t", lines);
    }
    EXPECT_EQ(traced(), L"|E 0 load_textfile [badcrc]: 'sum \u00E4'"
                        L"|E 0 load_textfile: std::bad_alloc|E 0 load_textfile oo");
    const importPatch_t size(
        "GetFileSize", +[](HANDLE) { return SetLastError(ERROR_IO_DEVICE), INVALID_FILE_SIZE; });
    EXPECT_TRUE(!mapfile_open(m_root + L"t").view) << "of a size that nobody knows";
    EXPECT_EQ(fileloadword(6) + fileloadword(5) + fileloadword(-1), "[6]nodll[-1]");
}
