#include "agent/discovery.h"
#include "backupfixture.h"
#include "support/importhooks.h"
#include "support/linkfixture.h"

namespace {

using namespace std::string_literals;
const std::wstring name = L"KRS Protected Storage";

class PluginData : public backupTest
{
protected:
    HRESULT set(const bytes& secrets, const bytes& storage = {0x30, 4, 0x30, 0, 0x30, 0})
    {
        m_agent.answer();
        return m_plugin.SetPluginData(static_cast<ULONG>(secrets.size()), secrets.data(),
                                      static_cast<ULONG>(storage.size()), storage.data());
    }

    const CKernelHandle m_kept{CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0,
                                                  0x10000, linkSets[0].payload)};
    const blockView_t m_request{linkSets[0].buffer}, m_payload{linkSets[0].payload};
};

TEST_F(PluginData, TheAgentGetsTheFirstSecretOfTheNameOrTheNameAlone)
{
    const bytes triple = seq({wide(name), octets("v"), octets("w")});
    const bytes one = seq({wide(name), octets("s\0e\0c\0"s)}),
                two = seq({wide(name), octets("2\0"s)});
    const bytes others = seq({wide(L"krs protected storage"), octets("o\0"s)});
    const std::tuple<bytes, std::string, int> cases[] = {
        {seq({triple, others, one}), "sec", 1},
        {seq({one, two, triple}), "sec", 0},                 // the later ones unread
        {seq({seq({wide(name), octets("a\0b"s)})}), "a", 0}, // ends in half a unit
        {seq({others, seq({wide(name + L"2"), octets("o\0"s)})}), "", 0},
        {seq({octets("x"), seq({}), triple, integer(1)}), "", 4},
        {{0x30, 0x05, 0x01}, "", 0},
    };
    static size_t kept = 0; // blocks that are freed with the secret in them
    const importHooks_t frees(
        GetModuleHandleW(nullptr), {{"HeapFree"}}, [](const hookedCall_t& call) {
            const auto* const block = reinterpret_cast<const char*>(call.argument(2));
            const std::string_view bytes(block, HeapSize(GetProcessHeap(), 0, block));
            kept += bytes.find("s\0e\0c\0"s) != bytes.npos;
            return false;
        });
    for (const auto& [list, body, unknown] : cases) { // items of a wrong shape
        SCOPED_TRACE(body + ' ' + std::to_string(unknown));
        clear();
        std::fill_n(m_payload.bytes, 100, 'x');
        std::fill_n(m_request.bytes, 100, 'x');
        EXPECT_EQ(set(list, seq({seq({filePair(L"new.vlm", "new")}), seq({})})), S_OK);
        const auto& header = *reinterpret_cast<const RequestHeader*>(m_request.bytes);
        EXPECT_EQ(header.message, restore2DoneMessage());
        EXPECT_STREQ(m_request.bytes + sizeof header, "KRS Protected Storage");
        EXPECT_EQ(m_payload.bytes, body);
        EXPECT_EQ(files().size(), 1u);
        const auto records = m_traces.all();
        EXPECT_EQ(std::ranges::count(records, L"Unknown secret blob", &traceRecord_t::text),
                  unknown);
    }
    EXPECT_EQ(kept, 0u);
    EXPECT_EQ(m_plugin.SetPluginData(4, nullptr, 4, seq({seq({})}).data()), E_UNEXPECTED);
}

} // namespace
