// The settings forms in a window that is shown: every press takes effect at once, in open inputs too.

#include "GlTest.h"
#include "ZrUiChecks.h"
#include "ZrUnitsState.h"
#include "ZrUtil/ZrAppView.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrCheck.h"
#include "ZrUtil/ZrFmApp.h"
#include "ZrUtil/ZrFmLogging.h"
#include "ZrUtil/ZrFormMgr.h"
#include "ZrUtil/ZrInput.h"
#include "ZrUtil/ZrPage.h"
#include "ZrUtil/ZrRadio.h"

#include <QApplication>
#include <QtTest>

#include <algorithm>
#include <cmath>
#include <memory>

namespace {

/// Where the forms begin, left and below of the close button, which a finger hits at any scale.
int FormsEdge()
{
    return std::max(ZrTheme::DpI(80), std::max(ZrTheme::DpI(48), 44) + ZrTheme::DpI(16));
}

/// Counts how often a widget is given another style.
class StyleCounter : public QObject
{
public:
    int m_count = 0;

    bool eventFilter(QObject* /*watched*/, QEvent* event) override
    {
        m_count += event->type() == QEvent::StyleChange ? 1 : 0;
        return false;
    }
};

} // namespace

class tst_SettingsInView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void scales_data();
    void scales();
    void scaleOfThePressedButtonStays();
    void styleChangesOnce();
    void pagesFollow_data();
    void pagesFollow();
    void unitsInOpenInputs();
    void unitsWhileTyping();
    void tabs();
    void settingsBeforeTheWindow();

private:
    ZrBtn& Scale(const QString& text);
    ZrInput* Input(int kind, double value);

    std::unique_ptr<ZrThemeState> m_theme;
    std::unique_ptr<ZrUnitsState> m_units;
    std::unique_ptr<ZrAppView> m_view;
    ZrPage* m_page = nullptr;
    ZrFmApp* m_app = nullptr;
};

void tst_SettingsInView::init()
{
    m_theme = std::make_unique<ZrThemeState>();
    m_units = std::make_unique<ZrUnitsState>();
    ZrTheme::designWidth = 1440;
    ZrTheme::designHeight = 900;
    ZrUnits::SetToMetric();
    ZrUnits::SetGeoStyle(eGeoStyle(4));
    m_view = std::make_unique<ZrAppView>(
        nullptr, std::chrono::milliseconds(20), ZrAppView::updateTimer, std::chrono::milliseconds(20));
    m_page = new ZrPage(m_view.get());
    m_view->AddPage(QStringLiteral("Home"), m_page, true);
    m_app = new ZrFmApp(&m_view->forms());
    m_view->forms().AddNewForm(m_app);
    m_view->forms().AddNewForm(new ZrFmLogging(&m_view->forms()));
    m_view->resize(1280, 800);
    m_view->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_view.get()));
    Settle();
    m_view->ToggleSettings();
    Settle();
}

void tst_SettingsInView::cleanup()
{
    m_view.reset();
    qApp->setStyleSheet(QString());
    m_units.reset();
    m_theme.reset();
}

ZrBtn& tst_SettingsInView::Scale(const QString& text)
{
    for (ZrBtn* btn : m_app->findChildren<ZrBtn*>()) {
        if (btn->text == text)
            return *btn;
    }
    qFatal("no such button");
}

ZrInput* tst_SettingsInView::Input(int kind, double value)
{
    auto* input = new ZrInput(m_page);
    input->kind = kind;
    input->SetValue(value);
    input->show();
    return input;
}

void tst_SettingsInView::scales_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QSize>("design");
    QTest::newRow("+2") << QStringLiteral("+2") << QSize(1024, 640);
    QTest::newRow("+1") << QStringLiteral("+1") << QSize(1280, 800);
    QTest::newRow("Default") << QStringLiteral("Default") << QSize(1440, 900);
    QTest::newRow("-1") << QStringLiteral("-1") << QSize(1680, 1050);
    QTest::newRow("-2") << QStringLiteral("-2") << QSize(1920, 1200);
}

void tst_SettingsInView::scales()
{
    QFETCH(QString, text);
    QFETCH(QSize, design);
    ZrInput* depth = Input(ZrInput::kindShortLength, 12.5);
    QTest::mouseClick(&Scale(text), Qt::LeftButton);
    Settle();
    const double dp = std::min(1280.0 / design.width(), 800.0 / design.height());
    QVERIFY(std::abs(double(ZrTheme::dp) - dp) < 1e-6);
    QCOMPARE(m_view->size(), QSize(1280, 800));
    QCOMPARE(ZrTheme::font.pixelSize(), ZrTheme::DpI(18));
    QCOMPARE(m_view->forms().pos(), QPoint(FormsEdge(), FormsEdge()));
    QVERIFY(m_view->rect().contains(m_view->forms().geometry()));
    QCOMPARE(m_view->forms().m_tabWidth, ZrTheme::DpI(80));
    QCOMPARE(m_app->x(), ZrTheme::DpI(80) + ZrTheme::DpI(20));
    QCOMPARE(m_page->size(), QSize(1280, 800));
    QCOMPARE(depth->displayText(), QStringLiteral("12.50"));
    QVERIFY(m_view->forms().isVisible());
    int on = 0;
    for (const ZrBtn* btn : m_app->findChildren<ZrBtn*>()) {
        QVERIFY(btn->height() >= 44 && btn->width() >= 44);
        QCOMPARE(btn->on, btn->text == text);
        on += btn->on ? 1 : 0;
    }
    QCOMPARE(on, 1);
}

void tst_SettingsInView::scaleOfThePressedButtonStays()
{
    // Up and down the row, as somebody does who looks for the right one.
    for (const char* text : {"+2", "+1", "Default", "-1", "-2", "-1", "+1"}) {
        QTest::mouseClick(&Scale(QLatin1String(text)), Qt::LeftButton);
        Settle();
        QVERIFY2(Scale(QLatin1String(text)).on, text);
    }
    QCOMPARE(ZrTheme::dp, 1.0F);
    QCOMPARE(m_view->size(), QSize(1280, 800));
}

/// A change of the style sheet costs every widget: the size between the two is none that lasts.
void tst_SettingsInView::styleChangesOnce()
{
    StyleCounter counter;
    m_page->installEventFilter(&counter);
    // Qt tells a widget of one change as often as it lies deep.
    qApp->setStyleSheet(qApp->styleSheet() + QLatin1Char(' '));
    const int once = counter.m_count;
    QVERIFY(once > 0);
    for (const char* text : {"+2", "-1"}) {
        counter.m_count = 0;
        QTest::mouseClick(&Scale(QLatin1String(text)), Qt::LeftButton);
        QCOMPARE(counter.m_count, once);
        QCOMPARE(qApp->styleSheet(), ZrTheme::GetStylesheet(QStringLiteral(":/css/AppView.css")));
        QCOMPARE(QApplication::font(), ZrTheme::bodyFont);
    }
    // A resize of its own changes it again.
    counter.m_count = 0;
    m_view->resize(1000, 700);
    QCOMPARE(counter.m_count, once);
    QCOMPARE(qApp->styleSheet(), ZrTheme::GetStylesheet(QStringLiteral(":/css/AppView.css")));
}

void tst_SettingsInView::pagesFollow_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<bool>("isFullScreen");
    QTest::newRow("a window") << QSize(1280, 800) << false;
    QTest::newRow("that cannot become smaller") << QSize(900, 600) << false;
    QTest::newRow("full screen") << QSize(1280, 800) << true;
}

/// Pages place their widgets as they are resized: also where the size stays.
void tst_SettingsInView::pagesFollow()
{
    QFETCH(QSize, size);
    QFETCH(bool, isFullScreen);

    class Page : public ZrPage
    {
    public:
        using ZrPage::ZrPage;

        int m_unit = 0;

    protected:
        void resizeEvent(QResizeEvent* /*event*/) override { m_unit = ZrTheme::DpI(100); }
    };

    auto* page = new Page(m_view.get());
    auto* hidden = new Page(m_view.get());
    m_view->AddPage(QStringLiteral("A"), page, false);
    m_view->AddPage(QStringLiteral("B"), hidden, false);
    m_view->SetPageTo(QStringLiteral("A"), false);
    m_view->resize(size);
    if (isFullScreen)
        m_view->showFullScreen();
    Settle();
    for (const char* text : {"+2", "-2", "Default"}) {
        QTest::mouseClick(&Scale(QLatin1String(text)), Qt::LeftButton);
        QCOMPARE(page->m_unit, ZrTheme::DpI(100));
    }
    QCOMPARE(m_view->isFullScreen(), isFullScreen);
    m_view->SetPageTo(QStringLiteral("B"), false);
    QCOMPARE(hidden->m_unit, ZrTheme::DpI(100));
}

void tst_SettingsInView::unitsInOpenInputs()
{
    const ZrInput* depth = Input(ZrInput::kindShortLength, 10.0);
    const ZrInput* warm = Input(ZrInput::kindTemperature, 20.0);
    const ZrInput* count = Input(ZrInput::kindInt, 12.0);
    const ZrInput* lat = Input(ZrInput::kindLat, 48.5);
    const QString before = lat->displayText();
    const QList<ZrRadio*> lists = m_app->findChildren<ZrRadio*>();
    QCOMPARE(lists.size(), 2);
    const auto press = [](ZrRadio& radio, int item) {
        QTest::mouseClick(&radio, Qt::LeftButton, Qt::NoModifier,
            QPoint(radio.width() / 2, radio.itemHeight / 4 + radio.itemHeight / 2 + item * radio.itemHeight));
        Settle();
    };
    press(*lists[0], 1);
    QCOMPARE(depth->displayText(), QStringLiteral("32.81"));
    QCOMPARE(warm->displayText(), QStringLiteral("68.00"));
    QCOMPARE(count->displayText(), QStringLiteral("12"));
    press(*lists[0], 0);
    QCOMPARE(depth->displayText(), QStringLiteral("10.00"));
    QCOMPARE(warm->displayText(), QStringLiteral("20.00"));
    press(*lists[1], 0);
    QVERIFY(lat->displayText() != before);
    press(*lists[1], 2);
    QCOMPARE(lat->displayText(), before);
}

/// What is not a number yet is replaced by the last value that was one.
void tst_SettingsInView::unitsWhileTyping()
{
    ZrInput* depth = Input(ZrInput::kindShortLength, 10.0);
    depth->QLineEdit::setText(QStringLiteral("2x"));
    m_app->OnUom(1);
    QCOMPARE(depth->displayText(), QStringLiteral("32.81"));
    depth->QLineEdit::setText(QStringLiteral("3.2808"));
    m_app->OnUom(0);
    QCOMPARE(depth->displayText(), QStringLiteral("1.00"));
}

void tst_SettingsInView::tabs()
{
    ZrFormMgr& forms = m_view->forms();
    QTest::mouseClick(&forms, Qt::LeftButton, Qt::NoModifier, forms.m_forms[1]->m_tab.center());
    QCOMPARE(forms.CurrentPosition(), 1);
    QVERIFY(forms.m_forms[1]->isVisible() && !m_app->isVisible());
    // Closed and opened again it is where it was.
    m_view->ToggleSettings();
    QVERIFY(!forms.m_forms[1]->isVisible());
    m_view->ToggleSettings();
    QVERIFY(forms.m_forms[1]->isVisible());
}

/// Settings are loaded before the window is shown: its first layout has their scale.
void tst_SettingsInView::settingsBeforeTheWindow()
{
    m_view.reset();
    m_view = std::make_unique<ZrAppView>(
        nullptr, std::chrono::milliseconds(20), ZrAppView::updateTimer, std::chrono::milliseconds(20));
    auto* app = new ZrFmApp(&m_view->forms());
    m_view->forms().AddNewForm(app);
    app->OnLargest();
    m_view->resize(1280, 800);
    m_view->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_view.get()));
    Settle();
    QCOMPARE(ZrTheme::dp, float(1280.0 / 1920.0));
    QCOMPARE(m_view->forms().x(), FormsEdge());
}

GL_TEST_MAIN(tst_SettingsInView)
#include "tst_SettingsInView.moc"
