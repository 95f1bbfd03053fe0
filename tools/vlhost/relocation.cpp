#include "relocation.h"

#include "common/text.h"
#include "formats/backup/records.h"
#include "formats/backup/storedmark.h"
#include "formats/der/dernode.h"
#include "formats/text/pathpart.h"
#include "shared/toolerror.h"
#include "shared/windowsfiles.h"

#include <algorithm>
#include <functional>

namespace {

constexpr wchar_t sharePart[] = L"UNC\\"; // in place of the two backslashes of a share

// replaceTargets encodes the backup again, with the full paths as they are given.
bytes_t replaceTargets(std::span<const BYTE> backup,
                       const std::function<std::wstring(const std::wstring&)>& replace)
{
    CDerSequenceView top;
    CDerSequenceView files;
    if (!top.Decode(backup) || !files.Decode(top[0]))
        return {backup.begin(), backup.end()};
    CDerTree copy;
    copy.SetSequence(top.Count());
    for (size_t i = 1; i < top.Count(); ++i)
        copy.Child(i).SetEncoded(top[i].Encoded());
    copy.Child(0).SetSequence(files.Count());
    for (size_t i = 0; i < files.Count(); ++i) {
        CDerNode& node = copy.Child(0).Child(i);
        CDerSequenceView pair;
        const bool isPair = pair.Decode(files[i]);
        const StoredFile file = isPair ? decodeFile(pair) : StoredFile();
        if (!file.marked) {
            node.SetEncoded(files[i].Encoded());
            continue;
        }
        const std::wstring target(file.target.begin(), file.target.end());
        const std::wstring moved = replace(target);
        node.SetSequence(pair.Count());
        node.Child(0).SetWide(std::wstring(storedMark<wchar_t>) + moved);
        for (size_t k = 1; k < pair.Count(); ++k)
            node.Child(k).SetEncoded(pair[k].Encoded());
    }
    return copy.Encode();
}

} // namespace

bytes_t moveFiles(std::span<const BYTE> backup, const std::wstring& below,
                  std::vector<std::wstring>& folders)
{
    return replaceTargets(backup, [&](const std::wstring& path) {
        const bool share = path.starts_with(L"\\\\");
        const bool drive = path.size() > 3 && path[1] == L':' && path[2] == L'\\';
        std::wstring moved = below;
        if (share)
            moved += sharePart + path.substr(2);
        else if (drive)
            moved += path[0] + path.substr(2);
        if ((!share && !drive) || fullPath(moved) != moved)
            throw CToolError("the stored file \"" + utf8FromWide(path) +
                                 "\" can't be tried elsewhere",
                             "'vlbackup verify' says what is wrong with it");
        const std::wstring folder(folderPart(moved));
        if (std::ranges::find(folders, folder) == folders.end())
            folders.push_back(folder);
        return moved;
    });
}

bytes_t moveFilesBack(std::span<const BYTE> backup, const std::wstring& below)
{
    return replaceTargets(backup, [&](const std::wstring& path) {
        if (!path.starts_with(below))
            return path;
        const std::wstring original = path.substr(below.size());
        if (original.starts_with(sharePart))
            return L"\\\\" + original.substr(std::size(sharePart) - 1);
        return original.substr(0, 1) + L':' + original.substr(1);
    });
}
