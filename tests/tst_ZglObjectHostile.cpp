#include "ObjFile.h"
#include "XmlChecks.h"
#include "ZrUtil/ZglObject.h"

#include <QtTest/QtTest>

#include <cmath>
#include <functional>

/// Mesh files that nobody should trust: they are read or refused, in time and memory that follow their size.
class tst_ZglObjectHostile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void realMeshes_data();
    void realMeshes();
    void bytesOfAllKinds_data();
    void bytesOfAllKinds();
    void encodings();
    void longLines_data();
    void longLines();
    void manyFacesOfNothing();
    void manyFacesOfLittle();
    void cutAnywhere();
    void everyByteChanged();
    void garbage_data();
    void garbage();
};

namespace {

constexpr int megabyte = 1000000;

bool IsEmpty(const ZglObject& object)
{
    return object.m_vertices.empty() && object.m_texCoords.empty() && object.m_normals.empty();
}

/// Entries in step, as drawing needs them.
bool IsWhole(const ZglObject& object)
{
    const std::size_t size = object.m_vertices.size();
    return size % 3 == 0 && object.m_texCoords.size() == size && object.m_normals.size() == size;
}

/// Peak of the memory of this process so far, bytes; 0 where the system does not tell.
qint64 PeakMemory()
{
    QFile file(QStringLiteral("/proc/self/status"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray& line : file.readAll().split('\n'))
        if (line.startsWith("VmHWM:"))
            return line.mid(6).simplified().split(' ').first().toLongLong() * 1024;
    return 0;
}

class Noise
{
public:
    char Next()
    {
        m_state = m_state * 1664525 + 1013904223;
        return static_cast<char>(m_state >> 24);
    }

private:
    quint32 m_state = 1;
};

} // namespace

void tst_ZglObjectHostile::realMeshes_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("triangles");
    QTest::newRow("capsule") << QStringLiteral("capsule") << 10200;
    QTest::newRow("fuze") << QStringLiteral("fuze") << 1000;
    QTest::newRow("vessel") << QStringLiteral("wamv-base") << 4564;
}

void tst_ZglObjectHostile::realMeshes()
{
    QFETCH(QString, name);
    QFETCH(int, triangles);
    const DebugLines lines;
    ZglObject object;
    QVERIFY(
        ZglObject::LoadObj(QStringLiteral(ZR_SOURCE_DIR "/tests/data/obj-vessel/%1.obj").arg(name), object));
    QCOMPARE(object.m_vertices.size(), static_cast<std::size_t>(3 * triangles));
    QVERIFY(IsWhole(object));
    for (const QVector3D& normal : object.m_normals)
        QVERIFY(normal.length() > 0.99F && normal.length() < 6.3F);
    for (const QVector2D& uv : object.m_texCoords)
        QVERIFY(std::isfinite(uv.x()) && std::isfinite(uv.y()));
    QCOMPARE(DebugLines::Get(), QStringList());
}

void tst_ZglObjectHostile::bytesOfAllKinds_data()
{
    QTest::addColumn<QByteArray>("extra");
    QTest::addColumn<bool>("loads");
    const auto row = [](const char* name, const QByteArray& extra, bool loads) {
        QTest::newRow(name) << extra << loads;
    };
    row("a tab behind the statement", "v\t1 2 3\n", true);
    row("a tab instead of a blank", "v 1\t2 3\n", false);
    row("a tab beside a blank", "v 1 \t2 3\t\n", true);
    row("tabs only", "\t\t\n", true);
    row("a zero byte for the statement", QByteArray("\0\n", 2), true);
    row("a zero byte behind the statement", QByteArray("v\0 1 2\n", 7), true);
    row("a zero byte in a number", QByteArray("v 1 2 3\0\n", 9), false);
    row("a zero byte in an index", QByteArray("f 1/1/1 2/2/2 3/1\0/2\n", 21), false);
    row("zero bytes", QByteArray(1000, '\0'), true);
    row("bytes that are no UTF-8, ignored", "usemtl \xFF\xFE\x80\n\xC3\x28 1 2\n", true);
    row("bytes that are no UTF-8, a number", "v 1 2 \xFF\n", false);
    row("carriage returns in a line", "v 1 \r2\r 3\n", true);
    row("carriage returns as line ends", "v 1 2 3\rv 4 5 6\r", false);
    row("blanks at the end", "v 1 2 3     \n", true);
    row("blanks at the begin", "     v 1 2\n", false);
    row("a comment behind", "v 1 2 3 # deck\n", false);
    row("a fourth coordinate", "v 1 2 3 1\n", false);
    row("a colour", "v 1 2 3 0.5 0.5 0.5\n", false);
    row("a continued line", "v 1 2 \\\n3\n", false);
    row("a quad", "f 1/1/1 2/2/2 3/1/2 1/1/1\n", false);
    row("no texture", "f 1//1 2//2 3//2\n", false);
    row("no normal", "f 1/1 2/2 3/1\n", false);
    row("positions only", "f 1 2 3\n", false);
    row("relative indices", "f -3/-2/-2 -2/-1/-1 -1/-1/-1\n", false);
    row("index 0", "f 0/1/1 2/2/2 3/1/2\n", false);
    row("an index beyond the list", "f 4/1/1 2/2/2 3/1/2\n", false);
    row("an index beyond 32 bits", "f 4294967297/1/1 2/2/2 3/1/2\n", false);
    row("an index beyond 64 bits", "f 18446744073709551617/1/1 2/2/2 3/1/2\n", false);
    row("capital letters", "V 1\nF 1\n", true);
    row("lines and points", "l 1 2\np 1\ncstype bezier\nend\n", true);
}

void tst_ZglObjectHostile::bytesOfAllKinds()
{
    QFETCH(QByteArray, extra);
    QFETCH(bool, loads);
    const ObjFile file(objTriangle + extra);
    ZglObject object;
    const DebugLines lines;
    QCOMPARE(ZglObject::LoadObj(file.Path(), object), loads);
    QCOMPARE(object.m_vertices.size(), std::size_t(loads ? 3 : 0));
    QVERIFY(IsWhole(object));
    QCOMPARE(DebugLines::Get().size(), loads ? 0 : 1);
}

void tst_ZglObjectHostile::encodings()
{
    ZglObject object;
    ObjFile file(QByteArray("\xEF\xBB\xBF") + objTriangle);
    QVERIFY(ZglObject::LoadObj(file.Path(), object));
    QCOMPARE(object.m_name, QStringLiteral("hull"));
    file.Write(QStringLiteral("o Rümpfe\n").toUtf8() + objTriangle.mid(7));
    QVERIFY(ZglObject::LoadObj(file.Path(), object));
    QCOMPARE(object.m_name, QStringLiteral("Rümpfe"));
    file.Write("o R\xFCmpfe\n");
    QVERIFY(ZglObject::LoadObj(file.Path(), object));
    QCOMPARE(object.m_name, QStringLiteral("R\uFFFDmpfe"));
    // Text of two bytes a character has no statement that is known.
    const QString wide = QString::fromLatin1(objTriangle);
    file.Write("\xFF\xFE" + QByteArray(reinterpret_cast<const char*>(wide.utf16()), 2 * wide.size()));
    ZglObject empty;
    QVERIFY(ZglObject::LoadObj(file.Path(), empty));
    QVERIFY(IsEmpty(empty));
}

void tst_ZglObjectHostile::longLines_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<bool>("loads");
    const QByteArray longWord(10 * megabyte, '1');
    const QByteArray manyWords = QByteArray("1 ").repeated(5 * megabyte);
    const QByteArray manyBlanks(10 * megabyte, ' ');
    QTest::newRow("a comment") << '#' + longWord << true;
    QTest::newRow("an unknown word") << longWord << true;
    QTest::newRow("an unknown statement") << "usemtl " + longWord << true;
    QTest::newRow("blanks") << manyBlanks << true;
    QTest::newRow("blanks before a statement") << manyBlanks + "v 1 2 3" << true;
    QTest::newRow("blanks before one in error") << manyBlanks + "v 1 2" << false;
    QTest::newRow("blanks within") << "v 1 2" + manyBlanks + "3" << true;
    QTest::newRow("words for a vertex") << "v " + manyWords << false;
    QTest::newRow("words for a face") << "f " + manyWords << false;
    QTest::newRow("a number too large") << "v 1 2 " + longWord << false;
    QTest::newRow("a number of many digits") << "v 1 2 0." + longWord << true;
    QTest::newRow("an index") << "f " + longWord + "/1/1 1/1/1 1/1/1" << false;
    QTest::newRow("slashes") << "f " + QByteArray(10 * megabyte, '/') + " 1/1/1 1/1/1" << false;
    QTest::newRow("a name") << "o " + longWord << true;
    QTest::newRow("carriage returns") << QByteArray(10 * megabyte, '\r') + "v 1 2 3" << true;
}

void tst_ZglObjectHostile::longLines()
{
    QFETCH(QByteArray, line);
    QFETCH(bool, loads);
    for (const QByteArray& end : {QByteArray("\n"), QByteArray()}) {
        const ObjFile file(objTriangle + line + end);
        ZglObject object;
        const DebugLines lines;
        QCOMPARE(ZglObject::LoadObj(file.Path(), object), loads);
        QCOMPARE(object.m_vertices.size(), std::size_t(loads ? 3 : 0));
    }
}

/// A file that is all faces claims lists that it does not hold.
void tst_ZglObjectHostile::manyFacesOfNothing()
{
    const ObjFile file(QByteArray("f 2147483647/2147483647/2147483647 1/1/1 1/1/1\n").repeated(500000));
    ZglObject object;
    const DebugLines lines;
    QVERIFY(!ZglObject::LoadObj(file.Path(), object));
    QVERIFY(IsEmpty(object));
    QCOMPARE(DebugLines::Get(), QStringList(QStringLiteral("Error in face definition")));
}

void tst_ZglObjectHostile::manyFacesOfLittle()
{
    const ObjFile file("v 1 2 3\nvt 0 1\nvn 0 0 1\n" + QByteArray("f 1/1/1 1/1/1 1/1/1\n").repeated(500000));
    ZglObject object;
    QVERIFY(ZglObject::LoadObj(file.Path(), object));
    QCOMPARE(object.m_vertices.size(), std::size_t(1500000));
    QVERIFY(IsWhole(object));
}

void tst_ZglObjectHostile::cutAnywhere()
{
    for (int size = 0; size < objTriangle.size(); ++size) {
        const ObjFile file(objTriangle.left(size));
        ZglObject object;
        ZglObject::LoadObj(file.Path(), object);
        QVERIFY2(IsWhole(object), QByteArray::number(size));
        // Only without its line end is the triangle still there.
        QVERIFY2(IsEmpty(object) || size >= objTriangle.size() - 1, QByteArray::number(size));
    }
}

void tst_ZglObjectHostile::everyByteChanged()
{
    ObjFile file;
    const DebugLines lines;
    for (int i = 0; i < objTriangle.size(); ++i) {
        for (const char byte : {'\0', '\n', '\r', ' ', '/', '-', '9', 'f', '\xFF'}) {
            QByteArray text = objTriangle;
            text[i] = byte;
            ZglObject object;
            const bool loaded = ZglObject::LoadObj(file.Write(text), object);
            QVERIFY2(IsWhole(object) && object.m_vertices.size() <= 3 && (loaded || IsEmpty(object)), text);
        }
    }
}

void tst_ZglObjectHostile::garbage_data()
{
    QTest::addColumn<int>("kind");
    QTest::newRow("noise") << 0;
    QTest::newRow("noise without line ends") << 1;
    QTest::newRow("zero bytes") << 2;
    QTest::newRow("blanks") << 3;
    QTest::newRow("line ends") << 4;
    QTest::newRow("carriage returns") << 5;
    QTest::newRow("a first line without an end") << 6;
}

/// 100 MB of what is no mesh: nothing of it is kept, so memory stays small.
void tst_ZglObjectHostile::garbage()
{
    QFETCH(int, kind);
    constexpr int size = 100 * megabyte;
    const ObjFile place(kind == 6 ? "\xEF\xBB\xBF" : "# begin\n");
    {
        QFile file(place.Path());
        QVERIFY(file.open(QIODevice::Append));
        Noise noise;
        for (int done = 0; done < size; done += megabyte) {
            QByteArray block(megabyte, "..\0 \n\r."[kind]);
            if (kind < 2) {
                for (char& byte : block) {
                    byte = noise.Next();
                    if (kind == 1 && byte == '\n')
                        byte = ' ';
                }
            }
            QCOMPARE(file.write(block), qint64(megabyte));
        }
    }
    const qint64 before = PeakMemory();
    ZglObject object;
    ZglObject::LoadObj(place.Path(), object);
    QVERIFY(IsEmpty(object));
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    QVERIFY(PeakMemory() - before < 20 * megabyte);
#else
    Q_UNUSED(before)
#endif
}

QTEST_GUILESS_MAIN(tst_ZglObjectHostile)
#include "tst_ZglObjectHostile.moc"
