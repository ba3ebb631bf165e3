#include "apps/ZrSurvey/ReviewMeasure.h"

#include "ZrKit/map/ZrWaterfallPanel.h"
#include "ZrKit/survey/ZrSurveyRecording.h"
#include "ZrKit/ui/ZrColourScheme.h"
#include "ZrKit/ui/ZrLegible.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrTheme.h"
#include "ZrUtil/ZrUnits.h"
#include "apps/ZrSurvey/ReviewText.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

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
    m_shadowButton->setToolTip(tr("Tap the end of the target's shadow"));
    m_store->text = tr("Store");
    m_store->setToolTip(tr("Keep it as an event (Return)"));
    m_clear->text = tr("Clear");
    connect(m_shadowButton, &ZrBtn::Toggled, this, [this](bool on) {
        m_wantsShadow = on;
        update();
    });
    connect(m_store, &ZrBtn::Clicked, this, &ReviewMeasure::Store);
    connect(m_clear, &ZrBtn::Clicked, this, &ReviewMeasure::Clear);
    connect(&panel, &ZrWaterfallPanel::Tapped, this, &ReviewMeasure::OnTapped);
    connect(&panel, &ZrWaterfallPanel::Drawn, this, &ReviewMeasure::OnDrawn);
}

void ReviewMeasure::Show(ZrSurveyRecording* recording)
{
    m_recording = recording;
    Clear();
    SetOn(false);
}

void ReviewMeasure::SetOn(bool on)
{
    const bool isOn = on && m_recording && m_recording->HasSonar();
    const bool isNew = isOn != m_isOn;
    m_isOn = m_panel.m_isPointing = isOn;
    setVisible(isOn);
    if (isOn)
        raise();
    Update();
    if (isNew)
        Q_EMIT OnChanged();
}

void ReviewMeasure::Clear()
{
    m_target.reset();
    m_end.reset();
    m_extent.reset();
    m_shadow.reset();
    m_wantsShadow = false;
    Update();
}

void ReviewMeasure::Update()
{
    for (ZrBtn* button : {m_shadowButton, m_store, m_clear})
        button->setVisible(m_target.has_value());
    m_shadowButton->setEnabled(m_target.has_value());
    m_shadowButton->on = m_wantsShadow;
    m_store->setEnabled(m_target.has_value());
    m_clear->setEnabled(m_target.has_value());
    m_shadowButton->Changed();
    m_panel.update();
    Place(m_area, m_bottom);
    update();
}

std::optional<ZrSonarSpot> ReviewMeasure::SpotAt(const ZrWaterfallPoint& point) const
{
    if (!m_recording || !point.IsValid())
        return {};
    const auto ping = static_cast<std::size_t>(std::max(std::lround(point.ping), 0L));
    if (ping >= m_recording->Pings().size())
        return {};
    const ZrSonarChannel& channel = m_recording->Pings()[ping].sides[point.side];
    const double sample = point.slantRange / channel.SampleLength() - 0.5;
    if (!std::isfinite(sample))
        return {};
    return ZrSonarSpot{ping, point.side, std::clamp(sample, 0.0, channel.sampleCount - 1.0)};
}

void ReviewMeasure::Mark(const ZrSonarSpot& spot)
{
    ZrSonarMeasure measure(m_recording->Geo());
    ZrSonarTarget target;
    if (!measure.Place(spot, target)) {
        Q_EMIT Failed(measure.Error());
        return;
    }
    Clear();
    m_target = target;
    Update();
}

void ReviewMeasure::OnTapped(const ZrWaterfallPoint& point)
{
    if (!m_isOn)
        return;
    const std::optional<ZrSonarSpot> spot = SpotAt(point);
    if (!spot) {
        Q_EMIT Failed(tr("Nothing was recorded there."));
        return;
    }
    if (!m_wantsShadow || !m_target) {
        Mark(*spot);
        return;
    }
    if (spot->side != m_target->spot.side) {
        Q_EMIT Failed(tr("The shadow lies on the target's side of the track."));
        return;
    }
    ZrSonarMeasure measure(m_recording->Geo());
    ZrSonarMeasure::Shadow shadow;
    if (!measure.Height(m_target->spot, spot->sample, shadow)) {
        Q_EMIT Failed(measure.Error());
        return;
    }
    m_shadow = shadow;
    m_shadowEnd = {m_target->spot.ping, spot->side, spot->sample};
    m_target->height = shadow.height;
    m_wantsShadow = false;
    Update();
}

void ReviewMeasure::OnDrawn(const QPointF& from, const QPointF& to, bool isDone)
{
    if (!m_isOn)
        return;
    const std::optional<ZrSonarSpot> a = SpotAt(m_panel.Layout().ToSonar(from));
    const std::optional<ZrSonarSpot> b = SpotAt(m_panel.Layout().ToSonar(to));
    if (!a || !b) {
        if (isDone)
            Q_EMIT Failed(tr("Nothing was recorded at one of the ends."));
        return;
    }
    ZrSonarMeasure measure(m_recording->Geo());
    ZrSonarTarget target;
    ZrSonarMeasure::Extent extent;
    if (!measure.Place(*a, target) || !measure.Between(*a, *b, extent)) {
        if (isDone)
            Q_EMIT Failed(measure.Error());
        return;
    }
    m_shadow.reset();
    m_target = target;
    m_target->length = extent.length;
    m_target->width = extent.width;
    m_end = b;
    m_extent = extent;
    Update();
}

void ReviewMeasure::Store()
{
    if (m_target)
        Q_EMIT Stored(*m_target);
}

QVector<ReviewMeasure::Line> ReviewMeasure::Lines() const
{
    QVector<Line> lines;
    if (!m_target)
        return lines;
    const auto metres = [](double value) { return review::length_text(value, 2); };
    lines.append({tr("Position"), review::position_text(m_target->position.lat, m_target->position.lng)});
    lines.append({tr("Slant range"), metres(m_target->slantRange)});
    lines.append({tr("Ground range"), metres(m_target->groundRange)});
    if (m_extent) {
        lines.append({tr("Length"), metres(m_extent->distance)});
        lines.append({tr("Bearing"), review::angle_text(m_extent->bearing)});
        lines.append({tr("Along track"), metres(m_extent->length)});
        lines.append({tr("Across track"), metres(m_extent->width)});
    }
    if (m_shadow) {
        lines.append(
            {tr("Height"), metres(m_shadow->height) + QStringLiteral(" ± ") + metres(m_shadow->step)});
    }
    return lines;
}

// -- Look

QPointF ReviewMeasure::PixelOf(const ZrSonarSpot& spot) const
{
    const ZrSonarChannel& channel = m_recording->Pings()[spot.ping].sides[spot.side];
    return m_panel.Layout().ToPixel(
        static_cast<double>(spot.ping), spot.side, (spot.sample + 0.5) * channel.SampleLength());
}

void ReviewMeasure::PaintMarks(QPainter& painter)
{
    if (!m_isOn || !m_target)
        return;
    const QPointF at = PixelOf(m_target->spot);
    if (std::isnan(at.x()))
        return;
    const double unit = static_cast<double>(ZrTheme::dp) * m_panel.devicePixelRatioF();
    painter.setRenderHint(QPainter::Antialiasing);
    const auto both = [&](const auto& draw) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(QColor(0, 0, 0, 200), 5.0 * unit));
        draw();
        painter.setPen(QPen(ZrColourScheme::OverPicture(QColor(90, 230, 255)), 2.0 * unit));
        draw();
    };
    both([&] {
        painter.drawEllipse(at, 12.0 * unit, 12.0 * unit);
        painter.drawLine(at + QPointF(12.0 * unit, 0.0), at + QPointF(20.0 * unit, 0.0));
        painter.drawLine(at - QPointF(12.0 * unit, 0.0), at - QPointF(20.0 * unit, 0.0));
        if (m_end) {
            const QPointF to = PixelOf(*m_end);
            if (!std::isnan(to.x())) {
                painter.drawLine(at, to);
                painter.drawEllipse(to, 5.0 * unit, 5.0 * unit);
            }
        }
        if (m_shadow) {
            const QPointF to = PixelOf(m_shadowEnd);
            painter.drawLine(at, to);
            painter.drawLine(to - QPointF(0.0, 8.0 * unit), to + QPointF(0.0, 8.0 * unit));
        }
    });
    painter.setRenderHint(QPainter::Antialiasing, false);
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
    const int row = QFontMetrics(ZrTheme::font).height() + ZrTheme::DpI(2);
    const int side = std::max(ZrTheme::DpI(48), 44);
    // Before anything is marked it is a hint that covers little.
    const int below = m_target ? side + margin : 0;
    const int rows = std::max(static_cast<int>(Lines().size()), m_target ? 2 : 1);
    const QSize size
        = QSize(ZrTheme::DpI(m_target ? 380 : 440), rows * row + below + 2 * margin)
              .boundedTo(QSize(area.width(), m_bottom - area.y()) - QSize(2 * margin, 2 * margin));
    // A hint is no obstacle, and what is beside the waterfall none for measuring: all of it can be tapped.
    setAttribute(Qt::WA_TransparentForMouseEvents, !m_target);
    const bool isBeside = m_target && area.x() > size.width() + 2 * margin;
    // Otherwise on the side where the target is not.
    const bool isLeft = m_target && m_target->spot.side == sideStarboard;
    const int x0 = isBeside ? area.x() - size.width() - margin
        : isLeft            ? area.x() + margin
                            : area.right() - size.width() - margin;
    const int y0 = std::max(area.bottom() - size.height() - margin, area.y() + margin);
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
    const int below = m_target ? m_store->height() + margin : 0;
    const QRect text = rect().adjusted(margin, margin, -margin, -margin - below);
    painter.setFont(ZrTheme::font);
    const QVector<Line> lines = Lines();
    if (lines.isEmpty() || m_wantsShadow) {
        painter.setPen(ZrTheme::bodyCol);
        painter.drawText(text, Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap,
            m_wantsShadow ? tr("Tap where the shadow of the target ends.")
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
        painter.setFont(ZrTheme::font);
        y += row;
    }
}
