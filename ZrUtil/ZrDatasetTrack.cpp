// What views and exports make of the record table: extents, plots, the track as CSV.

#include "ZrUtil/IZrProgress.h"
#include "ZrUtil/ZrDataset.h"

#include <QByteArray>
#include <QDateTime>
#include <QFile>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>

namespace {

/// Minimum, maximum and mean of the numbers among the values added.
struct Extent
{
    double least = std::numeric_limits<double>::infinity();
    double greatest = -std::numeric_limits<double>::infinity();
    double sum = 0.0;
    double count = 0.0;

    void Add(double value)
    {
        if (std::isnan(value))
            return;
        least = std::min(least, value);
        greatest = std::max(greatest, value);
        sum += value;
        ++count;
    }

    double Min() const { return count > 0.0 ? least : 0.0; }

    double Max() const { return count > 0.0 ? greatest : 0.0; }

    double Mean() const { return count > 0.0 ? sum / count : 0.0; }
};

float SeabedDepth(const ZrLogRec& rec)
{
    return rec.depth + rec.altitude;
}

/// More than a number below 10^6 takes: sign, 6 digits, point and 8 decimals, or 6 digits and an exponent.
constexpr std::size_t numberSpace = 32;

/// Whether \p x, of any size below 10^6, may lie exactly between two neighbours of 6 significant digits. It
/// would then need 7, of which the last 10 at the most are behind the point, so 1024 x were whole. Whole
/// numbers need no rounding.
bool MayTieAt6Digits(double x)
{
    return x * 1024.0 == std::floor(x * 1024.0) && x != std::floor(x);
}

/// Appends \p x in the shortest form with 6 significant digits.
///
/// The text is that of `QByteArray::number`, which breaks ties away from zero where `std::to_chars` goes to
/// the even digit; Qt is left to write what may be a tie, zero (it drops the sign) and what is no number.
void AppendShort(QByteArray& out, double x)
{
    if (!(std::fabs(x) < 1e6) || x == 0.0 || MayTieAt6Digits(x)) {
        out += QByteArray::number(x, 'g', 6);
        return;
    }
    char text[numberSpace];
    out.append(text,
        static_cast<int>(
            std::to_chars(text, text + sizeof text, x, std::chars_format::general, 6).ptr - text));
}

/// Appends \p x with 8 decimals, as `QByteArray::number` does it. A number halfway between two texts is an
/// odd multiple of 2^-9.
void AppendDegrees(QByteArray& out, double x)
{
    if (!(std::fabs(x) < 1e6) || x * 512.0 == std::floor(x * 512.0)) {
        out += QByteArray::number(x, 'f', 8);
        return;
    }
    char text[numberSpace];
    out.append(text,
        static_cast<int>(std::to_chars(text, text + sizeof text, x, std::chars_format::fixed, 8).ptr - text));
}

/// Local date and time as "dd/MM/yyyy hh:mm:ss", the text that `QDateTime::toString` gives.
///
/// Asking for the local time costs far more than the rest of a row, so it is done once for each hour of
/// universal time (twice, for its first and its last millisecond) and counted on from there; hours in which
/// the clocks change are not counted on. One thread at a time.
class LocalTimeText
{
public:
    /// Appends the text of \p ms milliseconds since the epoch.
    void Append(QByteArray& out, i64 ms)
    {
        const i64 hour = FloorDiv(ms, msPerHour);
        if (hour != m_hour || !m_known)
            LookUp(hour);
        if (!m_uniform) {
            out += QDateTime::fromMSecsSinceEpoch(ms)
                       .toString(QStringLiteral("dd/MM/yyyy hh:mm:ss"))
                       .toLatin1();
            return;
        }
        const i64 local = ms + m_offset;
        const i64 day = FloorDiv(local, msPerDay);
        if (day != m_day || m_dayText.isEmpty()) {
            m_day = day;
            m_dayText
                = QDate::fromJulianDay(day + epochDay).toString(QStringLiteral("dd/MM/yyyy ")).toLatin1();
        }
        out += m_dayText;
        const int second = static_cast<int>((local - day * msPerDay) / 1000);
        AppendTwo(out, second / 3600, ':');
        AppendTwo(out, second / 60 % 60, ':');
        AppendTwo(out, second % 60, '\0');
    }

private:
    static constexpr i64 msPerHour = 3600 * 1000;
    static constexpr i64 msPerDay = 24 * msPerHour;
    static constexpr i64 epochDay = 2440588; ///< Julian day of 1970-01-01

    static i64 FloorDiv(i64 a, i64 b) { return a / b - (a % b < 0 ? 1 : 0); }

    static void AppendTwo(QByteArray& out, int number, char behind)
    {
        out += static_cast<char>('0' + number / 10);
        out += static_cast<char>('0' + number % 10);
        if (behind)
            out += behind;
    }

    /// Local time less universal time at \p ms, in milliseconds.
    static i64 OffsetAt(i64 ms)
    {
        const QDateTime local = QDateTime::fromMSecsSinceEpoch(ms);
        return (local.date().toJulianDay() - epochDay) * msPerDay + local.time().msecsSinceStartOfDay() - ms;
    }

    void LookUp(i64 hour)
    {
        m_hour = hour;
        m_known = true;
        m_offset = OffsetAt(hour * msPerHour);
        m_uniform = m_offset == OffsetAt(hour * msPerHour + msPerHour - 1);
    }

    bool m_known = false;
    i64 m_hour = 0; ///< hours since the epoch, universal time
    i64 m_offset = 0; ///< of local time in that hour, milliseconds
    bool m_uniform = false; ///< whether the offset holds for the whole hour
    i64 m_day = 0; ///< local days since the epoch
    QByteArray m_dayText;
};

/// Appends the local time of \p time, in seconds since the epoch; nothing for times far beyond any calendar
/// and for what is no number.
void AppendTime(QByteArray& out, LocalTimeText& text, double time)
{
    constexpr double greatestMs = 9e18;
    const double ms = time * 1000.0;
    if (std::fabs(ms) <= greatestMs)
        text.Append(out, static_cast<i64>(ms));
}

const char trackHeader[] = u8"#Rec, Time (hh:mm:ss), Dive Time (hrs), Latitude (º), Longitude (º), Depth(m), "
                           u8"Seabed Depth(m), Heading (º),  Pitch (º),  Roll (º)\n";

/// Appends the line of record \p index.
void AppendRow(QByteArray& out, LocalTimeText& text, const ZrLogRec& rec, i64 index, double startTime)
{
    out += QByteArray::number(index);
    out += ", ";
    AppendTime(out, text, rec.time);
    out += ", ";
    AppendShort(out, (rec.time - startTime) / 3600.0);
    out += ", ";
    AppendDegrees(out, rec.latitude);
    out += ", ";
    AppendDegrees(out, rec.longitude);
    for (float value : {rec.depth, SeabedDepth(rec), rec.heading, rec.pitch, rec.roll}) {
        out += ", ";
        AppendShort(out, static_cast<double>(value));
    }
    out += '\n';
}

} // namespace

void ZrDataset::UpdateExtents()
{
    Extent latitudes;
    Extent longitudes;
    Extent seabed;
    altitudePlot.clear();
    seabedPlot.clear();
    altitudePlot.reserve(2 * recs.size());
    seabedPlot.reserve(4 * recs.size());
    for (std::size_t i = 0; i < recs.size(); ++i) {
        const ZrLogRec& rec = recs[i];
        const float x = static_cast<float>(i);
        const float depth = SeabedDepth(rec);
        latitudes.Add(rec.latitude);
        longitudes.Add(rec.longitude);
        seabed.Add(static_cast<double>(depth));
        seabedPlot.insert(seabedPlot.end(), {x, 0.0f, x, depth});
        altitudePlot.insert(altitudePlot.end(), {x, rec.altitude});
    }
    minLatitude = latitudes.Min();
    maxLatitude = latitudes.Max();
    minLongitude = longitudes.Min();
    maxLongitude = longitudes.Max();
    meanLatitude = latitudes.Mean();
    meanLongitude = longitudes.Mean();
    maxSeabed = static_cast<float>(seabed.Max() * 1.1);
    curRec = recs.empty() ? -1 : 0;
}

bool ZrDataset::ExportTrack(QString path, int first, int last, IZrProgress* progress)
{
    constexpr int blockSize = 64 * 1024;
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Text | QIODevice::Unbuffered))
        return false;
    if (progress)
        progress->UpdateProgress(0);
    QByteArray block(trackHeader);
    block.reserve(blockSize + 1024);
    LocalTimeText timeText;
    // The table is looked at anew for each row: whoever watches the progress may replace it.
    for (i64 i = first; i < last && i >= 0 && i < static_cast<i64>(recs.size()); ++i) {
        AppendRow(block, timeText, recs[static_cast<std::size_t>(i)], i, recs.front().time);
        if (progress)
            progress->UpdateProgress(static_cast<int>(i * 100 / static_cast<i64>(recs.size())));
        if (block.size() >= blockSize) {
            if (file.write(block) != block.size())
                return false;
            block.resize(0);
        }
    }
    return file.write(block) == block.size();
}

bool ZrDataset::ExportTrack(QString path, IZrProgress* progress)
{
    return ExportTrack(std::move(path), 0, static_cast<int>(recs.size()), progress);
}
