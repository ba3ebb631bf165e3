#include "MarkTranslator.h"
#include "ZrKit/sonar/ZrSonarPalette.h"
#include "ZrUtil/LqColourMap.h"
#include "ZrUtil/SonarDataPkt.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QtTest/QtTest>

#include <memory>

/// The colour maps that the kit carries, for the packets of the library and for its own palettes.
class tst_ZrSonarPalette : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void packetFindsItsMaps_data();
    void packetFindsItsMaps();
    void buildingAgainDoesNotAppend();
    void newPalette();
    void names();
    void titles();
    void everyNameLoads();
    void coloursAreThoseOfTheMap();
    void namesThatAreRefused_data();
    void namesThatAreRefused();
    void filesAreJson();
};

namespace {

QRgb Entry(const LqColourMap& map, int i)
{
    return qRgb(map.m_rgb[3 * i], map.m_rgb[3 * i + 1], map.m_rgb[3 * i + 2]);
}

} // namespace

void tst_ZrSonarPalette::packetFindsItsMaps_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QRgb>("first");
    QTest::addColumn<QRgb>("middle");
    QTest::addColumn<QRgb>("last");
    // Half of the way is entry 127.5, so the middle one is a little above.
    QTest::newRow("jet") << 0 << qRgb(0, 0, 128) << qRgb(130, 255, 126) << qRgb(128, 0, 0);
    QTest::newRow("copper") << 1 << qRgb(0, 0, 0) << qRgb(160, 100, 64) << qRgb(255, 199, 127);
    QTest::newRow("cool") << 2 << qRgb(0, 255, 255) << qRgb(128, 127, 255) << qRgb(255, 0, 255);
    QTest::newRow("green") << 3 << qRgb(0, 0, 0) << qRgb(1, 192, 1) << qRgb(204, 255, 179);
    QTest::newRow("hot") << 4 << qRgb(0, 0, 0) << qRgb(255, 86, 0) << qRgb(255, 255, 255);
}

void tst_ZrSonarPalette::packetFindsItsMaps()
{
    QFETCH(int, index);
    const auto packet = std::make_unique<SonarDataPkt>();
    packet->BuildPalettes();
    const LqColourMap& map = packet->palettes[index];
    QCOMPARE(map.m_count, 256);
    QTEST(Entry(map, 0), "first");
    QTEST(Entry(map, 128), "middle");
    QTEST(Entry(map, 255), "last");
}

void tst_ZrSonarPalette::buildingAgainDoesNotAppend()
{
    const auto packet = std::make_unique<SonarDataPkt>();
    for (int i = 0; i < 2; ++i) {
        packet->BuildPalettes();
        for (const LqColourMap& map : packet->palettes)
            QCOMPARE(map.m_count, 256);
    }
}

void tst_ZrSonarPalette::newPalette()
{
    const ZrSonarPalette palette;
    QCOMPARE(palette.Name(), QStringLiteral("linear"));
    for (int i = 0; i < 256; ++i)
        QCOMPARE(palette.Colour(i), qRgb(i, i, i));
}

/// Every map of the resources is offered, none twice.
void tst_ZrSonarPalette::names()
{
    QStringList names = ZrSonarPalette::Names();
    QCOMPARE(names.first(), QStringLiteral("copper"));
    QCOMPARE(names.removeAll(QStringLiteral("linear")), 1);
    names.sort();
    QStringList maps = QDir(QStringLiteral(":/")).entryList({QStringLiteral("*.cmap.json")}, QDir::Files);
    maps.replaceInStrings(QStringLiteral(".cmap.json"), QString());
    maps.sort();
    QCOMPARE(names, maps);
}

/// Those of the screen are the names of the files with a capital; translators may have others.
void tst_ZrSonarPalette::titles()
{
    for (const QString& name : ZrSonarPalette::Names()) {
        const QString title = ZrSonarPalette::Title(name);
        QVERIFY2(title[0].isUpper(), qPrintable(title));
        QCOMPARE(title.toLower(), name);
    }
    QCOMPARE(ZrSonarPalette::Title(QStringLiteral("none of them")), QStringLiteral("none of them"));
    QCOMPARE(ZrSonarPalette::Title(QString()), QString());
    const MarkTranslator marks;
    QCOMPARE(ZrSonarPalette::Title(QStringLiteral("jet")), QStringLiteral("<Jet>"));
    QVERIFY(ZrSonarPalette::Names().contains(QStringLiteral("jet")));
}

void tst_ZrSonarPalette::everyNameLoads()
{
    ZrSonarPalette palette;
    std::vector<std::array<QRgb, 256>> seen;
    for (const QString& name : ZrSonarPalette::Names()) {
        QVERIFY2(palette.Load(name), qPrintable(name));
        QCOMPARE(palette.Name(), name);
        QCOMPARE(palette.Colours().size(), std::size_t(256));
        for (const QRgb colour : palette.Colours())
            QCOMPARE(qAlpha(colour), 255);
        QVERIFY2(std::find(seen.begin(), seen.end(), palette.Colours()) == seen.end(), qPrintable(name));
        seen.push_back(palette.Colours());
    }
    QVERIFY(palette.Load(QStringLiteral("linear")));
    QCOMPARE(palette.Colours(), ZrSonarPalette().Colours());
}

void tst_ZrSonarPalette::coloursAreThoseOfTheMap()
{
    for (const QString& name : ZrSonarPalette::Names()) {
        if (name == QLatin1String("linear"))
            continue;
        LqColourMap map;
        map.ReadCMap(QStringLiteral(":/%1.cmap.json").arg(name));
        QCOMPARE(map.m_count, 256);
        ZrSonarPalette palette;
        QVERIFY(palette.Load(name));
        for (int i = 0; i < 256; ++i)
            QCOMPARE(palette.Colour(i), Entry(map, i));
    }
}

void tst_ZrSonarPalette::namesThatAreRefused_data()
{
    QTest::addColumn<QString>("name");
    for (const char* name : {"", "Copper", "copper ", " copper", "copper.cmap.json", "../copper", "none"})
        QTest::newRow(name) << QString::fromLatin1(name);
    QTest::newRow("null") << QString();
    QTest::newRow("a zero character") << QString(QChar(0));
}

void tst_ZrSonarPalette::namesThatAreRefused()
{
    QFETCH(QString, name);
    ZrSonarPalette palette;
    QVERIFY(palette.Load(QStringLiteral("hot")));
    const auto colours = palette.Colours();
    QVERIFY(!palette.Load(name));
    QCOMPARE(palette.Name(), QStringLiteral("hot"));
    QCOMPARE(palette.Colours(), colours);
}

/// Other programs read the maps as what their names say.
void tst_ZrSonarPalette::filesAreJson()
{
    const QStringList maps
        = QDir(QStringLiteral(":/")).entryList({QStringLiteral("*.cmap.json")}, QDir::Files);
    QCOMPARE(maps.size(), 13);
    for (const QString& name : maps) {
        QFile file(QStringLiteral(":/") + name);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QJsonParseError error;
        const QJsonArray entries = QJsonDocument::fromJson(file.readAll(), &error).array();
        QVERIFY2(error.error == QJsonParseError::NoError, qPrintable(name));
        QCOMPARE(entries.size(), 256);
        LqColourMap map;
        map.ReadCMap(QStringLiteral(":/") + name);
        for (int i = 0; i < 256; ++i) {
            const QJsonObject entry = entries[i].toObject();
            QCOMPARE(entry[QStringLiteral("i")].toInt(-1), i);
            QCOMPARE(qRgb(entry[QStringLiteral("r")].toInt(-1), entry[QStringLiteral("g")].toInt(-1),
                         entry[QStringLiteral("b")].toInt(-1)),
                Entry(map, i));
        }
    }
}

QTEST_GUILESS_MAIN(tst_ZrSonarPalette)
#include "tst_ZrSonarPalette.moc"
