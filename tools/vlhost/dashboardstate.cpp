#include "dashboardstate.h"

#include "common/scoped.h"
#include "print.h"
#include "shared/commandline.h"

namespace {

constexpr wchar_t dashboardKey[] = L"SOFTWARE\\Veltrano\\Applications\\DashBoard";
constexpr wchar_t categoriesName[] = L"QLCategories";
constexpr wchar_t lastName[] = L"LastQLCategory";
constexpr size_t longestName = 16384; // characters of a value's name, its zero included

void check(LSTATUS error, const char* what)
{
    if (error != ERROR_SUCCESS)
        throw CToolError(std::string("can't ") + what +
                         " the categories: " + errorText(static_cast<DWORD>(error)));
}

// open gives no key if there is none.
CRegistryKey open(HKEY parent, const wchar_t* name, REGSAM access)
{
    CRegistryKey key;
    const LSTATUS error = RegOpenKeyExW(parent, name, 0, access, key.put());
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

CRegistryKey make(HKEY parent, const wchar_t* name)
{
    CRegistryKey key;
    check(RegCreateKeyExW(parent, name, 0, nullptr, 0, KEY_READ | KEY_WRITE, nullptr, key.put(),
                          nullptr),
          "write");
    return key;
}

} // namespace

dashboardState_t readDashboard()
{
    dashboardState_t state;
    const CRegistryKey dashboard = open(HKEY_CURRENT_USER, dashboardKey, KEY_READ);
    if (!dashboard)
        return state;
    registryValue_t last{lastName, REG_SZ, {}};
    if (read(dashboard.get(), last))
        state.lastCategory = std::move(last);
    const CRegistryKey key = open(dashboard.get(), categoriesName, KEY_READ);
    if (!key)
        return state;
    auto& categories = state.categories.emplace();
    std::wstring name(longestName, L'\0');
    for (DWORD index = 0;; ++index) {
        auto length = static_cast<DWORD>(name.size());
        const LSTATUS error = RegEnumValueW(key.get(), index, name.data(), &length, nullptr,
                                            nullptr, nullptr, nullptr);
        if (error == ERROR_NO_MORE_ITEMS)
            return state;
        check(error, "read");
        registryValue_t value{name.substr(0, length), REG_SZ, {}};
        if (read(key.get(), value))
            categories.push_back(std::move(value));
    }
}

void writeDashboard(const dashboardState_t& state)
{
    const CRegistryKey dashboard = make(HKEY_CURRENT_USER, dashboardKey);
    if (state.lastCategory)
        write(dashboard.get(), *state.lastCategory);
    else
        RegDeleteValueW(dashboard.get(), lastName);
    const LSTATUS error = RegDeleteKeyW(dashboard.get(), categoriesName);
    if (error != ERROR_FILE_NOT_FOUND)
        check(error, "replace");
    if (!state.categories)
        return;
    const CRegistryKey key = make(dashboard.get(), categoriesName);
    for (const auto& category : *state.categories)
        write(key.get(), category);
}
