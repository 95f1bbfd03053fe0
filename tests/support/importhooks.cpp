#include "importhooks.h"

#include "common/text.h"

#include <algorithm>
#include <cstring>
#include <initializer_list>
#include <sstream>

namespace {

// stub_t is the code that stands in for one function, with what it needs to know.
struct stub_t {
    uint8_t code[64];
    uint8_t fail[16];
    void* original;
    const hookedFunction_t* function;
    importHooks_t::see_t see;
};

// Where the stub goes on.
const void* decide(const stub_t* stub, const ULONGLONG* saved)
{
    const DWORD error = GetLastError();
    const bool fails = stub->see({stub->function->name.c_str(), saved});
    SetLastError(fails ? stub->function->error : error);
    return fails ? static_cast<const void*>(stub->fail) : stub->original;
}

std::string registryData(ULONGLONG type, ULONGLONG data, DWORD size)
{
    if (type == REG_DWORD)
        return std::to_string(*reinterpret_cast<const DWORD*>(data));
    std::string text = utf8FromWide({reinterpret_cast<const wchar_t*>(data), size / 2});
    std::replace(text.begin(), text.end(), '\0', ';');
    return text;
}

void put(uint8_t*& at, std::initializer_list<uint8_t> code)
{
    at = std::copy(code.begin(), code.end(), at);
}

template <class Value> void putValue(uint8_t*& at, Value value)
{
    static_assert(sizeof value == 8);
    std::memcpy(at, &value, sizeof value);
    at += sizeof value;
}

void writeCode(stub_t& stub)
{
    uint8_t* at = stub.code;
    put(at, {0x51, 0x52, 0x41, 0x50, 0x41, 0x51}); // push rcx, rdx, r8, r9
    put(at, {0x48, 0x89, 0xE2});                   // mov rdx, rsp
    put(at, {0x48, 0xB9});                         // mov rcx, stub
    putValue(at, &stub);
    put(at, {0x48, 0x83, 0xEC, 0x28}); // sub rsp, 40
    put(at, {0x48, 0xB8});             // mov rax, decide
    putValue(at, &decide);
    put(at, {0xFF, 0xD0});                         // call rax
    put(at, {0x48, 0x83, 0xC4, 0x28});             // add rsp, 40
    put(at, {0x41, 0x59, 0x41, 0x58, 0x5A, 0x59}); // pop r9, r8, rdx, rcx
    put(at, {0xFF, 0xE0});                         // jmp rax
    at = stub.fail;
    put(at, {0x48, 0xB8}); // mov rax, result
    putValue(at, stub.function->result);
    put(at, {0xC3}); // ret
}

} // namespace

std::string hookedCall_t::shown(std::string_view kinds) const
{
    std::ostringstream line;
    line << function << std::hex;
    for (size_t i = 0; i < kinds.size(); ++i) {
        const auto number = static_cast<uint32_t>(argument(i));
        if (kinds[i] == 't')
            line << ' ' << (argument(i) ? utf8FromWide(text(i)) : "-");
        else if (kinds[i] == 'k')
            line << (number == 0x80000001 ? " HKCU" : number == 0x80000002 ? " HKLM" : " key");
        else if (kinds[i] == 's' && argument(i))
            line << " inherit:"
                 << reinterpret_cast<const SECURITY_ATTRIBUTES*>(argument(i))->bInheritHandle;
        else if (kinds[i] == 'n')
            line << ' ' << number;
        else if (kinds[i] == 'd')
            line << ' '
                 << registryData(argument(3), argument(i), static_cast<DWORD>(argument(i + 1)));
        else if (kinds[i] == 'p' && argument(i))
            line << " pointer";
    }
    return line.str();
}

std::vector<hookedFunction_t> hookedFunctions(const std::string& names, ULONGLONG result)
{
    std::vector<hookedFunction_t> functions;
    std::istringstream in(names);
    for (std::string name; in >> name;)
        functions.push_back({name, result});
    return functions;
}

importHooks_t::importHooks_t(HMODULE module, const std::vector<hookedFunction_t>& functions,
                             see_t see)
    : m_functions(functions),
      m_code(VirtualAlloc(nullptr, functions.size() * sizeof(stub_t), MEM_COMMIT,
                          PAGE_EXECUTE_READWRITE))
{
    auto stub = static_cast<stub_t*>(m_code);
    for (const hookedFunction_t& function : m_functions) {
        const char* const name = function.name.c_str();
        stub->original = importedFunction(module, name);
        if (!stub->original)
            continue;
        stub->function = &function;
        stub->see = see;
        writeCode(*stub);
        m_patches.push_back(std::make_unique<importPatch_t>(module, name, stub++->code));
    }
}

importHooks_t::~importHooks_t()
{
    m_patches.clear();
    VirtualFree(m_code, 0, MEM_RELEASE);
}
