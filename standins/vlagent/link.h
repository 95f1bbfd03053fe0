#pragma once

#include "agent/transfer.h"
#include "journal/journal.h"

#include <windows.h>

// agentLink_t is the agent's end of the link: it makes the four named objects that clients need,
// and answers their requests.
class agentLink_t
{
public:
    // journal: outlives the link
    explicit agentLink_t(const journal_t& journal) noexcept : m_journal(journal) {}
    agentLink_t(const agentLink_t&) = delete;
    agentLink_t& operator=(const agentLink_t&) = delete;

    // open makes the objects, or joins those that a client of an earlier agent still holds.
    //
    // Returns: null, or the name of the object that couldn't be made, with the last error set
    const wchar_t* open();

    // run answers requests until stop is set. Every exchange is journalled and acknowledged,
    // refused ones too; what the client gave is stored, journalled and wiped before the
    // acknowledgement, so that a client that returns finds it there. Each accepted message is
    // posted to window.
    //
    // once: end after the first exchange
    void run(HWND window, HANDLE stop, bool once);

private:
    void serve(HWND window);
    void exchange(HWND window);
    void servePending(HWND window);
    void leave(HWND window);

    const journal_t& m_journal;
    agentConnection_t m_objects; // the semaphore is a client's to take
    bool m_joined = false;       // the events were there before
};
