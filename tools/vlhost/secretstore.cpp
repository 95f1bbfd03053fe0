#include "secretstore.h"

#include "common/text.h"
#include "formats/der/dernode.h"
#include "shared/systemerror.h"
#include "shared/toolerror.h"

#include <fcntl.h>
#include <io.h>

#include <algorithm>

namespace {

constexpr size_t largestSecret = 1u << 20;

void check(LONG status, const std::wstring& name, const char* what)
{
    if (FAILED(status))
        throw CToolError(
            std::string(what) + " the secret '" + utf8FromWide(name) + "': " + statusText(status),
            status == static_cast<LONG>(0x80070002) ? "there is none of that name" : "");
}

// CDescriptor closes what it opened.
class CDescriptor
{
public:
    explicit CDescriptor(const std::string& path)
        : m_number(_wopen(wideFromUtf8(path).c_str(), _O_RDONLY | _O_BINARY))
    {
        if (m_number < 0)
            throw CToolError("can't open " + path + ": " + errorText(_doserrno),
                             "is the name spelt right?");
    }
    ~CDescriptor() { _close(m_number); }
    CDescriptor(const CDescriptor&) = delete;
    CDescriptor& operator=(const CDescriptor&) = delete;
    int Number() const noexcept { return m_number; }

private:
    const int m_number;
};

std::string_view textOf(const CSecretBytes& value)
{
    return {reinterpret_cast<const char*>(value.bytes.data()), value.bytes.size()};
}

void writeAll(int descriptor, std::string_view text)
{
    while (!text.empty()) {
        const int written = _write(descriptor, text.data(), static_cast<unsigned>(text.size()));
        if (written <= 0)
            throw CToolError("can't write the secret to file descriptor " +
                                 std::to_string(descriptor),
                             "1 is standard output");
        text.remove_prefix(static_cast<size_t>(written));
    }
}

} // namespace

CSecretStore::CSecretStore()
{
    if (FAILED(m_client.Status()))
        throw CToolError("can't use the secret store of VLFPApi.dll: " +
                             statusText(m_client.Status()),
                         "the library has to be in the system folder or beside this program");
}

CSecretBytes CSecretStore::Read(const std::wstring& name) const
{
    uint32_t size = 0;
    check(m_client.Size(name, size), name, "can't read");
    CSecretBytes value(size);
    check(m_client.Read(name, value), name, "can't read");
    return value;
}

void CSecretStore::Store(const std::wstring& name, const CSecretBytes& value) const
{
    check(m_client.Store(name, value.bytes), name, "can't store");
}

void CSecretStore::Delete(const std::wstring& name) const
{
    check(m_client.Delete(name), name, "can't delete");
}

CSecretBytes readSecretBytes(int descriptor)
{
    _setmode(descriptor, _O_BINARY); // the read reports one that isn't open
    CSecretBytes value(largestSecret + 1);
    size_t size = 0;
    for (;;) {
        const int count = _read(descriptor, value.bytes.data() + size,
                                static_cast<unsigned>(value.bytes.size() - size));
        if (count < 0)
            throw CToolError("can't read the secret from file descriptor " +
                                 std::to_string(descriptor),
                             "0 is standard input");
        if (count == 0)
            break;
        size += static_cast<size_t>(count);
        if (size > largestSecret)
            throw CToolError("the secret is longer than 1 MiB", "is it the right file?");
    }
    value.Shorten(size);
    return value;
}

CSecretBytes readSecretFile(const std::string& path)
{
    return readSecretBytes(path == "-" ? 0 : CDescriptor(path).Number());
}

CSecretBytes readSecretFrom(int descriptor)
{
    CSecretBytes text = readSecretBytes(descriptor);
    if (textOf(text).ends_with('\n'))
        text.Shorten(text.bytes.size() - (textOf(text).ends_with("\r\n") ? 2 : 1));
    if (text.bytes.empty())
        throw CToolError("the secret is empty", "give it as a line of text");
    CSecretBytes value;
    if (FAILED(secretFromUtf8(textOf(text), value.bytes)) ||
        std::find(text.bytes.begin(), text.bytes.end(), BYTE{0}) != text.bytes.end())
        throw CToolError("the secret is no UTF-8 text", "convert it first");
    return value;
}

void writeSecretTo(int descriptor, const CSecretBytes& value)
{
    std::wstring_view wide(reinterpret_cast<const wchar_t*>(value.bytes.data()),
                           value.bytes.size() / sizeof(wchar_t));
    wide = wide.substr(0, wide.find(L'\0'));
    const auto units = static_cast<int>(wide.size());
    CSecretBytes text(static_cast<size_t>(
        WideCharToMultiByte(CP_UTF8, 0, wide.data(), units, nullptr, 0, nullptr, nullptr)));
    WideCharToMultiByte(CP_UTF8, 0, wide.data(), units, reinterpret_cast<char*>(text.bytes.data()),
                        static_cast<int>(text.bytes.size()), nullptr, nullptr);
    _setmode(descriptor, _O_BINARY);
    writeAll(descriptor, textOf(text));
    writeAll(descriptor, "\n");
}

CSecretBytes encodeSecretList(const std::wstring& name, const CSecretBytes& value)
{
    CDerTree list;
    list.SetSequence(1);
    list.Child(0).SetSequence(2);
    list.Child(0).Child(0).SetWide({reinterpret_cast<const char16_t*>(name.data()), name.size()});
    list.Child(0).Child(1).SetOctets(value.bytes); // borrowed, so that no copy is made
    return CSecretBytes(list.Encode());
}
