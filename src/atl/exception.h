#pragma once

#include <windows.h>

// The part of the platform's template library that this system uses and the toolchain lacks, under
// its own names.
namespace ATL {

// CAtlException carries a status out of the string, variant, array and security wrappers. The error
// frame has no clause for it: it ends in the catch-all.
struct CAtlException {
    HRESULT m_hr = E_FAIL;
    explicit CAtlException(HRESULT status) noexcept : m_hr(status) {}
};

[[noreturn]] inline void AtlThrow(HRESULT status)
{
    throw CAtlException(status);
}

} // namespace ATL
