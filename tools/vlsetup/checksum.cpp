#include "checksum.h"

#include "common/scoped.h"
#include "common/text.h"
#include "places.h"
#include "shared/hextext.h"
#include "shared/toolerror.h"

#include <bcrypt.h>

#include <vector>

namespace {

struct hashHandle {
    using value_type = BCRYPT_HASH_HANDLE;
    static BCRYPT_HASH_HANDLE empty() noexcept { return nullptr; }
    static void close(BCRYPT_HASH_HANDLE h) noexcept { BCryptDestroyHash(h); }
};
struct algorithmHandle {
    using value_type = BCRYPT_ALG_HANDLE;
    static BCRYPT_ALG_HANDLE empty() noexcept { return nullptr; }
    static void close(BCRYPT_ALG_HANDLE h) noexcept { BCryptCloseAlgorithmProvider(h, 0); }
};

} // namespace

std::string checksumOf(HANDLE file, const std::wstring& path)
{
    CScoped<algorithmHandle> algorithm;
    CScoped<hashHandle> hash;
    NTSTATUS status =
        BCryptOpenAlgorithmProvider(algorithm.put(), BCRYPT_SHA256_ALGORITHM, nullptr, 0);
    if (status >= 0)
        status = BCryptCreateHash(algorithm.get(), hash.put(), nullptr, 0, nullptr, 0, 0);
    std::vector<BYTE> buffer(1 << 16);
    for (DWORD read = 1; status >= 0 && read;) {
        if (!ReadFile(file, buffer.data(), static_cast<DWORD>(buffer.size()), &read, nullptr))
            failed("can't read", path, GetLastError());
        status = BCryptHashData(hash.get(), buffer.data(), read, 0);
    }
    std::vector<BYTE> digest(32);
    if (status >= 0)
        status = BCryptFinishHash(hash.get(), digest.data(), 32, 0);
    if (status < 0)
        throw CToolError("the system makes no checksum of " + utf8FromWide(path));
    return hexText(digest);
}
