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

// readPayload takes the value out of the payload block and wipes it there.
//
// Returns: null, or why there is no value
const char* readPayload(std::string& value)
{
    mappedBlock_t block{CKernelHandle(OpenFileMappingW(FILE_MAP_WRITE, FALSE, names.payload)), {}};
    if (!block.handle)
        return "payload block missing";
    block.view.reset(MapViewOfFile(block.handle.get(), FILE_MAP_WRITE, 0, 0, 0));
    const auto first = static_cast<char*>(block.view.get());
    const size_t size = std::min(sharedBlockSize(first), maximumValue + 1);
    const char* const end = size ? static_cast<char*>(std::memchr(first, 0, size)) : nullptr;
    if (end)
        value.assign(first, static_cast<size_t>(end - first));
    SecureZeroMemory(first, size);
    if (size == 0)
        return "payload block can't be read";
    return end ? nullptr : "payload not terminated or too long";
}

bool isUtf8(std::string_view text)
{
    return text.empty() || MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(),
                                               static_cast<int>(text.size()), nullptr, 0) > 0;
}

// check says why a request is refused; null for a good one. The value is taken in any case, so that
// it doesn't stay in the block.
const char* check(const request_t& request, std::string& value)
{
    const char* const noPayload = readPayload(value);
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
    const request_t request = readRequest(m_objects.buffer.view.get());
    wipedText_t value;
    const char* const reason = check(request, value.text);
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
    SetEvent(m_objects.ackEvent.get());
}
