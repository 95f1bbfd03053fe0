#include "patchimport.h"

#include <cstring>

namespace {

void** findImport(HMODULE module, const char* function)
{
    const auto base = reinterpret_cast<BYTE*>(module);
    const auto dos = reinterpret_cast<IMAGE_DOS_HEADER*>(base);
    const auto headers = reinterpret_cast<IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    const auto& directory = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    auto library = reinterpret_cast<IMAGE_IMPORT_DESCRIPTOR*>(base + directory.VirtualAddress);
    for (; library->Name; ++library) {
        auto name = reinterpret_cast<IMAGE_THUNK_DATA*>(base + library->OriginalFirstThunk);
        auto slot = reinterpret_cast<IMAGE_THUNK_DATA*>(base + library->FirstThunk);
        for (; name->u1.AddressOfData; ++name, ++slot) {
            if (IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal))
                continue;
            const auto entry =
                reinterpret_cast<IMAGE_IMPORT_BY_NAME*>(base + name->u1.AddressOfData);
            if (!std::strcmp(reinterpret_cast<char*>(entry->Name), function))
                return reinterpret_cast<void**>(&slot->u1.Function);
        }
    }
    return nullptr;
}

void store(void** slot, void* value)
{
    DWORD protection = 0;
    VirtualProtect(slot, sizeof *slot, PAGE_READWRITE, &protection);
    *slot = value;
    VirtualProtect(slot, sizeof *slot, protection, &protection);
}

} // namespace

importPatch_t::importPatch_t(HMODULE module, const char* function, void* replacement)
    : m_slot(findImport(module, function))
{
    if (m_slot) {
        m_original = *m_slot;
        store(m_slot, replacement);
    }
}

importPatch_t::~importPatch_t()
{
    if (m_slot)
        store(m_slot, m_original);
}
