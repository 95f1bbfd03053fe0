#include "writtenfile.h"

#include "formats/backup/finding.h"
#include "formats/text/printable.h"
#include "shared/jsondocument.h"
#include "shared/terminal.h"

void CWrittenFile::Complete(const char* schema, const std::function<void(CJsonDocument&)>& more)
{
    const auto size = static_cast<uint64_t>(m_file.Stream().tellp());
    m_file.Complete();
    const bool standard = m_call.output == "-";
    if (standard && !(m_call.json && more))
        return;
    if (m_call.json) {
        CJsonDocument document(standard ? m_call.err : m_call.out, schema);
        document.Text("path", m_call.output);
        document.Number("size", size);
        if (more)
            more(document);
    } else if (!isQuiet()) {
        m_call.out << printable(m_call.output) << ": " << countText(size, "byte") << '\n';
    }
}
