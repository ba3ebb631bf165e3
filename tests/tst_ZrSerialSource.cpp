#include "ZrKit/recording/ZrSerialSource.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

namespace {

/// The far end of a serial line.
class PseudoTerminal
{
public:
    PseudoTerminal()
        : m_master(::posix_openpt(O_RDWR | O_NOCTTY))
    {
        if (m_master >= 0 && ::grantpt(m_master) == 0 && ::unlockpt(m_master) == 0)
            m_path = QString::fromLocal8Bit(::ptsname(m_master));
    }

    ~PseudoTerminal() { Close(); }

    void Close()
    {
        if (m_master >= 0)
            ::close(std::exchange(m_master, -1));
    }

    QString Path() const { return m_path; }

    int Master() const { return m_master; }

    bool Send(const QByteArray& bytes)
    {
        return ::write(m_master, bytes.constData(), static_cast<std::size_t>(bytes.size())) == bytes.size();
    }

private:
    int m_master;
    QString m_path;
};

} // namespace

class tst_ZrSerialSource : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void linesArrive();
    void bytesAreNotChanged();
    void speedIsSet();
    void unknownSpeed();
    void noPath();
    void noPort();
    void missingPortIsTriedAgain();
    void portsOfThisComputer();
    void unpluggedPort();
};

void tst_ZrSerialSource::linesArrive()
{
    PseudoTerminal far;
    QVERIFY(!far.Path().isEmpty());
    ZrSerialSource source(far.Path(), 4800, nullptr);
    QSignalSpy lines(&source, &ZrLineSource::Line);
    QString error;
    QVERIFY2(source.Start(&error), qPrintable(error));
    QVERIFY(source.Name().contains(far.Path()));
    QVERIFY(far.Send("$GPGLL,4828.734,N,06830.882,W,201358,A,A*51\r\n$SDDB"));
    QTRY_COMPARE(lines.size(), 1);
    QCOMPARE(lines[0][0].toByteArray(), QByteArray("$GPGLL,4828.734,N,06830.882,W,201358,A,A*51"));
    QVERIFY(far.Send("T,1,f\n"));
    QTRY_COMPARE(lines.size(), 2);
    QCOMPARE(lines[1][0].toByteArray(), QByteArray("$SDDBT,1,f"));
    // A pseudo-terminal holds less than the longest line.
    const QByteArray start(3000, 'x');
    QVERIFY(far.Send(start));
    QCoreApplication::processEvents();
    QVERIFY(far.Send(start + "\nshort\n"));
    QTRY_COMPARE(lines.size(), 3);
    QCOMPARE(lines[2][0].toByteArray(), QByteArray("short"));
    QCOMPARE(source.Dropped(), u64(1));
}

void tst_ZrSerialSource::bytesAreNotChanged()
{
    PseudoTerminal far;
    ZrSerialSource source(far.Path(), 9600, nullptr);
    QSignalSpy lines(&source, &ZrLineSource::Line);
    QString error;
    QVERIFY(source.Start(&error));
    QByteArray all;
    // Control characters that a terminal would act upon, and bytes above 127.
    for (int c = 1; c < 256; ++c) {
        if (c != '\n' && c != '\r')
            all += static_cast<char>(c);
    }
    QVERIFY(far.Send(all + '\n'));
    QTRY_COMPARE(lines.size(), 1);
    QCOMPARE(lines[0][0].toByteArray(), all);
}

void tst_ZrSerialSource::speedIsSet()
{
    for (const int baud : ZrSerialSource::Speeds()) {
        PseudoTerminal far;
        ZrSerialSource source(far.Path(), baud, nullptr);
        QString error;
        QVERIFY2(source.Start(&error), qPrintable(error));
        termios mode;
        QCOMPARE(::tcgetattr(far.Master(), &mode), 0);
        if (baud == 4800)
            QVERIFY(::cfgetispeed(&mode) == B4800 && ::cfgetospeed(&mode) == B4800);
        if (baud == 115200)
            QVERIFY(::cfgetispeed(&mode) == B115200);
    }
    QVERIFY(ZrSerialSource::Speeds().contains(4800));
}

void tst_ZrSerialSource::unknownSpeed()
{
    PseudoTerminal far;
    for (const int baud : {0, -1, 4801, 2000000000}) {
        ZrSerialSource source(far.Path(), baud, nullptr);
        QString error;
        QVERIFY(!source.Start(&error));
        QVERIFY2(error.contains(QString::number(baud)), qPrintable(error));
    }
}

void tst_ZrSerialSource::noPath()
{
    ZrSerialSource source(QString(), 4800, nullptr);
    QString error;
    QVERIFY(!source.Start(&error));
    QCOMPARE(error, QStringLiteral("No serial port is chosen"));
}

void tst_ZrSerialSource::noPort()
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("file"));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    ZrSerialSource source(path, 4800, nullptr);
    QString error;
    QVERIFY(!source.Start(&error));
    QVERIFY2(error.startsWith(path + QStringLiteral(" is no serial port")), qPrintable(error));
}

void tst_ZrSerialSource::missingPortIsTriedAgain()
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("ttyUSB0"));
    ZrSerialSource source(path, 4800, nullptr);
    QSignalSpy troubles(&source, &ZrLineSource::Trouble);
    QSignalSpy lost(&source, &ZrLineSource::Lost);
    QSignalSpy back(&source, &ZrLineSource::Back);
    QSignalSpy lines(&source, &ZrLineSource::Line);
    QString error;
    QVERIFY(source.Start(&error));
    QCOMPARE(troubles.size(), 1);
    QCOMPARE(lost.size(), 1);
    QVERIFY(!lost[0][0].toString().contains(path));
    QVERIFY(troubles[0][0].toString().contains(path));
    // It is plugged in.
    PseudoTerminal far;
    QVERIFY(QFile::link(far.Path(), path));
    QTRY_COMPARE_WITH_TIMEOUT(troubles.size(), 2, 30000);
    QVERIFY(troubles[1][0].toString().endsWith(QStringLiteral("connected")));
    QCOMPARE(back.size(), 1);
    QVERIFY(far.Send("hello\n"));
    QTRY_COMPARE(lines.size(), 1);
}

void tst_ZrSerialSource::unpluggedPort()
{
    PseudoTerminal far;
    ZrSerialSource source(far.Path(), 4800, nullptr);
    QSignalSpy troubles(&source, &ZrLineSource::Trouble);
    QSignalSpy lines(&source, &ZrLineSource::Line);
    QString error;
    QVERIFY(source.Start(&error));
    QVERIFY(far.Send("hello\n"));
    QTRY_COMPARE(lines.size(), 1);
    far.Close();
    QTRY_COMPARE(troubles.size(), 1);
    QVERIFY(troubles[0][0].toString().endsWith(QStringLiteral("trying again")));
}

void tst_ZrSerialSource::portsOfThisComputer()
{
    QTemporaryDir dir;
    const auto path = [&dir](const char* name) { return dir.filePath(QString::fromLatin1(name)); };
    // Pipes stand for devices: they are no plain files either.
    for (const char* name : {"ttyS0", "ttyS1", "ttyS2", "ttyUSB1", "ttyUSB0", "ttyACM0", "tty1", "null"})
        QCOMPARE(::mkfifo(QFile::encodeName(path(name)).constData(), 0600), 0);
    QVERIFY(QDir().mkpath(path("sys/ttyS0")));
    QVERIFY(QDir().mkpath(path("sys/ttyS1")));
    const auto tell = [&path](const char* name, const QByteArray& type) {
        QFile file(path(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(type);
    };
    tell("sys/ttyS0/type", "4\n");
    tell("sys/ttyS1/type", "0\n"); // a name without a device
    tell("ttyUSB7", "a plain file\n");
    QCOMPARE(ZrSerialSource::Ports(dir.path(), path("sys")),
        QStringList({path("ttyUSB0"), path("ttyUSB1"), path("ttyACM0"), path("ttyS0"), path("ttyS2")}));
    QCOMPARE(ZrSerialSource::Ports(path("none"), path("sys")), QStringList());
}

QTEST_GUILESS_MAIN(tst_ZrSerialSource)
#include "tst_ZrSerialSource.moc"
