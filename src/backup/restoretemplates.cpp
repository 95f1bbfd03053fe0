#include "backup/storagedata.h"
#include "common/scoped.h"
#include "formats/text/pathpart.h"
#include "quicklinks/quicklinks.h"
#include "storage/paths.h"
#include "storage/settings.h"
#include "tracecore/tracer.h"

using namespace tracecore;

namespace {

// DeleteMatching deletes every file that matches a mask and passes the path of each failure on. The
// file system does the matching: names whose short form matches are included.
template <class OnFailure>
void DeleteMatching(const std::wstring& dir, const wchar_t* mask, OnFailure onFailure)
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

void EmptyPersonalFolder(const std::wstring& dir)
{
    int failures = 0;
    DeleteMatching(dir, L"*.vlm", [&](const std::wstring&) { ++failures; });
    if (failures > 0)
        traceFormat(0, "Failed to delete %d files", failures);
    DeleteMatching(dir, L"*.vls", [](const std::wstring& path) {
        traceFormat(0, "Failed to delete %ls file.", path.c_str());
    });
    QL::removefile();
}

// TargetOf gives the path of a stored name: a marked one is a full path, of any other only the file
// name counts.
std::wstring TargetOf(const std::wstring& storedName, const std::wstring& dir)
{
    bool alien = false;
    const std::wstring name = stripalienmark(storedName, alien);
    return alien ? name : dir + std::wstring(fileNamePart(name));
}

void RestoreTemplate(const CDerElement& element, const std::wstring& dir)
{
    CDerSequenceView pair;
    if (!pair.Decode(element))
        return;
    const std::u16string name = pair[0].WideText();
    if (name.empty())
        return;
    const std::wstring target = TargetOf(std::wstring(name.begin(), name.end()), dir);
    const std::span<const uint8_t> bytes = pair[1].Octets();
    const CFileHandle file(CreateFileW(target.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                       FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file)
        return;
    DWORD written = 0;
    if (!WriteFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr))
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
    EmptyPersonalFolder(dir);
    CDerSequenceView pairs;
    if (!pairs.Decode(element))
        return;
    for (const CDerElement& pair : pairs)
        RestoreTemplate(pair, dir);
}
