// The slider: range and steps, dragging, tapping, wheel and keys, mirrored layouts.

#include "TouchOn.h"
#include "ZrUiChecks.h"
#include "ZrUtil/ZrSlider.h"

#include <QPointer>
#include <QWheelEvent>
#include <QtTest>

#include <limits>
#include <memory>

static_assert(std::is_base_of_v<QWidget, ZrSlider>);
static_assert(
    std::is_same_v<decltype(ZrSlider::img),
        QImage> && std::is_same_v<decltype(ZrSlider::imgEnd), QImage> && std::is_same_v<decltype(ZrSlider::text), QString> && std::is_same_v<decltype(ZrSlider::places), i32>);

namespace {

constexpr double infinite = std::numeric_limits<double>::infinity();

void Turn(QWidget& widget, int eighths)
{
    QWheelEvent event(QPointF(10, 10), QPointF(10, 10), QPoint(), QPoint(0, eighths), Qt::NoButton,
        Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&widget, &event);
}

} // namespace

class tst_ZrSlider : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void asMade();
    void steps_data();
    void steps();
    void ranges();
    void rangesThatAreNone_data();
    void rangesThatAreNone();
    void stepsThatAreNone();
    void stepsTooSmallToCount();
    void sameRangeDoesNotRepaint();
    void valuesThatAreNone();
    void emptyRange();
    void tellsOnlyChanges();
    void valueText();

    void tapping();
    void dragging();
    void grabbingAsideKeepsTheDistance();
    void draggingBeyondTheEnds();
    void byTouch();
    void mirrored();
    void wheel();
    void keys_data();
    void keys();
    void keysWithoutStep();
    void disabled();
    void disabledWhileDragged();
    void hiddenWhileDragged();
    void deletedInSlot();

    void repaintsOnlyOnChange();
    void handleMoves();
    void captionAndValue();
    void icons();
    void tinySizes();

private:
    /// The middle of the handle, found in the picture.
    int HandleX();

    std::unique_ptr<QWidget> m_window;
    QPointer<ZrSlider> m_slider;
    QList<double> m_log;
};

void tst_ZrSlider::init()
{
    ZrTheme::dp = 1.0F;
    ZrTheme::SetStdStyle();
    m_window = std::make_unique<QWidget>();
    m_window->resize(400, 200);
    m_slider = new ZrSlider(m_window.get());
    m_slider->setGeometry(0, 0, 300, 60);
    m_log.clear();
    connect(m_slider, &ZrSlider::ValueChanged, this, [this](double value) { m_log += value; });
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
}

void tst_ZrSlider::cleanup()
{
    m_window.reset();
}

int tst_ZrSlider::HandleX()
{
    // Its ridges are the only parts in the colour of the text.
    const QImage image = Painted(*m_slider);
    int first = image.width();
    int last = -1;
    for (int x = 0; x < image.width(); ++x) {
        if (image.pixelColor(x, image.height() / 2) == ZrTheme::ctrlCol) {
            first = std::min(first, x);
            last = x;
        }
    }
    return (first + last) / 2;
}

void tst_ZrSlider::asMade()
{
    QCOMPARE(m_slider->Minimum(), 0.0);
    QCOMPARE(m_slider->Maximum(), 100.0);
    QCOMPARE(m_slider->Step(), 1.0);
    QCOMPARE(m_slider->Value(), 0.0);
    QCOMPARE(m_slider->places, 0);
    QVERIFY(m_slider->hasMouseTracking());
    QCOMPARE(ZrSlider::staticMetaObject.className(), "ZrSlider");
}

void tst_ZrSlider::steps_data()
{
    QTest::addColumn<double>("step");
    QTest::addColumn<double>("value");
    QTest::addColumn<double>("expected");
    // The range is -1 to 9.25.
    QTest::newRow("on a step") << 0.5 << 3.0 << 3.0;
    QTest::newRow("below the half") << 0.5 << 3.24 << 3.0;
    QTest::newRow("above the half") << 0.5 << 3.26 << 3.5;
    QTest::newRow("counted from the low end") << 2.0 << 4.2 << 5.0;
    QTest::newRow("high end is reached") << 2.0 << 9.25 << 9.25;
    QTest::newRow("near the high end") << 2.0 << 9.2 << 9.0;
    QTest::newRow("rounded beyond the end") << 4.0 << 9.24 << 9.25;
    QTest::newRow("any value") << 0.0 << 3.14159 << 3.14159;
    QTest::newRow("too low") << 0.5 << -7.0 << -1.0;
    QTest::newRow("too high") << 0.5 << 1e300 << 9.25;
    QTest::newRow("infinite") << 0.5 << infinite << 9.25;
    QTest::newRow("infinitely low") << 0.5 << -infinite << -1.0;
    QTest::newRow("step beyond the range") << 1e6 << 4.0 << -1.0;
}

void tst_ZrSlider::steps()
{
    QFETCH(double, step);
    QFETCH(double, value);
    m_slider->SetRange(-1.0, 9.25);
    m_slider->SetStep(step);
    m_slider->SetValue(value);
    QTEST(m_slider->Value(), "expected");
}

void tst_ZrSlider::ranges()
{
    m_slider->SetValue(50.0);
    m_log.clear();
    m_slider->SetRange(60.0, 80.0);
    QCOMPARE(m_slider->Value(), 60.0);
    m_slider->SetRange(0.0, 55.0);
    QCOMPARE(m_slider->Value(), 55.0);
    m_slider->SetRange(0.0, 200.0);
    QCOMPARE(m_slider->Value(), 55.0);
    QCOMPARE(m_log, QList<double>({60.0, 55.0}));
}

void tst_ZrSlider::rangesThatAreNone_data()
{
    QTest::addColumn<double>("lo");
    QTest::addColumn<double>("hi");
    QTest::newRow("reversed") << 2.0 << 1.0;
    QTest::newRow("not a number") << std::nan("") << 1.0;
    QTest::newRow("no upper end") << 0.0 << std::nan("");
    QTest::newRow("infinite") << 0.0 << infinite;
    QTest::newRow("infinite below") << -infinite << 0.0;
    QTest::newRow("too wide") << -1e308 << 1e308;
}

void tst_ZrSlider::rangesThatAreNone()
{
    QFETCH(double, lo);
    QFETCH(double, hi);
    m_slider->SetRange(lo, hi);
    QCOMPARE(m_slider->Minimum(), 0.0);
    QCOMPARE(m_slider->Maximum(), 100.0);
    QVERIFY(m_log.isEmpty());
}

void tst_ZrSlider::stepsThatAreNone()
{
    for (const double step : {-1.0, infinite, -infinite, std::nan("")}) {
        m_slider->SetStep(step);
        QCOMPARE(m_slider->Step(), 1.0);
    }
    m_slider->SetStep(0.0);
    QCOMPARE(m_slider->Step(), 0.0);
    m_slider->SetValue(3.7);
    m_slider->SetStep(2.0);
    QCOMPARE(m_slider->Value(), 4.0);
}

void tst_ZrSlider::valuesThatAreNone()
{
    m_slider->SetValue(30.0);
    m_log.clear();
    m_slider->SetValue(std::nan(""));
    QCOMPARE(m_slider->Value(), 30.0);
    QVERIFY(m_log.isEmpty());
}

void tst_ZrSlider::emptyRange()
{
    m_slider->SetRange(7.0, 7.0);
    QCOMPARE(m_slider->Value(), 7.0);
    m_slider->SetValue(9.0);
    SendPress(*m_slider, QPoint(200, 30));
    SendRelease(*m_slider, QPoint(200, 30));
    QTest::keyClick(m_slider, Qt::Key_Right);
    QCOMPARE(m_slider->Value(), 7.0);
    QVERIFY(HandleX() < 40);
}

void tst_ZrSlider::tellsOnlyChanges()
{
    m_slider->SetValue(10.0);
    m_slider->SetValue(10.0);
    m_slider->SetValue(10.3);
    m_slider->SetValue(11.0);
    QCOMPARE(m_log, QList<double>({10.0, 11.0}));
}

void tst_ZrSlider::valueText()
{
    m_slider->SetStep(0.0);
    m_slider->SetValue(12.345);
    QCOMPARE(m_slider->ValueText(), QStringLiteral("12"));
    m_slider->places = 2;
    QCOMPARE(m_slider->ValueText(), QStringLiteral("12.35"));
    m_slider->unit = QStringLiteral("dB");
    QCOMPARE(m_slider->ValueText(), QStringLiteral("12.35 dB"));
    m_slider->unit = QStringLiteral("°");
    QCOMPARE(m_slider->ValueText(), QStringLiteral("12.35°"));
}

void tst_ZrSlider::tapping()
{
    SendPress(*m_slider, QPoint(150, 30));
    QCOMPARE(m_slider->Value(), 50.0);
    SendRelease(*m_slider, QPoint(150, 30));
    QCOMPARE(m_log, QList<double>({50.0}));
    QTest::mouseClick(m_slider, Qt::LeftButton, Qt::NoModifier, QPoint(299, 30));
    QCOMPARE(m_slider->Value(), 100.0);
    QTest::mouseClick(m_slider, Qt::LeftButton, Qt::NoModifier, QPoint(0, 5));
    QCOMPARE(m_slider->Value(), 0.0);
}

void tst_ZrSlider::dragging()
{
    m_slider->SetStep(0.0);
    const int start = HandleX();
    SendPress(*m_slider, QPoint(start, 30));
    QCOMPARE(m_slider->Value(), 0.0);
    SendMove(*m_slider, QPoint(start + 100, 30));
    const double value = m_slider->Value();
    QVERIFY(value > 30.0 && value < 50.0);
    QVERIFY(qAbs(HandleX() - (start + 100)) <= 1);
    SendMove(*m_slider, QPoint(start + 50, 500)); // leaving sideways does not end the drag
    QCOMPARE(m_slider->Value(), value / 2);
    SendRelease(*m_slider, QPoint(start + 50, 500));
    SendMove(*m_slider, QPoint(start + 150, 30));
    QCOMPARE(m_slider->Value(), value / 2);
}

void tst_ZrSlider::grabbingAsideKeepsTheDistance()
{
    m_slider->SetValue(50.0);
    m_log.clear();
    const int handle = HandleX();
    SendPress(*m_slider, QPoint(handle + 12, 30));
    QVERIFY(m_log.isEmpty());
    SendMove(*m_slider, QPoint(handle + 12 + 40, 30));
    QVERIFY(qAbs(HandleX() - (handle + 40)) <= 2);
    SendRelease(*m_slider, QPoint(handle + 52, 30));
}

void tst_ZrSlider::draggingBeyondTheEnds()
{
    SendPress(*m_slider, QPoint(150, 30));
    SendMove(*m_slider, QPoint(100000, 30));
    QCOMPARE(m_slider->Value(), 100.0);
    SendMove(*m_slider, QPoint(-100000, 30));
    QCOMPARE(m_slider->Value(), 0.0);
}

// Qt makes mouse events of touches that nobody takes.
void tst_ZrSlider::byTouch()
{
    auto touch = TouchOn(m_window.get(), QTest::createTouchDevice(), false);
    touch.press(0, QPoint(150, 30), m_window.get()).commit();
    QCOMPARE(m_slider->Value(), 50.0);
    touch.move(0, QPoint(299, 30), m_window.get()).commit();
    QCOMPARE(m_slider->Value(), 100.0);
    touch.release(0, QPoint(299, 30), m_window.get()).commit();
}

void tst_ZrSlider::mirrored()
{
    m_slider->SetValue(25.0);
    const int plain = HandleX();
    m_slider->setLayoutDirection(Qt::RightToLeft);
    QVERIFY(qAbs(HandleX() - (299 - plain)) <= 1);
    SendPress(*m_slider, QPoint(299, 30));
    SendRelease(*m_slider, QPoint(299, 30));
    QCOMPARE(m_slider->Value(), 0.0);
    QTest::keyClick(m_slider, Qt::Key_Left);
    QCOMPARE(m_slider->Value(), 1.0);
    QTest::keyClick(m_slider, Qt::Key_Right);
    QCOMPARE(m_slider->Value(), 0.0);
    QTest::keyClick(m_slider, Qt::Key_Up);
    QCOMPARE(m_slider->Value(), 1.0);
}

void tst_ZrSlider::wheel()
{
    m_slider->SetValue(50.0);
    Turn(*m_slider, 120);
    QCOMPARE(m_slider->Value(), 51.0);
    Turn(*m_slider, -240);
    QCOMPARE(m_slider->Value(), 49.0);
    // Eight parts make a step.
    for (int i = 0; i < 7; ++i)
        Turn(*m_slider, 15);
    QCOMPARE(m_slider->Value(), 49.0);
    Turn(*m_slider, 15);
    QCOMPARE(m_slider->Value(), 50.0);
    Turn(*m_slider, 0);
    QCOMPARE(m_slider->Value(), 50.0);
}

void tst_ZrSlider::keys_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<double>("value");
    QTest::newRow("Left") << int(Qt::Key_Left) << 49.0;
    QTest::newRow("Right") << int(Qt::Key_Right) << 51.0;
    QTest::newRow("Down") << int(Qt::Key_Down) << 49.0;
    QTest::newRow("Up") << int(Qt::Key_Up) << 51.0;
    QTest::newRow("Page Down") << int(Qt::Key_PageDown) << 40.0;
    QTest::newRow("Page Up") << int(Qt::Key_PageUp) << 60.0;
    QTest::newRow("Home") << int(Qt::Key_Home) << 0.0;
    QTest::newRow("End") << int(Qt::Key_End) << 100.0;
    QTest::newRow("other") << int(Qt::Key_A) << 50.0;
}

void tst_ZrSlider::keys()
{
    QFETCH(int, key);
    m_slider->SetValue(50.0);
    QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
    QCoreApplication::sendEvent(m_slider, &event);
    QTEST(m_slider->Value(), "value");
    QCOMPARE(event.isAccepted(), key != Qt::Key_A);
}

void tst_ZrSlider::keysWithoutStep()
{
    m_slider->SetRange(0.0, 50.0);
    m_slider->SetStep(0.0);
    QTest::keyClick(m_slider, Qt::Key_Right);
    QCOMPARE(m_slider->Value(), 0.5);
    m_slider->StepBy(-100000);
    QCOMPARE(m_slider->Value(), 0.0);
}

void tst_ZrSlider::disabled()
{
    m_slider->setEnabled(false);
    QTest::mouseClick(m_slider, Qt::LeftButton, Qt::NoModifier, QPoint(150, 30));
    QTest::keyClick(m_slider, Qt::Key_Right);
    Turn(*m_slider, 120);
    QCOMPARE(m_slider->Value(), 0.0);
    m_slider->SetValue(5.0); // the application may
    QCOMPARE(m_slider->Value(), 5.0);
}

void tst_ZrSlider::disabledWhileDragged()
{
    SendPress(*m_slider, QPoint(150, 30));
    m_slider->setEnabled(false);
    m_slider->setEnabled(true);
    SendMove(*m_slider, QPoint(250, 30));
    QCOMPARE(m_slider->Value(), 50.0);
}

void tst_ZrSlider::hiddenWhileDragged()
{
    SendPress(*m_slider, QPoint(150, 30));
    m_slider->hide();
    m_slider->show();
    SendMove(*m_slider, QPoint(250, 30));
    QCOMPARE(m_slider->Value(), 50.0);
}

void tst_ZrSlider::deletedInSlot()
{
    connect(m_slider, &ZrSlider::ValueChanged, this, [this] { delete m_slider.data(); });
    QTest::mousePress(m_slider, Qt::LeftButton, Qt::NoModifier, QPoint(150, 30));
    QVERIFY(!m_slider);
    QCOMPARE(m_log, QList<double>({50.0}));
}

void tst_ZrSlider::repaintsOnlyOnChange()
{
    ZrPaintCounter paints(*m_slider);
    paints.Take();
    m_slider->SetValue(0.0);
    m_slider->SetValue(0.2);
    m_slider->SetValue(std::nan(""));
    SendLeave(*m_slider);
    QCOMPARE(paints.Take(), 0);
    SendMove(*m_slider, QPoint(100, 30));
    QCOMPARE(paints.Take(), 1);
    SendMove(*m_slider, QPoint(110, 30));
    QCOMPARE(paints.Take(), 0);
    m_slider->SetValue(10.0);
    QCOMPARE(paints.Take(), 1);
}

void tst_ZrSlider::handleMoves()
{
    m_slider->SetRange(-20.0, 20.0);
    m_slider->SetValue(-20.0);
    const int low = HandleX();
    m_slider->SetValue(20.0);
    const int high = HandleX();
    m_slider->SetValue(0.0);
    QVERIFY(qAbs(HandleX() - (low + high) / 2) <= 1);
    QVERIFY(low < 40 && high > 260);
    QVERIFY(qAbs(low - (299 - high)) <= 1);
}

void tst_ZrSlider::captionAndValue()
{
    m_slider->resize(m_slider->sizeHint());
    const auto textAt
        = [this](const QRect& part) { return HasColour(Painted(*m_slider).copy(part), ZrTheme::ctrlCol); };
    m_slider->text = QStringLiteral("Mm");
    m_slider->unit = QStringLiteral("Mm");
    m_slider->resize(m_slider->sizeHint());
    const int width = m_slider->width();
    QVERIFY(textAt(QRect(0, 0, 60, 24)));
    QVERIFY(textAt(QRect(width - 60, 0, 60, 24)));
    QVERIFY(!textAt(QRect(width / 2 - 30, 0, 60, 24)));
    // At its smallest the caption is whole and the handle does not cover it.
    m_slider->resize(m_slider->minimumSizeHint());
    QVERIFY(textAt(QRect(0, 0, 40, 20)));
}

void tst_ZrSlider::icons()
{
    QImage icon(20, 20, QImage::Format_ARGB32);
    icon.fill(Qt::white);
    m_slider->SetValue(50.0);
    m_slider->img = icon;
    const auto iconAt = [this](int x) { return Painted(*m_slider).pixelColor(x, 30) == ZrTheme::ctrlCol; };
    QVERIFY(iconAt(10) && !iconAt(290));
    m_slider->setLayoutDirection(Qt::RightToLeft);
    QVERIFY(!iconAt(10) && iconAt(290));
    m_slider->imgEnd = icon;
    QVERIFY(iconAt(10) && iconAt(290));
}

void tst_ZrSlider::tinySizes()
{
    m_slider->text = QStringLiteral("Text");
    for (const QSize& size : {QSize(0, 0), QSize(1, 1), QSize(1, 100), QSize(100, 1), QSize(30, 30)}) {
        m_slider->resize(size);
        QImage image(200, 200, QImage::Format_RGB32);
        image.fill(Qt::black);
        m_slider->render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
        QCOMPARE(image.pixelColor(199, 199), QColor(Qt::black));
        SendPress(*m_slider, QPoint(0, 0));
        SendRelease(*m_slider, QPoint(0, 0));
        QVERIFY(m_slider->Value() >= 0.0 && m_slider->Value() <= 100.0);
    }
}

void tst_ZrSlider::stepsTooSmallToCount()
{
    m_slider->SetRange(0.0, 1.0);
    m_slider->SetStep(std::numeric_limits<double>::denorm_min());
    m_slider->SetValue(0.25);
    QCOMPARE(m_slider->Value(), 0.25);
    m_slider->SetStep(1e-310);
    m_slider->SetValue(0.5);
    QCOMPARE(m_slider->Value(), 0.5);
}

void tst_ZrSlider::sameRangeDoesNotRepaint()
{
    ZrPaintCounter paints(*m_slider);
    paints.Take();
    m_slider->SetRange(m_slider->Minimum(), m_slider->Maximum());
    QCOMPARE(paints.Take(), 0);
    m_slider->SetRange(m_slider->Minimum(), m_slider->Maximum() + 1.0);
    QCOMPARE(paints.Take(), 1);
}

QTEST_MAIN(tst_ZrSlider)
#include "tst_ZrSlider.moc"
