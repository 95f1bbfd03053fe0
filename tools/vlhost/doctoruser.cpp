#include "agent/discovery.h"
#include "common/text.h"
#include "doctor.h"
#include "files.h"
#include "neighbours/linknames.h"
#include "pluginhost.h"
#include "shared/systemerror.h"
#include "shared/toolerror.h"
#include "storage/paths.h"
#include "storage/settings.h"
#include "traceswitch.h"

#include <filesystem>

using namespace VLONLINEIDSLib;

namespace {

namespace fs = std::filesystem;

// notWritable says why no file can be made in a folder, which may have to be made first; 0 if one
// can.
DWORD notWritable(const std::wstring& folder)
{
    fs::path place = fs::path(folder).lexically_normal();
    while (!isThere(place.wstring()) && place.has_relative_path())
        place = place.parent_path();
    const std::wstring name = (place / L"vlhost-doctor.tmp").wstring();
    const CFileHandle file(CreateFileW(longform(name).c_str(), GENERIC_WRITE, 0, nullptr,
                                       CREATE_NEW, FILE_FLAG_DELETE_ON_CLOSE, nullptr));
    return file ? 0 : GetLastError();
}

checkup_t personalFolder()
{
    const std::wstring folder = settings_getpath(L"path_localstorage_dir");
    const std::string name = utf8FromWide(folder);
    constexpr char another[] = "vlhost setting set path_localstorage_dir "
                               "\"%APPDATA%\\Veltrano\\KRS\\Templates\\\\\"";
    if (folder.empty())
        return {"personal folder", false, "the settings name none", "vlsetup install"};
    if (const DWORD error = notWritable(folder))
        return {"personal folder", false, name + " can't be written: " + errorText(error), another};
    return {"personal folder", true, name, ""};
}

checkup_t policy(const std::string& chosen)
{
    constexpr char name[] = "policy";
    try {
        ULONG value = 0;
        const CPluginHost host(chosen);
        const HRESULT status = host.Get<IVLKTDisableApp>().get()->GetStatus(&value);
        if (FAILED(status))
            return {name, false, statusText(status), "vlsetup install"};
        if (value < 2)
            return {name, true, "the plug-in is on", ""};
        return {name, false, "the plug-in is switched off", "vlhost enable"};
    } catch (const CToolError& error) {
        return {name, false, error.What(), "vlsetup install"};
    }
}

checkup_t agentWindow()
{
    const bool there = findAgentWindow() != nullptr;
    return {"agent window", there, there ? "it is there" : "no agent is running",
            there ? "" : "start vlagent"};
}

checkup_t agentObjects()
{
    constexpr const LinkNames& names = linkSets[linkNipc];
    const std::pair<const wchar_t*, CKernelHandle> objects[] = {
        {names.admission, CKernelHandle(OpenSemaphoreW(SYNCHRONIZE, FALSE, names.admission))},
        {names.acknowledge, CKernelHandle(OpenEventW(SYNCHRONIZE, FALSE, names.acknowledge))},
        {names.dataReady, CKernelHandle(OpenEventW(SYNCHRONIZE, FALSE, names.dataReady))},
        {names.buffer, CKernelHandle(OpenFileMappingW(FILE_MAP_WRITE, FALSE, names.buffer))}};
    std::string missing;
    for (const auto& [name, object] : objects)
        if (!object)
            missing += (missing.empty() ? "" : ", ") + utf8FromWide(name);
    if (missing.empty())
        return {"agent objects", true, "all four are there", ""};
    return {"agent objects", false, "not there, or not what they should be: " + missing,
            "vlagent --quit & start vlagent"};
}

checkup_t traceSwitch()
{
    constexpr char name[] = "trace switch";
    const traceSwitch_t set = readTraceSwitch();
    const DWORD value = set.doTrace.value_or(0);
    if (value == 0)
        return {name, true, "off", ""};
    const auto bad = [&](const std::string& what, const char* mend) {
        return checkup_t{name, false, "on, but " + what, mend};
    };
    if (value != 1 && !dayIsToCome(value))
        return bad("the last day was before " + dayOf(value), "vlhost trace off");
    if (excludedFromTracing(L"VLOnlineIDs"))
        return bad("the plug-in is listed in ComponentsNOT",
                   "reg delete HKLM\\SOFTWARE\\Veltrano\\Tracing\\ComponentsNOT /v VLOnlineIDs /f");
    const DWORD target = set.traceToFile.value_or(1);
    if (target != 1 && target != 3 && target != 4)
        return bad("TraceToFile is none of 1, 3 and 4", "vlhost trace on");
    const std::wstring folder = set.Folder(L"");
    if (const DWORD error = target == 1 && !folder.empty() ? notWritable(folder) : 0)
        return bad(utf8FromWide(folder) + " can't be written: " + errorText(error),
                   "vlhost trace on --dir %TEMP%");
    return {name, true, "on", ""};
}

} // namespace

void examineUser(const std::string& chosen, std::vector<checkup_t>& checkups)
{
    checkups.push_back(personalFolder());
    checkups.push_back(policy(chosen));
    checkups.push_back(agentWindow());
    checkups.push_back(agentObjects());
    checkups.push_back(traceSwitch());
}
