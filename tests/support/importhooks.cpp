#include "importhooks.h"

#include "common/text.h"

#include <algorithm>
#include <cstring>
#include <sstream>

namespace {

// Saves the registers of the arguments, asks decide(stub, saved) where to go on, and goes there.
constexpr char code[] = "\x51\x52\x41\x50\x41\x51" // push rcx, rdx, r8, r9
                        "\x48\x89\xE2"             // mov rdx, rsp
                        "\x48\xB9\0\0\0\0\0\0\0\0" // mov rcx, stub
                        "\x48\x83\xEC\x28"         // sub rsp, 40
                        "\x48\xB8\0\0\0\0\0\0\0\0" // mov rax, decide
                        "\xFF\xD0"                 // call rax
                        "\x48\x83\xC4\x28"         // add rsp, 40
                        "\x41\x59\x41\x58\x5A\x59" // pop r9, r8, rdx, rcx
                        "\xFF\xE0";                // jmp rax
constexpr size_t placeOfStub = 11, placeOfDecide = 25;
constexpr char fail[] = "\x48\xB8\0\0\0\0\0\0\0\0\xC3"; // mov rax, result; ret
constexpr size_t placeOfResult = 2;

// stub_t is the code that stands in for one function, with what it needs to know.
struct stub_t {
    char code[sizeof ::code];
    char fail[sizeof ::fail];
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
        const void* const going = reinterpret_cast<void*>(decide);
        std::memcpy(stub->code, code, sizeof code);
        std::memcpy(stub->fail, fail, sizeof fail);
        std::memcpy(stub->code + placeOfStub, &stub, sizeof stub);
        std::memcpy(stub->code + placeOfDecide, &going, sizeof going);
        std::memcpy(stub->fail + placeOfResult, &function.result, sizeof function.result);
        m_patches.push_back(std::make_unique<importPatch_t>(module, name, stub++->code));
    }
}

importHooks_t::~importHooks_t()
{
    m_patches.clear();
    VirtualFree(m_code, 0, MEM_RELEASE);
}
