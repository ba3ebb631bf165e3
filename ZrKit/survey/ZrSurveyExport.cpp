#include "ZrKit/survey/ZrSurveyExport.h"

#include "ZrKit/review/ZrDatasetReader.h"
#include "ZrKit/review/ZrEventFile.h"
#include "ZrKit/review/ZrExportRange.h"
#include "ZrKit/review/ZrRecordSource.h"
#include "ZrKit/review/ZrWorkStage.h"
#include "ZrKit/sonar/ZrBottomFile.h"
#include "ZrKit/sonar/ZrMosaicFile.h"
#include "ZrKit/survey/ZrSurveyRecording.h"
#include "ZrUtil/ZrSameFile.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <tuple>

ZrSurveyExport::Step::Step(ZrSurveyExport& part, std::atomic<bool>& cancel)
    : m_part(part)
{
    const std::lock_guard lock(m_part.m_stepGuard);
    m_part.m_stepCancel = &cancel;
    cancel = m_part.m_cancel.load();
}

ZrSurveyExport::Step::~Step()
{
    const std::lock_guard lock(m_part.m_stepGuard);
    m_part.m_stepCancel = nullptr;
}

ZrSurveyExport::ZrSurveyExport(std::shared_ptr<const ZrSurveyRecording> recording, double from, double to)
    : m_recording(std::move(recording))
    , m_from(std::min(from, to))
    , m_to(std::max(from, to))
    , m_bottom(m_recording->Bottom())
{
    if (std::isnan(from) || std::isnan(to)) // neither is less
        m_from = m_to = std::nan("");
    const ZrSteadyTime& times = *m_recording->Times();
    const bool isWhole = m_from <= times.Begin() && m_to >= times.End();
    const ZrEventList& list = m_recording->Events();
    for (std::size_t i = 0; i < list.Count(); ++i) {
        const double at = m_recording->TimeOf(list.At(i));
        if (isWhole || (at >= m_from && at <= m_to)) // one without a time belongs to the whole
            m_events.push_back(list.At(i));
    }
    for (const ZrSonarTarget& target : m_recording->Targets()) {
        const double at = m_recording->Times()->FromLog(target.time);
        if (at >= m_from && at <= m_to)
            m_targets.push_back(target);
    }
    std::tie(m_firstPing, m_endPing) = m_recording->PingsIn(m_from, m_to);
}

QStringList ZrSurveyExport::Suffixes(int kind)
{
    static const char* const suffixes[kindCount]
        = {"log", "gpx kml geojson csv", "csv", "csv", "geojson csv", "png jpg", "png jpg tif"};
    if (kind < 0 || kind >= kindCount)
        return {};
    return QString::fromLatin1(suffixes[kind]).split(QLatin1Char(' '));
}

QString ZrSurveyExport::Name(int kind)
{
    static const char* const names[kindCount]
        = {"part", "track", "records", "events", "targets", "waterfall", "mosaic"};
    return kind < 0 || kind >= kindCount ? QString() : QString::fromLatin1(names[kind]);
}

void ZrSurveyExport::Stop()
{
    const std::lock_guard lock(m_stepGuard);
    m_cancel = true;
    if (m_stepCancel)
        *m_stepCancel = true;
}

bool ZrSurveyExport::Fail(const QString& error)
{
    m_error = error;
    return false;
}

/// What is told of the last `Run`.
void ZrSurveyExport::Forget()
{
    m_error.clear();
    m_remark.clear();
    m_items = 0;
    m_isSlantCorrected = false;
    m_blanking = ZrSonarBlanking::none;
}

ZrSurveyExport::eResult ZrSurveyExport::Run(int kind, const QString& path, IZrProgress* progress)
{
    Forget();
    if (!m_cancel && Write(kind, path, progress))
        return Done;
    const QString error = m_error;
    Forget();
    m_error = error;
    if (m_cancel) {
        m_error.clear();
        return Cancelled;
    }
    return Failed;
}

/// Why there is nothing to be written to \p path, a sentence; else empty.
QString ZrSurveyExport::WhyNot(int kind, const QString& path) const
{
    const ZrSteadyTime& times = *m_recording->Times();
    if (kind < 0 || kind >= kindCount)
        return tr("There is no export of this kind");
    if (kind >= targets && !m_recording->HasSonar())
        return tr("The recording holds no side-scan sonar");
    if (!(m_from <= times.End() && m_to >= times.Begin()))
        return tr("There is nothing to export");
    if ((kind == waterfall || kind == mosaic) && m_firstPing == m_endPing)
        return tr("There is no side-scan ping in this part");
    QString whyNot = WhyNotFile(path);
    if (!whyNot.isEmpty())
        return whyNot;
    QStringList others; // that are written too
    if (kind == segment)
        others << ZrEventFile::PathOf(path) << ZrMergedEvents::PathOf(path);
    else if (kind == mosaic)
        others = ZrMosaicFile::FilesOf(path).mid(1);
    for (const QString& other : others) {
        whyNot = WhyNotFile(other);
        if (!whyNot.isEmpty())
            break;
    }
    return whyNot;
}

QString ZrSurveyExport::WhyNotFile(const QString& path) const
{
    if (zr::is_same_file(path, ZrBottomFile(m_recording->Path()).Path()))
        return ZrExportRange::BelongsToRecording(path);
    return ZrExportRange::Refusal(m_recording->Path(), path);
}

bool ZrSurveyExport::Write(int kind, const QString& path, IZrProgress* progress)
{
    m_error = WhyNot(kind, path);
    if (!m_error.isEmpty())
        return false;
    switch (kind) {
    case targets:
        return WriteTargets(path);
    case waterfall:
        return DrawWaterfall(path, progress);
    case mosaic:
        return DrawMosaic(path, progress);
    default:
        return WritePart(kind, path, progress);
    }
}

/// The steady times of \p source: those of the recording, if they are of the same records.
std::shared_ptr<const ZrSteadyTime> ZrSurveyExport::TimesOf(ZrRecordSource& source, bool isLogUnchanged)
{
    const std::shared_ptr<const ZrSteadyTime> known = m_recording->Series().times;
    if (isLogUnchanged && known->Count() == source.Count())
        return known;
    auto times = std::make_shared<ZrSteadyTime>();
    times->Reserve(source.Count());
    std::vector<ZrLogRec> read;
    for (std::size_t i = 0; i < source.Count(); i += ZrRecordSource::AtOnce) {
        if (m_cancel || !source.Read(i, i + ZrRecordSource::AtOnce, read)) {
            m_error = source.Error();
            return nullptr;
        }
        for (const ZrLogRec& rec : read)
            times->Append(rec.time);
    }
    return times;
}

/// Where \p part, whose last record is \p last, begins and ends in the log if its sonar goes on outside of
/// its records: with its first ping, and before the first one that is later.
void ZrSurveyExport::SetSonarEnds(ZrExportRange& part, const ZrLogRec& last) const
{
    constexpr u64 behindAll = std::numeric_limits<u64>::max();
    const std::size_t count = m_recording->Pings().size();
    const auto posOf = [&](std::size_t ping) { return ping < count ? m_recording->PosOf(ping) : behindAll; };
    part.beginPos = m_firstPing > 0 ? posOf(m_firstPing) : 0;
    std::size_t later = m_endPing;
    while (posOf(later) <= last.pos) // a record may stand behind pings of its time
        ++later;
    part.endPos = posOf(later);
}

bool ZrSurveyExport::WritePart(int kind, const QString& path, IZrProgress* progress)
{
    constexpr int scanPercent = 50; ///< of a log whose index is out of date, or cannot be kept
    ZrDatasetReader reader;
    reader.restorePlan = false; // it was when the recording was opened
    std::unique_ptr<ZrSurveyDataset> dataset;
    {
        const Step step(*this, reader.cancel);
        ZrWorkStage stage(progress, m_cancel, reader.cancel, 0, scanPercent);
        reader.progress = &stage;
        dataset = m_recording->IndexRecords(reader);
        reader.progress = nullptr;
    }
    if (!dataset)
        return Fail(reader.Error());
    ZrEventFile list; // those of the part as they are shown, saved or not
    list.events = m_events;
    list.Fill(*dataset);
    ZrRecordSource& source = *reader.Records();
    const bool isFromIndex = reader.Reason().isEmpty();
    const std::shared_ptr<const ZrSteadyTime> times = TimesOf(source, isFromIndex);
    if (!times)
        return false;
    const std::size_t first = ZrExportRange::FirstFrom(*times, m_from);
    const std::size_t end = ZrExportRange::EndAt(*times, m_to);
    if (first >= end && kind != events) // sonar alone, or less than from one record to the next
        return Fail(tr("There is no record in this part"));
    ZrExportRange part(*dataset, source, first, end);
    part.times = times.get();
    part.takesAllEvents = true;
    if (kind == segment) {
        std::vector<ZrLogRec> last;
        if (!source.Read(end - 1, end, last) || last.empty())
            return Fail(source.Error());
        SetSonarEnds(part, last[0]);
    }
    const Step step(*this, part.cancel);
    ZrWorkStage stage(progress, m_cancel, part.cancel, isFromIndex ? 0 : scanPercent, 100);
    part.progress = &stage;
    const ZrExportRange::eResult result = kind == segment ? part.WriteLog(path)
        : kind == track                                   ? part.WriteTrack(path)
        : kind == events                                  ? part.WriteEvents(path)
                                                          : part.WriteRecords(path);
    m_items = part.Items();
    m_remark = part.Damage();
    return result == ZrExportRange::Done || Fail(part.Error());
}
