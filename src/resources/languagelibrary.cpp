#include "resources/languagelibrary.h"

#include "common/mappedfile.h"
#include "formats/resource/muifile.h"
#include "formats/text/pathpart.h"
#include "resources/languagenames.h"

#include <cwchar>
#include <span>

namespace {

constexpr LONGLONG maxFileSize = 1 << 28;

// CheckedFile keeps a file from being written as long as what was read from it must stay true.
struct CheckedFile {
    CFileHandle file;
    muiFile_t contents;
};

CheckedFile checkFile(const std::wstring& path)
{
    CheckedFile checked;
    checked.file.reset(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                   OPEN_EXISTING, 0, nullptr));
    LARGE_INTEGER size{};
    if (!checked.file || !GetFileSizeEx(checked.file.get(), &size) || size.QuadPart > maxFileSize)
        return checked;
    if (const CMappedView view = mapForReading(checked.file.get()))
        checked.contents = readMuiFile(
            {static_cast<const uint8_t*>(view.get()), static_cast<size_t>(size.QuadPart)});
    return checked;
}

std::wstring languageFolder(DWORD flags, LANGID language)
{
    if (flags & languageFolderByName)
        return std::wstring(languageName(language));
    wchar_t folder[16] = {};
    _snwprintf(folder, 15, L"MUI\\%04hx", language);
    return folder;
}

std::wstring languageFile(const std::wstring& path, const std::wstring& folder)
{
    const size_t start = folderPart(path).size();
    return (start ? path.substr(0, start - 1) : L".") + L'\\' + folder + L'\\' +
           path.substr(start) + L".mui";
}

HMODULE loadOne(const std::wstring& path, const muiFile_t& library, DWORD flags, LANGID language)
{
    const std::wstring folder = languageFolder(flags, language);
    if (folder.empty())
        return nullptr;
    const std::wstring name = languageFile(path, folder);
    const CheckedFile file = checkFile(name);
    if (!languageFileFits(library, file.contents))
        return nullptr;
    return LoadLibraryExW(name.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
}

HMODULE searchAll(const std::wstring& path, const muiFile_t& library, DWORD flags)
{
    for (const LANGID language :
         {GetUserDefaultUILanguage(), GetSystemDefaultUILanguage(), englishUs}) {
        if (const HMODULE found = loadOne(path, library, flags, language))
            return found;
        if (const HMODULE found = loadOne(path, library, flags, neutralLanguage(language)))
            return found;
    }
    return nullptr;
}

HMODULE libraryItself(const std::wstring& path)
{
    HMODULE library = nullptr;
    if (GetModuleHandleExW(0, path.c_str(), &library))
        return library;
    return LoadLibraryExW(path.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
}

} // namespace

HMODULE LoadLanguageLibrary(const std::wstring& path, DWORD flags, LANGID language)
{
    if (language == 1)
        return nullptr;
    const CheckedFile library = checkFile(path);
    if (!library.contents.sound)
        return nullptr;
    if (!library.contents.divided)
        return libraryItself(path);
    return language ? loadOne(path, library.contents, flags, language)
                    : searchAll(path, library.contents, flags);
}
