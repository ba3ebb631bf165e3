#include "ZrKit/review/ZrDatasetReader.h"

#include "ZrKit/review/ZrEventFile.h"
#include "ZrKit/review/ZrLogScan.h"
#include "ZrKit/review/ZrUnpack.h"
#include "ZrUtil/ZrDataset.h"
#include "ZrUtil/ZrXmlStore.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <limits>
#include <new>

namespace {

/// Whether an item of the index type stands where record \p i says.
bool PointsAtItem(ZrLogScan& scan, const ZrDataset& dataset, std::size_t i)
{
    ZrLogItem item;
    u64 pos = 0;
    return scan.SeekTo(dataset.recs[i].pos) && scan.Next(item, pos) && item.RecType() == dataset.idxType;
}

bool PointsAtItems(const QString& logPath, const ZrDataset& dataset)
{
    ZrLogScan scan;
    const std::size_t count = dataset.recs.size();
    return count > 0 && scan.Open(logPath) && PointsAtItem(scan, dataset, 0)
        && PointsAtItem(scan, dataset, count / 2) && PointsAtItem(scan, dataset, count - 1);
}

/// Puts the file \p from in the place of \p to in one step.
bool Replace(const QString& from, const QString& to)
{
    return std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
}

} // namespace

ZrDatasetReader::eResult ZrDatasetReader::Read(const QString& logPath, ZrDataset& dataset)
{
    m_reason.clear();
    m_writeError.clear();
    m_stamp = ZrIndexStamp();
    m_events.clear();
    m_plan.clear();
    m_crdPos = {};
    dataset.fileName = logPath;
    dataset.ClearData();
    dataset.UpdateExtents();

    ZrEventFile events;
    events.Read(logPath);
    m_reason = rebuild ? QCoreApplication::translate("ZrDatasetReader", "it was asked for")
                       : WhyOutdated(logPath, dataset, events);
    eResult result = cancel ? Cancelled : FromIndex;
    if (!cancel && !m_reason.isEmpty())
        result = Scan(logPath, dataset);
    if (result == Unreadable || result == Cancelled) {
        dataset.ClearData();
        return result;
    }
    if (result == Built) {
        events.Merge(m_events);
        if (writeIndex && WriteEvents(logPath, events))
            WriteIndex(logPath, dataset);
        if (restorePlan)
            WritePlan(logPath);
    }
    dataset.UpdateExtents();
    events.Fill(dataset);
    if (dataset.recs.size() > 2) {
        dataset.firstRec = 0;
        dataset.lastRec = static_cast<i32>(dataset.recs.size() - 1);
    }
    return result;
}

/// Reads the index into \p dataset if it is up to date; else the reason why it is not, and no records.
QString ZrDatasetReader::WhyOutdated(const QString& logPath, ZrDataset& dataset, const ZrEventFile& events)
{
    ZrIndexStamp stamp;
    if (!QFileInfo::exists(ZrIndexStamp::IndexPathOf(logPath)))
        return QCoreApplication::translate("ZrDatasetReader", "there is no index yet");
    if (!stamp.Read(logPath))
        return QCoreApplication::translate(
            "ZrDatasetReader", "the index does not say which log it was made from");
    if (!stamp.IsOf(logPath))
        return QCoreApplication::translate("ZrDatasetReader", "the log has changed since the index was made");
    if (stamp.filler != ZrIndexStamp::FillerOf(dataset))
        return QCoreApplication::translate("ZrDatasetReader", "the index was made by another program");
    if (events.State() == ZrEventFile::Damaged)
        return QCoreApplication::translate("ZrDatasetReader", "the event file is damaged");
    if (events.State() == ZrEventFile::Missing && stamp.logEvents > 0)
        return QCoreApplication::translate("ZrDatasetReader", "the event file is missing");
    if (!dataset.ReadIndex(logPath))
        return QCoreApplication::translate(
            "ZrDatasetReader", "the index is damaged or of other record types");
    if (stamp.records != dataset.recs.size() || stamp.tableDigest != ZrIndexStamp::DigestOfTable(dataset)
        || !PointsAtItems(logPath, dataset)) {
        dataset.recs.clear();
        return QCoreApplication::translate("ZrDatasetReader", "the index does not fit the log");
    }
    m_stamp = stamp;
    return QString();
}

ZrDatasetReader::eResult ZrDatasetReader::Scan(const QString& logPath, ZrDataset& dataset)
{
    ZrLogScan scan;
    scan.progress = progress;
    QFile payloads(logPath);
    bool sound = scan.Open(logPath);
    m_stamp.filler = ZrIndexStamp::FillerOf(dataset);
    if (sound) {
        // The last bytes of a log that is being recorded change: the digest is that of what is read now.
        m_stamp.logSize = scan.FileSize();
        m_stamp.logDigest = ZrIndexStamp::DigestOfLog(logPath, scan.FileSize());
        sound = payloads.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    }
    bool all = false;
    try {
        all = sound && TakeItems(scan, payloads, dataset);
    } catch (const std::bad_alloc&) {
        m_stamp.complete = false;
        m_stamp.error
            = QCoreApplication::translate("ZrDatasetReader", "There is not enough memory for the dataset");
        m_stamp.errorPos = scan.Pos();
        return Unreadable;
    }
    if (cancel)
        return Cancelled;
    m_stamp.complete = all && scan.State() == ZrLogScan::AtEnd;
    if (scan.State() == ZrLogScan::Damaged || scan.State() == ZrLogScan::Unreadable) {
        m_stamp.error = scan.Error();
        m_stamp.errorPos = scan.ErrorPos();
    } else if (!sound) {
        m_stamp.error = payloads.errorString();
    }
    m_stamp.records = static_cast<u32>(dataset.recs.size());
    m_stamp.tableDigest = ZrIndexStamp::DigestOfTable(dataset);
    m_stamp.logEvents = static_cast<int>(m_events.size());
    return sound ? Built : Unreadable;
}

/// Walks the log to its end or to the first item that cannot be read; false when that is a payload.
bool ZrDatasetReader::TakeItems(ZrLogScan& scan, QFile& payloads, ZrDataset& dataset)
{
    ZrLogItem item;
    u64 pos = 0;
    while (!cancel && scan.Next(item, pos)) {
        if (TakeItem(item, pos, payloads, dataset))
            continue;
        m_stamp.error = QCoreApplication::translate("ZrDatasetReader", "Unable to read item payload");
        m_stamp.errorPos = pos;
        return false;
    }
    return true;
}

/// Only payloads that are looked at are read: sonar samples, most of a log, are not.
bool ZrDatasetReader::TakeItem(const ZrLogItem& item, u64 pos, QFile& payloads, ZrDataset& dataset)
{
    const ZrLogItemInf inf(item);
    dataset.UpdCrdPos(m_crdPos, inf, pos);
    const bool isRecord = inf == dataset.idxType;
    const bool isPlan = restorePlan && !isRecord && inf == CRecType(rtMissionPlan);
    const bool isEvent = !isRecord && inf == CRecType(rtEvent);
    const bool fitsArray = item.storedSize <= static_cast<u32>(std::numeric_limits<int>::max());
    if (!isRecord && !((isPlan || isEvent) && fitsArray))
        return true;
    m_payload.resize(item.storedSize);
    const qint64 size = static_cast<qint64>(item.storedSize);
    if (!payloads.seek(static_cast<qint64>(pos + ZrLogItem::Size))
        || payloads.read(reinterpret_cast<char*>(m_payload.data()), size) != size)
        return false;
    if (isRecord) {
        ZrLogRec rec(inf, pos, m_crdPos);
        dataset.FillRec(rec, inf, m_payload);
        dataset.recs.push_back(rec);
    } else if (isPlan) {
        TakePlan(item);
    } else {
        TakeEvent(item);
    }
    return true;
}

void ZrDatasetReader::TakeEvent(const ZrLogItem& item)
{
    QByteArray bytes;
    QString error;
    if (!zr::unpack_payload(item, m_payload, &bytes, &error))
        return;
    ZrLogEvt evt;
    evt.Load(bytes);
    m_events.push_back(evt);
}

void ZrDatasetReader::TakePlan(const ZrLogItem& item)
{
    QString error;
    zr::unpack_payload(item, m_payload, &m_plan, &error);
}

void ZrDatasetReader::Note(const QString& writeError)
{
    if (m_writeError.isEmpty())
        m_writeError = writeError;
}

/// Before the index: as long as that is not there, the log's events are found again. The file is read anew,
/// since somebody may have changed it during the scan; \p events becomes what it holds.
bool ZrDatasetReader::WriteEvents(const QString& logPath, ZrEventFile& events)
{
    if (!events.IsChanged())
        return true;
    const auto merge = [this, &events](ZrEventFile& file) {
        file.Merge(m_events);
        events.events = file.events;
        return true;
    };
    QString error;
    const bool ok = ZrEventFile::Update(logPath, merge, &error);
    Note(error);
    return ok;
}

void ZrDatasetReader::WriteIndex(const QString& logPath, const ZrDataset& dataset)
{
    if (!dataset.recs.empty()) {
        WriteTable(logPath, dataset);
        return;
    }
    CRecType idxType;
    std::array<CRecType, 8> crdTypes;
    if (ZrIndexStamp::TypesOf(logPath, idxType, crdTypes) && idxType == dataset.idxType
        && crdTypes == dataset.crdTypes) {
        QFile::remove(ZrIndexStamp::IndexPathOf(logPath));
        QFile::remove(ZrIndexStamp::PathOf(logPath));
    }
}

/// The dataset writes its index straight to its place, so it is given a place of its own beside the log, from
/// where the complete file is moved.
void ZrDatasetReader::WriteTable(const QString& logPath, const ZrDataset& dataset)
{
    const QString index = ZrIndexStamp::IndexPathOf(logPath);
    const QTemporaryDir folder(QFileInfo(logPath).path() + QLatin1String("/.zri-XXXXXX"));
    if (!folder.isValid()) {
        Note(index + QLatin1String(": ") + folder.errorString());
        return;
    }
    const QString temporary = folder.filePath(QStringLiteral("log"));
    dataset.WriteIndex(temporary);
    const QString written = ZrIndexStamp::IndexPathOf(temporary);
    constexpr qint64 headerSize = 46;
    const qint64 size = headerSize + static_cast<qint64>(dataset.recs.size() * sizeof(ZrLogRec));
    QString error;
    if (QFileInfo(written).size() != size)
        Note(index + QCoreApplication::translate("ZrDatasetReader", ": The index could not be written"));
    else if (!Replace(written, index))
        Note(index + QLatin1String(": ") + QString::fromLocal8Bit(std::strerror(errno)));
    else if (!m_stamp.Write(logPath, &error))
        Note(error);
}

void ZrDatasetReader::WritePlan(const QString& logPath)
{
    const QString path = logPath + QLatin1String(".xml");
    if (m_plan.isNull() || QFileInfo::exists(path))
        return;
    ZrXmlStore store(false);
    store.Load(m_plan);
    if (store.IsEmpty() || store.Save(path))
        return;
    QFile::remove(path);
    Note(path + QCoreApplication::translate("ZrDatasetReader", ": The mission plan could not be written"));
}
