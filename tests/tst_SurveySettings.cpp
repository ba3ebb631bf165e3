// The application's own settings: stored and loaded as they are, put right where a file holds nonsense.

#include "ZrKit/sonar/ZrSonarPalette.h"
#include "ZrUtil/ZrSetApp.h"
#include "ZrUtil/ZrSetModule.h"
#include "apps/ZrSurvey/SurveySettings.h"
#include "apps/ZrSurvey/SurveySource.h"

#include <QJsonObject>
#include <QtTest>

namespace {

QString S(const char* text)
{
    return QString::fromUtf8(text);
}

QJsonObject Stored(SurveySettings& settings)
{
    zr::ZrSetApp app(zr::ePersistStoring);
    app.synchronise(settings);
    return app.root;
}

void Load(SurveySettings& settings, const QJsonObject& root)
{
    zr::ZrSetApp app(zr::ePersistLoading);
    app.root = root;
    app.synchronise(settings);
}

/// The settings of a file that holds \p value under \p key.
SurveySettings With(const char* key, const QJsonValue& value)
{
    SurveySettings settings;
    QJsonObject root = Stored(settings);
    root[S(key)] = value;
    Load(settings, root);
    return settings;
}

} // namespace

class tst_SurveySettings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void roundTrip();
    void nothingStored();
    void integers_data();
    void integers();
    void numbers_data();
    void numbers();
    void prefixes_data();
    void prefixes();
    void labels();
    void emptyTexts();
    void palettes();
    void sources();
};

void tst_SurveySettings::roundTrip()
{
    SurveySettings a;
    a.colours = 2;
    a.recordDir = S("/data/Tauchgänge 潜水");
    a.recordPrefix = S("Süd-охота ");
    a.splitMegabytes = 700;
    a.splitMinutes = 90;
    a.stopBelowMegabytes = 1234;
    a.eventLabels = QStringList({S("Ziel ß"), S("目标"), S("🐟 fish")});
    a.source = SurveySource::tcp;
    a.udpPort = 1;
    a.tcpHost = S("schiff.örtlich");
    a.tcpPort = 65535;
    a.serialPort = S("/dev/ttyUSB3");
    a.serialBaud = 115200;
    a.sourceFile = S("/tmp/ä b.log");
    a.simSpeed = 12.5;
    a.simCurrent = 1.25;
    a.simSet = 271.5;
    a.palette = 13;
    a.gain = -3.5;
    a.contrast = 2.25;
    a.slant = true;
    a.bottom = false;
    a.blanking = 2;
    a.gapsCut = false;
    a.planLat = -33.5;
    a.planLng = 151.25;
    a.planScale = 0.125;
    a.planRotation = 30.0;
    SurveySettings b;
    Load(b, Stored(a));
    QCOMPARE(Stored(b), Stored(a));
    QCOMPARE(b.recordDir, a.recordDir);
    QCOMPARE(b.recordPrefix, a.recordPrefix);
    QCOMPARE(b.eventLabels, a.eventLabels);
    QCOMPARE(b.source, int(SurveySource::tcp));
    QCOMPARE(b.simSet, 271.5);
    QCOMPARE(b.slant, true);
    QCOMPARE(b.bottom, false);
    QCOMPARE(b.blanking, 2);
    QCOMPARE(b.gapsCut, false);
    QCOMPARE(b.planScale, 0.125);
    QCOMPARE(b.planLng, 151.25);
    QVERIFY(Stored(b) != Stored(*std::make_unique<SurveySettings>()));
}

void tst_SurveySettings::nothingStored()
{
    SurveySettings settings;
    const QJsonObject standard = Stored(settings);
    Load(settings, QJsonObject());
    QCOMPARE(Stored(settings), standard);
    QCOMPARE(settings.eventLabels.size(), 4);
    QVERIFY(settings.recordDir.endsWith(S("/ZrSurvey")));
}

void tst_SurveySettings::integers_data()
{
    QTest::addColumn<QByteArray>("key");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("expected");
    const auto row = [](const char* key, const char* text, int expected) {
        QTest::addRow("%s %s", key, text) << QByteArray(key) << S(text) << expected;
    };
    row("colours", "3", 1);
    row("colours", "-1", 1);
    row("colours", "0", 0);
    row("source", "6", 0);
    row("source", "5", 5);
    row("udp port", "0", 10110);
    row("udp port", "65536", 10110);
    row("udp port", "65535", 65535);
    row("tcp port", "-7", 10110);
    row("serial baud", "0", 4800);
    row("serial baud", "300", 300);
    row("blanking", "3", 1);
    row("blanking", "-1", 1);
    row("blanking", "0", 0);
    row("palette", "14", 1);
    row("palette", "13", 13);
    row("split megabytes", "-5", 0);
    row("split megabytes", "2000000000", SurveySettings::MostSplitMegabytes);
    row("split minutes", "100000", SurveySettings::MostSplitMinutes);
    row("stop below megabytes", "0", SurveySettings::LeastStopBelow);
    row("stop below megabytes", "2000000000", SurveySettings::MostStopBelow);
}

void tst_SurveySettings::integers()
{
    QFETCH(QByteArray, key);
    QFETCH(QString, text);
    const SurveySettings settings = With(key.constData(), text);
    const QMap<QByteArray, int> values({{"colours", settings.colours}, {"source", settings.source},
        {"udp port", settings.udpPort}, {"tcp port", settings.tcpPort}, {"serial baud", settings.serialBaud},
        {"blanking", settings.blanking}, {"palette", settings.palette},
        {"split megabytes", settings.splitMegabytes}, {"split minutes", settings.splitMinutes},
        {"stop below megabytes", settings.stopBelowMegabytes}});
    QTEST(values[key], "expected");
}

void tst_SurveySettings::numbers_data()
{
    QTest::addColumn<QByteArray>("key");
    QTest::addColumn<QJsonValue>("value");
    QTest::addColumn<double>("expected");
    const auto row = [](const char* name, const char* key, const QJsonValue& value, double expected) {
        QTest::newRow(name) << QByteArray(key) << value << expected;
    };
    row("speed not a number", "simulator speed", QJsonValue(), 1.0);
    row("speed zero", "simulator speed", 0.0, 0.1);
    row("speed huge", "simulator speed", 1e300, 50.0);
    row("current negative", "simulator current", -1.0, 0.0);
    row("current fast", "simulator current", 9.0, 5.0);
    row("set", "simulator set", 720.0, 360.0);
    row("gain low", "gain", -1e9, -20.0);
    row("gain high", "gain", 20.5, 20.0);
    row("gain not a number", "gain", QJsonValue(), 0.0);
    row("contrast zero", "contrast", 0.0, 0.25);
    row("contrast high", "contrast", 5.0, 4.0);
    row("plan scale too small", "plan scale", 1e-5, 0.0);
    row("plan scale too large", "plan scale", 1e6, 0.0);
    row("plan scale not a number", "plan scale", QJsonValue(), 0.0);
    row("plan scale", "plan scale", 0.5, 0.5);
    row("plan rotation", "plan rotation", 1e9, 360.0);
    row("plan latitude", "plan latitude", 91.0, 0.0);
    row("plan longitude", "plan longitude", QJsonValue(), 0.0);
}

void tst_SurveySettings::numbers()
{
    QFETCH(QByteArray, key);
    QFETCH(QJsonValue, value);
    const SurveySettings settings = With(key.constData(), value);
    const QMap<QByteArray, double> values(
        {{"simulator speed", settings.simSpeed}, {"simulator current", settings.simCurrent},
            {"simulator set", settings.simSet}, {"gain", settings.gain}, {"contrast", settings.contrast},
            {"plan scale", settings.planScale}, {"plan rotation", settings.planRotation},
            {"plan latitude", settings.planLat}, {"plan longitude", settings.planLng}});
    QTEST(values[key], "expected");
}

void tst_SurveySettings::prefixes_data()
{
    QTest::addColumn<QString>("prefix");
    QTest::addColumn<bool>("isGood");
    QTest::newRow("empty") << QString() << true;
    QTest::newRow("plain") << S("survey_") << true;
    QTest::newRow("unicode") << S("Süd 潜水") << true;
    QTest::newRow("longest") << QString(64, QLatin1Char('a')) << true;
    QTest::newRow("too long") << QString(65, QLatin1Char('a')) << false;
    QTest::newRow("folder") << S("a/b") << false;
    QTest::newRow("up") << S("../x") << false;
    QTest::newRow("backslash") << S("a\\b") << false;
    QTest::newRow("colon") << S("a:b") << false;
    QTest::newRow("line end") << S("a\nb") << false;
    QTest::newRow("zero") << QString(QChar(0)) << false;
    QTest::newRow("hidden") << S(".a") << false;
}

void tst_SurveySettings::prefixes()
{
    QFETCH(QString, prefix);
    QFETCH(bool, isGood);
    QCOMPARE(SurveySettings::PrefixProblem(prefix).isEmpty(), isGood);
    const QString loaded = With("record prefix", prefix).recordPrefix;
    QCOMPARE(loaded, isGood ? prefix : S("survey"));
}

void tst_SurveySettings::labels()
{
    QCOMPARE(SurveySettings::UsableLabels({}), QStringList());
    QCOMPARE(SurveySettings::UsableLabels({S(" a "), QString(), S("\t"), S("b\nc")}),
        QStringList({S("a"), S("b c")}));
    QStringList many;
    for (int i = 0; i < 20; ++i)
        many.append(QString::number(i));
    QCOMPARE(SurveySettings::UsableLabels(many), many.mid(0, 8));
    QCOMPARE(SurveySettings::UsableLabels({QString(100, QLatin1Char('x'))}).first().size(), 40);
    QCOMPARE(With("event labels", many.join(QLatin1Char('\n'))).eventLabels, many.mid(0, 8));
    // All of them may be taken away.
    QCOMPARE(With("event labels", QString()).eventLabels, QStringList());
}

void tst_SurveySettings::emptyTexts()
{
    QCOMPARE(With("tcp host", S("  ")).tcpHost, S("localhost"));
    QCOMPARE(With("record folder", QString()).recordDir, SurveySettings().recordDir);
    QCOMPARE(With("serial port", QString()).serialPort, QString());
}

void tst_SurveySettings::palettes()
{
    QCOMPARE(ZrSonarPalette::Names().size(), SurveySettings::LastPalette + 1);
}

void tst_SurveySettings::sources()
{
    QCOMPARE(SurveySource::Count, SurveySettings::LastSource + 1);
    QSet<QString> names;
    for (int i = 0; i < SurveySource::Count; ++i)
        names.insert(SurveySource::Name(i));
    QCOMPARE(names.size(), SurveySource::Count);
    QVERIFY(!names.contains(QString()));
    QCOMPARE(SurveySource::Name(-1), QString());
    QCOMPARE(SurveySource::Name(6), QString());

    SurveySettings settings;
    QCOMPARE(SurveySource::Describe(settings), S("Simulator"));
    settings.source = SurveySource::udp;
    QCOMPARE(SurveySource::Describe(settings), S("UDP port 10110"));
    settings.source = SurveySource::tcp;
    QCOMPARE(SurveySource::Describe(settings), S("localhost:10110"));
    settings.source = SurveySource::serial;
    QCOMPARE(SurveySource::Describe(settings), S("No serial port chosen"));
    settings.source = SurveySource::replay;
    QCOMPARE(SurveySource::Describe(settings), S("No file chosen"));
    settings.sourceFile = S("/a/b ä.log");
    QCOMPARE(SurveySource::Describe(settings), S("b ä.log"));
}

QTEST_GUILESS_MAIN(tst_SurveySettings)
#include "tst_SurveySettings.moc"
