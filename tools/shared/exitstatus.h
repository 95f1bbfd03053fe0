#pragma once

// The exit statuses of all tools.
namespace exitStatus {

constexpr int good = 0;
constexpr int failed = 1;
constexpr int wrongUsage = 2;

struct meaning_t {
    int status;
    const char* text;
};
inline constexpr meaning_t meanings[] = {
    {good, "Done; of a question: yes, sound, equal."},
    {failed, "The work failed, in part or as a whole, or the answer is no."},
    {wrongUsage, "Wrong usage; nothing was done."},
};

} // namespace exitStatus
