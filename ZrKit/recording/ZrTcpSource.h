#pragma once

#include "ZrKit/recording/ZrLineSource.h"

class QTcpSocket;
class QTimer;

/// Lines from a TCP server. A connection that fails or breaks is told by `Lost` once and tried again every
/// `RetryMs` until it stands.
///
/// \code
/// session.Open([] { return new ZrTcpSource(QStringLiteral("192.168.1.20"), 10110, nullptr); });
/// \endcode
class ZR_KIT_EXPORT ZrTcpSource : public ZrLineSource
{
    Q_OBJECT

public:
    static constexpr int RetryMs = 2000;

    ZrTcpSource(const QString& host, u16 port, QObject* parent);
    bool Start(QString* error) override;
    QString Name() const override;

private:
    void Connect();
    void OnConnected();
    void OnLost();

    QString m_host;
    u16 m_port;
    QTcpSocket* m_socket;
    QTimer* m_retry;
};
