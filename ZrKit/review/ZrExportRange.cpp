#include "ZrKit/review/ZrExportRange.h"

#include "ZrKit/export/ZrTrackExport.h"
#include "ZrKit/export/ZrTrackPointSource.h"
#include "ZrKit/export/ZrTrackText.h"
#include "ZrKit/review/ZrDatasetRecords.h"
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
    if (data.source->Count() <= sampled)
        return 1.0; // done at once
    std::vector<ZrTrackPoint> points;
    if (!data.source->Read(0, sampled, points))
        return 1.0; // the export will tell, if it cannot read them either
    ZrTrackData part = data;
    part.source = nullptr;
    part.points = points;
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    ZrTrackExport::WriteTo(buffer, format, part);
    return static_cast<double>(buffer.size()) / sampled * static_cast<double>(data.source->Count());
}

} // namespace

/// The records of the part as points of a track; counts those with a position.
class ZrExportRange::Points final : public ZrTrackPointSource
{
public:
    explicit Points(ZrExportRange& part)
        : m_part(part)
    {
    }

    std::size_t Count() const override { return m_part.m_end - m_part.m_first; }

    u64 Placed() const { return m_placed; }

    bool Read(std::size_t first, std::size_t end, std::vector<ZrTrackPoint>& points) override
    {
        points.clear();
        if (m_part.cancel)
            return false;
        if (!m_part.m_records.Read(m_part.m_first + first, m_part.m_first + end, m_read)
            || m_read.size() != end - first)
            return m_part.FailReading();
        points.reserve(m_read.size());
        for (const ZrLogRec& rec : m_read)
            points.push_back(ZrDatasetTrack::Point(rec));
        // They are read several times.
        for (; m_counted >= first && m_counted < end; ++m_counted)
            m_placed += points[m_counted - first].HasPosition() ? 1 : 0;
        return true;
    }

private:
    ZrExportRange& m_part;
    std::vector<ZrLogRec> m_read;
    std::size_t m_counted = 0; ///< up to here
    u64 m_placed = 0;
};

ZrExportRange::ZrExportRange(const ZrDataset& dataset, std::size_t first, std::size_t end)
    : m_dataset(dataset)
    , m_ofDataset(std::make_unique<ZrDatasetRecords>(dataset))
    , m_records(*m_ofDataset)
    , m_first(std::min(first, m_records.Count()))
    , m_end(std::max(m_first, std::min(end, m_records.Count())))
{
}

ZrExportRange::ZrExportRange(
    const ZrDataset& dataset, ZrRecordSource& records, std::size_t first, std::size_t end)
    : m_dataset(dataset)
    , m_records(records)
    , m_first(std::min(first, m_records.Count()))
    , m_end(std::max(m_first, std::min(end, m_records.Count())))
{
}

ZrExportRange::~ZrExportRange() = default;

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

/// There is no record in the part.
ZrExportRange::eResult ZrExportRange::FailWithout()
{
    return Fail(tr("There is nothing to export"));
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
    m_error.clear(); // what a sample of the records failed for, may be over
    const QString refusal = Refusal(m_dataset.fileName, out);
    if (!refusal.isEmpty())
        return Fail(refusal);
    QSaveFile file(out);
    if (!file.open(QIODevice::WriteOnly))
        return fail(file.errorString());
    Gate gate(file, [this, expectedBytes](i64 written) {
        // The last percent is that of the file in its place.
        Report(std::min(static_cast<double>(written) / expectedBytes, 0.99));
        return !cancel;
    });
    if (!fill(gate) || cancel || !file.flush() || !file.commit())
        return m_error.isEmpty() ? fail(file.errorString()) : Fail(m_error);
    Report(1.0);
    return Done;
}

ZrExportRange::eResult ZrExportRange::WriteTrack(const QString& out)
{
    Begin();
    if (m_first == m_end)
        return FailWithout();
    std::vector<ZrTrackEvent> events;
    if (!TrackEvents(events))
        return Fail(m_error);
    const ZrTrackExport::eFormat format = ZrTrackExport::FormatOf(out);
    Points points(*this);
    ZrTrackData data;
    data.name = QFileInfo(m_dataset.fileName).completeBaseName();
    data.source = &points;
    data.events = events;
    const eResult result = WriteFile(out, ExpectedBytes(format, data),
        [&](QIODevice& device) { return ZrTrackExport::WriteTo(device, format, data); });
    m_items = result == Done ? points.Placed() : 0;
    return result;
}

ZrExportRange::eResult ZrExportRange::WriteRecords(const QString& out)
{
    Begin();
    if (m_first == m_end)
        return FailWithout();
    constexpr std::size_t linesAtOnce = 1000;
    constexpr double bytesPerLine = 90.0;
    m_items = m_end - m_first;
    return WriteFile(out, bytesPerLine * static_cast<double>(m_items), [this](QIODevice& device) {
        ZrTrackText text;
        QByteArray lines = "time,latitude,longitude,depth,altitude,seabed,heading,pitch,roll\r\n";
        Points points(*this);
        std::vector<ZrTrackPoint> read;
        for (std::size_t i = 0; i < points.Count(); i += linesAtOnce) {
            if (!points.Read(i, std::min(i + linesAtOnce, points.Count()), read))
                return false;
            for (const ZrTrackPoint& point : read)
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
    if (m_first == m_end && !takesAllEvents)
        return FailWithout();
    std::vector<PlacedEvent> events;
    if (!FindEvents(events, false))
        return Fail(m_error);
    constexpr double bytesPerLine = 100.0;
    m_items = events.size();
    return WriteFile(out, bytesPerLine * static_cast<double>(m_items + 1), [&events](QIODevice& device) {
        QByteArray lines = ZrEventTable::Heading();
        for (const PlacedEvent& placed : events)
            lines += ZrEventTable::Line(*placed.event);
        return device.write(lines) == lines.size();
    });
}
