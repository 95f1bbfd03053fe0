#include "storage/settings.h"

#include "common/guardedcall.h"
#include "common/module.h"
#include "common/scoped.h"
#include "common/status.h"
#include "formats/text/pathpart.h"
#include "neighbours/settingsprovider.h"
#include "storage/paths.h"
#include "tracecore/tracer.h"

#include <comdef.h>

#include <atomic>
#include <cstdlib>
#include <cwchar>
#include <memory>
#include <new>

namespace {

struct bstrtext {
    using value_type = BSTR;
    static BSTR empty() noexcept { return nullptr; }
    static void close(BSTR text) noexcept { SysFreeString(text); }
};
using CBstrText = CScoped<bstrtext>;

CBstrText bstrof(const std::wstring& text)
{
    CBstrText copy(SysAllocStringLen(text.data(), static_cast<UINT>(text.size())));
    if (!copy)
        raiseStatus(E_OUTOFMEMORY);
    return copy;
}

std::atomic<const SettingsProvider*> replacement{nullptr};
std::atomic<SettingsProvider*> loaded{nullptr}; // owns the module

void releaseprovider(SettingsProvider* provider)
{
    const std::unique_ptr<SettingsProvider> owned(provider);
    if (owned && owned->module)
        FreeLibrary(owned->module);
}

// Runs when this module ends, before its static objects go. The provider depends on no code of this
// module, so releasing it under the loader's lock only lowers its count; at the end of the process
// the loader ignores it.
void atmoduleend()
{
    releaseprovider(loaded.exchange(nullptr));
}

HMODULE loadprovider()
{
    const std::wstring first = bindir_file(L"VloSet.dll");
    if (HMODULE library = LoadLibraryW(first.c_str()))
        return library;
    // The whole first path is appended to the plug-in's folder. That is meant for the relative
    // "x64\VloSet.dll"; an absolute path makes no valid one here.
    const std::wstring own = moduleFileName(thisModule());
    return LoadLibraryW((std::wstring(folderPart(own)) + first).c_str());
}

SettingsCall findexport(HMODULE library, const char* name)
{
    return reinterpret_cast<SettingsCall>(reinterpret_cast<void*>(GetProcAddress(library, name)));
}

// Threads that meet at the first use each load the library; all but one release it again.
const SettingsProvider& provider()
{
    if (const SettingsProvider* inplace = replacement.load(std::memory_order_acquire))
        return *inplace;
    SettingsProvider* known = loaded.load(std::memory_order_acquire);
    if (known)
        return *known;
    auto made = std::make_unique<SettingsProvider>(settings_load());
    if (!loaded.compare_exchange_strong(known, made.get())) {
        releaseprovider(made.release());
        return *known;
    }
    std::atexit(atmoduleend);
    return *made.release();
}

HRESULT callprovider(SettingsCall SettingsProvider::*operation, BSTR key, void* value)
{
    SettingsRequest request{sizeof request, key, value};
    const SettingsCall call = provider().*operation;
    return call ? callGuarded(call, &request) : E_NOTIMPL;
}

template <class Operation> HRESULT statusof(const Operation& operation) noexcept
{
    try {
        return operation();
    } catch (const _com_error& error) {
        return error.Error();
    } catch (...) {
        return E_UNEXPECTED;
    }
}

} // namespace

SettingsProvider settings_load()
{
    CLoadedModule library(loadprovider());
    SettingsProvider made;
    if (library) {
        made.query = findexport(library.get(), "api_settings_query");
        made.set = findexport(library.get(), "api_settings_set");
        made.env = findexport(library.get(), "api_settings_env");
        made.diag = findexport(library.get(), "api_settings_diag");
        made.module = library.release();
    }
    return made;
}

const SettingsProvider* settings_replace(const SettingsProvider* provider) noexcept
{
    return replacement.exchange(provider);
}

HRESULT settings_query(const std::wstring& key, std::wstring& value)
{
    return statusof([&] {
        const CBstrText name = bstrof(key);
        BSTR answer = nullptr;
        const HRESULT status =
            statusof([&] { return callprovider(&SettingsProvider::query, name.get(), &answer); });
        if (FAILED(status)) // what a failed query may have left there is not ours
            return status;
        const CBstrText owner(answer);
        try {
            value.assign(answer ? answer : L"", SysStringLen(answer));
        } catch (const std::bad_alloc&) {
            return E_OUTOFMEMORY;
        }
        return status;
    });
}

HRESULT settings_set(const std::wstring& key, const std::wstring& value)
{
    const HRESULT status = statusof([&] {
        const CBstrText name = bstrof(key);
        const CBstrText text = bstrof(value);
        return callprovider(&SettingsProvider::set, name.get(), text.get());
    });
    if (status == HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND))
        tracecore::traceNoteW(tracecore::formatWide(L"INSTALLATION: cannot set '%s'", key.c_str()));
    else if (FAILED(status))
        tracecore::traceStatusW(tracecore::formatWide(L"cannot set '%s'", key.c_str()), status);
    return status;
}

std::wstring settings_getstring(const std::wstring& key, const std::wstring& defaultValue)
{
    std::wstring value;
    return FAILED(settings_query(key, value)) ? defaultValue : value;
}

std::wstring settings_getpath(const std::wstring& key)
{
    return settings_getstring(key, {});
}

bool settings_getbool(const std::wstring& key, bool defaultValue)
{
    std::wstring value;
    if (FAILED(settings_query(key, value)))
        return defaultValue;
    // A stored "0" counts as a failed read, so only a negative number is false against a default of
    // true.
    const long number = std::wcstol(value.c_str(), nullptr, 10);
    return number == 0 ? defaultValue : number > 0;
}
