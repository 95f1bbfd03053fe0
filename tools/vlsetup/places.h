#pragma once

#include <windows.h>

#include <map>
#include <string>
#include <vector>

// Files and registry values as an installation sees them: a place has a content, written down as a
// short text, or nothing. Keys are below HKEY_LOCAL_MACHINE. Every failure is a CToolError that says
// what failed, on what, and what to do.

// fileContent is the SHA-256 of a file in hexadecimal; empty if there is no file.
std::string fileContent(const std::wstring& path);

// valueContent is a value's type and data in hexadecimal, as in "1:6100..."; empty if there is none.
std::string valueContent(const std::wstring& key, const std::wstring& name);

// textValue is the content of a value with this text.
std::string textValue(const std::wstring& text, DWORD type = REG_SZ);

// copyTo writes a file beside its target and moves it there. putValue writes a content; it makes
// the key too.
void copyTo(const std::wstring& source, const std::wstring& target);
void putValue(const std::wstring& key, const std::wstring& name, const std::string& content);

// moveTo renames a file.
void moveTo(const std::wstring& from, const std::wstring& to);

// Each is good also if there is nothing to remove.
void takeAway(const std::wstring& path); // a file
void removeValue(const std::wstring& key, const std::wstring& name);

// missingFolders and missingKeys list what has to be made so that the last one is there, the
// outermost first.
std::vector<std::wstring> missingFolders(const std::wstring& folder);
std::vector<std::wstring> missingKeys(const std::wstring& key);

void makeFolder(const std::wstring& folder);

// removeIfEmpty leaves a folder or key that holds anything.
void removeFolderIfEmpty(const std::wstring& folder);
void removeKeyIfEmpty(const std::wstring& key);

// checkNotInUse fails for a file that a program has loaded.
void checkNotInUse(const std::wstring& path);

// checkAdministrator fails for a user who may not write to the machine's part of the registry.
void checkAdministrator();

// registryTree_t is a key with all below it: each key's values by name.
using registryTree_t = std::map<std::wstring, std::map<std::wstring, std::string>>;
registryTree_t readTree(const std::wstring& key);

bool keyExists(const std::wstring& key);
void makeKey(const std::wstring& key);

// failed raises a CToolError with the system's text for the error.
[[noreturn]] void failed(const char* what, const std::wstring& place, DWORD error);
