#pragma once

#include "common/scoped.h"
#include "tracecore/sink.h"

#include <string>

// Each sink is in a file of its own: filesink.cpp, consolesink.cpp, and for the debugger and what it
// shares with the console linesink.cpp.
namespace tracecore {

// outputStorageNowhere_t is tracing switched off.
class outputStorageNowhere_t final : public outputStorageInterface_i
{
public:
    void write(char, const std::wstring&, const std::string&) override {}
};

// outputStorageFile_t writes all records to a trace file, which it opens with the first of them. A
// file that can't be opened sets the tracer's fileFailed: no sink of this process tries again.
//
// fullName: where the file is
// replace:  replaces an existing file; otherwise it is appended to, after a note of the new writer
class outputStorageFile_t final : public outputStorageInterface_i
{
public:
    outputStorageFile_t(std::wstring fullName, bool replace)
        : path(std::move(fullName)), newFile(replace)
    {}
    void write(char level, const std::wstring& text, const std::string& function) override;

private:
    bool ensureOpen();

    std::wstring path; // empty once the file is open
    bool newFile;
    CFileHandle handle;
};

// outputStorageWindow_t turns messages into readable lines. It drops all other records, but
// remembers the time.
class outputStorageWindow_t : public outputStorageInterface_i
{
public:
    void write(char level, const std::wstring& text, const std::string& function) override;

protected:
    virtual void prepare() = 0;                      // makes the output ready
    virtual void emit(const std::wstring& line) = 0; // puts out one finished line

    std::wstring timeText;    // of the last T record
    HANDLE console = nullptr; // where colours are set; the console sink owns it
};

// outputStorageConsole_t writes the lines to the process's console, and makes one when there is
// none.
class outputStorageConsole_t final : public outputStorageWindow_t
{
public:
    ~outputStorageConsole_t() override;

protected:
    void prepare() override;
    void emit(const std::wstring& line) override;

private:
    bool opened = false;
};

// outputStorageIDE_t writes the lines to an attached debugger.
class outputStorageIDE_t final : public outputStorageWindow_t
{
protected:
    void prepare() override {}
    void emit(const std::wstring& line) override;
};

// writeRecord appends one record to a trace file with a single write. An invalid handle writes
// nothing. A text of 65,536 bytes or more breaks the parsing of the file: its length field wraps.
void writeRecord(HANDLE file, char level, const std::wstring& text);

} // namespace tracecore
