#include "common/status.h"

HRESULT statusFromError(DWORD error) noexcept
{
    const auto value = static_cast<HRESULT>(error);
    if ((error & 0x1FFF0000u) != 0 || value <= 0)
        return value;
    return static_cast<HRESULT>((error & 0xFFFFu) | 0x80070000u);
}

void raiseStatus(HRESULT status)
{
    throw _com_error(status);
}

void raiseError(DWORD error)
{
    raiseStatus(statusFromError(error));
}

void raiseLastError()
{
    raiseError(GetLastError());
}
