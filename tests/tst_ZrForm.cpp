// The base of the settings forms: what it starts with, and the texts that it paints.

#include "ZrFormPage.h"
#include "ZrTextSheet.h"
#include "ZrUiChecks.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrFormMgr.h"
#include "ZrUtil/ZrSetApp.h"

#include <QtTest>

#include <memory>

static_assert(std::is_base_of_v<QWidget, ZrForm>);
static_assert(std::is_base_of_v<zr::IPersistable, ZrForm>);

class tst_ZrForm : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void asMade();
    void managerIsTheParent();
    void nothingToPersist();
    void check();
    void texts_data();
    void texts();
    void textsAddUp();
    void helpWraps();
    void helpStaysInItsBox();
    void negativeWidth();
};

void tst_ZrForm::asMade()
{
    ZrForm form(nullptr);
    QVERIFY(!form.m_mgr);
    QVERIFY(form.m_name.isEmpty());
    QCOMPARE(form.m_icon, QImage(QStringLiteral(":/form_default.png")));
    QVERIFY(!form.m_icon.isNull());
    QVERIFY(!form.m_isTiered);
    QVERIFY(!form.m_parentForm);
    QVERIFY(form.m_tab.isNull());
    QCOMPARE(form.focusPolicy(), Qt::NoFocus);
    form.OnFormDisplay();
}

void tst_ZrForm::managerIsTheParent()
{
    ZrFormMgr mgr(nullptr);
    auto* form = new ZrForm(&mgr);
    QCOMPARE(form->m_mgr, &mgr);
    QWidget other;
    QVERIFY(!ZrForm(&other).m_mgr);
}

void tst_ZrForm::nothingToPersist()
{
    ZrForm form(nullptr);
    zr::ZrSetApp stored(zr::ePersistStoring);
    stored.synchronise(form);
    QVERIFY(stored.root.isEmpty());
}

void tst_ZrForm::check()
{
    const ZrThemeState theme;
    ZrBtn btn(nullptr, ZrBtn::typeStd);
    btn.resize(100, 50);
    btn.show();
    Settle();
    ZrPaintCounter counter(btn);
    ZrForm::Check(btn, false);
    QCOMPARE(counter.Take(), 0);
    ZrForm::Check(btn, true);
    QVERIFY(btn.on);
    QVERIFY(counter.Take() > 0);
    ZrForm::Check(btn, true);
    QVERIFY(btn.on);
    QCOMPARE(counter.Take(), 0);
    ZrForm::Check(btn, false);
    QVERIFY(!btn.on);
    QVERIFY(counter.Take() > 0);
}

void tst_ZrForm::texts_data()
{
    QTest::addColumn<double>("dp");
    QTest::addColumn<bool>("isTab");
    QTest::addColumn<int>("extra");
    QTest::addColumn<int>("baseline");
    QTest::addColumn<int>("helpTop");
    QTest::addColumn<int>("line");
    QTest::newRow("control") << 1.0 << false << 0 << 38 << 46 << 100;
    QTest::newRow("control, extra") << 1.0 << false << 17 << 38 << 46 << 117;
    QTest::newRow("control, 1.5") << 1.5 << false << 3 << 52 << 64 << 148;
    QTest::newRow("control, 0.7") << 0.7 << false << 0 << 30 << 36 << 74;
    QTest::newRow("control, negative extra") << 1.0 << false << -10 << 38 << 46 << 90;
    QTest::newRow("tab") << 1.0 << true << 0 << 38 << 46 << 80;
    QTest::newRow("tab, extra") << 1.0 << true << 5 << 38 << 46 << 85;
    QTest::newRow("tab, 2") << 2.0 << true << 0 << 66 << 82 << 150;
}

void tst_ZrForm::texts()
{
    QFETCH(double, dp);
    QFETCH(bool, isTab);
    QFETCH(int, extra);
    const ZrThemeState theme(dp);
    ZrForm form(nullptr);
    form.resize(800, 400);
    ZrTextSheet sheet;
    QPainter p(&sheet);
    int y = 10;
    if (isTab)
        form.TextTab(p, QStringLiteral("Title"), QStringLiteral("Help"), y, extra);
    else
        form.TextCtrl(p, QStringLiteral("Title"), QStringLiteral("Help"), y, extra);
    p.end();
    QTEST(y, "line");

    const ZrTextRecorder& seen = sheet.m_recorder;
    QCOMPARE(seen.m_texts.size(), 2);
    QCOMPARE(seen.m_texts[0].text, QStringLiteral("Title"));
    QCOMPARE(seen.m_texts[0].at.x(), 0.0);
    QFETCH(int, baseline);
    QCOMPARE(seen.m_texts[0].at.y(), double(baseline));
    QCOMPARE(seen.m_texts[0].pixelSize, ZrTheme::fontLarge.pixelSize());
    QCOMPARE(seen.m_texts[0].colour, ZrTheme::titleCol);
    QCOMPARE(seen.m_texts[1].text, QStringLiteral("Help"));
    QCOMPARE(seen.m_texts[1].at.x(), 0.0);
    QFETCH(int, helpTop);
    const QFontMetricsF metrics(ZrTheme::bodyFont, &sheet);
    QVERIFY(std::abs(seen.m_texts[1].at.y() - (helpTop + metrics.ascent())) <= 1.0);
    QCOMPARE(seen.m_texts[1].pixelSize, ZrTheme::bodyFont.pixelSize());
    QCOMPARE(seen.m_texts[1].colour, ZrTheme::bodyCol);
    QCOMPARE(seen.m_lines, QVector<QLineF>{QLineF(0, y, 800, y)});
    QCOMPARE(seen.m_lineColours[0], ZrTheme::ctrlOutlineCol);
}

void tst_ZrForm::textsAddUp()
{
    const ZrThemeState theme;
    ZrForm form(nullptr);
    form.resize(800, 400);
    ZrTextSheet sheet;
    QPainter p(&sheet);
    int y = 0;
    form.TextCtrl(p, QStringLiteral("A"), QStringLiteral("a"), y, 0);
    form.TextTab(p, QStringLiteral("B"), QStringLiteral("b"), y, 0);
    QCOMPARE(y, 90 + 70);
}

void tst_ZrForm::helpWraps()
{
    const ZrThemeState theme;
    ZrForm form(nullptr);
    form.resize(500, 400);
    const QString help
        = QStringLiteral("several words that do not find room in one line of three hundred pixels");
    for (const bool isTab : {false, true}) {
        ZrTextSheet sheet;
        QPainter p(&sheet);
        int y = 0;
        if (isTab)
            form.TextTab(p, QStringLiteral("T"), help, y, 0);
        else
            form.TextCtrl(p, QStringLiteral("T"), help, y, 0);
        p.end();
        QVERIFY(sheet.m_recorder.m_texts.size() > 2);
        double widest = 0;
        for (int i = 1; i < sheet.m_recorder.m_texts.size(); ++i) {
            const ZrTextRecorder::Text& line = sheet.m_recorder.m_texts[i];
            widest = std::max(widest,
                line.at.x() + QFontMetricsF(ZrTheme::bodyFont).horizontalAdvance(line.text.trimmed()));
        }
        // The control's 200 pixels stay free; the help of a tab may go over them.
        if (isTab)
            QVERIFY(widest > 320 && widest <= 500);
        else
            QVERIFY(widest <= 301);
    }
}

void tst_ZrForm::helpStaysInItsBox()
{
    const ZrThemeState theme;
    ZrForm form(nullptr);
    form.resize(300, 300);
    QImage image(300, 300, QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter p(&image);
    int y = 0;
    form.TextCtrl(p, QStringLiteral(""), QStringLiteral("word ").repeated(60), y, 20);
    p.end();
    QVERIFY(HasColour(image.copy(0, 36, 100, 50), ZrTheme::bodyCol));
    QVERIFY(!HasColour(image.copy(0, 87, 300, 23), ZrTheme::bodyCol));
    QVERIFY(!HasColour(image.copy(102, 0, 198, 100), ZrTheme::bodyCol));
}

void tst_ZrForm::negativeWidth()
{
    const ZrThemeState theme;
    ZrForm form(nullptr);
    form.resize(100, 300);
    QImage image(100, 300, QImage::Format_RGB32);
    QPainter p(&image);
    int y = 0;
    form.TextCtrl(p, QStringLiteral("Title"), QStringLiteral("Help"), y, 0);
    QCOMPARE(y, 90);
}

QTEST_MAIN(tst_ZrForm)
#include "tst_ZrForm.moc"
