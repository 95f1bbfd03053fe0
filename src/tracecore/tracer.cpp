#include "tracecore/tracer.h"

#include "common/initorder.h"
#include "common/lasterror.h"
#include "common/status.h"
#include "common/text.h"
#include "formats/trace/levels.h"
#include "tracecore/realtracer.h"

#include <cstdarg>
#include <cwchar>
#include <iterator>
#include <mutex>

namespace tracecore {

namespace {

std::atomic<bool> ready{false}; // the tracer is built and not yet destroyed

[[gnu::init_priority(initTracer)]] traceState_t state;

[[gnu::init_priority(initTracer)]] realTracer_t tracer;

// Built after the tracer, destroyed before it: calls outside its life do nothing.
[[gnu::init_priority(initTracer)]] const struct readyMark_t {
    readyMark_t() noexcept { ready = true; }
    ~readyMark_t() { ready = false; }
} readyMark;

bool closed() noexcept
{
    return state.traceDisabled.load(std::memory_order_relaxed) ||
           !ready.load(std::memory_order_relaxed);
}

// writerTurn_t is the right to write. The mutex may be missing, or belong to somebody who grants no
// right to wait: then the lock of the stacks, which is taken after it anyway, keeps the writers
// apart.
class writerTurn_t
{
public:
    writerTurn_t() noexcept
        : m_owned(tracer.mutex && WaitForSingleObject(tracer.mutex.get(), INFINITE) != WAIT_FAILED)
    {
        if (!m_owned)
            tracer.stacks.lock.lock();
    }
    ~writerTurn_t()
    {
        if (m_owned)
            ReleaseMutex(tracer.mutex.get());
        else
            tracer.stacks.lock.unlock();
    }
    writerTurn_t(const writerTurn_t&) = delete;
    writerTurn_t& operator=(const writerTurn_t&) = delete;

private:
    const bool m_owned;
};

bool sameDate(const SYSTEMTIME& a, const SYSTEMTIME& b) noexcept
{
    return a.wYear == b.wYear && a.wMonth == b.wMonth && a.wDay == b.wDay;
}

bool sameTime(const SYSTEMTIME& a, const SYSTEMTIME& b) noexcept
{
    return a.wHour == b.wHour && a.wMinute == b.wMinute && a.wSecond == b.wSecond &&
           a.wMilliseconds == b.wMilliseconds;
}

void traceEmit(const SYSTEMTIME& time, char level, const std::wstring& text,
               const std::string& function)
{
    const std::shared_ptr<outputStorageInterface_i> out = state.sink.load();
    if (!out)
        return;
    if (!sameDate(time, state.lastStamp) || !sameTime(time, state.lastStamp)) {
        if (!sameDate(time, state.lastStamp))
            out->write(levelDate,
                       formatWide(L"%02d/%02d/%02d", time.wMonth, time.wDay, time.wYear % 100),
                       function);
        out->write(levelTime,
                   formatWide(L"%02d:%02d:%02d.%03d", time.wHour, time.wMinute, time.wSecond,
                              time.wMilliseconds),
                   function);
        state.lastStamp = time;
    }
    out->write(level, text, function);
}

void writeEntry(traceStackEntry_t& frame)
{
    traceEmit(frame.localTime(), levelEntry, wideFromUtf8(frame.name), frame.name);
    frame.setWritten(true);
}

void flushPending()
{
    threadFrames_t* const mine = tracer.stacks.frames();
    if (!mine || !mine->depth) {
        std::lock_guard guard(tracer.stacks.lock);
        if (!tracer.stacks.mainFrame.isWritten())
            writeEntry(tracer.stacks.mainFrame);
        return;
    }
    if (mine->last().isWritten()) // a frame is only written together with all frames under it
        return;
    for (size_t i = 0; i < mine->depth; ++i) {
        if (!mine->frames[i].isWritten())
            writeEntry(mine->frames[i]);
    }
}

// A record that can't be made for lack of memory is lost: tracing doesn't fail what it traces.
template <class Body> void quietly(Body body) noexcept
{
    const lastErrorKeeper_t keeper;
    try {
        body();
    } catch (...) {
    }
}

// Narrow formats mean narrow arguments, which a wide format has to mark.
void markNarrow(std::wstring& format, const wchar_t* conversion)
{
    for (size_t at = format.find(conversion); at != std::wstring::npos;
         at = format.find(conversion, at + 1))
        format.insert(at + 1, 1, L'h');
}

} // namespace

realTracer_t& theTracer() noexcept
{
    return tracer;
}

traceState_t& traceState() noexcept
{
    return state;
}

bool traceActive() noexcept
{
    return !closed() && tracer.mode.load(std::memory_order_relaxed) >= sinkFileAppend;
}

void traceEnter(const char* name)
{
    if (closed())
        return;
    tracer.stacks.push(name);
    pollConfiguration(tracer);
    // The entry itself is written with the first record inside the function.
}

void traceLeave()
{
    if (closed())
        return;
    if (tracer.mode.load(std::memory_order_relaxed) > sinkNowhere)
        traceWrite(levelExit, {});
    tracer.stacks.pop();
}

void traceWrite(char level, const std::wstring& text)
{
    if (closed() || level == levelEntry)
        return;
    if (level == levelExit && !tracer.stacks.current().isWritten()) // nothing for a silent function
        return;
    quietly([&] {
        const writerTurn_t turn;
        if (level != levelExit)
            flushPending();
        SYSTEMTIME now;
        GetLocalTime(&now);
        traceEmit(now, level, text, tracer.stacks.current().name);
    });
}

void traceText(const char* text)
{
    if (traceActive())
        quietly([&] { traceWrite(levelMessage, wideFromUtf8(text ? text : "")); });
}

void traceFormat(int, const char* format, ...)
{
    if (!traceActive() || !format)
        return;
    va_list arguments;
    va_start(arguments, format);
    quietly([&] {
        std::wstring wide = wideFromAnsi(format);
        if (wide.empty())
            return;
        markNarrow(wide, L"%s");
        markNarrow(wide, L"%c");
        wchar_t text[400] = {};
        _vsnwprintf(text, std::size(text) - 1, wide.c_str(), arguments);
        traceWrite(levelMessage, text);
    });
    va_end(arguments);
}

void traceFormatW(const wchar_t* format, ...)
{
    if (!traceActive())
        return;
    va_list arguments;
    va_start(arguments, format);
    quietly([&] { traceWrite(levelMessage, formatWideV(format, arguments)); });
    va_end(arguments);
}

void traceStatus(const char* text, HRESULT status)
{
    if (traceActive())
        quietly([&] {
            traceWrite(levelError,
                       formatWide(L"%d %hs", static_cast<int>(status), text ? text : ""));
        });
}

void traceStatusW(const std::wstring& text, HRESULT status)
{
    if (traceActive())
        quietly([&] {
            traceWrite(levelError, formatWide(L"%d %s", static_cast<int>(status), text.c_str()));
        });
}

void traceStatusFormat(HRESULT status, const wchar_t* format, ...)
{
    if (!traceActive())
        return;
    va_list arguments;
    va_start(arguments, format);
    quietly([&] { traceStatusW(formatWideV(format, arguments), status); });
    va_end(arguments);
}

void traceLastError(const std::wstring& text)
{
    traceStatusW(text, statusFromError(GetLastError()));
}

void traceIfFailed(const char* text, HRESULT status)
{
    if (FAILED(status))
        traceStatus(text, status);
}

void traceNote(const char* text)
{
    traceStatus(text, S_OK);
}

void traceNoteW(const std::wstring& text)
{
    traceStatusW(text, S_OK);
}

void traceNotePair(const char* first, const char* second)
{
    if (traceActive())
        quietly([&] {
            traceStatusW(formatWide(L"%hs%hs", first ? first : "", second ? second : ""), S_OK);
        });
}

HRESULT traceException(const char* label, const std::exception& exception)
{
    traceNotePair(label, exception.what());
    return E_UNEXPECTED;
}

} // namespace tracecore
