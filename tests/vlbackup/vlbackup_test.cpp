#include "formats/backup/backupview.h"
#include "shared/checksumfile.h"
#include "support/files.h"
#include "vlbackup/backups.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <new>
#include <random>
#include <set>
#include <sstream>

namespace fs = std::filesystem;

namespace {

size_t held = 0, mostHeld = 0; // bytes, of the whole program

} // namespace

void* operator new(size_t size)
{
    auto* const block = static_cast<size_t*>(std::malloc(size + 16));
    if (!block)
        throw std::bad_alloc();
    *block = size;
    mostHeld = std::max(mostHeld, held += size);
    return block + 16 / sizeof *block;
}

// A sanitizer has its own, whose blocks are not for the delete below.
void* operator new(size_t size, const std::nothrow_t&) noexcept
try {
    return operator new(size);
} catch (const std::bad_alloc&) {
    return nullptr;
}

// Inlined, it would look to the compiler as if it read before the block.
[[gnu::noinline]] void operator delete(void* memory) noexcept
{
    if (!memory)
        return;
    auto* const block = static_cast<size_t*>(memory) - 16 / sizeof(size_t);
    held -= *block;
    std::free(block);
}

void operator delete(void* memory, size_t) noexcept
{
    operator delete(memory);
}

namespace {

const bytes none = seq({}), a = filePair(L"a.vlm", "AB"), b = filePair(L"b.vlm", {});
const std::vector<bytes> parts = {seq({a, b}), seq({link(L"l")}),
                                  seq({seq({wide(L"c"), wide(L"1")})}),
                                  settings(R"("a":1,"path_dontpromptlist_filename":"x")")};
const bytes example = seq(parts);

// A backup with one of its elements replaced.
bytes with(size_t position, const bytes& element)
{
    std::vector<bytes> changed = parts;
    changed[position] = element;
    return seq(changed);
}

// A folder of the test's own: files go into "out", where "link" leads to "outside".
class InFolder : public testing::Test
{
protected:
    InFolder()
    {
        writeFile(m_root / "outside" / "theirs.vlm", "theirs");
        fs::create_directories(m_root / "out/alien/C");
        std::error_code error; // Wine has none
        fs::create_directory_symlink(m_root / "outside", m_root / "out/link", error);
        fs::create_symlink(m_root / "outside/theirs.vlm", m_root / "out/link.vlm", error);
        fs::create_directory_symlink(m_root / "outside", m_root / "out/alien/C/link", error);
        m_linked = !error;
    }
    ~InFolder() override { fs::remove_all(m_root); }

    std::string Stored(const bytes& backup) const
    {
        const fs::path path = m_root / "x y.vlb";
        writeFile(path, {reinterpret_cast<const char*>(backup.data()), backup.size()});
        return path.string();
    }
    toolRun_t Extract(const bytes& input, std::vector<std::string> more = {}) const
    {
        more.insert(more.begin(), {"extract", "-", (m_root / "out").string()});
        return vlbackup(std::move(more), input);
    }
    // The files that were written, and what they hold; nothing else has changed.
    std::map<std::string, std::string> Written() const
    {
        std::map<std::string, std::string> files;
        for (const auto& entry : fs::recursive_directory_iterator(m_root))
            if (!entry.is_symlink() && entry.is_regular_file()) {
                const auto name = entry.path().lexically_relative(m_root).generic_u8string();
                files[{name.begin(), name.end()}] = fileBytes(entry.path());
            }
        EXPECT_EQ(files["outside/theirs.vlm"], "theirs");
        files.erase("outside/theirs.vlm");
        return files;
    }

    fs::path m_root =
        fs::temp_directory_path() / ("extract-" + std::to_string(std::random_device()()));
    bool m_linked = false;
};

TEST_F(InFolder, TheBackupIsHeldAndLittleOfEachElement)
{
    struct : std::streambuf {
        int overflow(int c) override { return c == EOF ? 0 : c; }
    } nothing;
    constexpr size_t count = 5'000;
    std::vector<bytes> stored;
    for (size_t i = 0; i < count; ++i) // with two findings each
        stored.push_back(filePair(L"what kind of file? " + std::to_wstring(i), ""));
    const std::string file = Stored(seq({seq(stored), none}));
    std::istringstream in;
    std::ostream full(nullptr);
    EXPECT_EQ(runVlbackup({"ls", file}, in, full, full), 1);
    for (const std::vector<std::string>& command :
         {std::vector<std::string>{"ls"}, {"info"}, {"verify"}, {"diff", file}})
        for (const bool json : {false, true}) {
            std::ostream out(&nothing);
            std::vector<std::string> arguments = command;
            arguments.push_back(file);
            if (json)
                arguments.emplace_back("--json");
            const size_t before = mostHeld = held;
            EXPECT_NE(runVlbackup(std::move(arguments), in, out, out), 2);
            EXPECT_LT(mostHeld - before, 64 * count + (1 << 17)) << command[0] << json;
        }
}

TEST_F(InFolder, ExtractStaysInItsFolderWhateverTheNamesAre)
{
    const std::wstring pieces[] = {
        L"..",      L"\\",     L"/",       L"alien|",     L"C:\\",   L"\\\\s\\x\\",
        L"\\\\?\\", L"con",    L":b",      L"a",          L"A",      L"link",
        L".vlm",    L" ",      L".",       L"?|*",        L"\u202e", L"com\u00b9",
        L"\u00e9",  L"\u0001", L"outside", L"theirs.vlm", L"<",      std::wstring(130, L'x')};
    std::mt19937 random(4711); // NOLINT(cert-msc51-cpp): the same names each time
    std::vector<bytes> stored;
    for (int i = 0; i < 800; ++i) {
        std::wstring name = i % 2 == 0 ? L"alien|c:\\" : L"";
        for (auto left = 1 + random() % 5; left > 0; --left)
            name += pieces[random() % std::size(pieces)];
        stored.push_back(filePair(name, std::to_string(i)));
    }
    for (const wchar_t* name : {L"link.vlm", L"alien|C:\\link\\new.vlm"})
        stored.push_back(filePair(name, "x"));
    writeFile(m_root / "out/a.vlm", "mine");
    EXPECT_EQ(Extract(example, {"a.vlm"}).status, 1);
    EXPECT_EQ(fileBytes(m_root / "out/a.vlm"), "mine");
    stored.push_back(a);
    const toolRun_t result = Extract(seq({seq(stored), none}), {"--force"});
    auto files = Written();
    EXPECT_EQ(files["out/a.vlm"], "AB");
    EXPECT_EQ(std::ranges::count(result.out, '\n'), files.size());
    EXPECT_EQ(std::ranges::count(result.out + result.err, '\n'), stored.size());
    EXPECT_EQ(m_linked, result.err.find("link.vlm is a link") != std::string::npos);
    if (m_linked) { // another output follows it
        vlbackup({"redact", "-", (m_root / "out/link.vlm").string(), "--force"}, example);
        EXPECT_TRUE(fs::is_symlink(m_root / "out/link.vlm"));
        EXPECT_NE(fileBytes(m_root / "outside/theirs.vlm"), "theirs");
    }
    std::set<std::string> lower;
    for (const auto& [name, content] : files) {
        SCOPED_TRACE(name);
        EXPECT_TRUE(name.starts_with("out/"));
        std::string folded = name;
        std::ranges::transform(folded, folded.begin(), [](unsigned char c) { return tolower(c); });
        EXPECT_TRUE(lower.insert(folded).second);
        // Nothing that some file system would not take, or take for another file.
        EXPECT_EQ(folded.find_first_of("<>:\"|?*\\\x01"), std::string::npos);
        EXPECT_EQ(folded.find(std::string(256, 'x')), std::string::npos);
        std::istringstream path(folded);
        for (std::string part; std::getline(path, part, '/');) {
            EXPECT_EQ(std::string(" .").find(part.back()), std::string::npos);
            part.resize(std::min(part.size(), part.find('.')));
            part.resize(part.find_last_not_of(' ') + 1);
            EXPECT_TRUE(part != "con" && part != "com\u00b9");
        }
    }
    EXPECT_GT(files.size(), 50U);
}

TEST_F(InFolder, MergeOfAnyTwoIsSound)
{
    const std::vector<bytes> backups = {example, with(0, none), seq({parts[0], none}),
                                        seq({none, none, none}),
                                        with(3, seq({integer(1), wide(L"Alt+1")}))};
    for (const bytes& mine : backups)
        for (const bytes& other : backups) {
            const toolRun_t merged =
                vlbackup({"merge", "-", Stored(other), "-o", "-", "--prefer", "second"}, mine);
            EXPECT_EQ(vlbackup({"verify", "-"}, merged.out).status, 0) << merged.err;
            EXPECT_TRUE(mine != other || merged.out == std::string(mine.begin(), mine.end()));
        }
}

TEST_F(InFolder, VerifyReadsTheChecksumThatIsWritten)
{
    const std::string file = Stored(with(0, seq({a}))), list = file + ".sha256";
    writeChecksum(file, bytes{'a', 'b', 'c'}, false);
    EXPECT_EQ(fileBytes(list), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"
                               "  x y.vlb\n");
    EXPECT_EQ(vlbackup({"verify", file}, none).status, 1);
    writeChecksum(file, with(0, seq({a})), true);
    EXPECT_EQ(vlbackup({"verify", file}, none).status, 0);
}

TEST(BackupView, NamesTheMarkedFilesOutsideOfFolders)
{
    std::vector<bytes> stored = {a};
    for (const std::wstring path :
         {L"C:\\Logons\\a.vlm", L"c:/logons/x/b.vlm", L"C:\\Logons\\..\\c.vlm",
          L"C:\\LogonsX\\d.vlm", L"\\\\?\\C:\\LOGONS\\e.vlm", L"D:\\Logons\\f.vlm"})
        stored.push_back(filePair(L"alien|" + path, "x"));
    const bytes backup = seq({seq(stored), none});
    CBackupView view;
    ASSERT_TRUE(view.Decode(backup));
    const std::vector<std::string> folders = {"C:\\Logons\\", ""};
    std::string outside;
    for (const BackupFile& marked : view.MarkedOutside(folders))
        outside += std::to_string(marked.place);
    EXPECT_EQ(outside, "346");
}

} // namespace
