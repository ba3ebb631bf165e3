#pragma once

#include "ZrKit/map/ZrWaterfallLoader.h"

#include <QObject>

#include <memory>

class QPainter;
class ReviewLook;
class ReviewMeasure;
class SurveyPage;
class ZrSurveyRecording;
class ZrWaterfallLayout;
class ZrWaterfallPanel;

/// The waterfall of the page "Review": both sides around the cursor, the bottom line, the events, the
/// measuring tool.
class ReviewSonar : public QObject
{
    Q_OBJECT

public:
    explicit ReviewSonar(SurveyPage& page);
    ~ReviewSonar() override;

    ZrWaterfallPanel& Panel() { return *m_panel; }

    ReviewMeasure& Measure() { return *m_measure; }

    ReviewLook& Look() { return *m_look; }

    const ZrWaterfallLoader* Loader() const { return m_loader.get(); } ///< null without sonar

    void Create(); ///< context current
    void Render(); ///< likewise

    void Show(ZrSurveyRecording* recording); ///< null for nothing
    void SetCursor(double steady);
    void ShowSettings(); ///< those of the display of sonar
    void Place(const QRect& area, bool isVisible);

Q_SIGNALS:
    void ScrubBegan();
    void Scrubbed(double steady);

private:
    void PaintOverlay(QPainter& painter, const ZrWaterfallLayout& layout);
    void PaintBottom(QPainter& painter, const ZrWaterfallLayout& layout);
    void PaintScale(QPainter& painter, const ZrWaterfallLayout& layout);

    SurveyPage& m_page;
    ZrSurveyRecording* m_recording = nullptr;
    ZrWaterfallPanel* m_panel;
    ReviewMeasure* m_measure;
    ReviewLook* m_look;
    std::unique_ptr<ZrWaterfallLoader> m_loader;
};
