#include "backup/settingsdocument.h"
#include "backup/storagedata.h"
#include "common/status.h"
#include "common/text.h"
#include "formats/text/pathpart.h"
#include "quicklinks/categories.h"
#include "quicklinks/quicklinks.h"
#include "storage/folderlist.h"
#include "storage/paths.h"
#include "storage/settings.h"
#include "storage/textfile.h"

#include <algorithm>
#include <memory>
#include <new>
#include <string>
#include <vector>

namespace {

constexpr wchar_t dataFile[] = L"updata.vls";
constexpr wchar_t temporaryDataFile[] = L"updata_temp.vls";

// A mapping takes a page at least, and a process can hold only so many.
constexpr size_t pageSize = 0x1000;
constexpr size_t mostSmallMappings = 0x2000;
constexpr size_t largestCopiedFile = 0x10000;
constexpr size_t copyBlock = 0x100000; // so large that the heap gives it back to the system

constexpr uint32_t webLink = 1;

std::wstring personalFolder()
{
    return addslash(unifyslashes(settings_getpath(L"path_localstorage_dir")));
}

// CFileReader reads files into nodes, which borrow the mappings: the backup takes its memory once,
// not twice. The smallest files, and the later ones of very many small ones, are copied, many to a
// block, which goes as soon as the last of them is written.
class CFileReader
{
public:
    // Read fills a node with a file's bytes. What can't be read has none.
    void Read(CDerNode& node, const std::wstring& fileName)
    {
        mappedfile_scope file(fileName);
        const std::span<const uint8_t> bytes(file.get().view, file.get().size);
        const bool isSmall = bytes.size() <= largestCopiedFile;
        if (!isSmall || (bytes.size() >= pageSize && m_smallMappings < mostSmallMappings)) {
            m_smallMappings += isSmall;
            node.SetOctets(bytes, std::make_shared<mappedfile_scope>(std::move(file)));
            return;
        }
        if (bytes.size() > m_free.size()) {
            m_block = std::make_shared_for_overwrite<uint8_t[]>(copyBlock);
            m_free = {m_block.get(), copyBlock};
        }
        const auto copy = m_free.first(bytes.size());
        std::copy(bytes.begin(), bytes.end(), copy.begin());
        node.SetOctets(copy, m_block);
        m_free = m_free.subspan(copy.size());
    }

private:
    size_t m_smallMappings = 0;
    std::shared_ptr<uint8_t[]> m_block;
    std::span<uint8_t> m_free; // the rest of the block
};

void setQuickLink(CDerNode& node, const QLRecord& record)
{
    const std::string& target = record.kind == webLink ? record.url : record.dlgpath;
    node.SetSequence(6);
    node.Child(0).SetWide(wideFromUtf8(record.name));
    node.Child(1).SetWide(wideFromUtf8(target.c_str()));
    node.Child(2).SetWide(fileNamePart(wideFromUtf8(record.manifest)));
    node.Child(3).SetInteger(record.profile);
    node.Child(4).SetWide(wideFromUtf8(record.manifestid));
    node.Child(5).SetInteger(record.wocred ? 1 : 0);
}

} // namespace

bool CStorageData::IsStorageDataPresent()
{
    const std::wstring folder = personalFolder();
    if (folder.empty())
        return false;
    bool hasData = fileexists(folder + dataFile);
    const bool hasTemporaryData = fileexists(folder + temporaryDataFile);
    if (hasData)
        hasData = mappedfile_scope(folder + dataFile).get().view; // none for a file of no bytes
    return hasData || hasTemporaryData;
}

HRESULT CStorageData::ExportTemplates(CDerNode* slot)
{
    if (!slot)
        return E_POINTER;
    FolderSet folders;
    std::vector<FileRec> files;
    prepfolderlist(folders);
    collectall(folders, files);
    const std::wstring folder = personalFolder();
    if (!folder.empty()) {
        files.push_back({folder, dataFile, false});
        files.push_back({folder, temporaryDataFile, false});
    }
    if (files.empty())
        return E_FAIL;
    slot->SetSequence(files.size());
    CFileReader reader;
    for (size_t i = 0; i < files.size(); ++i) {
        CDerNode& pair = slot->Child(i);
        pair.SetSequence(2);
        pair.Child(0).SetWide(storedname(files[i]));
        reader.Read(pair.Child(1), files[i].folder + files[i].name);
    }
    return S_OK;
}

bool CStorageData::ExportQuickLinks(CDerNode& slot)
{
    const QL quickLinks;
    slot.SetSequence(quickLinks.filtered.size());
    for (size_t i = 0; i < quickLinks.filtered.size(); ++i)
        setQuickLink(slot.Child(i), quickLinks.filtered[i]);
    return !quickLinks.filtered.empty();
}

uint32_t CStorageData::BuildBackup(CDerNode& backup)
{
    try {
        backup.SetSequence(4);
        const bool hasTemplates = SUCCEEDED(ExportTemplates(&backup.Child(0)));
        const bool hasQuickLinks = ExportQuickLinks(backup.Child(1));
        const bool hasCategories = qlcategories_backup(&backup.Child(2));
        const bool hasSettings = ExportSettings(&backup.Child(3));
        if (!hasTemplates && !hasQuickLinks && !hasCategories && !hasSettings)
            return 0;
        const size_t size = backup.Measure();
        if (size > MAXLONG)
            raiseStatus(E_OUTOFMEMORY); // no array can take it
        return static_cast<uint32_t>(size);
    } catch (const std::bad_alloc&) {
        raiseStatus(E_OUTOFMEMORY);
    }
}
