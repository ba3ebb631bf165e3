// Lists of waypoints as spreadsheets and people write them, and what ours look like.

#include "RouteFileChecks.h"
#include "ZrKit/planning/ZrGeoShapes.h"
#include "ZrKit/planning/ZrRouteTab.h"

class tst_ZrRouteTab : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void layout();
    void lists_data();
    void lists();
    void fields();
    void routeComment();
    void encodings();
    void zeroBytes();
    void errors_data();
    void errors();
};

void tst_ZrRouteTab::layout()
{
    ZrWpts route;
    route.prefix = QStringLiteral("\u00E4\t");
    route.linked = true;
    ZrWpt wpt = At(50.5, -4.123456789012, QStringLiteral("#1\t\u00E4"));
    wpt.z = -2.5;
    wpt.spdType = 2;
    wpt.speed = 0.1;
    wpt.pseudo = QStringLiteral("Start Mission");
    Append(route, wpt);
    Append(route, At(-0.0, 180.0));
    QCOMPARE(QString::fromUtf8(ZrRouteTab::Write(route)),
        QStringLiteral("# route {\"closed\":false,\"linked\":true,\"prefix\":\"\u00E4\\t\",\"speed\":0.5}\n"
                       "lat\tlong\tname\tz\tr\tspeedtype\tspeed\n"
                       "50.500000000\t-4.123456789\t#1 \u00E4\t-2.5\t\t2\t0.1\n"
                       "0.000000000\t180.000000000\t\t\t\t\t\n"));
}

void tst_ZrRouteTab::lists_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("summary");
    const auto row = [](const char* tag, const char* text, const QStringList& summary) {
        QTest::newRow(tag) << QString::fromUtf8(text) << summary;
    };
    const auto one = [](const char* text) { return QStringList{QString::fromUtf8(text)}; };
    row("two columns", "50.5\t-4.25\n51\t-5\n", {QStringLiteral("50.5 -4.25"), QStringLiteral("51 -5")});
    row("three columns", "A\t50.5\t-4.25\r\n\t51\t-5",
        {QStringLiteral("50.5 -4.25 A"), QStringLiteral("51 -5")});
    row("more columns", "A\t50.5\t-4.25\tdepth 5\t7", one("50.5 -4.25 A"));
    row("lines of both kinds", "A\t50.5\t-4.25\n51\t-5",
        {QStringLiteral("50.5 -4.25 A"), QStringLiteral("51 -5")});
    row("comments and blank lines", "# A list\n\n#A\t1\t2\n \t \nB\t50.5\t-4.25\n# end", one("50.5 -4.25 B"));
    row("blanks around", " A b \t 50.5 \t -4.25 ", one("50.5 -4.25 A b"));
    row("degrees and minutes", "A\t50\u00B0 30.0' N\t004\u00B0 15.0' W", one("50.5 -4.25 A"));
    row("degrees, minutes, seconds", "50 30 00 S\t4 15 00.0 E", one("-50.5 4.25"));
    row("letters in front", "N50.5\tW4.25", one("50.5 -4.25"));
    row("exponent", "5.05e1\t-4.25E0", one("50.5 -4.25"));
    row("header", "name\tlat\tlong\nA\t50.5\t-4.25", one("50.5 -4.25 A"));
    row("header in another order", "Remark\tLONGITUDE\t Latitude \tNAME\nx\t-4.25\t50.5\tA",
        one("50.5 -4.25 A"));
    row("header with lng", "lat\tlng\n50.5\t-4.25", one("50.5 -4.25"));
    row("header with lon", "lon\tlat\n-4.25\t50.5\tmore", one("50.5 -4.25"));
    row("header without a name", "lat\tlong\tdepth\n50.5\t-4.25\t7", one("50.5 -4.25"));
    row("row without the last cells", "lat\tlong\tname\tr\n50.5\t-4.25", one("50.5 -4.25"));
    row("hash in a name", "lat\tlong\tname\n50.5\t-4.25\t#7", one("50.5 -4.25 #7"));
    row("edges", "90\t180\n-90\t-180", {QStringLiteral("90 180"), QStringLiteral("-90 -180")});
}

void tst_ZrRouteTab::lists()
{
    QFETCH(QString, text);
    QFETCH(QStringList, summary);
    ZrWpts route;
    QCOMPARE(FromBytes(text.toUtf8(), route), QString());
    QCOMPARE(Summary(route), summary);
    QVERIFY(!route.linked);
}

void tst_ZrRouteTab::fields()
{
    ZrGeoShapes shapes;
    QString error = QStringLiteral("former");
    QVERIFY(ZrRouteTab::Read("lat\tlong\tr\tspeedtype\tat wpt\tclassA\tfilename\tRemark\n"
                             "1\t2\t12.5\t2\ttrue\t255\ta.log\tx\n1\t2\t\t\t\t\t\t\n1\t2\tnan\n",
        shapes, error));
    QCOMPARE(error, QString());
    QCOMPARE(shapes.points.size(), std::size_t(3));
    QCOMPARE(shapes.points[0].fields,
        (QJsonObject{{QStringLiteral("r"), 12.5}, {QStringLiteral("speedtype"), QStringLiteral("2")},
            {QStringLiteral("at wpt"), true}, {QStringLiteral("classA"), QStringLiteral("255")},
            {QStringLiteral("filename"), QStringLiteral("a.log")}}));
    QVERIFY(shapes.points[1].fields.isEmpty());
    QVERIFY(std::isnan(shapes.points[2].fields.value(QStringLiteral("r")).toDouble()));
}

void tst_ZrRouteTab::routeComment()
{
    ZrWpts route;
    QCOMPARE(
        FromBytes(
            "# route to the harbour\n# route {\"linked\": true, \"speed\": 2, \"prefix\": \"P\"}\n1\t2\n",
            route),
        QString());
    QVERIFY(route.linked && !route.closed);
    QCOMPARE(route.speed, 2.0);
    QCOMPARE(route.prefix, QStringLiteral("P"));
}

/// Spreadsheets save in the encoding of their system, or in UTF-16.
void tst_ZrRouteTab::encodings()
{
    const QString text = QStringLiteral("\u00C5land\t50\u00B030'N\t4\u00B015'W\n");
    const QByteArray wide
        = QByteArray("\xFF\xFE") + QByteArray(reinterpret_cast<const char*>(text.utf16()), text.size() * 2);
    for (const QByteArray& bytes : {text.toUtf8(), text.toLatin1(), wide, "\xEF\xBB\xBF" + text.toUtf8(),
             "\xEF\xBB\xBF" + text.toLatin1()}) {
        ZrWpts route;
        QCOMPARE(FromBytes(bytes, route), QString());
        QCOMPARE(Summary(route), QStringList{QStringLiteral("50.5 -4.25 \u00C5land")});
    }
}

void tst_ZrRouteTab::errors_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("error");
    const auto row = [](const char* tag, const char* text, const char* error) {
        QTest::newRow(tag) << QString::fromUtf8(text) << QString::fromUtf8(error);
    };
    row("no tabs", "1\t2\n\n50.5 -4.25\n", "line 3: no columns; they are separated by tabs");
    row("latitude", "# x\r\nA\tnorth\t2\r\n", "line 2: \"north\" is no latitude");
    row("longitude", "A\t1\t\n", "line 1: \"\" is no longitude");
    row("decimal comma", "50,5\t4\n", "line 1: \"50,5\" is no latitude");
    row("too far north", "90.5\t4\n", "line 1: latitude 90.5 is not within 90 degrees of the equator");
    row("too far east", "1\t2\n1\t181\n", "line 2: longitude 181 is not within 180 degrees of Greenwich");
    row("exchanged", "4.25W\t50.5N\n", "line 1: \"4.25W\" is no latitude");
    row("exchanged, letters in front", "N50\tS4\n", "line 1: \"S4\" is no longitude");
    row("missing longitude", "lat\tlong\n50.5\n", "line 2: no columns; they are separated by tabs");
    row("longitude cut off", "name\tlat\tlong\nA\t50.5\n", "line 2: \"\" is no longitude");
    row("header twice", "lat\tlong\n1\t2\nlat\tlong\n", "line 3: \"lat\" is no latitude");
    row("header below", "1\t2\nlat\tlong\n", "line 2: \"lat\" is no latitude");
    row("number field", "lat\tlong\talt\n1\t2\thigh\n", "line 2: \"high\" is no value of \"alt\"");
    row("integer field", "lat\tlong\tspeedtype\n1\t2\t1.5\n", "line 2: \"1.5\" is no value of \"speedtype\"");
    row("switch field", "lat\tlong\tveg\n1\t2\tyes\n", "line 2: \"yes\" is no value of \"veg\"");
    row("uuid field", "lat\tlong\tUUID\n1\t2\t7\n", "line 2: \"7\" is no value of \"UUID\"");
    row("damaged comment", "\n# route {\"linked\": tr\n1\t2\n",
        "line 2: the fields of the route are damaged: illegal value");
    row("route field", "# route {\"linked\": 1}\n1\t2\n",
        "line 1: \"linked\" is no field of a route, or its value is none");
    row("unknown route field", "# route {\"colour\": 1}\n1\t2\n",
        "line 1: \"colour\" is no field of a route, or its value is none");
    row("header only", "lat\tlong\n", "no route and no waypoints in it");
}

/// A zero byte does not hide the lines behind it.
void tst_ZrRouteTab::zeroBytes()
{
    ZrWpts route;
    QCOMPARE(FromBytes(QByteArray("A\0b\t1\t2\n3\t4\n", 12), route), QString());
    QCOMPARE(route.GetCount(), 2);
    QCOMPARE(FromBytes(QByteArray("1\t2\n\0\n\xFF\n", 8), route),
        QStringLiteral("line 2: no columns; they are separated by tabs"));
}

void tst_ZrRouteTab::errors()
{
    QFETCH(QString, text);
    QFETCH(QString, error);
    ZrWpts route;
    QCOMPARE(FromBytes(text.toUtf8(), route), error);
}

QTEST_GUILESS_MAIN(tst_ZrRouteTab)
#include "tst_ZrRouteTab.moc"
