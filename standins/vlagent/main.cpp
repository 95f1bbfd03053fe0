#include "agent/discovery.h"
#include "common/scoped.h"
#include "common/text.h"
#include "journal/journal.h"
#include "neighbours/linknames.h"
#include "vlagent/link.h"

#include <windows.h>
#include <shellapi.h>

#include <cstdio>
#include <optional>
#include <string>
#include <thread>

namespace {

constexpr DWORD quitTimeout = 15000;

constexpr char usage[] =
    "usage: vlagent [--journal FILE] [--ready-event NAME] [--once]\n"
    "       vlagent --quit\n"
    "Stands in for the agent: takes over secrets and messages from the plug-in.\n"
    "  --journal FILE      append what is received to FILE, one JSON object a line\n"
    "  --ready-event NAME  set this event, which the caller has made, when up\n"
    "  --once              end after the first exchange\n"
    "  --quit              ask the running agent to end, and wait for it\n"
    "  --help              show this\n";

struct options_t {
    std::wstring journal;
    std::wstring readyEvent;
    bool once = false;
    bool quit = false;
    bool help = false;
};

int fail(const std::wstring& message)
{
    std::fprintf(stderr, "vlagent: %s\n", utf8FromWide(message).c_str());
    return 1;
}

std::wstring lastErrorText()
{
    return L" (error " + std::to_wstring(GetLastError()) + L")";
}

// Returns: none for words that can't be understood, after reporting them
std::optional<options_t> readOptions()
{
    int count = 0;
    wchar_t** const words = CommandLineToArgvW(GetCommandLineW(), &count);
    const CLocalMemory owner(words);
    options_t options;
    for (int i = 1; i < count; ++i) {
        const std::wstring word = words[i];
        if (word == L"--once") {
            options.once = true;
        } else if (word == L"--quit") {
            options.quit = true;
        } else if (word == L"--help") {
            options.help = true;
        } else if ((word == L"--journal" || word == L"--ready-event") && i + 1 < count) {
            (word == L"--journal" ? options.journal : options.readyEvent) = words[++i];
        } else {
            fail(L"'" + word + L"' is unknown or lacks its value; see --help");
            return std::nullopt;
        }
    }
    return options;
}

int quitRunningAgent()
{
    HWND window = findAgentWindow();
    if (!window)
        return fail(L"no agent is running");
    DWORD processId = 0;
    GetWindowThreadProcessId(window, &processId);
    const CKernelHandle process(OpenProcess(SYNCHRONIZE, FALSE, processId));
    if (!process || !PostMessageW(window, WM_CLOSE, 0, 0))
        return fail(L"the running agent can't be reached" + lastErrorText());
    if (WaitForSingleObject(process.get(), quitTimeout) != WAIT_OBJECT_0)
        return fail(L"the running agent was asked to end, but is still there");
    return 0;
}

LRESULT CALLBACK windowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    const auto journal =
        reinterpret_cast<const journal_t*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (journal && (message == restoreDoneMessage() || message == restore2DoneMessage())) {
        const bool first = message == restoreDoneMessage();
        journal->write(journalLine_t("message")
                           .text("name", utf8FromWide(first ? restoreDoneName : restore2DoneName))
                           .number("wParam", wParam)
                           .number("lParam", static_cast<uint64_t>(lParam)));
        return 0;
    }
    if (message == WM_DESTROY) {
        PostQuitMessage(0);
        return 0;
    }
    return DefWindowProcW(window, message, wParam, lParam); // WM_CLOSE destroys the window
}

HWND makeWindow(const journal_t& journal)
{
    WNDCLASSEXW windowClass{};
    windowClass.cbSize = sizeof windowClass;
    windowClass.lpfnWndProc = windowProcedure;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.lpszClassName = agentWindowName;
    if (!RegisterClassExW(&windowClass))
        return nullptr;
    // Top-level though never shown: a message-only window wouldn't be found.
    HWND window = CreateWindowExW(0, agentWindowName, agentWindowName, WS_OVERLAPPED, 0, 0, 0, 0,
                                  nullptr, nullptr, windowClass.hInstance, nullptr);
    if (window)
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(&journal));
    return window;
}

int runAgent(const options_t& options)
{
    const CKernelHandle instance(CreateMutexW(nullptr, FALSE, L"VLAgent.Instance"));
    if (!instance || GetLastError() == ERROR_ALREADY_EXISTS)
        return fail(L"an agent is running already; end it with vlagent --quit");
    CKernelHandle ready;
    if (!options.readyEvent.empty()) {
        ready.reset(OpenEventW(EVENT_MODIFY_STATE, FALSE, options.readyEvent.c_str()));
        if (!ready)
            return fail(L"the event '" + options.readyEvent + L"' can't be opened" +
                        lastErrorText() + L"; the caller makes it");
    }
    journal_t journal;
    if (!options.journal.empty() && !journal.open(options.journal))
        return fail(L"the journal '" + options.journal + L"' can't be written" + lastErrorText());
    agentLink_t link(journal);
    if (const wchar_t* const object = link.open())
        return fail(std::wstring(L"the object '") + object + L"' can't be made" + lastErrorText() +
                    L"; another program may have its name");
    // Last, so that a client that finds the window finds the objects too.
    HWND window = makeWindow(journal);
    if (!window)
        return fail(L"no window can be made" + lastErrorText() +
                    L"; under Wine, set the graphics driver to null");
    const CKernelHandle stop(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    if (!stop)
        return fail(L"an event can't be made" + lastErrorText());

    journal.write(journalLine_t("started")
                      .number("process", GetCurrentProcessId())
                      .number("window", reinterpret_cast<uintptr_t>(window)));
    // Of its own, so that posted messages are answered while an exchange runs.
    std::thread worker([&] { link.run(window, stop.get(), options.once); });
    if (ready)
        SetEvent(ready.get());
    std::puts("vlagent: ready");
    std::fflush(stdout);

    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0)
        DispatchMessageW(&message);
    SetEvent(stop.get());
    worker.join();
    journal.write(journalLine_t("ended"));
    return 0;
}

} // namespace

int main()
{
    const std::optional<options_t> options = readOptions();
    if (!options)
        return 2;
    if (options->help) {
        std::fputs(usage, stdout);
        return 0;
    }
    return options->quit ? quitRunningAgent() : runAgent(*options);
}
