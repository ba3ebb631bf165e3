#include "ZrUtil/ZrDataset.h"

#include "ZrUtil/ZrPlayer.h"
#include "ZrUtil/ZrXmlStore.h"

#include <QByteArray>
#include <QDebug>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <limits>

namespace {

using CrdPositions = std::array<u64, 8>;

/// The coordinate positions of a record, which is packed: they are not aligned where they lie.
CrdPositions CrdPosOf(const ZrLogRec& rec)
{
    CrdPositions positions;
    std::memcpy(&positions, reinterpret_cast<const u8*>(&rec) + offsetof(ZrLogRec, crdPos), sizeof positions);
    return positions;
}

/// Delivers the item at \p pos as a step outside continuous play. The last item may have ended in damage and
/// so closed the file.
void Replay(ZrPlayer& player, u64 pos)
{
    if (player.file.isOpen() || player.OpenFile(player.fileName))
        player.SeekTo(pos);
    player.ReadNextItem(false);
}

/// A log that grows while it is read may be passed by more than any percentage can say.
int WholePercent(const ZrPlayer& player)
{
    constexpr double greatest = std::numeric_limits<int>::max();
    return static_cast<int>(std::min(player.PosPercent(), greatest));
}

/// Whether \p payload fits into a byte array.
bool FitsByteArray(zr::span<u8> payload)
{
    return payload.size() <= static_cast<std::size_t>(std::numeric_limits<int>::max());
}

/// Walks from record \p start towards \p t until it is passed; the record met with the smallest difference in
/// time, the first one of equals. 0 when \p t is never passed.
int NearestOnTheWay(const std::vector<ZrLogRec>& recs, int start, double t)
{
    const bool backwards = recs[static_cast<std::size_t>(start)].time >= t;
    const int count = static_cast<int>(recs.size());
    int best = start;
    double bestDifference = std::numeric_limits<double>::infinity();
    for (int i = start; i >= 0 && i < count; i += backwards ? -1 : 1) {
        const double time = recs[static_cast<std::size_t>(i)].time;
        const double difference = std::fabs(time - t);
        if (difference < bestDifference) {
            best = i;
            bestDifference = difference;
        }
        if (backwards ? time < t : time > t)
            return best;
    }
    return 0;
}

} // namespace

ZrDataset::ZrDataset() = default;

ZrDataset::ZrDataset(CRecType indexType, std::array<CRecType, 8> coordinateTypes)
    : idxType(indexType)
    , crdTypes(coordinateTypes)
{
}

ZrDataset::~ZrDataset() = default;

void ZrDataset::UpdCrdPos(std::array<u64, 8>& crdPos, const ZrLogItemInf& inf, u64 pos)
{
    for (std::size_t slot = 0; slot < crdTypes.size(); ++slot)
        if (crdTypes[slot] != CRecType() && crdTypes[slot] == inf)
            crdPos[slot] = pos;
}

void ZrDataset::FillRec(ZrLogRec& rec, const ZrLogItemInf& inf, zr::span<u8>)
{
    rec.time = inf.time;
}

void ZrDataset::Preroll(ZrPlayer& player)
{
    if (recs.empty())
        return;
    // All positions are found before the first item is delivered: a receiver may load another table.
    const CrdPositions atEnd = CrdPosOf(recs.back());
    CrdPositions first{};
    for (std::size_t slot = 0; slot < first.size(); ++slot)
        for (std::size_t i = 0; atEnd[slot] != 0 && first[slot] == 0; ++i)
            first[slot] = CrdPosOf(recs[i])[slot];
    for (u64 pos : first)
        if (pos != 0)
            Replay(player, pos);
}

void ZrDataset::SeekTo(ZrPlayer& player, const ZrLogRec& rec)
{
    // A copy: a receiver may load another table, and \p rec may lie in this one.
    const CrdPositions positions = CrdPosOf(rec);
    for (u64 pos : positions)
        if (pos != 0)
            Replay(player, pos);
}

void ZrDataset::ReadFile(QString logPath)
{
    Q_EMIT PercentLoad(0);
    fileName = logPath;
    ClearData();
    ZrPlayer player;
    if (ReadIndex(logPath)) {
        ReadEvents(logPath);
        UpdateExtents();
        Q_EMIT NewDataset();
    } else if (player.OpenFile(logPath)) {
        ScanLog(player, logPath);
        UpdateExtents();
        Q_EMIT NewDataset();
        WriteIndex(logPath);
        WriteEvents(logPath);
    } else {
        qDebug() << "Unable to open log file: " << logPath;
    }
    Q_EMIT PercentLoad(100);
    if (recs.size() > 2) {
        firstRec = 0;
        lastRec = static_cast<i32>(recs.size() - 1);
    }
}

/// Makes records and events of the items of the open log, to its end or to the first damaged item.
void ZrDataset::ScanLog(ZrPlayer& player, const QString& logPath)
{
    CrdPositions crdPos{};
    const auto takeItem = [this, &crdPos, &logPath](const ZrLogItemInf& inf, zr::span<u8> payload, u64 pos) {
        UpdCrdPos(crdPos, inf, pos);
        if (inf == idxType) {
            ZrLogRec rec(inf, pos, crdPos);
            FillRec(rec, inf, payload);
            recs.push_back(rec);
        } else if (inf == CRecType(rtMissionPlan)) {
            RecoverPlan(logPath, payload);
        } else if (inf == CRecType(rtEvent)) {
            RecoverEvent(payload);
        }
    };
    const QMetaObject::Connection connection = connect(&player, &ZrPlayer::NewPayloadPos, this, takeItem);

    u64 items = 0;
    int told = 0;
    while (player.ReadNextItem(true)) {
        ++items;
        const int percent = WholePercent(player);
        if (percent != told)
            Q_EMIT PercentLoad(told = percent);
    }
    player.CloseFile();
    disconnect(connection);
    qDebug() << "Number of items read:" << items;
    qDebug() << "Number of vehicle entries:" << recs.size();
}

void ZrDataset::RecoverPlan(const QString& logPath, zr::span<u8> payload)
{
    if (!FitsByteArray(payload))
        return;
    qDebug() << "Recovering mission plan";
    QByteArray bytes = zr::to_byte_array(payload);
    ZrXmlStore store(false);
    store.Load(bytes);
    store.Save(logPath + QLatin1String(".xml"));
}

/// The event file is rewritten after each event, so that it holds every event found so far when the scan ends
/// early.
void ZrDataset::RecoverEvent(zr::span<u8> payload)
{
    if (!FitsByteArray(payload))
        return;
    qDebug() << "Found event";
    QByteArray bytes = zr::to_byte_array(payload);
    ZrLogEvt evt;
    evt.Load(bytes);
    AddEvent(evt);
}

void ZrDataset::ClearData()
{
    altitudePlot.clear();
    seabedPlot.clear();
    recs.clear();
    ClearEvents();
    firstRec = -1;
    lastRec = -1;
}

const ZrLogRec* ZrDataset::GetRec() const
{
    if (curRec < 0 || static_cast<std::size_t>(curRec) >= recs.size())
        return nullptr;
    return &recs[static_cast<std::size_t>(curRec)];
}

u64 ZrDataset::GetRecFp(int i)
{
    if (i < 0 || static_cast<std::size_t>(i) >= recs.size())
        return 0;
    return recs[static_cast<std::size_t>(i)].pos;
}

u64 ZrDataset::GetNextFp()
{
    return GetRecFp(curRec);
}

bool ZrDataset::SeekToTime(double t)
{
    if (!GetRec())
        return false;
    for (std::size_t i = static_cast<std::size_t>(curRec); i < recs.size(); ++i) {
        const double time = recs[i].time;
        if (time == t) {
            curRec = static_cast<i32>(i);
            return true;
        }
        if (time > t)
            return false;
    }
    return false;
}

int ZrDataset::PosFromTime(double t)
{
    if (recs.empty() || t < recs.front().time)
        return 0;
    const double first = recs.front().time;
    const double last = recs.back().time;
    const double count = static_cast<double>(recs.size());
    if (t > last)
        return static_cast<int>(recs.size() - 1);
    // The divisor is the number of records, not of the gaps between them, so exactly at the last record the
    // estimate is the number of records, and the result 0. Applications rely on these values. The comparison
    // is written so that a NaN, which equal times and times that are not numbers give, ends here too.
    const double estimate = std::floor((t - first) / ((last - first) / count) + 0.5);
    if (!(estimate < count))
        return 0;
    return NearestOnTheWay(recs, static_cast<int>(estimate), t);
}
