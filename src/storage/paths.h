#pragma once

#include <string>

// Where things live on this machine, and the small path tools. Paths are UTF-16. Nothing here raises: a failed
// look-up is an empty string, traced as an error where that is said. Every operation may be called on any thread.

// The bin folder, by three discoveries with rules of their own.
std::wstring bindir_fromkey(const std::wstring& subkey, bool nativeView);
std::wstring bindir_registry(bool nativeView);
std::wstring bindir_default(bool nativeView);
std::wstring bindir_discover(bool nativeView);
std::wstring bindir_file(const std::wstring& fileName);
std::wstring bindir_plain();
std::wstring templates_bindir();
std::wstring bindir_view64();

// The user's folders and the system's, each with a trailing separator.
std::wstring envvalue(const std::wstring& name);
std::wstring appdata_templatesdir();
std::wstring appdata_rootdir();
std::wstring localappdata_dir();
std::wstring localappdata_rootdir();
std::wstring sysdir();

// Path tools.
std::wstring addslash(const std::wstring& path);
std::wstring unifyslashes(const std::wstring& path);
std::wstring lowerpath(const std::wstring& path);
std::wstring shortpath(const std::wstring& path);
std::wstring shortpath_utf8(const std::string& path);
std::wstring expandenv(const std::wstring& text);
std::wstring collapseenv(const std::wstring& path);
std::wstring longform(const std::wstring& path);
bool hasalienmark(const std::wstring& text);
std::wstring stripalienmark(const std::wstring& text, bool& hadMark);
bool direxists(const std::wstring& path);
bool fileexists(const std::wstring& path);
bool makedirs(const std::wstring& path);
