// The buffer of laid-out text and how texts are laid out; neither needs a context.

#include "ZrUtil/ZrGlSurface.h"
#include "ZrUtil/ZrGlTextBuffer.h"

#include <QtTest>
#include <QtWidgets>

#include <limits>

namespace {

class View : public ZrGlSurface
{
public:
    void Render() override { }

    void OnResize(int /*width*/, int /*height*/) override { }
};

QFont Font(int pixels)
{
    QFont font(QStringLiteral("Liberation Sans"));
    font.setPixelSize(pixels);
    return font;
}

} // namespace

class tst_ZrGlTextBuffer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void starts();
    void grows();
    void refuses_data();
    void refuses();
    void clears();

    void emptyTextChangesNothing();
    void noRoomChangesNothing();
    void twoTriangles();
    void textsFollowOneAnother();
    void flags_data();
    void flags();
    void mirrored();
    void scaled();
    void turned();
    void outsideTheTable();
    void lastOfTheTable();
    void highestCounts();
    void surrogates();
    void longText();

    void noFontYet();
};

void tst_ZrGlTextBuffer::starts()
{
    const ZrGlTextBuffer buffer;
    QVERIFY(!buffer.m_data);
    QCOMPARE(buffer.m_count, 0);
}

void tst_ZrGlTextBuffer::grows()
{
    ZrGlTextBuffer buffer;
    float value = 0;
    for (int i = 0; i < 100; ++i) {
        float* at = buffer.Grow(3);
        QVERIFY(at);
        QCOMPARE(at, buffer.m_data + buffer.m_count * 24);
        for (int k = 0; k < 3 * 24; ++k)
            at[k] = value++;
        buffer.m_count += 3;
    }
    QCOMPARE(buffer.m_count, 300);
    for (int k = 0; k < 300 * 24; ++k)
        QCOMPARE(buffer.m_data[k], static_cast<float>(k));
}

void tst_ZrGlTextBuffer::refuses_data()
{
    QTest::addColumn<int>("more");
    QTest::newRow("none") << 0;
    QTest::newRow("negative") << -1;
    QTest::newRow("least") << std::numeric_limits<int>::min();
    QTest::newRow("most") << std::numeric_limits<int>::max();
    QTest::newRow("a float too many") << std::numeric_limits<int>::max() / 24 + 1;
}

void tst_ZrGlTextBuffer::refuses()
{
    QFETCH(int, more);
    ZrGlTextBuffer buffer;
    QVERIFY(!buffer.Grow(more));
    QVERIFY(!buffer.m_data);
    buffer.Grow(2)[47] = 7.0F;
    buffer.m_count = 2;
    float* before = buffer.m_data;
    QVERIFY(!buffer.Grow(more));
    QCOMPARE(buffer.m_data, before);
    QCOMPARE(buffer.m_count, 2);
    QCOMPARE(buffer.m_data[47], 7.0F);
}

void tst_ZrGlTextBuffer::clears()
{
    ZrGlTextBuffer buffer;
    buffer.Grow(5);
    buffer.m_count = 5;
    float* before = buffer.m_data;
    buffer.Clear();
    QCOMPARE(buffer.m_count, 0);
    QCOMPARE(buffer.Grow(5), before);
}

void tst_ZrGlTextBuffer::emptyTextChangesNothing()
{
    View view;
    view.ZrglSetFont(Font(16));
    ZrGlTextBuffer buffer;
    view.ZrglAddText(buffer, 1, 2, 3, QString(), 0);
    view.ZrglAddText(buffer, 1, 2, 3, QStringLiteral(""), 255);
    QVERIFY(!buffer.m_data);
    QCOMPARE(buffer.m_count, 0);
}

void tst_ZrGlTextBuffer::noRoomChangesNothing()
{
    View view;
    view.ZrglSetFont(Font(16));
    ZrGlTextBuffer buffer;
    const int most = std::numeric_limits<int>::max() / 24;
    buffer.m_count = most;
    view.ZrglAddText(buffer, 1, 2, 3, QStringLiteral("a"), 0);
    QVERIFY(!buffer.m_data);
    QCOMPARE(buffer.m_count, most);
}

void tst_ZrGlTextBuffer::twoTriangles()
{
    View view;
    view.ZrglSetFont(Font(16));
    const ZrGlSurface::Glyph& g = view.m_glyphs['M' - 32];
    ZrGlTextBuffer buffer;
    view.ZrglAddText(buffer, 10, 20, 0, QStringLiteral("M"), 0);
    QCOMPARE(buffer.m_count, 1);
    // Each corner has its own texture coordinates; the two triangles cover the cell once.
    const float left = 10;
    const float right = 10 + static_cast<float>(g.width);
    const float low = 20;
    const float high = 20 + static_cast<float>(g.height);
    double area = 0;
    for (int v = 0; v < 6; ++v) {
        const float* at = buffer.m_data + v * 4;
        QVERIFY(at[0] == left || at[0] == right);
        QVERIFY(at[1] == low || at[1] == high);
        QCOMPARE(at[2], at[0] == left ? g.s0 : g.s1);
        QCOMPARE(at[3], at[1] == low ? g.t1 : g.t0);
    }
    for (int t = 0; t < 2; ++t) {
        const float* p = buffer.m_data + t * 12;
        const double doubled
            = static_cast<double>((p[4] - p[0]) * (p[9] - p[1]) - (p[8] - p[0]) * (p[5] - p[1]));
        area += std::fabs(doubled) / 2;
    }
    QCOMPARE(area, static_cast<double>(g.width * g.height));
}

void tst_ZrGlTextBuffer::textsFollowOneAnother()
{
    View view;
    view.ZrglSetFont(Font(16));
    ZrGlTextBuffer both;
    view.ZrglAddText(both, 0, 0, 0, QStringLiteral("ab"), 0);
    view.ZrglAddText(both, 50, 60, 0, QStringLiteral("cde"), 0);
    QCOMPARE(both.m_count, 5);
    ZrGlTextBuffer second;
    view.ZrglAddText(second, 50, 60, 0, QStringLiteral("cde"), 0);
    QVERIFY(std::equal(second.m_data, second.m_data + 3 * 24, both.m_data + 2 * 24));
}

void tst_ZrGlTextBuffer::flags_data()
{
    // Where the lower left corner is, in widths and heights of the text from its position.
    QTest::addColumn<unsigned>("flags");
    QTest::addColumn<double>("x");
    QTest::addColumn<double>("y");
    QTest::newRow("none") << 0U << 0.0 << 0.0;
    QTest::newRow("1 means nothing") << 1U << 0.0 << 0.0;
    QTest::newRow("centre") << 2U << -0.5 << 0.0;
    QTest::newRow("right") << 4U << -1.0 << 0.0;
    QTest::newRow("top") << 8U << 0.0 << -1.0;
    QTest::newRow("middle") << 16U << 0.0 << -0.5;
    QTest::newRow("32 means nothing") << 32U << 0.0 << 0.0;
    QTest::newRow("centre of all") << 18U << -0.5 << -0.5;
    QTest::newRow("top right") << 12U << -1.0 << -1.0;
    QTest::newRow("centre before right") << 6U << -0.5 << 0.0;
    QTest::newRow("middle before top") << 24U << 0.0 << -0.5;
    QTest::newRow("mirrored in place") << 192U << 0.0 << 0.0;
}

void tst_ZrGlTextBuffer::flags()
{
    QFETCH(unsigned, flags);
    QFETCH(double, x);
    QFETCH(double, y);
    View view;
    view.ZrglSetFont(Font(16));
    const QString text = QStringLiteral("12.5 m");
    int width = 0;
    for (const QChar c : text)
        width += view.m_glyphs[static_cast<std::size_t>(c.unicode() - 32)].width;
    const int height = view.m_glyphs[0].height;
    ZrGlTextBuffer buffer;
    view.ZrglAddText(buffer, 100, 200, 0, text, flags);
    float least[2] = {1e9F, 1e9F};
    float most[2] = {-1e9F, -1e9F};
    for (int v = 0; v < buffer.m_count * 6; ++v) {
        for (int k = 0; k < 2; ++k) {
            least[k] = std::min(least[k], buffer.m_data[v * 4 + k]);
            most[k] = std::max(most[k], buffer.m_data[v * 4 + k]);
        }
    }
    QCOMPARE(least[0], static_cast<float>(100 + x * width));
    QCOMPARE(most[0], static_cast<float>(100 + (x + 1) * width));
    QCOMPARE(least[1], static_cast<float>(200 + y * height));
    QCOMPARE(most[1], static_cast<float>(200 + (y + 1) * height));
}

void tst_ZrGlTextBuffer::mirrored()
{
    View view;
    view.ZrglSetFont(Font(16));
    ZrGlTextBuffer plain;
    view.ZrglAddText(plain, 0, 0, 0, QStringLiteral("k"), 0);
    const ZrGlSurface::Glyph& g = view.m_glyphs['k' - 32];
    for (const unsigned flags : {1U, 32U, 64U, 128U, 192U}) {
        ZrGlTextBuffer buffer;
        view.ZrglAddText(buffer, 0, 0, 0, QStringLiteral("k"), flags);
        for (int v = 0; v < 6; ++v) {
            const float* a = plain.m_data + v * 4;
            const float* b = buffer.m_data + v * 4;
            QCOMPARE(b[0], a[0]);
            QCOMPARE(b[1], a[1]);
            QCOMPARE(b[2], flags & 64U ? g.s0 + g.s1 - a[2] : a[2]);
            QCOMPARE(b[3], flags & 128U ? g.t0 + g.t1 - a[3] : a[3]);
        }
    }
}

void tst_ZrGlTextBuffer::scaled()
{
    View view;
    view.ZrglSetFont(Font(16));
    view.zrgl2dViewport(100, 50);
    view.zrgl2dProjection(0, 200, 0, 25, aspectStretch);
    ZrGlTextBuffer buffer;
    view.ZrglAddText(buffer, 0, 0, 0, QStringLiteral("Wi"), 0);
    const float wide = static_cast<float>(view.m_glyphs['W' - 32].width + view.m_glyphs['i' - 32].width);
    const float* last = buffer.m_data + 11 * 4;
    QCOMPARE(last[0], wide * 2);
    QCOMPARE(last[1], static_cast<float>(view.m_glyphs[0].height) * 0.5F);
}

void tst_ZrGlTextBuffer::turned()
{
    View view;
    view.ZrglSetFont(Font(16));
    ZrGlTextBuffer plain;
    view.ZrglAddText(plain, 0, 0, 0, QStringLiteral("ab"), 18);
    for (const float angle : {30.0F, 90.0F, -120.0F, 720.0F}) {
        ZrGlTextBuffer buffer;
        view.ZrglAddText(buffer, 7, -3, angle, QStringLiteral("ab"), 18);
        const double a = qDegreesToRadians(static_cast<double>(angle));
        for (int v = 0; v < 12; ++v) {
            const auto x = static_cast<double>(plain.m_data[v * 4]);
            const auto y = static_cast<double>(plain.m_data[v * 4 + 1]);
            QVERIFY(
                std::fabs(static_cast<double>(buffer.m_data[v * 4]) - (7 + x * std::cos(a) - y * std::sin(a)))
                < 1e-4);
            QVERIFY(std::fabs(static_cast<double>(buffer.m_data[v * 4 + 1])
                        - (-3 + x * std::sin(a) + y * std::cos(a)))
                < 1e-4);
        }
    }
}

void tst_ZrGlTextBuffer::outsideTheTable()
{
    View view;
    view.ZrglSetFont(Font(16));
    ZrGlTextBuffer buffer;
    // 31 and 126 are the neighbours of the table.
    const QString text = QString(QChar(31)) + QChar(126) + QStringLiteral("a") + QChar(0) + QChar(0xffff);
    view.ZrglAddText(buffer, 0, 0, 0, text + QStringLiteral("b"), 4);
    QCOMPARE(buffer.m_count, 6);
    const auto a = static_cast<float>(view.m_glyphs['a' - 32].width);
    const auto b = static_cast<float>(view.m_glyphs['b' - 32].width);
    const auto leftOf = [&buffer](int c) { return buffer.m_data[c * 24]; };
    QCOMPARE(leftOf(0), -(a + b));
    QCOMPARE(leftOf(1), -(a + b));
    QCOMPARE(leftOf(2), -(a + b));
    QCOMPARE(leftOf(3), -b);
    QCOMPARE(leftOf(5), -b);
    QCOMPARE(buffer.m_data[5 * 24 + 5 * 4], 0.0F);
    for (int i = 0; i < 6 * 24; ++i)
        QVERIFY(std::isfinite(buffer.m_data[i]));
}

void tst_ZrGlTextBuffer::lastOfTheTable()
{
    View view;
    view.ZrglSetFont(Font(16));
    ZrGlTextBuffer buffer;
    view.ZrglAddText(buffer, 0, 0, 0, QStringLiteral("}"), 0);
    QVERIFY(view.m_glyphs[93].width > 0);
    QCOMPARE(buffer.m_data[5 * 4], static_cast<float>(view.m_glyphs[93].width));
}

void tst_ZrGlTextBuffer::highestCounts()
{
    // A character outside the table has no height, wherever it stands.
    View view;
    view.ZrglSetFont(Font(16));
    const auto high = static_cast<float>(view.m_glyphs['a' - 32].height);
    for (const QString& text : {QStringLiteral("a\u20ac"), QStringLiteral("\u20aca")}) {
        ZrGlTextBuffer buffer;
        view.ZrglAddText(buffer, 0, 0, 0, text, 8);
        QCOMPARE(buffer.m_data[1], -high);
    }
}

void tst_ZrGlTextBuffer::surrogates()
{
    View view;
    view.ZrglSetFont(Font(16));
    ZrGlTextBuffer buffer;
    const uint fish = 0x1f41f;
    view.ZrglAddText(buffer, 3, 4, 0, QString::fromUcs4(&fish, 1), 22);
    QCOMPARE(buffer.m_count, 2);
    for (int v = 0; v < 12; ++v) {
        QCOMPARE(buffer.m_data[v * 4], 3.0F);
        QCOMPARE(buffer.m_data[v * 4 + 1], 4.0F);
    }
}

void tst_ZrGlTextBuffer::longText()
{
    View view;
    view.ZrglSetFont(Font(16));
    ZrGlTextBuffer buffer;
    const int count = 100000;
    view.ZrglAddText(buffer, 0, 0, 0, QString(count, QLatin1Char('x')), 0);
    QCOMPARE(buffer.m_count, count);
    const float right = buffer.m_data[(count * 6 - 1) * 4];
    QCOMPARE(right, static_cast<float>(count) * static_cast<float>(view.m_glyphs['x' - 32].width));
}

void tst_ZrGlTextBuffer::noFontYet()
{
    // Characters have no size before there is a font: nothing that is not a number comes of it.
    View view;
    ZrGlTextBuffer buffer;
    view.ZrglAddText(buffer, 3, 4, 30, QStringLiteral("abc"), 18);
    QCOMPARE(buffer.m_count, 3);
    for (int v = 0; v < 18; ++v) {
        QCOMPARE(buffer.m_data[v * 4], 3.0F);
        QCOMPARE(buffer.m_data[v * 4 + 1], 4.0F);
    }
}

QTEST_MAIN(tst_ZrGlTextBuffer)
#include "tst_ZrGlTextBuffer.moc"
