// Simulates a survey: two lines over a made-up sea floor, as a log.
//
//     ex_simulate LOG [SEED]
//
// Prints what was written, and where the targets lie. Exit code 0, 1 for wrong arguments, 2 when the vehicle
// did not come to the end, 3 when the log cannot be written.

#include "ZrKit/sim/ZrSimLog.h"
#include "ZrKit/sim/ZrSimSeaFloor.h"
#include "ZrKit/sim/ZrSimSurvey.h"
#include "ZrUtil/ZrWpts.h"

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char** argv)
{
    const QCoreApplication app(argc, argv);
    bool ok = argc == 2 || argc == 3;
    const u64 seed = argc == 3 ? QString::fromLocal8Bit(argv[2]).toULongLong(&ok) : 1;
    if (!ok) {
        std::fprintf(stderr, "Usage: ex_simulate LOG [SEED]\n");
        return 1;
    }

    ZrWpts plan;
    plan.linked = true;
    plan.speed = 2.0;
    const double corners[][2]
        = {{48.4800, -68.5150}, {48.4812, -68.5150}, {48.4812, -68.5144}, {48.4800, -68.5144}};
    for (const double* corner : corners)
        plan.Add(corner[0], corner[1], eZrWptBlue, ZrWpts::eAddTail)->r = 20.0;

    ZrSimSettings settings;
    settings.seed = settings.floor.seed = seed;
    settings.scattered = 3;
    settings.sonar.range = 40.0;
    settings.sonar.samples = 512;
    settings.sonar.rate = 5.0;
    settings.vehicle.currentSet = 90.0; // the water moves east
    settings.vehicle.currentDrift = 0.3;

    ZrSimSurvey survey(plan, settings);
    ZrSimLog log;
    const ZrSimLog::eResult result = log.Write(survey, QString::fromLocal8Bit(argv[1]), nullptr);
    if (result != ZrSimLog::Done)
        std::fprintf(stderr, "%s\n", qPrintable(log.Error()));
    if (result == ZrSimLog::BadOutput)
        return 3;
    std::printf("%.0f m in %.0f s: %llu items, %llu pings\n", survey.Vehicle().Length(), log.Duration(),
        static_cast<unsigned long long>(log.Items()), static_cast<unsigned long long>(log.Pings()));
    for (const ZrSimTarget& target : survey.Floor().Targets()) {
        const ZrGeoPoint at = survey.Vehicle().Frame().ToGeo(target.at);
        std::printf("%-8s %11.7f %12.7f  %.1f m high\n", qPrintable(target.KindName()), at.lat, at.lng,
            target.height);
    }
    return result == ZrSimLog::Done ? 0 : 2;
}
