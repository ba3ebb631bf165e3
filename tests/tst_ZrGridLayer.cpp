// The grid of a map: pixels, draw calls, uploads and failures, in both kinds of context.

#include "GlRecorder.h"
#include "GridLayerTest.h"
#include "WithoutResource.h"

class tst_ZrGridLayer : public GridLayerTest
{
    Q_OBJECT

private Q_SLOTS:

    void initTestCase_data() { AddContexts(); }

    void init() { Begin(); }

    void cleanup() { End(); }

    void fewDrawCalls_data();
    void fewDrawCalls();
    void uploadsOnlyOnChange();
    void linesAreWhereTheyShouldBe_data();
    void linesAreWhereTheyShouldBe();
    void linesAreSeenOnEveryGround_data();
    void linesAreSeenOnEveryGround();
    void linesHaveTheWidthOfTheTheme();
    void styleOfPositionsShows();
    void partsCanBeLeftOut();
    void marksOverOtherLayers();
    void textsLeaveNames();
    void darkLinesHaveNoShadow();
    void everywhere_data();
    void everywhere();
    void nonsense();
    void zeroSize();
    void withoutContext();
    void failedProgram();
    void contextLost();
};

void tst_ZrGridLayer::fewDrawCalls_data()
{
    QTest::addColumn<int>("style");
    QTest::addColumn<double>("scale");
    QTest::addColumn<double>("rotation");
    for (const int style : {0, 1, 3, 7, 8}) {
        for (const double scale : {0.001, 2.0, 300.0, 50000.0})
            QTest::addRow("%d, %g", style, scale) << style << scale << scale * 10;
    }
}

void tst_ZrGridLayer::fewDrawCalls()
{
    QFETCH(int, style);
    QFETCH(double, scale);
    QFETCH(double, rotation);
    ZrUnits::SetGeoStyle(static_cast<eGeoStyle>(style));
    m_view.SetScale(scale);
    m_view.SetRotation(rotation);
    gl::Recorder recorder;
    Paint();
    QCOMPARE(ZrGridLayer::DrawCalls, 2);
    QVERIFY(static_cast<int>(recorder.draws.size()) <= ZrGridLayer::DrawCalls);
    QVERIFY(!recorder.draws.empty());
    QVERIFY(recorder.vertices < 20000);
}

void tst_ZrGridLayer::uploadsOnlyOnChange()
{
    gl::Recorder recorder;
    Paint();
    QVERIFY(recorder.uploadedBytes > 0);
    recorder.Reset();
    Paint();
    Paint();
    QCOMPARE(recorder.uploadedBytes, qint64(0));
    QCOMPARE(recorder.LookUpCount(), 0);
    const auto isUploaded = [&](const auto& change) {
        recorder.Reset();
        change();
        Paint();
        return recorder.uploadedBytes > 0;
    };
    QVERIFY(isUploaded([&] { m_view.Pan({3, 4}); }));
    QVERIFY(isUploaded([&] { m_view.SetScale(2.1); }));
    QVERIFY(isUploaded([&] { m_view.SetRotation(5); }));
    QVERIFY(isUploaded([&] { m_view.SetSize(600, 400); }));
    QVERIFY(isUploaded([&] { m_layer->SetMargins({0, 0, 0, 40}); }));
    QVERIFY(isUploaded([&] { m_layer->SetSpacing(200); }));
    QVERIFY(isUploaded([&] { m_layer->m_hasNorthArrow = false; }));
    QVERIFY(isUploaded([&] { m_layer->ClearProjection(); }));
    QVERIFY(isUploaded([&] { ZrUnits::SetToImperial(); }));
    QVERIFY(isUploaded([&] { m_layer->SetProjection(ZrUnits::wgs84, m_projection); }));
    QVERIFY(isUploaded([&] { ZrUnits::SetGeoStyle(eGeoDegMin); }));
    QVERIFY(isUploaded([&] { ZrTheme::gridCol = Qt::red; }));
    QVERIFY(isUploaded([&] { ZrTheme::dp = 1.25F; }));
    QVERIFY(!isUploaded([] {}));
}

void tst_ZrGridLayer::linesAreWhereTheyShouldBe_data()
{
    QTest::addColumn<double>("rotation");
    QTest::addColumn<double>("scale");
    QTest::newRow("level") << 0.0 << 2.0;
    QTest::newRow("turned") << 27.0 << 2.0;
    QTest::newRow("near") << 300.0 << 0.01;
}

void tst_ZrGridLayer::linesAreWhereTheyShouldBe()
{
    QFETCH(double, rotation);
    QFETCH(double, scale);
    ZrUnits::SetGeoStyle(eGeoUTM);
    ZrTheme::gridCol = Qt::red;
    m_layer->m_hasTexts = false;
    m_layer->m_hasScaleBar = false;
    m_layer->m_hasNorthArrow = false;
    m_view.SetScale(scale);
    m_view.SetRotation(rotation);
    const QImage image = Painted();
    // 120 pixels at least are 240 m: 250; or 1.2 m: 2.
    const double step = scale == 2.0 ? 250.0 : 2.0;
    int on = 0;
    int off = 0;
    for (int y = 2; y < height - 2; y += 3) {
        for (int x = 2; x < width - 2; x += 3) {
            const QPointF world = m_view.ToWorld({x + 0.5, y + 0.5});
            const auto distance
                = [&](double v) { return std::fabs(v - std::round(v / step) * step) / scale; };
            const double nearest = std::min(distance(world.x()), distance(world.y()));
            const int red = image.pixelColor(x, y).red();
            if (nearest < 0.2) {
                QVERIFY2(red > 200, qPrintable(QStringLiteral("%1 %2 %3").arg(x).arg(y).arg(red)));
                ++on;
            } else if (nearest > 2.0) {
                QVERIFY2(red == 0, qPrintable(QStringLiteral("%1 %2 %3").arg(x).arg(y).arg(red)));
                ++off;
            }
        }
    }
    QVERIFY(on > 20);
    QVERIFY(off > 10000);
}

void tst_ZrGridLayer::linesAreSeenOnEveryGround_data()
{
    QTest::addColumn<QColor>("ground");
    QTest::newRow("sea") << QColor(35, 55, 75);
    QTest::newRow("seabed") << QColor(90, 160, 180);
    QTest::newRow("white") << QColor(Qt::white);
    QTest::newRow("black") << QColor(Qt::black);
    // The colour of the lines themselves.
    QTest::newRow("grey") << QColor(128, 128, 128);
}

void tst_ZrGridLayer::linesAreSeenOnEveryGround()
{
    QFETCH(QColor, ground);
    m_layer->m_hasTexts = false;
    m_layer->m_hasScaleBar = false;
    m_layer->m_hasNorthArrow = false;
    const QImage image = Painted(ground);
    int different = 0;
    for (int x = 0; x < width; ++x)
        different += gl::Distance(image.pixelColor(x, 111), ground) > 15 ? 1 : 0;
    QVERIFY(different >= 4);
}

void tst_ZrGridLayer::linesHaveTheWidthOfTheTheme()
{
    ZrUnits::SetGeoStyle(eGeoUTM);
    ZrTheme::gridCol = Qt::red;
    ZrTheme::darken = QColor(0, 0, 0, 0);
    m_layer->m_hasTexts = false;
    m_layer->m_hasScaleBar = false;
    m_layer->m_hasNorthArrow = false;
    m_view.SetCentre({400000, 5000000});
    for (const float dp : {1.0F, 2.0F, 3.5F}) {
        ZrTheme::dp = dp;
        const QImage image = Painted();
        // Across the line in the middle.
        double ink = 0.0;
        for (int x = width / 2 - 12; x < width / 2 + 12; ++x)
            ink += image.pixelColor(x, height / 2 + 30).redF();
        QVERIFY2(std::fabs(ink - static_cast<double>(dp)) < 0.1, qPrintable(QString::number(ink)));
    }
}

void tst_ZrGridLayer::styleOfPositionsShows()
{
    const QImage geographic = Painted();
    ZrUnits::SetGeoStyle(eGeoUTM);
    const QImage grid = Painted();
    QVERIFY(!gl::Difference(grid, geographic, 60).isEmpty());
    // Without a projection there is nothing else, whatever the style.
    m_layer->m_hasNorthArrow = false;
    const QImage gridAlone = Painted();
    ZrUnits::SetGeoStyle(eGeoDMS);
    m_layer->ClearProjection();
    const QString difference = gl::Difference(Painted(), gridAlone);
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void tst_ZrGridLayer::partsCanBeLeftOut()
{
    m_layer->m_hasGrid = false;
    m_layer->m_hasScaleBar = false;
    m_layer->m_hasNorthArrow = false;
    gl::Recorder recorder;
    QCOMPARE(gl::CountNot(Painted(), Qt::black), 0);
    QVERIFY(recorder.draws.empty());
    m_layer->m_hasGrid = true;
    m_layer->m_hasTexts = false;
    Painted();
    QCOMPARE(recorder.draws.size(), std::size_t(1));
}

/// As a layer of their own they are what they were, one draw call more, and over what lies between.
void tst_ZrGridLayer::marksOverOtherLayers()
{
    const QImage together = Painted();
    ZrMapLayer& marks = m_layer->Marks();
    QCOMPARE(&m_layer->Marks(), &marks);
    m_context->Clear(Qt::black);
    gl::Recorder recorder;
    Paint();
    QCOMPARE(recorder.draws.size(), std::size_t(1));
    const QImage lines = m_context->Read().convertToFormat(QImage::Format_RGB32);
    QVERIFY(!gl::Difference(lines, together, 30).isEmpty());
    marks.Paint(*m_surface, m_view);
    QCOMPARE(recorder.draws.size(), std::size_t(3));
    const QString difference
        = gl::Difference(m_context->Read().convertToFormat(QImage::Format_RGB32), together);
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
    // Something between covers the lines, not the marks.
    m_context->Clear(Qt::black);
    Paint();
    m_context->Clear(Qt::blue);
    marks.Paint(*m_surface, m_view);
    const QImage over = m_context->Read().convertToFormat(QImage::Format_RGB32);
    QVERIFY(Count(over, m_layer->ScaleBarRect(m_view), Qt::white, 10) > 300);
    QVERIFY(Count(over, m_layer->NorthArrowRect(m_view), Qt::red, 30) > 100);
    // Nothing is uploaded again, but when the projection changes, which only the marks' own key knows.
    recorder.Reset();
    Paint();
    marks.Paint(*m_surface, m_view);
    QCOMPARE(recorder.uploadedBytes, qint64(0));
    m_layer->ClearProjection();
    marks.Paint(*m_surface, m_view);
    QVERIFY(recorder.uploadedBytes > 0);
    marks.Release(*m_surface);
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
}

/// A name at the edge is read, not the coordinate below it.
void tst_ZrGridLayer::textsLeaveNames()
{
    m_layer->m_hasScaleBar = false;
    m_layer->m_hasNorthArrow = false;
    ZrTheme::gridCol = QColor(128, 128, 128, 0);
    ZrTheme::darken = QColor(0, 0, 0, 0);
    const QImage before = Painted();
    // Where the first text is.
    QRect text;
    for (int x = 0; x < width && text.isNull(); ++x) {
        for (int y = 0; y < 40; ++y) {
            if (before.pixelColor(x, y) == QColor(Qt::white))
                text |= QRect(x, y, 60, 1);
        }
    }
    QVERIFY(!text.isNull());
    ZrLabelLayer names;
    names.SetDeclutter(true);
    ZrMapLabel name;
    name.text = QStringLiteral("L3");
    name.isOnScreen = true;
    name.position = text.center();
    names.SetLabels({name});
    names.Paint(*m_surface, m_view);
    QCOMPARE(names.Boxes().size(), std::size_t(1));
    QVERIFY(names.Boxes().front().contains(QRectF(text.center(), QSizeF(1, -1)).normalized()));
    m_layer->KeepClearOf(&names);
    QCOMPARE(Count(Painted(), text, Qt::white, 60), 0);
    // Back again when the name goes.
    names.SetLabels({});
    names.Paint(*m_surface, m_view);
    QVERIFY(names.Boxes().empty());
    QCOMPARE(gl::Difference(Painted(), before), QString());
    m_layer->KeepClearOf(nullptr);
    names.Release(*m_surface);
}

/// On the light ground that they are for it would be as strong as they are.
void tst_ZrGridLayer::darkLinesHaveNoShadow()
{
    m_layer->m_hasTexts = false;
    m_layer->m_hasScaleBar = false;
    m_layer->m_hasNorthArrow = false;
    const auto inked = [this] {
        const QImage image = Painted(Qt::white);
        int count = 0;
        for (int x = 0; x < width; ++x)
            count += image.pixelColor(x, 111) != QColor(Qt::white) ? 1 : 0;
        return count;
    };
    ZrTheme::darken = QColor(0, 0, 0, 50);
    ZrTheme::gridCol = QColor(200, 200, 200, 128);
    const int light = inked();
    ZrTheme::gridCol = QColor(60, 60, 60, 128);
    const int dark = inked();
    QVERIFY2(dark > 0 && dark < light, qPrintable(QStringLiteral("%1 of %2").arg(dark).arg(light)));
}

void tst_ZrGridLayer::everywhere_data()
{
    QTest::addColumn<double>("lat");
    QTest::addColumn<double>("lng");
    QTest::newRow("equator") << 0.0 << 0.0;
    QTest::newRow("antimeridian") << -17.0 << 179.999;
    QTest::newRow("antimeridian, west") << 52.0 << -179.999;
    QTest::newRow("south") << -54.8 << -68.3;
    QTest::newRow("near the pole") << 83.9 << 10.0;
    QTest::newRow("beyond the grid") << 89.5 << 10.0;
    QTest::newRow("south pole") << -89.999 << 0.0;
}

void tst_ZrGridLayer::everywhere()
{
    QFETCH(double, lat);
    QFETCH(double, lng);
    m_projection = ProjectionOf(lat, lng);
    m_layer->SetProjection(ZrUnits::wgs84, m_projection);
    m_view.SetCentre(WorldOf(m_projection, lat, lng));
    for (const double scale : {0.001, 1.0, 100.0, 3000.0, 50000.0}) {
        for (const int style : {1, 4, 7, 8}) {
            ZrUnits::SetGeoStyle(static_cast<eGeoStyle>(style));
            m_view.SetScale(scale);
            m_view.SetRotation(scale + style);
            Paint();
            QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
        }
    }
    m_view.SetScale(1.0);
    const QRectF arrow = m_layer->NorthArrowRect(m_view);
    QVERIFY(Count(Painted(), arrow, Qt::red, 30) > 100);
}

void tst_ZrGridLayer::nonsense()
{
    for (const QPointF& centre : {QPointF(1e300, -1e300), QPointF(0, 1e12), QPointF(-1e9, 0)}) {
        m_view.SetCentre(centre);
        for (const double scale : {0.001, 50000.0}) {
            m_view.SetScale(scale);
            for (const int style : {7, 8}) {
                ZrUnits::SetGeoStyle(static_cast<eGeoStyle>(style));
                Paint();
            }
        }
    }
    m_layer->SetSpacing(notANumber);
    m_layer->SetSpacing(-1e300);
    m_layer->SetSpacing(1e300);
    Paint();
    ZrProj broken;
    broken.lngOrigin = notANumber;
    m_layer->SetProjection(ZrUnits::wgs84, broken);
    Paint();
    ZrUnits::SetShortLengthToCustom(QStringLiteral("x"), notANumber);
    ZrUnits::SetLongLengthToCustom(QStringLiteral("y"), 0.0);
    Paint();
    for (const float dp : {0.0F, -1.0F, std::numeric_limits<float>::infinity(),
             std::numeric_limits<float>::quiet_NaN(), 1e6F}) {
        ZrTheme::dp = dp;
        Paint();
        QVERIFY(m_layer->NorthArrowRect(m_view).isEmpty());
        QVERIFY(m_layer->ScaleBarRect(m_view).isEmpty());
    }
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
}

void tst_ZrGridLayer::zeroSize()
{
    gl::Recorder recorder;
    m_view.SetSize(0, 100);
    m_layer->Paint(*m_surface, m_view);
    QVERIFY(recorder.draws.empty());
}

void tst_ZrGridLayer::withoutContext()
{
    m_context->DoneCurrent();
    Paint();
    m_layer->Release(*m_surface);
    QVERIFY(m_context->MakeCurrent());
    QVERIFY(gl::CountNot(Painted(), Qt::black) > 1000);
}

void tst_ZrGridLayer::failedProgram()
{
    {
        const resource::Without without(QStringLiteral(":/map_shape.fsh"));
        QVERIFY(without.IsDone());
        gl::Recorder recorder;
        Paint();
        Paint();
        QVERIFY(recorder.draws.empty());
        QCOMPARE(s_lines, 2);
        QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
    }
    m_layer->Release(*m_surface);
    QVERIFY(gl::CountNot(Painted(), Qt::black) > 1000);
}

void tst_ZrGridLayer::contextLost()
{
    const QImage before = Painted();
    m_surface.reset();
    m_context.reset();
    MakeContext();
    for (int i = 0; i < 2; ++i) {
        const QString difference = gl::Difference(Painted(), before);
        QVERIFY2(difference.isEmpty(), qPrintable(difference));
    }
    m_layer->Release(*m_surface);
    const QString difference = gl::Difference(Painted(), before);
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

GL_TEST_MAIN(tst_ZrGridLayer)
#include "tst_ZrGridLayer.moc"
