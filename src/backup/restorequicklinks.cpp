#include "backup/storagedata.h"
#include "common/text.h"
#include "formats/text/unicode.h"
#include "quicklinks/quicklinks.h"
#include "storage/paths.h"
#include "storage/settings.h"
#include "tracecore/tracer.h"

#include <string>

using namespace tracecore;

namespace {

std::string TextOf(const CDerElement& element, TextForm form)
{
    return form == TextForm::Wide ? utf8FromUtf16(element.WideText())
                                  : std::string(element.NarrowText());
}

void RestoreQuickLink(QL& quickLinks, const CDerElement& element, TextForm form,
                      const std::string& prefix)
{
    CDerSequenceView record;
    if (!record.Decode(element) || (record.Count() != 5 && record.Count() != 6))
        return;
    const std::string manifest = prefix + TextOf(record[2], form);
    if (traceActive())
        traceFormat(0, "bs3: %ls", wideFromUtf8(manifest).c_str());
    const bool withoutCredentials = record[5].Integer() == 1; // a missing element is no integer
    quickLinks.add(TextOf(record[0], form), TextOf(record[1], form), manifest, record[3].Integer(),
                   TextOf(record[4], form), withoutCredentials);
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
        RestoreQuickLink(quickLinks, record, form, prefix);
    quickLinks.flush();
}
