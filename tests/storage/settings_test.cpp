#include "storage/settings.h"

#include "neighbours/settingsprovider.h"
#include "support/fakesettings.h"
#include "support/surroundings.h"

#include <comdef.h>

using Settings = Surroundings;

TEST_F(Settings, ZeroAndNoNumberAreTheDefault)
{
    fakeSettings_t provider;
    const std::tuple<const wchar_t*, bool, bool> cases[] = {
        {L"0", false, true}, {L"0x1", false, true}, {L" +1x", true, true}, {L"-1", false, false}};
    for (const auto& [text, orFalse, orTrue] : cases) {
        provider.values[L"key"] = text;
        EXPECT_EQ(settings_getbool(L"key", false), orFalse) << text;
        EXPECT_EQ(settings_getbool(L"key", true), orTrue) << text;
    }
}

TEST_F(Settings, WhateverTheProviderDoesBecomesAStatus)
{
    constexpr HRESULT unknown = HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND);
    const auto noText = [](SettingsRequest* request) -> HRESULT {
        return request->size == 20 && !wcscmp(request->key, L"key") && request->value ? S_FALSE
                                                                                      : E_FAIL;
    };
    const auto notFound = [](SettingsRequest*) { return unknown; };
    const auto comError = [](SettingsRequest*) -> HRESULT { throw _com_error(E_ABORT); };
    const auto comSuccess = [](SettingsRequest*) -> HRESULT { throw _com_error(S_FALSE); };
    const auto anyError = [](SettingsRequest*) -> HRESULT { throw 1; };
    const std::tuple<SettingsCall, HRESULT, const wchar_t*> cases[] = {
        {noText, S_FALSE, L""},
        {notFound, unknown, L"|E 0 INSTALLATION: cannot set 'key'"},
        {comError, E_ABORT, L"|E -2147467260 cannot set 'key'"},
        {comSuccess, S_FALSE, L""}, // its code decides, and that is a success
        {anyError, E_UNEXPECTED, L"|E -2147418113 cannot set 'key'"},
        {nullptr, E_NOTIMPL, L"|E -2147467263 cannot set 'key'"}};
    for (const auto& [call, status, messages] : cases) {
        const SettingsProvider provider{nullptr, call, call, nullptr, nullptr};
        settings_replace(&provider);
        std::wstring value = L"old";
        EXPECT_EQ(settings_query(L"key", value), status);
        EXPECT_EQ(value + traced(), SUCCEEDED(status) ? L"" : L"old");
        EXPECT_EQ(settings_set(L"key", L""), status);
        EXPECT_EQ(traced(), messages);
    }
    settings_replace(nullptr);
}

TEST_F(Settings, LibraryIsLookedForInTwoPlacesAndOnlyOnce)
{
    const importPatch_t calls("LoadLibraryW", notePath<0, ERROR_MOD_NOT_FOUND>);
    const std::wstring own = moduleFileName(nullptr), folder = own.substr(0, own.rfind(L'\\'));
    IN_FRESH_PROCESS({
        EXPECT_EQ(settings_getstring(L"key", L"default"), L"default");
        EXPECT_EQ(settings_set(L"key", L""), E_NOTIMPL);
        EXPECT_EQ(noted, LR"(x64\VloSet.dll|)" + folder + LR"(\x64\VloSet.dll|)");
    });
}
