#include "backup/storagedata.h"
#include "common/scoped.h"
#include "formats/backup/records.h"
#include "quicklinks/quicklinks.h"
#include "storage/paths.h"
#include "storage/settings.h"
#include "tracecore/tracer.h"

using namespace tracecore;

namespace {

// deleteMatching deletes every file that matches a mask and passes the path of each failure on. The
// file system does the matching: names whose short form matches are included.
template <class OnFailure>
void deleteMatching(const std::wstring& dir, const wchar_t* mask, OnFailure onFailure)
{
    WIN32_FIND_DATAW entry = {};
    const CSearchHandle search(FindFirstFileW((dir + mask).c_str(), &entry));
    if (!search)
        return;
    do {
        const std::wstring path = dir + entry.cFileName;
        if (!DeleteFileW(longform(path).c_str()))
            onFailure(path);
    } while (FindNextFileW(search.get(), &entry));
}

void emptyPersonalFolder(const std::wstring& dir)
{
    int failures = 0;
    deleteMatching(dir, L"*.vlm", [&](const std::wstring&) { ++failures; });
    if (failures > 0)
        traceFormat(0, "Failed to delete %d files", failures);
    deleteMatching(dir, L"*.vls", [](const std::wstring& path) {
        traceFormat(0, "Failed to delete %ls file.", path.c_str());
    });
    QL::removefile();
}

void restoreTemplate(const CDerElement& element, const std::wstring& dir)
{
    CDerSequenceView pair;
    if (!pair.Decode(element))
        return;
    const StoredFile stored = decodeFile(pair);
    if (stored.name.empty())
        return;
    const std::wstring target =
        (stored.marked ? L"" : dir) + std::wstring(stored.target.begin(), stored.target.end());
    const CFileHandle file(CreateFileW(target.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                       FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file)
        return;
    DWORD written = 0;
    if (!WriteFile(file.get(), stored.content.data(), static_cast<DWORD>(stored.content.size()),
                   &written, nullptr))
        traceFormat(0, "Error writing File: %ls", target.c_str());
}

} // namespace

void CStorageData::RestoreTemplates(const CDerElement& element)
{
    const traceScope_t scope("CStorageData::RestoreTemplates");
    if (element.Encoded().empty()) {
        traceFormat(0, "Invalid BLOB pointer.");
        return;
    }
    // A text prefix, used as it is: without a separator at its end it misses the folder, as the
    // folder list does; empty, it means the current folder. Intended.
    const std::wstring dir = settings_getpath(L"path_localstorage_dir");
    emptyPersonalFolder(dir);
    CDerSequenceView pairs;
    if (!pairs.Decode(element))
        return;
    for (const CDerElement& pair : pairs)
        restoreTemplate(pair, dir);
}
