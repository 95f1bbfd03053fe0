#include "fakesettings.h"

#include "neighbours/settingsprovider.h"

namespace {

fakeSettings_t* current = nullptr;

HRESULT query(SettingsRequest* request)
{
    const auto& key = current->queried.emplace_back(request->key);
    const auto value = current->values.find(key);
    if (value == current->values.end())
        return HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND);
    *static_cast<BSTR*>(request->value) = SysAllocString(value->second.c_str());
    return S_OK;
}

HRESULT set(SettingsRequest* request)
{
    current->values[request->key] = static_cast<BSTR>(request->value);
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
}
