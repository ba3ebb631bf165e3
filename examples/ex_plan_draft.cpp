// A plan that survives whatever happens to the program: each edit is in the draft at once, and can be undone.
//
//     ex_plan_draft DRAFT [PLAN]
//
// Offers what an earlier run has left in DRAFT, by taking it up; otherwise begins a plan of two waypoints.
// Adds a waypoint, prints the plan and what is to be said about it, and saves it as PLAN, whose suffix names
// the form: .json, .xml, .gpx, .kml, .geojson, else a list (.txt). Without PLAN it ends unsaved, as a program
// that crashed would, and the draft remains. Exit code 0, 1 for wrong arguments, 2 when a file cannot be read
// or written.

#include "ZrKit/planning/ZrPlanDocument.h"

#include <QCoreApplication>

#include <cstdio>

namespace {

int Fail(const ZrPlanDocument& plan)
{
    std::fprintf(stderr, "%s\n", qPrintable(plan.Error()));
    return 2;
}

void Print(ZrPlanDocument& plan)
{
    for (ZrListPos* pos = plan.Route().GetHeadPos(); pos;) {
        const ZrWpt* wpt = plan.Route().GetNext(pos);
        std::printf("%-8s %11.7f %12.7f\n", qPrintable(wpt->Name()), wpt->lat, wpt->lng);
    }
    std::printf("%.0f m in %.0f s\n", plan.Route().CalcRange(), plan.Route().CalcDuration());
    for (const ZrRouteFinding& finding : plan.Findings())
        std::printf("%s: %s\n", qPrintable(finding.SeverityName()), qPrintable(finding.text));
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication app(argc, argv);
    if (argc != 2 && argc != 3) {
        std::fprintf(stderr, "Usage: ex_plan_draft DRAFT [PLAN]\n");
        return 1;
    }

    ZrPlanDocument plan(QString::fromLocal8Bit(argv[1]));
    bool hasDraftFailed = false;
    QObject::connect(&plan, &ZrPlanDocument::DraftFailed, [&](const QString& error) {
        std::fprintf(stderr, "%s\n", qPrintable(error));
        hasDraftFailed = true;
    });
    if (plan.HasDraft()) {
        if (!plan.RestoreDraft())
            return Fail(plan);
        std::printf("Took up the draft of %d waypoints\n", plan.Route().GetCount());
    } else {
        plan.Route().linked = true;
        plan.Route().speed = 2.0;
        plan.History().Add(48.4800, -68.5150, eZrWptBlue, ZrWpts::eAddTail);
        plan.History().Add(48.4812, -68.5150, eZrWptBlue, ZrWpts::eAddTail);
        plan.Edited();
    }

    // A slip of the finger, and back.
    plan.History().Reverse();
    plan.Edited();
    std::printf("Undo: %s\n", qPrintable(plan.History().UndoName()));
    plan.History().Undo();
    plan.Edited();

    const ZrWpt* last = plan.Route().GetTail();
    plan.History().Add(last->lat, last->lng + 0.0006, eZrWptBlue, ZrWpts::eAddTail);
    plan.Edited();
    Print(plan);
    if (argc == 2) {
        plan.FlushDraft();
        std::printf("Not saved, the draft remains\n");
        return hasDraftFailed ? 2 : 0;
    }
    return plan.Save(QString::fromLocal8Bit(argv[2])) ? 0 : Fail(plan);
}
