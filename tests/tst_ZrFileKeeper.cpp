// A file that is kept what it is to be by a thread of its own.

#include "ZrKit/files/ZrFileKeeper.h"

#include <QDir>
#include <QFile>
#include <QSemaphore>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <atomic>
#include <memory>
#include <thread>

class tst_ZrFileKeeper : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void writes();
    void nobodyWaits();
    void latestWins();
    void removal();
    void removalInPlaceOfWriting();
    void failureIsTold_data();
    void failureIsTold();
    void endWritesWhatIsLeft();
    void isThere();
    void thenFollowsTheFile();

private:
    QString At(const char* name) const { return m_dir->filePath(QString::fromUtf8(name)); }

    static QByteArray Content(const QString& path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    std::unique_ptr<QTemporaryDir> m_dir;
};

void tst_ZrFileKeeper::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
}

void tst_ZrFileKeeper::writes()
{
    ZrFileKeeper keeper(At("neu ä/draft"));
    QSignalSpy done(&keeper, &ZrFileKeeper::Done);
    const std::thread::id here = std::this_thread::get_id();
    std::atomic<bool> isElsewhere{false};
    keeper.Write([&] {
        isElsewhere = std::this_thread::get_id() != here;
        return QByteArray("one");
    });
    QTRY_COMPARE(done.count(), 1);
    QCOMPARE(done[0][0].toString(), QString());
    QCOMPARE(Content(At("neu ä/draft")), QByteArray("one"));
    QVERIFY(isElsewhere);
    keeper.Write([] { return QByteArray("two"); });
    keeper.Finish();
    QCOMPARE(Content(At("neu ä/draft")), QByteArray("two"));
    QCOMPARE(done.count(), 2);
    QCoreApplication::processEvents();
    QCOMPARE(done.count(), 2); // told once
}

void tst_ZrFileKeeper::nobodyWaits()
{
    ZrFileKeeper keeper(At("draft"));
    QSemaphore gate;
    keeper.Write([&gate] {
        gate.acquire();
        return QByteArray("slow");
    });
    QVERIFY(keeper.IsThere());
    QVERIFY(!QFile::exists(At("draft")));
    gate.release();
    keeper.Finish();
    QVERIFY(QFile::exists(At("draft")));
}

void tst_ZrFileKeeper::latestWins()
{
    ZrFileKeeper keeper(At("draft"));
    QSemaphore gate;
    QSemaphore begun;
    std::atomic<int> made{0};
    keeper.Write([&] {
        begun.release();
        gate.acquire();
        ++made;
        return QByteArray("first");
    });
    begun.acquire();
    for (int i = 0; i < 100; ++i) {
        keeper.Write([&made, i] {
            ++made;
            return QByteArray::number(i);
        });
    }
    gate.release();
    keeper.Finish();
    QCOMPARE(made.load(), 2);
    QCOMPARE(Content(At("draft")), QByteArray("99"));
}

void tst_ZrFileKeeper::removal()
{
    ZrFileKeeper keeper(At("draft"));
    keeper.Write([] { return QByteArray("x"); });
    keeper.Finish();
    keeper.Remove();
    QVERIFY(!keeper.IsThere());
    keeper.Finish();
    QVERIFY(!QFile::exists(At("draft")));
    keeper.Remove(); // of what is not there
    keeper.Finish();
    QVERIFY(!keeper.IsThere());
}

/// What is being written does not come back behind its removal.
void tst_ZrFileKeeper::removalInPlaceOfWriting()
{
    ZrFileKeeper keeper(At("draft"));
    QSemaphore gate;
    QSemaphore begun;
    keeper.Write([&] {
        begun.release();
        gate.acquire();
        return QByteArray("late");
    });
    begun.acquire();
    keeper.Write([] { return QByteArray("never"); });
    keeper.Remove();
    QVERIFY(!keeper.IsThere());
    gate.release();
    keeper.Finish();
    QVERIFY(!QFile::exists(At("draft")));
}

void tst_ZrFileKeeper::failureIsTold_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("a folder in its place") << "folder";
    QTest::newRow("a file above") << "file/draft";
    QTest::newRow("full") << "/dev/full";
    QTest::newRow("no permission") << "/proc/nowhere/draft";
}

void tst_ZrFileKeeper::failureIsTold()
{
    QFETCH(QString, path);
    QVERIFY(QDir().mkdir(At("folder")));
    QFile file(At("file"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    ZrFileKeeper keeper(QDir::isAbsolutePath(path) ? path : m_dir->filePath(path));
    QSignalSpy done(&keeper, &ZrFileKeeper::Done);
    keeper.Write([] { return QByteArray("x"); });
    QTRY_COMPARE(done.count(), 1);
    QVERIFY(done[0][0].toString().startsWith(keeper.Path()));
}

void tst_ZrFileKeeper::endWritesWhatIsLeft()
{
    QSemaphore gate;
    QSignalSpy* done = nullptr;
    {
        ZrFileKeeper keeper(At("draft"));
        done = new QSignalSpy(&keeper, &ZrFileKeeper::Done);
        keeper.Write([&gate] {
            gate.acquire();
            return QByteArray("first");
        });
        keeper.Write([] { return QByteArray("last"); });
        gate.release();
    }
    QCOMPARE(Content(At("draft")), QByteArray("last"));
    QCoreApplication::processEvents();
    QCOMPARE(done->count(), 0);
    delete done;
}

void tst_ZrFileKeeper::isThere()
{
    QFile file(At("draft"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.close();
    QVERIFY(ZrFileKeeper(At("draft")).IsThere());
    QVERIFY(!ZrFileKeeper(At("none")).IsThere());
    QVERIFY(!ZrFileKeeper(m_dir->path()).IsThere()); // a folder is no file
}

/// Once the file is there, in the keeper's thread; for a file that is not, never.
void tst_ZrFileKeeper::thenFollowsTheFile()
{
    ZrFileKeeper keeper(At("draft"));
    std::atomic<int> calls{0};
    std::atomic<bool> isThere{false};
    const auto then = [&] {
        isThere = QFile::exists(At("draft"));
        ++calls;
    };
    keeper.Write([] { return QByteArray("x"); }, then);
    keeper.Finish();
    QCOMPARE(calls.load(), 1);
    QVERIFY(isThere);
    // It belongs to its order alone.
    keeper.Write([] { return QByteArray("y"); });
    keeper.Finish();
    keeper.Remove();
    keeper.Finish();
    QCOMPARE(calls.load(), 1);
    QSemaphore gate;
    QSemaphore begun;
    keeper.Write([&] {
        begun.release();
        gate.acquire();
        return QByteArray("slow");
    });
    begun.acquire();
    keeper.Write([] { return QByteArray("never"); }, then);
    keeper.Write([] { return QByteArray("last"); });
    gate.release();
    keeper.Finish();
    QCOMPARE(calls.load(), 1);
    ZrFileKeeper full(QStringLiteral("/dev/full"));
    full.Write([] { return QByteArray("x"); }, then);
    full.Finish();
    QCOMPARE(calls.load(), 1);
}

QTEST_GUILESS_MAIN(tst_ZrFileKeeper)
#include "tst_ZrFileKeeper.moc"
