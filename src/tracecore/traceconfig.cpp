#include "tracecore/traceconfig.h"

#include "common/lasterror.h"
#include "common/module.h"
#include "common/osversion.h"
#include "common/scoped.h"
#include "tracecore/realtracer.h"
#include "tracecore/tracefilename.h"

#include <ctime>
#include <list>
#include <mutex>
#include <optional>

namespace tracecore {

namespace {

constexpr uint32_t pollInterval = 30000; // milliseconds
constexpr wchar_t switchName[] = L"DoTrace";

CRegistryKey openTracing(REGSAM access)
{
    CRegistryKey key;
    RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Veltrano\\Tracing", 0, access, key.put());
    return key;
}

bool readNumber(const CRegistryKey& key, const wchar_t* name, DWORD& number) noexcept
{
    DWORD value = 0;
    DWORD type = REG_NONE;
    DWORD size = sizeof value;
    if (!key ||
        RegQueryValueExW(key.get(), name, nullptr, &type, reinterpret_cast<BYTE*>(&value), &size))
        return false;
    if (type != REG_DWORD || size != sizeof value)
        return false;
    number = value;
    return true;
}

DWORD numberOf(const CRegistryKey& key, const wchar_t* name, DWORD missing) noexcept
{
    readNumber(key, name, missing);
    return missing;
}

std::optional<DWORD> readSwitch() noexcept
{
    DWORD value = 0;
    return readNumber(openTracing(KEY_READ), switchName, value) ? std::optional(value)
                                                                : std::nullopt;
}

bool isExpired(DWORD value) noexcept
{
    return value != 1 && daysUntil(value) <= 0;
}

std::wstring textOf(const CRegistryKey& key, const wchar_t* name)
{
    std::wstring text;
    DWORD type = REG_NONE;
    DWORD size = 0;
    LSTATUS error = key ? RegQueryValueExW(key.get(), name, nullptr, &type, nullptr, &size)
                        : ERROR_FILE_NOT_FOUND;
    do {
        if (error && error != ERROR_MORE_DATA)
            return {};
        text.resize(size / sizeof(wchar_t) + 1); // the value may have grown, or lack its zero
        size = static_cast<DWORD>(text.size() * sizeof(wchar_t));
        error = RegQueryValueExW(key.get(), name, nullptr, &type,
                                 reinterpret_cast<BYTE*>(text.data()), &size);
    } while (error);
    if (type != REG_SZ && type != REG_EXPAND_SZ)
        return {};
    text.resize(size / sizeof(wchar_t));
    return text.substr(0, text.find(L'\0'));
}

std::wstring expandedOf(const CRegistryKey& key, const wchar_t* name)
{
    const std::wstring text = textOf(key, name);
    if (text.empty())
        return {};
    const DWORD size = ExpandEnvironmentStringsW(text.c_str(), nullptr, 0);
    std::wstring expanded(size, L'\0');
    const DWORD got = ExpandEnvironmentStringsW(text.c_str(), expanded.data(), size);
    if (got == 0 || got > size)
        return {};
    return expanded.substr(0, got - 1);
}

// named is true if a subkey of the tracing key has a value of this name; false, too, if there is no
// such key.
bool named(const CRegistryKey& tracing, const wchar_t* subkey, const std::wstring& name)
{
    CRegistryKey key;
    if (RegOpenKeyExW(tracing.get(), subkey, 0, KEY_READ, key.put()))
        return false;
    for (DWORD i = 0;; ++i) {
        wchar_t value[261] = {};
        DWORD length = static_cast<DWORD>(std::size(value));
        const LSTATUS error =
            RegEnumValueW(key.get(), i, value, &length, nullptr, nullptr, nullptr, nullptr);
        if (error == ERROR_MORE_DATA) // too long for a component's name
            continue;
        if (error)
            return false;
        if (CompareStringOrdinal(value, static_cast<int>(length), name.data(),
                                 static_cast<int>(name.size()), TRUE) == CSTR_EQUAL)
            return true;
    }
}

bool dayOf(int64_t time, int64_t& day) noexcept
{
    const __time64_t seconds = time;
    tm fields{};
    if (_localtime64_s(&fields, &seconds))
        return false;
    fields.tm_hour = fields.tm_min = fields.tm_sec = 0;
    day = _mktime64(&fields);
    return true;
}

bool underDebugger() noexcept
{
    std::atomic<int32_t>& known = traceState().debuggerPresent;
    int32_t present = known;
    if (present < 0)
        known = present = IsDebuggerPresent() ? 1 : 0;
    return present != 0;
}

void replaceSink(uint32_t wanted)
{
    traceState_t& state = traceState();
    if (state.sinkKind == wanted)
        return;
    state.sink.store(nullptr);
    state.sinkKind = sinkNone;
    std::shared_ptr<outputStorageInterface_i> made = createSink(wanted);
    if (made) {
        state.sink.store(std::move(made));
        state.sinkKind = wanted;
    }
}

void followConfiguration(tracer_t& tracer)
{
    const uint32_t wanted = tracer.traceMode();
    if (wanted != tracer.mode) {
        std::lock_guard guard(traceState().configLock);
        tracer.mode = wanted;
        replaceSink(wanted);
        tracer.nextPoll = 0;
    }
}

void dropExpiredSwitch(tracer_t& tracer)
{
    const std::optional<DWORD> value = readSwitch();
    if (!value || !isExpired(*value) || !tracer.expire())
        return;
    std::wstring name;
    tracer.fileName(name, tracer.mode == sinkFileNew);
    sweepOldTraces(name, 1);
}

} // namespace

void pollConfiguration(tracer_t& tracer) noexcept
{
    const uint32_t now = GetTickCount();
    if (now <= tracer.nextPoll.load(std::memory_order_relaxed))
        return;
    const lastErrorKeeper_t keeper;
    try {
        followConfiguration(tracer);
        tracer.nextPoll.exchange(now + pollInterval);
        dropExpiredSwitch(tracer);
    } catch (...) { // out of memory: no sink until another kind is wanted, as mode is set already
        tracer.nextPoll.exchange(now + pollInterval);
    }
}

uint32_t realTracer_t::traceMode()
{
    const CRegistryKey key = openTracing(KEY_READ);
    const DWORD value = numberOf(key, switchName, 0);
    if (value != 1 && daysUntil(value) < 1)
        return sinkNowhere;
    if (!componentTraced())
        return sinkNowhere;
    const uint32_t kind = sinkOfSetting(numberOf(key, L"TraceToFile", 1));
    if (kind == sinkFileNew && !numberOf(key, L"NewFileAlways", 1))
        return sinkFileAppend;
    if (kind == sinkIDE && !underDebugger())
        return sinkConsole;
    return kind;
}

void realTracer_t::fileName(std::wstring& out, bool newFileAlways)
{
    const CRegistryKey key = openTracing(KEY_READ);
    const bool ie1 = numberOf(key, L"IE1", 1) != 0;
    const bool noTimestamp = numberOf(key, L"noTimestamp", 0) != 0;
    const std::wstring given = textOf(key, L"FileName");
    std::wstring folder = expandedOf(key, L"TracePathLow");
    if (folder.empty())
        folder = expandedOf(key, L"TracePath");
    if (!folder.empty() && folder.back() != L'\\' && folder.back() != L'/')
        folder += L'\\';
    out = composeTraceFileName(thisModule(), newFileAlways, ie1, noTimestamp, given, folder);
}

bool realTracer_t::expire()
{
    DWORD number = 0;
    if (!readNumber(openTracing(KEY_READ), switchName, number))
        return false; // a missing switch must not be treated as expired at each look
    const CRegistryKey key = openTracing(KEY_WRITE);
    if (key)
        RegDeleteValueW(key.get(), switchName);
    return true;
}

bool componentTraced()
{
    const std::wstring component = baseNameOf(moduleFileName(thisModule()));
    const CRegistryKey tracing = openTracing(KEY_READ);
    return !tracing || !named(tracing, L"ComponentsNOT", component) ||
           named(tracing, L"Components", component);
}

int32_t daysUntil(int64_t time) noexcept
{
    const int64_t now = _time64(nullptr);
    if (time <= now)
        return 0; // most often, and without the time zone
    int64_t day = 0;
    int64_t today = 0;
    if (!dayOf(time, day) || !dayOf(now, today) || day <= today)
        return 0;
    // 32 bits: a day that is further away comes out negative. Intended.
    return static_cast<int32_t>(day - today) / 86400;
}

bool switchExpired()
{
    return isExpired(readSwitch().value_or(0));
}

void sweepOldTraces(const std::wstring& path, uint8_t flag)
{
    if (traceState().sweepDone)
        return;
    const CKernelHandle turn(
        CreateMutexW(nullptr, FALSE, L"{32FA2EA5-DF93-459d-8F49-C1DC80404214}"));
    if (!turn)
        return;
    const struct release_t { // harmless when another process has it
        HANDLE mutex;
        ~release_t() { ReleaseMutex(mutex); }
    } release{turn.get()};
    const DWORD waited = WaitForSingleObject(turn.get(), 0);
    if (waited != WAIT_OBJECT_0 && waited != WAIT_ABANDONED)
        return; // another process is sweeping: a later look tries again
    traceState().sweepDone = 1;
    const size_t dot = path.rfind(L'.');
    if (!flag || dot == std::wstring::npos)
        return;
    const std::wstring folder = path.substr(0, path.rfind(L'\\') + 1);

    std::list<std::wstring> files;
    WIN32_FIND_DATAW found;
    const CSearchHandle search(FindFirstFileW((folder + L'*' + path.substr(dot)).c_str(), &found));
    if (search) {
        do {
            files.push_back(folder + found.cFileName);
        } while (FindNextFileW(search.get(), &found));
    }
    // The walk ends where it starts, so that no file is marked for removal. Intended: traces stay
    // until someone takes them away.
    if (osVersionAtStart().isNt()) {
        for (auto next = files.begin(); next != files.begin(); ++next)
            MoveFileExW(next->c_str(), nullptr, MOVEFILE_DELAY_UNTIL_REBOOT);
    }
}

} // namespace tracecore
