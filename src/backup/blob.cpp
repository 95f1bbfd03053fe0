#include "backup/blob.h"

#include "formats/der/dernode.h"
#include "formats/der/derview.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <new>
#include <string_view>

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

// Writes the element that build makes of a node over the slot. False, with the slot left empty, if
// it is too long.
template <class Build> bool encodeTo(_CRYPTOAPI_BLOB& slot, Build build)
{
    slot = {};
    return withStatus([&] {
        CDerTree node;
        build(node);
        const size_t size = node.Measure();
        if (size > std::numeric_limits<DWORD>::max())
            return false;
        _auto_heap_mem<BYTE> encoded(size);
        node.Write(encoded.get());
        slot = {static_cast<DWORD>(size), encoded.release()};
        return true;
    });
}

} // namespace

bool blobcodec::encode(structType_t structType, const _CRYPTOAPI_BLOB& contents,
                       _CRYPTOAPI_BLOB& slot)
{
    const bytes_t bytes = blobView(contents);
    return encodeTo(slot, [&](CDerNode& node) {
        if (structType == structMultiByteInt)
            node.SetNumber(bytes);
        else
            node.SetOctets(bytes);
    });
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
    const bytes_t units = blobView(*this);
    const bool encoded = encodeTo(slot, [units](CDerNode& node) { node.SetUnits(units); });
    return encoded ? &slot : nullptr;
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
    return EncodeAs(structOctetString, slot) ? &slot : nullptr;
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
    for (DWORD i = 0; i < elements.cValue; ++i)
        Append(blobView(elements.rgValue[i]));
}

void CVLBlobSeq::Append(bytes_t element)
{
    if (!Grow())
        raiseStatus(E_OUTOFMEMORY);
    // Straight into this list: its owner wipes secrets, whatever fails later.
    items[count - 1] = copyOf(element);
}

void CVLBlobSeq::Encode(_CRYPTOAPI_BLOB& destination) const
{
    encodeTo(destination, [this](CDerNode& node) {
        node.SetSequence(count);
        for (DWORD i = 0; i < count; ++i)
            node.Child(i).SetEncoded(blobView(items[i]));
    });
}

bool CVLBlobSeq::Decode(bytes_t source)
{
    CDerSequenceView elements;
    if (!withStatus([&] { return elements.Decode(source); }))
        return false;
    Clear();
    for (const CDerElement& element : elements)
        Append(element.Encoded());
    return true;
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
