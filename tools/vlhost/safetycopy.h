#pragma once

#include "dashboardstate.h"
#include "files.h"

#include <cstdint>
#include <ctime>
#include <optional>
#include <string>
#include <vector>

// Safety copies are numbered folders below the user's local data. Each holds all that one restore,
// or one undoing of a restore, was about to delete or replace: the files as they were, the
// categories with their types, and the settings. The secret is in none.
//
// A copy is complete before anything is touched. The newest five stay, and so do the older ones
// that hold something which is nowhere else.

// copiedFile_t is one file that a copy knows of.
struct copiedFile_t {
    std::wstring path;                // full
    std::optional<std::wstring> copy; // full path of the copy; none for a file that wasn't there
    fileState_t state;                // of the file then
};

// copiedSetting_t is one setting.
struct copiedSetting_t {
    std::wstring key;
    std::wstring value;
};

// safetyCopy_t is one complete copy.
struct safetyCopy_t {
    unsigned number = 0;
    std::string made;             // UTC, as in 2026-11-21T20:15:02Z
    bool finished = false;        // whether the work that it was made for ran to its end
    unsigned continues = 0;       // the copy before, if its work wasn't finished then: this one has
                                  // what that work left; 0 for none
    std::vector<unsigned> undoes; // the copies that the work puts back; empty for a restore
    std::string folder;           // the personal folder then
    std::vector<copiedFile_t> files;
    dashboardState_t dashboard;
    std::vector<copiedSetting_t> settings;

    size_t FileCount() const; // of those that are copied
    uint64_t Bytes() const;   // of these
};

// utcText is a time as in made.
std::string utcText(std::time_t time);

// safetyCopiesFolder is where they lie.
//
// Errors: CToolError
std::wstring safetyCopiesFolder();

// listSafetyCopies reads the complete ones, the oldest first.
//
// damaged: receives the folders of those that can't be read
// Errors:  CToolError, std::filesystem::filesystem_error
std::vector<safetyCopy_t> listSafetyCopies(std::vector<std::wstring>& damaged);

// CSafetyCopies changes them, and keeps others from doing so while it lives. It takes over the one
// copy of earlier versions, and removes what killed programs left unfinished.
//
// Errors: CToolError, of every operation
class CSafetyCopies
{
public:
    CSafetyCopies();
    CSafetyCopies(const CSafetyCopies&) = delete;
    CSafetyCopies& operator=(const CSafetyCopies&) = delete;

    // Make copies the files of these paths, the categories and the settings. It is complete and on
    // the disk when it returns; when it raises, nothing of it stays.
    //
    // undoes:  see safetyCopy_t
    // Returns: the number
    unsigned Make(const std::vector<std::wstring>& paths, const std::vector<unsigned>& undoes);

    // Finish marks that the work which the copy was made for ran to its end.
    void Finish(unsigned number);

    // IsPruneDue is true if there may be copies beyond the newest five. Prune removes those that
    // hold nothing of their own, except pinned.
    //
    // copies: all, as listSafetyCopies gives them
    bool IsPruneDue() const;
    void Prune(const std::vector<safetyCopy_t>& copies, unsigned pinned);

private:
    void TakeOverFormer();

    CFileHandle m_lock;
    unsigned m_next = 1; // never a number that was there before
};
