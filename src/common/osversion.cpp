#include "common/osversion.h"

#include "common/initorder.h"

namespace {

[[gnu::init_priority(initOsVersion)]] const osVersion_t startVersion = readOsVersion();

} // namespace

osVersion_t readOsVersion() noexcept
{
    OSVERSIONINFOW info{};
    info.dwOSVersionInfoSize = sizeof info;
    if (!GetVersionExW(&info))
        return {};
    return {info.dwPlatformId, info.dwMajorVersion, info.dwMinorVersion};
}

const osVersion_t& osVersionAtStart() noexcept
{
    return startVersion;
}
