#pragma once

#include <windows.h>

#include <utility>

// CScoped owns one handle of the kind that Traits describes: value_type, empty() and close(value).
// Move-only. Closing keeps the thread's last error, since a destructor often runs just before the
// caller reads it.
template <class Traits> class CScoped
{
public:
    using value_type = typename Traits::value_type;

    CScoped() noexcept = default;
    explicit CScoped(value_type value) noexcept : m_value(value) {}
    CScoped(CScoped&& other) noexcept : m_value(other.release()) {}
    CScoped& operator=(CScoped&& other) noexcept
    {
        if (this != &other)
            reset(other.release());
        return *this;
    }
    CScoped(const CScoped&) = delete;
    CScoped& operator=(const CScoped&) = delete;
    ~CScoped() { reset(); }

    value_type get() const noexcept { return m_value; }
    explicit operator bool() const noexcept { return m_value != Traits::empty(); }

    // release gives up the handle: the caller owns it now.
    [[nodiscard]] value_type release() noexcept { return std::exchange(m_value, Traits::empty()); }

    void reset(value_type value = Traits::empty()) noexcept
    {
        const value_type old = std::exchange(m_value, value);
        if (old != Traits::empty()) {
            const DWORD error = GetLastError();
            Traits::close(old);
            SetLastError(error);
        }
    }

    // put closes what is held and gives the place where a call stores a new handle.
    [[nodiscard]] value_type* put() noexcept
    {
        reset();
        return &m_value;
    }

private:
    value_type m_value = Traits::empty();
};

struct kernelHandle {
    using value_type = HANDLE;
    static HANDLE empty() noexcept { return nullptr; }
    static void close(HANDLE h) noexcept { CloseHandle(h); }
};
// Events, mutexes, semaphores, mappings, tokens, processes.
using CKernelHandle = CScoped<kernelHandle>;

struct fileHandle {
    using value_type = HANDLE;
    static HANDLE empty() noexcept { return INVALID_HANDLE_VALUE; } // CreateFileW gives no null
    static void close(HANDLE h) noexcept { CloseHandle(h); }
};
using CFileHandle = CScoped<fileHandle>;

struct searchHandle {
    using value_type = HANDLE;
    static HANDLE empty() noexcept { return INVALID_HANDLE_VALUE; } // FindFirstFileW gives no null
    static void close(HANDLE h) noexcept { FindClose(h); }
};
using CSearchHandle = CScoped<searchHandle>;

struct registryKey {
    using value_type = HKEY;
    static HKEY empty() noexcept { return nullptr; }
    static void close(HKEY key) noexcept { RegCloseKey(key); }
};
using CRegistryKey = CScoped<registryKey>;

struct loadedModule {
    using value_type = HMODULE;
    static HMODULE empty() noexcept { return nullptr; }
    static void close(HMODULE module) noexcept { FreeLibrary(module); }
};
using CLoadedModule = CScoped<loadedModule>;

struct localMemory {
    using value_type = HLOCAL;
    static HLOCAL empty() noexcept { return nullptr; }
    static void close(HLOCAL memory) noexcept { LocalFree(memory); }
};
using CLocalMemory = CScoped<localMemory>;
