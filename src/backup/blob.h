#pragma once

#include "common/status.h"

#include <windows.h>
#include <wincrypt.h>

#include <cstdint>
#include <span>
#include <utility>

// The blobs that carry plain and encoded values, and the sequence of encoded elements that a backup
// is at every level. The bytes are DER; derreader.h says what else is read. Bytes that can't be
// decoded raise nothing: what the blob then holds shows it.
//
// Errors: a failed allocation raises _com_error with E_OUTOFMEMORY, except in constructors, which
//         leave the object empty or short

// structType_t names the platform encoder's structures, in the width of a pointer.
enum structType_t : uintptr_t {
    structAnyString = 6,     // X509_ANY_STRING
    structOctetString = 25,  // X509_OCTET_STRING
    structMultiByteInt = 28, // X509_MULTI_BYTE_INTEGER
};

// _heap_allocator takes memory from the process heap.
struct _heap_allocator {
    static void* allocate(size_t size) noexcept; // null on failure; not null for size 0
    // reallocate may move the memory, which stays as it is on failure. null is allowed
    static void* reallocate(void* memory, size_t size) noexcept;
    static void release(void* memory) noexcept; // null is allowed
};

// _mem_alloc_t owns a buffer until it goes out of scope or release gives it up.
template <class T, class Allocator> class _mem_alloc_t
{
public:
    _mem_alloc_t() noexcept = default;
    explicit _mem_alloc_t(size_t count) : m_memory(take(count)) {} // raises E_OUTOFMEMORY
    _mem_alloc_t(_mem_alloc_t&& other) noexcept : m_memory(other.release()) {}
    _mem_alloc_t& operator=(_mem_alloc_t&& other) noexcept
    {
        std::swap(m_memory, other.m_memory);
        return *this;
    }
    _mem_alloc_t(const _mem_alloc_t&) = delete;
    _mem_alloc_t& operator=(const _mem_alloc_t&) = delete;
    ~_mem_alloc_t() { Allocator::release(m_memory); }

    T* get() const noexcept { return m_memory; }
    [[nodiscard]] T* release() noexcept { return std::exchange(m_memory, nullptr); }
    void reset() noexcept { Allocator::release(release()); }

private:
    static T* take(size_t count)
    {
        void* memory =
            count <= SIZE_MAX / sizeof(T) ? Allocator::allocate(count * sizeof(T)) : nullptr;
        if (!memory)
            raiseStatus(E_OUTOFMEMORY);
        return static_cast<T*>(memory);
    }

    T* m_memory = nullptr;
};

template <class T> class _auto_heap_mem : public _mem_alloc_t<T, _heap_allocator>
{
public:
    using _mem_alloc_t<T, _heap_allocator>::_mem_alloc_t;
};

// blobView gives the bytes of a blob, for the readers of derview.h.
inline std::span<const uint8_t> blobView(const _CRYPTOAPI_BLOB& blob) noexcept
{
    return {blob.pbData, blob.pbData ? blob.cbData : 0};
}

// blobcodec is what the blobs share of formats/der.
namespace blobcodec {

// encode writes the bytes as an octet string or an integer over the slot, whatever it pointed at,
// in a heap buffer of exact size. False, with the slot left empty, if the element is too long for
// the slot's 32 bits.
bool encode(structType_t structType, const _CRYPTOAPI_BLOB& contents, _CRYPTOAPI_BLOB& slot);

// decode reads an octet string's bytes or an integer's, little-endian. False if the encoded bytes
// hold none. contents: a heap buffer of its own, the caller's; no bytes and null for an empty value
bool decode(structType_t structType, const _CRYPTOAPI_BLOB& encoded, _CRYPTOAPI_BLOB& contents);

} // namespace blobcodec

// CCryptBlob owns pbData.
template <class Blob, class Allocator> class CCryptBlob : public Blob
{
public:
    CCryptBlob() noexcept { Forget(); }
    CCryptBlob(const CCryptBlob&) = delete;
    CCryptBlob& operator=(const CCryptBlob&) = delete;
    virtual ~CCryptBlob() { Free(); }

    void Free() noexcept
    {
        Allocator::release(this->pbData);
        Forget();
    }

    // Assign replaces the bytes with a copy of others, which aren't its own. Without any the blob
    // is empty.
    void Assign(const void* bytes, DWORD count)
    {
        Free();
        if (count == 0 || !bytes)
            return;
        _mem_alloc_t<BYTE, Allocator> copy(count);
        CopyMemory(copy.get(), bytes, count);
        this->cbData = count;
        this->pbData = copy.release();
    }

    // EncodeAs writes the blob's own bytes as that structure, octet string or integer, over the
    // slot. False, with the slot left empty, if they can't be encoded.
    bool EncodeAs(structType_t structType, _CRYPTOAPI_BLOB& slot) const
    {
        return blobcodec::encode(structType, *this, slot);
    }

    // DecodeAs replaces the encoded bytes with the contents of the octet string or integer, an
    // integer's little-endian. False, with the encoded bytes kept, if they aren't one.
    bool DecodeAs(structType_t structType)
    {
        _CRYPTOAPI_BLOB contents{};
        if (!blobcodec::decode(structType, *this, contents))
            return false;
        Take(contents);
        return true;
    }

    // DecodeOctetsFrom takes the bytes of the octet string that the element holds. The old bytes go
    // first, unwiped. False, and empty, if the element is null or no octet string.
    bool DecodeOctetsFrom(const _CRYPTOAPI_BLOB* element)
    {
        Free();
        return element && blobcodec::decode(structOctetString, *element, *this);
    }

protected:
    // Take frees the bytes and owns those of the other from now on.
    void Take(const _CRYPTOAPI_BLOB& other) noexcept
    {
        Allocator::release(this->pbData);
        this->cbData = other.cbData;
        this->pbData = other.pbData;
    }

private:
    void Forget() noexcept
    {
        this->cbData = 0;
        this->pbData = nullptr;
    }
};

using CVLCryptBlob = CCryptBlob<_CRYPTOAPI_BLOB, _heap_allocator>;

// CVLAnyBlob adds the structure that its bytes are encoded as.
class CVLAnyBlob : public CVLCryptBlob
{
public:
    explicit CVLAnyBlob(structType_t structType) noexcept : lpszStructType(structType) {}

    structType_t lpszStructType;
};

// CVLWStrBlob holds UTF-16 in host order with its terminating zero.
class CVLWStrBlob : public CVLAnyBlob
{
public:
    // text: may be null for an empty blob, which a failed allocation leaves too
    explicit CVLWStrBlob(const wchar_t* text = nullptr) noexcept;

    // Encode writes the bytes as a BMPString over the slot. Null, with the slot left empty, if they
    // can't be encoded.
    _CRYPTOAPI_BLOB* Encode(_CRYPTOAPI_BLOB& slot) const;

    // Decode replaces an encoded text, of any kind that CDerElement::DecodeWide reads, with its
    // code units. Anything else keeps its encoded bytes; the result is true all the same. A stored
    // text without a terminator has none here either.
    bool Decode();
};

// CVLStrBlob holds a text's bytes with the terminating zero.
class CVLStrBlob : public CVLAnyBlob
{
public:
    explicit CVLStrBlob(const char* text = nullptr) noexcept;

    // Encode writes the bytes as an OCTET STRING over the slot. Null, with the slot left empty, if
    // they can't be encoded.
    _CRYPTOAPI_BLOB* Encode(_CRYPTOAPI_BLOB& slot) const;

    // Decode replaces an encoded OCTET STRING with its bytes. Anything else keeps its encoded
    // bytes; the result is true all the same.
    bool Decode();
};

// CVLIntBlob holds four bytes, little-endian.
class CVLIntBlob : public CVLAnyBlob
{
public:
    explicit CVLIntBlob(uint32_t value) noexcept;
};

// readInteger gives the number that an element holds: 1 to 4 content octets as they stand, else 0.
// Not sign-extended: what was written from 0xFFFFFFFF reads back as 0xFF. Intended.
uint32_t readInteger(const _CRYPTOAPI_BLOB& element) noexcept;

// CDataBlob_s holds a secret: its bytes are overwritten before they are freed, in a way that the
// compiler can't leave out.
class CDataBlob_s : public CVLCryptBlob
{
public:
    ~CDataBlob_s() override
    {
        if (pbData)
            SecureZeroMemory(pbData, cbData);
    }
};

// CVLBlobSeq is an ordered list of encoded elements with a read cursor. It owns the array and every
// element's bytes. The first two fields have the layout of CRYPT_SEQUENCE_OF_ANY.
class CVLBlobSeq
{
public:
    // n: empty slots to make, one after the other; for lack of memory a slot is skipped
    explicit CVLBlobSeq(DWORD n = 0) noexcept;
    CVLBlobSeq(const CVLBlobSeq&) = delete;
    CVLBlobSeq& operator=(const CVLBlobSeq&) = delete;
    ~CVLBlobSeq() { Clear(); }

    void Clear() noexcept;
    void SecureClear() noexcept; // overwrites every element's bytes first

    // Assign replaces the list with copies of elements that aren't its own, and puts the cursor at
    // 0. One without bytes stays an empty slot. Out of memory, the list holds the first ones.
    void Assign(const CRYPT_SEQUENCE_OF_ANY& elements);

    // Encode writes the sequence over the destination, whatever it pointed at. An empty slot adds
    // nothing, an empty list gives 30 00.
    void Encode(_CRYPTOAPI_BLOB& destination) const;

    // Decode replaces the list with the elements of the source's sequence, which aren't looked
    // into; the source's bytes are not the list's own. False, with the list unchanged, if the
    // source is null or no well-formed sequence.
    bool Decode(const _CRYPTOAPI_BLOB* source) { return source && Decode(blobView(*source)); }
    bool Decode(std::span<const uint8_t> source);

    // Slot gives an element's record for an encoder to fill or a reader to view; null past the end.
    _CRYPTOAPI_BLOB* Slot(DWORD index) noexcept { return index < count ? items + index : nullptr; }

    // ReadNext takes the element at the cursor; null past the end, where the cursor stays.
    _CRYPTOAPI_BLOB* ReadNext() noexcept { return cursor < count ? items + cursor++ : nullptr; }

    // ReadNextWStr takes the element at the cursor as wide text up to its first zero.
    // out:     its old text is freed; null when there is no element
    // Returns: the list, for the next read
    CVLBlobSeq& ReadNextWStr(_auto_heap_mem<wchar_t>& out);

    DWORD count = 0;
    _CRYPTOAPI_BLOB* items = nullptr;
    DWORD cursor = 0;

private:
    bool Grow() noexcept; // by one empty slot
    void Append(std::span<const uint8_t> element);
};
