#include "common/module.h"

extern "C" IMAGE_DOS_HEADER __ImageBase; // placed by the linker at the start of the module

HMODULE thisModule() noexcept
{
    return reinterpret_cast<HMODULE>(&__ImageBase);
}

std::wstring moduleFileName(HMODULE module)
{
    wchar_t path[MAX_PATH] = {};
    const DWORD length = GetModuleFileNameW(module, path, MAX_PATH);
    return std::wstring(path, length);
}
