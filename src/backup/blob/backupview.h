#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "backup/blob/derview.h"

// A whole backup as a restore would read it, with everything told that isn't as an export writes
// it. Portable, for tools. Texts are UTF-8; contents are views into the backup's bytes.

// BackupFile is one stored file.
struct BackupFile {
    std::string name;                 // as stored, with "alien|" in front if it goes to a full path
    std::span<const uint8_t> content; // to be written
    std::string target; // where a restore writes: a full path, or a name in the personal folder
    bool alien = false; // whether target is a full path
};

// BackupLink is one quick link.
struct BackupLink {
    std::string name;
    std::string target;
    std::string manifest; // a file name
    uint32_t profile = 0;
    std::string manifestid;
    bool wocred = false;
};

// BackupCategory is one quick link category.
struct BackupCategory {
    std::string name;
    std::string text;
};

enum class SettingsForm { absent, document, legacy, unsupported };

// BackupSettings is the settings element: a JSON document, or the typed elements of early backups.
struct BackupSettings {
    SettingsForm form = SettingsForm::absent;
    std::string document;    // JSON, of the document form
    bool showPrompt = false; // the rest is of the legacy form
    std::string hotKey;
    std::span<const uint8_t> dontPromptList; // the element as it is stored; empty if there is none
};

// BackupFinding is one thing that isn't as an export writes it.
struct BackupFinding {
    enum class Kind {
        malformed, // a restore refuses the backup or drops or misreads this part
        hostile,   // a stored name that would write where no template belongs
        note,      // read without harm: an earlier version's form, bytes behind the end
    };
    Kind kind;
    std::string where; // element and position, such as "templates[3]"
    std::string what;
};

// CBackupView holds one decoded backup. Its bytes must stay.
class CBackupView
{
public:
    // Decode reads the bytes. False if a restore would refuse them whole: no sequence, or of fewer
    // than two elements; then only the count and the findings are filled. Errors: std::bad_alloc
    bool Decode(std::span<const uint8_t> backup);

    // Sound is true when there is no finding but notes.
    bool Sound() const noexcept;

    size_t elementCount = 0; // of the outer sequence: it alone tells the version
    bool oldLinks = false;   // quick link texts are narrow, as in backups of two elements
    size_t size = 0;         // bytes of the outer element
    std::vector<BackupFile> files;
    std::vector<BackupLink> links;
    std::vector<BackupCategory> categories;
    BackupSettings settings;
    std::vector<BackupFinding> findings;
    std::vector<std::span<const uint8_t>> elements; // the outer sequence's, encoded

private:
    using Kind = BackupFinding::Kind;

    void Find(Kind kind, std::string where, std::string what);
    bool Sequence(const CDerElement& element, const std::string& where, CDerSequenceView& items);
    std::string Wide(const CDerElement& element, const std::string& where);
    std::string Narrow(const CDerElement& element, const std::string& where);
    uint32_t Integer(const CDerElement& element, const std::string& where);

    void DecodeFiles(const CDerElement& element);
    void JudgeTarget(const BackupFile& file, const std::string& where);
    void DecodeLinks(const CDerElement& element);
    void DecodeCategories(const CDerElement& element);
    void DecodeSettings(const CDerElement& element);
};

// backupVersionText tells what a backup of that many elements is and what a restore takes from it,
// in one line.
std::string backupVersionText(size_t elementCount);
