#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

struct z_stream_s;

namespace vltrace {

// gunzip_t decompresses a gzip file (RFC 1952) of one member or several, piece by piece.
class gunzip_t
{
public:
    gunzip_t(); // Errors: std::bad_alloc
    ~gunzip_t();
    gunzip_t(const gunzip_t&) = delete;
    gunzip_t& operator=(const gunzip_t&) = delete;

    // begins is true for the front of such a file, of as many bytes at least.
    static constexpr size_t beginning = 3;
    static bool begins(std::span<const uint8_t> file) noexcept;

    // append gives it the next bytes of the file, when take has used up those before.
    void append(std::vector<uint8_t> bytes);

    // take decompresses into out.
    //
    // Returns: the number of bytes; 0 if it needs the next bytes, or can't go on
    // Errors:  std::bad_alloc
    size_t take(std::span<uint8_t> out);

    // isWhole is true where the file may end: after a member, with all of it intact.
    bool isWhole() const noexcept { return m_state == state_t::whole; }

private:
    enum class state_t { within, whole, damaged };

    std::unique_ptr<z_stream_s> m_stream;
    std::vector<uint8_t> m_bytes;
    state_t m_state = state_t::within;
};

} // namespace vltrace
