#pragma once

#include "common/scoped.h"
#include "common/text.h"
#include "support/files.h"

#include <windows.h>

#include <algorithm>
#include <map>
#include <string>
#include <tuple>

// state_t is what is at places of the machine: files by their path, folders by theirs with a
// backslash, values by key, bar and name, and keys by theirs with a bar. The content of a value
// begins with its type.
using state_t = std::map<std::wstring, std::string>;

// addFiles adds what is in a folder, whose path ends in a backslash, and in so many levels of folders
// below; read: false takes the sizes of the files in the place of their contents.
inline void addFiles(state_t& state, const std::wstring& folder, int levels = 9, bool read = true)
{
    WIN32_FIND_DATAW found;
    const CSearchHandle search(FindFirstFileW((folder + L'*').c_str(), &found));
    for (bool more{search}; more; more = FindNextFileW(search.get(), &found)) {
        const std::wstring name = found.cFileName, path = folder + name;
        if (!(found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)) {
            state[path] = read ? fileBytes(path) : std::to_string(found.nFileSizeLow);
        } else if (name != L"." && name != L"..") {
            state[path + L'\\'];
            if (levels > 0)
                addFiles(state, path + L'\\', levels - 1, read);
        }
    }
}

// addValues adds a key with its values and the keys below.
inline void addValues(state_t& state, HKEY root, const std::wstring& path)
{
    CRegistryKey key;
    if (RegOpenKeyExW(root, path.c_str(), 0, KEY_READ, key.put()) != ERROR_SUCCESS)
        return;
    state[path + L'|']; // also without a value of no name
    std::wstring name(0x4000, L'\0');
    std::string data(0x10000, '\0');
    DWORD length = 0x4000, type = 0, size = 0x10000;
    for (DWORD i = 0; RegEnumValueW(key.get(), i, name.data(), &length, nullptr, &type,
                                    reinterpret_cast<BYTE*>(data.data()), &size) == ERROR_SUCCESS;
         ++i, length = 0x4000, size = 0x10000)
        state[path + L'|' + name.substr(0, length)] =
            static_cast<char>(type) + data.substr(0, size);
    for (DWORD i = 0; RegEnumKeyW(key.get(), i, name.data(), 0x4000) == ERROR_SUCCESS; ++i)
        addValues(state, root, path + L'\\' + name.c_str());
}

// difference names what is in only one of the states, or not the same; empty for equal ones.
inline std::string difference(const state_t& is, const state_t& wanted)
{
    std::string text;
    for (const auto& [mark, one, other] :
         {std::tuple{" is ", &is, &wanted}, {" for ", &wanted, &is}})
        for (const auto& [name, content] : *one)
            if (!other->contains(name) || other->at(name) != content)
                text += mark + utf8FromWide(name) + '=' + content.substr(0, 300);
    std::erase(text, '\0');
    std::replace(text.begin(), text.end(), '\n', '~');
    return text;
}
