#include "backup/secretexistence.h"

#include "backup/currentuser.h"
#include "common/guardedcall.h"
#include "common/status.h"
#include "neighbours/vlfpapi.h"
#include "storage/settings.h"

bool doesSecretExist(HMODULE library)
{
    CCurrentUser user; // its failure counts even where the library is not asked
    if (settings_getbool(L"intelauthenticate", false))
        return true;
    const auto ask = reinterpret_cast<decltype(&VLFPDoesSecretExist)>(
        reinterpret_cast<void*>(GetProcAddress(library, "VLFPDoesSecretExist")));
    if (!ask)
        raiseLastError();
    return callGuarded(ask, user.Qualified().c_str(), secretKind, protectedStorage) == 1;
}
