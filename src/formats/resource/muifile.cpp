#include "formats/resource/muifile.h"

#include "formats/resource/stringblock.h"

#include <algorithm>
#include <cstring>
#include <optional>

namespace {

using bytes_t = std::span<const uint8_t>;

constexpr uint32_t muiMagic = 0xFECDFECD;
constexpr size_t serviceOffset = 28;
constexpr size_t contentOffset = 44;
constexpr uint32_t stringTable = 6;
constexpr uint32_t highBit = 0x80000000;
constexpr unsigned maxEntries = 0x10000; // a forged tree can name one directory many times

uint16_t wordAt(bytes_t bytes, size_t offset) noexcept
{
    return static_cast<uint16_t>(bytes[offset] | bytes[offset + 1] << 8);
}

uint32_t dwordAt(bytes_t bytes, size_t offset) noexcept
{
    return wordAt(bytes, offset) | static_cast<uint32_t>(wordAt(bytes, offset + 2)) << 16;
}

// part gives length bytes from offset on, nothing if they don't all lie in bytes.
std::optional<bytes_t> part(bytes_t bytes, size_t offset, size_t length) noexcept
{
    if (offset > bytes.size() || bytes.size() - offset < length)
        return std::nullopt;
    return bytes.subspan(offset, length);
}

// imageLayout_t finds addresses of the loaded image in the bytes of its file.
class imageLayout_t
{
public:
    explicit imageLayout_t(bytes_t file) noexcept : m_file(file) {}

    // resources gives the bytes from the resource directory to the end of its section; empty data
    // for a file without resources, nothing for one that isn't a PE file.
    std::optional<bytes_t> resources() noexcept
    {
        const auto dos = part(m_file, 0, 0x40);
        if (!dos || wordAt(*dos, 0) != 0x5A4D)
            return std::nullopt;
        const size_t start = dwordAt(*dos, 0x3C);
        const auto headers = part(m_file, start, 24);
        if (!headers || dwordAt(*headers, 0) != 0x4550)
            return std::nullopt;
        const size_t optionalSize = wordAt(*headers, 20);
        const auto optional = part(m_file, start + 24, optionalSize);
        if (!optional || optionalSize < 2)
            return std::nullopt;
        const uint16_t kind = wordAt(*optional, 0);
        if (kind != 0x10B && kind != 0x20B)
            return std::nullopt;
        const size_t directories = kind == 0x20B ? 112 : 96;
        if (optionalSize < directories)
            return std::nullopt;
        const auto sections =
            part(m_file, start + 24 + optionalSize, size_t{wordAt(*headers, 6)} * sectionSize);
        if (!sections)
            return std::nullopt;
        m_sections = *sections;
        constexpr size_t resourceDirectory = 2;
        if (dwordAt(*optional, directories - 4) <= resourceDirectory ||
            optionalSize < directories + 8 * (resourceDirectory + 1))
            return bytes_t();
        const uint32_t root = dwordAt(*optional, directories + 8 * resourceDirectory);
        if (!root)
            return bytes_t();
        const uint32_t headersEnd = dwordAt(*optional, 60);
        if (root < headersEnd) // the platform would take the bytes there
            return std::nullopt;
        return fromAddress(root);
    }

    // fromAddress gives the bytes from an address to the end of its section.
    std::optional<bytes_t> fromAddress(uint32_t address) const noexcept
    {
        for (size_t at = 0; at < m_sections.size(); at += sectionSize) {
            const uint32_t begin = dwordAt(m_sections, at + 12);
            const uint32_t size = dwordAt(m_sections, at + 16);
            if (address < begin || address - begin >= size)
                continue;
            const auto raw = part(m_file, dwordAt(m_sections, at + 20), size);
            if (!raw)
                return std::nullopt;
            return raw->subspan(address - begin);
        }
        return std::nullopt;
    }

private:
    static constexpr size_t sectionSize = 40;
    bytes_t m_file;
    bytes_t m_sections;
};

// resourceWalk_t visits every resource of a file: type, name, language, data.
class resourceWalk_t
{
public:
    resourceWalk_t(const imageLayout_t& image, bytes_t root) noexcept : m_image(image), m_root(root)
    {}

    bool run(muiFile_t& found) noexcept { return directory(0, 0, found); }

private:
    bool directory(uint32_t offset, unsigned level, muiFile_t& found) noexcept
    {
        const auto header = part(m_root, offset, 16);
        if (!header)
            return false;
        const size_t count = size_t{wordAt(*header, 12)} + wordAt(*header, 14);
        const auto entries = part(m_root, size_t{offset} + 16, count * 8);
        if (!entries)
            return false;
        for (size_t at = 0; at < entries->size(); at += 8) {
            const uint32_t name = dwordAt(*entries, at);
            const uint32_t target = dwordAt(*entries, at + 4);
            const bool leaf = level == 2;
            if (++m_entries > maxEntries || !nameIsSound(name) || leaf == ((target & highBit) != 0))
                return false;
            m_path[level] = name;
            if (!(leaf ? data(target, found) : directory(target & ~highBit, level + 1, found)))
                return false;
        }
        return true;
    }

    std::optional<bytes_t> nameUnits(uint32_t name) const noexcept
    {
        const auto length = part(m_root, name & ~highBit, 2);
        if (!length)
            return std::nullopt;
        return part(m_root, size_t{name & ~highBit} + 2, size_t{wordAt(*length, 0)} * 2);
    }

    bool nameIsSound(uint32_t name) const noexcept { return !(name & highBit) || nameUnits(name); }

    bool isMui() const noexcept
    {
        constexpr uint8_t mui[] = {'M', 0, 'U', 0, 'I', 0};
        if (!(m_path[0] & highBit) || m_path[1] != 1)
            return false;
        const auto units = nameUnits(m_path[0]);
        return units && std::ranges::equal(*units, mui);
    }

    bool data(uint32_t offset, muiFile_t& found) noexcept
    {
        const auto entry = part(m_root, offset, 16);
        if (!entry)
            return false;
        const auto start = m_image.fromAddress(dwordAt(*entry, 0));
        const auto bytes = start ? part(*start, 0, dwordAt(*entry, 4)) : std::nullopt;
        if (!bytes)
            return false;
        if (m_path[0] == stringTable)
            return stringBlockIsWhole(*bytes);
        if (isMui() && !found.divided) {
            found.divided = true;
            found.described = bytes->size() >= contentOffset + sizeof(muiChecksum_t) &&
                              dwordAt(*bytes, 0) == muiMagic;
            if (found.described) {
                std::memcpy(found.service.data(), bytes->data() + serviceOffset,
                            found.service.size());
                std::memcpy(found.content.data(), bytes->data() + contentOffset,
                            found.content.size());
            }
        }
        return true;
    }

    const imageLayout_t& m_image;
    bytes_t m_root;
    uint32_t m_path[3] = {};
    unsigned m_entries = 0;
};

} // namespace

muiFile_t readMuiFile(std::span<const uint8_t> file) noexcept
{
    imageLayout_t image(file);
    const auto root = image.resources();
    if (!root)
        return {};
    muiFile_t found;
    if (!root->empty() && !resourceWalk_t(image, *root).run(found))
        return {};
    found.sound = true;
    return found;
}

bool languageFileFits(const muiFile_t& library, const muiFile_t& language) noexcept
{
    return library.described && language.described &&
           (library.service == language.service || library.content == language.content);
}
