#include "ZrKit/recording/ZrUdpSource.h"

#include <QCoreApplication>
#include <QNetworkDatagram>
#include <QUdpSocket>

ZrUdpSource::ZrUdpSource(u16 port, QObject* parent)
    : ZrLineSource(parent)
    , m_port(port)
    , m_socket(new QUdpSocket(this))
{
}

QString ZrUdpSource::Name() const
{
    return QCoreApplication::translate("ZrUdpSource", "UDP port %1").arg(Port());
}

u16 ZrUdpSource::Port() const
{
    return m_socket->state() == QAbstractSocket::BoundState ? m_socket->localPort() : m_port;
}

bool ZrUdpSource::Start(QString* error)
{
    if (!m_socket->bind(QHostAddress::Any, m_port)) {
        *error = QCoreApplication::translate("ZrUdpSource", "Cannot listen on UDP port %1: %2")
                     .arg(m_port)
                     .arg(m_socket->errorString());
        return false;
    }
    connect(m_socket, &QUdpSocket::readyRead, this, &ZrUdpSource::OnReadable);
    return true;
}

void ZrUdpSource::OnReadable()
{
    while (m_socket->hasPendingDatagrams()) {
        Feed(m_socket->receiveDatagram().data());
        FeedEnd();
    }
}
