// The log of a recording in a foreign form, made in a worker.

#include "ZrKit/import/ZrImportTask.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

namespace {

constexpr int patience = 60000; ///< milliseconds
constexpr int headBytes = 1024; ///< of the file with the line

QString Source(const char* path)
{
    return QStringLiteral(ZR_SOURCE_DIR "/data/") + QString::fromLatin1(path);
}

QString Line()
{
    return Source("sidescan-xtf/iver2-scotsman-pings0-299.xtf");
}

QByteArray LineBytes()
{
    QFile file(Line());
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

class tst_ZrImportTask : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void init() { m_folder = std::make_unique<QTemporaryDir>(); }

    void byContent_data();
    void byContent();
    void places();
    void imports();
    void flaws();
    void nothingInIt();
    void noFolder();
    void cancelled();
    void goneMeanwhile();

private:
    QString File(const char* name) const { return m_folder->filePath(QString::fromUtf8(name)); }

    QString Write(const char* name, const QByteArray& bytes) const
    {
        QFile file(File(name));
        return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() ? file.fileName()
                                                                                    : QString();
    }

    /// The result; -1 when it does not end.
    static int Import(ZrImportTask& task, const QString& path, const QString& log)
    {
        QSignalSpy finished(&task, &ZrImportTask::Finished);
        if (!task.Start(path, log) || !finished.wait(patience))
            return -1;
        return finished.size() == 1 ? finished[0][0].toInt() : -1;
    }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void tst_ZrImportTask::byContent_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("isForeign");
    QTest::newRow("side-scan line") << Line() << true;
    QTest::newRow("glider") << Source("glider-nav/sea035.12.gli.sub.36.csv") << true;
    QTest::newRow("receiver") << Source("gnss-echosounder/2022.05.30_201358_gnss.txt") << true;
    QTest::newRow("sentences with the suffix of logs") << Source("nmea-boat/plaka.log") << true;
    QTest::newRow("plain text") << Source("sidescan-xtf/SOURCE.txt") << false;
    QTest::newRow("nothing there") << Source("nothing.xtf") << false;
    QTest::newRow("a folder") << Source("sidescan-xtf") << false;
}

void tst_ZrImportTask::byContent()
{
    QFETCH(QString, path);
    QFETCH(bool, isForeign);
    QCOMPARE(ZrImportTask::IsForeign(path), isForeign);
}

void tst_ZrImportTask::places()
{
    const QString path = Write("line.one.xtf", "x");
    ZrImportTask::Place place = ZrImportTask::PlaceFor(path, m_folder->path());
    QCOMPARE(place.log, File("line.one.log"));
    QVERIFY(!place.HasPresent());
    // Made before, and not older.
    Write("line.one.log", "log");
    place = ZrImportTask::PlaceFor(path, m_folder->path());
    QCOMPARE(place.present, File("line.one.log"));
    QCOMPARE(place.log, File("line.one-2.log"));
    Write("line.one-2.log", "log");
    QCOMPARE(ZrImportTask::PlaceFor(path, m_folder->path()).log, File("line.one-3.log"));
    // Changed since.
    QFile changed(path);
    QVERIFY(changed.open(QIODevice::ReadWrite));
    QVERIFY(changed.setFileTime(QDateTime::currentDateTime().addSecs(60), QFileDevice::FileModificationTime));
    changed.close();
    QVERIFY(!ZrImportTask::PlaceFor(path, m_folder->path()).HasPresent());
    QCOMPARE(ZrImportTask::PlaceFor(path, File("none")).log, File("none/line.one.log"));
}

void tst_ZrImportTask::imports()
{
    ZrImportTask task;
    const QString log = File("neu äß/line.log");
    QCOMPARE(Import(task, Line(), log), int(ZrImportTask::done));
    QVERIFY(QFileInfo(log).size() > 100000);
    QCOMPARE(task.Log(), log);
    QCOMPARE(task.Path(), Line());
    QVERIFY(task.Error().isEmpty());
    QCOMPARE(task.FlawCount(), quint64(0));
    QVERIFY(!ZrImportTask::IsForeign(log));
    // The task serves again.
    QCOMPARE(Import(task, Line(), File("again.log")), int(ZrImportTask::done));
}

void tst_ZrImportTask::flaws()
{
    ZrImportTask task;
    const QString path = Write("short.xtf", LineBytes().chopped(99));
    QCOMPARE(Import(task, path, File("short.log")), int(ZrImportTask::done));
    QVERIFY(task.FlawCount() > 0);
    QVERIFY(!task.FlawText().isEmpty());
    // The next one has none of them.
    QCOMPARE(Import(task, Line(), File("line.log")), int(ZrImportTask::done));
    QVERIFY(task.FlawCount() == 0 && task.FlawText().isEmpty());
}

void tst_ZrImportTask::nothingInIt()
{
    ZrImportTask task;
    const QString path = Write("head.xtf", LineBytes().left(headBytes));
    QCOMPARE(Import(task, path, File("head.log")), int(ZrImportTask::failed));
    QVERIFY(!task.Error().isEmpty());
    QVERIFY(!QFileInfo::exists(File("head.log")));
    QCOMPARE(Import(task, File("missing.xtf"), File("missing.log")), int(ZrImportTask::failed));
    QVERIFY(!task.Error().isEmpty());
}

void tst_ZrImportTask::noFolder()
{
    ZrImportTask task;
    QSignalSpy finished(&task, &ZrImportTask::Finished);
    QVERIFY(!task.Start(Line(), Write("a file", "x") + QStringLiteral("/recordings/line.log")));
    QVERIFY2(task.Error().contains(QStringLiteral("cannot be made")), qPrintable(task.Error()));
    QVERIFY(!task.IsWorking());
    QCoreApplication::processEvents();
    QCOMPARE(finished.size(), 0);
}

/// So long that it is still at work when it is told to end; nothing of it is left.
void tst_ZrImportTask::cancelled()
{
    const QByteArray line = LineBytes();
    QByteArray all = line;
    for (int i = 0; i < 60; ++i)
        all += line.mid(headBytes);
    const QString path = Write("long.xtf", all);
    ZrImportTask task;
    QSignalSpy finished(&task, &ZrImportTask::Finished);
    QVERIFY(task.Start(path, File("long.log")));
    QVERIFY(!task.Start(Line(), File("other.log")));
    QVERIFY(!task.Error().isEmpty());
    task.Cancel();
    QVERIFY(finished.wait(patience));
    QCOMPARE(finished[0][0].toInt(), int(ZrImportTask::cancelled));
    QVERIFY(!QFileInfo::exists(File("long.log")));
    QVERIFY(!QFileInfo::exists(File("other.log")));
}

void tst_ZrImportTask::goneMeanwhile()
{
    QByteArray all = LineBytes();
    for (int i = 0; i < 5; ++i)
        all += all.mid(headBytes);
    const QString path = Write("long.xtf", all);
    {
        ZrImportTask task;
        QVERIFY(task.Start(path, File("long.log")));
    }
    QVERIFY(!QFileInfo::exists(File("long.log")));
}

QTEST_MAIN(tst_ZrImportTask)
#include "tst_ZrImportTask.moc"
