#include "ZrUtil/ZrAsync.h"

#include <QtTest>

#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <system_error>
#include <thread>
#include <utility>

#ifdef Q_OS_LINUX
#include <pthread.h>
#endif

namespace {

constexpr std::chrono::seconds patience{20};

template <class T> bool Ready(const std::future<T>& future)
{
    return future.wait_for(patience) == std::future_status::ready;
}

} // namespace

class tst_ZrAsync : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void runsOnAnotherThread();
    void runsAfterTheCallerReturned();
    void callerDoesNotWait();
    void functionIsReleasedAfterTheRun();
    void manyFunctionsRunOnceEach();
    void functionMayStartAnother();
    void emptyFunctionStartsNothing();
    void failureToCreateTheThreadThrows();
};

void tst_ZrAsync::runsOnAnotherThread()
{
    const auto ran = std::make_shared<std::promise<std::thread::id>>();
    auto id = ran->get_future();
    zr::async([ran] { ran->set_value(std::this_thread::get_id()); });
    QVERIFY(Ready(id));
    QVERIFY(id.get() != std::this_thread::get_id());
}

void tst_ZrAsync::runsAfterTheCallerReturned()
{
    const auto open = std::make_shared<std::promise<void>>();
    const auto ran = std::make_shared<std::promise<int>>();
    auto result = ran->get_future();
    const auto caller = [&] {
        auto gate = std::make_shared<std::future<void>>(open->get_future());
        zr::async([gate, ran] {
            gate->wait();
            ran->set_value(42);
        });
    };
    caller();
    // Only here, with the caller gone, the function is let through.
    open->set_value();
    QVERIFY(Ready(result));
    QCOMPARE(result.get(), 42);
}

void tst_ZrAsync::callerDoesNotWait()
{
    const auto open = std::make_shared<std::promise<void>>();
    const auto done = std::make_shared<std::atomic<bool>>(false);
    const auto ended = std::make_shared<std::promise<void>>();
    auto end = ended->get_future();
    auto gate = std::make_shared<std::future<void>>(open->get_future());
    zr::async([gate, done, ended] {
        gate->wait();
        *done = true;
        ended->set_value();
    });
    // A call that waited for the function would never have come back: the gate is still shut.
    QVERIFY(!*done);
    open->set_value();
    QVERIFY(Ready(end));
    QVERIFY(*done);
}

void tst_ZrAsync::functionIsReleasedAfterTheRun()
{
    auto owned = std::make_shared<int>(1);
    const std::weak_ptr<int> watch = owned;
    zr::async([kept = std::move(owned)] { *kept += 1; });
    QTRY_VERIFY_WITH_TIMEOUT(watch.expired(), 20000);
}

void tst_ZrAsync::manyFunctionsRunOnceEach()
{
    struct Tally
    {
        std::atomic<int> sum{0};
        std::atomic<int> runs{0};
    };

    const auto tally = std::make_shared<Tally>();
    constexpr int total = 200;
    for (int i = 1; i <= total; ++i)
        zr::async([tally, i] {
            tally->sum += i;
            ++tally->runs;
        });
    QTRY_COMPARE_WITH_TIMEOUT(tally->runs.load(), total, 20000);
    QCOMPARE(tally->sum.load(), total * (total + 1) / 2);
}

void tst_ZrAsync::functionMayStartAnother()
{
    const auto ran = std::make_shared<std::promise<void>>();
    auto end = ran->get_future();
    zr::async([ran] { zr::async([ran] { ran->set_value(); }); });
    QVERIFY(Ready(end));
}

void tst_ZrAsync::emptyFunctionStartsNothing()
{
    // A thread that called an empty function would end the process.
    zr::async(nullptr);
    zr::async(std::function<void()>());
    const auto ran = std::make_shared<std::promise<void>>();
    auto end = ran->get_future();
    zr::async([ran] { ran->set_value(); });
    QVERIFY(Ready(end));
}

void tst_ZrAsync::failureToCreateTheThreadThrows()
{
#ifdef Q_OS_LINUX
    // No address space holds a stack of this size, so that the creation fails for certain.
    pthread_attr_t usual;
    QCOMPARE(pthread_getattr_default_np(&usual), 0);
    pthread_attr_t huge;
    QCOMPARE(pthread_getattr_default_np(&huge), 0);
    QCOMPARE(pthread_attr_setstacksize(&huge, std::size_t(1) << 50), 0);
    QCOMPARE(pthread_setattr_default_np(&huge), 0);

    const auto ran = std::make_shared<std::atomic<bool>>(false);
    bool thrown = false;
    try {
        zr::async([ran] { *ran = true; });
    } catch (const std::system_error&) {
        thrown = true;
    }
    QCOMPARE(pthread_setattr_default_np(&usual), 0);
    pthread_attr_destroy(&huge);
    pthread_attr_destroy(&usual);
    QVERIFY(thrown);
    QVERIFY(!*ran);
    // The function was destroyed with the failed thread.
    QCOMPARE(ran.use_count(), 1L);
#else
    QSKIP("needs the default thread attributes of glibc");
#endif
}

QTEST_GUILESS_MAIN(tst_ZrAsync)
#include "tst_ZrAsync.moc"
