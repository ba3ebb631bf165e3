#include "ZrKit/recording/ZrTcpSource.h"

#include <QTcpSocket>
#include <QTimer>

ZrTcpSource::ZrTcpSource(const QString& host, u16 port, QObject* parent)
    : ZrLineSource(parent)
    , m_host(host)
    , m_port(port)
    , m_socket(new QTcpSocket(this))
    , m_retry(new QTimer(this))
{
    m_retry->setSingleShot(true);
    m_retry->setInterval(RetryMs);
    connect(m_retry, &QTimer::timeout, this, &ZrTcpSource::Connect);
    connect(m_socket, &QTcpSocket::connected, this, &ZrTcpSource::OnConnected);
    connect(m_socket, &QTcpSocket::readyRead, this, [this] { Feed(m_socket->readAll()); });
    connect(m_socket, &QTcpSocket::disconnected, this, &ZrTcpSource::OnLost);
    connect(m_socket, &QTcpSocket::errorOccurred, this, &ZrTcpSource::OnLost);
}

QString ZrTcpSource::Name() const
{
    return QStringLiteral("TCP %1:%2").arg(m_host).arg(m_port);
}

bool ZrTcpSource::Start(QString* error)
{
    Q_UNUSED(error)
    Connect();
    return true;
}

void ZrTcpSource::Connect()
{
    m_socket->abort();
    m_socket->connectToHost(m_host, m_port);
}

void ZrTcpSource::OnConnected()
{
    TellBack();
}

void ZrTcpSource::OnLost()
{
    // A server that goes away raises an error and then the end of the connection; one retry serves both.
    if (m_retry->isActive())
        return;
    FeedEnd();
    TellLost(m_socket->errorString());
    m_retry->start();
}
