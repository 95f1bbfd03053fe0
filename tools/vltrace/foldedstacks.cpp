#include "foldedstacks.h"

#include "formats/text/printable.h"
#include "textout.h"

#include <algorithm>
#include <array>

namespace vltrace {

namespace {

constexpr size_t deepest = 100; // what is called deeper counts for the last of these

// The semicolon stands between functions.
void appendFrame(std::string& stack, std::string_view name)
{
    const size_t begin = stack.size();
    appendPrintable(stack, name);
    std::replace(stack.begin() + static_cast<std::ptrdiff_t>(begin), stack.end(), ';', ':');
}

size_t hashOf(uint32_t outer, uint32_t name)
{
    return (uint64_t{outer} << 32 | name) * 0x9E3779B97F4A7C15 >> 32;
}

} // namespace

uint32_t foldedStacks_t::chainOf(uint32_t outer, uint32_t depth, std::string_view text)
{
    const uint32_t name = m_names.numberOf(text);
    const uint32_t number = m_index.numberOf(
        hashOf(outer, name),
        [&](uint32_t known) {
            const chain_t& chain = m_chains[known];
            return chain.outer == outer && chain.name == name && chain.depth == depth;
        },
        [&](uint32_t known) { return hashOf(m_chains[known].outer, m_chains[known].name); });
    if (number == m_chains.size())
        m_chains.push_back({0, outer, name, depth});
    return number;
}

void foldedStacks_t::begin(const source_t& source)
{
    callConsumer_t::begin(source);
    m_program = chainOf(0, 0, programOf(source.shown));
}

void foldedStacks_t::enter(thread_t& thread, call_t& call)
{
    const call_t* const caller = thread.outer();
    const auto outer = caller ? static_cast<uint32_t>(caller->tag) : m_program;
    const uint32_t depth = m_chains[outer].depth;
    call.tag = depth == deepest ? outer : chainOf(outer, depth + 1, call.name);
}

void foldedStacks_t::leave(thread_t&, call_t& call, int64_t to, bool)
{
    m_chains[call.tag].time += std::max<int64_t>(1, to - call.from - call.inside);
}

void foldedStacks_t::finish()
{
    textOut_t out(m_out);
    std::array<uint32_t, deepest + 1> names{};
    for (const chain_t& chain : m_chains) {
        if (chain.time == 0)
            continue; // a program
        const chain_t* at = &chain;
        for (size_t depth = chain.depth; depth > 0; at = &m_chains[at->outer])
            names[depth--] = at->name;
        names[0] = at->name;
        for (size_t depth = 0; depth <= chain.depth; ++depth) {
            if (depth > 0)
                out.text += ';';
            appendFrame(out.text, m_names.all()[names[depth]]);
        }
        appendNumber(out.text += ' ', chain.time);
        out.text += '\n';
        out.written();
    }
}

} // namespace vltrace
