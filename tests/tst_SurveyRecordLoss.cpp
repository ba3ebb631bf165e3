// A source that is lost on the page "Record": what is said of it, and until when.

#include "MarkTranslator.h"
#include "SurveyRecordWindow.h"
#include "ZrKit/ui/ZrToast.h"
#include "apps/ZrSurvey/SurveySource.h"

#include <QTcpServer>
#include <QTcpSocket>

class tst_SurveyRecordLoss : public SurveyRecordWindow
{
    Q_OBJECT

private Q_SLOTS:
    void lossIsToldUntilItIsOver();
    void connectionInAnotherLanguage();

private:
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

GL_TEST_MAIN(tst_SurveyRecordLoss)
#include "tst_SurveyRecordLoss.moc"
