#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/sonar/ZrSonarNav.h"
#include "ZrKit/sonar/ZrSonarPing.h"
#include "ZrKit/sonar/ZrSonarPingTable.h"

#include <cstddef>
#include <iterator>
#include <memory>
#include <vector>

/// The pings of a line or of a whole log, in the order of recording. They are read like those of a vector,
/// but made when they are looked at: by value.
///
/// \code
/// for (const ZrSonarPing& ping : log.Pings()) // poses are found quickest in order
///     …
/// const ZrSonarChannel channel = log.Pings().Side(17, sidePort);
/// \endcode
///
/// A ping of a log takes some 17 bytes, see `ZrSonarPingTable`; its pose is found in the navigation. A list
/// of pings is kept as it is.
///
/// A plain value: copies share one table, which never changes; there are none once it was moved from. Any
/// number of threads.
class ZR_KIT_EXPORT ZrSonarPings
{
public:
    class Iterator;

    ZrSonarPings() = default; ///< none

    /// Those of a list.
    ZrSonarPings(std::vector<ZrSonarPing> list); // NOLINT: a list is as good as a table

    /// Those of a table, with the poses that \p nav tells, which is prepared.
    ZrSonarPings(std::shared_ptr<const ZrSonarPingTable> table, std::shared_ptr<const ZrSonarNav> nav);

    std::size_t size() const { return m_table ? m_table->Count() : m_list ? m_list->size() : 0; }

    bool empty() const { return size() == 0; }

    ZrSonarPing operator[](std::size_t i) const;

    ZrSonarPing front() const { return (*this)[0]; }

    ZrSonarPing back() const { return (*this)[size() - 1]; }

    Iterator begin() const;
    Iterator end() const;
    std::reverse_iterator<Iterator> rbegin() const;
    std::reverse_iterator<Iterator> rend() const;

    /// \name Parts of a ping, which cost less than all of it
    /// @{
    double Time(std::size_t i) const { return m_table ? m_table->Time(i) : (*m_list)[i].time; }

    u32 Number(std::size_t i) const { return m_table ? m_table->Number(i) : (*m_list)[i].number; }

    ZrSonarChannel Side(std::size_t i, eSonarSide side) const
    {
        return m_table ? m_table->Side(i, side) : (*m_list)[i].sides[side];
    }

    /// @}

    /// Ping \p i with its pose looked for at \p place, for pings that follow each other.
    ZrSonarPing At(std::size_t i, ZrSonarNav::Place& place) const;

    u64 Bytes() const; ///< memory of the table and of the navigation

private:
    std::shared_ptr<const std::vector<ZrSonarPing>> m_list; ///< null without any
    std::shared_ptr<const ZrSonarPingTable> m_table; ///< in its place
    std::shared_ptr<const ZrSonarNav> m_nav;
};

/// Of the pings there are; they must stay.
class ZrSonarPings::Iterator
{
public:
    using iterator_category = std::random_access_iterator_tag;
    using value_type = ZrSonarPing;
    using difference_type = std::ptrdiff_t;
    using reference = ZrSonarPing;
    using pointer = const ZrSonarPing*;

    Iterator() = default;

    Iterator(const ZrSonarPings& pings, std::size_t i)
        : m_pings(&pings)
        , m_i(static_cast<difference_type>(i))
    {
    }

    ZrSonarPing operator*() const { return m_pings->At(static_cast<std::size_t>(m_i), m_place); }

    ZrSonarPing operator[](difference_type n) const { return *(*this + n); }

    Iterator& operator+=(difference_type n)
    {
        m_i += n;
        return *this;
    }

    Iterator& operator-=(difference_type n) { return *this += -n; }

    Iterator& operator++() { return *this += 1; }

    Iterator& operator--() { return *this -= 1; }

    Iterator operator++(int)
    {
        const Iterator before = *this;
        ++*this;
        return before;
    }

    Iterator operator--(int)
    {
        const Iterator before = *this;
        --*this;
        return before;
    }

    friend Iterator operator+(Iterator it, difference_type n) { return it += n; }

    friend Iterator operator+(difference_type n, Iterator it) { return it += n; }

    friend Iterator operator-(Iterator it, difference_type n) { return it -= n; }

    friend difference_type operator-(const Iterator& a, const Iterator& b) { return a.m_i - b.m_i; }

    friend bool operator==(const Iterator& a, const Iterator& b) { return a.m_i == b.m_i; }

    friend bool operator!=(const Iterator& a, const Iterator& b) { return a.m_i != b.m_i; }

    friend bool operator<(const Iterator& a, const Iterator& b) { return a.m_i < b.m_i; }

    friend bool operator>(const Iterator& a, const Iterator& b) { return a.m_i > b.m_i; }

    friend bool operator<=(const Iterator& a, const Iterator& b) { return a.m_i <= b.m_i; }

    friend bool operator>=(const Iterator& a, const Iterator& b) { return a.m_i >= b.m_i; }

private:
    const ZrSonarPings* m_pings = nullptr;
    difference_type m_i = 0;
    mutable ZrSonarNav::Place m_place;
};

inline ZrSonarPings::Iterator ZrSonarPings::begin() const
{
    return {*this, 0};
}

inline ZrSonarPings::Iterator ZrSonarPings::end() const
{
    return {*this, size()};
}

inline std::reverse_iterator<ZrSonarPings::Iterator> ZrSonarPings::rbegin() const
{
    return std::make_reverse_iterator(end());
}

inline std::reverse_iterator<ZrSonarPings::Iterator> ZrSonarPings::rend() const
{
    return std::make_reverse_iterator(begin());
}
