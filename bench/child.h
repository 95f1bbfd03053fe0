#pragma once

#include "common/scoped.h"

#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace bench {

// programFolder is the folder of the benchmarks and of what they measure, with a separator.
inline std::wstring programFolder()
{
    std::wstring path(MAX_PATH, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), MAX_PATH));
    return path.substr(0, path.rfind(L'\\') + 1);
}

// runProgram runs one to its end; a failure ends the benchmark.
//
// arguments: as on a command line
// Returns:   what it printed
inline std::string runProgram(const std::wstring& name, const std::wstring& arguments)
{
    SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
    CKernelHandle reading;
    CKernelHandle writing;
    CreatePipe(reading.put(), writing.put(), &inherited, 0);
    SetHandleInformation(reading.get(), HANDLE_FLAG_INHERIT, 0);
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = writing.get();
    startup.hStdError = GetStdHandle(STD_ERROR_HANDLE);
    PROCESS_INFORMATION process = {};
    std::wstring command = L"\"" + programFolder() + name + L"\" " + arguments;
    if (!CreateProcessW(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                        &startup, &process))
        std::exit(2);
    const CKernelHandle handle(process.hProcess);
    const CKernelHandle thread(process.hThread);
    writing.reset();
    std::string text;
    char piece[4096];
    DWORD read = 0;
    while (ReadFile(reading.get(), piece, sizeof piece, &read, nullptr) && read > 0)
        text.append(piece, read);
    DWORD status = 0;
    WaitForSingleObject(handle.get(), INFINITE);
    if (!GetExitCodeProcess(handle.get(), &status) || status != 0) {
        std::fprintf(stderr, "%ls failed\n%s\n", command.c_str(), text.c_str());
        std::exit(2);
    }
    return text;
}

} // namespace bench
