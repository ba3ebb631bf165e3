// The surface as a class, without any context: the order of what it has, and its colours.

#include "ZrUtil/ZrGlSurface.h"

#include <QSignalSpy>
#include <QtTest>
#include <QtWidgets>

#include <algorithm>
#include <cstring>
#include <functional>
#include <limits>
#include <vector>

namespace {

class View : public ZrGlSurface
{
public:
    using ZrGlSurface::disconnectNotify;

    int calls = 0;

    void Render() override { ++calls; }

    void OnResize(int width, int height) override { calls += 100 * width + height; }
};

/// Where a virtual function stands in the table of its class: in the C++ ABI of GCC and Clang the first word
/// of a pointer to it counts bytes there.
template <class Function> std::ptrdiff_t PlaceOf(Function function)
{
    std::ptrdiff_t place = 0;
    static_assert(sizeof(function) >= sizeof(place));
    std::memcpy(&place, &function, sizeof(place));
    return place;
}

constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();
constexpr float infinite = std::numeric_limits<float>::infinity();

} // namespace

class tst_ZrGlSurfacePlain : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void virtualsInOrder();
    void membersInOrder();
    void handlersDoNothing();
    void colour_data();
    void colour();
    void colourOfAnInvalidOne();
};

void tst_ZrGlSurfacePlain::virtualsInOrder()
{
    // Applications are linked against the places: behind those of QObject, one after the other.
    const std::vector<std::ptrdiff_t> places{PlaceOf(&View::disconnectNotify), PlaceOf(&ZrGlSurface::Render),
        PlaceOf(&ZrGlSurface::OnResize), PlaceOf(&ZrGlSurface::OnCreate), PlaceOf(&ZrGlSurface::OnMouseMove),
        PlaceOf(&ZrGlSurface::OnMousePress), PlaceOf(&ZrGlSurface::OnMouseRelease),
        PlaceOf(&ZrGlSurface::OnMouseDblClick), PlaceOf(&ZrGlSurface::OnWheel),
        PlaceOf(&ZrGlSurface::OnInput)};
    constexpr auto slot = static_cast<std::ptrdiff_t>(sizeof(void*));
    for (std::size_t i = 1; i < places.size(); ++i)
        QVERIFY2(places[i] - places[i - 1] == slot, qPrintable(QString::number(i)));
}

void tst_ZrGlSurfacePlain::membersInOrder()
{
    const View v;
    const std::vector<const void*> members{&v.m_gl, &v.m_clearColour, &v.m_colour, &v.m_colKey, &v.m_font,
        &v.m_background, &v.m_palIndex, &v.m_palTex, &v.m_bgTex, &v.m_overlayTex, &v.m_colourSpace,
        &v.m_palCount, &v.m_program, &v.m_viewport, &v.m_pixelFactor, &v.m_fontTex, &v.m_glyphs, &v.m_markers,
        &v.m_programs};
    QVERIFY(std::is_sorted(members.begin(), members.end(), std::less<const void*>()));
}

void tst_ZrGlSurfacePlain::handlersDoNothing()
{
    View view;
    const QSignalSpy updates(&view, &ZrGlSurface::Update);
    const QSignalSpy cursors(&view, &ZrGlSurface::SetCursor);
    view.OnMouseMove(nullptr);
    view.OnMousePress(nullptr);
    view.OnMouseRelease(nullptr);
    view.OnMouseDblClick(nullptr);
    view.OnWheel(nullptr);
    view.OnInput(nullptr);
    QVERIFY(updates.isValid() && cursors.isValid());
    QCOMPARE(updates.size(), 0);
    QCOMPARE(cursors.size(), 0);
    QCOMPARE(view.calls, 0);
}

void tst_ZrGlSurfacePlain::colour_data()
{
    QTest::addColumn<QVector<float>>("components");
    QTest::addColumn<QColor>("expected");
    using V = QVector<float>;
    QTest::newRow("ends") << V{0, 1, 0, 1} << QColor(0, 255, 0);
    QTest::newRow("each its own") << V{0.2F, 0.4F, 0.6F, 0.8F} << QColor(51, 102, 153, 204);
    QTest::newRow("transparent") << V{1, 1, 1, 0} << QColor(255, 255, 255, 0);
    QTest::newRow("below 0") << V{-0.5F, -1e30F, -0.0F, -1e-9F} << QColor(0, 0, 0, 0);
    QTest::newRow("beyond 1") << V{1.5F, 1.000001F, 1e30F, 1.000001F} << QColor(255, 255, 255);
    QTest::newRow("infinite") << V{infinite, -infinite, 0.2F, infinite} << QColor(255, 0, 51);
    QTest::newRow("minus infinity alpha") << V{1, 0, 0, -infinite} << QColor(255, 0, 0, 0);
    for (int i = 0; i < 4; ++i) {
        V components{1, 1, 1, 1};
        components[i] = notANumber;
        const auto of = [i](int k) { return i == k ? 0 : 255; };
        QTest::addRow("no number, %d", i) << components << QColor(of(0), of(1), of(2), of(3));
    }
    QTest::newRow("no numbers") << V{notANumber, notANumber, notANumber, notANumber} << QColor(0, 0, 0, 0);
}

void tst_ZrGlSurfacePlain::colour()
{
    QFETCH(QVector<float>, components);
    QFETCH(QColor, expected);
    View view;
    view.ZrglSetColour(components[0], components[1], components[2], components[3]);
    QVERIFY(view.m_colour.isValid());
    QCOMPARE(view.m_colour.spec(), QColor::Rgb);
    QCOMPARE(view.m_colour, expected);
}

void tst_ZrGlSurfacePlain::colourOfAnInvalidOne()
{
    View view;
    view.ZrglSetColour(QColor(1, 2, 3, 4));
    QCOMPARE(view.m_colour, QColor(1, 2, 3, 4));
    view.ZrglSetColour(QColor());
    QVERIFY(!view.m_colour.isValid());
}

QTEST_MAIN(tst_ZrGlSurfacePlain)
#include "tst_ZrGlSurfacePlain.moc"
