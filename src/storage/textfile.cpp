#include "storage/textfile.h"

#include "common/mappedfile.h"
#include "common/text.h"
#include "storage/paths.h"
#include "tracecore/tracer.h"

#include <windows.h>

#include <iterator>
#include <string_view>
#include <utility>

using namespace tracecore;

namespace {

constexpr const char* loadwords[] = {"undef", "notfound", "noaccess", "badfile", "badcrc", "nodll"};

// The units end at the first zero, as a text does.
std::wstring_view utf16text(const MappedFile& mapped)
{
    const std::wstring_view units(reinterpret_cast<const wchar_t*>(mapped.view) + 1,
                                  mapped.size / sizeof(wchar_t) - 1);
    return units.substr(0, units.find(L'\0'));
}

} // namespace

namespace errors {

fileload_error::fileload_error(int32_t loadCode, std::string message)
    : code(loadCode), m_message(std::move(message))
{}

const char* fileload_error::what() const noexcept
{
    return m_message.c_str();
}

} // namespace errors

std::string fileloadword(int32_t code)
{
    if (code >= 0 && static_cast<size_t>(code) < std::size(loadwords))
        return loadwords[code];
    return "[" + std::to_string(code) + "]";
}

MappedFile mapfile_open(const std::wstring& fileName)
{
    const CFileHandle file(CreateFileW(fileName.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                       OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
    if (!file)
        return {};
    CMappedView view = mapForReading(file.get());
    if (!view)
        return {};
    SetLastError(NO_ERROR);
    const DWORD size = GetFileSize(file.get(), nullptr);
    // The value that reports a failure can also be the low half of a size.
    if (size == INVALID_FILE_SIZE && GetLastError() != NO_ERROR)
        return {};
    return {size, static_cast<const uint8_t*>(view.release())};
}

void mapfile_close(MappedFile& mapped)
{
    const CMappedView last(const_cast<uint8_t*>(std::exchange(mapped.view, nullptr)));
}

void decodetext(const MappedFile& mapped, std::string& text)
{
    text.clear();
    if (mapped.size == 0)
        return;
    if (mapped.size >= 2 && mapped.view[0] == 0xFF && mapped.view[1] == 0xFE)
        text = utf8FromWide(utf16text(mapped));
    else
        text.assign(reinterpret_cast<const char*>(mapped.view), mapped.size);
}

void load_textlines(const std::wstring& fileName, TextLines& lines)
{
    lines.clear();
    const mappedfile_scope mapped(fileName);
    std::string text;
    decodetext(mapped.get(), text);
    if (!text.empty())
        splitlines(text, lines);
}

void load_textfile(const std::wstring& fileName, TextLines& lines)
{
    lines.clear();
    if (!fileexists(fileName))
        return;
    try {
        load_textlines(fileName, lines);
    } catch (const errors::fileload_error& error) {
        // Kept for a loader whose files can be bad: nothing above raises it.
        traceNoteW(formatWide(L"load_textfile [%s]: '%s'",
                              wideFromUtf8(fileloadword(error.code)).c_str(),
                              wideFromAnsi(error.what()).c_str()));
    } catch (const std::exception& error) {
        traceException("load_textfile: ", error);
    } catch (...) {
        traceNote("load_textfile oo");
    }
}
