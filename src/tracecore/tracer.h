#pragma once

#include <windows.h>

#include <cstdarg>
#include <exception>
#include <string>

// The process-wide diagnostic tracer as its callers see it. Entering a function writes nothing: its
// record is written late, when something inside it is traced, with the time at which it was really
// entered.
//
// Every operation may be called on any thread and returns no failure. Only traceEnter can raise:
// std::bad_alloc, with nothing pushed. Each leaves the thread's last error as it found it. Narrow
// texts are UTF-8 except formats, which are in the active code page.
namespace tracecore {

// traceActive is true if messages go anywhere; test it before building an expensive text.
bool traceActive() noexcept;

// traceEnter pushes a frame for the calling thread and looks at the configuration when that is due.
//
// name: the function's name, by convention "Class::Method"; null counts as empty
void traceEnter(const char* name);

// traceLeave pops the calling thread's last frame, and writes its exit if its entry was written.
void traceLeave();

// traceText, traceFormat and traceFormatW write a plain message, level U. The latter two take
// printf arguments and format nothing unless tracing is active. In traceFormat %s is narrow and %ls
// wide; a text of more than 399 characters is cut there. ignored is always 0. traceFormatW follows
// formatWide and cuts nothing.
void traceText(const char* text);
void traceFormat(int ignored, const char* format, ...);
void traceFormatW(const wchar_t* format, ...);

// The error messages, level E: the status in decimal, a blank, the text (null counts as empty).
void traceStatus(const char* text, HRESULT status);
void traceStatusW(const std::wstring& text, HRESULT status);

// traceStatusFormat is traceStatusW of a text that is formatted as by traceFormatW.
void traceStatusFormat(HRESULT status, const wchar_t* format, ...);

// traceLastError is traceStatusW with the thread's last error as a status.
void traceLastError(const std::wstring& text);

// traceIfFailed is traceStatus for a negative status, and nothing for any other.
void traceIfFailed(const char* text, HRESULT status);

// The notes are error messages with the code 0.
void traceNote(const char* text);
void traceNoteW(const std::wstring& text);
void traceNotePair(const char* first, const char* second);

// traceException notes label and the exception's own text, one after the other.
//
// Returns: E_UNEXPECTED, always
HRESULT traceException(const char* label, const std::exception& exception);

// traceWrite is the one path to the sink, for texts that are built already. A level of '>' does
// nothing.
void traceWrite(char level, const std::wstring& text);

// formatWide, in tracetext.cpp, is the printf of this system, with the platform's rules for wide
// formats: %s and %ls take a wide string, %hs and %S a narrow one; the size I64 is known.
std::wstring formatWide(const wchar_t* format, ...);
std::wstring formatWideV(const wchar_t* format, va_list arguments);

// traceScope_t is the pair of traceEnter and traceLeave for a block, on every way out of it.
//
// name: a literal, or a text that lives as long as the block
class traceScope_t
{
public:
    explicit traceScope_t(const char* name) { traceEnter(name); }
    ~traceScope_t() { traceLeave(); }
    traceScope_t(const traceScope_t&) = delete;
    traceScope_t& operator=(const traceScope_t&) = delete;
};

} // namespace tracecore
