#include "backupparts.h"

#include "formats/backup/records.h"
#include "formats/der/dernode.h"
#include "formats/text/unicode.h"

namespace {

void setList(CDerNode& node, const BackupParts::Records& records)
{
    node.SetSequence(records.size());
    for (size_t i = 0; i < records.size(); ++i)
        node.Child(i).SetEncoded(records[i]);
}

// setLink stores a record as it is, unless its texts have the other form.
void setLink(CDerNode& node, std::span<const uint8_t> bytes, TextForm form)
{
    CDerSequenceView record;
    BackupLink link;
    (void)record.Decode(bytes);
    std::span<const uint8_t> octets;
    const TextForm found = record[0].DecodeOctets(octets) ? TextForm::octets : TextForm::wide;
    if (found == form || !decodeLink(record, found, link)) {
        node.SetEncoded(bytes);
        return;
    }
    node.SetSequence(6);
    const auto set = [&](size_t item, const std::string& text) {
        if (form == TextForm::octets)
            node.Child(item).SetNarrow(text);
        else
            node.Child(item).SetWide(utf16FromUtf8(text));
    };
    set(0, link.name);
    set(1, link.target);
    set(2, link.manifest);
    node.Child(3).SetInteger(link.profile);
    set(4, link.manifestid);
    node.Child(5).SetInteger(link.wocred ? 1 : 0);
}

} // namespace

std::vector<uint8_t> encodeBackup(const BackupParts& parts, size_t elementCount)
{
    const bool categories = !parts.categories.empty() || elementCount >= 3;
    CDerTree backup;
    backup.SetSequence(!parts.rest.empty() ? 3 + parts.rest.size() : categories ? 3 : 2);
    setList(backup.Child(0), parts.files);
    CDerNode& links = backup.Child(1);
    links.SetSequence(parts.links.size());
    for (size_t i = 0; i < parts.links.size(); ++i)
        setLink(links.Child(i), parts.links[i], versionOf(backup.Count()).linkTexts);
    if (backup.Count() > 2)
        setList(backup.Child(2), parts.categories);
    for (size_t i = 0; i < parts.rest.size(); ++i)
        backup.Child(3 + i).SetEncoded(parts.rest[i]);
    return backup.Encode();
}
