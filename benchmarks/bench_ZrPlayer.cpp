// Playing a log from its first item to its last, against reading the same file with plain read() calls of
// 256 KiB. One receiver is connected to NewPayloadPos and touches every 64th byte of each payload.
//
// Argument: payload bytes of each item. The logs lie in the folder for temporary files while the program
// runs; they are read from the system's cache.

#include "ZrUtil/ZrLogHeader.h"
#include "ZrUtil/ZrLogItem.h"
#include "ZrUtil/ZrLogger.h"
#include "ZrUtil/ZrPlayer.h"

#include <QFile>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <map>
#include <unistd.h>
#include <vector>

namespace {

constexpr u64 payloadBytes = u64(64) << 20; ///< of one log

void Quiet(QtMsgType, const QMessageLogContext&, const QString&) { }

/// Every 64th byte, as a receiver that looks at its data would.
u64 Touch(zr::span<u8> payload)
{
    u64 sum = 0;
    for (std::size_t i = 0; i < payload.size(); i += 64)
        sum += payload[i];
    return sum;
}

struct Log
{
    QString path;
    i64 fileSize = 0;
    i64 items = 0;
    u64 touched = 0; ///< sum that a receiver must arrive at
};

/// The log with items of \p size bytes, written when it is asked for first.
const Log& LogOf(std::size_t size)
{
    static QTemporaryDir dir;
    static std::map<std::size_t, Log> logs;
    Log& log = logs[size];
    if (log.items > 0)
        return log;
    qInstallMessageHandler(Quiet);
    log.path = dir.filePath(QStringLiteral("%1.log").arg(size));
    std::vector<u8> payload(size);
    ZrLogger logger(nullptr);
    logger.OpenFile(log.path);
    for (u64 written = 0; written < payloadBytes; written += size) {
        for (std::size_t i = 0; i < size; i += 64)
            payload[i] = static_cast<u8>(log.items + static_cast<i64>(i / 64));
        logger.LogData(CRecType(0, 16), 1, 2, false, {payload});
        log.touched += Touch(payload);
        ++log.items;
    }
    logger.CloseLog();
    log.fileSize = static_cast<i64>(logger.bytesWritten);
    return log;
}

void Count(benchmark::State& state, const Log& log)
{
    state.SetItemsProcessed(state.iterations() * log.items);
    state.SetBytesProcessed(state.iterations() * log.fileSize);
}

void Play(benchmark::State& state)
{
    const Log& log = LogOf(static_cast<std::size_t>(state.range(0)));
    ZrPlayer player;
    u64 sum = 0;
    QObject::connect(&player, &ZrPlayer::NewPayloadPos,
        [&sum](const ZrLogItemInf&, zr::span<u8> payload, u64) { sum += Touch(payload); });
    bool ok = true;
    for (auto _ : state) {
        sum = 0;
        ok = player.OpenFile(log.path) && ok;
        i64 items = 0;
        while (player.ReadNextItem(true))
            ++items;
        ok = ok && sum == log.touched && items == log.items;
    }
    if (!ok)
        state.SkipWithError("not what was logged");
    Count(state, log);
}

void PlainRead(benchmark::State& state)
{
    const Log& log = LogOf(static_cast<std::size_t>(state.range(0)));
    std::vector<u8> block(256 * 1024);
    bool ok = true;
    for (auto _ : state) {
        const int fd = open(QFile::encodeName(log.path).constData(), O_RDONLY);
        i64 total = 0;
        ssize_t count;
        while ((count = read(fd, block.data(), block.size())) > 0) {
            total += count;
            benchmark::DoNotOptimize(block.data());
        }
        close(fd);
        ok = ok && total == log.fileSize;
    }
    if (!ok)
        state.SkipWithError("not the whole file");
    Count(state, log);
}

} // namespace

BENCHMARK(Play)->Arg(32)->Arg(256)->Arg(4096)->Arg(65536);
BENCHMARK(PlainRead)->Arg(32)->Arg(256)->Arg(4096)->Arg(65536);
