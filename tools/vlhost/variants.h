#pragma once

#include "files.h"

#include <oleauto.h>

// CVariant owns a VARIANT that goes to or comes from the plug-in.
class CVariant
{
public:
    CVariant() noexcept { VariantInit(&m_value); }
    ~CVariant() { VariantClear(&m_value); }
    CVariant(const CVariant&) = delete;
    CVariant& operator=(const CVariant&) = delete;

    VARIANT* Get() noexcept { return &m_value; }
    const VARIANT& Value() const noexcept { return m_value; }

private:
    VARIANT m_value;
};

// setBytes makes value an array of bytes, the form of a backup.
//
// Errors: std::bad_alloc
void setBytes(CVariant& value, const bytes_t& bytes);

// bytesOf gives the bytes of such an array; empty for any other VARIANT.
bytes_t bytesOf(const VARIANT& value);

// textsOf gives the strings of an array of strings, UTF-8; empty for any other VARIANT.
std::vector<std::string> textsOf(const VARIANT& value);

// setText makes value a string.
//
// Errors: std::bad_alloc
void setText(CVariant& value, const std::string& utf8);

// notificationsIn gives the objects of an array of VARIANTs, on loan from it.
std::vector<IUnknown*> notificationsIn(const VARIANT& value);
