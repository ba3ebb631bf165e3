#include "ZrKit/sonar/ZrMosaic.h"

#include "ZrKit/sonar/ZrBottomLine.h"
#include "ZrKit/sonar/ZrMosaicPainter.h"
#include "ZrKit/sonar/ZrMosaicPing.h"
#include "ZrKit/sonar/ZrMosaicRaster.h"
#include "ZrKit/sonar/ZrSonarContrast.h"
#include "ZrKit/sonar/ZrSonarGain.h"
#include "ZrKit/sonar/ZrSonarGeo.h"
#include "ZrKit/sonar/ZrSonarLog.h"
#include "ZrKit/sonar/ZrSonarPalette.h"
#include "ZrKit/sonar/ZrSonarTrack.h"
#include "ZrUtil/IZrProgress.h"

#include <algorithm>
#include <cmath>
#include <new>

namespace {

constexpr double finest = 0.001; ///< metres of a pixel
constexpr double coarsest = 1000.0;
constexpr double longestSide = 100000.0; ///< pixels
constexpr u64 mostPixelsEver = 500'000'000;
/// Pings that the automatic gain looks at, evenly spread over each line.
constexpr std::size_t mostLearnt = 500;
/// Degrees from the central meridian within which positions are true to some centimetres.
constexpr double widestZone = 6.0;
/// Share of the pings that may have a wild position.
constexpr double wildShare = 0.05;
/// Shares of the work, by which progress is told.
constexpr double learntAt = 0.15;
constexpr double drawnAt = 0.9;

double Turn(double from, double to)
{
    return std::fabs(std::remainder(to - from, 360.0));
}

double Median(std::vector<double>& values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// The next step of 1, 2, 5, 10, … at or below \p value, or above it.
double RoundStep(double value, bool up)
{
    const double decade = std::pow(10.0, std::floor(std::log10(value)));
    constexpr double near = 1.0 + 1e-9;
    if (up) {
        for (const double step : {1.0, 2.0, 5.0}) {
            if (value < step * decade / near)
                return step * decade;
        }
        return 10.0 * decade;
    }
    for (const double step : {5.0, 2.0}) {
        if (value * near >= step * decade)
            return step * decade;
    }
    return decade;
}

} // namespace

struct ZrMosaic::Line
{
    ZrSonarLog& log;
    std::size_t first;
    std::size_t last;
    std::unique_ptr<const ZrSonarTrack> own; ///< when it was not given
    const ZrSonarTrack& track;
    ZrSonarGeo geo;
    std::vector<ZrMosaicPing> sides[2]; ///< by `eSonarSide`

    /// Along \p given or, without that, along a track made by \p settings.
    Line(ZrSonarLog& from, const ZrBottomLine& bottom, std::size_t begin, std::size_t end,
        const ZrSonarTrackSettings& settings, const ZrSonarTrack* given)
        : log(from)
        , first(begin)
        , last(std::min(end, from.Pings().size() - 1))
        , own(given ? nullptr : std::make_unique<const ZrSonarTrack>(from.Pings(), settings))
        , track(given ? *given : *own)
        , geo(from.Pings(), track, bottom)
    {
    }
};

struct ZrMosaic::Work
{
    ZrSonarGain gain;
    ZrMosaicRaster raster;
};

ZrMosaic::ZrMosaic(const ZrMosaicSettings& settings)
    : m_settings(settings)
{
}

ZrMosaic::~ZrMosaic() = default;

void ZrMosaic::AddLine(ZrSonarLog& log, const ZrBottomLine& bottom, std::size_t first, std::size_t last)
{
    if (!log.Pings().empty())
        m_lines.push_back(std::make_unique<Line>(log, bottom, first, last, m_settings.track, nullptr));
}

void ZrMosaic::AddLine(ZrSonarLog& log, const ZrBottomLine& bottom, const ZrSonarTrack& track,
    std::size_t first, std::size_t last)
{
    if (!log.Pings().empty())
        m_lines.push_back(std::make_unique<Line>(log, bottom, first, last, m_settings.track, &track));
}

bool ZrMosaic::Fail(const QString& error)
{
    m_error = error;
    m_work.reset();
    m_image = QImage();
    return false;
}

QString ZrMosaic::NoMemory() const
{
    return tr("There is not enough memory for a picture of %1 x %2 pixels")
        .arg(m_frame.width)
        .arg(m_frame.height);
}

bool ZrMosaic::Report(double share)
{
    if (cancel)
        return Fail(tr("Cancelled"));
    const int percent = static_cast<int>(share * 100.0);
    if (progress && percent != m_percent)
        progress->UpdateProgress(percent);
    m_percent = percent;
    return true;
}

bool ZrMosaic::Build()
{
    m_error.clear();
    m_image = QImage();
    m_strips = m_gaps = m_seen = 0;
    m_percent = -1;
    return CheckSettings() && Report(0.0) && PlaceFrame() && FitFrame() && LearnGain() && Draw() && Colour()
        && Report(1.0);
}

bool ZrMosaic::CheckSettings()
{
    const ZrMosaicSettings& s = m_settings;
    if (s.resolution != 0.0 && !(s.resolution >= finest && s.resolution <= coarsest)) {
        return Fail(tr("The size of a pixel must be from %1 to %2 metres, or 0 for an automatic one")
                        .arg(finest)
                        .arg(coarsest));
    }
    if (!s.port && !s.starboard)
        return Fail(tr("Neither port nor starboard is to be shown"));
    for (const double limit : {s.nadirGap, s.farGap, s.maxTime, s.maxStep, s.maxTurn, s.maxEndTurn,
             s.maxFixGap, s.track.smoothing}) {
        if (!(limit >= 0.0))
            return Fail(tr("A limit of the settings is negative or not a number"));
    }
    if (!std::isfinite(s.track.headingOffset))
        return Fail(tr("The heading offset is not a number"));
    if (!(s.gamma > 0.0) || !std::isfinite(s.gamma) || !(s.clip >= 0.0 && s.clip <= 0.5))
        return Fail(tr("The contrast of the settings makes no sense"));
    if (!ZrSonarPalette::Names().contains(s.palette)) {
        return Fail(tr("There is no palette \"%1\"; there are %2")
                        .arg(s.palette, ZrSonarPalette::Names().join(QStringLiteral(", "))));
    }
    return true;
}

/// The middle of the pings, which a few wild positions do not move. Not valid when none is placed or `cancel`
/// was set.
ZrGeoPoint ZrMosaic::Middle() const
{
    std::vector<double> lats;
    std::vector<double> lngs; // relative to the first one
    double start = 0.0;
    for (const std::unique_ptr<Line>& line : m_lines) {
        for (std::size_t i = line->first; i <= line->last; ++i) {
            if (cancel)
                return {};
            const ZrGeoPoint at = line->track.Position(i);
            if (!at.IsValid())
                continue;
            start = lats.empty() ? at.lng : start;
            lats.push_back(at.lat);
            lngs.push_back(std::remainder(at.lng - start, 360.0));
        }
    }
    if (lats.empty())
        return {};
    return {Median(lats), std::remainder(start + Median(lngs), 360.0)};
}

bool ZrMosaic::PlaceFrame()
{
    const ZrGeoPoint middle = Middle();
    if (!Report(0.0))
        return false;
    if (!middle.IsValid())
        return Fail(tr("No side-scan line has a known position"));
    m_frame = ZrMosaicFrame::ZoneAt(middle);
    m_placed = m_far = m_short = 0;
    for (const std::unique_ptr<Line>& line : m_lines) {
        for (const int side : {sidePort, sideStarboard})
            PlaceSide(*line, side);
    }
    if (!Report(0.0))
        return false;
    if (static_cast<double>(m_far) > wildShare * static_cast<double>(m_placed + m_far)) {
        return Fail(
            tr("The side-scan lines lie too far apart for one picture: not all are within %1 degrees of "
               "the middle of zone %2")
                .arg(widestZone)
                .arg(m_frame.zone));
    }
    if (!HasSamples())
        return Fail(tr("The side-scan lines have no samples on the sides shown"));
    if (m_placed == 0 && m_short > 0)
        return Fail(tr("No side-scan line reaches the seabed, or the far gap leaves nothing of it"));
    if (m_strips == 0)
        return Fail(tr("No two side-scan lines that follow each other have a known place, or all lie apart"));
    return Report(0.0);
}

/// Whether anything was recorded on the sides that are shown.
bool ZrMosaic::HasSamples() const
{
    const auto shows = [this](const ZrSonarPing& ping) {
        return (m_settings.port && ping.sides[sidePort].sampleCount > 0)
            || (m_settings.starboard && ping.sides[sideStarboard].sampleCount > 0);
    };
    return std::any_of(m_lines.begin(), m_lines.end(), [&](const std::unique_ptr<Line>& line) {
        const auto begin = line->log.Pings().begin();
        return line->first <= line->last
            && std::any_of(begin + static_cast<std::ptrdiff_t>(line->first),
                begin + static_cast<std::ptrdiff_t>(line->last) + 1, shows);
    });
}

/// Whether the grid of the picture is not meant for a position.
bool ZrMosaic::IsFar(ZrGeoPoint at) const
{
    return at.IsValid() && std::fabs(std::remainder(at.lng - m_frame.CentralMeridian(), 360.0)) > widestZone;
}

void ZrMosaic::PlaceSide(Line& line, int side)
{
    std::vector<ZrMosaicPing>& pings = line.sides[side];
    pings.clear();
    if (side == sidePort ? !m_settings.port : !m_settings.starboard)
        return;
    const auto which = static_cast<eSonarSide>(side);
    for (std::size_t i = line.first; i <= line.last && !cancel; ++i) {
        const ZrSonarPing& from = line.log.Pings()[i];
        ZrMosaicPing ping;
        ping.index = i;
        ping.reach = line.geo.GroundRange({i, which, from.sides[side].sampleCount - 0.5}) - m_settings.farGap;
        double column = 0.0;
        double row = 0.0;
        double farColumn = 0.0;
        double farRow = 0.0;
        if (IsFar(line.track.Position(i))) {
            ++m_far;
            continue;
        }
        if (ping.reach <= 0.0)
            ++m_short;
        if (!(ping.reach > 0.0) || !(from.pose.gap <= m_settings.maxFixGap)
            || !m_frame.Find(line.track.Locate(i, which, 0.0), column, row)
            || !m_frame.Find(line.track.Locate(i, which, ping.reach), farColumn, farRow))
            continue;
        ping.at = {column, -row};
        ping.ray = {(farColumn - column) / ping.reach, (row - farRow) / ping.reach};
        pings.push_back(ping);
        ++m_placed;
    }
    for (std::size_t k = 0; k + 1 < pings.size(); ++k) {
        const bool isEnd = k == 0 || k + 2 == pings.size();
        pings[k].joined
            = AreJoined(line, pings[k], pings[k + 1], isEnd ? m_settings.maxEndTurn : m_settings.maxTurn);
        ++(pings[k].joined ? m_strips : m_gaps);
    }
}

bool ZrMosaic::AreJoined(const Line& line, const ZrMosaicPing& a, const ZrMosaicPing& b, double maxTurn) const
{
    const ZrSonarPings& pings = line.log.Pings();
    return std::fabs(pings.Time(b.index) - pings.Time(a.index)) <= m_settings.maxTime
        && std::hypot(b.at.x - a.at.x, b.at.y - a.at.y) <= m_settings.maxStep
        && Turn(line.track.Heading(a.index), line.track.Heading(b.index)) <= maxTurn;
}

/// As fine as half the way between pings or a sample, whichever is coarser.
double ZrMosaic::AutomaticResolution() const
{
    std::vector<double> steps;
    std::vector<double> samples;
    for (const std::unique_ptr<Line>& line : m_lines) {
        for (const int side : {sidePort, sideStarboard}) {
            const std::vector<ZrMosaicPing>& pings = line->sides[side];
            for (std::size_t k = 0; k + 1 < pings.size(); ++k) {
                if (!pings[k].joined)
                    continue;
                steps.push_back(
                    std::hypot(pings[k + 1].at.x - pings[k].at.x, pings[k + 1].at.y - pings[k].at.y));
                samples.push_back(
                    line->log.Pings().Side(pings[k].index, static_cast<eSonarSide>(side)).SampleLength());
            }
        }
    }
    const double wanted = std::max(Median(steps) / 2.0, Median(samples));
    return std::clamp(RoundStep(wanted, false), finest, coarsest);
}

/// Sets edges and size of the picture, the edges at whole multiples of the pixel.
bool ZrMosaic::FitFrame()
{
    double west = std::numeric_limits<double>::infinity();
    double east = -west;
    double south = west;
    double north = -west;
    const auto include = [&](const ZrMosaicPing& ping) {
        for (const double range : {0.0, ping.reach}) {
            const double x = ping.at.x + ping.ray.x * range;
            const double y = ping.at.y + ping.ray.y * range;
            west = std::min(west, x);
            east = std::max(east, x);
            south = std::min(south, y);
            north = std::max(north, y);
        }
    };
    for (const std::unique_ptr<Line>& line : m_lines) {
        for (const std::vector<ZrMosaicPing>& pings : line->sides) {
            for (std::size_t k = 0; k + 1 < pings.size(); ++k) {
                if (!pings[k].joined)
                    continue;
                include(pings[k]);
                include(pings[k + 1]);
            }
        }
    }
    const double most = static_cast<double>(std::min(m_settings.mostPixels, mostPixelsEver));
    const bool isGiven = m_settings.resolution > 0.0;
    double resolution = isGiven ? m_settings.resolution : AutomaticResolution();
    for (;;) {
        const double left = std::floor(west / resolution);
        const double top = std::ceil(north / resolution);
        const double width = std::max(std::ceil(east / resolution) - left, 1.0);
        const double height = std::max(top - std::floor(south / resolution), 1.0);
        if (width <= longestSide && height <= longestSide && width * height <= most) {
            m_frame.resolution = resolution;
            m_frame.west = left * resolution;
            m_frame.north = top * resolution;
            m_frame.width = static_cast<int>(width);
            m_frame.height = static_cast<int>(height);
            return true;
        }
        if (isGiven || resolution >= coarsest) {
            return Fail(
                tr("The picture would have %1 x %2 pixels of %3 m; at most %4 pixels are allowed, and "
                   "%5 to a side. A larger pixel or fewer lines make it smaller")
                    .arg(width, 0, 'f', 0)
                    .arg(height, 0, 'f', 0)
                    .arg(resolution)
                    .arg(most, 0, 'f', 0)
                    .arg(longestSide, 0, 'f', 0));
        }
        resolution = RoundStep(resolution, true);
    }
}

bool ZrMosaic::LearnGain()
{
    try {
        m_work.reset(new Work{
            ZrSonarGain(m_settings.gain), ZrMosaicRaster(m_frame.width, m_frame.height, m_settings.blend)});
    } catch (const std::bad_alloc&) {
        return Fail(NoMemory());
    }
    if (m_settings.gain.mode != ZrSonarGainSettings::gainAuto)
        return true;
    std::vector<u16> samples;
    double done = 0.0;
    for (const std::unique_ptr<Line>& line : m_lines) {
        const std::size_t count = line->last - line->first + 1;
        const std::size_t step = (count + mostLearnt - 1) / mostLearnt;
        for (std::size_t i = line->first; i <= line->last; i += step) {
            for (const eSonarSide side : {sidePort, sideStarboard}) {
                if (line->log.ReadSamples(i, side, samples))
                    m_work->gain.Learn(
                        samples, side, line->log.Pings().Side(i, side).slantRange, line->geo.Altitude(i));
            }
            const double share = static_cast<double>(i - line->first) / static_cast<double>(count);
            if (!Report((done + share) / static_cast<double>(m_lines.size()) * learntAt))
                return false;
        }
        done += 1.0;
    }
    m_work->gain.Prepare();
    return true;
}

/// Ping by ping, both sides in turn, so that what is newer comes later.
bool ZrMosaic::Draw()
{
    double done = 0.0;
    for (const std::unique_ptr<Line>& line : m_lines) {
        std::vector<ZrMosaicPainter> painters;
        for (const eSonarSide side : {sidePort, sideStarboard}) {
            painters.emplace_back(ZrMosaicRows(line->log, line->geo, m_work->gain, side), line->track,
                line->sides[side], m_settings, m_frame, m_work->raster);
        }
        std::size_t next[2] = {0, 0};
        for (std::size_t i = line->first; i <= line->last; ++i) {
            for (const int side : {sidePort, sideStarboard}) {
                const std::vector<ZrMosaicPing>& pings = line->sides[side];
                std::size_t& k = next[side];
                if (k >= pings.size() || pings[k].index != i)
                    continue;
                if (pings[k].joined) {
                    painters[static_cast<std::size_t>(side)].Fill(k);
                    done += 1.0;
                }
                ++k;
            }
            if (!Report(learntAt + (drawnAt - learntAt) * done / static_cast<double>(m_strips)))
                return false;
        }
    }
    return true;
}

bool ZrMosaic::Colour()
{
    ZrSonarContrast contrast;
    contrast.clip = m_settings.clip;
    contrast.gamma = m_settings.gamma;
    ZrSonarPalette palette;
    palette.Load(m_settings.palette);
    const ZrMosaicRaster& raster = m_work->raster;
    const auto width = static_cast<std::size_t>(m_frame.width);
    std::vector<u16> seen;
    std::vector<u8> bytes(width);
    for (std::size_t start = 0; start < raster.Size(); start += width) {
        seen.clear();
        for (std::size_t i = start; i < start + width; ++i) {
            if (raster.IsSeen(i))
                seen.push_back(raster.Amplitude(i));
        }
        m_seen += seen.size();
        contrast.Add(seen);
    }
    if (m_seen == 0)
        return Fail(tr("No pixel was seen: the sonar did not move, or its samples cannot be read"));
    contrast.Measure();
    m_image = QImage(m_frame.width, m_frame.height, QImage::Format_ARGB32);
    if (m_image.isNull())
        return Fail(NoMemory());
    seen.resize(width);
    for (int row = 0; row < m_frame.height; ++row) {
        const std::size_t start = static_cast<std::size_t>(row) * width;
        for (std::size_t i = 0; i < width; ++i)
            seen[i] = raster.Amplitude(start + i);
        contrast.Map(seen, bytes);
        auto* const line = reinterpret_cast<QRgb*>(m_image.scanLine(row));
        for (std::size_t i = 0; i < width; ++i)
            line[i] = raster.IsSeen(start + i) ? palette.Colour(bytes[i]) : qRgba(0, 0, 0, 0);
        if (!Report(drawnAt + (1.0 - drawnAt) * (row + 1) / m_frame.height))
            return false;
    }
    m_work.reset();
    return true;
}
