#include "backupfixture.h"

#include "agent/discovery.h"

namespace {

const bytes storage = seq({seq({filePair(L"new.vlm", "new")}), seq({})});
const std::wstring name = L"KRS Protected Storage";

// sharedText is a block of the agent's, which stays with the program.
char* sharedText(const wchar_t* block, DWORD size)
{
    const HANDLE handle =
        CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, size, block);
    return static_cast<char*>(MapViewOfFile(handle, FILE_MAP_WRITE, 0, 0, 0));
}

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
    HRESULT set(const bytes& secrets)
    {
        return m_plugin.SetPluginData(static_cast<ULONG>(secrets.size()), secrets.data(),
                                      static_cast<ULONG>(storage.size()), storage.data());
    }

    // An agent that has acknowledged every request beforehand.
    const CKernelHandle m_acknowledge{CreateEventW(nullptr, TRUE, TRUE, linkSets[0].acknowledge)};
    const CKernelHandle m_ready{CreateEventW(nullptr, TRUE, FALSE, linkSets[0].dataReady)};
    char* const m_request = sharedText(linkSets[0].buffer, linkSets[0].bufferSize);
    char* const m_payload = sharedText(linkSets[0].payload, 0x10000);
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
        {seq({secret(name, "1"), secret(name, "2"), triple}), "1", 0},      // the later ones unread
        {seq({seq({wide(name), octets(std::string("a\0b", 3))})}), "a", 0}, // half a unit behind
        {seq({secret(L"krs protected storage", "v"), secret(name + L"2", "v")}), "", 0},
        {seq({octets("x"), seq({}), triple, integer(1)}), "", 4},
        {{0x30, 0x05, 0x01}, "", 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        clear();
        m_trace.messages();
        std::fill_n(m_payload, 100, 'x');
        std::fill_n(m_request, 100, 'x');
        EXPECT_EQ(set(c.list), S_OK);
        requestHeader_t header = {};
        std::copy_n(m_request, sizeof header, reinterpret_cast<char*>(&header));
        EXPECT_EQ(header.message, restore2DoneMessage());
        EXPECT_STREQ(m_request + sizeof header, "KRS Protected Storage");
        EXPECT_EQ(m_payload, c.body);
        EXPECT_EQ(files().size(), 1u);
        const auto messages = m_trace.messages();
        EXPECT_EQ(std::count(messages.begin(), messages.end(), L"U Unknown secret blob"),
                  c.unknown);
    }
    EXPECT_EQ(posted(), postings{});
    DestroyWindow(m_agent);
    EXPECT_EQ(set({}), S_OK);
    EXPECT_TRUE(traced(L"U VlAgent window NOT found!"));
}

TEST_F(PluginData, ARefusedBackupReachesNobody)
{
    EXPECT_EQ(m_plugin.SetPluginData(4, nullptr, 4, seq({seq({})}).data()), E_UNEXPECTED);
    EXPECT_TRUE(traced(L"E -2147418113 SetPluginData[com]"));
    EXPECT_EQ(WaitForSingleObject(m_ready.get(), 0), WAIT_TIMEOUT);
}

// countInMemory counts a text in all memory of the process that can be written. The text is masked,
// so that the search doesn't find its own.
constexpr uint8_t mask = 0xA5;

size_t countInMemory(const bytes& masked)
{
    const auto matches = [](uint8_t plain, uint8_t hidden) { return plain == (hidden ^ mask); };
    size_t count = 0;
    MEMORY_BASIC_INFORMATION region = {};
    for (const uint8_t* at = nullptr; VirtualQuery(at, &region, sizeof region) != 0;) {
        const auto* p = static_cast<const uint8_t*>(region.BaseAddress);
        at = p + region.RegionSize;
        if (region.State != MEM_COMMIT || region.Protect != PAGE_READWRITE)
            continue;
        for (; (p = std::search(p, at, masked.begin(), masked.end(), matches)) != at; ++p)
            ++count;
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
        EXPECT_EQ(set(list), S_OK);
        EXPECT_EQ(std::string(m_payload).size(), first == 'K' ? 32 * times : 0);
        EXPECT_LE(countInMemory(masked), first == 'K' ? 2 * times : times); // the wide text
    }
}

} // namespace
