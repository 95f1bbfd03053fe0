#pragma once

#include "formats/backup/records.h"
#include "formats/der/dernode.h"
#include "formats/der/derview.h"

#include <windows.h>

#include <cstdint>

// CStorageData gathers the user's templates, quick links, categories and settings into the elements
// of a backup, and puts templates and quick links back. It holds no state: each operation reads
// files, registry and settings again.
class CStorageData
{
public:
    // IsStorageDataPresent is true if the personal folder has data worth a backup: an updata.vls
    // with content, or an updata_temp.vls with or without.
    static bool IsStorageDataPresent();

    // BuildBackup makes the whole backup as a tree: templates, quick links, categories, settings.
    //
    // backup:  measured, ready to be written; it holds the larger files mapped until it goes
    // Returns: the bytes that it takes; 0 when none of the four had anything to give
    // Errors:  raises E_OUTOFMEMORY, also for a backup of 2 GiB, and what the four raise
    static uint32_t BuildBackup(CDerNode& backup);

    // ExportTemplates makes a sequence of pairs of a stored name and a file's bytes: every template
    // of the local folders, then the two updata files, there or not. A file that can't be read is a
    // pair with empty content.
    //
    // slot:    stays empty on failure
    // Returns: S_OK; E_POINTER for null; E_FAIL when there is no file and no personal folder
    // Errors:  std::bad_alloc
    static HRESULT ExportTemplates(CDerNode* slot);

    // ExportQuickLinks makes a sequence of the quick link records that travel, six elements each.
    //
    // Returns: whether there was one
    // Errors:  std::bad_alloc
    static bool ExportQuickLinks(CDerNode& slot);

    // RestoreTemplates deletes the templates and .vls files of the personal folder and the quick
    // link file, then writes the files of an element. A pair whose file can't be created is passed
    // over; folders are not created. A failed deletion or write is traced. A missing element is
    // traced and changes nothing.
    //
    // Errors:  std::bad_alloc
    // Source:  the setting path_localstorage_dir, a text in front of file names: empty, it is the
    //          current folder
    static void RestoreTemplates(const CDerElement& element);

    // RestoreQuickLinks adds the records of an element to the quick link file; one that hasn't five
    // or six elements is passed over.
    //
    // Errors:  std::bad_alloc
    static void RestoreQuickLinks(const CDerElement& element, TextForm form);
};
