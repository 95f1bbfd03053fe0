// Compiled by scripts/check-interfaces.sh, for both compilers: the header and what the IDL compiler
// makes of the IDL say the same identifiers and ids.

#include "vlonlineids.h"

#include <ocidl.h>

namespace VLONLINEIDSLib {
class CVLKTPages;
}

namespace {

constexpr bool same(const GUID& a, const GUID& b)
{
    bool equal = a.Data1 == b.Data1 && a.Data2 == b.Data2 && a.Data3 == b.Data3;
    for (int i = 0; i < 8; ++i)
        equal = equal && a.Data4[i] == b.Data4[i];
    return equal;
}

template <class Interface> constexpr GUID identifier = __uuidof(Interface);
template <>
constexpr GUID identifier<VLONLINEIDSLib::CVLKTPages> = VLONLINEIDSLib::CLSID_CVLKTPages;

} // namespace

// The generated header names the identifier of each interface in this way.
#undef __CRT_UUID_DECL
#define __CRT_UUID_DECL(type, a, b, c, ...)                                                        \
    static_assert(same(identifier<VLONLINEIDSLib::type>, {a, b, c, {__VA_ARGS__}}));
#include "VLONLINEIDSLib_idl.h"

namespace VLONLINEIDSLib {

static_assert(propertyName == VLKTPropertyName);
static_assert(propertyIconLocation == VLKTPropertyIconLocation);
static_assert(propertyFixedName == VLKTPropertyFixedName);
static_assert(propertyDescription == VLKTPropertyDescription);
static_assert(propertyKind == VLKTPropertyKind);
static_assert(propertySecurityLevel == VLKTPropertySecurityLevel);
static_assert(propertyExplanation == VLKTPropertyExplanation);
static_assert(propertyNotifications == VLKTPropertyNotifications);
static_assert(notificationCaption == VLKTNotificationCaption);
static_assert(notificationShown == VLKTNotificationShown);
static_assert(notificationActions == VLKTNotificationActions);
static_assert(commandSetShown == VLKTCommandSetShown);
static_assert(commandOpenConsole == VLKTCommandOpenConsole);

} // namespace VLONLINEIDSLib
