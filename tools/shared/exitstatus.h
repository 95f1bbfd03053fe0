#pragma once

// The exit statuses of all tools.
namespace exitStatus {

constexpr int good = 0;       // done; of a question: yes, equal, sound
constexpr int failed = 1;     // the work failed, in part or as a whole, or the answer is no
constexpr int wrongUsage = 2; // nothing was done: the command line makes no sense

} // namespace exitStatus
