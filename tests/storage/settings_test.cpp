#include "surroundings.h"

#include <cstring>

#include <comdef.h>

#include "storage/settings.h"
#include "storage/settingsprovider.h"
#include "support/fakesettings.h"

TEST(Settings, ZeroAndNoNumberAreTheDefault)
{
    fakeSettings_t provider;
    const std::tuple<const wchar_t*, bool, bool> cases[] = {
        {L"0", false, true},   {L"abc", false, true},          {L"", false, true},
        {L"2", true, true},    {L" +1x", true, true},          {L"0x1", false, true},
        {L"-1", false, false}, {L"-99999999999", false, false}};
    for (const auto& [text, againstFalse, againstTrue] : cases) {
        provider.values[L"key"] = text;
        EXPECT_EQ(settings_getbool(L"key", false), againstFalse) << text;
        EXPECT_EQ(settings_getbool(L"key", true), againstTrue) << text;
    }
}

template <HRESULT status> HRESULT answer(SettingsRequest*)
{
    return status;
}
template <class Error, auto value> HRESULT raise(SettingsRequest*)
{
    throw Error(value);
}
// Reads the record as the bytes that it is.
HRESULT checkRecord(SettingsRequest* request)
{
    BSTR key = nullptr, *value = nullptr;
    std::memcpy(&key, &request->size + 1, 8);
    std::memcpy(&value, &request->size + 3, 8);
    return request->size == 20 && !wcscmp(key, L"key") && value ? S_FALSE : E_FAIL;
}

TEST(Settings, WhateverTheProviderDoesBecomesAStatus)
{
    constexpr HRESULT notFound = HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND);
    const std::tuple<SettingsCall, HRESULT, texts> cases[] = {
        {answer<S_OK>, S_OK, {}},
        {checkRecord, S_FALSE, {}},
        {answer<notFound>, notFound, {L"E 0 INSTALLATION: cannot set 'key'"}},
        {raise<_com_error, E_ABORT>, E_ABORT, {L"E -2147467260 cannot set 'key'"}},
        {raise<int, 1>, E_UNEXPECTED, {L"E -2147418113 cannot set 'key'"}},
        {nullptr, E_NOTIMPL, {L"E -2147467263 cannot set 'key'"}},
    };
    traceRecorder_t traces;
    for (const auto& [call, status, traced] : cases) {
        const SettingsProvider provider{nullptr, call, call, nullptr, nullptr};
        settings_replace(&provider);
        std::wstring value = L"old";
        EXPECT_EQ(settings_query(L"key", value), status);
        EXPECT_EQ(value, SUCCEEDED(status) ? L"" : L"old"); // a null text is empty
        EXPECT_EQ(traces.messages(), texts());
        EXPECT_EQ(settings_set(L"key", L""), status);
        EXPECT_EQ(traces.messages(), traced);
    }
    settings_replace(nullptr);
}

TEST(Settings, LibraryIsLookedForInTwoPlacesAndOnlyOnce)
{
    clearRegistry();
    static texts loaded;
    loaded.clear();
    const auto calls = catchCalls(
        "LoadLibraryW", +[](const wchar_t* path) -> HMODULE {
            loaded.push_back(path);
            return nullptr;
        });
    const std::wstring own = moduleFileName(nullptr), folder = own.substr(0, own.rfind(L'\\') + 1);
    IN_FRESH_PROCESS({
        EXPECT_EQ(settings_getstring(L"key", L"default"), L"default");
        EXPECT_EQ(settings_set(L"key", L""), E_NOTIMPL);
        EXPECT_EQ(loaded, (texts{LR"(x64\VloSet.dll)", folder + LR"(x64\VloSet.dll)"}));
    });
    setValue(HKEY_LOCAL_MACHINE, LR"(SOFTWARE\Veltrano\Applications)", L"BinDir", REG_SZ,
             bytesOf(LR"(C:\App)"));
    settings_load(); // joined whole, though that makes no path
    EXPECT_EQ(loaded, (texts{LR"(C:\App\VloSet.dll)", folder + LR"(C:\App\VloSet.dll)"}));
}
