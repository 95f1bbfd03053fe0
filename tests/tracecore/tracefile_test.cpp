#include "tracedecoder.h"
#include "tracefixture.h"

#include "common/module.h"
#include "common/text.h"
#include "tracecore/sinks.h"
#include "tracecore/tracefilename.h"
#include "tracecore/traceheader.h"

#include <regex>

using namespace tracecore;

namespace {

using strings = std::vector<std::string>;

class TraceFile : public tracingFixture
{
protected:
    // The records written by body into a file of its own, off again so that the file is closed.
    template <class Body> decodedTrace_t traced(Body body)
    {
        const std::filesystem::path path = traceTo(L"t.trc3");
        body();
        setNumber(L"DoTrace", 0);
        follow();
        return decodeTrace(bytesOf(path));
    }

    CFileHandle createFile(const wchar_t* name)
    {
        return CFileHandle(CreateFileW((folder / name).c_str(), GENERIC_READ | GENERIC_WRITE,
                                       FILE_SHARE_READ, nullptr, CREATE_ALWAYS, 0, nullptr));
    }
};

TEST_F(TraceFile, StampsComeWithTheEntryTimesAndOnlyWhenTheTimeChanges)
{
    at(2017, 7, 14, 23, 59, 59, 998);
    const decodedTrace_t trace = traced([this] {
        traceScope_t outer("outer");
        {
            traceScope_t silent("silent");
        }
        at(2017, 7, 14, 23, 59, 59, 999);
        traceScope_t inner("inn\xC3\xA9r");
        at(2017, 7, 15, 0, 0, 0, 0);
        traceText("one \xE2\x82\xAC");
        traceStatusW(L"two", E_ACCESSDENIED);
        at(2017, 7, 15, 0, 0, 1, 0);
    });
    EXPECT_EQ(trace.lines(),
              (strings{"t 07/14/17", "T 23:59:59.998", "> outer", "T 23:59:59.999",
                       "> inn\xC3\xA9r", "t 07/15/17", "T 00:00:00.000", "U one \xE2\x82\xAC",
                       "E -2147024891 two", "T 00:00:01.000", "< ", "< "}));
    EXPECT_EQ(trace.records.back().thread, GetCurrentThreadId());
}

TEST_F(TraceFile, LaterWriterAppendsANoteAndANewFileStartsWithTheHeader)
{
    at(2017, 7, 14, 1, 2, 3, 4);
    const auto say = [](const char* text) {
        traceScope_t scope("f");
        SetLastError(4321);
        traceText(text);
        EXPECT_EQ(GetLastError(), 4321u); // opening the file set another
    };
    setNumber(L"NewFileAlways", 0);
    traced([&] { say("first"); });
    lastStamp = {};
    decodedTrace_t trace = traced([&] { say("second"); });
    EXPECT_EQ(trace.lines(),
              (strings{"t 07/14/17", "T 01:02:03.004", "> f", "U first", "< ", "N 07-14-2017",
                       "t 07/14/17", "T 01:02:03.004", "> f", "U second", "< "}));
    setNumber(L"NewFileAlways", 1);
    trace = traced([&] { say("third"); });
    EXPECT_EQ(trace.lines(), (strings{"> f", "U third", "< "}));
}

TEST_F(TraceFile, FileThatCannotBeOpenedSilencesTheProcessForGood)
{
    traceTo(L"missing\\t.trc3");
    traceText("lost");
    EXPECT_TRUE(theTracer().fileFailed);
    setNumber(L"NewFileAlways", 0);
    const std::filesystem::path path = traceTo(L"t.trc3");
    ASSERT_EQ(sinkKind, sinkFileAppend);
    traceText("lost as well");
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(TraceFile, RecordHoldsTheTextUpToTheLengthThatItsFieldCanTell)
{
    const struct {
        size_t length, told;
    } cases[] = {{0, 0},     {1, 1},         {8, 8},     {349, 349},
                 {350, 350}, {65535, 65535}, {65536, 0}, {65546, 10}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.length);
        std::string text(c.length, 'x');
        for (size_t i = 0; i < text.size(); ++i)
            text[i] = static_cast<char>('a' + i % 23);
        {
            const CFileHandle file = createFile(L"record");
            writeRecord(file.get(), 'U', wideFromUtf8(text));
        }
        const std::string bytes = bytesOf(folder / L"record");
        ASSERT_EQ(bytes.size(), c.length + 7);
        const decodedTrace_t trace = decodeTrace(".\r\n" + bytes.substr(0, 7 + c.told));
        EXPECT_EQ(trace.records.at(0).text, text.substr(0, c.told));
        EXPECT_EQ(bytes.find_first_not_of('\0', 7 + c.told), std::string::npos);
    }
    writeRecord(INVALID_HANDLE_VALUE, 'U', L"nowhere");
}

TEST_F(TraceFile, Header)
{
    static DWORD platform, major, minor;
    const importPatch_t version = fake(
        "GetVersionExA", +[](OSVERSIONINFOA* info) -> BOOL {
            info->dwPlatformId = platform;
            info->dwMajorVersion = major;
            info->dwMinorVersion = minor;
            lstrcpyA(info->szCSDVersion, "Service Pack 3");
            return TRUE;
        });
    at(2017, 7, 4, 1, 2, 3, 45);
    const auto header = [this] {
        const CFileHandle file = createFile(L"header");
        writeTraceHeader(file.get(), GetModuleHandleW(L"kernel32.dll"));
        return decodeTrace(bytesOf(folder / L"header")).header;
    };
    platform = 2, major = 6, minor = 2;
    strings lines = header();
    char machine[64] = {};
    DWORD size = sizeof machine;
    GetComputerNameA(machine, &size);
    ASSERT_EQ(lines.size(), 11u);
    EXPECT_TRUE(std::regex_match(
        lines[1], std::regex(R"(Compiled: [A-Z][a-z]{2} [ \d]\d \d{4} \d\d:\d\d:\d\d)")));
    EXPECT_TRUE(std::regex_match(lines[6], std::regex(R"(FileVersion: \d+\.\d+\.\d+\.\d+)")));
    lines.erase(lines.begin() + 6);
    lines.erase(lines.begin() + 1);
    EXPECT_EQ(lines,
              (strings{"trace3", "OS: UNKNOWN OS(Major:6 Minor:2)", "ServicePack: Service Pack 3",
                       std::string("Machine name: ") + machine, "Trace Ver: 3.0.2",
                       "No Veltrano products found", "installation: NETWORK",
                       "07/04/2017 01:02:03.045", "."}));

    const DWORD zero = 0;
    const std::wstring longVersion(255, L'v');
    const std::wstring longName = L"Long" + std::wstring(50, L'n');
    setValue(L"Products\\Good", L"Version", REG_SZ, L"8.1", 8);
    setValue(L"Products\\" + longName, L"Version", REG_SZ, longVersion.c_str(), 512);
    setValue(L"Products\\None", L"Other", REG_DWORD, &zero, 4);
    setValue(L"Products\\Number", L"Version", REG_DWORD, &zero, 4);
    RegSetKeyValueW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Policies\\Veltrano", L"NetworkSupport",
                    REG_DWORD, &zero, 4);
    const struct {
        DWORD platform, major, minor;
        const char* line;
    } systems[] = {
        {2, 5, 0, "OS: Windows2000"}, {2, 5, 1, "OS: WindowsXP"},
        {2, 5, 2, "OS: Server2003"},  {2, 4, 7, "OS: NT4"},
        {1, 4, 0, "OS: Windows95"},   {1, 4, 10, "OS: Windows98"},
        {1, 4, 90, "OS: WindowsMe"},  {1, 4, 1, "OS: UNKNOWN OS(Major:4 Minor:1)"},
    };
    for (const auto& s : systems) {
        platform = s.platform, major = s.major, minor = s.minor;
        lines = header();
        EXPECT_EQ(lines[2], s.line);
    }
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Policies\\Veltrano");
    std::string cut = "Product: " + utf8FromWide(longName) + "; Version: " + std::string(255, 'v');
    cut.resize(258);
    EXPECT_EQ(strings(lines.begin() + 7, lines.end() - 2),
              (strings{"Product: Good; Version: 8.1", cut, "Product: None; Version: ERROR(0x2)",
                       "Product: Number; Version: ERROR(0xD)", "installation: LOCAL"}));
}

TEST_F(TraceFile, NameRules)
{
    static std::wstring program_;
    program_ = L"C:\\Apps\\host.exe";
    const importPatch_t names = fake(
        "GetModuleFileNameW", +[](HMODULE module, wchar_t* path, DWORD size) -> DWORD {
            lstrcpynW(path, module ? L"C:\\Apps\\My\\VLOnlineIDs.DLL" : program_.c_str(),
                      static_cast<int>(size));
            return static_cast<DWORD>(lstrlenW(path));
        });
    at(2017, 7, 14, 15, 59, 4, 123);
    DWORD session = 0;
    ProcessIdToSessionId(GetCurrentProcessId(), &session);
    const std::wstring shared = std::to_wstring(session) + L".0.trc3";
    const std::wstring stamped = L"~~07.14.17_at_15.59.04.123~~" + std::to_wstring(session) + L"." +
                                 std::to_wstring(GetCurrentProcessId()) + L".trc3";
    const std::wstring mine = L"C:\\Apps\\My\\";
    const std::wstring deep = (folder / L"a" / L"b").wstring();
    std::wstring slashes = deep;
    slashes[2] = L'/';
    std::wstring unified = deep;
    std::replace(unified.begin(), unified.end(), L'\\', L'/');
    const struct {
        const wchar_t* program;
        bool newFile, ie1, noTimestamp;
        std::wstring name, path, result;
    } cases[] = {
        {L"C:\\host.exe", true, true, false, L"  C:\\x y  ", L"", L"C:\\x y"},
        {L"C:\\host.exe", false, true, true, L"   ", L"",
         mine + L"host.x64.vlonlineids.dll" + shared},
        {L"C:\\host.exe", true, true, true, L"", L"", mine + L"host.x64.vlonlineids.dll" + stamped},
        {L"C:\\host.exe", false, true, false, L"", L" ",
         mine + L"host.x64.vlonlineids.dll" + stamped},
        {L"C:\\a.b.exe", false, true, true, L"", deep,
         deep + L"\\a.b.x64.vlonlineids.dll" + shared},
        {L"C:\\dot.", false, true, true, L"", slashes,
         unified + L"/dot..x64.vlonlineids.dll" + shared},
        {L"C:\\iexplore.exe", false, false, true, L"", L"",
         mine + L"iexplore.x64.vlonlineids.dll" + shared},
        {L"C:\\IExplore.exe.exe", false, false, true, L"", L"",
         mine + L"IExplore.exe.x64.vlonlineids.dll" + stamped},
        {L"C:\\iexplore.exe.exe", false, true, true, L"", L"",
         mine + L"iexplore.exe.x64.vlonlineids.dll" + shared},
    };
    for (const auto& c : cases) {
        program_ = c.program;
        EXPECT_EQ(
            composeTraceFileName(thisModule(), c.newFile, c.ie1, c.noTimestamp, c.name, c.path),
            c.result);
    }
    EXPECT_TRUE(std::filesystem::is_directory(deep));
}

} // namespace
