#pragma once

// The bytes that a thread asks for with new: what a thread computes of a long recording it has to keep
// somewhere. For one source of a program.

#include <cstddef>
#include <cstdlib>
#include <new>

namespace counted_new {

inline thread_local std::size_t s_bytes = 0;

inline void* Allocate(std::size_t size)
{
    s_bytes += size;
    if (void* memory = std::malloc(size ? size : 1))
        return memory;
    throw std::bad_alloc();
}

/// Of the calling thread, since the program began.
inline std::size_t Bytes()
{
    return s_bytes;
}

} // namespace counted_new

void* operator new(std::size_t size)
{
    return counted_new::Allocate(size);
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}
