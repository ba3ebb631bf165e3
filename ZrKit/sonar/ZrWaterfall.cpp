#include "ZrKit/sonar/ZrWaterfall.h"

#include "ZrKit/sonar/ZrSonarGain.h"
#include "ZrKit/sonar/ZrSonarLog.h"
#include "ZrKit/sonar/ZrSonarPalette.h"
#include "ZrKit/sonar/ZrWaterfallLines.h"
#include "ZrKit/sonar/ZrWaterfallMap.h"
#include "ZrUtil/IZrProgress.h"

#include <QCoreApplication>

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

/// At most so many pings and rows stand for all where the gain is learnt and the contrast measured.
constexpr std::size_t mostLearnt = 4096;
constexpr int mostMeasured = 1024;
/// Where the first one and the second one end, as shares of the whole work.
constexpr double learnt = 0.2;
constexpr double measured = 0.5;
/// Without an altitude so much of the range is left out of the statistics: the outgoing pulse.
constexpr double pulseShare = 0.05;

/// Draws the first echo of the seabed, row by row, without breaks where it moves by several columns.
class BottomPen
{
public:
    explicit BottomPen(const ZrWaterfallMap& map)
        : m_map(map)
    {
    }

    void Draw(int y, QRgb* pixels)
    {
        const ZrWaterfallMap::Row row = m_map.RowAt(y);
        if (row.isGap) {
            m_before = -1;
            return;
        }
        const double ping = row.isMean ? static_cast<double>(row.first + row.last) / 2.0
                                       : static_cast<double>(row.first) + row.lastShare;
        const double columns = m_map.Altitude(ping) / m_map.MetresPerPixel();
        if (!(columns < MostColumns))
            return;
        const int at = static_cast<int>(columns);
        const int from = m_before < 0 ? at : std::min(at, m_before + (at > m_before ? 1 : 0));
        const int to = m_before < 0 ? at : std::max(at, m_before - (at < m_before ? 1 : 0));
        const int left = m_map.Columns(sidePort);
        for (int i = from; i <= to; ++i) {
            if (i < left)
                pixels[left - 1 - i] = m_map.Settings().bottom;
            if (i < m_map.Columns(sideStarboard))
                pixels[left + i] = m_map.Settings().bottom;
        }
        m_before = at;
    }

private:
    static constexpr double MostColumns = ZrWaterfallMap::MostColumns;

    const ZrWaterfallMap& m_map;
    int m_before = -1; ///< column of the row before, from the middle
};

/// The colour of each brightness. A gain or contrast that is no number, or no contrast at all, changes
/// nothing.
std::array<QRgb, 256> Colours(const ZrSonarPalette& palette, const ZrWaterfallSettings& settings)
{
    std::array<QRgb, 256> colours = palette.Colours();
    if (settings.invert)
        std::reverse(colours.begin(), colours.end());
    const double slope = settings.shownContrast;
    if (!std::isfinite(settings.shownGain) || !std::isfinite(slope) || !(slope > 0.0))
        return colours;
    const double factor = std::pow(10.0, settings.shownGain / 20.0);
    const std::array<QRgb, 256> plain = colours;
    for (std::size_t i = 0; i < colours.size(); ++i) {
        const double level = ((static_cast<double>(i) / 255.0 - 0.5) * slope + 0.5) * factor;
        colours[i] = plain[static_cast<std::size_t>(std::lround(std::clamp(level, 0.0, 1.0) * 255.0))];
    }
    return colours;
}

} // namespace

ZrWaterfall::ZrWaterfall(ZrSonarLog& log)
    : m_log(log)
{
}

bool ZrWaterfall::Fail(const QString& reason)
{
    m_error = reason;
    return false;
}

/// Tells the progress; false when the work is to end.
bool ZrWaterfall::GoOn(double share)
{
    const int percent = static_cast<int>(share * 100.0);
    if (progress && percent != m_percent)
        progress->UpdateProgress(percent);
    m_percent = percent;
    return !cancel || Fail(QStringLiteral("Cancelled"));
}

bool ZrWaterfall::Render(const ZrWaterfallMap& map, QImage& image)
{
    image = QImage();
    m_error = map.Error();
    m_percent = -1;
    if (!m_error.isEmpty())
        return false;
    const ZrWaterfallSettings& settings = map.Settings();
    if (map.Last() >= m_log.Pings().size())
        return Fail(QCoreApplication::translate("ZrWaterfall", "There are no such pings"));
    ZrSonarPalette palette;
    if (!palette.Load(settings.palette))
        return Fail(
            QCoreApplication::translate("ZrWaterfall", "There is no palette \"%1\"").arg(settings.palette));
    ZrSonarGain gain(settings.gain);
    if (!Learn(map, gain))
        return false;
    gain.Prepare();
    ZrWaterfallLines lines(m_log, map, gain);
    m_contrast = ZrSonarContrast();
    m_contrast.clip = settings.clip;
    m_contrast.gamma = settings.gamma;
    if (!Measure(map, lines))
        return false;
    const bool opaque = qAlpha(settings.noData) == 255 && qAlpha(settings.bottom) == 255;
    QImage drawn(map.Width(), map.Height(), opaque ? QImage::Format_RGB32 : QImage::Format_ARGB32);
    if (drawn.isNull())
        return Fail(QCoreApplication::translate(
            "ZrWaterfall", "There is not enough memory for an image of %1 x %2 pixels")
                        .arg(map.Width())
                        .arg(map.Height()));
    const std::array<QRgb, 256> colours = Colours(palette, settings);
    std::vector<u8> bytes(static_cast<std::size_t>(map.Width()));
    BottomPen pen(map);
    for (int y = 0; y < map.Height(); ++y) {
        lines.Make(y);
        m_contrast.Map(lines.Amplitudes(), bytes);
        auto* pixels = reinterpret_cast<QRgb*>(drawn.scanLine(y));
        for (std::size_t x = 0; x < bytes.size(); ++x)
            pixels[x] = lines.Known()[x] != 0 ? colours[bytes[x]] : settings.noData;
        if (settings.drawBottom && !map.IsSlantCorrected())
            pen.Draw(y, pixels);
        if (!GoOn(measured + (1.0 - measured) * (y + 1) / map.Height()))
            return false;
    }
    image = drawn;
    return true;
}

bool ZrWaterfall::Learn(const ZrWaterfallMap& map, ZrSonarGain& gain)
{
    if (gain.Settings().mode != ZrSonarGainSettings::gainAuto)
        return GoOn(learnt);
    const std::size_t count = map.Last() - map.First() + 1;
    const std::size_t step = (count + mostLearnt - 1) / mostLearnt;
    std::vector<u16> samples;
    for (std::size_t i = 0; i < count; i += step) {
        const std::size_t ping = map.First() + i;
        const double altitude = map.Altitude(static_cast<double>(ping));
        for (const eSonarSide side : {sidePort, sideStarboard}) {
            const double range = m_log.Pings().Side(ping, side).slantRange;
            if (map.Columns(side) == 0 || !m_log.ReadSamples(ping, side, samples))
                continue;
            gain.Learn(samples, side, range, altitude);
        }
        if (!GoOn(learnt * static_cast<double>(i + 1) / static_cast<double>(count)))
            return false;
    }
    return true;
}

bool ZrWaterfall::Measure(const ZrWaterfallMap& map, ZrWaterfallLines& lines)
{
    const ZrWaterfallSettings& settings = map.Settings();
    if (!std::isnan(settings.lo) && !std::isnan(settings.hi)) {
        m_contrast.SetRange(settings.lo, settings.hi);
        return GoOn(measured);
    }
    const int step = (map.Height() + mostMeasured - 1) / mostMeasured;
    const int left = map.Columns(sidePort);
    std::vector<u16> seen;
    for (int y = 0; y < map.Height(); y += step) {
        lines.Make(y);
        const ZrWaterfallMap::Row row = map.RowAt(y);
        double from = row.isGap ? 0.0 : map.BottomRange(row.first);
        if (std::isnan(from))
            from = pulseShare * map.MetresPerPixel() * std::max(left, map.Columns(sideStarboard));
        const double columns = from / map.MetresPerPixel();
        seen.clear();
        for (int x = 0; x < map.Width(); ++x) {
            const auto i = static_cast<std::size_t>(x);
            if (lines.Known()[i] != 0 && std::fabs(x + 0.5 - left) > columns)
                seen.push_back(lines.Amplitudes()[i]);
        }
        m_contrast.Add(seen);
        if (!GoOn(learnt + (measured - learnt) * (y + 1) / map.Height()))
            return false;
    }
    m_contrast.Measure();
    return true;
}
