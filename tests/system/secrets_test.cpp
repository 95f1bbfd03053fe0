#include "operations.h"
#include "support/importhooks.h"
#include "support/memorysearch.h"

#include <cstdio>
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

// isIn searches the memory of another process that can be written.
bool isIn(HANDLE process, std::initializer_list<std::string_view> texts)
{
    bool found = false;
    MEMORY_BASIC_INFORMATION region = {};
    for (const char* at = nullptr; VirtualQueryEx(process, at, &region, sizeof region) != 0;
         at += region.RegionSize) {
        const bool isData = region.State == MEM_COMMIT && region.Protect == PAGE_READWRITE;
        std::string bytes(isData ? region.RegionSize : 0, '\0');
        ReadProcessMemory(process, at, bytes.data(), bytes.size(), nullptr);
        for (const std::string_view text : texts)
            found |= bytes.find(text) != std::string::npos;
    }
    return found;
}

size_t calls = 0, failAt = 0;
bool failOne(const hookedCall_t&)
{
    return ++calls == failAt;
}

class Secrets : public installedTest
{
protected:
    // The files of the profile, the traces and the current folder that have one of them.
    std::string filesWith(std::initializer_list<std::string_view> texts) const
    {
        std::string found;
        for (const fs::path& root : {m_root, m_krs, fs::path(_wgetenv(L"TEMP"))})
            for (const auto& entry : fs::recursive_directory_iterator(root)) {
                const std::string bytes = entry.is_regular_file() ? fileBytes(entry) : "";
                for (const std::string_view text : texts)
                    if (bytes.find(text) != std::string::npos)
                        found += entry.path().string() + ' ';
            }
        return found;
    }
};

TEST_F(Secrets, StayInNoMoreThanTheCopiesThatAreNotOverwritten)
{
    const int count = _wgetenv(L"VL_SOAK") ? 200 : 10;
    std::random_device device;
    startAgent();
    const plugin_t plugin;
    const auto restore = plugin.as<IVLKTBackupRestore3>();
    const bytes data = seq({seq({}), seq({})});
    size_t mostWide = 0, mostNarrow = 0;
    EXPECT_TRUE(isIn(m_agent.get(), {wideBytes("vl-test-ready")})) << "the search works";
    for (int i = 0; i < count; ++i) {
        std::minstd_rand random(device());
        std::string secret(60 + random() % 200, ' ');
        for (char& c : secret)
            c = static_cast<char>('!' + random() % 90);
        const std::string whole = wideBytes(secret);
        const std::string value = std::string(whole.size(), '#') + std::string(2, '\0');
        bytes list = seq({seq({wide(L"other"), octets("x")}),
                          seq({wide(L"KRS Protected Storage"), octets(value)})});
        fillIn(list, whole);
        // The front of a freed block is the heap's, so that the search is for what comes later.
        const std::string narrowEnd = secret.substr(24), wideEnd = whole.substr(48);
        ASSERT_EQ(2u, copiesOf(narrowEnd)); // ours
        ASSERT_EQ(3u, copiesOf(wideEnd));
        const std::vector<hookedFunction_t> functions = {{"malloc"},
                                                         {"calloc"},
                                                         {"MapViewOfFile"},
                                                         {"CreateFileMappingW"},
                                                         {"OpenEventW"},
                                                         {"MultiByteToWideChar"},
                                                         {"WideCharToMultiByte"}};
        const importHooks_t hooks(GetModuleHandleW(L"VLOnlineIDs.dll"), functions, failOne);
        calls = 0;
        failAt = i % 2 ? 1 + random() % 60 : 0; // by every other number a call fails
        SCOPED_TRACE(testing::Message() << "secret " << i << ", failing call " << failAt);
        restore->SetPluginData(static_cast<ULONG>(list.size()), list.data(),
                               static_cast<ULONG>(data.size()), data.data());
        failAt = 0;
        const size_t narrowCopies = copiesOf(narrowEnd) - 2, wideCopies = copiesOf(wideEnd) - 3;
        EXPECT_GE(1u, narrowCopies); // the form that is transferred
        EXPECT_GE(2u, wideCopies);   // the list before it is decoded, and the text
        mostNarrow = std::max(mostNarrow, narrowCopies);
        mostWide = std::max(mostWide, wideCopies);
        EXPECT_FALSE(isIn(m_agent.get(), {narrowEnd, wideEnd}));
        EXPECT_EQ("", filesWith({narrowEnd, wideEnd}));
    }
    std::printf("%d secrets: at most %zu narrow and %zu wide copies\n", count, mostNarrow,
                mostWide);
}

} // namespace
