#pragma once

#include "formats/der/dernode.h"

class CDerElement;

// The user's quick link categories: names and texts that the dashboard keeps as string values in
// HKEY_CURRENT_USER, SOFTWARE\Veltrano\Applications\DashBoard\QLCategories. They are passed on
// without being looked into. Neither operation traces anything.

// qlcategories_backup makes the list of the categories, in the order of enumeration. It ends at the
// first value that isn't a terminated string.
//
// out:     receives a sequence of pairs of name and text, both wide; may be null
// Returns: true when the key holds at least one value, of whatever kind
// Errors:  std::bad_alloc
// Source:  RegEnumValueW, RegQueryValueExW
bool qlcategories_backup(CDerNode* out);

// qlcategories_restore replaces the categories with those of an encoded list, all of type REG_SZ,
// and empties the text of the category last used. An undecodable list is an empty one; null does
// nothing.
//
// Errors: std::bad_alloc
// Source: RegDeleteKeyW, RegCreateKeyExW, RegSetValueExW; their failures are ignored
void qlcategories_restore(const CDerElement* list);
