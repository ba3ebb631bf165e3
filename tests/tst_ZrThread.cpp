#include "ZrUtil/ZrThread.h"

#include <QProcess>
#include <QtTest>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <functional>
#include <memory>
#include <system_error>
#include <thread>
#include <type_traits>
#include <utility>

#ifdef Q_OS_LINUX
#include <pthread.h>
#endif

static_assert(std::is_abstract_v<ZrThread>, "Execute has no body of its own");
static_assert(std::is_base_of_v<QObject, ZrThread>, "derived classes carry signals and slots");
static_assert(std::has_virtual_destructor_v<ZrThread>, "deleted through the base");
static_assert(std::is_same_v<decltype(ZrThread::thread), std::thread>, "");
static_assert(std::is_same_v<decltype(ZrThread::active), std::atomic<bool>>, "");

namespace {

/// A worker whose body is given as a function.
class Worker : public ZrThread
{
public:
    explicit Worker(std::function<void(Worker&)> fn)
        : body(std::move(fn))
    {
    }

    ~Worker() override { Stop(); }

    void Execute() override
    {
        ++runs;
        body(*this);
        ++ends;
    }

    std::atomic<int> runs{0};
    std::atomic<int> ends{0};
    std::function<void(Worker&)> body;
};

void LoopWhileActive(Worker& worker)
{
    while (worker.IsActive())
        std::this_thread::yield();
}

void ReturnAtOnce(Worker&) { }

constexpr const char* restartOption = "--start-without-stop";
constexpr int exitTerminated = 50;
constexpr int exitReturned = 51;

/// Body of the child process: the worker ends itself, and Start is called again without Stop.
int StartWithoutStop()
{
    std::set_terminate([] { std::_Exit(exitTerminated); });
    Worker worker(LoopWhileActive);
    worker.Start();
    worker.SetActive(false);
    while (worker.ends == 0)
        std::this_thread::yield();
    std::puts("before");
    std::fflush(stdout);
    worker.Start();
    std::_Exit(exitReturned);
}

} // namespace

/// Emits from its worker; proves that derived classes may carry signals.
class SignallingThread : public ZrThread
{
    Q_OBJECT

public:
    ~SignallingThread() override { Stop(); }

    void Execute() override
    {
        for (int i = 0; i < 3; ++i)
            Q_EMIT Progress(i);
    }

Q_SIGNALS:
    void Progress(int step);
};

/// Leaves stopping to the destructor of the base. Execute touches nothing of the derived part.
class JoinedByBase : public ZrThread
{
public:
    explicit JoinedByBase(std::atomic<int>* stage)
        : m_stage(stage)
    {
    }

    void Execute() override
    {
        std::atomic<int>* const stage = m_stage;
        *stage = 1;
        while (IsActive())
            std::this_thread::yield();
        // The destructor has to wait for this.
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        *stage = 2;
    }

private:
    std::atomic<int>* m_stage;
};

class tst_ZrThread : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsIdleWithoutParent();
    void executeRunsOnAnotherThread();
    void startSetsActiveBeforeItReturns();
    void startTwiceGivesOneWorker();
    void stopJoinsTheWorker();
    void stopOfNeverStartedOnlyClearsTheFlag();
    void secondStopDoesNothing();
    void stopOfFinishedWorkerJoins();
    void setActiveStartsAndJoinsNothing();
    void startWhileActiveIsSetByHandDoesNothing();
    void workerEndsItself();
    void restartAfterStop();
    void startWithoutStopTerminates();
    void stopFromTheWorkerRaisesDeadlock();
    void memberIsSetBeforeExecuteRuns();
    void manyQuickRoundsWithAWorkerThatStopsItself();
    void manyQuickRoundsWithALoopingWorker();
    void destructorJoinsTheWorker();
    void destructorOfNeverStartedReturns();
    void destructorJoinsAFinishedWorker();
    void deletedThroughTheBase();
    void signalsReachTheOwnersThread();
    void livesInTheOwnersThread();
    void failureToCreateTheThreadThrows();
};

void tst_ZrThread::startsIdleWithoutParent()
{
    const Worker worker(ReturnAtOnce);
    QVERIFY(!worker.IsActive());
    QVERIFY(!worker.active);
    QVERIFY(!worker.thread.joinable());
    QVERIFY(worker.parent() == nullptr);
    QCOMPARE(worker.runs.load(), 0);
    QCOMPARE(worker.metaObject()->className(), "ZrThread");
}

void tst_ZrThread::executeRunsOnAnotherThread()
{
    std::thread::id id;
    Worker worker([&id](Worker&) { id = std::this_thread::get_id(); });
    worker.Start();
    const std::thread::id member = worker.thread.get_id();
    worker.Stop();
    QVERIFY(id != std::thread::id());
    QVERIFY(id != std::this_thread::get_id());
    QCOMPARE(id, member);
}

void tst_ZrThread::startSetsActiveBeforeItReturns()
{
    std::atomic<int> seenByWorker{-1};
    Worker worker([&seenByWorker](Worker& self) {
        seenByWorker = self.IsActive() ? 1 : 0;
        LoopWhileActive(self);
    });
    worker.Start();
    QVERIFY(worker.IsActive());
    QVERIFY(worker.thread.joinable());
    QTRY_VERIFY_WITH_TIMEOUT(seenByWorker.load() != -1, 20000);
    QCOMPARE(seenByWorker.load(), 1);
    QVERIFY(worker.IsActive());
    worker.Stop();
    QCOMPARE(worker.ends.load(), 1);
}

void tst_ZrThread::startTwiceGivesOneWorker()
{
    Worker worker(LoopWhileActive);
    worker.Start();
    const std::thread::id id = worker.thread.get_id();
    worker.Start();
    worker.Start();
    QCOMPARE(worker.thread.get_id(), id);
    QTRY_COMPARE_WITH_TIMEOUT(worker.runs.load(), 1, 20000);
    worker.Stop();
    QCOMPARE(worker.runs.load(), 1);
    QCOMPARE(worker.ends.load(), 1);
}

void tst_ZrThread::stopJoinsTheWorker()
{
    Worker worker([](Worker& self) {
        LoopWhileActive(self);
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    });
    worker.Start();
    worker.Stop();
    QCOMPARE(worker.ends.load(), 1);
    QVERIFY(!worker.thread.joinable());
    QVERIFY(!worker.IsActive());
}

void tst_ZrThread::stopOfNeverStartedOnlyClearsTheFlag()
{
    Worker worker(ReturnAtOnce);
    worker.SetActive(true);
    worker.Stop();
    QVERIFY(!worker.IsActive());
    QVERIFY(!worker.thread.joinable());
    QCOMPARE(worker.runs.load(), 0);
}

void tst_ZrThread::secondStopDoesNothing()
{
    Worker worker(LoopWhileActive);
    worker.Start();
    worker.Stop();
    worker.Stop();
    QVERIFY(!worker.IsActive());
    QVERIFY(!worker.thread.joinable());
    QCOMPARE(worker.ends.load(), 1);
}

void tst_ZrThread::stopOfFinishedWorkerJoins()
{
    Worker worker(ReturnAtOnce);
    worker.Start();
    QTRY_COMPARE_WITH_TIMEOUT(worker.ends.load(), 1, 20000);
    // The body is over, yet the flag still stands and the thread still wants joining.
    QVERIFY(worker.IsActive());
    QVERIFY(worker.thread.joinable());
    worker.Stop();
    QVERIFY(!worker.IsActive());
    QVERIFY(!worker.thread.joinable());
}

void tst_ZrThread::setActiveStartsAndJoinsNothing()
{
    Worker worker(LoopWhileActive);
    worker.SetActive(true);
    QVERIFY(worker.IsActive());
    QVERIFY(!worker.thread.joinable());
    worker.SetActive(false);
    QVERIFY(!worker.IsActive());

    worker.Start();
    worker.SetActive(false);
    QVERIFY(worker.thread.joinable());
    QTRY_COMPARE_WITH_TIMEOUT(worker.ends.load(), 1, 20000);
    QVERIFY(worker.thread.joinable());
    worker.Stop();
    QVERIFY(!worker.thread.joinable());
}

void tst_ZrThread::startWhileActiveIsSetByHandDoesNothing()
{
    Worker worker(ReturnAtOnce);
    worker.SetActive(true);
    worker.Start();
    QVERIFY(!worker.thread.joinable());
    QCOMPARE(worker.runs.load(), 0);
}

void tst_ZrThread::workerEndsItself()
{
    Worker worker([](Worker& self) {
        int left = 5;
        while (self.IsActive()) {
            if (--left == 0)
                self.SetActive(false);
        }
    });
    worker.Start();
    QTRY_COMPARE_WITH_TIMEOUT(worker.ends.load(), 1, 20000);
    QVERIFY(!worker.IsActive());
    worker.Stop();
    QVERIFY(!worker.thread.joinable());
}

void tst_ZrThread::restartAfterStop()
{
    Worker worker(LoopWhileActive);
    for (int round = 1; round <= 5; ++round) {
        worker.Start();
        QVERIFY(worker.IsActive());
        worker.Stop();
        QCOMPARE(worker.runs.load(), round);
        QCOMPARE(worker.ends.load(), round);
    }
}

void tst_ZrThread::startWithoutStopTerminates()
{
    QProcess child;
    child.start(QCoreApplication::applicationFilePath(), {QString::fromLatin1(restartOption)});
    QVERIFY2(child.waitForFinished(20000), qPrintable(child.errorString()));
    QCOMPARE(child.exitStatus(), QProcess::NormalExit);
    QCOMPARE(child.readAllStandardOutput().trimmed(), QByteArray("before"));
    QCOMPARE(child.exitCode(), exitTerminated);
}

void tst_ZrThread::stopFromTheWorkerRaisesDeadlock()
{
    std::error_code error;
    Worker worker([&error](Worker& self) {
        try {
            self.Stop();
        } catch (const std::system_error& e) {
            error = e.code();
        }
    });
    worker.Start();
    QTRY_COMPARE_WITH_TIMEOUT(worker.ends.load(), 1, 20000);
    QCOMPARE(error, std::make_error_code(std::errc::resource_deadlock_would_occur));
    QVERIFY(!worker.IsActive());
    QVERIFY(worker.thread.joinable());
    worker.Stop();
    QVERIFY(!worker.thread.joinable());
}

void tst_ZrThread::memberIsSetBeforeExecuteRuns()
{
    for (int round = 0; round < 300; ++round) {
        bool same = false;
        Worker worker([&same](Worker& self) { same = self.thread.get_id() == std::this_thread::get_id(); });
        worker.Start();
        worker.Stop();
        QVERIFY2(same, qPrintable(QStringLiteral("round %1").arg(round)));
    }
}

void tst_ZrThread::manyQuickRoundsWithAWorkerThatStopsItself()
{
    int raised = 0;
    Worker worker([&raised](Worker& self) {
        try {
            self.Stop();
        } catch (const std::system_error&) {
            ++raised;
        }
    });
    constexpr int rounds = 400;
    for (int round = 1; round <= rounds; ++round) {
        worker.Start();
        worker.Stop();
        QCOMPARE(worker.ends.load(), round);
        QCOMPARE(raised, round);
    }
}

void tst_ZrThread::manyQuickRoundsWithALoopingWorker()
{
    Worker worker(LoopWhileActive);
    constexpr int rounds = 400;
    for (int round = 0; round < rounds; ++round) {
        worker.Start();
        worker.Stop();
    }
    QCOMPARE(worker.ends.load(), rounds);
}

void tst_ZrThread::destructorJoinsTheWorker()
{
    std::atomic<int> stage{0};
    {
        JoinedByBase object(&stage);
        object.Start();
        QTRY_COMPARE_WITH_TIMEOUT(stage.load(), 1, 20000);
    }
    QCOMPARE(stage.load(), 2);
}

void tst_ZrThread::destructorOfNeverStartedReturns()
{
    std::atomic<int> stage{0};
    {
        const JoinedByBase object(&stage);
    }
    QCOMPARE(stage.load(), 0);
}

void tst_ZrThread::destructorJoinsAFinishedWorker()
{
    std::atomic<int> stage{0};
    {
        JoinedByBase object(&stage);
        object.Start();
        QTRY_COMPARE_WITH_TIMEOUT(stage.load(), 1, 20000);
        object.SetActive(false);
        QTRY_COMPARE_WITH_TIMEOUT(stage.load(), 2, 20000);
    }
    QCOMPARE(stage.load(), 2);
}

void tst_ZrThread::deletedThroughTheBase()
{
    std::atomic<int> stage{0};
    std::unique_ptr<ZrThread> base = std::make_unique<JoinedByBase>(&stage);
    base->Start();
    QTRY_COMPARE_WITH_TIMEOUT(stage.load(), 1, 20000);
    base.reset();
    QCOMPARE(stage.load(), 2);
}

void tst_ZrThread::signalsReachTheOwnersThread()
{
    SignallingThread worker;
    QList<int> steps;
    QThread* receivedIn = nullptr;
    connect(&worker, &SignallingThread::Progress, this, [&](int step) {
        steps.append(step);
        receivedIn = QThread::currentThread();
    });
    worker.Start();
    worker.Stop();
    QCOMPARE(steps, QList<int>());
    QCoreApplication::sendPostedEvents(this);
    QCOMPARE(steps, (QList<int>{0, 1, 2}));
    QCOMPARE(receivedIn, QThread::currentThread());
}

void tst_ZrThread::livesInTheOwnersThread()
{
    Worker worker(LoopWhileActive);
    worker.Start();
    QCOMPARE(worker.QObject::thread(), QThread::currentThread());
    worker.Stop();
}

void tst_ZrThread::failureToCreateTheThreadThrows()
{
#ifdef Q_OS_LINUX
    // No address space holds a stack of this size, so that the creation fails for certain.
    pthread_attr_t usual;
    QCOMPARE(pthread_getattr_default_np(&usual), 0);
    pthread_attr_t huge;
    QCOMPARE(pthread_getattr_default_np(&huge), 0);
    QCOMPARE(pthread_attr_setstacksize(&huge, std::size_t(1) << 50), 0);
    QCOMPARE(pthread_setattr_default_np(&huge), 0);

    Worker worker(LoopWhileActive);
    bool thrown = false;
    try {
        worker.Start();
    } catch (const std::system_error&) {
        thrown = true;
    }
    QCOMPARE(pthread_setattr_default_np(&usual), 0);
    pthread_attr_destroy(&huge);
    pthread_attr_destroy(&usual);
    QVERIFY(thrown);
    QVERIFY(!worker.IsActive());
    QVERIFY(!worker.thread.joinable());
    QCOMPARE(worker.runs.load(), 0);
    // The object is as good as before.
    worker.Start();
    worker.Stop();
    QCOMPARE(worker.ends.load(), 1);
#else
    QSKIP("needs the default thread attributes of glibc");
#endif
}

int main(int argc, char** argv)
{
    if (argc == 2 && std::strcmp(argv[1], restartOption) == 0)
        return StartWithoutStop();
    QCoreApplication app(argc, argv);
    tst_ZrThread test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_ZrThread.moc"
