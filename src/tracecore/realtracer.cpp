#include "tracecore/realtracer.h"

namespace tracecore {

tracer_t::tracer_t() = default;

realTracer_t::realTracer_t()
{
    pollConfiguration(*this);
}

realTracer_t::~realTracer_t()
{
    sink.store(nullptr);
    sinkKind = sinkNone;
}

} // namespace tracecore
