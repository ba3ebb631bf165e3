#include "ZrKit/survey/ZrSurveyRecording.h"

#include "ZrKit/planning/ZrGeoShapes.h"
#include "ZrKit/planning/ZrRouteFields.h"
#include "ZrKit/planning/ZrRouteFile.h"
#include "ZrKit/planning/ZrRoutePath.h"
#include "ZrKit/review/ZrDatasetReader.h"
#include "ZrKit/review/ZrRecordSource.h"
#include "ZrKit/review/ZrSurveySeriesReader.h"
#include "ZrKit/review/ZrWorkStage.h"
#include "ZrKit/sonar/ZrBottomFile.h"
#include "ZrKit/sonar/ZrBottomTracker.h"
#include "ZrKit/sonar/ZrSonarTrackSettings.h"
#include "ZrKit/survey/ZrTargetEvent.h"
#include "ZrUtil/IZrProgress.h"
#include "ZrUtil/ZrWpt.h"
#include "ZrUtil/ZrWpts.h"

#include <QFileInfo>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace {

constexpr double unknown = std::numeric_limits<double>::quiet_NaN();
constexpr double mostBetween
    = 10.0; ///< seconds between rows that a position is taken between, or beside them

/// Of what was read only tables are left, which grew piece by piece: the rest goes back to the system at
/// once.
void ReleaseMemory()
{
#ifdef __GLIBC__
    malloc_trim(0);
#endif
}

/// The first of \p count pings, in order of time, that \p isThere says yes to: to all behind it too.
template <class IsThere> std::size_t FirstOf(std::size_t count, const IsThere& isThere)
{
    std::size_t first = 0;
    for (std::size_t end = count; first < end;) {
        const std::size_t middle = first + (end - first) / 2;
        if (isThere(middle))
            end = middle;
        else
            first = middle + 1;
    }
    return first;
}

/// The place of the log time \p time between records, nearest to \p near and not further back from there
/// than times may fall; NaN when it lies at none.
double PlaceOf(const ZrSteadyTime& times, double time, double near)
{
    double found = unknown;
    for (const ZrSteadyTime::Run& run : times.Runs()) {
        const double steady = time + run.shift;
        const double at = std::max(steady, run.begin);
        const bool isHeld = at - steady <= ZrSteadyTime::Disorder && steady <= run.end;
        if (!isHeld || at < near - ZrSteadyTime::Disorder)
            continue;
        if (std::isnan(found) || std::fabs(at - near) < std::fabs(found - near))
            found = at;
    }
    return found;
}

} // namespace

bool ZrSurveyRecording::Fail(const QString& error)
{
    m_error = cancel ? tr("Cancelled") : error;
    return false;
}

bool ZrSurveyRecording::Load(const QString& path)
{
    m_path = path;
    if (!LoadSeries() || !LoadIndex() || !LoadSonar())
        return false;
    LoadTimes();
    if (m_times->IsEmpty()) {
        return Fail(m_isDamaged ? m_remarks.join(QLatin1Char(' '))
                                : tr("The log holds neither navigation nor side-scan pings."));
    }
    QString error;
    if (!m_events.Load(path, &error))
        m_remarks << error;
    m_events.AddUnsaved(std::exchange(m_logEvents, {}), m_knownEvents);
    LoadPlan();
    ReleaseMemory();
    if (progress)
        progress->UpdateProgress(100);
    return true;
}

u64 ZrSurveyRecording::PosOf(std::size_t ping) const
{
    const ZrSonarChannel port = Pings().Side(ping, sidePort);
    const ZrSonarChannel starboard = Pings().Side(ping, sideStarboard);
    return !port.IsThere() || (starboard.IsThere() && starboard.pos < port.pos) ? starboard.pos : port.pos;
}

/// The first ping whose time lies between the records; the \p front ones were stored before them.
std::size_t ZrSurveyRecording::FirstInside(std::size_t front) const
{
    const std::size_t count = Pings().size();
    const double begin = m_times->Begin();
    const auto placeOf = [&](std::size_t ping) { return PlaceOf(*m_times, Pings().Time(ping), begin); };
    const auto isInside
        = [&](std::size_t ping) { return Pings().Time(ping) >= begin && !std::isnan(placeOf(ping)); };
    std::size_t first = 0;
    if (front == 0) {
        // Stored behind the records; earlier than they are only those that run on into them.
        while (first < count && !(Pings().Time(first) >= begin) && !(placeOf(first) > begin))
            ++first;
        return first < count && !std::isnan(placeOf(first)) ? first : 0;
    }
    if (front == count) {
        while (first < count && !isInside(first))
            ++first;
        return first;
    }
    for (first = front; first > 0 && isInside(first - 1);)
        --first;
    return first;
}

/// Sonar goes on where records end: what lies outside of them, in time as well as in the log, has its own
/// times. Few logs have any of it; then the axis is a copy.
void ZrSurveyRecording::LoadTimes()
{
    const std::size_t count = Pings().size();
    const bool hasRows = m_series->Count() > 0 && !m_series->times->IsEmpty();
    m_times = hasRows ? m_series->times : std::make_shared<ZrSteadyTime>();
    std::size_t front = 0;
    while (hasRows && front < count && PosOf(front) < m_firstRecord)
        ++front;
    std::size_t behind = hasRows ? count : 0;
    while (behind > front && PosOf(behind - 1) > m_lastRecord)
        --behind;
    const std::size_t first = hasRows && (behind == 0 || front > 0) ? FirstInside(front) : 0;
    // Pings that came later than their records are still between them; where times fall the clock was set.
    std::size_t end = front == count ? first : std::max(behind, first);
    double near = end > first ? m_times->FromLog(Pings().Time(end - 1), m_times->End()) : m_times->Begin();
    for (; hasRows && end < count; ++end) {
        const double time = Pings().Time(end);
        const double at = PlaceOf(*m_times, time, near);
        if (std::isnan(at) && ZrSteadyTime::IsTime(time))
            break;
        near = std::isnan(at) ? near : std::max(at, near);
    }
    if (first == 0 && end == count) {
        LoadPingTimes(0, count);
        return;
    }
    auto times = std::make_shared<ZrSteadyTime>(*m_times);
    times->Reserve(times->Count() + first + count - end);
    std::vector<double> before;
    before.reserve(first);
    for (std::size_t i = 0; i < first; ++i)
        before.push_back(Pings().Time(i));
    times->Prepend(before);
    for (std::size_t i = end; i < count; ++i)
        times->Append(Pings().Time(i));
    m_times = std::move(times);
    LoadPingTimes(first, end);
}

/// Those in front of \p first and from \p end on are on the axis, at its ends. Most logs have no other times
/// than their pings themselves; of others they are kept.
void ZrSurveyRecording::LoadPingTimes(std::size_t first, std::size_t end)
{
    const std::size_t count = Pings().size();
    const auto onAxis = [&](std::size_t ping, double near) {
        if (ping < first)
            return m_times->Times()[ping];
        if (ping >= end)
            return m_times->Times()[m_times->Count() - count + ping];
        return m_times->FromLog(Pings().Time(ping), near);
    };
    double near = m_times->Begin();
    for (std::size_t i = 0; i < count; ++i) {
        const double time = Pings().Time(i);
        const double at = onAxis(i, near);
        near = std::isnan(at) ? near : std::max(at, near);
        if (m_pingTimes.empty() && near == time)
            continue;
        if (m_pingTimes.empty()) {
            m_pingTimes.reserve(count);
            for (std::size_t before = 0; before < i; ++before)
                m_pingTimes.push_back(Pings().Time(before));
        }
        m_pingTimes.push_back(near);
    }
}

double ZrSurveyRecording::PingTime(std::size_t ping) const
{
    return m_pingTimes.empty() ? Pings().Time(ping) : m_pingTimes[ping];
}

bool ZrSurveyRecording::LoadSeries()
{
    ZrSurveySeriesReader reader;
    ZrWorkStage stage(progress, cancel, reader.cancel, 0, 20);
    reader.progress = &stage;
    if (!reader.Read(m_path, *m_series))
        return Fail(reader.Error());
    // Logs without navigation have their positions in fixes.
    m_isOfFixes = reader.IsOfFixes();
    if (!reader.Damage().isEmpty()) {
        m_isDamaged = true;
        m_remarks << tr("The log is damaged and is shown up to byte %1: %2")
                         .arg(reader.DamagePos())
                         .arg(reader.Damage());
    }
    return true;
}

/// The index is made, or found good; its records are not kept.
bool ZrSurveyRecording::LoadIndex()
{
    ZrDatasetReader reader;
    ZrWorkStage stage(progress, cancel, reader.cancel, 20, 50);
    reader.progress = &stage;
    const std::unique_ptr<ZrSurveyDataset> dataset = IndexRecords(reader);
    if (!dataset)
        return Fail(reader.Error());
    if (!reader.WriteError().isEmpty()) {
        m_remarks << reader.WriteError();
        m_logEvents = reader.LogEvents();
        m_knownEvents = reader.KnownEvents();
    }
    ZrRecordSource& records = *reader.Records();
    std::vector<ZrLogRec> record;
    if (records.Count() > 0 && records.Read(0, 1, record))
        m_firstRecord = record[0].pos;
    if (records.Count() > 0 && records.Read(records.Count() - 1, records.Count(), record))
        m_lastRecord = record[0].pos;
    return true;
}

std::unique_ptr<ZrSurveyDataset> ZrSurveyRecording::IndexRecords(ZrDatasetReader& reader) const
{
    auto dataset = m_isOfFixes
        ? std::make_unique<ZrSurveyDataset>(zr::rec_type(krtFix), ZrSurveyDataset::DefaultCrdTypes())
        : std::make_unique<ZrSurveyDataset>();
    const ZrDatasetReader::eResult result = reader.Index(m_path, *dataset);
    if (result == ZrDatasetReader::Unreadable || result == ZrDatasetReader::Cancelled)
        return nullptr;
    return dataset;
}

bool ZrSurveyRecording::LoadSonar()
{
    {
        ZrWorkStage stage(progress, cancel, m_log.cancel, 50, 70);
        m_log.progress = &stage;
        const bool opened = m_log.Open(m_path);
        m_log.progress = nullptr;
        if (!opened)
            return Fail(m_log.Error());
    }
    if (Pings().empty())
        return true;
    m_log.ShareNavigation(m_series);
    if (!LoadBottom())
        return Fail(QString());
    ZrSonarTrackSettings settings;
    settings.smoothing = Smoothing;
    m_track = std::make_unique<ZrSonarTrack>(Pings(), settings);
    m_geo = std::make_shared<ZrSonarGeo>(Pings(), *m_track, m_bottom);
    m_waterfall = std::make_shared<ZrWaterfallPings>(m_log, m_geo);
    ZrWorkStage stage(progress, cancel, m_waterfall->cancel, 90, 99);
    m_waterfall->progress = &stage;
    const bool learnt = m_waterfall->Learn();
    m_waterfall->progress = nullptr;
    return learnt || Fail(QString());
}

bool ZrSurveyRecording::LoadBottom()
{
    ZrBottomFile file(m_path);
    if (file.Load(Pings(), m_bottom))
        return true;
    if (file.State() != ZrBottomFile::Missing)
        m_remarks << file.Error();
    std::vector<double> altitudes;
    altitudes.reserve(Pings().size());
    for (const ZrSonarPing& ping : Pings())
        altitudes.push_back(ping.pose.altitude);
    if (QFileInfo(m_path).size() <= MostTracked) {
        ZrBottomTracker tracker;
        ZrWorkStage stage(progress, cancel, tracker.cancel, 70, 90);
        tracker.progress = &stage;
        const std::vector<double> tracked = tracker.Track(m_log);
        if (tracked.size() != altitudes.size())
            return false;
        for (std::size_t i = 0; i < tracked.size(); ++i) {
            if (!std::isnan(tracked[i]))
                altitudes[i] = tracked[i];
        }
    }
    m_bottom.SetFound(std::move(altitudes));
    m_bottomHistory.Reset();
    return true;
}

std::pair<std::size_t, std::size_t> ZrSurveyRecording::ApplyBottom()
{
    if (!m_geo)
        return {0, 0};
    const auto geo = std::make_shared<const ZrSonarGeo>(Pings(), *m_track, m_bottom);
    const auto isSame = [&](std::size_t ping) {
        return geo->Altitude(ping) == m_geo->Altitude(ping)
            && geo->KnowsAltitudes() == m_geo->KnowsAltitudes();
    };
    std::size_t first = 0;
    std::size_t end = Pings().size();
    while (first < end && isSame(first))
        ++first;
    while (end > first && isSame(end - 1))
        --end;
    m_geo = geo;
    m_waterfall->SetGeo(geo);
    return {first, end};
}

void ZrSurveyRecording::LoadPlan()
{
    const QString path = m_path + QStringLiteral(".xml");
    ZrGeoShapes shapes;
    ZrRouteFile file;
    if (!QFileInfo(path).isFile())
        return;
    if (!file.ReadShapes(path, shapes)) {
        m_remarks << file.Error();
        return;
    }
    ZrWpts route;
    for (const ZrShapePoint& point : shapes.points) {
        m_plan.push_back(point.position);
        auto wpt = std::make_unique<ZrWpt>();
        ZrRouteFields::Apply(point.fields, *wpt);
        wpt->lat = point.position.lat;
        wpt->lng = point.position.lng;
        route.AddTail(wpt.get());
        wpt.release();
    }
    m_planWay = ZrRoutePath(route).LegLines();
}

std::size_t ZrSurveyRecording::FirstPingFrom(double steady) const
{
    return FirstOf(Pings().size(), [&](std::size_t ping) { return PingTime(ping) >= steady; });
}

std::size_t ZrSurveyRecording::FirstPingBehind(double steady) const
{
    return FirstOf(Pings().size(), [&](std::size_t ping) { return PingTime(ping) > steady; });
}

std::pair<std::size_t, std::size_t> ZrSurveyRecording::PingsIn(double from, double to) const
{
    if (!(from <= to))
        return {0, 0};
    return {FirstPingFrom(from), FirstPingBehind(to)};
}

double ZrSurveyRecording::PingAt(double steady) const
{
    if (Pings().empty() || std::isnan(steady))
        return unknown;
    const std::size_t after = FirstPingBehind(steady);
    if (after == 0)
        return 0.0;
    const std::size_t i = after - 1;
    if (after == Pings().size())
        return static_cast<double>(i);
    const double step = PingTime(after) - PingTime(i);
    return static_cast<double>(i) + (step > 0.0 ? (steady - PingTime(i)) / step : 0.0);
}

double ZrSurveyRecording::TimeOfPing(double ping) const
{
    if (Pings().empty() || std::isnan(ping))
        return unknown;
    const std::size_t last = Pings().size() - 1;
    const double at = std::clamp(ping, 0.0, static_cast<double>(last));
    const auto i = static_cast<std::size_t>(at);
    if (i >= last)
        return PingTime(last);
    return PingTime(i) + (at - static_cast<double>(i)) * (PingTime(i + 1) - PingTime(i));
}

bool ZrSurveyRecording::KnowsVehicle(double steady) const
{
    const ZrSteadyTime& times = *m_series->times;
    return steady >= times.Begin() - mostBetween && steady <= times.End() + mostBetween;
}

ZrGeoPoint ZrSurveyRecording::PositionAt(double steady) const
{
    const ZrSteadyTime& times = *m_series->times;
    const std::size_t row = times.RecordAt(steady);
    if (row >= m_series->Count() || !KnowsVehicle(steady))
        return {unknown, unknown};
    const ZrSurveySeries::Position& from = m_series->track[row];
    if (row + 1 < m_series->Count()) {
        const ZrSurveySeries::Position& to = m_series->track[row + 1];
        const double begin = times.Times()[row];
        const double step = times.Times()[row + 1] - begin;
        const bool isNear
            = step > 0.0 && step <= mostBetween && std::fabs(to.longitude - from.longitude) < 1.0;
        if (isNear && steady > begin) {
            const double share = std::min((steady - begin) / step, 1.0);
            return {from.latitude + share * (to.latitude - from.latitude),
                from.longitude + share * (to.longitude - from.longitude)};
        }
    }
    return {from.latitude, from.longitude};
}

double ZrSurveyRecording::FirstPosition(double until) const
{
    for (std::size_t row = 0; row < m_series->Count(); ++row) {
        const double at = m_series->times->Times()[row];
        if (at > until)
            break;
        if (ZrGeoPoint{m_series->track[row].latitude, m_series->track[row].longitude}.IsValid())
            return at;
    }
    return unknown;
}

std::vector<ZrSonarTarget> ZrSurveyRecording::Targets() const
{
    std::vector<ZrSonarTarget> targets;
    ZrSonarTarget target;
    for (std::size_t i = 0; i < m_events.Count(); ++i) {
        if (ZrTargetEvent::ToTarget(m_events.At(i), target))
            targets.push_back(target);
    }
    return targets;
}

double ZrSurveyRecording::TimeOf(const ZrLogEvt& evt) const
{
    return m_times->FromLog(evt.time);
}
