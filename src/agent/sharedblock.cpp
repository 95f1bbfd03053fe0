#include "agent/sharedblock.h"

#include "common/status.h"
#include "security/objectsecurity.h"
#include "tracecore/tracer.h"

#include <atomic>

using namespace tracecore;

namespace {

constexpr DWORD waitAndModify = SYNCHRONIZE | SEMAPHORE_MODIFY_STATE;

std::atomic<bool> firstMissingBlock{true};

void mapWhole(mappedBlock_t& block)
{
    block.view.reset(MapViewOfFile(block.handle.get(), FILE_MAP_WRITE, 0, 0, 0));
    if (!block.view)
        traceStatus("IPC.MapViewOfFile", statusFromError(GetLastError()));
}

// Only the first is an error; later ones are messages in a colour that stands out.
void traceMissingBlock(const std::wstring& name)
{
    if (firstMissingBlock.exchange(false, std::memory_order_relaxed))
        traceStatusFormat(S_OK, L"IPC.OpenFileMapping '%ls' MMF.FILE_NOT_FOUND", name.c_str());
    else
        traceFormatW(L"'`I04`'IPC.OpenFileMapping '%ls' MMF.FILE_NOT_FOUND", name.c_str());
}

} // namespace

mappedBlock_t createSharedBlock(const std::wstring& name, uint32_t size)
{
    mappedBlock_t block;
    sharedObjectSecurity_t security;
    if (!initMappingSecurity(security).valid) {
        const DWORD error = GetLastError();
        traceStatusFormat(statusFromError(error), L"IPC.InitSA '%ls'", name.c_str());
        SetLastError(error);
        return block;
    }
    block.handle.reset(CreateFileMappingW(INVALID_HANDLE_VALUE, &security.attributes,
                                          PAGE_READWRITE, 0, size, name.c_str()));
    if (!block.handle) {
        const DWORD error = GetLastError();
        const bool valid = IsValidSecurityDescriptor(security.attributes.lpSecurityDescriptor);
        traceStatusFormat(statusFromError(error), L"IPC.CreateFileMapping '%ls' SA=%s",
                          name.c_str(), valid ? L"OK" : L"INV");
        traceFormatW(L"'`I04`'SA: %s",
                     securityToString(security.descriptor.GetPSECURITY_DESCRIPTOR()).c_str());
        SetLastError(error);
        return block;
    }
    applyLowLabel(block.handle.get()); // a block without the label is still good for most clients
    mapWhole(block);
    return block;
}

mappedBlock_t openSharedBlock(const std::wstring& name)
{
    mappedBlock_t block;
    block.handle.reset(OpenFileMappingW(FILE_MAP_WRITE, FALSE, name.c_str()));
    if (block.handle) {
        mapWhole(block);
        return block;
    }
    const DWORD error = GetLastError();
    if (error == ERROR_FILE_NOT_FOUND)
        traceMissingBlock(name);
    else
        traceStatusFormat(statusFromError(error), L"IPC.OpenFileMapping '%ls'", name.c_str());
    return block;
}

void closeSharedBlock(mappedBlock_t& block) noexcept
{
    block.view.reset();
    block.handle.reset();
}

size_t sharedBlockSize(const void* view) noexcept
{
    MEMORY_BASIC_INFORMATION region{};
    constexpr DWORD kindOfAccess = 0xFF; // the bits above only modify it
    if (!view || !VirtualQuery(view, &region, sizeof region) || region.State != MEM_COMMIT ||
        (region.Protect & kindOfAccess) != PAGE_READWRITE)
        return 0;
    return region.RegionSize;
}

CKernelHandle openLinkSemaphore(const std::wstring& name)
{
    SetLastError(ERROR_SUCCESS);
    CKernelHandle semaphore(OpenSemaphoreW(waitAndModify, FALSE, name.c_str()));
    if (semaphore)
        return semaphore;
    HRESULT status = statusFromError(GetLastError());
    const std::wstring cantOpen =
        formatWide(L"IPC.Failed to open semaphore '%ls'. BAD.", name.c_str());
    traceStatusW(cantOpen, status);

    sharedObjectSecurity_t security;
    if (!initSemaphoreSecurity(security).valid)
        return {};
    SetLastError(ERROR_SUCCESS);
    semaphore.reset(CreateSemaphoreW(&security.attributes, 1, 1, name.c_str()));
    if (semaphore) {
        applyLowLabel(semaphore.get());
        return semaphore;
    }
    const DWORD error = GetLastError();
    status = statusFromError(error);
    traceStatusFormat(status, L"IPC.Failed to create semaphore '%ls'. OK. Try to open it.",
                      name.c_str());
    if (error == ERROR_ACCESS_DENIED) {
        SetLastError(ERROR_SUCCESS);
        // This opens a mutex where a semaphore is meant, so it mostly gives null. Intended.
        semaphore.reset(OpenMutexW(waitAndModify, FALSE, name.c_str()));
        if (!semaphore)
            traceLastError(cantOpen);
    } else {
        SetLastError(error);
    }
    return semaphore;
}
