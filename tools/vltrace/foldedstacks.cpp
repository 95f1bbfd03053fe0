#include "foldedstacks.h"

#include "formats/text/printable.h"

#include <algorithm>
#include <ostream>

namespace vltrace {

namespace {

constexpr size_t deepest = 100; // of a chain: the innermost ones

// The semicolon stands between functions.
void appendFrame(std::string& stack, const std::string& name)
{
    const size_t begin = stack.size();
    appendPrintable(stack, name);
    std::replace(stack.begin() + static_cast<std::ptrdiff_t>(begin), stack.end(), ';', ':');
}

} // namespace

void foldedStacks_t::begin(const source_t& source)
{
    callConsumer_t::begin(source);
    m_program.clear();
    appendFrame(m_program, programOf(source.shown));
}

void foldedStacks_t::leave(thread_t& thread, call_t& call, int64_t to, bool)
{
    m_stack = m_program;
    for (size_t i = thread.depth - std::min(thread.depth, deepest); i < thread.depth; ++i) {
        if (!thread.calls[i].shown)
            continue;
        m_stack += ';';
        appendFrame(m_stack, thread.calls[i].name);
    }
    m_times[m_stack] += std::max<int64_t>(1, to - call.from - call.inside);
}

void foldedStacks_t::finish()
{
    for (const auto& [stack, time] : m_times)
        m_out << stack << ' ' << time << '\n';
}

} // namespace vltrace
