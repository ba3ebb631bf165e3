#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/map/ZrWaterfallPings.h"
#include "ZrKit/planning/ZrGeoPoint.h"
#include "ZrKit/review/ZrEventList.h"
#include "ZrKit/review/ZrSurveyDataset.h"
#include "ZrKit/review/ZrSurveySeries.h"
#include "ZrKit/sonar/ZrBottomHistory.h"
#include "ZrKit/sonar/ZrBottomLine.h"
#include "ZrKit/sonar/ZrSonarGeo.h"
#include "ZrKit/sonar/ZrSonarLog.h"
#include "ZrKit/sonar/ZrSonarTarget.h"
#include "ZrKit/sonar/ZrSonarTrack.h"

#include <QCoreApplication>
#include <QString>
#include <QStringList>

#include <atomic>
#include <limits>
#include <memory>
#include <utility>
#include <vector>

class IZrProgress;
class ZrDatasetReader;

/// All that the review of a recording works on: its records, curves, side-scan lines, events and plan.
///
/// \code
/// auto recording = std::make_shared<ZrSurveyRecording>();
/// worker.Start([=](IZrProgress& progress) { recording->progress = &progress; recording->Load(path); },
///     [=] { recording->cancel = true; });
/// \endcode
///
/// Loading makes tables of the log, some 85 bytes for a line of the sonar with its navigation; samples of the
/// sonar stay in the file but for a few hundred pings that gain and contrast are learnt from. The bottom line
/// is the one kept beside the log; else it is tracked, in logs of up to `MostTracked` bytes; else it is the
/// altitude that was recorded.
///
/// Loaded in any thread, used in one afterwards. `cancel` may be set from any.
class ZR_KIT_EXPORT ZrSurveyRecording
{
    Q_DECLARE_TR_FUNCTIONS(ZrSurveyRecording)

public:
    static constexpr qint64 MostTracked = qint64(256) * 1024 * 1024;
    static constexpr double Smoothing = 5.0; ///< seconds over which the way of the sonar is averaged

    IZrProgress* progress = nullptr; ///< told each whole percent; may be null
    std::atomic<bool> cancel{false};

    ZrSurveyRecording() = default;
    ZrSurveyRecording(const ZrSurveyRecording&) = delete;
    ZrSurveyRecording& operator=(const ZrSurveyRecording&) = delete;

    /// Once. False, with the reason in `Error`, when the log cannot be read, holds nothing to show or
    /// `cancel` was set.
    bool Load(const QString& path);

    const QString& Path() const { return m_path; }

    QString Error() const { return m_error; } ///< a sentence

    /// What is to be said about it although it was loaded, a sentence each: damage, files that could not be
    /// written.
    const QStringList& Remarks() const { return m_remarks; }

    bool IsDamaged() const { return m_isDamaged; } ///< it is there as far as it is sound

    /// The time axis: of the records and of the pings before the first and behind the last one; without
    /// records of all pings. Where pings stand in the log counts only for those whose time no record has.
    const std::shared_ptr<const ZrSteadyTime>& Times() const { return m_times; }

    /// The events that were saved, and the record types, for exports; \p reader gives the records, which stay
    /// in the index, see `ZrDatasetReader::Index`. Null, with the reason in its `Error`, when they cannot be
    /// read or its `cancel` was set. Any thread, also while the recording is in use.
    std::unique_ptr<ZrSurveyDataset> IndexRecords(ZrDatasetReader& reader) const;

    const ZrSurveySeries& Series() const { return *m_series; }

    ZrEventList& Events() { return m_events; }

    const ZrEventList& Events() const { return m_events; }

    const std::vector<ZrGeoPoint>& Plan() const { return m_plan; } ///< waypoints that the log held

    /// The way that the plan makes, turns as arcs: see `ZrRoutePath::LegLines`.
    const std::vector<std::vector<ZrGeoPoint>>& PlanWay() const { return m_planWay; }

    /// \name Side-scan sonar
    /// @{
    bool HasSonar() const { return m_geo != nullptr; }

    const ZrSonarPings& Pings() const { return m_log.Pings(); }

    const ZrSonarLog& SonarLog() const { return m_log; } ///< its samples are read by the waterfall alone

    const ZrBottomLine& Bottom() const { return m_bottom; }

    /// Changes the bottom line; see `ZrBottomEditor`, which also keeps it.
    ZrBottomHistory& BottomHistory() { return m_bottomHistory; }

    /// Brings the bottom line, as it is now, into the geometry and the waterfall. The pings whose altitude
    /// is another one by that, the first and the one behind the last; the same twice when there are none.
    std::pair<std::size_t, std::size_t> ApplyBottom();

    const ZrSonarTrack& Track() const { return *m_track; } ///< with sonar alone, as the next two

    const ZrSonarGeo& Geo() const { return *m_geo; } ///< up to the next `ApplyBottom`

    const std::shared_ptr<ZrWaterfallPings>& Waterfall() const { return m_waterfall; }

    std::vector<ZrSonarTarget> Targets() const; ///< those among the events, see `ZrTargetEvent`

    double PingAt(double steady) const; ///< with its fraction; NaN without sonar

    /// The pings between two steady times, both included: the first and the one behind the last; the same
    /// twice when there are none. Several may have one time.
    std::pair<std::size_t, std::size_t> PingsIn(double from, double to) const;

    double TimeOfPing(double ping) const; ///< steady; likewise

    u64 PosOf(std::size_t ping) const; ///< in the log, of its first item
    /// @}

    /// Whether \p steady lies between the first and the last row, or within ten seconds of one of them:
    /// beyond, nothing is known of the vehicle.
    bool KnowsVehicle(double steady) const;

    /// Position of the row at or before \p steady, moved on towards the next one where that is near in time;
    /// not valid where none is known, see `KnowsVehicle` too.
    ZrGeoPoint PositionAt(double steady) const;

    /// Steady time of the first row whose position is known, since a vehicle may record before it has one;
    /// NaN when there is none up to \p until.
    double FirstPosition(double until) const;

    /// Steady time of an event; NaN for one without a time.
    double TimeOf(const ZrLogEvt& evt) const;

private:
    double PingTime(std::size_t ping) const;
    std::size_t FirstPingFrom(double steady) const;
    std::size_t FirstPingBehind(double steady) const;
    std::size_t FirstInside(std::size_t front) const;
    void LoadTimes();
    void LoadPingTimes(std::size_t first, std::size_t end);
    bool LoadSeries();
    bool LoadIndex();
    bool LoadSonar();
    bool LoadBottom();
    void LoadPlan();
    bool Fail(const QString& error);

    QString m_path;
    QString m_error;
    QStringList m_remarks;
    bool m_isDamaged = false;
    bool m_isOfFixes = false; ///< without navigation records
    u64 m_firstRecord = 0; ///< its position in the log
    u64 m_lastRecord = std::numeric_limits<u64>::max();
    std::vector<ZrLogEvt> m_logEvents; ///< that the log holds, if the event file may not have taken them
    std::size_t m_knownEvents = 0; ///< see `ZrDatasetReader`
    std::shared_ptr<ZrSurveySeries> m_series = std::make_shared<ZrSurveySeries>();
    std::shared_ptr<const ZrSteadyTime> m_times;
    ZrEventList m_events;
    std::vector<ZrGeoPoint> m_plan;
    std::vector<std::vector<ZrGeoPoint>> m_planWay;
    ZrSonarLog m_log;
    ZrBottomLine m_bottom;
    ZrBottomHistory m_bottomHistory{m_bottom};
    std::unique_ptr<ZrSonarTrack> m_track;
    std::shared_ptr<const ZrSonarGeo> m_geo;
    std::shared_ptr<ZrWaterfallPings> m_waterfall;
    std::vector<double> m_pingTimes; ///< steady, ascending; empty when they are those of the pings
};
