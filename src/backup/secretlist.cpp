#include "backup/secretlist.h"

#include "backup/blob.h"
#include "common/status.h"
#include "neighbours/vlfpapi.h"
#include "tracecore/tracer.h"

#include <cstring>
#include <cwchar>
#include <new>

namespace {

// CSecretSeq overwrites its elements on every way out.
class CSecretSeq : public CVLBlobSeq
{
public:
    ~CSecretSeq() { SecureClear(); }
};

std::wstring textOf(const _CRYPTOAPI_BLOB& data)
{
    if (!data.pbData)
        return {};
    const auto* const end = data.pbData + (data.cbData & ~1u); // half a unit doesn't count
    const auto* zero = data.pbData;
    while (zero != end && (zero[0] != 0 || zero[1] != 0))
        zero += sizeof(wchar_t);
    std::wstring text(static_cast<size_t>(zero - data.pbData) / sizeof(wchar_t), L'\0');
    if (!text.empty())
        std::memcpy(text.data(), data.pbData, text.size() * sizeof(wchar_t));
    return text;
}

// takeSecret is true if the item is the secret, whose value it puts into body.
bool takeSecret(const _CRYPTOAPI_BLOB& encoded, std::wstring& body)
{
    CSecretSeq item;
    if (!item.Decode(&encoded) || item.count != 2) {
        tracecore::traceFormat(0, "Unknown secret blob");
        return false;
    }
    _auto_heap_mem<wchar_t> name;
    item.ReadNextWStr(name);
    CDataBlob_s data;
    data.DecodeOctetsFrom(item.ReadNext());
    if (!name.get() || std::wcscmp(name.get(), protectedStorage) != 0)
        return false;
    tracecore::traceFormat(0, "Secret Name = %ls", name.get());
    body = textOf(data);
    return true;
}

} // namespace

std::wstring secretFromList(std::span<const uint8_t> list)
{
    try {
        CSecretSeq items;
        (void)items.Decode(list);
        std::wstring body;
        while (const _CRYPTOAPI_BLOB* item = items.ReadNext()) {
            if (takeSecret(*item, body))
                break;
        }
        return body;
    } catch (const std::bad_alloc&) {
        raiseStatus(E_OUTOFMEMORY);
    }
}
