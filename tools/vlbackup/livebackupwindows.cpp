#include "common/scoped.h"
#include "common/text.h"
#include "livebackup.h"
#include "shared/systemerror.h"
#include "shared/toolerror.h"

#include <windows.h>

#include <string>

namespace {

[[noreturn]] void fail(const std::string& what, DWORD error)
{
    throw CToolError(what + ": " + errorText(error), "vlhost.exe belongs beside vlbackup.exe");
}

// hostPath gives the path of vlhost in the folder of this program.
std::wstring hostPath()
{
    std::wstring path(MAX_PATH, L'\0');
    DWORD length = 0;
    while ((length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()))) ==
           path.size())
        path.resize(2 * path.size());
    path.resize(length);
    return path.substr(0, path.find_last_of(L"\\/") + 1) + L"vlhost.exe";
}

// startHost starts a vlhost that writes a backup into the pipe.
CKernelHandle startHost(HANDLE pipe)
{
    const std::wstring host = hostPath();
    std::wstring line = L'"' + host + L"\" --quiet backup -"; // the call writes into it
    STARTUPINFOW start{};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
    start.hStdOutput = pipe;
    start.hStdError = GetStdHandle(STD_ERROR_HANDLE);
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(host.c_str(), line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                        &start, &process))
        fail(utf8FromWide(host) + " can't be run", GetLastError());
    CloseHandle(process.hThread);
    return CKernelHandle(process.hProcess);
}

} // namespace

std::vector<uint8_t> takeLiveBackup()
{
    CKernelHandle reading;
    CKernelHandle writing;
    if (!CreatePipe(reading.put(), writing.put(), nullptr, 0) ||
        !SetHandleInformation(writing.get(), HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT))
        fail("no pipe to vlhost can be made", GetLastError());
    const CKernelHandle host = startHost(writing.get());
    writing.reset(); // so that the pipe ends with the host
    std::vector<uint8_t> bytes;
    std::vector<uint8_t> piece(1 << 16);
    DWORD read = 0;
    while (
        ReadFile(reading.get(), piece.data(), static_cast<DWORD>(piece.size()), &read, nullptr) &&
        read != 0)
        bytes.insert(bytes.end(), piece.begin(), piece.begin() + static_cast<std::ptrdiff_t>(read));
    DWORD status = 1;
    WaitForSingleObject(host.get(), INFINITE);
    GetExitCodeProcess(host.get(), &status);
    if (status != 0)
        throw CToolError("vlhost took no backup of the profile", "its own line says why");
    return bytes;
}
