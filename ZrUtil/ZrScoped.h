#pragma once

#include <functional>
#include <utility>

namespace zr {

template <class T> class ZrScoped;

/// Scope guard: runs a function once when it is destroyed, on normal exit and while an exception unwinds
/// alike.
///
/// Made by make_scoped(). The guard can be moved, not copied; a moved-from guard does nothing. A guard that
/// holds an empty function does nothing either. The function must not throw: it runs in a destructor, where
/// an exception ends the process. The function runs on the thread that destroys the guard.
template <> class [[nodiscard]] ZrScoped<void>
{
public:
    /// Holds \p fn, which may be empty.
    explicit ZrScoped(std::function<void()> fn) noexcept
        : m_fn(std::move(fn))
    {
    }

    /// Takes the function over. \p other is emptied explicitly: a moved-from std::function may still hold its
    /// target.
    ZrScoped(ZrScoped&& other) noexcept
        : m_fn(std::exchange(other.m_fn, nullptr))
    {
    }

    /// Takes the function of \p other over, then runs the one held so far.
    ZrScoped& operator=(ZrScoped&& other) noexcept
    {
        ZrScoped taken(std::move(other));
        m_fn.swap(taken.m_fn);
        return *this;
    }

    ZrScoped(const ZrScoped&) = delete;
    ZrScoped& operator=(const ZrScoped&) = delete;

    ~ZrScoped()
    {
        if (m_fn)
            m_fn();
    }

private:
    std::function<void()> m_fn;
};

/// Returns a guard that runs \p fn when it goes out of scope. Keep the result: a discarded guard runs at
/// once.
///
/// \code
/// loading = true;
/// const auto guard = zr::make_scoped([this] { loading = false; });
/// \endcode
[[nodiscard]] inline ZrScoped<void> make_scoped(std::function<void()> fn)
{
    return ZrScoped<void>(std::move(fn));
}

} // namespace zr
