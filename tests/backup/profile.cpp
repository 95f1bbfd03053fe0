#include "profile.h"

#include "common/scoped.h"

namespace {

constexpr wchar_t categoriesKey[] = L"SOFTWARE\\Veltrano\\Applications\\DashBoard\\QLCategories";

std::string contentOf(const std::wstring& path)
{
    const CFileHandle file(CreateFileW(path.c_str(), GENERIC_READ,
                                       FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                                       0, nullptr));
    std::string content(GetFileSize(file.get(), nullptr), '\0');
    DWORD read = 0;
    ReadFile(file.get(), content.data(), static_cast<DWORD>(content.size()), &read, nullptr);
    return content;
}

void deleteAll(const std::wstring& folder, const profile_t::fileMap& files)
{
    for (const auto& [name, content] : files)
        DeleteFileW((folder + name).c_str());
}

} // namespace

bytes tlv(uint8_t tag, const bytes& content)
{
    bytes out = {tag};
    if (content.size() < 0x80) {
        out.push_back(static_cast<uint8_t>(content.size()));
    } else {
        bytes length;
        for (size_t rest = content.size(); rest != 0; rest >>= 8)
            length.insert(length.begin(), static_cast<uint8_t>(rest));
        out.push_back(static_cast<uint8_t>(0x80 | length.size()));
        out.insert(out.end(), length.begin(), length.end());
    }
    out.insert(out.end(), content.begin(), content.end());
    return out;
}

bytes seq(const std::vector<bytes>& elements)
{
    bytes content;
    for (const bytes& element : elements)
        content.insert(content.end(), element.begin(), element.end());
    return tlv(0x30, content);
}

bytes wide(const std::wstring& text)
{
    bytes content;
    for (const wchar_t unit : text + L'\0') {
        content.push_back(static_cast<uint8_t>(unit >> 8));
        content.push_back(static_cast<uint8_t>(unit));
    }
    return tlv(0x1E, content);
}

bytes octets(const std::string& content)
{
    return tlv(0x04, bytes(content.begin(), content.end()));
}

bytes narrow(const std::string& text)
{
    return octets(text + '\0');
}

bytes integer(uint8_t value)
{
    return {0x02, 0x01, value};
}

bytes filePair(const std::wstring& name, const std::string& content)
{
    return seq({wide(name), octets(content)});
}

profile_t::profile_t()
{
    wchar_t temporary[MAX_PATH] = {};
    GetTempPathW(MAX_PATH, temporary);
    root = std::wstring(temporary) + L"vlprofile" + std::to_wstring(GetCurrentProcessId()) + L"\\";
    personal = root + L"personal\\";
    cache = root + L"cache\\";
    quickLinks = root + L"quicklinks.txt";
    for (const auto& folder : {root, personal, cache})
        CreateDirectoryW(folder.c_str(), nullptr);
    settings.values = {{L"path_localstorage_dir", personal},
                       {L"path_cachestorage_dir", cache},
                       {L"path_quicklink_filename", quickLinks},
                       {L"show_training_prompt", L"1"},
                       {L"is_personalMode", L"1"}};
    clear();
}

profile_t::~profile_t()
{
    clear();
    for (const auto& folder : {personal, cache, root})
        RemoveDirectoryW(folder.c_str());
}

void profile_t::write(const std::wstring& path, const std::string& content) const
{
    const CFileHandle file(CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                       FILE_ATTRIBUTE_NORMAL, nullptr));
    DWORD written = 0;
    WriteFile(file.get(), content.data(), static_cast<DWORD>(content.size()), &written, nullptr);
}

void profile_t::clear() const
{
    for (const auto& folder : {personal, cache})
        deleteAll(folder, files(folder));
    DeleteFileW(quickLinks.c_str());
    RegDeleteTreeW(HKEY_CURRENT_USER, L"SOFTWARE\\Veltrano\\Applications\\DashBoard");
}

profile_t::fileMap profile_t::files(const std::wstring& folder) const
{
    fileMap found;
    WIN32_FIND_DATAW entry = {};
    const CSearchHandle search(FindFirstFileW((folder + L"*").c_str(), &entry));
    if (!search)
        return found;
    do {
        if ((entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0)
            found[entry.cFileName] = contentOf(folder + entry.cFileName);
    } while (FindNextFileW(search.get(), &entry));
    return found;
}

void profile_t::setCategory(const std::wstring& name, const std::wstring& text) const
{
    RegSetKeyValueW(HKEY_CURRENT_USER, categoriesKey, name.c_str(), REG_SZ, text.c_str(),
                    static_cast<DWORD>(2 * text.size() + 2));
}

profile_t::categoryMap profile_t::categories() const
{
    categoryMap found;
    CRegistryKey key;
    RegOpenKeyExW(HKEY_CURRENT_USER, categoriesKey, 0, KEY_READ, key.put());
    for (DWORD i = 0; key; ++i) {
        wchar_t name[261] = {};
        wchar_t text[261] = {};
        DWORD nameSize = 260;
        DWORD textSize = sizeof(text) - sizeof(wchar_t);
        if (RegEnumValueW(key.get(), i, name, &nameSize, nullptr, nullptr,
                          reinterpret_cast<BYTE*>(text), &textSize) != ERROR_SUCCESS)
            break;
        found[name] = text;
    }
    return found;
}

std::wstring profile_t::setting(const std::wstring& key) const
{
    const auto value = settings.values.find(key);
    return value == settings.values.end() ? std::wstring() : value->second;
}
