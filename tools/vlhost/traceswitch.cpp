#include "traceswitch.h"

#include "common/registry.h"
#include "shared/systemerror.h"
#include "shared/toolerror.h"
#include "storage/paths.h"

#include <algorithm>
#include <cstdio>
#include <ctime>

namespace {

constexpr wchar_t tracingKey[] = L"SOFTWARE\\Veltrano\\Tracing";
constexpr const wchar_t* changedValues[] = {L"DoTrace", L"TraceToFile", L"TracePath",
                                            L"TracePathLow"};

std::optional<DWORD> numberOf(const wchar_t* name)
{
    DWORD number = 0;
    DWORD size = sizeof number;
    if (RegGetValueW(HKEY_LOCAL_MACHINE, tracingKey, name, RRF_RT_REG_DWORD, nullptr, &number,
                     &size) != ERROR_SUCCESS)
        return std::nullopt;
    return number;
}

std::wstring textOf(const wchar_t* name)
{
    constexpr DWORD flags = RRF_RT_REG_SZ | RRF_RT_REG_EXPAND_SZ | RRF_NOEXPAND;
    std::wstring text(MAX_PATH, L'\0');
    for (;;) {
        auto size = static_cast<DWORD>(text.size() * sizeof(wchar_t));
        const LSTATUS error =
            RegGetValueW(HKEY_LOCAL_MACHINE, tracingKey, name, flags, nullptr, text.data(), &size);
        if (error == ERROR_SUCCESS)
            return text.c_str();
        if (error != ERROR_MORE_DATA)
            return {};
        text.resize(text.size() * 2);
    }
}

std::wstring expanded(const std::wstring& text)
{
    std::wstring result(ExpandEnvironmentStringsW(text.c_str(), nullptr, 0), L'\0');
    ExpandEnvironmentStringsW(text.c_str(), result.data(), static_cast<DWORD>(result.size()));
    return result.c_str();
}

void check(LSTATUS error, const char* what)
{
    if (error != ERROR_SUCCESS)
        throw CToolError(std::string("can't ") + what +
                             " tracing: " + errorText(static_cast<DWORD>(error)),
                         error == ERROR_ACCESS_DENIED
                             ? "the switch is the machine's: run this as an administrator"
                             : "is HKLM\\SOFTWARE\\Veltrano\\Tracing damaged?");
}

CRegistryKey openForChange(const char* what)
{
    CRegistryKey key;
    check(RegCreateKeyExW(HKEY_LOCAL_MACHINE, tracingKey, 0, nullptr, 0, KEY_READ | KEY_SET_VALUE,
                          nullptr, key.put(), nullptr),
          what);
    return key;
}

void setNumber(const CRegistryKey& key, const wchar_t* name, DWORD number)
{
    check(RegSetValueExW(key.get(), name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number),
                         sizeof number),
          "switch on");
}

bool isListed(const CRegistryKey& parent, const wchar_t* subkey, const std::wstring& name)
{
    const CRegistryKey key = openKey(parent.get(), subkey, KEY_READ);
    return key && RegQueryValueExW(key.get(), name.c_str(), nullptr, nullptr, nullptr, nullptr) ==
                      ERROR_SUCCESS; // the registry compares names without regard to case
}

// localDay gives the calendar fields of a time; false for one that has none.
bool localDay(int64_t time, std::tm& fields)
{
    return _localtime64_s(&fields, &time) == 0;
}

} // namespace

std::wstring traceSwitch_t::Folder(const std::wstring& moduleFolder) const
{
    std::wstring folder = expanded(tracePathLow);
    if (folder.empty())
        folder = expanded(tracePath);
    return addslash(folder.empty() ? moduleFolder : folder);
}

bool traceSwitch_t::Stamped() const
{
    const bool named = fileName.find_first_not_of(L' ') != std::wstring::npos;
    return !named && (newFileAlways.value_or(1) != 0 || noTimestamp.value_or(0) == 0);
}

traceSwitch_t readTraceSwitch()
{
    return {numberOf(L"DoTrace"),     numberOf(L"TraceToFile"), numberOf(L"NewFileAlways"),
            numberOf(L"noTimestamp"), textOf(L"FileName"),      textOf(L"TracePathLow"),
            textOf(L"TracePath")};
}

bool excludedFromTracing(const std::wstring& component)
{
    const CRegistryKey key = openKey(HKEY_LOCAL_MACHINE, tracingKey, KEY_READ);
    return key && isListed(key, L"ComponentsNOT", component) &&
           !isListed(key, L"Components", component);
}

void switchTraceOn(DWORD until, traceTarget_t target, const std::wstring& folder)
{
    const CRegistryKey key = openForChange("switch on");
    if (!folder.empty()) {
        // The value that takes effect, so that the folder is the one asked for.
        const wchar_t* const name =
            expanded(textOf(L"TracePathLow")).empty() ? L"TracePath" : L"TracePathLow";
        check(RegSetValueExW(key.get(), name, 0, REG_EXPAND_SZ,
                             reinterpret_cast<const BYTE*>(folder.c_str()),
                             static_cast<DWORD>((folder.size() + 1) * sizeof(wchar_t))),
              "switch on");
    }
    setNumber(key, L"TraceToFile", static_cast<DWORD>(target));
    setNumber(key, L"DoTrace", until); // last: a process may look at any time
}

void switchTraceOff()
{
    const CRegistryKey key = openForChange("switch off");
    const LSTATUS error = RegDeleteValueW(key.get(), L"DoTrace");
    if (error != ERROR_FILE_NOT_FOUND)
        check(error, "switch off");
}

CTraceSwitchGuard::CTraceSwitchGuard()
{
    const CRegistryKey key = openKey(HKEY_LOCAL_MACHINE, tracingKey, KEY_READ);
    for (const auto* name : changedValues)
        if (registryValue_t value{name, REG_SZ, {}}; key && readValue(key.get(), value) == 0)
            m_before.push_back(std::move(value));
}

CTraceSwitchGuard::~CTraceSwitchGuard()
{
    if (m_kept)
        return;
    const CRegistryKey key = openKey(HKEY_LOCAL_MACHINE, tracingKey, KEY_SET_VALUE);
    if (!key)
        return; // what can't be written has not been changed
    for (const auto* name : changedValues)
        RegDeleteValueW(key.get(), name);
    for (const auto& value : m_before)
        writeValue(key.get(), value);
}

DWORD noonOf(const std::string& day)
{
    std::tm fields{};
    int end = 0;
    const int count = std::sscanf(day.c_str(), "%4d-%2d-%2d%n", &fields.tm_year, &fields.tm_mon,
                                  &fields.tm_mday, &end);
    const std::tm asked = fields;
    fields.tm_year -= 1900;
    fields.tm_mon -= 1;
    fields.tm_hour = 12;
    fields.tm_isdst = -1;
    const int64_t noon = count == 3 ? _mktime64(&fields) : -1;
    if (static_cast<size_t>(end) != day.size() || noon < 0 ||
        fields.tm_year + 1900 != asked.tm_year || fields.tm_mon + 1 != asked.tm_mon ||
        fields.tm_mday != asked.tm_mday)
        throw CToolError("'" + day + "' is no day", "such as --until 2026-12-31",
                         exitStatus::wrongUsage);
    // The plug-in counts the seconds from today's midnight to that day's in 31 bits: a day that is
    // further away is a past one to it.
    constexpr int64_t oneDay = 86400;
    if (noon > std::min<int64_t>(MAXDWORD, std::time(nullptr) + INT32_MAX - oneDay))
        throw CToolError(day + " is further away than the switch can hold",
                         "leave --until out for no end", exitStatus::wrongUsage);
    if (!dayIsToCome(static_cast<DWORD>(noon)))
        throw CToolError(day + " is not to come: tracing ends at the beginning of that day",
                         "the earliest is tomorrow", exitStatus::wrongUsage);
    return static_cast<DWORD>(noon);
}

std::string dayOf(DWORD seconds)
{
    std::tm fields{};
    char text[32] = "";
    if (localDay(seconds, fields))
        std::snprintf(text, sizeof text, "%04d-%02d-%02d", fields.tm_year + 1900, fields.tm_mon + 1,
                      fields.tm_mday);
    return text;
}

bool dayIsToCome(DWORD seconds)
{
    std::tm then{};
    std::tm now{};
    if (!localDay(seconds, then) || !localDay(std::time(nullptr), now))
        return false;
    return then.tm_year != now.tm_year ? then.tm_year > now.tm_year : then.tm_yday > now.tm_yday;
}
