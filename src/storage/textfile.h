#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// MappedFile is a read-only view of one file; its holder ends it with mapfile_close.
struct MappedFile {
    uint32_t size = 0;             // bytes; the low 32 bits of the file's size
    const uint8_t* view = nullptr; // null with size 0: nothing could be mapped
};

using TextLines = std::vector<std::string>; // UTF-8, without line ends

MappedFile mapfile_open(const std::wstring& fileName);
void mapfile_close(MappedFile& mapped);
void decodetext(const MappedFile& mapped, std::string& text);
void load_textlines(const std::wstring& fileName, TextLines& lines);
void load_textfile(const std::wstring& fileName, TextLines& lines);
