#include "tracecore/sink.h"

#include "tracecore/realtracer.h"
#include "tracecore/sinks.h"

#include <algorithm>

namespace tracecore {

namespace {

using sinkPointer = std::unique_ptr<outputStorageInterface_i>;

template <class Sink> sinkPointer make()
{
    return std::make_unique<Sink>();
}

template <bool newFile> sinkPointer makeFile()
{
    std::wstring path;
    theTracer().fileName(path, newFile);
    return std::make_unique<outputStorageFile_t>(std::move(path), newFile);
}

// The first row with a setting is the one that it stands for.
constexpr struct {
    uint32_t kind;
    uint32_t setting; // TraceToFile
    sinkPointer (*make)();
} sinks[] = {
    {sinkNowhere, 0, make<outputStorageNowhere_t>}, {sinkFileNew, 1, makeFile<true>},
    {sinkFileAppend, 1, makeFile<false>},           {sinkConsole, 3, make<outputStorageConsole_t>},
    {sinkIDE, 4, make<outputStorageIDE_t>},
};

} // namespace

std::unique_ptr<outputStorageInterface_i> createSink(uint32_t kind)
{
    const auto* const row =
        std::ranges::find_if(sinks, [kind](const auto& sink) { return sink.kind == kind; });
    return row == std::end(sinks) ? nullptr : row->make();
}

uint32_t sinkOfSetting(uint32_t setting) noexcept
{
    const auto* const row = std::ranges::find_if(
        sinks, [setting](const auto& sink) { return sink.setting == setting; });
    return row == std::end(sinks) ? sinkNowhere : row->kind;
}

} // namespace tracecore
