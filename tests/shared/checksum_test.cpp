#include "shared/checksumfile.h"
#include "support/backupbytes.h"
#include "support/files.h"

#include <random>

#include <gtest/gtest.h>

namespace {

TEST(Checksum, IsReadAsItsCommonFormsAreWritten)
{
    namespace fs = std::filesystem;
    const fs::path folder =
        fs::temp_directory_path() / ("sum" + std::to_string(std::random_device()()));
    const bytes abc = {'a', 'b', 'c'};
    const std::string sum = "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad";
    const std::string zeros(64, '0');
    const std::string file = (folder / "x y.vlb").string();
    fs::create_directory(folder);
    EXPECT_EQ(compareChecksum(file, abc), checksum_t::absent);
    writeChecksum(file, abc, false);
    EXPECT_EQ(fileBytes(file + ".sha256"), sum + "  x y.vlb\n");
    const struct {
        std::string list;
        checksum_t outcome;
    } cases[] = {
        {sum + "  x y.vlb\n", checksum_t::equal},
        {"BA" + sum.substr(2) + " *other.vlb\r\n", checksum_t::equal}, // renamed
        {zeros + "  a\n" + sum + "  x y.vlb\n", checksum_t::equal},
        {zeros + "  x y.vlb\n", checksum_t::different},
        {zeros + "  a\n" + sum + "  b\n", checksum_t::unreadable},
        {sum + "0  x y.vlb\n", checksum_t::unreadable},
        {"", checksum_t::unreadable},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.list);
        writeFile(file + ".sha256", c.list);
        EXPECT_EQ(compareChecksum(file, abc), c.outcome);
    }
    fs::remove_all(folder);
}

} // namespace
