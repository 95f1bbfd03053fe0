#include "vlagent/secretstore.h"

#include <bcrypt.h>
#include <array>

#include "backup/currentuser.h"
#include "common/scoped.h"
#include "common/status.h"
#include "vlfpapi/vlfpapi.h"

namespace {

constexpr uint32_t secretKind = 3;

LONG lastStatus()
{
    return statusFromError(GetLastError());
}

CLoadedModule loadStore()
{
    std::array<wchar_t, 4096> path{};
    const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    if (length > 0 && length < path.size()) {
        const std::wstring own(path.data(), length);
        const std::wstring beside = own.substr(0, own.find_last_of(L'\\') + 1) + L"VLFPApi.dll";
        if (CLoadedModule store{LoadLibraryW(beside.c_str())})
            return store;
    }
    return CLoadedModule(LoadLibraryW(L"VLFPApi.dll"));
}

} // namespace

LONG storeSecret(const std::wstring& name, std::string_view value)
try {
    const CLoadedModule store = loadStore();
    if (!store)
        return lastStatus();
    const auto store_secret = reinterpret_cast<decltype(&VLFPStoreSecret)>(
        reinterpret_cast<void*>(GetProcAddress(store.get(), "VLFPStoreSecret")));
    if (!store_secret)
        return lastStatus();
    CCurrentUser account;
    const std::wstring& user = account.Qualified();
    if (user.empty())
        return lastStatus();
    const int length = static_cast<int>(value.size());
    const int units =
        MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, value.data(), length, nullptr, 0);
    if (units <= 0)
        return lastStatus();
    wipedText_t<std::wstring> wide;
    wide.text.resize(static_cast<size_t>(units));
    MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, value.data(), length, wide.text.data(),
                        units);
    return store_secret(user.c_str(), secretKind, name.c_str(),
                        reinterpret_cast<const BYTE*>(wide.text.c_str()),
                        static_cast<uint32_t>((wide.text.size() + 1) * sizeof(wchar_t)));
} catch (const _com_error& exception) {
    return exception.Error();
}

std::string sha256Text(std::string_view bytes)
{
    BCRYPT_ALG_HANDLE algorithm = nullptr;
    if (BCryptOpenAlgorithmProvider(&algorithm, BCRYPT_SHA256_ALGORITHM, nullptr, 0) != 0)
        return {};
    std::array<UCHAR, 32> digest{};
    const auto input = reinterpret_cast<UCHAR*>(const_cast<char*>(bytes.data()));
    const NTSTATUS status =
        BCryptHash(algorithm, nullptr, 0, input, static_cast<ULONG>(bytes.size()), digest.data(),
                   static_cast<ULONG>(digest.size()));
    BCryptCloseAlgorithmProvider(algorithm, 0);
    if (status != 0)
        return {};
    std::string text;
    for (const UCHAR value : digest) {
        constexpr char digits[] = "0123456789abcdef";
        text += digits[value >> 4];
        text += digits[value & 15];
    }
    return text;
}
