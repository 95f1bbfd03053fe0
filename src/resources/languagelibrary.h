#pragma once

#include <windows.h>

#include <string>

// LoadLanguageLibrary loads the language file of a DLL: "<folder>\<language>\<file>.mui".
//
// A language file is taken if it is sound, carries resource configuration data with the right
// magic, and shares one of the two checksums with the DLL; any other is passed over as if it
// weren't there. A DLL without such data keeps its texts itself, and is given back with one more
// reference.
//
// path:     the DLL, with or without a folder
// flags:    8 names the language's folder as in en-US, 4 as in MUI\0409
// language: 0 searches the user's UI language, the system's and en-US, each with its neutral
//           parent; 1 is refused
// Returns:  the caller's, released with FreeLibrary; null if there is none
// Errors:   raises std::bad_alloc alone
HMODULE LoadLanguageLibrary(const std::wstring& path, DWORD flags, LANGID language);

inline constexpr DWORD languageFolderById = 4;
inline constexpr DWORD languageFolderByName = 8;
