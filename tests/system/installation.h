#pragma once

#include "atl/comutil.h"
#include "common/module.h"
#include "common/scoped.h"
#include "common/text.h"
#include "support/backupbytes.h"
#include "support/process.h"
#include "support/registry.h"
#include "support/tracetree.h"
#include "vlonlineids.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>

#include <gtest/gtest.h>

namespace fs = std::filesystem;
using namespace VLONLINEIDSLib;

// A backup of one logon, one quick link and one category, and of settings if there are any.
inline bytes newLogon(const std::vector<bytes>& files = {filePair(L"new.vlm", "new")},
                      const bytes& settings = {})
{
    return seq({seq(files),
                seq({seq({wide(L"New"), wide(L"https://new.example"), wide(L"new.vlm"), integer(7),
                          wide(L"m-7"), integer(1)})}),
                seq({seq({wide(L"Fun"), wide(L"new")})}), settings});
}

// setOldSystem makes Wine show a program an older system, one whose plug-ins find their texts
// themselves. A real system can't.
inline bool setOldSystem(const std::wstring& program)
{
    if (!GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version"))
        return false;
    setValue(HKEY_CURRENT_USER, LR"(Software\Wine\AppDefaults\)" + program, L"Version", L"winxp64");
    return true;
}

// value_t is a value that passes an interface.
struct value_t : ATL::CComVariant {
    value_t() = default;
    explicit value_t(const bytes& content) { byteArray(*this, content); }
};

// plugin_t is the DLL, loaded, and one object of its class.
struct plugin_t {
    plugin_t() : m_object(make()) {}
    ~plugin_t() { m_object->Release(); }
    plugin_t(plugin_t&&) = delete;

    template <class Function> Function* entry(const char* name) const
    {
        return reinterpret_cast<Function*>(
            reinterpret_cast<void*>(GetProcAddress(m_module.get(), name)));
    }
    IUnknown* make() const // one more object, the caller's
    {
        void *factory = nullptr, *object = nullptr;
        const auto get = entry<decltype(DllGetClassObject)>("DllGetClassObject");
        EXPECT_EQ(S_OK, get(CLSID_CVLKTPages, IID_IClassFactory, &factory));
        const auto made = static_cast<IClassFactory*>(factory);
        EXPECT_EQ(S_OK, made->CreateInstance(nullptr, IID_IUnknown, &object));
        made->Release();
        return static_cast<IUnknown*>(object);
    }
    // as gives a loan: the object lives as long as this.
    template <class Interface> Interface* as() const
    {
        void* found = nullptr;
        EXPECT_EQ(S_OK, m_object->QueryInterface(__uuidof(Interface), &found));
        m_object->Release();
        return static_cast<Interface*>(found);
    }
    std::wstring property(ULONG id) const // of a text property
    {
        value_t value;
        EXPECT_EQ(S_OK, as<IVLKTElementUI>()->GetProperty(id, &value));
        return value.vt == VT_BSTR && value.bstrVal ? value.bstrVal : L"(none)";
    }

private:
    const CLoadedModule m_module{LoadLibraryW(
        (fs::path(moduleFileName(nullptr)).parent_path() / L"..\\VLOnlineIDs.dll").c_str())};
    IUnknown* m_object;
};

inline HRESULT setPluginData(const plugin_t& plugin, const bytes& secrets, const bytes& data)
{
    return plugin.as<IVLKTBackupRestore3>()->SetPluginData(
        static_cast<ULONG>(secrets.size()), secrets.data(), static_cast<ULONG>(data.size()),
        data.data());
}

// A call that ends in an exception within, and traces. Neither touches the last error.
inline void callAndFail(const plugin_t& plugin)
{
    SetLastError(1234);
    EXPECT_EQ(E_POINTER, plugin.as<IVLKTElementUI>()->GetProperty(propertyName, nullptr));
    EXPECT_EQ(1234u, GetLastError());
}

// installedTest installs the product for each test, with tracing on and a user who has a logon and a
// quick link. What runs in a process of the test's own finds what its parent installed.
class installedTest : public testing::Test
{
protected:
    void SetUp() override
    {
        if (testing::internal::InDeathTestChild() || role()) {
            fs::current_path(m_root / L"current");
            return;
        }
        fs::current_path(m_built); // a current folder can't be removed
        RegDeleteTreeW(HKEY_LOCAL_MACHINE, LR"(SOFTWARE\Veltrano)");
        RegDeleteTreeW(HKEY_CURRENT_USER, LR"(SOFTWARE\Veltrano)");
        fs::remove_all(m_root);
        fs::remove_all(m_krs.parent_path());
        fs::create_directories(m_root / L"current");
        fs::current_path(m_root / L"current"); // where names without a folder end up
        CopyFileW((m_built / L"VLFPApi.dll").c_str(), m_policyLibrary, FALSE);
        setValue(HKEY_LOCAL_MACHINE, m_key, L"VeltranoPath", m_root);
        setValue(HKEY_LOCAL_MACHINE, m_key + LR"(\Applications)", L"BinDir", m_built);
        setValue(HKEY_LOCAL_MACHINE, m_brandingKey, L"DLLPath", m_built / L"Branding.dll");
        setValue(HKEY_LOCAL_MACHINE, m_key + LR"(\Tracing)", L"FileName", m_traceFile);
        setTracing(1);
        setValue(HKEY_CURRENT_USER, m_key + LR"(\Settings)", L"path_bin_dir", m_root);
        writeFile(m_krs / L"Templates" / L"bank.vlm", "bank");
        writeFile(m_krs / L"Templates" / L"updata.vls", "state");
        writeFile(m_krs / L"QuickLinks.txt",
                  "[ShortCutRecord]\nManifest=%appdata%\\Veltrano\\KRS\\Templates\\bank.vlm\n"
                  "Url=https://bank.example/login?x=1\nName=Bank\nProfile=1\nManifestID=m-1\n"
                  "junk\n");
    }
    void TearDown() override
    {
        stopAgent();
        fs::remove(m_policyLibrary);
    }
    // playing starts a process in which this test runs again and has a role, which is null here.
    static process_t playing(const std::wstring& given)
    {
        const auto* const test = testing::UnitTest::GetInstance()->current_test_info();
        const std::string name = std::string(test->test_suite_name()) + '.' + test->name();
        SetEnvironmentVariableW(roleName, given.c_str());
        process_t process(moduleFileName(nullptr),
                          wideFromUtf8("--gtest_brief=1 --gtest_filter=" + name));
        SetEnvironmentVariableW(roleName, nullptr);
        return process;
    }
    static const wchar_t* role() { return _wgetenv(roleName); }

    void setTracing(DWORD on) const
    {
        const auto key = m_key + LR"(\Tracing)";
        RegSetKeyValueW(HKEY_LOCAL_MACHINE, key.c_str(), L"DoTrace", REG_DWORD, &on, sizeof on);
    }
    void startAgent()
    {
        const CKernelHandle ready(CreateEventW(nullptr, FALSE, FALSE, L"vl-test-ready"));
        m_agent.emplace(m_built / L"vlagent.exe",
                        LR"(--ready-event vl-test-ready --journal C:\VL\journal.txt)");
        EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(ready.get(), 30000));
    }
    void stopAgent()
    {
        if (!m_agent)
            return;
        process_t(m_built / L"vlagent.exe", L"--quit").result();
        EXPECT_EQ(0u, m_agent->result().status);
        m_agent.reset();
    }

    // traced gives the trace so far as a tree, of all threads or of one.
    std::string traced(uint32_t onlyThread = 0) const
    {
        return traceTree(decodeTrace(fileBytes(m_traceFile)), onlyThread);
    }
    // expected gives a text of expected.rc, in which names in braces stand for what is the machine's:
    // {krs} for the user's folder, {lower} for the same in lower case, {size} for newLogon's last index.
    std::string expected(const wchar_t* name) const
    {
        const HRSRC place = FindResourceW(nullptr, name, RT_RCDATA);
        const auto first = static_cast<const char*>(LockResource(LoadResource(nullptr, place)));
        std::string text(first, SizeofResource(nullptr, place)),
            krs = utf8FromWide(m_krs.wstring());
        replaceAll(text, "{krs}", krs);
        CharLowerA(krs.data());
        for (const auto& [mark, meant] : {std::pair("{lower}", krs),
                                          {"{user}", utf8FromWide(_wgetenv(L"USERPROFILE"))},
                                          {"{built}", utf8FromWide(m_built.wstring())},
                                          {"{v}", "SOFTWARE\\Veltrano"},
                                          {"{id}", "{42F9948B-B690-4325-A073-63A8BF31FF32}"},
                                          {"{size}", std::to_string(newLogon().size() - 1)}})
            replaceAll(text, mark, meant);
        return text;
    }
    std::map<std::string, std::string> userFiles() const // path below the user's folder, content
    {
        std::map<std::string, std::string> files;
        std::error_code gone; // other threads may delete a file
        for (fs::recursive_directory_iterator entry(m_krs, gone), end; entry != end;
             entry.increment(gone))
            if (entry->is_regular_file(gone))
                files[entry->path().lexically_relative(m_krs).string()] = fileBytes(*entry);
        return files;
    }

    static constexpr wchar_t roleName[] = L"VL_ROLE";
    const std::wstring m_key = LR"(SOFTWARE\Veltrano)";
    const std::wstring m_brandingKey = m_key + LR"(\Branding\Common)";
    const wchar_t* const m_policyLibrary = LR"(C:\windows\system32\VLFPApi.dll)";
    const fs::path m_built = fs::path(moduleFileName(nullptr)).parent_path().parent_path();
    const std::wstring m_icon = (m_built / L"Branding.dll").wstring() + L",193";
    const fs::path m_root = L"C:\\VL", m_traceFile = m_root / L"trace.trc3";
    const fs::path m_krs = fs::path(_wgetenv(L"APPDATA")) / L"Veltrano" / L"KRS";
    std::optional<process_t> m_agent;
};
