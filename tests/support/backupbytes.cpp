#include "backupbytes.h"

#include "formats/der/derheader.h"

#include <algorithm>

bytes tlv(uint8_t tag, const bytes& content)
{
    bytes out(derHeaderSize(content.size()));
    derWriteHeader(out.data(), tag, content.size());
    out.insert(out.end(), content.begin(), content.end());
    return out;
}

bytes seq(const std::vector<bytes>& elements)
{
    bytes content;
    for (const bytes& element : elements)
        content.insert(content.end(), element.begin(), element.end());
    return tlv(0x30, content);
}

bytes wide(const std::wstring& text)
{
    bytes content;
    for (const wchar_t unit : text + L'\0')
        for (const int octet : {unit >> 8, unit & 0xFF})
            content.push_back(static_cast<uint8_t>(octet));
    return tlv(0x1E, content);
}

bytes octets(const std::string& content)
{
    return tlv(0x04, bytes(content.begin(), content.end()));
}

bytes narrow(const std::string& text)
{
    return octets(text + '\0');
}

bytes integer(uint8_t value)
{
    return {0x02, 0x01, value};
}

bytes filePair(const std::wstring& name, const std::string& content)
{
    return seq({wide(name), octets(content)});
}

#ifdef _WIN32
void byteArray(VARIANT& variant, const bytes& content, LONG lower)
{
    SAFEARRAYBOUND bound = {static_cast<ULONG>(content.size()), lower};
    variant.vt = VT_ARRAY | VT_UI1;
    variant.parray = SafeArrayCreate(VT_UI1, 1, &bound);
    std::copy(content.begin(), content.end(), static_cast<uint8_t*>(variant.parray->pvData));
}

bytes bytesOf(const VARIANT& variant)
{
    const auto* const data = static_cast<const uint8_t*>(variant.parray->pvData);
    return {data, data + variant.parray->rgsabound[0].cElements};
}
#endif
