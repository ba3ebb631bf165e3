#pragma once

#include "ZrKit/map/ZrLiveWaterfall.h"
#include "ZrKit/map/ZrMapSurface.h"
#include "ZrKit/map/ZrWaterfallLayer.h"
#include "ZrKit/recording/ZrRecordingSession.h"
#include "ZrKit/recording/ZrSourceWatch.h"
#include "apps/ZrSurvey/LiveMap.h"
#include "apps/ZrSurvey/SurveyPage.h"
#include "apps/ZrSurvey/SurveyRecording.h"
#include "apps/ZrSurvey/SurveySettings.h"

class QTimer;
class ZrBtn;
class StateBanner;
class ZrChoicePanel;
class ZrFilePanel;
class ZrInput;
class ZrMapPanel;
class ZrValueTile;

/// The vehicle at work: its source, what it tells, where it goes, what its sonar sees, and the recording.
class RecordPage : public SurveyPage
{
    Q_OBJECT

public:
    explicit RecordPage(SurveyView& view);

    ZrRecordingSession& Session() { return m_session; }

    const LiveMap& Map() const { return m_map; }

    const ZrLiveWaterfall& Waterfall() const { return m_waterfall; }

    void OnPageOpen() override;
    void zr_initializeGL() override;
    void zr_paintGL() override;
    bool OnKey(int key, Qt::KeyboardModifiers modifiers) override;
    void OnColours() override;
    int FreeBelow() const override;

protected:
    void Place() override;
    void paintEvent(QPaintEvent* event) override;

private:
    ZrBtn* AddMapTool(const QString& icon, const QString& hint, void (RecordPage::*action)());
    ZrBtn* AddSonarTool(const QString& icon, const QString& hint, void (RecordPage::*action)());
    void PlaceBar(const QRect& area);
    void PlaceInstruments(const QRect& area);
    void PlaceEvents(const QRect& area);
    void PlaceSonar(const QRect& area);
    void PaintSonar(QPainter& painter) const;
    void MakeEventButtons();

    void ToggleRecording();
    void ToggleFollow();
    void SetFollowing(bool isFollowing);
    bool ZoomBy(int key, Qt::KeyboardModifiers modifiers);
    void FitMap();
    void NextPalette();
    void ToggleBottom();
    void Louder();
    void Quieter();
    void ChangeGain(double by);
    bool AddEvent(const QString& label);
    void AddNote();
    void EnableEvents();
    QStringList SonarText() const;

    void ChooseSource();
    void UseSource(int kind);
    void ChoosePort();
    void ChooseFile(int kind);
    void SetSource(const SurveySettings& settings);
    void FollowSettings();
    void OpenSource();
    bool IsPlanNew() const; ///< the simulated vehicle runs another one
    void UsePlan();
    void OnPlan();
    void ShowPlan();
    void MeasureSpace();

    void OnNews(const ZrRecordingNews& news);
    void OnTick();
    void OnRecording();
    void OnTrouble(const QString& reason);
    void OnFailed(const QString& message);
    void OnEventsLost(const std::vector<ZrLogEvt>& events);
    void TellModel();
    void ShowState();
    void ShowInstruments();
    void ShowRecording();
    void ShowSpaceLeft(qint64 freeBytes);
    void ShowSource();
    void TellFeed();
    void TellLoss(const ZrSourceFacts& facts);
    SurveyRecording::Notice LossNotice(const ZrSourceFacts& facts) const;
    void ShowSonar();

    ZrRecordingSession m_session;
    LiveMap m_map;
    ZrMapSurface m_sonar;
    ZrWaterfallLayer m_sonarLayer;
    ZrLiveWaterfall m_waterfall;
    QTimer* m_tick; ///< ages grow while nothing comes

    ZrMapPanel* m_mapPanel;
    ZrMapPanel* m_sonarPanel;
    ZrBtn* m_record;
    ZrBtn* m_source;
    QVector<ZrBtn*> m_mapTools;
    QVector<ZrBtn*> m_sonarTools;
    ZrBtn* m_follow;
    ZrBtn* m_bottom;
    QRect m_sonarHead; ///< above the waterfall: its looks, and the tools for them
    QVector<ZrValueTile*> m_figures; ///< of the recording
    ZrValueTile* m_elapsed;
    ZrValueTile* m_size;
    ZrValueTile* m_rate;
    ZrValueTile* m_free;
    QVector<ZrValueTile*> m_instruments;
    ZrValueTile* m_heading;
    ZrValueTile* m_depth;
    ZrValueTile* m_altitude;
    ZrValueTile* m_speed;
    ZrValueTile* m_pitch;
    ZrValueTile* m_roll;
    ZrValueTile* m_fix;
    QVector<ZrBtn*> m_events;
    QStringList m_eventLabels; ///< that the buttons were made of
    ZrInput* m_note;
    ZrBtn* m_addNote;
    StateBanner* m_banner;
    ZrChoicePanel* m_sources;
    ZrChoicePanel* m_ports;
    ZrFilePanel* m_files;

    QString m_openKey; ///< of the source that was opened
    SurveySettings m_opened; ///< its settings
    int m_fileKind = 0; ///< of the source that `m_files` asks for, a `SurveySource::eKind`
    QByteArray m_openPlan; ///< that it runs, see `ZrRouteKey`
    ZrSourceWatch m_watch;
    SurveyRecording::Notice m_loss; ///< that nothing comes while it is recorded, as it was told
    QString m_lossKey; ///< of the source that it is about
    QString m_lossTime; ///< when it began
    double m_flowAt = 0.0; ///< when nothing was to be told, of the session's clock
    int m_shownPlan = -1; ///< revision of the plan on the map
    bool m_isShownRun = false; ///< as the simulated vehicle runs it
    u64 m_sourceNumber = 0;
    double m_toldData = 0.0; ///< when the data came that the others were told of, of the session's clock
    double m_toldFix = 0.0; ///< likewise the position
    qint64 m_space = -1; ///< bytes free while nothing is recorded; -1 not known
    int m_ticks = 0;
    bool m_hasLog = false; ///< the recording asked for last has begun
};
