// Labels on a map that are drawn from pictures of their texts, and want of memory, in both kinds of context.

#include "GlRecorder.h"
#include "LabelLayerTest.h"
#include "WithoutResource.h"

#include <algorithm>

namespace {

/// Says that textures are \p side texels at most, until it is destroyed.
class SmallTextures : private QOpenGLFunctions
{
public:
    explicit SmallTextures(GLint side)
        : QOpenGLFunctions(QOpenGLContext::currentContext())
        , m_saved(d_ptr->f.GetIntegerv)
    {
        s_active = this;
        m_side = side;
        d_ptr->f.GetIntegerv = [](GLenum name, GLint* value) {
            s_active->m_saved(name, value);
            if (name == GL_MAX_TEXTURE_SIZE)
                *value = s_active->m_side;
        };
    }

    ~SmallTextures()
    {
        d_ptr->f.GetIntegerv = m_saved;
        s_active = nullptr;
    }

    SmallTextures(const SmallTextures&) = delete;
    SmallTextures& operator=(const SmallTextures&) = delete;

private:
    decltype(QOpenGLFunctionsPrivate::f.GetIntegerv) m_saved;
    GLint m_side = 0;
    static inline SmallTextures* s_active = nullptr;
};

GLint CurrentProgram()
{
    GLint program = 0;
    QOpenGLContext::currentContext()->functions()->glGetIntegerv(GL_CURRENT_PROGRAM, &program);
    return program;
}

constexpr qint64 vertexBytes = sizeof(ZrMapBatch::Vertex);
constexpr int quad = 6; ///< vertices

} // namespace

class tst_ZrLabelLayerPictures : public LabelLayerTest
{
    Q_OBJECT

private Q_SLOTS:

    void initTestCase_data() { AddContexts(); }

    void init() { Begin(); }

    void cleanup() { End(); }

    void oneQuadForInkAndHalo();
    void inkAlone_data();
    void inkAlone();
    void inkAloneDoesNotBuild();
    void sameTextsShareAPicture();
    void looksLikeDistances_data();
    void looksLikeDistances();
    void turnedNeighboursChangeNothing();
    void liveValues();
    void colourChangesNoTexture();
    void pixelRatio();
    void tooLargeOrLong_data();
    void tooLargeOrLong();
    void moreThanPicturesFit();
    void smallTextures();
    void oddViews();
    void noTextureMemory();
    void noBufferMemory();
    void memoryComesBack();
    void errorsOfOthers();
};

void tst_ZrLabelLayerPictures::oneQuadForInkAndHalo()
{
    std::vector<ZrMapLabel> labels;
    for (int i = 0; i < 1000; ++i) {
        labels.push_back(
            LabelOf(QStringLiteral("Buoy %1").arg(i), {i % 30 * 10.0 - 150, i / 30 * 6.0 - 100}));
        labels.back().halo = QColor(0, 0, 0, 200);
        labels.back().size = 13.0F;
    }
    m_layer->SetLabels(labels);
    gl::Recorder recorder;
    Paint();
    QCOMPARE(recorder.draws.size(), std::size_t(1));
    QCOMPARE(recorder.vertices, qint64(1000) * quad);
    recorder.Reset();
    Paint();
    QCOMPARE(recorder.uploadedBytes, qint64(0));
    QCOMPARE(s_lines, 0);
}

void tst_ZrLabelLayerPictures::inkAlone_data()
{
    QTest::addColumn<QColor>("colour");
    QTest::addColumn<QColor>("behind");
    QTest::newRow("white on black") << QColor(Qt::white) << QColor(Qt::black);
    QTest::newRow("black on white") << QColor(Qt::black) << QColor(Qt::white);
    QTest::newRow("faint") << QColor(255, 128, 0, 100) << QColor(0, 40, 200);
}

/// Texts without a halo have a shader of their own; with one label of another kind the layer takes the common
/// one, and its pixels are the same.
void tst_ZrLabelLayerPictures::inkAlone()
{
    QFETCH(QColor, colour);
    QFETCH(QColor, behind);
    ZrMapLabel label = LabelOf(QStringLiteral("Wreck 7"), {-80, 0});
    label.colour = colour;
    m_layer->SetLabels({label});
    const QImage plain = Painted(behind);
    QVERIFY(gl::CountNot(plain, behind) > 50);
    const GLint alone = CurrentProgram();
    ZrMapLabel beyond = LabelOf(QStringLiteral("far"), {1e6, 0});
    beyond.halo = Qt::black;
    m_layer->SetLabels({label, beyond});
    const QString difference = gl::Difference(Painted(behind), plain, 1);
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
    const GLint common = CurrentProgram();
    QVERIFY(common != alone);
    beyond.halo = Qt::transparent;
    beyond.angle = 30.0;
    m_layer->SetLabels({label, beyond});
    Paint();
    QCOMPARE(CurrentProgram(), common);
    m_layer->SetLabels({label});
    Paint();
    QCOMPARE(CurrentProgram(), alone);
    QCOMPARE(s_lines, 0);
}

/// Texts are drawn by the common shader then.
void tst_ZrLabelLayerPictures::inkAloneDoesNotBuild()
{
    ZrMapLabel label = LabelOf(QStringLiteral("one"));
    label.halo = Qt::black;
    m_layer->SetLabels({label});
    Paint();
    const resource::Without without(QStringLiteral(":/map_label_ink.fsh"));
    QVERIFY(without.IsDone());
    m_layer->SetLabels({LabelOf(QStringLiteral("one"))});
    QVERIFY(gl::CountNot(Painted(), Qt::black) > 0);
    QVERIFY(gl::CountNot(Painted(), Qt::black) > 0);
    QCOMPARE(s_messages,
        QStringList({QStringLiteral("Cannot read shader :/map_label.vsh"),
            QStringLiteral("Cannot read shader :/map_label_ink.fsh")}));
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
}

void tst_ZrLabelLayerPictures::sameTextsShareAPicture()
{
    m_layer->SetLabels({LabelOf(QStringLiteral("12.5 m"))});
    Paint();
    std::vector<ZrMapLabel> labels;
    for (int i = 0; i < 500; ++i)
        labels.push_back(LabelOf(QStringLiteral("12.5 m"), {i * 0.1, 0}));
    m_layer->SetLabels(labels);
    gl::Recorder recorder;
    Paint();
    QCOMPARE(recorder.uploadedBytes, 500 * quad * vertexBytes);
}

void tst_ZrLabelLayerPictures::looksLikeDistances_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<float>("size");
    const QString texts[] = {QStringLiteral("Rig 12"), QStringLiteral("\u0645\u0631\u0641\u0623 7"),
        QStringLiteral("e\u0301\u00e5 \u03a8"), QStringLiteral("51\u00b0 7' 24\" N")};
    for (const QString& text : texts) {
        for (const float size : {13.0F, 18.0F, 40.0F})
            QTest::addRow("%s, %g", qPrintable(text), static_cast<double>(size)) << text << size;
    }
}

/// An angle that turns nothing takes the other way to the same pixels, which differ by their smoothing alone.
void tst_ZrLabelLayerPictures::looksLikeDistances()
{
    QFETCH(QString, text);
    QFETCH(float, size);
    ZrMapLabel label = LabelOf(text, {-80, 0});
    label.size = size;
    label.halo = QColor(255, 0, 0);
    label.colour = QColor(0, 255, 0);
    label.alignY = ZrMapLabel::alignMiddle;
    m_layer->SetLabels({label});
    gl::Recorder recorder;
    const QImage picture = Painted(Qt::blue);
    QCOMPARE(recorder.vertices, qint64(quad));
    label.angle = 360.0;
    m_layer->SetLabels({label});
    const QImage distances = Painted(Qt::blue);
    QVERIFY(recorder.vertices > 3 * quad);
    const auto sum = [](const QImage& image, int channel) {
        double total = 0.0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const QColor c = image.pixelColor(x, y);
                total += channel == 0 ? c.redF() : channel == 1 ? c.greenF() : 1.0 - c.blueF();
            }
        }
        return total;
    };
    for (int channel = 0; channel < 3; ++channel) {
        const double a = sum(picture, channel);
        const double b = sum(distances, channel);
        QVERIFY2(std::fabs(a - b) < 0.12 * b, qPrintable(QStringLiteral("%1: %2").arg(channel).arg(a / b)));
    }
    // Each pixel has its like within one pixel.
    int alone = 0;
    int inked = 0;
    for (int y = 1; y + 1 < height; ++y) {
        for (int x = 1; x + 1 < width; ++x) {
            const int green = picture.pixelColor(x, y).green();
            if (green < 200)
                continue;
            ++inked;
            int most = 0;
            for (int i = 0; i < 9; ++i)
                most = std::max(most, distances.pixelColor(x + i % 3 - 1, y + i / 3 - 1).green());
            alone += most < 100 ? 1 : 0;
        }
    }
    QVERIFY(inked > 5);
    QCOMPARE(alone, 0);
}

/// The texture is read in another way then.
void tst_ZrLabelLayerPictures::turnedNeighboursChangeNothing()
{
    ZrMapLabel upright = LabelOf(QStringLiteral("Rig 12.5"), {-100, 30});
    upright.halo = QColor(0, 90, 0);
    ZrMapLabel turned = LabelOf(QStringLiteral("turned"), {1e5, 0});
    turned.angle = 33.0;
    m_layer->SetLabels({upright});
    const QImage alone = Painted();
    for (int i = 0; i < 2; ++i) {
        m_layer->SetLabels({upright, turned});
        gl::Recorder recorder;
        const QString difference = gl::Difference(Painted(), alone, 2);
        QVERIFY2(difference.isEmpty(), qPrintable(difference));
        QCOMPARE(recorder.draws.size(), std::size_t(1));
        m_layer->SetLabels({upright});
        QCOMPARE(gl::Difference(Painted(), alone), QString());
    }
}

/// Values that change all the time upload what they need, and memory does not grow.
void tst_ZrLabelLayerPictures::liveValues()
{
    gl::Recorder recorder;
    qint64 most = 0;
    for (int second = 0; second < 400; ++second) {
        std::vector<ZrMapLabel> labels;
        labels.push_back(LabelOf(QStringLiteral("stays"), {0, 60}));
        for (int i = 0; i < 20; ++i) {
            labels.push_back(LabelOf(
                QStringLiteral("%1.%2 m").arg(second * 7 % 1000).arg(i), {-100.0 + i * 10, i * 8 - 100.0}));
            labels.back().size = 13.0F;
        }
        m_layer->SetLabels(labels);
        recorder.Reset();
        Paint();
        if (second >= 100)
            most = std::max(most, recorder.uploadedBytes);
    }
    // At most the whole of an image that a few hundred such texts fit into.
    QVERIFY2(most <= 256 * 256 + 21 * quad * vertexBytes, qPrintable(QString::number(most)));
    QCOMPARE(s_lines, 0);
    const QImage after = Painted();
    const std::vector<ZrMapLabel> labels = m_layer->Labels();
    m_layer->Release(*m_surface);
    m_layer = std::make_unique<ZrLabelLayer>();
    m_layer->SetFont(QFont(QStringLiteral("Liberation Sans")));
    m_layer->SetLabels(labels);
    const QString difference = gl::Difference(after, Painted());
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void tst_ZrLabelLayerPictures::colourChangesNoTexture()
{
    ZrMapLabel label = LabelOf(QStringLiteral("12.5 m"));
    label.halo = Qt::black;
    m_layer->SetLabels({label});
    Paint();
    label.colour = Qt::red;
    label.halo = QColor(10, 20, 30, 40);
    label.position = {3, 4};
    m_layer->SetLabels({label});
    gl::Recorder recorder;
    Paint();
    QCOMPARE(recorder.uploadedBytes, quad * vertexBytes);
}

void tst_ZrLabelLayerPictures::pixelRatio()
{
    ZrMapLabel label = LabelOf(QStringLiteral("HEH"));
    label.size = 13.0F;
    label.halo = Qt::red;
    m_layer->SetLabels({label});
    const QRect once = InkBox(Painted(), Qt::black);
    m_surface->m_pixelFactor = 2;
    const QRect twice = InkBox(Painted(), Qt::black);
    QVERIFY(std::abs(twice.width() - 2 * once.width()) <= 3);
    QVERIFY(std::abs(twice.height() - 2 * once.height()) <= 3);
    // Pictures of that size, not larger pixels: a step from nothing to all takes two pixels at most.
    label.halo = Qt::transparent;
    m_layer->SetLabels({label});
    const QImage image = Painted();
    const int row = InkBox(image, Qt::black).top() + 5; // between the bars
    int between = 0;
    for (int x = 0; x < width; ++x) {
        const int red = image.pixelColor(x, row).red();
        between = red > 8 && red < 247 ? between + 1 : 0;
        QVERIFY(between <= 2);
    }
}

void tst_ZrLabelLayerPictures::tooLargeOrLong_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<float>("size");
    QTest::newRow("large") << QStringLiteral("Fg") << 60.0F;
    QTest::newRow("10,000 characters") << QString(10000, QLatin1Char('m')) << 18.0F;
    QTest::newRow("a million") << QString(1000000, QChar(0x0645)) << 18.0F;
}

void tst_ZrLabelLayerPictures::tooLargeOrLong()
{
    QFETCH(QString, text);
    QFETCH(float, size);
    ZrMapLabel label = LabelOf(text, {-100, 0});
    label.size = size;
    label.halo = Qt::red;
    m_layer->SetLabels({label});
    gl::Recorder recorder;
    QVERIFY(gl::CountNot(Painted(), Qt::black) > 100);
    QVERIFY(recorder.vertices > quad);
    QCOMPARE(recorder.draws.size(), std::size_t(1));
    QCOMPARE(s_lines, 0);
}

/// What finds no room is drawn from its glyphs, and nothing is logged.
void tst_ZrLabelLayerPictures::moreThanPicturesFit()
{
    const SmallTextures small(512);
    std::vector<ZrMapLabel> labels;
    for (int i = 0; i < 300; ++i)
        labels.push_back(
            LabelOf(QStringLiteral("Buoy %1").arg(1000 + i), {i % 4 * 75.0 - 150, 100.0 - i / 4 * 2.5}));
    m_layer->SetLabels(labels);
    gl::Recorder recorder;
    Paint();
    QCOMPARE(recorder.draws.size(), std::size_t(1));
    QVERIFY(recorder.vertices > 300 * quad);
    QVERIFY(recorder.vertices < 300 * 8 * quad);
    recorder.Reset();
    Paint();
    QCOMPARE(recorder.uploadedBytes, qint64(0));
    QCOMPARE(s_lines, 0);
    // Fewer of them fit.
    labels.resize(40);
    m_layer->SetLabels(labels);
    recorder.Reset();
    Paint();
    QCOMPARE(recorder.vertices, qint64(40) * quad);
}

void tst_ZrLabelLayerPictures::smallTextures()
{
    for (const GLint side : {0, 1, 64, 128}) {
        const SmallTextures small(side);
        m_layer->Release(*m_surface);
        m_layer = std::make_unique<ZrLabelLayer>();
        m_layer->SetLabels({LabelOf(QStringLiteral("one")), LabelOf(QStringLiteral("two"), {50, 50})});
        QVERIFY(gl::CountNot(Painted(), Qt::black) > 20);
    }
}

/// Half a pixel more on either side: the picture's pixels are the screen's all the same.
void tst_ZrLabelLayerPictures::oddViews()
{
    ZrMapLabel label = LabelOf(QStringLiteral("Rig 12.5"));
    label.isOnScreen = true;
    label.position = {20, 50};
    m_layer->SetLabels({label});
    const QImage even = Painted().copy(0, 0, 150, 70);
    m_view.SetSize(width - 1, height - 1);
    m_surface->ZrglSetViewport(0, 1, width - 1, height - 1);
    m_context->Functions()->glViewport(0, 1, width - 1, height - 1);
    QCOMPARE(gl::Difference(Painted().copy(0, 0, 150, 70), even), QString());
}

void tst_ZrLabelLayerPictures::noTextureMemory()
{
    m_layer->SetLabels({LabelOf(QStringLiteral("one"))});
    gl::Recorder recorder;
    recorder.isTextureMemoryOut = true;
    QCOMPARE(gl::CountNot(Painted(), Qt::black), 0);
    QCOMPARE(recorder.failed, 1);
    QCOMPARE(recorder.error, GLenum(GL_NO_ERROR));
    Paint();
    QCOMPARE(recorder.failed, 1); // not tried in each frame
    QVERIFY(recorder.draws.empty());
    m_layer->SetLabels({LabelOf(QStringLiteral("other"))});
    Paint();
    QCOMPARE(recorder.failed, 2);
    QVERIFY(recorder.draws.empty());
    QCOMPARE(s_messages,
        QStringList(QStringLiteral("No texture of 128 by 128 for labels, none is drawn: error 1285")));
}

void tst_ZrLabelLayerPictures::noBufferMemory()
{
    m_layer->SetLabels({LabelOf(QStringLiteral("one"))});
    gl::Recorder recorder;
    recorder.isBufferMemoryOut = true;
    QCOMPARE(gl::CountNot(Painted(), Qt::black), 0);
    QCOMPARE(recorder.failed, 1);
    QCOMPARE(recorder.error, GLenum(GL_NO_ERROR));
    Paint();
    m_layer->SetLabels({LabelOf(QStringLiteral("other"))});
    Paint();
    QCOMPARE(recorder.failed, 2);
    QVERIFY(recorder.draws.empty());
    QCOMPARE(s_messages,
        QStringList(
            QStringLiteral("No buffer of %1 bytes, nothing is drawn: error 1285").arg(quad * vertexBytes)));
}

void tst_ZrLabelLayerPictures::memoryComesBack()
{
    const ZrMapLabel label = LabelOf(QStringLiteral("one"));
    m_layer->SetLabels({label});
    const QImage expected = Painted();
    m_layer->Release(*m_surface);
    for (const bool isTexture : {true, false}) {
        m_layer->SetLabels({label});
        gl::Recorder recorder;
        (isTexture ? recorder.isTextureMemoryOut : recorder.isBufferMemoryOut) = true;
        QCOMPARE(gl::CountNot(Painted(), Qt::black), 0);
        recorder.isTextureMemoryOut = false;
        recorder.isBufferMemoryOut = false;
        // With the next change.
        m_layer->SetLabels({label, LabelOf(QStringLiteral("far %1").arg(isTexture ? 1 : 2), {1e5, 0})});
        QCOMPARE(gl::Difference(Painted(), expected), QString());
        QCOMPARE(s_lines, isTexture ? 1 : 2);
        m_layer->Release(*m_surface);
    }
}

void tst_ZrLabelLayerPictures::errorsOfOthers()
{
    m_layer->SetLabels({LabelOf(QStringLiteral("one"))});
    m_context->Functions()->glEnable(GL_TEXTURE_BINDING_2D); // is none of the switches
    QVERIFY(gl::CountNot(Painted(), Qt::black) > 0);
    QCOMPARE(s_lines, 0);
}

GL_TEST_MAIN(tst_ZrLabelLayerPictures)
#include "tst_ZrLabelLayerPictures.moc"
