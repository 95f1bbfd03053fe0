#include "places.h"

#include "checksum.h"
#include "common/scoped.h"
#include "common/text.h"
#include "shared/filesystem.h"
#include "shared/hextext.h"
#include "shared/registryvalue.h"
#include "shared/systemerror.h"
#include "shared/toolerror.h"
#include "shared/windowsfiles.h"

namespace {

const char* hintFor(DWORD error)
{
    switch (error) {
    case ERROR_ACCESS_DENIED:
        return "is it protected, or in use by another program?";
    case ERROR_SHARING_VIOLATION:
    case ERROR_USER_MAPPED_FILE:
        return "close the program that uses it";
    case ERROR_WRITE_PROTECT:
        return "the disk is write-protected";
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
        return "the disk is full";
    case ERROR_ALREADY_EXISTS:
        return "a file of that name is there";
    default:
        return "";
    }
}

DWORD codeOf(std::error_code error)
{
    return static_cast<DWORD>(error.value());
}

bool missing(LSTATUS error)
{
    return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
}

std::wstring shown(const std::wstring& key, const std::wstring& name)
{
    return L"HKLM\\" + key + L", value \"" + name + L'"';
}

// openKey gives no key if there is none.
CRegistryKey openKey(const std::wstring& path, REGSAM access)
{
    CRegistryKey key;
    const LSTATUS error = RegOpenKeyExW(HKEY_LOCAL_MACHINE, path.c_str(), 0, access, key.put());
    if (error && !missing(error))
        failed("can't open the key", L"HKLM\\" + path, static_cast<DWORD>(error));
    return error ? CRegistryKey() : std::move(key);
}

// outward lists a path and its parents, innermost first, down to the shortest that counts.
std::vector<std::wstring> outward(const std::wstring& path, size_t shortest)
{
    std::vector<std::wstring> all;
    for (std::wstring part = path; part.size() > shortest;
         part.resize(std::min(part.size(), part.find_last_of(L'\\')))) {
        all.push_back(part);
        if (part.find(L'\\') == std::wstring::npos)
            break;
    }
    return all;
}

bool folderExists(const std::wstring& path)
{
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
}

std::string contentOf(const registryValue_t& value)
{
    return std::to_string(value.type) + ':' + hexText(value.data);
}

constexpr DWORD longestKey = 256; // characters of a key's name, its zero included

void readTreeInto(const std::wstring& path, registryTree_t& tree)
{
    const CRegistryKey key = openKey(path, KEY_READ);
    if (!key)
        return;
    auto& content = tree[path];
    std::vector<registryValue_t> values;
    if (const LSTATUS error = readValues(key.get(), values))
        failed("can't read", L"HKLM\\" + path, static_cast<DWORD>(error));
    for (const registryValue_t& value : values)
        content[value.name] = contentOf(value);
    wchar_t name[longestKey];
    for (DWORD i = 0, size = longestKey;
         !RegEnumKeyExW(key.get(), i, name, &size, nullptr, nullptr, nullptr, nullptr);
         ++i, size = longestKey)
        readTreeInto(path + L'\\' + name, tree);
}

} // namespace

void failed(const char* what, const std::wstring& place, DWORD error)
{
    throw CToolError(std::string(what) + ' ' + utf8FromWide(place) + ": " + errorText(error),
                     hintFor(error));
}

std::string fileContent(const std::wstring& path)
{
    const CFileHandle file(CreateFileW(path.c_str(), GENERIC_READ,
                                       FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                       nullptr, OPEN_EXISTING, 0, nullptr));
    if (!file) {
        const DWORD error = GetLastError();
        if (missing(static_cast<LSTATUS>(error)))
            return {};
        failed("can't read", path, error);
    }
    return checksumOf(file.get(), path);
}

std::string valueContent(const std::wstring& key, const std::wstring& name)
{
    const CRegistryKey open = openKey(key, KEY_QUERY_VALUE);
    registryValue_t value{name, REG_NONE, {}};
    const LSTATUS error = open ? readValue(open.get(), value) : ERROR_FILE_NOT_FOUND;
    if (missing(error))
        return {};
    if (error)
        failed("can't read", shown(key, name), static_cast<DWORD>(error));
    return contentOf(value);
}

std::string textValue(const std::wstring& text, DWORD type)
{
    return contentOf({{}, type, bytesOfText(text)});
}

void copyTo(const std::wstring& source, const std::wstring& target)
{
    const std::wstring part = target + L'.' + std::to_wstring(GetCurrentProcessId()) + L".part";
    std::error_code error = copyFile(source, part);
    if (!error)
        error = moveFile(part, target, true);
    if (!error)
        return;
    removeFile(part);
    failed("can't write", target, codeOf(error));
}

void putValue(const std::wstring& key, const std::wstring& name, const std::string& content)
{
    const size_t colon = content.find(':');
    const registryValue_t value{name, std::stoul(content.substr(0, colon)),
                                bytesOfHex(std::string_view(content).substr(colon + 1))};
    CRegistryKey open;
    LSTATUS error = RegCreateKeyExW(HKEY_LOCAL_MACHINE, key.c_str(), 0, nullptr, 0, KEY_SET_VALUE,
                                    nullptr, open.put(), nullptr);
    if (!error)
        error = writeValue(open.get(), value);
    if (error)
        failed("can't write", shown(key, name), static_cast<DWORD>(error));
}

void moveTo(const std::wstring& from, const std::wstring& to)
{
    if (const std::error_code error = moveFile(from, to, false))
        failed("can't rename", from, codeOf(error));
}

void takeAway(const std::wstring& path)
{
    if (const std::error_code error = removeFile(path))
        failed("can't remove", path, codeOf(error));
}

void removeValue(const std::wstring& key, const std::wstring& name)
{
    const CRegistryKey open = openKey(key, KEY_SET_VALUE);
    const LSTATUS error = open ? RegDeleteValueW(open.get(), name.c_str()) : ERROR_SUCCESS;
    if (error && !missing(error))
        failed("can't remove", shown(key, name), static_cast<DWORD>(error));
}

std::vector<std::wstring> missingFolders(const std::wstring& folder)
{
    std::vector<std::wstring> found;
    for (const std::wstring& part : outward(folder, 3)) { // C:\ is there
        if (folderExists(part))
            break;
        found.insert(found.begin(), part);
    }
    return found;
}

std::vector<std::wstring> missingKeys(const std::wstring& key)
{
    std::vector<std::wstring> found;
    for (const std::wstring& part : outward(key, 0)) {
        if (keyExists(part))
            break;
        found.insert(found.begin(), part);
    }
    return found;
}

void makeFolder(const std::wstring& folder)
{
    if (!CreateDirectoryW(folder.c_str(), nullptr) && !folderExists(folder))
        failed("can't make the folder", folder, GetLastError());
}

void removeFolderIfEmpty(const std::wstring& folder)
{
    if (RemoveDirectoryW(folder.c_str()))
        return;
    const DWORD error = GetLastError();
    if (error != ERROR_DIR_NOT_EMPTY && error != ERROR_DIRECTORY &&
        !missing(static_cast<LSTATUS>(error)))
        failed("can't remove the folder", folder, error);
}

void removeKeyIfEmpty(const std::wstring& key)
{
    DWORD keys = 0, values = 0;
    if (const CRegistryKey open = openKey(key, KEY_READ);
        !open ||
        RegQueryInfoKeyW(open.get(), nullptr, nullptr, nullptr, &keys, nullptr, nullptr, &values,
                         nullptr, nullptr, nullptr, nullptr) ||
        keys || values)
        return;
    const LSTATUS error = RegDeleteKeyW(HKEY_LOCAL_MACHINE, key.c_str());
    if (error && !missing(error))
        failed("can't remove the key", L"HKLM\\" + key, static_cast<DWORD>(error));
}

void checkNotInUse(const std::wstring& path)
{
    const CFileHandle file(CreateFileW(path.c_str(), GENERIC_WRITE,
                                       FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                       nullptr, OPEN_EXISTING, 0, nullptr));
    if (!file && GetLastError() == ERROR_SHARING_VIOLATION)
        failed("can't replace or remove", path, ERROR_SHARING_VIOLATION);
}

void checkAdministrator()
{
    CRegistryKey key;
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"SOFTWARE", 0, KEY_WRITE, key.put()) ==
        ERROR_ACCESS_DENIED)
        throw CToolError("administrator rights are needed", "start it as an administrator");
}

registryTree_t readTree(const std::wstring& key)
{
    registryTree_t tree;
    readTreeInto(key, tree);
    return tree;
}

bool keyExists(const std::wstring& key)
{
    return static_cast<bool>(openKey(key, KEY_QUERY_VALUE));
}

void makeKey(const std::wstring& key)
{
    CRegistryKey made;
    const LSTATUS error = RegCreateKeyExW(HKEY_LOCAL_MACHINE, key.c_str(), 0, nullptr, 0, KEY_READ,
                                          nullptr, made.put(), nullptr);
    if (error)
        failed("can't make the key", L"HKLM\\" + key, static_cast<DWORD>(error));
}
