#pragma once

#include "ZrKit/ZrKitExport.h"

#include <cstddef>
#include <limits>
#include <vector>

/// Finds the records nearest to some times, while the records come by once, in any order.
///
/// The answers are those of `ZrRecordTimes`, which holds the times of all records; here memory goes with the
/// times that are looked for.
///
/// \code
/// ZrNearestRecords nearest({event.time});
/// for (std::size_t i = 0; i < recs.size(); ++i)
///     nearest.Add(i, recs[i].time);
/// const std::size_t record = nearest.Of(0);
/// \endcode
///
/// One thread at a time.
class ZR_KIT_EXPORT ZrNearestRecords
{
public:
    static constexpr std::size_t None = std::numeric_limits<std::size_t>::max();

    explicit ZrNearestRecords(const std::vector<double>& times);

    /// The record \p record has the time \p time; one that is not finite is nearest to nothing.
    void Add(std::size_t record, double time);

    /// The record nearest to the time \p i, the first one of several as near; `None` without records and for
    /// a time that is not a number.
    std::size_t Of(std::size_t i) const;

private:
    struct Place
    {
        double time = 0.0;
        std::size_t record = None;
    };

    /// The records between two of the times.
    struct Between
    {
        Place first; ///< the earliest
        Place last; ///< the latest
    };

    std::vector<double> m_times; ///< as given
    std::vector<double> m_sorted; ///< those that are numbers, each once
    std::vector<Between> m_between; ///< in front of each of them, and behind the last one
};
