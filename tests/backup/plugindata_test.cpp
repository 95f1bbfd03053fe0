#include "backupfixture.h"

#include "agent/discovery.h"
#include "agent/linkfixture.h"

namespace {

const std::wstring name = L"KRS Protected Storage";

bytes secret(const std::wstring& itsName, const std::wstring& value)
{
    const auto* const octet = reinterpret_cast<const char*>(value.data());
    return seq({wide(itsName), octets({octet, octet + 2 * value.size()})});
}

class PluginData : public backupTest
{
protected:
    HRESULT set(const bytes& secrets, const bytes& storage = {0x30, 4, 0x30, 0, 0x30, 0})
    {
        SetEvent(m_objects.acknowledge.get()); // the agent's answer, beforehand
        return m_plugin.SetPluginData(static_cast<ULONG>(secrets.size()), secrets.data(),
                                      static_cast<ULONG>(storage.size()), storage.data());
    }

    const agentObjects_t m_objects{};
    const CKernelHandle m_kept{CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0,
                                                  0x10000, linkSets[0].payload)};
    const blockView_t m_request{linkSets[0].buffer}, m_payload{linkSets[0].payload};
};

TEST_F(PluginData, TheAgentGetsTheFirstSecretOfTheNameOrTheNameAlone)
{
    const bytes triple = seq({wide(name), octets("v"), octets("w")});
    const struct {
        bytes list;
        std::string body;
        int unknown; // items of a wrong shape
    } cases[] = {
        {seq({triple, secret(L"Other", L"o"), secret(name, L"v")}), "v", 1},
        {seq({secret(name, L"1"), secret(name, L"2"), triple}), "1", 0},    // the later ones unread
        {seq({seq({wide(name), octets(std::string("a\0b", 3))})}), "a", 0}, // half a unit behind
        {seq({secret(L"krs protected storage", L"v"), secret(name + L"2", L"v")}), "", 0},
        {seq({octets("x"), seq({}), triple, integer(1)}), "", 4},
        {{0x30, 0x05, 0x01}, "", 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        clear();
        std::fill_n(m_payload.bytes, 100, 'x');
        std::fill_n(m_request.bytes, 100, 'x');
        EXPECT_EQ(set(c.list, seq({seq({filePair(L"new.vlm", "new")}), seq({})})), S_OK);
        const auto& header = *reinterpret_cast<const requestHeader_t*>(m_request.bytes);
        EXPECT_EQ(header.message, restore2DoneMessage());
        EXPECT_STREQ(m_request.bytes + sizeof header, "KRS Protected Storage");
        EXPECT_EQ(m_payload.bytes, c.body);
        EXPECT_EQ(files().size(), 1u);
        const auto messages = m_trace.messages();
        EXPECT_EQ(std::count(messages.begin(), messages.end(), L"U Unknown secret blob"),
                  c.unknown);
    }
    EXPECT_EQ(posted(), postings{});
    ResetEvent(m_objects.dataReady.get());
    EXPECT_EQ(m_plugin.SetPluginData(4, nullptr, 4, seq({seq({})}).data()), E_UNEXPECTED);
    DestroyWindow(m_agent);
    EXPECT_EQ(set({}), S_OK);
    EXPECT_TRUE(traced(L"U VlAgent window NOT found!"));
    EXPECT_EQ(WaitForSingleObject(m_objects.dataReady.get(), 0), WAIT_TIMEOUT); // called by neither
}

// The octets of a secret, which stand nowhere in this program.
constexpr size_t secretSize = 64;
uint8_t secretOctet(size_t index)
{
    return static_cast<uint8_t>(index % 2 ? 0 : index / 2 * 37 % 89 + 0x21);
}

size_t countInMemory() // all memory of the process that can be written
{
    size_t count = 0;
    MEMORY_BASIC_INFORMATION region = {};
    for (const uint8_t* at = nullptr; VirtualQuery(at, &region, sizeof region) != 0;
         at += region.RegionSize) {
        if (region.State != MEM_COMMIT || region.Protect != PAGE_READWRITE)
            continue;
        for (size_t i = 0, same = 0; i < region.RegionSize; ++i) {
            same = at[i] == secretOctet(same) ? same + 1 : at[i] == secretOctet(0);
            count += same == secretSize;
            same %= secretSize;
        }
    }
    return count;
}

TEST_F(PluginData, TheSecretIsLeftOnlyInTheTextThatIsHandedOver)
{
    // Repeated, so that a block of the heap which is used again doesn't hide what it held.
    constexpr size_t times = 500;
    bytes list = seq({secret(name, std::wstring(times * secretSize / 2, L'x'))});
    for (size_t i = 0; i < times * secretSize; ++i) // in place, with no copy left behind
        list[list.size() - times * secretSize + i] = secretOctet(i % secretSize);
    ASSERT_EQ(countInMemory(), times); // the host's own: the search works
    const auto initial = std::find(list.begin(), list.end(), 'K');
    for (const char first : {'k', 'K'}) {
        *initial = static_cast<uint8_t>(first);
        EXPECT_EQ(set(list), S_OK);
        EXPECT_EQ(std::string(m_payload.bytes).size(), first == 'K' ? times * secretSize / 2 : 0);
        EXPECT_LE(countInMemory(), first == 'K' ? 2 * times : times); // the wide text
    }
}

} // namespace
