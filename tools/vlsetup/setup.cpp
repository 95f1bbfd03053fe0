#include "setup.h"

#include "common/module.h"
#include "common/scoped.h"
#include "common/text.h"
#include "places.h"
#include "record.h"
#include "shared/toolerror.h"
#include "shared/windowsfiles.h"

#include <windows.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

namespace {

using lines_t = std::vector<std::string>;

const std::wstring pluginsKey = L"SOFTWARE\\Veltrano\\VLKT\\Plugins";
const std::wstring classId = L"{42F9948B-B690-4325-A073-63A8BF31FF32}";
const std::wstring registrationKeys[] = {pluginsKey + L"\\UIElements\\AppControl\\" + classId,
                                         pluginsKey + L"\\UIElements\\BackupRestore\\" + classId,
                                         pluginsKey + L"\\TrayIcon\\" + classId};
constexpr const wchar_t* registrationValues[] = {L"", L"TargetShellVersions"};

std::wstring folderPath(const std::wstring& path)
{
    std::wstring full = fullPath(path);
    while (full.size() > 3 && full.back() == L'\\')
        full.pop_back();
    return full;
}

std::wstring binOf(const std::wstring& root)
{
    return root + L"\\bin";
}
std::wstring recordOf(const std::wstring& root)
{
    return binOf(root) + L"\\VLOnlineIDs.installed.json";
}
std::wstring pluginOf(const std::wstring& root)
{
    return binOf(root) + L"\\VLOnlineIDs.dll";
}

std::wstring systemFolder()
{
    wchar_t folder[MAX_PATH] = {};
    GetSystemDirectoryW(folder, MAX_PATH);
    return folder;
}

// wanted_t is one place that an installation fills.
struct wanted_t {
    std::wstring path, name;
    std::wstring source;    // of a file
    std::wstring former;    // where a file that is there goes; empty if it isn't kept
    std::string content;    // to be there afterwards
    bool neighbour = false; // of the plug-in: one that is there stays
    bool replace = false;   // takes the place of what isn't ours, which comes back at the removal
};

// plan_t is all that will happen.
struct plan_t {
    std::vector<wanted_t> files, values; // to be written
    record_t record;                     // with all of them, and what an earlier version left
    lines_t left;                        // what stays as it is
};

void checkPlace(const std::wstring& root)
{
    const std::wstring drive = std::filesystem::path(root).root_path();
    if (GetDriveTypeW(drive.c_str()) == DRIVE_NO_ROOT_DIR)
        throw CToolError("there is no " + utf8FromWide(drive), "which drive is meant?");
    if (pluginOf(root).size() >= MAX_PATH)
        throw CToolError("the path " + utf8FromWide(root) + " is too long for a dashboard",
                         "choose a shorter one");
}

// shipped reads the list of the package.
std::vector<std::wstring> shipped(const std::wstring& from)
{
    std::ifstream list(std::filesystem::path(from) / L"files.txt");
    std::vector<std::wstring> files;
    for (std::string line; std::getline(list, line);) {
        std::wstring file = wideFromUtf8(line);
        std::erase(file, L'\r');
        std::ranges::replace(file, L'/', L'\\');
        if (!file.empty())
            files.push_back(file);
    }
    if (files.empty())
        throw CToolError(utf8FromWide(from) + " is no package: there is no list files.txt",
                         "start it from the unpacked package");
    return files;
}

// planner_t finds out what is to be written, and what stays.
class planner_t
{
public:
    planner_t(const installation_t& wanted, const record_t& before)
        : m_wanted(wanted), m_bin(binOf(wanted.root)), m_before(before)
    {
        m_plan.record.folders = before.folders;
        m_plan.record.keys = before.keys;
    }

    plan_t plan()
    {
        addValues();
        std::vector<std::wstring> files = shipped(m_wanted.from);
        if (!m_wanted.uninstaller.empty())
            files.push_back(m_wanted.uninstaller);
        for (const std::wstring& file : files)
            addFile(file);
        if (!m_conflicts.empty()) {
            std::string list;
            for (const std::string& one : m_conflicts)
                list += (list.empty() ? "" : ", ") + one;
            throw CToolError("not from an installation of this product: " + list,
                             "move it away, choose another folder, or replace it with --replace");
        }
        addRegistration();
        keepRest(m_before.files, m_plan.record.files);
        keepRest(m_before.values, m_plan.record.values);
        for (const written_t& file : m_plan.record.files)
            note(missingFolders(std::filesystem::path(file.path).parent_path()),
                 m_plan.record.folders);
        for (const written_t& value : m_plan.record.values)
            note(missingKeys(value.path), m_plan.record.keys);
        return std::move(m_plan);
    }

private:
    static void note(const std::vector<std::wstring>& made, std::vector<std::wstring>& all)
    {
        for (const std::wstring& one : made)
            if (std::ranges::find(all, one) == all.end())
                all.push_back(one);
    }

    // What an earlier version wrote, and this one doesn't, stays in the record for the removal.
    static void keepRest(const std::vector<written_t>& before, std::vector<written_t>& now)
    {
        for (const written_t& entry : before)
            if (!find(now, entry.path, entry.name))
                now.push_back(entry);
    }

    void addFile(const std::wstring& file)
    {
        const std::wstring source = m_wanted.from + L'\\' + file;
        wanted_t wanted;
        wanted.path = m_bin + L'\\' + file;
        wanted.source = m_wanted.from + L'\\' + file;
        wanted.content = fileContent(wanted.source);
        wanted.replace = m_wanted.replace;
        if (wanted.content.empty())
            throw CToolError("the package is not whole: there is no " + utf8FromWide(wanted.source),
                             "unpack it again");
        if (file.starts_with(L"standins\\")) {
            const std::wstring name = file.substr(file.find(L'\\') + 1);
            const bool system = name == L"VLFPApi.dll"; // the plug-in loads it from there
            wanted.path = (system ? systemFolder() : m_bin) + L'\\' + name;
            wanted.neighbour = true;
            wanted.replace = m_wanted.standIns == standIns_t::all;
            if (m_wanted.standIns == standIns_t::none || (!system && m_neighboursElsewhere))
                return;
        }
        const std::string now = fileContent(wanted.path);
        if (add(wanted, now, m_before.files, m_plan.files, m_plan.record.files) && !now.empty())
            checkNotInUse(wanted.path);
    }

    void addValue(const std::wstring& key, const wchar_t* name, const std::wstring& text,
                  bool neighbour, bool replace)
    {
        wanted_t wanted;
        wanted.path = key;
        wanted.name = name;
        wanted.content = textValue(text);
        wanted.neighbour = neighbour;
        wanted.replace = replace;
        add(wanted, valueContent(key, name), m_before.values, m_plan.values, m_plan.record.values);
    }

    void addValues()
    {
        const std::wstring root = L"SOFTWARE\\Veltrano";
        const bool all = m_wanted.standIns == standIns_t::all;
        addValue(root, L"VeltranoPath", m_wanted.root, true, false);
        const size_t before = m_plan.left.size();
        addValue(root + L"\\Applications\\KRS", L"BinDir", m_bin, true, all);
        addValue(root + L"\\Applications", L"BinDir", m_bin, true, all);
        m_neighboursElsewhere = m_plan.left.size() > before;
        if (m_wanted.standIns != standIns_t::none && !m_neighboursElsewhere)
            addValue(root + L"\\Branding\\Common", L"DLLPath", m_bin + L"\\Branding.dll", true,
                     all);
        addValue(root + L"\\Products\\VLOnlineIDs", L"Version", VL_VERSION, false, true);
        if (m_wanted.uninstaller.empty())
            return;
        const std::wstring key =
            L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\VLOnlineIDs";
        const std::wstring command = L'"' + m_bin + L'\\' + m_wanted.uninstaller + L'"';
        addValue(key, L"DisplayName", L"Veltrano Password Manager plug-in", false, true);
        addValue(key, L"DisplayVersion", VL_VERSION, false, true);
        addValue(key, L"Publisher", L"Veltrano", false, true);
        addValue(key, L"InstallLocation", m_wanted.root, false, true);
        addValue(key, L"UninstallString", command, false, true);
        addValue(key, L"QuietUninstallString", command + L" /S", false, true);
    }

    // The plug-in writes these itself; here they are only noted, with what another plug-in of this
    // class has there.
    void addRegistration()
    {
        for (const std::wstring& key : registrationKeys) {
            const std::string registered = valueContent(key, L"");
            const bool foreign = !registered.empty() &&
                                 registered != textValue(pluginOf(m_wanted.root), REG_EXPAND_SZ);
            if (foreign && !find(m_before.values, key))
                m_plan.left.push_back("HKLM\\" + utf8FromWide(key) +
                                      " comes back when this plug-in is removed");
            for (const wchar_t* name : registrationValues) {
                const written_t* const old = find(m_before.values, key, name);
                written_t entry{key, name, old ? old->contents : lines_t(), old ? old->former : ""};
                if (const std::string now = valueContent(key, name); foreign && !entry.ours(now))
                    entry.former = now;
                m_plan.record.values.push_back(entry);
            }
        }
    }

    // add decides on one place.
    //
    // Returns: whether it will be written
    bool add(wanted_t wanted, const std::string& now, const std::vector<written_t>& before,
             std::vector<wanted_t>& jobs, std::vector<written_t>& record)
    {
        const written_t* const old = find(before, wanted.path, wanted.name);
        const bool file = !wanted.source.empty(), ours = old && old->ours(now);
        written_t entry{wanted.path, wanted.name, {wanted.content}, old ? old->former : ""};
        if (!ours && !now.empty()) {
            if (now == wanted.content)
                return false; // equal, and not ours to remove
            if (wanted.neighbour && !wanted.replace) {
                m_plan.left.push_back(shown(wanted) + " stays as it was: it is not ours");
                return false;
            }
            // What was there first comes back, and no more than one file can wait for that.
            if (!wanted.replace || (file && !entry.former.empty())) {
                m_conflicts.push_back(shown(wanted));
                return false;
            }
            if (file)
                wanted.former = freeName(wanted.path);
            if (entry.former.empty())
                entry.former = file ? utf8FromWide(wanted.former) : now;
        }
        if (ours && now != wanted.content)
            entry.contents.push_back(now); // until the new one is there
        jobs.push_back(wanted);
        record.push_back(entry);
        return true;
    }

    static std::string shown(const wanted_t& wanted)
    {
        return wanted.source.empty() ? "HKLM\\" + utf8FromWide(wanted.path + L'\\' + wanted.name)
                                     : utf8FromWide(wanted.path);
    }

    static std::wstring freeName(const std::wstring& path)
    {
        std::wstring name = path + L".before";
        for (int i = 2; GetFileAttributesW(name.c_str()) != INVALID_FILE_ATTRIBUTES; ++i)
            name = path + L".before" + std::to_wstring(i);
        return name;
    }

    const installation_t& m_wanted;
    const std::wstring m_bin;
    const record_t& m_before;
    plan_t m_plan;
    lines_t m_conflicts;
    bool m_neighboursElsewhere = false;
};

// callPlugin calls DllRegisterServer or DllUnregisterServer.
void callPlugin(const std::wstring& path, const char* function)
{
    const CLoadedModule library(
        LoadLibraryExW(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH));
    if (!library)
        failed("can't load", path, GetLastError());
    const auto entry = reinterpret_cast<HRESULT(WINAPI*)()>(
        reinterpret_cast<void*>(GetProcAddress(library.get(), function)));
    const HRESULT status = entry ? entry() : E_NOINTERFACE;
    if (FAILED(status))
        failed("the dashboard's registration failed:", path, static_cast<DWORD>(status));
}

// noteRegistration records the current registration as ours if it is that of this DLL.
void noteRegistration(const std::wstring& root, record_t& record)
{
    const std::string ours = textValue(pluginOf(root), REG_EXPAND_SZ);
    for (written_t& entry : record.values)
        if (std::ranges::find(registrationKeys, entry.path) != std::end(registrationKeys) &&
            valueContent(entry.path, L"") == ours)
            entry.contents = {valueContent(entry.path, entry.name)};
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
    callPlugin(pluginOf(wanted.root), "DllRegisterServer");
    noteRegistration(wanted.root, plan.record);
    for (auto* const entries : {&plan.record.files, &plan.record.values})
        for (written_t& entry : *entries)
            while (entry.contents.size() > 1)
                entry.contents.pop_back(); // the new one stays
    writeRecord(recordOf(wanted.root), plan.record);
}

// unregister lets the plug-in take its registration back, so that it writes its list, unless
// another one has it now. The plug-in also removes keys that hold nothing but values, even those of
// others: these values go into the record first, as what was there, and come back with the rest.
void unregister(const std::wstring& root, record_t& record)
{
    const std::wstring plugin = pluginOf(root);
    const std::string ours = textValue(plugin, REG_EXPAND_SZ);
    const written_t* const file = find(record.files, plugin);
    if (!file || !file->ours(fileContent(plugin)) ||
        std::ranges::none_of(registrationKeys,
                             [&](const auto& key) { return valueContent(key, L"") == ours; }))
        return;
    const registryTree_t tree = readTree(pluginsKey);
    for (const auto& [key, values] : tree)
        for (const auto& [name, content] : values) {
            written_t* const known = find(record.values, key, name);
            if (!known)
                record.values.push_back({key, name, {}, content});
            else if (!known->ours(content))
                known->former = content;
        }
    writeRecord(recordOf(root), record);
    callPlugin(plugin, "DllUnregisterServer");
    for (const auto& [key, values] : tree)
        if (std::ranges::find(record.keys, key) == record.keys.end())
            makeKey(key);
}

// removal_t takes back what a record names.
class removal_t
{
public:
    removal_t(const std::wstring& root, record_t& record) : m_root(root), m_record(record) {}

    // attempt runs one step; what fails is noted, and the removal goes on.
    template <class Step> bool attempt(const Step& step)
    {
        try {
            step();
            return true;
        } catch (const CToolError& error) {
            m_result.lines.emplace_back(error.what());
            m_result.complete = false;
            return false;
        }
    }

    // run removes what is ours and brings back what was there before. What fails stays in the
    // record, and the record then stays.
    removed_t run()
    {
        std::erase_if(m_record.values, [&](const written_t& entry) {
            return attempt([&] { takeBackValue(entry); });
        });
        std::erase_if(m_record.files, [&](const written_t& entry) {
            return attempt([&] { takeBackFile(entry); });
        });
        innermostFirst(m_record.keys, removeKeyIfEmpty);
        const std::wstring path = recordOf(m_root);
        if (!m_result.complete) {
            attempt([&] { writeRecord(path, m_record); });
        } else if (attempt([&] { takeAway(path); })) {
            innermostFirst(m_record.folders, removeFolderIfEmpty);
        }
        return std::move(m_result);
    }

private:
    void takeBackValue(const written_t& entry)
    {
        const std::string now = valueContent(entry.path, entry.name);
        if (!now.empty() && !entry.ours(now)) {
            if (now != entry.former)
                m_result.lines.push_back("HKLM\\" + utf8FromWide(entry.path + L'\\' + entry.name) +
                                         " was changed since and stays");
        } else if (!entry.former.empty()) {
            putValue(entry.path, entry.name, entry.former);
        } else {
            removeValue(entry.path, entry.name);
        }
    }

    void takeBackFile(const written_t& entry)
    {
        const std::string now = fileContent(entry.path);
        const std::wstring former = wideFromUtf8(entry.former);
        const bool waits = !former.empty() && !fileContent(former).empty();
        if (!now.empty() && !entry.ours(now)) {
            if (waits || former.empty()) // else it is the one from before, not yet moved
                m_result.lines.push_back(utf8FromWide(entry.path) + " was changed since and stays" +
                                         (waits ? ", as does " + entry.former : ""));
            return;
        }
        takeAway(entry.path);
        if (waits)
            moveTo(former, entry.path);
    }

    void innermostFirst(std::vector<std::wstring>& made, void (*remove)(const std::wstring&))
    {
        std::ranges::stable_sort(made, std::greater(), &std::wstring::size);
        for (const std::wstring& one : made)
            attempt([&] { remove(one); });
    }

    const std::wstring& m_root;
    record_t& m_record;
    removed_t m_result;
};

} // namespace

lines_t install(const installation_t& asked)
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
    plan_t plan = planner_t(wanted, before).plan();
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
    removal.attempt([&] { unregister(root, record); });
    return removal.run();
}
