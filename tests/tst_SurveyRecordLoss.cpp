// A source that is lost on the page "Record": what is said of it, and until when.

#include "MarkTranslator.h"
#include "SurveyRecordWindow.h"
#include "ZrKit/ui/ZrToast.h"
#include "apps/ZrSurvey/SurveySource.h"

#include <QTcpServer>
#include <QTcpSocket>
#include <QUdpSocket>

class tst_SurveyRecordLoss : public SurveyRecordWindow
{
    Q_OBJECT

private Q_SLOTS:
    void lossIsToldUntilItIsOver();
    void connectionInAnotherLanguage();
    void connectionThatEndsInTheFlow();
    void receiverWithoutFix();
    void sourceThatHasEnded();
    void sourceThatSendsNothing();
    void linesThatAreNoSentences();
    void portThatIsTaken();
    void anotherSourceThatSendsNothing();

private:
    void OpenSilent(int port);
    QTcpSocket* OpenServed(QTcpServer& server);
    quint16 OpenRefused(QTcpServer& server);
};

/// Opens the page with a source that \p server does not serve yet. \returns its port, 0 for none
quint16 tst_SurveyRecordLoss::OpenRefused(QTcpServer& server)
{
    if (!server.listen(QHostAddress::LocalHost))
        return 0;
    const quint16 port = server.serverPort();
    server.close();
    SurveySettings& settings = m_view->Model().settings;
    settings.source = SurveySource::tcp;
    settings.tcpHost = QStringLiteral("127.0.0.1");
    settings.tcpPort = port;
    Open();
    return port;
}

/// Opens the page with a source at which nobody sends; \p port 0 for any free one.
void tst_SurveyRecordLoss::OpenSilent(int port)
{
    SurveySettings& settings = m_view->Model().settings;
    settings.source = SurveySource::udp;
    settings.udpPort = port;
    Open();
}

/// Opens the page with \p server as source. \returns its end of the connection
QTcpSocket* tst_SurveyRecordLoss::OpenServed(QTcpServer& server)
{
    if (!server.listen(QHostAddress::LocalHost))
        return nullptr;
    SurveySettings& settings = m_view->Model().settings;
    settings.source = SurveySource::tcp;
    settings.tcpHost = QStringLiteral("127.0.0.1");
    settings.tcpPort = server.serverPort();
    Open();
    return QTest::qWaitFor([&server] { return server.hasPendingConnections(); })
        ? server.nextPendingConnection()
        : nullptr;
}

/// While nothing comes a recording says so until something does, and the source's button bears a sign.
void tst_SurveyRecordLoss::lossIsToldUntilItIsOver()
{
    QTcpServer server;
    const quint16 port = OpenRefused(server);
    QVERIFY(port != 0);
    ZrBtn* source = Page().findChild<ZrBtn*>(QStringLiteral("source"));
    const QImage plain(QStringLiteral(":/icons/source.png"));
    QTRY_COMPARE(m_view->Model().feed.State(), ZrSourceFacts::troubled);
    QTRY_VERIFY(source->img != plain);
    QVERIFY(!Banner()->isVisible()); // nothing is lost yet
    Touch(Button(QStringLiteral("Record")));
    QTRY_VERIFY(IsOn());
    QTRY_VERIFY(Banner()->isVisible());
    QCOMPARE(Banner()->Kind(), ZrBanner::warning);
    QVERIFY2(
        Banner()->Text().contains(QStringLiteral("no data from 127.0.0.1:")), qPrintable(Banner()->Text()));
    QVERIFY2(Banner()->Advice().contains(QStringLiteral("refused")), qPrintable(Banner()->Advice()));
    QVERIFY(IsOn());
    auto* toast = m_view->findChild<ZrToast*>();
    // What was seen and touched away does not come again by itself.
    m_view->Model().recording.Dismiss();
    QTest::qWait(1200);
    QVERIFY(!Banner()->isVisible());
    m_view->Model().recording.Tell({QStringLiteral("again"), QString(), QString(), false});

    QVERIFY(server.listen(QHostAddress::LocalHost, port));
    QTRY_VERIFY_WITH_TIMEOUT(server.hasPendingConnections(), 15000);
    server.nextPendingConnection()->write(
        "$GPGGA,120000.00,5020.000,N,00408.000,W,1,08,1.0,0.0,M,0.0,M,,*4F\r\n");
    QTRY_VERIFY_WITH_TIMEOUT(!Banner()->isVisible(), 15000);
    QVERIFY(source->img == plain);
    // It says nothing more: the next loss, which is told in one place.
    toast->hide();
    QTRY_VERIFY_WITH_TIMEOUT(Banner()->isVisible(), 15000);
    QVERIFY2(Banner()->Advice().contains(QStringLiteral("cable")), qPrintable(Banner()->Advice()));
    server.close();
    delete server.findChild<QTcpSocket*>();
    QTest::qWait(1000);
    QVERIFY(toast->isHidden());
    Touch(Button(QStringLiteral("Stop")));
    QTRY_VERIFY(IsOff());
    QTRY_VERIFY(!Banner()->isVisible());
}

/// Whatever the translators call it, a connection that stands is no trouble any more.
void tst_SurveyRecordLoss::connectionInAnotherLanguage()
{
    const MarkTranslator marks;
    QTcpServer server;
    const quint16 port = OpenRefused(server);
    QVERIFY(port != 0);
    SurveyFeed& feed = m_view->Model().feed;
    QTRY_COMPARE(feed.State(), ZrSourceFacts::troubled);
    // The reason alone.
    QVERIFY2(!feed.Text().isEmpty() && !feed.Text().contains(QStringLiteral("127.0.0.1"))
            && !feed.Text().contains(QStringLiteral("again")),
        qPrintable(feed.Text()));
    QVERIFY(server.listen(QHostAddress::LocalHost, port));
    QTRY_COMPARE_WITH_TIMEOUT(feed.State(), ZrSourceFacts::waiting, 15000);
}

/// Why is said at once, and on, not that a cable should be looked at.
void tst_SurveyRecordLoss::connectionThatEndsInTheFlow()
{
    QTcpServer server;
    QTcpSocket* socket = OpenServed(server);
    QVERIFY(socket);
    SurveyFeed& feed = m_view->Model().feed;
    socket->write("$GPGGA,120000.00,5020.000,N,00408.000,W,1,08,1.0,0.0,M,0.0,M,,*4F\r\n");
    QTRY_COMPARE(feed.State(), ZrSourceFacts::receiving);
    Touch(Button(QStringLiteral("Record")));
    QTRY_VERIFY(IsOn());
    socket->write("$GPGGA,120000.00,5020.000,N,00408.000,W,1,08,1.0,0.0,M,0.0,M,,*4F\r\n");
    socket->flush();
    server.close();
    delete socket;
    QTRY_COMPARE_WITH_TIMEOUT(feed.State(), ZrSourceFacts::troubled, 3000);
    QVERIFY(!feed.Text().isEmpty() && feed.Text() == feed.Facts().reason);
    QVERIFY(Page().findChild<ZrBtn*>(QStringLiteral("source"))->text.endsWith(feed.Text()));
    QTRY_VERIFY_WITH_TIMEOUT(Banner()->isVisible(), 15000);
    QCOMPARE(feed.State(), ZrSourceFacts::troubled);
    QVERIFY2(Banner()->Advice().contains(feed.Facts().reason)
            && Banner()->Advice().contains(QStringLiteral("tried again")),
        qPrintable(Banner()->Advice()));
}

/// It is there and heard: what it lacks is said, and no cable is to be looked at.
void tst_SurveyRecordLoss::receiverWithoutFix()
{
    QTcpServer server;
    QTcpSocket* socket = OpenServed(server);
    QVERIFY(socket);
    QTimer seconds;
    connect(&seconds, &QTimer::timeout, socket,
        [socket] { socket->write("$GPGGA,120000.00,,,,,0,00,,,M,,M,,\r\n"); });
    seconds.start(200);
    SurveyFeed& feed = m_view->Model().feed;
    QTRY_COMPARE(feed.State(), ZrSourceFacts::receiving);
    QVERIFY(feed.Facts().LacksPosition());
    QCOMPARE(feed.Text(), QStringLiteral("receiving, no position"));
    Touch(Button(QStringLiteral("Record")));
    QTRY_VERIFY(IsOn());
    QTRY_VERIFY_WITH_TIMEOUT(Page().Session().Status().seconds > 7.0, 30000);
    QCOMPARE(feed.State(), ZrSourceFacts::receiving);
    QVERIFY(!Banner()->isVisible());
    QVERIFY(!HasPosition());
    m_view->Show(QStringLiteral("Home"));
    const ZrValueTile* data = m_view->GetPage(QStringLiteral("Home"))->findChildren<ZrValueTile*>().value(1);
    QTRY_COMPARE(data->Value(), QStringLiteral("Receiving"));
}

/// The simulator has flown its plan, say, and then Record is touched.
void tst_SurveyRecordLoss::sourceThatHasEnded()
{
    UseReplay(48.0, 0.2);
    Open();
    QTRY_COMPARE(Page().Session().Source(), ZrRecordingSession::sourceFinished);
    QVERIFY(!Banner()->isVisible());
    Touch(Button(QStringLiteral("Record")));
    QTRY_VERIFY(IsOn());
    QTRY_VERIFY(Banner()->isVisible());
    QVERIFY2(Banner()->Text().contains(QStringLiteral("the source has ended")), qPrintable(Banner()->Text()));
}

void tst_SurveyRecordLoss::sourceThatSendsNothing()
{
    OpenSilent(0);
    QTRY_COMPARE(m_view->Model().feed.State(), ZrSourceFacts::waiting);
    Touch(Button(QStringLiteral("Record")));
    QTRY_VERIFY(IsOn());
    QTRY_VERIFY_WITH_TIMEOUT(Banner()->isVisible(), 15000);
    QVERIFY2(Banner()->Text().contains(QStringLiteral("no data from UDP")), qPrintable(Banner()->Text()));
    QVERIFY(Page().Session().Status().seconds > 4.0); // who has just begun may have to wait for the first
    QCOMPARE(m_view->Model().feed.State(), ZrSourceFacts::waiting);
    Touch(Button(QStringLiteral("Stop")));
    QTRY_VERIFY(IsOff());
    QTRY_VERIFY(!Banner()->isVisible());
}

/// As of a wrong speed of a line: no cable is to be looked at.
void tst_SurveyRecordLoss::linesThatAreNoSentences()
{
    QTcpServer server;
    QTcpSocket* socket = OpenServed(server);
    QVERIFY(socket);
    socket->write("x\xf0~\x9d\r\n\xe1\xe1g7\r\n$GPxx%\r\n");
    const SurveyFeed& feed = m_view->Model().feed;
    QTRY_COMPARE(feed.State(), ZrSourceFacts::unreadable);
    QVERIFY(!Banner()->isVisible());
    Touch(Button(QStringLiteral("Record")));
    QTRY_VERIFY(IsOn());
    QTRY_VERIFY(Banner()->isVisible());
    QVERIFY2(
        Banner()->Text().contains(QStringLiteral("no data from 127.0.0.1:")), qPrintable(Banner()->Text()));
    QVERIFY2(Banner()->Advice().contains(QStringLiteral("cannot be read: check speed and kind")),
        qPrintable(Banner()->Advice()));
    QCOMPARE(feed.State(), ZrSourceFacts::unreadable);
}

void tst_SurveyRecordLoss::portThatIsTaken()
{
    QUdpSocket other;
    QVERIFY(other.bind(QHostAddress(QHostAddress::Any), 0));
    OpenSilent(other.localPort());
    QTRY_COMPARE(m_view->Model().feed.State(), ZrSourceFacts::failed);
    Touch(Button(QStringLiteral("Record")));
    QTRY_VERIFY(IsOn());
    QTRY_VERIFY(Banner()->isVisible());
    QVERIFY2(
        Banner()->Advice().contains(m_view->Model().feed.Facts().reason), qPrintable(Banner()->Advice()));
}

/// What is said of a source stays when another one brings nothing either, and is said of that then.
void tst_SurveyRecordLoss::anotherSourceThatSendsNothing()
{
    UseReplay(48.0, 0.2);
    Open();
    QTRY_COMPARE(Page().Session().Source(), ZrRecordingSession::sourceFinished);
    Touch(Button(QStringLiteral("Record")));
    QTRY_VERIFY(IsOn());
    QTRY_VERIFY(Banner()->isVisible());
    m_view->Model().settings.source = SurveySource::udp;
    m_view->Model().settings.udpPort = 0;
    QTRY_COMPARE(m_view->Model().feed.State(), ZrSourceFacts::waiting);
    QVERIFY(Banner()->isVisible());
    QTRY_VERIFY_WITH_TIMEOUT(Banner()->Text().contains(QStringLiteral("no data from UDP")), 15000);
    QVERIFY(Banner()->isVisible());
    // Others that come end it.
    m_view->Model().settings.source = SurveySource::simulator;
    QTRY_VERIFY(!Banner()->isVisible());
    QVERIFY(IsOn());
}

GL_TEST_MAIN(tst_SurveyRecordLoss)
#include "tst_SurveyRecordLoss.moc"
