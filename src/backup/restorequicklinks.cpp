#include "backup/storagedata.h"
#include "common/text.h"
#include "quicklinks/quicklinks.h"
#include "storage/paths.h"
#include "storage/settings.h"
#include "tracecore/tracer.h"

#include <string>

using namespace tracecore;

namespace {

void restoreQuickLink(QL& quickLinks, const CDerElement& element, TextForm form,
                      const std::string& prefix)
{
    CDerSequenceView record;
    BackupLink link;
    if (!record.Decode(element) || !decodeLink(record, form, link))
        return;
    const std::string manifest = prefix + link.manifest;
    if (traceActive())
        traceFormat(0, "bs3: %ls", wideFromUtf8(manifest).c_str());
    quickLinks.add(link.name, link.target, manifest, link.profile, link.manifestid, link.wocred);
}

} // namespace

void CStorageData::RestoreQuickLinks(const CDerElement& element, TextForm form)
{
    const traceScope_t scope("RestoreQuickLinks");
    if (element.Encoded().empty())
        return;
    CDerSequenceView records;
    (void)records.Decode(element); // undecodable: no records
    traceFormat(0, "SAQL OK, Num BLOBs=%d", static_cast<int>(records.Count()));
    const std::wstring dir = settings_getstring(L"path_localstorage_dir", L"");
    if (dir.empty())
        return;
    // The backup holds bare file names: with the prefix in front, their case kept, they name this
    // machine's files.
    const std::string prefix = utf8FromWide(lowerpath(unifyslashes(dir)));
    if (prefix.empty())
        return;
    QL quickLinks;
    for (const CDerElement& record : records)
        restoreQuickLink(quickLinks, record, form, prefix);
    quickLinks.flush();
}
