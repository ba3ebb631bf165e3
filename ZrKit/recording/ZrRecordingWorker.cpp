#include "ZrKit/recording/ZrRecordingWorker.h"

#include "ZrKit/records/ZrKitTypes.h"
#include "ZrUtil/ZrLogEvt.h"
#include "ZrUtil/ZrLogItem.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QStorageInfo>
#include <QTimer>

#include <iterator>
#include <utility>

namespace {

/// Twenty times a second at most: what is live looks so, and the screen has time left.
constexpr int tickMs = 50;

/// While nothing comes a recording tells its time so often.
constexpr int idleTicks = 10;

double SecondsNow()
{
    return static_cast<double>(QDateTime::currentMSecsSinceEpoch()) / 1000.0;
}

/// Appends \p news to \p waiting, of which the newest \p most stay; how many went.
template <class T> std::size_t Append(std::vector<T>& waiting, std::vector<T>&& news, std::size_t most)
{
    waiting.insert(waiting.end(), std::make_move_iterator(news.begin()), std::make_move_iterator(news.end()));
    if (waiting.size() <= most)
        return 0;
    const std::size_t surplus = waiting.size() - most;
    waiting.erase(waiting.begin(), waiting.begin() + static_cast<std::ptrdiff_t>(surplus));
    return surplus;
}

} // namespace

ZrRecordingWorker::ZrRecordingWorker(std::function<double()> clock)
    : m_clock(std::move(clock))
    , m_calls(new ZrCallQueue(this))
    , m_tick(new QTimer(this))
    , m_decoder(QDate())
{
    m_tick->setInterval(tickMs);
    connect(m_tick, &QTimer::timeout, this, &ZrRecordingWorker::OnTick);
}

ZrRecordingWorker::~ZrRecordingWorker() = default;

void ZrRecordingWorker::Open(const MakeSource& make)
{
    ++m_opened;
    Close();
    m_source.reset(make ? make() : nullptr);
    if (!m_source) {
        Q_EMIT OpenFailed(QString());
        return;
    }
    connect(m_source.get(), &ZrLineSource::Line, this, &ZrRecordingWorker::OnLine);
    connect(m_source.get(), &ZrLineSource::Record, this, &ZrRecordingWorker::OnRecord);
    connect(m_source.get(), &ZrLineSource::Trouble, this, &ZrRecordingWorker::Trouble);
    connect(m_source.get(), &ZrLineSource::Lost, this,
        [this](const QString& reason) { Q_EMIT SourceLost(reason, m_opened); });
    connect(m_source.get(), &ZrLineSource::Back, this, [this] { Q_EMIT SourceBack(m_opened); });
    connect(m_source.get(), &ZrLineSource::Finished, this, [this] {
        Tell();
        Q_EMIT SourceFinished();
    });
    QString error;
    if (!m_source->Start(&error)) {
        m_source.reset();
        Q_EMIT OpenFailed(error);
        return;
    }
    m_tick->start();
    Q_EMIT Opened(m_source->Name());
}

void ZrRecordingWorker::Close()
{
    m_source.reset();
    if (m_recorder)
        m_recorder->Forget();
    m_head.Clear();
    m_decoder = ZrNmeaDecoder(QDate());
    m_tap = ZrLiveTap();
    m_lines.clear();
    m_lineCount = m_recordCount = m_byteCount = m_damagedLines = m_unseenPings = 0;
    m_tellsTime = false;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_news.trail.clear();
        m_news.pings.clear();
        ++m_news.source;
    }
    Tell();
    if (!m_recorder || !m_recorder->IsRecording())
        m_tick->stop();
}

void ZrRecordingWorker::Start(ZrRecorder::Options options, const MakePlan& makePlan)
{
    if (m_recorder && m_recorder->IsRecording()) {
        Q_EMIT StartFailed(QCoreApplication::translate("ZrRecordingWorker", "A recording is going on"),
            ZrRecorder::failureNone);
        return;
    }
    if (makePlan)
        options.plan = makePlan();
    m_recorder = std::make_unique<ZrRecorder>(options, nullptr);
    connect(m_recorder.get(), &ZrRecorder::Warning, this, &ZrRecordingWorker::Trouble);
    connect(m_recorder.get(), &ZrRecorder::Failed, this, &ZrRecordingWorker::End);
    m_head.Write(SecondsNow(), [this](const ZrRecordHead::Record& record) {
        m_recorder->Remember(record.type, record.format, record.time, record.payload);
    });
    QString error;
    if (!m_recorder->Start(&error)) {
        const ZrRecorder::eFailure failure = m_recorder->Failure();
        m_recorder.reset();
        Q_EMIT StartFailed(error, failure);
        return;
    }
    m_tick->start();
    Tell();
    Q_EMIT Started(m_recorder->CurrentStatus().file);
}

void ZrRecordingWorker::Stop()
{
    if (!m_recorder || !m_recorder->IsRecording())
        return;
    m_recorder->Stop();
    End(QString());
}

void ZrRecordingWorker::End(const QString& reason)
{
    Tell();
    Q_EMIT Stopped(reason, m_recorder->Failure());
}

void ZrRecordingWorker::AddEvent(ZrLogEvt event, double now)
{
    if (event.time == 0.0)
        event.time = m_tellsTime ? m_tap.State().dataTime : now;
    if (m_recorder && m_recorder->AddEvent(event))
        return;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_news.lostEvents.push_back(std::move(event));
    }
    Tell();
}

void ZrRecordingWorker::MeasureSpace(const QString& dir)
{
    // The folder may not have been made yet: it will be on the volume of those above it.
    QString existing = QDir::cleanPath(QDir(dir).absolutePath());
    while (!QFileInfo::exists(existing) && !QDir(existing).isRoot())
        existing = QFileInfo(existing).path();
    Q_EMIT SpaceMeasured(QStorageInfo(existing).bytesAvailable());
}

void ZrRecordingWorker::OnLine(const QByteArray& line)
{
    ++m_lineCount;
    m_byteCount += ZrLogItem::Size + static_cast<u64>(line.size()) + 1;
    m_lines.append(line);
    if (m_lines.size() > ZrRecordingNews::MostLines)
        m_lines.removeFirst();
    if (m_recorder)
        m_recorder->AddLine(line);
    const double time = SecondsNow();
    const double now = m_clock();
    m_head.Keep(CRecType(rtSerialText), 0, time, line + QByteArray(1, '\0'));
    ZrNmeaSentence sentence;
    QString error;
    if (!ZrNmeaSentence::Parse(line, sentence, &error)) {
        ++m_damagedLines;
        return;
    }
    m_tap.TakeSentence(now);
    for (const ZrDecodedRecord& record : m_decoder.Decode(sentence)) {
        ++m_recordCount;
        m_byteCount += ZrLogItem::Size + static_cast<u64>(record.payload.size());
        m_tap.Take(record.type, record.format, time, zr::bytes_of(record.payload), now);
        m_head.Keep(record.type, record.format, time, record.payload);
    }
}

void ZrRecordingWorker::OnRecord(CRecType type, u16 format, double time, const QByteArray& payload)
{
    ++m_recordCount;
    m_byteCount += ZrLogItem::Size + static_cast<u64>(payload.size());
    m_tellsTime = true;
    m_tap.Take(type, format, time, zr::bytes_of(payload), m_clock());
    if (m_recorder)
        m_recorder->AddRecord(type, format, time, payload);
    m_head.Keep(type, format, time, payload);
}

void ZrRecordingWorker::OnTick()
{
    const bool isIdle = !m_tap.HasNews() && m_lineCount == m_toldLines;
    const bool isRecording = m_recorder && m_recorder->IsRecording();
    if (!isIdle || (isRecording && ++m_ticks >= idleTicks))
        Tell();
}

/// Adds to the news what is new, and says so unless that was said already.
void ZrRecordingWorker::Tell()
{
    m_ticks = 0;
    m_toldLines = m_lineCount;
    std::vector<QPointF> trail = m_tap.TakeTrail();
    std::vector<ZrLivePing> pings = m_tap.TakePings();
    bool isFirst = false;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_news.state = m_tap.State();
        Append(m_news.trail, std::move(trail), ZrLiveTap::MostTrail);
        m_unseenPings += Append(m_news.pings, std::move(pings), ZrLiveTap::MostPings);
        m_news.lostPings = m_unseenPings + m_tap.LostPings();
        m_news.lines = m_lines;
        m_news.lineCount = m_lineCount;
        m_news.recordCount = m_recordCount;
        m_news.byteCount = m_byteCount;
        m_news.damagedLines = m_damagedLines;
        m_news.droppedLines = m_source ? m_source->Dropped() : 0;
        m_news.tellsTime = m_tellsTime;
        m_news.pace = m_source ? m_source->TimePace() : ZrLineSource::Pace();
        m_news.isRecording = m_recorder && m_recorder->IsRecording();
        if (m_recorder)
            m_news.status = m_recorder->CurrentStatus();
        isFirst = !std::exchange(m_isTold, true);
    }
    if (isFirst)
        Q_EMIT NewsReady();
}

ZrRecordingNews ZrRecordingWorker::TakeNews()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_isTold = false;
    std::vector<QPointF> trail;
    std::vector<ZrLivePing> pings;
    std::vector<ZrLogEvt> lostEvents;
    trail.swap(m_news.trail);
    pings.swap(m_news.pings);
    lostEvents.swap(m_news.lostEvents);
    ZrRecordingNews taken = m_news;
    taken.trail = std::move(trail);
    taken.pings = std::move(pings);
    taken.lostEvents = std::move(lostEvents);
    return taken;
}
