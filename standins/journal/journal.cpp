#include "journal/journal.h"

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

journalLine_t::journalLine_t() : m_json("{\"time\":\"" + timeNow() + '"') {}

journalLine_t::journalLine_t(std::string_view event) : journalLine_t()
{
    text("event", event);
}

std::string& journalLine_t::member(std::string_view key)
{
    m_json += ',';
    appendQuoted(m_json, key);
    return m_json += ':';
}

journalLine_t& journalLine_t::number(std::string_view key, uint64_t value)
{
    member(key) += std::to_string(value);
    return *this;
}

journalLine_t& journalLine_t::flag(std::string_view key, bool value)
{
    member(key) += value ? "true" : "false";
    return *this;
}

journalLine_t& journalLine_t::text(std::string_view key, std::string_view value)
{
    appendQuoted(member(key), value);
    return *this;
}

journalLine_t& journalLine_t::texts(std::string_view key, const std::vector<std::wstring>& values)
{
    member(key) += '[';
    for (size_t i = 0; i < values.size(); ++i) {
        m_json += i ? "," : "";
        appendQuoted(m_json, utf8FromWide(values[i]));
    }
    m_json += ']';
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
