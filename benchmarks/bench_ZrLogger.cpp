// Logging one item, against the same sequence of system calls made by hand: write header, write payload, seek
// back, write header, seek forth. The ratio of the two is what the writer itself costs: its lock, the clock,
// the header and the file object.
//
// Argument: payload bytes. The file lies in the folder for temporary files and is emptied at intervals.

#include "ZrUtil/ZrEndian.h"
#include "ZrUtil/ZrLogHeader.h"
#include "ZrUtil/ZrLogItem.h"
#include "ZrUtil/ZrLogger.h"

#include <QFile>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <cstring>
#include <fcntl.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr u64 fileLimit = u64(256) << 20; ///< a file that has grown to this is emptied

void Quiet(QtMsgType, const QMessageLogContext&, const QString&) { }

std::vector<u8> MakePayload(std::size_t size)
{
    std::vector<u8> payload(size);
    u32 state = 1;
    for (u8& byte : payload) {
        state = state * 1664525u + 1013904223u;
        byte = static_cast<u8>(state >> 24);
    }
    return payload;
}

/// Whether \p path holds nothing but whole items of this payload, \p count of them.
bool IsWholeLog(const QString& path, const std::vector<u8>& payload, u64 count)
{
    QFile file(path);
    const qint64 step = static_cast<qint64>(ZrLogItem::Size + payload.size());
    if (!file.open(QIODevice::ReadOnly)
        || file.size() != static_cast<qint64>(ZrLogHeader::Size) + step * static_cast<qint64>(count))
        return false;
    file.seek(ZrLogHeader::Size);
    for (u64 i = 0; i < count; ++i) {
        const QByteArray bytes = file.read(step);
        const ZrLogItem item = ZrLogItem::Decode(reinterpret_cast<const u8*>(bytes.constData()));
        if (item.magic != ZrLogItem::Magic || item.storedSize != payload.size()
            || std::memcmp(bytes.constData() + ZrLogItem::Size, payload.data(), payload.size()) != 0)
            return false;
    }
    return true;
}

void Count(benchmark::State& state, std::size_t payloadSize)
{
    state.SetItemsProcessed(state.iterations());
    state.SetBytesProcessed(state.iterations() * static_cast<i64>(ZrLogItem::Size + payloadSize));
}

void LogData(benchmark::State& state)
{
    qInstallMessageHandler(Quiet);
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("a.log"));
    std::vector<u8> payload = MakePayload(static_cast<std::size_t>(state.range(0)));
    ZrLogger log(nullptr);
    log.OpenFile(path);
    for (auto _ : state) {
        log.LogData(CRecType(0, 16), 1, 2, false, {payload});
        if (log.bytesWritten >= fileLimit) {
            state.PauseTiming();
            log.OpenFile(path);
            state.ResumeTiming();
        }
    }
    log.CloseLog();
    if (log.WriteErrors() != 0 || !IsWholeLog(path, payload, log.itemCount))
        state.SkipWithError("the log is not what was logged");
    Count(state, payload.size());
}

/// The system calls alone, on a file with a log header.
class RawLog
{
public:
    explicit RawLog(const QString& path)
        : m_fd(open(QFile::encodeName(path).constData(), O_WRONLY | O_CREAT | O_TRUNC, 0666))
    {
        Restart();
    }

    ~RawLog() { close(m_fd); }

    RawLog(const RawLog&) = delete;
    RawLog& operator=(const RawLog&) = delete;

    void Restart()
    {
        const auto header = ZrLogHeader().Encode();
        m_ok = ftruncate(m_fd, 0) == 0 && lseek(m_fd, 0, SEEK_SET) == 0 && m_ok;
        Write(header.data(), header.size());
        m_pos = ZrLogHeader::Size;
        m_count = 0;
    }

    void Append(const std::vector<u8>& payload)
    {
        ZrLogItem item;
        item.type = 16;
        const auto placeholder = item.Encode();
        Write(placeholder.data(), placeholder.size());
        Write(payload.data(), payload.size());
        item.dataSize = static_cast<u32>(payload.size());
        item.storedSize = item.dataSize;
        const auto header = item.Encode();
        m_ok = lseek(m_fd, m_pos, SEEK_SET) == m_pos && m_ok;
        Write(header.data(), header.size());
        m_pos += static_cast<off_t>(ZrLogItem::Size + payload.size());
        m_ok = lseek(m_fd, m_pos, SEEK_SET) == m_pos && m_ok;
        ++m_count;
    }

    u64 Pos() const { return static_cast<u64>(m_pos); }

    u64 ItemCount() const { return m_count; }

    bool IsOk() const { return m_ok; }

private:
    void Write(const u8* data, std::size_t size)
    {
        m_ok = write(m_fd, data, size) == static_cast<ssize_t>(size) && m_ok;
    }

    int m_fd;
    off_t m_pos = 0;
    u64 m_count = 0;
    bool m_ok = true;
};

void RawCalls(benchmark::State& state)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("a.log"));
    const std::vector<u8> payload = MakePayload(static_cast<std::size_t>(state.range(0)));
    RawLog log(path);
    for (auto _ : state) {
        log.Append(payload);
        if (log.Pos() >= fileLimit) {
            state.PauseTiming();
            log.Restart();
            state.ResumeTiming();
        }
    }
    if (!log.IsOk() || !IsWholeLog(path, payload, log.ItemCount()))
        state.SkipWithError("the log is not what was written");
    Count(state, payload.size());
}

} // namespace

BENCHMARK(LogData)->Arg(32)->Arg(256)->Arg(4096)->Arg(65536);
BENCHMARK(RawCalls)->Arg(32)->Arg(256)->Arg(4096)->Arg(65536);
