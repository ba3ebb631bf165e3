// The settings form of the application: units, style of positions, display scale, tablet mode.

#include "ZrUiChecks.h"
#include "ZrUnitsState.h"
#include "ZrUtil/ZrAppView.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrCheck.h"
#include "ZrUtil/ZrFmApp.h"
#include "ZrUtil/ZrFormMgr.h"
#include "ZrUtil/ZrInput.h"
#include "ZrUtil/ZrRadio.h"
#include "ZrUtil/ZrSetApp.h"

#include <QtTest>

#include <memory>

static_assert(std::is_base_of_v<ZrForm, ZrFmApp>);

namespace {

/// Notes the sizes that the window gets.
class SizeLog : public QObject
{
public:
    QVector<QSize> m_sizes;

    bool eventFilter(QObject* /*watched*/, QEvent* event) override
    {
        if (event->type() == QEvent::Resize)
            m_sizes.append(static_cast<QResizeEvent*>(event)->size());
        return false;
    }
};

} // namespace

class tst_ZrFmApp : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void asMade();
    void labels();
    void units();
    void unitsByPress();
    void styles_data();
    void styles();
    void stylesByPress();
    void unknownStyles();
    void unitsWhileInputsAreOpen();
    void listsShowWhatIsInForce();
    void paintingEnds();
    void scales_data();
    void scales();
    void scaleResizesTheView();
    void scaleOfASmallestView();
    void scaleOfAFullScreenView();
    void scaleWithoutAView();
    void tabletMode();
    void scaleStored();
    void scaleLoaded_data();
    void scaleLoaded();
    void storingAppliesNothing();
    void captions();
    void helpFits_data();
    void helpFits();
    void controlsStayInTheForm_data();
    void controlsStayInTheForm();
    void targets_data();
    void targets();
    void controlsStandBesideTheirTexts();

private:
    ZrRadio& Radio(const QString& name);
    ZrBtn& Scale(const QString& text);
    void MakeView();
    void Show(int width, int height);

    std::unique_ptr<ZrThemeState> m_theme;
    std::unique_ptr<ZrUnitsState> m_units;
    std::unique_ptr<ZrAppView> m_view;
    std::unique_ptr<QWidget> m_window;
    ZrFormMgr* m_mgr = nullptr;
    ZrFmApp* m_form = nullptr;
};

void tst_ZrFmApp::init()
{
    m_theme = std::make_unique<ZrThemeState>();
    m_units = std::make_unique<ZrUnitsState>();
    ZrTheme::designWidth = 1440;
    ZrTheme::designHeight = 900;
    ZrTheme::tabletMode = false;
    ZrUnits::SetToMetric();
    ZrUnits::SetGeoStyle(eGeoDeg);
    m_window = std::make_unique<QWidget>();
    m_window->resize(900, 800);
    m_mgr = new ZrFormMgr(m_window.get());
    m_form = new ZrFmApp(m_mgr);
    m_mgr->AddNewForm(m_form);
}

void tst_ZrFmApp::cleanup()
{
    m_window.reset();
    m_view.reset();
    m_units.reset();
    m_theme.reset();
}

ZrRadio& tst_ZrFmApp::Radio(const QString& name)
{
    for (ZrRadio* radio : m_form->findChildren<ZrRadio*>()) {
        if (radio->accessibleName() == name)
            return *radio;
    }
    qFatal("no such list");
}

ZrBtn& tst_ZrFmApp::Scale(const QString& text)
{
    for (ZrBtn* btn : m_form->findChildren<ZrBtn*>()) {
        if (btn->text == text)
            return *btn;
    }
    qFatal("no such button");
}

void tst_ZrFmApp::MakeView()
{
    m_view = std::make_unique<ZrAppView>(
        nullptr, std::chrono::milliseconds(10000), ZrAppView::updateTimer, std::chrono::milliseconds(0));
}

void tst_ZrFmApp::Show(int width, int height)
{
    m_mgr->setGeometry(10, 10, width, height);
    m_window->show();
    Settle();
}

void tst_ZrFmApp::asMade()
{
    QCOMPARE(m_form->m_name, QStringLiteral("Application Settings"));
    QVERIFY(!m_form->m_icon.isNull());
    QCOMPARE(m_form->m_icon, QImage(QStringLiteral(":/settings_application.png")));
    QCOMPARE(m_form->m_scale, 0);
    QCOMPARE(m_form->m_mgr, m_mgr);
}

void tst_ZrFmApp::labels()
{
    QStringList scales;
    for (const ZrBtn* btn : m_form->findChildren<ZrBtn*>())
        scales.append(btn->text);
    QCOMPARE(scales,
        (QStringList{QStringLiteral("+2"), QStringLiteral("+1"), QStringLiteral("Default"),
            QStringLiteral("-1"), QStringLiteral("-2")}));
    QCOMPARE(Radio(QStringLiteral("Units of Measurement")).items,
        (QStringList{QStringLiteral("Metric"), QStringLiteral("Imperial")}));
    QCOMPARE(Radio(QStringLiteral("Coordinate System")).items,
        (QStringList{QStringLiteral("00 00' 00.00\""), QStringLiteral("00 00.000'"), QStringLiteral("00.000"),
            QStringLiteral("UTM")}));
    QCOMPARE(m_form->findChild<ZrCheck*>()->text, QStringLiteral("Tablet Mode"));
}

void tst_ZrFmApp::units()
{
    m_form->OnUom(1);
    QCOMPARE(ZrUnits::GetShortLengthUnits(), QStringLiteral("ft"));
    m_form->OnUom(7);
    QCOMPARE(ZrUnits::GetShortLengthUnits(), QStringLiteral("ft"));
    m_form->OnUom(-1);
    QCOMPARE(ZrUnits::GetShortLengthUnits(), QStringLiteral("ft"));
    m_form->OnUom(0);
    QCOMPARE(ZrUnits::GetShortLengthUnits(), QStringLiteral("m"));
}

void tst_ZrFmApp::unitsByPress()
{
    Show(850, 760);
    ZrRadio& radio = Radio(QStringLiteral("Units of Measurement"));
    QTest::mouseClick(&radio, Qt::LeftButton, Qt::NoModifier, radio.ItemRect(1).center());
    QCOMPARE(ZrUnits::GetShortLengthUnits(), QStringLiteral("ft"));
    QTest::mouseClick(&radio, Qt::LeftButton, Qt::NoModifier, radio.ItemRect(0).center());
    QCOMPARE(ZrUnits::GetShortLengthUnits(), QStringLiteral("m"));
}

void tst_ZrFmApp::styles_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<int>("style");
    QTest::newRow("degrees, minutes, seconds") << 0 << 7;
    QTest::newRow("degrees, minutes") << 1 << 5;
    QTest::newRow("degrees") << 2 << 4;
    QTest::newRow("UTM") << 3 << 8;
}

void tst_ZrFmApp::styles()
{
    QFETCH(int, index);
    QFETCH(int, style);
    ZrUnits::SetGeoStyle(eGeoSignedDeg);
    m_form->OnCs(index);
    QCOMPARE(int(ZrUnits::GetGeoStyle()), style);
}

void tst_ZrFmApp::stylesByPress()
{
    Show(850, 760);
    ZrRadio& radio = Radio(QStringLiteral("Coordinate System"));
    const int styles[] = {7, 5, 4, 8};
    for (const int i : {0, 1, 2, 3}) {
        QTest::mouseClick(&radio, Qt::LeftButton, Qt::NoModifier, radio.ItemRect(i).center());
        QCOMPARE(int(ZrUnits::GetGeoStyle()), styles[i]);
    }
}

void tst_ZrFmApp::unknownStyles()
{
    for (const int index : {-1, 4, 5, 100, -2147483647}) {
        m_form->OnCs(index);
        QCOMPARE(ZrUnits::GetGeoStyle(), eGeoDeg);
    }
}

void tst_ZrFmApp::unitsWhileInputsAreOpen()
{
    ZrInput depth(nullptr);
    depth.kind = ZrInput::kindShortLength;
    depth.SetValue(100.0);
    ZrInput lat(nullptr);
    lat.kind = ZrInput::kindLat;
    lat.SetValue(51.5);
    const QString metres = depth.QLineEdit::text();
    const QString degrees = lat.QLineEdit::text();
    m_form->OnUom(1);
    QVERIFY(depth.QLineEdit::text() != metres);
    QCOMPARE(depth.QLineEdit::text(), depth.GetText(100.0));
    QCOMPARE(lat.QLineEdit::text(), degrees);
    m_form->OnCs(1);
    QVERIFY(lat.QLineEdit::text() != degrees);
    QCOMPARE(lat.QLineEdit::text(), lat.GetText(51.5));
    m_form->OnUom(0);
    m_form->OnCs(2);
    QCOMPARE(depth.QLineEdit::text(), metres);
    QCOMPARE(lat.QLineEdit::text(), degrees);
    QCOMPARE(depth.value, 100.0);
}

void tst_ZrFmApp::listsShowWhatIsInForce()
{
    Show(850, 760);
    ZrRadio& uom = Radio(QStringLiteral("Units of Measurement"));
    ZrRadio& cs = Radio(QStringLiteral("Coordinate System"));
    QCOMPARE(uom.sel, 0);
    QCOMPARE(cs.sel, 2);
    // Somebody else changes them.
    ZrUnits::SetToImperial();
    ZrUnits::SetGeoStyle(eGeoUTM);
    m_form->update();
    Settle();
    QCOMPARE(uom.sel, 1);
    QCOMPARE(cs.sel, 3);
    ZrUnits::SetGeoStyle(eGeoSignedDMS);
    m_form->update();
    Settle();
    QCOMPARE(cs.sel, -1);
}

void tst_ZrFmApp::paintingEnds()
{
    Show(850, 760);
    ZrPaintCounter form(*m_form);
    ZrPaintCounter radio(Radio(QStringLiteral("Coordinate System")));
    form.Take();
    radio.Take();
    m_form->update();
    QCOMPARE(form.Take(), 1);
    QVERIFY(radio.Take() <= 1);
    QCOMPARE(form.Take(), 0);
    QCOMPARE(radio.Take(), 0);
    ZrUnits::SetGeoStyle(eGeoUTM);
    m_form->update();
    QVERIFY(form.Take() <= 2);
    QCOMPARE(form.Take(), 0);
}

void tst_ZrFmApp::scales_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::addColumn<int>("scale");
    QTest::newRow("smallest") << QStringLiteral("+2") << 1024 << 640 << 2;
    QTest::newRow("small") << QStringLiteral("+1") << 1280 << 800 << 1;
    QTest::newRow("default") << QStringLiteral("Default") << 1440 << 900 << 0;
    QTest::newRow("large") << QStringLiteral("-1") << 1680 << 1050 << -1;
    QTest::newRow("largest") << QStringLiteral("-2") << 1920 << 1200 << -2;
}

void tst_ZrFmApp::scales()
{
    QFETCH(QString, button);
    QFETCH(int, width);
    QFETCH(int, height);
    QFETCH(int, scale);
    m_form->m_scale = 99;
    ZrTheme::designWidth = ZrTheme::designHeight = 1;
    Show(850, 760);
    QTest::mouseClick(&Scale(button), Qt::LeftButton);
    QCOMPARE(ZrTheme::designWidth, width);
    QCOMPARE(ZrTheme::designHeight, height);
    QCOMPARE(m_form->m_scale, scale);
    for (const ZrBtn* btn : m_form->findChildren<ZrBtn*>())
        QCOMPARE(btn->on, btn->text == button);

    ZrTheme::designWidth = ZrTheme::designHeight = 1;
    m_form->m_scale = 99;
    switch (scale) {
    case 2:
        m_form->OnSmallest();
        break;
    case 1:
        m_form->OnSmall();
        break;
    case 0:
        m_form->OnDefault();
        break;
    case -1:
        m_form->OnLarge();
        break;
    default:
        m_form->OnLargest();
        break;
    }
    QCOMPARE(ZrTheme::designWidth, width);
    QCOMPARE(ZrTheme::designHeight, height);
    QCOMPARE(m_form->m_scale, scale);
}

void tst_ZrFmApp::scaleResizesTheView()
{
    MakeView();
    m_view->resize(2000, 1300);
    m_view->show();
    Settle();
    SizeLog log;
    m_view->installEventFilter(&log);
    m_form->OnSmall();
    QCOMPARE(log.m_sizes, (QVector<QSize>{QSize(1000, 650), QSize(2000, 1300)}));
    QCOMPARE(m_view->size(), QSize(2000, 1300));
}

void tst_ZrFmApp::scaleOfASmallestView()
{
    MakeView();
    m_view->resize(900, 600);
    m_view->show();
    Settle();
    SizeLog log;
    m_view->installEventFilter(&log);
    m_form->OnLarge();
    // It cannot become smaller, and is told all the same.
    QCOMPARE(log.m_sizes, QVector<QSize>{QSize(900, 600)});
    QCOMPARE(m_view->size(), QSize(900, 600));
}

void tst_ZrFmApp::scaleOfAFullScreenView()
{
    MakeView();
    m_view->showFullScreen();
    Settle();
    const QSize size = m_view->size();
    SizeLog log;
    m_view->installEventFilter(&log);
    m_form->OnSmallest();
    QCOMPARE(log.m_sizes, QVector<QSize>{size});
    QVERIFY(m_view->isFullScreen());
    QCOMPARE(m_view->size(), size);
}

void tst_ZrFmApp::scaleWithoutAView()
{
    QVERIFY(!ZrAppView::s_pApp);
    m_form->OnLargest();
    QCOMPARE(m_form->m_scale, -2);
}

void tst_ZrFmApp::tabletMode()
{
    Show(850, 760);
    auto* check = m_form->findChild<ZrCheck*>();
    QVERIFY(!check->IsOn());
    QTest::mouseClick(check, Qt::LeftButton);
    QVERIFY(ZrTheme::tabletMode);
    QVERIFY(check->IsOn());
    ZrTheme::tabletMode = false;
    QVERIFY(!check->IsOn());
}

void tst_ZrFmApp::scaleStored()
{
    m_form->OnLarge();
    zr::ZrSetApp stored(zr::ePersistStoring);
    stored.synchronise(*m_form);
    QCOMPARE(stored.root, (QJsonObject{{QStringLiteral("ScaleValue"), QStringLiteral("-1")}}));
}

void tst_ZrFmApp::scaleLoaded_data()
{
    QTest::addColumn<QJsonObject>("root");
    QTest::addColumn<int>("scale");
    QTest::addColumn<int>("width");
    QTest::newRow("2") << QJsonObject{{QStringLiteral("ScaleValue"), QStringLiteral("2")}} << 2 << 1024;
    QTest::newRow("1") << QJsonObject{{QStringLiteral("ScaleValue"), QStringLiteral("1")}} << 1 << 1280;
    QTest::newRow("0") << QJsonObject{{QStringLiteral("ScaleValue"), QStringLiteral("0")}} << 0 << 1440;
    QTest::newRow("-1") << QJsonObject{{QStringLiteral("ScaleValue"), QStringLiteral("-1")}} << -1 << 1680;
    QTest::newRow("-2") << QJsonObject{{QStringLiteral("ScaleValue"), QStringLiteral("-2")}} << -2 << 1920;
    QTest::newRow("missing: the one in force") << QJsonObject() << 1 << 1280;
    QTest::newRow("unknown") << QJsonObject{{QStringLiteral("ScaleValue"), QStringLiteral("3")}} << 1 << 77;
    QTest::newRow("huge") << QJsonObject{{QStringLiteral("ScaleValue"), QStringLiteral("2147483647")}} << 1
                          << 77;
    QTest::newRow("no number") << QJsonObject{{QStringLiteral("ScaleValue"), QStringLiteral("x")}} << 0
                               << 1440;
}

void tst_ZrFmApp::scaleLoaded()
{
    QFETCH(QJsonObject, root);
    m_form->OnSmall();
    ZrTheme::designWidth = 77;
    zr::ZrSetApp loaded(zr::ePersistLoading);
    loaded.root = root;
    loaded.synchronise(*m_form);
    QTEST(m_form->m_scale, "scale");
    QTEST(ZrTheme::designWidth, "width");
}

void tst_ZrFmApp::storingAppliesNothing()
{
    MakeView();
    m_view->resize(2000, 1300);
    m_view->show();
    Settle();
    SizeLog log;
    m_view->installEventFilter(&log);
    ZrTheme::designWidth = 1234;
    zr::ZrSetApp stored(zr::ePersistStoring);
    stored.synchronise(*m_form);
    QCOMPARE(ZrTheme::designWidth, 1234);
    QVERIFY(log.m_sizes.isEmpty());
}

void tst_ZrFmApp::captions()
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

void tst_ZrFmApp::helpFits_data()
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
void tst_ZrFmApp::helpFits()
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

void tst_ZrFmApp::controlsStayInTheForm_data()
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

void tst_ZrFmApp::controlsStayInTheForm()
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

void tst_ZrFmApp::targets_data()
{
    controlsStayInTheForm_data();
}

void tst_ZrFmApp::targets()
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

void tst_ZrFmApp::controlsStandBesideTheirTexts()
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

QTEST_MAIN(tst_ZrFmApp)
#include "tst_ZrFmApp.moc"
