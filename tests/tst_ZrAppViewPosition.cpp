// Positions of the machine's receiver: which source is followed, what it delivers, and what comes of one that
// does not work.

#include "ZrTestPositions.h"
#include "ZrUiChecks.h"
#include "ZrUtil/ZrAppView.h"

#include <QBuffer>
#include <QLibraryInfo>
#include <QNmeaPositionInfoSource>
#include <QTemporaryDir>
#include <QTranslator>
#include <QtPlugin>
#include <QtTest>

#include <fcntl.h>
#include <memory>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

Q_IMPORT_PLUGIN(ZrTestPositions)

namespace {

/// The device end of a pseudo-terminal is what a program opens as a serial port, the other end is the
/// receiver.
class Terminal
{
public:
    Terminal()
        : m_fd(posix_openpt(O_RDWR | O_NOCTTY))
    {
        if (m_fd < 0 || grantpt(m_fd) != 0 || unlockpt(m_fd) != 0)
            return;
        // The name is that of a buffer which the next call writes over.
        m_name = ptsname(m_fd);
        // Nothing is echoed while nobody has opened the device.
        termios mode = {};
        if (tcgetattr(m_fd, &mode) == 0) {
            cfmakeraw(&mode);
            tcsetattr(m_fd, TCSANOW, &mode);
        }
    }

    ~Terminal()
    {
        if (m_fd >= 0)
            close(m_fd);
    }

    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    QByteArray Name() const { return m_name; }

    bool Send(const QByteArray& text)
    {
        return write(m_fd, text.constData(), std::size_t(text.size())) == text.size();
    }

private:
    int m_fd;
    QByteArray m_name;
};

/// A sentence with its checksum.
QByteArray Sentence(const QByteArray& body)
{
    int sum = 0;
    for (const char c : body)
        sum ^= static_cast<unsigned char>(c);
    return '$' + body + '*' + QByteArray::number(sum, 16).rightJustified(2, '0').toUpper() + "\r\n";
}

const QByteArray withAltitude
    = Sentence("GPGGA,120001.00,5130.0000,N,00315.0000,W,1,08,0.9,545.4,M,47.0,M,,");
const QByteArray sameFix = Sentence("GPRMC,120001.00,A,5130.0000,N,00315.0000,W,2.5,90.0,150624,,");
const QByteArray withoutAltitude = Sentence("GPRMC,120003.00,A,3345.0000,S,15112.0000,E,2.5,90.0,150624,,");

QStringList s_messages;

void Keep(QtMsgType /*type*/, const QMessageLogContext& /*context*/, const QString& text)
{
    s_messages.append(text);
}

class View : public ZrAppView
{
public:
    explicit View()
        : ZrAppView(
            nullptr, std::chrono::milliseconds(3600 * 1000), updateTimer, std::chrono::milliseconds(0))
    {
    }

    QGeoPositionInfoSource* Source() const { return findChild<QGeoPositionInfoSource*>(); }
};

/// Says "Hier" for "Local".
class Translation : public QTranslator
{
public:
    QString translate(const char* context, const char* text, const char* /*hint*/, int /*n*/) const override
    {
        const bool isIt = qstrcmp(context, "ZrAppView") == 0 && qstrcmp(text, "Local") == 0;
        return isIt ? QStringLiteral("Hier") : QString();
    }

    bool isEmpty() const override { return false; }
};

} // namespace

class tst_ZrAppViewPosition : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void nothingAtFirst();
    void startPosition_data();
    void startPosition();
    void sourceIsTranslated();
    void positionWithoutCoordinate();
    void overriddenStartPosition();

    void noSource();
    void silentSource();
    void sourceDelivers();
    void sourceFails_data();
    void sourceFails();
    void sourceFailsAtOnce();
    void secondSourceReplacesTheFirst();
    void sourceGoesWithTheView();
    void sourceThatVanishes();
    void positionsOfAFile();
    void damagedFile();
    void serialPort();
    void serialPortTwice();
    void serialPortMissing();

private:
    /// Makes `CaptureGps` find a silent source; returns it.
    ZrTestSource* Capture();

    QTemporaryDir m_plugins;
    std::unique_ptr<ZrThemeState> m_theme;
    std::unique_ptr<View> m_view;
    QtMessageHandler m_handler = nullptr;
};

/// Of the machine's plugins this program sees one: the others would depend on what runs there.
void tst_ZrAppViewPosition::initTestCase()
{
    const QString name = QStringLiteral("position/libqtposition_serialnmea.so");
    const QString plugin = QLibraryInfo::location(QLibraryInfo::PluginsPath) + QLatin1Char('/') + name;
    QVERIFY2(QFile::exists(plugin), "libqt5positioning5-plugins is not installed");
    QVERIFY(QDir(m_plugins.path()).mkdir(QStringLiteral("position")));
    QVERIFY(QFile::link(plugin, m_plugins.filePath(name)));
    QCoreApplication::setLibraryPaths({m_plugins.path()});
    // Set by the test framework; plugins hide from a program that has it.
    qunsetenv("QT_QTESTLIB_RUNNING");
    QStringList sources = QGeoPositionInfoSource::availableSources();
    sources.sort();
    QCOMPARE(sources.join(QLatin1Char(',')), QStringLiteral("serialnmea,zrtest"));
}

void tst_ZrAppViewPosition::init()
{
    qunsetenv("QT_NMEA_SERIAL_PORT");
    ZrTestPositions::s_make = nullptr;
    m_theme = std::make_unique<ZrThemeState>();
    m_view = std::make_unique<View>();
    s_messages.clear();
    m_handler = qInstallMessageHandler(Keep);
}

void tst_ZrAppViewPosition::cleanup()
{
    qInstallMessageHandler(m_handler);
    m_view.reset();
    m_theme.reset();
}

ZrTestSource* tst_ZrAppViewPosition::Capture()
{
    ZrTestSource* source = nullptr;
    ZrTestPositions::s_make = [&source](QObject* parent) { return source = new ZrTestSource(parent); };
    m_view->CaptureGps();
    ZrTestPositions::s_make = nullptr;
    return source;
}

void tst_ZrAppViewPosition::nothingAtFirst()
{
    QVERIFY(!m_view->last_position().isValid());
    QVERIFY(m_view->start_position().source.isEmpty());
    QVERIFY(std::isnan(m_view->start_position().latitude));
    QVERIFY(std::isnan(m_view->start_position().longitude));
    QVERIFY(std::isnan(m_view->start_position().altitude));
    QVERIFY(!m_view->Source());
}

void tst_ZrAppViewPosition::startPosition_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<double>("latitude");
    QTest::addColumn<double>("longitude");
    QTest::addColumn<double>("third");
    const double nan = std::numeric_limits<double>::quiet_NaN();
    QTest::newRow("altitude") << QStringLiteral("Radio") << 51.5 << -3.25 << 12.5;
    QTest::newRow("no altitude") << QStringLiteral("Radio") << -90.0 << 180.0 << 0.0;
    QTest::newRow("not a number") << QStringLiteral("Radio") << 51.5 << -3.25 << nan;
    QTest::newRow("nothing known") << QString() << nan << nan << nan;
    QTest::newRow("beyond the globe") << QString::fromUtf8("Übung 𝄞") << 1e300 << -1e300 << -11000.0;
}

void tst_ZrAppViewPosition::startPosition()
{
    QFETCH(QString, source);
    QFETCH(double, latitude);
    QFETCH(double, longitude);
    QFETCH(double, third);
    const auto isSame = [](double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); };
    QSignalSpy spy(m_view.get(), &ZrAppView::PositionChanged);
    m_view->StartPosition(source, latitude, longitude, third);
    QCOMPARE(m_view->start_position().source, source);
    QVERIFY(isSame(m_view->start_position().latitude, latitude));
    QVERIFY(isSame(m_view->start_position().longitude, longitude));
    QVERIFY(isSame(m_view->start_position().altitude, third));
    QCOMPARE(spy.size(), 1);
    QCOMPARE(spy[0][0].toString(), source);
    QVERIFY(isSame(spy[0][1].toDouble(), latitude));
    QVERIFY(isSame(spy[0][2].toDouble(), longitude));
    QVERIFY(isSame(spy[0][3].toDouble(), third));
}

void tst_ZrAppViewPosition::sourceIsTranslated()
{
    m_view->OnPosUpd(QGeoPositionInfo(QGeoCoordinate(1, 2, 3), QDateTime::fromMSecsSinceEpoch(0)));
    QCOMPARE(m_view->start_position().source, QStringLiteral("Local"));
    Translation translation;
    QCoreApplication::installTranslator(&translation);
    m_view->OnPosUpd(QGeoPositionInfo(QGeoCoordinate(1, 2, 3), QDateTime::fromMSecsSinceEpoch(0)));
    QCoreApplication::removeTranslator(&translation);
    QCOMPARE(m_view->start_position().source, QStringLiteral("Hier"));
}

void tst_ZrAppViewPosition::positionWithoutCoordinate()
{
    m_view->OnPosUpd(QGeoPositionInfo(QGeoCoordinate(1, 2, 3), QDateTime::fromMSecsSinceEpoch(0)));
    m_view->OnPosUpd(QGeoPositionInfo());
    QVERIFY(std::isnan(m_view->start_position().latitude));
    QVERIFY(std::isnan(m_view->start_position().altitude));
    QVERIFY(!m_view->last_position().isValid());
}

void tst_ZrAppViewPosition::overriddenStartPosition()
{
    class Own : public View
    {
    public:
        int m_calls = 0;

        void StartPosition(QString /*source*/, double, double, double) override { ++m_calls; }
    };

    Own own;
    own.OnPosUpd(QGeoPositionInfo(QGeoCoordinate(1, 2, 3), QDateTime::fromMSecsSinceEpoch(0)));
    QCOMPARE(own.m_calls, 1);
    QCOMPARE(own.last_position().coordinate().altitude(), 3.0);
}

/// No plugin has one: that of the test offers null, the other has no port.
void tst_ZrAppViewPosition::noSource()
{
    for (int i = 0; i < 2; ++i) {
        s_messages.clear();
        m_view->CaptureGps();
        QVERIFY(!m_view->Source());
        const QString last = s_messages.last();
        QVERIFY2(last.startsWith(QStringLiteral("No default sources: (\"")), qPrintable(last));
        QVERIFY(last.contains(QStringLiteral("\"zrtest\"")));
        QVERIFY(last.contains(QStringLiteral("\"serialnmea\"")));
        QVERIFY(s_messages.filter(QStringLiteral("Found default")).isEmpty());
    }
}

void tst_ZrAppViewPosition::silentSource()
{
    const ZrTestSource* source = Capture();
    QVERIFY(source);
    QCOMPARE(source->parent(), m_view.get());
    QCOMPARE(source->m_starts, 1);
    QCOMPARE(s_messages, QStringList{QStringLiteral("Found default positioning source \"zrtest\"")});
    Settle();
    QVERIFY(!m_view->last_position().isValid());
    QVERIFY(m_view->start_position().source.isEmpty());
}

void tst_ZrAppViewPosition::sourceDelivers()
{
    ZrTestSource* source = Capture();
    const QDateTime time = QDateTime::fromMSecsSinceEpoch(1718452801000, Qt::UTC);
    QGeoPositionInfo info(QGeoCoordinate(51.5, -3.25, 12.5), time);
    info.setAttribute(QGeoPositionInfo::GroundSpeed, 2.5);
    Q_EMIT source->positionUpdated(info);
    QCOMPARE(m_view->last_position(), info);
    QCOMPARE(m_view->start_position().source, QStringLiteral("Local"));
    QCOMPARE(m_view->start_position().latitude, 51.5);
    QCOMPARE(m_view->start_position().longitude, -3.25);
    QCOMPARE(m_view->start_position().altitude, 12.5);
    Q_EMIT source->positionUpdated(QGeoPositionInfo(QGeoCoordinate(-10, 20), time));
    QCOMPARE(m_view->start_position().latitude, -10.0);
    QVERIFY(std::isnan(m_view->start_position().altitude));
}

void tst_ZrAppViewPosition::sourceFails_data()
{
    QTest::addColumn<int>("error");
    QTest::addColumn<QString>("text");
    QTest::newRow("access") << int(QGeoPositionInfoSource::AccessError) << QStringLiteral("access denied");
    QTest::newRow("closed") << int(QGeoPositionInfoSource::ClosedError)
                            << QStringLiteral("closed by the device");
    QTest::newRow("unknown") << int(QGeoPositionInfoSource::UnknownSourceError)
                             << QStringLiteral("unknown error");
    QTest::newRow("none") << int(QGeoPositionInfoSource::NoError) << QStringLiteral("no error");
}

void tst_ZrAppViewPosition::sourceFails()
{
    QFETCH(int, error);
    QFETCH(QString, text);
    ZrTestSource* source = Capture();
    s_messages.clear();
    source->Fail(QGeoPositionInfoSource::Error(error));
    QCOMPARE(s_messages, QStringList{QStringLiteral("Positioning source failed: ") + text});
    // It may come back.
    Q_EMIT source->positionUpdated(
        QGeoPositionInfo(QGeoCoordinate(1, 2, 3), QDateTime::fromMSecsSinceEpoch(0)));
    QCOMPARE(m_view->start_position().latitude, 1.0);
}

void tst_ZrAppViewPosition::sourceFailsAtOnce()
{
    ZrTestPositions::s_make = [](QObject* parent) {
        auto* source = new ZrTestSource(parent);
        source->m_failsAtStart = true;
        return source;
    };
    m_view->CaptureGps();
    QCOMPARE(s_messages.mid(1), QStringList{QStringLiteral("Positioning source failed: access denied")});
    QVERIFY(m_view->Source());
}

void tst_ZrAppViewPosition::secondSourceReplacesTheFirst()
{
    const QPointer<ZrTestSource> first = Capture();
    ZrTestSource* second = Capture();
    QVERIFY(!first);
    QCOMPARE(m_view->findChildren<QGeoPositionInfoSource*>().size(), 1);
    QSignalSpy spy(m_view.get(), &ZrAppView::PositionChanged);
    Q_EMIT second->positionUpdated(
        QGeoPositionInfo(QGeoCoordinate(1, 2, 3), QDateTime::fromMSecsSinceEpoch(0)));
    QCOMPARE(spy.size(), 1);
    // None in its place is none.
    m_view->CaptureGps();
    QVERIFY(!m_view->Source());
}

void tst_ZrAppViewPosition::sourceGoesWithTheView()
{
    const QPointer<ZrTestSource> source = Capture();
    m_view.reset();
    QVERIFY(!source);
}

void tst_ZrAppViewPosition::sourceThatVanishes()
{
    delete Capture();
    const ZrTestSource* second = Capture();
    QCOMPARE(m_view->Source(), second);
}

void tst_ZrAppViewPosition::positionsOfAFile()
{
    const QTemporaryDir dir;
    QFile file(dir.filePath(QString::fromUtf8("Übung.nmea")));
    QVERIFY(file.open(QIODevice::ReadWrite));
    file.write(withAltitude + sameFix + withoutAltitude);
    QVERIFY(file.seek(0));
    ZrTestPositions::s_make = [&file](QObject* parent) {
        auto* source = new QNmeaPositionInfoSource(QNmeaPositionInfoSource::SimulationMode, parent);
        source->setDevice(&file);
        return source;
    };
    QVector<ZrAppView::StartPos> seen;
    connect(m_view.get(), &ZrAppView::PositionChanged, this, [&] { seen.append(m_view->start_position()); });
    m_view->CaptureGps();
    QTRY_VERIFY_WITH_TIMEOUT(!seen.isEmpty() && seen.last().latitude < 0, 30000);
    QCOMPARE(seen.first().source, QStringLiteral("Local"));
    QVERIFY(std::abs(seen.first().latitude - 51.5) < 1e-9);
    QVERIFY(std::abs(seen.first().longitude + 3.25) < 1e-9);
    QVERIFY(std::abs(seen.first().altitude - 545.4) < 1e-9);
    QVERIFY(std::abs(seen.last().latitude + 33.75) < 1e-9);
    QVERIFY(std::abs(seen.last().longitude - 151.2) < 1e-9);
    QVERIFY(std::isnan(seen.last().altitude));
    disconnect(m_view.get(), nullptr, this, nullptr);
    // The source reads its file no more when the file goes.
    m_view.reset();
}

void tst_ZrAppViewPosition::damagedFile()
{
    QBuffer file;
    QByteArray wrong = withAltitude;
    wrong[10] = wrong[10] == '1' ? '2' : '1';
    file.setData(QByteArray(5000, '\0') + "\r\n" + wrong + "$GPGGA,,,,,,,\r\n" + QByteArray(100000, '$')
        + "\r\n" + withAltitude.left(30));
    QVERIFY(file.open(QIODevice::ReadOnly));
    ZrTestPositions::s_make = [&file](QObject* parent) {
        auto* source = new QNmeaPositionInfoSource(QNmeaPositionInfoSource::SimulationMode, parent);
        source->setDevice(&file);
        return source;
    };
    m_view->CaptureGps();
    QTRY_VERIFY_WITH_TIMEOUT(file.atEnd(), 30000);
    Settle();
    QVERIFY(!m_view->last_position().isValid());
    m_view.reset();
}

void tst_ZrAppViewPosition::serialPort()
{
    Terminal terminal;
    QVERIFY(!terminal.Name().isEmpty());
    qputenv("QT_NMEA_SERIAL_PORT", terminal.Name());
    m_view->CaptureGps();
    QVERIFY2(s_messages.contains(QStringLiteral("Found default positioning source \"serialnmea\"")),
        qPrintable(s_messages.join(QLatin1Char('\n'))));
    QVERIFY(terminal.Send(withAltitude + sameFix));
    QTRY_VERIFY_WITH_TIMEOUT(m_view->last_position().isValid(), 30000);
    QCOMPARE(m_view->start_position().source, QStringLiteral("Local"));
    QVERIFY(std::abs(m_view->start_position().latitude - 51.5) < 1e-9);
    QVERIFY(std::abs(m_view->start_position().longitude + 3.25) < 1e-9);
    QVERIFY(std::abs(m_view->start_position().altitude - 545.4) < 1e-9);
    // The line is cut in the middle of a sentence, and goes on.
    QVERIFY(terminal.Send(withoutAltitude.left(20)));
    Settle();
    QVERIFY(terminal.Send(withoutAltitude.mid(20)));
    QTRY_VERIFY_WITH_TIMEOUT(m_view->start_position().latitude < 0, 30000);
    QVERIFY(std::abs(m_view->start_position().latitude + 33.75) < 1e-9);
    QVERIFY(std::isnan(m_view->start_position().altitude));
}

/// The port is free again for the second source, and another view's.
void tst_ZrAppViewPosition::serialPortTwice()
{
    Terminal terminal;
    qputenv("QT_NMEA_SERIAL_PORT", terminal.Name());
    m_view->CaptureGps();
    m_view->CaptureGps();
    QVERIFY(terminal.Send(withAltitude + sameFix));
    QTRY_VERIFY_WITH_TIMEOUT(m_view->last_position().isValid(), 30000);
    m_view.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    m_view = std::make_unique<View>();
    m_view->CaptureGps();
    QVERIFY(terminal.Send(withAltitude + sameFix));
    QTRY_VERIFY_WITH_TIMEOUT(m_view->last_position().isValid(), 30000);
}

void tst_ZrAppViewPosition::serialPortMissing()
{
    qputenv("QT_NMEA_SERIAL_PORT", "/proc/no such port");
    m_view->CaptureGps();
    // Whether there is a source that fails or none, the program goes on without a position.
    const bool isFound
        = s_messages.contains(QStringLiteral("Found default positioning source \"serialnmea\""));
    QCOMPARE(m_view->Source() != nullptr, isFound);
    QCOMPARE(s_messages.filter(QStringLiteral("No default sources:")).isEmpty(), isFound);
    Settle();
    QVERIFY(!m_view->last_position().isValid());
}

QTEST_MAIN(tst_ZrAppViewPosition)
#include "tst_ZrAppViewPosition.moc"
