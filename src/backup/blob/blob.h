#pragma once

#include <cstdint>
#include <string>

#include <windows.h>
#include <wincrypt.h>

// The blob classes that carry encoded elements; each owns pbData. struct types: 6 text, 25 octets,
// 28 integer.
struct _heap_allocator {
    static BYTE* allocate(size_t size) noexcept; // null on failure
    static void release(BYTE* memory) noexcept;
};

template <class Blob, class Allocator> class CCryptBlob : public Blob
{
public:
    CCryptBlob() noexcept { Clear(); }
    CCryptBlob(const CCryptBlob&) = delete;
    CCryptBlob& operator=(const CCryptBlob&) = delete;
    virtual ~CCryptBlob() { Free(); }

    void Free() noexcept
    {
        Allocator::release(this->pbData);
        Clear();
    }

private:
    void Clear() noexcept
    {
        this->cbData = 0;
        this->pbData = nullptr;
    }
};
