#pragma once

#include "ZrKit/review/ZrPlayClock.h"
#include "ZrKit/review/ZrWorker.h"
#include "apps/ZrSurvey/ReviewTransport.h"
#include "apps/ZrSurvey/SurveyPage.h"

#include <QPointer>

#include <memory>
#include <vector>

class ReviewEvents;
class ReviewExport;
class ReviewMap;
class ReviewSonar;
class ZrFilePanel;
class ZrPlotPanel;
class ZrSurveyRecording;
class ZrTextPanel;
class ZrTimeBar;
class ZrWorkPanel;

/// Goes through a recording: one cursor on the time line, the map, the waterfall, the plots and the vehicle
/// that the page "3D" shows.
class ReviewPage : public SurveyPage
{
    Q_OBJECT

public:
    explicit ReviewPage(SurveyView& view);
    ~ReviewPage() override;

    void OpenLog(const QString& path);

    bool IsLoading() const; ///< also while the map is still being made

    bool IsDrawn() const; ///< map and waterfall have been, in this context

    const std::shared_ptr<ZrSurveyRecording>& Recording() const { return m_recording; } ///< null for none

    const ZrPlayClock& Clock() const { return m_clock; }

    void GoTo(double steady); ///< moves the cursor
    QString GoToText(const QString& text); ///< to a typed time; what is wrong with it, empty when nothing is
    void Act(int act); ///< a `ReviewTransport::eAct`
    void PlayOrPause(); ///< in the direction that was chosen last
    bool Advance(double seconds); ///< plays on by so much time; false when it does not play

    ReviewMap& Map() { return *m_map; }

    ReviewSonar& Sonar() { return *m_sonar; }

    ReviewEvents& Events() { return *m_events; }

    ReviewExport& Export() { return *m_export; }

    ZrTimeBar& Bar() { return *m_bar; }

    ZrPlotPanel& Plots() { return *m_plots; }

    void zr_initializeGL() override;
    void zr_paintGL() override;
    void OnColours() override;
    bool OnKey(int key, Qt::KeyboardModifiers modifiers) override;
    int FreeBelow() const override;
    int FreeRight() const override;

protected:
    void Place() override;
    bool OnFrame(double seconds) override;

    bool ShowsReview() const override { return true; }

    int BandLeft() const override;
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    /// What fills the page.
    enum ePane : int
    {
        paneAll,
        paneMap,
        paneSonar,
        panePlots
    };

    ZrBtn* AddTool(const char* icon, const QString& text, const QString& hint);
    void Connect();
    void StartLoading(const QString& path);
    void OnLoaded();
    void Show(const std::shared_ptr<ZrSurveyRecording>& recording);
    void TellWay();
    void ShowPlots();
    void ShowCursor();
    void ShowEvents();
    void ShowState();
    void Enlarge(ePane pane);
    bool OnToolKey(int key, Qt::KeyboardModifiers modifiers);
    void Toggle(bool& setting);
    void ShowGaps();
    void StepEvent(int direction);
    void SetRangeEnd(int end);
    void ExportPart();
    void AskFile();
    QRect HeaderOf(const QRect& pane) const;
    void PaintHeaders(QPainter& painter);

    ReviewMap* m_map;
    ReviewSonar* m_sonar;
    ZrPlotPanel* m_plots;
    ZrTimeBar* m_bar;
    ReviewTransport* m_transport;
    ReviewEvents* m_events;
    ReviewExport* m_export;
    ZrFilePanel* m_files;
    ZrTextPanel* m_text;
    ZrWorkPanel* m_work;
    ZrBtn* m_open;
    ZrBtn* m_list;
    ZrBtn* m_exportBtn;
    ZrBtn* m_fit;
    ZrBtn* m_follow;
    ZrBtn* m_mapLarge;
    ZrBtn* m_look;
    ZrBtn* m_slant;
    ZrBtn* m_bottom;
    ZrBtn* m_correct;
    ZrBtn* m_measure;
    ZrBtn* m_sonarLarge;
    ZrBtn* m_plotsLarge;
    ZrBtn* m_gaps;
    ZrBtn* m_firstOpen;
    QRect m_mapHeader;
    QRect m_sonarHeader;
    QRect m_plotsHeader;
    ePane m_pane = paneAll;
    QString m_path; ///< being opened
    QString m_nextPath; ///< to be opened when that has ended
    std::shared_ptr<ZrSurveyRecording> m_recording;
    std::shared_ptr<ZrSurveyRecording> m_loading;
    ZrPlayClock m_clock;
    double m_now = 0.0; ///< seconds that frames have taken
    int m_ready = 0; ///< of what is drawn in the context, see `zr_paintGL`
    ZrWorker m_worker;
};
