#include "ZrKit/sonar/ZrWaterfallMap.h"

#include "ZrKit/sonar/ZrBottomLine.h"
#include "ZrKit/sonar/ZrSlantRange.h"
#include "ZrKit/sonar/ZrSonarTrack.h"

#include <QCoreApplication>

#include <algorithm>
#include <cmath>

namespace {

constexpr double unknown = std::numeric_limits<double>::quiet_NaN();
/// A step along the track that is this many times the usual one, and this many metres, is a gap.
constexpr double gapSteps = 5.0;
constexpr double gapMetres = 1.0;
/// `QImage` counts its bytes, four for a pixel, in 31 bits.
constexpr double mostPixels = 536870911.0;

double Median(std::vector<double>& values)
{
    if (values.empty())
        return 0.0;
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

bool IsLength(double metres)
{
    return std::isfinite(metres) && metres >= 0.0;
}

} // namespace

ZrWaterfallMap::ZrWaterfallMap(const ZrSonarPings& pings, const ZrSonarTrack& track,
    const ZrBottomLine& bottom, const ZrWaterfallSettings& settings, std::size_t first, std::size_t last)
    : m_settings(settings)
    , m_first(first)
{
    if (first > last || last >= pings.size() || track.Count() != pings.size()) {
        Fail(QCoreApplication::translate("ZrWaterfallMap", "There are no such pings"));
        return;
    }
    if (settings.width < 0 || !IsLength(settings.resolution) || !IsLength(settings.range)) {
        Fail(QCoreApplication::translate(
            "ZrWaterfallMap", "Width, resolution and range must not be negative"));
        return;
    }
    if (!TakePings(pings, bottom, last))
        return;
    std::vector<double> lengths;
    for (std::size_t i = first; i <= last; ++i) {
        for (const eSonarSide side : {sidePort, sideStarboard}) {
            const double length = pings[i].sides[side].SampleLength();
            if (IsShown(side) && length > 0.0)
                lengths.push_back(length);
        }
    }
    FillAltitudes();
    LayAlong(track);
    m_sampleLength = Median(lengths);
    if (LayAcross())
        LayRows();
}

bool ZrWaterfallMap::Fail(const QString& reason)
{
    m_error = reason;
    m_left = m_right = m_height = 0;
    return false;
}

bool ZrWaterfallMap::FailTooLarge(const QString& reason)
{
    m_tooLarge = true;
    return Fail(reason);
}

bool ZrWaterfallMap::IsShown(eSonarSide side) const
{
    return m_settings.sides == ZrWaterfallSettings::bothSides
        || (m_settings.sides == ZrWaterfallSettings::portOnly) == (side == sidePort);
}

bool ZrWaterfallMap::TakePings(const ZrSonarPings& pings, const ZrBottomLine& bottom, std::size_t last)
{
    bool any = false;
    m_pings.reserve(last - m_first + 1);
    for (std::size_t i = m_first; i <= last; ++i) {
        Ping ping{};
        ping.altitude = bottom.Altitude(i);
        for (const eSonarSide side : {sidePort, sideStarboard}) {
            const ZrSonarChannel channel = pings.Side(i, side);
            if (!IsShown(side) || !channel.IsThere() || channel.sampleCount == 0
                || !(channel.slantRange > 0.0) || !std::isfinite(channel.slantRange))
                continue;
            ping.range[side] = static_cast<float>(channel.slantRange);
            any = true;
        }
        m_pings.push_back(ping);
    }
    return any
        || Fail(QCoreApplication::translate(
            "ZrWaterfallMap", "The side-scan lines have no samples on the sides shown"));
}

void ZrWaterfallMap::FillAltitudes()
{
    std::size_t before = m_pings.size(); // the last known one
    for (std::size_t i = 0; i < m_pings.size(); ++i) {
        if (std::isnan(m_pings[i].altitude))
            continue;
        const std::size_t from = before == m_pings.size() ? 0 : before + 1;
        for (std::size_t k = from; k < i; ++k) {
            const double share = before == m_pings.size()
                ? 1.0
                : static_cast<double>(k - before) / static_cast<double>(i - before);
            const double start = before == m_pings.size() ? 0.0 : m_pings[before].altitude;
            m_pings[k].altitude = start + (m_pings[i].altitude - start) * share;
        }
        before = i;
    }
    if (before == m_pings.size())
        return;
    for (std::size_t k = before + 1; k < m_pings.size(); ++k)
        m_pings[k].altitude = m_pings[before].altitude;
    m_slantCorrected = m_settings.slantCorrected;
}

void ZrWaterfallMap::LayAlong(const ZrSonarTrack& track)
{
    std::vector<double> steps;
    for (std::size_t i = m_first + 1; i <= Last(); ++i) {
        const double step = track.Distance(i) - track.Distance(i - 1);
        if (step > 0.0)
            steps.push_back(step);
    }
    const double usual = Median(steps);
    m_speedCorrected = m_settings.speedCorrected && usual > 0.0;
    if (usual > 0.0)
        m_metresPerRow
            = (track.Distance(Last()) - track.Distance(m_first)) / static_cast<double>(m_pings.size() - 1);
    if (!m_speedCorrected) {
        for (std::size_t i = 0; i < m_pings.size(); ++i)
            m_pings[i].along = static_cast<double>(i) + m_reach;
        return;
    }
    m_reach = usual / 2.0;
    const double longest = std::max(gapSteps * usual, gapMetres);
    m_pings[0].along = m_reach;
    for (std::size_t i = 1; i < m_pings.size(); ++i) {
        const double step = track.Distance(m_first + i) - track.Distance(m_first + i - 1);
        m_pings[i - 1].gapBehind = step > longest;
        m_pings[i].along = m_pings[i - 1].along + std::min(step, longest);
    }
}

bool ZrWaterfallMap::LayAcross()
{
    double range = m_settings.range;
    if (range == 0.0) {
        for (std::size_t i = m_first; i <= Last(); ++i)
            range = std::max({range, EndRange(i, sidePort), EndRange(i, sideStarboard)});
    }
    if (!(range > 0.0))
        return Fail(QCoreApplication::translate("ZrWaterfallMap", "No side-scan line reaches the seabed"));
    const bool both = m_settings.sides == ZrWaterfallSettings::bothSides;
    const int sides = both ? 2 : 1;
    double columns = 0.0; // of the wider side
    if (m_settings.width > 0) {
        if (m_settings.width < sides)
            return Fail(QCoreApplication::translate("ZrWaterfallMap", "Two sides need at least two pixels"));
        columns = m_settings.width / sides + m_settings.width % sides;
        m_metres = range / columns;
    } else {
        m_metres = m_settings.resolution;
        if (m_metres == 0.0) {
            // As fine as the samples, or as the largest image allows.
            constexpr double rounding = 0.999; // leaves room for it on both sides
            const double area = sides * range * LengthAlong() / (rounding * mostPixels);
            m_metres = std::max(m_sampleLength, sides * range / MostColumns);
            m_metres = m_speedCorrected ? std::max({m_metres, LengthAlong() / MostRows, std::sqrt(area)})
                                        : std::max(m_metres, area);
            m_metres *= 1.0 + 1e-9; // rounding shall not add a column
        }
        // A column whose middle lies beyond the range would be empty.
        columns = std::max(1.0, std::round(range / m_metres));
    }
    if (!(columns <= MostColumns) || m_settings.width > MostColumns) {
        return FailTooLarge(QCoreApplication::translate(
            "ZrWaterfallMap", "The image would be wider than %1 pixels: choose a coarser resolution")
                                .arg(MostColumns));
    }
    m_right = IsShown(sideStarboard) ? static_cast<int>(columns) : 0;
    m_left = IsShown(sidePort) ? static_cast<int>(columns) : 0;
    if (both && m_settings.width > 0)
        m_left = m_settings.width - m_right;
    return Width() <= MostColumns
        || FailTooLarge(QCoreApplication::translate(
            "ZrWaterfallMap", "The image would be wider than %1 pixels: choose a coarser resolution")
                            .arg(MostColumns));
}

void ZrWaterfallMap::LayRows()
{
    if (m_speedCorrected)
        m_rowLength = m_metresPerRow = m_metres;
    const double rows = std::max(1.0, std::round(LengthAlong() / m_rowLength));
    if (!(rows <= MostRows) || rows * Width() > mostPixels) {
        FailTooLarge(
            QCoreApplication::translate("ZrWaterfallMap",
                "The image would be %1 x %2 pixels, and at most %3 x %4, %5 in all, can be drawn: choose %6")
                .arg(Width())
                .arg(rows, 0, 'f', 0)
                .arg(MostColumns)
                .arg(MostRows)
                .arg(mostPixels, 0, 'f', 0)
                .arg(m_speedCorrected
                        ? QCoreApplication::translate("ZrWaterfallMap", "a coarser resolution or fewer pings")
                        : QCoreApplication::translate("ZrWaterfallMap", "fewer pings")));
        return;
    }
    m_height = static_cast<int>(rows);
}

double ZrWaterfallMap::Altitude(double ping) const
{
    const double last = static_cast<double>(m_pings.size()) - 1.0;
    if (!(last >= 0.0) || std::isnan(ping))
        return unknown;
    const double at = std::clamp(ping - static_cast<double>(m_first), 0.0, last);
    const auto i = static_cast<std::size_t>(at);
    const double from = m_pings[i].altitude;
    return from + (m_pings[std::min(i + 1, m_pings.size() - 1)].altitude - from) * (at - std::floor(at));
}

double ZrWaterfallMap::BottomRange(std::size_t ping) const
{
    const double altitude = m_pings[ping - m_first].altitude;
    const double slantRange = altitude + m_sampleLength;
    return m_slantCorrected ? ZrSlantRange::Ground(slantRange, altitude) : slantRange;
}

double ZrWaterfallMap::EndRange(std::size_t ping, eSonarSide side) const
{
    const Ping& p = m_pings[ping - m_first];
    const double range = static_cast<double>(p.range[side]);
    return m_slantCorrected ? ZrSlantRange::Ground(range, p.altitude) : range;
}

int ZrWaterfallMap::RowOf(int y) const
{
    return m_settings.newest == ZrWaterfallSettings::newestTop ? m_height - 1 - y : y;
}

/// The ping at a length along the track, counted from 0; NaN in a gap.
double ZrWaterfallMap::PingAt(double along) const
{
    const auto next = std::upper_bound(m_pings.begin(), m_pings.end(), along,
        [](double value, const Ping& ping) { return value < ping.along; });
    const double index = static_cast<double>(next - m_pings.begin());
    if (next == m_pings.begin())
        return std::max(-0.5, (along - next->along) / (2.0 * m_reach));
    const Ping& before = *(next - 1);
    if (next == m_pings.end())
        return index - 1.0 + std::min(0.5, (along - before.along) / (2.0 * m_reach));
    if (!before.gapBehind)
        return index - 1.0 + (along - before.along) / (next->along - before.along);
    if (along - before.along <= m_reach)
        return index - 1.0 + (along - before.along) / (2.0 * m_reach);
    return next->along - along <= m_reach ? index - (next->along - along) / (2.0 * m_reach) : unknown;
}

double ZrWaterfallMap::AlongOf(double ping) const
{
    const double last = static_cast<double>(m_pings.size() - 1);
    if (!(ping >= -0.5 && ping <= last + 0.5))
        return unknown;
    const auto i = static_cast<std::size_t>(std::clamp(std::floor(ping), 0.0, last));
    const double part = ping - static_cast<double>(i);
    const Ping& at = m_pings[i];
    if (part < 0.0 || i + 1 == m_pings.size() || (at.gapBehind && part <= 0.5))
        return at.along + part * 2.0 * m_reach;
    const double next = m_pings[i + 1].along;
    return at.gapBehind ? next - (1.0 - part) * 2.0 * m_reach : at.along + part * (next - at.along);
}

ZrWaterfallMap::Row ZrWaterfallMap::RowAt(int y) const
{
    const auto behind = [this](double along) {
        const auto next = std::lower_bound(m_pings.begin(), m_pings.end(), along,
            [](const Ping& ping, double value) { return ping.along < value; });
        return static_cast<std::size_t>(next - m_pings.begin());
    };
    const double from = RowOf(y) * m_rowLength;
    Row row;
    row.first = behind(from);
    const std::size_t end = behind(from + m_rowLength);
    if (end > row.first + 1) {
        row.isMean = true;
        row.first += m_first;
        row.last = m_first + end - 1;
        return row;
    }
    const double ping = PingAt(from + m_rowLength / 2.0);
    if (std::isnan(ping)) {
        row.isGap = true;
        return row;
    }
    const double last = static_cast<double>(m_pings.size() - 1);
    double at = std::clamp(ping, 0.0, last);
    const auto i = static_cast<std::size_t>(at);
    if (m_pings[i].gapBehind)
        at = std::round(at);
    row.first = m_first + static_cast<std::size_t>(std::floor(at));
    row.lastShare = at - std::floor(at);
    row.last = row.lastShare > 0.0 ? row.first + 1 : row.first;
    return row;
}

ZrWaterfallPoint ZrWaterfallMap::ToSonar(const QPointF& pixel) const
{
    ZrWaterfallPoint point;
    if (!(pixel.x() >= 0.0 && pixel.x() <= Width() && pixel.y() >= 0.0 && pixel.y() <= m_height)
        || m_height == 0)
        return point;
    const double row = m_settings.newest == ZrWaterfallSettings::newestTop ? m_height - pixel.y() : pixel.y();
    const double ping = PingAt(row * m_rowLength);
    if (std::isnan(ping))
        return point;
    const double across = (pixel.x() - m_left) * m_metres;
    point.side = across < 0.0 || m_right == 0 ? sidePort : sideStarboard;
    const double last = static_cast<double>(m_pings.size() - 1);
    const auto nearest = m_first + static_cast<std::size_t>(std::lround(std::clamp(ping, 0.0, last)));
    const double range = std::fabs(across);
    if (range > EndRange(nearest, point.side))
        return point;
    point.ping = static_cast<double>(m_first) + ping;
    const double altitude = Altitude(point.ping);
    point.slantRange = m_slantCorrected ? ZrSlantRange::Slant(range, altitude) : range;
    point.groundRange = m_slantCorrected ? range : ZrSlantRange::Ground(range, altitude);
    return point;
}

QPointF ZrWaterfallMap::ToPixel(double ping, eSonarSide side, double slantRange) const
{
    const double along = m_height == 0 ? unknown : AlongOf(ping - static_cast<double>(m_first));
    if (std::isnan(along) || !IsShown(side))
        return {unknown, unknown};
    const double range = m_slantCorrected ? ZrSlantRange::Ground(slantRange, Altitude(ping)) : slantRange;
    const double across = range / m_metres;
    const double row = along / m_rowLength;
    return {side == sidePort ? m_left - across : m_left + across,
        m_settings.newest == ZrWaterfallSettings::newestTop ? m_height - row : row};
}
