// A part of a widget that is painted once: when it is painted anew, and that the picture lies where it
// belongs.

#include "ZrKit/ui/ZrKeptPicture.h"

#include <QtTest>

#include <limits>

namespace {

constexpr QRgb ground = 0xFF000000U;
constexpr QRgb mark = 0xFFFF0000U;

} // namespace

class tst_ZrKeptPicture : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void sameKeyIsPaintedOnce();
    void anotherKey_data();
    void anotherKey();
    void keyWithNan();
    void moved();
    void anotherSize();
    void devicePixelRatio_data();
    void devicePixelRatio();
    void anotherDevicePixelRatio();
    void copiesShowTheSame();
    void nowhere_data();
    void nowhere();
    void transparentWhereNothingIsPainted();
    void forgets();

private:
    /// A widget of 40 × 30 pixels anew, with the part \p rect of it.
    void Show(const QRect& rect, const QVector<double>& key, double ratio = 1.0);

    ZrKeptPicture m_picture;
    QImage m_widget;
    QPoint m_place; ///< of the pixel that is painted
    int m_painted = 0;
};

void tst_ZrKeptPicture::init()
{
    m_picture = ZrKeptPicture();
    m_place = QPoint(12, 9);
    m_painted = 0;
}

void tst_ZrKeptPicture::Show(const QRect& rect, const QVector<double>& key, double ratio)
{
    m_widget = QImage(QSize(40, 30) * ratio, QImage::Format_ARGB32_Premultiplied);
    m_widget.setDevicePixelRatio(ratio);
    m_widget.fill(ground);
    QPainter painter(&m_widget);
    m_picture.Paint(painter, rect, key, [this](QPainter& to) {
        ++m_painted;
        to.fillRect(QRect(m_place, QSize(1, 1)), QColor::fromRgba(mark));
    });
}

void tst_ZrKeptPicture::sameKeyIsPaintedOnce()
{
    const QRect rect(10, 5, 20, 15);
    for (int frame = 0; frame < 5; ++frame) {
        Show(rect, {1.0, 2.0});
        QCOMPARE(m_painted, 1);
        for (int y = 0; y < m_widget.height(); ++y) {
            for (int x = 0; x < m_widget.width(); ++x)
                QCOMPARE(m_widget.pixel(x, y), QPoint(x, y) == m_place ? mark : ground);
        }
    }
}

void tst_ZrKeptPicture::anotherKey_data()
{
    QTest::addColumn<QVector<double>>("key");
    QTest::newRow("another value") << QVector<double>{1.0, 2.5};
    QTest::newRow("other order") << QVector<double>{2.0, 1.0};
    QTest::newRow("shorter") << QVector<double>{1.0};
    QTest::newRow("longer") << QVector<double>{1.0, 2.0, 0.0};
    QTest::newRow("empty") << QVector<double>();
}

void tst_ZrKeptPicture::anotherKey()
{
    QFETCH(QVector<double>, key);
    const QRect rect(10, 5, 20, 15);
    Show(rect, {1.0, 2.0});
    m_place = QPoint(14, 11);
    Show(rect, key);
    QCOMPARE(m_painted, 2);
    QCOMPARE(m_widget.pixel(14, 11), mark);
    QCOMPARE(m_widget.pixel(12, 9), ground); // nothing of the picture before
    Show(rect, key);
    QCOMPARE(m_painted, 2);
    Show(rect, {1.0, 2.0}); // the last one alone is kept
    QCOMPARE(m_painted, 3);
}

/// One and the same vector too, which is equal to itself otherwise.
void tst_ZrKeptPicture::keyWithNan()
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const QVector<double> key{1.0, nan};
    for (int frame = 1; frame <= 3; ++frame) {
        Show(QRect(10, 5, 20, 15), key);
        QCOMPARE(m_painted, frame);
    }
    Show(QRect(10, 5, 20, 15), {1.0, nan});
    QCOMPARE(m_painted, 4);
}

/// It is painted in the coordinates of the widget: elsewhere something else is to be seen.
void tst_ZrKeptPicture::moved()
{
    const QRect rect(10, 5, 20, 15);
    Show(rect, {1.0});
    Show(rect.translated(0, 3), {1.0});
    QCOMPARE(m_painted, 2);
    QCOMPARE(m_widget.pixel(12, 9), mark);
    Show(rect.translated(3, 3), {1.0});
    QCOMPARE(m_painted, 3);
    QCOMPARE(m_widget.pixel(12, 9), ground); // left of it now
    QCOMPARE(m_widget.pixel(15, 9), ground);
    Show(rect.translated(3, 3), {1.0});
    QCOMPARE(m_painted, 3);
}

void tst_ZrKeptPicture::anotherSize()
{
    Show(QRect(10, 5, 20, 15), {1.0});
    Show(QRect(10, 5, 21, 15), {1.0});
    QCOMPARE(m_painted, 2);
    Show(QRect(10, 5, 21, 14), {1.0});
    QCOMPARE(m_painted, 3);
}

void tst_ZrKeptPicture::devicePixelRatio_data()
{
    QTest::addColumn<double>("ratio");
    QTest::addColumn<int>("painted"); // in 3 frames
    QTest::newRow("1") << 1.0 << 1;
    QTest::newRow("1.25") << 1.25 << 3;
    QTest::newRow("1.5") << 1.5 << 3;
    QTest::newRow("2") << 2.0 << 1;
    QTest::newRow("3") << 3.0 << 1;
}

void tst_ZrKeptPicture::devicePixelRatio()
{
    QFETCH(double, ratio);
    QFETCH(int, painted);
    m_place = QPoint(12, 8); // four pixels of any of these end where one of the screen does
    for (int frame = 0; frame < 3; ++frame) {
        Show(QRect(8, 4, 20, 16), {1.0}, ratio);
        QCOMPARE(m_widget.pixel(QPoint(12, 8) * ratio), mark);
        QCOMPARE(m_widget.pixel(QPoint(16, 12) * ratio), ground);
    }
    QCOMPARE(m_painted, painted);
    if (ratio == 2.0) // as sharp as the screen
        QCOMPARE(m_widget.pixel(25, 17), mark);
}

void tst_ZrKeptPicture::anotherDevicePixelRatio()
{
    const QRect rect(10, 5, 20, 15);
    Show(rect, {1.0}, 1.0);
    Show(rect, {1.0}, 2.0);
    QCOMPARE(m_painted, 2);
    QCOMPARE(m_widget.pixel(25, 19), mark);
    Show(rect, {1.0}, 1.0);
    QCOMPARE(m_painted, 3);
}

void tst_ZrKeptPicture::copiesShowTheSame()
{
    const QRect rect(10, 5, 20, 15);
    Show(rect, {1.0});
    const ZrKeptPicture kept = m_picture;
    Show(rect, {2.0});
    m_picture = kept;
    Show(rect, {1.0});
    QCOMPARE(m_painted, 2);
    QCOMPARE(m_widget.pixel(12, 9), mark);
}

void tst_ZrKeptPicture::nowhere_data()
{
    QTest::addColumn<QRect>("rect");
    QTest::addColumn<double>("ratio");
    QTest::newRow("null") << QRect() << 1.0;
    QTest::newRow("no width") << QRect(10, 5, 0, 15) << 1.0;
    QTest::newRow("no height") << QRect(10, 5, 20, 0) << 2.0;
    QTest::newRow("negative") << QRect(10, 5, -20, -15) << 1.0;
    QTest::newRow("painted each time") << QRect(10, 5, 0, 15) << 1.5;
}

void tst_ZrKeptPicture::nowhere()
{
    QFETCH(QRect, rect);
    QFETCH(double, ratio);
    Show(rect, {1.0}, ratio);
    QCOMPARE(m_painted, 0);
    const QImage shown = m_widget;
    m_widget.fill(ground);
    QCOMPARE(shown, m_widget);
}

/// What the widget painted below stays to be seen, in the picture before as in this one.
void tst_ZrKeptPicture::transparentWhereNothingIsPainted()
{
    m_widget = QImage(40, 30, QImage::Format_ARGB32_Premultiplied);
    for (const QRgb below : {0xFF00FF00U, 0xFF0000FFU}) {
        m_widget.fill(below);
        QPainter painter(&m_widget);
        m_picture.Paint(painter, QRect(10, 5, 20, 15), {1.0},
            [](QPainter& to) { to.fillRect(12, 9, 1, 1, QColor::fromRgba(mark)); });
        painter.end();
        QCOMPARE(m_widget.pixel(12, 9), mark);
        QCOMPARE(m_widget.pixel(13, 9), below);
    }
}

void tst_ZrKeptPicture::forgets()
{
    const QRect rect(10, 5, 20, 15);
    Show(rect, {1.0});
    m_picture = ZrKeptPicture();
    Show(rect, {1.0});
    QCOMPARE(m_painted, 2);
}

QTEST_MAIN(tst_ZrKeptPicture)
#include "tst_ZrKeptPicture.moc"
