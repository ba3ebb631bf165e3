// Plans a short route with rounded turns and stores it as JSON settings.
//
//     ex_route FILE
//
// Prints the waypoints, the length and the duration of the route. Exit code 0 when the file was written and
// reads back as the same route, 1 for wrong arguments, 3 when not.

#include "ZrUtil/ZrSetApp.h"
#include "ZrUtil/ZrWpts.h"

#include <QCoreApplication>

#include <cstdio>

namespace {

/// A line of 500 m to the north and one back, 100 m west of it.
void Plan(ZrWpts& route)
{
    route.linked = true;
    route.speedType = 3; // fast
    route.Add(48.4800, -68.5200, eZrWptBlue, ZrWpts::eAddTail);
    route.Add(48.4845, -68.5200, eZrWptBlue, ZrWpts::eAddTail)->r = 20.0;
    route.Add(48.4845, -68.5214, eZrWptBlue, ZrWpts::eAddTail)->r = 20.0;
    route.Add(48.4800, -68.5214, eZrWptBlue, ZrWpts::eAddTail);
    route.GetTail()->name = QStringLiteral("Recovery");
    route.Recalc(true); // the radii were set after the waypoints had been added
}

void Print(const ZrWpts& route)
{
    for (ZrListPos* pos = route.GetHeadPos(); pos;) {
        const ZrWpt* wpt = route.GetNext(pos);
        std::printf("%-14s %.4f %.4f  at %6.1f m", qPrintable(wpt->Name()), wpt->lat, wpt->lng, wpt->q);
        if (wpt->rit != 0.0)
            std::printf(", turns %s", wpt->rit < 0.0 ? "right" : "left");
        std::printf("\n");
    }
    std::printf("Length %.1f m, duration %.0f s\n", route.CalcRange(), route.CalcDuration());
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication app(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "Usage: ex_route FILE\n");
        return 1;
    }
    const QString path = QString::fromLocal8Bit(argv[1]);
    ZrWpts route;
    Plan(route);
    Print(route);

    zr::ZrSetApp out(zr::ePersistStoring);
    out.synchronise(route);
    if (!out.save_to_file(path, zr::ZrSetApp::eFmtIndented)) {
        std::fprintf(stderr, "Cannot write %s\n", argv[1]);
        return 3;
    }

    ZrWpts loaded;
    zr::ZrSetApp in(zr::ePersistLoading);
    if (in.load_from_file(path, zr::ZrSetApp::eFmtIndented))
        in.synchronise(loaded);
    if (loaded.GetCount() != route.GetCount() || loaded.CalcRange() != route.CalcRange()) {
        std::fprintf(stderr, "%s does not read back\n", argv[1]);
        return 3;
    }
    return 0;
}
