#include "secretstore.h"

#include <io.h>

#include <array>

#include <comdef.h>

#include "backup/blob/dernode.h"
#include "backup/currentuser.h"
#include "common/commandline.h"
#include "common/text.h"
#include "print.h"
#include "vlfpapi/vlfpapi.h"

namespace {

constexpr uint32_t secretKind = 3;
constexpr size_t largestSecret = 1u << 20;

void check(LONG status, const std::wstring& name, const char* what)
{
    if (FAILED(status))
        throw CToolError(std::string(what) + " the secret '" + utf8FromWide(name) +
                         "': " + statusText(status));
}

} // namespace

void wipe(bytes_t& bytes) noexcept
{
    if (!bytes.empty())
        SecureZeroMemory(bytes.data(), bytes.size());
}

CSecretStore::CSecretStore() : m_library(LoadLibraryW(L"VLFPApi.dll"))
{
    if (!m_library)
        throw CToolError("can't load VLFPApi.dll: " + errorText(GetLastError()),
                         "is it in the system folder or beside this program?");
    try {
        m_user = CCurrentUser().Qualified();
    } catch (const _com_error& error) {
        throw CToolError("can't tell who the current user is: " + statusText(error.Error()));
    }
}

void* CSecretStore::Function(const char* name) const
{
    auto* const function = reinterpret_cast<void*>(GetProcAddress(m_library.get(), name));
    if (!function)
        throw CToolError(std::string("VLFPApi.dll has no ") + name,
                         "another library of that name is installed");
    return function;
}

bool CSecretStore::Exists(const std::wstring& name) const
{
    return reinterpret_cast<decltype(&VLFPDoesSecretExist)>(Function("VLFPDoesSecretExist"))(
               m_user.c_str(), secretKind, name.c_str()) == 1;
}

bytes_t CSecretStore::Read(const std::wstring& name) const
{
    const auto read = reinterpret_cast<decltype(&VLFPReadSecret)>(Function("VLFPReadSecret"));
    uint32_t size = 0;
    check(read(m_user.c_str(), secretKind, name.c_str(), nullptr, &size), name, "can't read");
    bytes_t value(size);
    check(read(m_user.c_str(), secretKind, name.c_str(), value.data(), &size), name, "can't read");
    value.resize(size);
    return value;
}

void CSecretStore::Store(const std::wstring& name, const bytes_t& value) const
{
    check(reinterpret_cast<decltype(&VLFPStoreSecret)>(Function("VLFPStoreSecret"))(
              m_user.c_str(), secretKind, name.c_str(), value.data(),
              static_cast<uint32_t>(value.size())),
          name, "can't store");
}

void CSecretStore::Delete(const std::wstring& name) const
{
    check(reinterpret_cast<decltype(&VLFPDeleteSecret)>(Function("VLFPDeleteSecret"))(
              m_user.c_str(), secretKind, name.c_str()),
          name, "can't delete");
}

CSecretBytes readSecretFrom(int descriptor)
{
    CSecretBytes text;
    text.bytes.reserve(largestSecret +
                       4096); // never moved while it grows, so that no copy stays behind
    std::array<BYTE, 4096> chunk{};
    for (;;) {
        const int count = _read(descriptor, chunk.data(), chunk.size());
        if (count < 0)
            throw CToolError("can't read the secret from file descriptor " +
                                 std::to_string(descriptor),
                             "0 is standard input");
        if (count == 0)
            break;
        if (text.bytes.size() + static_cast<size_t>(count) > largestSecret)
            throw CToolError("the secret is longer than 1 MiB");
        text.bytes.insert(text.bytes.end(), chunk.begin(), chunk.begin() + count);
    }
    SecureZeroMemory(chunk.data(), chunk.size());
    while (!text.bytes.empty() && (text.bytes.back() == '\n' || text.bytes.back() == '\r'))
        text.bytes.pop_back();
    if (text.bytes.empty())
        throw CToolError("the secret is empty");
    std::wstring wide =
        wideFromUtf8({reinterpret_cast<const char*>(text.bytes.data()), text.bytes.size()});
    const auto* const first = reinterpret_cast<const BYTE*>(wide.c_str());
    CSecretBytes value(bytes_t(first, first + (wide.size() + 1) * sizeof(wchar_t)));
    SecureZeroMemory(wide.data(), wide.size() * sizeof(wchar_t));
    return value;
}

void writeSecretTo(int descriptor, const CSecretBytes& value)
{
    const std::wstring_view wide(reinterpret_cast<const wchar_t*>(value.bytes.data()),
                                 value.bytes.size() / sizeof(wchar_t));
    std::string text = utf8FromWide(wide.substr(0, wide.find(L'\0')));
    text += '\n';
    const auto written = _write(descriptor, text.data(), static_cast<unsigned>(text.size()));
    const bool whole = written >= 0 && static_cast<size_t>(written) == text.size();
    SecureZeroMemory(text.data(), text.size());
    if (!whole)
        throw CToolError("can't write the secret to file descriptor " + std::to_string(descriptor));
}

CSecretBytes encodeSecretList(const std::wstring& name, const CSecretBytes& value)
{
    CDerNode list;
    list.SetSequence(1);
    list.Child(0).SetSequence(2);
    list.Child(0).Child(0).SetWide({reinterpret_cast<const char16_t*>(name.data()), name.size()});
    list.Child(0).Child(1).SetOctets(value.bytes);
    return CSecretBytes(list.Encode());
}
