#pragma once

#include "ZrKit/survey/ZrTargetMarker.h"

#include <QWidget>

class QPainter;
class ZrBtn;
class ZrSurveyRecording;
class ZrWaterfallPanel;

/// What was measured in the waterfall: a target by a tap, its length by a drag, its height by the end of its
/// shadow; told in a panel, and stored as an event.
class ReviewMeasure : public QWidget
{
    Q_OBJECT

public:
    ReviewMeasure(QWidget* parent, ZrWaterfallPanel& panel);

    void Show(ZrSurveyRecording* recording); ///< null for none; forgets what was measured
    void SetOn(bool on);

    bool IsOn() const { return m_isOn; }

    void ToggleShadow(); ///< whether the next tap is the end of the target's shadow
    void Clear();
    void Store(); ///< what was marked last, if anything

    const std::optional<ZrSonarTarget>& Target() const { return m_marker.Target(); } ///< marked last

    const std::optional<ZrSonarMeasure::Extent>& Extent() const { return m_marker.Extent(); }

    const std::optional<ZrSonarMeasure::Shadow>& Shadow() const { return m_marker.Shadow(); }

    void PaintMarks(QPainter& painter); ///< into the overlay of the panel
    /// \param area of the waterfall; \param bottom as far down as the panel may reach beside or over it
    void Place(const QRect& area, int bottom);
    void Restyle();

    ZrBtn& ShadowButton() { return *m_shadowButton; }

    ZrBtn& StoreButton() { return *m_store; }

Q_SIGNALS:
    void Failed(const QString& reason); ///< a sentence
    void Stored(const ZrSonarTarget& target);
    void OnChanged();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    struct Line
    {
        QString caption;
        QString value;
    };

    void OnTapped(const ZrWaterfallPoint& point);
    void OnDrawn(const QPointF& from, const QPointF& to, bool isDone);
    void Update();
    QVector<Line> Lines() const;

    ZrWaterfallPanel& m_panel;
    ZrTargetMarker m_marker;
    ZrBtn* m_shadowButton;
    ZrBtn* m_store;
    ZrBtn* m_clear;
    QRect m_area;
    int m_bottom = 0;
    bool m_isOn = false;
};
