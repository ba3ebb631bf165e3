#pragma once

#include "ZrUtil/ZrTypes.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <numeric>
#include <vector>

/// One value of the records of a `ZrSonarNav`: of those that know it. While every record does, the values
/// alone are kept; from the first one on that does not, also which records they are of.
template <class Value> class ZrSonarNavColumn
{
public:
    /// Of record \p record, which comes behind those there are.
    void Add(std::size_t record, const Value& value)
    {
        if (m_records.empty() && record != m_own.size()) {
            m_records.resize(m_own.size());
            std::iota(m_records.begin(), m_records.end(), 0U);
        }
        if (record != m_own.size() || !m_records.empty())
            m_records.push_back(static_cast<u32>(record));
        m_own.push_back(value);
    }

    std::size_t Count() const { return m_shared ? m_count : m_own.size(); }

    /// Whether each of \p records records has a value.
    bool IsOfAll(std::size_t records) const { return m_records.empty() && Count() == records; }

    std::size_t Record(std::size_t i) const { return m_records.empty() ? i : m_records[i]; }

    Value At(std::size_t i) const { return m_shared ? m_shared[Record(i)] : m_own[i]; }

    void Squeeze()
    {
        m_own.shrink_to_fit();
        m_records.shrink_to_fit();
    }

    /// Takes the values from \p values, one for each record, which stay: when they are the same bit for bit.
    /// Else nothing is changed.
    void Share(const Value* values)
    {
        for (std::size_t i = 0; i < m_own.size(); ++i) {
            if (std::memcmp(&m_own[i], &values[Record(i)], sizeof(Value)) != 0)
                return;
        }
        m_count = m_own.size();
        m_shared = values;
        m_own = std::vector<Value>();
    }

    u64 Bytes() const { return m_own.capacity() * sizeof(Value) + m_records.capacity() * sizeof(u32); }

private:
    std::vector<Value> m_own;
    std::vector<u32> m_records; ///< of the values; empty while all have one
    const Value* m_shared = nullptr; ///< by record, in place of the own ones
    std::size_t m_count = 0; ///< of shared values
};
