#include "backup/blob.h"

#include "formats/der/dernode.h"
#include "support/backupbytes.h"

#include <gtest/gtest.h>

namespace {

bytes bytesOf(const _CRYPTOAPI_BLOB& blob)
{
    return {blobView(blob).begin(), blobView(blob).end()};
}

_CRYPTOAPI_BLOB viewOf(const bytes& from)
{
    return {static_cast<DWORD>(from.size()), const_cast<BYTE*>(from.data())};
}

// platformDecode is the oracle. No bytes stand for a failure.
bytes platformDecode(uintptr_t type, _CRYPTOAPI_BLOB der)
{
    bytes out(0x1000);
    DWORD size = 0x1000;
    if (!CryptDecodeObject(X509_ASN_ENCODING | PKCS_7_ASN_ENCODING, reinterpret_cast<LPCSTR>(type),
                           der.pbData, der.cbData, 0, out.data(), &size))
        size = 0;
    out.resize(size);
    return out;
}

template <class T> const T& as(const bytes& decoded)
{
    return *reinterpret_cast<const T*>(decoded.data());
}

TEST(Blob, WritesNumbersAsThePlatformDoes)
{
    for (uint32_t bit = 1; bit != 0; bit <<= 1)
        for (const uint32_t number : {bit, bit - 1, ~bit, 0 - 2 * bit}) {
            const CVLIntBlob blob(number);
            CDerTree node;
            bytes expected(16);
            DWORD size = 16;
            CryptEncodeObject(X509_ASN_ENCODING, X509_MULTI_BYTE_INTEGER,
                              static_cast<const _CRYPTOAPI_BLOB*>(&blob), expected.data(), &size);
            expected.resize(size);
            node.SetInteger(number);
            EXPECT_EQ(node.Encode(), expected);
        }
}

// What each class reads from an element, against the platform's decoder and the class's rule.
void expectReadAsThePlatformDoes(const bytes& der)
{
    const _CRYPTOAPI_BLOB source = viewOf(der);
    CVLCryptBlob blob;
    for (const structType_t type : {structOctetString, structMultiByteInt}) {
        blob.Assign(der.data(), source.cbData);
        const bytes decoded = platformDecode(type, source);
        ASSERT_EQ(blob.DecodeAs(type), !decoded.empty());
        ASSERT_EQ(bytesOf(blob), decoded.empty() ? der : bytesOf(as<CRYPT_DATA_BLOB>(decoded)));
    }
    const bytes octets = platformDecode(structOctetString, source);
    ASSERT_EQ(blob.DecodeOctetsFrom(&source), !octets.empty());
    ASSERT_EQ(bytesOf(blob), octets.empty() ? octets : bytesOf(as<CRYPT_DATA_BLOB>(octets)));
    const bytes text = platformDecode(structAnyString, source);
    const DWORD kind = text.empty() ? 0 : as<CERT_NAME_VALUE>(text).dwValueType;
    const bytes value = text.empty() ? der : bytesOf(as<CERT_NAME_VALUE>(text).Value);
    CVLWStrBlob wide;
    wide.Assign(der.data(), source.cbData);
    ASSERT_TRUE(wide.Decode());
    ASSERT_EQ(bytesOf(wide), (kind >= 3 && kind <= 9) || kind == 12 || kind == 13 ? value : der);

    CVLBlobSeq list(3);
    const bytes sequence = platformDecode(34, source);
    ASSERT_EQ(list.Decode(&source), !sequence.empty());
    ASSERT_EQ(list.count, sequence.empty() ? 3 : as<CRYPT_SEQUENCE_OF_ANY>(sequence).cValue);
    for (DWORD i = 0; i < list.count && !sequence.empty(); ++i)
        ASSERT_EQ(bytesOf(list.items[i]), bytesOf(as<CRYPT_SEQUENCE_OF_ANY>(sequence).rgValue[i]));
}

TEST(Blob, DecodesAsThePlatformDoes)
{
    // Even sizes and valid UTF-8, since systems differ in the rest.
    const bytes contents[] = {{},           {'A', 0},           {0xC3, 0xA9},   {0, 0xC3, 0xA9, 0},
                              {2, 1, 5, 4}, {2, 1, 5, 4, 1, 9}, bytes(300, 'u')};
    for (const uint8_t tag : bytes{2, 4, 5, 12, 18, 19, 20, 21, 22, 25, 26, 27, 28, 30, 48}) {
        for (const bytes& content : contents) {
            for (size_t form = content.empty() ? 10 : 0; form < 12; ++form) {
                const size_t octets = 5 - form / 2; // of the length after its first
                bytes der{tag, static_cast<uint8_t>(octets ? 0x80 | octets : content.size() & 127)};
                for (size_t i = octets; i-- > 0;)
                    der.push_back(static_cast<uint8_t>(content.size() >> 8 * i));
                der.insert(der.end(), content.begin(), content.end());
                der.resize(der.size() + form % 2); // one more follows
                SCOPED_TRACE(testing::PrintToString(der));
                ASSERT_NO_FATAL_FAILURE(expectReadAsThePlatformDoes(der));
            }
        }
    }
}

} // namespace
