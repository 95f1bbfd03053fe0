#pragma once

#include <cstdint>
#include <ostream>
#include <span>

// redactBackup writes a backup of the same shape: every tag that is read, every length and number stays, and so does damage; the texts are
// replaced as CTextRedaction does it, and all other contents by a letter that is repeated. A byte that nothing here knows
// is such content.
void redactBackup(std::span<const uint8_t> backup, std::ostream& out);
