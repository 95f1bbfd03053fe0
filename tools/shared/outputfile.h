#pragma once

#include <filesystem>
#include <fstream>
#include <ostream>
#include <string>
#include <vector>

// COutputFile is a file that is written beside its target and renamed when it is complete, so that
// the target is whole or as it was. Without completion it is removed.
//
// A device or a pipe is written directly, as there is nothing to keep.
//
// Errors: CToolError, of every operation
class COutputFile
{
public:
    // name:           UTF-8; "-" is the standard output that is given
    // replace:        false refuses a target that exists
    // inputs:         names of what the work reads; a target that is one of them is refused
    COutputFile(std::string name, bool replace, const std::vector<std::string>& inputs,
                std::ostream& standardOutput);
    ~COutputFile();
    COutputFile(const COutputFile&) = delete;
    COutputFile& operator=(const COutputFile&) = delete;

    std::ostream& Stream() noexcept { return m_standard ? *m_standard : m_file; }

    // Complete puts the file in the target's place. Without it the target stays as it was.
    void Complete();

private:
    void Create();
    [[noreturn]] void Fail(std::error_code error) const;

    std::string m_name;
    bool m_replace;
    std::ostream* m_standard; // or null
    std::filesystem::path m_target;
    std::filesystem::path m_unfinished; // empty if the target is written directly, or when moved
    std::ofstream m_file;
};

// refuseExisting is the check of COutputFile alone, for work that asks for something first.
void refuseExisting(const std::string& name, bool replace);
