#include "atl/commodule.h"
#include "common/initorder.h"
#include "plugin/vlktpages.h"

#include <iterator>

namespace {

constinit std::atomic<void*> factoryCell{nullptr};

// The class has no registry script, description or categories, and nothing to do at start or end.
constinit _ATL_OBJMAP_ENTRY pagesEntry = {
    &CVLKTPages::GetObjectCLSID(),
    [](BOOL) -> HRESULT { return S_OK; },
    CVLKTPages::_GetClassObject,
    CVLKTPages::_CreateInstance,
    &factoryCell,
    []() -> LPCWSTR { return nullptr; },
    []() -> const void* { return nullptr; },
    [](bool) {},
};

class CVLOnlineIDsModule : public CAtlDllModuleT<CVLOnlineIDsModule>
{
public:
    CVLOnlineIDsModule() { _AtlComModule.ExecuteObjectMain(true); }
    ~CVLOnlineIDsModule() override { _AtlComModule.ExecuteObjectMain(false); }
};

// The last global to be made and the first to go.
[[gnu::init_priority(initModule)]] CVLOnlineIDsModule module;

} // namespace

_ATL_OBJMAP_ENTRY* const _AtlObjectMapFirst[] = {&pagesEntry};
const size_t _AtlObjectMapCount = std::size(_AtlObjectMapFirst);
