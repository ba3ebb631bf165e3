#pragma once

#include "ZrKit/recording/ZrLineSource.h"
#include "ZrUtil/ZrPlayer.h"

#include <QElapsedTimer>
#include <QFile>

class QTimer;

/// Replays a data log as a source of records, at the pace of their times or a number of times faster or
/// slower.
///
/// Every item is given as a record with its own time, texts, plans and events too; compressed payloads are
/// unpacked. A step backwards in time, or one forward of more than `MaxGap` seconds, is not waited for. A log
/// that is damaged is given up to there; `Trouble` says so before `Finished`.
///
/// \code
/// session.Open([path] { return new ZrLogSource(path, 1.0, nullptr); });
/// \endcode
class ZR_KIT_EXPORT ZrLogSource : public ZrLineSource
{
    Q_OBJECT

public:
    static constexpr double MaxGap = 60.0; ///< seconds of the log

    /// \p speed 1 is real time, 10 ten times faster, 0 without any waiting.
    ZrLogSource(const QString& path, double speed, QObject* parent);
    bool Start(QString* error) override;
    QString Name() const override;
    Pace TimePace() const override;

private:
    void OnDue();
    bool NextItem();
    void OnPayload(const ZrLogItemInf& inf, zr::span<u8> payload, u64 pos);
    double WaitFor(double time);

    QString m_path;
    double m_speed;
    QTimer* m_timer;
    QElapsedTimer m_clock;
    ZrPlayer m_player;
    QFile m_headers; ///< the same log: the player does not tell which payloads are compressed
    bool m_hasItem = false; ///< one that waits
    bool m_isUnpacked = false; ///< or cannot be
    ZrLogItemInf m_inf;
    QByteArray m_payload;
    u64 m_damaged = 0; ///< payloads that could not be unpacked
    double m_lastTime = 0.0; ///< seconds, of the log
    double m_due = 0.0; ///< seconds of `m_clock` at which the item is due
    bool m_hasTime = false;
};
