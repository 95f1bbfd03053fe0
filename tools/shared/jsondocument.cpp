#include "shared/jsondocument.h"

#include "shared/jsonstring.h"
#include "shared/jsontext.h"

#include <algorithm>
#include <iomanip>
#include <utility>

CJsonDocument::CJsonDocument(std::ostream& out, const char* schema) : m_out(out)
{
    m_out << '{';
    ++m_depth;
    Text("schema", schema);
}

CJsonDocument::~CJsonDocument()
{
    End('}');
    m_out << '\n';
}

void CJsonDocument::BeginLine()
{
    m_out << '\n' << std::setw(static_cast<int>(2 * m_depth)) << "";
}

void CJsonDocument::Name(const char* name)
{
    if (!std::exchange(m_empty, false))
        m_out << ',';
    BeginLine();
    if (name)
        m_out << '"' << name << "\": ";
}

void CJsonDocument::Begin(const char* name, char bracket)
{
    Name(name);
    m_out << bracket;
    ++m_depth;
    m_empty = true;
}

void CJsonDocument::End(char bracket)
{
    --m_depth;
    if (!std::exchange(m_empty, false))
        BeginLine();
    m_out << bracket;
}

void CJsonDocument::Text(const char* name, std::string_view text)
{
    std::string string;
    appendJsonString(string, text);
    Plain(name, string);
}

void CJsonDocument::Plain(const char* name, std::string_view value)
{
    Name(name);
    m_out << value;
}

void CJsonDocument::Flag(const char* name, bool flag)
{
    Plain(name, flag ? "true" : "false");
}

void CJsonDocument::Base64(const char* name, std::span<const uint8_t> bytes)
{
    constexpr size_t piece = 3 << 14; // of whole groups
    Name(name);
    m_out << '"';
    for (; !bytes.empty(); bytes = bytes.subspan(std::min(piece, bytes.size())))
        m_out << base64(bytes.first(std::min(piece, bytes.size())));
    m_out << '"';
}
