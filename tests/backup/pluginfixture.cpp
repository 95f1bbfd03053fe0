#include "pluginfixture.h"

#include <algorithm>
#include <cstring>

#include "plugin/vlktpages.h"

using namespace VLONLINEIDSLib;

void byteArray(VARIANT& variant, const bytes& content, LONG lower)
{
    SAFEARRAYBOUND bound = {static_cast<ULONG>(content.size()), lower};
    variant.vt = VT_ARRAY | VT_UI1;
    variant.parray = SafeArrayCreate(VT_UI1, 1, &bound);
    if (!content.empty())
        std::memcpy(variant.parray->pvData, content.data(), content.size());
}

bytes bytesOf(const VARIANT& variant)
{
    if (variant.vt != (VT_ARRAY | VT_UI1) || !variant.parray)
        return {};
    const auto* const data = static_cast<const uint8_t*>(variant.parray->pvData);
    return {data, data + variant.parray->rgsabound[0].cElements};
}

bool traced(const std::vector<std::wstring>& messages, const std::wstring& message)
{
    return std::find(messages.begin(), messages.end(), message) != messages.end();
}

void pluginTest::SetUp()
{
    void* out = nullptr;
    ASSERT_EQ(CComCreator<CComObject<CVLKTPages>>::CreateInstance(
                  nullptr, __uuidof(IVLKTBackupRestore2), &out),
              S_OK);
    m_plugin = static_cast<IVLKTBackupRestore2*>(out);
    ASSERT_EQ(m_plugin->QueryInterface(__uuidof(IVLKTBackupRestore3), &out), S_OK);
    m_plugin3 = static_cast<IVLKTBackupRestore3*>(out);
}

void pluginTest::TearDown()
{
    if (m_plugin3)
        m_plugin3->Release();
    if (m_plugin)
        m_plugin->Release();
}

HRESULT pluginTest::restore(const bytes& backup) const
{
    ownedVariant_t data;
    byteArray(data, backup);
    return m_plugin->SetStorageData(&data);
}
