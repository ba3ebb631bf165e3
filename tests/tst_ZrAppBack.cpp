// The background behind the pages, in both kinds of context.

#include "GlTest.h"
#include "ZrUtil/ZrAppBack.h"
#include "ZrUtil/ZrTheme.h"

#include <QtWidgets>

#include <limits>

class tst_ZrAppBack : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void init() { ZrTheme::dp = 1.0F; }

    void cleanup() { ZrTheme::dp = 1.0F; }

    void works_data() { Apis(); }

    void works();

    void fadeAndLight_data() { Apis(); }

    void fadeAndLight();

    void survivesBrokenScales_data() { Apis(); }

    void survivesBrokenScales();
    void worksInPixels();
    void drawsNothingWithoutAContext();

private:
    static void Apis();
};

void tst_ZrAppBack::Apis()
{
    QTest::addColumn<gl::Api>("api");
    QTest::newRow("desktop") << gl::Api::desktop;
    QTest::newRow("es") << gl::Api::es;
}

/// All three images load, the hexagons repeat tile by tile, and no error is left.
void tst_ZrAppBack::works()
{
    QFETCH(gl::Api, api);
    gl::Context context(api, QSize(800, 500));
    QVERIFY2(context.Error().isEmpty(), qPrintable(context.Error()));
    ZrAppBack back;
    back.OnCreate();
    QVERIFY(back.m_hexTex != 0 && back.m_fadeTex != 0 && back.m_lightTex != 0);
    // The fade and the light differ from place to place: the hexagons alone repeat.
    const GLuint hexagons = back.m_hexTex;
    back.m_fadeTex = back.m_lightTex = 0;
    context.TakeErrors();
    back.OnResize(800, 500);
    context.Clear(Qt::black);
    back.Render();
    QCOMPARE(context.TakeErrors(), GLenum(GL_NO_ERROR));
    const QImage image = context.Read();
    int lit = 0;
    for (int y = 2; y < 200; y += 3) {
        for (int x = 2; x < 370; x += 3) {
            const QColor here = image.pixelColor(x, y);
            lit += here.red() + here.green() + here.blue() > 0 ? 1 : 0;
            QCOMPARE(image.pixelColor(x + 377, y), here);
            QCOMPARE(image.pixelColor(x, y + 217), here);
        }
    }
    QVERIFY(lit > 50);
    // Without an image there is no background.
    QVERIFY(hexagons != 0);
    back.m_hexTex = 0;
    context.Clear(Qt::black);
    back.Render();
    QCOMPARE(context.Read().pixelColor(100, 100), QColor(Qt::black));
}

/// The fade covers everything, darker towards the corners; the light lies along the lower edge.
void tst_ZrAppBack::fadeAndLight()
{
    QFETCH(gl::Api, api);
    gl::Context context(api, QSize(800, 500));
    QVERIFY2(context.Error().isEmpty(), qPrintable(context.Error()));
    ZrAppBack back;
    back.OnCreate();
    back.OnResize(800, 500);
    back.m_hexTex = 0;
    const GLuint light = back.m_lightTex;
    back.m_lightTex = 0;
    context.Clear(Qt::white);
    back.Render();
    const QImage fade = context.Read();
    QVERIFY(fade.pixelColor(400, 250).red() > 240);
    for (const QPoint& corner : {QPoint(2, 2), QPoint(797, 2), QPoint(2, 497), QPoint(797, 497)}) {
        const int red = fade.pixelColor(corner).red();
        QVERIFY2(red < 60, qPrintable(QString::number(red)));
    }

    back.m_fadeTex = 0;
    back.m_lightTex = light;
    context.Clear(Qt::black);
    back.Render();
    const QImage lit = context.Read();
    // 217 design pixels high, and nothing above.
    for (int x = 0; x < 800; x += 7) {
        for (int y = 0; y < 500 - 217; y += 7)
            QCOMPARE(lit.pixelColor(x, y), QColor(Qt::black));
    }
    QVERIFY(lit.pixelColor(400, 495).red() > 16);
    QVERIFY(lit.pixelColor(200, 495).red() > 8);
    QVERIFY(lit.pixelColor(600, 495).red() > 8);
    QCOMPARE(context.TakeErrors(), GLenum(GL_NO_ERROR));
}

/// A scale that is infinite, nothing or no number must not tile for ever.
void tst_ZrAppBack::survivesBrokenScales()
{
    QFETCH(gl::Api, api);
    gl::Context context(api, QSize(64, 64));
    QVERIFY2(context.Error().isEmpty(), qPrintable(context.Error()));
    ZrAppBack back;
    back.OnCreate();
    back.OnResize(64, 64);
    context.TakeErrors();
    for (const float dp : {0.0F, 1e-6F, -1.0F, std::numeric_limits<float>::infinity(),
             std::numeric_limits<float>::quiet_NaN()}) {
        ZrTheme::dp = dp;
        back.Render();
        QCOMPARE(context.TakeErrors(), GLenum(GL_NO_ERROR));
    }
}

void tst_ZrAppBack::worksInPixels()
{
    ZrAppBack back;
    back.OnResize(320, 200);
    QCOMPARE(back.m_left, 0.0F);
    QCOMPARE(back.m_right, 320.0F);
    QCOMPARE(back.m_bottom, 200.0F);
    QCOMPARE(back.m_top, 0.0F);
    QCOMPARE(back.m_scaleX, 1.0F);
    QCOMPARE(back.m_viewport, QRect(0, 0, 320, 200));
}

void tst_ZrAppBack::drawsNothingWithoutAContext()
{
    ZrAppBack back;
    back.OnCreate();
    back.OnResize(64, 64);
    back.Render();
    QCOMPARE(back.m_hexTex, 0U);
}

GL_TEST_MAIN(tst_ZrAppBack)
#include "tst_ZrAppBack.moc"
