#include "sequencediff.h"

#include <algorithm>

namespace vltrace {

namespace {

constexpr size_t mostSteps = 2000; // the search holds the square of it in memory
constexpr size_t context = 3;

using sequence_t = std::span<const uint32_t>;

// The farthest place in the one that so many steps reach, for each diagonal -steps, -steps + 2, ...
using reach_t = std::vector<size_t>;

// farthest goes one step on from the reach of the steps before: down, which adds an element of the
// other, or right, which removes one of the one.
bool comesFromAbove(const reach_t& before, size_t steps, size_t k)
{
    return k == 0 || (k != steps && before[k - 1] < before[k]);
}

size_t stepFrom(const reach_t& before, size_t steps, size_t k)
{
    return comesFromAbove(before, steps, k) ? before[k] : before[k - 1] + 1;
}

// search gives the reaches up to the one that comes to both ends; none if that takes too many
// steps. Diagonal k of so many steps is at other = one + steps - 2 * k.
std::vector<reach_t> search(sequence_t one, sequence_t other)
{
    std::vector<reach_t> reaches;
    for (size_t steps = 0; steps <= mostSteps; ++steps) {
        reach_t reach(steps + 1);
        for (size_t k = 0; k <= steps; ++k) {
            size_t x = steps == 0 ? 0 : stepFrom(reaches.back(), steps, k);
            while (x < one.size() && x + steps - 2 * k < other.size() &&
                   one[x] == other[x + steps - 2 * k])
                ++x;
            reach[k] = x;
            if (x >= one.size() && x + steps - 2 * k >= other.size()) {
                reaches.push_back(std::move(reach));
                return reaches;
            }
        }
        reaches.push_back(std::move(reach));
    }
    return {};
}

// A step joins the edit after it, if they touch.
void prepend(std::vector<edit_t>& edits, const edit_t& step)
{
    if (!edits.empty() && edits.back().one == step.one + step.removed &&
        edits.back().other == step.other + step.added) {
        edit_t& next = edits.back();
        next = {step.one, step.removed + next.removed, step.other, step.added + next.added};
    } else {
        edits.push_back(step);
    }
}

} // namespace

std::vector<edit_t> compareSequences(sequence_t one, sequence_t other)
{
    const auto equal = std::ranges::mismatch(one, other);
    const auto front = static_cast<size_t>(equal.in1 - one.begin());
    one = one.subspan(front);
    other = other.subspan(front);
    while (!one.empty() && !other.empty() && one.back() == other.back()) {
        one = one.first(one.size() - 1);
        other = other.first(other.size() - 1);
    }
    if (one.empty() && other.empty())
        return {};
    const std::vector<reach_t> reaches = search(one, other);
    if (reaches.empty())
        return {{front, one.size(), front, other.size()}};

    std::vector<edit_t> edits; // from the last one to the first
    size_t x = one.size();
    size_t y = other.size();
    for (size_t steps = reaches.size() - 1; steps > 0; --steps) {
        const size_t k = (x + steps - y) / 2;
        const reach_t& before = reaches[steps - 1];
        x = stepFrom(before, steps, k); // where the step came to
        y = x + steps - 2 * k;
        if (comesFromAbove(before, steps, k))
            prepend(edits, {x, 0, --y, 1});
        else
            prepend(edits, {--x, 1, y, 0});
    }
    for (edit_t& edit : edits) {
        edit.one += front;
        edit.other += front;
    }
    std::ranges::reverse(edits);
    return edits;
}

std::vector<hunk_t> hunksOf(const std::vector<edit_t>& edits, size_t size)
{
    std::vector<hunk_t> hunks;
    for (const edit_t& edit : edits) {
        const size_t before = std::min({context, edit.one, edit.other});
        if (hunks.empty() || hunks.back().oneEnd < edit.one - before)
            hunks.push_back({edit.one - before, edit.other - before, 0, {}});
        hunks.back().edits.push_back(edit);
        hunks.back().oneEnd = std::min(size, edit.one + edit.removed + context);
    }
    return hunks;
}

} // namespace vltrace
