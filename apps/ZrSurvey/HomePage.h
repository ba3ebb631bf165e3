#pragma once

#include "ZrKit/review/ZrRecordingList.h"
#include "ZrKit/review/ZrRecordingPreviews.h"
#include "apps/ZrSurvey/HomeState.h"
#include "apps/ZrSurvey/SurveyPage.h"

#include <QCache>

#include <functional>

class QTimer;
class StateBanner;
class ZrEntryBtn;
class ZrTouchList;

/// The state at a glance, the latest recordings, and the way to everything else.
///
/// Recordings without a preview get one while the page is shown and nothing is recorded; pictures are drawn
/// of the rows in view alone. The tiles are looked at once a second while the page is shown, the folder of
/// recordings every ten: what says the same as before is not painted.
class HomePage : public SurveyPage
{
    Q_OBJECT

public:
    explicit HomePage(SurveyView& view);

    void OnPageOpen() override;
    void OnColours() override;

protected:
    void Place() override;
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void AddEntry(const QString& icon, const QString& title, const QString& hint, const QString& key,
        const std::function<void()>& open);
    void ListRecordings();
    void ShowRecordings();
    void ShowState();
    void TellRate();
    void OnVehicle();
    void OnTick();
    QImage Picture(int row);
    QImage Preview(const ZrRecording& recording) const;
    void WantPreviews();
    QRect HeadingRect() const;

    QVector<ZrEntryBtn*> m_entries;
    ZrValueTile* m_position;
    ZrValueTile* m_data;
    ZrValueTile* m_recording;
    ZrValueTile* m_space;
    StateBanner* m_banner;
    ZrTouchList* m_list;
    ZrRecordingList* m_recordings;
    ZrRecordingPreviews* m_previews;
    QCache<QString, QImage> m_pictures; ///< by path; in kB
    QTimer* m_leave; ///< until the page was left for long
    QVector<ZrRecording> m_shown;
    QRect m_panel; ///< around the list
    QTimer* m_tick;
    int m_ticks = 0;
    QElapsedTimer m_dataClock; ///< since the last data of the vehicle
    QElapsedTimer m_fixClock; ///< since its last position
};
