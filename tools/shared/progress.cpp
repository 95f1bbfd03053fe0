#include "shared/progress.h"

#include "shared/terminal.h"

#include <iostream>
#include <string>

namespace {

constexpr std::chrono::seconds patience(1);
constexpr std::chrono::milliseconds pace(100);

} // namespace

CProgress::CProgress(const char* what, uint64_t total)
    : m_what(what),
      m_total(total),
      m_silent(isQuiet() || !isTerminal(std::cerr)),
      m_next(std::chrono::steady_clock::now() + patience)
{}

CProgress::~CProgress()
{
    if (m_shown)
        std::cerr << '\r' << std::string(60, ' ') << '\r' << std::flush;
}

void CProgress::Step(uint64_t count)
{
    m_done += count;
    if (m_silent)
        return;
    const auto now = std::chrono::steady_clock::now();
    if (now < m_next)
        return;
    m_shown = true;
    m_next = now + pace;
    std::cerr << '\r' << m_what << ": " << m_done << " of " << m_total << std::flush;
}
