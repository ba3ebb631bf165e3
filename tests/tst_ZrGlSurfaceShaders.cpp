// What the shaders compute, in both kinds of context: the programs of the surface and those for applications.

#include "GlSurfaceTest.h"

namespace {

constexpr int side = GlView::side;

/// \p over with \p alpha of 255 on \p under, as GL blends it.
QColor Blended(const QColor& under, const QColor& over, int alpha)
{
    const double a = alpha / 255.0;
    const auto mix = [a](int u, int o) { return qRound(u * (1 - a) + o * a); };
    return {mix(under.red(), over.red()), mix(under.green(), over.green()), mix(under.blue(), over.blue()),
        mix(under.alpha(), alpha)};
}

/// Entry \p at (0 to 1) of a band of the palettes, linear between the two nearest pixels.
QColor PaletteColour(const QImage& palettes, int band, double at, double alpha)
{
    const double pixel = std::clamp(at * 256.0 - 0.5, 0.0, 255.0);
    const int low = static_cast<int>(pixel);
    const QColor a = palettes.pixelColor(low, band * 10 + 5);
    const QColor b = palettes.pixelColor(std::min(low + 1, 255), band * 10 + 5);
    const auto mix = [&](int u, int v) { return qRound(u + (v - u) * (pixel - low)); };
    return {mix(a.red(), b.red()), mix(a.green(), b.green()), mix(a.blue(), b.blue()), qRound(alpha * 255)};
}

using Yuv = std::array<int, 3>;

} // namespace

Q_DECLARE_METATYPE(Yuv)

class tst_ZrGlSurfaceShaders : public GlSurfaceTest
{
    Q_OBJECT

private Q_SLOTS:
    void textureProgram();
    void alphaProgram();
    void luminanceProgram();
    void colourKeyProgram();
    void colourKeyOfAnApplication();
    void paletteProgram_data();
    void paletteProgram();
    void yuvProgram_data();
    void yuvProgram();
    void solidVertexShader();
    void videoIsTexture();
    void sidescan_data();
    void sidescan();
    void waterfall_data();
    void waterfall();

private:
    GLuint Use(const char* vertex, const char* fragment);
    void Set(const char* name, float value);
    void Set(const char* name, int value);
    void Draw(GLenum mode, int count, int size, const float* positions, const float* texCoords);

    GLuint m_program = 0;
};

/// A program of an application's, current, with the view's matrix.
GLuint tst_ZrGlSurfaceShaders::Use(const char* vertex, const char* fragment)
{
    m_program = static_cast<GLuint>(
        m_view->ZrglBuildProgram(QString::fromLatin1(vertex), QString::fromLatin1(fragment)));
    QOpenGLFunctions* f = m_context->Functions();
    f->glUseProgram(m_program);
    f->glUniformMatrix4fv(
        f->glGetUniformLocation(m_program, "uMatrix"), 1, GL_FALSE, m_view->m_proj.constData());
    return m_program;
}

void tst_ZrGlSurfaceShaders::Set(const char* name, float value)
{
    m_context->Functions()->glUniform1f(m_context->Functions()->glGetUniformLocation(m_program, name), value);
}

void tst_ZrGlSurfaceShaders::Set(const char* name, int value)
{
    m_context->Functions()->glUniform1i(m_context->Functions()->glGetUniformLocation(m_program, name), value);
}

/// \p size floats for each position, two for each texture coordinate.
void tst_ZrGlSurfaceShaders::Draw(
    GLenum mode, int count, int size, const float* positions, const float* texCoords)
{
    QOpenGLFunctions* f = m_context->Functions();
    const auto position = static_cast<GLuint>(f->glGetAttribLocation(m_program, "aPosition"));
    f->glEnableVertexAttribArray(position);
    f->glVertexAttribPointer(position, size, GL_FLOAT, GL_FALSE, 0, positions);
    const GLint coords = f->glGetAttribLocation(m_program, "aTexCoords");
    if (texCoords && coords >= 0) {
        f->glEnableVertexAttribArray(static_cast<GLuint>(coords));
        f->glVertexAttribPointer(static_cast<GLuint>(coords), 2, GL_FLOAT, GL_FALSE, 0, texCoords);
    }
    f->glDrawArrays(mode, 0, count);
    f->glDisableVertexAttribArray(position);
    if (coords >= 0)
        f->glDisableVertexAttribArray(static_cast<GLuint>(coords));
}

void tst_ZrGlSurfaceShaders::textureProgram()
{
    // Texels are pixels, with all alphas.
    QImage image(side, side, QImage::Format_RGBA8888);
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x)
            image.setPixelColor(x, y, QColor(4 * x, 4 * y, 128, (x * 5 + y * 3) % 256));
    }
    const QColor under(200, 100, 50);
    m_context->Clear(under);
    auto quad = WholeView();
    m_view->ZrglRenderVbo(quad.data(), m_context->Texture(image), ZrGlSurface::texture);
    const QImage seen = m_context->Read();
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            const QColor texel = image.pixelColor(x, y);
            QColor expected = Blended(under, texel, texel.alpha());
            // Alpha is blended by itself too.
            expected.setAlpha(seen.pixelColor(x, y).alpha());
            QVERIFY2(gl::Distance(seen.pixelColor(x, y), expected) <= 1,
                qPrintable(QStringLiteral("%1, %2: %3").arg(x).arg(y).arg(seen.pixelColor(x, y).name())));
        }
    }
}

void tst_ZrGlSurfaceShaders::alphaProgram()
{
    m_context->Clear(QColor(0, 0, 200));
    QImage image(2, 1, QImage::Format_RGBA8888);
    image.setPixelColor(0, 0, QColor(1, 2, 3, 64));
    image.setPixelColor(1, 0, QColor(255, 255, 255, 255));
    auto quad = WholeView();
    // The colour's own alpha does not count.
    m_view->m_colour = QColor(250, 100, 40, 7);
    m_view->ZrglRenderVbo(quad.data(), m_context->Texture(image), ZrGlSurface::alpha);
    const QImage seen = m_context->Read();
    const QColor left = Blended(QColor(0, 0, 200), QColor(250, 100, 40), 64);
    QVERIFY(gl::Distance(QColor(seen.pixelColor(5, 5).rgb()), QColor(left.rgb())) <= 1);
    QVERIFY(gl::Distance(seen.pixelColor(60, 60), QColor(250, 100, 40)) <= 1);
}

void tst_ZrGlSurfaceShaders::luminanceProgram()
{
    const QColor under(0, 60, 200);
    for (const QColor& texel : {QColor(255, 0, 0), QColor(0, 255, 0), QColor(0, 0, 255),
             QColor(200, 100, 50, 0), QColor(Qt::white), QColor(Qt::black)}) {
        m_context->Clear(under);
        QImage image(1, 1, QImage::Format_RGBA8888);
        image.fill(texel);
        auto quad = WholeView();
        m_view->ZrglRenderVbo(quad.data(), m_context->Texture(image), ZrGlSurface::luminance);
        const double a = 0.2126 * texel.red() + 0.7152 * texel.green() + 0.0722 * texel.blue();
        const QColor expected = Blended(under, texel, qRound(a));
        const QColor seen = m_context->Read().pixelColor(20, 20);
        QVERIFY2(gl::Distance(QColor(seen.rgb()), QColor(expected.rgb())) <= 2, qPrintable(seen.name()));
    }
}

void tst_ZrGlSurfaceShaders::colourKeyProgram()
{
    QImage image(2, 2, QImage::Format_RGBA8888);
    image.setPixelColor(0, 0, QColor(255, 0, 255, 255));
    image.setPixelColor(1, 0, QColor(0, 0, 0, 0));
    image.setPixelColor(0, 1, QColor(0, 0, 0, 255));
    image.setPixelColor(1, 1, QColor(10, 20, 30, 255));
    m_context->Clear(Qt::white);
    auto quad = WholeView();
    m_view->m_colKey = QColor(255, 0, 255, 255);
    m_view->ZrglRenderVbo(quad.data(), m_context->Texture(image), ZrGlSurface::colourkey);
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_INVALID_OPERATION));
    // Only transparent black is keyed, whatever the key.
    const QImage seen = m_context->Read();
    QCOMPARE(seen.pixelColor(10, 10), QColor(255, 0, 255));
    QCOMPARE(seen.pixelColor(50, 10), QColor(Qt::white));
    QCOMPARE(seen.pixelColor(10, 50), QColor(Qt::black));
    QCOMPARE(seen.pixelColor(50, 50), QColor(10, 20, 30));
}

void tst_ZrGlSurfaceShaders::colourKeyOfAnApplication()
{
    // Set as the vector that the shader declares, the key works.
    QImage image(2, 2, QImage::Format_RGBA8888);
    image.setPixelColor(0, 0, QColor(255, 0, 255, 255));
    image.setPixelColor(1, 0, QColor(255, 0, 0, 255));
    image.setPixelColor(0, 1, QColor(0, 0, 255, 255));
    image.setPixelColor(1, 1, QColor(255, 255, 255, 255));
    m_context->Clear(Qt::green);
    QOpenGLFunctions* f = m_context->Functions();
    const GLuint program = m_view->m_programs[ZrGlSurface::colourkey];
    f->glUseProgram(program);
    f->glUniform4f(f->glGetUniformLocation(program, "uColKey"), 1, 0, 1, 1);
    auto quad = WholeView();
    m_view->ZrglRenderVbo(quad.data(), m_context->Texture(image), ZrGlSurface::colourkey);
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_INVALID_OPERATION));
    const QImage seen = m_context->Read();
    QCOMPARE(seen.pixelColor(10, 10), QColor(Qt::green));
    QCOMPARE(seen.pixelColor(50, 10), QColor(Qt::red));
    QCOMPARE(seen.pixelColor(10, 50), QColor(Qt::blue));
    QCOMPARE(seen.pixelColor(50, 50), QColor(Qt::white));
}

void tst_ZrGlSurfaceShaders::paletteProgram_data()
{
    QTest::addColumn<int>("row");
    for (int i = 0; i < QImage(QStringLiteral(":/palettes.png")).height() / 10; ++i)
        QTest::addRow("%d", i) << i;
}

void tst_ZrGlSurfaceShaders::paletteProgram()
{
    QFETCH(int, row);
    const QImage palettes(QStringLiteral(":/palettes.png"));
    QCOMPARE(m_view->m_palCount, palettes.height() / 10);
    m_view->m_palIndex = row;
    auto quad = WholeView();
    for (int alpha = 0; alpha < 256; alpha += 15) {
        m_context->Clear(Qt::blue);
        m_view->ZrglRenderVbo(quad.data(), m_context->AlphaTexture(alpha), ZrGlSurface::palette);
        const double i = alpha / 255.0;
        const QColor expected = PaletteColour(palettes, row, i, 0.5 + i / 2);
        const QColor seen = m_context->Read().pixelColor(31, 31);
        QVERIFY2(gl::Distance(seen, expected) <= (m_isEs ? 4 : 2),
            qPrintable(QStringLiteral("%1: %2 instead of %3")
                           .arg(alpha)
                           .arg(seen.name(QColor::HexArgb), expected.name(QColor::HexArgb))));
    }
}

void tst_ZrGlSurfaceShaders::yuvProgram_data()
{
    QTest::addColumn<int>("space");
    QTest::addColumn<Yuv>("yuv");
    QTest::addColumn<QColor>("expected");

    // Y, Cb, Cr and what they are in BT.601 and in BT.709, worked out by hand from the matrices.
    struct Row
    {
        const char* name;
        Yuv yuv;
        QColor bt601;
        QColor bt709;
    };

    const Row rows[] = {
        {"black", {16, 128, 128}, {1, 0, 1}, {1, 0, 1}},
        {"white", {235, 128, 128}, {255, 254, 255}, {255, 255, 255}},
        {"middle grey", {126, 128, 128}, {129, 127, 129}, {129, 128, 129}},
        {"red", {81, 90, 240}, {255, 0, 0}, {255, 24, 0}},
        {"green", {145, 54, 34}, {1, 255, 2}, {0, 216, 0}},
        {"blue", {41, 240, 110}, {1, 0, 255}, {0, 14, 255}},
        {"least", {0, 0, 0}, {0, 135, 0}, {0, 77, 0}},
        {"most", {255, 255, 255}, {255, 125, 255}, {255, 183, 255}},
        {"sand", {180, 100, 150}, {227, 183, 135}, {231, 185, 133}},
    };
    for (const Row& row : rows) {
        QTest::addRow("%s, BT.601", row.name) << 1 << row.yuv << row.bt601;
        QTest::addRow("%s, BT.709", row.name) << 2 << row.yuv << row.bt709;
        for (const int other : {0, 3, -1})
            QTest::addRow("%s, %d", row.name, other) << other << row.yuv << QColor(128, 128, 128);
    }
}

void tst_ZrGlSurfaceShaders::yuvProgram()
{
    QFETCH(int, space);
    QFETCH(Yuv, yuv);
    QFETCH(QColor, expected);
    m_view->m_colourSpace = space;
    auto quad = WholeView();
    m_context->Clear(Qt::transparent);
    const unsigned y = m_context->AlphaTexture(yuv[0]);
    const unsigned cb = m_context->AlphaTexture(yuv[1]);
    const unsigned cr = m_context->AlphaTexture(yuv[2]);
    m_view->ZrglRenderVbo(quad.data(), {y, cb, cr}, ZrGlSurface::yuvplanar);
    const QColor seen = m_context->Read().pixelColor(31, 31);
    QVERIFY2(gl::Distance(seen, expected) <= 2, qPrintable(seen.name(QColor::HexArgb)));
}

void tst_ZrGlSurfaceShaders::solidVertexShader()
{
    // A point of five pixels, in three dimensions.
    QVERIFY(Use(":/solid.vsh", ":/solid.fsh") != 0);
    QOpenGLFunctions* f = m_context->Functions();
    f->glUniform4f(f->glGetUniformLocation(m_program, "uColour"), 1, 1, 0, 1);
    // Desktop OpenGL asks for point sizes of the shader's, OpenGL ES always takes them.
    constexpr GLenum programPointSize = 0x8642;
    if (!m_isEs)
        f->glEnable(programPointSize);
    const float points[] = {20.5F, 30.5F, -99, 50.5F, 10.5F, 99, 5, 5, 101};
    Draw(GL_POINTS, 3, 3, points, nullptr);
    QImage expected = Filled(Qt::black);
    for (int y = -2; y <= 2; ++y) {
        for (int x = -2; x <= 2; ++x) {
            expected.setPixelColor(20 + x, side - 1 - 30 + y, Qt::yellow);
            expected.setPixelColor(50 + x, side - 1 - 10 + y, Qt::yellow);
        }
    }
    // The third is beyond the far plane.
    const QString difference = Unlike(expected);
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void tst_ZrGlSurfaceShaders::videoIsTexture()
{
    QFile video(QStringLiteral(":/video.fsh"));
    QFile texture(QStringLiteral(":/texture.fsh"));
    QVERIFY(video.open(QIODevice::ReadOnly) && texture.open(QIODevice::ReadOnly));
    QCOMPARE(video.readAll(), texture.readAll());
    QFile mosaic(QStringLiteral(":/mosaic.vsh"));
    QFile waterfall(QStringLiteral(":/waterfall.vsh"));
    QVERIFY(mosaic.open(QIODevice::ReadOnly) && waterfall.open(QIODevice::ReadOnly));
    QCOMPARE(mosaic.readAll(), waterfall.readAll());
}

void tst_ZrGlSurfaceShaders::sidescan_data()
{
    QTest::addColumn<double>("clampAt");
    QTest::addColumn<double>("slope");
    QTest::addColumn<double>("gain");
    QTest::addColumn<double>("opacity");
    QTest::newRow("plain") << 0.0 << 0.0 << 0.0 << 0.0;
    QTest::newRow("clamp") << 0.25 << 0.0 << 0.0 << 0.0;
    QTest::newRow("slope") << 0.0 << 0.5 << 0.0 << 0.0;
    QTest::newRow("falling") << 0.5 << -0.5 << 0.0 << 0.0;
    QTest::newRow("gain") << 0.0 << 0.0 << 1.5 << 0.0;
    QTest::newRow("opaque") << 0.0 << 0.0 << 0.0 << 1.0;
    QTest::newRow("all") << 0.1 << 0.3 << 0.5 << 0.25;
}

void tst_ZrGlSurfaceShaders::sidescan()
{
    QFETCH(double, clampAt);
    QFETCH(double, slope);
    QFETCH(double, gain);
    QFETCH(double, opacity);
    const QImage palettes(QStringLiteral(":/palettes.png"));
    const int band = 1;
    QVERIFY(Use(":/texture.vsh", ":/sidescan.fsh") != 0);
    QOpenGLFunctions* f = m_context->Functions();
    Set("uPalUnit", 1);
    Set("uPalIndex", (static_cast<float>(band) + 0.5F) / static_cast<float>(m_view->m_palCount));
    Set("uClamp", static_cast<float>(clampAt));
    Set("uSlope", static_cast<float>(slope));
    Set("uGain", static_cast<float>(gain));
    Set("uAlpha", static_cast<float>(opacity));
    f->glActiveTexture(GL_TEXTURE1);
    f->glBindTexture(GL_TEXTURE_2D, m_view->m_palTex);
    f->glActiveTexture(GL_TEXTURE0);
    const float positions[] = {0, 0, 0, side, side, 0, side, side};
    const float coords[] = {0, 0, 0, 1, 1, 0, 1, 1};
    for (const int level : {0, 40, 128, 200, 255}) {
        f->glBindTexture(GL_TEXTURE_2D, m_context->AlphaTexture(level));
        m_context->Clear(Qt::transparent);
        Draw(GL_TRIANGLE_STRIP, 4, 2, positions, coords);
        const QImage seen = m_context->Read();
        for (const int x : {0, 20, 40, 63}) {
            const double r = clampAt + slope * (x + 0.5) / side;
            const double i = std::clamp((level / 255.0 - r) / (1 - r) * (1 + gain), 0.0, 1.0);
            const QColor expected = PaletteColour(palettes, band, i, std::min(1.0, i + opacity));
            QVERIFY2(gl::Distance(seen.pixelColor(x, 30), expected) <= (m_isEs ? 4 : 2),
                qPrintable(
                    QStringLiteral("%1 at %2: %3 instead of %4")
                        .arg(level)
                        .arg(x)
                        .arg(seen.pixelColor(x, 30).name(QColor::HexArgb), expected.name(QColor::HexArgb))));
        }
    }
}

void tst_ZrGlSurfaceShaders::waterfall_data()
{
    QTest::addColumn<int>("slant");
    QTest::addColumn<float>("range");
    QTest::addColumn<float>("altitude");
    QTest::addColumn<float>("sideways");
    QTest::addColumn<double>("column"); // of the far end of each line
    // Slant ranges of 50 m; the view is 32 pixels to each side.
    QTest::newRow("slant range") << 0 << 50.0F << 30.0F << 32.0F << 32.0;
    QTest::newRow("on the ground") << 1 << 50.0F << 30.0F << 32.0F << 25.6;
    QTest::newRow("port") << 1 << 50.0F << 30.0F << -32.0F << -25.6;
    QTest::newRow("no altitude") << 1 << 50.0F << 0.0F << 32.0F << 32.0;
    QTest::newRow("negative altitude") << 1 << 50.0F << -30.0F << 32.0F << 32.0;
    QTest::newRow("wider") << 1 << 100.0F << 30.0F << 32.0F << 12.8;
    // The altitude is no depth in the view, which reaches 100 before and behind its plane.
    QTest::newRow("high above") << 0 << 50.0F << 150.0F << 32.0F << 32.0;
    QTest::newRow("in the water column") << 1 << 50.0F << 60.0F << 32.0F << 0.0;
}

void tst_ZrGlSurfaceShaders::waterfall()
{
    QFETCH(int, slant);
    QFETCH(float, range);
    QFETCH(float, altitude);
    QFETCH(float, sideways);
    QFETCH(double, column);
    m_view->zrgl2dProjection(-32, 32, 0, 64, aspectStretch);
    for (const char* shader : {":/waterfall.vsh", ":/mosaic.vsh"}) {
        m_context->Clear(Qt::black);
        QVERIFY(Use(shader, ":/texture.fsh") != 0);
        Set("uSlant", slant);
        Set("uRange", range);
        Set("uSide", sideways);
        Set("uScale", 4.0F);
        Set("uOff", 8.0F);
        QImage image(2, 1, QImage::Format_RGBA8888);
        image.setPixelColor(0, 0, Qt::red);
        image.setPixelColor(1, 0, Qt::green);
        m_context->Functions()->glBindTexture(GL_TEXTURE_2D, m_context->Texture(image));
        // Two lines of a survey, from the sonar to a slant range of 50 m: rows 8 to 16 of the view.
        const float positions[] = {0, 0, altitude, 0, 2, altitude, 50, 0, altitude, 50, 2, altitude};
        const float coords[] = {0, 0, 0, 1, 1, 0, 1, 1};
        Draw(GL_TRIANGLE_STRIP, 4, 3, positions, coords);
        const double far = 32 + column;
        const double middle = 32 + column / 2;
        QImage expected = Filled(Qt::black);
        for (int x = 0; x < side; ++x) {
            const double at = x + 0.5;
            const bool isIn = at > std::min(32.0, far) && at < std::max(32.0, far);
            const bool isNear = (at < middle) == (far > 32);
            for (int y = 8; isIn && y < 16; ++y)
                expected.setPixelColor(x, side - 1 - y, isNear ? Qt::red : Qt::green);
        }
        const QString difference = Unlike(expected);
        QVERIFY2(difference.isEmpty(), qPrintable(difference));
    }
}

GL_TEST_MAIN(tst_ZrGlSurfaceShaders)
#include "tst_ZrGlSurfaceShaders.moc"
