#include "ZrKit/recording/ZrSerialSource.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QSocketNotifier>
#include <QTimer>
#include <QVector>

#ifndef Q_OS_WIN

#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <termios.h>
#include <unistd.h>
#include <utility>

namespace {

struct Speed
{
    int baud;
    speed_t code;
};

constexpr Speed speeds[] = {
    {300, B300},
    {600, B600},
    {1200, B1200},
    {2400, B2400},
    {4800, B4800},
    {9600, B9600},
    {19200, B19200},
    {38400, B38400},
    {57600, B57600},
    {115200, B115200},
    {230400, B230400},
#ifdef B460800
    {460800, B460800},
#endif
#ifdef B921600
    {921600, B921600},
#endif
};

const Speed* FindSpeed(int baud)
{
    for (const Speed& speed : speeds) {
        if (speed.baud == baud)
            return &speed;
    }
    return nullptr;
}

QString SystemError()
{
    return QString::fromLocal8Bit(std::strerror(errno));
}

/// Bytes as they come, one after the other. False when \p port is no terminal or does not take it.
bool Configure(int port, speed_t speed)
{
    termios mode;
    if (tcgetattr(port, &mode) != 0)
        return false;
    cfmakeraw(&mode);
    mode.c_cflag |= CLOCAL | CREAD;
    mode.c_cflag &= ~static_cast<tcflag_t>(CSTOPB | PARENB | CRTSCTS);
    mode.c_cc[VMIN] = 0;
    mode.c_cc[VTIME] = 0;
    return cfsetispeed(&mode, speed) == 0 && cfsetospeed(&mode, speed) == 0
        && tcsetattr(port, TCSANOW, &mode) == 0;
}

} // namespace

ZrSerialSource::ZrSerialSource(const QString& path, int baud, QObject* parent)
    : ZrLineSource(parent)
    , m_path(path)
    , m_baud(baud)
    , m_retry(new QTimer(this))
{
    m_retry->setSingleShot(true);
    m_retry->setInterval(RetryMs);
    connect(m_retry, &QTimer::timeout, this, &ZrSerialSource::TryAgain);
}

ZrSerialSource::~ZrSerialSource()
{
    Close();
}

QVector<int> ZrSerialSource::Speeds()
{
    QVector<int> all;
    for (const Speed& speed : speeds)
        all.append(speed.baud);
    return all;
}

QStringList ZrSerialSource::Ports(const QString& deviceDir, const QString& systemDir)
{
    const QDir devices(deviceDir);
    const QStringList kinds
        = {QStringLiteral("ttyUSB*"), QStringLiteral("ttyACM*"), QStringLiteral("rfcomm*"),
            QStringLiteral("ttyAMA*"), QStringLiteral("ttyS*"), QStringLiteral("cu.*")};
    QStringList ports;
    for (const QString& kind : kinds) {
        for (const QString& name : devices.entryList({kind}, QDir::System, QDir::Name)) {
            // The type of a port that is a name only.
            QFile type(systemDir + QLatin1Char('/') + name + QStringLiteral("/type"));
            if (!type.open(QIODevice::ReadOnly) || type.readAll().trimmed() != "0")
                ports += devices.filePath(name);
        }
    }
    return ports;
}

QString ZrSerialSource::Name() const
{
    return QCoreApplication::translate("ZrSerialSource", "serial port %1").arg(m_path);
}

bool ZrSerialSource::Start(QString* error)
{
    if (m_path.isEmpty()) {
        *error = QCoreApplication::translate("ZrSerialSource", "No serial port is chosen");
        return false;
    }
    if (!FindSpeed(m_baud)) {
        *error = QCoreApplication::translate("ZrSerialSource", "No serial port works at %1 bits per second")
                     .arg(m_baud);
        return false;
    }
    bool isPort = true;
    if (Open(error, &isPort))
        return true;
    if (!isPort)
        return false;
    OnLost(*error);
    error->clear();
    return true;
}

/// Begins to read. False with the reason in \p error; \p isPort is false for what will never be a port.
bool ZrSerialSource::Open(QString* error, bool* isPort)
{
    m_port = ::open(QFile::encodeName(m_path).constData(), O_RDONLY | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (m_port < 0) {
        *error = SystemError();
        return false;
    }
    if (!Configure(m_port, FindSpeed(m_baud)->code)) {
        *isPort = false;
        *error = QCoreApplication::translate("ZrSerialSource", "%1 is no serial port: %2")
                     .arg(m_path, SystemError());
        Close();
        return false;
    }
    m_notifier = new QSocketNotifier(m_port, QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &ZrSerialSource::OnReadable);
    return true;
}

void ZrSerialSource::TryAgain()
{
    QString error;
    bool isPort = true;
    if (!Open(&error, &isPort)) {
        m_retry->start();
        return;
    }
    TellBack();
}

void ZrSerialSource::OnReadable()
{
    std::array<char, 4096> bytes;
    const ssize_t count = ::read(m_port, bytes.data(), bytes.size());
    if (count > 0)
        Feed(QByteArray(bytes.data(), static_cast<int>(count)));
    else if (count == 0)
        OnLost(QCoreApplication::translate("ZrSerialSource", "the port was closed"));
    else if (errno != EAGAIN && errno != EINTR)
        OnLost(SystemError());
}

void ZrSerialSource::OnLost(const QString& reason)
{
    Close();
    FeedEnd();
    TellLost(reason);
    m_retry->start();
}

void ZrSerialSource::Close()
{
    if (m_notifier) {
        // This may run in its own signal.
        m_notifier->setEnabled(false);
        m_notifier->deleteLater();
        m_notifier = nullptr;
    }
    if (m_port >= 0)
        ::close(std::exchange(m_port, -1));
}

#else

ZrSerialSource::ZrSerialSource(const QString& path, int baud, QObject* parent)
    : ZrLineSource(parent)
    , m_path(path)
    , m_baud(baud)
    , m_retry(nullptr)
{
}

ZrSerialSource::~ZrSerialSource() = default;

QVector<int> ZrSerialSource::Speeds()
{
    return {};
}

QStringList ZrSerialSource::Ports(const QString& /*deviceDir*/, const QString& /*systemDir*/)
{
    return {};
}

QString ZrSerialSource::Name() const
{
    return QCoreApplication::translate("ZrSerialSource", "serial port %1").arg(m_path);
}

bool ZrSerialSource::Start(QString* error)
{
    *error = QCoreApplication::translate("ZrSerialSource", "Serial ports cannot be read on this system");
    return false;
}

#endif
