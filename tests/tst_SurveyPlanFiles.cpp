// Files, drafts and plans that were not saved, on the page "Plan".

#include "SurveyPlanWindow.h"

class tst_SurveyPlanFiles : public SurveyPlanWindow
{
    Q_OBJECT

private Q_SLOTS:
    void saveOpenExport_data();
    void saveOpenExport();
    void damagedFileIsRefused();
    void newCanBeUndone();
    void draftRestored();
    void undoneIsNotOffered_data();
    void undoneIsNotOffered();
    void areasAreNotInEveryForm_data();
    void areasAreNotInEveryForm();
    void unsavedPlanIsUnderMore();
    void openAtTheStartKeepsTheDraft();
    void undoOfNewKeepsTheNext();
    void editedWhileTheDraftIsRead();
    void damagedDraftIsSetAside();
    void planStaysWhereItCannotBeKept();
};

void tst_SurveyPlanFiles::saveOpenExport_data()
{
    QTest::addColumn<QString>("suffix");
    for (const char* suffix : {"json", "gpx", "kml", "geojson", "xml", "txt"})
        QTest::newRow(suffix) << QString::fromLatin1(suffix);
}

void tst_SurveyPlanFiles::saveOpenExport()
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
    QTRY_COMPARE(Plan().FilePath(), path);
    QVERIFY(!Plan().IsDirty());
    QVERIFY(QFileInfo(path).size() > 0);
    QCOMPARE(m_view->last_path(), m_dir->path());
    QTest::keyClick(m_view.get(), Qt::Key_N, Qt::ControlModifier);
    QCOMPARE(Plan().Route().GetCount(), 0);
    QVERIFY(m_view->Open(path));
    QTRY_COMPARE(Plan().Route().GetCount(), 3);
    QVERIFY(std::fabs(Wpt(2)->lat - lat) < 1e-7);
    QCOMPARE(Plan().Name(), QStringLiteral("harbour"));
    QVERIFY(!Plan().IsDirty());
    // The camera goes there.
    QTRY_VERIFY(m_panel->rect().contains(PixelOf(1)));
}

void tst_SurveyPlanFiles::damagedFileIsRefused()
{
    AddRoute();
    const QString path = m_dir->path() + QStringLiteral("/bad.gpx");
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("<gpx><wpt lat=\"95\" lon=\"0\"/></gpx>");
    file.close();
    QVERIFY(m_view->Open(path));
    QTRY_VERIFY(Toast().contains(QLatin1String("bad.gpx")));
    QCOMPARE(Plan().Route().GetCount(), 3);
}

void tst_SurveyPlanFiles::newCanBeUndone()
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

void tst_SurveyPlanFiles::draftRestored()
{
    AddRoute();
    Plan().FlushDraft();
    QVERIFY(QFile::exists(m_dir->path() + QStringLiteral("/plan-draft.json")));
    m_view.reset();
    Open();
    QTRY_COMPARE(Names(), QStringList({QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C")}));
    QVERIFY(Plan().IsDirty());
    QTRY_VERIFY(Toast().contains(QLatin1String("not saved")));
    QTRY_COMPARE(m_page->Chart().Points().size(), std::size_t(3));
    ClickToast();
    QCOMPARE(Plan().Route().GetCount(), 0);
    m_view.reset();
    Open();
    QCOMPARE(Plan().Route().GetCount(), 0);
}

void tst_SurveyPlanFiles::undoneIsNotOffered_data()
{
    QTest::addColumn<bool>("hasFile");
    QTest::newRow("a plan as its file has it") << true;
    QTest::newRow("an empty plan") << false;
}

/// Nothing was left unsaved, so that the next start says nothing of it.
void tst_SurveyPlanFiles::undoneIsNotOffered()
{
    QFETCH(bool, hasFile);
    if (hasFile) {
        AddRoute();
        const QString path = m_dir->filePath(QStringLiteral("a.json"));
        QVERIFY(Plan().Save(path));
        m_view->OpenPlan(path);
        QTRY_VERIFY(Toast().contains(QLatin1String("opened")));
        QTest::keyClick(m_view.get(), Qt::Key_R, Qt::ControlModifier);
    } else {
        Click("tool_add");
        Click("add_here");
        Click("done");
    }
    QVERIFY(Plan().HasDraft());
    Click("undo");
    QVERIFY(!Plan().IsDirty());
    QVERIFY(!Plan().HasDraft());
    m_view->close();
    m_view.reset();
    Open();
    QVERIFY2(!Toast().contains(QLatin1String("not saved")), qPrintable(Toast()));
    QCOMPARE(Plan().Route().GetCount(), 0);
    QVERIFY(!Plan().HasDraft());
}

/// Of every form but one the areas remain to be saved.
void tst_SurveyPlanFiles::areasAreNotInEveryForm_data()
{
    QTest::addColumn<QString>("suffix");
    QTest::addColumn<bool>("isWhole");
    for (const char* suffix : {"json", "gpx", "kml", "geojson", "xml", "txt"})
        QTest::newRow(suffix) << QString::fromLatin1(suffix) << (qstrcmp(suffix, "json") == 0);
}

void tst_SurveyPlanFiles::areasAreNotInEveryForm()
{
    QFETCH(QString, suffix);
    QFETCH(bool, isWhole);
    AddRoute();
    DrawArea();
    Plan().SetMargin(7.0);
    QTest::keyClick(m_view.get(), Qt::Key_S, Qt::ControlModifier);
    auto& files = m_page->findChild<PlanFiles*>()->Panel();
    const QString path = m_dir->path() + QStringLiteral("/harbour.") + suffix;
    Q_EMIT files.FileChosen(path);
    files.Cancel();
    QTRY_COMPARE(Plan().FilePath(), path);
    QCOMPARE(Plan().IsDirty(), !isWhole);
    QCOMPARE(Toast().contains(QLatin1String("1 area, the distance to no-go areas")), !isWhole);
    Plan().FlushDraft();
    m_view->close();
    m_view.reset();
    Open();
    QTRY_VERIFY(!m_page->findChild<PlanFiles*>()->IsBusy());
    QCOMPARE(Plan().Areas().size(), isWhole ? std::size_t(0) : std::size_t(1));
    QCOMPARE(Plan().Margin(), isWhole ? 0.0 : 7.0);
    if (isWhole)
        return;
    // What the message offers.
    QTest::keyClick(m_view.get(), Qt::Key_S, Qt::ControlModifier);
    QTRY_VERIFY(Toast().contains(QLatin1String("does not hold")));
    ClickToast();
    auto& again = m_page->findChild<PlanFiles*>()->Panel();
    QVERIFY(again.isVisible());
    Q_EMIT again.FileChosen(m_dir->path() + QStringLiteral("/whole.json"));
    QTRY_VERIFY(!Plan().IsDirty());
}

/// What was not saved is there after the message has gone, and after a restart.
void tst_SurveyPlanFiles::unsavedPlanIsUnderMore()
{
    AddRoute();
    Plan().SetMargin(3.0);
    QVERIFY(!HasMore(QStringLiteral("Unsaved plans")));
    QTest::keyClick(m_view.get(), Qt::Key_N, Qt::ControlModifier);
    QVERIFY2(Toast().contains(QLatin1String("More")), qPrintable(Toast()));
    QCOMPARE(Plan().Route().GetCount(), 0);
    // As after a kill: what is on the disk, without a word to the program.
    const QString kept = Killed();
    m_view.reset();
    m_dir.swap(m_killed);
    Open();
    QCOMPARE(m_dir->path(), kept);
    QCOMPARE(Plan().Route().GetCount(), 0);
    ChooseMore(QStringLiteral("Unsaved plans"));
    QTRY_VERIFY(VisibleList());
    ZrTouchList* list = VisibleList();
    QCOMPARE(list->Items().size(), 1);
    QCOMPARE(list->Items()[0].title, QStringLiteral("New plan"));
    QVERIFY2(list->Items()[0].subtitle.startsWith(QLatin1String("A moment ago")),
        qPrintable(list->Items()[0].subtitle));
    QVERIFY(list->Items()[0].subtitle.contains(QLatin1String("3 waypoints")));
    const QPoint row = list->visualRect(list->model()->index(0, 0)).center();
    QTest::mouseClick(list->viewport(), Qt::LeftButton, Qt::NoModifier, row);
    QTRY_COMPARE(Names(), QStringList({QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C")}));
    QCOMPARE(Plan().Margin(), 3.0);
    QVERIFY(Plan().IsDirty());
    QTRY_COMPARE(m_page->Chart().Points().size(), std::size_t(3));
    for (int i = 0; i < 3; ++i)
        QTRY_VERIFY(m_panel->rect().contains(PixelOf(i)));
    Plan().FlushDraft();
    QVERIFY(!HasMore(QStringLiteral("Unsaved plans")));
}

/// As `ZrSurvey PLAN` does while there is the draft of another plan.
void tst_SurveyPlanFiles::openAtTheStartKeepsTheDraft()
{
    AddRoute();
    const QString other = m_dir->filePath(QStringLiteral("other.json"));
    QVERIFY(Plan().Save(other));
    Plan().SetMargin(9.0);
    Plan().FlushDraft();
    m_view.reset();
    m_view = std::make_unique<SurveyView>(m_dir->path());
    m_view->resize(1280, 800);
    m_view->show();
    QVERIFY(m_view->Open(other));
    m_page = static_cast<PlanPage*>(m_view->Page());
    m_panel = m_page->findChild<ZrMapPanel*>();
    QTRY_COMPARE(Plan().Kept()->List().size(), std::size_t(1));
    QCOMPARE(Plan().FilePath(), other);
    QCOMPARE(Plan().Margin(), 0.0);
    QVERIFY(!Plan().IsDirty());
    QVERIFY(Toast().contains(QLatin1String("More")));
    ClickToast();
    QCOMPARE(Plan().Margin(), 9.0);
    QVERIFY(Plan().HasDraft());
    Plan().FlushDraft();
    QVERIFY(Plan().Kept()->List().empty());
}

/// The undo of the message loses nothing either.
void tst_SurveyPlanFiles::undoOfNewKeepsTheNext()
{
    AddRoute();
    Plan().SetMargin(3.0);
    QTest::keyClick(m_view.get(), Qt::Key_N, Qt::ControlModifier);
    Plan().SetMargin(4.0);
    ClickToast();
    QCOMPARE(Plan().Margin(), 3.0);
    QCOMPARE(Plan().Route().GetCount(), 3);
    Plan().FlushDraft();
    QCOMPARE(Plan().Kept()->List().size(), std::size_t(1));
    ChooseMore(QStringLiteral("Unsaved plans"));
    QTRY_VERIFY(VisibleList());
    Q_EMIT VisibleList()->Chosen(0);
    QTRY_COMPARE(Plan().Margin(), 4.0);
    QCOMPARE(Plan().Route().GetCount(), 0);
    Plan().FlushDraft();
    QCOMPARE(Plan().Kept()->List().size(), std::size_t(1));
}

/// The draft is the plan, and what was edited is put away, each once.
void tst_SurveyPlanFiles::editedWhileTheDraftIsRead()
{
    AddRoute();
    Plan().FlushDraft();
    m_view.reset();
    m_view = std::make_unique<SurveyView>(m_dir->path());
    m_view->resize(1280, 800);
    m_view->Show(QStringLiteral("Plan"));
    m_page = static_cast<PlanPage*>(m_view->Page());
    // Whether or not its thread has read it: the page has not seen it yet.
    QVERIFY(m_page->findChild<PlanFiles*>()->IsRestoring());
    Plan().History().Add(50.0, -4.0, eZrWptBlue, ZrWpts::eAddTail);
    Plan().Edited();
    m_view->show();
    QTRY_VERIFY(!m_page->findChild<PlanFiles*>()->IsRestoring());
    QCOMPARE(Names(), QStringList({QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C")}));
    QVERIFY(Plan().IsDirty());
    Plan().FlushDraft();
    const auto kept = Plan().Kept()->List();
    QCOMPARE(kept.size(), std::size_t(1));
    QCOMPARE(kept[0].waypoints, 1);
}

void tst_SurveyPlanFiles::damagedDraftIsSetAside()
{
    m_view.reset();
    const QString path = m_dir->filePath(QStringLiteral("plan-draft.json"));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("{\"format\": \"zr-plan-dr");
    file.close();
    Open();
    QTRY_VERIFY2(Toast().contains(path + QStringLiteral(".damaged")), qPrintable(Toast()));
    AddRoute();
    Plan().FlushDraft();
    QFile aside(path + QStringLiteral(".damaged"));
    QVERIFY(aside.open(QIODevice::ReadOnly));
    QCOMPARE(aside.readAll(), QByteArray("{\"format\": \"zr-plan-dr"));
    QVERIFY(QFile::exists(path));
}

/// A full disk, for instance: what cannot be kept stays on the screen.
void tst_SurveyPlanFiles::planStaysWhereItCannotBeKept()
{
    QFile file(m_dir->filePath(QStringLiteral("plans"))); // in the place of the folder
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.close();
    AddRoute();
    Plan().SetMargin(3.0);
    QTest::keyClick(m_view.get(), Qt::Key_N, Qt::ControlModifier);
    QVERIFY2(Toast().contains(QLatin1String("cannot be put away")), qPrintable(Toast()));
    QCOMPARE(Plan().Route().GetCount(), 3);
    QCOMPARE(Plan().Margin(), 3.0);
}

GL_TEST_MAIN(tst_SurveyPlanFiles)
#include "tst_SurveyPlanFiles.moc"
