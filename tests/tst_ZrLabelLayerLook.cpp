// Labels on a map: where they stand, and what they look like, in both kinds of context.

#include "GlRecorder.h"
#include "LabelLayerTest.h"

class tst_ZrLabelLayerLook : public LabelLayerTest
{
    Q_OBJECT

private Q_SLOTS:

    void initTestCase_data() { AddContexts(); }

    void init() { Begin(); }

    void cleanup() { End(); }

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
    void fontChanges();
    void textSize();
};

void tst_ZrLabelLayerLook::anchors_data()
{
    QTest::addColumn<int>("x");
    QTest::addColumn<int>("y");
    for (int x = 0; x < 3; ++x) {
        for (int y = 0; y < 3; ++y)
            QTest::addRow("%d %d", x, y) << x << y;
    }
}

void tst_ZrLabelLayerLook::anchors()
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

void tst_ZrLabelLayerLook::offsetIsRightAndDown()
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

void tst_ZrLabelLayerLook::onScreen()
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

void tst_ZrLabelLayerLook::worldPositionIsExact_data()
{
    QTest::addColumn<double>("scale");
    QTest::addColumn<double>("rotation");
    for (const double scale : {0.01, 0.2, 3.0, 500.0}) {
        for (const double rotation : {0.0, 41.0, 200.0})
            QTest::addRow("%g, %g", scale, rotation) << scale << rotation;
    }
}

void tst_ZrLabelLayerLook::worldPositionIsExact()
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

void tst_ZrLabelLayerLook::uprightWhateverTheRotation_data()
{
    QTest::addColumn<double>("rotation");
    for (const double rotation : {1.0, 45.0, 90.0, 180.0, 333.3})
        QTest::addRow("%g", rotation) << rotation;
}

void tst_ZrLabelLayerLook::uprightWhateverTheRotation()
{
    QFETCH(double, rotation);
    m_layer->SetLabels({LabelOf(QStringLiteral("Fg7 \u00b0"))});
    const QImage before = Painted();
    QVERIFY(gl::CountNot(before, Qt::black) > 60);
    m_view.SetRotation(rotation);
    const QString difference = gl::Difference(Painted(), before, 2);
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void tst_ZrLabelLayerLook::turnsWithTheMap()
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

void tst_ZrLabelLayerLook::angleTurnsTheText()
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

void tst_ZrLabelLayerLook::inkIsTheSameAtEveryAngle_data()
{
    QTest::addColumn<double>("angle");
    for (const double angle : {7.0, 30.0, 45.0, 90.0, 211.0})
        QTest::addRow("%g", angle) << angle;
}

void tst_ZrLabelLayerLook::inkIsTheSameAtEveryAngle()
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

void tst_ZrLabelLayerLook::sizes()
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

void tst_ZrLabelLayerLook::tinyAndHugeSizes()
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

void tst_ZrLabelLayerLook::haloOnLightGround()
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

void tst_ZrLabelLayerLook::haloLeavesTheInk()
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

void tst_ZrLabelLayerLook::haloWidths()
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

void tst_ZrLabelLayerLook::coloursOfTheTheme()
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

void tst_ZrLabelLayerLook::unicode_data()
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

void tst_ZrLabelLayerLook::unicode()
{
    QFETCH(QString, text);
    m_layer->SetLabels({LabelOf(text)});
    QVERIFY(gl::CountNot(Painted(), Qt::black) > 5);
}

void tst_ZrLabelLayerLook::fontChanges()
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

void tst_ZrLabelLayerLook::textSize()
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

GL_TEST_MAIN(tst_ZrLabelLayerLook)
#include "tst_ZrLabelLayerLook.moc"
