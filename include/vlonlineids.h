#pragma once

// The interfaces, identifiers and property ids of VLOnlineIDs.dll, for hosts in C++17 and later.
// VLONLINEIDSLib.idl says the same for other languages. Every operation may be called on any
// thread, in any order, any number of times.

#include <windows.h>
#include <oaidl.h>
#include <unknwn.h>

// One compiler takes an interface's identifier in its declaration, the other one after it.
#ifdef _MSC_VER
#define VLONLINEIDS_UUID(identifier) __declspec(uuid(identifier)) __declspec(novtable)
#else
#define VLONLINEIDS_UUID(identifier)
#endif

namespace VLONLINEIDSLib {

// The component class, {42F9948B-B690-4325-A073-63A8BF31FF32}.
inline constexpr GUID CLSID_CVLKTPages = {
    0x42F9948B, 0xB690, 0x4325, {0xA0, 0x73, 0x63, 0xA8, 0xBF, 0x31, 0xFF, 0x32}};

// Property ids of the plug-in, for IVLKTElementUI::GetProperty.
inline constexpr ULONG propertyName = 1;         // VT_BSTR
inline constexpr ULONG propertyIconLocation = 2; // VT_BSTR: branding DLL's path, comma, icon number
inline constexpr ULONG propertyFixedName = 3;    // VT_BSTR: "Password Manager" in every language
inline constexpr ULONG propertyDescription = 4;  // VT_BSTR
inline constexpr ULONG propertyKind = 8;         // VT_UI4: 2
inline constexpr ULONG propertySecurityLevel = 100; // VT_I4: 0 to 4
inline constexpr ULONG propertyExplanation = 101;   // VT_BSTR
inline constexpr ULONG propertyNotifications = 103; // VT_ARRAY of VT_VARIANT: IVLKTElementUI

// Property and command ids of a notification; 100 and 101 as above.
inline constexpr ULONG notificationCaption = 3; // get, VT_BSTR
inline constexpr ULONG notificationShown = 6;   // get, VT_BOOL; not at level 1
inline constexpr ULONG notificationActions = 9; // get, VT_ARRAY of VT_VARIANT; levels 1 and 2 only
inline constexpr LONG commandSetShown = 2;      // set, VT_BOOL
inline constexpr LONG commandOpenConsole = 100; // set, value ignored

struct VLONLINEIDS_UUID("B437C14F-1012-417E-A127-55C84CC0B16F") IVLKTPages : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE AddPages() = 0;
};

struct VLONLINEIDS_UUID("94B2C874-B9DB-4149-B100-3675207B3723") IVLKTElementUI : public IUnknown {
    // The caller owns what comes back. 0x80070648 for an unknown id, 0x80070032 for a property that
    // a notification does not have at its level. A refusal has cleared the plug-in's value; a
    // notification's is as the caller passed it.
    virtual HRESULT STDMETHODCALLTYPE GetProperty(ULONG id, VARIANT* value) = 0;
    // Of a notification; the plug-in itself has nothing to set, E_NOTIMPL.
    virtual HRESULT STDMETHODCALLTYPE SetProperty(LONG id, VARIANT* value) = 0;
};

struct VLONLINEIDS_UUID("63DA27C4-8119-4914-A6F6-901B85848A83") IVLKSecurityStatus
    : public IUnknown {
    // text: the caller's, and filled also when the result is a failure
    virtual HRESULT STDMETHODCALLTYPE GetStatus(ULONG* status, BSTR* text) = 0;
};

struct VLONLINEIDS_UUID("8DCEF2E1-863A-40BD-B386-5E64D4D080AE") IVLKTPluginInfo : public IUnknown {
    // id 0: the class identifier as text in braces. value must not be null.
    virtual HRESULT STDMETHODCALLTYPE GetInfo(ULONG id, VARIANT* value) = 0;
};

struct VLONLINEIDS_UUID("F203734C-BB33-4E09-9EC9-EC485DD23B14") IVLKTDisableApp : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetStatus(ULONG* status) = 0;
    virtual HRESULT STDMETHODCALLTYPE DisableLocal(ULONG disable) = 0;
};

struct VLONLINEIDS_UUID("EE919550-8B02-40BB-825E-F6AD1733E3F3") IVLKTTraySubscribe
    : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Subscribe() = 0;
};

// Reached through IVLKTBackupRestore2 alone: the object does not answer for it.
struct VLONLINEIDS_UUID("6A0C3B8E-5B57-4E0D-9F3C-0B6C4E4F7A21") IVLKTBackupRestore
    : public IUnknown {
    // secretNames: VT_ARRAY | VT_BSTR; storageData: VT_ARRAY | VT_UI1, the bytes of a backup.
    // Returns S_OK also when the backup failed; an output that wasn't filled is as the caller
    // passed it.
    virtual HRESULT STDMETHODCALLTYPE GetStorageData(VARIANT* secretNames,
                                                     VARIANT* storageData) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetStorageData(VARIANT* storageData) = 0;
};

struct VLONLINEIDS_UUID("AF086E5D-67C5-425E-B215-63BD8717610A") IVLKTBackupRestore2
    : public IVLKTBackupRestore {
    // flags go to the agent as they are: the high word and the low word.
    virtual HRESULT STDMETHODCALLTYPE SetStorageData2(ULONG flags, VARIANT* storageData) = 0;
};

struct VLONLINEIDS_UUID("C8AE6F28-53BD-4287-8819-A4BD1710A54C") IVLKTBackupRestore3
    : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetStorageData(VARIANT* secretNames,
                                                     VARIANT* storageData) = 0;
    // secrets may be null with size 0. Blocks until the agent, if it runs, has acknowledged.
    virtual HRESULT STDMETHODCALLTYPE SetPluginData(ULONG secretsSize, const BYTE* secrets,
                                                    ULONG storageSize, const BYTE* storage) = 0;
};

} // namespace VLONLINEIDSLib

#undef VLONLINEIDS_UUID

#ifndef _MSC_VER
__CRT_UUID_DECL(VLONLINEIDSLib::IVLKTPages, 0xB437C14F, 0x1012, 0x417E, 0xA1, 0x27, 0x55, 0xC8,
                0x4C, 0xC0, 0xB1, 0x6F)
__CRT_UUID_DECL(VLONLINEIDSLib::IVLKTElementUI, 0x94B2C874, 0xB9DB, 0x4149, 0xB1, 0x00, 0x36, 0x75,
                0x20, 0x7B, 0x37, 0x23)
__CRT_UUID_DECL(VLONLINEIDSLib::IVLKSecurityStatus, 0x63DA27C4, 0x8119, 0x4914, 0xA6, 0xF6, 0x90,
                0x1B, 0x85, 0x84, 0x8A, 0x83)
__CRT_UUID_DECL(VLONLINEIDSLib::IVLKTPluginInfo, 0x8DCEF2E1, 0x863A, 0x40BD, 0xB3, 0x86, 0x5E, 0x64,
                0xD4, 0xD0, 0x80, 0xAE)
__CRT_UUID_DECL(VLONLINEIDSLib::IVLKTDisableApp, 0xF203734C, 0xBB33, 0x4E09, 0x9E, 0xC9, 0xEC, 0x48,
                0x5D, 0xD2, 0x3B, 0x14)
__CRT_UUID_DECL(VLONLINEIDSLib::IVLKTTraySubscribe, 0xEE919550, 0x8B02, 0x40BB, 0x82, 0x5E, 0xF6,
                0xAD, 0x17, 0x33, 0xE3, 0xF3)
__CRT_UUID_DECL(VLONLINEIDSLib::IVLKTBackupRestore, 0x6A0C3B8E, 0x5B57, 0x4E0D, 0x9F, 0x3C, 0x0B,
                0x6C, 0x4E, 0x4F, 0x7A, 0x21)
__CRT_UUID_DECL(VLONLINEIDSLib::IVLKTBackupRestore2, 0xAF086E5D, 0x67C5, 0x425E, 0xB2, 0x15, 0x63,
                0xBD, 0x87, 0x17, 0x61, 0x0A)
__CRT_UUID_DECL(VLONLINEIDSLib::IVLKTBackupRestore3, 0xC8AE6F28, 0x53BD, 0x4287, 0x88, 0x19, 0xA4,
                0xBD, 0x17, 0x10, 0xA5, 0x4C)
#endif
