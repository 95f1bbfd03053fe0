#include "vlagent/journal.h"

#include "common/text.h"

#include <cstdio>

namespace {

std::string timeNow()
{
    SYSTEMTIME now;
    GetSystemTime(&now);
    char text[40];
    std::snprintf(text, sizeof text, "%04u-%02u-%02uT%02u:%02u:%02u.%03uZ", now.wYear, now.wMonth,
                  now.wDay, now.wHour, now.wMinute, now.wSecond, now.wMilliseconds);
    return text;
}

void appendQuoted(std::string& json, std::string_view value)
{
    json += '"';
    for (const char c : utf8FromWide(wideFromUtf8(value))) {
        if (c == '"' || c == '\\') {
            json += '\\';
            json += c;
        } else if (static_cast<unsigned char>(c) < 0x20) {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(c));
            json += escape;
        } else {
            json += c;
        }
    }
    json += '"';
}

} // namespace

journalLine_t::journalLine_t(std::string_view event) : m_json("{\"time\":\"" + timeNow() + '"')
{
    text("event", event);
}

journalLine_t& journalLine_t::number(std::string_view key, uint64_t value)
{
    m_json += ',';
    appendQuoted(m_json, key);
    m_json += ':' + std::to_string(value);
    return *this;
}

journalLine_t& journalLine_t::text(std::string_view key, std::string_view value)
{
    m_json += ',';
    appendQuoted(m_json, key);
    m_json += ':';
    appendQuoted(m_json, value);
    return *this;
}

bool journal_t::open(const std::wstring& path)
{
    m_file.reset(CreateFileW(path.c_str(), FILE_APPEND_DATA,
                             FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                             OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    return static_cast<bool>(m_file);
}

void journal_t::write(const journalLine_t& line) const
{
    if (!m_file)
        return;
    const std::string bytes = line.finished();
    DWORD written = 0;
    WriteFile(m_file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
}
