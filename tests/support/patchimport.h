#pragma once

#include <windows.h>

// importPatch_t replaces one imported function of a module for the life of the object, so that a
// test can see or fail a platform call. Only calls of that module are caught, whatever library
// their code came from.
//
// module:   the test program itself is GetModuleHandleW(nullptr)
// function: the imported name, such as "CreateFileW"; the test fails when it isn't imported
struct importPatch_t {
    importPatch_t(HMODULE module, const char* function, void* replacement);
    // Of the test program itself. The replacement may have fewer parameters than the function: the
    // calling convention allows that.
    template <class Function>
    importPatch_t(const char* function, Function* replacement)
        : importPatch_t(GetModuleHandleW(nullptr), function, reinterpret_cast<void*>(replacement))
    {}
    ~importPatch_t();
    importPatch_t(importPatch_t&&) = delete;

private:
    void **m_slot, *m_original;
};

// importedFunction is what a module calls by that name now; null for one that it doesn't import.
void* importedFunction(HMODULE module, const char* function);
