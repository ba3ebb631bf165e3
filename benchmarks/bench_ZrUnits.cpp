// The conversions between positions and the grid, and ranges and bearings, each with its peer: PROJ's
// Transverse Mercator by series (+approx) on the same points, one by one (proj_trans) and many at once
// (proj_trans_generic), and GeographicLib's inverse geodesic.
//
// Every round converts the same 10,000 positions of one UTM zone. Both sides take and give degrees: a call of
// PROJ needs radians, and the two multiplications that make them are part of it.

#include "ZrKit/geo/ZrGridBatch.h"
#include "ZrUtil/ZrUnits.h"
#include "ZrUtil/ZrUtil.h"

#include <benchmark/benchmark.h>

#include <GeographicLib/Geodesic.hpp>
#include <cmath>
#include <memory>
#include <proj.h>
#include <random>
#include <vector>

namespace {

constexpr std::size_t count = 10000;
constexpr double radians = 0.017453292519943295;

struct Points
{
    std::vector<double> lat, lng, east, north;

    Points()
        : lat(count)
        , lng(count)
        , east(count)
        , north(count)
    {
        std::mt19937 random(20240620);
        std::uniform_real_distribution<double> lats(0.0, 70.0);
        std::uniform_real_distribution<double> lngs(0.0, 6.0);
        ZrProj proj;
        proj.SetupUTM(1.0, 3.0);
        for (std::size_t i = 0; i < count; ++i) {
            lat[i] = lats(random);
            lng[i] = lngs(random);
            ZrUnits::LLToEN(ZrSphd(), proj, lat[i], lng[i], east[i], north[i]);
        }
    }
};

const Points& Data()
{
    static const Points points;
    return points;
}

void PerPoint(benchmark::State& state)
{
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(count));
}

ZrProj Zone31()
{
    ZrProj proj;
    proj.SetupUTM(1.0, 3.0);
    return proj;
}

class ProjTransform
{
public:
    ProjTransform()
        : m_context(proj_context_create(), proj_context_destroy)
        , m_pj(proj_create(m_context.get(),
                   "+proj=tmerc +approx +lat_0=0 +lon_0=3 +k=0.9996 +x_0=500000 +y_0=0 +ellps=WGS84"),
              proj_destroy)
    {
    }

    PJ* Get() const { return m_pj.get(); }

private:
    std::unique_ptr<PJ_CONTEXT, decltype(&proj_context_destroy)> m_context;
    std::unique_ptr<PJ, decltype(&proj_destroy)> m_pj;
};

void Forward_LLToEN(benchmark::State& state)
{
    const Points& p = Data();
    const ZrSphd spheroid;
    const ZrProj proj = Zone31();
    for (auto _ : state) {
        for (std::size_t i = 0; i < count; ++i) {
            double e;
            double n;
            ZrUnits::LLToEN(spheroid, proj, p.lat[i], p.lng[i], e, n);
            benchmark::DoNotOptimize(e);
            benchmark::DoNotOptimize(n);
        }
    }
    PerPoint(state);
}

void Forward_Batch(benchmark::State& state)
{
    const Points& p = Data();
    const ZrGridBatch grid(ZrSphd(), Zone31());
    std::vector<double> e(count), n(count);
    for (auto _ : state) {
        grid.ToGrid(p.lat, p.lng, e, n);
        benchmark::DoNotOptimize(e.data());
        benchmark::ClobberMemory();
    }
    PerPoint(state);
}

void Forward_Proj(benchmark::State& state)
{
    const Points& p = Data();
    const ProjTransform transform;
    for (auto _ : state) {
        for (std::size_t i = 0; i < count; ++i) {
            PJ_COORD to = proj_trans(
                transform.Get(), PJ_FWD, proj_coord(p.lng[i] * radians, p.lat[i] * radians, 0.0, 0.0));
            benchmark::DoNotOptimize(to);
        }
    }
    PerPoint(state);
}

void Forward_ProjGeneric(benchmark::State& state)
{
    const Points& p = Data();
    const ProjTransform transform;
    std::vector<double> x(count), y(count);
    for (auto _ : state) {
        for (std::size_t i = 0; i < count; ++i) {
            x[i] = p.lng[i] * radians;
            y[i] = p.lat[i] * radians;
        }
        proj_trans_generic(transform.Get(), PJ_FWD, x.data(), sizeof(double), count, y.data(), sizeof(double),
            count, nullptr, 0, 0, nullptr, 0, 0);
        benchmark::DoNotOptimize(x.data());
        benchmark::ClobberMemory();
    }
    PerPoint(state);
}

void Inverse_EN2LL(benchmark::State& state)
{
    const Points& p = Data();
    const ZrSphd spheroid;
    const ZrProj proj = Zone31();
    for (auto _ : state) {
        for (std::size_t i = 0; i < count; ++i) {
            double lat;
            double lng;
            ZrUnits::EN2LL(spheroid, proj, p.east[i], p.north[i], lat, lng);
            benchmark::DoNotOptimize(lat);
            benchmark::DoNotOptimize(lng);
        }
    }
    PerPoint(state);
}

void Inverse_Batch(benchmark::State& state)
{
    const Points& p = Data();
    const ZrGridBatch grid(ZrSphd(), Zone31());
    std::vector<double> lat(count), lng(count);
    for (auto _ : state) {
        grid.ToLatLng(p.east, p.north, lat, lng);
        benchmark::DoNotOptimize(lat.data());
        benchmark::ClobberMemory();
    }
    PerPoint(state);
}

void Inverse_Proj(benchmark::State& state)
{
    const Points& p = Data();
    const ProjTransform transform;
    for (auto _ : state) {
        for (std::size_t i = 0; i < count; ++i) {
            PJ_COORD to = proj_trans(transform.Get(), PJ_INV, proj_coord(p.east[i], p.north[i], 0.0, 0.0));
            to.lp.lam /= radians;
            to.lp.phi /= radians;
            benchmark::DoNotOptimize(to);
        }
    }
    PerPoint(state);
}

void Inverse_ProjGeneric(benchmark::State& state)
{
    const Points& p = Data();
    const ProjTransform transform;
    std::vector<double> x(count), y(count);
    for (auto _ : state) {
        x = p.east;
        y = p.north;
        proj_trans_generic(transform.Get(), PJ_INV, x.data(), sizeof(double), count, y.data(), sizeof(double),
            count, nullptr, 0, 0, nullptr, 0, 0);
        for (std::size_t i = 0; i < count; ++i) {
            x[i] /= radians;
            y[i] /= radians;
        }
        benchmark::DoNotOptimize(x.data());
        benchmark::ClobberMemory();
    }
    PerPoint(state);
}

void Range_LL2LLRng(benchmark::State& state)
{
    const Points& p = Data();
    for (auto _ : state) {
        for (std::size_t i = 0; i < count; ++i) {
            const std::size_t j = (i + 1) % count;
            benchmark::DoNotOptimize(ZrUtil::LL2LLRng(p.lat[i], p.lng[i], p.lat[j], p.lng[j]));
        }
    }
    PerPoint(state);
}

void Range_GeographicLib(benchmark::State& state)
{
    const Points& p = Data();
    const GeographicLib::Geodesic& geodesic = GeographicLib::Geodesic::WGS84();
    for (auto _ : state) {
        for (std::size_t i = 0; i < count; ++i) {
            const std::size_t j = (i + 1) % count;
            double metres;
            geodesic.Inverse(p.lat[i], p.lng[i], p.lat[j], p.lng[j], metres);
            benchmark::DoNotOptimize(metres);
        }
    }
    PerPoint(state);
}

void Bearing_LL2LLBrg(benchmark::State& state)
{
    const Points& p = Data();
    for (auto _ : state) {
        for (std::size_t i = 0; i < count; ++i) {
            const std::size_t j = (i + 1) % count;
            benchmark::DoNotOptimize(ZrUtil::LL2LLBrg(p.lat[i], p.lng[i], p.lat[j], p.lng[j]));
        }
    }
    PerPoint(state);
}

void Bearing_GeographicLib(benchmark::State& state)
{
    const Points& p = Data();
    const GeographicLib::Geodesic& geodesic = GeographicLib::Geodesic::WGS84();
    for (auto _ : state) {
        for (std::size_t i = 0; i < count; ++i) {
            const std::size_t j = (i + 1) % count;
            double from;
            double to;
            geodesic.Inverse(p.lat[i], p.lng[i], p.lat[j], p.lng[j], from, to);
            benchmark::DoNotOptimize(from);
        }
    }
    PerPoint(state);
}

} // namespace

BENCHMARK(Forward_LLToEN);
BENCHMARK(Forward_Batch);
BENCHMARK(Forward_Proj);
BENCHMARK(Forward_ProjGeneric);
BENCHMARK(Inverse_EN2LL);
BENCHMARK(Inverse_Batch);
BENCHMARK(Inverse_Proj);
BENCHMARK(Inverse_ProjGeneric);
BENCHMARK(Range_LL2LLRng);
BENCHMARK(Range_GeographicLib);
BENCHMARK(Bearing_LL2LLBrg);
BENCHMARK(Bearing_GeographicLib);
