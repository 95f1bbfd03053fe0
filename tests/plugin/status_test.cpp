#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "plugin/notification.h"
#include "plugin/vlktpages.h"
#include "support/patchimport.h"
#include "support/tracerecorder.h"
#include "tracecore/tracer.h"

#include <shellapi.h>

using namespace VLONLINEIDSLib;
using ATL::CComBSTR;
using ATL::CComVariant;
using lines_t = std::vector<std::wstring>;

namespace {

const std::wstring classText = L"{42F9948B-B690-4325-A073-63A8BF31FF32}";
const std::wstring dashboard = L"SOFTWARE\\Veltrano\\Applications\\DashBoard\\";
const std::wstring cardKey = dashboard + L"IDCard";
const std::wstring dismissKey = dashboard + L"DismissMessages\\" + classText;
constexpr auto notSupported = static_cast<HRESULT>(0x80070032);
constexpr auto unknownProperty = static_cast<HRESULT>(0x80070648);

// The policy library that the patched loader hands out.
struct policyRecord_t {
    const wchar_t* name;
    uint32_t status, filler;
    uint64_t valueSize, value, reserved;
};
struct policy_t {
    bool library = true, exports = true;
    HRESULT result = 0;
    uint32_t status = 0x80070002;
    uint64_t value = 0;
    policyRecord_t seen = {};
    int loads = 0;
} policy;

HRESULT WINAPI policyCall(ULONG count, policyRecord_t* record)
{
    EXPECT_EQ(count, 1u);
    EXPECT_EQ(record->name, L"CommonSettings\\" + classText + L"\\DisableApps");
    policy.seen = std::exchange(*record, {record->name, policy.status, 0, 0, policy.value, 0});
    return policy.result;
}

HMODULE WINAPI loadPolicy(LPCWSTR path)
{
    EXPECT_STREQ(path, L"C:\\windows\\system32\\VLFPApi.dll");
    SetLastError(ERROR_MOD_NOT_FOUND);
    return ++policy.loads && policy.library ? GetModuleHandleW(nullptr) : nullptr;
}

std::string function; // of the policy library, last asked for
FARPROC WINAPI policyFunction(HMODULE, LPCSTR name)
{
    function = name;
    SetLastError(ERROR_PROC_NOT_FOUND);
    return reinterpret_cast<FARPROC>(
        reinterpret_cast<void*>(policy.exports ? policyCall : nullptr));
}

std::wstring started;
HINSTANCE WINAPI shellExecute(HWND, LPCWSTR verb, LPCWSTR file, LPCWSTR arguments, LPCWSTR folder,
                              INT show)
{
    EXPECT_TRUE(!verb && !folder && show == SW_SHOWNORMAL);
    started = std::wstring(file) + L' ' + arguments;
    return nullptr;
}

BSTR WINAPI noString(const OLECHAR*)
{
    return nullptr;
}

void setValue(const std::wstring& key, const wchar_t* name, DWORD type,
              const std::vector<BYTE>& data)
{
    RegSetKeyValueW(HKEY_CURRENT_USER, key.c_str(), name, type, data.data(),
                    static_cast<DWORD>(data.size()));
}

struct releaser {
    void operator()(IUnknown* object) const { object->Release(); }
};
using notice_t = std::unique_ptr<IVLKTElementUI, releaser>;

notice_t counted(IUnknown* notice)
{
    notice->AddRef();
    return notice_t(static_cast<IVLKTElementUI*>(notice));
}

// get gives a property as a text: its type, a colon, and a text or number.
std::wstring get(IVLKTElementUI* element, ULONG id, HRESULT status = S_OK)
{
    CComVariant value(L"old");
    EXPECT_EQ(element->GetProperty(id, &value), status) << id;
    std::wstring text = value.vt == VT_BSTR   ? value.bstrVal ? value.bstrVal : L"(null)"
                        : value.vt == VT_BOOL ? std::to_wstring(value.boolVal)
                                              : std::to_wstring(value.lVal);
    return std::to_wstring(value.vt) + L':' + (value.vt == VT_EMPTY ? L"" : text);
}

struct Status : testing::Test {
    Status()
    {
        policy = {};
        RegDeleteTreeW(HKEY_CURRENT_USER, L"SOFTWARE\\Veltrano");
        void* out = nullptr;
        EXPECT_EQ(CVLKTPages::_CreateInstance(nullptr, __uuidof(IVLKTPages), &out), S_OK);
        pages = static_cast<CVLKTPages*>(static_cast<IVLKTPages*>(out));
    }
    ~Status() override { static_cast<IVLKTPages*>(pages)->Release(); }

    std::wstring statusAndText(HRESULT result = S_OK)
    {
        ULONG status = 99;
        CComBSTR text;
        EXPECT_EQ(pages->GetStatus(&status, &text), result);
        return std::to_wstring(status) + L' ' + (text.m_str ? text.m_str : L"(null)");
    }

    // notice gives the one element of property 103, as a host takes it out.
    notice_t notice()
    {
        CComVariant value;
        EXPECT_EQ(pages->GetProperty(103, &value), S_OK);
        EXPECT_EQ(value.vt, VT_ARRAY | VT_VARIANT);
        EXPECT_EQ(value.parray->cLocks, 0u);
        EXPECT_EQ(value.parray->rgsabound[0].cElements, 1u);
        const auto* const element = static_cast<const VARIANT*>(value.parray->pvData);
        EXPECT_EQ(element->vt, VT_UNKNOWN);
        return counted(element->punkVal);
    }

    CVLKTPages* pages;
    const HMODULE self = GetModuleHandleW(nullptr);
    importPatch_t load{self, "LoadLibraryW", reinterpret_cast<void*>(loadPolicy)};
    importPatch_t proc{self, "GetProcAddress", reinterpret_cast<void*>(policyFunction)};
    importPatch_t shell{self, "ShellExecuteW", reinterpret_cast<void*>(shellExecute)};
};

} // namespace

TEST_F(Status, PolicyDecidesBothStatuses)
{
    const lines_t none;
    const struct {
        policy_t policy;
        ULONG status; // of IVLKTDisableApp
        bool disabled;
        lines_t lines;
    } cases[] = {
        {{false, true, 0, 0, 1}, 0, false, {L"E -2147024770 GetGPOSettings[com]"}},
        {{true, false, 0, 0, 1}, 0, false, {L"E -2147024769 GetGPOSettings[com]"}},
        {{true, true, E_ACCESSDENIED, 0, 1}, 0, false, {L"E -2147024891 GetGPOSettings[com]"}},
        {{true, true, 0, 0x80070002, 1}, 0, false, none},
        {{true, true, 0, 0, 0}, 1, false, none},
        {{true, true, 0, 0, 1}, 3, true, none},
        {{true, true, 0, 0, 0xFFFFFFFF00000000}, 1, false, none}, // the low half counts
        {{true, true, 0, 1, 0}, 0, false, none},
        {{true, true, 0, 1, 7}, 2, true, none},
        {{true, true, 0, 5, 1}, 0, false, none},
        {{true, true, 1, 0, 1}, 3, true, none}, // a result above 0 is no failure
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        policy = c.policy;
        traceRecorder_t trace;
        ULONG status = 99;
        EXPECT_EQ(pages->GetStatus(&status), S_OK);
        EXPECT_EQ(status, c.status);
        EXPECT_EQ(trace.messages(), c.lines);
        EXPECT_TRUE(!c.policy.library || function == "VLFPGetPolicySettingsEx");
        EXPECT_EQ(policy.seen.status + policy.seen.valueSize + policy.seen.value, 0u);
        if (c.disabled) {
            EXPECT_EQ(statusAndText(E_NOTIMPL), L"0 text 1029");
            EXPECT_EQ(trace.messages(), lines_t{L"E -2147467263 GetStatus[com]"});
        } else {
            EXPECT_EQ(statusAndText(), L"0 text 1054");
        }
        EXPECT_EQ(get(pages, 100), L"3:2"); // disabled goes on as status 0
    }
    policy = {};
    EXPECT_EQ(pages->GetStatus(nullptr), E_POINTER);
    EXPECT_EQ(policy.loads, 0);
    notice();
    EXPECT_EQ(policy.loads, 2); // explanation and level each ask anew
}

TEST_F(Status, CardAndDismissalGiveStatusTextAndLevel)
{
    using data_t = std::vector<BYTE>;
    const data_t one{1, 0, 0, 0}, longOne{1, 0, 0, 0, 0, 0, 0, 0};
    const struct {
        DWORD cardType;
        data_t card;
        DWORD dismissType;
        data_t dismissed;
        std::wstring statusAndText, level;
    } cases[] = {
        {0, {}, 0, {}, L"0 text 1054", L"3:2"}, // missing
        {4, one, 4, one, L"2 text 1053", L"3:1"},
        {4, {2, 0, 0, 0}, 4, one, L"1 text 1031", L"3:3"},
        {4, {255, 255, 255, 255}, 0, {}, L"1 text 1031", L"3:3"},
        {3, one, 0, {}, L"2 text 1053", L"3:1"}, // any type of four bytes
        {11, longOne, 0, {}, L"0 text 1054", L"3:2"},
        {4, {0, 0, 0, 0}, 4, {9, 0, 0, 0}, L"0 text 1054", L"3:4"},
        {0, {}, 4, {0, 0, 0, 0}, L"0 text 1054", L"3:2"},
        {0, {}, 3, one, L"0 text 1054", L"3:2"}, // any other type counts as shown
        {0, {}, 11, longOne, L"0 text 1054", L"3:2"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        RegDeleteTreeW(HKEY_CURRENT_USER, L"SOFTWARE\\Veltrano");
        if (c.cardType)
            setValue(cardKey, L"IDCard_SS", c.cardType, c.card);
        if (c.dismissType)
            setValue(dismissKey, L"2", c.dismissType, c.dismissed);
        EXPECT_EQ(statusAndText(), c.statusAndText);
        EXPECT_EQ(get(pages, 100), c.level);
        EXPECT_EQ(get(pages, 101), L"8:" + c.statusAndText.substr(2));
    }
}

TEST_F(Status, DisablingWritesThePolicyAndForgetsTheCardEvenIfThatFails)
{
    const struct {
        ULONG flag;
        policy_t policy;
        uint32_t status;
        std::wstring line; // comes twice; empty for none
    } cases[] = {
        {0, {true, true}, 0, L""},
        {2, {true, true}, 0, L""},
        {0, {true, true, E_ACCESSDENIED}, 0x80070005, L"E -2147024891 "},
        {1, {true, true, E_ACCESSDENIED}, 0x80070005, L"E -2147024891 "},
        {1, {true, false}, 0x8007007F, L"E -2147024769 "},
        {1, {false, true}, 0x8007007E, L"E -2147024770 "},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        policy = c.policy;
        setValue(cardKey, L"IDCard_SS", REG_DWORD, {1, 0, 0, 0});
        traceRecorder_t trace;
        EXPECT_EQ(pages->DisableLocal(c.flag), static_cast<HRESULT>(c.status));
        EXPECT_EQ(trace.messages(), lines_t(c.line.empty() ? 0 : 2, c.line));
        EXPECT_TRUE(!c.policy.library || function == "VLFPSetPolicySettingsEx");
        EXPECT_EQ(policy.seen.status + policy.seen.reserved, 0u);
        EXPECT_EQ(policy.seen.valueSize, policy.seen.name ? 4u : 0u);
        EXPECT_EQ(policy.seen.value, policy.seen.name ? c.flag : 0u);
        policy = {};
        EXPECT_EQ(statusAndText().substr(0, 1), c.flag ? L"0" : L"2");
    }
    traceRecorder_t trace;
    EXPECT_EQ(pages->Subscribe(), S_OK);
    EXPECT_EQ(trace.messages(), lines_t{L"U '`I04`'N/A"});
}

TEST_F(Status, PropertiesOfThePlugin)
{
    const std::pair<ULONG, std::wstring> cases[] = {
        {1, L"8:name"},
        {2, L"8:,193"}, // no branding DLL here
        {3, L"8:Password Manager"},
        {4, L"8:description"},
        {8, L"19:2"},
    };
    for (const auto& [id, value] : cases)
        EXPECT_EQ(get(pages, id), value);
    traceRecorder_t trace;
    for (const ULONG id : {0u, 5u, 6u, 7u, 9u, 99u, 102u, 104u, 0xFFFFFFFFu})
        EXPECT_EQ(get(pages, id, unknownProperty), L"0:"); // cleared before the id is seen
    EXPECT_EQ(trace.messages(), lines_t());
    EXPECT_EQ(pages->GetProperty(1, nullptr), E_POINTER);
    EXPECT_EQ(trace.messages(), lines_t{L"E -2147467261 GetProperty[com]"});

    CComVariant value;
    EXPECT_EQ(pages->GetInfo(0, &value), S_OK);
    EXPECT_EQ(value.bstrVal, classText);
    EXPECT_EQ(trace.messages(), lines_t{L"U 0 = " + classText + L"[8]"});
    EXPECT_EQ(pages->GetInfo(1, &value), unknownProperty); // leaves value as it is
    EXPECT_EQ(trace.messages(), (lines_t{L"U 1 = " + classText + L"[8]", L"E -2147023288 "}));
    value.Clear();
    EXPECT_EQ(pages->GetInfo(1, &value), unknownProperty);
    EXPECT_EQ(trace.messages(), (lines_t{L"U 1 = [0]", L"E -2147023288 "}));
}

TEST_F(Status, WithoutMemoryForATextEachOperationEndsInItsCatchAll)
{
    const notice_t notice = counted(new CNotification(2, nullptr));
    const importPatch_t patch(self, "SysAllocString", reinterpret_cast<void*>(noString));
    const auto outcome = [](const auto& call) {
        traceRecorder_t trace;
        VARIANT value = {};
        std::wstring text = tracecore::formatWide(L"%08x ", call(&value));
        text += std::to_wstring(value.vt) + (value.byref ? L" payload" : L"");
        for (const std::wstring& line : trace.messages())
            text += L"|" + line;
        return text;
    };
    // The type tag stays, without a payload.
    EXPECT_EQ(outcome([&](VARIANT* value) { return pages->GetProperty(1, value); }),
              L"80004005 8|E 0 GetPropertyoo");
    EXPECT_EQ(outcome([&](VARIANT* value) { return pages->GetProperty(103, value); }),
              L"80004005 8204|E 0 GetStatusoo|E 0 GetStatusoo|E 0 GetPropertyoo");
    EXPECT_EQ(outcome([&](VARIANT* value) { return pages->GetInfo(0, value); }),
              L"8000ffff 0|U 0 = [0]|E -2147418113 ");
    EXPECT_EQ(outcome([&](VARIANT* value) { return notice->GetProperty(3, value); }),
              L"8000ffff 0");
}

TEST_F(Status, ANotificationOffersWhatItsLevelAllows)
{
    const struct {
        LONG level;
        HRESULT hasShown;
        std::wstring shown;
        HRESULT hasActions;
    } cases[] = {
        {0, S_OK, L"11:-1", notSupported},
        {1, notSupported, L"8:old", S_OK}, // a refused property leaves the old value
        {2, S_OK, L"11:-1", S_OK},
        {3, S_OK, L"11:-1", notSupported},
        {4, S_OK, L"11:0", notSupported}, // asks no registry
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.level);
        const notice_t notice = counted(new CNotification(c.level, nullptr));
        EXPECT_EQ(get(notice.get(), 3), L"8:caption");
        EXPECT_EQ(get(notice.get(), 6, c.hasShown), c.shown);
        EXPECT_EQ(get(notice.get(), 100), L"3:" + std::to_wstring(c.level));
        EXPECT_EQ(get(notice.get(), 101), L"8:(null)");
        EXPECT_EQ(get(notice.get(), 7, unknownProperty), L"8:old");
        EXPECT_EQ(notice->GetProperty(3, nullptr), E_POINTER);
        EXPECT_EQ(notice->SetProperty(7, nullptr), unknownProperty);
        CComVariant actions;
        EXPECT_EQ(notice->GetProperty(9, &actions), c.hasActions);
        if (c.hasActions == S_OK) {
            EXPECT_EQ(static_cast<const VARIANT*>(actions.parray->pvData)->punkVal, notice.get());
        }
        actions.Clear();
        void* out = &out;
        EXPECT_EQ(notice->QueryInterface(IID_IDispatch, &out), E_NOINTERFACE);
        EXPECT_EQ(out, &out);
        EXPECT_EQ(notice->AddRef(), 2u); // nothing was kept
        notice->Release();
    }
}

TEST_F(Status, ANotificationIsDismissedAndOpensTheConsole)
{
    CComVariant flag;
    flag.vt = VT_BOOL;
    const notice_t first = notice();
    EXPECT_EQ(first->SetProperty(2, &flag), S_OK);
    EXPECT_EQ(get(first.get(), 6), L"11:0");
    EXPECT_EQ(get(pages, 100), L"3:4");

    // The level-4 notice can't undo it: it writes under its own level.
    const notice_t second = notice();
    flag.boolVal = 1; // anything but 0 is true
    EXPECT_EQ(second->SetProperty(2, &flag), S_OK);
    flag.vt = VT_I2; // not a boolean: changes nothing
    flag.boolVal = 0;
    EXPECT_EQ(second->SetProperty(2, &flag), S_OK);
    EXPECT_EQ(second->SetProperty(2, nullptr), S_OK);
    EXPECT_EQ(get(second.get(), 6), L"11:-1");
    EXPECT_EQ(get(pages, 100), L"3:4");
    EXPECT_EQ(RegGetValueW(HKEY_CURRENT_USER, dismissKey.c_str(), L"4", RRF_RT_REG_DWORD, nullptr,
                           nullptr, nullptr),
              ERROR_SUCCESS);
    RegSetKeyValueW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Veltrano\\Applications", L"BinDir", REG_SZ,
                    L"C:\\bin", 14);
    EXPECT_EQ(second->SetProperty(100, nullptr), S_OK);
    EXPECT_EQ(started, L"C:\\bin\\VLUserConsole.exe " + classText + L":0:0");
}
