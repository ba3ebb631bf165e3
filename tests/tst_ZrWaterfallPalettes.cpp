// The palettes of sonars in place of a surface's, and gain and contrast as a person sets them.

#include "WaterfallLayerTest.h"
#include "ZrKit/map/ZrWaterfallPalettes.h"
#include "ZrKit/sonar/ZrSonarPalette.h"

class tst_ZrWaterfallPalettes : public WaterfallLayerTest
{
    Q_OBJECT

private Q_SLOTS:

    void initTestCase_data() { AddContexts(); }

    void init() { Begin(); }

    void cleanup() { End(); }

    void replacesThePalettes();
    void layerShowsThem();
    void nothingBound();
    void withoutContext();
    void notCreated();
    void look_data();
    void look();
    void lookIsPainted();
    void nonsenseLook_data();
    void nonsenseLook();
};

/// One row for each, its entries to the bit.
void tst_ZrWaterfallPalettes::replacesThePalettes()
{
    const QStringList names = ZrSonarPalette::Names();
    const GLuint texture = m_surface->m_palTex;
    ZrWaterfallPalettes::Load(*m_surface);
    QCOMPARE(m_surface->m_palTex, texture);
    QCOMPARE(m_surface->m_palCount, names.size());
    const QImage image = m_context->ReadTexture(texture, QSize(256, names.size()));
    QCOMPARE(image.size(), QSize(256, names.size()));
    for (int row = 0; row < names.size(); ++row) {
        ZrSonarPalette palette;
        QVERIFY(palette.Load(names[row]));
        for (int i = 0; i < 256; ++i)
            QCOMPARE(image.pixel(i, row), palette.Colour(i) | 0xff000000U);
    }
}

void tst_ZrWaterfallPalettes::layerShowsThem()
{
    ZrWaterfallPalettes::Load(*m_surface);
    ZrWaterfallRing ring(side, 1);
    for (int n = 0; n < side; ++n)
        ring.Append(Even(1, 4 * n));
    m_layer->SetRing(&ring);
    const QStringList names = ZrSonarPalette::Names();
    for (int row = 0; row < names.size(); ++row) {
        ZrSonarPalette palette;
        QVERIFY(palette.Load(names[row]));
        ZrWaterfallPalettes::SetLook(*m_layer, row, 0.0, 1.0);
        const QImage image = Painted();
        for (int y = 0; y < side; ++y) {
            const int index = 4 * (side - 1 - y);
            int off = 255;
            for (int i = std::max(index - 2, 0); i <= std::min(index + 2, 255); ++i)
                off = std::min(off, gl::Distance(image.pixelColor(5, y), QColor(palette.Colour(i))));
            QVERIFY2(off <= 1, qPrintable(QStringLiteral("%1 %2: %3").arg(names[row]).arg(index).arg(off)));
        }
    }
}

void tst_ZrWaterfallPalettes::nothingBound()
{
    ZrWaterfallPalettes::Load(*m_surface);
    GLint bound = -1;
    m_context->Functions()->glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
    QCOMPARE(bound, 0);
    QCOMPARE(m_context->TakeErrors(), GLenum(GL_NO_ERROR));
}

void tst_ZrWaterfallPalettes::withoutContext()
{
    const int count = m_surface->m_palCount;
    m_context->DoneCurrent();
    ZrWaterfallPalettes::Load(*m_surface);
    QCOMPARE(m_surface->m_palCount, count);
    QVERIFY(m_context->MakeCurrent());
}

void tst_ZrWaterfallPalettes::notCreated()
{
    GlView surface;
    const int count = surface.m_palCount;
    ZrWaterfallPalettes::Load(surface);
    QCOMPARE(surface.m_palCount, count);
    QCOMPARE(surface.m_palTex, GLuint(0));
}

void tst_ZrWaterfallPalettes::look_data()
{
    QTest::addColumn<double>("gain");
    QTest::addColumn<double>("contrast");
    for (const double gain : {-20.0, -6.0, 0.0, 6.0, 20.0}) {
        for (const double contrast : {0.25, 0.5, 1.0, 2.0, 4.0})
            QTest::addRow("%g dB, %g", gain, contrast) << gain << contrast;
    }
}

/// As the layer takes them, i′ = (i − clamp) / (1 − clamp) × (1 + gain), they give the distance from the
/// middle grey times the contrast, and that times the gain.
void tst_ZrWaterfallPalettes::look()
{
    QFETCH(double, gain);
    QFETCH(double, contrast);
    m_layer->m_slope = 0.25F;
    m_layer->m_alpha = 0.5F;
    ZrWaterfallPalettes::SetLook(*m_layer, 3, gain, contrast);
    QCOMPARE(m_layer->m_palette, 3);
    const double clamp = static_cast<double>(m_layer->m_clamp);
    const double factor = 1.0 + static_cast<double>(m_layer->m_gain);
    for (const double i : {0.0, 0.25, 0.5, 1.0}) {
        const double shown = (i - clamp) / (1.0 - clamp) * factor;
        const double wanted = ((i - 0.5) * contrast + 0.5) * std::pow(10.0, gain / 20.0);
        QVERIFY2(std::fabs(shown - wanted) < 1e-5 * std::max(1.0, std::fabs(wanted)),
            qPrintable(QStringLiteral("%1 instead of %2").arg(shown).arg(wanted)));
    }
    QCOMPARE(m_layer->m_slope, 0.25F);
    QCOMPARE(m_layer->m_alpha, 0.5F);
}

void tst_ZrWaterfallPalettes::lookIsPainted()
{
    ZrWaterfallPalettes::Load(*m_surface);
    const int linear = ZrSonarPalette::Names().indexOf(QStringLiteral("linear"));
    ZrWaterfallRing ring(side, 1);
    for (int n = 0; n < side; ++n)
        ring.Append(Even(1, 4 * n));
    m_layer->SetRing(&ring);
    for (const double gain : {-6.0, 0.0, 6.0}) {
        for (const double contrast : {0.5, 1.0, 3.0}) {
            ZrWaterfallPalettes::SetLook(*m_layer, linear, gain, contrast);
            const QImage image = Painted();
            for (int y = 0; y < side; ++y) {
                const double i = 4.0 * (side - 1 - y) / 255.0;
                const double wanted
                    = std::clamp(((i - 0.5) * contrast + 0.5) * std::pow(10.0, gain / 20.0), 0.0, 1.0);
                QVERIFY(std::abs(image.pixelColor(5, y).red() - wanted * 255.0) <= 3.0);
            }
        }
    }
}

void tst_ZrWaterfallPalettes::nonsenseLook_data()
{
    QTest::addColumn<double>("gain");
    QTest::addColumn<double>("contrast");
    QTest::newRow("contrast 0") << 0.0 << 0.0;
    QTest::newRow("contrast below 0") << 0.0 << -1.0;
    QTest::newRow("contrast NaN") << 0.0 << notANumber;
    QTest::newRow("contrast infinite") << 0.0 << infinite;
    QTest::newRow("gain NaN") << notANumber << 1.0;
    QTest::newRow("gain infinite") << infinite << 1.0;
    QTest::newRow("gain -infinite") << -infinite << 1.0;
}

/// The look stays.
void tst_ZrWaterfallPalettes::nonsenseLook()
{
    QFETCH(double, gain);
    QFETCH(double, contrast);
    m_layer->m_palette = 2;
    m_layer->m_gain = 0.75F;
    m_layer->m_clamp = 0.125F;
    ZrWaterfallPalettes::SetLook(*m_layer, 5, gain, contrast);
    QCOMPARE(m_layer->m_palette, 2);
    QCOMPARE(m_layer->m_gain, 0.75F);
    QCOMPARE(m_layer->m_clamp, 0.125F);
}

GL_TEST_MAIN(tst_ZrWaterfallPalettes)
#include "tst_ZrWaterfallPalettes.moc"
