#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/sonar/ZrSonarMeasure.h"
#include "ZrKit/sonar/ZrWaterfallPoint.h"

#include <QCoreApplication>
#include <QPointF>

#include <optional>

class QColor;
class QPainter;
class ZrSurveyRecording;
class ZrWaterfallLayout;

/// A target that is marked and measured in a waterfall by hand: a tap marks it, a drag along it gives its
/// extent, and a tap at the end of its shadow its height.
///
/// \code
/// connect(panel, &ZrWaterfallPanel::Tapped, this, [this](const ZrWaterfallPoint& point) {
///     if (!m_marker.Tap(point))
///         Warn(m_marker.Error());
/// });
/// panel->m_overlay = [this](QPainter& painter, const ZrWaterfallLayout& layout) {
///     m_marker.Paint(painter, layout, ratio, Qt::cyan);
/// };
/// m_recording->Events().Add(ZrTargetEvent::ToEvent(*m_marker.Target(), name));
/// \endcode
///
/// Functions that measure are false, with a sentence for the user in `Error` and the marks as they were,
/// where nothing was recorded, where `ZrSonarMeasure` refuses, and where no position was recorded near:
/// within ten seconds, or a minute between two. Lines are counted from 1 there. One thread; the recording
/// must outlive its use here.
class ZR_KIT_EXPORT ZrTargetMarker
{
    Q_DECLARE_TR_FUNCTIONS(ZrTargetMarker)

public:
    void SetRecording(const ZrSurveyRecording* recording); ///< null for none; forgets what was marked

    bool HasSonar() const; ///< there is something to mark in

    void Clear();

    /// Marks a target, anew each time; with `WantsShadow` the end of the shadow of the one that is marked.
    bool Tap(const ZrWaterfallPoint& point);

    /// Marks a target from one of its ends to the other.
    bool Draw(const ZrWaterfallPoint& from, const ZrWaterfallPoint& to);

    void SetWantsShadow(bool wants); ///< until the next tap that gives a height, or another target

    bool WantsShadow() const { return m_wantsShadow; }

    const std::optional<ZrSonarTarget>& Target() const { return m_target; } ///< with all that was measured

    const std::optional<ZrSonarMeasure::Extent>& Extent() const { return m_extent; }

    const std::optional<ZrSonarMeasure::Shadow>& Shadow() const { return m_shadow; }

    QString Error() const { return m_error; } ///< why the last call failed; else empty

    /// The recorded spot at a place of the waterfall; nothing where there is none.
    std::optional<ZrSonarSpot> SpotAt(const ZrWaterfallPoint& point) const;

    /// The marks, in pixels of the layout. \param unit pixels of the layout for a design pixel
    void Paint(QPainter& painter, const ZrWaterfallLayout& layout, double unit, const QColor& colour) const;

private:
    bool HasPlace(const ZrSonarSpot& spot);
    bool Mark(const ZrSonarSpot& spot);
    bool MarkShadow(const ZrSonarSpot& spot);
    bool Fail(const QString& error);
    QPointF PixelOf(const ZrWaterfallLayout& layout, const ZrSonarSpot& spot) const;

    const ZrSurveyRecording* m_recording = nullptr;
    QString m_error;
    bool m_wantsShadow = false;
    std::optional<ZrSonarTarget> m_target;
    std::optional<ZrSonarSpot> m_end; ///< the other one of what was drawn
    std::optional<ZrSonarMeasure::Extent> m_extent;
    std::optional<ZrSonarMeasure::Shadow> m_shadow;
    ZrSonarSpot m_shadowEnd;
};
