// Lines and areas on a map: where they are, in which colours, in both kinds of context.

#include "GlTest.h"
#include "ZrKit/map/ZrMapSurface.h"
#include "ZrKit/map/ZrShapeLayer.h"
#include "ZrUtil/ZrTheme.h"

#include <QtTest>

#include <limits>
#include <memory>

class tst_ZrShapeLayer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase_data();
    void init();
    void cleanup();
    void line();
    void closedLine();
    void concaveArea();
    void areaIsBlendedAndOpaqueBehind();
    void widthFollowsTheTheme();
    void withoutShapes();
    void clear();
    void crossedRingAndBadPoints();
    void newContext();

private:
    QImage Painted();
    QColor At(const QImage& image, double x, double y) const;

    std::unique_ptr<gl::Context> m_context;
    std::unique_ptr<ZrMapSurface> m_map;
    std::unique_ptr<ZrShapeLayer> m_layer;
};

void tst_ZrShapeLayer::initTestCase_data()
{
    QTest::addColumn<gl::Api>("api");
    QTest::newRow("GL 2.0") << gl::Api::desktop;
    QTest::newRow("ES 2.0") << gl::Api::es;
}

void tst_ZrShapeLayer::init()
{
    QFETCH_GLOBAL(gl::Api, api);
    ZrTheme::dp = 1.0F;
    m_context = std::make_unique<gl::Context>(api, QSize(200, 200));
    if (!m_context->Error().isEmpty())
        QFAIL(qPrintable(m_context->Error()));
    m_layer = std::make_unique<ZrShapeLayer>();
    m_map = std::make_unique<ZrMapSurface>();
    m_map->m_background = QStringLiteral(":/back_light.png");
    m_map->m_water = Qt::black;
    m_map->m_layers = {m_layer.get()};
    m_map->OnCreate();
    m_context->TakeErrors();
    m_map->ZrglSetViewport(0, 0, 200, 200);
    m_map->OnResize(200, 200);
    // The middle of a UTM zone, where floats alone are half a metre apart.
    m_map->m_camera.SetCentre({500000.0, 5600000.0});
    m_map->m_camera.SetScale(1.0);
}

void tst_ZrShapeLayer::cleanup()
{
    if (m_map) {
        m_map->Release();
        QCOMPARE(m_context->TakeErrors(), static_cast<GLenum>(GL_NO_ERROR));
    }
    m_map.reset();
    m_layer.reset();
    m_context.reset();
}

QImage tst_ZrShapeLayer::Painted()
{
    m_context->Clear(Qt::blue);
    m_map->Render();
    return m_context->Read();
}

/// Metres from the middle.
QColor tst_ZrShapeLayer::At(const QImage& image, double x, double y) const
{
    return image.pixelColor(100 + qRound(x), 100 - qRound(y));
}

namespace {

std::vector<QPointF> Points(std::initializer_list<QPointF> offsets)
{
    std::vector<QPointF> points;
    for (const QPointF& offset : offsets)
        points.push_back(offset + QPointF(500000.0, 5600000.0));
    return points;
}

} // namespace

void tst_ZrShapeLayer::line()
{
    m_layer->AddLine(Points({{-50, 0}, {50, 0}, {50, 50}}), 6.0, Qt::red);
    QCOMPARE(m_layer->ShapeCount(), 1);
    const QImage image = Painted();
    QCOMPARE(At(image, 0, 0), QColor(Qt::red));
    QCOMPARE(At(image, 50, 25), QColor(Qt::red));
    QCOMPARE(At(image, 0, 8), QColor(Qt::black));
    QCOMPARE(At(image, -60, 0), QColor(Qt::black));
    // Open: nothing leads back.
    QCOMPARE(At(image, 0, 25), QColor(Qt::black));
}

void tst_ZrShapeLayer::closedLine()
{
    m_layer->AddLine(Points({{-50, 0}, {50, 0}, {50, 50}}), 6.0, Qt::red, true);
    QCOMPARE(At(Painted(), 0, 25), QColor(Qt::red));
}

void tst_ZrShapeLayer::concaveArea()
{
    m_layer->AddArea(Points({{-50, -50}, {50, -50}, {50, 50}, {0, -20}, {-50, 50}}), Qt::green, 255);
    const QImage image = Painted();
    QCOMPARE(At(image, 0, -40), QColor(Qt::green));
    QCOMPARE(At(image, -40, 20), QColor(Qt::green));
    QCOMPARE(At(image, 40, 20), QColor(Qt::green));
    QCOMPARE(At(image, 0, 20), QColor(Qt::black));
}

void tst_ZrShapeLayer::areaIsBlendedAndOpaqueBehind()
{
    m_layer->AddArea(Points({{-50, -50}, {50, -50}, {50, 50}, {-50, 50}}), Qt::white, 128);
    const QColor inside = At(Painted(), 0, 0);
    QVERIFY(qAbs(inside.red() - 128) <= 2);
    QCOMPARE(inside.alpha(), 255);
}

void tst_ZrShapeLayer::widthFollowsTheTheme()
{
    m_layer->AddLine(Points({{-50, 0}, {50, 0}}), 4.0, Qt::red);
    QCOMPARE(At(Painted(), 0, 6), QColor(Qt::black));
    ZrTheme::dp = 4.0F;
    QCOMPARE(At(Painted(), 0, 6), QColor(Qt::red));
}

void tst_ZrShapeLayer::withoutShapes()
{
    const QImage image = Painted();
    QCOMPARE(At(image, 0, 0), QColor(Qt::black));
}

void tst_ZrShapeLayer::clear()
{
    m_layer->AddLine(Points({{-50, 0}, {50, 0}}), 6.0, Qt::red);
    Painted();
    m_layer->Clear();
    QCOMPARE(m_layer->ShapeCount(), 0);
    QCOMPARE(At(Painted(), 0, 0), QColor(Qt::black));
}

void tst_ZrShapeLayer::crossedRingAndBadPoints()
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    m_layer->AddArea(Points({{-50, -50}, {50, 50}, {50, -50}, {-50, 40}}), Qt::green, 255);
    m_layer->AddLine({{500000.0, 5600000.0}}, 3.0, Qt::red);
    m_layer->AddLine(Points({{-50, 0}, {50, 0}}), 0.0, Qt::red);
    QCOMPARE(m_layer->ShapeCount(), 0);
    m_layer->AddLine(Points({{-50, 30}, {nan, nan}, {-50, -30}, {50, -30}}), 6.0, Qt::red);
    const QImage image = Painted();
    QCOMPARE(At(image, 0, -30), QColor(Qt::red));
    QCOMPARE(At(image, -50, 0), QColor(Qt::black));
}

void tst_ZrShapeLayer::newContext()
{
    QFETCH_GLOBAL(gl::Api, api);
    m_layer->AddLine(Points({{-50, 0}, {50, 0}}), 6.0, Qt::red);
    Painted();
    m_map.reset();
    m_context.reset();
    m_context = std::make_unique<gl::Context>(api, QSize(200, 200));
    m_map = std::make_unique<ZrMapSurface>();
    m_map->m_background = QStringLiteral(":/back_light.png");
    m_map->m_water = Qt::black;
    m_map->m_layers = {m_layer.get()};
    m_map->OnCreate();
    m_context->TakeErrors();
    m_map->ZrglSetViewport(0, 0, 200, 200);
    m_map->OnResize(200, 200);
    m_map->m_camera.SetCentre({500000.0, 5600000.0});
    QCOMPARE(At(Painted(), 0, 0), QColor(Qt::red));
}

GL_TEST_MAIN(tst_ZrShapeLayer)
#include "tst_ZrShapeLayer.moc"
