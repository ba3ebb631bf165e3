#pragma once

#include "ZrKit/survey/ZrBottomEditor.h"

#include <QVector>
#include <QWidget>

#include <utility>

class QPainter;
class SurveyView;
class ZrBtn;
class ZrSurveyRecording;
class ZrWaterfallLayout;
class ZrWaterfallPanel;
class ZrWorkPanel;

/// Corrects the bottom line in the waterfall: a finger draws it along the first echo of the sea floor, on
/// either side; what was drawn is used and saved at once. A panel beside it has the steps back, the detection
/// and the way out.
class ReviewBottom : public QWidget
{
    Q_OBJECT

public:
    /// Which side the detection listens to.
    enum eSides : int
    {
        portAlone,
        bothSides,
        starboardAlone,
        sidesCount
    };

    ReviewBottom(QWidget* parent, SurveyView& view, ZrWaterfallPanel& panel);
    ~ReviewBottom() override;

    void Show(const std::shared_ptr<ZrSurveyRecording>& recording); ///< null for none
    void SetOn(bool on);

    bool IsOn() const { return m_isOn; }

    ZrBottomEditor& Editor() { return m_editor; }

    void SetSides(int sides);

    int Sides() const { return m_sides; } ///< an `eSides`

    void Undo();
    void Redo();
    void TakeBack(); ///< what was drawn in the lines that are in view
    void Detect(); ///< the line anew there

    void Paint(QPainter& painter, const ZrWaterfallLayout& layout); ///< the line, into the panel's overlay
    void Place(const QRect& area); ///< the part of the page that it may cover
    void Restyle();

    ZrBtn& UndoButton() { return *m_undo; }

    ZrBtn& DetectButton() { return *m_detect; }

Q_SIGNALS:
    void OnChanged();
    void LineChanged(qint64 first, qint64 end); ///< altitudes of these pings, once they are used

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void OnDrawn(const QPointF& from, const QPointF& to, bool isDone);
    std::pair<std::size_t, std::size_t> InView() const; ///< first and last ping
    void Update();

    SurveyView& m_view;
    ZrWaterfallPanel& m_panel;
    std::shared_ptr<ZrSurveyRecording> m_recording;
    ZrBottomEditor m_editor;
    ZrWorkPanel* m_work;
    QVector<ZrBtn*> m_sideButtons; ///< by `eSides`
    ZrBtn* m_undo;
    ZrBtn* m_redo;
    ZrBtn* m_detect;
    ZrBtn* m_clear;
    ZrBtn* m_done;
    QRect m_area;
    int m_sides = bothSides;
    bool m_isOn = false;
    bool m_isDrawing = false;
    QPointF m_last; ///< of the stroke, pixels of the layout
};
