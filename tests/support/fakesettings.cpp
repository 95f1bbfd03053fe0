#include "fakesettings.h"

#include "storage/settingsprovider.h"

namespace {

fakeSettings_t* current = nullptr;

HRESULT failureOf(const std::wstring& key)
{
    const auto failure = current->failures.find(key);
    return failure == current->failures.end() ? S_OK : failure->second;
}

HRESULT query(SettingsRequest* request)
{
    const std::wstring key(request->key, SysStringLen(request->key));
    current->queried.push_back(key);
    if (const HRESULT failure = failureOf(key); FAILED(failure))
        return failure;
    const auto value = current->values.find(key);
    if (value == current->values.end())
        return HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND);
    *static_cast<BSTR*>(request->value) =
        SysAllocStringLen(value->second.data(), static_cast<UINT>(value->second.size()));
    return S_OK;
}

HRESULT set(SettingsRequest* request)
{
    const std::wstring key(request->key, SysStringLen(request->key));
    if (const HRESULT failure = failureOf(key); FAILED(failure))
        return failure;
    const auto value = static_cast<BSTR>(request->value);
    current->values[key].assign(value, SysStringLen(value));
    return S_OK;
}

const SettingsProvider provider{nullptr, query, set, nullptr, nullptr};

} // namespace

fakeSettings_t::fakeSettings_t()
{
    current = this;
    settings_replace(&provider);
}

fakeSettings_t::~fakeSettings_t()
{
    settings_replace(nullptr);
    current = nullptr;
}
