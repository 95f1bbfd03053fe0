#include "tracerecorder.h"

#include "tracecore/realtracer.h"

#include <mutex>

using namespace tracecore;

// The records lie in the sink, which a writer may hold a little longer than the recorder lives.
class recordingSink_t final : public outputStorageInterface_i
{
public:
    void write(char level, const std::wstring& text, const std::string& function) override
    {
        std::lock_guard guard(m_mutex);
        if (level != 'T' && level != 't')
            m_records.push_back({level, text, function});
    }

    std::vector<traceRecord_t> take()
    {
        std::lock_guard guard(m_mutex);
        return std::exchange(m_records, {});
    }

private:
    std::mutex m_mutex;
    std::vector<traceRecord_t> m_records;
};

traceRecorder_t::traceRecorder_t() : m_sink(std::make_shared<recordingSink_t>())
{
    realTracer_t& tracer = theTracer();
    std::lock_guard guard(configLock);
    m_nextPoll = tracer.nextPoll.exchange(0xFFFFFFFF); // no tick count is above it
    m_mode = tracer.mode.exchange(sinkFileAppend);
    m_kind = sinkKind.exchange(sinkFileAppend);
    m_replaced = sink.exchange(m_sink);
    tracer.stacks.mainFrame.setWritten(false);
}

traceRecorder_t::~traceRecorder_t()
{
    realTracer_t& tracer = theTracer();
    std::lock_guard guard(configLock);
    sink.store(m_replaced);
    sinkKind = m_kind;
    tracer.mode = m_mode;
    tracer.nextPoll = m_nextPoll;
}

std::vector<std::wstring> traceRecorder_t::messages()
{
    std::vector<std::wstring> texts;
    for (const traceRecord_t& record : all()) {
        if (record.level == 'E' || record.level == 'U')
            texts.push_back(std::wstring(1, static_cast<wchar_t>(record.level)) + L' ' +
                            record.text);
    }
    return texts;
}

std::wstring traceRecorder_t::joined()
{
    std::wstring text;
    for (const std::wstring& message : messages())
        text += L'|' + message;
    return text;
}

std::vector<traceRecord_t> traceRecorder_t::all()
{
    return m_sink->take();
}
