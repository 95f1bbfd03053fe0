#pragma once

#include <set>
#include <string>
#include <vector>

struct FolderRec {
    std::wstring path;
    bool alien = false;      // not the personal folder: its files travel with their full path
    bool fixeddrive = false; // counts as local: only such folders are listed
    bool accessible = false;

    bool operator<(const FolderRec& other) const { return path < other.path; }
};
using FolderSet = std::set<FolderRec>;

struct FileRec {
    std::wstring folder; // the path of its FolderRec
    std::wstring name;   // as the file system gives it
    bool alien = false;
};

void prepfolderlist(FolderSet& folders);
bool checkpath(FolderRec& folder);
void enumfnames(const FolderRec& folder, std::vector<FileRec>& files);
void collectall(const FolderSet& folders, std::vector<FileRec>& files);
