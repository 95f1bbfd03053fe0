#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <windows.h>
#include <shellapi.h>

#include "atl/comobject.h"
#include "atl/comutil.h"
#include "common/scoped.h"
#include "plugin/notification.h"
#include "plugin/vlktpages.h"
#include "support/patchimport.h"
#include "support/tracerecorder.h"

using namespace VLONLINEIDSLib;
using ATL::CComBSTR;
using ATL::CComVariant;

namespace {

constexpr wchar_t cardKey[] = L"SOFTWARE\\Veltrano\\Applications\\DashBoard\\IDCard";
constexpr wchar_t dismissKey[] = L"SOFTWARE\\Veltrano\\Applications\\DashBoard\\DismissMessages\\"
                                 L"{42F9948B-B690-4325-A073-63A8BF31FF32}";
constexpr uint32_t notFound = 0x80070002;
constexpr auto moduleNotFound = static_cast<HRESULT>(0x8007007E);
constexpr auto procedureNotFound = static_cast<HRESULT>(0x8007007F);
constexpr auto notSupported = static_cast<HRESULT>(0x80070032);
constexpr auto unknownProperty = static_cast<HRESULT>(0x80070648);

// The policy library that the patched loader hands out.
struct policyRecord_t {
    const wchar_t* name;
    uint32_t status, filler;
    uint64_t valueSize, value, reserved;
};
struct policy_t {
    bool library = true;
    bool exports = true;
    HRESULT result = 0;
    uint32_t status = notFound;
    uint64_t value = 0;
    std::vector<policyRecord_t> written;
    int loads = 0;
} policy;

HRESULT WINAPI readPolicy(ULONG count, policyRecord_t* record)
{
    EXPECT_EQ(count, 1u);
    EXPECT_STREQ(record->name,
                 L"CommonSettings\\{42F9948B-B690-4325-A073-63A8BF31FF32}\\DisableApps");
    EXPECT_EQ(record->valueSize + record->value + record->reserved + record->status, 0u);
    record->status = policy.status;
    record->value = policy.value;
    return policy.result;
}

HRESULT WINAPI writePolicy(ULONG count, policyRecord_t* record)
{
    EXPECT_EQ(count, 1u);
    policy.written.push_back(*record);
    return policy.result;
}

HMODULE WINAPI loadPolicy(LPCWSTR path)
{
    EXPECT_STREQ(path, L"C:\\windows\\system32\\VLFPApi.dll");
    ++policy.loads;
    SetLastError(ERROR_MOD_NOT_FOUND);
    return policy.library ? GetModuleHandleW(nullptr) : nullptr;
}

FARPROC WINAPI policyFunction(HMODULE, LPCSTR name)
{
    SetLastError(ERROR_PROC_NOT_FOUND);
    if (!policy.exports)
        return nullptr;
    return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(
        std::string(name) == "VLFPGetPolicySettingsEx" ? readPolicy : writePolicy));
}

std::vector<std::wstring> started;
HINSTANCE WINAPI shellExecute(HWND, LPCWSTR verb, LPCWSTR file, LPCWSTR arguments, LPCWSTR folder,
                              INT show)
{
    EXPECT_EQ(verb, nullptr);
    EXPECT_EQ(folder, nullptr);
    EXPECT_EQ(show, SW_SHOWNORMAL);
    started = {file, arguments};
    return nullptr;
}

void setValue(const wchar_t* key, const wchar_t* name, DWORD type, const std::vector<BYTE>& data)
{
    RegSetKeyValueW(HKEY_CURRENT_USER, key, name, type, data.data(),
                    static_cast<DWORD>(data.size()));
}

class Status : public testing::Test
{
protected:
    void SetUp() override
    {
        policy = {};
        RegDeleteTreeW(HKEY_CURRENT_USER, L"SOFTWARE\\Veltrano");
        ASSERT_EQ(CVLKTPages::_CreateInstance(nullptr, __uuidof(IVLKTElementUI),
                                              reinterpret_cast<void**>(m_element.put())),
                  S_OK);
        Query(m_security);
        Query(m_disable);
    }

    template <class Holder> void Query(Holder& holder)
    {
        ASSERT_EQ(m_element.get()->QueryInterface(__uuidof(**holder.put()),
                                                  reinterpret_cast<void**>(holder.put())),
                  S_OK);
    }

    std::wstring Text()
    {
        ULONG status = 99;
        CComBSTR text;
        m_result = m_security.get()->GetStatus(&status, &text);
        m_status = status;
        return text.m_str ? text.m_str : L"(null)";
    }

    LONG Level()
    {
        CComVariant value;
        EXPECT_EQ(m_element.get()->GetProperty(100, &value), S_OK);
        EXPECT_EQ(value.vt, VT_I4);
        return value.lVal;
    }

    template <class Interface> struct reference {
        using value_type = Interface*;
        static Interface* empty() noexcept { return nullptr; }
        static void close(Interface* object) noexcept { object->Release(); }
    };

    // Notice gives the one element of property 103, as a host takes it out.
    CScoped<reference<IVLKTElementUI>> Notice()
    {
        CScoped<reference<IVLKTElementUI>> notice;
        CComVariant value;
        EXPECT_EQ(m_element.get()->GetProperty(103, &value), S_OK);
        EXPECT_EQ(value.vt, VT_ARRAY | VT_VARIANT);
        EXPECT_EQ(value.parray->cLocks, 0u);
        EXPECT_EQ(value.parray->rgsabound[0].cElements, 1u);
        LONG index = 0;
        CComVariant element;
        EXPECT_EQ(SafeArrayGetElement(value.parray, &index, &element), S_OK);
        EXPECT_EQ(element.vt, VT_UNKNOWN);
        EXPECT_EQ(element.punkVal->QueryInterface(__uuidof(IVLKTElementUI),
                                                  reinterpret_cast<void**>(notice.put())),
                  S_OK);
        return notice;
    }

    CScoped<reference<IVLKTElementUI>> m_element;
    CScoped<reference<IVLKSecurityStatus>> m_security;
    CScoped<reference<IVLKTDisableApp>> m_disable;
    HRESULT m_result = 0;
    ULONG m_status = 0;
    importPatch_t m_load{GetModuleHandleW(nullptr), "LoadLibraryW",
                         reinterpret_cast<void*>(loadPolicy)};
    importPatch_t m_proc{GetModuleHandleW(nullptr), "GetProcAddress",
                         reinterpret_cast<void*>(policyFunction)};
    importPatch_t m_shell{GetModuleHandleW(nullptr), "ShellExecuteW",
                          reinterpret_cast<void*>(shellExecute)};
};

} // namespace

TEST_F(Status, PolicyDecidesBothStatuses)
{
    const struct {
        bool library, exports;
        HRESULT result;
        uint32_t status;
        uint64_t value;
        ULONG disableStatus;
        bool disabled;
        std::vector<std::wstring> lines; // of the disable status
    } cases[] = {
        {false, true, 0, 0, 1, 0, false, {L"E -2147024770 GetGPOSettings[com]"}},
        {true, false, 0, 0, 1, 0, false, {L"E -2147024769 GetGPOSettings[com]"}},
        {true, true, E_ACCESSDENIED, 0, 1, 0, false, {L"E -2147024891 GetGPOSettings[com]"}},
        {true, true, 0, notFound, 1, 0, false, {}},
        {true, true, 0, 0, 0, 1, false, {}},
        {true, true, 0, 0, 1, 3, true, {}},
        {true, true, 0, 0, 0xFFFFFFFF00000000, 1, false, {}}, // the low half counts
        {true, true, 0, 1, 0, 0, false, {}},
        {true, true, 0, 1, 7, 2, true, {}},
        {true, true, 0, 5, 1, 0, false, {}},
        {true, true, 1, 0, 1, 3, true, {}}, // a result above 0 is no failure
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        policy = {c.library, c.exports, c.result, c.status, c.value, {}, 0};
        traceRecorder_t trace;
        ULONG status = 99;
        EXPECT_EQ(m_disable.get()->GetStatus(&status), S_OK);
        EXPECT_EQ(status, c.disableStatus);
        EXPECT_EQ(trace.messages(), c.lines);

        EXPECT_EQ(Text(), c.disabled ? L"text 1029" : L"text 1054");
        EXPECT_EQ(m_result, c.disabled ? E_NOTIMPL : S_OK);
        EXPECT_EQ(m_status, 0u);
        auto lines = trace.messages();
        if (c.disabled) {
            EXPECT_EQ(lines, std::vector<std::wstring>{L"E -2147467263 GetStatus[com]"});
        }
        EXPECT_EQ(Level(), 2); // disabled goes on as status 0
    }
    policy = {};
    EXPECT_EQ(m_disable.get()->GetStatus(nullptr), E_POINTER);
    EXPECT_EQ(policy.loads, 0);
    Notice();
    EXPECT_EQ(policy.loads, 2); // explanation and level each ask anew
}

TEST_F(Status, CardValueGivesStatusTextAndLevel)
{
    const struct {
        DWORD type;
        std::vector<BYTE> data;
        ULONG status;
        std::wstring text;
        LONG level;
    } cases[] = {
        {REG_NONE, {}, 0, L"text 1054", 2}, // missing
        {REG_DWORD, {0, 0, 0, 0}, 0, L"text 1054", 2},
        {REG_DWORD, {1, 0, 0, 0}, 2, L"text 1053", 1},
        {REG_DWORD, {2, 0, 0, 0}, 1, L"text 1031", 3},
        {REG_DWORD, {255, 255, 255, 255}, 1, L"text 1031", 3},
        {REG_BINARY, {1, 0, 0, 0}, 2, L"text 1053", 1}, // any type of four bytes
        {REG_QWORD, {1, 0, 0, 0, 0, 0, 0, 0}, 0, L"text 1054", 2},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        RegDeleteTreeW(HKEY_CURRENT_USER, L"SOFTWARE\\Veltrano");
        if (c.type != REG_NONE)
            setValue(cardKey, L"IDCard_SS", c.type, c.data);
        EXPECT_EQ(Text(), c.text);
        EXPECT_EQ(m_status, c.status);
        EXPECT_EQ(Level(), c.level);
        CComVariant explanation;
        EXPECT_EQ(m_element.get()->GetProperty(101, &explanation), S_OK);
        EXPECT_EQ(explanation.bstrVal, c.text);
    }
}

TEST_F(Status, DisablingWritesThePolicyAndForgetsTheCardEvenIfThatFails)
{
    const struct {
        ULONG flag;
        bool library, exports;
        HRESULT result;
        HRESULT status;
        bool cardStays;
        std::vector<std::wstring> lines;
    } cases[] = {
        {0, true, true, 0, 0, true, {}},
        {2, true, true, 0, 0, false, {}},
        {0,
         true,
         true,
         E_ACCESSDENIED,
         E_ACCESSDENIED,
         true,
         {L"E -2147024891 ", L"E -2147024891 "}},
        {1,
         true,
         true,
         E_ACCESSDENIED,
         E_ACCESSDENIED,
         false,
         {L"E -2147024891 ", L"E -2147024891 "}},
        {1, false, true, 0, moduleNotFound, false, {L"E -2147024770 ", L"E -2147024770 "}},
        {1, true, false, 0, procedureNotFound, false, {L"E -2147024769 ", L"E -2147024769 "}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        policy = {c.library, c.exports, c.result, 0, 0, {}, 0};
        setValue(cardKey, L"IDCard_SS", REG_DWORD, {1, 0, 0, 0});
        traceRecorder_t trace;
        EXPECT_EQ(m_disable.get()->DisableLocal(c.flag), c.status);
        EXPECT_EQ(trace.messages(), c.lines);
        EXPECT_EQ(RegGetValueW(HKEY_CURRENT_USER, cardKey, L"IDCard_SS", RRF_RT_ANY, nullptr,
                               nullptr, nullptr) == ERROR_SUCCESS,
                  c.cardStays);
        if (c.library && c.exports) {
            ASSERT_EQ(policy.written.size(), 1u);
            EXPECT_EQ(policy.written[0].status, 0u);
            EXPECT_EQ(policy.written[0].valueSize, 4u);
            EXPECT_EQ(policy.written[0].value, c.flag);
            EXPECT_EQ(policy.written[0].reserved, 0u);
        }
    }
    traceRecorder_t trace;
    CScoped<reference<IVLKTTraySubscribe>> tray;
    Query(tray);
    EXPECT_EQ(tray.get()->Subscribe(), S_OK);
    EXPECT_EQ(trace.messages(), std::vector<std::wstring>{L"U '`I04`'N/A"});
}

TEST_F(Status, PropertiesOfThePlugin)
{
    const struct {
        ULONG id;
        VARTYPE type;
        std::wstring text;
    } cases[] = {
        {1, VT_BSTR, L"name"},
        {2, VT_BSTR, L",193"}, // no branding DLL here
        {3, VT_BSTR, L"Password Manager"},
        {4, VT_BSTR, L"description"},
        {8, VT_UI4, L""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.id);
        CComVariant value(L"old");
        EXPECT_EQ(m_element.get()->GetProperty(c.id, &value), S_OK);
        ASSERT_EQ(value.vt, c.type);
        if (c.type == VT_BSTR)
            EXPECT_EQ(value.bstrVal, c.text);
        else
            EXPECT_EQ(value.ulVal, 2u);
    }
    for (const ULONG id : {0u, 5u, 6u, 7u, 9u, 99u, 102u, 104u, 0xFFFFFFFFu}) {
        SCOPED_TRACE(id);
        traceRecorder_t trace;
        CComVariant value(L"old");
        EXPECT_EQ(m_element.get()->GetProperty(id, &value), unknownProperty);
        EXPECT_EQ(value.vt, VT_EMPTY); // cleared before the id is looked at
        EXPECT_TRUE(trace.messages().empty());
    }
    traceRecorder_t trace;
    EXPECT_EQ(m_element.get()->GetProperty(1, nullptr), E_POINTER);
    EXPECT_EQ(trace.messages(), std::vector<std::wstring>{L"E -2147467261 GetProperty[com]"});
}

TEST_F(Status, InfoIsTheClassIdentifierAndSaysWhatItGave)
{
    CScoped<reference<IVLKTPluginInfo>> info;
    Query(info);
    traceRecorder_t trace;
    CComVariant value;
    EXPECT_EQ(info.get()->GetInfo(0, &value), S_OK);
    EXPECT_STREQ(value.bstrVal, L"{42F9948B-B690-4325-A073-63A8BF31FF32}");
    EXPECT_EQ(trace.messages(),
              std::vector<std::wstring>{L"U 0 = {42F9948B-B690-4325-A073-63A8BF31FF32}[8]"});
    value.Clear();
    value.vt = VT_I4;
    value.lVal = 7;
    EXPECT_EQ(info.get()->GetInfo(1, &value), unknownProperty);
    EXPECT_EQ(value.lVal, 7); // untouched
    EXPECT_EQ(trace.messages(), (std::vector<std::wstring>{L"U 1 = [3]", L"E -2147023288 "}));
}

TEST_F(Status, ANotificationOffersWhatItsLevelAllows)
{
    const struct {
        LONG level;
        HRESULT shown, actions;
        VARIANT_BOOL isShown;
    } cases[] = {
        {0, S_OK, notSupported, VARIANT_TRUE},  {1, notSupported, S_OK, 0},
        {2, S_OK, S_OK, VARIANT_TRUE},          {3, S_OK, notSupported, VARIANT_TRUE},
        {4, S_OK, notSupported, VARIANT_FALSE}, // asks no registry
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.level);
        CScoped<reference<IVLKTElementUI>> notice(new CNotification(c.level, nullptr));
        notice.get()->AddRef();
        CComVariant value;
        EXPECT_EQ(notice.get()->GetProperty(3, &value), S_OK);
        EXPECT_STREQ(value.bstrVal, L"caption");
        EXPECT_EQ(notice.get()->GetProperty(6, &value), c.shown);
        if (c.shown == S_OK) {
            EXPECT_EQ(value.vt, VT_BOOL);
            EXPECT_EQ(value.boolVal, c.isShown);
        } else {
            EXPECT_EQ(value.vt, VT_BSTR); // a refused property leaves the old value
        }
        EXPECT_EQ(notice.get()->GetProperty(9, &value), c.actions);
        if (c.actions == S_OK) {
            LONG index = 0;
            CComVariant self;
            EXPECT_EQ(SafeArrayGetElement(value.parray, &index, &self), S_OK);
            EXPECT_EQ(self.punkVal, notice.get());
        }
        EXPECT_EQ(notice.get()->GetProperty(100, &value), S_OK);
        EXPECT_EQ(value.lVal, c.level);
        EXPECT_EQ(notice.get()->GetProperty(101, &value), S_OK);
        EXPECT_EQ(value.vt, VT_BSTR);
        EXPECT_EQ(value.bstrVal, nullptr);
        EXPECT_EQ(notice.get()->GetProperty(7, &value), unknownProperty);
        EXPECT_EQ(notice.get()->GetProperty(3, nullptr), E_POINTER);
        EXPECT_EQ(notice.get()->SetProperty(7, nullptr), unknownProperty);
        void* out = &out;
        EXPECT_EQ(notice.get()->QueryInterface(IID_IDispatch, &out), E_NOINTERFACE);
        EXPECT_EQ(out, &out);
        value.Clear();
        EXPECT_EQ(notice.get()->AddRef(), 2u); // nothing was kept
        notice.get()->Release();
    }
}

TEST_F(Status, DismissalTakesEffectAtTheNextLook)
{
    auto notice = Notice();
    CComVariant flag;
    flag.vt = VT_BOOL;
    flag.boolVal = VARIANT_FALSE;
    EXPECT_EQ(notice.get()->SetProperty(2, &flag), S_OK);
    CComVariant value;
    EXPECT_EQ(notice.get()->GetProperty(6, &value), S_OK);
    EXPECT_EQ(value.boolVal, VARIANT_FALSE);
    EXPECT_EQ(Level(), 4);

    // The level-4 notice can't undo it: it writes under its own level.
    notice = Notice();
    flag.boolVal = VARIANT_TRUE;
    EXPECT_EQ(notice.get()->SetProperty(2, &flag), S_OK);
    EXPECT_EQ(Level(), 4);
    EXPECT_EQ(RegGetValueW(HKEY_CURRENT_USER, dismissKey, L"4", RRF_RT_REG_DWORD, nullptr, nullptr,
                           nullptr),
              ERROR_SUCCESS);

    flag.vt = VT_I4; // not a boolean: changes nothing
    EXPECT_EQ(notice.get()->SetProperty(2, &flag), S_OK);
    EXPECT_EQ(notice.get()->SetProperty(2, nullptr), S_OK);
    EXPECT_EQ(notice.get()->GetProperty(6, &value), S_OK);
    EXPECT_EQ(value.boolVal, VARIANT_TRUE);

    const struct {
        DWORD type;
        std::vector<BYTE> data;
        LONG level;
    } cases[] = {
        {REG_DWORD, {1, 0, 0, 0}, 4},
        {REG_DWORD, {9, 0, 0, 0}, 4},
        {REG_DWORD, {0, 0, 0, 0}, 2},
        {REG_BINARY, {1, 0, 0, 0}, 2}, // any other type counts as shown
        {REG_QWORD, {1, 0, 0, 0, 0, 0, 0, 0}, 2},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        setValue(dismissKey, L"2", c.type, c.data);
        EXPECT_EQ(Level(), c.level);
    }
}

TEST_F(Status, TheConsoleIsStartedForThisPlugin)
{
    const std::wstring folder = L"C:\\bin";
    RegSetKeyValueW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Veltrano\\Applications", L"BinDir", REG_SZ,
                    folder.c_str(), static_cast<DWORD>((folder.size() + 1) * 2));
    EXPECT_EQ(Notice().get()->SetProperty(100, nullptr), S_OK);
    EXPECT_EQ(started, (std::vector<std::wstring>{L"C:\\bin\\VLUserConsole.exe",
                                                  L"{42F9948B-B690-4325-A073-63A8BF31FF32}:0:0"}));
}
