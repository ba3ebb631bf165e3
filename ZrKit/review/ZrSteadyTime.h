#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrUtil/ZrSpan.h"

#include <cstddef>
#include <vector>

/// The times of a log made to never fall, so that each moment of a recording has a place of its own.
///
/// Steady time is the time of the log, seconds since 1970-01-01 UTC, until the clock of the recorder is set
/// back by more than `Disorder`. From there on it goes on where it was, and is ahead of the log by a fixed
/// `Shift`; so of two moments with the same log time the later one has the larger steady time. Smaller steps
/// back, which come from sources that write one behind the other, are held instead.
///
/// \code
/// ZrSteadyTime steady;
/// for (const ZrLogRec& rec : dataset.recs)
///     steady.Append(rec.time);
/// const std::size_t rec = steady.RecordAt(clock.Time());
/// \endcode
///
/// A record whose time is not finite, or not within the years 1 to 9999, has the steady time of the one
/// before it; those in front of the first known time have that one. Memory is 8 bytes for each record. One
/// thread at a time while it grows, then any.
class ZR_KIT_EXPORT ZrSteadyTime
{
public:
    static constexpr double Disorder = 1.0; ///< seconds that times may fall without the clock being set

    /// A stretch between two settings of the clock.
    struct Run
    {
        double begin; ///< steady time of its first record
        double end; ///< and of its last one
        double shift; ///< steady time less log time, seconds
    };

    /// Whether \p time can be one: finite and within the years 1 to 9999.
    static bool IsTime(double time);

    ZrSteadyTime() = default;
    explicit ZrSteadyTime(zr::span<const double> logTimes);

    /// Adds the record of log time \p time; its steady time, NaN while none is known.
    double Append(double time);

    /// Adds records in front of all others, of which one at least has a known time: of the log times \p
    /// logTimes, in order. One that is not known or later than the one behind it, since the clock was set
    /// between, has the steady time of that.
    void Prepend(zr::span<const double> logTimes);

    /// Makes room for \p count records.
    void Reserve(std::size_t count) { m_times.reserve(count); }

    /// Gives back memory that was kept ready for more records.
    void Squeeze() { m_times.shrink_to_fit(); }

    std::size_t Count() const { return m_times.size(); }

    /// Steady times of all records, ascending. All NaN when no record has a time.
    const std::vector<double>& Times() const { return m_times; }

    /// Without any known time empty; else the first one begins with the first record.
    const std::vector<Run>& Runs() const { return m_runs; }

    bool IsEmpty() const { return m_runs.empty(); } ///< whether no time is known

    double Begin() const; ///< of the first record; NaN when there is none
    double End() const; ///< of the last one

    /// The log time at \p steady, in gaps too; before and behind the log it goes on evenly.
    double LogTime(double steady) const;

    /// The steady time of the moment \p logTime; of several the first one. Times that no stretch holds give
    /// the nearest end of one. NaN for NaN and without records.
    double FromLog(double logTime) const;

    /// The same; of several the one nearest to the steady time \p near.
    double FromLog(double logTime, double near) const;

    /// The last record at or before \p steady, the first one when there is none before; `Count` without any
    /// known time and for NaN.
    std::size_t RecordAt(double steady) const;

private:
    std::vector<double> m_times;
    std::vector<Run> m_runs;
};
