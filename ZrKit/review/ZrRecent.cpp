#include "ZrKit/review/ZrRecent.h"

#include "ZrKit/records/ZrKitTypes.h"
#include "ZrKit/review/ZrIndexStamp.h"
#include "ZrUtil/IZrProgress.h"
#include "ZrUtil/ZrLogHeader.h"
#include "ZrUtil/ZrLogItem.h"
#include "ZrUtil/ZrLogRec.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

constexpr int indexHeaderSize = 46;

const u8* Bytes(const QByteArray& array, int at)
{
    return reinterpret_cast<const u8*>(array.constData()) + at;
}

/// Up to \p count bytes of \p file from \p pos on.
QByteArray Piece(QFile& file, u64 pos, u64 count)
{
    return file.seek(static_cast<qint64>(pos)) ? file.read(static_cast<qint64>(count)) : QByteArray();
}

/// What `ZrLogScan` asks of a file header.
bool IsHeader(const ZrLogHeader& header)
{
    return header.magic == ZrLogHeader::Magic && header.headerSize == ZrLogHeader::Size;
}

bool IsItem(const ZrLogItem& item)
{
    return item.magic == ZrLogItem::Magic && item.headerSize == ZrLogItem::Size;
}

bool IsPing(CRecType type)
{
    return type == zr::rec_type(krtPing, 0) || type == zr::rec_type(krtPing, 1);
}

/// Whether the log was sound up to its end, and what stood there.
struct Tail
{
    bool isKnown = false;
    bool breaksOff = false;
    double lastTime = std::numeric_limits<double>::quiet_NaN();
};

/// Follows the items of \p bytes, which end where the log does, from \p at on.
Tail Follow(const QByteArray& bytes, int at)
{
    Tail tail;
    i64 pos = at;
    int items = 0;
    while (pos + i64(ZrLogItem::Size) <= bytes.size()) {
        const ZrLogItem item = ZrLogItem::Decode(Bytes(bytes, static_cast<int>(pos)));
        if (!IsItem(item))
            return Tail(); // the start was chance, or what follows is damaged: nobody knows
        const i64 next = pos + ZrLogItem::Size + item.storedSize;
        if (next > bytes.size())
            break;
        if (std::isfinite(item.time))
            tail.lastTime = item.time;
        ++items;
        pos = next;
    }
    tail.breaksOff = pos < bytes.size();
    // A single header in front of a break may be the samples of a sonar.
    tail.isKnown = items > (tail.breaksOff ? 1 : 0);
    return tail;
}

/// What the end of a log says: the first item header in it whose followers lead to the end.
Tail LookAtEnd(const QByteArray& bytes)
{
    const QByteArray mark = QByteArray::fromHex("ddccbbaa28000000");
    for (int at = bytes.indexOf(mark); at >= 0; at = bytes.indexOf(mark, at + 1)) {
        const Tail tail = Follow(bytes, at);
        if (tail.isKnown)
            return tail;
    }
    return Tail();
}

bool IsNewer(double a, double b)
{
    return std::isnan(b) ? !std::isnan(a) : a > b;
}

void SetDamage(ZrRecentLog& log, const QString& sentence)
{
    log.isDamaged = true;
    log.damage = sentence;
}

/// Takes times and sonar from the index, if it was made from a log of this size. False when it was not.
bool LookAtIndex(ZrRecentLog& log)
{
    ZrIndexStamp stamp;
    CRecType indexType;
    std::array<CRecType, 8> types;
    QFile file(ZrIndexStamp::IndexPathOf(log.path));
    constexpr qint64 recSize = sizeof(ZrLogRec);
    if (!stamp.Read(log.path) || stamp.logSize != log.size || stamp.records == 0
        || !ZrIndexStamp::TypesOf(log.path, indexType, types) || !file.open(QIODevice::ReadOnly)
        || file.size() != indexHeaderSize + recSize * static_cast<qint64>(stamp.records))
        return false;
    ZrLogRec first;
    ZrLogRec last;
    std::array<u64, 8> positions; // of the last one: records are packed, and hold theirs at odd places
    const QByteArray firstBytes = Piece(file, indexHeaderSize, recSize);
    const QByteArray lastBytes = Piece(file, static_cast<u64>(file.size() - recSize), recSize);
    if (firstBytes.size() != recSize || lastBytes.size() != recSize)
        return false;
    std::memcpy(static_cast<void*>(&first), firstBytes.constData(), recSize);
    std::memcpy(static_cast<void*>(&last), lastBytes.constData(), recSize);
    std::memcpy(positions.data(), lastBytes.constData() + offsetof(ZrLogRec, crdPos), sizeof positions);
    log.isIndexed = true;
    const double begin = first.time;
    const double end = last.time;
    if (std::isfinite(begin))
        log.start = begin;
    if (std::isfinite(begin) && end >= begin)
        log.duration = end - begin;
    for (std::size_t slot = 0; slot < types.size(); ++slot) {
        if (!IsPing(types[slot]))
            continue;
        if (positions[slot] > 0)
            log.sonar = ZrRecentLog::sonarPresent;
        else if (log.sonar == ZrRecentLog::sonarUnknown)
            log.sonar = ZrRecentLog::sonarNone; // but perhaps behind the last record
    }
    if (!stamp.complete)
        log.isDamaged = true;
    log.damage = stamp.complete ? QString() : stamp.error;
    return true;
}

} // namespace

ZrRecentLog ZrRecent::Look(const QString& path)
{
    ZrRecentLog log;
    log.path = path;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        SetDamage(log, tr("The file cannot be read: %1").arg(file.errorString()));
        return log;
    }
    log.size = static_cast<u64>(std::max<qint64>(file.size(), 0));
    const QByteArray header = Piece(file, 0, ZrLogHeader::Size);
    if (header.size() < int(ZrLogHeader::Size) || !IsHeader(ZrLogHeader::Decode(Bytes(header, 0)))) {
        SetDamage(log, tr("The file does not begin as a recording"));
        return log;
    }
    const double created = ZrLogHeader::Decode(Bytes(header, 0)).created;
    if (std::isfinite(created) && created > 0.0)
        log.start = created;
    if (LookAtIndex(log))
        return log;

    // The first items, one behind the other.
    const QByteArray front = Piece(file, ZrLogHeader::Size, Peeked);
    const bool all = log.size == u64(ZrLogHeader::Size) + static_cast<u64>(front.size());
    double first = std::numeric_limits<double>::quiet_NaN();
    i64 pos = 0;
    while (pos + i64(ZrLogItem::Size) <= front.size()) {
        const ZrLogItem item = ZrLogItem::Decode(Bytes(front, static_cast<int>(pos)));
        if (!IsItem(item)) {
            SetDamage(log, tr("There is no item at %1").arg(pos + i64(ZrLogHeader::Size)));
            break;
        }
        if (std::isnan(first) && std::isfinite(item.time))
            first = item.time;
        if (IsPing(item.RecType()))
            log.sonar = ZrRecentLog::sonarPresent;
        pos += i64(ZrLogItem::Size) + item.storedSize;
    }
    if (!std::isnan(first))
        log.start = first;
    if (all && !log.isDamaged && log.sonar == ZrRecentLog::sonarUnknown)
        log.sonar = ZrRecentLog::sonarNone;
    Tail tail;
    if (all && !log.isDamaged) {
        tail = Follow(front, 0);
        tail.isKnown = true; // from the first item on there is no chance
    }
    if (!all)
        tail = LookAtEnd(Piece(file, log.size - std::min<u64>(log.size, Peeked), Peeked));
    if (!tail.isKnown)
        return log;
    if (tail.breaksOff && !log.isDamaged)
        SetDamage(log, tr("The recording breaks off"));
    if (tail.lastTime >= log.start)
        log.duration = tail.lastTime - log.start;
    return log;
}

std::vector<ZrRecentLog> ZrRecent::Find(const QString& folder)
{
    m_error.clear();
    const QDir dir(folder);
    if (folder.isEmpty() || !dir.exists() || !dir.isReadable()) {
        m_error = tr("The folder %1 cannot be read").arg(folder);
        return {};
    }
    std::vector<ZrRecentLog> logs;
    QHash<QString, Seen> now;
    const QFileInfoList infos = dir.entryInfoList(QDir::Files | QDir::Hidden, QDir::Name);
    for (int i = 0; i < infos.size() && !cancel; ++i) {
        const QString path = infos[i].filePath();
        Seen file = seen.value(path);
        const qint64 changed = infos[i].lastModified().toMSecsSinceEpoch();
        if (!seen.contains(path) || file.size != infos[i].size() || file.changed != changed)
            file = LookAtHeader(infos[i]);
        now.insert(path, file);
        if (file.isLog || path.endsWith(QLatin1String(".log"), Qt::CaseInsensitive)) {
            ZrRecentLog log;
            log.path = path;
            log.size = static_cast<u64>(std::max<qint64>(file.size, 0));
            log.start = file.isLog ? file.created : std::nan("");
            logs.push_back(log);
        }
        Report(0.5 * (i + 1) / infos.size());
    }
    if (!cancel)
        seen = now;
    std::stable_sort(logs.begin(), logs.end(),
        [](const ZrRecentLog& a, const ZrRecentLog& b) { return IsNewer(a.start, b.start); });
    return logs;
}

ZrRecent::Seen ZrRecent::LookAtHeader(const QFileInfo& info)
{
    Seen seenNow;
    seenNow.size = info.size();
    seenNow.changed = info.lastModified().toMSecsSinceEpoch();
    QFile file(info.filePath());
    QByteArray header;
    // Nothing but files is opened: a pipe would wait for its writer.
    if (info.isFile() && file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        header = file.read(ZrLogHeader::Size);
    seenNow.isLog
        = header.size() == int(ZrLogHeader::Size) && IsHeader(ZrLogHeader::Decode(Bytes(header, 0)));
    if (seenNow.isLog)
        seenNow.created = ZrLogHeader::Decode(Bytes(header, 0)).created;
    return seenNow;
}

/// Tells each whole percent.
void ZrRecent::Report(double share)
{
    const int now = static_cast<int>(share * 100.0);
    if (progress && now > m_percent)
        progress->UpdateProgress(now);
    m_percent = std::max(m_percent, now);
}

std::vector<ZrRecentLog> ZrRecent::List(const QString& folder, std::size_t most)
{
    m_percent = -1;
    std::vector<ZrRecentLog> found = Find(folder);
    if (found.size() > most)
        found.resize(most);
    std::vector<ZrRecentLog> logs;
    for (std::size_t i = 0; i < found.size() && !cancel; ++i) {
        logs.push_back(Look(found[i].path));
        Report(0.5 + 0.5 * static_cast<double>(i + 1) / static_cast<double>(found.size()));
    }
    std::stable_sort(logs.begin(), logs.end(),
        [](const ZrRecentLog& a, const ZrRecentLog& b) { return IsNewer(a.start, b.start); });
    if (!cancel && m_error.isEmpty())
        Report(1.0);
    return logs;
}
