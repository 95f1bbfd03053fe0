#pragma once

#include "common/osversion.h"

#include <windows.h>

// systemRedirectsResources is true if look-ups on a DLL's own handle reach its language file by
// themselves.
inline bool systemRedirectsResources(const osVersion_t& version) noexcept
{
    return version.isNt() && version.major >= 6;
}

// LoadMuiModule loads the language file that fits the user. It is called in the DLL's entry
// routine, so it traces nothing and raises nothing.
//
// module:  the DLL that the texts belong to
// version: a system that redirects look-ups leaves the whole search to LoadLanguageLibrary
// Returns: the caller's, released with FreeLibrary; null if there is none; the DLL itself, with one
//          more reference, if it keeps its texts itself
// Source:  GetUserDefaultUILanguage
HMODULE LoadMuiModule(HMODULE module, const osVersion_t& version = osVersionAtStart()) noexcept;
