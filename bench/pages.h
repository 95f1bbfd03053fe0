#pragma once

#include <cstddef>
#include <cstdint>
#include <new>

#ifdef _WIN32
#include <windows.h>
#else
#include <sys/mman.h>
#endif

// CFreshPages is memory that nobody has touched yet: a large output always begins with such, and
// the system's work for each page is part of every floor.
class CFreshPages
{
public:
#ifdef _WIN32
    explicit CFreshPages(size_t size)
        : m_data(static_cast<uint8_t*>(
              VirtualAlloc(nullptr, size, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE)))
    {
        if (!m_data)
            throw std::bad_alloc();
    }
    ~CFreshPages()
    {
        VirtualFree(m_data, 0, MEM_RELEASE);
    }
#else
    explicit CFreshPages(size_t size) : m_size(size)
    {
        void* const pages =
            mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (pages == MAP_FAILED)
            throw std::bad_alloc();
        m_data = static_cast<uint8_t*>(pages);
    }
    ~CFreshPages()
    {
        munmap(m_data, m_size);
    }
#endif
    CFreshPages(const CFreshPages&) = delete;
    CFreshPages& operator=(const CFreshPages&) = delete;

    uint8_t* data() const noexcept
    {
        return m_data;
    }

private:
    uint8_t* m_data;
#ifndef _WIN32
    size_t m_size;
#endif
};
