#pragma once

#include "common/scoped.h"

#include <objbase.h>

namespace VLKT_SDK {

// CTaskText owns a text that the component model gave.
struct taskText {
    using value_type = LPOLESTR;
    static LPOLESTR empty() noexcept { return nullptr; }
    static void close(LPOLESTR text) noexcept { CoTaskMemFree(text); }
};
using CTaskText = CScoped<taskText>;

// CRegistrarBase holds the root of the dashboard's plug-in tree while components are put in or
// taken out.
class CRegistrarBase
{
public:
    virtual ~CRegistrarBase() = default; // closes the root
    CRegistrarBase(const CRegistrarBase&) = delete;
    CRegistrarBase& operator=(const CRegistrarBase&) = delete;

    HRESULT Status() const noexcept { return m_status; }

protected:
    CRegistrarBase() noexcept = default;

    CRegistryKey m_root;
    HRESULT m_status = S_OK; // 0 until something fails
};

// CRegisterComponents puts a class into the tree under roles.
class CRegisterComponents : public CRegistrarBase
{
public:
    CRegisterComponents() noexcept; // makes the root if it is missing
    virtual HRESULT PrepareComponent(REFCLSID clsid, const wchar_t* path);

    // RegisterComponent makes the key of one role and class, with the DLL's path and the versions
    // of the shell that it is for.
    //
    // Returns: the first failure's status; a failure to write the shell's versions is ignored
    HRESULT RegisterComponent(const wchar_t* role, const wchar_t* classId,
                              const wchar_t* path) noexcept;
};

// CUnregisterComponents takes a class out of the tree again.
class CUnregisterComponents : public CRegistrarBase
{
public:
    CUnregisterComponents() noexcept;
    virtual HRESULT UnregisterSubkey(const wchar_t* basePath, const wchar_t* subPath,
                                     REFCLSID clsid);
    virtual HRESULT UnregisterComponent(const wchar_t* role, REFCLSID clsid);

    // RemoveKeyChain deletes the key of both parts, then its parents for as long as they have no
    // subkeys. Values don't count, and the root stays.
    virtual HRESULT RemoveKeyChain(const wchar_t* first, const wchar_t* second);
};

} // namespace VLKT_SDK
