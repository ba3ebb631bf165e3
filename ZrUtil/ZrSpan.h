#pragma once

#include "ZrUtil/ZrTypes.h"

#include <QByteArray>

#include <cstddef>
#include <type_traits>
#include <utility>

namespace zr {

/// A pointer and a length: a view of `size()` consecutive elements that somebody else owns.
///
/// Copying a span copies the view, never the elements. It lives as long as what it points into; each function
/// that takes or hands out a span says for how long it is used. An empty span may have a null pointer.
template <class T> class span
{
public:
    using element_type = T;
    using value_type = std::remove_cv_t<T>;
    using iterator = T*;

    constexpr span() noexcept = default;

    constexpr span(T* data, std::size_t size) noexcept
        : m_data(data)
        , m_size(size)
    {
    }

    template <std::size_t N>
    constexpr span(T (&array)[N]) noexcept
        : m_data(array)
        , m_size(N)
    {
    }

    /// From anything with `data()` and `size()` over the same element type (`const` may be added):
    /// `std::vector`, `std::array`, `QVector`. A span of a base class is refused: its elements would not lie
    /// where it looks.
    template <class C, class Element = std::remove_pointer_t<decltype(std::declval<C&>().data())>,
        class = std::enable_if_t<
            !std::is_same_v<std::decay_t<C>, span> && std::is_convertible_v<Element (*)[], T (*)[]>>,
        class = decltype(std::declval<C&>().size())>
    constexpr span(C&& container)
        : m_data(container.data())
        , m_size(static_cast<std::size_t>(container.size()))
    {
    }

    constexpr T* data() const noexcept { return m_data; }

    constexpr std::size_t size() const noexcept { return m_size; }

    constexpr bool empty() const noexcept { return m_size == 0; }

    constexpr T* begin() const noexcept { return m_data; }

    constexpr T* end() const noexcept { return m_data + m_size; }

    /// The element at \p i, which must be below `size()`.
    constexpr T& operator[](std::size_t i) const noexcept { return m_data[i]; }

    /// The \p count elements from \p offset; both must lie inside the span.
    constexpr span subspan(std::size_t offset, std::size_t count) const noexcept
    {
        return span(m_data + offset, count);
    }

private:
    T* m_data = nullptr;
    std::size_t m_size = 0;
};

/// \p size bytes at \p data as the payload type of the log writer, which only reads them.
inline span<u8> bytes_of(const void* data, std::size_t size) noexcept
{
    return span<u8>(const_cast<u8*>(static_cast<const u8*>(data)), size);
}

/// The bytes of \p array as a payload; \p array must outlive the use. The receiver only reads them.
inline span<u8> bytes_of(const QByteArray& array) noexcept
{
    return bytes_of(array.constData(), static_cast<std::size_t>(array.size()));
}

/// A deep copy of \p bytes (at most 2 GiB - 1; longer spans give an empty array).
inline QByteArray to_byte_array(span<u8> bytes)
{
    if (bytes.size() > 0x7FFFFFFFu)
        return QByteArray();
    return QByteArray(reinterpret_cast<const char*>(bytes.data()), static_cast<int>(bytes.size()));
}

} // namespace zr
