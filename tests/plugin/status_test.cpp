#include "counted.h"
#include "plugin/notification.h"
#include "plugin/vlktpages.h"
#include "support/patchimport.h"
#include "support/tracerecorder.h"
#include "tracecore/tracer.h"

#include <array>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

using namespace VLONLINEIDSLib;

namespace {

const std::wstring dashboard = L"SOFTWARE\\Veltrano\\Applications\\DashBoard\\";
const std::wstring cardKey = dashboard + L"IDCard";
const std::wstring dismissKey = dashboard + L"DismissMessages\\" + classText;

// The policy library that the patched loader hands out.
using policyRecord_t = std::array<uint64_t, 5>; // name, status, size of the value, value, 0
struct policy_t {
    bool isWhole = true; // has its functions
    HRESULT result = 0;
    uint32_t status = 0x80070002;
    uint64_t value = 0;
    policyRecord_t seen = {};
} policy;

HRESULT WINAPI policyCall(ULONG count, policyRecord_t* record)
{
    EXPECT_EQ(count, 1u);
    EXPECT_EQ(reinterpret_cast<const wchar_t*>((*record)[0]),
              L"CommonSettings\\" + classText + L"\\DisableApps");
    policy.seen = std::exchange(*record, {(*record)[0], policy.status, 0, policy.value});
    return policy.result;
}

void* WINAPI policyFunction()
{
    SetLastError(ERROR_PROC_NOT_FOUND);
    return policy.isWhole ? reinterpret_cast<void*>(policyCall) : nullptr;
}

using value_t = std::pair<DWORD, std::vector<BYTE>>;
const std::vector<BYTE> one{1, 0, 0, 0}, longOne{1, 0, 0, 0, 0, 0, 0, 0};

void set(const std::wstring& key, const wchar_t* name, const value_t& value)
{
    RegDeleteKeyValueW(HKEY_CURRENT_USER, key.c_str(), name);
    if (value.first)
        RegSetKeyValueW(HKEY_CURRENT_USER, key.c_str(), name, value.first, value.second.data(),
                        static_cast<DWORD>(value.second.size()));
}

// get gives properties, each by its type and its text or number, with the status of a refused one
// in front, an array by its locks and its size.
std::wstring get(IVLKTElementUI* element, std::initializer_list<ULONG> ids)
{
    std::wstring all;
    for (const ULONG id : ids) {
        ATL::CComVariant value(L"old");
        if (const HRESULT status = element->GetProperty(id, &value))
            all += tracecore::formatWide(L"%08x=", status);
        all += std::to_wstring(value.vt) + L':';
        if (value.vt == VT_BSTR)
            all += value.bstrVal ? value.bstrVal : L"(null)";
        else if (value.vt == (VT_ARRAY | VT_VARIANT))
            all += tracecore::formatWide(
                L"%d-%d%s", value.parray->cLocks, value.parray->rgsabound[0].cElements,
                static_cast<VARIANT*>(value.parray->pvData)->punkVal == element ? L"self" : L"");
        else if (value.vt != VT_EMPTY)
            all += std::to_wstring(value.vt == VT_BOOL ? value.boolVal : value.lVal);
        all += L' ';
    }
    return all;
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
        ATL::CComBSTR text;
        EXPECT_EQ(pages->GetStatus(&status, &text), result);
        return std::to_wstring(status) + L' ' + (text.m_str ? text.m_str : L"(null)");
    }

    CVLKTPages* pages;
    importPatch_t load{"LoadLibraryW", +[] { return GetModuleHandleW(nullptr); }};
    importPatch_t proc{"GetProcAddress", policyFunction};
};

} // namespace

TEST_F(Status, PolicyDecidesBothStatuses)
{
    const std::tuple<policy_t, ULONG, bool> cases[] = {
        // A result above 0 is no failure, and the low half of a value counts.
        {{true, 0, 0, 1}, 3, true},  {{true, 0, 0, 0xFFFFFFFF00000000}, 1, false},
        {{true, 1, 0, 1}, 3, true},  {{true, E_ACCESSDENIED, 0, 1}, 0, false},
        {{true, 0, 1, 7}, 2, true},  {{false, 0, 0, 1}, 0, false},
        {{true, 0, 1, 0}, 0, false}, {{true, 0, 0x80070002, 1}, 0, false},
        {{true, 0, 5, 1}, 0, false},
    };
    for (const auto& [ofPolicy, expected, disabled] : cases) {
        policy = ofPolicy;
        ULONG status = 99;
        EXPECT_EQ(pages->GetStatus(&status), S_OK);
        EXPECT_EQ(status, expected);
        EXPECT_EQ(policy.seen, policyRecord_t{policy.seen[0]});
        EXPECT_EQ(statusAndText(disabled ? E_NOTIMPL : S_OK),
                  disabled ? L"0 text 1029" : L"0 text 1054");
        EXPECT_EQ(get(pages, {100}), L"3:2 "); // disabled goes on as status 0
    }
}

TEST_F(Status, CardAndDismissalGiveStatusTextAndLevel)
{
    const std::tuple<value_t, value_t, int, int, int> cases[] = {
        // A card of any type has four bytes; a dismissal of any other type counts as shown.
        {{4, one}, {4, one}, 2, 1053, 1}, {{4, {2, 0, 0, 0}}, {4, one}, 1, 1031, 3},
        {{3, one}, {}, 2, 1053, 1},       {{4, {255, 255, 255, 255}}, {}, 1, 1031, 3},
        {{11, longOne}, {}, 0, 1054, 2},  {{4, {0, 0, 0, 0}}, {4, {9, 0, 0, 0}}, 0, 1054, 4},
        {{}, {3, one}, 0, 1054, 2},       {{}, {4, {0, 0, 0, 0}}, 0, 1054, 2},
        {{}, {11, longOne}, 0, 1054, 2},
    };
    for (const auto& [card, dismissed, status, text, level] : cases) {
        set(cardKey, L"IDCard_SS", card);
        set(dismissKey, L"2", dismissed);
        EXPECT_EQ(statusAndText() + L' ' + get(pages, {100, 101}),
                  tracecore::formatWide(L"%d text %d 3:%d 8:text %d ", status, text, level, text));
    }
}

TEST_F(Status, DisablingWritesThePolicyAndForgetsTheCardEvenIfThatFails)
{
    const std::tuple<ULONG, policy_t, uint32_t> cases[] = {
        {0, {}, 0}, {2, {}, 0}, {1, {false}, 0x8007007F}, {0, {true, E_ACCESSDENIED}, 0x80070005}};
    for (const auto& [flag, ofPolicy, code] : cases) {
        policy = ofPolicy;
        set(cardKey, L"IDCard_SS", {REG_DWORD, one});
        traceRecorder_t trace;
        const auto status = static_cast<HRESULT>(code); // traced twice
        EXPECT_EQ(pages->DisableLocal(flag), status);
        const std::wstring line = status ? L"|E " + std::to_wstring(status) + L" " : L"";
        EXPECT_EQ(trace.joined(), line + line);
        const uint64_t name = policy.seen[0]; // null if the library was not called
        EXPECT_EQ(policy.seen, (policyRecord_t{name, 0, name ? 4u : 0u, name ? flag : 0u}));
        policy = {};
        EXPECT_EQ(statusAndText().substr(0, 1), flag ? L"0" : L"2");
    }
}

TEST_F(Status, PropertiesOfThePlugin)
{
    EXPECT_EQ(get(pages, {1, 3, 4, 8, 103}),
              L"8:name 8:Password Manager 8:description 19:2 8204:0-1 ");
    for (const ULONG id : {0u, 5u, 7u, 9u, 99u, 102u, 104u, 0xFFFFFFFFu})
        EXPECT_EQ(get(pages, {id}), L"80070648=0: ") << id; // cleared before the id is seen
    const auto self = static_cast<IVLKTPages*>(pages);
    ATL::CComVariant held(self), alsoHeld(self);
    pages->GetProperty(0, &held);
    pages->GetInfo(0, &alsoHeld);
    self->AddRef();
    EXPECT_EQ(self->Release(), 1u); // what it held was let go
}

TEST_F(Status, ANotificationOffersWhatItsLevelAllowsAndIsDismissed)
{
    // Properties 6 and 9 at each level; the last asks no registry.
    const wchar_t* const cases[] = {L"11:-1 80070032=8:old ", L"80070032=8:old 8204:0-1self ",
                                    L"11:-1 8204:0-1self ", L"11:-1 80070032=8:old ",
                                    L"11:0 80070032=8:old "};
    for (LONG level = 0; level < 5; ++level) {
        const counted<IVLKTElementUI> notice(new CNotification(level, nullptr));
        EXPECT_EQ(notice->AddRef(), 1u);
        EXPECT_EQ(get(notice.get(), {6, 9}), cases[level]);
        EXPECT_EQ(get(notice.get(), {3, 7, 100, 101}),
                  tracecore::formatWide(L"8:caption 80070648=8:old 3:%d 8:(null) ", level));
        EXPECT_EQ(notice->GetProperty(3, nullptr), E_POINTER);
        EXPECT_EQ(notice->SetProperty(7, nullptr), HRESULT_FROM_WIN32(ERROR_UNKNOWN_PROPERTY));
        void* out = &out;
        EXPECT_EQ(notice->QueryInterface(IID_IDispatch, &out), E_NOINTERFACE);
        EXPECT_EQ(out, &out);
        EXPECT_EQ(notice->AddRef(), 2u); // nothing was kept
        notice->Release();
        VARIANT busy = {};
        busy.vt = VT_ARRAY | VT_UI1;
        busy.parray = SafeArrayCreateVector(VT_UI1, 0, 1);
        SafeArrayLock(busy.parray);
        EXPECT_EQ(notice->GetProperty(3, &busy), DISP_E_ARRAYISLOCKED);
        SafeArrayUnlock(busy.parray);
        SafeArrayDestroy(busy.parray);
        ATL::CComVariant flag; // only a boolean counts, and anything but 0 is true
        for (const auto& [type, to, shown] :
             {std::tuple(VT_BOOL, 0, L"11:0 "), {VT_I2, 1, L"11:0 "}, {VT_BOOL, 1, L"11:-1 "}}) {
            flag.vt = static_cast<VARTYPE>(type);
            flag.boolVal = static_cast<VARIANT_BOOL>(to);
            EXPECT_EQ(notice->SetProperty(2, &flag), S_OK);
            EXPECT_EQ(get(notice.get(), {6}), level == 1 ? L"80070032=8:old " : shown);
        }
    }
}
