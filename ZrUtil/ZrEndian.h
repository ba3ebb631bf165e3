#pragma once

#include "ZrUtil/ZrTypes.h"

#include <cstddef>
#include <cstring>
#include <type_traits>

/// \file
/// Little-endian fields of files and payloads: neither the host's byte order nor the alignment of the memory
/// matters. For integers, and for float and double as their IEEE-754 bits.

namespace zr {

namespace detail {

template <std::size_t N> struct UintOfSize;

template <> struct UintOfSize<1>
{
    using type = u8;
};

template <> struct UintOfSize<2>
{
    using type = u16;
};

template <> struct UintOfSize<4>
{
    using type = u32;
};

template <> struct UintOfSize<8>
{
    using type = u64;
};

/// Writes \p bits lowest byte first, on hosts of any byte order.
template <class U> inline void store_bytes(u8* out, U bits) noexcept
{
    for (std::size_t i = 0; i < sizeof bits; ++i)
        out[i] = static_cast<u8>(bits >> (8 * i));
}

/// Reads what `store_bytes` writes, on hosts of any byte order.
template <class U> inline U load_bytes(const u8* in) noexcept
{
    U bits = 0;
    for (std::size_t i = 0; i < sizeof bits; ++i)
        bits = static_cast<U>(bits | static_cast<U>(static_cast<U>(in[i]) << (8 * i)));
    return bits;
}

/// On such a host a field is copied as it stands, which compilers turn into a single move.
inline constexpr bool hostIsLittleEndian = Q_BYTE_ORDER == Q_LITTLE_ENDIAN;

} // namespace detail

/// Writes \p value at \p out (`sizeof(T)` bytes), lowest byte first.
template <class T> inline void store_le(u8* out, T value) noexcept
{
    static_assert(std::is_arithmetic_v<T> && !std::is_same_v<T, bool>);
    using U = typename detail::UintOfSize<sizeof(T)>::type;
    U bits;
    std::memcpy(&bits, &value, sizeof bits);
    if constexpr (detail::hostIsLittleEndian)
        std::memcpy(out, &bits, sizeof bits);
    else
        detail::store_bytes(out, bits);
}

/// Reads a value of type `T` at \p in (`sizeof(T)` bytes), lowest byte first.
template <class T> inline T load_le(const u8* in) noexcept
{
    static_assert(std::is_arithmetic_v<T> && !std::is_same_v<T, bool>);
    using U = typename detail::UintOfSize<sizeof(T)>::type;
    U bits;
    if constexpr (detail::hostIsLittleEndian)
        std::memcpy(&bits, in, sizeof bits);
    else
        bits = detail::load_bytes<U>(in);
    T value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

} // namespace zr
