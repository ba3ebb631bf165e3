#pragma once

// The page "Record" in its real window, and the hands that its tests have.

#include "GlTest.h"
#include "TouchOn.h"
#include "ZrKit/recording/ZrLogWriter.h"
#include "ZrKit/records/ZrKitTypes.h"
#include "ZrKit/records/ZrNavRecord.h"
#include "ZrKit/review/ZrSurveyDataset.h"
#include "ZrKit/ui/ZrValueTile.h"
#include "ZrUiChecks.h"
#include "ZrUnitsState.h"
#include "ZrUtil/ZrBtn.h"
#include "apps/ZrSurvey/RecordPage.h"
#include "apps/ZrSurvey/StateBanner.h"
#include "apps/ZrSurvey/SurveyModel.h"
#include "apps/ZrSurvey/SurveySource.h"
#include "apps/ZrSurvey/SurveyView.h"

#include <QTemporaryDir>
#include <QtTest>

#include <memory>

/// Base of test classes: a new window with the simulator at twenty times its speed for each test.
class SurveyRecordWindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

protected:
    void Open(const QSize& size = QSize(1280, 800));
    void UseReplay(double latitude, double seconds); ///< as the source

    RecordPage& Page() { return *static_cast<RecordPage*>(m_view->GetPage(QStringLiteral("Record"))); }

    ZrBtn* Button(const QString& text)
    {
        for (ZrBtn* button : Page().findChildren<ZrBtn*>()) {
            if (button->text == text && button->isVisible())
                return button;
        }
        return nullptr;
    }

    ZrValueTile* Tile(const QString& caption)
    {
        for (ZrValueTile* tile : Page().findChildren<ZrValueTile*>()) {
            if (tile->accessibleName().startsWith(caption))
                return tile;
        }
        return nullptr;
    }

    void Touch(QWidget* widget)
    {
        QVERIFY(widget);
        const QPoint middle = widget->rect().center();
        TouchOn(widget, m_screen).press(0, middle, widget);
        TouchOn(widget, m_screen).release(0, middle, widget);
    }

    QStringList Logs() const
    {
        QStringList paths;
        const QDir dir(m_dir->filePath(QStringLiteral("logs")));
        for (const QString& name : dir.entryList({QStringLiteral("*.log")}, QDir::Files, QDir::Name))
            paths += dir.filePath(name);
        return paths;
    }

    QStringList EventsOf(const QString& log)
    {
        ZrSurveyDataset dataset;
        dataset.ReadFile(log);
        QStringList texts;
        for (ZrListPos* pos = dataset.events.GetHeadPos(); pos;)
            texts += dataset.events.GetNext(pos)->text;
        texts.sort(); // those of one moment are in any order
        return texts;
    }

    bool IsOn() { return Page().Session().Recording() == ZrRecordingSession::recordingOn; }

    bool IsOff() { return Page().Session().Recording() == ZrRecordingSession::recordingOff; }

    bool HasPosition() { return Page().Session().State().latitude.IsKnown(); }

    StateBanner* Banner(const QString& page = QStringLiteral("Record"))
    {
        return m_view->GetPage(page)->findChild<StateBanner*>(QStringLiteral("state"));
    }

    ZrBtn* ActionOf(const StateBanner& banner, const QString& text)
    {
        for (ZrBtn* button : banner.Buttons()) {
            if (button->text == text)
                return button;
        }
        return nullptr;
    }

    std::unique_ptr<ZrThemeState> m_theme;
    std::unique_ptr<ZrUnitsState> m_units;
    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<SurveyView> m_view;
    QTouchDevice* m_screen = QTest::createTouchDevice();
};

inline void SurveyRecordWindow::init()
{
    m_theme = std::make_unique<ZrThemeState>();
    m_units = std::make_unique<ZrUnitsState>();
    m_dir = std::make_unique<QTemporaryDir>();
    ZrUnits::SetToMetric();
    ZrTheme::SetDesignScale(1280, 800);
    ZrTheme::SetStdStyle();
    m_view = std::make_unique<SurveyView>(QString());
    SurveySettings& settings = m_view->Model().settings;
    settings.recordDir = m_dir->filePath(QStringLiteral("logs"));
    settings.simSpeed = 20.0;
    settings.stopBelowMegabytes = 1;
}

inline void SurveyRecordWindow::cleanup()
{
    m_view.reset();
    m_units.reset();
    m_theme.reset();
}

inline void SurveyRecordWindow::UseReplay(double latitude, double seconds)
{
    const QString path = m_dir->filePath(QStringLiteral("old.log"));
    ZrLogWriter log;
    QVERIFY(log.Open(path, 100.0));
    ZrNavRecord nav;
    nav.latitude = latitude;
    nav.longitude = -4.0;
    for (double t = 0.0; t < seconds; t += 0.05) {
        QVERIFY(log.Write(zr::rec_type(krtNavigation), 1, ZrNavRecord::Format, 100.0 + t, false,
            zr::bytes_of(nav.Encode())));
    }
    QVERIFY(log.Commit());
    m_view->Model().settings.source = SurveySource::replay;
    m_view->Model().settings.sourceFile = path;
}

inline void SurveyRecordWindow::Open(const QSize& size)
{
    m_view->resize(size);
    m_view->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_view.get()));
    QApplication::setActiveWindow(m_view.get());
    m_view->Show(QStringLiteral("Record"));
    QTRY_VERIFY(Page().isVisible());
}
