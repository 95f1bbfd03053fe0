#include "host.h"
#include "support/manuals.h"
#include "support/memorysearch.h"
#include "vlhost/secretstore.h"

#include <fcntl.h>
#include <io.h>
#include <unzip.h>

#include <algorithm>

#include <json/reader.h>

// What a user and who helps get of an installation: doctor, drill, bundle, and the program's manuals.

namespace {

TEST_F(Host, DrillProvesABackupAndTouchesNothing)
{
    const agent_t agent;
    const std::wstring team = folder + L"shared\\team.vlm", deep(180, L'd');
    writeFile(team, "team");
    for (const std::wstring& name : {std::wstring(59, L'n'), std::wstring(4, L'n')})
        writeFile(folder + deep + L'\\' + name + L".vlm", "deep"); // the longest name
    writeFile(folder + std::wstring(240, L'n') + L".vlm", "long");
    hostText(L"setting set path_alienstorage_dirs \"C:\\vlhost test\\shared|C:\\vlhost test\\" +
             deep + L"|C:\\vlhost test\"");
    hostText(L"backup shared.vlb --force");
    writeFile(L"slashed.vlb",
              renamed(fileBytes(L"shared.vlb"), team, L"C:/vlhost test/shared/team.vlm"));
    writeFile(L"twice.vlb", renamed(m_good, L"Köln.", L"bank."));
    const bool bankIsFirst = m_good.find(utf16(L"bank.")) < m_good.find(utf16(L"Köln."));
    change();
    writeFile(L"shared\\team.vlm", "changed");
    const std::string heard = fileBytes(L"journal.jsonl"); // by the agent
    const auto before = state();
    const auto left = [] {
        state_t all;
        addFiles(all, (fs::temp_directory_path() / L"").wstring(), 0, false);
        addValues(all, HKEY_CURRENT_USER, L"SOFTWARE\\Veltrano-Drill");
        std::erase_if(all,
                      [](const auto& one) { return one.first.find(L"rill") == one.first.npos; });
        return difference(all, {});
    };
    for (const wchar_t* file : {L"good.vlb", L"shared.vlb", L"slashed.vlb"})
        EXPECT_TRUE(has(hostText(std::wstring(L"drill ") + file), "come back"));
    refused(L"drill twice.vlb");
    EXPECT_EQ("", left());
    const process_t ended(bin / L"vlhost.exe", L"drill shared.vlb");
    while (ended.runs(0) && left().empty())
        SwitchToThread();
    ended.kill();
    expectState(before);
    EXPECT_EQ("changed", fileBytes(L"shared\\team.vlm"));
    EXPECT_EQ(heard, fileBytes(L"journal.jsonl"));
    hostText(L"drill good.vlb"); // which removes what the other left
    EXPECT_EQ("", left());
    fs::remove_all(folder + deep);
    fs::remove(folder + std::wstring(240, L'n') + L".vlm");
    hostText(L"setting set path_alienstorage_dirs \"\"");
    fs::rename(folder + L"own",
               folder + L"own of later"); // a machine on which nothing was stored yet
    expectIn(hostText(L"drill slashed.vlb"), {"warning: C:/vlhost test/shared/team.vlm: outside"});
    EXPECT_FALSE(fs::exists(folder + L"own"));
    fs::rename(folder + L"own of later", folder + L"own");
    hostText(L"restore twice.vlb --force"); // which compares what it left with its plan
    EXPECT_EQ(bankIsFirst ? "post" : "bank", fileBytes(L"own\\bank.vlm")) << "the last one stays";
}

TEST_F(Host, BundleHasNothingOfTheUsers)
{
    writeFile(L"own\\Zwölfender.vlm", "galumphing");
    writeFile(L"never.txt", "https://mimsy.example/\r\n");
    writeFile(L"links.txt", "[ShortCutRecord]\r\nUrl=https://vorpal.example/\r\nName=Jabberwock\r\n"
                            "Profile=1\r\nManifest=C:\\vlhost test\\own\\Zwölfender.vlm\r\n"
                            "ManifestID=frumious\r\n");
    setValue(HKEY_CURRENT_USER, categoriesKey, L"Xylophone", L"borogoves");
    for (const wchar_t older : {L'1', L'2', L'3', L'4', L'5', L'6'})
        writeFile(L"bundled\\h.x64.vlonlineids.dll~~01.02.06_at_03.04.05.00" +
                      std::wstring(1, older) + L"~~1.1.trc3",
                  "trace3\r\n.\r\n");
    hostText(L"trace on --dir \"C:\\vlhost test\\bundled\"");
    hostText(L"backup users.vlb --force");
    const agent_t agent;
    hostText(L"restore users.vlb --entry plugin-data --secret-from 0", "slithytoves");
    hostText(L"trace off");
    hostText(L"bundle support.zip --force");
    const unzFile archive = unzOpen("support.zip");
    ASSERT_TRUE(archive);
    std::map<std::string, std::string> entries;
    for (int at = unzGoToFirstFile(archive); at == UNZ_OK; at = unzGoToNextFile(archive)) {
        char name[64] = "";
        unz_file_info info;
        std::string content(1 << 22, '\0');
        unzGetCurrentFileInfo(archive, &info, name, sizeof name, nullptr, 0, nullptr, 0);
        unzOpenCurrentFile(archive);
        unzReadCurrentFile(archive, content.data(), 1 << 22);
        unzCloseCurrentFile(archive);
        std::erase(content, '\0'); // of wide texts, and after the end
        entries[name] = std::move(content);
    }
    unzClose(archive);
    ASSERT_TRUE(entries.contains("trace-5.txt") && entries["backup.vlb"].size() > 100);
    std::string traces; // the newest
    for (const char number : {'1', '2', '3', '4', '5'})
        traces += entries[std::string("trace-") + number + ".txt"];
    EXPECT_TRUE(has(traces, " > CVLKTPages::GetStorageData\n"));
    EXPECT_TRUE(has(entries["doctor.json"], "\"settings provider\""));
    for (const auto& [name, content] : entries)
        for (const char* word : {"fender", "galumph", "mimsy", "vorpal", "abberwock", "frumious",
                                 "ylophone", "borogoves", "slithy", "vlhost test", "users\\"})
            EXPECT_FALSE(has(content, word)) << name << ": " << word;
    hostText(L"secret delete");
}

TEST_F(Host, SecretsAreGoneAfterUse)
{
    const std::string secret = unusualOctets(90), end = secret.substr(40);
    std::string wideEnd(end.size() * 2, '\0');
    for (size_t i = 0; i < end.size(); ++i)
        wideEnd[i * 2] = end[i];
    writeFile(L"secret", secret);
    const size_t narrow = copiesOf(end), wide = copiesOf(wideEnd);
    const int file = _wopen(L"secret", _O_RDONLY | _O_BINARY);
    {
        const CSecretBytes list = encodeSecretList(protectedStorage, readSecretFrom(file));
        EXPECT_LT(wide, copiesOf(wideEnd)) << "the search works";
    }
    _close(file);
    EXPECT_GE(narrow, copiesOf(end));
    EXPECT_GE(wide, copiesOf(wideEnd));
}

TEST_F(Host, ManualsAreWhole)
{
    for (const std::string program : {"vlhost", "vlsetup"})
        expectManuals(program, [&](const commandLine_t& words) {
            std::wstring line;
            for (const std::string& word : words)
                line += wideFromUtf8(word) + L' ';
            return process_t(bin / (program + ".exe"), line).result().out;
        });
}

} // namespace
