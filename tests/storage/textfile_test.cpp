#include "surroundings.h"

#include "storage/textfile.h"

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
        {"\xEF\xBB\xBF[", {"\xEF\xBB\xBF["}}};
    for (const auto& [bytes, expected] : cases) {
        writeFile(m_root + L"t", bytes);
        TextLines lines = {"old"};
        load_textfile(m_root + L"t", lines);
        EXPECT_EQ(lines, expected);
        EXPECT_TRUE(DeleteFileW((m_root + L"t").c_str())); // let go of
    }
}

TEST_F(TextFile, NoFailureReachesTheCaller)
{
    std::ofstream writer(std::filesystem::path(m_root + L"held"));
    writer << "a" << std::flush;
    TextLines lines = {"old"};
    load_textfile(m_root + L"held", lines);
    EXPECT_EQ(lines, TextLines());
    const auto badSum = []() -> HANDLE { throw errors::fileload_error(4, "sum \xE4"); };
    for (HANDLE (*const call)() : {+badSum, &raise<std::bad_alloc>, &raise<int>}) {
        const importPatch_t calls("CreateFileW", call);
        load_textfile(m_root + L"held", lines);
    }
    EXPECT_EQ(traced(), L"|E 0 load_textfile [badcrc]: 'sum \u00E4'"
                        L"|E 0 load_textfile: std::bad_alloc|E 0 load_textfile oo");
    EXPECT_EQ(fileloadword(6) + fileloadword(5) + fileloadword(-1), "[6]nodll[-1]");
}
