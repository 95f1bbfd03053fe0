#include "safetycopy.h"

#include "common/text.h"
#include "copyholdings.h"
#include "copyindex.h"
#include "formats/backup/documentsettings.h"
#include "restoreplan.h"
#include "shared/progress.h"
#include "shared/systemerror.h"
#include "shared/toolerror.h"
#include "storage/paths.h"
#include "storage/settings.h"

#include <algorithm>
#include <ctime>
#include <filesystem>
#include <unordered_set>

namespace fs = std::filesystem;

namespace {

constexpr size_t keptCopies = 5;
constexpr size_t filesInFolder = 256; // thousands in one folder are slow to make
constexpr wchar_t lockName[] = L"lock";
constexpr wchar_t unfinishedSuffix[] = L".part"; // of a copy that is being made
constexpr wchar_t droppedSuffix[] = L".dropped"; // of one that is being removed

std::string utf8(const fs::path& path)
{
    return utf8FromWide(path.wstring());
}

// Where earlier versions kept their one copy: while it was replaced, there were two.
std::vector<fs::path> formerFolders()
{
    const std::wstring former = localappdata_rootdir() + L"RestoreUndo";
    return {former + L".old", former, former + L".new"};
}

std::vector<copiedSetting_t> readSettings()
{
    std::vector<copiedSetting_t> settings;
    for (const auto& [name, kind] : documentSettings) {
        const std::wstring key = wideFromUtf8(name);
        std::wstring value;
        if (kind != DocumentSetting::Kind::fileText && SUCCEEDED(settings_query(key, value)))
            settings.push_back({key, value});
    }
    return settings;
}

// copyFiles copies them into folders of their own. A file that isn't there has no copy: when the
// work is undone, it goes.
std::vector<copiedFile_t> copyFiles(const std::vector<std::wstring>& paths, const fs::path& folder)
{
    std::vector<copiedFile_t> files;
    std::unordered_set<std::wstring> seen;
    CProgress progress("safety copy", paths.size());
    for (const auto& path : paths) {
        progress.Step();
        if (!seen.insert(fileKey(path)).second)
            continue;
        copiedFile_t file{path, std::nullopt, {}};
        if (const auto now = fileAt(path)) {
            const size_t number = files.size();
            file.copy = folder / L"files" / std::to_wstring(number / filesInFolder) /
                        std::to_wstring(number);
            file.state = *now;
            copyOver(path, *file.copy);
        }
        files.push_back(std::move(file));
    }
    CProgress settling("writing to the disk", files.size());
    for (const auto& file : files) {
        settling.Step();
        if (file.copy)
            settleFile(*file.copy, FILE_ATTRIBUTE_NORMAL);
    }
    return files;
}

// numberOf reads the number that a folder's name begins with; 0 for none.
unsigned numberOf(const std::wstring& name)
{
    return static_cast<unsigned>(std::wcstoul(name.c_str(), nullptr, 10));
}

// copyFolders lists the folders of complete copies, the oldest first.
std::vector<fs::path> copyFolders()
{
    std::vector<fs::path> folders;
    const fs::path root = safetyCopiesFolder();
    if (!fs::exists(root))
        return folders;
    for (const auto& entry : fs::directory_iterator(root))
        if (entry.path().filename().wstring().find_first_not_of(L"0123456789") ==
            std::wstring::npos)
            folders.push_back(entry.path());
    std::ranges::sort(folders, {},
                      [](const fs::path& folder) { return numberOf(folder.filename().wstring()); });
    return folders;
}

// readCopy is readCopyIndex with the number.
safetyCopy_t readCopy(const fs::path& folder)
{
    safetyCopy_t copy = readCopyIndex(folder);
    copy.number = numberOf(folder.filename().wstring());
    return copy;
}

// unfinishedBefore gives the number of the newest copy that can be read, if its work wasn't
// finished; else 0.
unsigned unfinishedBefore()
{
    const std::vector<fs::path> folders = copyFolders();
    for (auto folder = folders.rbegin(); folder != folders.rend(); ++folder) {
        try {
            const safetyCopy_t newest = readCopy(*folder);
            return newest.finished ? 0 : newest.number;
        } catch (const std::exception&) { // damaged
        }
    }
    return 0;
}

} // namespace

uint64_t safetyCopy_t::Bytes() const
{
    uint64_t bytes = 0;
    for (const auto& file : files)
        bytes += file.state.size;
    return bytes;
}

size_t safetyCopy_t::FileCount() const
{
    return static_cast<size_t>(std::ranges::count_if(
        files, [](const copiedFile_t& file) { return file.copy.has_value(); }));
}

std::string utcText(std::time_t time)
{
    std::tm fields{};
    char text[32] = "";
    if (gmtime_s(&fields, &time) == 0)
        std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &fields);
    return text;
}

std::wstring safetyCopiesFolder()
{
    const std::wstring root = localappdata_rootdir();
    if (root.empty())
        throw CToolError("the user has no local data folder", "is LOCALAPPDATA set?");
    return root + L"SafetyCopies";
}

std::vector<safetyCopy_t> listSafetyCopies(std::vector<std::wstring>& damaged)
{
    std::vector<safetyCopy_t> copies;
    for (const auto& folder : copyFolders()) {
        try {
            copies.push_back(readCopy(folder));
        } catch (const std::exception&) {
            damaged.push_back(folder.wstring());
        }
    }
    return copies;
}

CSafetyCopies::CSafetyCopies()
try {
    const fs::path root = safetyCopiesFolder();
    fs::create_directories(root);
    m_lock.reset(CreateFileW((root / lockName).c_str(), GENERIC_WRITE, 0, nullptr, OPEN_ALWAYS,
                             FILE_FLAG_DELETE_ON_CLOSE, nullptr));
    if (!m_lock)
        throw CToolError(utf8(root / lockName) + " can't be opened: " + errorText(GetLastError()),
                         "nothing was touched; is another restore at work?");
    std::vector<fs::path> unfinished;
    for (const auto& entry : fs::directory_iterator(root)) {
        const std::wstring name = entry.path().filename().wstring();
        m_next = std::max(m_next, numberOf(name) + 1);
        if (name.ends_with(unfinishedSuffix) || name.ends_with(droppedSuffix))
            unfinished.push_back(entry.path());
    }
    for (const auto& folder : unfinished)
        fs::remove_all(folder);
    TakeOverFormer();
} catch (const fs::filesystem_error& error) {
    throw CToolError(std::string("no safety copy can be made: ") + error.what(),
                     "nothing was touched");
}

void CSafetyCopies::TakeOverFormer()
{
    for (const auto& former : formerFolders()) {
        if (!isIndexedCopy(former))
            continue;
        try {
            readCopyIndex(former);
        } catch (const std::exception&) {
            continue; // it was being removed when its program was killed
        }
        markFinished(former);
        fs::rename(former, fs::path(safetyCopiesFolder()) / std::to_wstring(m_next));
        ++m_next;
    }
}

unsigned CSafetyCopies::Make(const std::vector<std::wstring>& paths,
                             const std::vector<unsigned>& undoes)
{
    const unsigned number = m_next++;
    const fs::path target = fs::path(safetyCopiesFolder()) / std::to_wstring(number);
    const fs::path folder = target.wstring() + unfinishedSuffix;
    try {
        fs::create_directory(folder);
        safetyCopy_t copy;
        copy.made = utcText(std::time(nullptr));
        copy.continues = unfinishedBefore();
        copy.undoes = undoes;
        copy.folder = utf8FromWide(personalFolder());
        copy.files = copyFiles(paths, folder);
        copy.dashboard = readDashboard();
        copy.settings = readSettings();
        writeCopyIndex(folder, copy);
        if (!MoveFileExW(folder.c_str(), target.c_str(), MOVEFILE_WRITE_THROUGH))
            throw CToolError(utf8(target) + " can't be made: " + errorText(GetLastError()));
        return number;
    } catch (const std::exception& error) {
        std::error_code ignored;
        fs::remove_all(folder, ignored);
        throw CToolError(std::string("no safety copy can be made: ") + error.what(),
                         "nothing was touched");
    }
}

void CSafetyCopies::Finish(unsigned number)
{
    markFinished(fs::path(safetyCopiesFolder()) / std::to_wstring(number));
}

bool CSafetyCopies::IsPruneDue() const
{
    return copyFolders().size() > keptCopies;
}

void CSafetyCopies::Prune(const std::vector<safetyCopy_t>& copies, unsigned pinned)
try {
    CCopyHoldings holdings(copies);
    for (size_t i = 0; i + keptCopies < copies.size(); ++i) {
        const safetyCopy_t& copy = copies[i];
        if (copy.number == pinned || !holdings.IsElsewhere(i))
            continue;
        // Out of the list at once: a removal that is killed half way leaves no half of a copy.
        const fs::path folder = fs::path(safetyCopiesFolder()) / std::to_wstring(copy.number);
        const fs::path dropped = folder.wstring() + droppedSuffix;
        fs::rename(folder, dropped);
        holdings.Drop(i);
        fs::remove_all(dropped);
    }
} catch (const std::exception&) {
    // What stays is removed another time.
}
