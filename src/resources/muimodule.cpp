#include "resources/muimodule.h"

#include "resources/languagelibrary.h"
#include "resources/languagenames.h"

#include <exception>
#include <iterator>
#include <string>

namespace {

std::wstring longFileName(HMODULE module)
{
    wchar_t path[261] = {};
    constexpr auto size = static_cast<DWORD>(std::size(path));
    const DWORD length = GetModuleFileNameW(module, path, size);
    if (length == 0 || length >= size)
        return {};
    wchar_t longPath[261] = {};
    const DWORD longLength = GetLongPathNameW(path, longPath, size);
    if (longLength == 0 || longLength >= size)
        return {};
    return longPath;
}

HMODULE searchLanguages(HMODULE module, const std::wstring& path)
{
    for (const LANGID language : {GetUserDefaultUILanguage(), englishUs}) {
        const LANGID neutral = neutralLanguage(language);
        const LANGID standard = defaultSublanguage(language);
        const struct {
            bool wanted;
            LANGID language;
        } tries[] = {
            {true, language},
            {neutral != language, neutral},
            {standard != language, standard},
            {true, 0},
        };
        for (const auto& next : tries) {
            if (!next.wanted)
                continue;
            const HMODULE found = LoadLanguageLibrary(path, languageFolderByName, next.language);
            if (found && found != module)
                return found;
            if (found)
                FreeLibrary(found);
        }
    }
    return LoadLanguageLibrary(path, languageFolderByName, 0);
}

} // namespace

HMODULE LoadMuiModule(HMODULE module, const osVersion_t& version) noexcept
{
    try {
        const std::wstring path = longFileName(module);
        if (path.empty())
            return nullptr;
        if (systemRedirectsResources(version))
            return LoadLanguageLibrary(path, languageFolderByName, 0);
        return searchLanguages(module, path);
    } catch (const std::exception&) { // out of memory: strings stay empty, the host goes on
        return nullptr;
    }
}
