#include "ZrKit/threads/ZrCallQueue.h"

#include <QThread>
#include <QtTest>

#include <algorithm>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <vector>

/// Functions handed to another thread.
class tst_ZrCallQueue : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void onItsThread();
    void orderOfEachGiver();
    void whatWasCapturedArrives();
    void oneAtATurn();
    void callsGiveCalls();
    void emptyCall();
    void callEndsTheQueue();
    void waitingCallsEndWithIt();

private:
    void Wait();

    QThread m_thread;
    ZrCallQueue* m_calls = nullptr;
};

void tst_ZrCallQueue::init()
{
    m_calls = new ZrCallQueue;
    m_calls->moveToThread(&m_thread);
    connect(&m_thread, &QThread::finished, m_calls, &QObject::deleteLater);
    m_thread.start();
}

void tst_ZrCallQueue::cleanup()
{
    m_thread.quit();
    m_thread.wait();
}

/// Until what was given before has run.
void tst_ZrCallQueue::Wait()
{
    std::promise<void> done;
    m_calls->Give([&done] { done.set_value(); });
    done.get_future().wait();
}

void tst_ZrCallQueue::onItsThread()
{
    QThread* ran = nullptr;
    m_calls->Give([&ran] { ran = QThread::currentThread(); });
    Wait();
    QCOMPARE(ran, &m_thread);
}

void tst_ZrCallQueue::orderOfEachGiver()
{
    constexpr int count = 2000;
    std::vector<int> ran[2];
    const auto give = [&](int giver) {
        for (int i = 0; i < count; ++i)
            m_calls->Give([&ran, giver, i] { ran[giver].push_back(i); });
    };
    std::thread other(give, 1);
    give(0);
    other.join();
    Wait();
    for (const std::vector<int>& those : ran) {
        QCOMPARE(those.size(), std::size_t(count));
        QVERIFY(std::is_sorted(those.begin(), those.end()));
    }
}

void tst_ZrCallQueue::whatWasCapturedArrives()
{
    // Written here, read and freed there: under the thread sanitizer this is the proof of the handing over.
    std::string heard;
    {
        auto text = std::make_shared<std::string>(1000, 'a');
        (*text)[500] = 'b';
        m_calls->Give([&heard, text = std::move(text)] { heard = *text; });
    }
    Wait();
    QCOMPARE(heard.size(), std::size_t(1000));
    QCOMPARE(heard[500], 'b');
}

void tst_ZrCallQueue::oneAtATurn()
{
    // What was posted between two calls has its turn between them.
    std::vector<std::string> ran;
    m_calls->Give([&] {
        auto* other = new QObject(m_calls);
        connect(
            other, &QObject::objectNameChanged, other, [&ran] { ran.push_back("event"); },
            Qt::QueuedConnection);
        m_calls->Give([&ran] { ran.push_back("first"); });
        other->setObjectName(QStringLiteral("told"));
        m_calls->Give([&ran] { ran.push_back("second"); });
    });
    Wait();
    Wait();
    QCOMPARE(ran, (std::vector<std::string>{"first", "event", "second"}));
}

void tst_ZrCallQueue::callsGiveCalls()
{
    std::vector<int> ran;
    m_calls->Give([&] {
        m_calls->Give([&ran] { ran.push_back(2); });
        ran.push_back(1);
    });
    Wait();
    Wait();
    QCOMPARE(ran, (std::vector<int>{1, 2}));
}

void tst_ZrCallQueue::emptyCall()
{
    m_calls->Give({});
    bool ran = false;
    m_calls->Give([&ran] { ran = true; });
    Wait();
    QVERIFY(ran);
}

void tst_ZrCallQueue::callEndsTheQueue()
{
    ZrCallQueue* after = nullptr;
    m_calls->Give([&after] { after = new ZrCallQueue; });
    Wait();
    m_calls->Give([this] { delete m_calls; });
    std::promise<void> done;
    after->Give([&done, after] {
        after->deleteLater();
        done.set_value();
    });
    done.get_future().wait();
}

void tst_ZrCallQueue::waitingCallsEndWithIt()
{
    const auto kept = std::make_shared<int>(0);
    {
        ZrCallQueue here;
        here.Give([kept] { ++*kept; });
        QCOMPARE(kept.use_count(), 2L);
    }
    QCOMPARE(kept.use_count(), 1L);
    QCoreApplication::processEvents();
    QCOMPARE(*kept, 0);
}

QTEST_GUILESS_MAIN(tst_ZrCallQueue)
#include "tst_ZrCallQueue.moc"
