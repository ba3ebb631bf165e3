// Events as a table for other programs.

#include "ZrKit/review/ZrEventTable.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <limits>

class tst_ZrEventTable : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void lines();
    void fields_data();
    void fields();
    void written();
    void nothingToWrite();
    void cannotBeWritten_data();
    void cannotBeWritten();

private:
    static QByteArray Content(const QString& path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
};

void tst_ZrEventTable::lines()
{
    QCOMPARE(ZrEventTable::Heading(), QByteArray("time,source,code,uid,text,detail\r\n"));
    ZrLogEvt evt(1614780309.5, esUser, QStringLiteral("Wreck, \"bow\""));
    evt.uid = QUuid(QStringLiteral("{01234567-89ab-cdef-0123-456789abcdef}"));
    evt.code = 7;
    evt.detail = QStringLiteral("Größe");
    QCOMPARE(ZrEventTable::Line(evt),
        QStringLiteral("2021-03-03T14:05:09.500Z,%1,7,01234567-89ab-cdef-0123-456789abcdef,"
                       "\"Wreck, \"\"bow\"\"\",Größe\r\n")
            .arg(static_cast<int>(esUser))
            .toUtf8());
    ZrLogEvt bare(std::numeric_limits<double>::quiet_NaN(), esSystem, QString());
    bare.uid = QUuid();
    QCOMPARE(
        ZrEventTable::Line(bare), QStringLiteral(",%1,0,,,\r\n").arg(static_cast<int>(esSystem)).toUtf8());
}

void tst_ZrEventTable::fields_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("field");
    QTest::newRow("empty") << QString() << QString();
    QTest::newRow("plain") << "a b"
                           << "a b";
    QTest::newRow("comma") << "a,b"
                           << "\"a,b\"";
    QTest::newRow("quote") << "a\"b"
                           << "\"a\"\"b\"";
    QTest::newRow("lines") << "a\r\nb"
                           << "\"a\r\nb\"";
    QTest::newRow("controls") << QString::fromLatin1("a\0\x1b"
                                                     "b",
        4) << "ab";
}

void tst_ZrEventTable::fields()
{
    QFETCH(QString, text);
    QTEST(ZrEventTable::Field(text), "field");
}

void tst_ZrEventTable::written()
{
    const QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("Ereignisse ä.csv"));
    const std::vector<ZrLogEvt> events{
        ZrLogEvt(20.0, esUser, QStringLiteral("b")), ZrLogEvt(10.0, esUser, QStringLiteral("a"))};
    QVERIFY(ZrEventTable::Write(events, path));
    QCOMPARE(Content(path),
        ZrEventTable::Heading() + ZrEventTable::Line(events[0]) + ZrEventTable::Line(events[1]));
}

void tst_ZrEventTable::nothingToWrite()
{
    const QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("events.csv"));
    QString error;
    QVERIFY(!ZrEventTable::Write({}, path, &error));
    QCOMPARE(error, QStringLiteral("There are no events to write"));
    QVERIFY(!QFile::exists(path));
}

void tst_ZrEventTable::cannotBeWritten_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("no folder") << "/proc/none/events.csv";
    QTest::newRow("a folder") << "/tmp";
    QTest::newRow("empty") << "";
}

void tst_ZrEventTable::cannotBeWritten()
{
    QFETCH(QString, path);
    QString error;
    QVERIFY(!ZrEventTable::Write({ZrLogEvt(20.0, esUser, QStringLiteral("b"))}, path, &error));
    QVERIFY2(error.startsWith(QStringLiteral("Cannot write %1: ").arg(path)), qPrintable(error));
    QVERIFY(!ZrEventTable::Write({ZrLogEvt(20.0, esUser, QStringLiteral("b"))}, path));
}

QTEST_APPLESS_MAIN(tst_ZrEventTable)
#include "tst_ZrEventTable.moc"
