#include "livebackup.h"
#include "shared/toolerror.h"

std::vector<uint8_t> takeLiveBackup()
{
    throw CToolError("there is no profile on this system",
                     "use vlbackup.exe on Windows or under Wine, in the user's own session");
}
