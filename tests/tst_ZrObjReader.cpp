#include "ObjFile.h"
#include "XmlChecks.h"
#include "ZrUtil/ZglObject.h"
#include "ZrUtil/ZrObjReader.h"

#include <QtTest/QtTest>

/// Where and why files are refused. What the loader accepts is tested with `ZglObject`.
class tst_ZrObjReader : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void newReader();
    void lineInError_data();
    void lineInError();
    void lineNumbersOfFilesOfAllKinds();
    void facesMayComeFirst();
    void firstOfSeveralErrors();
    void filesThatCannotBeRead();
    void nothingIsPrinted();
    void usedAgain();
    void longWordsAreCutInMessages();
};

void tst_ZrObjReader::newReader()
{
    const ZrObjReader reader;
    QCOMPARE(reader.Error(), QString());
    QCOMPARE(reader.Detail(), QString());
    QCOMPARE(reader.Line(), u64(0));
}

void tst_ZrObjReader::lineInError_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QString>("error");
    QTest::addColumn<QString>("detail");
    const auto row = [](const char* line, const char* error, const char* detail) {
        QTest::newRow(line) << QByteArray(line) << QString::fromLatin1(error) << QString::fromLatin1(detail);
    };
    const char* const name = "Error in object name definition";
    row("o", name, "A name is one word, there are 0");
    row("o two words", name, "A name is one word, there are 2");
    const char* const vertex = "Error in vertex definition";
    row("v 1 2", vertex, "3 numbers are wanted, there are 2");
    row("v", vertex, "3 numbers are wanted, there are 0");
    row("v 1 2 3 1.0", vertex, "3 numbers are wanted, there are 4");
    row("v 1 2 1,5", vertex, "\"1,5\" is not a number");
    row("v 1 2 1e39", vertex, "\"1e39\" is not a number");
    const char* const texture = "Error in texture definition";
    row("vt 1 2 0", texture, "2 numbers are wanted, there are 3");
    row("vt u 1", texture, "\"u\" is not a number");
    const char* const normal = "Error in normal definition";
    row("vn 1", normal, "3 numbers are wanted, there are 1");
    row("vn 1 2 -", normal, "\"-\" is not a number");
    const char* const face = "Error in face definition";
    row("f 1/1/1 1/1/1 1/1/1 1/1/1", face, "A face has 3 corners, this one has 4");
    row("f", face, "A face has 3 corners, this one has 0");
    row("f 1/1/1 1//1 1/1/1", face, "\"1//1\" is not position/texture/normal, three indices");
    row("f 1 2 3", face, "\"1\" is not position/texture/normal, three indices");
    row("f 1/1/1 2/2/2 3/1/x", face, "\"3/1/x\" is not position/texture/normal, three indices");
    row("f 1/1/1 2/2/2 4/1/1", face, "There is no position 4, indices go from 1 to 3");
    row("f -1/1/1 2/2/2 3/1/1", face, "There is no position -1, indices go from 1 to 3");
    row("f 1/1/1 2/3/2 3/1/1", face, "There is no texture coordinate 3, indices go from 1 to 2");
    row("f 1/1/1 2/2/2 3/1/0", face, "There is no normal 0, indices go from 1 to 2");
}

void tst_ZrObjReader::lineInError()
{
    QFETCH(QByteArray, line);
    const ObjFile file(objTriangle + "# a comment\n\n" + line + "\nf 1/1/1 2/2/2 3/1/2\n");
    ZrObjReader reader;
    ZglObject object;
    QVERIFY(!reader.Read(file.Path(), object));
    QTEST(reader.Error(), "error");
    QTEST(reader.Detail(), "detail");
    QCOMPARE(reader.Line(), u64(12));
    QVERIFY(object.m_vertices.empty() && object.m_texCoords.empty() && object.m_normals.empty());
}

void tst_ZrObjReader::lineNumbersOfFilesOfAllKinds()
{
    ZrObjReader reader;
    ZglObject object;
    const auto line = [&](const QByteArray& text) {
        const ObjFile file(text);
        return reader.Read(file.Path(), object) ? u64(0) : reader.Line();
    };
    QCOMPARE(line("v 1"), u64(1));
    QCOMPARE(line("v 1\n"), u64(1));
    QCOMPARE(line("\n\nv 1"), u64(3));
    QCOMPARE(line("\r\n\r\nv 1\r\n"), u64(3));
    QCOMPARE(line("\xEF\xBB\xBFv 1\n"), u64(1));
    QCOMPARE(line("\r\r\rv 1\n"), u64(1));
    // Lines across the blocks in which the file is read, and longer than one.
    QCOMPARE(
        line("v 0 0 0\n" + QByteArray(100000, '\n') + QByteArray(300000, '#') + "\nvn 0 0\n"), u64(100003));
    QCOMPARE(line(QByteArray(300000, '#') + "\nvn 0 0\n"), u64(2));
    QCOMPARE(line("\xEF\xBB\xBF" + QByteArray(300000, 'x') + "\nvn 0 0\n"), u64(2));
    QCOMPARE(line("\xEF\xBB\xBF" + QByteArray(300000, ' ') + "v 1\n"), u64(1));
    QCOMPARE(line("\xEF\xBB\xBFv" + QByteArray(300000, ' ') + "1\n"), u64(1));
    QCOMPARE(line(QByteArray("vt 0.125 0.25\n").repeated(200000) + "vt 1\n"), u64(200001));
    QCOMPARE(line(QByteArray("usemtl x\n").repeated(10) + QByteArray(600000, ' ') + "v 1\n"), u64(11));
}

/// Corners may refer to what comes later in the file; the face is what is in error when it does not come.
void tst_ZrObjReader::facesMayComeFirst()
{
    ZrObjReader reader;
    ZglObject object;
    const QByteArray rest = "v 1 2 3\nvt 0 1\nvn 0 0 1\n";
    ObjFile file("f 1/1/1 1/1/1 1/1/1\n" + rest);
    QVERIFY(reader.Read(file.Path(), object));
    QCOMPARE(object.m_vertices.size(), std::size_t(3));
    QCOMPARE(object.m_vertices[2], QVector3D(1.0F, 2.0F, 3.0F));
    file.Write("\nf 1/1/1 1/1/1 1/1/1\nf 1/1/1 1/1/1 1/2/1\n" + rest);
    QVERIFY(!reader.Read(file.Path(), object));
    QCOMPARE(reader.Line(), u64(3));
    QCOMPARE(object.m_vertices.size(), std::size_t(3));
}

void tst_ZrObjReader::firstOfSeveralErrors()
{
    ZrObjReader reader;
    ZglObject object;
    // An index that is missing is known at the end only: the other error comes first.
    ObjFile file("f 1/1/1 1/1/1 1/1/1\nv 1 2\nvt 1\n");
    QVERIFY(!reader.Read(file.Path(), object));
    QCOMPARE(reader.Line(), u64(2));
    file.Write("f 1/1/1 1/1/1 1/1/1\nf 2/1/1 1/1/1 1/1/1\n");
    QVERIFY(!reader.Read(file.Path(), object));
    QCOMPARE(reader.Line(), u64(1));
    QCOMPARE(reader.Detail(), QStringLiteral("There is no position 1, indices go from 1 to 0"));
}

void tst_ZrObjReader::filesThatCannotBeRead()
{
    const ObjFile file;
    for (const QString& path : {file.Missing(), file.Folder(), QString(), QStringLiteral("a\0b"),
             QString(QChar(0)), QStringLiteral("/proc/self/mem")}) {
        ZrObjReader reader;
        ZglObject object;
        QVERIFY(!reader.Read(path, object));
        QCOMPARE(reader.Error(), QStringLiteral("Unable to read:"));
        QCOMPARE(reader.Line(), u64(0));
        QVERIFY(!reader.Detail().isEmpty());
    }
}

void tst_ZrObjReader::nothingIsPrinted()
{
    const DebugLines lines;
    ZrObjReader reader;
    ZglObject object;
    ObjFile file("v 1\n");
    for (const QString& path : {file.Path(), file.Missing(), file.Folder(), QString(), QString(QChar(0))})
        QVERIFY(!reader.Read(path, object));
    QCOMPARE(DebugLines::Get(), QStringList());
}

void tst_ZrObjReader::usedAgain()
{
    ZrObjReader reader;
    ZglObject object;
    ObjFile file("v 1\n");
    QVERIFY(!reader.Read(file.Path(), object));
    file.Write(objTriangle);
    QVERIFY(reader.Read(file.Path(), object));
    QCOMPARE(reader.Error(), QString());
    QCOMPARE(reader.Detail(), QString());
    QCOMPARE(reader.Line(), u64(0));
}

void tst_ZrObjReader::longWordsAreCutInMessages()
{
    ZrObjReader reader;
    ZglObject object;
    const ObjFile file("v 1 2 " + QByteArray(10000000, 'x') + '\n');
    QVERIFY(!reader.Read(file.Path(), object));
    QCOMPARE(reader.Detail(),
        QLatin1Char('"') + QString(40, QLatin1Char('x')) + QStringLiteral("…\" is not a number"));
}

QTEST_GUILESS_MAIN(tst_ZrObjReader)
#include "tst_ZrObjReader.moc"
