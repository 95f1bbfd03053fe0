#pragma once

#include "atl/comutil.h"

#include <windows.h>
#include <oleauto.h>

#include <cstdint>
#include <span>
#include <utility>

// The arrays that pass the interface: one-dimensional safe arrays, made with lower bound 0. A
// holder has one pointer, null while empty; while it isn't, the array carries one lock that the
// holder took.
//
// Errors: two kinds. What is said to be returned is a status; what is raised is ATL::CAtlException.
//         A failed append only shows in its status and in an array shorter than was asked for
// Source: SafeArrayCreate, SafeArrayLock, SafeArrayRedim, SafeArrayCopy and their like
class CVLSafeArray
{
public:
    CVLSafeArray(const CVLSafeArray&) = delete;
    CVLSafeArray& operator=(const CVLSafeArray&) = delete;
    ~CVLSafeArray() { Release(); }

    SAFEARRAY* Get() const noexcept { return m_array; }

    // Resize keeps the elements that still fit. Raises E_FAIL when empty; returns E_FAIL for an
    // array of fixed size. If the array can't be locked again the holder is empty.
    HRESULT Resize(ULONG newCount, LONG lowerBound);

    // LowerBound and UpperBound are those of dimension 1. They raise the platform's status, for an
    // empty holder too.
    LONG LowerBound() const;
    LONG UpperBound() const;

    // Release unlocks and destroys the array. The holder stays as it is unless both succeed.
    HRESULT Release() noexcept;

    // Detach gives up the array, the caller's, with the lock that the holder took.
    [[nodiscard]] SAFEARRAY* Detach() noexcept { return std::exchange(m_array, nullptr); }

    // Wrap moves the array, unlocked, into the variant, whose old content is overwritten and not
    // cleared. The holder is empty then. A failure, or an empty holder with E_INVALIDARG, is raised
    // and stands in the variant as VT_ERROR.
    void Wrap(VARIANT& variant);

protected:
    CVLSafeArray() noexcept = default;

    HRESULT CreateOnDemand(VARTYPE type) noexcept;
    // Grow makes the array if there is none and adds elements.
    // first: the index of the first new one
    HRESULT Grow(VARTYPE type, ULONG count, LONG& first);
    // Element gives the element's place; null with E_INVALIDARG outside the bounds.
    HRESULT Element(LONG index, void*& place) const;

    SAFEARRAY* m_array = nullptr;
};

// CVLBstrArray holds strings.
class CVLBstrArray : public CVLSafeArray
{
public:
    // SetAt frees the old string and stores a copy. Returns E_INVALIDARG for null or outside the
    // bounds.
    HRESULT SetAt(LONG index, const wchar_t* text);
    HRESULT Add(const wchar_t* text);
};

// CVLVariantArray holds variants.
class CVLVariantArray : public CVLSafeArray
{
public:
    // SetAt stores a deep copy of the value, which stays as it is, following one reference. Returns
    // E_INVALIDARG outside the bounds.
    HRESULT SetAt(LONG index, VARIANT& value);
    HRESULT Add(VARIANT& value);
};

// CVLByteArray holds bytes.
class CVLByteArray : public CVLSafeArray
{
public:
    // SetAt returns E_FAIL when empty, E_INVALIDARG outside the bounds.
    HRESULT SetAt(LONG index, uint8_t value);

    // Add appends all the bytes at once. Even without any it makes the array if there is none.
    HRESULT Add(std::span<const uint8_t> bytes);

    // Extend appends zero bytes and gives their place, which stays until the next change, so that a
    // writer can store straight into the array. place: empty on failure
    HRESULT Extend(ULONG count, std::span<uint8_t>& place);

    // CopyFrom takes a copy of an array of bytes, of any lower bound, in place of its own.
    //
    // Returns: the status of locking the copy; if that failed the holder is empty
    // Errors:  raises E_INVALIDARG for null or another element type, and the status of each call
    //          that failed
    HRESULT CopyFrom(SAFEARRAY* source);

    // Bytes is a view of every element that is really there; empty if there is none.
    std::span<const uint8_t> Bytes() const noexcept;
};

// handOver moves the local variant to an output argument and leaves it empty. It is cleared instead
// if the output is null or can't be cleared, which is no error.
//
// Errors: raises the status of a refused memory copy
void handOver(VARIANT* output, ATL::CComVariant& local);
