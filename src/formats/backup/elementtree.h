#pragma once

#include "formats/backup/finding.h"

#include <cstdint>
#include <functional>
#include <span>

// A backup as its elements stand in the bytes, whole or damaged: for tools that look at the bytes themselves. What a
// restore makes of them is in backupview.h. Portable.

// ElementKind is what an element is by its position.
enum class ElementKind {
    backup,
    // of the backup
    templates,
    quicklinks,
    categories,
    settings,
    unknown, // that a restore leaves alone
    // entries
    storedFile,
    link,
    category,
    // items
    name,
    content,
    target,
    manifest,
    profile,
    manifestId,
    wocred,
    text, // of a category
    document,
    prompt,
    hotKey,
    dontPromptList,
    other,  // one too many, or within what is unknown
    damage, // the rest of what holds it, where no element can be read
    after,  // bytes after the backup's end
};

// kindName is a word for it, such as "hot key".
const char* kindName(ElementKind kind);

// BackupElement is one element with its place. Spans are views into the backup's bytes.
struct BackupElement {
    BackupPlace place;
    ElementKind kind = ElementKind::backup;
    size_t depth = 0;                 // 0 for the backup, up to 3 for an item
    uint8_t tag = 0;                  // its first octet
    size_t header = 0;                // octets of tag and length; 0 for damage, and after the end
    size_t length = 0;                // content octets, as the header announces them
    std::span<const uint8_t> content; // those that are there
    bool whole = true;                // all of them are
    bool inner = false;               // a sequence, whose elements come next
};

// walkElements visits every element, each before those that it holds, in the order of their bytes. Every byte is in the
// header of one visited element, or in the content of one that is not inner.
void walkElements(std::span<const uint8_t> backup,
                  const std::function<void(const BackupElement&)>& visit);
