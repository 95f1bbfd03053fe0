#include "pairs.h"
#include "rounds.h"

#include <windows.h>
#include <wincrypt.h>

#include <utility>

// The codec against the platform's encoder and decoder, on equal pairs.
namespace {

constexpr size_t count = 1000;
constexpr size_t size = 2048;
constexpr DWORD encoding = X509_ASN_ENCODING;

volatile size_t sink;

// CLocal is what the platform's codec gave.
class CLocal
{
public:
    CLocal(const char* kind, const void* value)
    {
        CryptEncodeObjectEx(encoding, kind, value, CRYPT_ENCODE_ALLOC_FLAG, nullptr, &m_data,
                            &m_size);
    }
    CLocal(const char* kind, const CRYPT_DER_BLOB& bytes)
    {
        CryptDecodeObjectEx(encoding, kind, bytes.pbData, bytes.cbData,
                            CRYPT_DECODE_ALLOC_FLAG | CRYPT_DECODE_NOCOPY_FLAG, nullptr, &m_data,
                            &m_size);
    }
    CLocal(CLocal&& other) noexcept
        : m_data(std::exchange(other.m_data, nullptr)), m_size(other.m_size)
    {}
    CLocal& operator=(CLocal&&) = delete;
    ~CLocal() { LocalFree(m_data); }

    CRYPT_DER_BLOB Blob() const { return {m_size, static_cast<BYTE*>(m_data)}; }
    template <class Type> const Type& As() const { return *static_cast<const Type*>(m_data); }

private:
    void* m_data = nullptr;
    DWORD m_size = 0;
};

CLocal encodeSequence(std::vector<CRYPT_DER_BLOB>& elements)
{
    const CRYPT_SEQUENCE_OF_ANY sequence = {static_cast<DWORD>(elements.size()), elements.data()};
    return {X509_SEQUENCE_OF_ANY, &sequence};
}

CLocal theirEncode(const CPairs& pairs)
{
    std::vector<CLocal> made;
    std::vector<CRYPT_DER_BLOB> list;
    for (size_t i = 0; i < count; ++i) {
        const std::u16string& name = pairs.names[i];
        const auto bytes = pairs.Content(i);
        const CERT_NAME_VALUE text = {
            CERT_RDN_BMP_STRING,
            {static_cast<DWORD>(2 * name.size() + 2),
             reinterpret_cast<BYTE*>(const_cast<char16_t*>(name.c_str()))}};
        const CRYPT_DATA_BLOB content = {static_cast<DWORD>(bytes.size()),
                                         const_cast<BYTE*>(bytes.data())};
        const CLocal encodedName(X509_UNICODE_ANY_STRING, &text);
        const CLocal encodedContent(X509_OCTET_STRING, &content);
        std::vector<CRYPT_DER_BLOB> pair = {encodedName.Blob(), encodedContent.Blob()};
        made.push_back(encodeSequence(pair));
        list.push_back(made.back().Blob());
    }
    return encodeSequence(list);
}

size_t theirDecode(const CPairs& pairs)
{
    size_t total = 0;
    const CLocal list(X509_SEQUENCE_OF_ANY,
                      CRYPT_DER_BLOB{static_cast<DWORD>(pairs.encoded.size()),
                                     const_cast<BYTE*>(pairs.encoded.data())});
    const auto& elements = list.As<CRYPT_SEQUENCE_OF_ANY>();
    for (DWORD i = 0; i < elements.cValue; ++i) {
        const CLocal pair(X509_SEQUENCE_OF_ANY, elements.rgValue[i]);
        const CRYPT_DER_BLOB* const items = pair.As<CRYPT_SEQUENCE_OF_ANY>().rgValue;
        const CLocal name(X509_UNICODE_ANY_STRING, items[0]);
        const CLocal content(X509_OCTET_STRING, items[1]);
        total += name.As<CERT_NAME_VALUE>().Value.cbData + content.As<CRYPT_DATA_BLOB>().cbData;
    }
    return total;
}

} // namespace

int main()
{
    const CPairs pairs(count, size);
    const CLocal whole = theirEncode(pairs);
    // Ours counts the names with their tags and lengths.
    if (whole.Blob().cbData != pairs.encoded.size() ||
        theirDecode(pairs) + 2 * count != pairs.Decode())
        return 2;
    bench::CGroup group;
    const size_t encode = group.Add([&] {
        pairs.EncodeTo([](size_t room) { return std::make_unique_for_overwrite<uint8_t[]>(room); });
    });
    const size_t itsEncode = group.Add([&] { sink = theirEncode(pairs).Blob().cbData; });
    const size_t decode = group.Add([&] { sink = pairs.Decode(); });
    const size_t itsDecode = group.Add([&] { sink = theirDecode(pairs); });
    group.Run(4 * bench::usualRounds);
    bench::row("DER encode, tree built / the platform's encoder", "1,000 x 2 KiB",
               group.Ratios(encode, itsEncode), 0.35);
    bench::row("DER decode / the platform's decoder", "1,000 x 2 KiB",
               group.Ratios(decode, itsDecode), 0.05);
    return 0;
}
