// Labels on a map: draw calls, uploads, what is shown, and failures, in both kinds of context.

#include "GlRecorder.h"
#include "LabelLayerTest.h"
#include "WithoutResource.h"

#include <random>

class tst_ZrLabelLayer : public LabelLayerTest
{
    Q_OBJECT

private Q_SLOTS:

    void initTestCase_data() { AddContexts(); }

    void init() { Begin(); }

    void cleanup() { End(); }

    void thousandLabelsAreOneDraw();
    void uploadsOnlyOnChange();
    void locationsAreLookedUpOnce();
    void laterGlyphsAppear();
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
};

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
    // A new glyph: of the texture its cell.
    recorder.Reset();
    m_layer->SetLabels({LabelOf(QStringLiteral("Q"))});
    Paint();
    QVERIFY(recorder.uploadedBytes > 0 && recorder.uploadedBytes < 128 * 128);
    ZrMapLabel turned = LabelOf(QStringLiteral("Q"));
    turned.angle = 10;
    recorder.Reset();
    m_layer->SetLabels({turned});
    Paint();
    QVERIFY(recorder.uploadedBytes > 0 && recorder.uploadedBytes < 128 * 128);
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
        QCOMPARE(s_messages,
            QStringList({QStringLiteral("Cannot read shader :/map_label.vsh"),
                QStringLiteral("Cannot read shader :/map_label.fsh")}));
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

GL_TEST_MAIN(tst_ZrLabelLayer)
#include "tst_ZrLabelLayer.moc"
