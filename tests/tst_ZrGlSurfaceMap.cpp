// Map coordinates as split doubles: exact to the pixel far from the origin of the grid, in both kinds of
// context.

#include "GlSurfaceTest.h"

#include <random>

namespace {

constexpr int wide = 1024;
constexpr int high = 256;

/// A map view's centre and scale, and how it splits them.
struct MapView
{
    double x; ///< centre, metres
    double y;
    double metresPerPixel;
    double step; ///< ordinals are multiples of this many metres
    int scaleBits; ///< of the scale's first part; 0 for all that a float holds
};

/// A value in two floats, the first of at most \p bits bits.
std::array<float, 2> Split(double value, int bits)
{
    double first = value;
    if (bits > 0) {
        int exponent = 0;
        const double mantissa = std::frexp(value, &exponent);
        first = std::ldexp(std::round(std::ldexp(mantissa, bits)), exponent - bits);
    }
    const auto big = static_cast<float>(first);
    return {big, static_cast<float>(value - static_cast<double>(big))};
}

/// What the vertex shaders compute before they add the offset.
float Placed(
    float ordinal, float decimal, const std::array<float, 2>& scale, const std::array<float, 2>& origin)
{
    return ordinal * scale[0] - origin[0] - origin[1] + ordinal * scale[1] + decimal * scale[0]
        + decimal * scale[1];
}

} // namespace

Q_DECLARE_METATYPE(MapView)

class tst_ZrGlSurfaceMap : public GlSurfaceTest
{
    Q_OBJECT

public:
    tst_ZrGlSurfaceMap()
        : GlSurfaceTest(true, QSize(wide, high))
    {
    }

private Q_SLOTS:
    void lines_data();
    void lines();
    void points_data();
    void points();
    void singlePixels();
    void picture();
    void offsetIsAdded_data();
    void offsetIsAdded();
    void otherValuesPassUnchanged();
    void texturesWithOtherValues();

private:
    void AddViews();
    void Use(int program, const MapView& map);
    std::array<float, 4> Vertex(const MapView& map, double column, double row) const;
    void Draw(GLenum mode, const std::vector<std::array<float, 4>>& vertices, const float* texCoords);
};

/// Both vertex shaders on a variety of maps.
void tst_ZrGlSurfaceMap::AddViews()
{
    QTest::addColumn<int>("program");
    QTest::addColumn<MapView>("map");
    const QVector<QPair<const char*, MapView>> maps{
        {"a centimetre, 8 m", {512345.125, 4812345.375, 0.01, 8, 0}},
        {"anywhere between", {512345.678, 4812345.321, 0.01, 8, 0}},
        {"on an ordinal", {512344, 4812344, 0.01, 8, 0}},
        {"south and west", {-512345.678, -4812345.321, 0.01, 8, 0}},
        {"far north", {833978.77, 9999987.65, 0.01, 16, 0}},
        {"near the origin", {0.005, -0.015, 0.01, 8, 0}},
        {"3 cm", {512345.678, 4812345.321, 0.03, 256, 9}},
        {"any scale", {512345.678, 4812345.321, 0.012345, 256, 9}},
        {"1.7 m", {512345.678, 4812345.321, 1.7, 256, 9}},
        {"25 m", {512345.678, 4812345.321, 25, 256, 9}},
    };
    for (const auto& map : maps) {
        QTest::addRow("map.vsh, %s", map.first) << int(ZrGlSurface::solid) << map.second;
        QTest::addRow("texture.vsh, %s", map.first) << int(ZrGlSurface::texture) << map.second;
    }
}

/// Makes the program current as a map view does, one unit of the projection for each pixel.
void tst_ZrGlSurfaceMap::Use(int program, const MapView& map)
{
    m_view->zrgl2dProjection(-wide / 2, wide / 2, -high / 2, high / 2, aspectStretch);
    m_view->m_colour = Qt::green;
    m_view->ZrglSetPgm(static_cast<ZrGlSurface::eProgram>(program));
    QOpenGLFunctions* f = m_context->Functions();
    const auto set = [&](const char* name, float value) {
        f->glUniform1f(f->glGetUniformLocation(m_view->m_program, name), value);
    };
    const double scale = 1 / map.metresPerPixel;
    const auto scales = Split(scale, map.scaleBits);
    const auto x = Split(map.x * scale, 0);
    const auto y = Split(map.y * scale, 0);
    f->glUniform1i(f->glGetUniformLocation(m_view->m_program, "uMap"), 1);
    set("uScale", scales[0]);
    set("uScaleD", scales[1]);
    set("uOriginX", x[0]);
    set("uOriginXd", x[1]);
    set("uOriginY", y[0]);
    set("uOriginYd", y[1]);
    // What the centre, which must be at 0, is off.
    const auto centre = Vertex(map, 0, 0);
    set("uOffX", -Placed(centre[0], centre[2], scales, x));
    set("uOffY", -Placed(centre[1], centre[3], scales, y));
}

/// The map position that is so many pixels right of the centre and above it, in its parts.
std::array<float, 4> tst_ZrGlSurfaceMap::Vertex(const MapView& map, double column, double row) const
{
    const double x = map.x + column * map.metresPerPixel;
    const double y = map.y + row * map.metresPerPixel;
    const double ordinalX = std::floor(x / map.step) * map.step;
    const double ordinalY = std::floor(y / map.step) * map.step;
    return {static_cast<float>(ordinalX), static_cast<float>(ordinalY), static_cast<float>(x - ordinalX),
        static_cast<float>(y - ordinalY)};
}

void tst_ZrGlSurfaceMap::Draw(
    GLenum mode, const std::vector<std::array<float, 4>>& vertices, const float* texCoords)
{
    QOpenGLFunctions* f = m_context->Functions();
    const GLuint handle = m_view->m_program;
    const auto position = static_cast<GLuint>(f->glGetAttribLocation(handle, "aPosition"));
    const GLint coords = f->glGetAttribLocation(handle, "aTexCoords");
    f->glEnableVertexAttribArray(position);
    f->glVertexAttribPointer(position, 4, GL_FLOAT, GL_FALSE, 0, vertices.data());
    if (texCoords && coords >= 0) {
        f->glEnableVertexAttribArray(static_cast<GLuint>(coords));
        f->glVertexAttribPointer(static_cast<GLuint>(coords), 2, GL_FLOAT, GL_FALSE, 0, texCoords);
    }
    f->glDrawArrays(mode, 0, static_cast<GLsizei>(vertices.size()));
    f->glDisableVertexAttribArray(position);
    if (coords >= 0)
        f->glDisableVertexAttribArray(static_cast<GLuint>(coords));
}

void tst_ZrGlSurfaceMap::lines_data()
{
    AddViews();
}

void tst_ZrGlSurfaceMap::lines()
{
    QFETCH(int, program);
    QFETCH(MapView, map);
    m_context->Functions()->glBindTexture(GL_TEXTURE_2D, m_context->Texture(Filled(QSize(1, 1), Qt::green)));
    Use(program, map);
    QImage expected = Filled(Qt::black);
    // From the centre of a pixel to the centre of another, which is not drawn any more.
    std::vector<std::array<float, 4>> ends;
    for (int row = 2; row < high; row += 5) {
        const int first = row * 3;
        ends.push_back(Vertex(map, first + 0.5 - wide / 2, row + 0.5 - high / 2));
        ends.push_back(Vertex(map, first + 10.5 - wide / 2, row + 0.5 - high / 2));
        for (int i = 0; i < 10; ++i)
            expected.setPixelColor(first + i, high - 1 - row, Qt::green);
    }
    Draw(GL_LINES, ends, nullptr);
    const QString difference = Unlike(expected);
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void tst_ZrGlSurfaceMap::points_data()
{
    AddViews();
}

void tst_ZrGlSurfaceMap::points()
{
    QFETCH(int, program);
    QFETCH(MapView, map);
    m_context->Functions()->glBindTexture(GL_TEXTURE_2D, m_context->Texture(Filled(QSize(1, 1), Qt::green)));
    Use(program, map);
    QImage expected = Filled(Qt::black);
    // Squares of one pixel, as two triangles, all over the view and at its corners.
    std::mt19937 random(4711);
    std::vector<QPoint> at{{0, 0}, {wide - 1, 0}, {0, high - 1}, {wide - 1, high - 1}};
    while (at.size() < 500)
        at.emplace_back(static_cast<int>(random() % wide), static_cast<int>(random() % high));
    std::vector<std::array<float, 4>> corners;
    for (const QPoint& p : at) {
        const double left = p.x() - wide / 2;
        const double low = p.y() - high / 2;
        for (const auto& [dx, dy] : {std::pair{0, 0}, {1, 0}, {0, 1}, {0, 1}, {1, 0}, {1, 1}})
            corners.push_back(Vertex(map, left + dx, low + dy));
        expected.setPixelColor(p.x(), high - 1 - p.y(), Qt::green);
    }
    Draw(GL_TRIANGLES, corners, nullptr);
    const QString difference = Unlike(expected);
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void tst_ZrGlSurfaceMap::singlePixels()
{
    // Points of one pixel; as lines in OpenGL ES, which wants the size of points from the shader.
    const MapView map{512345.678, 4812345.321, 0.01, 8, 0};
    Use(ZrGlSurface::solid, map);
    QImage expected = Filled(Qt::black);
    std::vector<std::array<float, 4>> vertices;
    for (int x = 3; x < wide; x += 37) {
        const int y = x * 7 % high;
        vertices.push_back(Vertex(map, x + 0.5 - wide / 2, y + 0.5 - high / 2));
        if (m_isEs)
            vertices.push_back(Vertex(map, x + 1.5 - wide / 2, y + 0.5 - high / 2));
        expected.setPixelColor(x, high - 1 - y, Qt::green);
    }
    Draw(m_isEs ? GL_LINES : GL_POINTS, vertices, nullptr);
    const QString difference = Unlike(expected);
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void tst_ZrGlSurfaceMap::picture()
{
    // A picture on the map, texel for pixel: positions and texture coordinates together.
    const MapView map{512345.678, 4812345.321, 0.01, 8, 0};
    const int sideOfIt = 64;
    QImage image(sideOfIt, sideOfIt, QImage::Format_RGBA8888);
    for (int y = 0; y < sideOfIt; ++y) {
        for (int x = 0; x < sideOfIt; ++x)
            image.setPixelColor(x, y, QColor(4 * x, 4 * y, (x * y) % 256));
    }
    m_context->Functions()->glBindTexture(GL_TEXTURE_2D, m_context->Texture(image));
    Use(ZrGlSurface::texture, map);
    QImage expected = Filled(Qt::black);
    const float coords[] = {0, 1, 1, 1, 0, 0, 1, 0};
    for (const QPoint& at : {QPoint(0, 0), QPoint(wide - sideOfIt, high - sideOfIt), QPoint(301, 77)}) {
        std::vector<std::array<float, 4>> corners;
        for (const auto& [dx, dy] : {std::pair{0, 0}, {1, 0}, {0, 1}, {1, 1}})
            corners.push_back(
                Vertex(map, at.x() + dx * sideOfIt - wide / 2, at.y() + dy * sideOfIt - high / 2));
        Draw(GL_TRIANGLE_STRIP, corners, coords);
        for (int y = 0; y < sideOfIt; ++y) {
            for (int x = 0; x < sideOfIt; ++x)
                expected.setPixelColor(at.x() + x, high - at.y() - sideOfIt + y, image.pixelColor(x, y));
        }
    }
    // The fragments of OpenGL ES have 10 bits.
    const QString difference = Unlike(expected, m_isEs ? 1 : 0);
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void tst_ZrGlSurfaceMap::offsetIsAdded_data()
{
    QTest::addColumn<int>("program");
    QTest::newRow("map.vsh") << int(ZrGlSurface::solid);
    QTest::newRow("texture.vsh") << int(ZrGlSurface::texture);
}

void tst_ZrGlSurfaceMap::offsetIsAdded()
{
    // Every term on its own: ordinal and decimal, both parts of scale and origin, the offset.
    QFETCH(int, program);
    m_context->Functions()->glBindTexture(GL_TEXTURE_2D, m_context->Texture(Filled(QSize(1, 1), Qt::green)));
    QOpenGLFunctions* f = m_context->Functions();
    Use(program, {0, 0, 1, 8, 0});
    const auto set = [&](const char* name, float value) {
        f->glUniform1f(f->glGetUniformLocation(m_view->m_program, name), value);
    };
    set("uScale", 10);
    set("uScaleD", 3);
    set("uOriginX", 100);
    set("uOriginXd", 7);
    set("uOffX", 1);
    set("uOriginY", 50);
    set("uOriginYd", -5);
    set("uOffY", 2);
    // x: (20 + 2) * 13 - 107 + 1 = 180, y: (10 + 1) * 13 - 45 + 2 = 100; z and w of the result are 0 and 1.
    const std::array<float, 4> at{20, 10, 2, 1};
    const std::array<float, 4> right{20, 10, 2 + 13.0F / 13, 1};
    const std::array<float, 4> up{20, 10, 2, 2};
    Draw(GL_TRIANGLES, {at, right, up}, nullptr);
    QImage expected = Filled(Qt::black);
    for (int y = 0; y < 13; ++y) {
        for (int x = 0; x + y < 12; ++x)
            expected.setPixelColor(wide / 2 + 180 + x, high / 2 - 1 - 100 - y, Qt::green);
    }
    // The pixels that the long side passes through the middle of are GL's matter.
    QImage seen = m_context->Read();
    for (int y = 0; y < 13; ++y)
        seen.setPixelColor(wide / 2 + 180 + 12 - y, high / 2 - 1 - 100 - y, Qt::black);
    const QString difference = gl::Difference(seen, expected);
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void tst_ZrGlSurfaceMap::otherValuesPassUnchanged()
{
    // Only a `uMap` of 1 splits; the surface's own primitives leave it alone.
    QOpenGLFunctions* f = m_context->Functions();
    for (const int value : {0, 2}) {
        m_context->Clear(Qt::black);
        Use(ZrGlSurface::solid, {512345.678, 4812345.321, 0.01, 8, 0});
        f->glUniform1i(f->glGetUniformLocation(m_view->m_program, "uMap"), value);
        m_view->ZrglRenderLine(-100, 10.5F, 100, 10.5F, Qt::red);
        QImage expected = Filled(Qt::black);
        for (int x = -100; x < 100; ++x)
            expected.setPixelColor(wide / 2 + x, high / 2 - 1 - 10, Qt::red);
        const QString difference = Unlike(expected);
        QVERIFY2(difference.isEmpty(), qPrintable(difference));
    }
    f->glUniform1i(f->glGetUniformLocation(m_view->m_program, "uMap"), 1);
    m_view->ZrglSetPgm(ZrGlSurface::solid);
    GLint map = 0;
    f->glGetUniformiv(m_view->m_program, f->glGetUniformLocation(m_view->m_program, "uMap"), &map);
    QCOMPARE(map, 1);
}

void tst_ZrGlSurfaceMap::texturesWithOtherValues()
{
    QOpenGLFunctions* f = m_context->Functions();
    const GLuint tex = m_context->Texture(Filled(QSize(1, 1), Qt::yellow));
    float quad[] = {-100, 10, 0, 0, -100, 20, 0, 1, 100, 10, 1, 0, 100, 20, 1, 1};
    QImage expected = Filled(Qt::black);
    for (int y = 10; y < 20; ++y) {
        for (int x = -100; x < 100; ++x)
            expected.setPixelColor(wide / 2 + x, high / 2 - 1 - y, Qt::yellow);
    }
    for (const int value : {0, 2, -1}) {
        m_context->Clear(Qt::black);
        Use(ZrGlSurface::texture, {512345.678, 4812345.321, 0.01, 8, 0});
        f->glUniform1i(f->glGetUniformLocation(m_view->m_program, "uMap"), value);
        m_view->ZrglRenderVbo(quad, tex, ZrGlSurface::texture);
        const QString difference = Unlike(expected);
        QVERIFY2(difference.isEmpty(), qPrintable(difference));
    }
}

GL_TEST_MAIN(tst_ZrGlSurfaceMap)
#include "tst_ZrGlSurfaceMap.moc"
