#include "progress.h"

#include <windows.h>

#include <iostream>
#include <string>

CProgress::CProgress(const char* what, size_t total) : m_what(what), m_total(total)
{
    DWORD mode = 0;
    m_terminal = GetConsoleMode(GetStdHandle(STD_ERROR_HANDLE), &mode) != 0;
}

CProgress::~CProgress()
{
    if (m_terminal && m_shown != decltype(m_shown)())
        std::cerr << '\r' << std::string(40, ' ') << '\r' << std::flush;
}

void CProgress::Step()
{
    ++m_done;
    const auto now = std::chrono::steady_clock::now();
    if (!m_terminal || now - m_shown < std::chrono::milliseconds(100))
        return;
    m_shown = now;
    std::cerr << '\r' << m_what << ": " << m_done << " of " << m_total << std::flush;
}
