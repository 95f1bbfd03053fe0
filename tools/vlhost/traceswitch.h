#pragma once

#include "shared/registryvalue.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// The switch of tracing in the registry, as the plug-in reads it: SOFTWARE\Veltrano\Tracing of
// HKEY_LOCAL_MACHINE. The values and what they mean are in docs/tracing.md.

// traceSwitch_t is what is set. Empty texts and numbers are not set.
struct traceSwitch_t {
    std::optional<DWORD> doTrace;
    std::optional<DWORD> traceToFile;
    std::optional<DWORD> newFileAlways;
    std::optional<DWORD> noTimestamp;
    std::wstring fileName;
    std::wstring tracePathLow; // as stored; it goes before tracePath
    std::wstring tracePath;

    // Folder is where trace files go, expanded, with a backslash at its end; moduleFolder if none
    // is set.
    std::wstring Folder(const std::wstring& moduleFolder) const;

    // Stamped is true when every process makes a file whose name has its process id.
    bool Stamped() const;
};
traceSwitch_t readTraceSwitch();

// excludedFromTracing is true if the component, a module's name without extension, is listed as one
// that writes no trace.
bool excludedFromTracing(const std::wstring& component);

enum class traceTarget_t : DWORD { file = 1, console = 3, debugger = 4 };

// switchTraceOn sets the switch. until: seconds since 1970, or 1 for no end; folder: empty leaves
// it as it is. switchTraceOff removes the switch and leaves the rest.
//
// Errors: CToolError, which explains a denied access
void switchTraceOn(DWORD until, traceTarget_t target, const std::wstring& folder);
void switchTraceOff();

// CTraceSwitchGuard puts the values that switchTraceOn and switchTraceOff change back to what they
// were when it was made, unless the change is kept.
class CTraceSwitchGuard
{
public:
    CTraceSwitchGuard();
    ~CTraceSwitchGuard();
    CTraceSwitchGuard(const CTraceSwitchGuard&) = delete;
    CTraceSwitchGuard& operator=(const CTraceSwitchGuard&) = delete;

    void Keep() noexcept { m_kept = true; }

private:
    std::vector<registryValue_t> m_before; // those that were there
    bool m_kept = false;
};

// noonOf gives the seconds of noon of a day such as 2026-12-31, local time: it stays that day with
// any rule for summer time.
//
// Errors: CToolError for what is no day, today or past, or beyond what the switch can hold
DWORD noonOf(const std::string& day);

// dayOf is the reverse: the local day of such a number.
std::string dayOf(DWORD seconds);

// dayIsToCome is true if the day of such a number is still to come, so that tracing is on.
bool dayIsToCome(DWORD seconds);
