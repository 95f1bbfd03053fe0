#include "patchimport.h"

#include <cstring>
#include <utility>

#include <gtest/gtest.h>

namespace {

// at gives what lies so far after the start of a module.
template <class T> T* at(HMODULE module, ULONGLONG offset)
{
    return reinterpret_cast<T*>(reinterpret_cast<BYTE*>(module) + offset);
}

void** findImport(HMODULE module, const char* function)
{
    const auto dos = at<IMAGE_DOS_HEADER>(module, 0);
    const auto& headers =
        at<IMAGE_NT_HEADERS>(module, static_cast<ULONGLONG>(dos->e_lfanew))->OptionalHeader;
    const auto& directory = headers.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    auto library = at<IMAGE_IMPORT_DESCRIPTOR>(module, directory.VirtualAddress);
    for (; library->Name; ++library) {
        auto slot = at<void*>(module, library->FirstThunk);
        for (auto name = at<ULONGLONG>(module, library->OriginalFirstThunk); *name; ++name, ++slot)
            if (!IMAGE_SNAP_BY_ORDINAL64(*name) &&
                !std::strcmp(at<IMAGE_IMPORT_BY_NAME>(module, *name)->Name, function))
                return slot;
    }
    return nullptr;
}

// store gives what the slot held before.
void* store(void** slot, void* value)
{
    DWORD protection = 0;
    if (!slot || !VirtualProtect(slot, sizeof *slot, PAGE_READWRITE, &protection))
        return nullptr;
    std::swap(*slot, value);
    VirtualProtect(slot, sizeof *slot, protection, &protection);
    return value;
}

} // namespace

void* importedFunction(HMODULE module, const char* function)
{
    void** const slot = findImport(module, function);
    return slot ? *slot : nullptr;
}

importPatch_t::importPatch_t(HMODULE module, const char* function, void* replacement)
    : m_slot(findImport(module, function)), m_original(store(m_slot, replacement))
{
    EXPECT_NE(m_original, nullptr) << function;
}

importPatch_t::~importPatch_t()
{
    store(m_slot, m_original);
}
