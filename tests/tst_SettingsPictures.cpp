// The pictures of the settings forms: that they look as they did, at the largest, standard and smallest
// scale.
//
// They are held against tests/golden/settings-*.png. After an intended change of the look, with the fonts of
// fonts-liberation installed:
//
//     ZR_GOLDEN_UPDATE=1 QT_QPA_PLATFORM=offscreen build/dev/bin/tst_SettingsPictures
//
// and look at every one of them before it is committed.

#include "GoldenImage.h"
#include "ZrDebugLog/ZrDebugLog.h"
#include "ZrFormPage.h"
#include "ZrUiChecks.h"
#include "ZrUnitsState.h"
#include "ZrUtil/ZrFmApp.h"
#include "ZrUtil/ZrFmLogging.h"
#include "ZrUtil/ZrFormMgr.h"

#include <QApplication>
#include <QFontInfo>
#include <QtTest>

#include <memory>

using Apply = void (ZrFmApp::*)();
Q_DECLARE_METATYPE(Apply)

namespace {

/// A word that is another one is more than this.
constexpr golden::Tolerance tolerance{24, 0.00005};

} // namespace

class tst_SettingsPictures : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void looksAsItDid_data();
    void looksAsItDid();
    void tieredForm();

private:
    /// The forms as a window of 1280 by 800 shows them that was made for a screen \p designWidth wide.
    void Make(int designWidth, int designHeight);

    std::unique_ptr<ZrThemeState> m_theme;
    std::unique_ptr<ZrUnitsState> m_units;
    std::unique_ptr<QWidget> m_window;
    ZrFormMgr* m_mgr = nullptr;
    ZrFmApp* m_app = nullptr;
    int m_switches[4] = {};
};

void tst_SettingsPictures::initTestCase()
{
    QApplication::setStyle(QStringLiteral("Fusion"));
    QApplication::setCursorFlashTime(0);
    const QString family = QFontInfo(QFont(QStringLiteral("Arial"))).family();
    QVERIFY2(family == QLatin1String("Liberation Sans") || family == QLatin1String("Arial"),
        qPrintable(QStringLiteral("%1 takes the place of Arial: install fonts-liberation").arg(family)));
}

void tst_SettingsPictures::init()
{
    m_theme = std::make_unique<ZrThemeState>();
    m_units = std::make_unique<ZrUnitsState>();
    m_switches[0] = zr_debug_log_level;
    m_switches[1] = zr_debug_log_flush_level;
    m_switches[2] = zr_debug_log_to_file;
    m_switches[3] = zr_debug_log_to_dbg;
    zr_debug_log_level = 3;
    zr_debug_log_flush_level = 1;
    zr_debug_log_to_file = 1;
    zr_debug_log_to_dbg = 0;
    zr_debug_log_set_base_path("/var/log/survey/debug");
    ZrUnits::SetToMetric();
    ZrUnits::SetGeoStyle(eGeoStyle(5));
    ZrTheme::tabletMode = true;
}

void tst_SettingsPictures::cleanup()
{
    m_window.reset();
    qApp->setStyleSheet(QString());
    m_units.reset();
    m_theme.reset();
    zr_debug_log_set_base_path(nullptr);
    zr_debug_log_level = m_switches[0];
    zr_debug_log_flush_level = m_switches[1];
    zr_debug_log_to_file = m_switches[2];
    zr_debug_log_to_dbg = m_switches[3];
}

void tst_SettingsPictures::Make(int designWidth, int designHeight)
{
    constexpr int width = 1280;
    constexpr int height = 800;
    ZrTheme::designWidth = designWidth;
    ZrTheme::designHeight = designHeight;
    ZrTheme::SetAppSize(float(width), float(height));
    ZrTheme::SetStdStyle();
    qApp->setStyleSheet(ZrTheme::GetStylesheet(QStringLiteral(":/css/AppView.css")));
    m_window = std::make_unique<QWidget>();
    m_window->resize(width, height);
    m_mgr = new ZrFormMgr(m_window.get());
    m_app = new ZrFmApp(m_mgr);
    m_mgr->AddNewForm(m_app);
    m_mgr->AddNewForm(new ZrFmLogging(m_mgr));
    // As the view places it.
    m_mgr->setGeometry(ZrTheme::DpI(80), ZrTheme::DpI(80),
        std::min(width - 2 * ZrTheme::DpI(80), ZrTheme::DpI(600) + ZrTheme::DpI(250)),
        height - ZrTheme::DpI(100));
    m_window->show();
    Settle();
}

void tst_SettingsPictures::looksAsItDid_data()
{
    QTest::addColumn<Apply>("apply");
    QTest::addColumn<QSize>("design");
    QTest::addColumn<QString>("form");

    const struct
    {
        const char* name;
        Apply apply;
        QSize design;
    } scales[] = {{"plus2", &ZrFmApp::OnSmallest, QSize(1024, 640)},
        {"default", &ZrFmApp::OnDefault, QSize(1440, 900)},
        {"minus2", &ZrFmApp::OnLargest, QSize(1920, 1200)}};

    for (const auto& scale : scales) {
        QTest::newRow(qPrintable(QStringLiteral("settings-app-%1").arg(QLatin1String(scale.name))))
            << scale.apply << scale.design << QStringLiteral("Application Settings");
        QTest::newRow(qPrintable(QStringLiteral("settings-logging-%1").arg(QLatin1String(scale.name))))
            << scale.apply << scale.design << QStringLiteral("Logging Settings");
    }
}

void tst_SettingsPictures::looksAsItDid()
{
    QFETCH(Apply, apply);
    QFETCH(QSize, design);
    QFETCH(QString, form);
    Make(design.width(), design.height());
    (m_app->*apply)();
    QVERIFY(m_mgr->SetToForm(form));
    Settle();
    const QString error = golden::Compare(
        Painted(*m_mgr), QLatin1String(QTest::currentDataTag()) + QLatin1String(".png"), tolerance);
    QVERIFY2(error.isEmpty(), qPrintable(error));
}

/// The tab of the parent stays the highlighted one.
void tst_SettingsPictures::tieredForm()
{
    Make(1440, 900);
    auto* tiered = new ZrFormPage(m_mgr, QStringLiteral("Units in Detail"));
    tiered->m_isTiered = true;
    tiered->m_parentForm = m_app;
    m_mgr->AddNewForm(tiered);
    QVERIFY(m_mgr->SetToForm(QStringLiteral("Units in Detail")));
    Settle();
    const QString error = golden::Compare(Painted(*m_mgr), QStringLiteral("settings-tiered.png"), tolerance);
    QVERIFY2(error.isEmpty(), qPrintable(error));
}

QTEST_MAIN(tst_SettingsPictures)
#include "tst_SettingsPictures.moc"
