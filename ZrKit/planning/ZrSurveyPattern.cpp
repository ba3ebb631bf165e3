#include "ZrKit/planning/ZrSurveyPattern.h"

#include "ZrKit/planning/ZrSurveyRing.h"
#include "ZrKit/planning/ZrSurveyRouter.h"

#include <QCoreApplication>

#include <algorithm>
#include <cmath>

namespace {

using Settings = ZrSurveyPatternSettings;

constexpr double shortest = 0.001; ///< metres; what is shorter has no direction
constexpr double rounding = 0.02; ///< metres; positions of seven decimals leave as much open of a width

/// The place of a line across the area and the strip that it covers, metres.
struct Strip
{
    double at;
    double low;
    double high;
};

/// The gaps between lines: two lengths in turn.
class Gaps
{
public:
    Gaps(double first, double second)
        : m_first(first)
        , m_second(second > 0.0 ? second : first)
    {
    }

    double operator[](int i) const { return i % 2 == 0 ? m_first : m_second; }

    /// From the first to the last of \p count lines.
    double Between(int count) const
    {
        const int gaps = count - 1;
        return (gaps / 2) * (m_first + m_second) + (gaps % 2) * m_first;
    }

    /// The fewest lines over \p width that leave no more than half of the larger gap at either end; \p most +
    /// 1 if that are more. The lines themselves always lie within the width.
    int CountFor(double width, int most) const
    {
        const double larger = std::max(m_first, m_second);
        const double inner = width - std::min(rounding, larger / 1000.0) - larger;
        const double guess = 2.0 * inner / (m_first + m_second) - 1.0;
        if (guess > most)
            return most + 1;
        int count = std::max(1, static_cast<int>(guess));
        while (Between(count) < inner)
            ++count;
        return std::min(count, most + 1);
    }

private:
    double m_first;
    double m_second;
};

/// Strips of \p count lines from left to right over left ... right; the gaps begin at the right if \p
/// fromRight.
std::vector<Strip> StripsOf(double left, double right, const Gaps& gaps, int count, bool fromRight)
{
    std::vector<Strip> strips;
    strips.reserve(static_cast<std::size_t>(count));
    double at = (right - left - gaps.Between(count)) / 2.0;
    double low = 0.0;
    for (int i = 0; i < count; ++i) {
        const double high = i + 1 < count ? at + gaps[i] / 2.0 : right - left;
        strips.push_back(fromRight ? Strip{right - at, right - high, right - low}
                                   : Strip{left + at, left + low, left + high});
        low = high;
        at += gaps[i];
    }
    if (fromRight)
        std::reverse(strips.begin(), strips.end());
    return strips;
}

QString TooManyLines()
{
    return QCoreApplication::translate(
        "ZrSurveyPattern", "The area would need more than %1 lines. Choose a larger spacing.")
        .arg(ZrSurveyPattern::maxLines);
}

/// Makes the lanes of one direction.
class LaneMaker
{
public:
    LaneMaker(const ZrSurveyRing& ring, const Settings& settings, const std::atomic<bool>* cancel)
        : m_ring(ring)
        , m_settings(settings)
        , m_cancel(cancel)
    {
    }

    std::vector<ZrSurveyLane> lanes;
    int leftOut = 0; ///< pieces shorter than asked for

    /// False when there would be more than the lines allowed.
    bool Make(const Gaps& gaps, bool fromRight)
    {
        const double left = m_ring.Left() + m_settings.margin;
        const double right = m_ring.Right() - m_settings.margin;
        if (!(right > left))
            return true;
        const int count = gaps.CountFor(right - left, ZrSurveyPattern::maxLines);
        if (count > ZrSurveyPattern::maxLines)
            return false;
        std::size_t pieces = 0;
        for (const Strip& strip : StripsOf(left, right, gaps, count, fromRight)) {
            if (m_cancel && *m_cancel)
                break;
            ZrSurveyLane lane;
            lane.across = strip.at;
            for (const ZrInterval& piece : PiecesOf(strip)) {
                const double length = piece.to - piece.from;
                if (length < shortest)
                    continue;
                if (length < m_settings.minLength) {
                    ++leftOut;
                    continue;
                }
                lane.pieces.push_back(
                    {m_ring.Back({piece.from, strip.at}), m_ring.Back({piece.to, strip.at})});
            }
            pieces += lane.pieces.size();
            if (pieces > static_cast<std::size_t>(ZrSurveyPattern::maxLines))
                return false;
            if (!lane.pieces.empty())
                lanes.push_back(std::move(lane));
        }
        return true;
    }

private:
    std::vector<ZrInterval> PiecesOf(const Strip& strip) const
    {
        ZrIntervals run;
        if (m_settings.margin > 0.0)
            run = m_ring.Inside(strip.at).Without(m_ring.NearEdge(strip.at, m_settings.margin));
        else if (m_settings.ends == Settings::Edge)
            run = m_ring.Inside(strip.at);
        else
            run = m_ring.Abeam(strip.at, strip.low, strip.high);
        return ZrIntervals::Union(run.All(), 2.0 * m_settings.overshoot + shortest).All();
    }

    const ZrSurveyRing& m_ring;
    const Settings& m_settings;
    const std::atomic<bool>* m_cancel;
};

QString SettingsProblem(const Settings& settings)
{
    QString problem = settings.Problem();
    if (problem.isEmpty())
        problem = Settings::SpacingProblem(
            QCoreApplication::translate("ZrSurveyPattern", "The line spacing"), settings.lineSpacing);
    if (problem.isEmpty() && settings.alternateSpacing != 0.0)
        problem = Settings::SpacingProblem(
            QCoreApplication::translate("ZrSurveyPattern", "The alternate spacing"),
            settings.alternateSpacing);
    if (problem.isEmpty() && settings.crossSpacing != 0.0)
        problem = Settings::SpacingProblem(
            QCoreApplication::translate("ZrSurveyPattern", "The cross spacing"), settings.crossSpacing);
    if (problem.isEmpty())
        problem = Settings::RangeProblem(
            QCoreApplication::translate("ZrSurveyPattern", "The margin"), settings.margin, 10000.0);
    if (problem.isEmpty())
        problem = Settings::RangeProblem(
            QCoreApplication::translate("ZrSurveyPattern", "The smallest length"), settings.minLength, 1e6);
    if (!problem.isEmpty())
        return problem;
    if (settings.ends != Settings::Cover && settings.ends != Settings::Edge)
        return QCoreApplication::translate("ZrSurveyPattern", "There is no kind of line ends %1.")
            .arg(static_cast<int>(settings.ends));
    if (std::isinf(settings.heading))
        return QCoreApplication::translate("ZrSurveyPattern", "The heading must be a number of degrees.");
    return {};
}

/// 0 to below 360.
double Turned(double heading)
{
    const double turned = std::fmod(heading, 360.0);
    const double positive = turned < 0.0 ? turned + 360.0 : turned;
    return positive < 360.0 ? positive : 0.0;
}

} // namespace

bool ZrSurveyPattern::Make(const ZrArea& area, const ZrSurveyPatternSettings& settings)
{
    m_plan = {};
    m_error = Planned(area, settings);
    return m_error.isEmpty();
}

QString ZrSurveyPattern::Planned(const ZrArea& area, const ZrSurveyPatternSettings& settings)
{
    const ZrLocalFrame frame = ZrLocalFrame::Around(area.ring);
    QString problem = SettingsProblem(settings);
    if (problem.isEmpty())
        problem = ZrSurveyRing::Problem(area, frame);
    if (!problem.isEmpty())
        return problem;

    const std::vector<ZrLocalPoint> corners = ZrSurveyRing::Corners(area, frame);
    const double heading
        = std::isnan(settings.heading) ? ZrSurveyRing::LongestSide(corners) : Turned(settings.heading);
    const bool fromRight = settings.entry == Settings::NearRight || settings.entry == Settings::FarRight;
    const ZrSurveyRing ring(corners, heading);
    LaneMaker along(ring, settings, cancel);
    if (!along.Make(Gaps(settings.lineSpacing, settings.alternateSpacing), fromRight))
        return TooManyLines();
    const ZrSurveyRing crossRing(corners, heading + 90.0);
    LaneMaker across(crossRing, settings, cancel);
    if (settings.crossSpacing > 0.0 && !across.Make(Gaps(settings.crossSpacing, 0.0), false))
        return TooManyLines();
    if (cancel && *cancel)
        return QCoreApplication::translate("ZrSurveyPattern", "The planning was cancelled.");
    const int leftOut = along.leftOut + across.leftOut;
    if (along.lanes.empty() || (settings.crossSpacing > 0.0 && across.lanes.empty()))
        return QCoreApplication::translate(
            "ZrSurveyPattern", "Within the margin of %1 m no line is %2 m long.")
            .arg(settings.margin)
            .arg(std::max(shortest, settings.minLength));

    ZrSurveyRouter router(frame, settings);
    router.Run(std::move(along.lanes), settings.entry, false);
    router.RunFromNearest(across.lanes, true);
    m_plan = router.Plan();
    m_plan.heading = heading;
    if (leftOut > 0) {
        m_plan.findings.push_back({ZrSurveyFinding::PiecesLeftOut, 0,
            QCoreApplication::translate(
                "ZrSurveyPattern", "%1 pieces of lines shorter than %2 m are left out.")
                .arg(leftOut)
                .arg(settings.minLength)});
    }
    return {};
}
