// What drawing a plot costs: the few points of ZrPlotDecimator against every record in sight, as a program
// draws them that knows no better.
//
// DrawDecimated, DrawAll: arguments are the number of records of the series and of those in sight; the
// picture has 1000 by 300 pixels. Decimate: the points alone, without drawing. Append: filling the series.
// Both ways of drawing see the same records, and each run checks that they reach as high and as low.

#include "ZrKit/review/ZrPlotDecimator.h"

#include <QImage>
#include <QPainter>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <memory>
#include <vector>

namespace {

constexpr int width = 1000;
constexpr int height = 300;
constexpr double startTime = 1602049684.592;
constexpr double step = 0.1; ///< seconds

struct Series
{
    std::shared_ptr<ZrSteadyTime> times = std::make_shared<ZrSteadyTime>();
    ZrPlotSeries values{times};
};

float ValueOf(i64 i)
{
    const auto noise = static_cast<double>((i * 7919) % 1000) / 1000.0;
    return static_cast<float>(50.0 + 40.0 * std::sin(static_cast<double>(i) * 1e-4) + noise);
}

const Series& SeriesOf(i64 count)
{
    static std::map<i64, Series> all;
    Series& series = all[count];
    for (i64 i = static_cast<i64>(series.values.Count()); i < count; ++i) {
        series.times->Append(startTime + static_cast<double>(i) * step);
        series.values.Append(ValueOf(i));
    }
    return series;
}

/// The times of the columns that show \p visible of \p count records, in the middle.
std::vector<double> EdgesOf(i64 count, i64 visible)
{
    const double begin = startTime + static_cast<double>((count - visible) / 2) * step;
    const double length = static_cast<double>(visible - 1) * step;
    std::vector<double> edges;
    for (int i = 0; i <= width; ++i)
        edges.push_back(begin + length * i / width);
    return edges;
}

double PixelOf(float value)
{
    return height * (1.0 - static_cast<double>(value) / 100.0);
}

QImage Picture()
{
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(Qt::white);
    return image;
}

/// The rows that are not white, the highest and the lowest.
std::pair<int, int> Inked(const QImage& image)
{
    int top = height;
    int bottom = -1;
    for (int y = 0; y < image.height(); ++y) {
        const auto* const line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        if (std::all_of(line, line + image.width(), [](QRgb pixel) { return pixel == 0xFFFFFFFFu; }))
            continue;
        top = std::min(top, y);
        bottom = y;
    }
    return {top, bottom};
}

void DrawDecimatedInto(
    QImage& image, ZrPlotDecimator& decimator, const Series& series, const std::vector<double>& edges)
{
    QPainter painter(&image);
    QVector<QPointF> line;
    for (const ZrPlotDecimator::Point& point : decimator.Decimate(series.values, edges))
        line << QPointF(static_cast<double>(point.x), PixelOf(point.y));
    painter.drawPolyline(line.constData(), line.size());
}

void DrawAllInto(QImage& image, const Series& series, const std::vector<double>& edges)
{
    QPainter painter(&image);
    QVector<QPointF> line;
    const std::vector<double>& times = series.values.Times();
    const double pixelsPerSecond = width / (edges.back() - edges.front());
    for (std::size_t i = 0; i < series.values.Count(); ++i) {
        if (times[i] < edges.front() || times[i] > edges.back())
            continue;
        line << QPointF((times[i] - edges.front()) * pixelsPerSecond, PixelOf(series.values.Value(i)));
    }
    painter.drawPolyline(line.constData(), line.size());
}

void DrawDecimated(benchmark::State& state)
{
    const Series& series = SeriesOf(state.range(0));
    const std::vector<double> edges = EdgesOf(state.range(0), state.range(1));
    ZrPlotDecimator decimator;
    QImage image = Picture();
    for (auto _ : state) {
        DrawDecimatedInto(image, decimator, series, edges);
        benchmark::DoNotOptimize(image.bits());
    }
    QImage other = Picture();
    DrawAllInto(other, series, edges);
    const auto drawn = Inked(image);
    const auto all = Inked(other);
    if (std::abs(drawn.first - all.first) > 1 || std::abs(drawn.second - all.second) > 1)
        state.SkipWithError("not the same picture");
    state.counters["looks"] = static_cast<double>(decimator.Looks());
}

void DrawAll(benchmark::State& state)
{
    const Series& series = SeriesOf(state.range(0));
    const std::vector<double> edges = EdgesOf(state.range(0), state.range(1));
    QImage image = Picture();
    for (auto _ : state) {
        DrawAllInto(image, series, edges);
        benchmark::DoNotOptimize(image.bits());
    }
}

void Decimate(benchmark::State& state)
{
    const Series& series = SeriesOf(state.range(0));
    const std::vector<double> edges = EdgesOf(state.range(0), state.range(1));
    ZrPlotDecimator decimator;
    std::size_t points = 0;
    for (auto _ : state)
        points = decimator.Decimate(series.values, edges).size();
    if (points > 4 * width + 2)
        state.SkipWithError("too many points");
    state.counters["points"] = static_cast<double>(points);
    state.counters["looks"] = static_cast<double>(decimator.Looks());
}

void Append(benchmark::State& state)
{
    const i64 count = state.range(0);
    for (auto _ : state) {
        Series series;
        for (i64 i = 0; i < count; ++i) {
            series.times->Append(startTime + static_cast<double>(i) * step);
            series.values.Append(ValueOf(i));
        }
        benchmark::DoNotOptimize(series.values.Count());
    }
    state.SetItemsProcessed(state.iterations() * count);
}

void Sizes(benchmark::internal::Benchmark* bench)
{
    bench->Args({1000000, 1000000})->Args({1000000, 100000})->Args({1000000, 1000})->Args({100000, 100000});
    bench->Unit(benchmark::kMicrosecond);
}

BENCHMARK(DrawDecimated)->Apply(Sizes);
BENCHMARK(DrawAll)->Apply(Sizes);
BENCHMARK(Decimate)->Apply(Sizes);
BENCHMARK(Append)->Arg(1000000)->Unit(benchmark::kMillisecond);

} // namespace
