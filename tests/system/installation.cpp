#include "installation.h"

#include <fstream>
#include <sstream>

#include <process.h>

#include "common/text.h"
#include "support/tracetree.h"

void setText(HKEY root, const std::wstring& key, const wchar_t* name, const std::wstring& text)
{
    const auto size = static_cast<DWORD>(text.size() * 2 + 2);
    RegSetKeyValueW(root, key.c_str(), name, REG_SZ, text.c_str(), size);
}

void setNumber(HKEY root, const std::wstring& key, const wchar_t* name, DWORD number)
{
    RegSetKeyValueW(root, key.c_str(), name, REG_DWORD, &number, sizeof number);
}

void writeFile(const fs::path& path, const std::string& content)
{
    fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << content;
}

std::string fileContents(const fs::path& path)
{
    std::ostringstream content;
    content << std::ifstream(path, std::ios::binary).rdbuf();
    return content.str();
}

plugin_t::plugin_t()
    : m_module(LoadLibraryW(
          (fs::path(moduleFileName(nullptr)).parent_path() / L"..\\VLOnlineIDs.dll").c_str())),
      m_object(make())
{}

IUnknown* plugin_t::make() const
{
    const auto entry = reinterpret_cast<decltype(&DllGetClassObject)>(
        reinterpret_cast<void*>(GetProcAddress(m_module.get(), "DllGetClassObject")));
    void* found = nullptr;
    EXPECT_EQ(S_OK, entry(CLSID_CVLKTPages, __uuidof(IClassFactory), &found));
    const auto factory = static_cast<IClassFactory*>(found);
    EXPECT_EQ(S_OK, factory->CreateInstance(nullptr, __uuidof(IUnknown), &found));
    factory->Release();
    return static_cast<IUnknown*>(found);
}

HRESULT plugin_t::call(const char* entry) const
{
    return reinterpret_cast<HRESULT(WINAPI*)()>(
        reinterpret_cast<void*>(GetProcAddress(m_module.get(), entry)))();
}

std::wstring plugin_t::property(ULONG id) const
{
    value_t value;
    EXPECT_EQ(S_OK, as<IVLKTElementUI>()->GetProperty(id, &value));
    return value.text();
}

std::wstring plugin_t::statusText(HRESULT expected) const
{
    ULONG status = 9;
    value_t value;
    value.vt = VT_BSTR;
    EXPECT_EQ(expected, as<IVLKSecurityStatus>()->GetStatus(&status, &value.bstrVal));
    return value.text();
}

void installedTest::SetUp()
{
    fs::current_path(m_built); // a current folder can't be removed
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, productKey);
    RegDeleteTreeW(HKEY_CURRENT_USER, productKey);
    fs::remove_all(m_root);
    fs::remove_all(m_krs.parent_path());
    fs::create_directories(m_root / L"current");
    fs::current_path(m_root / L"current"); // where names without a folder end up
    CopyFileW((m_built / L"VLFPApi.dll").c_str(), LR"(C:\windows\system32\VLFPApi.dll)", FALSE);
    const std::wstring key = productKey;
    setText(HKEY_LOCAL_MACHINE, key, L"VeltranoPath", m_root);
    setText(HKEY_LOCAL_MACHINE, key + LR"(\Applications)", L"BinDir", m_built);
    setText(HKEY_LOCAL_MACHINE, brandingKey, L"DLLPath", m_built / L"Branding.dll");
    setText(HKEY_LOCAL_MACHINE, key + LR"(\Tracing)", L"FileName", m_traceFile);
    setNumber(HKEY_LOCAL_MACHINE, key + LR"(\Tracing)", L"DoTrace", 1);
    setText(HKEY_CURRENT_USER, settingsKey, L"path_bin_dir", m_root);
    writeFile(m_krs / L"Templates" / L"bank.vlm", "bank");
    writeFile(m_krs / L"Templates" / L"updata.vls", "state");
    writeFile(m_krs / L"QuickLinks.txt",
              "[ShortCutRecord]\nManifest=%appdata%\\Veltrano\\KRS\\Templates\\bank.vlm\n"
              "Url=https://bank.example/login?x=1\nName=Bank\nProfile=1\nManifestID=m-1\njunk\n");
}

void installedTest::TearDown()
{
    stopAgent();
    fs::remove(LR"(C:\windows\system32\VLFPApi.dll)");
}

void installedTest::startAgent()
{
    const CKernelHandle ready(CreateEventW(nullptr, FALSE, FALSE, L"vl-test-ready"));
    m_agent.reset(reinterpret_cast<HANDLE>(
        _wspawnl(_P_NOWAIT, (m_built / L"vlagent.exe").c_str(), L"vlagent", L"--ready-event",
                 L"vl-test-ready", L"--journal", LR"(C:\VL\journal.txt)", nullptr)));
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(ready.get(), 30000));
}

void installedTest::stopAgent()
{
    if (!m_agent)
        return;
    _wspawnl(_P_WAIT, (m_built / L"vlagent.exe").c_str(), L"vlagent", L"--quit", nullptr);
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(m_agent.get(), 30000));
    m_agent.reset();
}

std::string installedTest::traced(uint32_t onlyThread) const
{
    return traceTree(decodeTrace(fileContents(m_traceFile)), onlyThread);
}

std::string installedTest::tree(std::string text) const
{
    const std::string krs = utf8FromWide(m_krs.wstring()) + '\\';
    std::string lower = krs;
    for (char& c : lower)
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
    replaceAll(text, "{new}", R"( > RestoreQuickLinks | U SAQL OK, Num BLOBs=1
  U bs3: {lower}templates\new.vlm
  > QL::add | U QL for: kri::new.vlm | U   prof:  7 | U   name: 'New'
   U   url : 'https://new.example' | U   QL created
  > QL::save | U save krs::quicklinks.txt)");
    replaceAll(text, "{size}", std::to_string(newLogon().size() - 1));
    replaceAll(text, "{krs}", krs);
    replaceAll(text, "{lower}", lower);
    return wholeTree(text);
}

fileMap installedTest::userFiles() const
{
    fileMap files;
    std::error_code ignored;
    for (const auto& entry : fs::recursive_directory_iterator(m_krs, ignored))
        if (entry.is_regular_file())
            files[fs::relative(entry.path(), m_krs).string()] = fileContents(entry.path());
    return files;
}

bytes newLogon()
{
    return seq({seq({filePair(L"new.vlm", "new")}),
                seq({seq({wide(L"New"), wide(L"https://new.example"), wide(L"new.vlm"), integer(7),
                          wide(L"m-7"), integer(1)})}),
                seq({seq({wide(L"Fun"), wide(L"new")})})});
}
