// A part of a recording as a log of its own.

#include "ZrKit/recording/ZrLogWriter.h"
#include "ZrKit/review/ZrEventFile.h"
#include "ZrKit/review/ZrExportRange.h"
#include "ZrKit/review/ZrIndexStamp.h"
#include "ZrKit/review/ZrLogScan.h"
#include "ZrKit/review/ZrRecordSource.h"
#include "ZrKit/review/ZrUnpack.h"
#include "ZrUtil/ZrDataset.h"
#include "ZrUtil/ZrSameFile.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cmath>
#include <cstring>

QString ZrExportRange::BelongsToRecording(const QString& out)
{
    return tr("%1 belongs to the recording itself; choose another name").arg(out);
}

QString ZrExportRange::Refusal(const QString& log, const QString& out)
{
    if (!zr::is_possible_path(out))
        return tr("The export needs a name for its file");
    const QFileInfo info(out);
    if (info.exists() && !info.isFile()) // a rename would put a file in the place of a device
        return tr("%1 is no file").arg(out);
    for (const QString& own : {log, ZrEventFile::PathOf(log), ZrMergedEvents::PathOf(log),
             ZrIndexStamp::IndexPathOf(log), ZrIndexStamp::PathOf(log), log + QLatin1String(".xml")}) {
        if (zr::is_same_file(out, own))
            return BelongsToRecording(out);
    }
    return QString();
}

/// Copies the item that \p scan gives next. False with `m_error` when that is not possible.
bool ZrExportRange::CopyItem(ZrLogScan& scan, QFile& in, ZrLogWriter& log)
{
    ZrLogItem item;
    u64 pos = 0;
    if (!scan.Next(item, pos))
        return false;
    const u64 size = u64(ZrLogItem::Size) + item.storedSize;
    if (item.storedSize > ZrLogWriter::MaxPayload) {
        m_error = tr("The item at %1 is larger than 2 GiB").arg(pos);
        return false;
    }
    m_item.resize(static_cast<int>(std::min<u64>(size, ZrLogWriter::MaxPayload)));
    if (static_cast<u64>(m_item.size()) != size || !in.seek(static_cast<qint64>(pos))
        || in.read(m_item.data(), m_item.size()) != m_item.size()) {
        m_error = tr("Cannot read %1: %2").arg(m_dataset.fileName, in.errorString());
        return false;
    }
    if (!log.WriteRaw(zr::bytes_of(m_item))) {
        m_error = log.Error();
        return false;
    }
    ++m_items;
    Hold(item);
    return true;
}

/// Keeps the event that \p item, just copied, holds.
void ZrExportRange::Hold(const ZrLogItem& item)
{
    if (item.RecType() != CRecType(rtEvent))
        return;
    QByteArray bytes;
    QString error;
    const zr::span<u8> stored = zr::bytes_of(m_item).subspan(ZrLogItem::Size, item.storedSize);
    if (!zr::unpack_payload(item, stored, &bytes, &error))
        return; // no reader understands it
    ZrLogEvt evt;
    evt.Load(bytes);
    m_held.push_back(evt);
}

/// The latest items of the coordinate types in front of the position \p from.
bool ZrExportRange::CopyState(ZrLogScan& scan, QFile& in, ZrLogWriter& log, const ZrLogRec& first, u64 from)
{
    std::array<u64, 8> positions; // records are packed, and hold theirs at odd places
    std::memcpy(positions.data(), reinterpret_cast<const char*>(&first) + offsetof(ZrLogRec, crdPos),
        sizeof positions);
    std::vector<u64> state;
    for (std::size_t i = 0; i < m_dataset.crdTypes.size(); ++i) {
        const u64 pos = positions[i];
        ZrLogItem item;
        u64 found = 0;
        // The index is a file: what it says is looked at.
        if (pos > 0 && pos < from && scan.SeekTo(pos) && scan.Next(item, found)
            && item.RecType() == m_dataset.crdTypes[i])
            state.push_back(pos);
    }
    std::sort(state.begin(), state.end());
    state.erase(std::unique(state.begin(), state.end()), state.end());
    for (const u64 pos : state) {
        if (cancel || !scan.SeekTo(pos) || !CopyItem(scan, in, log))
            return false;
    }
    return true;
}

bool ZrExportRange::CopyItems(ZrLogScan& scan, QFile& in, ZrLogWriter& log, u64 from, u64 to)
{
    if (!scan.SeekTo(from))
        return false;
    while (scan.Pos() < to) {
        if (cancel)
            return false;
        if (!CopyItem(scan, in, log))
            break;
        Report(0.99 * static_cast<double>(scan.Pos() - from) / static_cast<double>(to - from));
    }
    if (!m_error.isEmpty())
        return false;
    if (scan.State() == ZrLogScan::Damaged)
        m_damage = tr("%1 (at position %2)").arg(scan.Error()).arg(scan.ErrorPos());
    return true;
}

/// \p found beside \p out, in the place of those that lie there. All events that \p out holds count as taken
/// over: what was removed, changed, or lies outside the part by an edit, would come back from it.
bool ZrExportRange::WriteEventFile(const QString& out, const std::vector<PlacedEvent>& found)
{
    ZrMergedEvents held;
    held.Add(m_held);
    QFile::remove(ZrMergedEvents::PathOf(out)); // of the log before
    if (found.empty() && held.IsEmpty() && !QFileInfo::exists(ZrEventFile::PathOf(out)))
        return true;
    const auto replace = [&](ZrEventFile& file) {
        file.events.clear();
        for (const PlacedEvent& placed : found)
            file.events.push_back(*placed.event);
        file.isWanted = !held.IsEmpty();
        return true;
    };
    return ZrEventFile::Update(out, replace, &m_error) && (held.IsEmpty() || held.Write(out, &m_error));
}

ZrExportRange::eResult ZrExportRange::WriteLog(const QString& out)
{
    Begin();
    if (m_first == m_end)
        return FailWithout();
    const QString refusal = Refusal(m_dataset.fileName, out);
    if (!refusal.isEmpty())
        return Fail(refusal);
    ZrLogScan scan;
    QFile in(m_dataset.fileName);
    if (!scan.Open(m_dataset.fileName))
        return Fail(tr("Cannot read %1: %2").arg(m_dataset.fileName, scan.Error()));
    if (!in.open(QIODevice::ReadOnly))
        return Fail(tr("Cannot read %1: %2").arg(m_dataset.fileName, in.errorString()));
    ZrLogRec first;
    ZrLogRec last;
    ZrLogRec behind;
    if (!ReadRecord(m_first, first) || !ReadRecord(m_end - 1, last)
        || (m_end < m_records.Count() && !ReadRecord(m_end, behind)))
        return Fail(m_error);
    const u64 firstPos = first.pos; // records are packed, no reference may go there
    const u64 from = m_first == 0 ? std::max(scan.Pos(), std::min(beginPos, firstPos)) : firstPos;
    u64 to = m_end == m_records.Count() ? scan.FileSize() : behind.pos;
    if (endPos > last.pos)
        to = std::min(to, endPos);
    if (from > to || to > scan.FileSize())
        return Fail(tr("%1 has changed since it was loaded").arg(m_dataset.fileName));

    std::vector<PlacedEvent> events;
    if (!FindEvents(events, false))
        return Fail(m_error);
    const double created = first.time;
    ZrLogWriter log;
    if (!log.Open(out, std::isfinite(created) ? created : 0.0))
        return Fail(log.Error());
    m_held.clear();
    if (!CopyState(scan, in, log, first, from) || !CopyItems(scan, in, log, from, to))
        return Fail(
            m_error.isEmpty() ? tr("Cannot read %1: %2").arg(m_dataset.fileName, scan.Error()) : m_error);
    if (!log.Commit())
        return Fail(log.Error());
    // An index of the log before would be taken for that of this one by readers that know no stamps.
    QFile::remove(ZrIndexStamp::IndexPathOf(out));
    QFile::remove(ZrIndexStamp::PathOf(out));
    const u64 items = m_items;
    if (!WriteEventFile(out, events)) {
        m_error = tr("The log was written, but not its events: %1").arg(m_error);
        return Failed;
    }
    m_items = items;
    Report(1.0);
    return Done;
}
