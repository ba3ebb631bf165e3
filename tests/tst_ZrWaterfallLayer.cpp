// What the waterfall layer draws, uploads and asks of OpenGL, in both kinds of context.

#include "GlRecorder.h"
#include "GlView.h"
#include "ZrDebugLog/ZrDebugLog.h"
#include "ZrKit/map/ZrMapView.h"
#include "ZrKit/map/ZrWaterfallLayer.h"

#include <QtWidgets>

#include <cmath>
#include <functional>

namespace {

using gl::Api;

constexpr int side = GlView::side;
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();

const QColor background(10, 20, 250);

/// A line of \p count samples to each side, one metre each, by a function of side and sample.
ZrWaterfallLine LineOf(int count, const std::function<int(int, int)>& value)
{
    ZrWaterfallLine line;
    for (int s = 0; s < 2; ++s) {
        const auto at = static_cast<std::size_t>(s);
        line.range[at] = count;
        for (int i = 0; i < count; ++i)
            line.samples[at].push_back(static_cast<u8>(value(s, i)));
    }
    return line;
}

ZrWaterfallLine Even(int count, int value)
{
    return LineOf(count, [=](int, int) { return value; });
}

/// What the line \p number of the patterned ring has: no two neighbours are alike.
int Pattern(i64 number, int s, int sample)
{
    return static_cast<int>((number * 37 + sample * 11 + s * 101) % 256);
}

void AppendPattern(ZrWaterfallRing& ring, int lines, int count)
{
    for (int i = 0; i < lines; ++i) {
        const i64 number = ring.End();
        ring.Append(LineOf(count, [=](int s, int sample) { return Pattern(number, s, sample); }));
    }
}

QStringList s_lines; ///< of the debug log

/// Collects the debug log while it lives.
class LogCapture
{
public:
    LogCapture()
    {
        s_lines.clear();
        zr_debug_log_level = 2;
        zr_debug_log_to_dbg = 1;
    }

    ~LogCapture()
    {
        zr_debug_log_level = -1;
        zr_debug_log_to_dbg = 0;
    }

    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    int Count(const char* text) const
    {
        return static_cast<int>(s_lines.filter(QString::fromLatin1(text)).size());
    }
};

/// Makes every shader fail to compile.
class NoShaders : private QOpenGLFunctions
{
public:
    NoShaders()
        : QOpenGLFunctions(QOpenGLContext::currentContext())
    {
        s_saved = d_ptr->f.GetShaderiv;
        d_ptr->f.GetShaderiv = &GetShaderiv;
    }

    ~NoShaders() { d_ptr->f.GetShaderiv = s_saved; }

    NoShaders(const NoShaders&) = delete;
    NoShaders& operator=(const NoShaders&) = delete;

private:
    static void QOPENGLF_APIENTRY GetShaderiv(GLuint shader, GLenum name, GLint* value)
    {
        s_saved(shader, name, value);
        if (name == GL_COMPILE_STATUS)
            *value = GL_FALSE;
    }

    static inline decltype(QOpenGLFunctionsPrivate::f.GetShaderiv) s_saved = nullptr;
};

/// Makes every texture fail for want of memory.
class NoMemory : private QOpenGLFunctions
{
public:
    NoMemory()
        : QOpenGLFunctions(QOpenGLContext::currentContext())
    {
        s_saved = d_ptr->f.TexImage2D;
        d_ptr->f.TexImage2D = &TexImage2D;
    }

    ~NoMemory() { d_ptr->f.TexImage2D = s_saved; }

    NoMemory(const NoMemory&) = delete;
    NoMemory& operator=(const NoMemory&) = delete;

private:
    static void QOPENGLF_APIENTRY TexImage2D(GLenum target, GLint level, GLint inside, GLsizei, GLsizei,
        GLint border, GLenum format, GLenum type, const GLvoid* p)
    {
        s_saved(target, level, inside, -1, -1, border, format, type, p); // an error of GL's
    }

    static inline decltype(QOpenGLFunctionsPrivate::f.TexImage2D) s_saved = nullptr;
};

} // namespace

// Takes the place of the library's.
void zr_debug_log_modern(int /*level*/, const char* /*source_file*/, int /*source_line*/,
    const char* /*function*/, const char* /*category*/, int /*reserved*/, int64_t /*steady_time_ns*/,
    const char* message)
{
    s_lines << QString::fromUtf8(message);
}

class tst_ZrWaterfallLayer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase_data();
    void init();
    void cleanup();

    void everyPixel_data();
    void everyPixel();
    void fewLines_data();
    void fewLines();
    void rowsOfATallTexture();
    void magnified();
    void scrubbed();
    void slantCorrection_data();
    void slantCorrection();
    void slantCorrectionOfEachLine();
    void waterColumn();
    void unknownAltitude();
    void rangesAtTheirScale();
    void colours_data();
    void colours();
    void slopeIsByRange();
    void steepSlopes();
    void nonsenseUniforms();
    void palettes();
    void palettesOutOfRange();
    void opacity();
    void smoothHasNoSeams();
    void severalTextures();
    void uploadsOnlyNewLines();
    void colourAndScrollUploadNothing();
    void drawsAndLookUps();
    void verticesAreBounded();
    void oneSideOnly();
    void oneSample();
    void manySamples();
    void nonsenseLines();
    void nothingToDraw_data();
    void nothingToDraw();
    void otherRing();
    void lostContext();
    void release();
    void noContext();
    void failedProgram();
    void noTextureMemory();
    void errorsOfOthers();
    void stateIsLeftClean();

private:
    void Paint();
    QImage Painted();
    bool Is(const QColor& colour, double index, int palette = 1) const;
    QString Mismatch(const QImage& image, const std::function<int(int, int)>& expected) const;

    std::unique_ptr<gl::Context> m_context;
    std::unique_ptr<GlView> m_surface;
    std::unique_ptr<ZrWaterfallLayer> m_layer;
    ZrMapView m_map;
    QImage m_palettes;
    bool m_isEs = false;
};

void tst_ZrWaterfallLayer::initTestCase_data()
{
    QTest::addColumn<gl::Api>("api");
    QTest::newRow("GL") << Api::desktop;
    QTest::newRow("ES") << Api::es;
}

void tst_ZrWaterfallLayer::init()
{
    QFETCH_GLOBAL(gl::Api, api);
    m_isEs = api == Api::es;
    m_context = std::make_unique<gl::Context>(api, QSize(side, side));
    QVERIFY2(m_context->Error().isEmpty(), qPrintable(m_context->Error()));
    m_surface = std::make_unique<GlView>();
    m_surface->m_background = QStringLiteral(":/back_light.png");
    m_surface->OnCreate();
    m_palettes = QImage(QStringLiteral(":/palettes.png")).convertToFormat(QImage::Format_RGBA8888);
    QCOMPARE(m_palettes.width(), 256);
    m_map = ZrMapView();
    m_map.SetSize(side, side);
    m_layer = std::make_unique<ZrWaterfallLayer>();
    m_layer->m_view.rect = QRect(0, 0, side, side);
    m_context->Clear(background);
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
}

void tst_ZrWaterfallLayer::cleanup()
{
    if (m_context)
        QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
    m_layer.reset();
    m_surface.reset();
    m_context.reset();
}

void tst_ZrWaterfallLayer::Paint()
{
    m_map.Apply(*m_surface);
    m_layer->Paint(*m_surface, m_map);
}

QImage tst_ZrWaterfallLayer::Painted()
{
    m_context->Clear(background);
    Paint();
    return m_context->Read();
}

/// Whether a colour is that of an index, 0 to 255, of a palette: between the entries around it, and those one
/// step off (two where the shader computes in 16 bits).
bool tst_ZrWaterfallLayer::Is(const QColor& colour, double index, int palette) const
{
    const double at = index / 255.0 * 256.0 - 0.5;
    const int off = m_isEs ? 2 : 1;
    const int first = std::clamp(static_cast<int>(std::floor(at)) - off + 1, 0, 255);
    const int last = std::clamp(static_cast<int>(std::floor(at)) + off, 0, 255);
    int least[3] = {255, 255, 255};
    int most[3] = {0, 0, 0};
    for (int i = first; i <= last; ++i) {
        const QColor entry = m_palettes.pixelColor(i, palette * 10 + 5);
        const int channels[] = {entry.red(), entry.green(), entry.blue()};
        for (int c = 0; c < 3; ++c) {
            least[c] = std::min(least[c], channels[c]);
            most[c] = std::max(most[c], channels[c]);
        }
    }
    const int channels[] = {colour.red(), colour.green(), colour.blue()};
    for (int c = 0; c < 3; ++c) {
        if (channels[c] < least[c] - 1 || channels[c] > most[c] + 1)
            return false;
    }
    return true;
}

/// Which pixels are not of the palette index that a function of column and row gives, below 0 for background.
QString tst_ZrWaterfallLayer::Mismatch(
    const QImage& image, const std::function<int(int, int)>& expected) const
{
    int count = 0;
    QString first;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor colour = image.pixelColor(x, y);
            const int index = expected(x, y);
            if (index < 0 ? colour == background : Is(colour, index))
                continue;
            if (count++ == 0)
                first = QStringLiteral("%1, %2 is %3 instead of index %4")
                            .arg(x)
                            .arg(y)
                            .arg(colour.name())
                            .arg(index);
        }
    }
    return count == 0 ? QString() : QStringLiteral("%1 pixels, the first at %2").arg(count).arg(first);
}

void tst_ZrWaterfallLayer::everyPixel_data()
{
    QTest::addColumn<int>("sides");
    QTest::addColumn<int>("newest");
    QTest::addColumn<int>("lines"); // appended to a ring of 80
    const int top = ZrWaterfallSettings::newestTop;
    const int bottom = ZrWaterfallSettings::newestBottom;
    QTest::newRow("both, newest on top") << int(ZrWaterfallSettings::bothSides) << top << 70;
    QTest::newRow("both, newest below") << int(ZrWaterfallSettings::bothSides) << bottom << 70;
    QTest::newRow("port") << int(ZrWaterfallSettings::portOnly) << top << 70;
    QTest::newRow("starboard") << int(ZrWaterfallSettings::starboardOnly) << bottom << 70;
    QTest::newRow("ring full") << int(ZrWaterfallSettings::bothSides) << top << 80;
    QTest::newRow("ring wrapped") << int(ZrWaterfallSettings::bothSides) << top << 111;
    QTest::newRow("ring wrapped, newest below") << int(ZrWaterfallSettings::bothSides) << bottom << 111;
    QTest::newRow("newest in the last row") << int(ZrWaterfallSettings::bothSides) << top << 160;
    QTest::newRow("newest in the first row") << int(ZrWaterfallSettings::bothSides) << top << 161;
}

/// One sample in one pixel: nothing is left to chance.
void tst_ZrWaterfallLayer::everyPixel()
{
    QFETCH(int, sides);
    QFETCH(int, newest);
    QFETCH(int, lines);
    const bool both = sides == ZrWaterfallSettings::bothSides;
    const int columns = both ? side / 2 : side;
    const int left = sides == ZrWaterfallSettings::starboardOnly ? 0 : columns;
    ZrWaterfallRing ring(80, columns);
    AppendPattern(ring, lines, columns);
    m_layer->SetRing(&ring);
    m_layer->m_view.sides = static_cast<ZrWaterfallSettings::eSides>(sides);
    m_layer->m_view.newest = static_cast<ZrWaterfallSettings::eNewest>(newest);
    QCOMPARE(Mismatch(Painted(),
                 [=](int x, int y) {
                     const int row = newest == ZrWaterfallSettings::newestTop ? y : side - 1 - y;
                     const int sample = x < left ? left - 1 - x : x - left;
                     return Pattern(lines - 1 - row, x < left ? sidePort : sideStarboard, sample);
                 }),
        QString());
}

void tst_ZrWaterfallLayer::fewLines_data()
{
    QTest::addColumn<int>("newest");
    QTest::newRow("top") << int(ZrWaterfallSettings::newestTop);
    QTest::newRow("bottom") << int(ZrWaterfallSettings::newestBottom);
}

/// Pixels without lines, and those around the rectangle, stay as they are.
void tst_ZrWaterfallLayer::fewLines()
{
    QFETCH(int, newest);
    ZrWaterfallRing ring(80, 16);
    AppendPattern(ring, 5, 16);
    m_layer->SetRing(&ring);
    m_layer->m_view.rect = QRect(10, 7, 33, 40); // the wider half is starboard
    m_layer->m_view.range = 17.0;
    m_layer->m_view.newest = static_cast<ZrWaterfallSettings::eNewest>(newest);
    QCOMPARE(Mismatch(Painted(),
                 [=](int x, int y) {
                     const int row = newest == ZrWaterfallSettings::newestTop ? y - 7 : 7 + 39 - y;
                     const int sample = x < 26 ? 25 - x : x - 26;
                     return row < 0 || row > 4 || sample > 15
                         ? -1
                         : Pattern(4 - row, x < 26 ? sidePort : sideStarboard, sample);
                 }),
        QString());
}

/// Coordinates of a tall texture need more than the ten bits of a small float.
void tst_ZrWaterfallLayer::rowsOfATallTexture()
{
    ZrWaterfallRing ring(4096, 32);
    AppendPattern(ring, 4090, 32);
    m_layer->SetRing(&ring);
    for (const double end : {4090.0, 2800.0, 1500.0}) {
        m_layer->m_view.end = end;
        QCOMPARE(Mismatch(Painted(),
                     [=](int x, int y) {
                         const int sample = x < 32 ? 31 - x : x - 32;
                         return Pattern(static_cast<i64>(end) - 1 - y, x < 32 ? 0 : 1, sample);
                     }),
            QString());
    }
}

void tst_ZrWaterfallLayer::magnified()
{
    ZrWaterfallRing ring(16, 8);
    AppendPattern(ring, 20, 8);
    m_layer->SetRing(&ring);
    m_layer->m_view.pixelsPerLine = 4.0;
    QCOMPARE(Mismatch(Painted(),
                 [=](int x, int y) {
                     const int sample = (x < 32 ? 31 - x : x - 32) / 4;
                     return Pattern(19 - y / 4, x < 32 ? 0 : 1, sample);
                 }),
        QString());
}

/// Back in the ring, by a fraction of a line; the edge lines are cut.
void tst_ZrWaterfallLayer::scrubbed()
{
    ZrWaterfallRing ring(64, 32);
    AppendPattern(ring, 64, 32);
    m_layer->SetRing(&ring);
    m_layer->m_view.pixelsPerLine = 8.0;
    m_layer->m_view.end = 40.25; // two pixels of line 40 are left
    const auto expected = [](int x, int y) {
        const int sample = x < 32 ? 31 - x : x - 32;
        return Pattern(40 - (y + 6) / 8, x < 32 ? 0 : 1, sample);
    };
    QCOMPARE(Mismatch(Painted(), expected), QString());
    AppendPattern(ring, 10, 32);
    QCOMPARE(Mismatch(Painted(), expected), QString()); // stands still while lines come
}

void tst_ZrWaterfallLayer::slantCorrection_data()
{
    QTest::addColumn<double>("altitude");
    QTest::addColumn<int>("sides");
    for (const double altitude : {0.5, 3.0, 10.0, 25.0, 60.0, 200.0}) {
        QTest::addRow("%g m, both", altitude) << altitude << int(ZrWaterfallSettings::bothSides);
        QTest::addRow("%g m, port", altitude) << altitude << int(ZrWaterfallSettings::portOnly);
    }
}

/// Line n is bright up to a slant range, which reaches over the seabed to where the square root says.
void tst_ZrWaterfallLayer::slantCorrection()
{
    QFETCH(double, altitude);
    QFETCH(int, sides);
    constexpr int samples = 4096;
    const double reach = std::hypot(40.0, altitude); // slant range of the samples; 32 m are shown
    const double share = altitude / reach;
    ZrWaterfallRing ring(side, samples);
    std::vector<int> bright;
    for (int n = 0; n < side; ++n) {
        const int count = static_cast<int>(samples * (share + (1.0 - share) * (n + 0.5) / side));
        bright.push_back(count);
        ZrWaterfallLine line = LineOf(samples, [=](int, int sample) { return sample < count ? 255 : 0; });
        line.range = {reach, reach};
        line.altitude = altitude;
        ring.Append(line);
    }
    m_layer->SetRing(&ring);
    m_layer->m_view.sides = static_cast<ZrWaterfallSettings::eSides>(sides);
    m_layer->m_view.slantCorrected = true;
    m_layer->m_view.range = 32.0;
    const QImage image = Painted();
    const bool both = sides == ZrWaterfallSettings::bothSides;
    const int columns = both ? side / 2 : side;
    for (int y = 0; y < side; ++y) {
        const double slant = bright[static_cast<std::size_t>(side - 1 - y)] * reach / samples;
        const double ground = std::sqrt(std::max(slant * slant - altitude * altitude, 0.0)) * columns / 32.0;
        for (int x = 0; x < side; ++x) {
            const double out = std::fabs(x + 0.5 - columns);
            const bool isBright = Is(image.pixelColor(x, y), 255);
            const bool isDark = Is(image.pixelColor(x, y), 0);
            QVERIFY(isBright != isDark);
            if (std::fabs(out - ground) > 1.0)
                QVERIFY2(isBright == (out < ground), qPrintable(QStringLiteral("%1, %2").arg(x).arg(y)));
        }
    }
}

/// Neighbouring lines from different altitudes: each by its own.
void tst_ZrWaterfallLayer::slantCorrectionOfEachLine()
{
    constexpr int samples = 2048;
    ZrWaterfallRing ring(side, samples);
    const auto altitudeOf = [](int n) { return 5.0 + 0.3 * (n % 17) + 4.0 * (n % 2); };
    for (int n = 0; n < side; ++n) {
        ZrWaterfallLine line
            = LineOf(samples, [](int, int sample) { return sample < samples / 2 ? 255 : 0; });
        line.range = {40.0, 40.0};
        line.altitude = altitudeOf(n);
        ring.Append(line);
    }
    m_layer->SetRing(&ring);
    m_layer->m_view.slantCorrected = true;
    m_layer->m_view.range = 32.0;
    const QImage image = Painted();
    for (int y = 0; y < side; ++y) {
        const double ground = std::sqrt(20.0 * 20.0 - std::pow(altitudeOf(side - 1 - y), 2.0));
        for (int x = 0; x < side; ++x) {
            const double out = std::fabs(x + 0.5 - 32.0);
            if (std::fabs(out - ground) > 1.0)
                QVERIFY(Is(image.pixelColor(x, y), out < ground ? 255 : 0));
        }
    }
}

/// Above the seabed: shown in slant range, cut away over ground; nothing is left of a line that ends there.
void tst_ZrWaterfallLayer::waterColumn()
{
    ZrWaterfallRing ring(side, 32);
    for (int n = 0; n < side; ++n) {
        ZrWaterfallLine line = LineOf(32, [](int, int sample) { return sample < 20 ? 0 : 255; });
        line.altitude = n < 32 ? 20.0 : 32.0;
        ring.Append(line);
    }
    m_layer->SetRing(&ring);
    m_layer->m_view.range = 32.0;
    QCOMPARE(
        Mismatch(Painted(), [](int x, int) { return std::abs(2 * x + 1 - 64) < 40 ? 0 : 255; }), QString());
    m_layer->m_view.slantCorrected = true;
    const double end = std::sqrt(32.0 * 32.0 - 20.0 * 20.0); // 24.98
    QCOMPARE(Mismatch(Painted(),
                 [=](int x, int y) { return y >= 32 && std::fabs(x + 0.5 - 32.0) < end ? 255 : -1; }),
        QString());
}

/// Held from the line before, or from the first known one; without any nothing can be corrected.
void tst_ZrWaterfallLayer::unknownAltitude()
{
    const auto step = [](int, int sample) { return sample < 20 ? 255 : 0; };
    ZrWaterfallRing ring(side, 32);
    for (int n = 0; n < side; ++n) {
        ZrWaterfallLine line = LineOf(32, step);
        line.altitude = n % 3 == 0 ? notANumber : n % 3 == 1 ? -4.0 : infinite;
        ring.Append(line);
    }
    m_layer->SetRing(&ring);
    m_layer->m_view.range = 32.0;
    m_layer->m_view.slantCorrected = true;
    const auto flat = [](int x, int) { return std::abs(2 * x + 1 - 64) < 40 ? 255 : 0; };
    QCOMPARE(Mismatch(Painted(), flat), QString());

    ZrWaterfallLine known = LineOf(32, step);
    known.altitude = 12.0;
    QVERIFY(ring.Put(30, known));
    const QImage image = Painted();
    for (int y = 0; y < side; ++y) {
        QVERIFY(Is(image.pixelColor(32 + 14, y), 255)); // to √(20² − 12²) = 16
        QVERIFY(Is(image.pixelColor(32 + 18, y), 0));
    }
}

/// The range was changed twice: each line at its scale, in one picture.
void tst_ZrWaterfallLayer::rangesAtTheirScale()
{
    ZrWaterfallRing ring(side, 64);
    const auto rangeOf = [](int n) { return n < 20 ? 32.0 : n < 40 ? 16.0 : 128.0; };
    for (int n = 0; n < side; ++n) {
        ZrWaterfallLine line = LineOf(64, [](int, int sample) { return sample < 32 ? 255 : 0; });
        line.range = {rangeOf(n), rangeOf(n)};
        ring.Append(line);
    }
    m_layer->SetRing(&ring);
    m_layer->m_view.range = 32.0;
    QCOMPARE(Mismatch(Painted(),
                 [=](int x, int y) {
                     const double out = std::fabs(x + 0.5 - 32.0);
                     const double range = rangeOf(side - 1 - y);
                     return out > range ? -1 : out < range / 2.0 ? 255 : 0;
                 }),
        QString());
    m_layer->m_view.range = 0.0; // all there is: 128 m, four to a pixel
    QCOMPARE(Mismatch(Painted(),
                 [=](int x, int y) {
                     const double out = std::fabs(x + 0.5 - 32.0) * 4.0;
                     const double range = rangeOf(side - 1 - y);
                     return out > range ? -1 : out < range / 2.0 ? 255 : 0;
                 }),
        QString());
}

void tst_ZrWaterfallLayer::colours_data()
{
    QTest::addColumn<float>("gain");
    QTest::addColumn<float>("clamp");
    QTest::addColumn<float>("slope");
    QTest::newRow("plain") << 0.0F << 0.0F << 0.0F;
    QTest::newRow("gain") << 0.5F << 0.0F << 0.0F;
    QTest::newRow("gain beyond white") << 3.0F << 0.0F << 0.0F;
    QTest::newRow("less gain") << -0.5F << 0.0F << 0.0F;
    QTest::newRow("clamp") << 0.0F << 0.25F << 0.0F;
    QTest::newRow("clamp below 0") << 0.0F << -0.25F << 0.0F;
    QTest::newRow("slope") << 0.0F << 0.0F << 0.5F;
    QTest::newRow("slope down") << 0.0F << 0.0F << -0.5F;
    QTest::newRow("all") << 0.75F << 0.125F << 0.25F;
}

/// ((i − r) / (1 − r)) × (1 + gain), r growing with range.
void tst_ZrWaterfallLayer::colours()
{
    QFETCH(float, gain);
    QFETCH(float, clamp);
    QFETCH(float, slope);
    ZrWaterfallRing ring(side, 32);
    for (int n = 0; n < side; ++n)
        ring.Append(Even(32, 4 * n));
    m_layer->SetRing(&ring);
    m_layer->m_gain = gain;
    m_layer->m_clamp = clamp;
    m_layer->m_slope = slope;
    const QImage image = Painted();
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            const double i = 4.0 * (side - 1 - y) / 255.0;
            const double q = std::fabs(x + 0.5 - 32.0) / 32.0;
            const double r = static_cast<double>(clamp) + static_cast<double>(slope) * q;
            const double out = std::clamp((i - r) / (1.0 - r) * (1.0 + static_cast<double>(gain)), 0.0, 1.0);
            QVERIFY2(Is(image.pixelColor(x, y), out * 255.0),
                qPrintable(QStringLiteral("%1, %2: %3").arg(x).arg(y).arg(out * 255.0)));
        }
    }
}

/// The slope is by the range shown, whatever the range and the number of samples of a line.
void tst_ZrWaterfallLayer::slopeIsByRange()
{
    ZrWaterfallRing ring(side, 128);
    for (int n = 0; n < side; ++n) {
        ZrWaterfallLine line = Even(n < 32 ? 128 : 40, 200);
        line.range = {n < 16 ? 32.0 : 64.0, n < 16 ? 32.0 : 64.0};
        ring.Append(line);
    }
    m_layer->SetRing(&ring);
    m_layer->m_view.range = 64.0;
    m_layer->m_slope = 0.5F;
    const QImage image = Painted();
    for (int y = 0; y < side; ++y) {
        for (const int x : {33, 40, 47, 20}) {
            const double q = std::fabs(x + 0.5 - 32.0) / 32.0;
            const double out = (200.0 / 255.0 - 0.5 * q) / (1.0 - 0.5 * q) * 255.0;
            bool any = false; // the slope is right to a hundredth
            for (const double off : {-1.0, 0.0, 1.0})
                any = any || Is(image.pixelColor(x, y), out + off);
            QVERIFY2(any, qPrintable(QStringLiteral("%1, %2").arg(x).arg(y)));
        }
    }
}

/// As far as there are samples a slope may be steep; where r would come to 1 it is limited, or all turned
/// white.
void tst_ZrWaterfallLayer::steepSlopes()
{
    ZrWaterfallRing near(side, 16);
    for (int n = 0; n < side; ++n)
        near.Append(Even(16, 200));
    m_layer->SetRing(&near);
    m_layer->m_view.range = 32.0;
    m_layer->m_slope = 1.5F;
    const QImage image = Painted();
    for (const int x : {32, 38, 44}) {
        const double r = 1.5 * (x + 0.5 - 32.0) / 32.0;
        bool any = false; // the slope is right to a hundredth
        for (const double off : {-2.0, -1.0, 0.0, 1.0, 2.0})
            any = any
                || Is(image.pixelColor(x, 5), std::max((200.0 / 255.0 - r) / (1.0 - r) * 255.0, 0.0) + off);
        QVERIFY2(any, qPrintable(QString::number(x)));
    }
    // Over ground the slant range goes beyond the range shown.
    ZrWaterfallRing high(side, 100);
    for (int n = 0; n < side; ++n) {
        ZrWaterfallLine line = Even(100, 100);
        line.altitude = 60.0;
        high.Append(line);
    }
    m_layer->SetRing(&high);
    m_layer->m_view.slantCorrected = true;
    m_layer->m_slope = 0.9F;
    QCOMPARE(Mismatch(Painted(), [](int, int) { return 0; }), QString());
}

/// No division by zero, no number that is none reaches the shader.
void tst_ZrWaterfallLayer::nonsenseUniforms()
{
    ZrWaterfallRing ring(side, 32);
    AppendPattern(ring, side, 32);
    m_layer->SetRing(&ring);
    const QImage plain = Painted();
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    m_layer->m_gain = m_layer->m_clamp = m_layer->m_slope = nan;
    QCOMPARE(gl::Difference(Painted(), plain), QString());
    constexpr float inf = std::numeric_limits<float>::infinity();
    m_layer->m_gain = 0.0F;
    m_layer->m_clamp = inf; // as 0.95: only what is brighter shows
    m_layer->m_slope = inf;
    ZrWaterfallRing dark(side, 32);
    for (int n = 0; n < side; ++n)
        dark.Append(Even(32, 200));
    m_layer->SetRing(&dark);
    QCOMPARE(Mismatch(Painted(), [](int, int) { return 0; }), QString());
}

void tst_ZrWaterfallLayer::palettes()
{
    QVERIFY(m_surface->m_palCount > 3);
    ZrWaterfallRing ring(side, 1);
    for (int n = 0; n < side; ++n)
        ring.Append(Even(1, 4 * n));
    m_layer->SetRing(&ring);
    for (int palette = -1; palette < m_surface->m_palCount; ++palette) {
        m_layer->m_palette = palette;
        m_surface->m_palIndex = 3; // for -1
        const QImage image = Painted();
        for (int y = 0; y < side; ++y)
            QVERIFY(Is(image.pixelColor(5, y), 4.0 * (side - 1 - y), palette < 0 ? 3 : palette));
    }
}

void tst_ZrWaterfallLayer::palettesOutOfRange()
{
    ZrWaterfallRing ring(side, 32);
    AppendPattern(ring, side, 32);
    m_layer->SetRing(&ring);
    m_layer->m_palette = m_surface->m_palCount - 1;
    const QImage last = Painted();
    m_layer->m_palette = 1000;
    QCOMPARE(gl::Difference(Painted(), last), QString());
    m_layer->m_palette = 0;
    const QImage first = Painted();
    m_layer->m_palette = -1;
    m_surface->m_palIndex = -7;
    QCOMPARE(gl::Difference(Painted(), first), QString());
}

/// Black lets the background through by 1 - alpha, white not at all.
void tst_ZrWaterfallLayer::opacity()
{
    ZrWaterfallRing ring(side, 1);
    for (int n = 0; n < side; ++n)
        ring.Append(Even(1, n < 32 ? 0 : 255));
    m_layer->SetRing(&ring);
    m_layer->m_alpha = 0.25F;
    const QImage image = Painted();
    QVERIFY(Is(image.pixelColor(9, 9), 255));
    const QColor black = m_palettes.pixelColor(0, 15);
    const auto mix = [](int under, int over) { return qRound(under * 0.75 + over * 0.25); };
    const QColor expected(mix(background.red(), black.red()), mix(background.green(), black.green()),
        mix(background.blue(), black.blue()), image.pixelColor(9, 50).alpha());
    QVERIFY(gl::Distance(image.pixelColor(9, 50), expected) <= 2);
    m_layer->m_alpha = 0.0F;
    QVERIFY(Painted().pixelColor(9, 50).rgb() == background.rgb());
}

/// The newest line is black, the oldest, which lies beside it in the texture, white: they must not mix, nor
/// must rows that hold nothing.
void tst_ZrWaterfallLayer::smoothHasNoSeams()
{
    m_layer->m_isSmooth = true;
    m_layer->m_view.pixelsPerLine = 8.0;
    for (const int lines : {4, 8, 11}) {
        ZrWaterfallRing ring(8, 4);
        for (int n = 0; n < lines; ++n)
            ring.Append(Even(4, n < lines - 4 ? 255 : 0));
        m_layer->SetRing(&ring);
        const QImage image = Painted();
        for (int y = 0; y < 4 * 8 - 4; ++y)
            QVERIFY2(Is(image.pixelColor(40, y), 0), qPrintable(QString::number(y)));
        if (lines == 4)
            continue;
        // Half-way between the middles of two neighbours half of each.
        QVERIFY(Is(image.pixelColor(40, 31), 255.0 * 7 / 16));
        QVERIFY(Is(image.pixelColor(40, 32), 255.0 * 9 / 16));
        const int rest = std::min(lines, 8) * 8;
        for (int y = 4 * 8 + 4; y < rest; ++y)
            QVERIFY2(Is(image.pixelColor(40, y), 255), qPrintable(QString::number(y)));
    }
}

/// A ring that is too large for a texture looks the same.
void tst_ZrWaterfallLayer::severalTextures()
{
    ZrWaterfallRing ring(80, 32);
    AppendPattern(ring, 111, 32);
    m_layer->SetRing(&ring);
    const QImage whole = Painted();
    m_layer->m_mostTexels = 32;
    gl::Recorder recorder;
    QCOMPARE(gl::Difference(Painted(), whole), QString());
    QCOMPARE(recorder.uploadedBytes, qint64(2 * 80 * 32));
    recorder.Reset();
    AppendPattern(ring, 3, 32); // rows 31 to 33: the end of one texture, the beginning of the next
    Paint();
    QCOMPARE(recorder.uploadedBytes, qint64(2 * 3 * 32));
    QVERIFY(recorder.draws.size() <= 6U);
    m_layer->m_mostTexels = 0;
    const QImage again = Painted();
    m_layer->m_mostTexels = 16; // narrower than the ring: the mean of two samples
    const QImage reduced = Painted();
    QVERIFY(again != reduced);
    for (int x = 32; x < side; ++x) {
        const int sample = (x - 32) / 2 * 2;
        const int sum = Pattern(113, 1, sample) + Pattern(113, 1, sample + 1);
        QVERIFY(Is(reduced.pixelColor(x, 0), (sum + 1) / 2));
    }
}

void tst_ZrWaterfallLayer::uploadsOnlyNewLines()
{
    constexpr int width = 50; // rows need no padding
    ZrWaterfallRing ring(80, width);
    m_layer->SetRing(&ring);
    gl::Recorder recorder;
    Paint();
    QCOMPARE(recorder.uploadedBytes, qint64(0));

    struct Step
    {
        int lines;
        int uploaded;
    };

    for (const Step step : {Step{60, 60}, Step{1, 1}, Step{0, 0}, Step{30, 30}, Step{1, 1}, Step{79, 79},
             Step{80, 80}, Step{500, 80}, Step{2, 2}}) {
        AppendPattern(ring, step.lines, width);
        recorder.Reset();
        Paint();
        QCOMPARE(recorder.uploadedBytes, qint64(step.uploaded) * width * 2);
    }
    QVERIFY(ring.Put(ring.End() - 10, Even(width, 3)));
    recorder.Reset();
    Paint();
    QCOMPARE(recorder.uploadedBytes, qint64(width) * 2);
}

void tst_ZrWaterfallLayer::colourAndScrollUploadNothing()
{
    ZrWaterfallRing ring(80, 32);
    AppendPattern(ring, 80, 32);
    m_layer->SetRing(&ring);
    Paint();
    gl::Recorder recorder;
    m_layer->m_palette = 4;
    m_layer->m_gain = 2.0F;
    m_layer->m_slope = 0.1F;
    m_layer->m_isSmooth = true;
    m_layer->m_view.slantCorrected = true;
    m_layer->m_view.pixelsPerLine = 3.0;
    m_layer->m_view.end = 44.4;
    m_layer->m_view.range = 11.0;
    m_layer->m_view.rect = QRect(3, 4, 20, 30);
    Paint();
    QVERIFY(!recorder.draws.empty());
    QCOMPARE(recorder.uploadedBytes, qint64(0));
}

void tst_ZrWaterfallLayer::drawsAndLookUps()
{
    ZrWaterfallRing ring(80, 32);
    AppendPattern(ring, 40, 32);
    m_layer->SetRing(&ring);
    {
        gl::Recorder recorder;
        Paint();
        QCOMPARE(recorder.draws.size(), std::size_t(2)); // one for each side
        QCOMPARE(recorder.vertices, qint64(2 * 4)); // a quad each
        for (const int n : recorder.lookUps)
            QCOMPARE(n, 1);
    }
    AppendPattern(ring, 71, 32); // wraps: two quads for each side
    gl::Recorder recorder;
    Paint();
    QCOMPARE(recorder.draws.size(), std::size_t(2));
    QCOMPARE(recorder.vertices, qint64(2 * (4 + 2 + 4)));
    QCOMPARE(recorder.LookUpCount(), 0);
    for (const gl::Recorder::DrawCall& draw : recorder.draws)
        QVERIFY(!draw.isBlended);
}

/// The worst there is: each of thousands of lines from an altitude of its own, and at two ranges in turn.
void tst_ZrWaterfallLayer::verticesAreBounded()
{
    ZrWaterfallRing ring(4096, 16);
    for (int n = 0; n < 4096; ++n) {
        ZrWaterfallLine line = Even(16, 99);
        line.altitude = 3.0 + 0.01 * (n % 251);
        line.range = {n % 2 == 0 ? 30.0 : 60.0, 45.0};
        ring.Append(line);
    }
    m_layer->SetRing(&ring);
    m_layer->m_view.slantCorrected = true;
    m_layer->m_isSmooth = true;
    m_layer->m_slope = 0.1F;
    for (const double pixels : {0.01, 1.0 / 64, 0.3, 1.0, 3.7}) {
        m_layer->m_view.pixelsPerLine = pixels;
        gl::Recorder recorder;
        Paint();
        QVERIFY(!recorder.draws.empty());
        QVERIFY(recorder.draws.size() <= 3U); // port has two ranges
        const int most = 2 * side * (2 * ZrWaterfallMesh::MostSteps(side / 2) + 4);
        QVERIFY2(recorder.vertices <= most, qPrintable(QString::number(recorder.vertices)));
    }
}

void tst_ZrWaterfallLayer::oneSideOnly()
{
    ZrWaterfallRing ring(side, 32);
    for (int n = 0; n < side; ++n) {
        ZrWaterfallLine line = Even(32, 180);
        line.samples[sidePort].clear();
        ring.Append(line);
    }
    m_layer->SetRing(&ring);
    gl::Recorder recorder;
    QCOMPARE(Mismatch(Painted(), [](int x, int) { return x < 32 ? -1 : 180; }), QString());
    QCOMPARE(recorder.uploadedBytes, qint64(side * 32)); // what the sonar does not have needs no texture
    // Port comes later.
    ring.Append(Even(32, 90));
    QCOMPARE(Mismatch(Painted(), [](int x, int y) { return y == 0 ? 90 : x < 32 ? -1 : 180; }), QString());
}

void tst_ZrWaterfallLayer::oneSample()
{
    ZrWaterfallRing ring(side, 1);
    for (int n = 0; n < side; ++n) {
        ZrWaterfallLine line = Even(1, 4 * n);
        line.range = {25.0, 25.0};
        ring.Append(line);
    }
    m_layer->SetRing(&ring);
    QCOMPARE(Mismatch(Painted(), [](int, int y) { return 4 * (side - 1 - y); }), QString());
}

/// More than a texture is wide: reduced, by the ring and again for the texture, to the mean or the strongest.
void tst_ZrWaterfallLayer::manySamples()
{
    constexpr int samples = 100000;
    for (const auto reduce : {ZrWaterfallRing::reduceMean, ZrWaterfallRing::reduceMax}) {
        ZrWaterfallRing ring(4, samples, reduce);
        QCOMPARE(ring.Width(), ZrWaterfallRing::MostWidth);
        for (int n = 0; n < 4; ++n) {
            ring.Append(LineOf(samples, [](int s, int sample) {
                return (sample < samples / 2 ? 100 : 0) + (sample == samples * 3 / 4 && s == 1 ? 255 : 0);
            }));
        }
        m_layer->SetRing(&ring);
        m_layer->m_view.pixelsPerLine = 16.0;
        m_layer->m_mostTexels = 32; // one for a pixel
        const bool isMax = reduce == ZrWaterfallRing::reduceMax;
        QCOMPARE(Mismatch(Painted(),
                     [=](int x, int) {
                         if (x == 32 + 24)
                             return isMax ? 255 : 0;
                         return std::abs(2 * x + 1 - 64) < 32 ? 100 : 0;
                     }),
            QString());
        // As wide as the context allows: whether the one bright sample meets the middle of a pixel is chance.
        m_layer->m_mostTexels = 0;
        const QImage image = Painted();
        for (int x = 0; x < side; ++x) {
            if (x < 55 || x > 57)
                QVERIFY(Is(image.pixelColor(x, 9), std::abs(2 * x + 1 - 64) < 32 ? 100 : 0));
        }
    }
}

void tst_ZrWaterfallLayer::nonsenseLines()
{
    ZrWaterfallRing ring(side, 32);
    const double ranges[] = {notANumber, infinite, -infinite, -5.0, 0.0, 1e-300, 1e300};
    for (int n = 0; n < side; ++n) {
        ZrWaterfallLine line = Even(32, 50);
        if (n % 8 != 7) {
            line.range = {ranges[n % 8], ranges[n % 8]};
            line.time = notANumber;
            line.along = infinite;
        }
        ring.Append(line);
    }
    m_layer->SetRing(&ring);
    m_layer->m_view.range = 32.0;
    for (const bool slant : {false, true}) {
        m_layer->m_view.slantCorrected = slant;
        m_layer->m_view.speedCorrected = slant;
        QCOMPARE(Mismatch(Painted(),
                     [](int, int y) {
                         const int kind = (side - 1 - y) % 8;
                         return kind == 7 || kind == 6 ? 50 : -1; // 1e300 m reach across the view
                     }),
            QString());
    }
    m_layer->m_slope = 0.1F;
    m_layer->m_isSmooth = true;
    m_layer->m_view.range = 0.0;
    m_layer->m_view.pixelsPerLine = notANumber;
    m_layer->m_view.end = -infinite;
    Paint();
    m_layer->m_view.end = infinite;
    Paint();
}

void tst_ZrWaterfallLayer::nothingToDraw_data()
{
    QTest::addColumn<QString>("what");
    for (const char* what : {"no ring", "empty ring", "ring without room", "no samples", "no rectangle",
             "rectangle outside", "hidden", "view without pixels", "all missing"})
        QTest::newRow(what) << QString::fromLatin1(what);
}

void tst_ZrWaterfallLayer::nothingToDraw()
{
    QFETCH(QString, what);
    const bool hasRoom = what != QLatin1String("ring without room");
    ZrWaterfallRing ring(hasRoom ? 64 : 0, 32);
    if (what == QLatin1String("no samples"))
        ring.Append(ZrWaterfallLine());
    else if (what == QLatin1String("all missing"))
        ring.SetWindow(1000);
    else if (what != QLatin1String("empty ring"))
        AppendPattern(ring, 64, 32);
    m_layer->SetRing(what == QLatin1String("no ring") ? nullptr : &ring);
    m_layer->m_isVisible = what != QLatin1String("hidden");
    m_layer->m_view.range = 32.0;
    if (what == QLatin1String("no rectangle"))
        m_layer->m_view.rect = QRect(5, 5, 0, 10);
    if (what == QLatin1String("rectangle outside"))
        m_layer->m_view.rect = QRect(100, -300, 50, 50);
    if (what == QLatin1String("view without pixels"))
        m_map.SetSize(0, 0);
    m_context->Clear(background);
    m_layer->Paint(*m_surface, m_map);
    QCOMPARE(gl::CountNot(m_context->Read(), background), 0);
}

/// Another ring at the same place in memory is another ring.
void tst_ZrWaterfallLayer::otherRing()
{
    auto ring = std::make_unique<ZrWaterfallRing>(side, 32);
    for (int n = 0; n < side; ++n)
        ring->Append(Even(32, 30));
    m_layer->SetRing(ring.get());
    QCOMPARE(Mismatch(Painted(), [](int, int) { return 30; }), QString());
    ZrWaterfallRing other(side * 2, 48);
    for (int n = 0; n < side; ++n)
        other.Append(Even(32, 220));
    m_layer->SetRing(&other);
    QCOMPARE(Mismatch(Painted(), [](int, int) { return 220; }), QString());
    other.Clear();
    QCOMPARE(gl::CountNot(Painted(), background), 0);
    other.Append(Even(48, 77));
    QCOMPARE(Mismatch(Painted(), [](int, int y) { return y == 0 ? 77 : -1; }), QString());
}

void tst_ZrWaterfallLayer::lostContext()
{
    QFETCH_GLOBAL(gl::Api, api);
    ZrWaterfallRing ring(side, 32);
    AppendPattern(ring, side, 32);
    m_layer->SetRing(&ring);
    const QImage before = Painted();
    m_surface.reset();
    m_context.reset();
    m_context = std::make_unique<gl::Context>(api, QSize(side, side));
    QVERIFY(m_context->Error().isEmpty());
    m_surface = std::make_unique<GlView>();
    m_surface->m_background = QStringLiteral(":/back_light.png");
    m_surface->OnCreate();
    QCOMPARE(gl::Difference(Painted(), before), QString());
    QVERIFY(gl::CountNot(before, background) > 0);
}

void tst_ZrWaterfallLayer::release()
{
    ZrWaterfallRing ring(side, 32);
    AppendPattern(ring, side, 32);
    m_layer->SetRing(&ring);
    const QImage before = Painted();
    GLint texture = 0;
    m_context->Functions()->glGetIntegerv(GL_TEXTURE_BINDING_2D, &texture);
    QVERIFY(m_context->Functions()->glIsTexture(static_cast<GLuint>(texture)));
    m_layer->Release(*m_surface);
    QVERIFY(!m_context->Functions()->glIsTexture(static_cast<GLuint>(texture)));
    m_layer->Release(*m_surface);
    QCOMPARE(gl::Difference(Painted(), before), QString());
}

void tst_ZrWaterfallLayer::noContext()
{
    ZrWaterfallRing ring(side, 32);
    AppendPattern(ring, side, 32);
    m_layer->SetRing(&ring);
    m_context->DoneCurrent();
    m_layer->Paint(*m_surface, m_map);
    GlView never; // OnCreate was not called
    QVERIFY(m_context->MakeCurrent());
    ZrWaterfallLayer layer;
    layer.m_view.rect = QRect(0, 0, side, side);
    layer.SetRing(&ring);
    layer.Paint(never, m_map);
    QCOMPARE(gl::CountNot(m_context->Read(), background), 0);
}

void tst_ZrWaterfallLayer::failedProgram()
{
    ZrWaterfallRing ring(side, 32);
    AppendPattern(ring, side, 32);
    m_layer->SetRing(&ring);
    const LogCapture log;
    {
        const NoShaders broken;
        Paint();
        Paint();
    }
    Paint(); // is not tried again
    QCOMPARE(gl::CountNot(m_context->Read(), background), 0);
    QCOMPARE(log.Count("Shader does not compile"), 2); // either shader once
}

void tst_ZrWaterfallLayer::noTextureMemory()
{
    ZrWaterfallRing ring(side, 32);
    AppendPattern(ring, side, 32);
    m_layer->SetRing(&ring);
    const LogCapture log;
    {
        const NoMemory full;
        Paint();
        Paint();
    }
    QCOMPARE(gl::CountNot(m_context->Read(), background), 0);
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
    QCOMPARE(log.Count("No textures of 32 by 64 for a waterfall"), 1);
}

/// An error that somebody left is not taken for a want of memory.
void tst_ZrWaterfallLayer::errorsOfOthers()
{
    ZrWaterfallRing ring(side, 32);
    AppendPattern(ring, side, 32);
    m_layer->SetRing(&ring);
    m_context->Functions()->glEnable(GL_TEXTURE_BINDING_2D); // is none of the switches
    Paint();
    QVERIFY(gl::CountNot(m_context->Read(), background) > 0);
}

/// What follows finds blending off, no arrays, texture unit 0.
void tst_ZrWaterfallLayer::stateIsLeftClean()
{
    ZrWaterfallRing ring(side, 32);
    AppendPattern(ring, side, 32);
    m_layer->SetRing(&ring);
    m_layer->m_alpha = 0.5F;
    Paint();
    QOpenGLFunctions* f = m_context->Functions();
    QVERIFY(!f->glIsEnabled(GL_BLEND));
    GLint unit = 0;
    f->glGetIntegerv(GL_ACTIVE_TEXTURE, &unit);
    QCOMPARE(unit, GLint(GL_TEXTURE0));
    for (GLuint i = 0; i < 8; ++i) {
        GLint enabled = 0;
        f->glGetVertexAttribiv(i, GL_VERTEX_ATTRIB_ARRAY_ENABLED, &enabled);
        QCOMPARE(enabled, 0);
    }
    m_surface->zrgl2dProjection(0, side, 0, side, aspectStretch);
    m_surface->m_rotation = 0.0F;
    m_surface->ZrglRenderPixelRect(0, 0, side, side, Qt::red);
    QCOMPARE(gl::CountNot(m_context->Read(), Qt::red), 0);
}

GL_TEST_MAIN(tst_ZrWaterfallLayer)
#include "tst_ZrWaterfallLayer.moc"
