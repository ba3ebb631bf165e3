// Areas being drawn on the page "Plan", and what takes edits back.

#include "SurveyPlanWindow.h"

class tst_SurveyPlanDrawing : public SurveyPlanWindow
{
    Q_OBJECT

private Q_SLOTS:
    void drawingIsNotForAnotherPlan();
    void undoTakesTheLastCorner();
    void cornerIsDragged();
    void noGoIsEditedBesideTheList_data();
    void noGoIsEditedBesideTheList();
    void linesOverWhatWasNoGo();
    void twoCornersAreNoArea();
    void areaDeleted();
    void ringIsInTheDraft();
    void movedCornersAreInTheDraft();
    void newPlanKeepsTheRing();
    void savedWithTheRing();
    void cornersUndoneAndRedone();
    void droppedRingComesBack();
    void oneHistory_data();
    void oneHistory();
    void marginUndoneFromItsField();
    void undoOfDeletionIsForItsPlan();
    void undoWhileCornersAreMoved();
    void areasReadAreUndone();
};

void tst_SurveyPlanDrawing::drawingIsNotForAnotherPlan()
{
    Click("tool_area");
    for (const QPoint& at : {QPoint(250, 200), QPoint(650, 200), QPoint(650, 500)})
        Tap(at);
    QTest::keyClick(m_view.get(), Qt::Key_N, Qt::ControlModifier);
    QCOMPARE(m_page->Mode(), PlanPage::modeBrowse);
    QVERIFY(Plan().Areas().empty());
    QVERIFY(Plan().NoGo().empty());
}

void tst_SurveyPlanDrawing::undoTakesTheLastCorner()
{
    AddRoute();
    const int count = Plan().Route().GetCount();
    Click("tool_area");
    for (const QPoint& at : {QPoint(250, 200), QPoint(650, 200), QPoint(650, 500), QPoint(300, 450)})
        Tap(at);
    QTest::keyClick(m_view.get(), Qt::Key_Z, Qt::ControlModifier);
    Click("done");
    QCOMPARE(Plan().Areas().size(), std::size_t(1));
    QCOMPARE(Plan().Areas()[0].ring.size(), std::size_t(3));
    QCOMPARE(Plan().Route().GetCount(), count);
}

void tst_SurveyPlanDrawing::cornerIsDragged()
{
    DrawArea();
    Tap({450, 350});
    Click("corners");
    QCOMPARE(m_page->Mode(), PlanPage::modeArea);
    MouseDrag({650, 500}, {680, 540});
    Click("done");
    QCOMPARE(Plan().Areas().size(), std::size_t(1));
    QCOMPARE(Plan().Areas()[0].ring.size(), std::size_t(4));
    const QPointF corner = m_page->Map().m_camera.ToPixel(m_page->Chart().ToWorld(Plan().Areas()[0].ring[2]));
    QVERIFY((corner - QPointF(680, 540)).manhattanLength() < 3.0);
}

void tst_SurveyPlanDrawing::noGoIsEditedBesideTheList_data()
{
    QTest::addColumn<bool>("isFinding");
    QTest::newRow("waypoint") << false;
    QTest::newRow("finding") << true;
}

/// What is chosen in a list meanwhile is no other area: the one that is edited changes, and no other.
void tst_SurveyPlanDrawing::noGoIsEditedBesideTheList()
{
    QFETCH(bool, isFinding);
    AddRoute();
    if (isFinding) {
        Plan().History().Change(Wpt(1), QStringLiteral("turn radius"), [](ZrWpt& wpt) { wpt.r = 9000.0; });
        Plan().Edited();
    }
    const auto place = [this](double x, double y) {
        return m_page->Chart().ToGeo(m_page->Map().m_camera.ToWorld({x, y}));
    };
    ZrArea area;
    area.name = QStringLiteral("A");
    area.ring = {place(250, 120), place(350, 120), place(350, 200), place(250, 200)};
    Plan().SetAreas({area});
    ZrArea noGo;
    noGo.name = QStringLiteral("N");
    noGo.ring = {place(550, 480), place(650, 480), place(650, 560), place(550, 560)};
    Plan().SetNoGo({noGo});
    QTest::qWait(50);
    Tap({600, 520});
    Click("corners");
    QCOMPARE(m_page->Mode(), PlanPage::modeArea);
    QVERIFY(Button("keep_clear")->on);
    ZrTouchList* list = m_page->findChild<PlanListPanel*>()->findChild<ZrTouchList*>();
    if (isFinding) {
        Click("tab_warning");
        list = m_page->findChildren<ZrTouchList*>(QString(), Qt::FindDirectChildrenOnly).last();
        QTRY_VERIFY(list->Count() > 0);
    }
    QVERIFY(list && list->isVisible());
    int row = 0;
    while (isFinding && row < list->Count()
        && list->Item(row).title != QLatin1String("Turn longer than its leg"))
        ++row;
    QVERIFY(row < list->Count());
    Q_EMIT list->Chosen(row);
    QCOMPARE(m_page->Mode(), PlanPage::modeArea);
    const QPoint corner = m_page->Map().m_camera.ToPixel(m_page->Chart().ToWorld(noGo.ring[2])).toPoint();
    MouseDrag(corner, corner + QPoint(20, 10));
    QCOMPARE(Plan().Sketch().edited, 0);
    QVERIFY(Plan().Sketch().isEditedNoGo);
    Click("done");
    QCOMPARE(Plan().Areas().size(), std::size_t(1));
    QCOMPARE(Plan().Areas()[0].name, QStringLiteral("A"));
    QVERIFY(Plan().Areas()[0].ring == area.ring);
    QCOMPARE(Plan().NoGo().size(), std::size_t(1));
    QCOMPARE(Plan().NoGo()[0].name, QStringLiteral("N"));
    QCOMPARE(Plan().NoGo()[0].ring.size(), std::size_t(4));
    QVERIFY(Plan().NoGo()[0].ring != noGo.ring);
}

/// What was a no-go area is none any more, and gets the lines as the last of the areas.
void tst_SurveyPlanDrawing::linesOverWhatWasNoGo()
{
    const auto place = [this](double x, double y) {
        return m_page->Chart().ToGeo(m_page->Map().m_camera.ToWorld({x, y}));
    };
    const auto square = [&](const char* name, double x, double y) {
        ZrArea area;
        area.name = QString::fromLatin1(name);
        area.ring = {place(x, y), place(x + 100, y), place(x + 100, y + 80), place(x, y + 80)};
        return area;
    };
    AddRoute();
    Plan().SetAreas({square("A", 250, 120)});
    Plan().SetNoGo({square("N", 550, 480)});
    const double between = place(450, 300).lng;
    QTest::qWait(50);
    Tap({600, 520});
    Click("corners");
    Q_EMIT m_page->findChild<PlanListPanel*>()->Chosen(0);
    Click("keep_clear");
    Click("tool_pattern");
    QCOMPARE(m_page->Mode(), PlanPage::modePattern);
    QVERIFY(Plan().NoGo().empty());
    QCOMPARE(Plan().Areas().size(), std::size_t(2));
    QCOMPARE(Plan().Areas()[1].name, QStringLiteral("N"));
    auto* panel = m_page->findChild<PlanPatternPanel*>();
    QTRY_VERIFY(panel->IsCurrent() && !panel->Waypoints().empty());
    QVERIFY(panel->Waypoints().front().lng > between);
}

void tst_SurveyPlanDrawing::twoCornersAreNoArea()
{
    Click("tool_area");
    Tap({250, 200});
    Tap({650, 200});
    Click("done");
    QVERIFY(Plan().Areas().empty());
    QVERIFY(Toast().contains(QLatin1String("three corners")));
}

void tst_SurveyPlanDrawing::areaDeleted()
{
    DrawArea();
    Tap({450, 350});
    Click("delete_area");
    QVERIFY(Plan().Areas().empty());
    ClickToast();
    QCOMPARE(Plan().Areas().size(), std::size_t(1));
}

/// The draft has the corners of a ring that is not closed, also when the program is killed.
void tst_SurveyPlanDrawing::ringIsInTheDraft()
{
    Click("tool_area");
    for (const QPoint& at : {QPoint(250, 200), QPoint(650, 200)})
        Tap(at);
    Click("keep_clear");
    const std::vector<ZrGeoPoint> ring = Plan().Sketch().ring;
    QCOMPARE(ring.size(), std::size_t(2));
    const auto inDraft = [this] {
        Killed();
        ZrPlanDocument draft(m_killed->filePath(QStringLiteral("plan-draft.json")));
        return draft.RestoreDraft() ? draft.Sketch() : ZrPlanSketch();
    };
    QTRY_VERIFY(inDraft() == Plan().Sketch());
    m_view.reset();
    m_dir.swap(m_killed);
    Open();
    QCOMPARE(m_page->Mode(), PlanPage::modeArea);
    QVERIFY(Button("keep_clear")->on);
    QVERIFY(Toast().contains(QLatin1String("not saved")));
    // It goes on where it was.
    Tap({650, 500});
    Click("done");
    QCOMPARE(Plan().NoGo().size(), std::size_t(1));
    QCOMPARE(Plan().NoGo()[0].ring.size(), std::size_t(3));
    for (std::size_t i = 0; i < 2; ++i)
        QVERIFY(Plan().NoGo()[0].ring[i] == ring[i]);
    QVERIFY(Plan().Sketch().IsEmpty());
}

/// Likewise corners of an area that are being moved.
void tst_SurveyPlanDrawing::movedCornersAreInTheDraft()
{
    DrawArea();
    QCOMPARE(Plan().Areas().size(), std::size_t(1));
    const std::vector<ZrGeoPoint> before = Plan().Areas()[0].ring;
    Tap({450, 350});
    Click("corners");
    MouseDrag({650, 500}, {680, 540});
    QCOMPARE(Plan().Areas().size(), std::size_t(1));
    QVERIFY(Plan().Areas()[0].ring == before);
    Plan().FlushDraft();
    Killed();
    m_view.reset();
    m_dir.swap(m_killed);
    Open();
    QCOMPARE(m_page->Mode(), PlanPage::modeArea);
    Click("done");
    QCOMPARE(Plan().Areas().size(), std::size_t(1));
    QCOMPARE(Plan().Areas()[0].ring.size(), before.size());
    QVERIFY(Plan().Areas()[0].ring != before);
    Click("undo");
    QCOMPARE(Plan().Areas().size(), std::size_t(1));
    QVERIFY(Plan().Areas()[0].ring == before);
}

void tst_SurveyPlanDrawing::newPlanKeepsTheRing()
{
    Click("tool_area");
    for (const QPoint& at : {QPoint(250, 200), QPoint(650, 200), QPoint(650, 500)})
        Tap(at);
    QTest::keyClick(m_view.get(), Qt::Key_N, Qt::ControlModifier);
    QCOMPARE(m_page->Mode(), PlanPage::modeBrowse);
    QVERIFY(Plan().Sketch().IsEmpty());
    ClickToast();
    QCOMPARE(m_page->Mode(), PlanPage::modeArea);
    Click("done");
    QCOMPARE(Plan().Areas().size(), std::size_t(1));
}

void tst_SurveyPlanDrawing::savedWithTheRing()
{
    Click("tool_area");
    for (const QPoint& at : {QPoint(250, 200), QPoint(650, 200), QPoint(650, 500)})
        Tap(at);
    AddRoute();
    QTest::keyClick(m_view.get(), Qt::Key_S, Qt::ControlModifier);
    auto& files = m_page->findChild<PlanFiles*>()->Panel();
    Q_EMIT files.FileChosen(m_dir->filePath(QStringLiteral("a.json")));
    files.Cancel();
    QTRY_VERIFY(!Plan().IsDirty());
    QCOMPARE(Plan().Areas().size(), std::size_t(1));
    // Two corners are none yet, and not saved.
    Click("tool_area");
    Tap({250, 200});
    QTest::keyClick(m_view.get(), Qt::Key_S, Qt::ControlModifier);
    QTRY_VERIFY2(Toast().contains(QLatin1String("being drawn")), qPrintable(Toast()));
    QVERIFY(Plan().IsDirty());
    QCOMPARE(m_page->Mode(), PlanPage::modeArea);
}

void tst_SurveyPlanDrawing::cornersUndoneAndRedone()
{
    Click("tool_area");
    for (const QPoint& at : {QPoint(250, 200), QPoint(650, 200), QPoint(650, 500)})
        Tap(at);
    const std::vector<ZrGeoPoint> ring = Plan().Sketch().ring;
    MouseDrag({650, 500}, {680, 540});
    const std::vector<ZrGeoPoint> moved = Plan().Sketch().ring;
    QVERIFY(moved != ring);
    QTest::keyClick(m_view.get(), Qt::Key_Z, Qt::ControlModifier);
    QVERIFY(Plan().Sketch().ring == ring); // one step
    Click("remove_last");
    QCOMPARE(Plan().Sketch().ring.size(), std::size_t(2));
    Click("undo");
    QVERIFY(Plan().Sketch().ring == ring);
    QTest::keyClick(m_view.get(), Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(Plan().Sketch().ring.size(), std::size_t(2));
    Click("undo");
    Click("undo");
    Click("undo");
    Click("undo");
    QVERIFY(Plan().Sketch().IsEmpty());
    QVERIFY(!Button("undo")->isEnabled());
    Click("redo");
    QCOMPARE(Plan().Sketch().ring.size(), std::size_t(1));
    QCOMPARE(m_page->Mode(), PlanPage::modeArea);
}

void tst_SurveyPlanDrawing::droppedRingComesBack()
{
    Click("tool_area");
    Tap({250, 200});
    Tap({650, 200});
    Click("done");
    QCOMPARE(m_page->Mode(), PlanPage::modeBrowse);
    ClickToast();
    QCOMPARE(m_page->Mode(), PlanPage::modeArea);
    QCOMPARE(Plan().Sketch().ring.size(), std::size_t(2));
}

/// Waypoints, areas, areas to keep clear of and the margin, by the buttons and by the keys.
void tst_SurveyPlanDrawing::oneHistory_data()
{
    QTest::addColumn<bool>("byKey");
    QTest::newRow("buttons") << false;
    QTest::newRow("keys") << true;
}

void tst_SurveyPlanDrawing::oneHistory()
{
    QFETCH(bool, byKey);
    const auto undo = [&] {
        if (byKey)
            QTest::keyClick(m_view.get(), Qt::Key_Z, Qt::ControlModifier);
        else
            Click("undo");
    };
    const auto redo = [&] {
        if (byKey)
            QTest::keyClick(m_view.get(), Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
        else
            Click("redo");
    };
    AddRoute();
    DrawArea();
    QCOMPARE(Plan().Areas().size(), std::size_t(1));
    QTest::keyClick(m_view.get(), Qt::Key_R, Qt::ControlModifier);
    QCOMPARE(Plan().Areas().size(), std::size_t(1));
    Plan().SetNoGo({{QStringLiteral("Rock"), Plan().Areas()[0].ring}});
    Plan().SetMargin(12.0);
    undo();
    QCOMPARE(Plan().Margin(), 0.0);
    undo();
    QVERIFY(Plan().NoGo().empty());
    QCOMPARE(Names().front(), QStringLiteral("C"));
    undo();
    QCOMPARE(Names().front(), QStringLiteral("A"));
    QCOMPARE(Plan().Areas().size(), std::size_t(1));
    undo();
    QVERIFY(Plan().Areas().empty());
    QVERIFY(!Button("undo")->isEnabled());
    for (int i = 0; i < 4; ++i)
        redo();
    QVERIFY(!Button("redo")->isEnabled());
    QCOMPARE(Plan().Areas().size(), std::size_t(1));
    QCOMPARE(Names().front(), QStringLiteral("C"));
    QCOMPARE(Plan().NoGo().size(), std::size_t(1));
    QCOMPARE(Plan().Margin(), 12.0);
}

/// The keys are those of the field while something is typed, and those of the plan when it was taken.
void tst_SurveyPlanDrawing::marginUndoneFromItsField()
{
    AddRoute();
    Click("tab_warning");
    QApplication::setActiveWindow(m_view.get());
    auto* margin = m_page->findChild<ZrInput*>(QStringLiteral("margin"));
    const auto type = [margin](const QString& text) {
        margin->setFocus();
        margin->selectAll();
        QTest::keyClicks(margin, text);
    };
    type(QStringLiteral("25"));
    QTest::keyClick(margin, Qt::Key_Return);
    QTRY_COMPARE(Plan().Margin(), 25.0);
    type(QStringLiteral("7"));
    QTest::keyClick(margin, Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(Plan().Margin(), 25.0);
    QTest::keyClick(margin, Qt::Key_Return);
    type(QStringLiteral("30"));
    QTest::keyClick(margin, Qt::Key_Return);
    QTRY_COMPARE(Plan().Margin(), 30.0);
    QVERIFY(margin->hasFocus());
    QTest::keyClick(margin, Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(Plan().Margin(), 25.0);
    QTRY_COMPARE(margin->value, 25.0);
    QTest::keyClick(margin, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(Plan().Margin(), 30.0);
    QTRY_COMPARE(margin->value, 30.0);
}

/// The message belongs to the plan of which it tells.
void tst_SurveyPlanDrawing::undoOfDeletionIsForItsPlan()
{
    DrawArea();
    const QString path = m_dir->filePath(QStringLiteral("other.json"));
    {
        ZrPlanDocument other((QString()));
        other.History().Add(50.0, -4.0, eZrWptBlue, ZrWpts::eAddTail);
        QVERIFY(other.Save(path));
    }
    Tap({450, 350});
    Click("delete_area");
    QVERIFY(Plan().Areas().empty());
    QVERIFY(Plan().Open(path)); // without a message of its own
    ClickToast();
    QVERIFY(Plan().Areas().empty());
    QVERIFY(!Plan().IsDirty());
    QVERIFY2(Toast().contains(QLatin1String("edited since")), qPrintable(Toast()));
}

/// An undo while corners are moved: the area whose they are may be another one then.
void tst_SurveyPlanDrawing::undoWhileCornersAreMoved()
{
    DrawArea();
    QCOMPARE(Plan().Areas().size(), std::size_t(1));
    const std::vector<ZrGeoPoint> large = Plan().Areas()[0].ring;
    std::vector<ZrArea> areas = Plan().Areas();
    areas.insert(areas.begin(), {QStringLiteral("Small"), {large[0], large[1], large[2]}});
    Plan().SetAreas(areas);
    m_page->SetMode(PlanPage::modeBrowse);
    Tap({300, 400}); // in the large one alone
    Click("corners");
    QCOMPARE(Plan().Areas().size(), std::size_t(2));
    Click("undo"); // of the small one
    QCOMPARE(m_page->Mode(), PlanPage::modeBrowse);
    QCOMPARE(Plan().Areas().size(), std::size_t(1));
    QVERIFY(Plan().Areas()[0].ring == large);
}

void tst_SurveyPlanDrawing::areasReadAreUndone()
{
    DrawArea();
    const QString path = m_dir->filePath(QStringLiteral("areas.json"));
    QVERIFY(Plan().Save(path));
    QFile file(m_dir->filePath(QStringLiteral("areas.geojson")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(
        R"({"type": "Feature", "properties": {}, "geometry": {"type": "Polygon", "coordinates": [[[1, 2], [1, 3], [2, 3], [1, 2]]]}})");
    file.close();
    auto* files = m_page->findChild<PlanFiles*>();
    const auto read = [&] {
        files->ShowAreas();
        Q_EMIT files->Panel().FileChosen(file.fileName());
        files->Panel().Cancel();
    };
    read();
    QTRY_COMPARE(Plan().Areas().size(), std::size_t(2));
    ClickToast();
    QCOMPARE(Plan().Areas().size(), std::size_t(1));
    QVERIFY(!Plan().IsDirty());
    Click("redo");
    QCOMPARE(Plan().Areas().size(), std::size_t(2));
    read();
    QTRY_COMPARE(Plan().Areas().size(), std::size_t(3));
    QVERIFY(Plan().New());
    ClickToast();
    QVERIFY(Plan().Areas().empty());
    QCOMPARE(Plan().Kept()->List().size(), std::size_t(1));
}

GL_TEST_MAIN(tst_SurveyPlanDrawing)
#include "tst_SurveyPlanDrawing.moc"
