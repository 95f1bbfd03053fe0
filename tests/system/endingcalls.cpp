// Loaded into a process, does harm there at the moment that VL_MOMENT numbers: an even one is before a
// call of the platform by the modules that VL_MODULES names, an odd one after it. VL_HARM is the harm.

#include "common/module.h"
#include "neighbours/linknames.h"
#include "support/importhooks.h"
#include "support/linkfixture.h"

#include <atomic>
#include <cstring>
#include <filesystem>
#include <sstream>

namespace {

std::atomic<int> untilMoment = _wtoi(_wgetenv(L"VL_MOMENT"));
const std::wstring harm = _wgetenv(L"VL_HARM");

// Also the place to which a call returns, with the stack of a return.
[[gnu::force_align_arg_pointer]] void end()
{
    TerminateProcess(GetCurrentProcess(), 77);
}

void doHarm()
{
    constexpr const LinkNames& names = linkSets[linkNipc];
    if (harm == L"end")
        end();
    if (harm == L"answer")
        SetEvent(CKernelHandle(OpenEventW(EVENT_MODIFY_STATE, FALSE, names.acknowledge)).get());
    for (const wchar_t* name : {names.buffer, names.payload})
        if (const blockView_t block(name); harm == L"rewrite" && block.bytes)
            std::memset(block.bytes, 0xFF, names.bufferSize);
    std::fputs("done\n", stderr);
}

bool countDown(const hookedCall_t& call)
{
    const int moment = untilMoment.fetch_sub(2);
    if (moment == 0)
        doHarm();
    if (moment == 1 && harm == L"end")
        const_cast<ULONGLONG*>(call.saved)[4] = reinterpret_cast<ULONGLONG>(&end);
    if (std::string_view("ImpersonateSelf") == call.function) // a backup: the host compares
        untilMoment = -1;
    return false;
}

// Those that change something, or wait for somebody.
const bool hooked = [] {
    const auto functions = hookedFunctions(
        "DeleteFileW CreateFileW WriteFile FlushFileBuffers CopyFileW MoveFileExW "
        "CreateDirectoryW RemoveDirectoryW _wmkdir SetFileAttributesW SetNamedSecurityInfoW "
        "_wfopen fputs fclose _wopen _write _close RegDeleteKeyW RegCreateKeyExW RegSetValueExW "
        "RegDeleteValueW FindWindowExW PostMessageW OpenSemaphoreW WaitForSingleObject SetEvent "
        "ReleaseSemaphore ImpersonateSelf OpenFileMappingW MapViewOfFile VirtualQuery "
        "UnmapViewOfFile CryptProtectData WaitForMultipleObjects");
    std::wistringstream modules(_wgetenv(L"VL_MODULES"));
    const auto folder = std::filesystem::path(moduleFileName(nullptr)).parent_path();
    for (std::wstring name; modules >> name;)
        new importHooks_t(LoadLibraryW((folder / name).c_str()), functions, countDown);
    return true;
}();

} // namespace
