#include "shared/outputfile.h"

#include "shared/filesystem.h"
#include "shared/toolerror.h"

#include <utility>

void refuseExisting(const std::string& name, bool replace)
{
    const entryKind_t kind = name == "-" ? entryKind_t::other : entryKind(pathOf(name));
    if (kind == entryKind_t::folder)
        throw CToolError(name + " is a folder", "name a file in it");
    if (kind == entryKind_t::file && !replace)
        throw CToolError(name + " exists already", "give another name, or --force to replace it");
}

COutputFile::COutputFile(std::string name, bool replace, const std::vector<std::string>& inputs,
                         std::ostream& standardOutput)
    : m_name(std::move(name)),
      m_replace(replace),
      m_standard(m_name == "-" ? &standardOutput : nullptr)
{
    if (m_standard)
        return;
    m_target = pathOf(m_name);
    for (const std::string& input : inputs)
        if (input == "-" ? isStandardInput(m_target) : isSameFile(m_target, pathOf(input)))
            throw CToolError(m_name + " is what is read", "give the output another name");
    refuseExisting(m_name, replace);
    Create();
}

COutputFile::~COutputFile()
{
    m_file.close();
    if (!m_unfinished.empty())
        removeFile(m_unfinished);
}

void COutputFile::Create()
{
    if (entryKind(m_target) == entryKind_t::other) {
        m_file.open(m_target, std::ios::binary);
    } else {
        // Not the target's name with a suffix: it may be as long as names can be.
        std::error_code error;
        int number = 0;
        std::filesystem::path path;
        do {
            path = m_target.parent_path() / ("unfinished-" + std::to_string(++number) + ".part");
            error = createNewFile(path);
        } while (error == std::errc::file_exists && number < 1000);
        if (error)
            Fail(error);
        m_unfinished = std::move(path);
        m_file.open(m_unfinished, std::ios::binary);
    }
    if (!m_file)
        Fail(std::make_error_code(std::errc::permission_denied));
}

void COutputFile::Fail(std::error_code error) const
{
    throw CToolError(m_name + " can't be written: " + reasonOf(error),
                     "check the folder, and whether you may write to it");
}

void COutputFile::Complete()
{
    if (!Stream().flush())
        throw CToolError(m_standard ? "standard output can't be written"
                                    : m_name + " can't be written whole",
                         "is the disk full, or the reader gone?");
    if (m_standard)
        return;
    m_file.close();
    if (m_unfinished.empty())
        return;
    std::error_code error = flushFile(m_unfinished);
    if (!error)
        error = moveFile(m_unfinished, m_target, m_replace);
    if (error)
        Fail(error);
    m_unfinished.clear();
}
