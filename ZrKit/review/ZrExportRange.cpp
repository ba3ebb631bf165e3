#include "ZrKit/review/ZrExportRange.h"

#include "ZrKit/export/ZrTrackExport.h"
#include "ZrKit/export/ZrTrackText.h"
#include "ZrKit/review/ZrDatasetTrack.h"
#include "ZrKit/review/ZrEventTable.h"
#include "ZrKit/review/ZrSteadyTime.h"
#include "ZrUtil/IZrProgress.h"
#include "ZrUtil/ZrDataset.h"

#include <QBuffer>
#include <QFileInfo>
#include <QSaveFile>

#include <algorithm>
#include <cmath>

namespace {

/// Hands bytes on, tells how many, and takes no more once it is to stop.
class Gate final : public QIODevice
{
public:
    Gate(QIODevice& out, std::function<bool(i64)> goOn)
        : m_out(out)
        , m_goOn(std::move(goOn))
    {
        open(WriteOnly | Unbuffered);
    }

    bool isSequential() const override { return true; }

protected:
    qint64 readData(char*, qint64) override { return -1; }

    qint64 writeData(const char* bytes, qint64 count) override
    {
        if (m_failed || !m_goOn(m_written) || m_out.write(bytes, count) != count) {
            m_failed = true;
            return -1;
        }
        m_written += count;
        return count;
    }

private:
    QIODevice& m_out;
    std::function<bool(i64)> m_goOn;
    i64 m_written = 0;
    bool m_failed = false;
};

QByteArray RecordLine(const ZrTrackPoint& point, ZrTrackText& text)
{
    QString line = text.Time(point.time) + QLatin1Char(',');
    if (point.HasPosition())
        line += ZrTrackText::Latitude(point.latitude) + QLatin1Char(',')
            + ZrTrackText::Longitude(point.longitude);
    else
        line += QLatin1Char(',');
    for (const double value :
        {point.depth, point.altitude, point.depth + point.altitude, point.heading, point.pitch, point.roll})
        line += QLatin1Char(',') + ZrTrackText::Number(value, 2);
    return line.toUtf8() + "\r\n";
}

/// Bytes that \p data fills in \p format, from a sample of it.
double ExpectedBytes(ZrTrackExport::eFormat format, const ZrTrackData& data)
{
    constexpr std::size_t sampled = 200;
    if (data.points.size() <= sampled)
        return 1.0; // done at once
    ZrTrackData part = data;
    part.points = data.points.subspan(0, sampled);
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    ZrTrackExport::WriteTo(buffer, format, part);
    return static_cast<double>(buffer.size()) / sampled * static_cast<double>(data.points.size());
}

} // namespace

ZrExportRange::ZrExportRange(const ZrDataset& dataset, std::size_t first, std::size_t end)
    : m_dataset(dataset)
    , m_first(std::min(first, dataset.recs.size()))
    , m_end(std::max(m_first, std::min(end, dataset.recs.size())))
{
}

std::size_t ZrExportRange::FirstFrom(const ZrSteadyTime& times, double begin)
{
    const std::vector<double>& all = times.Times();
    if (times.IsEmpty() || std::isnan(begin))
        return all.size();
    return static_cast<std::size_t>(std::lower_bound(all.begin(), all.end(), begin) - all.begin());
}

std::size_t ZrExportRange::EndAt(const ZrSteadyTime& times, double end)
{
    const std::vector<double>& all = times.Times();
    if (times.IsEmpty() || std::isnan(end))
        return 0;
    return static_cast<std::size_t>(std::upper_bound(all.begin(), all.end(), end) - all.begin());
}

void ZrExportRange::Begin()
{
    m_error.clear();
    m_damage.clear();
    m_items = 0;
    m_percent = -1;
}

ZrExportRange::eResult ZrExportRange::Fail(const QString& error)
{
    m_items = 0;
    if (cancel)
        return Cancelled;
    m_error = error;
    return Failed;
}

/// \p share of the work is done, 0 to 1.
void ZrExportRange::Report(double share)
{
    const int percent = static_cast<int>(std::min(std::max(share, 0.0), 1.0) * 100.0);
    if (!progress || percent <= m_percent)
        return;
    m_percent = percent;
    progress->UpdateProgress(percent);
}

/// Builds the file \p out by \p fill, which is to write about \p expectedBytes.
ZrExportRange::eResult ZrExportRange::WriteFile(const QString& out, double expectedBytes, const Fill& fill)
{
    const auto fail = [&](const QString& reason) { return Fail(tr("Cannot write %1: %2").arg(out, reason)); };
    if (m_first == m_end)
        return Fail(tr("There is nothing to export"));
    if (!IsWritable(out))
        return Fail(m_error);
    QSaveFile file(out);
    if (!file.open(QIODevice::WriteOnly))
        return fail(file.errorString());
    Gate gate(file, [this, expectedBytes](i64 written) {
        // The last percent is that of the file in its place.
        Report(std::min(static_cast<double>(written) / expectedBytes, 0.99));
        return !cancel;
    });
    if (!fill(gate) || cancel || !file.flush() || !file.commit())
        return fail(file.errorString());
    Report(1.0);
    return Done;
}

ZrExportRange::eResult ZrExportRange::WriteTrack(const QString& out)
{
    Begin();
    const ZrTrackExport::eFormat format = ZrTrackExport::FormatOf(out);
    const std::vector<ZrTrackPoint> points = ZrDatasetTrack::Points(m_dataset, m_first, m_end);
    const std::vector<ZrTrackEvent> events = ZrDatasetTrack::Events(m_dataset, m_first, m_end);
    ZrTrackData data;
    data.name = QFileInfo(m_dataset.fileName).completeBaseName();
    data.points = points;
    data.events = events;
    m_items = static_cast<u64>(std::count_if(
        points.begin(), points.end(), [](const ZrTrackPoint& point) { return point.HasPosition(); }));
    return WriteFile(out, ExpectedBytes(format, data),
        [&](QIODevice& device) { return ZrTrackExport::WriteTo(device, format, data); });
}

ZrExportRange::eResult ZrExportRange::WriteRecords(const QString& out)
{
    Begin();
    constexpr std::size_t linesAtOnce = 1000;
    constexpr double bytesPerLine = 90.0;
    m_items = m_end - m_first;
    return WriteFile(out, bytesPerLine * static_cast<double>(m_items), [this](QIODevice& device) {
        ZrTrackText text;
        QByteArray lines = "time,latitude,longitude,depth,altitude,seabed,heading,pitch,roll\r\n";
        for (std::size_t i = m_first; i < m_end; i += linesAtOnce) {
            for (const ZrTrackPoint& point :
                ZrDatasetTrack::Points(m_dataset, i, std::min(i + linesAtOnce, m_end)))
                lines += RecordLine(point, text);
            if (device.write(lines) != lines.size())
                return false;
            lines.clear();
        }
        return true;
    });
}

ZrExportRange::eResult ZrExportRange::WriteEvents(const QString& out)
{
    Begin();
    const std::vector<ZrDatasetTrack::PlacedEvent> events
        = ZrDatasetTrack::EventsIn(m_dataset, m_first, m_end);
    constexpr double bytesPerLine = 100.0;
    m_items = events.size();
    return WriteFile(out, bytesPerLine * static_cast<double>(m_items + 1), [&events](QIODevice& device) {
        QByteArray lines = ZrEventTable::Heading();
        for (const ZrDatasetTrack::PlacedEvent& placed : events)
            lines += ZrEventTable::Line(*placed.event);
        return device.write(lines) == lines.size();
    });
}
