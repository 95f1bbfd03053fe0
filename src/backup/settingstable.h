#pragma once

#include "formats/backup/documentsettings.h"
#include "formats/backup/records.h"

#include <array>
#include <functional>
#include <iterator>
#include <string>

#include <json/value.h>

// The settings that a backup carries: how each is read for an export, and applied by a restore.

// ExportedSetting is what an export found.
struct ExportedSetting {
    Json::Value value;           // null leaves the member out
    std::function<void()> trace; // for when all are read
};

// FoundSetting is what a restore found. An empty text leaves the setting as it is.
struct FoundSetting {
    std::wstring text;
    std::wstring path; // of the file that the text is for
};

// Setting is one setting of the document. Its member has the name of its key.
//
// toMember:   reads the setting for an export
// fromMember: gives the text to store, for a member that isn't empty
//             Errors: std::exception for a member that isn't of its type
// fromLegacy: gives what an early backup has of it
// apply:      does nothing where nothing was found
struct Setting {
    const wchar_t* key;
    ExportedSetting (*toMember)(const std::wstring& key);
    std::wstring (*fromMember)(const Json::Value& member);
    FoundSetting (*fromLegacy)(const LegacySettings& legacy, const std::wstring& key);
    void (*apply)(const std::wstring& key, const FoundSetting& found);
};

inline constexpr size_t settingCount = std::size(documentSettings);

// settingsTable has them in the order of reading, tracing and applying.
extern const std::array<Setting, settingCount> settingsTable;
