#include "GlTest.h"
#include "GlView.h"
#include "ZrKit/scene/ZrSceneSurface.h"
#include "ZrKit/ui/ZrColourScheme.h"
#include "ZrUtil/ZrTheme.h"

#include <QApplication>
#include <QtTest>

#include <cmath>
#include <limits>

namespace {

const QSize size(160, 120);
constexpr float unknown = std::numeric_limits<float>::quiet_NaN();
constexpr float infinity = std::numeric_limits<float>::infinity();

/// A bottom of 40 by 40 metres, \p depth below the surface, with a mound in the middle.
ZrSceneFloor Floor(float depth)
{
    std::vector<QVector3D> soundings;
    for (int x = -20; x <= 20; x += 2) {
        for (int y = -20; y <= 20; y += 2) {
            const auto fx = static_cast<float>(x);
            const auto fy = static_cast<float>(y);
            soundings.emplace_back(fx, fy, -depth + 3.0F * std::exp(-(fx * fx + fy * fy) / 50.0F));
        }
    }
    ZrSceneFloor floor;
    floor.Build(soundings, 2.0F);
    return floor;
}

int Different(const QImage& a, const QImage& b)
{
    int count = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x)
            count += a.pixel(x, y) != b.pixel(x, y) ? 1 : 0;
    }
    return count;
}

} // namespace

/// What it draws: the picture with a thing against the one without.
class tst_ZrSceneSurface : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void water();
    void mesh();
    void noMesh();
    void floor();
    void depthsHaveTheirColours_data();
    void depthsHaveTheirColours();
    void flatFloorIsOfOneColour();
    void floorFadesBeforeItsEdge();
    void contours();
    void darkHullIsSeen_data();
    void darkHullIsSeen();
    void smoothEdges();
    void trailAndPlan();
    void surfaceGrid();
    void cameraMoves();
    void poseTurns();
    void poseThatIsNoNumber();
    void positionsThatAreNoNumber();
    void exaggeration();
    void opaque();
    void viewportIsKept();
    void noSize();
    void withoutContext();
    void trailHasAnEnd();
    void secondContext();
    void release();

private:
    QImage Picture()
    {
        m_context->Clear(Qt::black);
        m_scene->Render();
        return m_context->Read();
    }

    void LoadVehicle()
    {
        // A wedge: ahead and aside differ, and so do above and below.
        const float corners[] = {3, 0, 0, -2, 0, 1, -2, 0, -1, 3, 0, 0, -2, 1, 0, -2, 0, 1, 3, 0, 0, -2, 0,
            -1, -2, 1, 0, -2, 0, 1, -2, 1, 0, -2, 0, -1};
        QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("wedge.obj"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QByteArray text;
        for (int i = 0; i < 12; ++i)
            text += "v " + QByteArray::number(double(corners[3 * i])) + ' '
                + QByteArray::number(double(corners[3 * i + 1])) + ' '
                + QByteArray::number(double(corners[3 * i + 2])) + '\n';
        text += "vt 0 0\nvn 0 1 0\n";
        for (int i = 0; i < 4; ++i) {
            text += "f";
            for (int k = 1; k <= 3; ++k)
                text += ' ' + QByteArray::number(3 * i + k) + "/1/1";
            text += '\n';
        }
        file.write(text);
        file.close();
        ZglObject::LoadObj(path, m_scene->m_mesh);
        QVERIFY(!m_scene->m_mesh.m_vertices.empty());
    }

    std::unique_ptr<gl::Context> m_context;
    std::unique_ptr<ZrSceneSurface> m_scene;
};

void tst_ZrSceneSurface::init()
{
    ZrTheme::SetStdStyle();
    m_context = std::make_unique<gl::Context>(gl::Api::desktop, size);
    QCOMPARE(m_context->Error(), QString());
    m_scene = std::make_unique<ZrSceneSurface>();
    m_scene->m_background = QStringLiteral(":/back_light.png");
    m_scene->m_hasSurface = false;
    m_scene->m_camera.SetDistance(20.0F);
    m_scene->OnCreate();
    m_scene->ZrglSetViewport(0, 0, size.width(), size.height());
    m_scene->OnResize(size.width(), size.height());
    m_context->TakeErrors();
}

void tst_ZrSceneSurface::cleanup()
{
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
    m_scene.reset();
    m_context.reset();
}

void tst_ZrSceneSurface::water()
{
    const QImage picture = Picture();
    for (const QPoint& at : {QPoint(0, 0), QPoint(80, 60), QPoint(159, 119)}) {
        const QColor colour = picture.pixelColor(at);
        QVERIFY(std::abs(colour.red() - ZrTheme::sea.red()) <= 1);
        QVERIFY(std::abs(colour.green() - ZrTheme::sea.green()) <= 1);
        QVERIFY(std::abs(colour.blue() - ZrTheme::sea.blue()) <= 1);
    }
}

void tst_ZrSceneSurface::mesh()
{
    const QImage empty = Picture();
    LoadVehicle();
    const QImage shown = Picture();
    QVERIFY(Different(empty, shown) > 100);
    m_scene->m_hasVehicle = false;
    QCOMPARE(Different(empty, Picture()), 0);
    m_scene->m_hasVehicle = true;
    QCOMPARE(Different(shown, Picture()), 0);
    // Twice as large covers more, another colour the same.
    m_scene->m_meshScale = 2.0F;
    QVERIFY(Different(empty, Picture()) > 2 * Different(empty, shown));
    m_scene->m_meshScale = 1.0F;
    m_scene->m_meshColour = QColor(255, 0, 0);
    const QImage red = Picture();
    QVERIFY(Different(red, shown) > 100);
    const QColor middle = red.pixelColor(80, 60);
    QVERIFY2(middle.red() > middle.blue(), qPrintable(middle.name()));
}

void tst_ZrSceneSurface::noMesh()
{
    const QImage empty = Picture();
    m_scene->m_meshImage = QImage(QStringLiteral(":/nothing.png"));
    QCOMPARE(Different(empty, Picture()), 0);
}

void tst_ZrSceneSurface::floor()
{
    const QImage empty = Picture();
    m_scene->SetFloor(Floor(10.0F));
    const QImage shown = Picture();
    QVERIFY(Different(empty, shown) > 2000);
    // A mound: not of one colour.
    QSet<QRgb> colours;
    for (int x = 0; x < size.width(); ++x)
        colours.insert(shown.pixel(x, 70));
    QVERIFY2(colours.size() > 5, qPrintable(QString::number(colours.size())));
    // Another one in its place, and none.
    m_scene->SetFloor(Floor(15.0F));
    QVERIFY(Different(shown, Picture()) > 1000);
    m_scene->SetFloor(ZrSceneFloor());
    QCOMPARE(Different(empty, Picture()), 0);
}

void tst_ZrSceneSurface::depthsHaveTheirColours_data()
{
    QTest::addColumn<int>("scheme");
    for (int scheme = 0; scheme < ZrColourScheme::Count; ++scheme)
        QTest::addRow("%d", scheme) << scheme;
}

/// What is shallow is lighter than what is deep, and both differ from the water.
void tst_ZrSceneSurface::depthsHaveTheirColours()
{
    QFETCH(int, scheme);
    ZrColourScheme::Apply(scheme);
    std::vector<QVector3D> slope;
    for (int x = -40; x <= 40; x += 2) {
        for (int y = -40; y <= 40; y += 2)
            slope.emplace_back(float(x), float(y), -20.0F + 0.125F * float(x));
    }
    ZrSceneFloor floor;
    floor.Build(slope, 2.0F);
    m_scene->SetFloor(floor);
    QVERIFY(std::abs(m_scene->Shallowest() - 15.0F) < 0.5F && std::abs(m_scene->Deepest() - 25.0F) < 0.5F);
    m_scene->m_camera.SetTarget({0, 0, -20});
    m_scene->m_camera.SetAngles(180.0F, 89.0F); // from above, east to the right
    m_scene->m_camera.SetDistance(60.0F);
    const QImage picture = Picture();
    const QColor deep = picture.pixelColor(20, 60);
    const QColor middle = picture.pixelColor(80, 60);
    const QColor shallow = picture.pixelColor(140, 60);
    QVERIFY2(qGray(shallow.rgb()) > qGray(middle.rgb()) + 10 && qGray(middle.rgb()) > qGray(deep.rgb()) + 10,
        qPrintable(shallow.name() + middle.name() + deep.name()));
    for (const QColor& colour : {deep, middle, shallow})
        QVERIFY2(gl::Distance(colour, ZrTheme::sea) > 25, qPrintable(colour.name()));
}

/// A range of its own is not the whole range of colours: noise would look like hills.
void tst_ZrSceneSurface::flatFloorIsOfOneColour()
{
    std::vector<QVector3D> soundings;
    for (int x = -40; x <= 40; x += 2) {
        for (int y = -40; y <= 40; y += 2)
            soundings.emplace_back(
                float(x), float(y), -10.0F + ((x / 2 + y / 2) % 2 == 0 ? 0.005F : -0.005F));
    }
    ZrSceneFloor floor;
    floor.Build(soundings, 2.0F);
    m_scene->SetFloor(floor);
    QVERIFY(std::abs(m_scene->Deepest() - m_scene->Shallowest() - ZrSceneSurface::LeastDepths) < 0.001F);
    m_scene->m_camera.SetTarget({0, 0, -10});
    m_scene->m_camera.SetAngles(180.0F, 89.0F);
    const QImage picture = Picture();
    for (const QPoint& at : {QPoint(40, 60), QPoint(80, 30), QPoint(120, 90)})
        QVERIFY(gl::Distance(picture.pixelColor(at), picture.pixelColor(80, 60)) < 8);
}

/// From the middle out it becomes water bit by bit: no step is that of an edge.
void tst_ZrSceneSurface::floorFadesBeforeItsEdge()
{
    ZrColourScheme::Apply(ZrColourScheme::day);
    ZrSceneFloor floor;
    floor.Build({{0, 0, -10}}, 2.0F);
    m_scene->SetFloor(floor);
    m_scene->m_camera.SetTarget({0, 0, -10});
    m_scene->m_camera.SetAngles(180.0F, 89.0F);
    m_scene->m_camera.SetDistance(40.0F);
    const QImage picture = Picture();
    QVERIFY(gl::Distance(picture.pixelColor(80, 60), ZrTheme::sea) > 40);
    QVERIFY(gl::Distance(picture.pixelColor(80, 2), ZrTheme::sea) <= 2);
    int most = 0;
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 1; x < size.width(); ++x)
            most = std::max(most, gl::Distance(picture.pixelColor(x, y), picture.pixelColor(x - 1, y)));
    }
    QVERIFY2(most > 2 && most < 24, qPrintable(QString::number(most)));
}

void tst_ZrSceneSurface::contours()
{
    m_scene->SetFloor(Floor(10.0F));
    m_scene->m_camera.SetTarget({0, 0, -10});
    m_scene->m_camera.SetAngles(180.0F, 60.0F);
    const QImage without = Picture();
    m_scene->m_contourStep = 0.5F;
    const QImage with = Picture();
    const int lines = Different(without, with);
    QVERIFY2(lines > 100, qPrintable(QString::number(lines)));
    QVERIFY(lines < size.width() * size.height() / 4);
    m_scene->m_contourStep = 1.0F;
    const int fewer = Different(without, Picture());
    QVERIFY(fewer > 50 && fewer < lines);
    for (const float none : {0.0F, -1.0F, unknown, infinity}) {
        m_scene->m_contourStep = none;
        QCOMPARE(Different(without, Picture()), 0);
    }
}

void tst_ZrSceneSurface::darkHullIsSeen_data()
{
    depthsHaveTheirColours_data();
}

/// Black paint has a shape still: its sides differ from one another and from the water.
void tst_ZrSceneSurface::darkHullIsSeen()
{
    QFETCH(int, scheme);
    ZrColourScheme::Apply(scheme);
    m_scene->m_samples = 1;
    const QImage empty = Picture();
    LoadVehicle();
    QImage black(4, 4, QImage::Format_RGB32);
    black.fill(Qt::black);
    m_scene->m_meshImage = black;
    m_scene->m_meshColour = ZrColourScheme::OverPicture(Qt::white);
    const QImage shown = Picture();
    int hull = 0;
    int lightest = 0;
    int darkest = 255;
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            if (shown.pixel(x, y) == empty.pixel(x, y))
                continue;
            ++hull;
            lightest = std::max(lightest, qGray(shown.pixel(x, y)));
            darkest = std::min(darkest, qGray(shown.pixel(x, y)));
        }
    }
    QVERIFY2(hull > 100, qPrintable(QString::number(hull)));
    QVERIFY2(darkest >= 6 && lightest >= darkest + 3,
        qPrintable(QStringLiteral("%1 to %2").arg(darkest).arg(lightest)));
}

/// An edge has colours between those on its sides.
void tst_ZrSceneSurface::smoothEdges()
{
    LoadVehicle();
    const auto colours = [this] {
        QSet<QRgb> all;
        const QImage picture = Picture();
        for (int y = 0; y < size.height(); ++y) {
            for (int x = 0; x < size.width(); ++x)
                all.insert(picture.pixel(x, y));
        }
        return all.size();
    };
    m_scene->m_samples = 1;
    const int plain = colours();
    m_scene->m_samples = 4;
    const int smooth = colours();
    QVERIFY2(smooth > plain, qPrintable(QStringLiteral("%1 of %2").arg(smooth).arg(plain)));
    // Of another size, and back in place.
    m_scene->ZrglSetViewport(40, 30, 60, 50);
    m_scene->OnResize(60, 50);
    const QImage picture = Picture();
    QCOMPARE(picture.pixelColor(5, 5), QColor(Qt::black));
    QVERIFY(picture.pixelColor(70, 65) != QColor(Qt::black));
    // More than there are: it draws all the same.
    m_scene->m_samples = 100000;
    QVERIFY(Picture().pixelColor(70, 65) != QColor(Qt::black));
}

void tst_ZrSceneSurface::trailAndPlan()
{
    const QImage empty = Picture();
    m_scene->AddToTrail({-5, 0, 0});
    QCOMPARE(Different(empty, Picture()), 0);
    m_scene->AddToTrail({5, 0, 0});
    const int first = Different(empty, Picture());
    QVERIFY(first > 20);
    m_scene->AddToTrail({5, 5, 0});
    QVERIFY(Different(empty, Picture()) > first);
    m_scene->SetTrail({});
    QCOMPARE(Different(empty, Picture()), 0);
    m_scene->SetPlan({{-5, -5, 0}, {5, 5, 0}});
    const int planned = Different(empty, Picture());
    QVERIFY(planned > 20);
    m_scene->SetPlan({{-1, -1, 0}, {1, 1, 0}});
    QVERIFY(Different(empty, Picture()) < planned);
    m_scene->SetPlan({});
    QCOMPARE(Different(empty, Picture()), 0);
}

void tst_ZrSceneSurface::surfaceGrid()
{
    const QImage empty = Picture();
    m_scene->m_hasSurface = true;
    QVERIFY(Different(empty, Picture()) > 100);
}

void tst_ZrSceneSurface::cameraMoves()
{
    m_scene->SetFloor(Floor(10.0F));
    QImage before = Picture();
    ZrSceneCamera& camera = m_scene->m_camera;
    for (int i = 0; i < 4; ++i) {
        if (i == 0)
            camera.Orbit(40.0F, 0.0F);
        else if (i == 1)
            camera.Orbit(0.0F, 20.0F);
        else if (i == 2)
            camera.Zoom(0.5F);
        else
            camera.Pan(0.3F, 0.0F);
        const QImage now = Picture();
        QVERIFY2(Different(before, now) > 500, qPrintable(QString::number(i)));
        before = now;
    }
}

void tst_ZrSceneSurface::poseTurns()
{
    LoadVehicle();
    QImage before = Picture();
    for (int i = 0; i < 4; ++i) {
        if (i == 0)
            m_scene->m_pose.heading = 90.0F;
        else if (i == 1)
            m_scene->m_pose.pitch = 30.0F;
        else if (i == 2)
            m_scene->m_pose.roll = 40.0F;
        else
            m_scene->m_pose.position = {2, 1, -1};
        const QImage now = Picture();
        QVERIFY2(Different(before, now) > 30, qPrintable(QString::number(i)));
        before = now;
    }
    m_scene->m_pose.heading += 360.0F;
    QVERIFY(Different(before, Picture()) < 20);
}

/// Angles that are no numbers count as 0.
void tst_ZrSceneSurface::poseThatIsNoNumber()
{
    LoadVehicle();
    const QImage straight = Picture();
    m_scene->m_pose.heading = unknown;
    m_scene->m_pose.pitch = infinity;
    m_scene->m_pose.roll = -infinity;
    QCOMPARE(Different(straight, Picture()), 0);
    // Nowhere: not drawn, and nothing else is lost.
    m_scene->SetFloor(Floor(10.0F));
    m_scene->m_hasVehicle = false;
    const QImage floor = Picture();
    m_scene->m_hasVehicle = true;
    m_scene->m_pose.position = {unknown, 0, 0};
    QCOMPARE(Different(floor, Picture()), 0);
}

void tst_ZrSceneSurface::positionsThatAreNoNumber()
{
    m_scene->SetTrail({{0, 0, 0}, {unknown, 0, 0}, {5, 0, 0}, {0, infinity, 0}});
    QCOMPARE(m_scene->Trail().size(), std::size_t(2));
    m_scene->AddToTrail({0, 0, unknown});
    QCOMPARE(m_scene->Trail().size(), std::size_t(2));
    const QImage line = Picture();
    m_scene->SetTrail({{0, 0, 0}, {5, 0, 0}});
    QCOMPARE(Different(line, Picture()), 0);
}

void tst_ZrSceneSurface::exaggeration()
{
    m_scene->SetFloor(Floor(5.0F));
    const QImage flat = Picture();
    m_scene->m_exaggeration = 3.0F;
    QVERIFY(Different(flat, Picture()) > 1000);
}

void tst_ZrSceneSurface::opaque()
{
    m_scene->m_hasSurface = true;
    m_scene->SetTrail({{-5, 0, 0}, {5, 0, 0}});
    const QImage picture = Picture();
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            QCOMPARE(qAlpha(picture.pixel(x, y)), 255);
    }
}

void tst_ZrSceneSurface::viewportIsKept()
{
    m_scene->ZrglSetViewport(40, 30, 60, 50); // y up
    m_scene->OnResize(60, 50);
    m_scene->SetFloor(Floor(10.0F));
    const QImage picture = Picture();
    const QRect inside(40, size.height() - 30 - 50, 60, 50);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            if (!inside.contains(x, y))
                QCOMPARE(picture.pixel(x, y), qRgb(0, 0, 0));
        }
    }
    QVERIFY(picture.pixel(inside.center()) != qRgb(0, 0, 0));
}

void tst_ZrSceneSurface::noSize()
{
    m_scene->SetFloor(Floor(10.0F));
    for (const QSize& none : {QSize(0, 0), QSize(0, 10), QSize(10, 0), QSize(-1, -1)}) {
        m_scene->OnResize(none.width(), none.height());
        const QImage picture = Picture();
        QCOMPARE(picture.pixel(80, 60), qRgb(0, 0, 0));
    }
    m_scene->OnResize(size.width(), size.height());
    QVERIFY(Picture().pixel(80, 60) != qRgb(0, 0, 0));
}

void tst_ZrSceneSurface::withoutContext()
{
    ZrSceneSurface scene;
    scene.OnResize(10, 10);
    scene.SetFloor(Floor(5.0F));
    m_context->DoneCurrent();
    scene.Render();
    m_scene->Render();
    m_scene->Release();
    QVERIFY(m_context->MakeCurrent());
}

void tst_ZrSceneSurface::trailHasAnEnd()
{
    for (int i = 0; i < ZrSceneSurface::MostTrail + 10; ++i)
        m_scene->AddToTrail({static_cast<float>(i), 0, 0});
    QVERIFY(m_scene->Trail().size() <= std::size_t(ZrSceneSurface::MostTrail));
    QCOMPARE(m_scene->Trail().back().x(), static_cast<float>(ZrSceneSurface::MostTrail + 9));
    std::vector<QVector3D> more(ZrSceneSurface::MostTrail + 5, QVector3D(1, 0, 0));
    more.front() = QVector3D(7, 0, 0);
    m_scene->SetTrail(std::move(more));
    QCOMPARE(m_scene->Trail().size(), std::size_t(ZrSceneSurface::MostTrail));
    QCOMPARE(m_scene->Trail().front().x(), 1.0F);
}

/// What was uploaded into a context that is gone is uploaded again.
void tst_ZrSceneSurface::secondContext()
{
    LoadVehicle();
    m_scene->SetFloor(Floor(10.0F));
    m_scene->SetTrail({{-5, 0, 0}, {5, 0, 0}});
    const QImage before = Picture();
    m_context.reset();
    m_context = std::make_unique<gl::Context>(gl::Api::desktop, size);
    QCOMPARE(m_context->Error(), QString());
    m_scene->OnCreate();
    m_context->TakeErrors();
    QCOMPARE(Different(before, Picture()), 0);
}

void tst_ZrSceneSurface::release()
{
    LoadVehicle();
    m_scene->SetFloor(Floor(10.0F));
    const QImage before = Picture();
    m_scene->Release();
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
    QCOMPARE(Different(before, Picture()), 0);
}

GL_TEST_MAIN(tst_ZrSceneSurface)
#include "tst_ZrSceneSurface.moc"
