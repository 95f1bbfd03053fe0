#include "operations.h"
#include "support/freshprocess.h"
#include "support/growth.h"

#include <set>

// Each call of the platform and each allocation that an operation makes fails once, one after the
// other, in a process of its own, so that a crash or a hang doesn't end the test. After each one the
// status is an allowed one, nothing is kept, no file is cut and the same operation works again.
//
// VL_STRIDE=1 in the environment takes all allocations, not only a sample.

namespace {

// What a call returns when it fails, and the calls. Those that let something go are left out: they
// don't fail.
const std::pair<ULONGLONG, const char*> failures[] = {
    {0, "calloc FileTimeToLocalFileTime FileTimeToSystemTime malloc MultiByteToWideChar realloc "
        "WideCharToMultiByte WriteFile"},
    {0xFFFFFFFF, "WaitForSingleObject"},
    {~0ULL, "fputs SetFilePointer"}, // INVALID_HANDLE_VALUE and the like
    // From here on those that tracing doesn't make.
    {~0ULL, "CreateFileW FindFirstFileW GetFileSize"},
    {0,
     "_wfopen AddAce ConvertSecurityDescriptorToStringSecurityDescriptorW "
     "ConvertStringSecurityDescriptorToSecurityDescriptorW ConvertStringSidToSidW CopySid "
     "CreateDirectoryW CreateFileMappingW CreateMutexW CreateSemaphoreW DeleteFileW "
     "ExpandEnvironmentStringsW FindNextFileW FindResourceExW FindResourceW FindWindowExW "
     "FormatMessageW GetAce GetDriveTypeW GetEnvironmentVariableW GetFileSizeEx GetLongPathNameW "
     "GetModuleFileNameW GetModuleHandleExW GetModuleHandleW GetProcAddress "
     "GetSecurityDescriptorControl GetSecurityDescriptorDacl GetSecurityDescriptorGroup "
     "GetSecurityDescriptorOwner GetSecurityDescriptorSacl GetSystemDirectoryW "
     "GetTokenInformation GetVersionExW HeapAlloc HeapReAlloc ImpersonateSelf InitializeAcl "
     "InitializeCriticalSectionEx InitializeSecurityDescriptor InitializeSid IsValidSid "
     "LoadLibraryExW LoadLibraryW LoadResource LoadStringW LockResource LookupAccountSidW "
     "MapViewOfFile OpenEventW OpenFileMappingW OpenMutexW OpenProcessToken OpenSemaphoreW "
     "OpenThreadToken PathAppendW PathRemoveFileSpecW PostMessageW ReadFile "
     "RegisterWindowMessageW SafeArrayCreate SetEvent SetSecurityDescriptorControl "
     "SetSecurityDescriptorDacl SetSecurityDescriptorGroup SetSecurityDescriptorOwner "
     "SetSecurityDescriptorSacl ShellExecuteW SizeofResource StringFromGUID2 SysAllocString "
     "SysAllocStringByteLen SysAllocStringLen VirtualQuery"},
    {ERROR_NOT_ENOUGH_MEMORY,
     "GetNamedSecurityInfoW RegCreateKeyExW RegDeleteKeyW RegDeleteValueW RegEnumValueW "
     "RegOpenKeyExW RegQueryInfoKeyW RegQueryValueExW RegSetValueExW SetNamedSecurityInfoW "
     "SetSecurityInfo"},
    {0x8007000E,
     "SafeArrayAccessData SafeArrayCopy SafeArrayGetLBound SafeArrayGetUBound "
     "SafeArrayGetVartype SafeArrayLock SafeArrayPtrOfIndex SafeArrayRedim StringFromCLSID "
     "VariantCopyInd"},
};

std::vector<hookedFunction_t> failing(size_t firstRow = 0)
{
    std::vector<hookedFunction_t> functions;
    for (size_t i = firstRow; i < std::size(failures); ++i)
        for (const auto& function : hookedFunctions(failures[i].second, failures[i].first))
            functions.push_back(function);
    return functions;
}

// The calls of the operation under test, which only its own thread makes.
size_t calls = 0, failAt = 0;
std::string failed;                    // the function
std::vector<size_t>* wanted = nullptr; // receives the calls of a sample
size_t stride = 1;

// A sample has each place that calls the platform, and some of the allocations, which have one place.
void sample(const hookedCall_t& call)
{
    static std::set<ULONGLONG> places;
    const bool isNew = places.insert(call.saved[4]).second;
    if (stride == 1 || isNew || calls % stride == 0)
        wanted->push_back(calls);
}

bool countAndFail(const hookedCall_t& call)
{
    ++calls;
    if (wanted)
        sample(call);
    if (calls != failAt)
        return std::string_view("ShellExecuteW") == call.function; // no programs on the screen
    const auto kinds = shownKinds.find(call.function);
    failed = kinds == shownKinds.end() ? call.function : call.shown(kinds->second);
    std::fprintf(stderr, "call %zu, %s\n", calls, call.function); // the last one is where it ended
    return true;
}

// The tracing mutex is a thread's own, so that another one has to ask.
bool isTracingFree()
{
    wchar_t name[64];
    swprintf(name, 64, L"Global\\VLMAX_tracemutex_%04X", GetCurrentProcessId());
    const CKernelHandle mutex(OpenMutexW(SYNCHRONIZE, FALSE, name));
    bool free = !mutex;
    std::thread([&] {
        if (mutex && WaitForSingleObject(mutex.get(), 0) == WAIT_OBJECT_0)
            free = ReleaseMutex(mutex.get());
    }).join();
    return free;
}

class Faults : public operationsTest, public testing::WithParamInterface<const char*>
{
protected:
    outcome_t failOnce(const plugin_t& plugin, size_t at)
    {
        outcome_t outcome;
        calls = 0;
        failAt = at;
        EXPECT_NO_THROW(outcome = run(plugin, GetParam()));
        failAt = 0;
        return outcome;
    }
    void expectGoodEnd(const outcome_t& outcome, const outcome_t& whole,
                       const std::map<std::string, std::string>& files) const
    {
        const std::set<HRESULT> allowed = {S_OK, E_FAIL, E_UNEXPECTED, E_OUTOFMEMORY,
                                           HRESULT(0x80070008)};
        for (size_t i = 0; i < outcome.statuses.size(); ++i)
            EXPECT_TRUE(allowed.count(outcome.statuses[i]) ||
                        outcome.statuses[i] == whole.statuses[i])
                << failed << ": status " << outcome.statuses[i] << " of call " << i;
        // Without the environment a quick link is stored by another path.
        for (const auto& [name, content] : userFiles())
            EXPECT_TRUE(content.empty() || content == files.at(name) ||
                        failed == "GetEnvironmentVariableW")
                << failed << ": a part is left of " << name;
    }
};

using FaultTraces = operationsTest;

TEST_P(Faults, EndWellAndKeepNothing)
{
    const std::string scenario = GetParam();
    setTracing(scenario.ends_with("+trace"));
    IN_FRESH_PROCESS({
        static std::atomic<size_t> runs{0};
        endWhenStuck(runs);
        // One allocation in so many is taken; 1 for all. A restore's can cut a file.
        const char* const every = getenv("VL_STRIDE");
        stride = every ? std::stoul(every) : scenario == "restore" ? 1 : 29;
        const CLoadedModule policy(LoadLibraryW(m_policyLibrary)); // loading takes long
        const plugin_t plugin;
        const importHooks_t hooks(GetModuleHandleW(L"VLOnlineIDs.dll"), failing(), countAndFail);
        run(plugin, scenario);
        std::vector<size_t> points;
        wanted = &points;
        calls = 0;
        const outcome_t whole = run(plugin, scenario);
        wanted = nullptr;
        points.push_back(calls + 1); // undisturbed
        const auto files = userFiles();
        std::map<std::string, size_t> injected;
        for (const size_t at : points) {
            SCOPED_TRACE(at);
            failed.clear();
            bool isFirst = true;
            const std::string grown = grownBy([&] {
                const outcome_t outcome = failOnce(plugin, at);
                if (std::exchange(isFirst, false))
                    expectGoodEnd(outcome, whole, files);
                // Twice, since a state that the failure left may be seen once.
                EXPECT_TRUE(failed.empty() || failOnce(plugin, 0) == whole ||
                            failOnce(plugin, 0) == whole)
                    << failed << ": it doesn't work again";
            });
            EXPECT_TRUE(grown.empty() || failed == "fputs") // after which the stream stays open
                << failed << ": grows by " << grown;
            EXPECT_TRUE(isTracingFree()) << failed;
            ++injected[failed.substr(0, failed.find(' '))];
            ++runs;
        }
        printRuns(GetParam(), runs);
        for (const auto& [function, times] : injected)
            std::printf("failed %s %zu\n", function.c_str(), times);
    });
}

// The trace of each operation, and what each failing call adds to it and changes in the results, the
// same once in an operation.
// The calls that tracing makes, too, are left out.
TEST_F(FaultTraces, SayWhatFailedAndWhatCameOfIt)
{
    IN_FRESH_PROCESS({
        static std::atomic<size_t> runs{0};
        endWhenStuck(runs);
        const CLoadedModule policy(LoadLibraryW(m_policyLibrary)); // loading takes long
        const plugin_t plugin;
        const HMODULE dll = GetModuleHandleW(L"VLOnlineIDs.dll");
        const importPatch_t ticks(dll, "GetTickCount", // no look at the switch
                                  reinterpret_cast<void*>(+[] { return DWORD{0}; }));
        const importHooks_t hooks(dll, failing(3), countAndFail);
        callAndFail(plugin); // makes the trace
        const size_t header = fileBytes(m_traceFile).find("\r\n.\r\n") + 5;
        std::string all;
        for (const std::string name : {"information", "status", "notification", "backup", "restore",
                                       "pluginData", "registration"}) {
            const auto runOnce = [&](size_t at) {
                fs::resize_file(m_traceFile, header); // each record is put at its end
                calls = 0;
                failAt = at;
                const outcome_t outcome = run(plugin, name);
                failAt = 0;
                return std::pair(outcome, traced());
            };
            runOnce(0);
            const auto [good, usual] = runOnce(0);
            std::set<std::string> known;
            all += name + ":\n" + usual;
            for (size_t at = 1, end = calls; at <= end; ++at, ++runs) {
                const auto [bad, lines] = runOnce(at);
                std::string row;
                std::istringstream text(lines);
                for (std::string line; text >> std::ws && std::getline(text, line);)
                    row += usual.find(line + '\n') == usual.npos ? "; " + line : "";
                for (size_t i = 0; i < std::min(good.statuses.size(), bad.statuses.size()); ++i)
                    if (bad.statuses[i] != good.statuses[i])
                        row += "; status " + std::to_string(bad.statuses[i]);
                row += bad.given == good.given ? "" : "; other results";
                if (!row.empty() && known.insert(failed + row).second)
                    all += ' ' + failed + row.replace(0, 1, " ->") + '\n';
                runOnce(0);
            }
        }
        EXPECT_EQ(expected(L"FAULTS"), all);
        printRuns("traced faults", runs);
    });
}

INSTANTIATE_TEST_SUITE_P(Operations, Faults,
                         testing::Values("creation", "information", "status", "notification",
                                         "registration", "backup", "restore", "pluginData",
                                         "refusals", "status+trace", "backup+trace"));

} // namespace
