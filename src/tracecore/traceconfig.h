#pragma once

#include <cstdint>
#include <string>

namespace tracecore {

// The switch of tracing and what goes with it, in SOFTWARE\Veltrano\Tracing of HKEY_LOCAL_MACHINE.
// A missing key, a missing value and a value of the wrong type read as the default.

// componentTraced is false if the subkey ComponentsNOT names this module and Components doesn't.
bool componentTraced();

// daysUntil counts whole local days from today to the day of time, seconds since 1970 UTC.
//
// Returns: 0 if the day is today or past; negative for a day more than 2^31 seconds ahead
int32_t daysUntil(int64_t time) noexcept;

// switchExpired is true if DoTrace is neither 1 nor a day in the future.
bool switchExpired();

// sweepOldTraces looks once per process at the trace files beside path, one process at a time.
//
// flag: 0 takes the process's turn and does nothing
void sweepOldTraces(const std::wstring& path, uint8_t flag);

} // namespace tracecore
