// What a dataset costs: scanning a log against reading the same file with plain read() calls of 256 KiB,
// loading an index against reading its bytes into fresh memory, finding records by time, the track as CSV.
//
// Scan, ScanPlainRead: arguments are the payload bytes of each item and the size of the log's payloads in
// MiB. Every item makes a record. By default a log of a million items of 40 bytes and one of 256 MiB in items
// of 64 KiB; with ZR_BENCH_BIG in the environment also 2 GiB of the latter. The files lie in the folder for
// temporary files while the program runs and are read from the system's cache.

#include "ZrUtil/ZrDataset.h"
#include "ZrUtil/ZrLogger.h"

#include <QFile>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdlib>
#include <fcntl.h>
#include <map>
#include <memory>
#include <unistd.h>
#include <utility>
#include <vector>

namespace {

constexpr CRecType navType(0, 16);
constexpr double startTime = 1602049684.592;

void Quiet(QtMsgType, const QMessageLogContext&, const QString&) { }

QString TemporaryPath(const QString& name)
{
    static QTemporaryDir dir;
    return dir.filePath(name);
}

struct Log
{
    QString path;
    i64 fileSize = 0;
    i64 items = 0;
};

/// The log with items of \p size bytes, \p mib MiB of them, written when it is asked for first.
const Log& LogOf(i64 size, i64 mib)
{
    static std::map<std::pair<i64, i64>, Log> logs;
    Log& log = logs[{size, mib}];
    if (log.items > 0)
        return log;
    qInstallMessageHandler(Quiet);
    log.path = TemporaryPath(QStringLiteral("%1-%2.log").arg(size).arg(mib));
    std::vector<u8> payload(static_cast<std::size_t>(size), 0x5a);
    ZrLogger logger(nullptr);
    logger.OpenFile(log.path);
    for (i64 written = 0; written < mib << 20; written += size) {
        logger.LogData(navType, 1, 2, false, {payload});
        ++log.items;
    }
    logger.CloseLog();
    log.fileSize = static_cast<i64>(logger.bytesWritten);
    return log;
}

/// Reads \p path to its end with calls of \p blockSize bytes; the bytes read.
i64 PlainRead(const QString& path, u8* block, std::size_t blockSize)
{
    const int fd = open(QFile::encodeName(path).constData(), O_RDONLY);
    i64 total = 0;
    ssize_t count;
    while ((count = read(fd, block, blockSize)) > 0) {
        total += count;
        benchmark::DoNotOptimize(block);
    }
    close(fd);
    return total;
}

void CountLog(benchmark::State& state, const Log& log)
{
    state.SetItemsProcessed(state.iterations() * log.items);
    state.SetBytesProcessed(state.iterations() * log.fileSize);
}

void Scan(benchmark::State& state)
{
    const Log& log = LogOf(state.range(0), state.range(1));
    bool ok = true;
    for (auto _ : state) {
        ZrDataset dataset(navType, {navType});
        dataset.ReadFile(log.path);
        state.PauseTiming();
        ok = ok && static_cast<i64>(dataset.recs.size()) == log.items
            && dataset.GetRecFp(static_cast<int>(log.items) - 1)
                == static_cast<u64>(log.fileSize - 40 - state.range(0))
            && QFile::remove(log.path + QStringLiteral(".zri"));
        state.ResumeTiming();
    }
    if (!ok)
        state.SkipWithError("not what was logged");
    CountLog(state, log);
}

void ScanPlainRead(benchmark::State& state)
{
    const Log& log = LogOf(state.range(0), state.range(1));
    std::vector<u8> block(256 * 1024);
    bool ok = true;
    for (auto _ : state)
        ok = PlainRead(log.path, block.data(), block.size()) == log.fileSize && ok;
    if (!ok)
        state.SkipWithError("not the whole file");
    CountLog(state, log);
}

/// Fills \p dataset with \p count records, ten per second, with a gap of a minute after every 10,000.
void FillRecords(ZrDataset& dataset, i64 count)
{
    dataset.recs.resize(static_cast<std::size_t>(count));
    double time = startTime;
    for (i64 i = 0; i < count; ++i) {
        ZrLogRec& rec = dataset.recs[static_cast<std::size_t>(i)];
        rec.time = time;
        rec.latitude = 60.0 + 1e-7 * static_cast<double>(i);
        rec.longitude = 5.0 + 3e-7 * static_cast<double>(i);
        rec.depth = 100.0f + 0.37f * static_cast<float>(i % 100);
        rec.altitude = 7.3f;
        rec.heading = 0.61f * static_cast<float>(i % 590);
        rec.pos = 48 + 80 * static_cast<u64>(i);
        time += i % 10000 == 9999 ? 60.0 : 0.1;
    }
}

/// A log without a log: an index of \p count records. Its path.
QString IndexOf(i64 count)
{
    const QString path = TemporaryPath(QStringLiteral("%1-records").arg(count));
    if (!QFile::exists(path + QStringLiteral(".zri"))) {
        qInstallMessageHandler(Quiet);
        ZrDataset dataset(navType, {});
        FillRecords(dataset, count);
        dataset.WriteIndex(path);
    }
    return path;
}

void LoadIndex(benchmark::State& state)
{
    const i64 count = state.range(0);
    const QString path = IndexOf(count);
    bool ok = true;
    for (auto _ : state) {
        ZrDataset dataset(navType, {});
        ok = dataset.ReadIndex(path) && ok;
        state.PauseTiming();
        ok = ok && dataset.GetRecFp(static_cast<int>(count) - 1) == 48 + 80 * static_cast<u64>(count - 1);
        std::vector<ZrLogRec>().swap(dataset.recs);
        state.ResumeTiming();
    }
    if (!ok)
        state.SkipWithError("not what was written");
    state.SetItemsProcessed(state.iterations() * count);
    state.SetBytesProcessed(state.iterations() * (46 + 160 * count));
}

void LoadIndexPlainRead(benchmark::State& state)
{
    const i64 size = 46 + 160 * state.range(0);
    const QString path = IndexOf(state.range(0)) + QStringLiteral(".zri");
    bool ok = true;
    for (auto _ : state) {
        const std::unique_ptr<u8[]> bytes(new u8[static_cast<std::size_t>(size)]);
        ok = PlainRead(path, bytes.get(), static_cast<std::size_t>(size)) == size && ok;
    }
    if (!ok)
        state.SkipWithError("not the whole file");
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.SetBytesProcessed(state.iterations() * size);
}

void PosFromTime(benchmark::State& state)
{
    const i64 count = state.range(0);
    ZrDataset dataset(navType, {});
    FillRecords(dataset, count);
    // Times of records all over the table, short of the last ones, where the estimate leaves the table.
    std::vector<double> times;
    std::vector<int> expected;
    for (i64 i = 0; i < 1000; ++i) {
        expected.push_back(static_cast<int>(i * 999983 % (count - 10)));
        times.push_back(dataset.recs[static_cast<std::size_t>(expected.back())].time);
    }
    std::vector<int> found(times.size());
    for (auto _ : state)
        for (std::size_t i = 0; i < times.size(); ++i)
            found[i] = dataset.PosFromTime(times[i]);
    if (found != expected)
        state.SkipWithError("not the records of these times");
    state.SetItemsProcessed(state.iterations() * static_cast<i64>(times.size()));
}

void ExportTrack(benchmark::State& state)
{
    const i64 count = state.range(0);
    ZrDataset dataset(navType, {});
    FillRecords(dataset, count);
    const QString path = TemporaryPath(QStringLiteral("track.csv"));
    bool ok = true;
    for (auto _ : state)
        ok = dataset.ExportTrack(path, nullptr) && ok;
    QFile file(path);
    ok = ok && file.open(QIODevice::ReadOnly) && file.readAll().count('\n') == count + 1;
    if (!ok)
        state.SkipWithError("not a line for each record");
    state.SetItemsProcessed(state.iterations() * count);
    state.SetBytesProcessed(state.iterations() * file.size());
}

void BigLogs(benchmark::internal::Benchmark* benchmark)
{
    benchmark->Args({40, 39})->Args({65536, 256});
    if (std::getenv("ZR_BENCH_BIG"))
        benchmark->Args({65536, 2048});
}

} // namespace

BENCHMARK(Scan)->Apply(BigLogs)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(ScanPlainRead)->Apply(BigLogs)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(LoadIndex)->Arg(10000)->Arg(1000000)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(LoadIndexPlainRead)->Arg(10000)->Arg(1000000)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(PosFromTime)->Arg(100000)->Arg(10000000);
BENCHMARK(ExportTrack)->Arg(100000)->Unit(benchmark::kMillisecond)->UseRealTime();
