#pragma once

#include "ZrKit/recording/ZrLineSource.h"

#include <QStringList>
#include <QVector>

class QSocketNotifier;
class QTimer;

/// Lines from a serial port: 8 data bits, no parity, one stop bit, no handshake.
///
/// A port that is not there, or goes away, is told by `Lost` once and tried again every `RetryMs` until it
/// can be opened: adapters are plugged in late, and pulled out. Not available under Windows.
///
/// \code
/// const QString port = ZrSerialSource::Ports().value(0); // adapters first; empty when there is none
/// session.Open([port] { return new ZrSerialSource(port, 4800, nullptr); });
/// \endcode
class ZR_KIT_EXPORT ZrSerialSource : public ZrLineSource
{
    Q_OBJECT

public:
    static constexpr int RetryMs = 2000;

    /// \p path of the device, for instance "/dev/ttyUSB0"; \p baud bits per second.
    ZrSerialSource(const QString& path, int baud, QObject* parent);
    ~ZrSerialSource() override;

    /// False for a speed that no port has, and for a path that names no serial port although it can be
    /// opened.
    bool Start(QString* error) override;

    QString Name() const override;

    static QVector<int> Speeds(); ///< those that ports have, bits per second, in ascending order

    /// The paths of the ports that this computer has, adapters, which are what a vehicle is plugged into,
    /// first. Of the names that the system keeps for ports which it may or may not have, those are given
    /// behind which \p systemDir tells a device. Empty under Windows.
    static QStringList Ports(const QString& deviceDir = QStringLiteral("/dev"),
        const QString& systemDir = QStringLiteral("/sys/class/tty"));

private:
    bool Open(QString* error, bool* isPort);
    void TryAgain();
    void OnReadable();
    void OnLost(const QString& reason);
    void Close();

    QString m_path;
    int m_baud;
    int m_port = -1; ///< file descriptor; below 0 while it is not open
    QSocketNotifier* m_notifier = nullptr;
    QTimer* m_retry;
};
