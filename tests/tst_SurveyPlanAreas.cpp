// Areas, patterns, files and checks on the page "Plan".

#include "SurveyPlanWindow.h"

class tst_SurveyPlanAreas : public SurveyPlanWindow
{
    Q_OBJECT

private Q_SLOTS:
    void areaByTaps();
    void cornerIsDragged();
    void twoCornersAreNoArea();
    void keepClearIsChecked();
    void areaDeleted();
    void patternPreviewAndApply();
    void patternProblemIsSaid();
    void corridor();
    void saveOpenExport_data();
    void saveOpenExport();
    void damagedFileIsRefused();
    void newCanBeUndone();
    void draftRestored();
    void findingShowsThePlace();
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

void tst_SurveyPlanAreas::cornerIsDragged()
{
    DrawArea();
    Tap({450, 350});
    Click("corners");
    QCOMPARE(m_page->Mode(), PlanPage::modeArea);
    QTest::mousePress(m_panel, Qt::LeftButton, Qt::NoModifier, {650, 500});
    QTest::mouseMove(m_panel, {680, 540});
    QTest::mouseRelease(m_panel, Qt::LeftButton, Qt::NoModifier, {680, 540});
    Click("done");
    QCOMPARE(Plan().Areas().size(), std::size_t(1));
    QCOMPARE(Plan().Areas()[0].ring.size(), std::size_t(4));
    const QPointF corner = m_page->Map().m_camera.ToPixel(m_page->Chart().ToWorld(Plan().Areas()[0].ring[2]));
    QVERIFY((corner - QPointF(680, 540)).manhattanLength() < 3.0);
}

void tst_SurveyPlanAreas::twoCornersAreNoArea()
{
    Click("tool_area");
    Tap({250, 200});
    Tap({650, 200});
    Click("done");
    QVERIFY(Plan().Areas().empty());
    QVERIFY(Toast().contains(QLatin1String("three corners")));
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

void tst_SurveyPlanAreas::areaDeleted()
{
    DrawArea();
    Tap({450, 350});
    Click("delete_area");
    QVERIFY(Plan().Areas().empty());
    ClickToast();
    QCOMPARE(Plan().Areas().size(), std::size_t(1));
}

void tst_SurveyPlanAreas::patternPreviewAndApply()
{
    DrawArea();
    AddRoute();
    Click("tool_pattern");
    QCOMPARE(m_page->Mode(), PlanPage::modePattern);
    auto* panel = m_page->findChild<PlanPatternPanel*>();
    QVERIFY(panel->isVisible());
    const std::size_t wide = panel->Plan().lines.size();
    QVERIFY(wide > 0);
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
    Q_EMIT panel->ApplyWanted();
    QCOMPARE(m_page->Mode(), PlanPage::modeBrowse);
    QVERIFY(Plan().Route().GetCount() >= 3 + 2 * lines);
    QCOMPARE(Plan().LineCount(), lines);
    const auto tiles = m_page->findChildren<ZrValueTile*>();
    QCOMPARE(tiles[2]->Value(), QString::number(lines));
    ClickToast();
    QCOMPARE(Plan().Route().GetCount(), 3);
    QVERIFY(Plan().History().CanRedo());
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
    QVERIFY(!panel->Problem().isEmpty());
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
    QCOMPARE(panel->Plan().lines.size(), std::size_t(5));
}

void tst_SurveyPlanAreas::saveOpenExport_data()
{
    QTest::addColumn<QString>("suffix");
    for (const char* suffix : {"json", "gpx", "kml", "geojson", "xml", "txt"})
        QTest::newRow(suffix) << QString::fromLatin1(suffix);
}

void tst_SurveyPlanAreas::saveOpenExport()
{
    QFETCH(QString, suffix);
    AddRoute();
    const QString path = m_dir->path() + QStringLiteral("/harbour.") + suffix;
    const double lat = Wpt(2)->lat;
    // Through the panel, as a person does.
    QTest::keyClick(m_view.get(), Qt::Key_S, Qt::ControlModifier);
    auto& files = m_page->findChild<PlanFiles*>()->Panel();
    QVERIFY(files.isVisible());
    Q_EMIT files.FileChosen(path);
    files.Cancel();
    QVERIFY(QFileInfo(path).size() > 0);
    QVERIFY(!Plan().IsDirty());
    QCOMPARE(m_view->last_path(), m_dir->path());
    QTest::keyClick(m_view.get(), Qt::Key_N, Qt::ControlModifier);
    QCOMPARE(Plan().Route().GetCount(), 0);
    QVERIFY(m_view->Open(path));
    QCOMPARE(Plan().Route().GetCount(), 3);
    QVERIFY(std::fabs(Wpt(2)->lat - lat) < 1e-7);
    QCOMPARE(Plan().Name(), QStringLiteral("harbour"));
    QVERIFY(!Plan().IsDirty());
    // The camera goes there.
    QTRY_VERIFY(m_panel->rect().contains(PixelOf(1)));
}

void tst_SurveyPlanAreas::damagedFileIsRefused()
{
    AddRoute();
    const QString path = m_dir->path() + QStringLiteral("/bad.gpx");
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("<gpx><wpt lat=\"95\" lon=\"0\"/></gpx>");
    file.close();
    QVERIFY(!m_view->Open(path));
    QVERIFY(Toast().contains(QLatin1String("bad.gpx")));
    QCOMPARE(Plan().Route().GetCount(), 3);
}

void tst_SurveyPlanAreas::newCanBeUndone()
{
    DrawArea();
    AddRoute();
    Plan().SetMargin(3.0);
    QTest::keyClick(m_view.get(), Qt::Key_N, Qt::ControlModifier);
    QCOMPARE(Plan().Route().GetCount(), 0);
    QVERIFY(Plan().Areas().empty());
    ClickToast();
    QCOMPARE(Names(), QStringList({QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C")}));
    QCOMPARE(Plan().Areas().size(), std::size_t(1));
    QVERIFY(Plan().IsDirty());
}

void tst_SurveyPlanAreas::draftRestored()
{
    AddRoute();
    Plan().FlushDraft();
    QVERIFY(QFile::exists(m_dir->path() + QStringLiteral("/plan-draft.json")));
    m_view.reset();
    Open();
    QCOMPARE(Names(), QStringList({QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C")}));
    QVERIFY(Plan().IsDirty());
    QVERIFY(Toast().contains(QLatin1String("not saved")));
    QTRY_COMPARE(m_page->Chart().Points().size(), std::size_t(3));
    ClickToast();
    QCOMPARE(Plan().Route().GetCount(), 0);
    m_view.reset();
    Open();
    QCOMPARE(Plan().Route().GetCount(), 0);
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
    QVERIFY(checks && checks->isVisible() && !checks->Items().isEmpty());
    int row = 0;
    while (row < checks->Items().size() && checks->Items()[row].subtitle != QLatin1String("Waypoint 2"))
        ++row;
    QVERIFY(row < checks->Items().size());
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
