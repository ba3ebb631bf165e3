// Plans survey lines over an area, along its longest side.
//
//     ex_survey_pattern SPACING RADIUS LAT LNG LAT LNG LAT LNG [LAT LNG ...]
//
// Spacing of the lines and turn radius are metres, corners decimal degrees. Prints the waypoints, one a line,
// and what the whole makes. Exit code 0, 1 for wrong arguments, 2 for an area that cannot be surveyed.

#include "ZrKit/planning/ZrSurveyPattern.h"
#include "ZrUtil/ZrWpts.h"

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char** argv)
{
    const QCoreApplication app(argc, argv);
    std::vector<double> numbers;
    for (int i = 1; i < argc; ++i) {
        bool ok = false;
        numbers.push_back(QString::fromLocal8Bit(argv[i]).toDouble(&ok));
        if (!ok)
            numbers.clear();
    }
    if (numbers.size() < 8 || numbers.size() % 2 != 0) {
        std::fprintf(
            stderr, "Usage: ex_survey_pattern SPACING RADIUS LAT LNG LAT LNG LAT LNG [LAT LNG ...]\n");
        return 1;
    }

    ZrSurveyPatternSettings settings;
    settings.lineSpacing = numbers[0];
    settings.turnRadius = numbers[1];
    settings.order = ZrSurveySettings::Racetrack;
    ZrArea area;
    for (std::size_t i = 2; i < numbers.size(); i += 2)
        area.ring.push_back({numbers[i], numbers[i + 1]});

    ZrSurveyPattern pattern;
    if (!pattern.Make(area, settings)) {
        std::fprintf(stderr, "%s\n", qPrintable(pattern.Error()));
        return 2;
    }
    for (const ZrSurveyFinding& finding : pattern.Plan().findings)
        std::fprintf(stderr, "%s\n", qPrintable(finding.text));

    ZrWpts route;
    route.linked = true;
    pattern.Plan().AppendTo(route);
    for (ZrListPos* pos = route.GetHeadPos(); pos;) {
        const ZrWpt* wpt = route.GetNext(pos);
        std::printf("%-8s %11.7f %12.7f  r %.1f\n", qPrintable(wpt->Name()), wpt->lat, wpt->lng, wpt->r);
    }
    std::printf("%d lines of %.0f m together, heading %.1f\n", static_cast<int>(pattern.Plan().lines.size()),
        pattern.Plan().lineLength, pattern.Plan().heading);
    std::printf("%d waypoints, %.0f m, %.0f s\n", route.GetCount(), route.CalcRange(), route.CalcDuration());
    return 0;
}
