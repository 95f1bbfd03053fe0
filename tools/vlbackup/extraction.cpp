#include "extraction.h"

#include "formats/backup/storednames.h"
#include "shared/filesystem.h"
#include "shared/outputfile.h"
#include "shared/toolerror.h"

#include <algorithm>
#include <iostream>
#include <string_view>
#include <utility>
#include <vector>

namespace {

// placeBelow gives the folders and the name that a file has below the target. Returns why it has
// none; null if it has.
const char* placeBelow(const BackupFile& file, std::vector<std::string>& parts)
{
    if (!file.alien) {
        parts = {file.name};
        return file.target == file.name ? nameFault(file.name) : "holds a path";
    }
    std::string_view rest = file.target;
    if (pathKey(file.target).empty())
        return "is no full path on a drive or a network share";
    parts = {"alien", "UNC"};
    if (rest[1] == ':') {
        parts[1] = static_cast<char>(rest[0] & ~0x20); // the same folder for c: and C:
        rest.remove_prefix(2);
    }
    const size_t depth = parts.size();
    while (!rest.empty()) {
        const std::string part(rest.substr(0, rest.find_first_of("\\/")));
        rest.remove_prefix(std::min(rest.size(), part.size() + 1));
        if (part == "..")
            return "climbs out of a folder";
        if (part.empty() || part == ".")
            continue;
        if (const char* const fault = nameFault(part))
            return fault;
        parts.push_back(part);
    }
    const bool folder = file.target.ends_with('\\') || file.target.ends_with('/');
    return parts.size() == depth || folder ? "names no file" : nullptr;
}

void refuseLink(const std::string& name)
{
    if (isLink(pathOf(name)))
        throw CToolError(name + " is a link, which may lead elsewhere",
                         "remove it, or extract into another folder");
}

} // namespace

CExtraction::CExtraction(std::string folder, bool replace, std::string input)
    : m_folder(std::move(folder)), m_replace(replace), m_input(std::move(input))
{
    MakeFolder(m_folder);
}

void CExtraction::MakeFolder(const std::string& name) const
{
    std::error_code error;
    std::filesystem::create_directory(pathOf(name), error);
    if (entryKind(pathOf(name)) == entryKind_t::folder)
        return;
    throw CToolError(name + (entryKind(pathOf(name)) == entryKind_t::missing
                                 ? " can't be made: " + reasonOf(error)
                                 : std::string(" is no folder")),
                     "extract into another folder");
}

std::string CExtraction::Write(const BackupFile& file) const
{
    std::vector<std::string> parts;
    if (const char* const fault = placeBelow(file, parts))
        throw CToolError('"' + file.name + "\" " + fault + ", and isn't written",
                         "vlbackup cat writes its bytes");
    std::string name = m_folder;
    for (size_t i = 0; i < parts.size(); ++i) {
        name += '/' + parts[i];
        refuseLink(name);
        if (i + 1 < parts.size())
            MakeFolder(name);
    }
    if (entryKind(pathOf(name)) == entryKind_t::other)
        throw CToolError(name + " is a device or a pipe", "extract into another folder");
    COutputFile output(name, m_replace, {m_input}, std::cout);
    output.Stream().write(reinterpret_cast<const char*>(file.content.data()),
                          static_cast<std::streamsize>(file.content.size()));
    output.Complete();
    return name;
}
