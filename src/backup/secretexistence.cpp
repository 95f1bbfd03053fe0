#include "backup/secretexistence.h"

#include "backup/currentuser.h"
#include "common/status.h"
#include "storage/settings.h"

#include <cstdint>

namespace {

using doesSecretExist_t = int32_t(WINAPI*)(const wchar_t* user, uint32_t kind, const wchar_t* name);
constexpr uint32_t secretKind = 3;

} // namespace

bool DoesSecretExist(HMODULE library)
{
    CCurrentUser user; // its failure counts even where the library is not asked
    if (settings_getbool(L"intelauthenticate", false))
        return true;
    const auto doesSecretExist = reinterpret_cast<doesSecretExist_t>(
        reinterpret_cast<void*>(GetProcAddress(library, "VLFPDoesSecretExist")));
    if (!doesSecretExist)
        raiseLastError();
    return doesSecretExist(user.Qualified().c_str(), secretKind, secretName) == 1;
}
