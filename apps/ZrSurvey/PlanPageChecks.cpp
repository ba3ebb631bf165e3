// What the page "Plan" tells of the plan: what it comes to, and what there is to say about it.

#include "ZrKit/map/ZrMapPanel.h"
#include "ZrKit/ui/ZrTouchList.h"
#include "ZrKit/ui/ZrValueTile.h"
#include "ZrUtil/ZrBtn.h"
#include "ZrUtil/ZrTheme.h"
#include "ZrUtil/ZrUnits.h"
#include "apps/ZrSurvey/PlanMarginPanel.h"
#include "apps/ZrSurvey/PlanPage.h"
#include "apps/ZrSurvey/PlanPatternPanel.h"
#include "apps/ZrSurvey/SurveyModel.h"
#include "apps/ZrSurvey/SurveyView.h"

#include <cmath>

namespace {

QString DurationText(double seconds)
{
    if (!std::isfinite(seconds) || seconds < 0.0 || seconds > 1e8)
        return {};
    const auto minutes = static_cast<qint64>(std::llround(seconds / 60.0));
    return QStringLiteral("%1:%2").arg(minutes / 60).arg(minutes % 60, 2, 10, QLatin1Char('0'));
}

} // namespace

ZrPlanTotals PlanPage::Totals()
{
    if (m_isPreview)
        return m_pattern->Preview().whole;
    const ZrRoutePath& path = Path();
    ZrPlanTotals totals;
    totals.waypoints = Plan().Route().GetCount();
    totals.lines = Plan().LineCount();
    totals.length = path.Length();
    totals.duration = path.Duration();
    totals.errors = m_review.Count(ZrRouteFinding::eError);
    totals.warnings = m_review.Count(ZrRouteFinding::eWarning);
    return totals;
}

void PlanPage::ShowTotals()
{
    const ZrPlanTotals totals = Totals();
    const bool hasWay = totals.waypoints > 1;
    m_length->Set(hasWay && std::isfinite(totals.length) ? ZrUnits::GetLengthString(totals.length, 2, false)
                                                         : QString(),
        ZrUnits::GetLengthUnits(totals.length));
    m_duration->Set(hasWay ? DurationText(totals.duration) : QString(), tr("h"));
    m_lines->Set(QString::number(totals.lines), QString());
    m_count->Set(QString::number(totals.waypoints), QString());
    // Of a plan that is not begun there is nothing wrong yet.
    const bool isBegun = totals.waypoints > 0;
    const int findings = isBegun ? totals.errors + totals.warnings : 0;
    const bool isKnown = isBegun && totals.isChecked;
    m_check->Set(!isKnown ? QString() : findings == 0 ? tr("OK") : QString::number(findings), QString());
    const bool isCurrent = totals.isChecked && (m_isPreview ? m_pattern->IsCurrent() : m_review.IsCurrent());
    m_check->SetState(!isBegun    ? ZrValueTile::normal
            : !isCurrent          ? ZrValueTile::stale
            : totals.errors > 0   ? ZrValueTile::error
            : totals.warnings > 0 ? ZrValueTile::warning
                                  : ZrValueTile::good);
    for (ZrValueTile* tile : {m_length, m_duration, m_lines, m_count})
        tile->SetState(m_isPreview ? ZrValueTile::preview : ZrValueTile::normal);
    for (ZrValueTile* tile : {m_length, m_duration, m_lines, m_count, m_check})
        tile->SetNote(m_isPreview ? tr("Preview") : QString());
    m_tabs[sideChecks]->badge = findings;
    m_tabs[sideChecks]->update();
    m_margin->Show();
}

/// What is told is what "Apply" makes of the plan.
void PlanPage::ShowPattern()
{
    if (m_mode != modePattern)
        return;
    m_isPreview = !m_pattern->Plan().waypoints.empty();
    m_drawing.SetPattern(m_pattern->Preview());
    m_drawing.Build(false);
    ShowTotals();
    Changed();
}

void PlanPage::ShowChecks()
{
    const bool isBegun = !Plan().Route().IsEmpty();
    m_checks->m_empty = isBegun  ? tr("No findings")
        : Plan().Areas().empty() ? tr("Add a waypoint or draw an area")
                                 : tr("Add a waypoint, or survey lines over the area");
    m_checks->viewport()->update();
    m_checks->SetRows(isBegun ? static_cast<int>(m_review.Findings().size()) : 0,
        [this](int row) { return CheckRow(row); });
}

ZrListItem PlanPage::CheckRow(int row) const
{
    // The list may be of a state before.
    const auto& findings = m_review.Findings();
    if (row >= static_cast<int>(findings.size()))
        return {};
    const ZrRouteFinding& finding = findings[static_cast<std::size_t>(row)];
    ZrListItem item;
    item.title = finding.Title();
    item.subtitle = finding.text;
    item.data = finding.text + QString::number(finding.index);
    const bool isError = finding.severity == ZrRouteFinding::eError;
    const bool isInfo = finding.severity == ZrRouteFinding::eInfo;
    item.image = QImage(isError ? QStringLiteral(":/icons/error.png")
            : isInfo            ? QStringLiteral(":/icons/info.png")
                                : QStringLiteral(":/icons/warning.png"));
    item.edge = isError ? ZrTheme::errorCol : isInfo ? ZrTheme::ctrlOutlineCol : ZrTheme::warnCol;
    return item;
}

/// The waypoint is the one that was looked at, wherever it is by now.
void PlanPage::ChooseFinding(int row)
{
    const auto& findings = m_review.Findings();
    if (row < 0 || row >= static_cast<int>(findings.size()))
        return;
    const ZrRouteFinding finding = findings[static_cast<std::size_t>(row)];
    const int waypoint = finding.index < 0 ? -1 : IndexOf(finding.uuid);
    if (waypoint >= 0)
        Select(waypoint);
    CentreOn(finding.place);
    // A row has no room for all of it.
    View().Tell(finding.text);
}

/// Several findings come apart; one is told, as are those that are in one place.
void PlanPage::ChoosePin(const ZrPlanChart::Pin& pin)
{
    if (pin.hasParts) {
        FitTo(pin.bounds);
        return;
    }
    ShowSide(sideChecks);
    m_checks->SetCurrent(pin.findings.front());
    ChooseFinding(pin.findings.front());
}
