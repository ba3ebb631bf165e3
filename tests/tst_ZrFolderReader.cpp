// What is in a folder, in the order of the list.

#include "ZrKit/ui/ZrFolderReader.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QtTest>

#include <thread>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace {

QString S(const char* text)
{
    return QString::fromUtf8(text);
}

/// \param second of its last change
bool Write(const QString& path, int second)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(QByteArray(second % 100, 'x')) >= 0 && file.flush()
        && file.setFileTime(
            QDateTime::fromSecsSinceEpoch(1700000000 + second), QFileDevice::FileModificationTime);
}

QStringList Names(const ZrFolderReader& reader)
{
    QStringList names;
    for (const ZrFolderReader::Entry& entry : reader.Entries())
        names.append(QFileInfo(entry.path).fileName() + (entry.isFolder ? S("/") : QString()));
    return names;
}

} // namespace

class tst_ZrFolderReader : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void order();
    void suffixes_data();
    void suffixes();
    void foldersAlone();
    void links();
    void limit();
    void many();
    void errors();
    void permission();
    void cancelled();
    void cancelledByAnotherThread();
    void readAgain();

private:
    QString Path(const char* name) const { return m_dir->filePath(S(name)); }

    std::unique_ptr<QTemporaryDir> m_dir;
};

void tst_ZrFolderReader::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
}

void tst_ZrFolderReader::order()
{
    for (const char* name : {"beta", "Alpha", "gamma", "Ordner 港", ".hidden"})
        QVERIFY(QDir(m_dir->path()).mkdir(S(name)));
    QVERIFY(Write(Path("old.log"), 10));
    QVERIFY(Write(Path("new.log"), 30));
    QVERIFY(Write(Path("z.log"), 20));
    QVERIFY(Write(Path("a.log"), 20));
    QVERIFY(Write(Path(".hidden.log"), 40));
    ZrFolderReader reader;
    QVERIFY(reader.Read(m_dir->path(), {}));
    QCOMPARE(Names(reader),
        QStringList({S("Alpha/"), S("beta/"), S("gamma/"), S("Ordner 港/"), S("new.log"), S("a.log"),
            S("z.log"), S("old.log")}));
    QVERIFY(reader.Error().isEmpty());
    QCOMPARE(reader.Left(), std::size_t(0));
    const ZrFolderReader::Entry& newest = reader.Entries()[4];
    QCOMPARE(newest.path, Path("new.log"));
    QCOMPARE(newest.time, qint64(1700000030000));
    QCOMPARE(newest.bytes, qint64(30));
}

void tst_ZrFolderReader::suffixes_data()
{
    QTest::addColumn<QStringList>("suffixes");
    QTest::addColumn<QStringList>("names");
    const QStringList all{S("a.LOG"), S("b.log"), S("c.gpx"), S("d.log.bak"), S("log")};
    QTest::newRow("all") << QStringList() << all;
    QTest::newRow("log") << QStringList{S("log")} << QStringList{S("a.LOG"), S("b.log")};
    QTest::newRow("two") << QStringList{S("GPX"), S("bak")} << QStringList{S("c.gpx"), S("d.log.bak")};
    QTest::newRow("of two parts") << QStringList{S("log.bak")} << QStringList{S("d.log.bak")};
    QTest::newRow("none of it") << QStringList{S("xyz")} << QStringList();
}

/// Folders are not sorted out: what is sought may be in them.
void tst_ZrFolderReader::suffixes()
{
    QFETCH(QStringList, suffixes);
    QFETCH(QStringList, names);
    QVERIFY(QDir(m_dir->path()).mkdir(S("sub")));
    for (const char* name : {"a.LOG", "b.log", "c.gpx", "d.log.bak", "log"})
        QVERIFY(Write(Path(name), 1));
    ZrFolderReader reader;
    QVERIFY(reader.Read(m_dir->path(), suffixes));
    QCOMPARE(Names(reader), QStringList(S("sub/")) + names);
}

void tst_ZrFolderReader::foldersAlone()
{
    QVERIFY(QDir(m_dir->path()).mkdir(S("sub")));
    QVERIFY(Write(Path("a.log"), 1));
    ZrFolderReader reader;
    reader.m_hasFiles = false;
    QVERIFY(reader.Read(m_dir->path(), {}));
    QCOMPARE(Names(reader), QStringList(S("sub/")));
}

void tst_ZrFolderReader::links()
{
    QVERIFY(QDir(m_dir->path()).mkdir(S("sub")));
    QVERIFY(Write(Path("a.log"), 1));
    QVERIFY(QFile::link(Path("sub"), Path("to folder")));
    QVERIFY(QFile::link(Path("a.log"), Path("to file.log")));
    QVERIFY(QFile::link(Path("none"), Path("to nothing.log")));
    ZrFolderReader reader;
    QVERIFY(reader.Read(m_dir->path(), {S("log")}));
    QCOMPARE(Names(reader), QStringList({S("sub/"), S("to folder/"), S("a.log"), S("to file.log")}));
}

void tst_ZrFolderReader::limit()
{
    QVERIFY(QDir(m_dir->path()).mkdir(S("sub")));
    for (int i = 0; i < 5; ++i)
        QVERIFY(Write(Path("%1.log").arg(i), i));
    ZrFolderReader reader;
    reader.m_most = 3;
    QVERIFY(reader.Read(m_dir->path(), {}));
    QCOMPARE(Names(reader), QStringList({S("sub/"), S("4.log"), S("3.log")}));
    QCOMPARE(reader.Left(), std::size_t(3));
    reader.m_most = 6;
    QVERIFY(reader.Read(m_dir->path(), {}));
    QCOMPARE(reader.Entries().size(), std::size_t(6));
    QCOMPARE(reader.Left(), std::size_t(0));
}

void tst_ZrFolderReader::many()
{
    constexpr int count = 3000;
    for (int i = 0; i < count; ++i)
        QVERIFY(Write(Path("%1.log").arg(i), i));
    ZrFolderReader reader;
    QVERIFY(reader.Read(m_dir->path(), {S("log")}));
    QCOMPARE(reader.Entries().size(), std::size_t(count));
    for (int i = 0; i < count; ++i)
        QCOMPARE(
            reader.Entries()[static_cast<std::size_t>(i)].time, qint64(1700000000 + count - 1 - i) * 1000);
}

void tst_ZrFolderReader::errors()
{
    ZrFolderReader reader;
    QVERIFY(!reader.Read(Path("none"), {}));
    QCOMPARE(reader.Error(), S("This folder is gone"));
    QVERIFY(!reader.Read(QString(), {}));
    QCOMPARE(reader.Error(), S("This folder is gone"));
    QVERIFY(Write(Path("a.log"), 1));
    QVERIFY(!reader.Read(Path("a.log"), {}));
    QCOMPARE(reader.Error(), S("This is no folder"));
    QVERIFY(!reader.Read(Path("a.log/below"), {}));
    QCOMPARE(reader.Error(), S("This folder is gone"));
    QVERIFY(reader.Entries().empty());
}

/// Also when the tests are run by root, who may read everything.
void tst_ZrFolderReader::permission()
{
#ifdef Q_OS_UNIX
    QVERIFY(QDir(m_dir->path()).mkdir(S("closed")));
    QVERIFY(QDir(m_dir->path()).mkdir(S("open")));
    QVERIFY(Write(Path("open/a.log"), 1));
    QVERIFY(Write(Path("open/secret.log"), 1));
    QCOMPARE(chmod(QFile::encodeName(m_dir->path()).constData(), 0755), 0);
    QCOMPARE(chmod(QFile::encodeName(Path("closed")).constData(), 0), 0);
    QCOMPARE(chmod(QFile::encodeName(Path("open/secret.log")).constData(), 0), 0);
    QCOMPARE(chmod(QFile::encodeName(Path("open/a.log")).constData(), 0644), 0);
    constexpr uid_t nobody = 65534;
    const bool isRoot = geteuid() == 0;
    if (isRoot)
        QCOMPARE(setresuid(nobody, nobody, 0), 0);
    ZrFolderReader closed;
    const bool isRead = closed.Read(Path("closed"), {});
    ZrFolderReader open;
    const bool isOpen = open.Read(Path("open"), {});
    if (isRoot)
        QCOMPARE(setresuid(0, 0, 0), 0);
    QCOMPARE(chmod(QFile::encodeName(Path("closed")).constData(), 0755), 0);
    QVERIFY(!isRead);
    QCOMPARE(closed.Error(), S("This folder cannot be read: no permission"));
    QVERIFY(isOpen);
    QCOMPARE(Names(open), QStringList(S("a.log")));
#endif
}

void tst_ZrFolderReader::cancelled()
{
    QVERIFY(Write(Path("a.log"), 1));
    ZrFolderReader reader;
    reader.cancel = true;
    QVERIFY(!reader.Read(m_dir->path(), {}));
    QVERIFY(reader.Entries().empty());
    QVERIFY(reader.Error().isEmpty());
}

/// However far it is, there is all or nothing.
void tst_ZrFolderReader::cancelledByAnotherThread()
{
    for (int i = 0; i < 500; ++i)
        QVERIFY(Write(Path("%1.log").arg(i), i));
    for (int round = 0; round < 20; ++round) {
        ZrFolderReader reader;
        std::thread other([&reader, round] {
            std::this_thread::sleep_for(std::chrono::microseconds(200 * round));
            reader.cancel = true;
        });
        const bool isRead = reader.Read(m_dir->path(), {});
        other.join();
        QCOMPARE(reader.Entries().size(), std::size_t(isRead ? 500 : 0));
        QVERIFY(reader.Error().isEmpty());
    }
}

void tst_ZrFolderReader::readAgain()
{
    QVERIFY(Write(Path("a.log"), 1));
    ZrFolderReader reader;
    QVERIFY(!reader.Read(Path("none"), {}));
    QVERIFY(reader.Read(m_dir->path(), {}));
    QVERIFY(reader.Error().isEmpty());
    QCOMPARE(Names(reader), QStringList(S("a.log")));
    QVERIFY(QFile::remove(Path("a.log")));
    QVERIFY(reader.Read(m_dir->path(), {}));
    QVERIFY(reader.Entries().empty());
}

QTEST_GUILESS_MAIN(tst_ZrFolderReader)
#include "tst_ZrFolderReader.moc"
