#pragma once

#include <string>
#include <system_error>

// fullPath makes a path full, from the current folder. Empty for what is no path.
std::wstring fullPath(const std::wstring& path);

// copyFile copies bytes and times over what may be there, read-only or not. The copy's attributes
// are normal, whatever the original's are.
std::error_code copyFile(const std::wstring& from, const std::wstring& to) noexcept;

// programFolder is this program's folder, without a separator at its end.
std::wstring programFolder();
