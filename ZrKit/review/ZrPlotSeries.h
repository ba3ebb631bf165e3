#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/review/ZrSteadyTime.h"
#include "ZrUtil/ZrTypes.h"

#include <cstddef>
#include <limits>
#include <memory>
#include <vector>

/// A value over the time of a recording, ready to be plotted at any scale.
///
/// One value belongs to each record of a `ZrSteadyTime`, which several series share. NaN is a gap; infinities
/// count as one. Beside the values smallest and largest ones of blocks of 16, 256, ... are kept, so that the
/// extent of any stretch costs some dozen looks. Memory is 4.6 bytes for each value.
///
/// \code
/// auto times = std::make_shared<ZrSteadyTime>();
/// ZrPlotSeries depth(times);
/// times->Append(record.time);
/// depth.Append(record.depth);
/// \endcode
///
/// One thread at a time while it grows, then any.
class ZR_KIT_EXPORT ZrPlotSeries
{
public:
    struct Extent
    {
        float min = std::numeric_limits<float>::infinity();
        float max = -std::numeric_limits<float>::infinity();

        bool IsKnown() const { return min <= max; } ///< false when there was no number

        void Add(const Extent& other)
        {
            min = other.min < min ? other.min : min;
            max = other.max > max ? other.max : max;
        }
    };

    /// Without any times, hence without values.
    ZrPlotSeries();
    explicit ZrPlotSeries(std::shared_ptr<const ZrSteadyTime> times);

    /// Adds the value of the next record. False when all records have theirs already.
    bool Append(float value);

    /// Makes room for \p count values, and gives back memory that was kept ready for more.
    void Reserve(std::size_t count) { m_values.reserve(count); }

    void Squeeze();

    std::size_t Count() const { return m_values.size(); }

    /// Of all records, which may be more than there are values.
    const std::vector<double>& Times() const { return m_times->Times(); }

    float Value(std::size_t i) const { return m_values[i]; }

    const std::vector<float>& Values() const { return m_values; }

    /// The value of the last record at or before \p steady: NaN in front of the first, for NaN, and where it
    /// is not known.
    float ValueAt(double steady) const;

    /// Smallest and largest value of the records \p first ... \p end - 1, as far as there are any. Adds to
    /// \p looks, if given, how many values and blocks it looked at.
    Extent ExtentOf(std::size_t first, std::size_t end, std::size_t* looks = nullptr) const;

    /// Of the records from \p begin to \p end, steady times, both included.
    Extent ExtentBetween(double begin, double end) const;

    u64 Bytes() const; ///< memory of the values and blocks

private:
    static constexpr std::size_t Block = 16;

    std::shared_ptr<const ZrSteadyTime> m_times;
    std::vector<float> m_values;
    std::vector<std::vector<Extent>> m_levels; ///< of 16, 256, ... values
};
