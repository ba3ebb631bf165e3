#include "apps/ZrSurvey/PlanPatternPanel.h"

#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrInput.h"
#include "ZrUtil/ZrSlider.h"
#include "ZrUtil/ZrTheme.h"
#include "ZrUtil/ZrUnits.h"
#include "apps/ZrSurvey/SurveyView.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace {

constexpr int makeMs = 30;
constexpr int signMs = 250; ///< what is planned sooner needs no sign of work
constexpr int ownSpeed = 4; ///< `ZrWpt::spdType`
constexpr double largestSpacing = 5000.0; ///< metres
constexpr double largestRadius = 1000.0; ///< metres
constexpr int mostBeside = 50; ///< lines

} // namespace

PlanPatternPanel::PlanPatternPanel(SurveyView& view, QWidget* parent)
    : PlanPanel(view, parent)
    , m_timer(new QTimer(this))
    , m_sign(new QTimer(this))
    , m_spacing(AddField(tr("Line spacing"), ZrInput::kindShortLength,
          [this](double value) {
              m_settings.lineSpacing = value;
              Later();
          }))
    , m_radius(AddField(tr("Turn radius"), ZrInput::kindShortLength,
          [this](double value) {
              m_settings.turnRadius = value;
              Later();
          }))
    , m_overshoot(AddField(tr("Overshoot"), ZrInput::kindShortLength,
          [this](double value) {
              m_settings.overshoot = value;
              Later();
          }))
    , m_speed(AddField(tr("Speed"), ZrInput::kindSpeed,
          [this](double value) {
              m_settings.speed = value;
              Later();
          }))
    , m_beside(AddField(tr("Lines on each side"), ZrInput::kindInt,
          [this](double value) {
              m_linesBeside = qRound(value);
              Later();
          }))
    , m_heading(new ZrSlider(this))
    , m_along(AddButton(QString(), tr("Along the longest side"), tr("Heading of the longest side"),
          [this] {
              m_settings.heading
                  = m_along->on ? std::numeric_limits<double>::quiet_NaN() : m_heading->Value();
              Later();
          }))
    , m_order(AddButton(QStringLiteral("pattern"), QString(), tr("The order of the lines"),
          [this] {
              m_settings.order = static_cast<ZrSurveySettings::eOrder>(
                  (m_settings.order + 1) % (ZrSurveySettings::Racetrack + 1));
              Later();
          }))
    , m_entry(AddButton(QStringLiteral("target"), QString(), tr("The corner to begin at"),
          [this] {
              m_settings.entry = static_cast<ZrSurveySettings::eEntry>(
                  (m_settings.entry + 1) % (ZrSurveySettings::FarRight + 1));
              Later();
          }))
    , m_apply(new ZrBtn(this, ZrBtn::typeAccent))
    , m_cancel(AddButton(QStringLiteral("cancel"), tr("Cancel"), tr("Leave without lines (Esc)"),
          [this] { Q_EMIT CancelWanted(); }))
{
    m_settings.turnRadius = 10.0;
    m_settings.overshoot = 10.0;
    m_settings.spdType = ownSpeed;
    m_settings.speed = 1.5;
    m_spacing->SetRange(0.5, largestSpacing);
    m_radius->SetRange(0.0, largestRadius);
    m_overshoot->SetRange(0.0, largestRadius);
    m_speed->SetRange(0.1, 20.0);
    m_beside->SetRange(0.0, mostBeside);
    m_spacing->SetValue(m_settings.lineSpacing);
    m_radius->SetValue(m_settings.turnRadius);
    m_overshoot->SetValue(m_settings.overshoot);
    m_speed->SetValue(m_settings.speed);
    m_beside->SetValue(m_linesBeside);
    m_along->checkable = true;
    m_along->on = true;
    m_heading->text = tr("Heading");
    m_heading->unit = ZrUnits::degrees;
    m_heading->SetRange(0.0, 359.0);
    m_heading->SetStep(1.0);
    connect(m_heading, &ZrSlider::ValueChanged, this, [this](double value) {
        m_along->on = false;
        m_along->update();
        m_settings.heading = value;
        Later();
    });
    m_apply->text = tr("Apply");
    m_apply->setObjectName(QStringLiteral("apply"));
    m_apply->img = QImage(QStringLiteral(":/icons/check.png"));
    m_apply->setToolTip(tr("Make the lines part of the plan (Return)"));
    connect(m_apply, &ZrBtn::Clicked, this, &PlanPatternPanel::Apply);
    connect(&m_planner, &ZrSurveyPlanner::Ready, this, &PlanPatternPanel::OnReady);
    m_timer->setSingleShot(true);
    m_timer->setInterval(makeMs);
    connect(m_timer, &QTimer::timeout, this, &PlanPatternPanel::Make);
    m_sign->setSingleShot(true);
    m_sign->setInterval(signMs);
    connect(m_sign, &QTimer::timeout, this, qOverload<>(&QWidget::update));
}

void PlanPatternPanel::SetBase(std::shared_ptr<const ZrSurveyPreview::Base> base)
{
    m_planner.SetBase(std::move(base));
    Later();
}

void PlanPatternPanel::SetArea(const ZrArea& area)
{
    m_area = area;
    m_isCorridor = false;
    Restyle();
    Make();
}

void PlanPatternPanel::SetGuide(const std::vector<ZrGeoPoint>& guide)
{
    m_guide = guide;
    m_isCorridor = true;
    Restyle();
    Make();
}

void PlanPatternPanel::Later()
{
    m_isApplyDue = false;
    m_timer->start();
    ShowState();
}

void PlanPatternPanel::Make()
{
    m_timer->stop();
    m_isApplyDue = false;
    if (m_isCorridor) {
        ZrSurveyCorridorSettings settings;
        static_cast<ZrSurveySettings&>(settings) = m_settings;
        settings.lineSpacing = m_settings.lineSpacing;
        settings.linesLeft = settings.linesRight = m_linesBeside;
        m_planner.Make(m_guide, settings);
    } else {
        m_planner.Make(m_area, m_settings);
    }
    ShowChoices();
    ShowState();
}

void PlanPatternPanel::OnReady()
{
    // A finger on the slider is ahead of what is planned.
    if (Problem().isEmpty() && IsCurrent()) {
        const QSignalBlocker blocker(m_heading);
        m_heading->SetValue(Plan().heading);
    }
    ShowState();
    Q_EMIT Planned();
    if (m_isApplyDue && IsCurrent())
        Apply();
}

void PlanPatternPanel::Apply()
{
    m_isApplyDue = !IsCurrent();
    if (m_timer->isActive()) {
        Make();
        m_isApplyDue = true;
    }
    ShowState();
    if (!m_isApplyDue && !Plan().waypoints.empty())
        Q_EMIT Applied();
}

void PlanPatternPanel::ShowState()
{
    // Of what is planned now nothing is known yet.
    const bool isUseful = !IsCurrent() || !Plan().waypoints.empty();
    m_apply->setEnabled(isUseful);
    m_apply->text = m_isApplyDue ? tr("Planning …") : tr("Apply");
    m_apply->Changed();
    if (IsCurrent())
        m_sign->stop();
    else if (!m_sign->isActive())
        m_sign->start();
    update(m_textRect);
}

void PlanPatternPanel::ShowChoices()
{
    const QStringList orders{tr("Line by line"), tr("Every other"), tr("Even then odd"), tr("Racetrack")};
    const QStringList entries{tr("Near left"), tr("Near right"), tr("Far left"), tr("Far right")};
    m_order->text = orders[m_settings.order];
    m_entry->text = entries[m_settings.entry];
    m_order->Changed();
    m_entry->Changed();
}

void PlanPatternPanel::Restyle()
{
    ShowChoices();
    PlanPanel::Restyle();
}

void PlanPatternPanel::Place()
{
    m_heading->setVisible(!m_isCorridor);
    m_along->setVisible(!m_isCorridor);
    m_beside->setVisible(m_isCorridor);
    int y = PlaceFields({m_spacing, m_radius, m_overshoot, m_speed}, Gap());
    if (m_isCorridor) {
        y = PlaceFields({m_beside}, y);
    } else {
        const int slider = std::max(ZrTheme::DpI(72), 60);
        m_heading->setGeometry(Margin(), y, width() - 2 * Margin(), slider);
        y = PlaceRow({m_along}, y + slider + Gap(), 52);
    }
    y = PlaceRow({m_order, m_entry}, y, 64);
    const int bottom = height() - std::max(ZrTheme::DpI(64), 44) - Margin();
    PlaceRow({m_cancel, m_apply}, bottom, 64);
    m_textRect = QRect(Margin(), y, width() - 2 * Margin(), bottom - y - Gap());
}

void PlanPatternPanel::paintEvent(QPaintEvent* event)
{
    PlanPanel::paintEvent(event);
    QPainter painter(this);
    const int flags = Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap;
    painter.setFont(ZrTheme::font);
    if (!IsCurrent() && !m_sign->isActive()) {
        painter.setPen(ZrTheme::bodyCol);
        painter.drawText(m_textRect, flags, tr("Planning the lines …"));
        return;
    }
    if (!Problem().isEmpty()) {
        painter.setPen(ZrTheme::errorCol);
        painter.drawText(m_textRect, flags, Problem());
        return;
    }
    painter.setPen(ZrTheme::ctrlCol);
    const auto length = [](double metres) {
        return std::isfinite(metres)
            ? ZrUnits::GetLengthString(metres, 2, false) + QLatin1Char(' ') + ZrUnits::GetLengthUnits(metres)
            : QStringLiteral("–");
    };
    const ZrSurveyPlan& plan = Plan();
    QString text = tr("Lines: %1").arg(plan.lines.size()) + QLatin1Char('\n')
        + tr("%1 on lines, %2 in all").arg(length(plan.lineLength), length(Preview().length));
    if (!plan.findings.empty())
        text += QStringLiteral("\n") + plan.findings.front().text;
    painter.drawText(m_textRect, flags, text);
}
