#include <algorithm>
#include <cstring>

#include "common/text.h"
#include "pluginfixture.h"
#include "agent/discovery.h"

namespace {

const bytes storage = seq({seq({filePair(L"new.vlm", "new")}), seq({}), seq({})});
const char secretNameText[] = "KRS Protected Storage";

bytes units(const std::wstring& text)
{
    bytes out(text.size() * 2);
    std::memcpy(out.data(), text.data(), out.size());
    return out;
}

bytes secret(const std::wstring& name, const std::wstring& value)
{
    return seq({wide(name), tlv(0x04, units(value))});
}

class PluginData : public pluginTest
{
protected:
    HRESULT set(const bytes& secrets) const
    {
        return m_plugin3->SetPluginData(static_cast<ULONG>(secrets.size()), secrets.data(),
                                        static_cast<ULONG>(storage.size()), storage.data());
    }
};

TEST_F(PluginData, TheAgentGetsTheFirstSecretOfTheNameOrTheNameAlone)
{
    const std::wstring name = L"KRS Protected Storage";
    const bytes wanted = secret(name, L"v\x00E9");
    const bytes other = secret(L"Other", L"o");
    const bytes triple = seq({wide(name), octets("v"), octets("w")});
    const struct {
        const char* what;
        bytes list;
        std::string body;
        int unknown; // items of a wrong shape
        bool found;
    } cases[] = {
        {"the pair", seq({wanted}), "v\xC3\xA9", 0, true},
        {"behind others", seq({triple, other, wanted}), "v\xC3\xA9", 1, true},
        {"first of two", seq({secret(name, L"1"), secret(name, L"2")}), "1", 0, true},
        {"later ones unread", seq({wanted, triple, octets("x")}), "v\xC3\xA9", 0, true},
        {"up to the first zero", seq({secret(name, std::wstring(L"a\0b", 3))}), "a", 0, true},
        {"half a unit at the end", seq({seq({wide(name), octets(std::string("a\0b", 3))})}), "a", 0,
         true},
        {"no value", seq({secret(name, L"")}), "", 0, true},
        {"value of another form", seq({seq({wide(name), integer(1)})}), "", 0, true},
        {"lower case", seq({secret(L"krs protected storage", L"v")}), "", 0, false},
        {"longer name", seq({secret(name + L"2", L"v")}), "", 0, false},
        {"shorter name", seq({secret(L"KRS Protected", L"v")}), "", 0, false},
        {"wrong shapes", seq({octets("x"), seq({}), triple, integer(1)}), "", 4, false},
        {"empty list", seq({}), "", 0, false},
        {"no list", {0x30, 0x05, 0x01}, "", 0, false},
        {"nothing", {}, "", 0, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        m_profile.clear();
        m_trace.messages();
        agentServer_t server;
        EXPECT_EQ(set(c.list), S_OK);
        const auto request = server.taken();
        ASSERT_TRUE(request);
        EXPECT_EQ(request->name, secretNameText);
        EXPECT_EQ(request->body, c.body);
        EXPECT_EQ(request->message, restore2DoneMessage());
        EXPECT_EQ(m_profile.files(m_profile.personal), (profile_t::fileMap{{L"new.vlm", "new"}}));
        const auto messages = m_trace.messages();
        EXPECT_EQ(std::count(messages.begin(), messages.end(), L"U Unknown secret blob"),
                  c.unknown);
        EXPECT_EQ(traced(messages, L"U Secret Name = KRS Protected Storage"), c.found);
    }
    EXPECT_EQ(m_agent.posted(), agentWindow_t::postings{});
}

TEST_F(PluginData, BadArgumentsAndRefusedBackupsReachNobody)
{
    const bytes refused = seq({seq({})});
    const struct {
        const BYTE* storage;
        ULONG size;
        HRESULT status;
        const wchar_t* message;
    } cases[] = {
        {nullptr, 4, E_POINTER, L"E -2147467261 SetPluginData[com]"},
        {storage.data(), 0, E_INVALIDARG, L"E -2147024809 SetPluginData[com]"},
        {refused.data(), static_cast<ULONG>(refused.size()), E_UNEXPECTED,
         L"E -2147418113 SetPluginData[com]"},
    };
    m_profile.write(m_profile.personal + L"old.vlm", "old");
    agentServer_t server;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.message);
        EXPECT_EQ(m_plugin3->SetPluginData(0, nullptr, c.size, c.storage), c.status);
        EXPECT_TRUE(traced(m_trace.messages(), c.message));
    }
    EXPECT_EQ(m_profile.files(m_profile.personal), (profile_t::fileMap{{L"old.vlm", "old"}}));
    EXPECT_FALSE(server.taken());
}

// The pattern is kept masked, so that the scan doesn't find its own.
constexpr uint8_t mask = 0xA5;

bytes maskedPattern()
{
    bytes pattern;
    for (uint32_t i = 0; i < 64; ++i) {
        pattern.push_back(static_cast<uint8_t>((i * 37 % 89 + 0x21) ^ mask));
        pattern.push_back(0 ^ mask);
    }
    return pattern;
}

// countInMemory counts the pattern in all memory of the process that can be written.
size_t countInMemory(const bytes& masked)
{
    const uint8_t first = static_cast<uint8_t>(masked[0] ^ mask);
    size_t count = 0;
    MEMORY_BASIC_INFORMATION region = {};
    const uint8_t* at = nullptr;
    for (; VirtualQuery(at, &region, sizeof region) != 0; at += region.RegionSize) {
        at = static_cast<const uint8_t*>(region.BaseAddress);
        if (region.State != MEM_COMMIT || region.Protect != PAGE_READWRITE ||
            region.RegionSize < masked.size())
            continue;
        const uint8_t* const end = at + region.RegionSize - masked.size();
        for (const uint8_t* p = at; p <= end; ++p) {
            p = static_cast<const uint8_t*>(
                std::memchr(p, first, static_cast<size_t>(end - p) + 1));
            if (!p)
                break;
            if (std::equal(masked.begin(), masked.end(), p,
                           [](uint8_t hidden, uint8_t plain) { return (hidden ^ mask) == plain; }))
                ++count;
        }
    }
    return count;
}

TEST_F(PluginData, TheSecretIsLeftOnlyInTheTextThatIsHandedOver)
{
    const bytes masked = maskedPattern();
    const bytes name = wide(L"KRS Protected Storage");
    const bytes head = {0x30, 0x81, static_cast<uint8_t>(3 + name.size() + 3 + masked.size()),
                        0x30, 0x81, static_cast<uint8_t>(name.size() + 3 + masked.size())};
    bytes list;
    list.reserve(512); // it must not move once the secret is in it
    list = head;
    list.insert(list.end(), name.begin(), name.end());
    list.insert(list.end(), {0x04, 0x81, static_cast<uint8_t>(masked.size())});
    std::transform(masked.begin(), masked.end(), std::back_inserter(list),
                   [](uint8_t hidden) { return static_cast<uint8_t>(hidden ^ mask); });
    ASSERT_EQ(countInMemory(masked), 1u); // the host's own: the scan works
    {
        agentServer_t server;
        EXPECT_EQ(set(list), S_OK);
        ASSERT_TRUE(server.taken());
        EXPECT_EQ(server.taken()->body.size(), masked.size() / 2);
    }
    EXPECT_LE(countInMemory(masked), 2u); // the host's, and at most the wide text

    bytes unwanted = list;
    unwanted[head.size() + 3] = 'k';
    SecureZeroMemory(list.data(), list.size());
    const size_t before = countInMemory(masked);
    EXPECT_EQ(set(unwanted), S_OK);
    EXPECT_LE(countInMemory(masked), before); // of an item that doesn't count, nothing
}

TEST_F(PluginData, WithoutAnAgentTheDataIsRestoredAllTheSame)
{
    SetWindowTextW(FindWindowExW(nullptr, nullptr, L"Veltrano Pro Agent", nullptr), L"closed");
    EXPECT_EQ(set(seq({secret(L"KRS Protected Storage", L"v")})), S_OK);
    EXPECT_TRUE(traced(m_trace.messages(), L"U VlAgent window NOT found!"));
    EXPECT_EQ(restore(storage), S_OK);
    EXPECT_TRUE(traced(m_trace.messages(), L"U VlAgent window NOT found!"));
    EXPECT_EQ(m_profile.files(m_profile.personal), (profile_t::fileMap{{L"new.vlm", "new"}}));
}

} // namespace
