#include "common/scoped.h"
#include "common/text.h"
#include "quicklinks/ascii.h"
#include "quicklinks/quicklinks.h"
#include "security/objectsecurity.h"
#include "storage/paths.h"
#include "tracecore/tracer.h"

#include <windows.h>
#include <shlwapi.h>

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <sstream>
#include <stdexcept>

using namespace tracecore;

namespace {

// integer reads as a stream does: digits after blanks and a sign, 0 without digits, the largest
// number for one that is too large.
uint32_t integer(const std::string& text)
{
    uint32_t value = 0;
    std::istringstream(text) >> value;
    return value;
}

bool hascontent(const QLRecord& record)
{
    return record.kind != 0 || !record.name.empty() || !record.url.empty() ||
           !record.manifest.empty() || !record.dlgpath.empty() || record.profile != 0 ||
           record.wocred; // an identifier alone is no content
}

bool manifestexists(const QLRecord& record)
{
    bool hadMark = false;
    return fileexists(stripalienmark(expandenv(wideFromUtf8(record.manifest)), hadMark));
}

// programexists is true if a dialog link's program is there. References are not expanded.
bool programexists(const std::string& dlgpath)
{
    std::wstring head;
    std::wstring tail;
    splitdlgpath(wideFromUtf8(dlgpath), head, tail);
    return fileexists(head);
}

// The keys of the file. One that is none of them is of a later version, and lost at the next save.
constexpr struct {
    std::string_view key;
    void (*set)(QL& file, QLRecord& record, std::string&& value);
} keys[] = {
    {"manifest",
     [](QL&, QLRecord& record, std::string&& value) { record.manifest = std::move(value); }},
    {"url",
     [](QL&, QLRecord& record, std::string&& value) {
         record.url = std::move(value);
         record.kind = 1;
     }},
    {"dlgpath",
     [](QL&, QLRecord& record, std::string&& value) {
         if (!programexists(value))
             return;
         record.dlgpath = std::move(value);
         record.kind = 2;
     }},
    {"name", [](QL&, QLRecord& record, std::string&& value) { record.name = std::move(value); }},
    {"profile",
     [](QL&, QLRecord& record, std::string&& value) { record.profile = integer(value); }},
    {"manifestid",
     [](QL&, QLRecord& record, std::string&& value) { record.manifestid = std::move(value); }},
    {"qlwocred",
     [](QL&, QLRecord& record, std::string&& value) { record.wocred = integer(value) == 1; }},
    {"krsurls", [](QL& file, QLRecord&, std::string&& value) { file.krsurls = std::move(value); }},
    {"krsdlgpaths",
     [](QL& file, QLRecord&, std::string&& value) { file.krsdlgpaths = std::move(value); }},
};

struct stdioStream {
    using value_type = FILE*;
    static FILE* empty() noexcept { return nullptr; }
    static void close(FILE* stream) noexcept { std::fclose(stream); }
};
using CStream = CScoped<stdioStream>;

// openfolder lets application packages into the folder of the file.
void openfolder(const std::wstring& fileName)
{
    wchar_t folder[MAX_PATH + 1] = {};
    if (fileName.size() >= std::size(folder))
        throw std::length_error("file name too long");
    fileName.copy(folder, fileName.size());
    PathRemoveFileSpecW(folder);
    allowapppackages(folder);
}

void write(const std::wstring& fileName, const std::string& text)
{
    // The mode says text: the program that loaded us may have made binary the default.
    CStream stream(_wfopen(fileName.c_str(), L"w+t"));
    if (!stream)
        throw std::runtime_error("_wopen failed.");
    // A zero byte in a value ends the file there.
    if (std::fputs(text.c_str(), stream.get()) < 0) {
        // Stays open: closing would try once more to write what is left in its buffer.
        (void)stream.release();
        throw std::runtime_error("fputs failed.");
    }
}

} // namespace

void QL::parse(const TextLines& lines)
{
    records.clear();
    krsurls.clear();
    krsdlgpaths.clear();
    m_lookup.clear();
    QLRecord current;

    const auto finish = [&] {
        // A record whose manifest isn't there leaves its fields to the next one. Intended.
        if (hascontent(current) && manifestexists(current)) {
            records.push_back(std::move(current));
            current = {};
        }
    };
    for (const std::string& line : lines) {
        if (line.empty())
            continue;
        if (asciiequal<char>(line, "[shortcutrecord]")) {
            finish();
            continue;
        }
        const size_t equals = line.find('=');
        if (equals == std::string::npos || equals == 0) {
            if (traceActive())
                traceStatusFormat(S_OK, L"inv.line '%s'", wideFromUtf8(line).c_str());
            continue;
        }
        const std::string_view key = std::string_view(line).substr(0, equals);
        const auto known =
            std::ranges::find_if(keys, [&](const auto& row) { return asciiequal(row.key, key); });
        if (known != std::end(keys))
            known->set(*this, current, line.substr(equals + 1));
    }
    finish();
    for (size_t i = 0; i < records.size(); ++i)
        records[i].index = static_cast<int32_t>(i);
}

void QL::render(const std::string& urls, const std::string& dlgpaths, std::ostream& out) const
{
    for (const QLRecord& record : records) {
        if (record.kind == 0)
            continue;
        out << "[ShortCutRecord]\n";
        out << "Manifest=" << record.manifest << '\n';
        if (record.kind == 1)
            out << "Url=" << record.url << '\n';
        if (record.kind == 2)
            out << "Dlgpath=" << record.dlgpath << '\n';
        out << "Name=" << record.name << '\n';
        out << "Profile=" << record.profile << '\n';
        out << "ManifestID=" << record.manifestid << '\n';
        out << "QLwoCred=" << (record.wocred ? 1 : 0) << '\n';
    }
    if (!urls.empty())
        out << "KRSURLs=" << urls << '\n';
    if (!dlgpaths.empty())
        out << "KRSDlgPaths=" << dlgpaths << '\n';
}

bool QL::save(const std::wstring& fileName, bool traced) const
{
    const traceScope_t scope("QL::save");
    if (traced && traceActive())
        traceFormatW(L"save %s", shortpath(fileName).c_str());
    if (fileName.empty()) {
        traceNote("empty fname");
        return false;
    }
    try {
        std::ostringstream text;
        text.exceptions(std::ios::badbit); // else it would only stop when memory runs out
        render(krsurls, krsdlgpaths, text);
        const std::string whole = text.str();
        openfolder(fileName);
        write(fileName, whole);
        return true;
    } catch (...) {
        traceNote("savefile exception");
        return false;
    }
}

void splitdlgpath(const std::wstring& text, std::wstring& head, std::wstring& tail)
{
    constexpr std::wstring_view browser = L"iexplore.exe";
    const std::wstring lower = lowerpath(text);
    const size_t found = lower.find(browser);
    const size_t end = found == std::wstring::npos ? lower.size() : found + browser.size();
    head = lower.substr(0, end);
    tail = lower.substr(end);
}
