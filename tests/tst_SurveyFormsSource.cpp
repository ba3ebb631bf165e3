// The form of the source of data: what it keeps, and what it says of the source.

#include "SurveyFormsWindow.h"
#include "ZrUtil/ZrSlider.h"
#include "apps/ZrSurvey/FormDisplay.h"
#include "apps/ZrSurvey/FormSources.h"
#include "apps/ZrSurvey/SurveySource.h"

#include <QRegularExpression>
#include <QTcpServer>
#include <QUdpSocket>

class tst_SurveyFormsSource : public SurveyFormsWindow
{
    Q_OBJECT

private Q_SLOTS:

    void init() { Open(); }

    void cleanup() { Close(); }

    void sources();
    void stateOfTheSource();
    void wordsOfTheState_data();
    void wordsOfTheState();
    void agesOfTheState();
    void unitOfTheCurrent();
};

void tst_SurveyFormsSource::sources()
{
    auto* form = Shown<FormSources>();
    const auto inputs = [form] {
        QStringList captions;
        for (const ZrInput* input : form->findChildren<ZrInput*>()) {
            if (input->isVisible())
                captions.append(input->caption);
        }
        return captions.join(QLatin1Char(','));
    };
    QCOMPARE(inputs(), QStringLiteral("Speed of time, \u00d7,Current, m/s,Set, \u00b0"));
    Type(Input(*form, QStringLiteral("Set, \u00b0")), QStringLiteral("275"));
    Click(Button(*form, SurveySource::Name(SurveySource::udp)));
    QCOMPARE(Settings().source, int(SurveySource::udp));
    QCOMPARE(inputs(), QStringLiteral("Port"));
    Type(Input(*form, QStringLiteral("Port")), QStringLiteral("5000"));
    Click(Button(*form, SurveySource::Name(SurveySource::serial)));
    QCOMPARE(inputs(), QStringLiteral("Port"));
    Type(Input(*form, QStringLiteral("Port")), QStringLiteral("/dev/ttyS0"));
    Click(Button(*form, QStringLiteral("38400")));
    QVERIFY(Button(*form, QStringLiteral("38400"))->on);
    QVERIFY(!Button(*form, QStringLiteral("4800"))->on);
    Click(Button(*form, SurveySource::Name(SurveySource::replay)));
    QCOMPARE(inputs(), QString());
    QVERIFY(Button(*form, QStringLiteral("Choose the file"))->isVisible());
    Click(Button(*form, SurveySource::Name(SurveySource::tcp)));
    QCOMPARE(inputs(), QStringLiteral("Host,Port"));
    Type(Input(*form, QStringLiteral("Host")), QStringLiteral("boat"));
    Type(Input(*form, QStringLiteral("Port")), QStringLiteral("70000"));
    QVERIFY(!RowWithProblem(*form).isEmpty());
    Restart();
    QCOMPARE(Settings().source, int(SurveySource::tcp));
    QCOMPARE(Settings().simSet, 275.0);
    QCOMPARE(Settings().udpPort, 5000);
    QCOMPARE(Settings().serialPort, QStringLiteral("/dev/ttyS0"));
    QCOMPARE(Settings().serialBaud, 38400);
    QCOMPARE(Settings().tcpHost, QStringLiteral("boat"));
    QCOMPARE(Settings().tcpPort, 7000); // the last one on the way that was a port
}

/// What is sent arrives, and what cannot be had is told in words.
void tst_SurveyFormsSource::stateOfTheSource()
{
    auto* form = Shown<FormSources>();
    const auto said = [form] {
        QStringList all;
        for (int row = 0; row < form->RowCount(); ++row) {
            if (form->IsRowShown(row))
                all.append(form->Problem(row).isEmpty() ? form->Help(row) : form->Problem(row));
        }
        return all.join(QLatin1Char('|'));
    };
    // A port that is free, and then is not.
    QUdpSocket taken;
    QVERIFY(taken.bind(QHostAddress(QHostAddress::Any), quint16(0)));
    const quint16 port = taken.localPort();
    Click(Button(*form, SurveySource::Name(SurveySource::udp)));
    Type(Input(*form, QStringLiteral("Port")), QString::number(port));
    QVERIFY(said().contains(QStringLiteral("Not opened yet.")));
    Click(Button(*form, QStringLiteral("Test")));
    QTRY_VERIFY2(
        said().contains(QStringLiteral("Cannot listen on UDP port %1").arg(port)), qPrintable(said()));
    QVERIFY(!RowWithProblem(*form).isEmpty());
    taken.close();
    Click(Button(*form, QStringLiteral("Test")));
    QTRY_VERIFY2(said().contains(QStringLiteral("Waiting for data")), qPrintable(said()));
    QCOMPARE(RowWithProblem(*form), QString());
    QUdpSocket sender;
    const auto send = [&](const QByteArray& line) {
        sender.writeDatagram(line, QHostAddress::LocalHost, port);
        return said();
    };
    QTRY_VERIFY2(send("rubbish\r\n").contains(QStringLiteral("Unreadable")), qPrintable(said()));
    Click(Button(*form, SurveySource::Name(SurveySource::simulator)));
    QVERIFY(said().contains(QStringLiteral("Not opened yet.")));
    Click(Button(*form, QStringLiteral("Test")));
    QTRY_VERIFY2(said().contains(QRegularExpression(QStringLiteral("Receiving [0-9.]+ records/s"))),
        qPrintable(said()));
    Click(Button(*form, SurveySource::Name(SurveySource::udp)));
    Click(Button(*form, QStringLiteral("Test")));
    QTRY_VERIFY2(send("$GPGGA,120000.00,5020.000,N,00408.000,W,1,08,1.0,0.0,M,0.0,M,,*4F\r\n")
                     .contains(QRegularExpression(QStringLiteral("Receiving [0-9.]+ sentences/s"))),
        qPrintable(said()));
    // Nobody listens there.
    QTcpServer server;
    QVERIFY(server.listen(QHostAddress::LocalHost));
    const quint16 closed = server.serverPort();
    server.close();
    Click(Button(*form, SurveySource::Name(SurveySource::tcp)));
    Type(Input(*form, QStringLiteral("Host")), QStringLiteral("127.0.0.1"));
    Type(Input(*form, QStringLiteral("Port")), QString::number(closed));
    Click(Button(*form, QStringLiteral("Test")));
    QTRY_VERIFY2(RowWithProblem(*form).contains(QStringLiteral("refused")), qPrintable(said()));
    Click(Button(*form, SurveySource::Name(SurveySource::serial)));
    Type(Input(*form, QStringLiteral("Port")), QStringLiteral("/dev/no such port"));
    Click(Button(*form, QStringLiteral("Test")));
    QTRY_VERIFY2(RowWithProblem(*form).contains(QStringLiteral("No such file")), qPrintable(said()));
    QVERIFY(said().contains(QStringLiteral("found.")) || said().contains(QStringLiteral("None found.")));
}

void tst_SurveyFormsSource::wordsOfTheState_data()
{
    QTest::addColumn<int>("state");
    QTest::addColumn<double>("rate");
    QTest::addColumn<bool>("isText");
    QTest::addColumn<int>("bad");
    QTest::addColumn<QString>("text");
    const double unknown = std::nan("");
    QTest::newRow("just begun") << int(ZrSourceFacts::receiving) << unknown << true << 0 << "receiving";
    QTest::newRow("few") << int(ZrSourceFacts::receiving) << 0.96 << true << 0 << "receiving 1.0 sentences/s";
    QTest::newRow("some") << int(ZrSourceFacts::receiving) << 9.96 << true << 0 << "receiving 10 sentences/s";
    QTest::newRow("many") << int(ZrSourceFacts::receiving) << 1234.4 << false << 0
                          << "receiving 1234 records/s";
    QTest::newRow("damaged") << int(ZrSourceFacts::receiving) << 5.0 << true << 7
                             << "receiving 5.0 sentences/s, 7 bad lines";
    QTest::newRow("silent") << int(ZrSourceFacts::silent) << 5.0 << true << 0 << "silent";
    QTest::newRow("unreadable") << int(ZrSourceFacts::unreadable) << 0.0 << true << 9
                                << "unreadable: no NMEA sentence in 9 lines";
    QTest::newRow("waiting") << int(ZrSourceFacts::waiting) << unknown << false << 0 << "waiting for data";
    QTest::newRow("failed") << int(ZrSourceFacts::failed) << unknown << false << 0 << "Broken";
    QTest::newRow("troubled") << int(ZrSourceFacts::troubled) << unknown << false << 3 << "Broken";
    QTest::newRow("finished") << int(ZrSourceFacts::finished) << unknown << false << 0 << "at its end";
    QTest::newRow("none") << int(ZrSourceFacts::none) << unknown << false << 0 << "no source";
}

void tst_SurveyFormsSource::wordsOfTheState()
{
    QFETCH(int, state);
    QFETCH(double, rate);
    QFETCH(bool, isText);
    QFETCH(int, bad);
    ZrSourceFacts facts;
    facts.state = static_cast<ZrSourceFacts::eState>(state);
    facts.perSecond = rate;
    facts.isText = isText;
    facts.badLines = static_cast<quint64>(bad);
    facts.age = 12.0;
    facts.reason = QStringLiteral("Broken");
    QTEST(SurveyFeed::TextOf(facts), "text");
}

/// By minutes, and of the position apart.
void tst_SurveyFormsSource::agesOfTheState()
{
    ZrSourceFacts facts;
    facts.state = ZrSourceFacts::silent;
    facts.age = 59.9;
    QCOMPARE(SurveyFeed::TextOf(facts), QStringLiteral("silent"));
    facts.age = 60.0;
    QCOMPARE(SurveyFeed::TextOf(facts), QStringLiteral("silent for 1 min"));
    facts.age = 7199.0;
    facts.badLines = 2;
    QCOMPARE(SurveyFeed::TextOf(facts), QStringLiteral("silent for 119 min, 2 bad lines"));
    facts.state = ZrSourceFacts::receiving;
    facts.positionAge = 5.1;
    QCOMPARE(SurveyFeed::TextOf(facts), QStringLiteral("receiving, no position, 2 bad lines"));
    facts.positionAge = 5.0;
    QCOMPARE(SurveyFeed::TextOf(facts), QStringLiteral("receiving, 2 bad lines"));
}

void tst_SurveyFormsSource::unitOfTheCurrent()
{
    Settings().simCurrent = 1.0;
    auto* form = Shown<FormSources>();
    QCOMPARE(Input(*form, QStringLiteral("Current, m/s"))->QLineEdit::text(), QStringLiteral("1.00"));
    Form<ZrFmApp>()->OnUom(1);
    const QString caption = QStringLiteral("Current, ") + ZrUnits::GetSpeedUnits();
    QCOMPARE(Input(*form, caption)->QLineEdit::text(), QStringLiteral("1.94"));
    QCOMPARE(Settings().simCurrent, 1.0);
    Type(Input(*form, caption), QStringLiteral("3.88"));
    QVERIFY(std::abs(Settings().simCurrent - 2.0) < 0.01);
    Shown<FormDisplay>();
    Shown<FormSources>();
    QStringList units;
    for (int row = 0; row < form->RowCount(); ++row)
        units.append(form->Unit(row));
    QVERIFY(units.contains(ZrUnits::GetSpeedUnits()));
}

GL_TEST_MAIN(tst_SurveyFormsSource)
#include "tst_SurveyFormsSource.moc"
