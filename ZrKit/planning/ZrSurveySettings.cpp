#include "ZrKit/planning/ZrSurveySettings.h"

#include <QCoreApplication>

#include <cmath>

namespace {

constexpr double longest = 10000.0; ///< metres, of overshoot and turn radius
constexpr double narrowest = 0.01; ///< metres between lines

} // namespace

QString ZrSurveySettings::RangeProblem(const QString& what, double value, double most)
{
    if (value >= 0.0 && value <= most)
        return {};
    return QCoreApplication::translate("ZrSurveySettings", "%1 must be a number from 0 to %2; it is %3.")
        .arg(what)
        .arg(most)
        .arg(value);
}

QString ZrSurveySettings::SpacingProblem(const QString& what, double spacing)
{
    if (spacing >= narrowest && std::isfinite(spacing))
        return {};
    return QCoreApplication::translate(
        "ZrSurveySettings", "%1 must be a number of metres of %2 or more; it is %3.")
        .arg(what)
        .arg(narrowest)
        .arg(spacing);
}

QString ZrSurveySettings::Problem() const
{
    if (order < Next || order > Racetrack)
        return QCoreApplication::translate("ZrSurveySettings", "There is no line order %1.")
            .arg(static_cast<int>(order));
    if (entry < NearLeft || entry > FarRight)
        return QCoreApplication::translate("ZrSurveySettings", "There is no entry corner %1.")
            .arg(static_cast<int>(entry));
    QString problem
        = RangeProblem(QCoreApplication::translate("ZrSurveySettings", "The overshoot"), overshoot, longest);
    if (problem.isEmpty())
        problem = RangeProblem(
            QCoreApplication::translate("ZrSurveySettings", "The turn radius"), turnRadius, longest);
    if (!problem.isEmpty())
        return problem;
    if (!std::isfinite(speed) || speed < 0.0)
        return QCoreApplication::translate(
            "ZrSurveySettings", "The speed must be a number of 0 or more; it is %1.")
            .arg(speed);
    if (!std::isfinite(z) || !std::isfinite(alt))
        return QCoreApplication::translate("ZrSurveySettings", "Depth and altitude must be numbers.");
    return {};
}
