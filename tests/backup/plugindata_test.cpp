#include "backupfixture.h"

#include <algorithm>
#include <cstring>

#include "agent/discovery.h"

namespace {

const bytes storage = seq({seq({filePair(L"new.vlm", "new")}), seq({})});
const std::wstring name = L"KRS Protected Storage";

bytes secret(const std::wstring& itsName, const std::string& value)
{
    std::string units;
    for (const char c : value)
        units += {c, '\0'};
    return seq({wide(itsName), octets(units)});
}

class PluginData : public backupTest
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
    const bytes wanted = secret(name, "v");
    const bytes triple = seq({wide(name), octets("v"), octets("w")});
    const struct {
        bytes list;
        std::string body;
        int unknown; // items of a wrong shape
    } cases[] = {
        {seq({triple, secret(L"Other", "o"), wanted}), "v", 1},
        {seq({secret(name, "1"), secret(name, "2"), triple}), "1", 0}, // the later ones unread
        {seq({secret(name, std::string("a\0b", 3))}), "a", 0},
        {seq({seq({wide(name), octets(std::string("a\0b", 3))})}), "a", 0}, // half a unit behind
        {seq({seq({wide(name), integer(1)})}), "", 0},
        {seq({secret(L"krs protected storage", "v")}), "", 0},
        {seq({secret(name + L"2", "v"), secret(L"KRS Protected", "v")}), "", 0},
        {seq({octets("x"), seq({}), triple, integer(1)}), "", 4},
        {{0x30, 0x05, 0x01}, "", 0},
        {{}, "", 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        clear();
        m_trace.messages();
        agentServer_t server;
        EXPECT_EQ(set(c.list), S_OK);
        const auto request = server.taken();
        ASSERT_TRUE(request);
        EXPECT_EQ(request->name, "KRS Protected Storage");
        EXPECT_EQ(request->body, c.body);
        EXPECT_EQ(request->message, restore2DoneMessage());
        EXPECT_EQ(files(m_personal), (fileMap{{L"new.vlm", "new"}}));
        const auto messages = m_trace.messages();
        EXPECT_EQ(std::count(messages.begin(), messages.end(), L"U Unknown secret blob"),
                  c.unknown);
    }
    EXPECT_TRUE(posted().empty());
}

TEST_F(PluginData, BadArgumentsAndRefusedBackupsReachNobody)
{
    const bytes refused = seq({seq({})});
    agentServer_t server;
    EXPECT_EQ(m_plugin3->SetPluginData(0, nullptr, 4, nullptr), E_POINTER);
    EXPECT_EQ(m_plugin3->SetPluginData(0, nullptr, 0, refused.data()), E_INVALIDARG);
    EXPECT_EQ(m_plugin3->SetPluginData(0, nullptr, 4, refused.data()), E_UNEXPECTED);
    EXPECT_TRUE(traced(L"E -2147418113 SetPluginData[com]"));
    EXPECT_FALSE(server.taken());
}

// countInMemory counts a text in all memory of the process that can be written. The text is masked,
// so that the search doesn't find its own.
constexpr uint8_t mask = 0xA5;

size_t countInMemory(const bytes& masked)
{
    const auto matches = [](uint8_t plain, uint8_t hidden) { return plain == (hidden ^ mask); };
    size_t count = 0;
    MEMORY_BASIC_INFORMATION region = {};
    const uint8_t* at = nullptr;
    for (; VirtualQuery(at, &region, sizeof region) != 0; at += region.RegionSize) {
        at = static_cast<const uint8_t*>(region.BaseAddress);
        if (region.State != MEM_COMMIT || region.Protect != PAGE_READWRITE)
            continue;
        const uint8_t* const end = at + region.RegionSize;
        for (const uint8_t* p = at; p != end; ++p) {
            p = std::search(p, end, masked.begin(), masked.end(), matches);
            if (p == end)
                break;
            ++count;
        }
    }
    return count;
}

TEST_F(PluginData, TheSecretIsLeftOnlyInTheTextThatIsHandedOver)
{
    bytes masked;
    for (uint32_t i = 0; i < 32; ++i)
        masked.insert(masked.end(), {static_cast<uint8_t>((i * 37 % 89 + 0x21) ^ mask), mask});
    // Repeated, so that a block of the heap which is used again doesn't hide what it held.
    constexpr size_t times = 500;
    bytes list = seq({secret(name, std::string(32 * times, 'x'))});
    for (auto place = std::find(list.begin(), list.end(), 'x'); place != list.end();)
        place = std::transform(masked.begin(), masked.end(), place,
                               [](uint8_t hidden) { return hidden ^ mask; });
    ASSERT_EQ(countInMemory(masked), times); // the host's own: the search works
    const auto initial = std::find(list.begin(), list.end(), 'K');
    for (const char first : {'k', 'K'}) {
        *initial = static_cast<uint8_t>(first);
        agentServer_t server;
        EXPECT_EQ(set(list), S_OK);
        EXPECT_EQ(server.taken()->body.size(), first == 'K' ? 32 * times : 0);
        EXPECT_LE(countInMemory(masked), first == 'K' ? 2 * times : times); // the wide text
    }
}

} // namespace
