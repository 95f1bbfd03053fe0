#pragma once

#include <windows.h>

#include <span>

// queryText reads a text value of the registry as it stands: no environment strings are expanded.
//
// buffer:  zeroed by the caller; holds the text with its terminator
// noBytes: whether a value of no bytes at all is an empty text, or has no terminator
// Returns: 0 or the platform's error; ERROR_INVALID_DATA for a value that is neither REG_SZ nor
//          REG_EXPAND_SZ, has an odd length or no terminator: buffer is then of no use
// Source:  RegQueryValueExW
enum class noBytes_t { areText, haveNoEnd };
LSTATUS queryText(HKEY key, const wchar_t* name, std::span<wchar_t> buffer,
                  noBytes_t noBytes = noBytes_t::areText) noexcept;
