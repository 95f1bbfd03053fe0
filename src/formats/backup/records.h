#pragma once

#include "formats/der/derview.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

// What the elements of a backup hold, decoded as a restore takes it: the restore and the tools read
// by these functions alone. A text ends at its first zero; what doesn't have its form is read as
// derview.h says. Spans are views into the backup's bytes. Portable.
//
// Errors: std::bad_alloc

// TextForm is the form in which the text elements of a quick link record are stored.
enum class TextForm {
    wide,   // BMPString
    octets, // OCTET STRING, UTF-8 already: the form in backups of two elements
};

// BackupVersion is what a restore takes from a backup. The number of its elements alone says it.
struct BackupVersion {
    bool restorable; // else nothing is read
    TextForm linkTexts;
    bool categories;
    bool settings; // not of five or more
};
inline constexpr size_t currentBackupElements = 4; // what an export writes
constexpr BackupVersion versionOf(size_t elementCount) noexcept
{
    return {elementCount >= 2, elementCount == 2 ? TextForm::octets : TextForm::wide,
            elementCount >= 3, elementCount == currentBackupElements};
}

// StoredFile is one stored file. A restore passes over one without a name.
struct StoredFile {
    std::u16string name;              // as stored
    bool marked = false;              // whether target is a full path, and so marked
    std::u16string target;            // that path, or a name in the personal folder
    std::span<const uint8_t> content; // the encoded bytes of what is no octet string
};
StoredFile decodeFile(const CDerSequenceView& pair);

// BackupLink is one quick link. Texts are UTF-8.
struct BackupLink {
    std::string name;
    std::string target;
    std::string manifest; // a file name
    uint32_t profile = 0;
    std::string manifestid;
    bool wocred = false;
    size_t place = 0;  // in its element
    size_t offset = 0; // of its record in the backup's bytes

    // Key is the same for two links of which a restore keeps one: of one template and profile.
    std::u16string Key() const;
};

// decodeLink reads a quick link record. False, with link unchanged, if it hasn't five or six
// elements, which a restore passes over.
[[nodiscard]] bool decodeLink(const CDerSequenceView& record, TextForm form, BackupLink& link);

// StoredCategory is one quick link category; a missing item is an empty text.
struct StoredCategory {
    std::u16string name;
    std::u16string text;
};
StoredCategory decodeCategory(const CDerSequenceView& pair);

enum class SettingsForm {
    absent,
    document, // one narrow text, JSON
    legacy,   // the typed elements of early backups
    unsupported,
};

// settingsFormOf gives the form of a settings element with that many items.
constexpr SettingsForm settingsFormOf(size_t itemCount) noexcept
{
    if (itemCount == 0)
        return SettingsForm::unsupported;
    return itemCount == 1 ? SettingsForm::document : SettingsForm::legacy;
}

// LegacySettings is the content of a legacy settings element.
struct LegacySettings {
    bool showPrompt = false;
    std::u16string hotKey;
    // The do-not-prompt list is a whole element, tag and length with it, and only there in an
    // element of exactly three items; else empty.
    std::span<const uint8_t> dontPromptList;
};
LegacySettings decodeLegacySettings(const CDerSequenceView& items);
