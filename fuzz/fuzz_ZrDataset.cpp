// An index and an event file of any bytes beside a small valid log: each is taken whole or refused, what was
// taken fits into the file it came from, and whatever the records say, no operation leaves the table.
//
// Input: length of the index (u16, little-endian), the index, and the event file in the rest.

#include "FuzzFile.h"
#include "ZrUtil/ZrDataset.h"
#include "ZrUtil/ZrEndian.h"
#include "ZrUtil/ZrLogger.h"
#include "ZrUtil/ZrPlayer.h"

#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdlib>
#include <cstring>

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
/// No single allocation may come near what a hostile count or length asks for.
extern "C" const char* __asan_default_options() // NOLINT(bugprone-reserved-identifier): the sanitizer's name
{
    return "max_allocation_size_mb=64:allocator_may_return_null=0";
}
#endif
#endif

namespace {

constexpr std::size_t headerSize = 46;
constexpr std::size_t recordSize = 160;
constexpr std::size_t leastEventSize = 38; ///< an event without texts
constexpr CRecType indexType(0, 16);
constexpr std::array<CRecType, 8> coordinateTypes{CRecType(0, 18), CRecType(), CRecType(1, 20)};

void Require(bool condition)
{
    if (!condition)
        std::abort();
}

/// A log of three coordinate items (at 48, 144 and 240), each with an item of the index type behind it, and
/// an event. One per process, in a folder that goes with it.
const QString& LogPath()
{
    static const QTemporaryDir dir;
    static QString path;
    if (!path.isEmpty())
        return path;
    Require(dir.isValid());
    path = dir.filePath(QStringLiteral("a.log"));
    ZrLogger logger(nullptr);
    logger.OpenFile(path);
    u8 payload[] = {1, 2, 3, 4, 5, 6, 7, 8};
    for (int i = 0; i < 3; ++i) {
        logger.LogData(i < 2 ? coordinateTypes[0] : coordinateTypes[2], 0, 0, false, {payload});
        logger.LogData(indexType, 0, 0, false, {payload});
    }
    QByteArray event;
    ZrLogEvt(15.0, esVehicle, QStringLiteral("event")).Save(event);
    logger.LogData(rtEvent, 0,
        {zr::span<u8>(reinterpret_cast<u8*>(event.data()), static_cast<std::size_t>(event.size()))});
    logger.CloseLog();
    Require(logger.itemCount == 7);
    return path;
}

void WriteFile(const QString& path, const u8* data, std::size_t size)
{
    QFile file(path);
    Require(file.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    const qint64 bytes = static_cast<qint64>(size);
    Require(file.write(reinterpret_cast<const char*>(data), bytes) == bytes);
}

QByteArray ReadFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool InTable(const ZrDataset& dataset, int i)
{
    return i == 0 || (i > 0 && static_cast<std::size_t>(i) < dataset.recs.size());
}

/// Each event took its bytes of the file, and its record is one of the table.
void CheckEvents(const ZrDataset& dataset, std::size_t fileSize)
{
    std::size_t bytes = 4;
    for (ZrListPos* pos = dataset.events.GetHeadPos(); pos;) {
        const ZrLogEvt& evt = *dataset.events.GetNext(pos);
        bytes += leastEventSize + 2 * static_cast<std::size_t>(evt.text.size() + evt.detail.size());
        Require(InTable(dataset, evt.rec));
    }
    Require(dataset.events.IsEmpty() || bytes <= fileSize);
}

/// The event cursor reaches every event in both directions.
void WalkEvents(ZrDataset& dataset)
{
    const int count = dataset.events.GetCount();
    int steps = 0;
    for (; dataset.HasNextEvt(); ++steps)
        dataset.GoNextEvt();
    for (; dataset.HasPrevEvt(); --steps)
        dataset.GoPrevEvt();
    Require(steps == 0 && (dataset.curEvt == nullptr) == (count == 0));
}

/// Everything that goes by what the records say.
void UseRecords(ZrDataset& dataset)
{
    const std::size_t count = dataset.recs.size();
    dataset.UpdateExtents();
    Require(dataset.curRec == (count == 0 ? -1 : 0));
    Require(dataset.altitudePlot.size() == 2 * count && dataset.seabedPlot.size() == 4 * count);
    ZrPlayer player;
    Require(player.OpenFile(LogPath()));
    dataset.Preroll(player);
    for (std::size_t i = 0; i < count; ++i) {
        const double time = dataset.recs[i].time;
        Require(InTable(dataset, dataset.PosFromTime(time)));
        Require(InTable(dataset, dataset.PosFromTime(time / 2.0)));
        dataset.curRec = static_cast<i32>(i);
        Require(dataset.SeekToTime(time) == (time == time));
        Require(dataset.GetNextFp() == dataset.recs[i].pos);
        dataset.SeekTo(player, dataset.recs[i]);
    }
    Require(dataset.ExportTrack(LogPath() + QStringLiteral(".csv"), nullptr));
}

/// Reads the dataset as an application does; the index is that of the log afterwards, or was taken.
void UseFile(bool indexIsTaken)
{
    ZrDataset dataset(indexType, coordinateTypes);
    dataset.ReadFile(LogPath());
    const int count = static_cast<int>(dataset.recs.size());
    Require(indexIsTaken || count == 3);
    Require(dataset.firstRec == (count > 2 ? 0 : -1) && dataset.lastRec == (count > 2 ? count - 1 : -1));
    dataset.ReadFile(LogPath());
    Require(static_cast<int>(dataset.recs.size()) == count);
    dataset.AddEvent(ZrLogEvt(12.0, esUser, QStringLiteral("added")));
    WalkEvents(dataset);
    const int events = dataset.events.GetCount();
    Require(dataset.ReadEvents(LogPath()) && dataset.events.GetCount() == events);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* data, std::size_t size)
{
    SilenceDebugOutput();
    if (size < 2)
        return 0;
    const std::size_t indexSize = std::min<std::size_t>(zr::load_le<u16>(data), size - 2);
    const u8* const index = data + 2;
    const std::size_t eventSize = size - 2 - indexSize;
    const QString indexPath = LogPath() + QStringLiteral(".zri");
    WriteFile(indexPath, index, indexSize);
    WriteFile(LogPath() + QStringLiteral(".evt"), index + indexSize, eventSize);

    ZrDataset dataset(indexType, coordinateTypes);
    const bool taken = dataset.ReadIndex(LogPath());
    const std::size_t count = dataset.recs.size();
    Require(taken ? headerSize + count * recordSize == indexSize : count == 0);
    Require(dataset.ReadEvents(LogPath()));
    CheckEvents(dataset, eventSize);
    WalkEvents(dataset);
    UseRecords(dataset);
    if (count > 0) { // what was taken is written as it was
        dataset.WriteIndex(LogPath());
        const QByteArray written = ReadFile(indexPath);
        Require(static_cast<std::size_t>(written.size()) == indexSize
            && std::memcmp(written.constData(), index, indexSize) == 0);
    }
    UseFile(taken);

    QByteArray payload(reinterpret_cast<const char*>(index + indexSize), static_cast<int>(eventSize));
    ZrLogEvt evt;
    evt.Load(payload);
    dataset.ClearData();
    dataset.AddEvent(evt);
    Require(dataset.recs.empty() && dataset.events.GetCount() == 1 && !dataset.GetRec());
    return 0;
}
