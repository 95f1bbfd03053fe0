#pragma once

#include "support/patchimport.h"

#include <windows.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

// hookedCall_t is a call that a module is about to make.
struct hookedCall_t {
    const char* function;
    const ULONGLONG* saved; // four registers, the return address, room for four, the stack's

    ULONGLONG argument(size_t index) const { return saved[index < 4 ? 3 - index : index + 5]; }
    const wchar_t* text(size_t index) const // null shows as an empty text
    {
        const auto given = reinterpret_cast<const wchar_t*>(argument(index));
        return given ? given : L"";
    }

    // shown gives the function and its arguments by their kinds, each a letter: t a text, k a key of
    // the registry, s whether handles are inherited by the security attributes, n a number of 32
    // bits, p a pointer that isn't null, d the data of RegSetValueExW, with a semicolon for a zero;
    // a dash is none of them.
    std::string shown(std::string_view kinds) const;
};

// hookedFunction_t is a function and how it fails: what it returns, and the last error then.
struct hookedFunction_t {
    std::string name;
    ULONGLONG result = 0;
    DWORD error = ERROR_NOT_ENOUGH_MEMORY;
};

// hookedFunctions makes functions of their names, with blanks between, that return the same.
std::vector<hookedFunction_t> hookedFunctions(const std::string& names, ULONGLONG result = 0);

// importHooks_t shows calls of a module's imported functions before they are made, for the life of
// the object. A function that the module doesn't import is passed over.
//
// see: true lets the call fail without being made. It keeps the last error, and must not call what
//      is hooked
class importHooks_t
{
public:
    using see_t = bool (*)(const hookedCall_t& call);
    importHooks_t(HMODULE module, const std::vector<hookedFunction_t>& functions, see_t see);
    ~importHooks_t();
    importHooks_t(importHooks_t&&) = delete;

private:
    const std::vector<hookedFunction_t> m_functions;
    std::vector<std::unique_ptr<importPatch_t>> m_patches;
    void* m_code = nullptr;
};
