#include "ZrKit/recording/ZrLogSource.h"

#include "ZrUtil/ZrLogItem.h"

#include <QCoreApplication>
#include <QTimer>
#include <QtEndian>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

/// Items delivered between two looks at the event loop, so that a signal to stop is heard in time.
constexpr int burst = 256;

/// What the compression can reach: an announced size beyond it is damage.
constexpr u64 mostPacked = 1032;

/// \p stored as it was before it was compressed. False when it does not say the size of \p item, or is
/// damaged.
bool Unpack(const ZrLogItem& item, const QByteArray& stored, QByteArray& payload)
{
    constexpr int sizeField = 4;
    if (stored.size() < sizeField || qFromBigEndian<u32>(stored.constData()) != item.dataSize
        || item.dataSize > mostPacked * static_cast<u64>(stored.size()))
        return false;
    payload = qUncompress(stored);
    return static_cast<u32>(payload.size()) == item.dataSize;
}

} // namespace

ZrLogSource::ZrLogSource(const QString& path, double speed, QObject* parent)
    : ZrLineSource(parent)
    , m_path(path)
    , m_speed(speed)
    , m_timer(new QTimer(this))
    , m_headers(path)
{
    m_timer->setSingleShot(true);
    m_timer->setTimerType(Qt::PreciseTimer);
    connect(m_timer, &QTimer::timeout, this, &ZrLogSource::OnDue);
    connect(&m_player, &ZrPlayer::NewPayloadPos, this, &ZrLogSource::OnPayload);
}

QString ZrLogSource::Name() const
{
    return QCoreApplication::translate("ZrLogSource", "log %1").arg(m_path);
}

bool ZrLogSource::Start(QString* error)
{
    if (!m_headers.open(QIODevice::ReadOnly)) {
        *error = QCoreApplication::translate("ZrLogSource", "Cannot read %1: %2")
                     .arg(m_path, m_headers.errorString());
        return false;
    }
    if (!m_player.OpenFile(m_path)) {
        *error = QCoreApplication::translate("ZrLogSource", "%1 is no data log").arg(m_path);
        return false;
    }
    m_clock.start();
    m_timer->start(0);
    return true;
}

/// What was not taken in time comes all at once.
ZrLineSource::Pace ZrLogSource::TimePace() const
{
    Pace pace;
    pace.speed = std::max(m_speed, 0.0);
    return pace;
}

void ZrLogSource::OnPayload(const ZrLogItemInf& inf, zr::span<u8> payload, u64 pos)
{
    m_inf = inf;
    m_payload = zr::to_byte_array(payload);
    m_hasItem = m_isUnpacked = true;
    const QByteArray bytes
        = m_headers.seek(static_cast<qint64>(pos)) ? m_headers.read(ZrLogItem::Size) : QByteArray();
    if (bytes.size() != static_cast<int>(ZrLogItem::Size))
        return;
    const ZrLogItem item = ZrLogItem::Decode(reinterpret_cast<const u8*>(bytes.constData()));
    if (item.compressed != 0)
        m_isUnpacked = Unpack(item, QByteArray(m_payload), m_payload);
}

/// Makes sure that an item waits; false at the end of the log.
bool ZrLogSource::NextItem()
{
    while (!m_hasItem) {
        if (!m_player.ReadNextItem(true))
            return false;
        if (!m_isUnpacked) {
            ++m_damaged;
            m_hasItem = false;
        }
    }
    return true;
}

/// Seconds to wait until what was recorded at \p time is due; 0 or less when it is.
double ZrLogSource::WaitFor(double time)
{
    if (m_speed <= 0.0 || !std::isfinite(time))
        return 0.0;
    const double now = static_cast<double>(m_clock.nsecsElapsed()) * 1e-9;
    if (!std::exchange(m_hasTime, true)) {
        m_due = now;
    } else {
        const double step = time - m_lastTime;
        if (step > 0.0 && step <= MaxGap)
            m_due += step / m_speed;
    }
    m_lastTime = time;
    return m_due - now;
}

void ZrLogSource::OnDue()
{
    for (int delivered = 0; delivered < burst; ++delivered) {
        if (!NextItem()) {
            if (!m_player.file.isOpen())
                Q_EMIT Trouble(
                    QCoreApplication::translate("ZrLogSource", "%1 is damaged and cannot be read further")
                        .arg(m_path));
            if (m_damaged > 0)
                Q_EMIT Trouble(
                    QCoreApplication::translate("ZrLogSource", "%1: %2 damaged items were left out")
                        .arg(m_path)
                        .arg(m_damaged));
            Q_EMIT Finished();
            return;
        }
        // The step of time is taken out when the wait begins, so the item is not waited for a second time.
        const double wait = WaitFor(m_inf.time);
        if (wait > 0.0) {
            m_timer->start(static_cast<int>(std::ceil(wait * 1000.0)));
            return;
        }
        m_hasItem = false;
        Q_EMIT Record(m_inf, m_inf.format, m_inf.time, m_payload);
    }
    m_timer->start(0);
}
