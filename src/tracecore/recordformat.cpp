#include "tracecore/recordformat.h"

namespace tracecore {

void scrambleText(uint8_t*, size_t) noexcept {}
void unscrambleText(uint8_t*, size_t) noexcept {}

} // namespace tracecore
