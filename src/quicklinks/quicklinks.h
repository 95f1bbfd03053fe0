#pragma once

#include "quicklinks/lookup.h"
#include "quicklinks/record.h"
#include "storage/textfile.h"

#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

// QL is the user's quick link file in memory: quicklinks.cpp has its life and its changes,
// recordfile.cpp the file's text, filter.cpp what a backup carries. It belongs to the operation that built it: no locks,
// and two writers of the file overwrite each other. Nothing here raises unless memory runs out.
//
// A quick link is looked up by the file name of its manifest and its profile; the manifest's folder
// doesn't count, so that a template that has moved keeps its quick link.
class QL
{
public:
    // The constructor loads the file named by the settings and fills filtered. A missing file is an
    // empty list.
    QL();

    // add makes a quick link, or updates the first one with that manifest's file name and profile.
    //
    // target:   an address or a dialog path; isdlgpath decides which
    // manifest: the template's full path; a found record keeps the path that it has
    // Errors:   a manifest without a file name is refused with a trace, an empty name or target
    //           without one
    void add(const std::string& name, const std::string& target, const std::string& manifest,
             uint32_t profile, const std::string& manifestid, bool wocred);

    // find gives the first record of that file name and profile.
    //
    // manifestfile: a path or a bare file name; only its file name counts, case included
    // profile:      all ones for any
    // Returns:      a loan until records changes; null when there is none
    QLRecord* find(std::string_view manifestfile, uint32_t profile);

    // flush saves the file when dirty, and then sets dirty to save's result.
    void flush();

    // removefile deletes the file. Returns: true when it was there and is gone.
    static bool removefile();

    // filter selects what a backup carries: each record of a folder other than the user's roaming
    // templates folder, and of the user's own those whose target is neither in the list nor another
    // folder's too.
    //
    // list: UTF-8 items separated by commas
    // keep: replaced by copies, in the order of records
    void filter(const std::string& list, std::vector<QLRecord>& keep) const;

    // parse replaces records and both lists with what the lines hold. Lines that are no key and
    // value are traced and skipped, unknown keys are ignored, records whose manifest isn't there
    // now are dropped.
    void parse(const TextLines& lines);

    // render writes the records that have a kind, then the lists that aren't empty, each line with
    // one line feed. If memory runs out, the stream reports it as it is set to.
    void render(const std::string& urls, const std::string& dlgpaths, std::ostream& out) const;

    // save renders everything and then writes the file, with CR LF. A failure to render leaves the
    // old file as it was; a failure to write leaves a short or empty one.
    //
    // fileName: at most 260 characters
    // traced:   whether the name is traced
    // Returns:  true when the file was written; a failure is traced
    bool save(const std::wstring& fileName, bool traced) const;

    std::vector<QLRecord> records;  // changed by parse and add; others may append or cut
    std::string krsurls;            // items separated by commas, from the file
    std::string krsdlgpaths;        // likewise
    bool dirty = false;             // records changed since the load; for its end see flush
    std::vector<QLRecord> filtered; // copies of the records that a backup carries; from the load
    bool tracing = true;

private:
    QLLookup m_lookup;
};

// qlfilename is the full name of the quick link file; empty if unset. Source: setting
// path_quicklink_filename.
std::wstring qlfilename();

// isdlgpath is true for the target of a dialog link, which names iexplore.exe anywhere or ends in
// .exe. Any other target is an address.
bool isdlgpath(std::string_view target);

// splitdlgpath splits a dialog link after the browser's program name; any other text is all head.
//
// head, tail: replaced, both in lower case
void splitdlgpath(const std::wstring& text, std::wstring& head, std::wstring& tail);
