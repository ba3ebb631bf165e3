// Routes through every form and back: positions to 1e-7 degrees, every field that the form keeps, and nothing
// that depends on the locale.

#include "RouteFileChecks.h"

#include <QLocale>
#include <QSet>
#include <QTemporaryDir>

#include <clocale>

namespace {

bool KeepsAll(int format)
{
    return format != ZrRouteFile::Store && format != ZrRouteFile::List;
}

/// What the store makes of a value: six digits of most numbers, colours without their transparency.
bool SameInStore(const QString& key, const QJsonValue& a, const QJsonValue& b)
{
    if (key == QLatin1String("colour"))
        return a.toString().mid(2) == b.toString().mid(2) && b.toString().startsWith(QLatin1String("ff"));
    if (a.isDouble())
        return std::fabs(a.toDouble() - b.toDouble()) <= 1e-5 * std::fabs(a.toDouble()) + 1e-9;
    return a == b;
}

/// The list keeps these.
bool SameInList(const QString& key, const QJsonValue& a, const QJsonValue& b)
{
    static const QStringList kept{QStringLiteral("name"), QStringLiteral("pseudo"), QStringLiteral("z"),
        QStringLiteral("r"), QStringLiteral("speedtype"), QStringLiteral("speed"),
        QStringLiteral("route speed")};
    return !kept.contains(key) || a == b;
}

} // namespace

class tst_ZrRouteFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void roundTrips_data();
    void roundTrips();
    void exactPositions();
    void ownAndInheritedSpeeds_data();
    void ownAndInheritedSpeeds();
    void notNumbers();
    void names_data();
    void names();
    void unnamedStayUnnamed_data();
    void unnamedStayUnnamed();
    void edgesOfTheEarth_data();
    void edgesOfTheEarth();
    void emptyRoute_data();
    void emptyRoute();
    void onePoint_data();
    void onePoint();
    void tenThousandPoints_data();
    void tenThousandPoints();
    void localeDoesNotMatter_data();
    void localeDoesNotMatter();
    void writingIsConstant();

    void formatBySuffix_data();
    void formatBySuffix();
    void formByContent_data();
    void formByContent();
    void readingReplaces();
    void readingRecomputes();
    void presetsComeWithTheSettings();
    void sameUuidTwice();
    void storeWarnings();
    void storesOfApplications();

private:
    std::unique_ptr<QTemporaryDir> m_dir;
};

void tst_ZrRouteFile::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
}

void tst_ZrRouteFile::cleanup()
{
    ZrWpts::s_msSlow = 0.25F;
    ZrWpts::s_msMedium = 0.5F;
    ZrWpts::s_msFast = 1.0F;
}

void tst_ZrRouteFile::roundTrips_data()
{
    QTest::addColumn<int>("format");
    QTest::addColumn<int>("seed");
    QTest::addColumn<bool>("linked");
    QTest::addColumn<bool>("closed");
    for (const ZrRouteFile::eFormat format : AllFormats)
        for (int i = 0; i < 12; ++i)
            QTest::addRow("%s %d", NameOf(format), i) << int(format) << i << (i % 4 < 2) << (i % 2 == 0);
}

void tst_ZrRouteFile::roundTrips()
{
    QFETCH(int, format);
    QFETCH(int, seed);
    QFETCH(bool, linked);
    QFETCH(bool, closed);
    const ZrWpts route = RandomRoute(2 + seed * 3, static_cast<unsigned int>(seed), linked, closed);
    const QString path = m_dir->filePath(QString::fromLatin1(NameOf(ZrRouteFile::eFormat(format))));
    ZrRouteFile file;
    QVERIFY2(file.Write(path, ZrRouteFile::eFormat(format), route), qPrintable(file.Error()));
    QCOMPARE(file.Warnings(), QStringList());
    ZrWpts read;
    QVERIFY2(file.Read(path, read), qPrintable(file.Error()));
    QCOMPARE(file.Warnings(), QStringList());
    const QStringList differences = format == ZrRouteFile::Store ? Differences(route, read, SameInStore)
        : format == ZrRouteFile::List                            ? Differences(route, read, SameInList)
                                                                 : Differences(route, read);
    QCOMPARE(differences, QStringList());
}

/// JSON keeps all digits, so that nothing computed differs either.
void tst_ZrRouteFile::exactPositions()
{
    const ZrWpts route = RandomRoute(50, 7, true, false);
    for (const int format : {ZrRouteFile::Settings, ZrRouteFile::GeoJson}) {
        ZrWpts read;
        QCOMPARE(FromBytes(ToBytes(format, route), read), QString());
        QCOMPARE(read.GetCount(), 50);
        for (int i = 0; i < 50; ++i)
            QCOMPARE(FieldsOf(NthOf(read, i)), FieldsOf(NthOf(route, i)));
    }
}

void tst_ZrRouteFile::ownAndInheritedSpeeds_data()
{
    EveryFormat();
}

void tst_ZrRouteFile::ownAndInheritedSpeeds()
{
    QFETCH(int, format);
    ZrWpts route;
    route.linked = true;
    route.speed = 1.75;
    for (const int type : {0, 3, 0, 1, 9, 0}) {
        ZrWpt wpt = At(50.0 + type * 0.01, -4.0);
        wpt.spdType = type;
        wpt.speed = 2.5;
        Append(route, wpt);
    }
    route.Recalc(true);
    ZrWpts read;
    QCOMPARE(FromBytes(ToBytes(format, route), read), QString());
    QCOMPARE(read.speed, 1.75);
    const double expected[] = {1.75, 1.0, 1.0, 0.25, 2.5, 2.5};
    for (int i = 0; i < 6; ++i) {
        QCOMPARE(NthOf(read, i).spdType, NthOf(route, i).spdType);
        // The preset speed stands nowhere in the waypoint itself.
        if (NthOf(route, i).spdType == 0)
            QCOMPARE(NthOf(read, i).speed, expected[i]);
    }
}

/// Fields that are no numbers: NaN stays in every form; infinities are NaN in JSON.
void tst_ZrRouteFile::notNumbers()
{
    ZrWpts route;
    ZrWpt wpt = At(50.0, -4.0);
    wpt.z = std::numeric_limits<double>::quiet_NaN();
    wpt.alt = std::numeric_limits<double>::infinity();
    Append(route, wpt);
    for (const ZrRouteFile::eFormat format : AllFormats) {
        ZrWpts read;
        QCOMPARE(FromBytes(ToBytes(format, route), read), QString());
        QVERIFY2(std::isnan(NthOf(read, 0).z), NameOf(format));
        if (format == ZrRouteFile::Gpx || format == ZrRouteFile::Kml)
            QCOMPARE(NthOf(read, 0).alt, std::numeric_limits<double>::infinity());
    }
}

void tst_ZrRouteFile::names_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("inXml");
    QTest::addColumn<QString>("inStore");
    QTest::addColumn<QString>("inList");
    const auto row = [](const char* tag, const QString& name, const QString& inXml, const QString& inStore,
                         const QString& inList) { QTest::newRow(tag) << name << inXml << inStore << inList; };
    const auto same = [&](const char* tag, const QString& name) { row(tag, name, name, name, name); };
    same("hash", QStringLiteral("#001"));
    same("route comment", QStringLiteral("# route {"));
    same("markup", QStringLiteral("<b>&amp;</b> ]]> <![CDATA[ a>b"));
    same("latin", QStringLiteral("\u00C5land \u00DF"));
    same("two blanks", QStringLiteral("a  b"));
    same("number", QStringLiteral("12.5"));
    same("label", QStringLiteral("Start Mission"));
    same("percent", QStringLiteral("%1 %s %n"));
    const QString wide = QStringLiteral("\u0141\u00F3d\u017A \u6E2F \U0001F41F");
    row("unicode", wide, wide, QStringLiteral("?\u00F3d? ? ??"), wide);
    row("tab", QStringLiteral("a\tb"), QStringLiteral("a\tb"), QStringLiteral("a b"), QStringLiteral("a b"));
    row("lines", QStringLiteral("a\nb\r\nc"), QStringLiteral("a\nb\nc"), QStringLiteral("a b  c"),
        QStringLiteral("a b  c"));
    row("quotes", QStringLiteral("\"x\" 'y'"), QStringLiteral("\"x\" 'y'"), QStringLiteral("'x' 'y'"),
        QStringLiteral("\"x\" 'y'"));
    row("controls", QStringLiteral("a\u0001b\u001Bc"), QStringLiteral("abc"), QStringLiteral("a b c"),
        QStringLiteral("a\u0001b\u001Bc"));
    row("blanks around", QStringLiteral(" a "), QStringLiteral(" a "), QStringLiteral(" a "),
        QStringLiteral("a"));
    row("more items", QStringLiteral("x\"/>\n<Lat val=\"1"), QStringLiteral("x\"/>\n<Lat val=\"1"),
        QStringLiteral("x'/> <Lat val='1"), QStringLiteral("x\"/> <Lat val=\"1"));
    const QString tall(5000, QLatin1Char('n'));
    row("long", tall, tall, tall.left(900), tall);
}

void tst_ZrRouteFile::names()
{
    QFETCH(QString, name);
    QFETCH(QString, inXml);
    QFETCH(QString, inStore);
    QFETCH(QString, inList);
    ZrWpts route;
    route.linked = true;
    route.prefix = name;
    Append(route, At(50.0, -4.0, name));
    Append(route, At(51.0, -5.0, name));
    for (const ZrRouteFile::eFormat format : AllFormats) {
        ZrWpts read;
        QCOMPARE(FromBytes(ToBytes(format, route), read), QString());
        const bool isXml = format == ZrRouteFile::Gpx || format == ZrRouteFile::Kml;
        const QString expected = format == ZrRouteFile::Store ? inStore
            : format == ZrRouteFile::List                     ? inList
            : isXml                                           ? inXml
                                                              : name;
        QCOMPARE(Summary(read),
            (QStringList{(QStringLiteral("50 -4 ") + expected).trimmed(),
                (QStringLiteral("51 -5 ") + expected).trimmed()}));
        QCOMPARE(NthOf(read, 1).name, expected);
        // The prefix stands in JSON text there.
        QCOMPARE(read.prefix, format == ZrRouteFile::List ? name : expected);
    }
}

void tst_ZrRouteFile::unnamedStayUnnamed_data()
{
    EveryFormat();
}

void tst_ZrRouteFile::unnamedStayUnnamed()
{
    QFETCH(int, format);
    for (const bool linked : {true, false}) {
        ZrWpts route;
        route.linked = linked;
        for (int i = 0; i < 3; ++i)
            Append(route, At(50.0 + i, -4.0, i == 1 ? QStringLiteral("Wreck") : QString()));
        route.UpdatePseudo();
        ZrWpts read;
        QCOMPARE(FromBytes(ToBytes(format, route), read), QString());
        QCOMPARE(Summary(read),
            (QStringList{QStringLiteral("50 -4"), QStringLiteral("51 -4 Wreck"), QStringLiteral("52 -4")}));
        QCOMPARE(NthOf(read, 0).Name(), linked ? QStringLiteral("Start Mission") : QStringLiteral("Mkr: 1"));
        QCOMPARE(NthOf(read, 2).Name(), linked ? QStringLiteral("Finish Mission") : QStringLiteral("Mkr: 3"));
    }
}

void tst_ZrRouteFile::edgesOfTheEarth_data()
{
    EveryFormat();
}

void tst_ZrRouteFile::edgesOfTheEarth()
{
    QFETCH(int, format);
    for (const bool linked : {true, false}) {
        ZrWpts route;
        route.linked = linked;
        for (const double lat : {0.0, -0.0, 90.0, -90.0, 89.99999999, 1e-9, 4.9e-324})
            for (const double lng : {0.0, -0.0, 180.0, -180.0, 179.999999999, -179.999999999, -1e-9})
                Append(route, At(lat, lng));
        ZrWpts read;
        QCOMPARE(FromBytes(ToBytes(format, route), read), QString());
        QCOMPARE(Differences(
                     route, read, [](const QString&, const QJsonValue&, const QJsonValue&) { return true; }),
            QStringList());
    }
}

void tst_ZrRouteFile::emptyRoute_data()
{
    EveryFormat();
}

/// An empty route can be written; a file without waypoints is none to be read.
void tst_ZrRouteFile::emptyRoute()
{
    QFETCH(int, format);
    for (const bool linked : {true, false}) {
        ZrWpts empty;
        empty.linked = linked;
        const QByteArray bytes = ToBytes(format, empty);
        QVERIFY(!bytes.isEmpty());
        ZrWpts route;
        Append(route, At(1.0, 2.0, QStringLiteral("kept")));
        QCOMPARE(FromBytes(bytes, route), QStringLiteral("no route and no waypoints in it"));
        QCOMPARE(Summary(route), QStringList{QStringLiteral("1 2 kept")});
    }
}

void tst_ZrRouteFile::onePoint_data()
{
    EveryFormat();
}

void tst_ZrRouteFile::onePoint()
{
    QFETCH(int, format);
    for (const bool linked : {true, false}) {
        ZrWpts route;
        route.linked = linked;
        route.closed = true;
        Append(route, At(50.123456789, -4.0, QStringLiteral("x")));
        route.UpdatePseudo();
        route.Recalc(true);
        ZrWpts read;
        QCOMPARE(FromBytes(ToBytes(format, route), read), QString());
        QCOMPARE(Differences(route, read, SameInList), QStringList());
    }
}

void tst_ZrRouteFile::tenThousandPoints_data()
{
    EveryFormat();
}

void tst_ZrRouteFile::tenThousandPoints()
{
    QFETCH(int, format);
    ZrWpts route;
    route.linked = true;
    for (int i = 0; i < 10000; ++i)
        Append(route, At(50.0 + i * 1e-5, -4.0 + (i % 100) * 1e-4));
    route.UpdatePseudo();
    ZrWpts read;
    QCOMPARE(FromBytes(ToBytes(format, route), read), QString());
    QCOMPARE(read.GetCount(), 10000);
    ZrListPos* pos = read.GetHeadPos();
    for (int i = 0; i < 10000; ++i) {
        const ZrWpt* wpt = read.GetNext(pos);
        QVERIFY(std::fabs(wpt->lat - (50.0 + i * 1e-5)) <= 1e-7
            && std::fabs(wpt->lng - (-4.0 + (i % 100) * 1e-4)) <= 1e-7);
    }
}

void tst_ZrRouteFile::localeDoesNotMatter_data()
{
    EveryFormat();
}

void tst_ZrRouteFile::localeDoesNotMatter()
{
    QFETCH(int, format);
    const ZrWpts route = RandomRoute(3, 5, true, true);
    const auto withoutDate = [](QByteArray bytes) {
        const int at = bytes.indexOf("<XmlStore");
        return at < 0 ? bytes : bytes.remove(at, bytes.indexOf('\n', at) - at);
    };
    const QByteArray expected = withoutDate(ToBytes(format, route));
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German));
    const bool isSet = setlocale(LC_ALL, "de_DE.UTF-8") != nullptr;
    const QByteArray found = withoutDate(ToBytes(format, route));
    ZrWpts read;
    const QString error = FromBytes(found, read);
    setlocale(LC_ALL, "C.UTF-8");
    QLocale::setDefault(before);
    QCOMPARE(error, QString());
    QCOMPARE(QString::fromUtf8(found), QString::fromUtf8(expected));
    QVERIFY(KeepsAll(format) ? Differences(route, read).isEmpty() : read.GetCount() == 3);
    if (!isSet)
        qInfo("without de_DE.UTF-8, by the locale of Qt alone");
}

/// Writing changes nothing, neither the route nor the projection of the process.
void tst_ZrRouteFile::writingIsConstant()
{
    ZrWpts route = RandomRoute(4, 3, true, false);
    route.GetHead()->r = 12.0; // a recalculation would clear it
    const ZrWpts before(route);
    for (const ZrRouteFile::eFormat format : AllFormats)
        QVERIFY(!ToBytes(format, route).isEmpty());
    QCOMPARE(Differences(route, before), QStringList());
    QCOMPARE(route.GetHead()->r, 12.0);
}

void tst_ZrRouteFile::formatBySuffix_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("format");
    const auto row
        = [](const char* path, int format) { QTest::newRow(path) << QString::fromLatin1(path) << format; };
    row("a.json", ZrRouteFile::Settings);
    row("a.xml", ZrRouteFile::Store);
    row("dir.kml/A.GPX", ZrRouteFile::Gpx);
    row("a.b.Kml", ZrRouteFile::Kml);
    row("a.geojson", ZrRouteFile::GeoJson);
    row("a.txt", ZrRouteFile::List);
    row("gpx", ZrRouteFile::List);
    row("", ZrRouteFile::List);
}

void tst_ZrRouteFile::formatBySuffix()
{
    QFETCH(QString, path);
    QFETCH(int, format);
    QCOMPARE(int(ZrRouteFile::FormatOf(path)), format);
}

void tst_ZrRouteFile::formByContent_data()
{
    EveryFormat();
}

/// The suffix says nothing to the reader; marks of an encoding and blank lines in front do not disturb it.
void tst_ZrRouteFile::formByContent()
{
    QFETCH(int, format);
    const ZrWpts route = RandomRoute(3, 11, true, false);
    const QByteArray bytes = ToBytes(format, route);
    const bool isXml = bytes.startsWith('<');
    std::vector<QByteArray> forms{bytes, "\xEF\xBB\xBF" + bytes};
    if (!isXml) { // a declaration must come first
        forms.push_back("\n \n" + bytes);
        const QString text = QString::fromUtf8(bytes);
        const QByteArray wide(reinterpret_cast<const char*>(text.utf16()), text.size() * 2);
        forms.push_back("\xFF\xFE" + wide);
        QByteArray swapped = wide;
        for (int i = 0; i + 1 < swapped.size(); i += 2)
            std::swap(swapped.data()[i], swapped.data()[i + 1]);
        forms.push_back("\xFE\xFF" + swapped);
    }
    QByteArray crlf = bytes;
    forms.push_back(crlf.replace("\n", "\r\n"));
    const QString path = m_dir->filePath(QStringLiteral("file.wrong"));
    for (const QByteArray& form : forms) {
        QVERIFY(WriteWhole(path, form));
        ZrWpts read;
        ZrRouteFile file;
        QVERIFY2(file.Read(path, read), qPrintable(file.Error()));
        QCOMPARE(Summary(read).size(), 3);
        QCOMPARE(NthOf(read, 2).name, NthOf(route, 2).name);
    }
}

void tst_ZrRouteFile::readingReplaces()
{
    ZrWpts route = RandomRoute(5, 1, false, true);
    route.speedType = 3; // not in the file: would give the route another speed
    ZrWpts other;
    other.linked = true;
    other.speed = 0.75;
    Append(other, At(1.0, 2.0, QStringLiteral("only")));
    for (const ZrRouteFile::eFormat format : AllFormats) {
        QCOMPARE(FromBytes(ToBytes(format, other), route), QString());
        QCOMPARE(Summary(route), QStringList{QStringLiteral("1 2 only")});
        QVERIFY(route.linked && !route.closed && route.prefix.isEmpty());
        QCOMPARE(route.speed, 0.75);
        QCOMPARE(route.speedType, 0);
    }
}

void tst_ZrRouteFile::readingRecomputes()
{
    ZrWpts route;
    QCOMPARE(FromBytes("50.0\t-4.0\n50.1\t-4.0\n", route), QString());
    QCOMPARE(NthOf(route, 1).pseudo, QStringLiteral("Mkr: 2"));
    QVERIFY(std::fabs(NthOf(route, 1).q - 11119.0) < 20.0);
    QVERIFY(NthOf(route, 0).x > 400000.0);
}

void tst_ZrRouteFile::presetsComeWithTheSettings()
{
    ZrWpts route;
    Append(route, At(1.0, 2.0));
    ZrWpts::s_msFast = 2.5F;
    const QByteArray bytes = ToBytes(ZrRouteFile::Settings, route);
    ZrWpts::s_msFast = 1.0F;
    ZrWpts read;
    QCOMPARE(FromBytes(bytes, read), QString());
    QCOMPARE(ZrWpts::s_msFast, 2.5F);

    ZrWpts::s_msFast = 1.0F;
    QByteArray damaged = bytes;
    QVERIFY(!FromBytes(damaged.replace("\"lat\"", "\"lot\""), read).isEmpty());
    QCOMPARE(ZrWpts::s_msFast, 1.0F);
}

/// Lines that people copy in an editor; two waypoints of one identity would confuse all that look for it.
void tst_ZrRouteFile::sameUuidTwice()
{
    const QByteArray uuid = QUuid::createUuid().toByteArray();
    const QByteArray list = "lat\tlong\tUUID\n1\t2\t" + uuid + "\n3\t4\t" + uuid
        + "\n5\t6\t{00000000-0000-0000-0000-000000000000}\n";
    ZrWpts route;
    QCOMPARE(FromBytes(list, route), QString());
    QCOMPARE(NthOf(route, 0).uuid.toByteArray(), uuid);
    QSet<QUuid> all;
    for (int i = 0; i < 3; ++i)
        all.insert(NthOf(route, i).uuid);
    QCOMPARE(all.size(), 3);
    QVERIFY(!all.contains(QUuid()));
}

void tst_ZrRouteFile::storeWarnings()
{
    ZrWpts route;
    route.prefix = QStringLiteral("\u6E2F");
    Append(route, At(1.0, 2.0, QStringLiteral("fine")));
    Append(route, At(1.0, 3.0, QStringLiteral("\"quoted\"")));
    ZrWpt third = At(1.0, 4.0);
    third.filename = QStringLiteral("\u6E2F.log");
    third.bottomA = QLatin1Char('"');
    Append(route, third);
    ZrRouteFile file;
    QByteArray bytes;
    QVERIFY(file.ToBytes(ZrRouteFile::Store, route, bytes));
    QCOMPARE(file.Warnings(),
        (QStringList{QStringLiteral("prefix: text that the store cannot hold was changed"),
            QStringLiteral("waypoint 2: text that the store cannot hold was changed"),
            QStringLiteral("waypoint 3: text that the store cannot hold was changed")}));
    ZrWpts read;
    QVERIFY(file.FromBytes(bytes, read));
    QCOMPARE(NthOf(read, 2).filename, QStringLiteral("?.log"));
    QCOMPARE(NthOf(read, 2).bottomA, QChar(QLatin1Char('\'')));
    QVERIFY(file.ToBytes(ZrRouteFile::Gpx, route, bytes));
    QCOMPARE(file.Warnings(), QStringList());
}

/// Applications name the set as they like, and write "No Data" into an empty one.
void tst_ZrRouteFile::storesOfApplications()
{
    const QByteArray head = "<?xml version=\"1.0\" ?>\n<XmlStore name=\"x\">\n\t<Settings name=\"Cameras\">\n"
                            "\t\t<Object name=\"Front\" type=\"Camera\">\n\t\t\t<On "
                            "val=\"true\"/>\n\t\t</Object>\n\t</Settings>\n";
    const QByteArray noData
        = "\t\t<Object name=\"No Data\" type=\"None\">\n\t\t\t<X val=\"1\"/>\n\t\t</Object>\n";
    const QByteArray point = "\t\t<Object name=\"Wpt 0\" type=\"Waypoint\">\n\t\t\t<Lat val=\"50.5\"/>\n"
                             "\t\t\t<Lng val=\"-4.25\"/>\n\t\t\t<Name val=\"Wreck\"/>\n\t\t</Object>\n";
    const QByteArray tail = "\t</Settings>\n</XmlStore>\n";
    ZrWpts route;
    QCOMPARE(FromBytes(head + "\t<Settings name=\"Mission\">\n" + noData + point + tail, route), QString());
    QCOMPARE(Summary(route), QStringList{QStringLiteral("50.5 -4.25 Wreck")});
    QVERIFY(!route.linked);
    QCOMPARE(NthOf(route, 0).pseudo, QStringLiteral("Mkr: 1"));
    QCOMPARE(FromBytes(head + "\t<Settings name=\"Waypoints\">\n" + noData + tail, route),
        QStringLiteral("no route and no waypoints in it"));
    QCOMPARE(FromBytes(head + "</XmlStore>\n", route),
        QStringLiteral("neither GPX, KML nor a tag-structured store with waypoints"));
    QCOMPARE(Summary(route), QStringList{QStringLiteral("50.5 -4.25 Wreck")});
}

QTEST_GUILESS_MAIN(tst_ZrRouteFile)
#include "tst_ZrRouteFile.moc"
