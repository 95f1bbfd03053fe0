#include "writtenfile.h"

#include "formats/backup/finding.h"
#include "formats/text/printable.h"
#include "shared/jsondocument.h"
#include "shared/terminal.h"

std::streamsize CWrittenFile::xsputn(const char* text, std::streamsize size)
{
    m_size += static_cast<uint64_t>(size);
    return m_file.Stream().write(text, size) ? size : 0;
}

int CWrittenFile::overflow(int c)
{
    const char one = traits_type::to_char_type(c);
    return c != EOF && xsputn(&one, 1) == 1 ? c : EOF;
}

void CWrittenFile::Complete(const char* schema, const std::function<void(CJsonDocument&)>& more)
{
    m_file.Complete();
    const bool standard = m_call.output == "-";
    if (standard && !(m_call.json && more))
        return;
    if (m_call.json) {
        CJsonDocument document(standard ? m_call.err : m_call.out, schema);
        document.Text("path", m_call.output);
        document.Number("size", m_size);
        if (more)
            more(document);
    } else if (!isQuiet()) {
        m_call.out << printable(m_call.output) << ": " << countText(m_size, "byte") << '\n';
    }
}
