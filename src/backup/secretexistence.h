#pragma once

#include <windows.h>

// The one secret that a host keeps beside a backup.
inline constexpr wchar_t secretName[] = L"KRS Protected Storage";

// DoesSecretExist is true if the calling user has that secret. When the outside authentication
// service is in use, the secret counts as existing and the library is not asked.
//
// library: VLFPApi.dll, a loan
// Errors:  raises the last error of a missing export, and as CCurrentUser does
// Source:  the setting intelauthenticate; VLFPDoesSecretExist for domain\account
bool DoesSecretExist(HMODULE library);
