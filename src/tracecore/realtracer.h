#pragma once

#include "common/criticalsection.h"
#include "common/scoped.h"
#include "tracecore/sink.h"
#include "tracecore/threadstacks.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

namespace tracecore {

// tracer_t is the tracer as its configuration drives it.
class tracer_t
{
public:
    tracer_t();
    virtual ~tracer_t() = default;
    tracer_t(const tracer_t&) = delete;
    tracer_t& operator=(const tracer_t&) = delete;

    // fileName gives the trace file's full path.
    virtual void fileName(std::wstring& out, bool newFileAlways) = 0;

    // expire removes the expired switch.
    //
    // Returns: true if the switch was there as a number, also when it could not be removed
    virtual bool expire() = 0;

    // traceMode is the sink kind that the configuration wants, sinkNowhere to sinkIDE.
    virtual uint32_t traceMode() = 0;

    threadStacks_t stacks;
    std::atomic<uint32_t> nextPoll{0}; // tick count, the earliest next look at the configuration
    std::atomic<uint32_t> mode{sinkNowhere}; // the sink kind last wanted
    CKernelHandle mutex;                     // the writers' mutex, may be null
    std::atomic<uint8_t> fileFailed{0};      // the trace file could not be opened; stays set
};

// realTracer_t is the only implementation, with the registry as its configuration.
class realTracer_t final : public tracer_t
{
public:
    realTracer_t();
    ~realTracer_t() override;
    void fileName(std::wstring& out, bool newFileAlways) override;
    bool expire() override;
    uint32_t traceMode() override;
};

// sinkHolder_t holds the sink that records go to. A writer shares its ownership for one record, so
// that a sink which is replaced meanwhile lives until the record is out.
//
// A critical section guards the pointer. The library's atomic one would spin, and for ever if a
// thread was stopped in the middle of it.
class sinkHolder_t
{
public:
    using pointer = std::shared_ptr<outputStorageInterface_i>;

    pointer load() noexcept;
    void store(pointer next) noexcept { exchange(std::move(next)); }
    // Returns: what was held before
    pointer exchange(pointer next) noexcept;
    // clear is for the end of the module, when nobody writes any more: it waits for nothing.
    void clear() noexcept { m_sink.reset(); }

private:
    criticalSection_t m_lock;
    pointer m_sink;
};

// traceState_t is what lies beside the tracer: built before it, destroyed after it.
struct traceState_t {
    std::atomic<uint8_t> traceDisabled{0}; // nonzero empties all operations; nothing here sets it
    criticalSection_t configLock;
    sinkHolder_t sink; // replaced with configLock held
    std::atomic<uint32_t> sinkKind{sinkNone};
    SYSTEMTIME lastStamp{}; // the time of the last record emitted, under the writers' mutex
    std::atomic<int32_t> debuggerPresent{-1}; // -1 until first asked; the answer is kept
    std::atomic<uint8_t> sweepDone{0};        // the sweep's turn of this process is taken
};

// theTracer is the module's one tracer, traceState its state. Both are in tracer.cpp.
realTracer_t& theTracer() noexcept;
traceState_t& traceState() noexcept;

// pollConfiguration looks at the configuration if that is due, and replaces the sink when another
// is wanted. Raises nothing. It is in traceconfig.cpp, as is what the configuration drives.
void pollConfiguration(tracer_t& tracer) noexcept;

} // namespace tracecore
