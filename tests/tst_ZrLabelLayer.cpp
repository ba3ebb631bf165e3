// Texts on a map: pixels, draw calls, uploads and failures, in both kinds of context.

#include "GlRecorder.h"
#include "GlView.h"
#include "WithoutResource.h"
#include "ZrDebugLog/ZrDebugLog.h"
#include "ZrKit/map/ZrLabelLayer.h"
#include "ZrKit/map/ZrMapView.h"
#include "ZrUtil/ZrTheme.h"

#include <QtWidgets>

#include <cmath>
#include <limits>
#include <random>

namespace {

using gl::Api;

constexpr int width = 320;
constexpr int height = 240;
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();

int s_lines = 0;

/// What is not \p background, by more than a trace.
QRect InkBox(const QImage& image, const QColor& background)
{
    QRect box;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (gl::Distance(image.pixelColor(x, y), background) > 40)
                box |= QRect(x, y, 1, 1);
        }
    }
    return box;
}

/// The sum of the red of all pixels, 1 for a full one.
double RedSum(const QImage& image)
{
    double sum = 0.0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            sum += image.pixelColor(x, y).redF();
    }
    return sum;
}

ZrMapLabel LabelOf(const QString& text, const QPointF& position = QPointF())
{
    ZrMapLabel label;
    label.text = text;
    label.position = position;
    label.colour = Qt::white;
    label.halo = Qt::transparent;
    return label;
}

} // namespace

// Takes the place of the library's function.
void zr_debug_log_modern(int /*level*/, const char* /*source_file*/, int /*source_line*/,
    const char* /*function*/, const char* /*category*/, int /*reserved*/, int64_t /*steady_time_ns*/,
    const char* /*message*/)
{
    ++s_lines;
}

class tst_ZrLabelLayer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase_data();
    void init();
    void cleanup();

    void thousandLabelsAreOneDraw();
    void uploadsOnlyOnChange();
    void locationsAreLookedUpOnce();
    void anchors_data();
    void anchors();
    void offsetIsRightAndDown();
    void onScreen();
    void worldPositionIsExact_data();
    void worldPositionIsExact();
    void uprightWhateverTheRotation_data();
    void uprightWhateverTheRotation();
    void turnsWithTheMap();
    void angleTurnsTheText();
    void inkIsTheSameAtEveryAngle_data();
    void inkIsTheSameAtEveryAngle();
    void sizes();
    void tinyAndHugeSizes();
    void haloOnLightGround();
    void haloLeavesTheInk();
    void haloWidths();
    void coloursOfTheTheme();
    void unicode_data();
    void unicode();
    void laterGlyphsAppear();
    void fontChanges();
    void declutter();
    void declutterFollowsTheScale();
    void declutterLeavesRoom();
    void nothingToDraw_data();
    void nothingToDraw();
    void nonsense_data();
    void nonsense();
    void zeroSize();
    void hidden();
    void withoutContext();
    void failedProgram();
    void contextLost();
    void releasedAndPaintedAgain();
    void leavesTheStateOfOthers();
    void textSize();

private:
    void Paint();
    QImage Painted(const QColor& background = Qt::black);
    void MakeContext();

    std::unique_ptr<gl::Context> m_context;
    std::unique_ptr<GlView> m_surface;
    std::unique_ptr<ZrLabelLayer> m_layer;
    ZrMapView m_view;
};

void tst_ZrLabelLayer::initTestCase_data()
{
    QTest::addColumn<gl::Api>("api");
    QTest::newRow("GL") << Api::desktop;
    QTest::newRow("ES") << Api::es;
}

void tst_ZrLabelLayer::MakeContext()
{
    QFETCH_GLOBAL(gl::Api, api);
    m_context = std::make_unique<gl::Context>(api, QSize(width, height));
    QVERIFY2(m_context->Error().isEmpty(), qPrintable(m_context->Error()));
    m_surface = std::make_unique<GlView>();
    m_surface->m_background = QStringLiteral(":/back_light.png");
    m_surface->ZrglSetViewport(0, 0, width, height);
    m_surface->OnCreate();
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
}

void tst_ZrLabelLayer::init()
{
    ZrTheme::dp = 1.0F;
    ZrTheme::SetStdStyle();
    MakeContext();
    m_layer = std::make_unique<ZrLabelLayer>();
    QFont font(QStringLiteral("Liberation Sans"));
    m_layer->SetFont(font);
    m_view = ZrMapView();
    m_view.SetSize(width, height);
    s_lines = 0;
    zr_debug_log_level = 2;
    zr_debug_log_to_dbg = 1;
}

void tst_ZrLabelLayer::cleanup()
{
    zr_debug_log_level = -1;
    zr_debug_log_to_dbg = 0;
    if (m_context && m_surface) {
        m_layer->Release(*m_surface);
        QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
    }
    m_layer.reset();
    m_surface.reset();
    m_context.reset();
}

void tst_ZrLabelLayer::Paint()
{
    m_view.Apply(*m_surface);
    m_layer->Paint(*m_surface, m_view);
}

QImage tst_ZrLabelLayer::Painted(const QColor& background)
{
    m_context->Clear(background);
    Paint();
    // Blending changes the alpha.
    return m_context->Read().convertToFormat(QImage::Format_RGB32);
}

void tst_ZrLabelLayer::thousandLabelsAreOneDraw()
{
    std::vector<ZrMapLabel> labels;
    std::mt19937 random(1);
    for (int i = 0; i < 1000; ++i) {
        labels.push_back(LabelOf(QStringLiteral("Waypoint %1: 51\u00b0 7' 24.444\" N").arg(i),
            {double(random() % 300) - 150, double(random() % 200) - 100}));
        labels.back().halo = QColor(0, 0, 0, 200);
        labels.back().angle = i % 7;
    }
    m_layer->SetLabels(labels);
    gl::Recorder recorder;
    Paint();
    QCOMPARE(recorder.draws.size(), std::size_t(1));
    QCOMPARE(recorder.draws[0].mode, GLenum(GL_TRIANGLES));
    QVERIFY(recorder.draws[0].isBlended);
    // Halo and ink of every glyph.
    QVERIFY(recorder.vertices > 1000 * 20 * 2 * 6);
    QCOMPARE(m_layer->Shown(), std::vector<bool>(1000, true));
}

void tst_ZrLabelLayer::uploadsOnlyOnChange()
{
    m_layer->SetLabels({LabelOf(QStringLiteral("one")), LabelOf(QStringLiteral("two"), {50, 50})});
    gl::Recorder recorder;
    Paint();
    QVERIFY(recorder.uploadedBytes > 128 * 128);
    recorder.Reset();
    Paint();
    QCOMPARE(recorder.uploadedBytes, qint64(0));
    m_view.SetCentre({10, 20});
    m_view.SetRotation(30);
    m_view.SetScale(2.5);
    Paint();
    m_view.SetSize(200, 100);
    Paint();
    m_layer->SetLabels(m_layer->Labels());
    Paint();
    QCOMPARE(recorder.uploadedBytes, qint64(0));
    QCOMPARE(recorder.draws.size(), std::size_t(4));
    // Other labels of the same glyphs: vertices alone.
    m_layer->SetLabels({LabelOf(QStringLiteral("neo"))});
    Paint();
    QVERIFY(recorder.uploadedBytes > 0 && recorder.uploadedBytes < 128 * 128);
    // A new glyph.
    recorder.Reset();
    m_layer->SetLabels({LabelOf(QStringLiteral("Q"))});
    Paint();
    QVERIFY(recorder.uploadedBytes > 128 * 128);
    recorder.Reset();
    m_layer->SetScale(1.5F);
    Paint();
    QVERIFY(recorder.uploadedBytes > 0);
}

void tst_ZrLabelLayer::locationsAreLookedUpOnce()
{
    m_layer->SetLabels({LabelOf(QStringLiteral("one"))});
    gl::Recorder recorder;
    Paint();
    for (const int count : recorder.lookUps)
        QCOMPARE(count, 1);
    recorder.Reset();
    Paint();
    QCOMPARE(recorder.LookUpCount(), 0);
}

void tst_ZrLabelLayer::anchors_data()
{
    QTest::addColumn<int>("x");
    QTest::addColumn<int>("y");
    for (int x = 0; x < 3; ++x) {
        for (int y = 0; y < 3; ++y)
            QTest::addRow("%d %d", x, y) << x << y;
    }
}

void tst_ZrLabelLayer::anchors()
{
    QFETCH(int, x);
    QFETCH(int, y);
    ZrMapLabel label = LabelOf(QStringLiteral("HEH"));
    label.size = 36;
    label.alignX = static_cast<ZrMapLabel::eAlignX>(x);
    label.alignY = static_cast<ZrMapLabel::eAlignY>(y);
    m_layer->SetLabels({label});
    const QRect box = InkBox(Painted(), Qt::black);
    QFont font(QStringLiteral("Liberation Sans"));
    font.setPixelSize(36);
    font.setHintingPreference(QFont::PreferNoHinting);
    const QFontMetricsF metrics(font);
    const double left = width / 2.0 - metrics.horizontalAdvance(label.text) * x / 2.0;
    const double base = height / 2.0 + metrics.ascent() - (metrics.ascent() + metrics.descent()) * y / 2.0;
    const QRectF ink = metrics.tightBoundingRect(label.text).translated(left, base);
    QVERIFY2(std::fabs(box.left() - ink.left()) < 2 && std::fabs(box.right() + 1 - ink.right()) < 2
            && std::fabs(box.top() - ink.top()) < 2 && std::fabs(box.bottom() + 1 - ink.bottom()) < 2,
        qPrintable(QStringLiteral("%1 %2 %3 %4 for %5 %6 %7 %8")
                       .arg(box.left())
                       .arg(box.top())
                       .arg(box.right())
                       .arg(box.bottom())
                       .arg(ink.left())
                       .arg(ink.top())
                       .arg(ink.right())
                       .arg(ink.bottom())));
}

void tst_ZrLabelLayer::offsetIsRightAndDown()
{
    ZrMapLabel label = LabelOf(QStringLiteral("8"));
    m_layer->SetLabels({label});
    const QRect before = InkBox(Painted(), Qt::black);
    label.offset = {30, 12};
    m_layer->SetLabels({label});
    QCOMPARE(InkBox(Painted(), Qt::black), before.translated(30, 12));
    // Upright, the offset stays where it is.
    m_view.SetRotation(90);
    QCOMPARE(InkBox(Painted(), Qt::black), before.translated(30, 12));
    // Design pixels.
    m_surface->m_pixelFactor = 2;
    const QRect twice = InkBox(Painted(), Qt::black);
    QVERIFY(std::abs(twice.left() - (width / 2 + 60)) <= 4);
}

void tst_ZrLabelLayer::onScreen()
{
    ZrMapLabel label = LabelOf(QStringLiteral("8"));
    label.isOnScreen = true;
    label.position = {40, 50};
    label.alignX = ZrMapLabel::alignCentre;
    label.alignY = ZrMapLabel::alignMiddle;
    label.isTurning = true; // of no effect
    m_layer->SetLabels({label});
    const QImage first = Painted();
    const QRect box = InkBox(first, Qt::black);
    QVERIFY(std::abs(box.center().x() - 40) <= 2 && std::abs(box.center().y() - 50) <= 2);
    m_view.SetCentre({1e6, 5e6});
    m_view.SetScale(0.01);
    m_view.SetRotation(123);
    const QString difference = gl::Difference(Painted(), first);
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void tst_ZrLabelLayer::worldPositionIsExact_data()
{
    QTest::addColumn<double>("scale");
    QTest::addColumn<double>("rotation");
    for (const double scale : {0.01, 0.2, 3.0, 500.0}) {
        for (const double rotation : {0.0, 41.0, 200.0})
            QTest::addRow("%g, %g", scale, rotation) << scale << rotation;
    }
}

void tst_ZrLabelLayer::worldPositionIsExact()
{
    QFETCH(double, scale);
    QFETCH(double, rotation);
    // High in the grid of the southern hemisphere.
    m_view.SetCentre({651234.567, 9987654.321});
    m_view.SetScale(scale);
    m_view.SetRotation(rotation);
    for (const QPointF& pixel : {QPointF(60, 40), QPointF(250.4, 200.7)}) {
        ZrMapLabel label = LabelOf(QStringLiteral("o"), m_view.ToWorld(pixel));
        label.alignX = ZrMapLabel::alignCentre;
        label.alignY = ZrMapLabel::alignMiddle;
        m_layer->SetLabels({label});
        const QRect box = InkBox(Painted(), Qt::black);
        QVERIFY(std::fabs(box.x() + box.width() / 2.0 - pixel.x()) < 1.6);
        // The o is below the middle of its line.
        QVERIFY(std::fabs(box.y() + box.height() / 2.0 - pixel.y() - 1.5) < 2.6);
    }
}

void tst_ZrLabelLayer::uprightWhateverTheRotation_data()
{
    QTest::addColumn<double>("rotation");
    for (const double rotation : {1.0, 45.0, 90.0, 180.0, 333.3})
        QTest::addRow("%g", rotation) << rotation;
}

void tst_ZrLabelLayer::uprightWhateverTheRotation()
{
    QFETCH(double, rotation);
    m_layer->SetLabels({LabelOf(QStringLiteral("Fg7 \u00b0"))});
    const QImage before = Painted();
    QVERIFY(gl::CountNot(before, Qt::black) > 60);
    m_view.SetRotation(rotation);
    const QString difference = gl::Difference(Painted(), before, 2);
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void tst_ZrLabelLayer::turnsWithTheMap()
{
    ZrMapLabel label = LabelOf(QStringLiteral("HEHEH"));
    label.isTurning = true;
    label.offset = {20, 0};
    label.alignY = ZrMapLabel::alignMiddle;
    m_layer->SetLabels({label});
    const QRect level = InkBox(Painted(), Qt::black);
    m_view.SetRotation(90);
    const QRect upright = InkBox(Painted(), Qt::black);
    QVERIFY(std::abs(upright.height() - level.width()) <= 2);
    QVERIFY(std::abs(upright.width() - level.height()) <= 2);
    // Counter-clockwise: what was on the right is above.
    QVERIFY(upright.bottom() < height / 2 - 15);
    QVERIFY(std::abs(upright.center().x() - width / 2) <= 3);
}

void tst_ZrLabelLayer::angleTurnsTheText()
{
    ZrMapLabel label = LabelOf(QStringLiteral("HEHEH"));
    m_layer->SetLabels({label});
    const QRect level = InkBox(Painted(), Qt::black);
    label.angle = 90;
    m_layer->SetLabels({label});
    const QRect up = InkBox(Painted(), Qt::black);
    QVERIFY(std::abs(up.height() - level.width()) <= 2);
    QVERIFY(up.bottom() <= height / 2 + 1 && up.right() <= width / 2);
    label.angle = 90 + 360 * 1000;
    m_layer->SetLabels({label});
    QCOMPARE(InkBox(Painted(), Qt::black), up);
    label.angle = -180;
    m_layer->SetLabels({label});
    QVERIFY(InkBox(Painted(), Qt::black).right() <= width / 2);
}

void tst_ZrLabelLayer::inkIsTheSameAtEveryAngle_data()
{
    QTest::addColumn<double>("angle");
    for (const double angle : {7.0, 30.0, 45.0, 90.0, 211.0})
        QTest::addRow("%g", angle) << angle;
}

void tst_ZrLabelLayer::inkIsTheSameAtEveryAngle()
{
    QFETCH(double, angle);
    ZrMapLabel label = LabelOf(QStringLiteral("Rig 12"));
    m_layer->SetLabels({label});
    const double level = RedSum(Painted());
    label.angle = angle;
    m_layer->SetLabels({label});
    const double turned = RedSum(Painted());
    QVERIFY(level > 100);
    QVERIFY2(std::fabs(turned - level) < 0.03 * level, qPrintable(QString::number(turned / level)));
}

void tst_ZrLabelLayer::sizes()
{
    ZrMapLabel label = LabelOf(QStringLiteral("HH"));
    const auto inkHeight = [&](float size) {
        label.size = size;
        m_layer->SetLabels({label});
        return InkBox(Painted(), Qt::black).height();
    };
    // Capitals of this font are 0.69 of its size.
    QVERIFY(std::abs(inkHeight(0) - 13) <= 1);
    QVERIFY(std::abs(inkHeight(18) - 13) <= 1);
    QVERIFY(std::abs(inkHeight(36) - 25) <= 1);
    QVERIFY(std::abs(inkHeight(100) - 69) <= 2);
    ZrTheme::dp = 2.0F;
    QVERIFY(std::abs(inkHeight(18) - 25) <= 1);
    // A font of the theme that was made for the other scale.
    QVERIFY(std::abs(inkHeight(0) - 13) <= 1);
    ZrTheme::SetStdStyle();
    QVERIFY(std::abs(inkHeight(0) - 25) <= 1);
    m_layer->SetScale(2.0F);
    QVERIFY(std::abs(inkHeight(18) - 50) <= 2);
    m_layer->SetScale(0.0F);
    m_layer->SetScale(-1.0F);
    m_layer->SetScale(std::numeric_limits<float>::quiet_NaN());
    QVERIFY(std::abs(inkHeight(18) - 50) <= 2);
}

void tst_ZrLabelLayer::tinyAndHugeSizes()
{
    ZrMapLabel label = LabelOf(QStringLiteral("H"));
    label.halo = Qt::red;
    label.alignX = ZrMapLabel::alignCentre;
    label.alignY = ZrMapLabel::alignMiddle;
    for (const float size : {0.001F, 1.0F, 1e9F}) {
        label.size = size;
        m_layer->SetLabels({label});
        QVERIFY(gl::CountNot(Painted(), Qt::black) > 0);
    }
    label.haloWidth = 1e9F;
    label.size = 18;
    m_layer->SetLabels({label});
    QVERIFY(InkBox(Painted(), Qt::black).width() < 40);
}

void tst_ZrLabelLayer::haloOnLightGround()
{
    ZrMapLabel label = LabelOf(QStringLiteral("12.5"));
    m_layer->SetLabels({label});
    // White on white: nothing to be seen.
    QVERIFY(InkBox(Painted(Qt::white), Qt::white).isEmpty());
    label.halo = Qt::black;
    label.haloWidth = 2;
    m_layer->SetLabels({label});
    const QImage image = Painted(Qt::white);
    const QRect box = InkBox(image, Qt::white);
    QVERIFY(!box.isEmpty());
    int dark = 0;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            dark += image.pixelColor(x, y).red() < 60 ? 1 : 0;
    }
    QVERIFY(dark > 80);
    // On black ground it is the ink that is seen.
    QVERIFY(RedSum(Painted(Qt::black)) > 50);
}

void tst_ZrLabelLayer::haloLeavesTheInk()
{
    // Close letters: no halo darkens a neighbour.
    ZrMapLabel label = LabelOf(QStringLiteral("AVWmi1lT."));
    m_layer->SetLabels({label});
    const QImage plain = Painted(Qt::black);
    label.halo = Qt::black;
    label.haloWidth = 3;
    m_layer->SetLabels({label});
    const QString difference = gl::Difference(Painted(Qt::black), plain, 2);
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void tst_ZrLabelLayer::haloWidths()
{
    ZrMapLabel label = LabelOf(QStringLiteral("H"));
    label.size = 36;
    const auto box = [&](float haloWidth) {
        label.halo = Qt::red;
        label.haloWidth = haloWidth;
        m_layer->SetLabels({label});
        return InkBox(Painted(), Qt::black);
    };
    const QRect none = box(0);
    QCOMPARE(box(-3), none);
    const QRect two = box(2);
    QVERIFY(std::abs(two.width() - none.width() - 4) <= 1);
    QVERIFY(std::abs(two.height() - none.height() - 4) <= 1);
    const QRect four = box(4);
    QVERIFY(std::abs(four.width() - none.width() - 8) <= 1);
}

void tst_ZrLabelLayer::coloursOfTheTheme()
{
    ZrMapLabel label;
    label.text = QStringLiteral("\u25a0\u2588");
    label.size = 60;
    label.alignX = ZrMapLabel::alignCentre;
    label.alignY = ZrMapLabel::alignMiddle;
    m_layer->SetLabels({label});
    ZrTheme::ctrlCol = QColor(10, 200, 30);
    ZrTheme::formBack = QColor(200, 10, 10);
    const auto count = [&](const QColor& colour) {
        const QImage image = Painted(Qt::blue);
        int n = 0;
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x)
                n += gl::Distance(image.pixelColor(x, y), colour) < 12 ? 1 : 0;
        }
        return n;
    };
    QVERIFY(count(QColor(10, 200, 30)) > 200);
    QVERIFY(count(QColor(200, 10, 10)) > 20);
    // Another style shows at once.
    ZrTheme::ctrlCol = QColor(250, 250, 0);
    QVERIFY(count(QColor(250, 250, 0)) > 200);
    ZrTheme::ctrlCol = QColor();
    ZrTheme::formBack = QColor();
    QVERIFY(count(Qt::white) > 200);
    QVERIFY(count(Qt::black) > 20);
    label.colour = Qt::cyan;
    m_layer->SetLabels({label});
    QVERIFY(count(Qt::cyan) > 200);
}

void tst_ZrLabelLayer::unicode_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("degree") << QStringLiteral("\u00b0");
    QTest::newRow("umlauts") << QStringLiteral("\u00c4\u00f6\u00fc");
    QTest::newRow("Greek") << QStringLiteral("\u03a8\u03b7");
    QTest::newRow("Arabic") << QStringLiteral("\u0645\u0631\u0641\u0623");
    QTest::newRow("Chinese") << QStringLiteral("\u6c88\u8239");
    QTest::newRow("beyond 16 bits") << QString::fromUcs4(U"\U0001D54F", 1);
    QTest::newRow("half a pair") << QString(QChar(0xDC00));
}

void tst_ZrLabelLayer::unicode()
{
    QFETCH(QString, text);
    m_layer->SetLabels({LabelOf(text)});
    QVERIFY(gl::CountNot(Painted(), Qt::black) > 5);
}

void tst_ZrLabelLayer::laterGlyphsAppear()
{
    // The atlas grows many times; what was there stays as it was.
    m_layer->SetLabels({LabelOf(QStringLiteral("Rig"))});
    const QImage before = Painted();
    std::vector<ZrMapLabel> labels = m_layer->Labels();
    for (ushort c = 0x100; c < 0x180; ++c) {
        labels.push_back(LabelOf(QString(QChar(c)), {1e5, 0}));
        m_layer->SetLabels(labels);
        if (c % 16 == 0)
            Painted();
    }
    const QString difference = gl::Difference(Painted(), before);
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
    QCOMPARE(s_lines, 0);
}

void tst_ZrLabelLayer::fontChanges()
{
    m_layer->SetLabels({LabelOf(QStringLiteral("iiii"))});
    const QRect before = InkBox(Painted(), Qt::black);
    QFont font(QStringLiteral("Liberation Mono"));
    m_layer->SetFont(font);
    QVERIFY(InkBox(Painted(), Qt::black).width() > before.width() + 8);
    gl::Recorder recorder;
    m_layer->SetFont(font);
    Paint();
    QCOMPARE(recorder.uploadedBytes, qint64(0));
    // That of the theme, while none is set.
    ZrLabelLayer other;
    other.SetLabels(m_layer->Labels());
    m_context->Clear(Qt::black);
    ZrTheme::fontFamily = QStringLiteral("Liberation Sans");
    other.Paint(*m_surface, m_view);
    QCOMPARE(InkBox(m_context->Read(), Qt::black), before);
    m_context->Clear(Qt::black);
    ZrTheme::fontFamily = QStringLiteral("Liberation Mono");
    other.Paint(*m_surface, m_view);
    QVERIFY(InkBox(m_context->Read(), Qt::black).width() > before.width() + 8);
    other.Release(*m_surface);
}

void tst_ZrLabelLayer::declutter()
{
    ZrMapLabel low = LabelOf(QStringLiteral("LOW"));
    ZrMapLabel high = LabelOf(QStringLiteral("HIGH"), {5, 5});
    ZrMapLabel apart = LabelOf(QStringLiteral("APART"), {0, -80});
    high.priority = 1;
    m_layer->SetLabels({low, high, apart});
    Painted();
    QCOMPARE(m_layer->Shown(), std::vector<bool>({true, true, true}));
    m_layer->SetDeclutter(true);
    const QImage decluttered = Painted();
    QCOMPARE(m_layer->Shown(), std::vector<bool>({false, true, true}));
    m_layer->SetDeclutter(false);
    m_layer->SetLabels({high, apart});
    const QString difference = gl::Difference(decluttered, Painted());
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void tst_ZrLabelLayer::declutterFollowsTheScale()
{
    m_layer->SetLabels({LabelOf(QStringLiteral("one")), LabelOf(QStringLiteral("two"), {30, 0})});
    m_layer->SetDeclutter(true);
    m_view.SetScale(2.0);
    gl::Recorder recorder;
    Paint();
    QCOMPARE(m_layer->Shown(), std::vector<bool>({true, false}));
    recorder.Reset();
    // Panning and a little zoom change nothing.
    m_view.Pan({15.3, -7.7});
    Paint();
    m_view.SetScale(1.9);
    Paint();
    QCOMPARE(recorder.uploadedBytes, qint64(0));
    m_view.SetScale(0.5);
    Paint();
    QVERIFY(recorder.uploadedBytes > 0);
    QCOMPARE(m_layer->Shown(), std::vector<bool>({true, true}));
}

void tst_ZrLabelLayer::declutterLeavesRoom()
{
    m_layer->SetLabels({LabelOf(QStringLiteral("one")), LabelOf(QStringLiteral("two"), {-100, 0})});
    m_layer->SetDeclutter(true, {QRectF(165, 100, 30, 30)});
    Painted();
    QCOMPARE(m_layer->Shown(), std::vector<bool>({false, true}));
    m_layer->SetDeclutter(true);
    Painted();
    QCOMPARE(m_layer->Shown(), std::vector<bool>({true, true}));
}

void tst_ZrLabelLayer::nothingToDraw_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("isAny");
    QTest::newRow("no labels") << QString() << false;
    QTest::newRow("empty text") << QString() << true;
    QTest::newRow("blanks") << QStringLiteral("  \n\t ") << true;
}

void tst_ZrLabelLayer::nothingToDraw()
{
    QFETCH(QString, text);
    QFETCH(bool, isAny);
    if (isAny)
        m_layer->SetLabels({LabelOf(text)});
    gl::Recorder recorder;
    QCOMPARE(gl::CountNot(Painted(), Qt::black), 0);
    QVERIFY(recorder.draws.empty());
    // And nothing after there was something.
    m_layer->SetLabels({LabelOf(QStringLiteral("one"))});
    QVERIFY(gl::CountNot(Painted(), Qt::black) > 0);
    m_layer->SetLabels({});
    QCOMPARE(gl::CountNot(Painted(), Qt::black), 0);
}

void tst_ZrLabelLayer::nonsense_data()
{
    QTest::addColumn<int>("which");
    QTest::addColumn<double>("value");
    const char* names[] = {"x", "y", "offset", "angle", "size", "halo"};
    for (int i = 0; i < 6; ++i) {
        QTest::addRow("%s no number", names[i]) << i << notANumber;
        QTest::addRow("%s infinite", names[i]) << i << infinite;
        QTest::addRow("%s negative infinite", names[i]) << i << -infinite;
    }
    QTest::newRow("x far away") << 0 << 1e300;
    QTest::newRow("y far away") << 1 << -2e8;
}

void tst_ZrLabelLayer::nonsense()
{
    QFETCH(int, which);
    QFETCH(double, value);
    ZrMapLabel bad = LabelOf(QStringLiteral("bad"));
    bad.halo = Qt::green;
    if (which == 0)
        bad.position.setX(value);
    else if (which == 1)
        bad.position.setY(value);
    else if (which == 2)
        bad.offset.setY(value);
    else if (which == 3)
        bad.angle = value;
    else if (which == 4)
        bad.size = static_cast<float>(value);
    else
        bad.haloWidth = static_cast<float>(value);
    const ZrMapLabel good = LabelOf(QStringLiteral("good"), {20, 20});
    m_layer->SetLabels({good});
    const QImage expected = Painted();
    for (const bool isDecluttered : {false, true}) {
        m_layer->SetDeclutter(isDecluttered);
        m_layer->SetLabels({bad, good});
        const QString difference = gl::Difference(Painted(), expected);
        QVERIFY2(difference.isEmpty(), qPrintable(difference));
        QCOMPARE(m_layer->Shown(), std::vector<bool>({false, true}));
    }
}

void tst_ZrLabelLayer::zeroSize()
{
    m_layer->SetLabels({LabelOf(QStringLiteral("one"))});
    gl::Recorder recorder;
    m_view.SetSize(0, 0);
    m_layer->Paint(*m_surface, m_view);
    m_view.SetSize(100, 0);
    m_layer->Paint(*m_surface, m_view);
    QVERIFY(recorder.draws.empty());
    m_view.SetSize(1, 1);
    Paint();
    QCOMPARE(recorder.draws.size(), std::size_t(1));
    // A scale that is none.
    m_view.SetSize(width, height);
    for (const float dp :
        {0.0F, -1.0F, std::numeric_limits<float>::infinity(), std::numeric_limits<float>::quiet_NaN()}) {
        ZrTheme::dp = dp;
        Paint();
    }
    QCOMPARE(recorder.draws.size(), std::size_t(1));
}

void tst_ZrLabelLayer::hidden()
{
    m_layer->SetLabels({LabelOf(QStringLiteral("one"))});
    m_layer->m_isVisible = false;
    gl::Recorder recorder;
    Paint();
    QVERIFY(recorder.draws.empty());
    QCOMPARE(recorder.uploadedBytes, qint64(0));
}

void tst_ZrLabelLayer::withoutContext()
{
    m_layer->SetLabels({LabelOf(QStringLiteral("one"))});
    m_context->DoneCurrent();
    Paint();
    m_layer->Release(*m_surface);
    QVERIFY(m_layer->Shown().empty());
    QVERIFY(m_context->MakeCurrent());
    QVERIFY(gl::CountNot(Painted(), Qt::black) > 0);
}

void tst_ZrLabelLayer::failedProgram()
{
    m_layer->SetLabels({LabelOf(QStringLiteral("one"))});
    {
        const resource::Without without(QStringLiteral(":/map_label.fsh"));
        QVERIFY(without.IsDone());
        gl::Recorder recorder;
        Paint();
        Paint();
        QVERIFY(recorder.draws.empty());
        // Each shader that cannot be read, once.
        QCOMPARE(s_lines, 2);
        QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
    }
    // In another context it is tried again.
    m_layer->Release(*m_surface);
    QVERIFY(gl::CountNot(Painted(), Qt::black) > 0);
}

void tst_ZrLabelLayer::contextLost()
{
    m_layer->SetLabels({LabelOf(QStringLiteral("Fg7"))});
    m_layer->SetDeclutter(true);
    const QImage before = Painted();
    QVERIFY(gl::CountNot(before, Qt::black) > 0);
    m_surface.reset();
    m_context.reset();
    MakeContext();
    for (int i = 0; i < 2; ++i) {
        const QString difference = gl::Difference(Painted(), before);
        QVERIFY2(difference.isEmpty(), qPrintable(difference));
    }
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
}

void tst_ZrLabelLayer::releasedAndPaintedAgain()
{
    m_layer->SetLabels({LabelOf(QStringLiteral("Fg7"))});
    const QImage before = Painted();
    m_layer->Release(*m_surface);
    m_layer->Release(*m_surface);
    const QString difference = gl::Difference(Painted(), before);
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void tst_ZrLabelLayer::leavesTheStateOfOthers()
{
    m_layer->SetLabels({LabelOf(QStringLiteral("Fg7"))});
    m_context->Clear(Qt::black);
    m_surface->ZrglRenderPixelRect(10, 10, 20, 20, Qt::red);
    const QImage expected = m_context->Read();
    Painted();
    m_context->Clear(Qt::black);
    m_surface->ZrglRenderPixelRect(10, 10, 20, 20, Qt::red);
    const QString difference = gl::Difference(m_context->Read(), expected);
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
    QCOMPARE(m_context->Functions()->glIsEnabled(GL_BLEND), GLboolean(GL_FALSE));
    GLint buffer = -1;
    m_context->Functions()->glGetIntegerv(GL_ARRAY_BUFFER_BINDING, &buffer);
    QCOMPARE(buffer, 0);
}

void tst_ZrLabelLayer::textSize()
{
    QFont font(QStringLiteral("Liberation Sans"));
    font.setPixelSize(36);
    font.setHintingPreference(QFont::PreferNoHinting);
    const QString text = QStringLiteral("51\u00b0 7' N");
    const QSizeF size = m_layer->TextSize(text, 36);
    QVERIFY(std::fabs(size.width() - QFontMetricsF(font).horizontalAdvance(text)) < 1.0);
    QVERIFY(std::fabs(size.height() - QFontMetricsF(font).height()) < 1.0);
    QVERIFY(std::fabs(m_layer->TextSize(text).width() - size.width() / 2) < 0.01);
    QCOMPARE(m_layer->TextSize(QString()).width(), 0.0);
}

GL_TEST_MAIN(tst_ZrLabelLayer)
#include "tst_ZrLabelLayer.moc"
