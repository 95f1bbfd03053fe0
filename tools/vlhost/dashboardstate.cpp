#include "dashboardstate.h"

#include "common/scoped.h"
#include "neighbours/dashboardkeys.h"
#include "shared/systemerror.h"
#include "shared/toolerror.h"

namespace {

void check(LSTATUS error, const char* what)
{
    if (error != ERROR_SUCCESS)
        throw CToolError(std::string("can't ") + what +
                         " the categories: " + errorText(static_cast<DWORD>(error)));
}

// open gives no key if there is none.
CRegistryKey open(const wchar_t* path, REGSAM access)
{
    CRegistryKey key;
    const LSTATUS error = RegOpenKeyExW(HKEY_CURRENT_USER, path, 0, access, key.put());
    if (error != ERROR_FILE_NOT_FOUND)
        check(error, "open");
    return key;
}

bool read(HKEY key, registryValue_t& value)
{
    const LSTATUS error = readValue(key, value);
    if (error != ERROR_FILE_NOT_FOUND)
        check(error, "read");
    return error == ERROR_SUCCESS;
}

void write(HKEY key, const registryValue_t& value)
{
    check(writeValue(key, value), "write");
}

CRegistryKey make(const wchar_t* path)
{
    CRegistryKey key;
    check(RegCreateKeyExW(HKEY_CURRENT_USER, path, 0, nullptr, 0, KEY_READ | KEY_WRITE, nullptr,
                          key.put(), nullptr),
          "write");
    return key;
}

} // namespace

dashboardState_t readDashboard()
{
    dashboardState_t state;
    const CRegistryKey dashboard = open(dashboardKey, KEY_READ);
    if (!dashboard)
        return state;
    registryValue_t last{dashboardLastCategory, REG_SZ, {}};
    if (read(dashboard.get(), last))
        state.lastCategory = std::move(last);
    const CRegistryKey key = open(dashboardCategoriesKey, KEY_READ);
    if (!key)
        return state;
    auto& categories = state.categories.emplace();
    check(readValues(key.get(), categories), "read");
    return state;
}

void writeDashboard(const dashboardState_t& state)
{
    const CRegistryKey dashboard = make(dashboardKey);
    if (state.lastCategory)
        write(dashboard.get(), *state.lastCategory);
    else
        RegDeleteValueW(dashboard.get(), dashboardLastCategory);
    const LSTATUS error = RegDeleteKeyW(HKEY_CURRENT_USER, dashboardCategoriesKey);
    if (error != ERROR_FILE_NOT_FOUND)
        check(error, "replace");
    if (!state.categories)
        return;
    const CRegistryKey key = make(dashboardCategoriesKey);
    for (const auto& category : *state.categories)
        write(key.get(), category);
}
