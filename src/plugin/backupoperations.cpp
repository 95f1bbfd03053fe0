#include "agent/discovery.h"
#include "agent/transfer.h"
#include "atl/safearray.h"
#include "backup/restore.h"
#include "backup/secretexistence.h"
#include "backup/secretlist.h"
#include "backup/storagedata.h"
#include "common/scoped.h"
#include "common/status.h"
#include "common/text.h"
#include "neighbours/vlfpapi.h"
#include "plugin/errorframe.h"
#include "plugin/vlktpages.h"
#include "tracecore/tracer.h"

#include <span>
#include <string>

using namespace tracecore;

namespace {

constexpr VARTYPE namesType = VT_ARRAY | VT_BSTR;
constexpr VARTYPE dataType = VT_ARRAY | VT_UI1;

void deliver(CVLSafeArray& array, VARTYPE type, VARIANT* output)
{
    ATL::CComVariant local;
    array.Wrap(local);
    local.vt = type;
    handOver(output, local);
}

void deliverNames(VARIANT* output)
{
    CVLBstrArray names;
    names.Add(protectedStorage);
    deliver(names, namesType, output);
}

void deliverBackup(VARIANT* output)
{
    CVLByteArray array;
    array.Add({}); // a backup of nothing is an empty array
    CDerTree backup;
    const uint32_t size = CStorageData::BuildBackup(backup);
    std::span<uint8_t> place;
    if (size > 0 && SUCCEEDED(array.Extend(size, place)))
        backup.Write(place.data());
    deliver(array, dataType, output);
}

void restoreCopyOf(const VARIANT* data)
{
    if (!data)
        raiseStatus(E_POINTER);
    if (data->vt != dataType)
        raiseStatus(E_INVALIDARG);
    CVLByteArray copy;
    const HRESULT status = copy.CopyFrom(data->parray);
    if (FAILED(status))
        ATL::AtlThrow(status);
    RestoreFromSafeArray(copy);
}

// Only a restore that ran to its end is announced.
void postRestoreDone(WPARAM first, LPARAM second)
{
    if (const HWND window = findAgentWindow())
        PostMessageW(window, restoreDoneMessage(), first, second);
    else
        traceFormat(0, "VlAgent window NOT found!");
}

} // namespace

STDMETHODIMP CVLKTPages::GetStorageData(VARIANT* secretNames, VARIANT* storageData)
{
    const traceScope_t scope("CVLKTPages::GetStorageData");
    try {
        const CLoadedModule library(LoadLibraryW(L"VLFPApi.dll"));
        if (!library)
            raiseLastError();
        const bool secretExists = doesSecretExist(library.get());
        const bool dataPresent = CStorageData::IsStorageDataPresent();
        if (secretExists)
            deliverNames(secretNames);
        if (secretExists || dataPresent)
            deliverBackup(storageData);
    } catch (...) {
        frameStatus("GetStorageData"); // a failed backup shows in the trace alone
    }
    return S_OK;
}

STDMETHODIMP CVLKTPages::SetStorageData(VARIANT* storageData)
{
    const traceScope_t scope("CVLKTPages::SetStorageData");
    try {
        restoreCopyOf(storageData);
        postRestoreDone(0, 0);
        return S_OK;
    } catch (...) {
        return frameStatus("SetStorageData");
    }
}

STDMETHODIMP CVLKTPages::SetStorageData2(ULONG flags, VARIANT* storageData)
{
    const traceScope_t scope("CVLKTPages::SetStorageData2");
    try {
        restoreCopyOf(storageData);
        postRestoreDone(flags >> 16, flags & 0xFFFF);
        return S_OK;
    } catch (...) {
        return frameStatus("SetStorageData2");
    }
}

STDMETHODIMP CVLKTPages::SetPluginData(ULONG secretsSize, const BYTE* secrets, ULONG storageSize,
                                       const BYTE* storage)
{
    const traceScope_t scope("CVLKTPages::SetPluginData");
    try {
        if (!storage)
            raiseStatus(E_POINTER);
        if (storageSize == 0)
            raiseStatus(E_INVALIDARG);
        const std::wstring body = secretFromList({secrets, secrets ? secretsSize : 0});
        RestoreBackup({storage, storageSize});
        // The agent gets the name even when there is no secret, and no other notice of the restore.
        if (const HWND window = findAgentWindow())
            sendToAgent(window, restore2DoneMessage(), utf8FromWide(protectedStorage),
                        utf8FromWide(body));
        else
            traceFormat(0, "VlAgent window NOT found!");
        return S_OK;
    } catch (...) {
        return frameStatus("SetPluginData");
    }
}
