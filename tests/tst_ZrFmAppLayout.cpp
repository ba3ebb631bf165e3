// What the settings form of the application looks like: its texts, and controls that stay in it at any scale.

#include "ZrFmAppTest.h"
#include "ZrTextSheet.h"
#include "ZrUtil/ZrCheck.h"

#include <QtTest>

class tst_ZrFmAppLayout : public ZrFmAppTest
{
    Q_OBJECT

private Q_SLOTS:

    void init() { Make(); }

    void cleanup() { Drop(); }

    void texts();
    void captions();
    void helpFits_data();
    void helpFits();
    void controlsStayInTheForm_data();
    void controlsStayInTheForm();
    void targets_data();
    void targets();
    void controlsStandBesideTheirTexts();
};

void tst_ZrFmAppLayout::texts()
{
    Show(850, 760);
    ZrTextSheet sheet;
    m_form->render(&sheet, QPoint(), QRegion(), QWidget::RenderFlags());
    // Titles as they are, the lines of a help text joined.
    QStringList found;
    bool isTitle = true;
    for (const ZrTextRecorder::Text& text : sheet.m_recorder.m_texts) {
        const bool wasTitle = isTitle;
        isTitle = text.pixelSize == ZrTheme::fontLarge.pixelSize();
        if (isTitle || wasTitle || found.isEmpty())
            found.append(text.text.trimmed());
        else
            found.last() += QLatin1Char(' ') + text.text.trimmed();
    }
    QCOMPARE(found,
        QStringList({QStringLiteral("Units of Measurement"),
            QStringLiteral("Setting for units of measurement such as length, temperature and distance"),
            QStringLiteral("Coordinate System"),
            QStringLiteral("Setting for desired coordinate system format for WGS84 latitude and longitude"),
            QStringLiteral("Display Scaling"),
            QStringLiteral(
                "Choose the display scale to have the text and controls the preferred size for your "
                "deployment."),
            QStringLiteral("Tablet Mode"),
            QStringLiteral("In Tablet Mode edit controls always bring up an onscreen keyboard.")}));
}

void tst_ZrFmAppLayout::captions()
{
    // A page as large as it takes: every text and control is there, and a line below each.
    Show(850, 760);
    const QImage image = Painted(*m_form);
    int lines = 0;
    for (int y = 0; y < image.height(); ++y) {
        const QRgb first = image.pixel(0, y);
        bool isLine = first != image.pixel(0, image.height() - 1);
        for (int x = 0; x < image.width() && isLine; ++x)
            isLine = image.pixel(x, y) == first;
        lines += isLine ? 1 : 0;
    }
    QCOMPARE(lines, 4);
}

void tst_ZrFmAppLayout::helpFits_data()
{
    QTest::addColumn<double>("dp");
    for (const QSize& window : {QSize(900, 600), QSize(1280, 800), QSize(1920, 1080), QSize(2560, 1440)}) {
        for (const QSize& design :
            {QSize(1024, 640), QSize(1280, 800), QSize(1440, 900), QSize(1680, 1050), QSize(1920, 1200)})
            QTest::newRow(qPrintable(QStringLiteral("%1 for %2").arg(window.width()).arg(design.width())))
                << std::min(
                       double(window.width()) / design.width(), double(window.height()) / design.height());
    }
}

/// No help text is cut: neither by its box nor by the control beside it.
void tst_ZrFmAppLayout::helpFits()
{
    QFETCH(double, dp);
    const ZrThemeState theme(dp);
    // As wide as the view makes it, less tabs and margins.
    const int width = ZrTheme::DpI(600) + ZrTheme::DpI(250) - ZrTheme::DpI(80) - 2 * ZrTheme::DpI(20);
    const QRect box(0, 0, width - ZrTheme::DpI(200), ZrTheme::DpI(50));
    for (const char* help : {"Setting for units of measurement such as length, temperature and distance",
             "Setting for desired coordinate system format for WGS84 latitude and longitude",
             "Choose the display scale to have the text and controls the preferred size for your deployment.",
             "In Tablet Mode edit controls always bring up an onscreen keyboard."}) {
        const QRect needed
            = QFontMetrics(ZrTheme::bodyFont).boundingRect(box, Qt::TextWordWrap, QLatin1String(help));
        QVERIFY2(box.contains(needed), help);
    }
}

void tst_ZrFmAppLayout::controlsStayInTheForm_data()
{
    QTest::addColumn<double>("dp");
    QTest::addColumn<QSize>("size");
    QTest::newRow("1440 x 900") << 1.0 << QSize(850, 800);
    QTest::newRow("1024 x 640") << 1.0 << QSize(850, 540);
    QTest::newRow("1440 x 900, +2") << 1.40625 << QSize(1195, 759);
    QTest::newRow("1440 x 900, -2") << 0.75 << QSize(638, 825);
    QTest::newRow("900 x 600") << 0.625 << QSize(531, 537);
    QTest::newRow("900 x 600, +2") << 0.879 << QSize(747, 512);
}

void tst_ZrFmAppLayout::controlsStayInTheForm()
{
    QFETCH(double, dp);
    QFETCH(QSize, size);
    const ZrThemeState theme(dp);
    m_window->resize(1400, 900);
    Show(size.width(), size.height());
    const auto wheel = [this](int turn) {
        QWheelEvent event(QPointF(5, 5), QPointF(5, 5), QPoint(), QPoint(0, turn), Qt::NoButton,
            Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(m_form, &event);
    };
    // Every control comes into view, by the wheel at the latest.
    wheel(120000);
    QVERIFY(m_form->rect().contains(Radio(QStringLiteral("Units of Measurement")).geometry()));
    QVERIFY(m_form->rect().contains(Radio(QStringLiteral("Coordinate System")).geometry()));
    wheel(-120000);
    const int atEnd = m_form->findChild<ZrCheck*>()->y();
    QVERIFY(m_form->rect().contains(m_form->findChild<ZrCheck*>()->geometry()));
    for (const ZrBtn* btn : m_form->findChildren<ZrBtn*>())
        QVERIFY(m_form->rect().contains(btn->geometry()));
    wheel(120000);
    QCOMPARE(Radio(QStringLiteral("Units of Measurement")).y(), ZrTheme::DpI(8));

    // Likewise by a finger on the background.
    const int before = m_form->findChild<ZrCheck*>()->y();
    SendPress(*m_form, QPoint(10, 300));
    QMouseEvent move(QEvent::MouseMove, QPointF(10, 290), QPointF(10, 290),
        QPointF(m_form->mapToGlobal(QPoint(10, 290))), Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(m_form, &move);
    QCOMPARE(m_form->findChild<ZrCheck*>()->y(), before - std::min(10, before - atEnd));
    QCOMPARE(before - atEnd > 10, size.height() < 760 && dp > 0.8);
}

void tst_ZrFmAppLayout::targets_data()
{
    controlsStayInTheForm_data();
}

void tst_ZrFmAppLayout::targets()
{
    QFETCH(double, dp);
    QFETCH(QSize, size);
    const ZrThemeState theme(dp);
    m_window->resize(1400, 900);
    Show(size.width(), size.height());
    for (const QString& name :
        {QStringLiteral("Units of Measurement"), QStringLiteral("Coordinate System")}) {
        ZrRadio& radio = Radio(name);
        QVERIFY(radio.itemHeight >= 44);
        QVERIFY(radio.height() >= radio.sizeHint().height());
        const QFontMetrics metrics(ZrTheme::font);
        for (const QString& item : radio.items)
            QVERIFY(radio.width() >= metrics.horizontalAdvance(item) + metrics.height() + ZrTheme::DpI(28));
    }
    for (const ZrBtn* btn : m_form->findChildren<ZrBtn*>())
        QVERIFY(btn->width() >= 44 && btn->height() >= 44);
    QVERIFY(m_form->findChild<ZrCheck*>()->height() >= 44);
    QVERIFY(m_form->findChild<ZrCheck*>()->width() >= m_form->findChild<ZrCheck*>()->sizeHint().width());
}

void tst_ZrFmAppLayout::controlsStandBesideTheirTexts()
{
    Show(850, 760);
    const ZrRadio& uom = Radio(QStringLiteral("Units of Measurement"));
    const ZrRadio& cs = Radio(QStringLiteral("Coordinate System"));
    const auto* tablet = m_form->findChild<ZrCheck*>();
    QVERIFY(uom.x() >= m_form->width() - 200);
    QCOMPARE(cs.x(), uom.x());
    QCOMPARE(tablet->x(), uom.x());
    QCOMPARE(cs.width(), uom.width());
    QVERIFY(cs.y() > uom.geometry().bottom());
    QVERIFY(Scale(QStringLiteral("+2")).y() > cs.geometry().bottom());
    QVERIFY(tablet->y() > Scale(QStringLiteral("+2")).geometry().bottom());
    QCOMPARE(Scale(QStringLiteral("-2")).y(), Scale(QStringLiteral("+2")).y());
    QVERIFY(Scale(QStringLiteral("+1")).x() > Scale(QStringLiteral("+2")).geometry().right());
}

QTEST_MAIN(tst_ZrFmAppLayout)
#include "tst_ZrFmAppLayout.moc"
