#include "apps/ZrSurvey/ReviewMeasure.h"

#include "ZrKit/map/ZrWaterfallOverlay.h"
#include "ZrKit/map/ZrWaterfallPanel.h"
#include "ZrKit/survey/ZrSurveyRecording.h"
#include "ZrKit/ui/ZrLegible.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrTheme.h"
#include "ZrUtil/ZrUnits.h"
#include "apps/ZrSurvey/ReviewText.h"

#include <QPainter>

#include <algorithm>

ReviewMeasure::ReviewMeasure(QWidget* parent, ZrWaterfallPanel& panel)
    : QWidget(parent)
    , m_panel(panel)
    , m_shadowButton(new ZrBtn(this, ZrBtn::typeStd))
    , m_store(new ZrBtn(this, ZrBtn::typeAccent))
    , m_clear(new ZrBtn(this, ZrBtn::typeStd))
{
    hide();
    m_shadowButton->text = tr("Height");
    m_shadowButton->checkable = true;
    m_shadowButton->setToolTip(tr("Tap the end of the target's shadow (H)"));
    m_store->text = tr("Store");
    m_store->setToolTip(tr("Keep it as an event (Return)"));
    m_clear->text = tr("Clear");
    m_clear->setToolTip(tr("Forget what was measured (C)"));
    connect(m_shadowButton, &ZrBtn::Toggled, this, [this](bool on) {
        m_marker.SetWantsShadow(on);
        update();
    });
    connect(m_store, &ZrBtn::Clicked, this, &ReviewMeasure::Store);
    connect(m_clear, &ZrBtn::Clicked, this, &ReviewMeasure::Clear);
    connect(&panel, &ZrWaterfallPanel::Tapped, this, &ReviewMeasure::OnTapped);
    connect(&panel, &ZrWaterfallPanel::Drawn, this, &ReviewMeasure::OnDrawn);
}

void ReviewMeasure::Show(ZrSurveyRecording* recording)
{
    m_marker.SetRecording(recording);
    SetOn(false);
}

void ReviewMeasure::SetOn(bool on)
{
    const bool isOn = on && m_marker.HasSonar();
    const bool isNew = isOn != m_isOn;
    m_isOn = m_panel.m_isPointing = isOn;
    setVisible(isOn);
    if (isOn)
        raise();
    Update();
    if (isNew)
        Q_EMIT OnChanged();
}

void ReviewMeasure::ToggleShadow()
{
    m_marker.SetWantsShadow(!m_marker.WantsShadow());
    Update();
}

void ReviewMeasure::Clear()
{
    m_marker.Clear();
    Update();
}

void ReviewMeasure::Update()
{
    for (ZrBtn* button : {m_shadowButton, m_store, m_clear})
        button->setVisible(Target().has_value());
    m_shadowButton->setEnabled(Target().has_value());
    m_shadowButton->on = m_marker.WantsShadow();
    m_store->setEnabled(Target().has_value());
    m_clear->setEnabled(Target().has_value());
    m_shadowButton->Changed();
    m_panel.update();
    Place(m_area, m_bottom);
    update();
}

void ReviewMeasure::OnTapped(const ZrWaterfallPoint& point)
{
    if (!m_isOn)
        return;
    if (!m_marker.Tap(point))
        Q_EMIT Failed(m_marker.Error());
    Update();
}

void ReviewMeasure::OnDrawn(const QPointF& from, const QPointF& to, bool isDone)
{
    if (!m_isOn)
        return;
    const ZrWaterfallLayout& layout = m_panel.Layout();
    // A finger on its way may be where nothing was recorded.
    if (!m_marker.Draw(layout.ToSonar(from), layout.ToSonar(to)) && isDone)
        Q_EMIT Failed(m_marker.Error());
    Update();
}

void ReviewMeasure::Store()
{
    if (Target())
        Q_EMIT Stored(*Target());
}

QVector<ReviewMeasure::Line> ReviewMeasure::Lines() const
{
    QVector<Line> lines;
    if (!Target())
        return lines;
    const auto metres = [](double value) { return review::length_text(value, 2); };
    lines.append({tr("Position"), review::position_text(Target()->position.lat, Target()->position.lng)});
    lines.append({tr("Slant range"), metres(Target()->slantRange)});
    lines.append({tr("Ground range"), metres(Target()->groundRange)});
    if (Extent()) {
        lines.append({tr("Length"), metres(Extent()->distance)});
        lines.append({tr("Bearing"), review::angle_text(Extent()->bearing)});
        lines.append({tr("Along track"), metres(Extent()->length)});
        lines.append({tr("Across track"), metres(Extent()->width)});
    }
    if (Shadow()) {
        lines.append(
            {tr("Height"), metres(Shadow()->height) + QStringLiteral(" ± ") + metres(Shadow()->step)});
    }
    return lines;
}

// -- Look

void ReviewMeasure::PaintMarks(QPainter& painter)
{
    if (m_isOn)
        m_marker.Paint(painter, m_panel.Layout(),
            static_cast<double>(ZrTheme::dp) * m_panel.devicePixelRatioF(),
            review::mark_ink(QColor(90, 230, 255)));
}

void ReviewMeasure::Restyle()
{
    for (ZrBtn* button : {m_shadowButton, m_store, m_clear})
        button->Changed();
    Place(m_area, m_bottom);
}

void ReviewMeasure::Place(const QRect& area, int bottom)
{
    m_bottom = bottom;
    m_area = area;
    const int margin = ZrTheme::DpI(12);
    const int row = QFontMetrics(review::body_font()).height() + ZrTheme::DpI(2);
    const int side = std::max(ZrTheme::DpI(48), 44);
    // Before anything is marked it is a hint that covers little.
    const int below = Target() ? side + margin : 0;
    const int rows = std::max(static_cast<int>(Lines().size()), Target() ? 2 : 1);
    const QSize size
        = QSize(ZrTheme::DpI(Target() ? 380 : 440), rows * row + below + 2 * margin)
              .boundedTo(QSize(area.width(), m_bottom - area.y()) - QSize(2 * margin, 2 * margin));
    // A hint is no obstacle, and what is beside the waterfall none for measuring: all of it can be tapped.
    setAttribute(Qt::WA_TransparentForMouseEvents, !Target());
    const bool isBeside = Target() && area.x() > size.width() + 2 * margin;
    // Otherwise on the side where the target is not.
    const bool isLeft = Target() && Target()->spot.side == sideStarboard;
    const int x0 = isBeside ? area.x() - size.width() - margin
        : isLeft            ? area.x() + margin
                            : area.right() - size.width() - margin;
    // Above the numbers of the scale, of which half would be left.
    const int scale = ZrWaterfallOverlay::ScaleHeight(ZrLegible::Font(14));
    const int y0 = std::max(area.bottom() - size.height() - margin - scale, area.y() + margin);
    setGeometry(x0, y0, size.width(), size.height());
    const int button = (size.width() - 4 * margin) / 3;
    int x = margin;
    for (ZrBtn* each : {m_shadowButton, m_clear, m_store}) {
        each->setGeometry(x, size.height() - margin - side, button, side);
        x += button + margin;
    }
}

void ReviewMeasure::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor back = ZrTheme::formBack;
    back.setAlpha(235);
    painter.setPen(QPen(ZrTheme::formBdr, 1));
    painter.setBrush(back);
    painter.drawRoundedRect(rect().adjusted(0, 0, -1, -1), ZrTheme::rxy, ZrTheme::rxy);
    const int margin = ZrTheme::DpI(12);
    const int below = Target() ? m_store->height() + margin : 0;
    const QRect text = rect().adjusted(margin, margin, -margin, -margin - below);
    painter.setFont(review::body_font());
    const QVector<Line> lines = Lines();
    if (lines.isEmpty() || m_marker.WantsShadow()) {
        painter.setPen(ZrTheme::bodyCol);
        painter.drawText(text, Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap,
            m_marker.WantsShadow() ? tr("Tap where the shadow of the target ends.")
                                   : tr("Tap a target, or drag along it for its length."));
        return;
    }
    const QFontMetrics metrics = painter.fontMetrics();
    const int row = metrics.height() + ZrTheme::DpI(2);
    int y = text.y();
    for (const Line& line : lines) {
        if (y + row > text.bottom() + 2)
            break;
        const QRect at(text.x(), y, text.width(), row);
        painter.setPen(ZrTheme::bodyCol);
        painter.drawText(at, Qt::AlignLeft | Qt::AlignVCenter, line.caption);
        const int room = at.width() - metrics.horizontalAdvance(line.caption) - ZrTheme::DpI(12);
        painter.setFont(ZrLegible::Fitting(painter.font(), line.value, room));
        painter.setPen(ZrTheme::ctrlCol);
        painter.drawText(at, Qt::AlignRight | Qt::AlignVCenter, line.value);
        painter.setFont(review::body_font());
        y += row;
    }
}
