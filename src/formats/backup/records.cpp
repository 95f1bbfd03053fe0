#include "formats/backup/records.h"

#include "formats/backup/storedmark.h"
#include "formats/text/pathpart.h"
#include "formats/text/unicode.h"

namespace {

std::string textOf(const CDerElement& element, TextForm form)
{
    return form == TextForm::wide ? utf8FromUtf16(element.WideText())
                                  : std::string(element.NarrowText());
}

} // namespace

std::u16string BackupLink::Key() const
{
    return utf16FromUtf8(std::to_string(profile) + '|')
        .append(utf16FromUtf8(fileNamePart(manifest)));
}

StoredFile decodeFile(const CDerSequenceView& pair)
{
    StoredFile file;
    file.name = pair[0].WideText();
    file.content = pair[1].Octets();
    file.marked = file.name.starts_with(storedMark<char16_t>);
    const std::u16string_view name = file.name;
    file.target = file.marked ? name.substr(storedMark<char16_t>.size()) : fileNamePart(name);
    return file;
}

bool decodeLink(const CDerSequenceView& record, TextForm form, BackupLink& link)
{
    if (record.Count() != 5 && record.Count() != 6)
        return false;
    link.name = textOf(record[0], form);
    link.target = textOf(record[1], form);
    link.manifest = textOf(record[2], form);
    link.profile = record[3].Integer();
    link.manifestid = textOf(record[4], form);
    link.wocred = record[5].Integer() == 1; // a missing element is no integer
    return true;
}

StoredCategory decodeCategory(const CDerSequenceView& pair)
{
    return {pair[0].WideText(), pair[1].WideText()};
}

LegacySettings decodeLegacySettings(const CDerSequenceView& items)
{
    LegacySettings settings;
    settings.showPrompt = items[0].Integer() == 1;
    settings.hotKey = items[1].WideText();
    if (items.Count() == 3)
        settings.dontPromptList = items[2].Encoded();
    return settings;
}
