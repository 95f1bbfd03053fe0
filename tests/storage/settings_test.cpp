#include "storage/settings.h"

#include "neighbours/settingsprovider.h"
#include "support/fakesettings.h"
#include "support/surroundings.h"

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

TEST_F(Settings, StatusDecidesAndAFailureKeepsTheValue)
{
    const auto noText = [](SettingsRequest* request) -> HRESULT {
        return request->size == 20 && !wcscmp(request->key, L"key") && request->value ? S_FALSE
                                                                                      : E_FAIL;
    };
    const auto notFound = [](SettingsRequest*) { return HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND); };
    const std::tuple<SettingsCall, HRESULT, const wchar_t*, const wchar_t*> cases[] = {
        {noText, S_FALSE, L"", L""},
        {nullptr, E_NOTIMPL, L"old", L"|E -2147467263 cannot set 'key'"},
        {notFound, HRESULT(0x80070002), L"old", L"|E 0 INSTALLATION: cannot set 'key'"}};
    for (const auto& [call, status, kept, lines] : cases) {
        const SettingsProvider provider{nullptr, call, call, nullptr, nullptr};
        settings_replace(&provider);
        std::wstring value = L"old";
        EXPECT_EQ(settings_query(L"key", value), status);
        EXPECT_EQ(value, kept);
        EXPECT_EQ(settings_set(L"key", L""), status);
        EXPECT_EQ(traced(), lines);
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
