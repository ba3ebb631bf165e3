#include "ZrUtil/ZrGlSurface.h"
#include "ZrUtil/ZrSfHolder.h"

#include <QMouseEvent>
#include <QWheelEvent>
#include <QtTest>
#include <QtWidgets>

namespace {

/// Notes what it is told.
class Surface : public ZrGlSurface
{
public:
    QList<QSize> sizes;
    QList<QRect> viewports; ///< there were at each of these
    QList<QPair<QString, const QEvent*>> events;

    void Render() override { }

    void OnResize(int width, int height) override
    {
        sizes << QSize(width, height);
        viewports << m_viewport;
    }

    void OnMouseMove(QMouseEvent* event) override { events << qMakePair(QStringLiteral("move"), event); }

    void OnMousePress(QMouseEvent* event) override { events << qMakePair(QStringLiteral("press"), event); }

    void OnMouseRelease(QMouseEvent* event) override
    {
        events << qMakePair(QStringLiteral("release"), event);
    }

    void OnMouseDblClick(QMouseEvent* event) override
    {
        events << qMakePair(QStringLiteral("double"), event);
    }

    void OnWheel(QWheelEvent* event) override { events << qMakePair(QStringLiteral("wheel"), event); }
};

/// A surface that leaves the handlers as they are.
class PlainSurface : public ZrGlSurface
{
public:
    void Render() override { }

    void OnResize(int /*width*/, int /*height*/) override { }
};

} // namespace

class tst_ZrSfHolder : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void constructed();
    void viewport_data();
    void viewport();
    void viewportFollowsTheGeometry();
    void viewportFollowsAMove();
    void parentGrows();
    void withoutParent();
    void withoutSurface();
    void surfaceIsTakenAway();
    void eventsPassUnchanged();
    void plainHandlersDoNothing();

private:
    void SendEvents(const std::function<void(const QString&, const QEvent*)>& check);

    std::unique_ptr<QWidget> m_parent;
    ZrSfHolder* m_holder = nullptr;
};

void tst_ZrSfHolder::init()
{
    m_parent = std::make_unique<QWidget>();
    m_parent->resize(400, 300);
    m_holder = new ZrSfHolder(m_parent.get());
}

void tst_ZrSfHolder::cleanup()
{
    m_parent.reset();
}

void tst_ZrSfHolder::constructed()
{
    QVERIFY(!m_holder->m_surface);
    QCOMPARE(m_holder->parentWidget(), m_parent.get());
    QVERIFY(m_holder->hasMouseTracking());
}

void tst_ZrSfHolder::viewport_data()
{
    QTest::addColumn<QRect>("geometry");
    QTest::addColumn<int>("factor");
    QTest::addColumn<QRect>("expected");
    QTest::newRow("plain") << QRect(10, 20, 100, 50) << 1 << QRect(10, 231, 100, 50);
    QTest::newRow("two device pixels") << QRect(10, 20, 100, 50) << 2 << QRect(20, 462, 200, 100);
    QTest::newRow("all") << QRect(0, 0, 400, 300) << 1 << QRect(0, 1, 400, 300);
    QTest::newRow("at the lower edge") << QRect(0, 299, 400, 1) << 3 << QRect(0, 3, 1200, 3);
    QTest::newRow("beyond") << QRect(-10, 280, 50, 40) << 1 << QRect(-10, -19, 50, 40);
    QTest::newRow("empty") << QRect(10, 20, 0, 0) << 1 << QRect(10, 281, 0, 0);
}

void tst_ZrSfHolder::viewport()
{
    QFETCH(QRect, geometry);
    QFETCH(int, factor);
    QFETCH(QRect, expected);
    Surface surface;
    surface.m_pixelFactor = factor;
    m_holder->setGeometry(geometry);
    m_holder->m_surface = &surface;
    m_holder->MatchViewport();
    QCOMPARE(surface.m_viewport, expected);
    QCOMPARE(surface.sizes, QList<QSize>({expected.size()}));
    // The viewport comes first.
    QCOMPARE(surface.viewports, QList<QRect>({expected}));
}

void tst_ZrSfHolder::viewportFollowsTheGeometry()
{
    Surface surface;
    m_holder->setGeometry(10, 20, 100, 50);
    m_holder->SetSurface(&surface);
    QCOMPARE(surface.m_viewport, QRect(10, 231, 100, 50));
    QCOMPARE(surface.sizes.size(), 1);
    m_parent->show();
    m_holder->resize(120, 60);
    QCOMPARE(surface.m_viewport, QRect(10, 221, 120, 60));
    QCOMPARE(surface.sizes.last(), QSize(120, 60));
}

void tst_ZrSfHolder::viewportFollowsAMove()
{
    Surface surface;
    m_holder->setGeometry(10, 20, 100, 50);
    m_holder->SetSurface(&surface);
    surface.m_pixelFactor = 2;
    m_holder->MatchViewport();
    m_parent->show();
    QApplication::processEvents();
    surface.sizes.clear();
    m_holder->move(30, 60);
    QCOMPARE(surface.m_viewport, QRect(60, 382, 200, 100));
    // The size is what it was.
    QVERIFY(surface.sizes.isEmpty());
    // Both at once are one resize.
    m_holder->setGeometry(0, 0, 400, 300);
    QCOMPARE(surface.m_viewport, QRect(0, 2, 800, 600));
    QCOMPARE(surface.sizes, QList<QSize>({QSize(800, 600)}));
}

void tst_ZrSfHolder::parentGrows()
{
    // y is up from the lower edge of the parent; the holder at the same place has to be told.
    Surface surface;
    m_holder->setGeometry(10, 20, 100, 50);
    m_holder->SetSurface(&surface);
    m_parent->resize(400, 500);
    m_holder->MatchViewport();
    QCOMPARE(surface.m_viewport, QRect(10, 431, 100, 50));
}

void tst_ZrSfHolder::withoutParent()
{
    ZrSfHolder holder(nullptr);
    Surface surface;
    holder.setGeometry(0, 0, 80, 40);
    holder.SetSurface(&surface);
    QCOMPARE(surface.m_viewport, QRect(0, 1, 80, 40));
}

void tst_ZrSfHolder::SendEvents(const std::function<void(const QString&, const QEvent*)>& check)
{
    const QPointF at(5, 6);
    const auto mouse = [&](QEvent::Type type, const QString& name) {
        QMouseEvent event(type, at, at, Qt::LeftButton, Qt::LeftButton, Qt::ShiftModifier);
        QCoreApplication::sendEvent(m_holder, &event);
        check(name, &event);
    };
    mouse(QEvent::MouseButtonPress, QStringLiteral("press"));
    mouse(QEvent::MouseMove, QStringLiteral("move"));
    mouse(QEvent::MouseButtonRelease, QStringLiteral("release"));
    mouse(QEvent::MouseButtonDblClick, QStringLiteral("double"));
    QWheelEvent wheel(
        at, at, QPoint(), QPoint(0, 120), Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(m_holder, &wheel);
    check(QStringLiteral("wheel"), &wheel);
}

void tst_ZrSfHolder::withoutSurface()
{
    m_parent->show();
    m_holder->resize(50, 50);
    m_holder->move(5, 5);
    m_holder->MatchViewport();
    int count = 0;
    SendEvents([&](const QString&, const QEvent*) { ++count; });
    QCOMPARE(count, 5);
}

void tst_ZrSfHolder::surfaceIsTakenAway()
{
    Surface surface;
    m_holder->SetSurface(&surface);
    surface.sizes.clear();
    m_holder->SetSurface(nullptr);
    m_parent->show();
    m_holder->resize(50, 50);
    SendEvents([](const QString&, const QEvent*) {});
    QVERIFY(surface.sizes.isEmpty());
    QVERIFY(surface.events.isEmpty());
}

void tst_ZrSfHolder::eventsPassUnchanged()
{
    Surface surface;
    m_holder->SetSurface(&surface);
    int count = 0;
    SendEvents([&](const QString& name, const QEvent* event) {
        ++count;
        QCOMPARE(surface.events.size(), count);
        QCOMPARE(surface.events.last().first, name);
        // The event itself, not one like it.
        QVERIFY(surface.events.last().second == event);
    });
    QCOMPARE(count, 5);
}

void tst_ZrSfHolder::plainHandlersDoNothing()
{
    PlainSurface surface;
    m_holder->SetSurface(&surface);
    SendEvents([](const QString&, const QEvent*) {});
    // Neither accepted nor ignored.
    for (const bool isAccepted : {false, true}) {
        QMouseEvent mouse(QEvent::MouseMove, QPointF(), Qt::NoButton, Qt::NoButton, Qt::NoModifier);
        QWheelEvent wheel(QPointF(), QPointF(), QPoint(), QPoint(0, 120), Qt::NoButton, Qt::NoModifier,
            Qt::NoScrollPhase, false);
        QEvent other(QEvent::User);
        mouse.setAccepted(isAccepted);
        wheel.setAccepted(isAccepted);
        other.setAccepted(isAccepted);
        surface.OnMouseMove(&mouse);
        surface.OnMousePress(&mouse);
        surface.OnMouseRelease(&mouse);
        surface.OnMouseDblClick(&mouse);
        surface.OnWheel(&wheel);
        surface.OnInput(&other);
        QCOMPARE(mouse.isAccepted(), isAccepted);
        QCOMPARE(wheel.isAccepted(), isAccepted);
        QCOMPARE(other.isAccepted(), isAccepted);
    }
}

QTEST_MAIN(tst_ZrSfHolder)
#include "tst_ZrSfHolder.moc"
