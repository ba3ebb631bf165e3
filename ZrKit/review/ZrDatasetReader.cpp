#include "ZrKit/review/ZrDatasetReader.h"

#include "ZrKit/review/ZrDatasetRecords.h"
#include "ZrKit/review/ZrEventFile.h"
#include "ZrKit/review/ZrIndexFile.h"
#include "ZrKit/review/ZrLogScan.h"
#include "ZrKit/review/ZrUnpack.h"
#include "ZrUtil/ZrDataset.h"
#include "ZrUtil/ZrXmlStore.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <limits>
#include <new>

namespace {

/// Whether an item of the index type stands where record \p i says.
bool PointsAtItem(ZrLogScan& scan, ZrRecordSource& records, std::size_t i, CRecType idxType)
{
    ZrLogItem item;
    u64 pos = 0;
    std::vector<ZrLogRec> record;
    return records.Read(i, i + 1, record) && scan.SeekTo(record[0].pos) && scan.Next(item, pos)
        && item.RecType() == idxType;
}

bool PointsAtItems(const QString& logPath, ZrRecordSource& records, CRecType idxType)
{
    ZrLogScan scan;
    const std::size_t count = records.Count();
    return count > 0 && scan.Open(logPath) && PointsAtItem(scan, records, 0, idxType)
        && PointsAtItem(scan, records, count / 2, idxType) && PointsAtItem(scan, records, count - 1, idxType);
}

} // namespace

ZrDatasetReader::ZrDatasetReader() = default;
ZrDatasetReader::~ZrDatasetReader() = default;

ZrDatasetReader::eResult ZrDatasetReader::Read(const QString& logPath, ZrDataset& dataset)
{
    m_keepsRecords = true;
    const eResult result = Load(logPath, dataset);
    m_records.reset();
    if (result == FromIndex || result == Built) {
        dataset.UpdateExtents();
        if (dataset.recs.size() > 2) {
            dataset.firstRec = 0;
            dataset.lastRec = static_cast<i32>(dataset.recs.size() - 1);
        }
    }
    return result;
}

ZrDatasetReader::eResult ZrDatasetReader::Index(const QString& logPath, ZrDataset& dataset)
{
    m_keepsRecords = false;
    return Load(logPath, dataset);
}

ZrDatasetReader::eResult ZrDatasetReader::Load(const QString& logPath, ZrDataset& dataset)
{
    m_reason.clear();
    m_writeError.clear();
    m_stamp = ZrIndexStamp();
    m_events.clear();
    m_plan.clear();
    m_crdPos = {};
    m_records.reset();
    m_index.reset();
    m_isIndexLost = false;
    dataset.fileName = logPath;
    dataset.ClearData();
    dataset.UpdateExtents();

    ZrEventFile events;
    events.Read(logPath);
    m_reason = rebuild ? QCoreApplication::translate("ZrDatasetReader", "it was asked for")
                       : WhyOutdated(logPath, dataset, events);
    eResult result = cancel ? Cancelled : FromIndex;
    if (!cancel && !m_reason.isEmpty()) {
        m_knownEvents = KnownBefore(logPath);
        result = Scan(logPath, dataset);
    }
    if (result == Unreadable || result == Cancelled) {
        dataset.ClearData();
        m_records.reset();
        m_index.reset();
        return result;
    }
    if (result == Built) {
        if (MergeEvents(logPath, events))
            WriteIndex(logPath, dataset);
        if (restorePlan)
            WritePlan(logPath);
        if (m_index)
            m_records = std::move(m_index);
        else
            m_records = std::make_unique<ZrDatasetRecords>(dataset);
    }
    events.Fill(dataset);
    return result;
}

/// The table of an index file, which stays there or goes into \p dataset; null when it cannot be used.
std::unique_ptr<ZrRecordSource> ZrDatasetReader::OpenTable(const QString& logPath, ZrDataset& dataset) const
{
    if (m_keepsRecords)
        return dataset.ReadIndex(logPath) ? std::make_unique<ZrDatasetRecords>(dataset) : nullptr;
    auto file = std::make_unique<ZrIndexFile>();
    if (!file->Open(ZrIndexStamp::IndexPathOf(logPath), dataset))
        return nullptr;
    return file;
}

/// Takes up the index if it is up to date; else the reason why it is not, and no records.
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
    std::unique_ptr<ZrRecordSource> table = OpenTable(logPath, dataset);
    if (!table)
        return QCoreApplication::translate(
            "ZrDatasetReader", "the index is damaged or of other record types");
    if (stamp.records != table->Count() || stamp.tableDigest != ZrIndexStamp::DigestOfTable(*table)
        || !PointsAtItems(logPath, *table, dataset.idxType)) {
        dataset.recs.clear();
        return QCoreApplication::translate("ZrDatasetReader", "the index does not fit the log");
    }
    m_stamp = stamp;
    m_records = std::move(table);
    return QString();
}

/// How many events of the log an earlier scan has found: in front of what it has got since.
std::size_t ZrDatasetReader::KnownBefore(const QString& logPath)
{
    ZrIndexStamp stamp;
    const bool isKnown = stamp.Read(logPath) && stamp.logEvents > 0
        && stamp.logDigest == ZrIndexStamp::DigestOfLog(logPath, stamp.logSize);
    return isKnown ? static_cast<std::size_t>(stamp.logEvents) : 0;
}

ZrDatasetReader::eResult ZrDatasetReader::Scan(const QString& logPath, ZrDataset& dataset)
{
    ZrLogScan scan;
    scan.progress = progress;
    QFile payloads(logPath);
    bool sound = scan.Open(logPath);
    m_stamp.complete = false; // until it is through
    m_stamp.filler = ZrIndexStamp::FillerOf(dataset);
    if (sound) {
        // The last bytes of a log that is being recorded change: the digest is that of what is read now.
        m_stamp.logSize = scan.FileSize();
        m_stamp.logDigest = ZrIndexStamp::DigestOfLog(logPath, scan.FileSize());
        sound = payloads.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    }
    if (sound && !m_keepsRecords)
        BeginIndex(logPath, dataset);
    bool all = false;
    try {
        all = sound && TakeItems(scan, payloads, dataset);
        if (m_isIndexLost || (sound && m_index && !PutAside(dataset, true)))
            return Unreadable;
    } catch (const std::bad_alloc&) {
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
    if (!sound)
        return Unreadable;
    ZrDatasetRecords inMemory(dataset);
    ZrRecordSource& records = m_index ? static_cast<ZrRecordSource&>(*m_index) : inMemory;
    m_stamp.records = static_cast<u32>(records.Count());
    m_stamp.tableDigest = ZrIndexStamp::DigestOfTable(records);
    m_stamp.logEvents = static_cast<int>(m_events.size());
    return Built;
}

/// A file that takes the records, beside the log if it may; without one they stay in memory.
void ZrDatasetReader::BeginIndex(const QString& logPath, const ZrDataset& dataset)
{
    m_index = std::make_unique<ZrIndexFile>();
    m_isIndexBeside = writeIndex && m_index->Create(QFileInfo(logPath).path(), dataset);
    m_besideError = m_index->Error();
    const QString elsewhere = QDir::tempPath(); // empty when there is none
    if (!m_isIndexBeside && (elsewhere.isEmpty() || !m_index->Create(elsewhere, dataset)))
        m_index.reset();
}

/// Hands the records to the index, the last one, which the next is filled from, only with \p isAll. A disk
/// that is full sends them back into memory; false when they cannot be read for that.
bool ZrDatasetReader::PutAside(ZrDataset& dataset, bool isAll)
{
    std::vector<ZrLogRec>& recs = dataset.recs;
    const std::size_t before = m_index->Count();
    const std::size_t count = recs.size() - (isAll || recs.empty() ? 0 : 1);
    if (m_index->Append(zr::span<const ZrLogRec>(recs.data(), count))) {
        recs.erase(recs.begin(), recs.begin() + static_cast<std::ptrdiff_t>(count));
        return true;
    }
    // Whether there is an index in the end, `WriteTable` tells: there may be room again.
    const QString reason = m_index->Error();
    std::vector<ZrLogRec> all;
    if (!m_index->Read(0, before, all)) {
        Note(ZrIndexStamp::IndexPathOf(dataset.fileName) + QLatin1String(": ") + reason);
        m_stamp.error = m_index->Error();
        m_isIndexLost = true;
        return false;
    }
    all.insert(all.end(), recs.begin(), recs.end());
    recs = std::move(all);
    m_index.reset();
    return true;
}

/// Walks the log to its end or to the first item that cannot be read; false when that is a payload, or when
/// the index is lost.
bool ZrDatasetReader::TakeItems(ZrLogScan& scan, QFile& payloads, ZrDataset& dataset)
{
    ZrLogItem item;
    u64 pos = 0;
    while (!cancel && scan.Next(item, pos)) {
        if (TakeItem(item, pos, payloads, dataset))
            continue;
        if (m_stamp.error.isEmpty()) {
            m_stamp.error = QCoreApplication::translate("ZrDatasetReader", "Unable to read item payload");
            m_stamp.errorPos = pos;
        }
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
        if (m_index && dataset.recs.size() > ZrRecordSource::AtOnce)
            return PutAside(dataset, false);
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

/// The log's events go into \p events and, if files are to be written, into that beside the log; false when
/// they are not there. Before the index: as long as that is not there, they are found again. The file is read
/// anew, since somebody may have changed it during the scan.
bool ZrDatasetReader::MergeEvents(const QString& logPath, ZrEventFile& events)
{
    const bool isKept = events.Merged().HasAll(m_events);
    events.Merge(m_events, events.Merged(m_events, m_knownEvents));
    if (!writeIndex)
        return false;
    if (!events.IsChanged() && isKept)
        return true;
    QString error;
    const bool ok = ZrEventFile::TakeOver(logPath, m_events, events.events, &error, m_knownEvents);
    Note(error);
    return ok;
}

void ZrDatasetReader::WriteIndex(const QString& logPath, const ZrDataset& dataset)
{
    if (m_stamp.records > 0) {
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

void ZrDatasetReader::WriteTable(const QString& logPath, const ZrDataset& dataset)
{
    const QString index = ZrIndexStamp::IndexPathOf(logPath);
    ZrIndexFile ofMemory;
    ZrIndexFile* file = m_index.get();
    if (!file) {
        file = &ofMemory;
        if (!file->Create(QFileInfo(logPath).path(), dataset) || !file->Append(dataset.recs))
            return Note(index + QLatin1String(": ") + file->Error());
    } else if (!m_isIndexBeside) {
        return Note(index + QLatin1String(": ") + m_besideError);
    }
    QString error;
    if (!file->MoveTo(index, logPath))
        Note(index + QLatin1String(": ") + file->Error());
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
