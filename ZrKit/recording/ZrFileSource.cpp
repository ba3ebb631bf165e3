#include "ZrKit/recording/ZrFileSource.h"

#include <QCoreApplication>
#include <QTimer>

#include <cmath>

namespace {

/// Lines delivered between two looks at the event loop, so that a signal to stop is heard in time.
constexpr int burst = 256;

constexpr int blockSize = 65536;

} // namespace

ZrFileSource::ZrFileSource(const QString& path, double speed, QObject* parent)
    : ZrLineSource(parent)
    , m_file(path)
    , m_speed(speed)
    , m_timer(new QTimer(this))
    // Any date will do: only differences of time matter here.
    , m_decoder(QDate(2000, 1, 1))
{
    m_timer->setSingleShot(true);
    m_timer->setTimerType(Qt::PreciseTimer);
    connect(m_timer, &QTimer::timeout, this, &ZrFileSource::OnDue);
}

QString ZrFileSource::Name() const
{
    return QCoreApplication::translate("ZrFileSource", "file %1").arg(m_file.fileName());
}

bool ZrFileSource::Start(QString* error)
{
    if (!m_file.open(QIODevice::ReadOnly)) {
        *error = QCoreApplication::translate("ZrFileSource", "Cannot read %1: %2")
                     .arg(m_file.fileName(), m_file.errorString());
        return false;
    }
    m_clock.start();
    m_timer->start(0);
    return true;
}

/// Makes sure that a line is pending; false at the end of the file.
bool ZrFileSource::NextLine()
{
    while (m_pending.isEmpty() && !m_atEnd) {
        const QByteArray bytes = m_file.read(blockSize);
        m_pending = m_lines.Feed(bytes);
        if (!bytes.isEmpty())
            continue;
        m_atEnd = true;
        const QByteArray rest = m_lines.Rest();
        if (!rest.isEmpty())
            m_pending += rest;
    }
    return !m_pending.isEmpty();
}

/// Seconds to wait until what was recorded at \p dataTime is due; 0 or less when it is.
double ZrFileSource::WaitFor(double dataTime)
{
    if (m_speed <= 0.0 || std::isnan(dataTime))
        return 0.0;
    const double now = static_cast<double>(m_clock.nsecsElapsed()) * 1e-9;
    if (!m_haveTime) {
        m_haveTime = true;
        m_due = now;
    } else {
        const double step = dataTime - m_lastDataTime;
        if (step > 0.0 && step <= MaxGap)
            m_due += step / m_speed;
    }
    m_lastDataTime = dataTime;
    return m_due - now;
}

void ZrFileSource::OnDue()
{
    for (int delivered = 0; delivered < burst; ++delivered) {
        if (!NextLine()) {
            Q_EMIT Finished();
            return;
        }
        ZrNmeaSentence sentence;
        QString error;
        if (ZrNmeaSentence::Parse(m_pending.first(), sentence, &error))
            m_decoder.Decode(sentence);
        // The step of time is taken out when the wait begins, so the line is not waited for a second time.
        const double wait = WaitFor(m_decoder.Time());
        if (wait > 0.0) {
            m_timer->start(static_cast<int>(std::ceil(wait * 1000.0)));
            return;
        }
        Q_EMIT Line(m_pending.takeFirst());
    }
    m_timer->start(0);
}
