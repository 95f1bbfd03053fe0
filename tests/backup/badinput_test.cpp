#include <cstring>
#include <random>

#include "pluginfixture.h"

namespace {

class BadInput : public pluginTest
{};

bytes wholeBackup()
{
    const bytes link = seq(
        {wide(L"n"), wide(L"http://a.b/c"), wide(L"a.vlm"), integer(7), wide(L"id"), integer(1)});
    return seq({seq({filePair(L"a.vlm", "AB"), filePair(L"b.vlm", std::string(300, 'b'))}),
                seq({link, link}), seq({seq({wide(L"Name"), wide(L"text")})}),
                seq({narrow(R"({"settings":{"current":{"show_training_prompt":true}}})")})});
}

TEST_F(BadInput, ACutBackupIsRefusedWithEverythingUntouched)
{
    m_profile.write(m_profile.personal + L"old.vlm", "old");
    const bytes whole = wholeBackup();
    for (size_t size = 0; size < whole.size(); ++size)
        ASSERT_EQ(restore(bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size))),
                  E_UNEXPECTED)
            << size;
    EXPECT_EQ(m_profile.files(m_profile.personal), (profile_t::fileMap{{L"old.vlm", "old"}}));
    EXPECT_EQ(restore(whole), S_OK);
}

TEST_F(BadInput, ABackupOfNoKnownShapeIsRefusedOrRestoredInPart)
{
    const struct {
        const char* what;
        bytes backup;
        HRESULT status;
    } cases[] = {
        {"longer than told",
         {0x30, 0x84, 0xFF, 0xFF, 0xFF, 0xFF, 0x30, 0x00, 0x30, 0x00},
         E_UNEXPECTED},
        {"length of eight octets",
         {0x30, 0x88, 0, 0, 0, 0, 0, 0, 0, 4, 0x30, 0, 0x30, 0},
         E_UNEXPECTED},
        {"indefinite length", {0x30, 0x80, 0x30, 0x00, 0x30, 0x00, 0x00, 0x00}, E_UNEXPECTED},
        {"a length near the end of the range", {0x30, 0x84, 0x7F, 0xFF, 0xFF, 0xFF}, E_UNEXPECTED},
        {"no sequence", octets("no sequence"), E_UNEXPECTED},
        {"an element cut short", {0x30, 0x04, 0x30, 0x00, 0x30, 0x7F}, E_UNEXPECTED},
        {"trailing bytes", {0x30, 0x04, 0x30, 0x00, 0x30, 0x00, 0xFF, 0xFF}, S_OK},
        {"elements of wrong forms", seq({octets("a"), integer(1), wide(L"b"), integer(2)}), S_OK},
        {"pairs of wrong forms",
         seq({seq({octets("a"), integer(1), seq({integer(1)}), seq({octets("a")})}),
              seq({octets("b")}), seq({octets("c")}), seq({})}),
         S_OK},
        {"cut inside",
         seq({{0x30, 0x02, 0x30, 0x10}, {0x30, 0x03, 0x30, 0x84, 0xFF}, seq({}), seq({})}), S_OK},
        {"many tiny elements", seq({seq({}), tlv(0x30, bytes(200000, 0))}), S_OK},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(restore(c.backup), c.status);
    }
}

TEST_F(BadInput, ChangedAndRandomBytesNeverHarmTheProcess)
{
    std::mt19937 random(20240607);
    const bytes whole = wholeBackup();
    for (int round = 0; round < 400; ++round) {
        bytes backup = whole;
        for (uint32_t i = random() % 4 + 1; i > 0; --i)
            backup[random() % 40 + random() % (backup.size() - 40)] =
                static_cast<uint8_t>(random());
        const HRESULT status = restore(backup);
        EXPECT_TRUE(status == S_OK || status == E_UNEXPECTED) << std::hex << status;
    }
    for (int round = 0; round < 400; ++round) {
        bytes backup(random() % 200);
        for (uint8_t& byte : backup)
            byte = static_cast<uint8_t>(random());
        const HRESULT status = restore(backup);
        EXPECT_TRUE(status == S_OK || status == E_UNEXPECTED) << std::hex << status;
    }
}

TEST_F(BadInput, DeepNestingIsWalkedAtItsTopAlone)
{
    bytes nested = {0x30, 0x00};
    nested.reserve(1200000);
    // Built from the inside outwards, reversed to keep it linear.
    bytes reversed = {0x00, 0x30};
    for (int level = 0; level < 200000; ++level) {
        const size_t size = reversed.size();
        for (int octet = 0; octet < 4; ++octet)
            reversed.push_back(static_cast<uint8_t>(size >> (8 * octet)));
        reversed.push_back(0x84);
        reversed.push_back(0x30);
    }
    nested.assign(reversed.rbegin(), reversed.rend());
    EXPECT_EQ(restore(nested), E_UNEXPECTED);
    EXPECT_EQ(restore(seq({nested, nested, nested})), S_OK);
}

TEST_F(BadInput, AHundredThousandPairsTakeLinearTime)
{
    const std::vector<bytes> pairs(100000, filePair(L"", "x"));
    const std::vector<bytes> records(
        100000, seq({wide(L""), wide(L"t"), wide(L"m"), integer(1), wide(L"")}));
    const bytes backup = seq({seq(pairs), seq(records), seq({}), seq({})});
    const ULONGLONG start = GetTickCount64();
    EXPECT_EQ(restore(backup), S_OK);
    EXPECT_LT(GetTickCount64() - start, 30000u);
}

} // namespace
