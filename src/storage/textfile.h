#pragma once

#include "formats/text/textlines.h"

#include <cstdint>
#include <exception>
#include <string>
#include <utility>

// Whole files through a read-only mapping, and text files as lines. A file that can't be read,
// because it is missing, empty or held open by a writer, reads as nothing. Nothing is shared
// between calls.

// MappedFile is a read-only view of one file. It is a plain record: its holder ends it with
// mapfile_close.
struct MappedFile {
    uint32_t size = 0;             // bytes; the low 32 bits of the file's size
    const uint8_t* view = nullptr; // null with size 0: nothing could be mapped
};

// mapfile_open maps a whole file. While the view lives, others can read the file but not write it.
//
// Returns: empty on any failure
// Source:  CreateFileMappingW; the view alone keeps the mapping alive
MappedFile mapfile_open(const std::wstring& fileName);

// mapfile_close unmaps the view, if there is one, and sets it to null. It keeps the thread's last
// error.
void mapfile_close(MappedFile& mapped);

// mappedfile_scope is a mapped file for the life of the object.
class mappedfile_scope
{
public:
    explicit mappedfile_scope(const std::wstring& fileName) : m_mapped(mapfile_open(fileName)) {}
    ~mappedfile_scope() { mapfile_close(m_mapped); }
    mappedfile_scope(mappedfile_scope&& other) noexcept
        : m_mapped(std::exchange(other.m_mapped, MappedFile()))
    {}

    const MappedFile& get() const noexcept { return m_mapped; }

private:
    MappedFile m_mapped;
};

// decodetext gives the text of a mapped file as UTF-8. UTF-16 is known by the bytes FF FE, which
// are dropped; it ends at its first zero unit, and an odd last byte is dropped. Any other file is
// taken to be UTF-8 and copied as it is, with whatever mark it starts with.
//
// mapped: aligned as a mapping is
// text:   cleared first
void decodetext(const MappedFile& mapped, std::string& text);

// load_textlines gives the lines of a text file.
//
// lines:  cleared first
// Errors: may raise when memory runs out; the file is released then too
void load_textlines(const std::wstring& fileName, TextLines& lines);

// load_textfile is load_textlines that raises nothing: an error is traced, and lines holds what was
// done so far.
void load_textfile(const std::wstring& fileName, TextLines& lines);

// fileloadword is the word for the code of a fileload_error; a code without one gives "[code]".
std::string fileloadword(int32_t code);

namespace errors {

// fileload_error is the error of loading a file. The loader's own steps raise none: a missing or
// unreadable file is an empty list.
class fileload_error : public std::exception
{
public:
    fileload_error(int32_t loadCode, std::string message);
    const char* what() const noexcept override;

    int32_t code; // 0 undef, 1 notfound, 2 noaccess, 3 badfile, 4 badcrc, 5 nodll

private:
    std::string m_message;
};

} // namespace errors
