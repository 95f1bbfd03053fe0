#include "places.h"

#include "common/scoped.h"
#include "common/text.h"
#include "shared/commandline.h"

#include <bcrypt.h>

namespace {

using bytes_t = std::vector<BYTE>;

struct hashHandle {
    using value_type = BCRYPT_HASH_HANDLE;
    static BCRYPT_HASH_HANDLE empty() noexcept { return nullptr; }
    static void close(BCRYPT_HASH_HANDLE h) noexcept { BCryptDestroyHash(h); }
};
struct algorithmHandle {
    using value_type = BCRYPT_ALG_HANDLE;
    static BCRYPT_ALG_HANDLE empty() noexcept { return nullptr; }
    static void close(BCRYPT_ALG_HANDLE h) noexcept { BCryptCloseAlgorithmProvider(h, 0); }
};

std::string hexText(const bytes_t& bytes)
{
    constexpr char digits[] = "0123456789abcdef";
    std::string text;
    for (const BYTE byte : bytes) {
        text += digits[byte >> 4];
        text += digits[byte & 15];
    }
    return text;
}

std::string errorText(DWORD error)
{
    wchar_t text[512] = {};
    DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                                  nullptr, error, 0, text, 512, nullptr);
    while (length && text[length - 1] <= L' ')
        --length;
    return length ? utf8FromWide({text, length}) : "error " + std::to_string(error);
}

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

void readTreeInto(const std::wstring& path, registryTree_t& tree)
{
    const CRegistryKey key = openKey(path, KEY_READ);
    if (!key)
        return;
    auto& values = tree[path];
    wchar_t name[16384];
    for (DWORD i = 0, size = 16384;
         !RegEnumValueW(key.get(), i, name, &size, nullptr, nullptr, nullptr, nullptr);
         ++i, size = 16384)
        values[name] = valueContent(path, name);
    for (DWORD i = 0, size = 16384;
         !RegEnumKeyExW(key.get(), i, name, &size, nullptr, nullptr, nullptr, nullptr);
         ++i, size = 16384)
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
    CScoped<algorithmHandle> algorithm;
    CScoped<hashHandle> hash;
    NTSTATUS status =
        BCryptOpenAlgorithmProvider(algorithm.put(), BCRYPT_SHA256_ALGORITHM, nullptr, 0);
    if (status >= 0)
        status = BCryptCreateHash(algorithm.get(), hash.put(), nullptr, 0, nullptr, 0, 0);
    bytes_t buffer(1 << 16);
    for (DWORD read = 1; status >= 0 && read;) {
        if (!ReadFile(file.get(), buffer.data(), static_cast<DWORD>(buffer.size()), &read, nullptr))
            failed("can't read", path, GetLastError());
        status = BCryptHashData(hash.get(), buffer.data(), read, 0);
    }
    bytes_t digest(32);
    if (status >= 0)
        status = BCryptFinishHash(hash.get(), digest.data(), 32, 0);
    if (status < 0)
        throw CToolError("the system makes no checksum of " + utf8FromWide(path));
    return hexText(digest);
}

std::string valueContent(const std::wstring& key, const std::wstring& name)
{
    const CRegistryKey open = openKey(key, KEY_QUERY_VALUE);
    DWORD type = 0, size = 0;
    LSTATUS error = open
                        ? RegQueryValueExW(open.get(), name.c_str(), nullptr, &type, nullptr, &size)
                        : ERROR_FILE_NOT_FOUND;
    bytes_t data(size);
    if (!error)
        error = RegQueryValueExW(open.get(), name.c_str(), nullptr, &type, data.data(), &size);
    if (missing(error))
        return {};
    if (error)
        failed("can't read", shown(key, name), static_cast<DWORD>(error));
    data.resize(size);
    return std::to_string(type) + ':' + hexText(data);
}

std::string textValue(const std::wstring& text, DWORD type)
{
    bytes_t data;
    for (size_t i = 0; i <= text.size(); ++i) {
        data.push_back(static_cast<BYTE>(text.c_str()[i]));
        data.push_back(static_cast<BYTE>(text.c_str()[i] >> 8));
    }
    return std::to_string(type) + ':' + hexText(data);
}

void copyTo(const std::wstring& source, const std::wstring& target)
{
    const std::wstring part = target + L'.' + std::to_wstring(GetCurrentProcessId()) + L".part";
    const bool moved = CopyFileW(source.c_str(), part.c_str(), TRUE) &&
                       SetFileAttributesW(part.c_str(), FILE_ATTRIBUTE_NORMAL) &&
                       MoveFileExW(part.c_str(), target.c_str(), MOVEFILE_REPLACE_EXISTING);
    if (moved)
        return;
    const DWORD error = GetLastError();
    DeleteFileW(part.c_str());
    failed("can't write", target, error);
}

void putValue(const std::wstring& key, const std::wstring& name, const std::string& content)
{
    const size_t colon = content.find(':');
    bytes_t data;
    for (size_t at = colon + 1; at + 1 < content.size(); at += 2)
        data.push_back(static_cast<BYTE>(std::stoul(content.substr(at, 2), nullptr, 16)));
    CRegistryKey open;
    LSTATUS error = RegCreateKeyExW(HKEY_LOCAL_MACHINE, key.c_str(), 0, nullptr, 0, KEY_SET_VALUE,
                                    nullptr, open.put(), nullptr);
    if (!error)
        error = RegSetValueExW(open.get(), name.c_str(), 0, std::stoul(content.substr(0, colon)),
                               data.data(), static_cast<DWORD>(data.size()));
    if (error)
        failed("can't write", shown(key, name), static_cast<DWORD>(error));
}

void moveTo(const std::wstring& from, const std::wstring& to)
{
    if (!MoveFileExW(from.c_str(), to.c_str(), 0))
        failed("can't rename", from, GetLastError());
}

void removeFile(const std::wstring& path)
{
    if (DeleteFileW(path.c_str()) || missing(static_cast<LSTATUS>(GetLastError())))
        return;
    const DWORD attributes = GetFileAttributesW(path.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY)) {
        SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
        if (DeleteFileW(path.c_str()))
            return;
    }
    failed("can't remove", path, GetLastError());
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
