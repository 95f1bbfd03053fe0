#include "common/module.h"
#include "common/text.h"
#include "formats/trace/levels.h"
#include "formats/trace/recordformat.h"
#include "tracecore/realtracer.h"
#include "tracecore/sinks.h"
#include "tracecore/traceheader.h"
#include "tracecore/tracer.h"

#include <algorithm>
#include <vector>

namespace tracecore {

namespace {

constexpr size_t shortText = 350; // texts below this many bytes are built on the stack

// Builds a record of recordHeaderSize + utf8.size() bytes. It states only the low 16 bits of the
// length, and only that much of the text is in it.
void buildRecord(uint8_t* record, char level, const std::string& utf8) noexcept
{
    const uint32_t thread = GetCurrentThreadId();
    const auto n = static_cast<uint16_t>(utf8.size());
    for (unsigned i = 0; i < 4; ++i)
        record[i] = static_cast<uint8_t>(thread >> (8 * i));
    record[4] = static_cast<uint8_t>(level);
    record[5] = static_cast<uint8_t>(n);
    record[6] = static_cast<uint8_t>(n >> 8);
    std::copy_n(utf8.data(), n, record + recordHeaderSize);
    if (n)
        scrambleText(record + recordHeaderSize, n);
}

} // namespace

void writeRecord(HANDLE file, char level, const std::wstring& text)
{
    if (file == INVALID_HANDLE_VALUE)
        return;
    LONG high = 0; // without it a file that has passed 4 GiB has no reachable end
    SetFilePointer(file, 0, &high, FILE_END); // for each record: other processes write here too
    const std::string utf8 = utf8FromWide(text);
    const size_t size = recordHeaderSize + utf8.size();
    DWORD written = 0;
    if (utf8.size() < shortText) {
        uint8_t record[recordHeaderSize + shortText];
        buildRecord(record, level, utf8);
        WriteFile(file, record, static_cast<DWORD>(size), &written, nullptr);
    } else {
        std::vector<uint8_t> record(size);
        buildRecord(record.data(), level, utf8);
        WriteFile(file, record.data(), static_cast<DWORD>(size), &written, nullptr);
    }
}

void outputStorageFile_t::write(char level, const std::wstring& text, const std::string&)
{
    if (ensureOpen())
        writeRecord(handle.get(), level, text);
}

bool outputStorageFile_t::ensureOpen()
{
    if (handle)
        return true;
    std::atomic<uint8_t>& failed = theTracer().fileFailed;
    if (path.empty() || failed)
        return false;
    SetLastError(ERROR_SUCCESS);
    handle.reset(CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                             nullptr, newFile ? CREATE_ALWAYS : OPEN_ALWAYS,
                             FILE_ATTRIBUTE_NORMAL | FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
    if (!handle) {
        failed = 1;
        return false;
    }
    path.clear();
    DWORD high = 0;
    if (GetFileSize(handle.get(), &high) == 0 && high == 0) {
        writeTraceHeader(handle.get(), thisModule());
    } else {
        SYSTEMTIME now;
        GetLocalTime(&now);
        writeRecord(handle.get(), levelWriter,
                    formatWide(L"%02d-%02d-%02d", now.wMonth, now.wDay, now.wYear));
    }
    return true;
}

} // namespace tracecore
