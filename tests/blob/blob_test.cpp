#include "backup/blob/blob.h"

#include "support/patchimport.h"

#include <comdef.h>

#include <algorithm>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using bytes = std::vector<uint8_t>;
using blob_t = CVLCryptBlob;

constexpr DWORD encodings = X509_ASN_ENCODING | PKCS_7_ASN_ENCODING;

bytes bytesOf(const _CRYPTOAPI_BLOB& blob)
{
    const auto view = blobView(blob);
    return {view.begin(), view.end()};
}

_CRYPTOAPI_BLOB viewOf(const bytes& from)
{
    return {static_cast<DWORD>(from.size()), const_cast<BYTE*>(from.data())};
}

// The platform's encoder and decoder, the oracle of this file. No bytes stand for a failure.
bytes platformEncode(structType_t type, const void* value)
{
    const auto* name = reinterpret_cast<LPCSTR>(type);
    DWORD size = 0;
    if (!CryptEncodeObject(encodings, name, value, nullptr, &size))
        return {};
    bytes out(size);
    EXPECT_TRUE(CryptEncodeObject(encodings, name, value, out.data(), &size));
    out.resize(size);
    return out;
}

bytes platformDecode(uintptr_t type, const bytes& der)
{
    const auto* name = reinterpret_cast<LPCSTR>(type);
    DWORD size = 0;
    if (der.empty() || !CryptDecodeObject(encodings, name, der.data(),
                                          static_cast<DWORD>(der.size()), 0, nullptr, &size))
        return {};
    bytes out(size);
    EXPECT_TRUE(CryptDecodeObject(encodings, name, der.data(), static_cast<DWORD>(der.size()), 0,
                                  out.data(), &size));
    return out;
}

template <class T> const T& as(const bytes& decoded)
{
    return *reinterpret_cast<const T*>(decoded.data());
}

bytes randomBytes(std::mt19937& random, size_t most)
{
    bytes out(random() % (most + 1));
    for (uint8_t& octet : out)
        octet = static_cast<uint8_t>(random());
    return out;
}

// Fills the slot with a random value and gives what the platform makes of the same.
bytes encodeBoth(std::mt19937& random, unsigned depth, _CRYPTOAPI_BLOB& slot)
{
    switch (depth > 0 ? random() % 5 : random() % 4) {
    case 0: {
        std::wstring text(random() % 200, L' ');
        for (wchar_t& unit : text)
            unit = static_cast<wchar_t>(1 + random() % 0xFFFF);
        const CVLWStrBlob blob(text.c_str());
        EXPECT_EQ(blob.Encode(slot), &slot);
        const CERT_NAME_VALUE value{CERT_RDN_BMP_STRING, {blob.cbData, blob.pbData}};
        return platformEncode(structAnyString, &value);
    }
    case 1: {
        const std::string text(random() % 300, 'x');
        const CVLStrBlob blob(text.c_str());
        EXPECT_EQ(blob.Encode(slot), &slot);
        const CERT_NAME_VALUE value{CERT_RDN_OCTET_STRING, {blob.cbData, blob.pbData}};
        return platformEncode(structAnyString, &value);
    }
    case 2: {
        const CVLIntBlob blob(random() >> (random() % 32));
        EXPECT_TRUE(blob.EncodeAs(structMultiByteInt, slot));
        return platformEncode(structMultiByteInt, static_cast<const _CRYPTOAPI_BLOB*>(&blob));
    }
    case 3: {
        blob_t blob;
        const bytes content = randomBytes(random, 70000);
        blob.Assign(content.data(), static_cast<DWORD>(content.size()));
        EXPECT_TRUE(blob.EncodeAs(structOctetString, slot));
        return platformEncode(structOctetString, static_cast<const _CRYPTOAPI_BLOB*>(&blob));
    }
    default: {
        CVLBlobSeq list(static_cast<DWORD>(random() % 7));
        std::vector<bytes> parts(list.count);
        std::vector<CRYPT_DER_BLOB> records(list.count);
        for (DWORD i = 0; i < list.count; ++i) {
            parts[i] = encodeBoth(random, depth - 1, *list.Slot(i));
            records[i] = viewOf(parts[i]);
        }
        list.Encode(slot);
        const CRYPT_SEQUENCE_OF_ANY value{list.count, records.data()};
        return platformEncode(static_cast<structType_t>(34), &value);
    }
    }
}

TEST(Blob, EncodesAsThePlatformDoes)
{
    std::mt19937 random(7);
    for (int round = 0; round < 150; ++round) {
        SCOPED_TRACE(round);
        CVLBlobSeq slots(1);
        const bytes expected = encodeBoth(random, 4, slots.items[0]);
        ASSERT_FALSE(expected.empty());
        ASSERT_EQ(bytesOf(slots.items[0]), expected);
    }
}

// What each class reads from an element, against what the platform's decoder gives and the class's
// rule for it.
TEST(Blob, DecodesAsThePlatformDoes)
{
    std::mt19937 random(11);
    const uint8_t tags[] = {0x02, 0x04, 0x05, 0x0C, 0x12, 0x13, 0x14, 0x15,
                            0x16, 0x19, 0x1A, 0x1B, 0x1C, 0x1E, 0x30};
    for (int round = 0; round < 4000; ++round) {
        bytes der{tags[random() % std::size(tags)]};
        bytes content = randomBytes(random, random() % 8 == 0 ? 300 : 8);
        if (der[0] == 0x1E)
            content.resize(content.size() &
                           ~size_t{1}); // the oracle leaves the odd octet undefined
        if (der[0] == 0x0C)
            std::fill(content.begin(), content.end(),
                      uint8_t{'u'}); // replacement runs differ between systems
        if (der[0] == 0x30) {
            const bytes inner = {0x02, 0x01, 0x05, 0x04, 0x00};
            content.insert(content.begin(), inner.begin(),
                           inner.begin() + (random() % 2 == 0 ? 5 : 3));
        }
        const unsigned more = random() % 6; // octets of the length behind its first
        if (more > 0) {
            der.push_back(static_cast<uint8_t>(0x80 | more));
            der.resize(der.size() + more);
            der.back() = static_cast<uint8_t>(content.size());
            if (more > 1)
                der[der.size() - 2] = static_cast<uint8_t>(content.size() >> 8);
        } else {
            der.push_back(static_cast<uint8_t>(content.size() & 0x7F));
        }
        der.insert(der.end(), content.begin(), content.end());
        if (random() % 4 == 0)
            der.push_back(0x77);
        if (more > 0 && content.empty())
            continue; // the oracle wants an octet behind a long length
        SCOPED_TRACE(testing::PrintToString(der));

        for (const structType_t type : {structOctetString, structMultiByteInt}) {
            blob_t blob;
            blob.Assign(der.data(), static_cast<DWORD>(der.size()));
            const bytes decoded = platformDecode(type, der);
            ASSERT_EQ(blob.DecodeAs(type), !decoded.empty());
            ASSERT_EQ(bytesOf(blob), decoded.empty() ? der : bytesOf(as<CRYPT_DATA_BLOB>(decoded)));
        }
        const bytes text = platformDecode(structAnyString, der);
        const DWORD kind = text.empty() ? 0 : as<CERT_NAME_VALUE>(text).dwValueType;
        CVLWStrBlob wide;
        wide.Assign(der.data(), static_cast<DWORD>(der.size()));
        ASSERT_TRUE(wide.Decode());
        const bool isWide = (kind >= 3 && kind <= 9) || kind == 12 || kind == 13;
        bytes expected = isWide ? bytesOf(as<CERT_NAME_VALUE>(text).Value) : der;
        if (isWide)
            expected.resize(expected.size() & ~size_t{1});
        ASSERT_EQ(bytesOf(wide), expected);
        CVLStrBlob narrow;
        narrow.Assign(der.data(), static_cast<DWORD>(der.size()));
        ASSERT_TRUE(narrow.Decode());
        ASSERT_EQ(bytesOf(narrow), kind == 2 ? bytesOf(as<CERT_NAME_VALUE>(text).Value) : der);

        CVLBlobSeq list(3);
        const _CRYPTOAPI_BLOB source = viewOf(der);
        const bytes sequence = platformDecode(34, der);
        ASSERT_EQ(list.Decode(&source), !sequence.empty());
        if (sequence.empty()) {
            ASSERT_EQ(list.count, 3u); // as it was
            continue;
        }
        const auto& elements = as<CRYPT_SEQUENCE_OF_ANY>(sequence);
        ASSERT_EQ(list.count, elements.cValue);
        for (DWORD i = 0; i < list.count; ++i)
            ASSERT_EQ(bytesOf(*list.Slot(i)), bytesOf(elements.rgValue[i]));
    }
}

TEST(CDataBlob_s, TakesOctetsOrEndsEmpty)
{
    CDataBlob_s secret;
    bytes octets{0x04, 0x02, 0x41, 0x42}, other{0x1E, 0x02, 0, 0};
    const _CRYPTOAPI_BLOB element = viewOf(octets), text = viewOf(other);
    EXPECT_TRUE(secret.DecodeOctetsFrom(&element));
    EXPECT_EQ(bytesOf(secret), (bytes{0x41, 0x42}));
    EXPECT_FALSE(secret.DecodeOctetsFrom(&text));
    EXPECT_EQ(secret.pbData, nullptr);
    EXPECT_TRUE(secret.DecodeOctetsFrom(&element));
    EXPECT_FALSE(secret.DecodeOctetsFrom(nullptr));
    EXPECT_EQ(secret.cbData, 0u);
}

// What HeapFree is given, as it was at that moment; HeapAlloc fails for as long as refuse is set.
std::vector<bytes> freed;
bool refuse = false;
decltype(&HeapFree) realFree = nullptr;
decltype(&HeapAlloc) realAlloc = nullptr;

BOOL WINAPI watchFree(HANDLE heap, DWORD flags, void* memory)
{
    const auto* first = static_cast<const uint8_t*>(memory);
    freed.emplace_back(first, first + HeapSize(heap, 0, memory));
    return realFree(heap, flags, memory);
}

void* WINAPI refuseAlloc(HANDLE heap, DWORD flags, SIZE_T size)
{
    return refuse ? nullptr : realAlloc(heap, flags, size);
}

bool freedHolds(const bytes& secret)
{
    return std::any_of(freed.begin(), freed.end(), [&](const bytes& block) {
        return std::search(block.begin(), block.end(), secret.begin(), secret.end()) != block.end();
    });
}

TEST(Secrets, AreOverwrittenBeforeTheyAreFreed)
{
    const importPatch_t patch(GetModuleHandleW(nullptr), "HeapFree",
                              reinterpret_cast<void*>(&watchFree));
    ASSERT_TRUE(patch.found());
    realFree = importOriginal<decltype(&HeapFree)>(patch);
    const bytes secret{'s', 'e', 'c', 'r', 'e', 't'};
    freed.clear();
    {
        CDataBlob_s blob;
        blob.Assign(secret.data(), static_cast<DWORD>(secret.size()));
        CVLBlobSeq list(2);
        EXPECT_TRUE(blob.EncodeAs(structOctetString, *list.Slot(1)));
        list.SecureClear();
    }
    EXPECT_FALSE(freed.empty());
    EXPECT_FALSE(freedHolds(secret));
    {
        blob_t plain; // the hook would see it
        plain.Assign(secret.data(), static_cast<DWORD>(secret.size()));
    }
    EXPECT_TRUE(freedHolds(secret));
}

TEST(Memory, RunsOutAsAStatusButNotInConstructors)
{
    const importPatch_t patch(GetModuleHandleW(nullptr), "HeapAlloc",
                              reinterpret_cast<void*>(&refuseAlloc));
    ASSERT_TRUE(patch.found());
    realAlloc = importOriginal<decltype(&HeapAlloc)>(patch);
    CVLBlobSeq list(2), out(1), filled(1);
    const CVLWStrBlob text(L"text");
    const bytes pair{0x30, 0x02, 0x04, 0x00}, octets{0x04, 0x01, 0x41};
    const _CRYPTOAPI_BLOB source = viewOf(pair), element = viewOf(octets);
    blob_t blob;
    _auto_heap_mem<wchar_t> name;
    text.Encode(filled.items[0]);

    const std::function<void()> raising[] = {
        [&] { text.Encode(out.items[0]); }, [&] { text.EncodeAs(structOctetString, out.items[0]); },
        [&] { list.Encode(out.items[0]); }, [&] { list.Decode(&source); },
        [&] { blob.Assign("x", 1); },       [&] { blob.DecodeOctetsFrom(&element); },
        [&] { filled.ReadNextWStr(name); },
    };
    refuse = true;
    for (const auto& call : raising) {
        SCOPED_TRACE(&call - raising);
        try {
            call();
            ADD_FAILURE() << "nothing raised";
        } catch (const _com_error& e) {
            EXPECT_EQ(e.Error(), E_OUTOFMEMORY);
        }
    }
    EXPECT_EQ(CVLBlobSeq(3).count, 0u);
    EXPECT_EQ(CVLWStrBlob(L"x").cbData + CVLStrBlob("x").cbData + CVLIntBlob(1).cbData, 0u);
    refuse = false;
}

TEST(CVLBlobSeq, ConstructsEncodesAndReadsInOrder)
{
    EXPECT_EQ(CVLBlobSeq(0).items, nullptr);
    CVLBlobSeq outer(1), list(4), back;
    CVLWStrBlob(L"one").Encode(*list.Slot(0));
    CVLWStrBlob(L"").Encode(*list.Slot(2)); // slot 1 stays empty and is gone when read back
    CVLStrBlob("refused").Encode(*list.Slot(3));
    EXPECT_EQ(list.Slot(4), nullptr);
    list.Encode(outer.items[0]);
    ASSERT_TRUE(back.Decode(&outer.items[0]));
    ASSERT_EQ(back.count, 3u);
    ASSERT_TRUE(outer.Decode(outer.Slot(0))); // a list that lies in the one it replaces
    EXPECT_EQ(outer.count, 3u);
    EXPECT_EQ(bytesOf(*outer.Slot(0)), bytesOf(*list.Slot(0)));
    EXPECT_FALSE(back.Decode(nullptr));

    _auto_heap_mem<wchar_t> text;
    EXPECT_EQ(&back.ReadNextWStr(text), &back);
    EXPECT_STREQ(text.get(), L"one");
    back.ReadNextWStr(text);
    EXPECT_STREQ(text.get(), L"");
    back.ReadNextWStr(text); // its encoded bytes, taken as text
    EXPECT_EQ(text.get()[0], 0x0804);
    EXPECT_EQ(back.cursor, 3u);
    back.ReadNextWStr(text);
    EXPECT_EQ(text.get(), nullptr);
    EXPECT_EQ(back.cursor, 3u);
    back.SecureClear();
    EXPECT_EQ(back.count + back.cursor, 0u);
    EXPECT_EQ(back.items, nullptr);
    CVLBlobSeq empty(1);
    back.Encode(empty.items[0]);
    EXPECT_EQ(bytesOf(empty.items[0]), (bytes{0x30, 0x00}));
}

} // namespace
