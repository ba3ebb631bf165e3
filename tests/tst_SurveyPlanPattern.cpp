// Survey lines on the page "Plan": planned beside the screen, and applied as they are shown.

#include "SurveyPlanWindow.h"
#include "ZrKit/planning/ZrSurveyPattern.h"

#include <QFile>
#include <QFileInfo>
#include <QThread>

#include <sys/stat.h>
#include <thread>

class tst_SurveyPlanPattern : public SurveyPlanWindow
{
    Q_OBJECT

private Q_SLOTS:
    void nobodyWaits();
    void appliedAsShown();
    void changedAfterApply();
    void leftWhilePlanning();
    void limitIsTold();
    void moreThanAPlanMayHave();
    void fileOfManyWaypoints();
    void savedWhileEdited();
    void orderAtTheEnd();

private:
    PlanPatternPanel* Panel() { return m_page->findChild<PlanPatternPanel*>(); }

    ZrArea Square(double km) const;
    void Type(int field, const QString& text);
};

ZrArea tst_SurveyPlanPattern::Square(double km) const
{
    const double side = km / 111.2;
    return {QStringLiteral("Bay"), {{0.0, 0.0}, {0.0, side}, {side, side}, {side, 0.0}}};
}

void tst_SurveyPlanPattern::Type(int field, const QString& text)
{
    ZrInput* input = Panel()->findChildren<ZrInput*>().value(field);
    input->setFocus();
    input->selectAll();
    QTest::keyClicks(input, text);
    QTest::keyClick(input, Qt::Key_Return);
}

/// Ten thousand lines are asked for, and the page goes on at once.
void tst_SurveyPlanPattern::nobodyWaits()
{
    Plan().SetAreas({Square(4.0)});
    Click("tool_pattern");
    QTRY_VERIFY(Panel()->IsCurrent());
    Panel()->SetArea(Square(400.0));
    QVERIFY(!Panel()->IsCurrent());
    QTRY_VERIFY(Panel()->IsCurrent());
    // What was there before is shown until then.
    Panel()->SetArea(Square(40.0));
    QVERIFY(!Panel()->IsCurrent());
    QTRY_VERIFY(Panel()->IsCurrent());
    QVERIFY(Panel()->Plan().lines.size() > 700);
    const std::size_t lines = Panel()->Plan().lines.size();
    Type(0, QStringLiteral("10"));
    QCOMPARE(Panel()->Plan().lines.size(), lines);
    QTRY_VERIFY(Panel()->Plan().lines.size() > 4 * lines);
}

/// Return right behind a number applies the lines of that number.
void tst_SurveyPlanPattern::appliedAsShown()
{
    Plan().SetAreas({Square(2.0)});
    Click("tool_pattern");
    QTRY_VERIFY(Panel()->IsCurrent());
    Type(0, QStringLiteral("20"));
    QVERIFY(!Panel()->IsCurrent());
    Click("apply");
    QCOMPARE(m_page->Mode(), PlanPage::modePattern); // nobody waited
    QCOMPARE(Plan().Route().GetCount(), 0);
    QTRY_COMPARE(m_page->Mode(), PlanPage::modeBrowse);
    QCOMPARE(Plan().LineCount(), 100);
    // Once.
    QTest::qWait(100);
    QCOMPARE(Plan().LineCount(), 100);
}

/// A number that is changed behind "Apply" is looked at first.
void tst_SurveyPlanPattern::changedAfterApply()
{
    Plan().SetAreas({Square(2.0)});
    Click("tool_pattern");
    QTRY_VERIFY(Panel()->IsCurrent());
    Type(0, QStringLiteral("20"));
    Panel()->Apply();
    Type(0, QStringLiteral("40"));
    QTRY_VERIFY(Panel()->IsCurrent());
    QTest::qWait(100);
    QCOMPARE(m_page->Mode(), PlanPage::modePattern);
    QCOMPARE(Plan().Route().GetCount(), 0);
    Panel()->Apply();
    QCOMPARE(Plan().LineCount(), 50);
}

void tst_SurveyPlanPattern::leftWhilePlanning()
{
    Plan().SetAreas({Square(19.0)});
    Click("tool_pattern");
    Panel()->Apply();
    QTest::keyClick(m_view.get(), Qt::Key_Escape);
    QCOMPARE(m_page->Mode(), PlanPage::modeBrowse);
    QTRY_VERIFY(Panel()->IsCurrent());
    QTest::qWait(50);
    QCOMPARE(Plan().Route().GetCount(), 0);
    QCOMPARE(m_page->Mode(), PlanPage::modeBrowse);
}

void tst_SurveyPlanPattern::limitIsTold()
{
    Plan().SetAreas({Square(100.0)});
    Click("tool_pattern");
    Type(0, QStringLiteral("1"));
    QTRY_VERIFY(Panel()->IsCurrent());
    QVERIFY2(Panel()->Problem().contains(QString::number(ZrSurveyPattern::maxLines)),
        qPrintable(Panel()->Problem()));
    QVERIFY(!Button("apply")->isEnabled());
    Panel()->Apply();
    QCOMPARE(Plan().Route().GetCount(), 0);
}

void tst_SurveyPlanPattern::moreThanAPlanMayHave()
{
    std::vector<ZrWpt> many(ZrSurveyPlanner::MostWaypoints - 10);
    for (ZrWpt& wpt : many)
        wpt.lat = wpt.lng = 0.001;
    Plan().SetAreas({Square(2.0)});
    // Not told to the document: the draft of so many would take long.
    Plan().History().InsertPattern(many, 0);
    Click("tool_pattern");
    QTRY_VERIFY(Panel()->IsCurrent());
    Panel()->Apply();
    QVERIFY2(Toast().contains(QString::number(ZrSurveyPlanner::MostWaypoints)), qPrintable(Toast()));
    QCOMPARE(Plan().Route().GetCount(), ZrSurveyPlanner::MostWaypoints - 10);
}

/// Reading and writing go on elsewhere: the plan is another one only later.
void tst_SurveyPlanPattern::fileOfManyWaypoints()
{
    Plan().SetAreas({Square(2.0)});
    Click("tool_pattern");
    QTRY_VERIFY(Panel()->IsCurrent());
    Panel()->Apply();
    const int count = Plan().Route().GetCount();
    QVERIFY(count > 100);
    auto* files = m_page->findChild<PlanFiles*>();
    const QString path = m_dir->filePath(QStringLiteral("many ä.json"));
    QTest::keyClick(m_view.get(), Qt::Key_S, Qt::ControlModifier);
    Q_EMIT files->Panel().FileChosen(path);
    files->Panel().Cancel();
    QVERIFY(files->IsBusy());
    QVERIFY(Plan().IsDirty());
    QTRY_VERIFY(!Plan().IsDirty());
    QTRY_VERIFY(!files->IsBusy());
    files->New();
    m_view->OpenPlan(path);
    m_view->OpenPlan(m_dir->filePath(QStringLiteral("nowhere.gpx"))); // in their order
    QVERIFY(files->IsBusy());
    QCOMPARE(Plan().Route().GetCount(), 0);
    QTRY_VERIFY(Toast().contains(QStringLiteral("nowhere.gpx")));
    QCOMPARE(Plan().Route().GetCount(), count);
    QCOMPARE(Plan().Areas().size(), std::size_t(1));
    QVERIFY(!files->IsBusy());
}

/// What is edited while the file is written is not in it.
void tst_SurveyPlanPattern::savedWhileEdited()
{
    AddRoute();
    const QString path = m_dir->filePath(QStringLiteral("a.json"));
    QTest::keyClick(m_view.get(), Qt::Key_S, Qt::ControlModifier);
    auto* files = m_page->findChild<PlanFiles*>();
    Q_EMIT files->Panel().FileChosen(path);
    files->Panel().Cancel();
    Plan().History().Reverse();
    Plan().Edited();
    QTRY_COMPARE(Plan().FilePath(), path);
    QVERIFY(Plan().IsDirty());
    QVERIFY(Plan().HasDraft());
    ZrPlanDocument saved{QString()};
    QVERIFY(saved.Open(path));
    QCOMPARE(saved.Route().GetHead()->name, QStringLiteral("A"));
    // Nor does undo make it what was saved before.
    Plan().History().Undo();
    Plan().Edited();
    QVERIFY(Plan().IsDirty());
}

/// What waits when the program ends is done after what is under way: the later one of two files stays.
void tst_SurveyPlanPattern::orderAtTheEnd()
{
    const QByteArray slow = m_dir->filePath(QStringLiteral("slow.json")).toLocal8Bit();
    const QString next = m_dir->filePath(QStringLiteral("next.json"));
    QCOMPARE(mkfifo(slow.constData(), 0600), 0);
    AddRoute();
    auto files = std::make_unique<PlanFiles>(*m_view, nullptr);
    for (const QString& path : {QString::fromLocal8Bit(slow), next}) {
        files->ShowSaveAs();
        Q_EMIT files->Panel().FileChosen(path);
        files->Panel().Cancel();
    }
    bool isEarly = false;
    // The writer of a pipe waits for its reader.
    std::thread reader([&slow, &next, &isEarly] {
        QThread::msleep(300);
        isEarly = QFileInfo::exists(next);
        QFile pipe(QString::fromLocal8Bit(slow));
        if (pipe.open(QIODevice::ReadOnly))
            pipe.readAll();
    });
    files.reset();
    reader.join();
    QVERIFY(!isEarly);
    QVERIFY(QFileInfo::exists(next));
}

GL_TEST_MAIN(tst_SurveyPlanPattern)
#include "tst_SurveyPlanPattern.moc"
