#pragma once

#include <windows.h>

// frameStatus ends an operation that raised: call it inside a catch (...) clause. It traces under
// the operation's name with "[std]", "[com]" or "oo" behind it and gives the status that the
// operation returns: E_UNEXPECTED for a std::exception, the carried status for a _com_error (traced
// only if negative), E_FAIL for anything else. The status of a container failure
// (ATL::CAtlException) is lost here; hosts depend on E_FAIL.
HRESULT frameStatus(const char* operation) noexcept;
