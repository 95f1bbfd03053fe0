#pragma once

#include "installation.h"
#include "support/agentstub.h"
#include "support/importhooks.h"

#include <map>
#include <sstream>

// The arguments that are shown, by their kinds.
inline const std::map<std::string, std::string> shownKinds = [] {
    std::istringstream in(
        "_vsnwprintf - CreateDirectoryW ts CreateFileMappingW -snnnt CreateFileW tnnsnn "
        "CreateMutexW snt CreateSemaphoreW snnt DeleteFileW t FindFirstFileW t FindWindowExW nntt "
        "GetDriveTypeW t "
        "GetNamedSecurityInfoW tnn ImpersonateSelf n LoadLibraryExW t-n LoadLibraryW t "
        "MapViewOfFile -nnnn OpenEventW nnt OpenFileMappingW nnt OpenMutexW nnt "
        "OpenProcessToken -n OpenSemaphoreW nnt OpenThreadToken -nn PostMessageW --nn "
        "RegCreateKeyExW ktntnn RegDeleteKeyW kt RegDeleteValueW -t RegOpenKeyExW ktnn "
        "RegGetValueW --t RegQueryValueExW -t "
        "RegSetValueExW -tnnd RegisterWindowMessageW t ReleaseSemaphore -n SetEvent - "
        "SetFilePointer -npn SetNamedSecurityInfoW tnn SetSecurityInfo -nn SetThreadToken - "
        "ShellExecuteW -ttttn WaitForSingleObject -n WriteFile - _wfopen tt ");
    std::map<std::string, std::string> kinds;
    for (std::string name; in >> name;)
        in >> kinds[name];
    return kinds;
}();

// silentPlugin_t opens no program on the screen.
struct silentPlugin_t : plugin_t {
    const importPatch_t shell{GetModuleHandleW(L"VLOnlineIDs.dll"), "ShellExecuteW",
                              reinterpret_cast<void*>(+[] { return INT_PTR{33}; })};
};

// outcome_t is what an operation returned: its statuses, and all that it gave in one text.
struct outcome_t {
    std::vector<HRESULT> statuses;
    std::string given;

    void add(HRESULT status) { statuses.push_back(status); }
    void add(HRESULT status, const VARIANT& value)
    {
        add(status);
        given += std::to_string(value.vt) + ' ';
        if (value.vt == (VT_ARRAY | VT_UI1)) {
            const bytes data = bytesOf(value);
            given.append(data.begin(), data.end());
        } else if (value.vt == VT_BSTR && value.bstrVal) {
            given += utf8FromWide(value.bstrVal);
        }
    }
    bool operator==(const outcome_t&) const = default;
};

constexpr const char* operationNames[] = {"information",  "status",   "notification",
                                          "backup",       "restore",  "pluginData",
                                          "registration", "creation", "refusals"};

// operationsTest has what hosts ask of the plug-in, by name, and an agent that answers.
class operationsTest : public installedTest
{
protected:
    // run: the scenario begins with the name
    outcome_t run(const plugin_t& plugin, const std::string& scenario)
    {
        const std::pair<const char*, void (operationsTest::*)(const plugin_t&, outcome_t&)>
            operations[] = {{"information", &operationsTest::information},
                            {"status", &operationsTest::status},
                            {"notification", &operationsTest::notification},
                            {"backup", &operationsTest::backup},
                            {"restore", &operationsTest::restore},
                            {"pluginData", &operationsTest::pluginData},
                            {"registration", &operationsTest::registration},
                            {"creation", &operationsTest::creation},
                            {"refusals", &operationsTest::refusals}};
        outcome_t outcome;
        for (const auto& [name, operation] : operations)
            if (scenario.starts_with(name))
                (this->*operation)(plugin, outcome);
        return outcome;
    }

    const bytes m_secrets = seq({seq({wide(L"KRS Protected Storage"), octets("s")})});
    const agentStub_t m_agentStub;

private:
    static void addProperty(outcome_t& outcome, IVLKTElementUI* element, ULONG id, value_t& value)
    {
        const HRESULT status = element->GetProperty(id, &value);
        outcome.add(status, value);
        if (FAILED(status))
            value.vt = VT_EMPTY; // its payload may never have been stored
    }
    void information(const plugin_t& plugin, outcome_t& outcome)
    {
        for (const ULONG id : {1u, 2u, 3u, 4u, 8u, 100u, 101u, 103u, 7u}) {
            value_t value;
            addProperty(outcome, plugin.as<IVLKTElementUI>(), id, value);
        }
        value_t value;
        outcome.add(plugin.as<IVLKTPluginInfo>()->GetInfo(0, &value), value);
        outcome.add(plugin.as<IVLKTPages>()->AddPages());
        outcome.add(plugin.as<IVLKTTraySubscribe>()->Subscribe());
    }
    void status(const plugin_t& plugin, outcome_t& outcome)
    {
        ULONG number = 0;
        value_t text;
        text.vt = VT_BSTR;
        text.bstrVal = nullptr;
        outcome.add(plugin.as<IVLKSecurityStatus>()->GetStatus(&number, &text.bstrVal), text);
        outcome.given += std::to_string(number);
        outcome.add(plugin.as<IVLKTDisableApp>()->GetStatus(&number));
        outcome.given += std::to_string(number);
        for (const ULONG disabled : {1u, 0u})
            outcome.add(plugin.as<IVLKTDisableApp>()->DisableLocal(disabled));
    }
    void notification(const plugin_t& plugin, outcome_t& outcome)
    {
        value_t notices, shown;
        addProperty(outcome, plugin.as<IVLKTElementUI>(), propertyNotifications, notices);
        outcome.given.clear();
        const bool isThere = notices.vt == (VT_ARRAY | VT_VARIANT) && notices.parray &&
                             notices.parray->rgsabound[0].cElements > 0;
        const auto notice = static_cast<IVLKTElementUI*>(
            isThere ? static_cast<VARIANT*>(notices.parray->pvData)->punkVal : nullptr);
        if (!notice)
            return;
        shown.vt = VT_BOOL;
        shown.boolVal = VARIANT_TRUE;
        outcome.add(notice->SetProperty(commandSetShown, &shown));
        outcome.add(notice->SetProperty(commandOpenConsole, nullptr));
        for (const ULONG id : {notificationCaption, notificationShown, notificationActions,
                               propertySecurityLevel, propertyExplanation}) {
            value_t value;
            addProperty(outcome, notice, id, value);
        }
    }
    void backup(const plugin_t& plugin, outcome_t& outcome)
    {
        value_t names, data;
        outcome.add(plugin.as<IVLKTBackupRestore2>()->GetStorageData(&names, &data), data);
    }
    void restored(HRESULT status, outcome_t& outcome) const
    {
        outcome.add(status);
        for (const auto& [name, content] : userFiles())
            outcome.given += name + '=' + content + '\n';
    }
    void restore(const plugin_t& plugin, outcome_t& outcome)
    {
        value_t data(newLogon(m_files, m_settings));
        restored(plugin.as<IVLKTBackupRestore2>()->SetStorageData2(0x10002, &data), outcome);
        if (data.parray->cLocks != 0)
            outcome.given += "the host's array is locked";
    }
    void pluginData(const plugin_t& plugin, outcome_t& outcome)
    {
        m_agentStub.answer();
        restored(setPluginData(plugin, m_secrets, newLogon(m_files, m_oldSettings)), outcome);
    }
    void registration(const plugin_t& plugin, outcome_t& outcome)
    {
        for (const char* entry : {"DllRegisterServer", "DllUnregisterServer"})
            outcome.add(plugin.entry<HRESULT WINAPI()>(entry)());
    }
    static void make(const plugin_t& plugin, outcome_t& outcome, IUnknown* outer, REFIID wanted)
    {
        void *factory = nullptr, *object = nullptr;
        outcome.add(plugin.entry<decltype(DllGetClassObject)>("DllGetClassObject")(
            CLSID_CVLKTPages, IID_IClassFactory, &factory));
        if (!factory)
            return;
        const auto made = static_cast<IClassFactory*>(factory);
        outcome.add(made->CreateInstance(outer, wanted, &object));
        made->Release();
        if (object)
            static_cast<IUnknown*>(object)->Release();
    }
    void creation(const plugin_t& plugin, outcome_t& outcome)
    {
        make(plugin, outcome, nullptr, IID_IUnknown);
    }
    void refusals(const plugin_t& plugin, outcome_t& outcome)
    {
        outcome.add(plugin.as<IVLKTElementUI>()->GetProperty(propertyName, nullptr));
        ULONG number = 0;
        value_t text, none;
        text.vt = VT_BSTR;
        text.bstrVal = nullptr;
        // A disabled application gives a text and a failure at once.
        outcome.add(plugin.as<IVLKTDisableApp>()->DisableLocal(1));
        outcome.add(plugin.as<IVLKSecurityStatus>()->GetStatus(&number, &text.bstrVal), text);
        outcome.add(plugin.as<IVLKTDisableApp>()->DisableLocal(0));
        const bytes garbage(300, 0x30);
        for (const bytes& data : {seq({}), garbage, bytes()}) {
            value_t value(data);
            outcome.add(plugin.as<IVLKTBackupRestore2>()->SetStorageData(&value));
        }
        outcome.add(plugin.as<IVLKTBackupRestore2>()->SetStorageData2(0, &none));
        outcome.add(setPluginData(plugin, m_secrets, garbage));
        outcome.add(setPluginData(plugin, m_secrets, {}));
        make(plugin, outcome, plugin.as<IUnknown>(), IID_IUnknown);
        make(plugin, outcome, nullptr, IID_IDispatch);
    }

    const std::vector<bytes> m_files = {filePair(L"new.vlm", "new"), filePair(L"bank.vlm", "bank"),
                                        filePair(L"updata.vls", "state")};
    const bytes m_settings =
        seq({narrow(R"({"settings":{"current":{"open_guard_desk_qa":"K",)"
                    R"("show_training_prompt":"0","useGrabbingCreds":true}}})")});
    const bytes m_oldSettings = seq({integer(0), wide(L"K"), octets("list")});
};
