#include "settingsstore.h"

#include "common/scoped.h"

std::optional<std::wstring> readtext(HKEY root, const wchar_t* key, const wchar_t* name,
                                     DWORD flags)
{
    std::wstring text(MAX_PATH, L'\0');
    for (;;) {
        auto size = static_cast<DWORD>(text.size() * sizeof(wchar_t));
        const LSTATUS error = RegGetValueW(root, key, name, flags, nullptr, text.data(), &size);
        if (error == ERROR_SUCCESS) {
            text.resize(wcslen(text.c_str()));
            return text;
        }
        if (error != ERROR_MORE_DATA)
            return std::nullopt;
        text.resize(text.size() * 2); // not every system reports the expanded text's size then
    }
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
