#include "settingsstore.h"

#include "common/scoped.h"

std::wstring expandreferences(const wchar_t* text)
{
    const DWORD size = ExpandEnvironmentStringsW(text, nullptr, 0);
    std::wstring expanded(size, L'\0');
    ExpandEnvironmentStringsW(text, expanded.data(), size);
    expanded.resize(wcslen(expanded.c_str()));
    return expanded;
}

// Wine's RegGetValueW takes the buffer's bytes for characters when it expands, and writes past its
// end. So the text is read as it is, and expanded here.
std::optional<std::wstring> readtext(HKEY root, const wchar_t* key, const wchar_t* name,
                                     DWORD flags)
{
    std::wstring text(MAX_PATH, L'\0');
    DWORD type = REG_NONE;
    for (;;) {
        auto size = static_cast<DWORD>(text.size() * sizeof(wchar_t));
        const LSTATUS error =
            RegGetValueW(root, key, name, flags | rawText, &type, text.data(), &size);
        if (error == ERROR_SUCCESS)
            break;
        if (error != ERROR_MORE_DATA)
            return std::nullopt;
        text.resize(text.size() * 2);
    }
    if (type == REG_EXPAND_SZ && !(flags & RRF_NOEXPAND))
        return expandreferences(text.c_str());
    text.resize(wcslen(text.c_str()));
    return text;
}

HRESULT writesetting(const wchar_t* name, const std::wstring& text)
{
    CRegistryKey key;
    LSTATUS error =
        RegCreateKeyExW(HKEY_CURRENT_USER, settingsKey, 0, nullptr, REG_OPTION_NON_VOLATILE,
                        KEY_SET_VALUE, nullptr, key.put(), nullptr);
    if (error == ERROR_SUCCESS) {
        const auto size = static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t));
        error = RegSetValueExW(key.get(), name, 0, REG_SZ,
                               reinterpret_cast<const BYTE*>(text.c_str()), size);
    }
    return HRESULT_FROM_WIN32(error);
}
