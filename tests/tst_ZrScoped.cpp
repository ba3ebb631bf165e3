#include "ZrUtil/ZrScoped.h"

#include <QtTest>

#include <functional>
#include <memory>
#include <stdexcept>
#include <type_traits>
#include <utility>
#include <vector>

using Guard = zr::ZrScoped<void>;

static_assert(!std::is_copy_constructible_v<Guard>, "a copied guard would run the function twice");
static_assert(!std::is_copy_assignable_v<Guard>, "a copied guard would run the function twice");
static_assert(std::is_nothrow_move_constructible_v<Guard>, "guards go into containers");
static_assert(std::is_nothrow_move_assignable_v<Guard>, "guards go into containers");
static_assert(std::is_same_v<decltype(zr::make_scoped(std::function<void()>())), Guard>, "");

class tst_ZrScoped : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void init() { m_calls = 0; }

    void runsOnceAtTheEndOfTheScope();
    void runsWhileAnExceptionUnwinds();
    void runsOnEarlyReturn();
    void guardsRunInReverseOrder();
    void emptyFunctionDoesNothing();
    void movedFromGuardDoesNothing();
    void movedTwiceRunsOnce();
    void moveAssignmentRunsTheOldFunction();
    void moveAssignmentFromEmptyRunsTheOldFunction();
    void selfMoveKeepsTheFunction();
    void functionIsMovedNotCopied();
    void functionIsReleasedWithTheGuard();
    void guardsLiveInContainers();
    void functionMayArmAnotherGuard();

private:
    std::function<void()> Count()
    {
        return [this] { ++m_calls; };
    }

    int m_calls = 0;
};

void tst_ZrScoped::runsOnceAtTheEndOfTheScope()
{
    {
        const auto guard = zr::make_scoped(Count());
        QCOMPARE(m_calls, 0);
    }
    QCOMPARE(m_calls, 1);
}

void tst_ZrScoped::runsWhileAnExceptionUnwinds()
{
    int seenByHandler = -1;
    try {
        const auto guard = zr::make_scoped(Count());
        throw std::runtime_error("read failed");
    } catch (const std::runtime_error&) {
        seenByHandler = m_calls;
    }
    QCOMPARE(seenByHandler, 1);
    QCOMPARE(m_calls, 1);
}

void tst_ZrScoped::runsOnEarlyReturn()
{
    const auto leave = [this](bool early) {
        const auto guard = zr::make_scoped(Count());
        if (early)
            return 1;
        return 2;
    };
    QCOMPARE(leave(true), 1);
    QCOMPARE(m_calls, 1);
    QCOMPARE(leave(false), 2);
    QCOMPARE(m_calls, 2);
}

void tst_ZrScoped::guardsRunInReverseOrder()
{
    std::vector<int> order;
    {
        const auto first = zr::make_scoped([&] { order.push_back(1); });
        const auto second = zr::make_scoped([&] { order.push_back(2); });
    }
    QCOMPARE(order, (std::vector<int>{2, 1}));
}

void tst_ZrScoped::emptyFunctionDoesNothing()
{
    {
        const auto none = zr::make_scoped(nullptr);
        const auto empty = zr::make_scoped(std::function<void()>());
        Guard moved(zr::make_scoped(nullptr));
        Guard target(std::move(moved));
    }
    // Calling an empty std::function in a destructor would have ended the process.
    QCOMPARE(m_calls, 0);
}

void tst_ZrScoped::movedFromGuardDoesNothing()
{
    {
        auto guard = std::make_unique<Guard>(zr::make_scoped(Count()));
        Guard taken(std::move(*guard));
        guard.reset();
        QCOMPARE(m_calls, 0);
    }
    QCOMPARE(m_calls, 1);
}

void tst_ZrScoped::movedTwiceRunsOnce()
{
    {
        Guard first = zr::make_scoped(Count());
        {
            Guard second(std::move(first));
            Guard third(std::move(second));
            Guard fourth(std::move(second));
            QCOMPARE(m_calls, 0);
        }
        QCOMPARE(m_calls, 1);
    }
    QCOMPARE(m_calls, 1);
}

void tst_ZrScoped::moveAssignmentRunsTheOldFunction()
{
    std::vector<int> order;
    {
        Guard guard = zr::make_scoped([&] { order.push_back(1); });
        guard = zr::make_scoped([&] { order.push_back(2); });
        QCOMPARE(order, std::vector<int>{1});
    }
    QCOMPARE(order, (std::vector<int>{1, 2}));
}

void tst_ZrScoped::moveAssignmentFromEmptyRunsTheOldFunction()
{
    {
        Guard guard = zr::make_scoped(Count());
        guard = zr::make_scoped(nullptr);
        QCOMPARE(m_calls, 1);
    }
    QCOMPARE(m_calls, 1);
}

void tst_ZrScoped::selfMoveKeepsTheFunction()
{
    {
        Guard guard = zr::make_scoped(Count());
        Guard& same = guard;
        guard = std::move(same);
        QCOMPARE(m_calls, 0);
    }
    QCOMPARE(m_calls, 1);
}

void tst_ZrScoped::functionIsMovedNotCopied()
{
    struct Counted
    {
        explicit Counted(int* counter)
            : copies(counter)
        {
        }

        Counted(const Counted& other)
            : copies(other.copies)
        {
            ++*copies;
        }

        Counted(Counted&&) = default;

        void operator()() const { }

        int* copies;
    };

    int copies = 0;
    std::function<void()> fn{Counted(&copies)};
    const int before = copies;
    {
        Guard guard = zr::make_scoped(std::move(fn));
        Guard taken(std::move(guard));
    }
    QCOMPARE(copies, before);
}

void tst_ZrScoped::functionIsReleasedWithTheGuard()
{
    const auto owned = std::make_shared<int>(7);
    {
        Guard guard = zr::make_scoped([owned, this] { m_calls += *owned; });
        QCOMPARE(owned.use_count(), 2L);
    }
    QCOMPARE(owned.use_count(), 1L);
    QCOMPARE(m_calls, 7);
}

void tst_ZrScoped::guardsLiveInContainers()
{
    {
        std::vector<Guard> guards;
        for (int i = 0; i < 100; ++i)
            guards.push_back(zr::make_scoped(Count()));
        QCOMPARE(m_calls, 0);
        guards.pop_back();
        QCOMPARE(m_calls, 1);
    }
    QCOMPARE(m_calls, 100);
}

void tst_ZrScoped::functionMayArmAnotherGuard()
{
    std::vector<int> order;
    {
        Guard guard = zr::make_scoped(nullptr);
        Guard starter = zr::make_scoped([&] {
            order.push_back(1);
            guard = zr::make_scoped([&] { order.push_back(2); });
        });
        starter = zr::make_scoped(nullptr);
        QCOMPARE(order, std::vector<int>{1});
    }
    QCOMPARE(order, (std::vector<int>{1, 2}));
}

QTEST_GUILESS_MAIN(tst_ZrScoped)
#include "tst_ZrScoped.moc"
