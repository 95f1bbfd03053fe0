#pragma once

#include "common/scoped.h"

#include <span>

// openKey opens a key of the registry; empty, with no reason, for one that can't be opened.
CRegistryKey openKey(HKEY root, const wchar_t* path, REGSAM access) noexcept;

// isWholeText is the rule for a text value of the registry that is taken as it stands: of type
// REG_SZ or REG_EXPAND_SZ, of whole characters, the last one a zero.
//
// size:    bytes that the value has, at the front of buffer
// noBytes: whether a value of no bytes at all is an empty text, or has no terminator
enum class noBytes_t { areText, haveNoEnd };
bool isWholeText(DWORD type, std::span<const wchar_t> buffer, size_t size,
                 noBytes_t noBytes = noBytes_t::areText) noexcept;

// queryText reads a text value by that rule. No environment strings are expanded.
//
// buffer:  zeroed by the caller; holds the text with its terminator
// Returns: 0 or the platform's error; ERROR_INVALID_DATA for a value that is no whole text: buffer
//          is then of no use
// Source:  RegQueryValueExW
LSTATUS queryText(HKEY key, const wchar_t* name, std::span<wchar_t> buffer,
                  noBytes_t noBytes = noBytes_t::areText) noexcept;
