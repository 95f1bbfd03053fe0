#include "operations.h"
#include "support/importhooks.h"
#include "support/memorysearch.h"

#include <random>

// Where a secret is after it has passed: in the host's memory, at most the copies that nobody
// overwrites; nowhere else.
//
// VL_SOAK in the environment takes 200 secrets.

namespace {

std::string wideBytes(const std::string& text)
{
    std::string wide(text.size() * 2, '\0'); // at once, so that no part of it stays elsewhere
    for (size_t i = 0; i < text.size(); ++i)
        wide[i * 2] = text[i];
    return wide;
}

// memoryOf gives what another process can write.
std::string memoryOf(HANDLE process)
{
    std::string all;
    MEMORY_BASIC_INFORMATION region = {};
    for (const char* at = nullptr; VirtualQueryEx(process, at, &region, sizeof region) != 0;
         at += region.RegionSize) {
        const bool isData = region.State == MEM_COMMIT && region.Protect == PAGE_READWRITE;
        std::string bytes(isData ? region.RegionSize : 0, '\0');
        ReadProcessMemory(process, at, bytes.data(), bytes.size(), nullptr);
        all += bytes;
    }
    return all;
}

size_t calls = 0, failAt = 0;
bool failOne(const hookedCall_t&)
{
    return ++calls == failAt;
}

using Secrets = installedTest;

TEST_F(Secrets, StayInNoMoreThanTheCopiesThatAreNotOverwritten)
{
    std::random_device device;
    startAgent();
    const plugin_t plugin;
    const bytes data = seq({seq({}), seq({})});
    EXPECT_NE(std::string::npos, memoryOf(m_agent->handle()).find(wideBytes("vl-test-ready")));
    for (int i = 0; i < (_wgetenv(L"VL_SOAK") ? 200 : 10); ++i) {
        std::minstd_rand random(device());
        std::string secret(60 + random() % 200, ' ');
        for (char& c : secret)
            c = static_cast<char>('!' + random() % 90);
        const std::string whole = wideBytes(secret);
        const std::string value = std::string(whole.size(), '#') + std::string(2, '\0');
        bytes list = seq({seq({wide(L"other"), octets("x")}),
                          seq({wide(L"KRS Protected Storage"), octets(value)})});
        // In place, so that nothing else has it.
        std::copy(whole.begin(), whole.end(),
                  std::search_n(list.begin(), list.end(), whole.size(), '#'));
        // The front of a freed block is the heap's, so that the search is for what comes later.
        const std::string narrowEnd = secret.substr(24), wideEnd = whole.substr(48);
        ASSERT_EQ(2u, copiesOf(narrowEnd)); // ours
        ASSERT_EQ(3u, copiesOf(wideEnd));
        const importHooks_t hooks(
            GetModuleHandleW(L"VLOnlineIDs.dll"),
            hookedFunctions("malloc calloc MapViewOfFile CreateFileMappingW OpenEventW "
                            "MultiByteToWideChar WideCharToMultiByte"),
            failOne);
        calls = 0;
        failAt = i % 2 ? 1 + random() % 60 : 0; // by every other number a call fails
        SCOPED_TRACE(testing::Message() << "secret " << i << ", failing call " << failAt);
        setPluginData(plugin, list, data);
        failAt = 0;
        EXPECT_GE(2u + 1u, copiesOf(narrowEnd)); // the form that is transferred
        EXPECT_GE(3u + 2u, copiesOf(wideEnd));   // the list before it is decoded, and the text
        const auto expectIsNotIn = [&](const std::string& bytes, const std::string& place) {
            for (const std::string& text : {narrowEnd, wideEnd})
                EXPECT_EQ(std::string::npos, bytes.find(text)) << place;
        };
        expectIsNotIn(memoryOf(m_agent->handle()), "the agent");
        std::error_code gone; // files of other programs may go meanwhile
        for (const fs::path& root : {m_root, m_krs, fs::path(_wgetenv(L"TEMP"))})
            for (fs::recursive_directory_iterator entry(root, gone), end; entry != end;
                 entry.increment(gone))
                expectIsNotIn(entry->is_regular_file(gone) ? fileBytes(*entry) : "",
                              entry->path().string());
    }
}

} // namespace
