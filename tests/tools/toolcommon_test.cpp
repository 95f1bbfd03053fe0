#include <random>
#include <sstream>

#include <gtest/gtest.h>

#include "common/commandline.h"
#include "common/filesystem.h"
#include "common/inputfile.h"
#include "common/jsontext.h"
#include "common/outputfile.h"
#include "common/printable.h"

namespace {

namespace fs = std::filesystem;

TEST(Printable, NothingSteersATerminal)
{
    const struct {
        std::string text, shown, json;
    } cases[] = {
        {"C:\\Größe\\日 \U0001F600", "C:\\Größe\\日 \U0001F600",
         "\"C:\\\\Größe\\\\日 \U0001F600\""},
        {"\x1B[31m\x7F\t", "\\x1B[31m\\x7F\\t", "\"\\u001b[31m\\u007f\\t\""},
        {"\u0085\u009B\u00A0", "\\u{85}\\u{9B}\u00A0", "\"\\u0085\\u009b\u00A0\""},
        {"\u061C\u200E\u200F\u202E\u2069\u2028x",
         "\\u{61C}\\u{200E}\\u{200F}\\u{202E}\\u{2069}\\u{2028}x",
         "\"\\u061c\\u200e\\u200f\\u202e\\u2069\\u2028x\""},
        {"\xFF\xE6\x97\xC0\xAF\uFFFD", "\\xFF\\xE6\\x97\\xC0\\xAF\uFFFD",
         "\"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.shown);
        EXPECT_EQ(printable(c.text), c.shown);
        EXPECT_EQ(jsonText(c.text, false), c.json);
    }
    EXPECT_EQ(printable("a\r\nb"), "a\\r\\nb");
    EXPECT_EQ(printableLines("a\r\nb\n\x1B\r"), "a\nb\n\\x1B\\r");
}

class OutputFile : public testing::Test
{
protected:
    OutputFile() { fs::create_directories(m_folder); }
    ~OutputFile() override { fs::remove_all(m_folder); }
    std::string Name(const std::string& file) const
    {
        const auto path = (m_folder / fs::path(std::u8string(file.begin(), file.end()))).u8string();
        return {path.begin(), path.end()};
    }
    std::string Content(const std::string& name)
    {
        const auto bytes = readInput(name, m_none);
        return {bytes.begin(), bytes.end()};
    }
    // Writes as a command does that fails in the middle, or not.
    std::string Write(const std::string& name, bool replace, bool fail,
                      const std::vector<std::string>& inputs = {})
    {
        try {
            COutputFile file(name, replace, inputs, m_standard);
            file.Stream() << "new";
            if (!fail)
                file.Complete();
        } catch (const CToolError& error) {
            return error.what();
        }
        return {};
    }

    std::istringstream m_none;
    std::ostringstream m_standard;
    const fs::path m_folder =
        fs::temp_directory_path() / ("output-" + std::to_string(std::random_device()()));
};

TEST_F(OutputFile, IsTheNewOneWholeOrTheOldOneAndLeavesNothingBeside)
{
    const std::string names[] = {Name("plain"), Name("Größe-日"), Name(std::string(240, 'x'))};
    for (const std::string& name : names) {
        SCOPED_TRACE(name);
        Write(name, false, true);
        EXPECT_TRUE(fs::is_empty(m_folder));
        EXPECT_EQ(Write(name, false, false), "");
        EXPECT_EQ(Content(name), "new");
        std::ofstream(pathOf(name)) << "old";
        EXPECT_NE(Write(name, false, false).find("exists already"), std::string::npos);
        EXPECT_NE(Write(name, true, false, {name}).find("is what is read"), std::string::npos);
        Write(name, true, true);
        EXPECT_EQ(Content(name), "old");
        EXPECT_EQ(Write(name, true, false), "");
        EXPECT_EQ(Content(name), "new");
        EXPECT_EQ(std::distance(fs::directory_iterator(m_folder), {}), 1);
        fs::remove(pathOf(name));
    }
    EXPECT_NE(Write(Name(""), true, false).find("is a folder"), std::string::npos);
    EXPECT_NE(Write(Name("none/x"), true, false).find("folder does not exist"), std::string::npos);
    EXPECT_EQ(Write("-", false, false), "");
    EXPECT_EQ(m_standard.str(), "new");
}

} // namespace
