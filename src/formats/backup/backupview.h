#pragma once

#include "formats/backup/finding.h"
#include "formats/backup/records.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <span>
#include <string>
#include <utility>
#include <vector>

// A whole backup as a restore would read it, with a finding for everything that an export would not
// write. Portable, for tools. Texts are UTF-8; contents are views into the backup's bytes.

class CFormCheck;

// BackupFile is one stored file.
struct BackupFile {
    std::string name;                 // as stored, with "alien|" in front if it goes to a full path
    std::span<const uint8_t> content; // to be written
    std::string target; // where a restore writes: a full path, or a name in the personal folder
    bool alien = false; // whether target is a full path, and so marked
    size_t place = 0;   // in its element
    size_t offset = 0;  // of its pair in the backup's bytes

    // Key is the same for two names of one file, whatever their case or spelling.
    std::u16string Key() const;
};

// CBackupFiles is a list of stored files. It holds where they are, and decodes one whenever it is
// read: a backup may have hundreds of thousands.
class CBackupFiles
{
public:
    class CIterator
    {
    public:
        using iterator_category = std::input_iterator_tag;
        using value_type = BackupFile;
        using difference_type = std::ptrdiff_t;
        using pointer = const BackupFile*;
        using reference = BackupFile;

        CIterator(const CBackupFiles& files, size_t index) noexcept
            : m_files(&files), m_index(index)
        {}
        BackupFile operator*() const { return (*m_files)[m_index]; }
        CIterator& operator++() noexcept
        {
            ++m_index;
            return *this;
        }
        bool operator==(const CIterator&) const noexcept = default;

    private:
        const CBackupFiles* m_files;
        size_t m_index;
    };

    CBackupFiles() noexcept = default;
    // backup: the bytes that all files are in
    CBackupFiles(std::span<const uint8_t> backup, size_t count) : m_backup(backup)
    {
        m_files.reserve(count);
    }

    void Add(size_t offset, size_t place) { m_files.push_back({offset, place}); }

    size_t size() const noexcept { return m_files.size(); }
    // Errors: std::bad_alloc
    BackupFile operator[](size_t index) const;
    CIterator begin() const noexcept { return {*this, 0}; }
    CIterator end() const noexcept { return {*this, size()}; }

private:
    struct Stored {
        size_t offset;
        size_t place;
    };
    std::span<const uint8_t> m_backup;
    std::vector<Stored> m_files;
};

// BackupCategory is one quick link category.
struct BackupCategory {
    std::string name;
    std::string text;
    size_t offset = 0; // of its pair in the backup's bytes

    // Key is the same for two names of one category.
    std::u16string Key() const;
};

// BackupSettings is the settings element: a JSON document, or the typed elements of early backups.
struct BackupSettings {
    SettingsForm form = SettingsForm::absent;
    std::string document;    // JSON, of the document form
    bool showPrompt = false; // the rest is of the legacy form
    std::string hotKey;
    std::span<const uint8_t> dontPromptList; // the element as it is stored; empty if there is none
    size_t offset = 0;                       // of the settings element in the backup's bytes
};

// CBackupView holds one decoded backup. The decoded bytes must outlive it.
class CBackupView
{
public:
    // sink: gets the findings; without one they are kept in findings
    explicit CBackupView(FindingSink sink = {}) : m_sink(std::move(sink)) {}

    // Decode reads the bytes. False if a restore would refuse them whole: no sequence, or of fewer
    // than two elements; then only the count and refusal are filled. Errors: std::bad_alloc
    bool Decode(std::span<const uint8_t> backup);

    // Find adds a finding.
    void Find(BackupFinding finding);

    // Verdict gives the highest grade of the findings; note if there is none, and error for bytes
    // that are refused.
    BackupFinding::Grade Verdict() const noexcept;
    size_t FindingCount(BackupFinding::Grade grade) const noexcept
    {
        return m_counts[static_cast<size_t>(grade)];
    }
    bool Restorable() const noexcept { return Verdict() != BackupFinding::Grade::error; }
    bool Sound() const noexcept { return Verdict() == BackupFinding::Grade::note; }

    // MarkedOutside gives the files with a full path that isn't below any of the folders.
    // folders: full paths, UTF-8
    std::vector<BackupFile> MarkedOutside(std::span<const std::string> folders) const;

    size_t elementCount = 0; // of the outer sequence: it alone gives the version
    bool oldLinks = false;   // quick link texts are narrow, as in backups of two elements
    size_t size = 0;         // bytes of the outer element
    CBackupFiles files;
    std::vector<BackupLink> links;
    std::vector<BackupCategory> categories;
    BackupSettings settings;
    std::vector<BackupFinding> findings;            // empty if there is a sink
    std::string refusal;                            // why Decode refused the bytes
    BackupPlace refusedAt;                          // and where
    std::vector<std::span<const uint8_t>> elements; // the outer sequence's, encoded

private:
    using Grade = BackupFinding::Grade;

    FindingSink Sink(); // of Find; of no use when the view has moved
    CFormCheck Check(size_t position, const char* name);
    bool Refuse(const BackupFinding& why);
    size_t OffsetOf(const CDerElement& element) const noexcept;
    void DecodeFiles(const CDerElement& element);
    void DecodeLinks(const CDerElement& element, TextForm form);
    void DecodeCategories(const CDerElement& element);
    void DecodeSettings(const CDerElement& element);

    FindingSink m_sink;
    std::array<size_t, 3> m_counts{}; // of the findings, by grade
    std::span<const uint8_t> m_backup;
};

// backupVersionText says in one line what a backup of that many elements is and what a restore
// takes from it.
std::string backupVersionText(size_t elementCount);
