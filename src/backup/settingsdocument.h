#pragma once

#include "formats/der/dernode.h"

#include <string>

#include <json/forwards.h>

class CDerElement;

// The settings element of a backup: a sequence of one narrow text, a JSON document. Backups of
// earlier versions hold two typed elements or more instead: an integer for the training prompt
// (1 shows), the hot key as wide text, and the do-not-prompt list, read when there are exactly
// three.
//
// The document is {"settings":{"current":{...}}} with the members
//   open_guard_desk_qa            text, the hot key
//   path_dontpromptlist_filename  text of the do-not-prompt list; only when there is any
//   show_training_prompt          boolean
//   useGrabbingCreds              boolean
// Its text is UTF-8 without escapes for what is outside ASCII. The list's bytes are not looked at:
// those of an old code page pass as they are. A text ends at its first zero.

// ExportSettings makes the settings element from the settings as they are now.
//
// slot:    receives the sequence; may be null
// Returns: false for a null slot alone
bool ExportSettings(CDerNode* slot);

// RestoreSettings applies an encoded settings element. All checks come before all applying; each
// setting that the element doesn't name stays as it is. The do-not-prompt list of a document is
// read and not written back.
//
// element: may be null, which is refused
// Returns: true when the settings were applied; a refusal is traced
// Errors:  std::exception from the library, for a text member that is no text and for members of a
//          value that is no object; nothing is applied then
bool RestoreSettings(const CDerElement* element);

// jv2s writes a JSON value as one line without a line feed; null and empty containers give empty
// text. Raises nothing: a failure is traced and text is empty.
void jv2s(const Json::Value& value, std::string& text);
