#pragma once

#include <windows.h>

#include <string>

namespace tracecore {

// composeTraceFileName gives a trace file's full name, in the shape
// folder\host.x64.vlonlineids.dll~~07.14.17_at_15.59.04.123~~1.4242.trc3 when it is stamped, which
// makes the file the process's own, and folder\host.x64.vlonlineids.dll1.0.trc3, one file of the
// session, when it isn't.
//
// newFileAlways: stamps the name
// ie1:           false stamps the name for one program, see the source
// noTimestamp:   false stamps the name, too
// fileName:      if not blank, the result, as it stands except for blanks around it
// tracePath:     the folder, made with its parents if it is missing; the module's own if blank
std::wstring composeTraceFileName(HMODULE module, bool newFileAlways, bool ie1, bool noTimestamp,
                                  const std::wstring& fileName, const std::wstring& tracePath);

// baseNameOf is the last component of a path without its extension: the part from the last dot on,
// unless that dot is the last character.
std::wstring baseNameOf(const std::wstring& path);

} // namespace tracecore
