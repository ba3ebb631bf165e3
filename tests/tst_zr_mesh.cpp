// zr mesh: what a mesh holds, and where it is refused.

#include "ObjFile.h"
#include "ZrToolRun.h"

#include <QtTest/QtTest>

#include <cmath>
#include <sys/stat.h>

namespace {

ToolResult RunMesh(const QStringList& arguments)
{
    return RunTool(QStringList(S("mesh")) + arguments);
}

QString Vessel(const char* name)
{
    return S(ZR_SOURCE_DIR "/tests/data/obj-vessel/") + S(name);
}

/// The words behind a name in the text.
QString Field(const ToolResult& result, const char* name)
{
    for (const QString& line : result.Lines())
        if (line.startsWith(S(name).leftJustified(12)))
            return line.mid(12);
    return QString();
}

QVector<double> Numbers(const QJsonValue& array)
{
    QVector<double> numbers;
    for (const QJsonValue& value : array.toArray())
        numbers << (value.isNull() ? -1.0 : value.toDouble());
    return numbers;
}

} // namespace

class tst_zr_mesh : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void text();
    void textOfAVessel();
    void json();
    void jsonOfNothing();
    void jsonOfNoNumbers();
    void normalsThatAreNotUnit();
    void refusedFilesTellTheLine_data();
    void refusedFilesTellTheLine();
    void refusedFilesPrintNothingElse();
    void filesThatCannotBeRead();
    void longNamesAndLines();
    void usage_data();
    void usage();
    void help();
    void outputThatCannotBeWritten();
};

void tst_zr_mesh::text()
{
    const ObjFile file(objTriangle);
    const ToolResult result = RunMesh({S("info"), file.Path()});
    QCOMPARE(result.code, 0);
    QCOMPARE(result.err, QByteArray());
    QCOMPARE(QString::fromUtf8(result.out),
        S("Mesh        %1\n"
          "Size        %2 bytes\n"
          "Name        hull\n"
          "Triangles   1\n"
          "Positions   3\n"
          "Texture     2 coordinates\n"
          "Normals     2, all of unit length\n"
          "x           -1.5 to 7, 8.5 units\n"
          "y           2 to 20, 18 units\n"
          "z           0.5 to 9, 8.5 units\n"
          "Surface     86.97413 square units\n"
          "Degenerate  0 triangles\n")
            .arg(file.Path())
            .arg(objTriangle.size()));
}

void tst_zr_mesh::textOfAVessel()
{
    const ToolResult result = RunMesh({S("info"), Vessel("wamv-base.obj")});
    QCOMPARE(result.code, 0);
    QCOMPARE(Field(result, "Name"), S("-"));
    QCOMPARE(Field(result, "Triangles"), S("4564"));
    QCOMPARE(Field(result, "Positions"), S("2472"));
    QCOMPARE(Field(result, "Texture"), S("3931 coordinates"));
    QCOMPARE(Field(result, "Normals"), S("2893, all of unit length"));
    QCOMPARE(Field(result, "x"), S("-2.456249 to 2.555073, 5.011322 units"));
    QCOMPARE(Field(result, "Surface"), S("21.73157 square units"));
}

void tst_zr_mesh::json()
{
    const ObjFile file(objTriangle + "f 1/1/1 1/1/1 2/2/1\n");
    const ToolResult result = RunMesh({S("info"), S("--json"), file.Path()});
    QCOMPARE(result.code, 0);
    QCOMPARE(result.err, QByteArray());
    QCOMPARE(result.out.count('\n'), 1);
    const QJsonObject info = result.Json();
    QCOMPARE(info.keys(),
        QStringList({S("area"), S("degenerate"), S("extent"), S("high"), S("longest_normal"), S("low"),
            S("name"), S("normals"), S("not_finite"), S("not_unit_normals"), S("path"), S("positions"),
            S("shortest_normal"), S("size"), S("texture_coordinates"), S("triangles"), S("unit_normals")}));
    QCOMPARE(info[S("path")].toString(), file.Path());
    QCOMPARE(info[S("size")].toInt(), objTriangle.size() + 20);
    QCOMPARE(info[S("name")].toString(), S("hull"));
    QCOMPARE(info[S("triangles")].toInt(), 2);
    QCOMPARE(info[S("positions")].toInt(), 3);
    QCOMPARE(info[S("texture_coordinates")].toInt(), 2);
    QCOMPARE(info[S("normals")].toInt(), 2);
    QCOMPARE(info[S("not_finite")].toInt(-1), 0);
    QCOMPARE(Numbers(info[S("low")]), (QVector<double>{-1.5, 2.0, 0.5}));
    QCOMPARE(Numbers(info[S("high")]), (QVector<double>{7.0, 20.0, 9.0}));
    QCOMPARE(Numbers(info[S("extent")]), (QVector<double>{8.5, 18.0, 8.5}));
    // Half of |(-2.5, 18, -2.5) × (6, 6, 6)|.
    QVERIFY(std::fabs(info[S("area")].toDouble() - 0.5 * std::hypot(123.0, 123.0)) < 1e-12);
    QCOMPARE(info[S("degenerate")].toInt(), 1);
    QCOMPARE(info[S("unit_normals")], QJsonValue(true));
    QCOMPARE(info[S("not_unit_normals")].toInt(-1), 0);
    QCOMPARE(info[S("shortest_normal")].toDouble(), 1.0);
    QCOMPARE(info[S("longest_normal")].toDouble(), 1.0);
}

void tst_zr_mesh::jsonOfNothing()
{
    const ObjFile file("# nothing\n");
    const ToolResult result = RunMesh({S("info"), S("--json"), file.Path()});
    QCOMPARE(result.code, 0);
    const QJsonObject info = result.Json();
    QCOMPARE(info[S("triangles")].toInt(-1), 0);
    QCOMPARE(info[S("name")].toString(S("x")), QString());
    for (const char* key : {"low", "high", "extent"})
        for (const QJsonValue& value : info[S(key)].toArray())
            QVERIFY(value.isNull());
    QVERIFY(info[S("longest_normal")].isNull());
    const ToolResult text = RunMesh({S("info"), file.Path()});
    QCOMPARE(text.code, 0);
    QCOMPARE(Field(text, "Triangles"), S("0"));
    QCOMPARE(Field(text, "Normals"), S("0"));
    QCOMPARE(Field(text, "x"), QString());
}

void tst_zr_mesh::jsonOfNoNumbers()
{
    const ObjFile file("v nan inf 0\nvt 0 0\nvn 0 0 1\nf 1/1/1 1/1/1 1/1/1\n");
    const ToolResult result = RunMesh({S("info"), S("--json"), file.Path()});
    QCOMPARE(result.code, 0);
    QCOMPARE(result.Json()[S("not_finite")].toInt(), 3);
    QVERIFY(result.Json()[S("low")].toArray()[2].isNull());
    QCOMPARE(Field(RunMesh({S("info"), file.Path()}), "Not finite"), S("3 corners"));
}

void tst_zr_mesh::normalsThatAreNotUnit()
{
    const ToolResult result = RunMesh({S("info"), Vessel("fuze.obj")});
    QCOMPARE(Field(result, "Normals"), S("496, 496 not of unit length (2.400577 to 6.283186)"));
    const QJsonObject info = RunMesh({S("info"), S("--json"), Vessel("fuze.obj")}).Json();
    QCOMPARE(info[S("unit_normals")], QJsonValue(false));
    QCOMPARE(info[S("not_unit_normals")].toInt(), 496);
}

void tst_zr_mesh::refusedFilesTellTheLine_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QString>("reason");
    const auto row
        = [](const char* line, const char* reason) { QTest::newRow(line) << QByteArray(line) << S(reason); };
    row("o", "Error in object name definition: A name is one word, there are 0");
    row("v 1 2", "Error in vertex definition: 3 numbers are wanted, there are 2");
    row("v 1 2 x", "Error in vertex definition: \"x\" is not a number");
    row("vt 1", "Error in texture definition: 2 numbers are wanted, there are 1");
    row("vn 1 2 3 4", "Error in normal definition: 3 numbers are wanted, there are 4");
    row("f 1/1/1 2/2/2 3/1/2 1/1/1", "Error in face definition: A face has 3 corners, this one has 4");
    row("f 1//1 2//2 3//2",
        "Error in face definition: \"1//1\" is not position/texture/normal, three indices");
    row("f 1/1/1 2/2/2 9/1/2", "Error in face definition: There is no position 9, indices go from 1 to 3");
}

void tst_zr_mesh::refusedFilesTellTheLine()
{
    QFETCH(QByteArray, line);
    QFETCH(QString, reason);
    const ObjFile file(objTriangle + '\n' + line + "\n# behind\n");
    for (const QStringList& options : {QStringList(), QStringList(S("--json"))}) {
        const ToolResult result = RunMesh(QStringList(S("info")) + options + QStringList(file.Path()));
        QCOMPARE(result.code, 2);
        QCOMPARE(QString::fromUtf8(result.err), S("zr: %1: line 11: %2\n").arg(file.Path(), reason));
        QCOMPARE(result.out, QByteArray());
    }
}

/// The debug output of the library adds nothing to the message.
void tst_zr_mesh::refusedFilesPrintNothingElse()
{
    const ObjFile file("v 1\n");
    const ToolResult result = RunMesh({S("info"), S("--verbose"), file.Path()});
    QCOMPARE(result.code, 2);
    QCOMPARE(result.err.count('\n'), 1);
}

void tst_zr_mesh::filesThatCannotBeRead()
{
    const ObjFile file(objTriangle);
    const auto refused = [](const QString& path, const QString& reason) {
        const ToolResult result = RunMesh({S("info"), path});
        return result.code == 2 && result.out.isEmpty()
            && QString::fromUtf8(result.err) == S("zr: %1: %2\n").arg(path, reason);
    };
    QVERIFY(refused(file.Missing(), S("No such file or directory")));
    QVERIFY(refused(file.Folder(), S("This is a folder, not a file")));
    QVERIFY(refused(S("/dev/zero"), S("Not an ordinary file")));
    const QString pipe = file.Folder() + S("/pipe");
    QCOMPARE(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    QVERIFY(refused(pipe, S("Not an ordinary file")));
    if (QFile::exists(S("/proc/self/mem")))
        QVERIFY(refused(S("/proc/self/mem"), S("Input/output error")));
}

void tst_zr_mesh::longNamesAndLines()
{
    ObjFile file("o " + QByteArray(3000000, 'n') + '\n');
    const ToolResult named = RunMesh({S("info"), S("--json"), file.Path()});
    QCOMPARE(named.code, 0);
    QCOMPARE(named.Json()[S("name")].toString().size(), 3000000);
    file.Write("v 1 2 " + QByteArray(3000000, 'x') + '\n');
    const ToolResult result = RunMesh({S("info"), file.Path()});
    QCOMPARE(result.code, 2);
    QVERIFY2(result.err.size() < 300, result.Text());
}

void tst_zr_mesh::usage_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("words");
    QTest::newRow("no verb") << QStringList() << QByteArray("No verb is given; zr mesh --help lists them");
    QTest::newRow("no file") << QStringList(S("info")) << QByteArray("FILE");
    QTest::newRow("two files") << QStringList({S("info"), S("a"), S("b")}) << QByteArray("b");
    QTest::newRow("another verb") << QStringList({S("show"), S("a")}) << QByteArray("show");
    QTest::newRow("another option") << QStringList({S("info"), S("a"), S("--xml")}) << QByteArray("--xml");
}

void tst_zr_mesh::usage()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, words);
    const ToolResult result = RunMesh(arguments);
    QCOMPARE(result.code, 1);
    QCOMPARE(result.out, QByteArray());
    QVERIFY2(result.err.startsWith("zr: ") && result.err.contains(words), result.Text());
}

void tst_zr_mesh::help()
{
    const ToolResult group = RunMesh({S("--help")});
    QCOMPARE(group.code, 0);
    QVERIFY2(group.out.contains("info"), group.Text());
    const ToolResult verb = RunMesh({S("info"), S("--help")});
    QCOMPARE(verb.code, 0);
    QVERIFY2(verb.out.contains("Units: those of the model"), verb.Text());
    QVERIFY2(RunTool({S("--help")}).out.contains("mesh"), "zr --help lists the group");
}

void tst_zr_mesh::outputThatCannotBeWritten()
{
    QProcess process;
    process.start(
        S("/bin/sh"), {S("-c"), S("\"$0\" mesh info \"$1\" > /dev/full"), ToolPath(), Vessel("fuze.obj")});
    const ToolResult result = Finish(process);
    QCOMPARE(result.code, 3);
    QCOMPARE(result.err, QByteArray("zr: standard output: No space left on device\n"));
}

QTEST_GUILESS_MAIN(tst_zr_mesh)
#include "tst_zr_mesh.moc"
