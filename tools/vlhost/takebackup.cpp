#include "takebackup.h"

#include "formats/backup/backupview.h"
#include "shared/systemerror.h"
#include "shared/toolerror.h"
#include "variants.h"

using namespace VLONLINEIDSLib;

namespace {

constexpr char seeTrace[] =
    "the plug-in hides failures: 'vlhost trace on', try again, and read the trace";

} // namespace

backup_t takeBackup(const CPluginHost& host)
{
    CVariant names;
    CVariant data;
    const HRESULT status =
        host.Get<IVLKTBackupRestore2>().get()->GetStorageData(names.Get(), data.Get());
    if (FAILED(status))
        throw CToolError("the plug-in gave no backup: " + statusText(status), seeTrace);
    if (data.Value().vt == VT_EMPTY)
        throw CToolError("the plug-in gave no backup: there is nothing to back up, or it failed",
                         seeTrace);
    if (data.Value().vt != (VT_ARRAY | VT_UI1))
        throw CToolError("the plug-in gave something else than bytes", seeTrace);
    backup_t backup{bytesOf(data.Value()), textsOf(names.Value())};
    if (backup.bytes.empty())
        throw CToolError("the plug-in gave an empty backup", seeTrace);
    CBackupView view;
    if (!view.Decode(backup.bytes))
        throw CToolError("the plug-in gave bytes that are no backup", seeTrace);
    return backup;
}

bytes_t takeBackupIfAny(const CPluginHost& host)
{
    try {
        return takeBackup(host).bytes;
    } catch (const CToolError&) {
        return {};
    }
}
