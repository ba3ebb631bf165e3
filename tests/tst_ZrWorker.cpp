// Long work in a thread of its own.

#include "ZrKit/review/ZrWorker.h"
#include "ZrUtil/IZrProgress.h"

#include <QSignalSpy>
#include <QtTest/QtTest>

#include <atomic>
#include <memory>
#include <thread>

namespace {

constexpr int patience = 20000; ///< milliseconds

} // namespace

class tst_ZrWorker : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void worksInAThreadOfItsOwn();
    void progressComesInOrder();
    void oneAtATime();
    void cancel();
    void cancelWithoutStop();
    void destructorStops();
    void nothingToDo();
    void againFromFinished();
    void workIsGoneWhenFinished();
};

void tst_ZrWorker::worksInAThreadOfItsOwn()
{
    ZrWorker worker;
    QSignalSpy finished(&worker, &ZrWorker::Finished);
    std::thread::id id;
    int result = 0;
    QVERIFY(worker.Start(
        [&](IZrProgress&) {
            id = std::this_thread::get_id();
            result = 42;
        },
        {}));
    QVERIFY(worker.IsWorking());
    QVERIFY(finished.wait(patience));
    QVERIFY(!worker.IsWorking());
    QVERIFY(!worker.IsCancelled());
    QCOMPARE(result, 42);
    QVERIFY(id != std::this_thread::get_id());
    QCOMPARE(finished.count(), 1);
}

void tst_ZrWorker::progressComesInOrder()
{
    ZrWorker worker;
    QStringList heard;
    connect(&worker, &ZrWorker::Progress, this, [&](int percent) {
        QCOMPARE(QThread::currentThread(), thread());
        heard << QString::number(percent);
    });
    connect(&worker, &ZrWorker::Finished, this, [&] { heard << QStringLiteral("finished"); });
    QSignalSpy finished(&worker, &ZrWorker::Finished);
    int last = 0;
    worker.Start(
        [&last](IZrProgress& progress) {
            for (const int percent : {0, 10, 10, 10, 50, 100})
                progress.UpdateProgress(percent);
            last = progress.GetProgress();
        },
        {});
    QVERIFY(finished.wait(patience));
    QCOMPARE(heard.join(QLatin1Char(' ')), QStringLiteral("0 10 50 100 finished"));
    QCOMPARE(last, 100);
}

void tst_ZrWorker::oneAtATime()
{
    ZrWorker worker;
    std::atomic<bool> go{false};
    QSignalSpy finished(&worker, &ZrWorker::Finished);
    QVERIFY(worker.Start(
        [&go](IZrProgress&) {
            while (!go)
                std::this_thread::yield();
        },
        {}));
    bool second = false;
    QVERIFY(!worker.Start([&second](IZrProgress&) { second = true; }, {}));
    go = true;
    QVERIFY(finished.wait(patience));
    QVERIFY(!second);
    QVERIFY(worker.Start([&second](IZrProgress&) { second = true; }, {}));
    QVERIFY(finished.wait(patience));
    QVERIFY(second);
}

void tst_ZrWorker::cancel()
{
    ZrWorker worker;
    std::atomic<bool> stop{false};
    QSignalSpy finished(&worker, &ZrWorker::Finished);
    worker.Start(
        [&stop](IZrProgress&) {
            while (!stop)
                std::this_thread::yield();
        },
        [&stop] { stop = true; });
    worker.Cancel();
    QVERIFY(worker.IsWorking()); // until it is told
    QVERIFY(finished.wait(patience));
    QVERIFY(worker.IsCancelled());
    worker.Cancel(); // nothing to cancel
    worker.Start([](IZrProgress&) {}, {});
    QVERIFY(!worker.IsCancelled());
    QVERIFY(finished.wait(patience));
}

void tst_ZrWorker::cancelWithoutStop()
{
    ZrWorker worker;
    QSignalSpy finished(&worker, &ZrWorker::Finished);
    worker.Start([](IZrProgress&) {}, {});
    worker.Cancel();
    QVERIFY(finished.wait(patience));
    QVERIFY(worker.IsCancelled());
}

void tst_ZrWorker::destructorStops()
{
    std::atomic<bool> stop{false};
    std::atomic<bool> ended{false};
    int told = 0;
    {
        ZrWorker worker;
        connect(&worker, &ZrWorker::Finished, this, [&told] { ++told; });
        worker.Start(
            [&](IZrProgress& progress) {
                for (int i = 0; !stop; i = (i + 1) % 100)
                    progress.UpdateProgress(i);
                ended = true;
            },
            [&stop] { stop = true; });
    }
    QVERIFY(ended);
    QCoreApplication::processEvents();
    QCOMPARE(told, 0);
}

void tst_ZrWorker::nothingToDo()
{
    ZrWorker worker;
    QVERIFY(!worker.Start(nullptr, {}));
    QVERIFY(!worker.IsWorking());
    worker.Cancel();
    QVERIFY(!worker.IsCancelled());
}

void tst_ZrWorker::againFromFinished()
{
    ZrWorker worker;
    int rounds = 0;
    connect(&worker, &ZrWorker::Finished, this, [&] {
        if (++rounds < 5)
            QVERIFY(worker.Start([](IZrProgress&) {}, {}));
    });
    worker.Start([](IZrProgress&) {}, {});
    QTRY_COMPARE_WITH_TIMEOUT(rounds, 5, patience);
}

void tst_ZrWorker::workIsGoneWhenFinished()
{
    ZrWorker worker;
    QSignalSpy finished(&worker, &ZrWorker::Finished);
    const auto held = std::make_shared<int>(1);
    worker.Start([held](IZrProgress&) {}, [held] {});
    QVERIFY(finished.wait(patience));
    QCOMPARE(held.use_count(), 1L);
}

QTEST_GUILESS_MAIN(tst_ZrWorker)
#include "tst_ZrWorker.moc"
