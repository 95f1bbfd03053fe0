#include "shared/systemerror.h"

#include "common/systemtext.h"
#include "common/text.h"
#include "shared/statusnames.h"

#include <array>
#include <cstdio>

std::string errorText(DWORD error)
{
    std::string text = utf8FromWide(systemText(error, 0));
    text.resize(text.find_last_not_of(" \r\n") + 1);
    if (!text.empty())
        return text;
    std::array<char, 20> number{};
    std::snprintf(number.data(), number.size(), "error 0x%lX", error);
    return number.data();
}

std::string statusText(HRESULT status)
{
    const tools::statusInfo_t known = tools::describeStatus(status);
    std::string text = known.hex;
    if (!known.name.empty())
        text += ' ' + known.name;
    return text + ": " + errorText(static_cast<DWORD>(status));
}
