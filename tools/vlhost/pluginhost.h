#pragma once

#include "common/scoped.h"
#include "vlonlineids.h"

#include <windows.h>

#include <string>

// CInterface holds one reference to an interface.
template <class Interface> struct interfaceReference {
    using value_type = Interface*;
    static Interface* empty() noexcept { return nullptr; }
    static void close(Interface* object) noexcept { object->Release(); }
};
template <class Interface> using CInterface = CScoped<interfaceReference<Interface>>;

// CPluginHost is the plug-in as a dashboard uses it: found in the registry and loaded, with one
// object made. Every failure is a CToolError with a hint.
class CPluginHost
{
public:
    // path: UTF-8; empty finds the plug-in in the dashboard's registry tree
    explicit CPluginHost(const std::string& path);

    const std::wstring& Path() const noexcept { return m_path; }
    IUnknown* Object() const noexcept { return m_object.get(); }

    // Get asks the object for an interface; a refusal is an error.
    template <class Interface> CInterface<Interface> Get() const
    {
        CInterface<Interface> found;
        Query(__uuidof(Interface), reinterpret_cast<void**>(found.put()));
        return found;
    }

private:
    void Query(REFIID iid, void** out) const;

    std::wstring m_path;
    CLoadedModule m_library; // outlives the object
    CInterface<IUnknown> m_object;
};

// registeredPluginPath reads where a dashboard finds the plug-in.
//
// Errors: CToolError when it isn't registered
std::wstring registeredPluginPath();

// registeredPluginPath of a role, such as TrayIcon, is empty without one.
std::wstring registeredPluginPath(const wchar_t* role);

// loadPlugin loads the plug-in's DLL without making an object.
//
// Errors: CToolError
CLoadedModule loadPlugin(const std::wstring& path);
