#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

using muiChecksum_t = std::array<uint8_t, 16>;

// muiFile_t is what the bytes of a PE file say about its part in a DLL with language files.
struct muiFile_t {
    bool sound = false;     // every resource lies in the file, and every string block is whole
    bool divided = false;   // there is a resource of type "MUI", id 1
    bool described = false; // it is resource configuration data: right magic, both checksums there
    muiChecksum_t service = {}; // at offset 28
    muiChecksum_t content = {}; // at offset 44
};

// readMuiFile reads and checks a file as it lies on the disk. It never reads past the end of the
// bytes, whatever they claim, and its work is bounded. What isn't sound is not to be handed to the
// platform's own look-up, which trusts the offsets and lengths in a file.
muiFile_t readMuiFile(std::span<const uint8_t> file) noexcept;

// languageFileFits is true if a language file belongs to a DLL: both are described, and one of the
// two checksums is equal. One is enough, so that a DLL takes the files of an earlier release of
// the same texts.
bool languageFileFits(const muiFile_t& library, const muiFile_t& language) noexcept;
