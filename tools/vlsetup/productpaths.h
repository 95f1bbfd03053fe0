#pragma once

#include <string>

// Where things of the product are, below its folder.

inline std::wstring binOf(const std::wstring& root)
{
    return root + L"\\bin";
}
inline std::wstring recordOf(const std::wstring& root)
{
    return binOf(root) + L"\\VLOnlineIDs.installed.json";
}
inline std::wstring pluginOf(const std::wstring& root)
{
    return binOf(root) + L"\\VLOnlineIDs.dll";
}
