#include "operations.h"

#include <set>

// What the plug-in asks the platform for, and in which order: access masks, sharing, dispositions,
// key options, inheritance. Each distinct call stands once, where it came first. Before its switch is
// turned, tracing formats no text and takes no turn.

namespace {

using Calls = operationsTest;

std::vector<std::string> seen;

bool note(const hookedCall_t& call)
{
    seen.push_back(call.shown(shownKinds.at(call.function)));
    return std::string_view("ShellExecuteW") == call.function; // opens nothing
}

TEST_F(Calls, OfASessionAreTheseInThisOrder)
{
    setTracing(0);
    const CLoadedModule settings(LoadLibraryW((m_built / L"VloSet.dll").c_str()));
    const plugin_t plugin;
    std::vector<hookedFunction_t> functions;
    for (const auto& [name, kinds] : shownKinds)
        functions.push_back({name});
    const importHooks_t own(GetModuleHandleW(L"VLOnlineIDs.dll"), functions, note);
    const importHooks_t settingsSet(settings.get(), {{"RegGetValueW"}, {"RegSetValueExW"}}, note);
    static DWORD passed = 0; // milliseconds, more than a look at the switch waits for
    const importPatch_t ticks(GetModuleHandleW(L"VLOnlineIDs.dll"), "GetTickCount",
                              reinterpret_cast<void*>(+[] { return GetTickCount() + passed; }));
    const auto turn = [&](DWORD on) {
        setTracing(on);
        passed += 40000;
        callAndFail(plugin);
    };
    std::string all;
    std::set<std::string> before;
    for (const std::string name : {"creation", "information", "backup", "restore", "pluginData",
                                   "status", "notification", "registration", "tracing"}) {
        seen.clear();
        if (name == "tracing")
            turn(1), turn(0);
        else
            EXPECT_EQ(S_OK, run(plugin, name).statuses[0]) << name;
        all += name + ":\n";
        for (const std::string& line : seen)
            if (before.insert(line).second)
                all += ' ' + line + '\n';
    }
    EXPECT_EQ(expected(L"CALLS"), all);
}

} // namespace
