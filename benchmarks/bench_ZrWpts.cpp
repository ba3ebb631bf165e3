// What recalculating a route costs, against projecting its points alone in the same run.
//
// For comparisons: --benchmark_repetitions=5 --benchmark_enable_random_interleaving=true
//                  --benchmark_report_aggregates_only=true
// The argument is the number of waypoints. Every waypoint but the ends turns.

#include "ZrUtil/ZrUnits.h"
#include "ZrUtil/ZrWpts.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

namespace {

/// A survey of short lines, about 50 m apart, with a turn of 20 m at each waypoint.
void Fill(ZrWpts& route, i64 count)
{
    for (i64 i = 0; i < count; ++i) {
        auto* wpt = new ZrWpt;
        const i64 line = i / 2;
        wpt->lat = 50.0 + ((i + 1) / 2 % 2 == 0 ? 0.0 : 0.01);
        wpt->lng = -3.0 + 0.0007 * static_cast<double>(line % 2000);
        wpt->r = 20.0;
        route.AddTail(wpt);
    }
    route.linked = true;
}

void Project(benchmark::State& state)
{
    ZrWpts route;
    Fill(route, state.range(0));

    struct Point
    {
        double lat;
        double lng;
        double east;
        double north;
    };

    std::vector<Point> points;
    for (ZrListPos* pos = route.GetHeadPos(); pos;) {
        const ZrWpt* wpt = route.GetNext(pos);
        points.push_back({wpt->lat, wpt->lng, 0.0, 0.0});
    }
    for (auto _ : state) {
        ZrUnits::CalcUTM(points.front().lat, points.front().lng);
        for (Point& point : points)
            ZrUnits::LLToEN(point.lat, point.lng, point.east, point.north);
        benchmark::DoNotOptimize(points.data());
        benchmark::ClobberMemory();
    }
    route.CalcXY();
    if (points.back().east != route.GetTail()->x || points.back().north != route.GetTail()->y)
        state.SkipWithError("not the grid positions of the route");
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void Recalc(benchmark::State& state)
{
    ZrWpts route;
    Fill(route, state.range(0));
    for (auto _ : state) {
        route.Recalc(true);
        benchmark::ClobberMemory();
    }
    const ZrWpt* wpt = route.GetNext(route.head->next->next ? route.head->next : route.head);
    if (!(route.GetTail()->q > 0.0) || std::fabs(std::fabs(wpt->rit) - 1.5707) > 0.01)
        state.SkipWithError("the route does not turn as expected");
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

BENCHMARK(Project)->Arg(10000)->Unit(benchmark::kMillisecond);
BENCHMARK(Recalc)->Arg(10000)->Unit(benchmark::kMillisecond);

} // namespace
