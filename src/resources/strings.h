#pragma once

#include <windows.h>

#include <string>

// GetBrandedString is a numbered string of the resource module with the product's name in the
// places marked "<<%PN%>>". The branding DLL is loaded for strings with "<<%" alone.
//
// Returns: empty for a string that can't be found
std::wstring GetBrandedString(UINT id);

// LoadStringFromModule reads the string block itself, so that the language that fits the user's
// comes first: neutral, then the primary language of the user interface. A string that isn't there
// is asked for with LoadStringW, which cuts it at 259 characters.
//
// module:  as from LoadLibraryExW, also as a data file; null is the process's program
// out:     the text up to its first NUL; empty when there is none
// Returns: the length in the block, or what LoadStringW returned
// Source:  FindResourceExW, FindResourceW, LoadStringW
int LoadStringFromModule(HMODULE module, UINT id, std::wstring& out);

// ExpandProductName replaces every "<<%PN%>>" with the product's name. The name is not searched for
// markers.
void ExpandProductName(std::wstring& text);

// GetProductName is string 103 of the branding DLL, at most 259 characters. With no branding DLL
// the process's program is asked; empty when there is no such string.
std::wstring GetProductName();
