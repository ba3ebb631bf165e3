// Texts in the framebuffer, in both kinds of context.

#include "GlSurfaceTest.h"

namespace {

constexpr int side = GlView::side;

/// Rid of alpha, which blending changes.
QImage Opaque(const QImage& image)
{
    return image.convertToFormat(QImage::Format_RGB32);
}

} // namespace

class tst_ZrGlSurfaceText : public GlSurfaceTest
{
    Q_OBJECT

private Q_SLOTS:
    void text();
    void inkCoversTheGround();
    void textMirrored_data();
    void textMirrored();
    void uprightInMirroredViews_data();
    void uprightInMirroredViews();
    void placedAndTurned_data();
    void placedAndTurned();
    void sizeInPixels();
    void textOutsideTheTable();
    void fontChanges();
    void everyGlyph();
    void glyphsAreThoseOfTheFont();

private:
    QImage Block(const QString& text, unsigned flags);
    QImage TextImage(const QString& text, unsigned flags);
    QString UnlikeText(const QImage& expected);
};

/// What a text must look like: glyph cells of the atlas side by side, white on black.
QImage tst_ZrGlSurfaceText::Block(const QString& text, unsigned flags)
{
    const ZrGlSurface::Glyph& first = m_view->m_glyphs[0];
    const int atlasWidth = qRound(static_cast<float>(first.width) / (first.s1 - first.s0));
    const int atlasHeight = qRound(static_cast<float>(first.height) / (first.t1 - first.t0));
    const QImage atlas = m_context->ReadTexture(m_view->m_fontTex, QSize(atlasWidth, atlasHeight));
    int width = 0;
    for (const QChar c : text)
        width += m_view->m_glyphs[static_cast<std::size_t>(c.unicode() - 32)].width;
    QImage block(width, first.height, QImage::Format_RGB32);
    int pen = 0;
    for (const QChar c : text) {
        const ZrGlSurface::Glyph& g = m_view->m_glyphs[static_cast<std::size_t>(c.unicode() - 32)];
        const QImage cell = atlas
                                .copy(qRound(g.s0 * static_cast<float>(atlasWidth)),
                                    qRound(g.t0 * static_cast<float>(atlasHeight)), g.width, g.height)
                                .mirrored(flags & ZrGlSurface::textMirrorX, flags & ZrGlSurface::textMirrorY);
        for (int y = 0; y < cell.height(); ++y) {
            for (int x = 0; x < cell.width(); ++x) {
                const int a = cell.pixelColor(x, y).alpha();
                block.setPixelColor(pen + x, y, QColor(a, a, a));
            }
        }
        pen += g.width;
    }
    return block;
}

/// The framebuffer with a text at 4, 20.
QImage tst_ZrGlSurfaceText::TextImage(const QString& text, unsigned flags)
{
    const QImage block = Block(text, flags);
    QImage image = Filled(Qt::black);
    for (int y = 0; y < block.height(); ++y) {
        for (int x = 0; x < block.width(); ++x) {
            const int row = side - 20 - block.height() + y;
            if (4 + x < side && row >= 0)
                image.setPixelColor(4 + x, row, block.pixelColor(x, y));
        }
    }
    return image;
}

QString tst_ZrGlSurfaceText::UnlikeText(const QImage& expected)
{
    // The fragments of OpenGL ES are computed with 10 bits.
    return gl::Difference(Opaque(m_context->Read()), Opaque(expected), m_isEs ? 16 : 2);
}

void tst_ZrGlSurfaceText::text()
{
    ZrGlTextBuffer buffer;
    m_view->ZrglAddText(buffer, 4, 20, 0, QStringLiteral("Ag(8}"), 0);
    // The colour in force does not matter.
    m_view->m_colour = Qt::red;
    m_view->ZrglRenderText(buffer);
    const QImage expected = TextImage(QStringLiteral("Ag(8}"), 0);
    QVERIFY(gl::CountNot(expected, Qt::black) > 60);
    const QString difference = UnlikeText(expected);
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void tst_ZrGlSurfaceText::inkCoversTheGround()
{
    // White, by the alpha of the atlas alone: on white nothing shows, on red the green only grows.
    ZrGlTextBuffer buffer;
    m_view->ZrglAddText(buffer, 4, 20, 0, QStringLiteral("Wg@"), 0);
    m_context->Clear(Qt::white);
    m_view->ZrglRenderText(buffer);
    QCOMPARE(gl::CountNot(Opaque(m_context->Read()), Qt::white), 0);
    m_context->Clear(Qt::red);
    m_view->ZrglRenderText(buffer);
    const QImage ink = TextImage(QStringLiteral("Wg@"), 0);
    const QImage seen = m_context->Read();
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            const int a = ink.pixelColor(x, y).red();
            QVERIFY(
                gl::Distance(QColor(seen.pixelColor(x, y).rgb()), QColor(255, a, a)) <= (m_isEs ? 16 : 2));
        }
    }
}

void tst_ZrGlSurfaceText::textMirrored_data()
{
    QTest::addColumn<unsigned>("flags");
    QTest::newRow("x") << 64U;
    QTest::newRow("y") << 128U;
    QTest::newRow("both") << 192U;
}

void tst_ZrGlSurfaceText::textMirrored()
{
    QFETCH(unsigned, flags);
    ZrGlTextBuffer buffer;
    m_view->ZrglAddText(buffer, 4, 20, 0, QStringLiteral("Fg7"), flags);
    m_view->ZrglRenderText(buffer);
    const QImage expected = TextImage(QStringLiteral("Fg7"), flags);
    QVERIFY(!gl::Difference(expected, TextImage(QStringLiteral("Fg7"), 0), 60).isEmpty());
    const QString difference = UnlikeText(expected);
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void tst_ZrGlSurfaceText::uprightInMirroredViews_data()
{
    QTest::addColumn<unsigned>("flags");
    QTest::newRow("y down") << 128U;
    QTest::newRow("x to the left") << 64U;
}

void tst_ZrGlSurfaceText::uprightInMirroredViews()
{
    // One glyph: of several the order is mirrored with the view.
    QFETCH(unsigned, flags);
    const bool isDown = flags == ZrGlSurface::textMirrorY;
    const int width = m_view->m_glyphs['R' - 32].width;
    const int height = m_view->m_glyphs['R' - 32].height;
    ZrGlTextBuffer buffer;
    if (isDown) {
        m_view->zrgl2dProjection(0, side, side, 0, aspectStretch);
        m_view->ZrglAddText(buffer, 4, static_cast<float>(side - 20 - height), 0, QStringLiteral("R"), flags);
    } else {
        m_view->zrgl2dProjection(side, 0, 0, side, aspectStretch);
        m_view->ZrglAddText(buffer, static_cast<float>(side - 4 - width), 20, 0, QStringLiteral("R"), flags);
    }
    m_view->ZrglRenderText(buffer);
    const QString difference = UnlikeText(TextImage(QStringLiteral("R"), 0));
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void tst_ZrGlSurfaceText::placedAndTurned_data()
{
    QTest::addColumn<unsigned>("flags");
    QTest::addColumn<int>("angle");
    for (const unsigned flags :
        {0U, 2U, 4U, 8U, 16U, 10U, 18U, 12U, 20U, 64U + 18U, 128U + 12U, 192U + 2U, 33U}) {
        for (const int angle : {0, 90, 180, 270, -90, 360})
            QTest::addRow("%u at %d", flags, angle) << flags << angle;
    }
}

void tst_ZrGlSurfaceText::placedAndTurned()
{
    QFETCH(unsigned, flags);
    QFETCH(int, angle);
    const QString text = QStringLiteral("Fg7");
    const QImage block = Block(text, flags);
    // Where the lower left corner is as seen from the position, the text not turned.
    const double w = block.width();
    const double h = block.height();
    const double left = flags & 2U ? -w / 2 : flags & 4U ? -w : 0;
    const double low = flags & 16U ? -h / 2 : flags & 8U ? -h : 0;
    const int turns = (angle / 90 + 8) % 4;
    const int cosine = turns == 0 ? 1 : turns == 2 ? -1 : 0;
    const int sine = turns == 1 ? 1 : turns == 3 ? -1 : 0;
    // A position that puts the corner between pixels.
    const double halfX = left - std::floor(left);
    const double halfY = low - std::floor(low);
    const double x = 32 + halfX * cosine - halfY * sine;
    const double y = 32 + halfX * sine + halfY * cosine;
    ZrGlTextBuffer buffer;
    m_view->ZrglAddText(
        buffer, static_cast<float>(x), static_cast<float>(y), static_cast<float>(angle), text, flags);
    m_view->ZrglRenderText(buffer);
    QImage expected = Filled(Qt::black);
    for (int row = 0; row < side; ++row) {
        for (int column = 0; column < side; ++column) {
            const double dx = column + 0.5 - x;
            const double dy = side - row - 0.5 - y;
            const int textX = static_cast<int>(std::floor(dx * cosine + dy * sine - left));
            const int textY = static_cast<int>(std::floor(dy * cosine - dx * sine - low));
            const QPoint at(textX, block.height() - 1 - textY);
            if (block.rect().contains(at))
                expected.setPixelColor(column, row, block.pixelColor(at));
        }
    }
    QVERIFY(gl::CountNot(expected, Qt::black) > 60);
    const QString difference = UnlikeText(expected);
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void tst_ZrGlSurfaceText::sizeInPixels()
{
    // Laid out for the scale at the time: as large in a view of other units.
    m_view->zrgl2dProjection(0, 640, 0, 6.4F, aspectStretch);
    ZrGlTextBuffer buffer;
    m_view->ZrglAddText(buffer, 40, 2, 0, QStringLiteral("Fg7"), 0);
    m_view->ZrglRenderText(buffer);
    const QString difference = UnlikeText(TextImage(QStringLiteral("Fg7"), 0));
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void tst_ZrGlSurfaceText::textOutsideTheTable()
{
    ZrGlTextBuffer buffer;
    m_view->ZrglAddText(buffer, 4, 20, 0, QStringLiteral("F\u00e9~g\u20ac\n7"), 0);
    m_view->ZrglRenderText(buffer);
    const QString difference = UnlikeText(TextImage(QStringLiteral("Fg7"), 0));
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void tst_ZrGlSurfaceText::fontChanges()
{
    const GLuint tex = m_view->m_fontTex;
    QFont font = m_view->m_font;
    font.setPixelSize(29);
    m_view->ZrglSetFont(font);
    QCOMPARE(m_view->m_fontTex, tex);
    QCOMPARE(m_view->m_glyphs[0].height, QFontMetrics(font).height());
    ZrGlTextBuffer buffer;
    m_view->ZrglAddText(buffer, 4, 20, 0, QStringLiteral("R4"), 0);
    m_view->ZrglRenderText(buffer);
    const QString difference = UnlikeText(TextImage(QStringLiteral("R4"), 0));
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void tst_ZrGlSurfaceText::everyGlyph()
{
    // Each code from 32 to 125 shows its own cell, which has ink unless it is the blank.
    for (int code = 32; code <= 125; ++code) {
        m_context->Clear(Qt::black);
        ZrGlTextBuffer buffer;
        const QString text = QString(QChar(code));
        m_view->ZrglAddText(buffer, 4, 20, 0, text, 0);
        m_view->ZrglRenderText(buffer);
        const QImage expected = TextImage(text, 0);
        QCOMPARE(gl::CountNot(expected, Qt::black) > 0, code != 32);
        const QString difference = UnlikeText(expected);
        QVERIFY2(difference.isEmpty(), qPrintable(text + QLatin1Char(' ') + difference));
    }
}

void tst_ZrGlSurfaceText::glyphsAreThoseOfTheFont()
{
    // Painted by Qt alone; smoothing may differ a little.
    QImage painted(side, side, QImage::Format_ARGB32);
    painted.fill(0);
    QPainter painter(&painted);
    painter.setRenderHint(QPainter::TextAntialiasing);
    painter.setFont(m_view->m_font);
    painter.setPen(Qt::white);
    const ZrGlSurface::Glyph& g = m_view->m_glyphs['K' - 32];
    painter.drawText(0, 0, g.width, g.height, 0, QStringLiteral("K"));
    painter.end();
    const QImage block = Block(QStringLiteral("K"), 0);
    for (int y = 0; y < g.height; ++y) {
        for (int x = 0; x < g.width; ++x)
            QVERIFY(std::abs(qAlpha(painted.pixel(x, y)) - block.pixelColor(x, y).red()) <= 8);
    }
}

GL_TEST_MAIN(tst_ZrGlSurfaceText)
#include "tst_ZrGlSurfaceText.moc"
