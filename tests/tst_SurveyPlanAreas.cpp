// Areas, patterns, checks and the camera on the page "Plan".

#include "SurveyPlanWindow.h"
#include "ZrUtil/ZrFormMgr.h"

class tst_SurveyPlanAreas : public SurveyPlanWindow
{
    Q_OBJECT

private Q_SLOTS:
    void areaByTaps();
    void keysAreNotForThePageBehindTheSettings();
    void keepClearIsChecked();
    void patternPreviewAndApply();
    void previewFollowsThePlan();
    void previewIsGone_data();
    void previewIsGone();
    void areaThatIsGone();
    void patternProblemIsSaid();
    void corridor();
    void findingShowsThePlace();
    void planNotBegun();
    void marginOfNoGo();
    void cameraStays();
    void cameraOfAnotherPlan();
    void idleDrawsNothing();
};

void tst_SurveyPlanAreas::areaByTaps()
{
    Click("tool_area");
    QVERIFY(!Button("remove_last")->isEnabled());
    for (const QPoint& at : {QPoint(250, 200), QPoint(650, 200), QPoint(650, 500), QPoint(300, 450)})
        Tap(at);
    Click("remove_last");
    Tap({250, 500});
    Click("done");
    QCOMPARE(Plan().Areas().size(), std::size_t(1));
    QCOMPARE(Plan().Areas()[0].ring.size(), std::size_t(4));
    const QPointF corner = m_page->Map().m_camera.ToPixel(m_page->Chart().ToWorld(Plan().Areas()[0].ring[3]));
    QVERIFY((corner - QPointF(250, 500)).manhattanLength() < 2.0);
    QCOMPARE(Plan().Route().GetCount(), 0);
}

void tst_SurveyPlanAreas::keysAreNotForThePageBehindTheSettings()
{
    QTRY_VERIFY(m_view->IsComplete());
    QApplication::setActiveWindow(m_view.get());
    m_view->ToggleSettings();
    QVERIFY(m_view->forms().isVisible());
    QTRY_VERIFY(m_view->forms().hasFocus());
    QTest::keyClick(&m_view->forms(), Qt::Key_A);
    QCOMPARE(m_page->Mode(), PlanPage::modeBrowse);
    m_view->ToggleSettings();
    QVERIFY(!m_view->forms().isVisible());
    QTest::keyClick(m_view.get(), Qt::Key_A);
    QCOMPARE(m_page->Mode(), PlanPage::modeAdd);
}

void tst_SurveyPlanAreas::keepClearIsChecked()
{
    AddRoute();
    Click("tool_area");
    for (const QPoint& at : {QPoint(300, 200), QPoint(650, 200), QPoint(650, 400), QPoint(300, 400)})
        Tap(at);
    Click("keep_clear");
    Click("done");
    QVERIFY(Plan().Areas().empty());
    QCOMPARE(Plan().NoGo().size(), std::size_t(1));
    const auto tiles = m_page->findChildren<ZrValueTile*>();
    QTRY_COMPARE(static_cast<int>(tiles[4]->State()), static_cast<int>(ZrValueTile::error));
}

void tst_SurveyPlanAreas::patternPreviewAndApply()
{
    DrawArea();
    AddRoute();
    Click("tool_pattern");
    QCOMPARE(m_page->Mode(), PlanPage::modePattern);
    auto* panel = m_page->findChild<PlanPatternPanel*>();
    QVERIFY(panel->isVisible());
    QTRY_VERIFY(panel->IsCurrent());
    const std::size_t wide = panel->Plan().lines.size();
    QVERIFY(wide > 0);
    const auto tiles = m_page->findChildren<ZrValueTile*>();
    for (const ZrValueTile* tile : tiles)
        QCOMPARE(tile->Note(), QStringLiteral("Preview"));
    QCOMPARE(tiles[2]->Value(), QString::number(wide));
    // Nothing is part of the plan yet.
    QCOMPARE(Plan().Route().GetCount(), 3);
    auto* spacing = panel->findChild<ZrInput*>();
    spacing->setFocus();
    spacing->selectAll();
    QTest::keyClicks(spacing, QStringLiteral("25"));
    QTest::keyClick(spacing, Qt::Key_Return);
    QCOMPARE(m_page->Mode(), PlanPage::modePattern);
    QTRY_VERIFY(panel->Plan().lines.size() > wide);
    const int lines = static_cast<int>(panel->Plan().lines.size());
    // What is told now is told when they are part of the plan.
    const auto told = [&tiles] {
        QStringList all;
        for (const ZrValueTile* tile : tiles)
            all << tile->Value() + QLatin1Char(' ') + tile->Unit();
        return all;
    };
    const QStringList before = told();
    QCOMPARE(tiles[3]->Value().toInt(), 3 + static_cast<int>(panel->Plan().waypoints.size()));
    panel->Apply();
    QCOMPARE(m_page->Mode(), PlanPage::modeBrowse);
    QVERIFY(Plan().Route().GetCount() >= 3 + 2 * lines);
    QCOMPARE(Plan().LineCount(), lines);
    QCOMPARE(tiles[2]->Value(), QString::number(lines));
    QTRY_VERIFY(tiles[4]->State() != ZrValueTile::stale);
    QCOMPARE(told(), before);
    for (const ZrValueTile* tile : tiles)
        QCOMPARE(tile->Note(), QString());
    ClickToast();
    QCOMPARE(Plan().Route().GetCount(), 3);
    QVERIFY(Plan().History().CanRedo());
}

/// Also where it is edited while lines are planned.
void tst_SurveyPlanAreas::previewFollowsThePlan()
{
    DrawArea();
    AddRoute();
    Plan().History().Delete(Wpt(2));
    Plan().Edited();
    QTRY_COMPARE(m_page->Chart().Points().size(), std::size_t(2));
    Tap(PixelOf(0));
    Click("tool_pattern");
    auto* panel = m_page->findChild<PlanPatternPanel*>();
    QTRY_VERIFY(panel->IsCurrent());
    const auto tiles = m_page->findChildren<ZrValueTile*>();
    const int lines = static_cast<int>(panel->Plan().waypoints.size());
    QCOMPARE(tiles[3]->Value().toInt(), 2 + lines);
    QTest::keyClick(m_view.get(), Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(m_page->Mode(), PlanPage::modePattern);
    QTRY_COMPARE(tiles[3]->Value().toInt(), 3 + lines);
    QTRY_VERIFY(panel->IsCurrent());
    const QString length = tiles[0]->Value();
    panel->Apply();
    QCOMPARE(tiles[0]->Value(), length);
    QCOMPARE(Plan().Route().GetHead()->name, QStringLiteral("A")); // behind the selected one
    QVERIFY(Wpt(1)->name.endsWith(QLatin1String(" S")));
}

void tst_SurveyPlanAreas::previewIsGone_data()
{
    QTest::addColumn<bool>("isProblem");
    QTest::newRow("cancelled") << false;
    QTest::newRow("without lines") << true;
}

/// What is told then is the plan.
void tst_SurveyPlanAreas::previewIsGone()
{
    QFETCH(bool, isProblem);
    DrawArea();
    AddRoute();
    const auto tiles = m_page->findChildren<ZrValueTile*>();
    QTRY_COMPARE(tiles[3]->Value(), QStringLiteral("3"));
    const QString length = tiles[0]->Value();
    Click("tool_pattern");
    auto* panel = m_page->findChild<PlanPatternPanel*>();
    QTRY_VERIFY(panel->IsCurrent());
    QVERIFY(tiles[3]->Value().toInt() > 3);
    QCOMPARE(static_cast<int>(tiles[3]->State()), static_cast<int>(ZrValueTile::preview));
    if (isProblem) {
        panel->SetArea(ZrArea());
        QTRY_VERIFY(!panel->Problem().isEmpty());
    } else {
        QTest::keyClick(m_view.get(), Qt::Key_Escape);
    }
    QTRY_COMPARE(tiles[3]->Value(), QStringLiteral("3"));
    QCOMPARE(tiles[0]->Value(), length);
    QCOMPARE(tiles[2]->Value(), QStringLiteral("0"));
    QCOMPARE(tiles[0]->Note(), QString());
    QCOMPARE(static_cast<int>(tiles[3]->State()), static_cast<int>(ZrValueTile::normal));
}

/// The area that was tapped, not the one that took its place.
void tst_SurveyPlanAreas::areaThatIsGone()
{
    DrawArea();
    QCOMPARE(Plan().Areas().size(), std::size_t(1));
    ZrArea small = Plan().Areas()[0];
    small.name = QStringLiteral("Small");
    small.ring.pop_back();
    Plan().SetAreas({small, Plan().Areas()[0]});
    Tap({300, 400}); // in the large one alone
    QVERIFY(Button("delete_area")->isVisible());
    Plan().SetAreas({Plan().Areas()[1], Plan().Areas()[0]});
    QTest::qWait(50);
    QVERIFY(Button("delete_area")->isVisible());
    Plan().SetAreas({small});
    QTRY_VERIFY(!Button("delete_area")->isVisible());
    QTest::keyClick(m_view.get(), Qt::Key_Delete);
    QCOMPARE(Plan().Areas().size(), std::size_t(1));
    QTest::keyClick(m_view.get(), Qt::Key_Z, Qt::ControlModifier);
    Tap({300, 400});
    QTest::keyClick(m_view.get(), Qt::Key_Z, Qt::ControlModifier); // the order
    QTest::keyClick(m_view.get(), Qt::Key_Delete);
    QCOMPARE(Plan().Areas().size(), std::size_t(1));
    QCOMPARE(Plan().Areas()[0].name, QStringLiteral("Small"));
}

void tst_SurveyPlanAreas::patternProblemIsSaid()
{
    // A ring that crosses itself.
    const auto place = [this](double x, double y) {
        return m_page->Chart().ToGeo(m_page->Map().m_camera.ToWorld({x, y}));
    };
    ZrArea area;
    area.ring = {place(250, 200), place(650, 500), place(650, 200), place(250, 500)};
    Plan().SetAreas({area});
    Click("tool_pattern");
    auto* panel = m_page->findChild<PlanPatternPanel*>();
    QTRY_VERIFY(!panel->Problem().isEmpty());
    QVERIFY(!Button("apply")->isEnabled());
    QTest::keyClick(m_view.get(), Qt::Key_Return);
    QCOMPARE(m_page->Mode(), PlanPage::modePattern);
    QCOMPARE(Plan().Route().GetCount(), 0);
    QTest::keyClick(m_view.get(), Qt::Key_Escape);
    QCOMPARE(m_page->Mode(), PlanPage::modeBrowse);
}

void tst_SurveyPlanAreas::corridor()
{
    AddRoute();
    Click("more");
    auto* panel = m_page->findChild<PlanPatternPanel*>();
    for (ZrTouchList* list : m_view->findChildren<ZrTouchList*>()) {
        if (list->isVisible() && list->Items().size() > 4
            && list->Items()[4].title.contains(QLatin1String("corridor")))
            Q_EMIT list->Chosen(4);
    }
    QCOMPARE(m_page->Mode(), PlanPage::modePattern);
    // Two on either side and the guide itself.
    QTRY_COMPARE(panel->Plan().lines.size(), std::size_t(5));
}

/// There is nothing wrong with a plan that has not been begun.
void tst_SurveyPlanAreas::planNotBegun()
{
    const auto tiles = m_page->findChildren<ZrValueTile*>();
    for (const int tile : {0, 1, 4}) {
        QCOMPARE(tiles[tile]->Value(), QString());
        QCOMPARE(tiles[tile]->Number(), QStringLiteral("–"));
        QCOMPARE(static_cast<int>(tiles[tile]->State()), static_cast<int>(ZrValueTile::normal));
    }
    QCOMPARE(Button("tab_warning")->badge, 0);
    Click("tab_warning");
    ZrTouchList* checks = m_page->findChildren<ZrTouchList*>(QString(), Qt::FindDirectChildrenOnly).last();
    QVERIFY(checks->isVisible() && checks->Count() == 0);
    QCOMPARE(checks->m_empty, QStringLiteral("Add a waypoint or draw an area"));
    // Two waypoints are a way.
    AddRoute();
    QTRY_COMPARE(tiles[3]->Value(), QStringLiteral("3"));
    QVERIFY(!tiles[0]->Value().isEmpty());
    QVERIFY(!tiles[1]->Value().isEmpty());
    QTRY_VERIFY(!tiles[4]->Value().isEmpty());
    QCOMPARE(checks->m_empty, QStringLiteral("No findings"));
}

void tst_SurveyPlanAreas::marginOfNoGo()
{
    AddRoute();
    Click("tab_warning");
    auto* margin = m_page->findChild<ZrInput*>(QStringLiteral("margin"));
    QVERIFY(margin && margin->isVisible());
    QCOMPARE(margin->UnitText(), ZrUnits::GetShortLengthUnits());
    const auto type = [margin](const QString& text) {
        margin->setFocus();
        margin->selectAll();
        QTest::keyClick(margin, Qt::Key_Delete);
        QTest::keyClicks(margin, text);
        QTest::keyClick(margin, Qt::Key_Return);
    };
    type(QStringLiteral("25"));
    QTRY_COMPARE(Plan().Margin(), 25.0);
    QVERIFY(Plan().IsDirty());
    type(QStringLiteral("-3")); // out of its range
    QTRY_VERIFY2(Toast().contains(QStringLiteral("Distance to no-go areas")), qPrintable(Toast()));
    QCOMPARE(Plan().Margin(), 25.0);
    // In other units it is the same.
    ZrUnits::SetToImperial();
    m_view->Page()->OnColours();
    margin->clearFocus();
    QTRY_COMPARE(margin->UnitText(), ZrUnits::GetShortLengthUnits());
    type(QStringLiteral("100"));
    QTRY_VERIFY(std::fabs(Plan().Margin() - 30.48) < 0.01);
    // It is looked at: an area beside the way, nearer than the margin.
    const ZrWpt* a = Wpt(0);
    const ZrWpt* b = Wpt(1);
    const double lat = (a->lat + b->lat) / 2.0;
    const double lng = (a->lng + b->lng) / 2.0;
    const double near = 10.0 / 111000.0;
    Plan().SetNoGo({{QStringLiteral("Rock"),
        {{lat + 2.5 * near, lng - 2.5 * near}, {lat + 3.0 * near, lng - 2.5 * near},
            {lat + 3.0 * near, lng - 3.0 * near}}}});
    const auto tiles = m_page->findChildren<ZrValueTile*>();
    const auto count
        = [&] { return tiles[4]->State() == ZrValueTile::stale ? -1 : tiles[4]->Value().toInt(); };
    Plan().SetMargin(0.0);
    QTRY_VERIFY(count() >= 0);
    const int without = count();
    Plan().SetMargin(200.0);
    QTRY_VERIFY(count() > without);
    // A restart brings it back with the draft.
    m_view.reset();
    Open();
    QTRY_COMPARE(Plan().Margin(), 200.0);
}

/// Where the map was left it is when the page, or the program, comes again.
void tst_SurveyPlanAreas::cameraStays()
{
    AddRoute();
    ZrMapView& camera = m_page->Map().m_camera;
    Click("tool_zoom_in");
    Click("tool_zoom_in");
    QTest::keyClick(m_panel, Qt::Key_Right);
    QTest::keyClick(m_panel, Qt::Key_Down);
    const double scale = camera.Scale();
    const QPointF centre = camera.Centre();
    const ZrGeoPoint place = m_page->Chart().ToGeo(centre);
    m_view->Show(QStringLiteral("Home"));
    m_view->Show(QStringLiteral("Plan"));
    QTest::qWait(50);
    QCOMPARE(camera.Scale(), scale);
    QCOMPARE(camera.Centre(), centre);
    m_view->close();
    m_view.reset();
    Open();
    QTRY_COMPARE(Names().size(), 3);
    QTRY_COMPARE(m_page->Chart().Points().size(), std::size_t(3));
    const ZrMapView& again = m_page->Map().m_camera;
    QVERIFY(std::fabs(again.Scale() / scale - 1.0) < 1e-6);
    const ZrGeoPoint now = m_page->Chart().ToGeo(again.Centre());
    QVERIFY2(std::fabs(now.lat - place.lat) < 1e-6 && std::fabs(now.lng - place.lng) < 1e-6,
        qPrintable(
            QStringLiteral("%1 %2, not %3 %4").arg(now.lat).arg(now.lng).arg(place.lat).arg(place.lng)));
    // Without any plan as well.
    m_page->findChild<PlanFiles*>()->New();
    QTest::qWait(50);
    m_view->close();
    m_view.reset();
    Open();
    QCOMPARE(Plan().Route().GetCount(), 0);
    const ZrGeoPoint empty = m_page->Chart().ToGeo(m_page->Map().m_camera.Centre());
    QVERIFY(std::fabs(empty.lat - place.lat) < 1e-4 && std::fabs(empty.lng - place.lng) < 1e-4);
}

/// A plan that is opened is shown whole.
void tst_SurveyPlanAreas::cameraOfAnotherPlan()
{
    AddRoute();
    const QString path = m_dir->filePath(QStringLiteral("there.json"));
    QVERIFY(Plan().Save(path));
    m_page->Map().m_camera.Pan({100000.0, 0.0});
    Click("tool_zoom_in"); // which tells of the place
    m_view->close();
    m_view.reset();
    Open();
    m_view->OpenPlan(path);
    QTRY_COMPARE(m_page->Chart().Points().size(), std::size_t(3));
    for (int i = 0; i < 3; ++i)
        QTRY_VERIFY(m_panel->rect().contains(PixelOf(i)));
}

void tst_SurveyPlanAreas::findingShowsThePlace()
{
    AddRoute();
    ZrWpt* wpt = Wpt(1);
    Plan().History().Change(wpt, QStringLiteral("turn radius"), [](ZrWpt& w) { w.r = 9000.0; });
    Plan().Edited();
    const auto tiles = m_page->findChildren<ZrValueTile*>();
    QTRY_COMPARE(static_cast<int>(tiles[4]->State()), static_cast<int>(ZrValueTile::error));
    m_page->Map().m_camera.Pan({3000.0, 0.0});
    Click("tab_warning");
    ZrTouchList* checks = nullptr;
    for (ZrTouchList* list : m_page->findChildren<ZrTouchList*>(QString(), Qt::FindDirectChildrenOnly))
        checks = list;
    QVERIFY(checks && checks->isVisible() && checks->Count() > 0);
    int row = 0;
    while (row < checks->Count() && checks->Item(row).title != QLatin1String("Turn longer than its leg"))
        ++row;
    QVERIFY(row < checks->Count());
    checks->scrollTo(checks->model()->index(row, 0));
    const QPoint at = checks->visualRect(checks->model()->index(row, 0)).center();
    QVERIFY(!m_panel->rect().contains(PixelOf(1)));
    QTest::mouseClick(checks->viewport(), Qt::LeftButton, Qt::NoModifier, at);
    QTRY_VERIFY(m_panel->rect().contains(PixelOf(1)));
}

void tst_SurveyPlanAreas::idleDrawsNothing()
{
    DrawArea();
    AddRoute();
    QTest::qWait(6500); // a message goes by itself
    QSignalSpy frames(m_view.get(), &SurveyView::FramePainted);
    QTest::qWait(1000);
    QCOMPARE(frames.count(), 0);
    m_page->Fit();
    QTRY_VERIFY(frames.count() > 0);
}

GL_TEST_MAIN(tst_SurveyPlanAreas)
#include "tst_SurveyPlanAreas.moc"
