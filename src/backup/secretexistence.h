#pragma once

#include <windows.h>

// doesSecretExist is true if the calling user has the secret that a host keeps beside a
// backup. When the outside authentication service is in use, the secret counts as existing and the
// library is not asked.
//
// library: VLFPApi.dll, a loan
// Errors:  raises the last error of a missing export, and as CCurrentUser does
// Source:  the setting intelauthenticate; VLFPDoesSecretExist for domain\account
bool doesSecretExist(HMODULE library);
