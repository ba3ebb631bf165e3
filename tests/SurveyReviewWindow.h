#pragma once

// The page "Review" in its real window, on a real side-scan line over a wreck, and the hands that its tests
// have.

#include "GlTest.h"
#include "ZrKit/map/ZrWaterfallPanel.h"
#include "ZrKit/survey/ZrSurveyRecording.h"
#include "ZrKit/ui/ZrTextPanel.h"
#include "ZrKit/ui/ZrTimeBar.h"
#include "ZrKit/ui/ZrToast.h"
#include "ZrToolRun.h"
#include "ZrUiChecks.h"
#include "ZrUnitsState.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrInput.h"
#include "apps/ZrSurvey/ReviewPage.h"
#include "apps/ZrSurvey/ReviewSonar.h"
#include "apps/ZrSurvey/SurveyModel.h"
#include "apps/ZrSurvey/SurveyView.h"

#include <QImage>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>
#include <memory>

/// Base of test classes: a new window and a new copy of the log for each test.
class SurveyReviewWindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

protected:
    static constexpr int patience = 60000; ///< milliseconds

    ReviewPage& Page() const { return *static_cast<ReviewPage*>(m_view->GetPage(QStringLiteral("Review"))); }

    ZrSurveyRecording& Rec() const { return *Page().Recording(); }

    QString Toast() const
    {
        const auto* toast = m_view->findChild<ZrToast*>();
        return toast && toast->isVisible() ? toast->Text() : QString();
    }

    void Open(const QString& path);
    void WaitForLines() const;
    QPoint PixelOf(const ZrSonarSpot& spot) const; ///< of the waterfall, in pixels of its widget
    void TypeText(const QString& text) const;
    void Drag(QWidget& widget, const QPoint& from, const QPoint& to) const;

    /// Kept in the folder that ZR_REVIEW_PICTURES names, for people to look at.
    void Keep(const QString& name) const;

    QTemporaryDir m_folder;
    QString m_source;
    QString m_log;
    std::unique_ptr<ZrThemeState> m_theme;
    std::unique_ptr<ZrUnitsState> m_units;
    std::unique_ptr<SurveyView> m_view;
};

inline void SurveyReviewWindow::initTestCase()
{
    QVERIFY(m_folder.isValid());
    m_source = m_folder.filePath(QStringLiteral("source.log"));
    const QString xtf = QStringLiteral(ZR_SOURCE_DIR "/data/sidescan-xtf/iver2-scotsman-pings0-299.xtf");
    const ToolResult result = RunTool({QStringLiteral("log"), QStringLiteral("import"), xtf, m_source});
    QVERIFY2(result.code == 0, result.Text());
}

inline void SurveyReviewWindow::init()
{
    m_theme = std::make_unique<ZrThemeState>();
    m_units = std::make_unique<ZrUnitsState>();
    ZrUnits::SetToMetric();
    m_log = m_folder.filePath(QStringLiteral("wreck ö.log"));
    for (const char* suffix : {"", ".evt", ".evt.json", ".zri", ".zri.json", ".xml", ".bottom.json"})
        QFile::remove(m_log + QLatin1String(suffix));
    QVERIFY(QFile::copy(m_source, m_log));
    ZrTheme::SetDesignScale(1280, 800);
    ZrTheme::SetStdStyle();
    m_view = std::make_unique<SurveyView>(QString());
    m_view->resize(1280, 800);
    m_view->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_view.get()));
    QTRY_VERIFY(m_view->IsComplete());
}

inline void SurveyReviewWindow::cleanup()
{
    m_view.reset();
    m_units.reset();
    m_theme.reset();
}

inline void SurveyReviewWindow::Open(const QString& path)
{
    m_view->OpenLog(path);
    QTRY_VERIFY_WITH_TIMEOUT(!Page().IsLoading(), patience);
}

inline void SurveyReviewWindow::WaitForLines() const
{
    QTRY_VERIFY_WITH_TIMEOUT(!Page().Sonar().Loader()->IsLoading(), patience);
    Settle();
}

inline QPoint SurveyReviewWindow::PixelOf(const ZrSonarSpot& spot) const
{
    const ZrSonarChannel channel = Rec().Pings().Side(spot.ping, spot.side);
    const ZrWaterfallPanel& panel = Page().Sonar().Panel();
    const QPointF at = panel.Layout().ToPixel(
        static_cast<double>(spot.ping), spot.side, (spot.sample + 0.5) * channel.SampleLength());
    return (at / panel.devicePixelRatioF()).toPoint();
}

inline void SurveyReviewWindow::TypeText(const QString& text) const
{
    for (ZrTextPanel* panel : m_view->findChildren<ZrTextPanel*>()) {
        if (!panel->isVisible())
            continue;
        panel->Input().setFocus();
        panel->Input().selectAll();
        QTest::keyClicks(&panel->Input(), text);
        QTest::keyClick(&panel->Input(), Qt::Key_Return);
        return;
    }
    QFAIL("no text is asked for");
}

inline void SurveyReviewWindow::Drag(QWidget& widget, const QPoint& from, const QPoint& to) const
{
    SendPress(widget, from);
    SendMove(widget, from + (to - from) / 2);
    SendMove(widget, to);
    SendRelease(widget, to);
}

inline void SurveyReviewWindow::Keep(const QString& name) const
{
    const QString folder = qEnvironmentVariable("ZR_REVIEW_PICTURES");
    if (folder.isEmpty())
        return;
    Settle();
    QVERIFY(m_view->grab().save(folder + QLatin1Char('/') + name + QStringLiteral(".png")));
}
