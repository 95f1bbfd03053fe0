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
    const importPatch_t open(
        "CreateFileW", +[]() -> HANDLE { throw std::runtime_error("why"); });
    TextLines lines = {"old"};
    load_textfile(file, lines);
    EXPECT_EQ(traced(), L"|E 0 load_textfile: why");
}
