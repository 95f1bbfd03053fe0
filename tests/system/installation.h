#pragma once

#include <filesystem>
#include <map>
#include <string>

#include <gtest/gtest.h>

#include "common/module.h"
#include "common/scoped.h"
#include "support/backupbytes.h"
#include "vlonlineids.h"

namespace fs = std::filesystem;
using namespace VLONLINEIDSLib;
using fileMap = std::map<std::string, std::string>; // path and content

constexpr wchar_t productKey[] = LR"(SOFTWARE\Veltrano)";
constexpr wchar_t settingsKey[] = LR"(SOFTWARE\Veltrano\Settings)";
constexpr wchar_t brandingKey[] = LR"(SOFTWARE\Veltrano\Branding\Common)";

void setText(HKEY root, const std::wstring& key, const wchar_t* name, const std::wstring& text);
void setNumber(HKEY root, const std::wstring& key, const wchar_t* name, DWORD number);
void writeFile(const fs::path& path, const std::string& content);
std::string fileContents(const fs::path& path); // of a file that may be open elsewhere

// value_t is a VARIANT that is cleared with the object.
struct value_t : VARIANT {
    value_t() { VariantInit(this); }
    explicit value_t(const bytes& content) { byteArray(*this, content); }
    ~value_t() { VariantClear(this); }
    value_t(const value_t&) = delete;
    value_t& operator=(const value_t&) = delete;
    std::wstring text() const { return vt == VT_BSTR && bstrVal ? bstrVal : L""; }
};

// plugin_t is the DLL, loaded, and one object of its class.
class plugin_t
{
public:
    plugin_t();
    ~plugin_t() { m_object->Release(); }
    plugin_t(const plugin_t&) = delete;
    plugin_t& operator=(const plugin_t&) = delete;

    // as gives a loan: the object lives as long as this.
    template <class Interface> Interface* as() const
    {
        void* found = nullptr;
        EXPECT_EQ(S_OK, m_object->QueryInterface(__uuidof(Interface), &found));
        m_object->Release();
        return static_cast<Interface*>(found);
    }
    IUnknown* make() const; // one more object, the caller's
    HRESULT call(const char* entry) const;
    std::wstring property(ULONG id) const; // of a text property
    std::wstring statusText(HRESULT expected = S_OK) const;

private:
    const CLoadedModule m_module;
    IUnknown* m_object;
};

// installedTest installs the product for each test, with tracing on and a user who has a logon and a
// quick link.
class installedTest : public testing::Test
{
protected:
    void SetUp() override;
    void TearDown() override;
    void startAgent();
    void stopAgent();

    // traced gives the trace so far as a tree, of all threads or of one.
    std::string traced(uint32_t onlyThread = 0) const;
    // tree makes such a tree of a short form, where {krs} is the user's folder, {lower} the same in
    // lower case, {new} the trace of newLogon's quick link, and {size} newLogon's last index.
    std::string tree(std::string shortForm) const;
    fileMap userFiles() const; // path below the user's folder

    const fs::path m_built = fs::path(moduleFileName(nullptr)).parent_path().parent_path();
    const std::wstring m_icon = (m_built / L"Branding.dll").wstring() + L",193";
    const fs::path m_root = L"C:\\VL", m_traceFile = m_root / L"trace.trc3";
    const fs::path m_krs = fs::path(_wgetenv(L"APPDATA")) / L"Veltrano" / L"KRS";
    CKernelHandle m_agent;
};

// A backup of one logon, one quick link and one category.
bytes newLogon();

// What unregistering adds for the uninstaller.
constexpr const char* cleanupLines[] = {
    "HKU\tSOFTWARE\\Veltrano\\Applications\\DashBoard\\IDCard\t8",
    "HKU\tSOFTWARE\\Veltrano\\Applications\\DashBoard\t4097\tLastQLCategory",
    "HKU\tSOFTWARE\\Veltrano\\Applications\\DashBoard\\QLCategories\t4108",
    "HKU\tSOFTWARE\\Veltrano\\Applications\\KRAppSettings\t4101\tOpenGuardDesk",
    "HKU\tSOFTWARE\\Veltrano\\Applications\\KRAppSettings\t4101\tShowTrainingPrompt",
    "HK\tSOFTWARE\\Veltrano\\Applications\\DashBoard\t4104",
    "FILE\tVeltrano\\KRS\\Templates\\*\t4097",
    "FILE\tVeltrano\\KRS\\VLIconCache\\*\t4097",
    "FILE\tVeltrano\\KRS\\*\t4097",
    "FILE\tVeltrano\\*\t4097",
    "DIR\tVeltrano\t4096",
};
