#pragma once

#include <windows.h>

#include <cstdint>

// VLFPApi.dll stands in for the product's policy and secret library, with lasting storage. Every
// function may be called on any thread and raises nothing; all are found by name with
// GetProcAddress. Texts are UTF-16.

// VLFPPolicyRecord is one setting in an exchange of policy settings.
struct VLFPPolicyRecord {
    const wchar_t* name;
    // out: 0 a value of the machine, 1 one of the user's own, 0x80070002 none, else a failure
    LONG status;
    uint32_t filler;
    uint64_t size;  // bytes of the value; 4
    uint64_t value; // the value is the low 32 bits
    uint64_t reserved;
};
static_assert(sizeof(VLFPPolicyRecord) == 40);

// The secret that a host keeps beside a backup, and the kind of all that we ask for.
inline constexpr wchar_t protectedStorage[] = L"KRS Protected Storage";
inline constexpr uint32_t secretKind = 3;

extern "C" {

// VLFPGetPolicySettingsEx fills status, size and value of each record by its name. A record without
// a value keeps size and value as they were.
//
// Returns: 0 also when settings have no value; 0x80070057 for null records or a null name
// Source:  REG_DWORD values under HKEY_LOCAL_MACHINE, SOFTWARE\Veltrano\VLFPApi\Policy, named as
//          the settings are; the same key under HKEY_CURRENT_USER for a setting that the machine
//          doesn't have
LONG VLFPGetPolicySettingsEx(uint32_t count, VLFPPolicyRecord* records);

// VLFPSetPolicySettingsEx keeps the low 32 bits of each record's value for the machine and sets its
// status.
//
// Returns: 0, or the first record's failure; the records after it are not written. A caller who
//          may not write there gets 0x80070005: a policy of the machine never becomes one user's.
LONG VLFPSetPolicySettingsEx(uint32_t count, VLFPPolicyRecord* records);

// VLFPDoesSecretExist returns 1 if the calling user's store has the secret, else 0. The store is
// that of the thread's user; user is only a part of the name under which the secret is kept.
LONG VLFPDoesSecretExist(const wchar_t* user, uint32_t kind, const wchar_t* name);

// VLFPStoreSecret keeps a secret in place of any former one. Names compare without regard to case.
//
// user:    qualified name of the account, domain\account
// value:   size bytes, 1 to 1 MiB
// Returns: 0; 0x80070057 for a null, empty or oversized argument; else the platform's failure as a
//          status
// Source:  CryptProtectData for the user; HKEY_CURRENT_USER,
//          SOFTWARE\Veltrano\VLFPApi\Secrets\<kind>\<user>
LONG VLFPStoreSecret(const wchar_t* user, uint32_t kind, const wchar_t* name, const BYTE* value,
                     uint32_t size);

// VLFPReadSecret gives a secret's bytes.
//
// value:   room for *size bytes, or null to ask for the size alone
// size:    in: the room; out: the secret's size, also when the room is too small
// Returns: 0; 0x80070002 for no such secret; 0x800700EA for too little room, with value untouched;
//          0x80070057 for a null or empty argument; 0x8007000D for an entry that isn't a secret of
//          this store; else the platform's failure as a status
LONG VLFPReadSecret(const wchar_t* user, uint32_t kind, const wchar_t* name, BYTE* value,
                    uint32_t* size);

// VLFPDeleteSecret removes a secret: 0, 0x80070002 for none, 0x80070057, or a failure.
LONG VLFPDeleteSecret(const wchar_t* user, uint32_t kind, const wchar_t* name);
}
