#pragma once

#include "ZrKit/recording/ZrLineSource.h"

class QUdpSocket;

/// Lines from the datagrams that arrive at a UDP port of any address. The end of a datagram ends a line.
///
/// \code
/// session.Open([] { return new ZrUdpSource(10110, nullptr); });
/// \endcode
class ZR_KIT_EXPORT ZrUdpSource : public ZrLineSource
{
    Q_OBJECT

public:
    /// \p port 0 takes any free one, see `Port`.
    ZrUdpSource(u16 port, QObject* parent);
    bool Start(QString* error) override;
    QString Name() const override;
    u16 Port() const; ///< the port in use once started

private:
    void OnReadable();

    u16 m_port;
    QUdpSocket* m_socket;
};
