#include "backup/blob.h"

#include "formats/der/derheader.h"
#include "formats/der/derview.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <new>
#include <string_view>
#include <vector>

static_assert(offsetof(CVLBlobSeq, count) == offsetof(CRYPT_SEQUENCE_OF_ANY, cValue) &&
              offsetof(CVLBlobSeq, items) == offsetof(CRYPT_SEQUENCE_OF_ANY, rgValue));

void* _heap_allocator::allocate(size_t size) noexcept
{
    return HeapAlloc(GetProcessHeap(), 0, size);
}

void* _heap_allocator::reallocate(void* memory, size_t size) noexcept
{
    return memory ? HeapReAlloc(GetProcessHeap(), 0, memory, size) : allocate(size);
}

void _heap_allocator::release(void* memory) noexcept
{
    if (memory)
        HeapFree(GetProcessHeap(), 0, memory);
}

namespace {

using bytes_t = std::span<const uint8_t>;

// Makes room for one element in the slot and stores its header. Null, with the slot empty, if it
// would be too long.
BYTE* beginElement(uint8_t tag, size_t length, _CRYPTOAPI_BLOB& slot)
{
    slot = {};
    const size_t size = derHeaderSize(length) + length;
    if (size > std::numeric_limits<DWORD>::max())
        return nullptr;
    slot.pbData = _auto_heap_mem<BYTE>(size).release();
    slot.cbData = static_cast<DWORD>(size);
    return derWriteHeader(slot.pbData, tag, length);
}

_CRYPTOAPI_BLOB copyOf(bytes_t bytes)
{
    if (bytes.empty())
        return {};
    _auto_heap_mem<BYTE> copy(bytes.size());
    std::copy(bytes.begin(), bytes.end(), copy.get());
    return {static_cast<DWORD>(bytes.size()), copy.release()};
}

// For constructors, which raise nothing: leaves the empty blob empty when there is no memory.
void fillNew(_CRYPTOAPI_BLOB& blob, const void* bytes, size_t size) noexcept
{
    if (size > std::numeric_limits<DWORD>::max())
        return;
    blob.pbData = static_cast<BYTE*>(_heap_allocator::allocate(size));
    if (!blob.pbData)
        return;
    CopyMemory(blob.pbData, bytes, size);
    blob.cbData = static_cast<DWORD>(size);
}

// Runs code of the portable codec, which knows no status.
template <class Body> auto withStatus(Body body)
{
    try {
        return body();
    } catch (const std::bad_alloc&) {
        raiseStatus(E_OUTOFMEMORY);
    }
}

} // namespace

uint8_t blobcodec::tagOf(structType_t structType) noexcept
{
    return structType == structMultiByteInt ? derTag::integer : derTag::octetString;
}

bool blobcodec::encode(uint8_t tag, const _CRYPTOAPI_BLOB& contents, _CRYPTOAPI_BLOB& slot)
{
    bytes_t bytes = blobView(contents);
    if (tag == derTag::integer) {
        while (bytes.size() > 1 && derRepeatsSign(bytes.back(), bytes[bytes.size() - 2]))
            bytes = bytes.first(bytes.size() - 1);
        static constexpr uint8_t zero[] = {0};
        if (bytes.empty())
            bytes = zero; // no bytes stand for 0, which takes one octet
    }
    BYTE* out = beginElement(tag, bytes.size(), slot);
    if (!out)
        return false;
    if (tag == derTag::integer) {
        std::reverse_copy(bytes.begin(), bytes.end(), out);
    } else if (tag == derTag::bmpString) {
        for (size_t i = 0; i + 1 < bytes.size(); i += 2) {
            out[i] = bytes[i + 1];
            out[i + 1] = bytes[i];
        }
    } else {
        std::copy(bytes.begin(), bytes.end(), out);
    }
    return true;
}

bool blobcodec::decode(structType_t structType, const _CRYPTOAPI_BLOB& encoded,
                       _CRYPTOAPI_BLOB& contents)
{
    const CDerElement element(blobView(encoded));
    bytes_t bytes;
    if (structType == structMultiByteInt) {
        if (!element.DecodeInteger(bytes))
            return false;
        contents = copyOf(bytes);
        std::reverse(contents.pbData, contents.pbData + contents.cbData);
        return true;
    }
    if (structType != structOctetString || !element.DecodeOctets(bytes))
        return false;
    contents = copyOf(bytes);
    return true;
}

CVLWStrBlob::CVLWStrBlob(const wchar_t* text) noexcept : CVLAnyBlob(structAnyString)
{
    if (text)
        fillNew(*this, text, 2 * (std::wstring_view(text).size() + 1));
}

_CRYPTOAPI_BLOB* CVLWStrBlob::Encode(_CRYPTOAPI_BLOB& slot) const
{
    // Whole code units only; a blob filled by hand may have half of one after them.
    return blobcodec::encode(derTag::bmpString, {cbData & ~1U, pbData}, slot) ? &slot : nullptr;
}

bool CVLWStrBlob::Decode()
{
    withStatus([this] {
        std::u16string units;
        if (CDerElement(blobView(*this)).DecodeWide(units))
            Take(copyOf({reinterpret_cast<const uint8_t*>(units.data()), 2 * units.size()}));
    });
    return true;
}

CVLStrBlob::CVLStrBlob(const char* text) noexcept : CVLAnyBlob(structAnyString)
{
    if (text)
        fillNew(*this, text, std::string_view(text).size() + 1);
}

_CRYPTOAPI_BLOB* CVLStrBlob::Encode(_CRYPTOAPI_BLOB& slot) const
{
    return blobcodec::encode(derTag::octetString, *this, slot) ? &slot : nullptr;
}

bool CVLStrBlob::Decode()
{
    (void)DecodeAs(structOctetString); // refused: the encoded bytes stay
    return true;
}

CVLIntBlob::CVLIntBlob(uint32_t value) noexcept : CVLAnyBlob(structMultiByteInt)
{
    fillNew(*this, &value, sizeof value); // the machine is little-endian too
}

uint32_t readInteger(const _CRYPTOAPI_BLOB& element) noexcept
{
    return CDerElement(blobView(element)).Integer();
}

CVLBlobSeq::CVLBlobSeq(DWORD n) noexcept
{
    for (; n > 0; --n)
        Grow();
}

bool CVLBlobSeq::Grow() noexcept
{
    void* const grown =
        _heap_allocator::reallocate(items, (size_t{count} + 1) * sizeof(_CRYPTOAPI_BLOB));
    if (!grown)
        return false;
    items = static_cast<_CRYPTOAPI_BLOB*>(grown);
    items[count++] = {};
    return true;
}

void CVLBlobSeq::Clear() noexcept
{
    for (DWORD i = 0; i < count; ++i)
        _heap_allocator::release(items[i].pbData);
    _heap_allocator::release(items);
    items = nullptr;
    count = cursor = 0;
}

void CVLBlobSeq::SecureClear() noexcept
{
    for (DWORD i = 0; i < count; ++i) {
        if (items[i].pbData)
            SecureZeroMemory(items[i].pbData, items[i].cbData);
    }
    Clear();
}

void CVLBlobSeq::Assign(const CRYPT_SEQUENCE_OF_ANY& elements)
{
    Clear();
    for (DWORD i = 0; i < elements.cValue; ++i) {
        if (!Grow())
            raiseStatus(E_OUTOFMEMORY);
        // Straight into this list: its owner wipes secrets, whatever fails later.
        items[i] = copyOf(blobView(elements.rgValue[i]));
    }
}

void CVLBlobSeq::Encode(_CRYPTOAPI_BLOB& destination) const
{
    size_t length = 0;
    for (DWORD i = 0; i < count; ++i)
        length += blobView(items[i]).size();
    BYTE* out = beginElement(derTag::sequence, length, destination);
    if (!out)
        return;
    for (DWORD i = 0; i < count; ++i) {
        const bytes_t element = blobView(items[i]);
        out = std::copy(element.begin(), element.end(), out);
    }
}

bool CVLBlobSeq::Decode(const _CRYPTOAPI_BLOB* source)
{
    if (!source)
        return false;
    return withStatus([this, source] {
        CDerSequenceView elements;
        if (!elements.Decode(blobView(*source)))
            return false;
        std::vector<_CRYPTOAPI_BLOB> records;
        records.reserve(elements.Count());
        for (const CDerElement& element : elements) {
            const bytes_t bytes = element.Encoded();
            records.push_back({static_cast<DWORD>(bytes.size()), const_cast<BYTE*>(bytes.data())});
        }
        Assign({static_cast<DWORD>(records.size()), records.data()});
        return true;
    });
}

CVLBlobSeq& CVLBlobSeq::ReadNextWStr(_auto_heap_mem<wchar_t>& out)
{
    out.reset();
    const _CRYPTOAPI_BLOB* element = ReadNext();
    if (!element)
        return *this;
    const std::u16string text =
        withStatus([element] { return CDerElement(blobView(*element)).WideText(); });
    _auto_heap_mem<wchar_t> copy(text.size() + 1);
    *std::copy(text.begin(), text.end(), copy.get()) = L'\0';
    out = std::move(copy);
    return *this;
}
