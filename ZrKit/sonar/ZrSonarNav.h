#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/records/ZrNavRecord.h"
#include "ZrKit/review/ZrSurveySeries.h"
#include "ZrKit/sonar/ZrSonarNavColumn.h"
#include "ZrKit/sonar/ZrSonarPose.h"

#include <array>
#include <cstddef>
#include <memory>
#include <vector>

/// The navigation of a log as a function of time.
///
/// \code
/// ZrSonarNav nav;
/// nav.Add(time, record); // every record of the log, in any order
/// nav.Prepare();
/// const ZrSonarPose pose = nav.At(pingTime);
/// \endcode
///
/// Values between two records are interpolated, angles the shorter way round; before the first and after the
/// last one the nearest is held. Each value has its own row of records: one that is missing, not finite, out
/// of range, or a position that is repeated (`flags` bit 0) or exactly 0, 0 (receivers say so before their
/// first fix), is left out and bridged. Of several values at one time the last one given counts.
///
/// In range are headings and rolls within ±360 and ±180 degrees, pitches within ±90 degrees, depths from
/// −1,000 to 12,000 m, and altitudes above 0 up to 12,000 m: an echo sounder without an echo says 0 or less.
///
/// Memory is 44 bytes for each record that knows everything, 4 bytes more for each value of a row with gaps;
/// less where a series of the same records has them too, see `Share`. `At` may be called from several threads
/// once `Prepare` is done.
class ZR_KIT_EXPORT ZrSonarNav
{
public:
    /// Where the last search ended: it makes the next one short when times follow each other. Begins empty;
    /// one for each thread, and for one `ZrSonarNav` only.
    struct Place
    {
        std::array<std::size_t, 7> behind{};
    };

    /// \p time is seconds since the epoch; records without a finite time are dropped. Not behind `Share`.
    void Add(double time, const ZrNavRecord& record);

    /// Sorts what was added; before the first `At` and after every further `Add`.
    void Prepare();

    /// Gives up what \p series, read from the same log, holds value for value, and takes it from there: for
    /// two tables of one long log. \p series is kept and must not change any more. Behind `Prepare`.
    void Share(std::shared_ptr<const ZrSurveySeries> series);

    /// The pose at \p time; all NaN when \p time is not finite or nothing is known.
    ZrSonarPose At(double time) const;

    /// The same for many times that follow each other, whatever \p place says.
    ZrSonarPose At(double time, Place& place) const;

    u64 Bytes() const; ///< memory, without what is shared

private:
    using Row = ZrSonarNavColumn<float>;

    double TimeOf(std::size_t record) const
    {
        return m_seriesTimes ? m_seriesTimes[record] : m_times[record];
    }

    template <class Type>
    void Seek(const ZrSonarNavColumn<Type>& column, double time, std::size_t all, std::size_t& behind) const;
    double Value(const Row& row, double time, bool isAngle, std::size_t all, std::size_t& behind) const;
    void Locate(double time, std::size_t all, std::size_t& behind, ZrSonarPose& pose) const;
    void Sort();

    std::size_t m_count = 0; ///< of records
    std::vector<double> m_times; ///< of all records
    const double* m_seriesTimes = nullptr; ///< in their place, when they are shared
    ZrSonarNavColumn<ZrSurveySeries::Position> m_fixes;
    Row m_heading, m_pitch, m_roll, m_depth, m_altitude;
    std::shared_ptr<const ZrSurveySeries> m_series;
};
