#pragma once

#include "ZrKit/map/ZrWaterfallLoader.h"
#include "ZrKit/sonar/ZrSonarTarget.h"

#include <QObject>

#include <memory>
#include <vector>

class QPainter;
class ReviewBottom;
class ReviewLook;
class ReviewMeasure;
class SurveyPage;
class ZrSurveyRecording;
class ZrWaterfallLayout;
class ZrWaterfallPanel;

/// The waterfall of the page "Review": both sides around the cursor, the bottom line and its correction, the
/// events, the measuring tool. Of the two tools one is on at a time.
class ReviewSonar : public QObject
{
    Q_OBJECT

public:
    explicit ReviewSonar(SurveyPage& page);
    ~ReviewSonar() override;

    ZrWaterfallPanel& Panel() { return *m_panel; }

    ReviewMeasure& Measure() { return *m_measure; }

    ReviewBottom& Bottom() { return *m_bottom; }

    ReviewLook& Look() { return *m_look; }

    const ZrWaterfallLoader* Loader() const { return m_loader.get(); } ///< null without sonar

    void Create(); ///< context current
    void Render(bool isWhole); ///< likewise; else only what its palettes need

    void Show(const std::shared_ptr<ZrSurveyRecording>& recording); ///< null for nothing
    void SetCursor(double steady);
    void ShowEvents(); ///< after a change of those of the recording
    void ShowSettings(); ///< those of the display of sonar
    /// \param area of the waterfall; \param panes all of them, over which its panels may lie
    void Place(const QRect& area, const QRect& panes, bool isVisible);

Q_SIGNALS:
    void ScrubBegan();
    void Scrubbed(double steady);
    void ToolChanged(); ///< one was turned on or off
    void BottomChanged(); ///< the altitude of some pings is another one

private:
    void PaintOverlay(QPainter& painter, const ZrWaterfallLayout& layout);
    void PaintEvents(QPainter& painter, const ZrWaterfallLayout& layout);

    SurveyPage& m_page;
    ZrSurveyRecording* m_recording = nullptr;
    std::vector<ZrSonarTarget> m_targets; ///< among the events
    ZrWaterfallPanel* m_panel;
    ReviewMeasure* m_measure;
    ReviewBottom* m_bottom;
    ReviewLook* m_look;
    std::unique_ptr<ZrWaterfallLoader> m_loader;
    bool m_hasPalettes = false; ///< they are read for the first recording with sonar
};
