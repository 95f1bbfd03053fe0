#pragma once

#include <cstdint>
#include <span>
#include <string>

// secretFromList finds the value of the one secret that a host keeps, by its name. The first item
// of that name wins; an item that isn't a pair is traced, an item of another name is dropped.
//
// list:    an encoded sequence of pairs of a name and a value in UTF-16; a loan. Anything else
//          holds no secret.
// Returns: the value up to its first zero; empty if the list doesn't have it. This text is the only
//          copy of the value left in memory: those made on the way are overwritten.
// Errors:  raises E_OUTOFMEMORY
std::wstring secretFromList(std::span<const uint8_t> list);
