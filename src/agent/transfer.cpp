#include "agent/transfer.h"

#include "common/status.h"
#include "tracecore/tracer.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <stdexcept>

using namespace tracecore;

namespace {

// The text may fill the block to its last byte, with the zero.
bool holdsText(const void* view, size_t offset, const std::string& text)
{
    const size_t size = sharedBlockSize(view);
    return offset < size && text.size() < size - offset;
}

void writeText(void* view, size_t offset, const std::string& text)
{
    std::memcpy(static_cast<char*>(view) + offset, text.c_str(), text.size() + 1);
}

} // namespace

bool agentConnection_t::isComplete() const noexcept
{
    return semaphore && buffer.handle && buffer.view &&
           std::ranges::all_of(linkEvents, [this](const linkEvent_t& event) {
               return static_cast<bool>(this->*event.handle);
           });
}

bool sendToAgent(HWND window, uint32_t message, const std::string& name, const std::string& body)
{
    if (name.empty() && body.empty()) {
        traceNote("invalid data to send");
        return false;
    }
    agentTransfer_t transfer;
    transfer.window = window;
    transfer.message = message;
    transfer.name = name;
    transfer.body = body;
    transfer.names = linkSets[linkNipc];
    _callserverprocess(transfer.names, transfer);
    return true; // also when nothing arrived: it says only that the data was fit to send. Intended.
}

void _callserverprocess(const LinkNames& names, agentTransfer_t& transfer)
{
    agentConnection_t connection;
    connectToAgent(names, connection);
    if (!connection.isComplete())
        return;
    transfer.buffer = connection.buffer.view.get();
    while (transfer.remaining > 0) {
        try {
            fillRequestBlock(transfer);
        } catch (...) {
            traceNote("_callserverprocess");
            break;
        }
        SetEvent(connection.readyEvent.get());
        if (WaitForSingleObject(connection.ackEvent.get(), INFINITE) != WAIT_OBJECT_0) {
            traceNote("cannot transfer the rest from client");
            break;
        }
    }
    transfer.buffer = nullptr;
    closeSharedBlock(transfer.payload); // before the next client may come in
}

void connectToAgent(const LinkNames& names, agentConnection_t& connection)
{
    if (!connection.semaphore)
        connection.semaphore = openLinkSemaphore(names.admission);
    if (!connection.semaphore) {
        traceStatus("Create Semaphore failed", statusFromError(GetLastError()));
        return;
    }
    const DWORD result = WaitForSingleObject(connection.semaphore.get(), INFINITE);
    if (result != WAIT_OBJECT_0) {
        const HRESULT status = statusFromError(GetLastError());
        traceStatusW(formatWide(L"WaitForSingleObject = %0x on Semaphore", result), status);
        return;
    }
    connection.held.reset(connection.semaphore.get());
    connection.buffer = openSharedBlock(names.buffer);
    if (!connection.buffer.handle || !connection.buffer.view)
        return;
    for (const linkEvent_t& event : linkEvents)
        (connection.*event.handle).reset(OpenEventW(event.clientAccess, FALSE, names.*event.name));
    // After both opens: when both failed it is the later one's, and the first is named. Intended.
    const HRESULT status = statusFromError(GetLastError());
    const auto missing = std::ranges::find_if(
        linkEvents, [&](const linkEvent_t& event) { return !(connection.*event.handle); });
    if (missing != std::end(linkEvents))
        traceStatus(missing->missing, status);
}

void fillRequestBlock(agentTransfer_t& transfer)
{
    transfer.payload =
        createSharedBlock(transfer.names.payload, static_cast<uint32_t>(transfer.body.size() + 1));
    if (transfer.payload.handle && transfer.payload.view) {
        // Whoever took the payload's name first gave the block its size, and it stays.
        void* const payload = transfer.payload.view.get();
        if (holdsText(payload, 0, transfer.body) &&
            holdsText(transfer.buffer, sizeof(RequestHeader), transfer.name)) {
            const RequestHeader header{
                commandRestoreSecret, GetCurrentProcessId(),
                static_cast<uint32_t>(reinterpret_cast<uintptr_t>(transfer.window)),
                transfer.message};
            writeText(payload, 0, transfer.body);
            std::memcpy(transfer.buffer, &header, sizeof header);
            writeText(transfer.buffer, sizeof header, transfer.name);
            transfer.remaining = 0;
            return;
        }
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
    }
    traceStatus("IPC.CreateMMF.2VLA.savefile", statusFromError(GetLastError()));
    throw std::runtime_error("MMF.failed");
}
