#pragma once

// The page "Plan" in a window that is shown, and the hands that its tests have.

#include "GlTest.h"
#include "TouchOn.h"
#include "ZrKit/map/ZrMapPanel.h"
#include "ZrKit/ui/ZrChoicePanel.h"
#include "ZrKit/ui/ZrFilePanel.h"
#include "ZrKit/ui/ZrToast.h"
#include "ZrKit/ui/ZrTouchList.h"
#include "ZrKit/ui/ZrValueTile.h"
#include "ZrUiChecks.h"
#include "ZrUnitsState.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrInput.h"
#include "ZrUtil/ZrTheme.h"
#include "ZrUtil/ZrWpts.h"
#include "apps/ZrSurvey/PlanFiles.h"
#include "apps/ZrSurvey/PlanListPanel.h"
#include "apps/ZrSurvey/PlanPage.h"
#include "apps/ZrSurvey/PlanPatternPanel.h"
#include "apps/ZrSurvey/PlanPointPanel.h"
#include "apps/ZrSurvey/SurveyModel.h"
#include "apps/ZrSurvey/SurveyView.h"

#include <QApplication>
#include <QDirIterator>
#include <QMouseEvent>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTouchDevice>
#include <QtTest>

#include <cmath>
#include <memory>

/// Base of test classes: a new window on a folder of its own for each test.
class SurveyPlanWindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

protected:
    void Open();

    ZrPlanDocument& Plan() { return m_view->Model().plan; }

    ZrBtn* Button(const char* name) { return m_page->findChild<ZrBtn*>(QString::fromLatin1(name)); }

    void Click(const char* name);
    void Tap(const QPoint& at);
    void MouseDrag(const QPoint& from, const QPoint& to); ///< in two movements
    void AddRoute(); ///< three waypoints in view, a corner at the second one
    QPoint PixelOf(int waypoint) const;

    ZrWpt* Wpt(int index) { return Plan().Route().GetAt(Plan().Route().FindIndex(index)); }

    QStringList Names();

    QString Toast() const { return m_view->findChild<ZrToast*>()->Text(); }

    void ClickToast();
    void DrawArea();
    QString Killed(); ///< copies what is on the disk to `m_killed`, its path
    ZrTouchList* VisibleList(); ///< of what is open over the page
    bool HasMore(const QString& title);
    void ChooseMore(const QString& title);

    std::unique_ptr<ZrThemeState> m_theme;
    std::unique_ptr<ZrUnitsState> m_units;
    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<QTemporaryDir> m_killed;
    std::unique_ptr<SurveyView> m_view;
    PlanPage* m_page = nullptr;
    ZrMapPanel* m_panel = nullptr;
    QTouchDevice* m_touch = nullptr;
};

inline void SurveyPlanWindow::initTestCase()
{
    m_touch = QTest::createTouchDevice();
}

inline void SurveyPlanWindow::Open()
{
    m_view = std::make_unique<SurveyView>(m_dir->path());
    m_view->resize(1280, 800);
    m_view->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_view.get()));
    m_view->Show(QStringLiteral("Plan"));
    m_page = static_cast<PlanPage*>(m_view->Page());
    m_panel = m_page->findChild<ZrMapPanel*>();
    QVERIFY(m_panel);
    QTRY_VERIFY(!m_page->findChild<PlanFiles*>()->IsRestoring());
    // The page fits the plan, or settles where there is none, before anything is done by hand.
    QTRY_VERIFY(m_panel->width() > 300);
    QTRY_VERIFY(!m_panel->Map().m_camera.IsEmpty());
    QTest::qWait(50);
}

inline void SurveyPlanWindow::init()
{
    m_theme = std::make_unique<ZrThemeState>();
    m_units = std::make_unique<ZrUnitsState>();
    ZrTheme::SetDesignScale(1280, 800);
    ZrTheme::SetStdStyle();
    ZrTheme::tabletMode = false;
    ZrUnits::SetToMetric();
    ZrUnits::SetGeoStyle(eGeoSignedDeg);
    m_dir = std::make_unique<QTemporaryDir>();
    Open();
}

inline void SurveyPlanWindow::cleanup()
{
    m_view.reset();
    m_dir.reset();
    m_killed.reset();
    m_units.reset();
    m_theme.reset();
}

inline void SurveyPlanWindow::Click(const char* name)
{
    ZrBtn* button = Button(name);
    QVERIFY2(button && button->isVisible() && button->isEnabled(), name);
    QTest::mouseClick(button, Qt::LeftButton);
}

inline void SurveyPlanWindow::Tap(const QPoint& at)
{
    // Both arrive together: on a busy machine the time between two of them may be that of a long press.
    TouchOn(m_panel, m_touch, false).press(1, at, m_panel).commit(false);
    TouchOn(m_panel, m_touch).release(1, at, m_panel);
    // Two taps are no double tap.
    QTest::qWait(450);
}

inline void SurveyPlanWindow::MouseDrag(const QPoint& from, const QPoint& to)
{
    QTest::mousePress(m_panel, Qt::LeftButton, Qt::NoModifier, from);
    // Not by the cursor of the screen, whose movements arrive when they like.
    for (const QPoint& at : {(from + to) / 2, to}) {
        QMouseEvent move(
            QEvent::MouseMove, at, m_panel->mapToGlobal(at), Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(m_panel, &move);
    }
    QTest::mouseRelease(m_panel, Qt::LeftButton, Qt::NoModifier, to);
}

inline QPoint SurveyPlanWindow::PixelOf(int waypoint) const
{
    const QPointF world = m_page->Chart().Points()[static_cast<std::size_t>(waypoint)];
    return (m_page->Map().m_camera.ToPixel(world) / m_panel->devicePixelRatioF()).toPoint();
}

inline QStringList SurveyPlanWindow::Names()
{
    QStringList names;
    for (ZrListPos* pos = Plan().Route().GetHeadPos(); pos;)
        names.append(Plan().Route().GetNext(pos)->name);
    return names;
}

inline void SurveyPlanWindow::AddRoute()
{
    ZrMapView& camera = m_page->Map().m_camera;
    int number = 0;
    for (const QPointF& pixel : {QPointF(250, 450), QPointF(500, 250), QPointF(700, 450)}) {
        const ZrGeoPoint place = m_page->Chart().ToGeo(camera.ToWorld(pixel));
        ZrWpt* wpt = Plan().History().Add(place.lat, place.lng, eZrWptBlue, ZrWpts::eAddTail);
        wpt->name = QString(QLatin1Char(static_cast<char>('A' + number++)));
    }
    Plan().History().Reset();
    Plan().Edited();
    QTRY_COMPARE(m_page->Chart().Points().size(), std::size_t(3));
}

inline QString SurveyPlanWindow::Killed()
{
    m_killed = std::make_unique<QTemporaryDir>();
    QDirIterator files(m_dir->path(), QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString from = files.next();
        const QString to = m_killed->filePath(QDir(m_dir->path()).relativeFilePath(from));
        QDir().mkpath(QFileInfo(to).path());
        QFile::copy(from, to);
    }
    return m_killed->path();
}

inline ZrTouchList* SurveyPlanWindow::VisibleList()
{
    for (ZrChoicePanel* panel : m_view->findChildren<ZrChoicePanel*>()) {
        if (panel->isVisible())
            return panel->findChild<ZrTouchList*>();
    }
    return nullptr;
}

inline bool SurveyPlanWindow::HasMore(const QString& title)
{
    Click("more");
    bool hasRow = false;
    for (const ZrListItem& item : VisibleList()->Items())
        hasRow = hasRow || item.title == title;
    for (ZrChoicePanel* panel : m_view->findChildren<ZrChoicePanel*>())
        panel->Cancel();
    return hasRow;
}

inline void SurveyPlanWindow::ChooseMore(const QString& title)
{
    Click("more");
    ZrTouchList* list = VisibleList();
    QVERIFY(list);
    for (int row = 0; row < list->Items().size(); ++row) {
        if (list->Items()[row].title != title)
            continue;
        Q_EMIT list->Chosen(row);
        return;
    }
    QFAIL(qPrintable(title));
}

inline void SurveyPlanWindow::ClickToast()
{
    auto* button = m_view->findChild<ZrToast*>()->findChild<ZrBtn*>();
    QVERIFY(button && button->isVisible());
    QTest::mouseClick(button, Qt::LeftButton);
}

inline void SurveyPlanWindow::DrawArea()
{
    Click("tool_area");
    for (const QPoint& at : {QPoint(250, 200), QPoint(650, 200), QPoint(650, 500), QPoint(250, 500)})
        Tap(at);
    Click("done");
    QCOMPARE(m_page->Mode(), PlanPage::modeBrowse);
}
