#include "tracerecorder.h"

#include "tracecore/realtracer.h"

#include <mutex>

using namespace tracecore;

// The records lie in the sink, which a writer may hold a little longer than the recorder lives.
struct recordingSink_t final : outputStorageInterface_i {
    void write(char level, const std::wstring& text, const std::string& function) override
    {
        std::lock_guard guard(mutex);
        if (level != 'T' && level != 't')
            records.push_back({level, text, function});
    }

    std::mutex mutex;
    std::vector<traceRecord_t> records;
};

traceRecorder_t::traceRecorder_t() : m_sink(std::make_shared<recordingSink_t>())
{
    realTracer_t& tracer = theTracer();
    std::lock_guard guard(traceState().configLock);
    m_nextPoll = tracer.nextPoll.exchange(0xFFFFFFFF); // no tick count is above it
    m_mode = tracer.mode.exchange(sinkFileAppend);
    m_kind = traceState().sinkKind.exchange(sinkFileAppend);
    m_replaced = traceState().sink.exchange(m_sink);
    tracer.stacks.mainFrame.setWritten(false);
}

traceRecorder_t::~traceRecorder_t()
{
    realTracer_t& tracer = theTracer();
    std::lock_guard guard(traceState().configLock);
    traceState().sink.store(m_replaced);
    traceState().sinkKind = m_kind;
    tracer.mode = m_mode;
    tracer.nextPoll = m_nextPoll;
}

std::wstring traceRecorder_t::joined()
{
    std::wstring text;
    for (const traceRecord_t& record : all())
        if (record.level == 'E' || record.level == 'U')
            text += (record.level == 'E' ? L"|E " : L"|U ") + record.text;
    return text;
}

std::vector<traceRecord_t> traceRecorder_t::all()
{
    std::lock_guard guard(m_sink->mutex);
    return std::exchange(m_sink->records, {});
}
