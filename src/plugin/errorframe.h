#pragma once

#include <windows.h>

// frameStatus ends an operation that raised: call it inside a catch (...) clause. It traces under
// the operation's name followed by the clause's suffix.
//
// Returns: what the operation returns
//          "[std]" std::exception: E_UNEXPECTED
//          "[com]" _com_error: the carried status, traced only if it is negative
//          "oo"    anything else: E_FAIL. A container's failure (ATL::CAtlException) loses its
//                  status here; hosts depend on E_FAIL.
HRESULT frameStatus(const char* operation) noexcept;
