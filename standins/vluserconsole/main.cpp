// VLUserConsole.exe: the console that a notification opens. It shows what it was started with, and
// logs it.
//
// Exit status: 0; 1 if the log couldn't be written; 2 for a command line that can't be followed

#include "common/text.h"
#include "vluserconsole/consoleids.h"
#include "vluserconsole/launch.h"

#include <windows.h>

#include <string>

namespace {

constexpr wchar_t passwordManager[] = L"{42F9948B-B690-4325-A073-63A8BF31FF32}";

struct shown_t {
    const launch_t& launch;
    const std::wstring& problem; // empty if there is none
};

std::wstring heading(const launch_t& launch)
{
    if (launch.plugin == passwordManager)
        return L"Password Manager";
    return launch.target.empty() ? L"Overview" : L"Another plug-in";
}

void fill(HWND dialog, const shown_t& shown)
{
    const launch_t& launch = shown.launch;
    const auto icon = LoadImageW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(IDI_CONSOLE),
                                 IMAGE_ICON, 0, 0, LR_DEFAULTSIZE | LR_SHARED);
    SendMessageW(dialog, WM_SETICON, ICON_BIG, reinterpret_cast<LPARAM>(icon));
    SendMessageW(dialog, WM_SETICON, ICON_SMALL, reinterpret_cast<LPARAM>(icon));
    const auto introduction = !shown.problem.empty()  ? shown.problem
                              : launch.target.empty() ? L"The console was started without a target."
                                                      : L"The dashboard asked for this page.";
    const struct {
        int control;
        std::wstring text;
    } texts[] = {
        {IDC_HEADING, heading(launch)}, {IDC_INTRODUCTION, introduction},
        {IDC_PLUGIN, launch.plugin},    {IDC_PAGE, launch.page},
        {IDC_ITEM, launch.item},        {IDC_COMMAND_LINE, launch.commandLine},
        {IDC_LOG, launch.log},
    };
    for (const auto& [control, text] : texts)
        SetDlgItemTextW(dialog, control, text.c_str());
}

INT_PTR CALLBACK dialogProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_INITDIALOG:
        fill(dialog, *reinterpret_cast<const shown_t*>(lParam));
        SetFocus(GetDlgItem(dialog, IDOK));
        return FALSE; // the focus is where it should be
    case WM_COMMAND:
        if (LOWORD(wParam) != IDOK && LOWORD(wParam) != IDCANCEL)
            return FALSE;
        EndDialog(dialog, 0);
        return TRUE;
    default:
        return FALSE;
    }
}

// complain reaches those who started the console from a terminal; a window shows the same line.
void complain(const std::wstring& problem)
{
    const std::string line = "VLUserConsole: " + utf8FromWide(problem) + "\n";
    DWORD written = 0;
    WriteFile(GetStdHandle(STD_ERROR_HANDLE), line.data(), static_cast<DWORD>(line.size()),
              &written, nullptr);
}

} // namespace

int WINAPI wWinMain(HINSTANCE instance, HINSTANCE, PWSTR, int)
{
    const launch_t launch = readLaunch();
    int status = 0;
    std::wstring problem = launch.complaint;
    if (!problem.empty()) {
        status = 2;
    } else if (const DWORD error = writeLog(launch)) {
        status = 1;
        problem = L"The log can't be written (error " + std::to_wstring(error) +
                  L"): give another file with --log.";
    }
    if (!problem.empty())
        complain(problem);
    const shown_t shown = {launch, problem};
    if (launch.window && DialogBoxParamW(instance, MAKEINTRESOURCEW(IDD_CONSOLE), nullptr,
                                         dialogProcedure, reinterpret_cast<LPARAM>(&shown)) < 0) {
        complain(L"no window can be opened here (error " + std::to_wstring(GetLastError()) +
                 L"): use --no-window");
        status = status ? status : 1;
    }
    return status;
}
