#include "quicklinks/quicklinks.h"

#include "common/text.h"
#include "formats/text/pathpart.h"
#include "quicklinks/ascii.h"
#include "storage/paths.h"
#include "storage/settings.h"
#include "tracecore/tracer.h"

#include <windows.h>

using namespace tracecore;

namespace {

constexpr std::string_view browser = "iexplore.exe";

// shortened is how a name or a target appears in the trace.
std::wstring shortened(const std::string& text)
{
    constexpr size_t most = 75;
    std::wstring wide = wideFromUtf8(text);
    if (wide.size() > most)
        wide.replace(most, std::wstring::npos, L" ...");
    return wide;
}

void tracegiven(const std::string& name, const std::string& target, bool isdlg,
                const std::string& manifest, uint32_t profile)
{
    traceFormatW(L"QL for: %s", shortpath_utf8(manifest).c_str());
    traceFormatW(L"  prof:  %d", profile);
    traceFormatW(L"  name: '%s'", shortened(name).c_str());
    traceFormatW(isdlg ? L"  dlgpath : '%s'" : L"  url : '%s'", shortened(target).c_str());
}

} // namespace

QL::QL()
{
    const std::wstring name = qlfilename();
    if (!fileexists(name))
        return;
    TextLines lines;
    load_textfile(name, lines);
    parse(lines);
    if (records.empty()) {
        krsurls.clear();
        krsdlgpaths.clear();
    }
    // The second run replaces the first one's result: krsurls has no effect on a backup. Intended.
    filter(krsurls, filtered);
    filter(krsdlgpaths, filtered);
}

void QL::add(const std::string& name, const std::string& target, const std::string& manifest,
             uint32_t profile, const std::string& manifestid, bool wocred)
{
    const traceScope_t scope("QL::add");
    const bool isdlg = isdlgpath(target);
    if (tracing && traceActive())
        tracegiven(name, target, isdlg, manifest, profile);
    const std::string_view file = fileNamePart(manifest);
    if (file.empty()) {
        traceNote("Cannot split manifest path");
        return;
    }
    QLRecord* record = find(file, profile);
    // Traced before the next test: the line doesn't mean that anything happens.
    if (tracing)
        traceText(record ? "  QL updated" : "  QL created");
    if (target.empty() || name.empty())
        return;
    QLRecord fresh;
    if (!record)
        fresh.manifest = utf8FromWide(collapseenv(wideFromUtf8(manifest)));
    QLRecord& changed = record ? *record : fresh;
    // The other of the two keeps its old value: kind selects the line that is written.
    (isdlg ? changed.dlgpath : changed.url) = target;
    changed.kind = isdlg ? 2 : 1;
    changed.name = name;
    if (record && profile != record->profile) // then it is the one that stands for any
        m_lookup.widen(records, static_cast<size_t>(record - records.data()));
    changed.profile = profile;
    changed.manifestid = manifestid;
    changed.wocred = wocred;
    if (!record)
        records.push_back(std::move(fresh));
    dirty = true;
}

QLRecord* QL::find(std::string_view manifestfile, uint32_t profile)
{
    const size_t position = m_lookup.first(records, fileNamePart(manifestfile), profile);
    return position == QLLookup::none ? nullptr : &records[position];
}

void QL::flush()
{
    // True after a save that worked, false after one that failed. Intended: the object ends soon
    // after.
    if (dirty)
        dirty = save(qlfilename(), tracing);
}

bool QL::removefile()
{
    const std::wstring name = qlfilename();
    return fileexists(name) && DeleteFileW(longform(name).c_str());
}

std::wstring qlfilename()
{
    return settings_getpath(L"path_quicklink_filename");
}

bool isdlgpath(std::string_view target)
{
    const std::string lower = asciilower(target);
    return lower.find(browser) != std::string::npos || lower.ends_with(".exe");
}
