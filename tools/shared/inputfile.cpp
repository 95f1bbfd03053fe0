#include "shared/inputfile.h"

#include "formats/der/derreader.h"
#include "formats/text/printable.h"
#include "formats/text/unicode.h"
#include "shared/filesystem.h"
#include "shared/toolerror.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <string_view>

namespace {

constexpr size_t pieceSize = 1 << 18;
constexpr size_t beginningSize = 4096;

// sizeHint gives the bytes that are left in a file; 0 for a pipe.
size_t sizeHint(std::istream& stream)
{
    const std::streamoff at = stream.tellg();
    stream.seekg(0, std::ios::end);
    const std::streamoff end = stream.tellg();
    stream.clear();
    if (at < 0 || end < at)
        return 0;
    stream.seekg(at);
    return static_cast<size_t>(end - at);
}

std::vector<uint8_t> readAll(const std::string& name, std::istream& stream)
{
    std::vector<uint8_t> bytes;
    bytes.reserve(sizeHint(stream) + 1); // one more, to see the end without growing
    while (stream) {
        const size_t before = bytes.size();
        bytes.resize(std::max(bytes.capacity(), before + pieceSize));
        stream.read(reinterpret_cast<char*>(bytes.data() + before),
                    static_cast<std::streamsize>(bytes.size() - before));
        bytes.resize(before + static_cast<size_t>(stream.gcount()));
    }
    checkRead(name, stream);
    return bytes;
}

bool isText(std::string_view text)
{
    while (!text.empty()) {
        const bool cut = text.size() < 4; // maybe within a character
        const char32_t c = takeCharacter(text);
        if ((c == 0xFFFD && !cut) || (isSteering(c) && c != '\t' && c != '\r' && c != '\n'))
            return false;
    }
    return true;
}

std::string spacedHex(std::span<const uint8_t> bytes)
{
    std::string text;
    for (const uint8_t byte : bytes) {
        std::array<char, 4> digits{};
        std::snprintf(digits.data(), digits.size(), " %02X", byte);
        text += digits.data();
    }
    return text;
}

bool isBackup(std::span<const uint8_t> bytes)
{
    CDerReader reader(bytes);
    std::span<const uint8_t> outer;
    return reader.Read(0x30, outer) && outer.size() > 1 && outer[0] == 0x30;
}

} // namespace

std::string shownInput(const std::string& name)
{
    return name == "-" ? "standard input" : name;
}

void checkRead(const std::string& name, const std::istream& stream)
{
    if (stream.bad())
        throw CToolError(shownInput(name) + " could be read only in part",
                         "is its drive still there?");
}

std::ifstream openInput(const std::string& name)
{
    const std::filesystem::path path = pathOf(name);
    switch (entryKind(path)) {
    case entryKind_t::missing:
        throw CToolError(name + " does not exist", "is the name spelt right?");
    case entryKind_t::folder:
        throw CToolError(name + " is a folder", "name a file in it");
    default:
        break;
    }
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        const std::error_code error(errno, std::generic_category());
        throw CToolError(name + " can't be opened: " + reasonOf(error),
                         "may you read it, or does another program hold it?");
    }
    return file;
}

CInput::CInput(const std::string& name, std::istream& standardInput)
{
    if (name == "-") {
        m_read = readAll(name, standardInput);
        return;
    }
    std::ifstream file = openInput(name); // says what is wrong with it
    if (entryKind(pathOf(name)) == entryKind_t::file)
        m_file = CMappedFile(pathOf(name));
    if (m_file.Bytes().empty())
        m_read = readAll(name, file);
}

std::vector<uint8_t> readInput(const std::string& name, std::istream& standardInput)
{
    const CInput input(name, standardInput);
    return {input.Bytes().begin(), input.Bytes().end()};
}

std::string describeBytes(std::span<const uint8_t> bytes)
{
    if (bytes.empty())
        return "empty";
    if (isBackup(bytes))
        return "a backup, which vlbackup reads";
    using namespace std::string_view_literals;
    static constexpr std::pair<std::string_view, const char*> marks[] = {
        {"trace3"sv, "a trace, which vltrace reads"},
        {"PK\3\4"sv, "a ZIP archive"},
        {"\x1F\x8B"sv, "a gzip archive"},
        {"7z\xBC\xAF"sv, "a 7z archive"},
        {"%PDF-"sv, "a PDF document"},
        {"MZ"sv, "a Windows program"},
        {"\x7F"
         "ELF"sv,
         "a program"},
        {"\x89PNG"sv, "a picture"},
        {"\xFF\xD8\xFF"sv, "a picture"},
        {"\xFF\xFE"sv, "UTF-16 text"},
    };
    const auto beginning = bytes.first(std::min(bytes.size(), beginningSize));
    const std::string text(beginning.begin(), beginning.end());
    for (const auto& [mark, words] : marks)
        if (text.starts_with(mark))
            return words;
    if (std::all_of(bytes.begin(), bytes.end(), [](uint8_t byte) { return byte == 0; }))
        return "nothing but zeros";
    if (isText(text)) {
        const size_t first = std::min(text.find_first_not_of(" \t\r\n\uFEFF"), text.size() - 1);
        return text[first] == '{' || text[first] == '[' ? "JSON text"
               : text[first] == '<'                     ? "XML or HTML text"
                                                        : "text";
    }
    return "bytes that begin" + spacedHex(bytes.first(std::min<size_t>(bytes.size(), 8)));
}
