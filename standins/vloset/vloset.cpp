#include "vloset.h"

#include "settingsstore.h"
#include "settingstable.h"

namespace {

constexpr HRESULT unknownKey = HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND);

std::wstring textof(BSTR text)
{
    return std::wstring(text ? text : L"", SysStringLen(text));
}

struct Answer {
    std::wstring text;
    bool isStored;
};

Answer settingtext(const SettingDef& setting, bool expanded)
{
    const auto stored =
        readtext(HKEY_CURRENT_USER, settingsKey, setting.key, expanded ? expandedText : rawText);
    return stored ? Answer{*stored, true} : Answer{defaulttext(setting, expanded), false};
}

std::wstring diagnosis(const SettingDef& setting)
{
    const Answer answer = settingtext(setting, true);
    const std::wstring source =
        answer.isStored ? std::wstring(LR"(HKEY_CURRENT_USER\)") + settingsKey : L"default";
    return std::wstring(setting.key) + L" = '" + answer.text + L"' (" + source + L")";
}

// Only a status may leave the library, never an exception.
template <class Operation>
HRESULT checked(const SettingsRequest* request, const Operation& operation) noexcept
{
    if (!request || request->size != sizeof(SettingsRequest) || !request->key)
        return E_INVALIDARG;
    try {
        return operation(textof(request->key));
    } catch (...) {
        return E_OUTOFMEMORY; // all that the containers raise
    }
}

// text: gives the answer to a key; nothing for a key that isn't one
template <class Text> HRESULT answered(const SettingsRequest* request, const Text& text) noexcept
{
    return checked(request, [&](const std::wstring& key) {
        if (!request->value)
            return E_INVALIDARG;
        const std::optional<std::wstring> answer = text(key);
        if (!answer)
            return unknownKey;
        BSTR copy = SysAllocStringLen(answer->data(), static_cast<UINT>(answer->size()));
        if (!copy)
            return E_OUTOFMEMORY;
        *static_cast<BSTR*>(request->value) = copy;
        return S_OK;
    });
}

template <bool expanded> std::optional<std::wstring> knowntext(const std::wstring& key)
{
    const SettingDef* setting = findsetting(key);
    if (!setting)
        return std::nullopt;
    return settingtext(*setting, expanded).text;
}

std::optional<std::wstring> diagnosed(const std::wstring& key)
{
    if (!key.empty()) {
        const SettingDef* setting = findsetting(key);
        return setting ? std::optional(diagnosis(*setting)) : std::nullopt;
    }
    std::wstring all;
    for (const SettingDef& setting : allsettings())
        all += diagnosis(setting) + L"\n";
    return all;
}

} // namespace

HRESULT api_settings_query(SettingsRequest* request)
{
    return answered(request, knowntext<true>);
}

HRESULT api_settings_env(SettingsRequest* request)
{
    return answered(request, knowntext<false>);
}

HRESULT api_settings_diag(SettingsRequest* request)
{
    return answered(request, diagnosed);
}

HRESULT api_settings_set(SettingsRequest* request)
{
    return checked(request, [&](const std::wstring& key) {
        const SettingDef* setting = findsetting(key);
        if (!setting)
            return unknownKey;
        return writesetting(setting->key, textof(static_cast<BSTR>(request->value)));
    });
}
