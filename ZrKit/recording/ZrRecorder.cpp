#include "ZrKit/recording/ZrRecorder.h"

#include "ZrKit/records/ZrKitTypes.h"
#include "ZrUtil/ZrLogItem.h"

#include <QTimer>

namespace {

constexpr int tickMs = 1000;

/// The disk is asked at every tick, and besides whenever this much was written since: a fast source could
/// otherwise fill a small volume within one tick.
constexpr u64 bytesBetweenChecks = 8 * 1024 * 1024;

constexpr int largestRecord = 1024 * 1024 * 1024;

/// Weight of the newest second in the rates shown.
constexpr double rateWeight = 0.3;

double Smoothed(double shown, double measured)
{
    return shown > 0.0 ? shown + rateWeight * (measured - shown) : measured;
}

} // namespace

ZrRecorder::ZrRecorder(const Options& options, QObject* parent)
    : QObject(parent)
    , m_options(options)
    , m_logger(nullptr)
    , m_tick(new QTimer(this))
{
    m_tick->setInterval(tickMs);
    connect(m_tick, &QTimer::timeout, this, &ZrRecorder::OnTick);
    if (!m_options.freeSpace)
        m_options.freeSpace = [this] { return m_logger.DiskSpace(); };
}

ZrRecorder::~ZrRecorder()
{
    Stop();
}

bool ZrRecorder::Start(QString* error)
{
    m_logger.SetLogDirectory(m_options.dir);
    m_logger.Decorate(m_options.prefix, QStringLiteral(".log"));
    const qint64 freeBytes = m_options.freeSpace();
    if (freeBytes >= 0 && freeBytes < m_options.stopBelow) {
        *error = QStringLiteral("Only %1 free in %2; recording needs at least %3")
                     .arg(ZrLogger::SpaceStr(static_cast<u64>(freeBytes)), m_options.dir,
                         ZrLogger::SpaceStr(static_cast<u64>(m_options.stopBelow)));
        return false;
    }
    m_logger.OpenLog();
    if (!m_logger.IsActive()) {
        *error = QStringLiteral("Cannot create a log: %1").arg(m_logger.CurFile());
        return false;
    }
    m_status = Status();
    m_status.file = m_logger.CurFile();
    m_status.freeBytes = freeBytes;
    m_lastTick = 0.0;
    m_lastBytes = m_lastItems = m_bytesAtCheck = 0;
    m_warned = false;
    m_clock.start();
    m_tick->start();
    return true;
}

void ZrRecorder::Stop()
{
    if (!IsRecording())
        return;
    m_status = CurrentStatus();
    m_tick->stop();
    m_logger.CloseLog();
}

bool ZrRecorder::IsRecording() const
{
    return m_logger.IsActive();
}

ZrRecorder::Status ZrRecorder::CurrentStatus() const
{
    Status status = m_status;
    if (IsRecording()) {
        status.items = m_logger.itemCount;
        status.bytes = m_logger.bytesWritten;
        status.seconds = static_cast<double>(m_clock.elapsed()) / 1000.0;
        if (status.freeBytes >= 0 && status.bytesPerSecond > 0.0)
            status.secondsLeft
                = static_cast<double>(status.freeBytes - m_options.stopBelow) / status.bytesPerSecond;
    }
    return status;
}

void ZrRecorder::AddLine(const QByteArray& line)
{
    if (!IsRecording())
        return;
    ++m_status.lines;
    static const u8 endOfText = 0;
    m_logger.LogData(CRecType(rtSerialText), m_options.source, 0, false,
        {zr::bytes_of(line), zr::bytes_of(&endOfText, sizeof endOfText)});

    ZrNmeaSentence sentence;
    QString error;
    if (!ZrNmeaSentence::Parse(line, sentence, &error)) {
        ++m_status.damagedLines;
    } else {
        for (const ZrDecodedRecord& record : m_decoder.Decode(sentence)) {
            m_logger.LogData(
                record.type, m_options.source, record.format, false, {zr::bytes_of(record.payload)});
            if (record.type == zr::rec_type(krtFix))
                ++m_status.fixes;
        }
    }
    CheckAfterWriting();
}

void ZrRecorder::AddRecord(CRecType type, u16 format, double time, const QByteArray& payload)
{
    if (!IsRecording() || payload.size() >= largestRecord)
        return;
    ZrLogItem item;
    item.type = type.type;
    item.sub = type.sub;
    item.format = format;
    item.source = m_options.source;
    item.time = time;
    item.dataSize = item.storedSize = static_cast<u32>(payload.size());
    const auto header = item.Encode();
    QByteArray bytes(reinterpret_cast<const char*>(header.data()), static_cast<int>(header.size()));
    bytes += payload;
    {
        // The logger stamps its items with the time of writing; this one comes whole, in one write.
        const std::lock_guard<std::mutex> lock(m_logger.mutex);
        m_logger.RawWrite(bytes.data(), static_cast<unsigned>(bytes.size()));
        ++m_logger.itemCount;
        m_logger.bytesWritten += static_cast<u64>(bytes.size());
    }
    if (type == zr::rec_type(krtFix))
        ++m_status.fixes;
    CheckAfterWriting();
}

void ZrRecorder::CheckAfterWriting()
{
    if (m_logger.WriteErrors() > 0 || m_logger.bytesWritten - m_bytesAtCheck >= bytesBetweenChecks)
        CheckDisk();
}

void ZrRecorder::OnTick()
{
    const double now = static_cast<double>(m_clock.elapsed()) / 1000.0;
    const double passed = now - m_lastTick;
    if (passed > 0.0) {
        m_status.bytesPerSecond = Smoothed(
            m_status.bytesPerSecond, static_cast<double>(m_logger.bytesWritten - m_lastBytes) / passed);
        m_status.itemsPerSecond = Smoothed(
            m_status.itemsPerSecond, static_cast<double>(m_logger.itemCount - m_lastItems) / passed);
    }
    m_lastTick = now;
    m_lastBytes = m_logger.bytesWritten;
    m_lastItems = m_logger.itemCount;
    CheckDisk();
    if (IsRecording())
        Q_EMIT StatusChanged();
}

void ZrRecorder::CheckDisk()
{
    m_bytesAtCheck = m_logger.bytesWritten;
    if (m_logger.WriteErrors() > 0) {
        Fail(QStringLiteral("Recording stopped: the disk does not take any more data (%1)")
                 .arg(m_status.file));
        return;
    }
    m_status.freeBytes = m_options.freeSpace();
    if (m_status.freeBytes < 0)
        return;
    const QString freeText = ZrLogger::SpaceStr(static_cast<u64>(m_status.freeBytes));
    if (m_status.freeBytes < m_options.stopBelow) {
        Fail(QStringLiteral("Recording stopped before the disk is full: %1 free in %2")
                 .arg(freeText, m_options.dir));
    } else if (m_status.freeBytes < m_options.warnBelow && !m_warned) {
        m_warned = true;
        Q_EMIT Warning(
            QStringLiteral("The disk is getting full: %1 free in %2").arg(freeText, m_options.dir));
    }
}

void ZrRecorder::Fail(const QString& message)
{
    Stop();
    Q_EMIT Failed(message);
}
