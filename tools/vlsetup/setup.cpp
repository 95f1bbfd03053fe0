#include "setup.h"

#include "common/module.h"
#include "common/text.h"
#include "installplan.h"
#include "places.h"
#include "productpaths.h"
#include "record.h"
#include "registration.h"
#include "removal.h"
#include "shared/toolerror.h"
#include "shared/windowsfiles.h"

#include <windows.h>

#include <filesystem>

namespace {

std::wstring folderPath(const std::wstring& path)
{
    std::wstring full = fullPath(path);
    while (full.size() > 3 && full.back() == L'\\')
        full.pop_back();
    return full;
}

void checkPlace(const std::wstring& root)
{
    const std::wstring drive = std::filesystem::path(root).root_path();
    if (GetDriveTypeW(drive.c_str()) == DRIVE_NO_ROOT_DIR)
        throw CToolError("there is no " + utf8FromWide(drive), "which drive is meant?");
    if (pluginOf(root).size() >= MAX_PATH)
        throw CToolError("the path " + utf8FromWide(root) + " is too long for a dashboard",
                         "choose a shorter one");
}

// perform carries a plan out; the record is there before anything that it names.
void perform(plan_t& plan, const installation_t& wanted)
{
    for (const std::wstring& folder : plan.record.folders)
        makeFolder(folder);
    writeRecord(recordOf(wanted.root), plan.record);
    for (const wanted_t& file : plan.files) {
        if (!file.former.empty())
            moveTo(file.path, file.former);
        copyTo(file.source, file.path);
    }
    for (const wanted_t& value : plan.values)
        putValue(value.path, value.name, value.content);
    registerPlugin(wanted.root);
    noteRegistration(wanted.root, plan.record);
    for (auto* const entries : {&plan.record.files, &plan.record.values})
        for (written_t& entry : *entries)
            while (entry.contents.size() > 1)
                entry.contents.pop_back(); // the new one stays
    writeRecord(recordOf(wanted.root), plan.record);
}

} // namespace

std::vector<std::string> install(const installation_t& asked)
{
    installation_t wanted = asked;
    wanted.from = folderPath(asked.from);
    wanted.root = folderPath(asked.root);
    checkPlace(wanted.root);
    checkAdministrator();
    if (!_wcsicmp(wanted.from.c_str(), binOf(wanted.root).c_str()))
        throw CToolError("the package can't be installed over itself",
                         "start it from the unpacked package");
    const record_t before = readRecord(recordOf(wanted.root));
    plan_t plan = planInstallation(wanted, before);
    try {
        perform(plan, wanted);
    } catch (const CToolError& error) {
        if (!before.empty())
            throw CToolError(std::string(error.what()) +
                             "; not all is of one version now: install again, or uninstall");
        removal_t removal(wanted.root, plan.record);
        removal.attempt([&] { noteRegistration(wanted.root, plan.record); });
        throw CToolError(std::string(error.what()) +
                         (removal.run().complete ? "; everything is as it was"
                                                 : "; not all could be taken back: uninstall"));
    }
    return plan.left;
}

removed_t uninstall(const std::wstring& folder)
{
    const std::wstring root = folderPath(folder);
    checkAdministrator();
    record_t record = readRecord(recordOf(root));
    if (record.empty())
        throw CToolError("nothing is installed in " + utf8FromWide(root) + ": there is no " +
                             utf8FromWide(recordOf(root)),
                         "which folder was it?");
    for (const written_t& file : record.files) {
        if (!_wcsicmp(file.path.c_str(), moduleFileName(nullptr).c_str()))
            throw CToolError("this program can't remove itself", "run uninstall.cmd");
        if (file.ours(fileContent(file.path)))
            checkNotInUse(file.path);
    }
    removal_t removal(root, record);
    removal.attempt([&] { unregisterPlugin(root, record); });
    return removal.run();
}
