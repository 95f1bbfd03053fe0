#pragma once

#include <string>

// FileNamePart gives what follows the last \, / or :, or else the whole text.
inline std::wstring FileNamePart(const std::wstring& path)
{
    return path.substr(path.find_last_of(L"\\/:") + 1);
}
