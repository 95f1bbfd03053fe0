#pragma once

#include <set>
#include <string>
#include <vector>

// The folders that hold template files (*.vlm) on this machine, and the files in the local ones.
// Set and vector are built afresh for one export. Nothing here raises: a folder that fails is
// traced, and dropped or kept as its role asks.

// FolderRec is one template folder. Two paths that differ only in case are two folders.
struct FolderRec {
    std::wstring path;
    bool alien = false;      // not the personal folder: its files travel with their full path
    bool fixeddrive = false; // counts as local: only such folders are listed
    bool accessible = false; // cleared for a network folder that can't be read

    bool operator<(const FolderRec& other) const { return path < other.path; }
};
using FolderSet = std::set<FolderRec>; // of two equal paths the first keeps its flags

// FileRec is one template file.
struct FileRec {
    std::wstring folder; // the path of its FolderRec
    std::wstring name;   // as the file system gives it
    bool alien = false;
};

// prepfolderlist adds the folders of this machine, and makes the two that the plug-in owns.
//
// folders: the order of adding decides between equal paths: the further folders and the templates
//          below the bin folder, the cache, the personal folder, the two workgroup folders. In
//          administrator mode, where path_wkgKrsAdmin_dir names a folder that exists: the personal
//          folder and the two of the administrator
// Source:  the settings provider
void prepfolderlist(FolderSet& folders);

// checkpath is true if the folder may be used: on a fixed drive, a network drive or a share. It
// sets fixeddrive, and tests whether a network folder can be read.
bool checkpath(FolderRec& folder);

// enumfnames appends what a search for the folder's path, directly followed by "*.vlm", finds,
// folders included, in the file system's order. The path must end in a separator to be searched
// inside.
void enumfnames(const FolderRec& folder, std::vector<FileRec>& files);

// collectall is enumfnames of every local folder, in the set's order. Network folders are not
// listed.
void collectall(const FolderSet& folders, std::vector<FileRec>& files);

// storedname is the name that a backup stores a file by: with the mark and the full path, or bare.
std::wstring storedname(const FileRec& file);
