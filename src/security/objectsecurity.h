#pragma once

#include "atl/security.h"

#include <windows.h>

#include <cstdint>
#include <string>

// Who may reach the objects and folders that are shared across accounts and integrity levels: any
// authenticated user, processes of low integrity and processes in application containers are let in
// on purpose.

// sharedObjectSecurity_t is what a create call is given. It must not be moved: attributes points
// into it.
struct sharedObjectSecurity_t {
    SECURITY_ATTRIBUTES attributes{};
    ATL::CSecurityDesc descriptor;
    bool valid = false; // the whole construction succeeded; a create call must not go on without it

    sharedObjectSecurity_t() = default;
    sharedObjectSecurity_t(const sharedObjectSecurity_t&) = delete;
    sharedObjectSecurity_t& operator=(const sharedObjectSecurity_t&) = delete;
};

// initMappingSecurity and initSemaphoreSecurity fill security for one kind of object. Owner and
// primary group are those of the process.
//
// Returns: security itself
// Errors:  raise nothing; a failure leaves valid unset, is traced as "SA", becomes the last error
sharedObjectSecurity_t& initMappingSecurity(sharedObjectSecurity_t& security);
sharedObjectSecurity_t& initSemaphoreSecurity(sharedObjectSecurity_t& security);

// applyLowLabel labels a kernel object with low integrity, so that processes of low integrity may
// write to it. A failure is traced; systems before 6.0 know no labels.
void applyLowLabel(HANDLE object);

// addAppContainerAce adds an allowed-access entry for all application packages to list, on systems
// from 6.2 on.
//
// flags:   of the entry, such as CONTAINER_INHERIT_ACE
// Returns: whether an entry was added. Not if list has one already, and not if the caller itself
//          lives in a container, by its impersonation token or else by its process.
bool addAppContainerAce(ATL::CDacl& list, uint32_t mask, BYTE flags);

// allowapppackages gives application packages read and execute on a file or folder.
//
// Returns: nonzero when an entry was added; 0 on failure, and when the path had the entry already
// Errors:  sets the thread's last error
DWORD allowapppackages(const std::wstring& path);

// securityToString gives a descriptor in string form, with all parts, for tracing; empty on
// failure.
std::wstring securityToString(const SECURITY_DESCRIPTOR* descriptor);
