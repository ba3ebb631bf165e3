#include "ZrKit/review/ZrSurveySeriesReader.h"

#include "ZrKit/records/ZrDepthRecord.h"
#include "ZrKit/records/ZrFixRecord.h"
#include "ZrKit/records/ZrMotionRecord.h"
#include "ZrKit/records/ZrNavRecord.h"
#include "ZrKit/review/ZrLogScan.h"
#include "ZrKit/review/ZrSurveySeries.h"
#include "ZrKit/review/ZrUnpack.h"
#include "ZrUtil/ZrUtil.h"

#include <QCoreApplication>

#include <cmath>
#include <deque>
#include <limits>
#include <new>

namespace {

constexpr float unknown = std::numeric_limits<float>::quiet_NaN();
constexpr u32 navPositionRepeated = 1; ///< bit of `ZrNavRecord::flags`
constexpr float deepest = 12000.0F; ///< metres, more than any sea has
constexpr float highest = 1000.0F; ///< metres above the surface
constexpr float fastest = 50.0F; ///< m/s
constexpr double heldFor = 5.0; ///< seconds that a sounding or a motion record counts
constexpr double shortestWay = 4.0; ///< seconds between the positions of a speed
constexpr double longestWay = 60.0;
constexpr double apart = 0.1; ///< seconds between positions that are remembered, which bounds their number
/// Bytes of a compressed record: far more than some tens of them are packed into.
constexpr u32 packedStart = 1024;

float Within(float value, float low, float high)
{
    return value >= low && value <= high ? value : unknown;
}

float Above0(float value, float high)
{
    return value > 0.0F && value <= high ? value : unknown;
}

/// Recorders that have not heard of the vehicle yet fill a record with zeros.
bool IsBlank(const ZrNavRecord& nav)
{
    const bool isNowhere = std::isnan(nav.latitude) || (nav.latitude == 0.0 && nav.longitude == 0.0);
    return isNowhere && nav.depth == 0.0F && nav.altitude == 0.0F && nav.heading == 0.0F;
}

/// A value that holds for some seconds.
class Held
{
public:
    void Set(double time, float value)
    {
        if (std::isnan(value))
            return;
        m_time = time;
        m_value = value;
    }

    float At(double time) const { return std::fabs(time - m_time) <= heldFor ? m_value : unknown; }

private:
    double m_time = std::numeric_limits<double>::quiet_NaN();
    float m_value = unknown;
};

/// Headings without leaps.
class Unwrapped
{
public:
    float Next(float degrees)
    {
        if (std::isnan(degrees))
            return unknown;
        const double heading = static_cast<double>(degrees);
        m_last = std::isnan(m_last) ? heading : m_last + std::remainder(heading - m_last, 360.0);
        return static_cast<float>(m_last);
    }

private:
    double m_last = std::numeric_limits<double>::quiet_NaN();
};

/// The speed between positions.
class WaySpeed
{
public:
    float Next(double time, const ZrSurveySeries::Position& at)
    {
        if (std::isnan(at.latitude) || std::isnan(time))
            return unknown;
        if (m_before.empty() || time - m_before.back().time >= apart)
            m_before.push_back({time, at});
        while (m_before.size() > 1 && time - m_before[1].time >= shortestWay)
            m_before.pop_front();
        const Fix& from = m_before.front();
        const double seconds = time - from.time;
        if (!(seconds >= shortestWay && seconds <= longestWay))
            return unknown;
        const double way = ZrUtil::LL2LLRng(from.at.latitude, from.at.longitude, at.latitude, at.longitude);
        return Within(static_cast<float>(way / seconds), 0.0F, fastest);
    }

private:
    struct Fix
    {
        double time;
        ZrSurveySeries::Position at;
    };

    std::deque<Fix> m_before; ///< of some seconds
};

/// Makes rows of records.
class Rows
{
public:
    explicit Rows(ZrSurveySeries& series)
        : m_series(series)
    {
    }

    bool HasNav() const { return m_hasNav; }

    void Add(double time, const ZrNavRecord& nav)
    {
        if (!m_hasNav) { // the fixes were not all there is
            m_series = ZrSurveySeries();
            m_heading = Unwrapped();
            m_way = WaySpeed();
            m_hasNav = true;
        }
        Append(time, IsBlank(nav) ? ZrNavRecord() : nav);
    }

    void Add(double time, const ZrFixRecord& fix)
    {
        if (m_hasNav)
            return;
        ZrNavRecord nav;
        if (fix.quality != 0) {
            nav.latitude = fix.latitude;
            nav.longitude = fix.longitude;
        }
        nav.altitude = m_sounding.At(time);
        nav.depth = m_transducer.At(time);
        nav.heading = m_course.At(time);
        Append(time, nav);
    }

    void Add(double time, const ZrDepthRecord& depth)
    {
        m_sounding.Set(time, Above0(depth.depth, deepest));
        m_transducer.Set(time, depth.offset > 0.0F ? Within(depth.offset, 0.0F, deepest) : 0.0F);
    }

    void Add(double time, const ZrMotionRecord& motion)
    {
        const float heading = Within(motion.headingTrue, -360.0F, 360.0F);
        m_course.Set(time, std::isnan(heading) ? Within(motion.courseTrue, -360.0F, 360.0F) : heading);
        m_speed.Set(time, Within(motion.speedGround, 0.0F, fastest));
    }

private:
    void Append(double time, const ZrNavRecord& nav)
    {
        ZrSurveySeries& series = m_series;
        const double steady = series.times->Append(time);
        ZrSurveySeries::Position at;
        if (std::fabs(nav.latitude) <= 90.0 && std::fabs(nav.longitude) <= 180.0)
            at = {nav.latitude, nav.longitude};
        const float depth = Within(nav.depth, -highest, deepest);
        const float altitude = Above0(nav.altitude, deepest);
        const bool moved = (nav.flags & navPositionRepeated) == 0;
        const float way = moved ? m_way.Next(steady, at) : unknown;
        const float speed = m_speed.At(time);
        series.depth.Append(depth);
        series.altitude.Append(altitude);
        series.seabed.Append(depth + altitude);
        series.heading.Append(m_heading.Next(Within(nav.heading, -360.0F, 360.0F)));
        series.speed.Append(std::isnan(speed) ? way : speed);
        series.pitch.Append(Within(nav.pitch, -90.0F, 90.0F));
        series.roll.Append(Within(nav.roll, -180.0F, 180.0F));
        series.track.push_back(at);
    }

    ZrSurveySeries& m_series;
    bool m_hasNav = false;
    Held m_sounding;
    Held m_transducer;
    Held m_course;
    Held m_speed;
    Unwrapped m_heading;
    WaySpeed m_way;
};

/// Hands the record of the item that \p scan stands at to \p rows. False when it cannot be used.
template <class Record> bool Take(ZrLogScan& scan, const ZrLogItem& item, Rows& rows)
{
    if (item.format != Record::Format)
        return false;
    const u32 most = item.compressed != 0 ? packedStart : static_cast<u32>(Record::Size);
    QByteArray data;
    QString error;
    Record record;
    if (!zr::unpack_start(item, scan.PayloadStart(most), Record::Size, &data, &error)
        || !Record::Decode(zr::bytes_of(data), record))
        return false;
    rows.Add(item.time, record);
    return true;
}

/// The same for an item of any type; those that are no record of a row are fine.
bool TakeAny(ZrLogScan& scan, const ZrLogItem& item, Rows& rows)
{
    if (item.sub != 0)
        return true;
    switch (item.type) {
    case krtNavigation:
        return Take<ZrNavRecord>(scan, item, rows);
    case krtFix:
        return rows.HasNav() || Take<ZrFixRecord>(scan, item, rows);
    case krtDepth:
        return rows.HasNav() || Take<ZrDepthRecord>(scan, item, rows);
    case krtMotion:
        return Take<ZrMotionRecord>(scan, item, rows);
    default:
        return true;
    }
}

} // namespace

bool ZrSurveySeriesReader::Fail(const QString& error, ZrSurveySeries& series)
{
    m_error = error;
    m_skipped = 0;
    m_isOfFixes = false;
    series = ZrSurveySeries();
    return false;
}

bool ZrSurveySeriesReader::Read(const QString& logPath, ZrSurveySeries& series)
{
    m_error.clear();
    m_damage.clear();
    m_damagePos = 0;
    m_skipped = 0;
    m_isOfFixes = false;
    series = ZrSurveySeries();
    ZrLogScan scan;
    scan.progress = progress;
    if (!scan.Open(logPath))
        return Fail(scan.Error(), series);
    try {
        Rows rows(series);
        ZrLogItem item;
        u64 pos = 0;
        while (!cancel && scan.Next(item, pos))
            m_skipped += TakeAny(scan, item, rows) ? 0 : 1;
        m_isOfFixes = !rows.HasNav() && series.Count() > 0;
    } catch (const std::bad_alloc&) {
        return Fail(
            QCoreApplication::translate("ZrSurveySeriesReader", "There is not enough memory for the log"),
            series);
    }
    if (cancel)
        return Fail(QStringLiteral("Cancelled"), series);
    if (scan.State() == ZrLogScan::Damaged) {
        m_damage = scan.Error();
        m_damagePos = scan.ErrorPos();
    }
    series.Squeeze();
    return true;
}
