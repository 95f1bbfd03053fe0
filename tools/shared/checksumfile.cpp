#include "shared/checksumfile.h"

#include "formats/text/pathpart.h"
#include "formats/text/textlines.h"
#include "shared/filesystem.h"
#include "shared/inputfile.h"
#include "shared/outputfile.h"
#include "shared/sha256.h"
#include "shared/toolerror.h"

#include <algorithm>
#include <iostream>
#include <iterator>
#include <string_view>

namespace {

constexpr size_t digits = 64;

// baseName gives a file's name without its folder.
std::string baseName(const std::string& file)
{
    const std::u8string name = pathOf(file).filename().u8string();
    return {name.begin(), name.end()};
}

// checksumIn finds the checksum of a file of that name; empty if there is none. The only line of a list holds for a
// file that was renamed as well.
std::string checksumIn(std::string_view list, const std::string& name)
{
    TextLines lines;
    splitlines(list, lines);
    for (std::string& line : lines) {
        if (line.starts_with('\\')) // the name has characters that are written out
            line.erase(0, 1);
        const bool named = line.size() > digits + 2 && line.substr(digits + 2) == name;
        if (line.find_first_not_of("0123456789abcdefABCDEF") != digits ||
            (!named && lines.size() > 1))
            continue;
        line.resize(digits);
        std::transform(line.begin(), line.end(), line.begin(),
                       [](char c) { return c < 'A' ? c : static_cast<char>(c | 0x20); });
        return line;
    }
    return {};
}

} // namespace

std::string checksumFileName(const std::string& file)
{
    return file + ".sha256";
}

void writeChecksum(const std::string& file, std::span<const uint8_t> bytes, bool replace)
{
    COutputFile output(checksumFileName(file), replace, {file}, std::cout);
    output.Stream() << sha256Text(bytes) << "  " << baseName(file) << '\n';
    output.Complete();
}

checksum_t compareChecksum(const std::string& file, std::span<const uint8_t> bytes)
{
    const std::string name = checksumFileName(file);
    if (file == "-" || entryKind(pathOf(name)) == entryKind_t::missing)
        return checksum_t::absent;
    std::string sum;
    try {
        const std::vector<uint8_t> list = readInput(name, std::cin);
        sum = checksumIn({reinterpret_cast<const char*>(list.data()), list.size()}, baseName(file));
    } catch (const CToolError&) {
        // as if there were none in it
    }
    if (sum.empty())
        return checksum_t::unreadable;
    return sum == sha256Text(bytes) ? checksum_t::equal : checksum_t::different;
}
