#include "ZrKit/recording/ZrRecorder.h"

#include "ZrKit/recording/ZrLogName.h"
#include "ZrKit/records/ZrKitTypes.h"
#include "ZrKit/ui/ZrByteText.h"
#include "ZrUtil/ZrLogEvt.h"
#include "ZrUtil/ZrLogItem.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QTimer>

namespace {

constexpr int tickMs = 1000;

/// The disk is asked at every tick, and besides whenever this much was written since: a fast source could
/// otherwise fill a small volume within one tick.
constexpr u64 bytesBetweenChecks = 8 * 1024 * 1024;

constexpr int largestRecord = 1024 * 1024 * 1024;

/// Weight of the newest second in the rates shown.
constexpr double rateWeight = 0.3;

double SecondsNow()
{
    return static_cast<double>(QDateTime::currentMSecsSinceEpoch()) / 1000.0;
}

/// In the units in which limits are set, thousands.
QString SizeText(qint64 bytes)
{
    return ZrByteText::Of(static_cast<double>(bytes)).Text();
}

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
    m_clock.start();
    if (!m_options.clock)
        m_options.clock = [this] { return static_cast<double>(m_clock.elapsed()) / 1000.0; };
    m_head.SetPlan(m_options.plan);
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
    m_failure = failureNone;
    if (freeBytes >= 0 && freeBytes < m_options.stopBelow) {
        m_failure = failureSpace;
        *error = QCoreApplication::translate("ZrRecorder", "Only %1 free in %2; recording needs at least %3")
                     .arg(SizeText(freeBytes), m_options.dir, SizeText(m_options.stopBelow));
        return false;
    }
    const bool isSplit = m_options.splitBytes > 0 || m_options.splitSeconds > 0.0;
    m_stem = ZrLogName::Stem(m_options.dir, m_options.prefix, QDateTime::currentDateTime());
    m_status = Status();
    m_status.part = isSplit ? 1 : 0;
    m_status.freeBytes = freeBytes;
    m_doneItems = m_doneBytes = 0;
    m_started = m_options.clock();
    if (!OpenPart()) {
        m_failure = failureCreate;
        *error = QCoreApplication::translate("ZrRecorder", "Cannot create a log: %1").arg(m_logger.CurFile());
        return false;
    }
    m_lastTick = 0.0;
    m_lastBytes = m_lastItems = m_bytesAtCheck = 0;
    m_warned = false;
    m_tick->start();
    return true;
}

/// Creates the log of `Status::part` and writes its head.
bool ZrRecorder::OpenPart()
{
    m_logger.OpenFile(m_options.dir + QDir::separator() + ZrLogName::Of(m_stem, m_status.part));
    if (!m_logger.IsActive())
        return false;
    m_status.file = m_logger.CurFile();
    m_partStarted = Elapsed();
    if (m_options.writesHead) {
        m_head.Write(SecondsNow(), [this](const ZrRecordHead::Record& record) {
            LogRecord(record.type, record.format, record.time, record.payload);
        });
    }
    m_partHead = m_logger.itemCount;
    return true;
}

/// Goes on in a new part if one is due, or if \p bytes more would be too many. False when the recording had
/// to end.
bool ZrRecorder::MakeRoom(u64 bytes)
{
    // A part that holds nothing but its head would be followed by another one for ever.
    if (m_status.part == 0 || m_logger.itemCount == m_partHead)
        return true;
    const bool isFull
        = m_options.splitBytes > 0 && m_logger.bytesWritten + bytes > static_cast<u64>(m_options.splitBytes);
    const bool isOld = m_options.splitSeconds > 0.0 && Elapsed() - m_partStarted >= m_options.splitSeconds;
    if (!isFull && !isOld)
        return true;
    CheckDisk();
    if (!IsRecording())
        return false;
    m_doneItems += m_logger.itemCount;
    m_doneBytes += m_logger.bytesWritten;
    m_logger.CloseLog();
    ++m_status.part;
    if (OpenPart())
        return true;
    --m_status.part;
    m_failure = failureCreate;
    m_tick->stop();
    m_status.items = Items();
    m_status.bytes = Bytes();
    m_status.seconds = Elapsed();
    Q_EMIT Failed(QCoreApplication::translate("ZrRecorder", "Recording stopped: cannot create %1")
                      .arg(m_logger.CurFile()));
    return false;
}

double ZrRecorder::Elapsed() const
{
    return m_options.clock() - m_started;
}

u64 ZrRecorder::Items() const
{
    return m_doneItems + m_logger.itemCount;
}

u64 ZrRecorder::Bytes() const
{
    return m_doneBytes + m_logger.bytesWritten;
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
        status.items = Items();
        status.bytes = Bytes();
        status.seconds = Elapsed();
        if (status.freeBytes >= 0 && status.bytesPerSecond > 0.0)
            status.secondsLeft
                = static_cast<double>(status.freeBytes - m_options.stopBelow) / status.bytesPerSecond;
    }
    return status;
}

void ZrRecorder::AddLine(const QByteArray& line)
{
    // What is decoded from a line stays in one part with it.
    if (!IsRecording() || !MakeRoom(ZrLogItem::Size + static_cast<u64>(line.size()) + 1))
        return;
    const double now = SecondsNow();
    ++m_status.lines;
    static const u8 endOfText = 0;
    m_logger.LogData(CRecType(rtSerialText), m_options.source, 0, false,
        {zr::bytes_of(line), zr::bytes_of(&endOfText, sizeof endOfText)});
    Remember(CRecType(rtSerialText), 0, now, line + QByteArray(1, '\0'));

    ZrNmeaSentence sentence;
    QString error;
    if (!ZrNmeaSentence::Parse(line, sentence, &error)) {
        ++m_status.damagedLines;
    } else {
        for (const ZrDecodedRecord& record : m_decoder.Decode(sentence)) {
            m_logger.LogData(
                record.type, m_options.source, record.format, false, {zr::bytes_of(record.payload)});
            Remember(record.type, record.format, now, record.payload);
            if (record.type == zr::rec_type(krtFix))
                ++m_status.fixes;
        }
    }
    CheckAfterWriting();
}

bool ZrRecorder::AddRecord(CRecType type, u16 format, double time, const QByteArray& payload)
{
    if (!IsRecording() || payload.size() >= largestRecord
        || !MakeRoom(ZrLogItem::Size + static_cast<u64>(payload.size())))
        return false;
    LogRecord(type, format, time, payload);
    Remember(type, format, time, payload);
    if (type == zr::rec_type(krtFix))
        ++m_status.fixes;
    // Each item is looked at when it was written: an error before this one has ended the recording.
    CheckAfterWriting();
    return m_failure != failureWrite;
}

bool ZrRecorder::AddEvent(ZrLogEvt event)
{
    QByteArray bytes;
    event.Save(bytes);
    return AddRecord(CRecType(rtEvent), 0, event.time, bytes);
}

void ZrRecorder::Remember(CRecType type, u16 format, double time, const QByteArray& payload)
{
    if (m_options.writesHead)
        m_head.Keep(type, format, time, payload);
}

void ZrRecorder::Forget()
{
    m_head.Clear();
}

void ZrRecorder::LogRecord(CRecType type, u16 format, double time, const QByteArray& payload)
{
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
}

void ZrRecorder::CheckAfterWriting()
{
    if (m_logger.WriteErrors() > 0 || Bytes() - m_bytesAtCheck >= bytesBetweenChecks)
        CheckDisk();
}

void ZrRecorder::OnTick()
{
    const double now = Elapsed();
    const double passed = now - m_lastTick;
    if (passed > 0.0) {
        m_status.bytesPerSecond
            = Smoothed(m_status.bytesPerSecond, static_cast<double>(Bytes() - m_lastBytes) / passed);
        m_status.itemsPerSecond
            = Smoothed(m_status.itemsPerSecond, static_cast<double>(Items() - m_lastItems) / passed);
    }
    m_lastTick = now;
    m_lastBytes = Bytes();
    m_lastItems = Items();
    CheckDisk();
    if (IsRecording())
        Q_EMIT StatusChanged();
}

void ZrRecorder::CheckDisk()
{
    m_bytesAtCheck = Bytes();
    if (m_logger.WriteErrors() > 0) {
        Fail(failureWrite,
            QCoreApplication::translate(
                "ZrRecorder", "Recording stopped: the disk does not take any more data (%1)")
                .arg(m_status.file));
        return;
    }
    m_status.freeBytes = m_options.freeSpace();
    if (m_status.freeBytes < 0)
        return;
    const QString freeText = SizeText(m_status.freeBytes);
    if (m_status.freeBytes < m_options.stopBelow) {
        Fail(failureSpace,
            QCoreApplication::translate(
                "ZrRecorder", "Recording stopped before the disk is full: %1 free in %2")
                .arg(freeText, m_options.dir));
    } else if (m_status.freeBytes < m_options.warnBelow && !m_warned) {
        m_warned = true;
        Q_EMIT Warning(QCoreApplication::translate("ZrRecorder", "The disk is getting full: %1 free in %2")
                           .arg(freeText, m_options.dir));
    }
}

void ZrRecorder::Fail(eFailure failure, const QString& message)
{
    m_failure = failure;
    if (m_options.logsReason && m_logger.WriteErrors() == 0) {
        ZrLogEvt event(SecondsNow(), esSystem, message);
        event.uid = QUuid::createUuid();
        QByteArray bytes;
        event.Save(bytes);
        LogRecord(CRecType(rtEvent), 0, event.time, bytes);
    }
    Stop();
    Q_EMIT Failed(message);
}
