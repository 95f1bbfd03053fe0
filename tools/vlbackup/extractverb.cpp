#include "extraction.h"
#include "formats/text/printable.h"
#include "shared/jsondocument.h"
#include "shared/toolerror.h"
#include "verbs.h"

#include <algorithm>
#include <optional>

namespace {

// COutcomes reports what became of each stored file, as text or in a JSON document.
class COutcomes
{
public:
    explicit COutcomes(const Call& call) : m_call(call)
    {
        if (call.json)
            m_document.emplace(call.out, "vlbackup-extract-1").BeginList("files");
    }
    ~COutcomes()
    {
        if (m_document)
            m_document->EndList();
    }
    COutcomes(const COutcomes&) = delete;
    COutcomes& operator=(const COutcomes&) = delete;

    void Written(const BackupFile& file, const std::string& path)
    {
        if (m_document)
            Item(file, "path", path);
        else
            m_call.out << printable(path) << '\n';
    }

    void Refused(const BackupFile& file, const CToolError& error)
    {
        m_status = exitStatus::failed;
        if (m_document)
            Item(file, "failure", error.what());
        else
            reportFailure(m_call.err, "vlbackup", error, false);
    }

    int Status() const noexcept { return m_status; }

private:
    void Item(const BackupFile& file, const char* what, const std::string& text)
    {
        m_document->BeginObject(nullptr);
        m_document->Text("name", file.name);
        m_document->Text(what, text);
        m_document->EndObject();
    }

    const Call& m_call;
    std::optional<CJsonDocument> m_document;
    int m_status = exitStatus::good;
};

// writeFiles writes the chosen ones, and gives the exit status.
int writeFiles(const Call& call, const CBackupFiles& files, const std::vector<size_t>& chosen)
{
    const CExtraction extraction(call.output, call.force, call.input);
    COutcomes outcomes(call);
    const auto write = [&](const BackupFile& file) {
        try {
            outcomes.Written(file, extraction.Write(file));
        } catch (const CToolError& error) {
            outcomes.Refused(file, error);
        }
    };
    const std::vector<bool> last =
        lastOfEach(files.size(), [&](size_t i) { return files[i].Key(); });
    for (const size_t i : chosen) {
        const BackupFile file = files[i];
        if (last[i])
            write(file);
        else
            outcomes.Refused(file,
                             CToolError('"' + file.name +
                                            "\" is the same file as a later one, and isn't written",
                                        "a restore keeps the last"));
    }
    return outcomes.Status();
}

} // namespace

int verbs::extract(const Call& call)
{
    if (call.output == "-")
        throw CToolError("a folder can't be standard output", "vlbackup cat writes one file there",
                         exitStatus::wrongUsage);
    const OpenBackup backup = openBackup(call.input, call.in);
    const CBackupFiles& files = backup.view.files;
    CNameChoice choice(call.names);
    std::vector<size_t> chosen;
    for (size_t i = 0; i < files.size(); ++i)
        if (choice.Has(files[i].name))
            chosen.push_back(i);
    if (chosen.empty() && !choice.All())
        return reportUnmet(call, choice);
    const int written = writeFiles(call, files, chosen);
    return std::max(written, reportUnmet(call, choice));
}
