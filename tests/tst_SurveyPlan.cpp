// Waypoints on the page "Plan", driven by fingers, mouse and keys.

#include "SurveyPlanWindow.h"
#include "TouchOn.h"

#include <QRegularExpression>

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
    void insertIntoLegOfAChangedRoute_data();
    void insertIntoLegOfAChangedRoute();
    void legThatIsGone();
    void legThatHasMoved();
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
    void everyButtonNamesItsKey();
    void keysOfButtons();
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

void tst_SurveyPlan::insertIntoLegOfAChangedRoute_data()
{
    QTest::addColumn<bool>("isClosed");
    QTest::addColumn<int>("from"); // the leg is from it to the next one
    QTest::addColumn<QString>("act");
    QTest::addColumn<QStringList>("names");
    const auto row = [](const char* name, bool isClosed, int from, const char* act, const char* names) {
        QTest::newRow(name) << isClosed << from << QString::fromLatin1(act)
                            << QString::fromLatin1(names).split(QLatin1Char(' '));
    };
    row("reversed", false, 0, "reverse", "C B + A");
    row("closing leg", true, 2, "none", "A B C +");
    row("closing leg, reversed", true, 2, "reverse", "C B A +");
    row("closed, reversed", true, 1, "reverse", "C + B A");
    row("undone", false, 1, "undo", "Z A B + C");
    row("undone by the list of steps", false, 1, "document", "Z A B + C");
    row("redone", false, 0, "redo", "C B + A");
    row("other leg moved", false, 1, "move", "A B + C");
}

/// The leg that was tapped is the one, wherever it is by then.
void tst_SurveyPlan::insertIntoLegOfAChangedRoute()
{
    QFETCH(bool, isClosed);
    QFETCH(int, from);
    QFETCH(QString, act);
    QFETCH(QStringList, names);
    AddRoute();
    if (isClosed) {
        Plan().History().ChangeRoute(QStringLiteral("closing"), [](ZrWpts& route) { route.closed = true; });
        Plan().Edited();
    }
    if (act == QLatin1String("undo") || act == QLatin1String("document")) {
        ZrWpt* wpt = Plan().History().Add(Wpt(0)->lat, Wpt(0)->lng - 0.001, eZrWptBlue, ZrWpts::eAddHead);
        wpt->name = QStringLiteral("Z");
        Plan().History().Reset();
        Plan().History().Delete(wpt);
        Plan().Edited();
    } else if (act == QLatin1String("redo")) {
        Plan().History().Reverse();
        Plan().Undo();
    }
    QTRY_COMPARE(m_page->Chart().Points().size(), std::size_t(3));
    QTest::qWait(50);
    const QPoint at = (PixelOf(from) + PixelOf((from + 1) % 3)) / 2;
    Tap(at);
    QVERIFY(Button("insert")->isVisible());
    if (act == QLatin1String("reverse"))
        QTest::keyClick(m_view.get(), Qt::Key_R, Qt::ControlModifier);
    else if (act == QLatin1String("undo"))
        QTest::keyClick(m_view.get(), Qt::Key_Z, Qt::ControlModifier);
    else if (act == QLatin1String("redo"))
        QTest::keyClick(m_view.get(), Qt::Key_Y, Qt::ControlModifier);
    else if (act == QLatin1String("document"))
        QVERIFY(Plan().Undo()); // and the page has not heard of it yet
    else if (act == QLatin1String("move")) {
        Plan().History().Move(Wpt(0), Wpt(0)->lat + 1e-4, Wpt(0)->lng);
        Plan().Edited();
    }
    QTest::keyClick(m_view.get(), Qt::Key_Insert);
    QCOMPARE(Names().replaceInStrings(QRegularExpression(QStringLiteral("^$")), QStringLiteral("+")), names);
    const int index = names.indexOf(QStringLiteral("+"));
    QTRY_COMPARE(static_cast<int>(m_page->Chart().Points().size()), names.size());
    QVERIFY((PixelOf(index) - at).manhattanLength() <= 3);
}

/// There is nothing to insert into.
void tst_SurveyPlan::legThatIsGone()
{
    AddRoute();
    Tap((PixelOf(0) + PixelOf(1)) / 2);
    QVERIFY(Button("insert")->isVisible());
    // Something else lies between by now.
    ZrWpt between;
    between.lat = Wpt(2)->lat;
    between.lng = Wpt(0)->lng;
    QVERIFY(Plan().History().InsertPattern({between}, 1));
    Plan().Edited();
    QTRY_VERIFY(!Button("insert")->isVisible());
    QTest::keyClick(m_view.get(), Qt::Key_Insert);
    QCOMPARE(Plan().Route().GetCount(), 4);
    // Nor does it come back with the neighbours.
    QTest::keyClick(m_view.get(), Qt::Key_Z, Qt::ControlModifier);
    QVERIFY(!Button("insert")->isVisible());
    // Of two that are gone.
    Tap((PixelOf(0) + PixelOf(1)) / 2);
    QVERIFY(Button("insert")->isVisible());
    Plan().History().Delete(Wpt(0));
    Plan().Edited();
    QTest::keyClick(m_view.get(), Qt::Key_Insert);
    QCOMPARE(Names(), QStringList({QStringLiteral("B"), QStringLiteral("C")}));
}

/// What is inserted is on the way, not where that was.
void tst_SurveyPlan::legThatHasMoved()
{
    AddRoute();
    const QPoint before = (PixelOf(0) + PixelOf(1)) / 2;
    Tap(before);
    Plan().History().Move(Wpt(1), Wpt(1)->lat, Wpt(1)->lng + 1e-3);
    Plan().Edited();
    QTest::keyClick(m_view.get(), Qt::Key_Insert);
    QTRY_COMPARE(m_page->Chart().Points().size(), std::size_t(4));
    const QPointF way = PixelOf(2) - PixelOf(0);
    const QPointF off = PixelOf(1) - PixelOf(0);
    const double across = (way.x() * off.y() - way.y() * off.x()) / std::hypot(way.x(), way.y());
    QVERIFY2(std::fabs(across) <= 2.0, qPrintable(QString::number(across)));
    QVERIFY((PixelOf(1) - before).manhattanLength() > 5);
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

void tst_SurveyPlan::everyButtonNamesItsKey()
{
    // "Ctrl+Shift+Z", "Ins", "+": in brackets at the end.
    const QRegularExpression key(QStringLiteral(R"( \([^ ()]+\)$)"));
    int count = 0;
    for (const ZrBtn* button : m_page->findChildren<ZrBtn*>(QString(), Qt::FindDirectChildrenOnly)) {
        if (button->objectName().startsWith(QLatin1String("band_")))
            continue; // of all pages
        ++count;
        QVERIFY2(button->toolTip().contains(key), qPrintable(button->toolTip()));
    }
    QVERIFY(count > 20);
}

void tst_SurveyPlan::keysOfButtons()
{
    const auto key = [this](int which) { QTest::keyClick(m_view.get(), static_cast<Qt::Key>(which)); };
    const QVector<QPair<int, const char*>> tabs{
        {Qt::Key_2, "tab_target"}, {Qt::Key_3, "tab_warning"}, {Qt::Key_1, "tab_list"}};
    for (const auto& tab : tabs) {
        key(tab.first);
        for (const auto& other : tabs)
            QCOMPARE(Button(other.second)->on, other.second == tab.second);
    }
    key(Qt::Key_M);
    QVERIFY(VisibleList());
    for (ZrChoicePanel* panel : m_view->findChildren<ZrChoicePanel*>())
        panel->Cancel();
    // Without an area there are no corners, and it is none to keep clear of.
    key(Qt::Key_C);
    key(Qt::Key_G);
    QCOMPARE(m_page->Mode(), PlanPage::modeBrowse);
    DrawArea();
    Tap({450, 350});
    key(Qt::Key_C);
    QCOMPARE(m_page->Mode(), PlanPage::modeArea);
    key(Qt::Key_G);
    QVERIFY(Button("keep_clear")->on);
    QVERIFY(Plan().Sketch().isNoGo);
    key(Qt::Key_G);
    QVERIFY(!Plan().Sketch().isNoGo);
    key(Qt::Key_G);
    key(Qt::Key_Escape);
    QVERIFY(Plan().Areas().empty());
    QCOMPARE(Plan().NoGo().size(), std::size_t(1));
    // While lines are planned there are no tabs.
    Plan().SetAreas(Plan().NoGo());
    key(Qt::Key_P);
    QCOMPARE(m_page->Mode(), PlanPage::modePattern);
    key(Qt::Key_3);
    key(Qt::Key_Escape);
    QVERIFY(Button("tab_list")->on);
}

GL_TEST_MAIN(tst_SurveyPlan)
#include "tst_SurveyPlan.moc"
