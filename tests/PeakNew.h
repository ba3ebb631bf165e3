#pragma once

// The most bytes that a program has held at once of what it asked for with new. For one source of a program.

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <malloc.h>
#include <new>

namespace peak_new {

inline std::atomic<long long> s_live{0};
inline std::atomic<long long> s_peak{0};

inline void* Allocate(std::size_t size)
{
    void* const memory = std::malloc(size ? size : 1);
    if (!memory)
        throw std::bad_alloc();
    const long long live = s_live += static_cast<long long>(malloc_usable_size(memory));
    long long peak = s_peak;
    while (live > peak && !s_peak.compare_exchange_weak(peak, live)) { }
    return memory;
}

inline void Free(void* memory)
{
    s_live -= static_cast<long long>(malloc_usable_size(memory));
    std::free(memory);
}

/// From here on the peak is counted, above what is held now.
class Since
{
public:
    Since()
        : m_begin(s_live)
    {
        s_peak = m_begin;
    }

    long long Most() const { return s_peak - m_begin; } ///< bytes

private:
    long long m_begin;
};

} // namespace peak_new

void* operator new(std::size_t size)
{
    return peak_new::Allocate(size);
}

// Of the standard library this one calls the one above; of the address sanitizer it does not.
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept
{
    try {
        return peak_new::Allocate(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void operator delete(void* memory) noexcept
{
    peak_new::Free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    peak_new::Free(memory);
}
