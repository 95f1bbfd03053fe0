#pragma once

#include <windows.h>
#include <oleauto.h>

#include <cstddef>
#include <cstdint>

// The settings provider's side of the link: what VloSet.dll exports and what passes through it.

// SettingsRequest is the one argument of every export. Provider and callers read it as bytes:
// packed, with both pointers at unaligned offsets.
#pragma pack(push, 1)
struct SettingsRequest {
    uint32_t size; // always 20
    BSTR key;
    void* value; // query: the address of a null BSTR, to be filled; set: the BSTR of the new value
};
#pragma pack(pop)
static_assert(sizeof(SettingsRequest) == 20 && offsetof(SettingsRequest, value) == 12);

// SettingsCall is the type of the exports.
//
// Returns: a status; 0x80070002 for a key that the provider doesn't know. A query's BSTR is the
//          caller's then, and both BSTRs of a set stay the caller's.
using SettingsCall = HRESULT (*)(SettingsRequest* request);

// SettingsProvider is a provider as it is called. An export that the library lacks is null.
struct SettingsProvider {
    HMODULE module = nullptr;
    SettingsCall query = nullptr;
    SettingsCall set = nullptr;
    SettingsCall env = nullptr;
    SettingsCall diag = nullptr;
};

// settings_load loads VloSet.dll from the bin folder, or else from the path that the plug-in's own
// folder and the whole first path make together.
//
// Returns: the provider, its module the caller's; all null when neither path loads
// Source:  bindir_file, LoadLibraryW
SettingsProvider settings_load();

// settings_replace puts a provider of this process in the place of the library; null goes back to
// the library. The provider is a loan: it must live as long as it is in place and any call runs.
//
// Returns: what was in place before
const SettingsProvider* settings_replace(const SettingsProvider* provider) noexcept;
