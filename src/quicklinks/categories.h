#pragma once

#include "backup/blob/dernode.h"

// qlcategories_backup makes the list of the user's quick link categories.
//
// out:     receives a sequence of pairs of name and text; may be null
// Returns: true when the key holds at least one value
// Source:  HKEY_CURRENT_USER, SOFTWARE\Veltrano\Applications\DashBoard\QLCategories
bool qlcategories_backup(CDerNode* out);

// qlcategories_restore replaces the categories by those of an encoded element; null does nothing.
struct _CRYPTOAPI_BLOB;
void qlcategories_restore(const _CRYPTOAPI_BLOB* blob);
