#include "XmlChecks.h"
#include "ZrUtil/ZglObject.h"

#include <QtTest/QtTest>

#include <cmath>

class tst_ZglObject : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void triangle();
    void cornersOfSeveralFaces();
    void otherStatementsAreIgnored();
    void commentsOnly_data();
    void commentsOnly();
    void statementsInError_data();
    void statementsInError();
    void numbersThatParse_data();
    void numbersThatParse();
    void indicesThatAreNotThere_data();
    void indicesThatAreNotThere();
    void errorLeavesTheArrays();
    void loadingAgainAppends();
    void unreadable();
    void garbage();
    void copies();

private:
    QString Write(const QByteArray& text);

    QTemporaryDir m_dir;
};

namespace {

const QByteArray triangle = "o hull\n"
                            "v 1 2 3\nv -1.5 2e1 .5\nv 7. 8 9\n"
                            "vt 0.25 0.75\nvt 1 0\n"
                            "vn 0 0 1\nvn 0 1 0\n"
                            "f 1/1/1 2/2/2 3/1/2\n";

const char* const faceError = "Error in face definition";

bool Said(const QString& text)
{
    return DebugLines::Get().join(QLatin1Char('\n')).contains(text);
}

} // namespace

QString tst_ZglObject::Write(const QByteArray& text)
{
    const QString path = m_dir.filePath(QStringLiteral("mesh äß.obj"));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
        return QString();
    return path;
}

void tst_ZglObject::triangle()
{
    ZglObject object;
    QVERIFY(ZglObject::LoadObj(Write(::triangle), object));
    QCOMPARE(object.m_name, QStringLiteral("hull"));
    QVERIFY(object.m_vertices
        == (std::vector<QVector3D>{{1.0F, 2.0F, 3.0F}, {-1.5F, 20.0F, 0.5F}, {7.0F, 8.0F, 9.0F}}));
    QVERIFY(object.m_texCoords == (std::vector<QVector2D>{{0.25F, 0.75F}, {1.0F, 0.0F}, {0.25F, 0.75F}}));
    QVERIFY(object.m_normals
        == (std::vector<QVector3D>{{0.0F, 0.0F, 1.0F}, {0.0F, 1.0F, 0.0F}, {0.0F, 1.0F, 0.0F}}));
}

void tst_ZglObject::cornersOfSeveralFaces()
{
    ZglObject object;
    QVERIFY(ZglObject::LoadObj(Write(::triangle + "f 3/2/1 2/2/1 1/1/1\n"), object));
    QCOMPARE(object.m_vertices.size(), std::size_t(6));
    QCOMPARE(object.m_texCoords.size(), std::size_t(6));
    QCOMPARE(object.m_normals.size(), std::size_t(6));
    QCOMPARE(object.m_vertices[3], QVector3D(7.0F, 8.0F, 9.0F));
    QCOMPARE(object.m_vertices[5], QVector3D(1.0F, 2.0F, 3.0F));
}

void tst_ZglObject::otherStatementsAreIgnored()
{
    QByteArray text
        = "mtllib a.mtl\nusemtl steel\ns 1\ng hull deck\n\n   \nl 1 2\nvp 1\n  # not at the begin\n"
        + ::triangle;
    ZglObject object;
    QVERIFY(ZglObject::LoadObj(Write(text), object));
    QCOMPARE(object.m_vertices.size(), std::size_t(3));
    ZglObject fromDos;
    QVERIFY(ZglObject::LoadObj(Write(text.replace("\n", "\r\n")), fromDos));
    QVERIFY(fromDos.m_vertices == object.m_vertices);
    ZglObject noLastLineEnd;
    QVERIFY(ZglObject::LoadObj(Write(::triangle.left(::triangle.size() - 1)), noLastLineEnd));
    QCOMPARE(noLastLineEnd.m_vertices.size(), std::size_t(3));
}

void tst_ZglObject::commentsOnly_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("comments") << QByteArray("# a\n#b\n# f 1 2 3 4\n");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("blank lines") << QByteArray("\n\n  \n");
}

void tst_ZglObject::commentsOnly()
{
    QFETCH(QByteArray, text);
    ZglObject object;
    const DebugLines lines;
    QVERIFY(ZglObject::LoadObj(Write(text), object));
    QVERIFY(object.m_vertices.empty() && object.m_texCoords.empty() && object.m_normals.empty());
    QCOMPARE(DebugLines::Get(), QStringList());
}

void tst_ZglObject::statementsInError_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QString>("error");
    const auto row = [](const char* line, const char* error) {
        QTest::newRow(line) << QByteArray(line) << QString::fromLatin1(error);
    };
    for (const char* line : {"o", "o two words"})
        row(line, "Error in object name definition");
    for (const char* line :
        {"v 1 2", "v 1 2 3 4", "v 1 2 x", "v 1 2 1e39", "v 1,5 2 3", "v 1 2 1e-46", "v", "v 1\t2 3"})
        row(line, "Error in vertex definition");
    for (const char* line : {"vt 1", "vt 1 2 3", "vt a 1", "vt"})
        row(line, "Error in texture definition");
    for (const char* line : {"vn 1 2", "vn 1 2 3 4", "vn 1 2 -", "vn"})
        row(line, "Error in normal definition");
    for (const char* line : {"f", "f 1/1/1 2/2/2", "f 1/1/1 2/2/2 3/1/1 1/1/1", "f 1//1 2//2 3//1", "f 1 2 3",
             "f 1/1 2/2 3/1", "f 1/1/1/1 2/2/2 3/1/1", "f a/1/1 2/2/2 3/1/1", "f 1/1/1. 2/2/2 3/1/1",
             "f 99999999999/1/1 2/2/2 3/1/1", "f /1/1 2/2/2 3/1/1"})
        row(line, faceError);
}

void tst_ZglObject::statementsInError()
{
    QFETCH(QByteArray, line);
    ZglObject object;
    const DebugLines lines;
    QVERIFY(!ZglObject::LoadObj(Write(::triangle + line + "\nf 1/1/1 2/2/2 3/1/2\n"), object));
    QVERIFY(object.m_vertices.empty() && object.m_texCoords.empty() && object.m_normals.empty());
    QFETCH(QString, error);
    QCOMPARE(DebugLines::Get().size(), 1);
    QVERIFY(Said(error));
}

void tst_ZglObject::numbersThatParse_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<float>("value");
    QTest::newRow("plain") << QByteArray("0.1") << 0.1F;
    QTest::newRow("no digit behind the point") << QByteArray("1.") << 1.0F;
    QTest::newRow("no digit before the point") << QByteArray("-.5") << -0.5F;
    QTest::newRow("plus") << QByteArray("+2.5") << 2.5F;
    QTest::newRow("exponent") << QByteArray("1E+3") << 1000.0F;
    QTest::newRow("largest") << QByteArray("3.4e38") << 3.4e38F;
}

void tst_ZglObject::numbersThatParse()
{
    QFETCH(QByteArray, text);
    ZglObject object;
    QVERIFY(
        ZglObject::LoadObj(Write("v " + text + " nan inf\nvt 0 0\nvn 0 0 1\nf 1/1/1 1/1/1 1/1/1\n"), object));
    QTEST(object.m_vertices[0].x(), "value");
    QVERIFY(std::isnan(object.m_vertices[0].y()));
    QVERIFY(std::isinf(object.m_vertices[0].z()));
}

void tst_ZglObject::indicesThatAreNotThere_data()
{
    QTest::addColumn<QByteArray>("face");
    for (const char* face : {"f 0/1/1 2/2/2 3/1/2", "f 4/1/1 2/2/2 3/1/2", "f -1/1/1 2/2/2 3/1/2",
             "f 1/3/1 2/2/2 3/1/2", "f 1/1/1 2/2/0 3/1/2", "f 1/1/1 2/2/3 3/1/2", "f 1/1/1 2/-2/2 3/1/2",
             "f 2147483647/1/1 2/2/2 3/1/2"})
        QTest::newRow(face) << QByteArray(face);
}

void tst_ZglObject::indicesThatAreNotThere()
{
    QFETCH(QByteArray, face);
    ZglObject object;
    const DebugLines lines;
    QVERIFY(!ZglObject::LoadObj(Write(::triangle + face + '\n'), object));
    QVERIFY(object.m_vertices.empty() && object.m_texCoords.empty() && object.m_normals.empty());
    QVERIFY(Said(QString::fromLatin1(faceError)));
}

void tst_ZglObject::errorLeavesTheArrays()
{
    ZglObject object;
    QVERIFY(ZglObject::LoadObj(Write(::triangle), object));
    QVERIFY(!ZglObject::LoadObj(Write("o deck\n" + ::triangle.mid(7) + "v 1\n"), object));
    QCOMPARE(object.m_name, QStringLiteral("deck"));
    QCOMPARE(object.m_vertices.size(), std::size_t(3));
}

void tst_ZglObject::loadingAgainAppends()
{
    ZglObject object;
    const QString path = Write(::triangle);
    QVERIFY(ZglObject::LoadObj(path, object));
    QVERIFY(ZglObject::LoadObj(path, object));
    QCOMPARE(object.m_vertices.size(), std::size_t(6));
    QCOMPARE(object.m_vertices[3], object.m_vertices[0]);
}

void tst_ZglObject::unreadable()
{
    for (const QString& path : {m_dir.filePath(QStringLiteral("missing")), m_dir.path(), QString()}) {
        ZglObject object;
        const DebugLines lines;
        QVERIFY(!ZglObject::LoadObj(path, object));
        QCOMPARE(DebugLines::Get(), QStringList(QStringLiteral("Unable to read: \"%1\"").arg(path)));
    }
}

void tst_ZglObject::garbage()
{
    QByteArray bytes;
    quint32 state = 1;
    for (int i = 0; i < 1000000; ++i) {
        state = state * 1664525 + 1013904223;
        bytes.append(static_cast<char>(state >> 24));
    }
    ZglObject object;
    ZglObject::LoadObj(Write(bytes), object);
    QVERIFY(object.m_vertices.empty());
    QVERIFY(!ZglObject::LoadObj(Write("v " + bytes.replace('\n', 'x')), object));
}

void tst_ZglObject::copies()
{
    ZglObject object;
    QCOMPARE(object.m_reserved, 0);
    QVERIFY(ZglObject::LoadObj(Write(::triangle), object));
    object.m_reserved = 5;
    const ZglObject copy = object;
    QCOMPARE(copy.m_name, object.m_name);
    QCOMPARE(copy.m_reserved, 5);
    QVERIFY(copy.m_normals == object.m_normals);
    ZglObject moved = std::move(object);
    QVERIFY(moved.m_vertices == copy.m_vertices);
    object = moved;
    QVERIFY(object.m_texCoords == copy.m_texCoords);
}

QTEST_GUILESS_MAIN(tst_ZglObject)
#include "tst_ZglObject.moc"
