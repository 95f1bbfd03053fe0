#include "checksum.h"

#include "places.h"
#include "shared/sha256.h"

#include <vector>

std::string checksumOf(HANDLE file, const std::wstring& path)
{
    CSha256 sum;
    std::vector<BYTE> buffer(1 << 16);
    for (DWORD read = 1; read != 0;) {
        if (!ReadFile(file, buffer.data(), static_cast<DWORD>(buffer.size()), &read, nullptr))
            failed("can't read", path, GetLastError());
        sum.Add({buffer.data(), read});
    }
    return sum.Text();
}
