#include "plugin/vlktpages.h"
#include "tracecore/tracer.h"

using namespace VLONLINEIDSLib;
using tracecore::traceScope_t;

HRESULT CVLKTPages::FinalConstruct()
{
    const traceScope_t scope("CVLKTPages::FinalConstruct");
    return S_OK;
}

void CVLKTPages::FinalRelease()
{
    const traceScope_t scope("CVLKTPages::FinalRelease");
}

// IVLKTBackupRestore has no row: hosts reach it through IVLKTBackupRestore2.
const _ATL_INTMAP_ENTRY* CVLKTPages::GetEntries() noexcept
{
    static constexpr _ATL_INTMAP_ENTRY entries[] = {
        interfaceEntry<CVLKTPages, IVLKTPages>(),
        interfaceEntry<CVLKTPages, IVLKTElementUI>(),
        interfaceEntry<CVLKTPages, IVLKSecurityStatus>(),
        interfaceEntry<CVLKTPages, IVLKTPluginInfo>(),
        interfaceEntry<CVLKTPages, IVLKTDisableApp>(),
        interfaceEntry<CVLKTPages, IVLKTBackupRestore3>(),
        interfaceEntry<CVLKTPages, IVLKTBackupRestore2>(),
        interfaceEntry<CVLKTPages, IVLKTTraySubscribe>(),
        {nullptr, nullptr},
    };
    return entries;
}

// The plug-in offers no pages of its own: there is nothing to add.
STDMETHODIMP CVLKTPages::AddPages()
{
    const traceScope_t scope("CVLKTPages::AddPages");
    return S_OK;
}
