#include "relocation.h"

#include "common/text.h"
#include "formats/backup/records.h"
#include "formats/backup/storedmark.h"
#include "formats/der/dernode.h"
#include "formats/text/pathpart.h"
#include "shared/toolerror.h"
#include "shared/windowsfiles.h"

#include <windows.h>

#include <filesystem>
#include <functional>

namespace fs = std::filesystem;

namespace {

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

// The folder of a place is made up when it is first asked for.
const std::wstring& CRelocation::FolderOf(const std::wstring& place, const std::wstring& inside)
{
    const std::wstring number = std::to_wstring(m_folders.size() + 1);
    return m_folders.try_emplace(fileKey(place), m_below + number + L'\\' + inside).first->second;
}

std::wstring CRelocation::Moved(const std::wstring& path)
{
    const std::wstring original = fullPath(path);
    const std::wstring folder(folderPart(original));
    const std::wstring name = original.substr(folder.size());
    const bool prefixed = path.starts_with(LR"(\\?\)"); // and may be of any length
    const bool tooLong = path.size() >= MAX_PATH && !prefixed;
    std::wstring moved =
        tooLong ? FolderOf(original, folder.substr(2)) + name : FolderOf(folder, L"") + name;
    if (moved.size() >= MAX_PATH && !tooLong)
        moved = FolderOf(original, L"") + L"x" + fs::path(name).extension().wstring();
    if (fullPath(moved) != moved)
        throw CToolError("the stored file \"" + utf8FromWide(path) + "\" can't be tried elsewhere",
                         "'vlbackup verify' says what is wrong with it");
    m_originals[fileKey(moved)] = path;
    return moved;
}

bytes_t CRelocation::Move(std::span<const BYTE> backup)
{
    return replaceTargets(backup, [this](const std::wstring& path) { return Moved(path); });
}

bytes_t CRelocation::MoveBack(std::span<const BYTE> backup) const
{
    return replaceTargets(backup, [this](const std::wstring& path) {
        const auto original = m_originals.find(fileKey(path));
        return original == m_originals.end() ? path : original->second;
    });
}

std::vector<std::wstring> CRelocation::Folders() const
{
    std::vector<std::wstring> folders;
    for (const auto& [place, folder] : m_folders)
        folders.push_back(folder);
    return folders;
}
