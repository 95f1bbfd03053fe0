#pragma once

#include "formats/backup/finding.h"
#include "formats/backup/records.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

// A whole backup as a restore would read it, with a finding for everything that an export would not
// write. Portable, for tools. Texts are UTF-8; contents are views into the backup's bytes.

// BackupFile is one stored file.
struct BackupFile {
    std::string name;                 // as stored, with "alien|" in front if it goes to a full path
    std::span<const uint8_t> content; // to be written
    std::string target; // where a restore writes: a full path, or a name in the personal folder
    bool alien = false; // whether target is a full path, and so marked
    size_t place = 0;   // in its element
};

// BackupCategory is one quick link category.
struct BackupCategory {
    std::string name;
    std::string text;
};

// BackupSettings is the settings element: a JSON document, or the typed elements of early backups.
struct BackupSettings {
    SettingsForm form = SettingsForm::absent;
    std::string document;    // JSON, of the document form
    bool showPrompt = false; // the rest is of the legacy form
    std::string hotKey;
    std::span<const uint8_t> dontPromptList; // the element as it is stored; empty if there is none
};

// CBackupView holds one decoded backup. The decoded bytes must outlive it.
class CBackupView
{
public:
    // Decode reads the bytes. False if a restore would refuse them whole: no sequence, or of fewer
    // than two elements; then only the count and the findings are filled. Errors: std::bad_alloc
    bool Decode(std::span<const uint8_t> backup);

    // Verdict gives the highest grade of the findings; note if there is none.
    BackupFinding::Grade Verdict() const noexcept;
    bool Restorable() const noexcept { return Verdict() != BackupFinding::Grade::error; }
    bool Sound() const noexcept { return Verdict() == BackupFinding::Grade::note; }

    // MarkedOutside gives the files with a full path that isn't below any of the folders.
    // folders: full paths, UTF-8
    std::vector<const BackupFile*> MarkedOutside(std::span<const std::string> folders) const;

    size_t elementCount = 0; // of the outer sequence: it alone gives the version
    bool oldLinks = false;   // quick link texts are narrow, as in backups of two elements
    size_t size = 0;         // bytes of the outer element
    std::vector<BackupFile> files;
    std::vector<BackupLink> links;
    std::vector<BackupCategory> categories;
    BackupSettings settings;
    std::vector<BackupFinding> findings;
    std::vector<std::span<const uint8_t>> elements; // the outer sequence's, encoded

private:
    using Grade = BackupFinding::Grade;

    void Find(Grade grade, std::string where, std::string what);
    void DecodeFiles(const CDerElement& element);
    void DecodeLinks(const CDerElement& element, TextForm form);
    void DecodeCategories(const CDerElement& element);
    void DecodeSettings(const CDerElement& element);
};

// backupVersionText says in one line what a backup of that many elements is and what a restore
// takes from it.
std::string backupVersionText(size_t elementCount);
