// Route files that cannot be read or written: every reason with its line, hostile content, and what was there
// before stays.

#include "RouteFileChecks.h"
#include "ZrKit/planning/ZrGeoShapes.h"

#include <QDir>
#include <QTemporaryDir>

#ifdef Q_OS_UNIX
#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace {

QByteArray Repeated(const char* text, int count)
{
    return QByteArray(text).repeated(count);
}

/// Elements in elements.
QByteArray Nested(const char* name, int count)
{
    const QByteArray element(name);
    return ("<" + element + ">").repeated(count) + ("</" + element + ">").repeated(count);
}

} // namespace

class tst_ZrRouteFileErrors : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void damaged_data();
    void damaged();
    void cutAtEveryByte_data();
    void cutAtEveryByte();
    void changedBytes_data();
    void changedBytes();
    void hostile_data();
    void hostile();
    void outsideEntities();
    void tooManyWaypoints();
    void devicesStay();

    void unreadablePaths_data();
    void unreadablePaths();
    void tooLarge();
    void shapesStay();

    void invalidPositions_data();
    void invalidPositions();
    void unwritablePaths_data();
    void unwritablePaths();
    void existingFileIsReplaced();
    void fullDiskLeavesTheTarget();

private:
    std::unique_ptr<QTemporaryDir> m_dir;
};

void tst_ZrRouteFileErrors::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
}

void tst_ZrRouteFileErrors::damaged_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("error");
    const auto row = [](const char* tag, const QByteArray& bytes, const char* error) {
        QTest::newRow(tag) << bytes << QString::fromUtf8(error);
    };
    row("nothing", "", "the file is empty");
    row("blank lines", " \n\t\r\n", "the file is empty");
    row("only a mark", "\xEF\xBB\xBF", "the file is empty");
    row("comments only", "# nothing\n", "no route and no waypoints in it");
    row("archive", QByteArray("PK\x03\x04xyz"), "an archive (KMZ?), to be unpacked first");
    row("other xml", "<html><body/></html>", "neither GPX, KML nor a tag-structured store with waypoints");
    row("no xml", "<", "neither GPX, KML nor a tag-structured store with waypoints");
    row("commas", "Wreck,50.1,-4.2\n", "line 1: no columns; they are separated by tabs");

    row("json cut", "{\n\"waypoints\": [\n", "line 3: unterminated array");
    row("json word", "{\n\n\"a\": hello}", "line 3: illegal number");
    row("json array", "[1, 2]", "not GeoJSON: no \"type\"");
    row("json number", "{\"a\": 1e400}", "line 1: illegal number");
    row("other json", "{\"a\": 1}", "not GeoJSON: no \"type\"");
    row("no list", "{\"waypoints\": {}}", "\"waypoints\" is no list");
    row("no waypoints", "{\"waypoints\": []}", "no route and no waypoints in it");
    row("number for waypoint", "{\"waypoints\": [\n7]}", "line 2: waypoint 1: \"lat\" is no number");
    row("no longitude",
        "{\"prefix\": \"[{\\\"\",\n\"waypoints\": [{\"lat\": 1,\n\"long\": 2},\n\n{\"lat\": 1}]}",
        "line 5: waypoint 2: \"long\" is no number");
    row("text for latitude", "{\"waypoints\": [{\"lat\": \"50\", \"long\": 1}]}",
        "line 1: waypoint 1: \"lat\" is no number");

    const QByteArray store = "<?xml?>\n<XmlStore name=\"x\">\n<Settings name=\"Waypoints\">\n";
    const QByteArray end = "</Settings>\n</XmlStore>\n";
    row("store cut", store + "<Object name=\"Wpt 0\" type=\"W\">\n<Lat val=\"1\"/>\n<Lng val=\"1\"/>\n",
        "line 7: cut off, the end of the store is missing");
    row("store without longitude",
        store + "<Object name=\"Wpt 0\" type=\"W\">\n<Lat val=\"1\"/>\n<Lng val=\"1\"/>\n</Object>\n"
            + "<Object name=\"Wpt 1\" type=\"W\">\n<Lat val=\"1\"/>\n</Object>\n" + end,
        "line 8: waypoint 2: \"Lng\" is no number");
    row("store with text",
        store + "<Object name=\"Wpt 0\" type=\"W\">\n<Lat val=\"north\"/>\n</Object>\n" + end,
        "line 4: waypoint 1: \"Lat\" is no number");
    row("empty store", store + end, "no route and no waypoints in it");
}

void tst_ZrRouteFileErrors::damaged()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, error);
    ZrWpts route = RandomRoute(3, 1, true, true);
    const ZrWpts before(route);
    const ZrWpt* head = route.GetHead();
    QCOMPARE(FromBytes(bytes, route), error);
    QCOMPARE(route.GetHead(), head);
    QCOMPARE(Differences(route, before), QStringList());

    const QString path = m_dir->filePath(QStringLiteral("damaged"));
    QVERIFY(WriteWhole(path, bytes));
    ZrRouteFile file;
    QVERIFY(!file.Read(path, route));
    QCOMPARE(file.Error(), path + QStringLiteral(": ") + error);
    QCOMPARE(route.GetHead(), head);
}

void tst_ZrRouteFileErrors::cutAtEveryByte_data()
{
    EveryFormat();
}

/// A file that was cut is an error in every form but the list, where a line less is a waypoint less.
void tst_ZrRouteFileErrors::cutAtEveryByte()
{
    QFETCH(int, format);
    const QByteArray bytes = ToBytes(format, RandomRoute(2, 3, true, false));
    const int end = bytes.trimmed().size();
    for (int size = 0; size < end; ++size) {
        ZrWpts route;
        Append(route, At(1.0, 2.0, QStringLiteral("kept")));
        const QString error = FromBytes(bytes.left(size), route);
        if (format == ZrRouteFile::List && error.isEmpty()) {
            QVERIFY(route.GetCount() >= 1 && route.GetCount() <= 2);
            continue;
        }
        QVERIFY2(!error.isEmpty(), bytes.left(size).constData());
        QCOMPARE(Summary(route), QStringList{QStringLiteral("1 2 kept")});
    }
    ZrWpts route;
    QCOMPARE(FromBytes(bytes.left(end), route), QString());
    QCOMPARE(route.GetCount(), 2);
}

void tst_ZrRouteFileErrors::changedBytes_data()
{
    EveryFormat();
}

/// Whatever is read of a damaged file can be written again, unless it has no positions.
void tst_ZrRouteFileErrors::changedBytes()
{
    QFETCH(int, format);
    const QByteArray bytes = ToBytes(format, RandomRoute(2, 3, true, true));
    std::mt19937 random(12);
    int read = 0;
    for (int i = 0; i < 500; ++i) {
        QByteArray damaged = bytes;
        for (int n = i % 3; n >= 0; --n)
            damaged[int(random() % unsigned(damaged.size()))] = static_cast<char>(' ' + random() % 95);
        ZrWpts route;
        if (!FromBytes(damaged, route).isEmpty()) {
            QVERIFY(route.IsEmpty());
            continue;
        }
        ++read;
        QVERIFY(route.GetCount() > 0);
        const bool isValid = format != ZrRouteFile::Settings && format != ZrRouteFile::Store;
        QVERIFY(!isValid || !ToBytes(ZrRouteFile::Gpx, route).isEmpty());
    }
    QVERIFY(read > 0 && read < 500);
}

void tst_ZrRouteFileErrors::hostile_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("error");
    const auto row = [](const char* tag, const QByteArray& bytes, const char* error) {
        QTest::newRow(tag) << bytes << QString::fromUtf8(error);
    };
    const QByteArray bomb
        = "<?xml version=\"1.0\"?><!DOCTYPE x [<!ENTITY a \"aaaaaaaaaa\">"
          "<!ENTITY b \"&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;\"><!ENTITY c \"&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;\">"
          "<!ENTITY d \"&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;\"><!ENTITY e \"&d;&d;&d;&d;&d;&d;&d;&d;&d;&d;\">]>\n";
    const char* bombed = "line 2: Entity expands to more characters than the entity expansion limit.";
    row("gpx bomb", bomb + "<gpx><wpt lat=\"1\" lon=\"1\"><name>&e;</name></wpt></gpx>", bombed);
    row("kml bomb", bomb + "<kml><Placemark><name>&e;</name></Placemark></kml>", bombed);
    row("gpx depth", "<gpx>" + Nested("a", 200000) + "</gpx>", "line 1: elements nest too deeply");
    row("gpx depth in a point", "<gpx><wpt lat=\"1\" lon=\"1\">\n" + Nested("a", 200000) + "</wpt></gpx>",
        "line 2: elements nest too deeply");
    row("kml folders", "<kml>" + Nested("Folder", 100000) + "</kml>", "line 1: folders nest too deeply");
    row("kml geometries", "<kml><Placemark>" + Nested("MultiGeometry", 100000) + "</Placemark></kml>",
        "line 1: geometries nest too deeply");
    row("kml other", "<kml>\n\n" + Nested("x", 100000) + "</kml>", "line 3: elements nest too deeply");
    row("json depth", Repeated("{\"waypoints\":[", 100000), "line 1: too deeply nested document");
    row("json array depth", Repeated("[", 100000), "line 1: too deeply nested document");
    row("collections",
        Repeated("{\"type\":\"GeometryCollection\",\"geometries\":[", 100) + Repeated("]}", 100),
        "geometries nest too deeply");
    row("huge number", "1" + Repeated("0", 400) + "\t1\n",
        (QByteArray("line 1: \"1") + Repeated("0", 400) + "\" is no latitude").constData());
    row("infinity", "inf\t1\n", "line 1: latitude inf is not within 90 degrees of the equator");
    row("nan", "1\tnan\n", "line 1: longitude nan is not within 180 degrees of Greenwich");
    row("zero bytes", QByteArray(100000, '\0'), "line 1: no columns; they are separated by tabs");
    row("one long line", Repeated("x", 1 << 20), "line 1: no columns; they are separated by tabs");
    row("many columns", "1\t1" + Repeated("\tx", 100000), "line 1: \"x\" is no longitude");
    row("many lines", Repeated("\n", 1 << 20) + "x\n",
        "line 1048577: no columns; they are separated by tabs");
}

void tst_ZrRouteFileErrors::hostile()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, error);
    ZrWpts route;
    Append(route, At(1.0, 2.0, QStringLiteral("kept")));
    QCOMPARE(FromBytes(bytes, route), error);
    QCOMPARE(Summary(route), QStringList{QStringLiteral("1 2 kept")});
}

/// No other file gets into the route.
void tst_ZrRouteFileErrors::outsideEntities()
{
    const QString secret = m_dir->filePath(QStringLiteral("secret"));
    QVERIFY(WriteWhole(secret, "secret"));
    const QByteArray head = "<!DOCTYPE x [<!ENTITY a SYSTEM \"file://" + secret.toUtf8() + "\">]>\n";
    ZrWpts route;
    QCOMPARE(
        FromBytes(head + "<gpx><wpt lat=\"1\" lon=\"2\"><name>&a;</name></wpt></gpx>", route), QString());
    QCOMPARE(Summary(route), QStringList{QStringLiteral("1 2")});
}

void tst_ZrRouteFileErrors::tooManyWaypoints()
{
    QByteArray list = Repeated("1\t1\n", ZrRouteFile::MaxWaypoints);
    ZrWpts route;
    QCOMPARE(FromBytes(list + "1\t1\n", route), QStringLiteral("more than 250000 waypoints"));
    QVERIFY(route.IsEmpty());
    QByteArray settings = "{\"waypoints\":[" + Repeated("{\"lat\":1,\"long\":1},", ZrRouteFile::MaxWaypoints)
        + "{\"lat\":1,\"long\":1}]}";
    QCOMPARE(FromBytes(settings, route), QStringLiteral("more than 250000 waypoints"));
}

void tst_ZrRouteFileErrors::unreadablePaths_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("reason");
    QTest::newRow("missing") << QStringLiteral("DIR/none.gpx") << QStringLiteral("No such file or directory");
    QTest::newRow("folder missing") << QStringLiteral("DIR/none/a.gpx")
                                    << QStringLiteral("No such file or directory");
    QTest::newRow("directory") << QStringLiteral("DIR") << QString();
    QTest::newRow("no permission") << QStringLiteral("DIR/locked.gpx") << QString();
    QTest::newRow("endless") << QStringLiteral("/dev/zero")
                             << QStringLiteral("too large for a route (more than 64 MiB)");
    QTest::newRow("no path") << QString() << QString();
}

void tst_ZrRouteFileErrors::unreadablePaths()
{
    QFETCH(QString, path);
    QFETCH(QString, reason);
    path.replace(QStringLiteral("DIR"), m_dir->path());
#ifdef Q_OS_UNIX
    // The superuser reads everything but its own memory at 0.
    if (path.endsWith(QStringLiteral("locked.gpx")))
        QCOMPARE(symlink("/proc/self/mem", QFile::encodeName(path).constData()), 0);
#endif
    ZrWpts route;
    Append(route, At(1.0, 2.0, QStringLiteral("kept")));
    ZrRouteFile file;
    QVERIFY(!file.Read(path, route));
    QVERIFY2(file.Error().startsWith(path + QStringLiteral(": ")), qPrintable(file.Error()));
    QVERIFY2(file.Error().size() > path.size() + 5, qPrintable(file.Error()));
    if (!reason.isEmpty())
        QCOMPARE(file.Error(), path + QStringLiteral(": ") + reason);
    QCOMPARE(Summary(route), QStringList{QStringLiteral("1 2 kept")});
}

void tst_ZrRouteFileErrors::tooLarge()
{
    const QString path = m_dir->filePath(QStringLiteral("sparse"));
    const QByteArray begin = "1\t2\n#";
    QVERIFY(WriteWhole(path, begin));
    QFile sparse(path);
    QVERIFY(sparse.resize(ZrRouteFile::MaxSize + 1));
    ZrWpts route;
    ZrRouteFile file;
    QVERIFY(!file.Read(path, route));
    QCOMPARE(file.Error(), path + QStringLiteral(": too large for a route (more than 64 MiB)"));
    QVERIFY(sparse.resize(ZrRouteFile::MaxSize));
    QVERIFY2(file.Read(path, route), qPrintable(file.Error()));
    QCOMPARE(Summary(route), QStringList{QStringLiteral("1 2")});
}

void tst_ZrRouteFileErrors::shapesStay()
{
    const QString path = m_dir->filePath(QStringLiteral("list"));
    QVERIFY(WriteWhole(path, "1\t2\nx\t3\n"));
    ZrGeoShapes shapes;
    shapes.points.push_back({{5.0, 6.0}, QStringLiteral("kept"), {}});
    ZrRouteFile file;
    QVERIFY(!file.ReadShapes(path, shapes));
    QCOMPARE(file.Error(), path + QStringLiteral(": line 2: \"x\" is no latitude"));
    QVERIFY(!file.ReadShapes(m_dir->path(), shapes));
    QVERIFY(WriteWhole(
        path, "{\"waypoints\": [{\"lat\": 1, \"long\": 2}, {\"lat\": null, \"long\": 2, \"name\": \"x\"}]}"));
    QVERIFY(!file.ReadShapes(path, shapes));
    QCOMPARE(file.Error(),
        path + QStringLiteral(": waypoint 2 (x): latitude nan is not within 90 degrees of the equator"));
    QCOMPARE(shapes.points.size(), std::size_t(1));
    QCOMPARE(shapes.points[0].name, QStringLiteral("kept"));
}

void tst_ZrRouteFileErrors::invalidPositions_data()
{
    EveryFormat();
}

void tst_ZrRouteFileErrors::invalidPositions()
{
    QFETCH(int, format);
    const QString path = m_dir->filePath(QStringLiteral("out"));
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinity = std::numeric_limits<double>::infinity();
    for (const ZrGeoPoint& point : {ZrGeoPoint{nan, 1.0}, ZrGeoPoint{90.001, 1.0}, ZrGeoPoint{-infinity, 1.0},
             ZrGeoPoint{1.0, nan}, ZrGeoPoint{1.0, 180.5}, ZrGeoPoint{1.0, -1e300}}) {
        ZrWpts route;
        Append(route, At(1.0, 2.0));
        Append(route, At(point.lat, point.lng, QStringLiteral("bad")));
        QVERIFY(WriteWhole(path, "precious"));
        ZrRouteFile file;
        const bool written = file.Write(path, ZrRouteFile::eFormat(format), route);
        if (format == ZrRouteFile::Settings || format == ZrRouteFile::Store) {
            // What is being edited must be savable as it is.
            QVERIFY2(written, qPrintable(file.Error()));
            ZrWpts read;
            QVERIFY2(file.Read(path, read), qPrintable(file.Error()));
            QCOMPARE(read.GetCount(), 2);
            continue;
        }
        QVERIFY(!written);
        const QString error = path + QStringLiteral(": waypoint 2 (bad): ");
        QVERIFY2(file.Error().startsWith(error), qPrintable(file.Error()));
        QCOMPARE(ReadWhole(path), QByteArray("precious"));
    }
}

void tst_ZrRouteFileErrors::unwritablePaths_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("directory") << QStringLiteral("DIR");
    QTest::newRow("no folder") << QStringLiteral("DIR/none/a.gpx");
    QTest::newRow("below a file") << QStringLiteral("DIR/file/a.gpx");
    QTest::newRow("read-only folder") << QStringLiteral("/proc/a.gpx");
    QTest::newRow("no path") << QString();
}

void tst_ZrRouteFileErrors::unwritablePaths()
{
    QFETCH(QString, path);
    QVERIFY(WriteWhole(m_dir->filePath(QStringLiteral("file")), "precious"));
    path.replace(QStringLiteral("DIR"), m_dir->path());
    const ZrWpts route = RandomRoute(3, 1, true, false);
    for (const ZrRouteFile::eFormat format : AllFormats) {
        ZrRouteFile file;
        QVERIFY(!file.Write(path, format, route));
        QVERIFY2(file.Error().startsWith(path + QStringLiteral(": ")), qPrintable(file.Error()));
        QVERIFY2(file.Error().size() > path.size() + 5, qPrintable(file.Error()));
    }
    QCOMPARE(ReadWhole(m_dir->filePath(QStringLiteral("file"))), QByteArray("precious"));
    QCOMPARE(QDir(m_dir->path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot).size(), 1);
}

/// A device is written to: it never becomes a file, whoever writes. The superuser, who could put one in its
/// place, tries with a device of the test's own.
void tst_ZrRouteFileErrors::devicesStay()
{
#ifdef Q_OS_LINUX
    QString full = QStringLiteral("/dev/full");
    if (geteuid() == 0) {
        full = m_dir->filePath(QStringLiteral("full"));
        if (mknod(QFile::encodeName(full).constData(), S_IFCHR | 0666, makedev(1, 7)) != 0)
            QSKIP("no device can be made here");
    }
    const ZrWpts route = RandomRoute(3, 1, true, false);
    for (const ZrRouteFile::eFormat format : AllFormats) {
        ZrRouteFile file;
        QVERIFY(!file.Write(full, format, route));
        QVERIFY2(file.Error().startsWith(full + QStringLiteral(": ")), qPrintable(file.Error()));

        struct stat info
        {
        };

        QCOMPARE(stat(QFile::encodeName(full).constData(), &info), 0);
        QVERIFY(S_ISCHR(info.st_mode));
    }
#else
    QSKIP("needs the full device");
#endif
}

void tst_ZrRouteFileErrors::existingFileIsReplaced()
{
    const QString path = m_dir->filePath(QStringLiteral("a.gpx"));
    QVERIFY(WriteWhole(path, QByteArray(100000, 'x')));
    ZrRouteFile file;
    QVERIFY(!file.Write(m_dir->path(), ZrRouteFile::Gpx, ZrWpts()));
    QVERIFY2(file.Write(path, ZrRouteFile::Gpx, RandomRoute(2, 1, true, false)), qPrintable(file.Error()));
    QCOMPARE(file.Error(), QString()); // of the last call
    QVERIFY(ReadWhole(path).startsWith("<?xml"));
    QVERIFY(!ReadWhole(path).contains("xxxx"));
}

#ifdef Q_OS_UNIX

void tst_ZrRouteFileErrors::fullDiskLeavesTheTarget()
{
    const QString path = m_dir->filePath(QStringLiteral("a.gpx"));
    QVERIFY(WriteWhole(path, "precious"));
    const ZrWpts route = RandomRoute(100, 1, true, false);
    for (const ZrRouteFile::eFormat format : AllFormats) {
        const pid_t child = fork();
        if (child == 0) {
            const rlimit limit{2000, 2000};
            signal(SIGXFSZ, SIG_IGN);
            alarm(30);
            if (setrlimit(RLIMIT_FSIZE, &limit) != 0)
                _exit(1);
            ZrRouteFile file;
            if (file.Write(path, format, route))
                _exit(2);
            _exit(file.Error().startsWith(path + QStringLiteral(": ")) ? 0 : 3);
        }
        int status = -1;
        QCOMPARE(waitpid(child, &status, 0), child);
        QCOMPARE(status, 0);
        QCOMPARE(ReadWhole(path), QByteArray("precious"));
        QCOMPARE(
            QDir(m_dir->path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot).size(), 1);
    }
}

#else

void tst_ZrRouteFileErrors::fullDiskLeavesTheTarget()
{
    QSKIP("needs a limit on the size of files");
}

#endif

QTEST_GUILESS_MAIN(tst_ZrRouteFileErrors)
#include "tst_ZrRouteFileErrors.moc"
