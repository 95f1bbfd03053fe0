#include "tracecore/traceheader.h"

#include "common/scoped.h"
#include "formats/trace/recordformat.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>

namespace tracecore {

namespace {

constexpr size_t lineLimit = 260;

// Writes one line of at most lineLimit bytes. A line that is cut there still ends in CR LF.
[[gnu::format(gnu_printf, 2, 3)]] void writeLine(HANDLE file, const char* format, ...)
{
    char line[lineLimit + 1] = {};
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(line, sizeof line, format, arguments);
    va_end(arguments);
    line[lineLimit - 2] = '\r';
    line[lineLimit - 1] = '\n';
    line[lineLimit] = '\0';
    DWORD written = 0;
    WriteFile(file, line, static_cast<DWORD>(std::strlen(line)), &written, nullptr);
}

void writeSystem(HANDLE file)
{
    OSVERSIONINFOA info{};
    info.dwOSVersionInfoSize = sizeof info;
    GetVersionExA(&info);
    constexpr DWORD any = MAXDWORD;
    static constexpr struct {
        DWORD platform, major, minor;
        const char* name;
    } systems[] = {
        {2, 5, 1, "WindowsXP"},    {2, 5, 2, "Server2003"},  {2, 5, any, "Windows2000"},
        {2, 4, any, "NT4"},        {1, any, 0, "Windows95"}, {1, any, 10, "Windows98"},
        {1, any, 90, "WindowsMe"},
    };
    const char* name = nullptr;
    for (const auto& system : systems) {
        if (system.platform == info.dwPlatformId &&
            (system.major == any || system.major == info.dwMajorVersion) &&
            (system.minor == any || system.minor == info.dwMinorVersion)) {
            name = system.name;
            break;
        }
    }
    if (name)
        writeLine(file, "OS: %s\r\n", name);
    else
        writeLine(file, "OS: UNKNOWN OS(Major:%d Minor:%d)\r\n",
                  static_cast<int>(info.dwMajorVersion), static_cast<int>(info.dwMinorVersion));
    writeLine(file, "ServicePack: %s\r\n", info.szCSDVersion);
}

template <class Function> Function entryOf(const CLoadedModule& library, const char* name) noexcept
{
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library.get(), name)));
}

// The module's fixed version block; false if any step on the way to it fails.
bool readVersion(const CLoadedModule& library, HMODULE module, VS_FIXEDFILEINFO& version)
{
    const auto size =
        entryOf<decltype(&GetFileVersionInfoSizeA)>(library, "GetFileVersionInfoSizeA");
    const auto read = entryOf<decltype(&GetFileVersionInfoA)>(library, "GetFileVersionInfoA");
    const auto query = entryOf<decltype(&VerQueryValueA)>(library, "VerQueryValueA");
    char path[MAX_PATH + 1] = {};
    if (!size || !read || !query || !GetModuleFileNameA(module, path, MAX_PATH))
        return false;
    DWORD ignored = 0;
    std::string block(size(path, &ignored), '\0');
    void* root = nullptr;
    UINT length = 0;
    if (block.empty() || !read(path, 0, static_cast<DWORD>(block.size()), block.data()) ||
        !query(block.data(), "\\", &root, &length) || !root || length < sizeof version)
        return false;
    std::memcpy(&version, root, sizeof version);
    return true;
}

void writeVersion(HANDLE file, HMODULE module)
{
    const CLoadedModule library(LoadLibraryW(L"Version.dll"));
    if (!library)
        return;
    VS_FIXEDFILEINFO version{};
    bool known = false;
    try {
        known = readVersion(library, module, version);
    } catch (...) { // out of memory reads as unknown, like every other failure
    }
    if (known) // two numbers of the file's version, and then two of the product's. Intended.
        writeLine(file, "FileVersion: %d.%d.%d.%d\r\n", HIWORD(version.dwFileVersionMS),
                  LOWORD(version.dwFileVersionMS), HIWORD(version.dwProductVersionLS),
                  LOWORD(version.dwProductVersionLS));
    else
        writeLine(file, "FileVersion: UNKNOWN\r\n");
}

void writeProduct(HANDLE file, HKEY products, const char* name)
{
    CRegistryKey product;
    LSTATUS error = RegOpenKeyExA(products, name, 0, KEY_READ, product.put());
    if (error) {
        writeLine(file, "Product: %s ERROR(0x%X)\r\n", name, static_cast<unsigned>(error));
        return;
    }
    char version[lineLimit + 1] = {}; // one byte more than is read: ends an unterminated text
    DWORD type = REG_NONE;
    DWORD size = lineLimit;
    error = RegQueryValueExA(product.get(), "Version", nullptr, &type,
                             reinterpret_cast<BYTE*>(version), &size);
    if (!error && type != REG_SZ && type != REG_EXPAND_SZ)
        error = ERROR_INVALID_DATA;
    if (error)
        writeLine(file, "Product: %s; Version: ERROR(0x%X)\r\n", name,
                  static_cast<unsigned>(error));
    else
        writeLine(file, "Product: %s; Version: %s\r\n", name, version);
}

void writeProducts(HANDLE file)
{
    CRegistryKey products;
    RegOpenKeyExA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Veltrano\\Products", 0, KEY_READ, products.put());
    DWORD count = 0;
    char name[lineLimit] = {};
    while (products && !RegEnumKeyA(products.get(), count, name, lineLimit)) {
        writeProduct(file, products.get(), name);
        ++count;
    }
    if (!count)
        writeLine(file, "No Veltrano products found\r\n");
}

bool installedLocally()
{
    CRegistryKey policies;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Policies\\Veltrano", 0, KEY_READ,
                      policies.put()))
        return false;
    DWORD value = 0;
    DWORD type = REG_NONE;
    DWORD size = sizeof value;
    return !RegQueryValueExA(policies.get(), "NetworkSupport", nullptr, &type,
                             reinterpret_cast<BYTE*>(&value), &size) &&
           type == REG_DWORD && size == sizeof value && value == 0;
}

} // namespace

void writeTraceHeader(HANDLE file, HMODULE module)
{
    writeLine(file, "trace3\r\n");
    writeLine(file, "Compiled: %s %s\r\n", VL_BUILD_DATE, VL_BUILD_TIME);
    writeSystem(file);
    char machine[lineLimit] = {};
    DWORD size = lineLimit;
    GetComputerNameA(machine, &size);
    writeLine(file, "Machine name: %s\r\n", machine);
    writeLine(file, "Trace Ver: %s\r\n", traceFormatVersion);
    writeVersion(file, module);
    writeProducts(file);
    writeLine(file, "installation: %s\r\n", installedLocally() ? "LOCAL" : "NETWORK");
    SYSTEMTIME now;
    GetLocalTime(&now);
    writeLine(file, "%02d/%02d/%04d %02d:%02d:%02d.%03d\r\n", now.wMonth, now.wDay, now.wYear,
              now.wHour, now.wMinute, now.wSecond, now.wMilliseconds);
    writeLine(file, ".\r\n");
}

} // namespace tracecore
