#pragma once

#include <windows.h>
#include <oaidl.h>

#include <json/value.h>

// jsonOfVariant describes a whole VARIANT, arrays and nested ones included. Byte arrays are
// hexadecimal text; objects are shown by what they are, not by their address.
Json::Value jsonOfVariant(const VARIANT& value);
