#include "vlagent/link.h"

#include "agent/discovery.h"
#include "common/text.h"
#include "neighbours/linknames.h"
#include "security/objectsecurity.h"
#include "vlagent/secretstore.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr const LinkNames& names = linkSets[linkNipc];

// The store takes no more than 1 MiB of UTF-16, which is at most this much UTF-8.
constexpr size_t maximumValue = 0x180000;

// How long an agent that ends waits for a client that is inside. A client that died there never
// leaves.
constexpr DWORD leaveTimeout = 5000;

struct request_t {
    RequestHeader header{};
    std::optional<std::string> name; // none when it isn't terminated within the buffer
};

// The buffer is copied once: its client could change it while it is being checked.
request_t readRequest(const void* view)
{
    std::vector<char> bytes(names.bufferSize);
    std::memcpy(bytes.data(), view, bytes.size());
    request_t request;
    std::memcpy(&request.header, bytes.data(), sizeof request.header);
    const auto first = bytes.begin() + sizeof request.header;
    const auto end = std::find(first, bytes.end(), '\0');
    if (end != bytes.end())
        request.name.emplace(first, end);
    return request;
}

// payload_t is the payload block. What the client gave is wiped when it goes, and no sooner: an
// agent that dies before leaves it to the next one.
struct payload_t {
    payload_t() : m_block{CKernelHandle(OpenFileMappingW(FILE_MAP_WRITE, FALSE, names.payload)), {}}
    {
        m_block.view.reset(MapViewOfFile(m_block.handle.get(), FILE_MAP_WRITE, 0, 0, 0));
        m_size = std::min(sharedBlockSize(m_block.view.get()), maximumValue + 1);
    }
    ~payload_t() { SecureZeroMemory(m_block.view.get(), m_size); }
    payload_t(const payload_t&) = delete;
    payload_t& operator=(const payload_t&) = delete;

    // read gives the value.
    //
    // Returns: null, or why there is none
    const char* read(std::string& value) const
    {
        if (!m_block.handle)
            return "payload block missing";
        if (m_size == 0)
            return "payload block can't be read";
        const auto first = static_cast<const char*>(m_block.view.get());
        const auto end = static_cast<const char*>(std::memchr(first, 0, m_size));
        if (!end)
            return "payload not terminated or too long";
        value.assign(first, end);
        return nullptr;
    }

private:
    mappedBlock_t m_block;
    size_t m_size = 0;
};

bool isUtf8(std::string_view text)
{
    return text.empty() || MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(),
                                               static_cast<int>(text.size()), nullptr, 0) > 0;
}

// check reads the value, and says why a request is refused; null for a good one.
const char* check(const request_t& request, const payload_t& payload, std::string& value)
{
    const char* const noPayload = payload.read(value);
    if (request.header.command != commandRestoreSecret)
        return "unknown command";
    if (request.header.message != restore2DoneMessage())
        return "unknown message";
    if (!request.name)
        return "name not terminated";
    if (!isUtf8(*request.name))
        return "name is not UTF-8";
    if (noPayload)
        return noPayload;
    if (!isUtf8(value))
        return "payload is not UTF-8";
    if (request.name->empty() && !value.empty())
        return "value without a name";
    return nullptr;
}

} // namespace

const wchar_t* agentLink_t::open()
{
    sharedObjectSecurity_t waitable; // events have the same rights as semaphores, bit for bit
    if (!initSemaphoreSecurity(waitable).valid)
        return names.admission;
    m_objects.semaphore.reset(CreateSemaphoreW(&waitable.attributes, 1, 1, names.admission));
    if (!m_objects.semaphore)
        return names.admission;
    for (const linkEvent_t& event : linkEvents) {
        CKernelHandle& made = m_objects.*event.handle;
        made.reset(CreateEventW(&waitable.attributes, FALSE, FALSE, names.*event.name));
        if (!made)
            return names.*event.name;
        m_joined = GetLastError() == ERROR_ALREADY_EXISTS;
    }
    m_objects.buffer = createSharedBlock(names.buffer, names.bufferSize);
    if (sharedBlockSize(m_objects.buffer.view.get()) < names.bufferSize)
        return names.buffer;
    applyLowLabel(m_objects.semaphore.get());
    for (const linkEvent_t& event : linkEvents)
        applyLowLabel((m_objects.*event.handle).get());
    return nullptr;
}

void agentLink_t::run(HWND window, HANDLE stop, bool once)
{
    servePending(window);
    const HANDLE awaited[] = {m_objects.readyEvent.get(), stop};
    while (WaitForMultipleObjects(2, awaited, FALSE, INFINITE) == WAIT_OBJECT_0) {
        serve(window);
        if (once) {
            PostMessageW(window, WM_CLOSE, 0, 0);
            WaitForSingleObject(stop, INFINITE);
            break;
        }
    }
    leave(window);
}

// An earlier agent may have died over an exchange after taking its signal: its client still waits
// for an answer.
void agentLink_t::servePending(HWND window)
{
    if (!m_joined)
        return;
    const HANDLE awaited[] = {m_objects.readyEvent.get(), m_objects.semaphore.get()};
    switch (WaitForMultipleObjects(2, awaited, FALSE, 0)) {
    case WAIT_OBJECT_0:
        serve(window);
        break;
    case WAIT_OBJECT_0 + 1: // nobody is inside
        ReleaseSemaphore(m_objects.semaphore.get(), 1, nullptr);
        break;
    default: // somebody is: waiting for the answer, if the payload has been made
        if (const CKernelHandle payload{OpenFileMappingW(FILE_MAP_WRITE, FALSE, names.payload)})
            serve(window);
    }
}

// A client that is inside is answered first. The buffer is closed before the semaphore is free, so
// that the next client finds no agent and returns.
void agentLink_t::leave(HWND window)
{
    const HANDLE awaited[] = {m_objects.readyEvent.get(), m_objects.semaphore.get()};
    DWORD result = WAIT_OBJECT_0;
    while ((result = WaitForMultipleObjects(2, awaited, FALSE, leaveTimeout)) == WAIT_OBJECT_0)
        serve(window);
    closeSharedBlock(m_objects.buffer);
    if (result == WAIT_OBJECT_0 + 1)
        m_objects.held.reset(m_objects.semaphore.get());
    const agentConnection_t ended = std::move(m_objects);
}

void agentLink_t::serve(HWND window)
{
    exchange(window); // what the client gave is wiped by then
    SetEvent(m_objects.ackEvent.get());
}

void agentLink_t::exchange(HWND window)
{
    const request_t request = readRequest(m_objects.buffer.view.get());
    const payload_t payload;
    wipedText_t value;
    const char* const reason = check(request, payload, value.text);
    journalLine_t line("exchange");
    line.number("command", request.header.command)
        .number("client", request.header.processId)
        .number("window", request.header.window)
        .number("message", request.header.message);
    if (request.name)
        line.text("name", *request.name);
    line.number("bytes", value.text.size()).text("sha256", sha256Text(value.text));
    if (reason) {
        line.text("outcome", "refused").text("reason", reason);
    } else if (value.text.empty()) {
        line.text("outcome", "nothing to store"); // a restore without a secret leaves the old one
    } else {
        const LONG status = storeSecret(wideFromUtf8(*request.name), value.text);
        line.text("outcome", status == 0 ? "stored" : "failed")
            .number("status", static_cast<uint32_t>(status));
    }
    m_journal.write(line);
    if (!reason)
        PostMessageW(window, request.header.message, 0, 0);
}
