// Tracks of a million positions on a map: that they look like all of it, and what each frame costs, in both
// kinds of context.

#include "GlRecorder.h"
#include "MapSurface.h"
#include "TrackShapes.h"
#include "ZrKit/map/ZrMapSplit.h"
#include "ZrKit/map/ZrTrackLayer.h"
#include "ZrUtil/ZrTheme.h"

#include <QtWidgets>

#include <limits>

namespace {

using gl::Api;

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
const QPointF origin(512345.0, 4812345.0);
const QColor red(255, 0, 0);
const QColor green(0, 255, 0);
const QColor blue(0, 0, 255);

/// A track of 1,000,000 positions, made once.
const ZrTrackLod& LongTrack(bool isWalk)
{
    static ZrTrackLod walk;
    static ZrTrackLod lanes;
    if (walk.Count() == 0) {
        walk.Append(track::RandomWalk(1000000));
        lanes.Append(track::Lawnmower(1000000, 0.625, 0.4));
    }
    return isWalk ? walk : lanes;
}

} // namespace

class tst_ZrTrackLayerLong : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase_data();
    void init();
    void cleanup();

    void cursorOfADenseTrack();
    void looksLikeAllOfIt_data();
    void looksLikeAllOfIt();
    void costsNothingAgain();
    void isBounded_data();
    void isBounded();
    void appendsUploadWhatIsNew();
    void contextLost();

private:
    QImage Painted(ZrMapLayer& layer, const ZrMapView& view) { return m_stage->Painted(layer, view); }

    void Create(const QSize& size = {320, 200});

    gl::Api m_api = Api::desktop;
    QSize m_size;
    std::unique_ptr<map::Stage> m_stage;
};

void tst_ZrTrackLayerLong::initTestCase_data()
{
    QTest::addColumn<gl::Api>("api");
    QTest::newRow("GL") << Api::desktop;
    QTest::newRow("ES") << Api::es;
}

void tst_ZrTrackLayerLong::init()
{
    QFETCH_GLOBAL(gl::Api, api);
    m_api = api;
    ZrTheme::dp = 1.0F;
    Create();
}

void tst_ZrTrackLayerLong::Create(const QSize& size)
{
    m_stage.reset();
    m_size = size;
    m_stage = std::make_unique<map::Stage>(m_api, size);
    QVERIFY2(m_stage->Context().Error().isEmpty(), qPrintable(m_stage->Context().Error()));
}

void tst_ZrTrackLayerLong::cleanup()
{
    QCOMPARE(m_stage->Context().TakeErrors(), GLenum(GL_NO_ERROR));
    m_stage.reset();
}

void tst_ZrTrackLayerLong::cursorOfADenseTrack()
{
    ZrTrackLayer layer;
    layer.m_track = LongTrack(false);
    layer.m_colour = red;
    layer.m_futureColour = green;
    layer.m_casing = blue;
    layer.m_cursor = 500000;
    // All lanes in view: the first half of them is past.
    const ZrMapView view = map::ViewOf(m_size, origin + QPointF(500, 312), 3.5);
    gl::Recorder recorder;
    const QImage image = Painted(layer, view);
    layer.m_vertexLimit = 3000;
    const QImage coarse = Painted(layer, view);
    QVERIFY(layer.Picture().IsCover());
    for (const QImage& i : {image, coarse}) {
        QCOMPARE(i.pixelColor(160, 110), red);
        QCOMPARE(i.pixelColor(160, 140), red);
        QCOMPARE(i.pixelColor(160, 90), green);
        QCOMPARE(i.pixelColor(160, 70), green);
    }
    // Forward a little: what is new alone is uploaded, then nothing.
    recorder.Reset();
    layer.m_cursor = 500010;
    Painted(layer, view);
    QCOMPARE(recorder.uploadedBytes, qint64(10 * 32));
    QCOMPARE(recorder.draws.size(), std::size_t(3));
    QVERIFY(recorder.vertices <= 3000);
    recorder.Reset();
    Painted(layer, view);
    QCOMPARE(recorder.uploadedBytes, qint64(0));
    // Back, and to the end.
    layer.m_cursor = 100;
    QCOMPARE(Painted(layer, view).pixelColor(160, 140), green);
    layer.m_cursor = 5000000;
    QCOMPARE(map::Count(Painted(layer, view), green), 0);
}

void tst_ZrTrackLayerLong::looksLikeAllOfIt_data()
{
    QTest::addColumn<bool>("isWalk");
    QTest::addColumn<double>("scale");
    QTest::addColumn<double>("rotation");
    for (const double scale : {0.02, 0.15, 0.5, 1.0, 5.0}) {
        const double rotation = scale == 0.15 || scale == 1.0 ? 0.0 : 33.0;
        QTest::addRow("walk, %g m, %g degrees", scale, rotation) << true << scale << rotation;
        QTest::addRow("lanes, %g m, %g degrees", scale, rotation) << false << scale << rotation;
    }
}

void tst_ZrTrackLayerLong::looksLikeAllOfIt()
{
    QFETCH(bool, isWalk);
    QFETCH(double, scale);
    QFETCH(double, rotation);
    Create({1280, 800});
    ZrTrackLayer layer;
    layer.m_track = LongTrack(isWalk);
    layer.m_colour = red;
    const ZrMapView view = map::ViewOf(m_size, layer.m_track[layer.m_track.Count() / 2], scale, rotation);
    gl::Recorder recorder;
    const QImage image = Painted(layer, view);
    const qint64 count = recorder.vertices;
    QVERIFY(count > 0 && count <= 50000);

    m_stage->Context().Clear(Qt::black);
    ZrMapProgram program(QStringLiteral(":/map.vsh"), QStringLiteral(":/solid.fsh"));
    QVERIFY(program.Use(m_stage->Surface()));
    program.SetSplit(m_stage->Surface(), ZrMapSplit(view));
    std::vector<float> vertices(static_cast<std::size_t>(layer.m_track.Count()) * 4);
    for (i64 i = 0; i < layer.m_track.Count(); ++i)
        ZrMapSplit::Split(
            layer.m_track[i].x(), layer.m_track[i].y(), &vertices[static_cast<std::size_t>(i) * 4]);
    auto& f = m_stage->Surface().m_gl;
    const auto position = static_cast<GLuint>(program.Attribute(m_stage->Surface(), "aPosition"));
    f.glUniform4f(program.Uniform(m_stage->Surface(), "uColour"), 1, 0, 0, 1);
    f.glEnableVertexAttribArray(position);
    f.glVertexAttribPointer(position, 4, GL_FLOAT, GL_FALSE, 0, vertices.data());
    f.glLineWidth(3);
    f.glDrawArrays(GL_LINE_STRIP, 0, static_cast<GLsizei>(layer.m_track.Count()));
    f.glDisableVertexAttribArray(position);
    const QImage all = m_stage->Context().Read();
    program.Release(m_stage->Surface());

    // The ends of a wide line are cut off at right angles: beside them runs may show a little more.
    const int drawn = map::Count(all, red);
    const int missing = map::CountAlone(all, image, red);
    const int extra = map::CountAlone(image, all, red);
    const QString text = QStringLiteral("%1 vertices; of %2 pixels %3 are missing, %4 too many")
                             .arg(count)
                             .arg(drawn)
                             .arg(missing)
                             .arg(extra);
    QVERIFY2(drawn > 10000 && missing * 10000 <= drawn && extra * 100 <= drawn, qPrintable(text));
    const int far = map::CountAlone(all, image, red, 2) + map::CountAlone(image, all, red, 2);
    QVERIFY2(far * 5000 <= drawn, qPrintable(QString::number(far)));
}

void tst_ZrTrackLayerLong::costsNothingAgain()
{
    for (const bool isWalk : {true, false}) {
        ZrTrackLayer layer;
        layer.m_track = LongTrack(isWalk);
        layer.m_casing = blue;
        layer.m_cursor = 700000;
        const ZrMapView view = map::ViewOf(m_size, origin, 1);
        Painted(layer, view);
        gl::Recorder recorder;
        const QImage first = Painted(layer, view);
        QCOMPARE(recorder.uploadedBytes, qint64(0));
        QCOMPARE(recorder.LookUpCount(), 0);
        QVERIFY(recorder.draws.size() <= 5);
        for (const gl::Recorder::DrawCall& draw : recorder.draws)
            QCOMPARE(draw.mode, GLenum(GL_LINES));
    }
}

void tst_ZrTrackLayerLong::isBounded_data()
{
    QTest::addColumn<bool>("isWalk");
    QTest::newRow("walk") << true;
    QTest::newRow("lanes") << false;
}

void tst_ZrTrackLayerLong::isBounded()
{
    QFETCH(bool, isWalk);
    Create({1280, 800});
    ZrTrackLayer layer;
    layer.m_track = LongTrack(isWalk);
    gl::Recorder recorder;
    for (const bool isFull : {false, true}) {
        layer.m_casing = isFull ? blue : QColor();
        layer.m_cursor = isFull ? 600000 : -1;
        for (const double scale : {0.001, 0.07, 0.3, 0.7, 1.5, 4.0, 300.0, 50000.0}) {
            for (const double rotation : {0.0, 60.0}) {
                recorder.Reset();
                Painted(
                    layer, map::ViewOf(m_size, layer.m_track[layer.m_track.Count() / 2], scale, rotation));
                QVERIFY2(recorder.vertices > 0 && recorder.vertices <= 50000,
                    qPrintable(QStringLiteral("%1 at %2 m").arg(recorder.vertices).arg(scale)));
                QVERIFY(recorder.draws.size() <= 5);
            }
        }
    }
}

void tst_ZrTrackLayerLong::appendsUploadWhatIsNew()
{
    for (const bool isDense : {false, true}) {
        ZrTrackLayer layer;
        layer.m_colour = red;
        if (isDense)
            layer.m_track = LongTrack(true);
        else
            layer.m_track.Append(origin.x() - 100, origin.y());
        const QPointF last = layer.m_track[layer.m_track.Count() - 1];
        const ZrMapView view = map::ViewOf(m_size, last, 1);
        const int before = map::Count(Painted(layer, view), red);
        gl::Recorder recorder;
        for (int i = 1; i <= 5; ++i) {
            recorder.Reset();
            layer.m_track.Append(last.x() + 20 * i, last.y() + 10 * i);
            Painted(layer, view);
            QCOMPARE(recorder.uploadedBytes, qint64(32));
        }
        recorder.Reset();
        for (int i = 6; i < 200; ++i)
            layer.m_track.Append(last.x() + 100 + 0.1 * i, last.y() + 50);
        const int after = map::Count(Painted(layer, view), red);
        QCOMPARE(recorder.uploadedBytes, qint64(194 * 32));
        if (!isDense)
            QVERIFY(after > before + 100);
    }
}

void tst_ZrTrackLayerLong::contextLost()
{
    ZrTrackLayer layer;
    layer.m_track = LongTrack(true);
    layer.m_colour = red;
    layer.m_futureColour = green;
    layer.m_cursor = 300000;
    for (const double scale : {0.01, 1.0}) {
        const ZrMapView view = map::ViewOf(m_size, layer.m_track[300000], scale);
        const QImage before = Painted(layer, view);
        QVERIFY(map::Count(before, red) > 0);
        QVERIFY(map::Count(before, green) > 0);
        Create();
        QCOMPARE(Painted(layer, view), before);
        QCOMPARE(m_stage->Context().TakeErrors(), GLenum(GL_NO_ERROR));
    }
}

GL_TEST_MAIN(tst_ZrTrackLayerLong)
#include "tst_ZrTrackLayerLong.moc"
