#include "installation.h"
#include "neighbours/secretclient.h"
#include "restoremodel.h"
#include "support/agentstub.h"
#include "support/freshprocess.h"

#include <iterator>
#include <random>

// Backups that nobody wrote, and restores, undoings and agents whose process ends.
//
// VL_STRIDE=1 in the environment takes all moments of such a process, and 4,000 backups in place of a
// sample. VL_SEED is the one backup to take.

namespace {

// random_t gives the same numbers for the same seed with every library.
struct random_t : std::mt19937 {
    using std::mt19937::mt19937;
    size_t below(size_t end) { return (*this)() % end; }
    auto& of(auto& list) { return list[below(std::size(list))]; }
};

std::string_view viewOf(const bytes& content)
{
    return {reinterpret_cast<const char*>(content.data()), content.size()};
}

// node_t is an element with a length of its own choice.
struct node_t {
    explicit node_t(const element_t& element) : tag(element.tag)
    {
        for (const element_t& child : elements_t(element.whole))
            children.emplace_back(child);
        content = children.empty() ? element.content : "";
    }
    std::string encoded() const
    {
        std::string inner = content;
        for (const node_t& child : children)
            inner += child.encoded();
        const auto length = static_cast<uint32_t>(inner.size()) + longer;
        const size_t needed = length < 0x80 ? 0 : length < 0x100 ? 1 : length < 0x10000 ? 2 : 4;
        std::string out = {static_cast<char>(tag), static_cast<char>(length)};
        if (needed || lengthOctets)
            out[1] = static_cast<char>(0x80 | lengthOctets.value_or(needed));
        for (size_t i = lengthOctets.value_or(needed); i-- > 0;)
            out += static_cast<char>(i < 4 ? length >> 8 * i : 0);
        return out + inner;
    }
    void list(std::vector<node_t*>& all)
    {
        all.push_back(this);
        for (node_t& child : children)
            child.list(all);
    }

    uint8_t tag;
    std::string content;
    std::vector<node_t> children;
    uint32_t longer = 0;
    std::optional<size_t> lengthOctets;
};

std::vector<std::wstring> hostileNames()
{
    std::vector<std::wstring> names = {std::wstring(300, L'n'), std::wstring(240, L'm') + L".vlm"};
    std::wistringstream list(
        LR"(;.;..;..\up.vlm;..\..\..\..\..\..\top.vlm;own\..\..\side.vlm;C:\hostile\user\abs.vlm;)"
        LR"(C:\hostile\user\shared\team.vlm;C:drive.vlm;Q:\none.vlm;\root.vlm;C:/hostile/mixed\x;)"
        LR"(/hostile/user/slash.vlm;C:\hostile\user\links.txt;C:\hostile\user\own;new.vlm\;nul;)"
        LR"(C:\hostile\none\x.vlm;\\?\C:\hostile\user\long.vlm;\\?\C:\hostile\user\own\..\x.vlm;)"
        LR"(\\.\nul;\\server\share\x.vlm;\\.\pipe\hostile;NUL .vlm;nul\x.vlm;aux.vlm;com9.vlm;)"
        LR"(stream.vlm:x;stream.vlm::$DATA;dot.vlm.;blank.vlm ; .vlm;star*.vlm;quest?.vlm;bar|.vlm;)"
        LR"("<>.vlm;NEW.VLM;BANK.vlm;%TEMP%\x.vlm;alien|;alien|x.vlm;ALIEN|x.vlm;x.EXE;Xexe;)"
        LR"(iexplore.exe -x;)"
        L"com\x00B9.vlm;tab\tline\nreturn\r.vlm;\x1\x1F\x7F.vlm;\x202Emlv.exe;\xD800.vlm");
    for (std::wstring name; std::getline(list, name, L';');)
        names.push_back(name);
    return names;
}
constexpr uint8_t tags[] = {2, 4, 0x0C, 0x13, 0x16, 0x1C, 0x1E, 0x30, 0x31, 0x24, 0x3F, 0};
constexpr uint32_t lengths[] = {1, ~0u, 2, ~2u, 0x7F, 0x7FFFFFFF, 0x80000000};

// What is in use, from the second on of earlier versions.
bytes soundBackup(size_t which)
{
    const std::vector<bytes> files = {filePair(L"new.vlm", "new"), filePair(L"bank.vlm", "bank"),
                                      filePair(LR"(alien|C:\hostile\user\shared\team.vlm)", "team"),
                                      filePair(L"updata.vls", "state")};
    const bytes document = seq({narrow(
        R"({"settings":{"current":{"open_guard_desk_qa":"K","path_dontpromptlist_filename":"l",)"
        R"("show_training_prompt":false,"useGrabbingCreds":true}}})")});
    bytes later = document; // with an element more
    later.insert(later.end(), {0x05, 0x00});
    const bytes backups[] = {
        newLogon(files, document), newLogon(files, seq({integer(1), wide(L"Old"), octets("list")})),
        newLogon(files), newLogon(files, later),
        seq({seq(files), seq({seq({narrow("Old"), narrow("https://old.example"), narrow("bank.vlm"),
                                   integer(1), narrow("m")})})})};
    return backups[which % std::size(backups)];
}

void mutate(node_t& root, random_t& random)
{
    static const std::vector<std::wstring> names = hostileNames();
    std::vector<node_t*> all, texts;
    root.list(all);
    for (node_t* node : all)
        if (node->tag == 0x1E)
            texts.push_back(node);
    node_t& node = *random.of(all);
    const node_t other = *random.of(all);
    std::vector<node_t>& children = node.children;
    const auto place = children.begin() + static_cast<int>(random.below(children.size() + 1));
    const bool isChild = place != children.end();
    const size_t change = random.below(12);
    if (change == 0)
        node.tag = random.of(tags);
    else if (change == 1)
        node.longer = random.of(lengths);
    else if (change == 2)
        node.lengthOctets = random.below(6);
    else if (change == 3 && isChild)
        children.erase(place);
    else if (change == 4)
        children.insert(place, isChild ? *place : other);
    else if (change == 5 && isChild)
        std::swap(*place, children.back());
    else if (change == 6)
        node = other;
    else if (change == 7)
        node.content.resize(random.below(node.content.size() + 3), '"');
    else
        for (node_t* const text : texts)
            if (random.below(3) == 0) {
                const bytes name = wide((random.below(2) ? L"alien|" : L"") + random.of(names));
                text->content = firstElement(viewOf(name))->content;
            }
}

std::string hostileDocument(random_t& random)
{
    static const char* const shapes[] = {"{",
                                         "[1]",
                                         "null",
                                         R"({"settings":1})",
                                         "\xEF\xBB\xBF{}",
                                         R"({"settings":{"current":[1]}})",
                                         "/*a*/{//b\n}//c"};
    static const char* const values[] = {
        "true", "false", "null", "[]", "{}",   "\"\"", "\"0\"",         R"("\u4e00\u0000x")",
        "0",    "-0.0",  "-1",   "1",  "1e-9", "[0]",  R"({"a":null})", "\"\xFF\""};
    if (random.below(8) == 0)
        return random.below(4) ? random.of(shapes) : std::string(5000, '[');
    std::string text = R"({"settings":{"current":{"other":0)";
    for (const char* name : {"open_guard_desk_qa", "path_dontpromptlist_filename",
                             "show_training_prompt", "useGrabbingCreds"})
        if (random.below(2))
            text += ",\"" + std::string(name) + "\":" + random.of(values);
    return text + "}}}";
}

bytes hostileBackup(uint32_t seed)
{
    random_t random(seed);
    const bytes sound = soundBackup(random.below(8));
    node_t root(*firstElement(viewOf(sound)));
    std::vector<node_t*> all;
    root.list(all);
    for (node_t* const node : all)
        if (node->content.starts_with('{') && random.below(2))
            node->content = hostileDocument(random);
    for (size_t i = random.below(6); i-- > 0;)
        mutate(root, random);
    std::string encoded = root.encoded();
    const size_t place = random.below(encoded.size()), change = random.below(6);
    if (change == 0)
        encoded.resize(place);
    else if (change == 1)
        encoded[place] = static_cast<char>(encoded[place] ^ 1 << random.below(8));
    else if (change == 2)
        encoded += "more";
    return {encoded.begin(), encoded.end()};
}

size_t numberOf(const char* variable, size_t otherwise)
{
    const char* const text = getenv(variable);
    return text ? std::stoul(text) : otherwise;
}

std::atomic<size_t> runs{0};

class HostileBackup : public installedTest
{
protected:
    void SetUp() override
    {
        installedTest::SetUp();
        setTracing(0);
        m_first = firstState();
        fs::create_directories(user + L"current");
        fs::current_path(user + L"current");
        SetEnvironmentVariableW(L"APPDATA", LR"(c:\hostile\user)");
    }
    // ready begins a run: nothing is posted to the agent, and it answers.
    void ready() const
    {
        apply(m_first);
        posted();
        ReleaseSemaphore(m_agentStub->semaphore.get(), 1, nullptr); // of a process that ended
        m_agentStub->answer();
    }
    HRESULT restore(const plugin_t& plugin, size_t entry, bytes backup) const
    {
        if (entry == 2) // no secrets, whatever their size
            return plugin.as<IVLKTBackupRestore3>()->SetPluginData(
                9, nullptr, static_cast<ULONG>(backup.size()), backup.data());
        value_t data(backup);
        const auto target = plugin.as<IVLKTBackupRestore2>();
        return entry == 0 ? target->SetStorageData(&data) : target->SetStorageData2(0x10002, &data);
    }
    std::string posted() const
    {
        std::string all;
        const UINT number = RegisterWindowMessageW(restoreDoneName);
        for (MSG one; PeekMessageW(&one, m_agentStub->window, number, number, PM_REMOVE);)
            all += std::to_string(one.wParam) + ' ' + std::to_string(one.lParam);
        return all;
    }
    processResult_t vlhost(const std::wstring& arguments) const
    {
        return process_t(m_built / L"vlhost.exe", arguments).result();
    }
    // endedVlhost ends at that moment of the modules, with status 77 if there is one.
    processResult_t endedVlhost(const std::wstring& arguments, const wchar_t* modules,
                                size_t moment) const
    {
        setHarm(L"end", modules, moment);
        const process_t process(m_built / L"vlhost.exe", arguments, "", CREATE_SUSPENDED);
        process.load(m_built / L"endingcalls.dll");
        process.goOn();
        return process.result();
    }
    void undo(const state_t& wanted) const
    {
        const processResult_t undone = vlhost(L"restore --undo");
        EXPECT_EQ(0u, undone.status) << undone.out << undone.err;
        EXPECT_EQ("", difference(stateNow(), wanted));
    }
    static void setHarm(const wchar_t* harm, const wchar_t* modules, size_t moment)
    {
        SetEnvironmentVariableW(L"VL_HARM", harm);
        SetEnvironmentVariableW(L"VL_MODULES", modules);
        SetEnvironmentVariableW(L"VL_MOMENT", std::to_wstring(moment).c_str());
    }

    state_t m_first;
    std::optional<agentStub_t> m_agentStub;
    const fs::path m_backup = m_root / L"sound.vlb";
    const std::wstring m_restore = L"--plugin \"" + (m_built / L"VLOnlineIDs.dll").wstring() +
                                   L"\" restore \"" + m_backup.wstring() + L'"';
    const fs::path m_copies = fs::path(_wgetenv(L"LOCALAPPDATA")) / L"Veltrano\\KRS\\SafetyCopies";
};

constexpr const char* expectedPosts[] = {"0 0", "1 2", ""}; // by entry

TEST_F(HostileBackup, LeavesWhatTheModelLeaves)
{
    IN_FRESH_PROCESS({
        endWhenStuck(runs);
        m_agentStub.emplace();
        const plugin_t plugin;
        const state_t outside = outsideNow();
        const size_t first = numberOf("VL_SEED", 1);
        const size_t count = getenv("VL_SEED") ? 1 : getenv("VL_STRIDE") ? 4000 : 100;
        for (size_t seed = first; seed < first + count; ++seed, ++runs) {
            SCOPED_TRACE("VL_SEED=" + std::to_string(seed));
            std::fprintf(stderr, "seed %zu\n", seed); // the last one is where it ended
            const bytes backup = hostileBackup(static_cast<uint32_t>(seed));
            const size_t entry = seed % 3;
            ready();
            const HRESULT wantedStatus =
                entry == 2 && backup.empty() ? E_INVALIDARG : model_t().restore(viewOf(backup));
            const state_t wanted = stateNow();
            ready();
            EXPECT_EQ(wantedStatus, restore(plugin, entry, backup));
            EXPECT_EQ("", difference(stateNow(), wanted));
            EXPECT_EQ(wantedStatus == S_OK ? expectedPosts[entry] : "", posted());
        }
        apply(m_first);
        EXPECT_EQ("", difference(outsideNow(), outside));
        printRuns("mutated backups", runs);
    });
}

// eachMoment calls body with a moment's number until nothing happens at that one; in a sample with
// one in so many.
template <class Body> void eachMoment(const std::string& what, size_t sample, Body body)
{
    runs = 0;
    size_t moment = 0;
    for (bool again = true; again; moment += numberOf("VL_STRIDE", sample), ++runs) {
        SCOPED_TRACE(moment);
        again = body(moment);
    }
    printRuns(what.c_str(), runs);
}

class EndedRestore : public HostileBackup, public testing::WithParamInterface<size_t>
{};

TEST_P(EndedRestore, LeavesAStepAndIsTriedAgainOrUndone)
{
    m_agentStub.emplace();
    const size_t entry = GetParam();
    const bytes backup = soundBackup(entry - 1);
    writeFile(m_backup, viewOf(backup));
    std::vector<state_t> steps = {m_first};
    ASSERT_EQ(S_OK, model_t([&] { steps.push_back(stateNow()); }).restore(viewOf(backup)));
    const std::wstring command =
        m_restore + (entry == 2 ? L" --entry plugin-data" : L" --entry 2 --flags 65538");
    const auto modules = entry == 2 ? L"VLOnlineIDs.dll VloSet.dll" // vlhost does the same for both
                                    : L"VLOnlineIDs.dll VloSet.dll vlhost.exe";
    auto step = steps.cbegin();
    eachMoment(
        entry == 2 ? "SetPluginData ended" : "SetStorageData2 ended", 37, [&](size_t moment) {
            fs::remove_all(m_copies);
            ready();
            const auto [status, out, err] = endedVlhost(command, modules, moment);
            const state_t left = stateNow();
            const auto found = std::find(step, steps.cend(), left);
            const bool ended = status == 77;
            EXPECT_TRUE(ended || (status == 0 && left == steps.back())) << out << err;
            if (found == steps.cend())
                ADD_FAILURE() << "it is no step that follows:" << difference(left, *step);
            else
                step = found;
            const std::string post = posted();
            EXPECT_EQ(post,
                      left == steps.back() && !(ended && post.empty()) ? expectedPosts[entry] : "");
            ready();
            if (moment % 2 == 0 && !fs::exists(m_copies / L"1" / L"finished")) {
                EXPECT_EQ(0u, vlhost(command).status);
                EXPECT_EQ("", difference(stateNow(), steps.back()));
            }
            if (fs::exists(m_copies / L"1") || left != m_first)
                undo(m_first);
            return ended;
        });
}

INSTANTIATE_TEST_SUITE_P(Entries, EndedRestore, testing::Values(1, 2));

TEST_F(HostileBackup, UndoThatEndsIsTriedAgainAndLosesNothing)
{
    m_agentStub.emplace();
    writeFile(m_backup, viewOf(soundBackup(0)));
    const fs::path kept = m_root / L"kept", finished = m_copies / L"6" / L"finished";
    for (int i = 0; i < 5; ++i) { // one copy more than stays
        ready();
        EXPECT_EQ(0u, vlhost(m_restore).status);
    }
    const state_t restored = stateNow();
    fs::copy(m_copies, kept, fs::copy_options::recursive);
    eachMoment("undo ended", 37, [&](size_t moment) {
        fs::remove_all(m_copies);
        fs::copy(kept, m_copies, fs::copy_options::recursive);
        apply(restored);
        const auto [status, out, err] =
            endedVlhost(L"restore --undo", L"vlhost.exe VloSet.dll", moment);
        const bool ended = status == 77;
        EXPECT_TRUE(ended || status == 0) << out << err;
        if (!fs::exists(finished))
            undo(m_first);
        EXPECT_EQ("", difference(stateNow(), m_first));
        undo(restored);
        return ended;
    });
}

class BadAgent : public HostileBackup, public testing::WithParamInterface<const wchar_t*>
{
protected:
    // send gives that secret to the agent.
    static void send(const plugin_t& plugin, const std::wstring& secret)
    {
        const auto first = reinterpret_cast<const char*>(secret.c_str());
        const bytes list = seq({seq({wide(L"KRS Protected Storage"),
                                     octets({first, (secret.size() + 1) * sizeof(wchar_t)})})});
        EXPECT_EQ(S_OK, setPluginData(plugin, list, seq({seq({}), seq({})})));
    }
    static std::wstring stored()
    {
        const CSecretClient store;
        uint32_t size = 0;
        store.Size(L"KRS Protected Storage", size);
        CSecretBytes value(size);
        store.Read(L"KRS Protected Storage", value);
        return {reinterpret_cast<const wchar_t*>(value.bytes.data()), size / sizeof(wchar_t) - 1};
    }
};

TEST_P(BadAgent, KeepsNoClientAndLosesNoSecret)
{
    IN_FRESH_PROCESS({
        endWhenStuck(runs);
        const plugin_t plugin;
        const std::wstring harm = GetParam();
        const bool ends = harm == L"end"; // or does harm before a call only
        eachMoment("agent: " + utf8FromWide(harm), 7, [&](size_t moment) {
            const std::wstring secret = L"secret " + std::to_wstring(moment);
            setHarm(harm.c_str(), L"vlagent.exe VLFPApi.dll", ends ? moment : 2 * moment);
            startAgent();
            m_agent->load(m_built / L"endingcalls.dll");
            std::jthread client([&] {
                send(plugin, secret);
                process_t(m_built / L"vlagent.exe", L"--quit").result();
            });
            const auto [status, out, err] = m_agent->result();
            const bool done = ends ? status == 77 : err.starts_with("done");
            EXPECT_TRUE(done || status == 0) << out << err;
            startAgent();
            client.join();
            if (ends) {
                EXPECT_EQ(secret, stored());
            }
            stopAgent();
            startAgent();
            send(plugin, L"later " + secret);
            EXPECT_EQ(L"later " + secret, stored());
            stopAgent();
            return done;
        });
    });
}

INSTANTIATE_TEST_SUITE_P(Harm, BadAgent, testing::Values(L"end", L"answer", L"rewrite"));

} // namespace
