#include "XmlChecks.h"
#include "ZrUtil/LqColourMap.h"

#include <QtTest/QtTest>

#include <type_traits>

class tst_LqColourMap : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void newMapIsEmpty();
    void linesThatAreEntries_data();
    void linesThatAreEntries();
    void linesThatAreSkipped_data();
    void linesThatAreSkipped();
    void bracketsOnly();
    void readingTwiceAppends();
    void missingFileLeavesTheMap();
    void pathsThatAreNone();
    void hostileFiles_data();
    void hostileFiles();
    void messages();
    void sizes();
    void assignmentIsShallow();

private:
    QString Write(const QByteArray& text);

    QTemporaryDir m_dir;
};

namespace {

QVector<int> Values(const LqColourMap& map)
{
    QVector<int> values;
    for (int i = 0; i < 3 * map.m_count; ++i)
        values << map.m_rgb[i];
    return values;
}

/// What is said at the end of a file, with the number of entries then.
QString ReadLine(const QString& path, int entries)
{
    return QStringLiteral("\"%1\" : Read  %2  fields.").arg(path).arg(entries);
}

bool Said(const QString& text)
{
    return DebugLines::Get().join(QLatin1Char('\n')).contains(text);
}

} // namespace

QString tst_LqColourMap::Write(const QByteArray& text)
{
    const QString path = m_dir.filePath(QStringLiteral("map äß.cmap.json"));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
        return QString();
    return path;
}

void tst_LqColourMap::newMapIsEmpty()
{
    const LqColourMap map;
    QVERIFY(!map.m_rgb);
    QCOMPARE(map.m_count, 0);
}

void tst_LqColourMap::linesThatAreEntries_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QVector<int>>("values");
    const auto row = [](const char* name, const char* line, QVector<int> values) {
        QTest::newRow(name) << QByteArray(line) << values;
    };
    row("plain", R"({ "r" : 1 , "g" : 2 , "b" : 3 , "a" : 4 })", {1, 2, 3});
    row("three parts", R"({ "r" : 1 , "g" : 2 , "b" : 3)", {1, 2, 3});
    row("tabs and runs of blanks", "\t{  \"r\" :\t10 ,  \"g\"  : 20, \"b\" : 30 ,", {10, 20, 30});
    row("256 and 300", R"({ "r" : 256 , "g" : 300 , "b" : 255 ,)", {0, 44, 255});
    row("negative", R"({ "r" : -1 , "g" : -256 , "b" : +5 ,)", {255, 0, 5});
    row("no numbers", R"({ "r" : red , "g" : 0x10 , "b" : 1.5 ,)", {0, 0, 0});
    row("beyond an int", R"({ "r" : 4294967297 , "g" : 2 , "b" : 3 ,)", {0, 2, 3});
    row("empty parts are dropped", R"(,, { "r" : 7 ,, "g" : 8 ,,, "b" : 9 ,,)", {7, 8, 9});
    row("any words", "a b c 1,d e 2,f g 3", {1, 2, 3});
    row("CR LF", "{ \"r\" : 1 , \"g\" : 2 , \"b\" : 3\r\n", {1, 2, 3});
}

void tst_LqColourMap::linesThatAreEntries()
{
    QFETCH(QByteArray, line);
    LqColourMap map;
    map.ReadCMap(Write("[\n" + line + "\n]\n"));
    QTEST(Values(map), "values");
}

void tst_LqColourMap::linesThatAreSkipped_data()
{
    QTest::addColumn<QByteArray>("line");
    const auto row = [](const char* name, const char* line) { QTest::newRow(name) << QByteArray(line); };
    row("blank", "   ");
    row("two parts", R"({ "r" : 1 , "g" : 2)");
    row("first part of three words", R"({"r" : 1 , "g" : 2 , "b" : 3)");
    row("first part of five words", R"({ "r" : 1 x , "g" : 2 , "b" : 3)");
    row("second part of two words", R"({ "r" : 1 , "g": 2 , "b" : 3)");
    row("brace behind the third part", R"({ "r" : 1 , "g" : 2 , "b" : 3 })");
    row("a part of one blank", R"({ "r" : 7 , , "g" : 8 , "b" : 9)");
    row("no blanks", R"({"r":1,"g":2,"b":3})");
    row("zero bytes of text", "");
}

void tst_LqColourMap::linesThatAreSkipped()
{
    QFETCH(QByteArray, line);
    LqColourMap map;
    map.ReadCMap(Write(line + "\n{ \"r\" : 4 , \"g\" : 5 , \"b\" : 6 ,"));
    QCOMPARE(Values(map), (QVector<int>{4, 5, 6}));
}

void tst_LqColourMap::bracketsOnly()
{
    const QString path = Write("[\n]\n");
    LqColourMap map;
    const DebugLines lines;
    map.ReadCMap(path);
    QCOMPARE(map.m_count, 0);
    QCOMPARE(
        DebugLines::Get(), (QStringList{QStringLiteral("Reading: \"%1\"").arg(path), ReadLine(path, 0)}));
}

void tst_LqColourMap::readingTwiceAppends()
{
    const QString path
        = Write("{ \"r\" : 1 , \"g\" : 2 , \"b\" : 3 ,\n{ \"r\" : 4 , \"g\" : 5 , \"b\" : 6 ,");
    LqColourMap map;
    map.ReadCMap(path);
    map.ReadCMap(path);
    QCOMPARE(Values(map), (QVector<int>{1, 2, 3, 4, 5, 6, 1, 2, 3, 4, 5, 6}));
}

void tst_LqColourMap::missingFileLeavesTheMap()
{
    LqColourMap map;
    map.ReadCMap(Write("{ \"r\" : 1 , \"g\" : 2 , \"b\" : 3 ,"));
    const DebugLines lines;
    map.ReadCMap(m_dir.filePath(QStringLiteral("missing")));
    QCOMPARE(Values(map), (QVector<int>{1, 2, 3}));
    QVERIFY(Said(QStringLiteral("could not open colour map file for read: ")));
    QVERIFY(!Said(QStringLiteral("Reading:")));
}

void tst_LqColourMap::pathsThatAreNone()
{
    for (const QString& path :
        {m_dir.path(), QString(), QString(QChar(0)), QStringLiteral(":/none.cmap.json")}) {
        LqColourMap map;
        const DebugLines lines;
        map.ReadCMap(path);
        QCOMPARE(map.m_count, 0);
        QVERIFY(!map.m_rgb);
        QCOMPARE(DebugLines::Get().size(), 1);
        QVERIFY(Said(QStringLiteral("could not open colour map file for read: ")));
    }
}

void tst_LqColourMap::hostileFiles_data()
{
    constexpr int ten = 10000000;
    const QByteArray entry = R"({ "r" : 4 , "g" : 5 , "b" : 6 ,)";
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("entries");
    QTest::newRow("zero bytes") << QByteArray(1000, '\0') << 0;
    QTest::newRow("a zero byte in a value") << QByteArray("{ r : 4\0 , g : 5 , b : 6\n", 24) << 1;
    QTest::newRow("no UTF-8") << QByteArray("{ \xFF : 4 , \xFE : 5 , \x80 : 6\n") << 1;
    QTest::newRow("carriage returns as line ends") << entry + '\r' + entry + '\r' << 1;
    QTest::newRow("a line of blanks") << QByteArray(ten, ' ') + '\n' + entry << 1;
    QTest::newRow("a line of commas") << QByteArray(ten, ',') + '\n' + entry << 1;
    QTest::newRow("a line of one word") << QByteArray(ten, 'x') + '\n' + entry << 1;
    QTest::newRow("a value of many digits") << "{ r : " + QByteArray(ten, '9') + " , g : 5 , b : 6\n" << 1;
    QTest::newRow("many entries") << (entry + '\n').repeated(100000) << 100000;
}

/// Lines of any length and bytes of any value are entries or are not.
void tst_LqColourMap::hostileFiles()
{
    QFETCH(QByteArray, text);
    LqColourMap map;
    map.ReadCMap(Write(text));
    QTEST(map.m_count, "entries");
    for (int i = 1; i < map.m_count; ++i)
        QVERIFY(map.m_rgb[3 * i] == 4 && map.m_rgb[3 * i + 1] == 5 && map.m_rgb[3 * i + 2] == 6);
}

void tst_LqColourMap::messages()
{
    const QString path = Write("{ \"r\" : 1 , \"g\" : 2 , \"b\" : 3 ,");
    LqColourMap map;
    const DebugLines lines;
    map.ReadCMap(path);
    map.ReadCMap(path);
    const QString reading = QStringLiteral("Reading: \"%1\"").arg(path);
    QCOMPARE(DebugLines::Get(), (QStringList{reading, ReadLine(path, 1), reading, ReadLine(path, 2)}));
}

void tst_LqColourMap::sizes()
{
    LqColourMap map;
    map.SetSize(2);
    QCOMPARE(map.m_count, 2);
    for (unsigned char i = 0; i < 6; ++i)
        map.m_rgb[i] = i;
    map.SetSize(1000);
    QCOMPARE(map.m_count, 1000);
    for (unsigned char i = 0; i < 6; ++i)
        QCOMPARE(map.m_rgb[i], i);
    for (const int n : {0, -5}) {
        map.SetSize(3);
        map.SetSize(n);
        QCOMPARE(map.m_count, 0);
        QVERIFY(!map.m_rgb);
    }
}

void tst_LqColourMap::assignmentIsShallow()
{
    static_assert(!std::is_copy_constructible_v<LqColourMap>);
    LqColourMap a;
    a.SetSize(1);
    LqColourMap b;
    b = a;
    QCOMPARE(b.m_rgb, a.m_rgb);
    QCOMPARE(b.m_count, 1);
    const LqColourMap& same = b;
    b = same;
    QCOMPARE(b.m_count, 1);
    b.m_rgb = nullptr;
    b.m_count = 0;
}

QTEST_GUILESS_MAIN(tst_LqColourMap)
#include "tst_LqColourMap.moc"
