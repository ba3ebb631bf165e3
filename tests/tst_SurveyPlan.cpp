// Waypoints on the page "Plan", driven by fingers, mouse and keys.

#include "SurveyPlanWindow.h"
#include "TouchOn.h"

class tst_SurveyPlan : public SurveyPlanWindow
{
    Q_OBJECT

private Q_SLOTS:
    void addAtTheCross();
    void addByTap();
    void panAndPinchAddNothing();
    void doubleTapAdds();
    void dragByTouch();
    void secondFingerCancelsTheDrag();
    void panDoesNotDrag();
    void insertIntoLeg();
    void deleteAndUndo();
    void reorder();
    void reverseAndRedo();
    void everyModeIsLeft_data();
    void everyModeIsLeft();
    void properties();
    void unitsAtOnce();
    void zoomKeys_data();
    void zoomKeys();
    void zoomKeysTypeInFields();
};

void tst_SurveyPlan::addAtTheCross()
{
    Click("tool_add");
    QCOMPARE(m_page->Mode(), PlanPage::modeAdd);
    const ZrGeoPoint middle = m_page->Chart().ToGeo(m_page->Map().m_camera.Centre());
    Click("add_here");
    QCOMPARE(Plan().Route().GetCount(), 1);
    QVERIFY(std::fabs(Wpt(0)->lat - middle.lat) < 1e-9 && std::fabs(Wpt(0)->lng - middle.lng) < 1e-9);
    // Each goes behind the one before.
    m_page->Map().m_camera.Pan({-200.0, 0.0});
    Click("add_here");
    QCOMPARE(Plan().Route().GetCount(), 2);
    QVERIFY(Wpt(1)->lng > Wpt(0)->lng);
    QVERIFY(Plan().IsDirty());
}

void tst_SurveyPlan::addByTap()
{
    Click("tool_add");
    Tap({400, 300});
    QCOMPARE(Plan().Route().GetCount(), 1);
    QTRY_COMPARE(m_page->Chart().Points().size(), std::size_t(1));
    QVERIFY((PixelOf(0) - QPoint(400, 300)).manhattanLength() <= 2);
}

void tst_SurveyPlan::panAndPinchAddNothing()
{
    Click("tool_add");
    TouchOn(m_panel, m_touch).press(1, {400, 300}, m_panel);
    for (int i = 1; i <= 8; ++i)
        TouchOn(m_panel, m_touch).move(1, {400 + 10 * i, 300}, m_panel);
    TouchOn(m_panel, m_touch).release(1, {480, 300}, m_panel);
    TouchOn(m_panel, m_touch).press(1, {400, 300}, m_panel);
    TouchOn(m_panel, m_touch).stationary(1).press(2, {500, 300}, m_panel);
    TouchOn(m_panel, m_touch).release(1, {400, 300}, m_panel).release(2, {500, 300}, m_panel);
    QTest::qWait(100);
    QCOMPARE(Plan().Route().GetCount(), 0);
}

void tst_SurveyPlan::doubleTapAdds()
{
    QTest::mouseClick(m_panel, Qt::LeftButton, Qt::NoModifier, {400, 300});
    QCOMPARE(Plan().Route().GetCount(), 0);
    QTest::mouseClick(m_panel, Qt::LeftButton, Qt::NoModifier, {400, 300});
    QCOMPARE(Plan().Route().GetCount(), 1);
}

void tst_SurveyPlan::dragByTouch()
{
    AddRoute();
    Tap(PixelOf(1));
    const QPoint from = PixelOf(1);
    const int steps = Plan().History().Steps();
    TouchOn(m_panel, m_touch).press(1, from + QPoint(6, 4), m_panel);
    TouchOn(m_panel, m_touch).move(1, from + QPoint(46, 24), m_panel);
    TouchOn(m_panel, m_touch).move(1, from + QPoint(86, 44), m_panel);
    TouchOn(m_panel, m_touch).release(1, from + QPoint(86, 44), m_panel);
    QTRY_VERIFY((PixelOf(1) - from - QPoint(80, 40)).manhattanLength() <= 2);
    QCOMPARE(Plan().History().Steps(), steps + 1);
    QTest::keyClick(m_view.get(), Qt::Key_Z, Qt::ControlModifier);
    QTRY_VERIFY((PixelOf(1) - from).manhattanLength() <= 2);
}

void tst_SurveyPlan::secondFingerCancelsTheDrag()
{
    AddRoute();
    Tap(PixelOf(1));
    const double lat = Wpt(1)->lat;
    const double lng = Wpt(1)->lng;
    const QPoint from = PixelOf(1);
    TouchOn(m_panel, m_touch).press(1, from, m_panel);
    TouchOn(m_panel, m_touch).move(1, from + QPoint(60, 60), m_panel);
    QVERIFY(Wpt(1)->lat != lat);
    TouchOn(m_panel, m_touch).stationary(1).press(2, from + QPoint(-150, 0), m_panel);
    QCOMPARE(Wpt(1)->lat, lat);
    QCOMPARE(Wpt(1)->lng, lng);
    TouchOn(m_panel, m_touch)
        .move(1, from + QPoint(80, 80), m_panel)
        .move(2, from + QPoint(-180, 0), m_panel);
    TouchOn(m_panel, m_touch)
        .release(1, from + QPoint(80, 80), m_panel)
        .release(2, from + QPoint(-180, 0), m_panel);
    QTest::qWait(50);
    QCOMPARE(Wpt(1)->lat, lat);
    QCOMPARE(Wpt(1)->lng, lng);
    QVERIFY(!Plan().History().CanUndo());
}

void tst_SurveyPlan::panDoesNotDrag()
{
    AddRoute();
    // Not selected: the finger moves the map.
    const double lat = Wpt(1)->lat;
    const QPointF centre = m_page->Map().m_camera.Centre();
    const QPoint from = PixelOf(1);
    TouchOn(m_panel, m_touch).press(1, from, m_panel);
    for (int i = 1; i <= 6; ++i)
        TouchOn(m_panel, m_touch).move(1, from + QPoint(10 * i, 10 * i), m_panel);
    TouchOn(m_panel, m_touch).release(1, from + QPoint(60, 60), m_panel);
    QCOMPARE(Wpt(1)->lat, lat);
    QVERIFY(m_page->Map().m_camera.Centre() != centre);
    QVERIFY(!Plan().History().CanUndo());
}

void tst_SurveyPlan::insertIntoLeg()
{
    AddRoute();
    Tap((PixelOf(0) + PixelOf(1)) / 2);
    Click("insert");
    QCOMPARE(
        Names(), QStringList({QStringLiteral("A"), QString(), QStringLiteral("B"), QStringLiteral("C")}));
    QTRY_COMPARE(m_page->Chart().Points().size(), std::size_t(4));
    QVERIFY((PixelOf(1) - (PixelOf(0) + PixelOf(2)) / 2).manhattanLength() <= 3);
    Click("undo");
    QCOMPARE(Names().size(), 3);
}

void tst_SurveyPlan::deleteAndUndo()
{
    AddRoute();
    Tap(PixelOf(1));
    QTest::keyClick(m_view.get(), Qt::Key_Delete);
    QCOMPARE(Names(), QStringList({QStringLiteral("A"), QStringLiteral("C")}));
    QVERIFY(Toast().contains(QLatin1String("B")));
    ClickToast();
    QCOMPARE(Names(), QStringList({QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C")}));
}

void tst_SurveyPlan::reorder()
{
    AddRoute();
    auto* list = m_page->findChild<PlanListPanel*>();
    QTRY_COMPARE(list->List()->Count(), 3);
    QCOMPARE(list->List()->Item(0).title, QStringLiteral("A"));
    QVERIFY(list->List()->Item(1).detail.endsWith(QLatin1String(" m")));
    Tap(PixelOf(0));
    QTRY_COMPARE(list->List()->Current(), 0);
    const auto buttons = list->findChildren<ZrBtn*>(QString(), Qt::FindDirectChildrenOnly);
    QVERIFY(!buttons[0]->isEnabled());
    QTest::mouseClick(buttons[1], Qt::LeftButton);
    QCOMPARE(Names(), QStringList({QStringLiteral("B"), QStringLiteral("A"), QStringLiteral("C")}));
    QTest::mouseClick(buttons[1], Qt::LeftButton);
    QCOMPARE(Names(), QStringList({QStringLiteral("B"), QStringLiteral("C"), QStringLiteral("A")}));
    QVERIFY(!buttons[1]->isEnabled());
    QTest::mouseClick(buttons[0], Qt::LeftButton);
    QCOMPARE(Names(), QStringList({QStringLiteral("B"), QStringLiteral("A"), QStringLiteral("C")}));
    QCOMPARE(list->List()->Current(), 1);
}

void tst_SurveyPlan::reverseAndRedo()
{
    AddRoute();
    QTest::keyClick(m_view.get(), Qt::Key_R, Qt::ControlModifier);
    const QStringList reversed{QStringLiteral("C"), QStringLiteral("B"), QStringLiteral("A")};
    QCOMPARE(Names(), reversed);
    Click("undo");
    QCOMPARE(Names().front(), QStringLiteral("A"));
    QTest::keyClick(m_view.get(), Qt::Key_Y, Qt::ControlModifier);
    QCOMPARE(Names(), reversed);
}

void tst_SurveyPlan::everyModeIsLeft_data()
{
    QTest::addColumn<QString>("tool");
    QTest::addColumn<bool>("byKey");
    for (const char* tool : {"tool_add", "tool_area"}) {
        QTest::addRow("%s button", tool) << QString::fromLatin1(tool) << false;
        QTest::addRow("%s Escape", tool) << QString::fromLatin1(tool) << true;
    }
}

void tst_SurveyPlan::everyModeIsLeft()
{
    QFETCH(QString, tool);
    QFETCH(bool, byKey);
    QVERIFY(!Button("done")->isVisible());
    Click(qPrintable(tool));
    QVERIFY(m_page->Mode() != PlanPage::modeBrowse);
    QVERIFY(Button("done")->isVisible());
    if (byKey)
        QTest::keyClick(m_view.get(), Qt::Key_Escape);
    else
        Click("done");
    QCOMPARE(m_page->Mode(), PlanPage::modeBrowse);
    QVERIFY(!Button("done")->isVisible());
    Tap({400, 300});
    QCOMPARE(Plan().Route().GetCount(), 0);
}

void tst_SurveyPlan::properties()
{
    AddRoute();
    Click("tab_target");
    Tap(PixelOf(1));
    auto* panel = m_page->findChild<PlanPointPanel*>();
    const auto fields = panel->findChildren<ZrInput*>();
    const auto type = [&](const QString& caption, const QString& text) {
        for (ZrInput* field : fields) {
            if (field->caption != caption)
                continue;
            field->setFocus();
            field->selectAll();
            QTest::keyClicks(field, text);
            QTest::keyClick(field, Qt::Key_Return);
            return;
        }
        QFAIL(qPrintable(caption));
    };
    const int steps = Plan().History().Steps();
    type(QStringLiteral("Turn radius"), QStringLiteral("12.5"));
    QCOMPARE(Wpt(1)->r, 12.5);
    QCOMPARE(Plan().History().Steps(), steps + 1);
    type(QStringLiteral("Speed"), QStringLiteral("1.25"));
    QCOMPARE(Wpt(1)->speed, 1.25);
    QCOMPARE(Wpt(1)->spdType, 4);
    type(QStringLiteral("Depth"), QStringLiteral("7"));
    QCOMPARE(Wpt(1)->z, 7.0);
    type(QStringLiteral("Name"), QStringLiteral("Buoy"));
    QCOMPARE(Wpt(1)->name, QStringLiteral("Buoy"));
    const double lng = Wpt(1)->lng;
    const double lat = Wpt(1)->lat + 0.001;
    type(QStringLiteral("Latitude"), QString::number(lat, 'f', 8));
    QVERIFY(std::fabs(Wpt(1)->lat - lat) < 1e-7);
    QCOMPARE(Wpt(1)->lng, lng);
    ZrUnits::SetGeoStyle(eGeoUTM);
    m_view->update();
    QTRY_COMPARE(fields[1]->caption, QStringLiteral("Easting"));
    const double east = fields[1]->value;
    type(QStringLiteral("Easting"), QString::number(east + 100.0, 'f', 2));
    QTRY_VERIFY(std::fabs(fields[1]->value - east - 100.0) < 0.02);
}

void tst_SurveyPlan::unitsAtOnce()
{
    AddRoute();
    auto* tile = m_page->findChild<ZrValueTile*>();
    QTRY_VERIFY(tile->Unit() == QLatin1String("m") || tile->Unit() == QLatin1String("km"));
    const QString value = tile->Value();
    ZrUnits::SetToImperial();
    m_view->update();
    QTRY_VERIFY(tile->Unit() == QLatin1String("ft") || tile->Unit() == QLatin1String("mi"));
    QVERIFY(tile->Value() != value);
    auto* list = m_page->findChild<PlanListPanel*>()->List();
    QVERIFY(
        list->Item(1).detail.endsWith(tile->Unit()) || list->Item(1).detail.endsWith(QLatin1String("ft")));
}

void tst_SurveyPlan::zoomKeys_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<bool>("isCloser");
    const auto add = [](const char* name, Qt::Key key, Qt::KeyboardModifiers modifiers, bool isCloser) {
        QTest::newRow(name) << int(key) << int(modifiers) << isCloser;
    };
    add("+", Qt::Key_Plus, Qt::NoModifier, true);
    add("Shift and +", Qt::Key_Plus, Qt::ShiftModifier, true);
    add("=", Qt::Key_Equal, Qt::NoModifier, true);
    add("Shift and =", Qt::Key_Equal, Qt::ShiftModifier, true);
    add("keypad +", Qt::Key_Plus, Qt::KeypadModifier, true);
    add("-", Qt::Key_Minus, Qt::NoModifier, false);
    add("keypad -", Qt::Key_Minus, Qt::KeypadModifier, false);
}

/// Nothing has been clicked before, so that the keys go to the window.
void tst_SurveyPlan::zoomKeys()
{
    QFETCH(int, key);
    QFETCH(int, modifiers);
    QFETCH(bool, isCloser);
    const ZrMapView& camera = m_page->Map().m_camera;
    const QPointF centre = camera.Centre();
    const double scale = camera.Scale();
    QVERIFY(!m_panel->hasFocus());
    QTest::keyClick(m_view.get(), static_cast<Qt::Key>(key), static_cast<Qt::KeyboardModifiers>(modifiers));
    const double once = camera.Scale() / scale;
    QVERIFY(isCloser ? once < 0.9 : once > 1.1);
    QVERIFY((camera.Centre() - centre).manhattanLength() < 1e-6 * scale);
    // With a click before it is the same, and no more.
    m_panel->setFocus();
    const double again = camera.Scale();
    QTest::keyClick(m_panel, static_cast<Qt::Key>(key), static_cast<Qt::KeyboardModifiers>(modifiers));
    QVERIFY(std::fabs(camera.Scale() / again / once - 1.0) < 1e-9);
}

void tst_SurveyPlan::zoomKeysTypeInFields()
{
    AddRoute();
    Click("tab_target");
    Tap(PixelOf(1));
    const double scale = m_page->Map().m_camera.Scale();
    QApplication::setActiveWindow(m_view.get());
    auto* name = m_page->findChild<PlanPointPanel*>()->findChildren<ZrInput*>()[0];
    name->setFocus();
    QTRY_VERIFY(name->hasFocus());
    name->selectAll();
    QTest::keyClicks(name, QStringLiteral("A+B=-"));
    QTest::keyClick(name, Qt::Key_Plus, Qt::KeypadModifier);
    QCOMPARE(name->QLineEdit::text().left(5), QStringLiteral("A+B=-"));
    QCOMPARE(m_page->Map().m_camera.Scale(), scale);
}

GL_TEST_MAIN(tst_SurveyPlan)
#include "tst_SurveyPlan.moc"
