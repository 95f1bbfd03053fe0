#pragma once

#include <windows.h>

namespace tracecore {

// writeTraceHeader writes the text lines in front of a trace file's records: format, build, system,
// module version, products, time. The last line is a full stop.
//
// module: whose version is written
void writeTraceHeader(HANDLE file, HMODULE module);

} // namespace tracecore
