// The settings form of the application: units, style of positions, display scale, tablet mode.

#include "ZrFmAppTest.h"
#include "ZrUtil/ZrCheck.h"
#include "ZrUtil/ZrInput.h"
#include "ZrUtil/ZrPage.h"
#include "ZrUtil/ZrSetApp.h"

#include <QtTest>

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

class tst_ZrFmApp : public ZrFmAppTest
{
    Q_OBJECT

private Q_SLOTS:

    void init() { Make(); }

    void cleanup() { Drop(); }

    void asMade();
    void labels();
    void units();
    void unitsByPress();
    void styles_data();
    void styles();
    void stylesByPress();
    void unknownStyles();
    void unitsWhileInputsAreOpen();
    void viewFollows();
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
};

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

/// The view and its page are painted anew, with what is in force.
void tst_ZrFmApp::viewFollows()
{
    MakeView();
    auto* page = new ZrPage(m_view.get());
    m_view->AddPage(QStringLiteral("Home"), page, true);
    m_view->show();
    ZrPaintCounter paints(*page);
    paints.Take();
    QCOMPARE(paints.Take(), 0);
    m_form->OnUom(1);
    QVERIFY(paints.Take() > 0);
    m_form->OnUom(0);
    QVERIFY(paints.Take() > 0);
    for (const int index : {0, 1, 2, 3}) {
        m_form->OnCs(index);
        QVERIFY(paints.Take() > 0);
    }
    m_form->OnCs(4);
    QCOMPARE(paints.Take(), 0);
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

QTEST_MAIN(tst_ZrFmApp)
#include "tst_ZrFmApp.moc"
