#include "tracecore/realtracer.h"

#include "atl/security.h"
#include "tracecore/tracer.h"

#include <mutex>

namespace tracecore {

namespace {

// The mutex has a name of its own in each process, which a tool can look up, and lets every user
// in, since those who call into one process may be different ones.
CKernelHandle makeWritersMutex() noexcept
{
    try {
        const std::wstring name =
            formatWide(L"Global\\%s_%04X", L"VLMAX_tracemutex", GetCurrentProcessId());
        ATL::CSecurityDesc descriptor = ATL::ProcessDescriptor();
        ATL::CDacl list;
        list.AddAllowedAce(ATL::CSid(5, {SECURITY_AUTHENTICATED_USER_RID}), GENERIC_ALL, 0);
        list.AddAllowedAce(ATL::CSid(5, {SECURITY_LOCAL_SYSTEM_RID}), GENERIC_ALL, 0);
        list.AddAllowedAce(ATL::CSid(5, {SECURITY_BUILTIN_DOMAIN_RID, DOMAIN_ALIAS_RID_ADMINS}),
                           GENERIC_ALL, 0);
        list.AddAllowedAce(ATL::CSid(5, {SECURITY_BUILTIN_DOMAIN_RID, DOMAIN_ALIAS_RID_USERS}),
                           GENERIC_ALL, 0);
        descriptor.SetDacl(list);
        SECURITY_DESCRIPTOR raw = *descriptor.GetPSECURITY_DESCRIPTOR();

        SECURITY_ATTRIBUTES attributes = {sizeof attributes, &raw, FALSE};
        CKernelHandle mutex(CreateMutexW(&attributes, FALSE, name.c_str()));
        if (!mutex && GetLastError() == ERROR_ACCESS_DENIED)
            mutex.reset(OpenMutexW(GENERIC_READ, FALSE, name.c_str()));
        return mutex;
    } catch (...) { // works without it
        return {};
    }
}

} // namespace

sinkHolder_t::pointer sinkHolder_t::load() noexcept
{
    const std::lock_guard guard(m_lock);
    return m_sink;
}

sinkHolder_t::pointer sinkHolder_t::exchange(pointer next) noexcept
{
    const std::lock_guard guard(m_lock);
    m_sink.swap(next);
    return next;
}

tracer_t::tracer_t() : mutex(makeWritersMutex()) {}

realTracer_t::realTracer_t()
{
    pollConfiguration(*this);
}

realTracer_t::~realTracer_t()
{
    traceState().sink.clear();
    traceState().sinkKind = sinkNone;
}

} // namespace tracecore
