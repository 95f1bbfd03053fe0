#include "gunzip.h"

#include <zlib.h>

#include <algorithm>
#include <new>
#include <utility>

namespace vltrace {

namespace {

constexpr int gzipWindow = MAX_WBITS + 16; // zlib's way to ask for gzip's header and checksum
constexpr uint8_t mark[gunzip_t::beginning] = {0x1F, 0x8B, Z_DEFLATED};

} // namespace

gunzip_t::gunzip_t() : m_stream(std::make_unique<z_stream>())
{
    if (inflateInit2(m_stream.get(), gzipWindow) != Z_OK)
        throw std::bad_alloc();
}

gunzip_t::~gunzip_t()
{
    inflateEnd(m_stream.get());
}

bool gunzip_t::begins(std::span<const uint8_t> file) noexcept
{
    return file.size() >= beginning && std::equal(std::begin(mark), std::end(mark), file.begin());
}

void gunzip_t::append(std::vector<uint8_t> bytes)
{
    m_bytes = std::move(bytes);
    m_stream->next_in = m_bytes.data();
    m_stream->avail_in = static_cast<uInt>(m_bytes.size());
}

size_t gunzip_t::take(std::span<uint8_t> out)
{
    z_stream& stream = *m_stream;
    stream.next_out = out.data();
    stream.avail_out = static_cast<uInt>(out.size());
    while (stream.avail_out != 0 && m_state != state_t::damaged) {
        if (m_state == state_t::whole) {
            if (stream.avail_in == 0 || *stream.next_in != mark[0])
                break; // padding is no member
            inflateReset(&stream);
            m_state = state_t::within;
        }
        const int result = inflate(&stream, Z_NO_FLUSH);
        if (result == Z_MEM_ERROR)
            throw std::bad_alloc();
        if (result == Z_BUF_ERROR)
            break;
        if (result == Z_STREAM_END)
            m_state = state_t::whole;
        else if (result != Z_OK)
            m_state = state_t::damaged;
    }
    return out.size() - stream.avail_out;
}

} // namespace vltrace
