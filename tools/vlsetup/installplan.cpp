#include "installplan.h"

#include "common/text.h"
#include "places.h"
#include "productpaths.h"
#include "registration.h"
#include "shared/toolerror.h"

#include <windows.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

namespace {

std::wstring systemFolder()
{
    wchar_t folder[MAX_PATH] = {};
    GetSystemDirectoryW(folder, MAX_PATH);
    return folder;
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
        for (const std::string& line :
             planRegistration(m_wanted.root, m_before, m_plan.record.values))
            m_plan.left.push_back(line);
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
    std::vector<std::string> m_conflicts;
    bool m_neighboursElsewhere = false;
};

} // namespace

plan_t planInstallation(const installation_t& wanted, const record_t& before)
{
    return planner_t(wanted, before).plan();
}
