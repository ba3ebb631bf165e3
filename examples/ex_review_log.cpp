// Reviews a log as text: its time line with gaps cut out, its depth as it would be drawn, its events.
//
//     ex_review_log LOG [COLUMNS]
//
// Exit code 0, 1 for wrong arguments, 2 when the log cannot be read or has no times.

#include "ZrKit/review/ZrEventList.h"
#include "ZrKit/review/ZrPlayClock.h"
#include "ZrKit/review/ZrPlotDecimator.h"
#include "ZrKit/review/ZrSurveySeries.h"
#include "ZrKit/review/ZrSurveySeriesReader.h"
#include "ZrKit/review/ZrTimeLine.h"

#include <QCoreApplication>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>

namespace {

void PrintTimeLine(const ZrTimeLine& line, int columns)
{
    std::string axis(static_cast<std::size_t>(columns), '-');
    for (const ZrTimeLine::Cut& cut : line.Cuts(columns)) {
        const auto at = static_cast<std::size_t>(cut.fraction * columns);
        axis[std::min(at, axis.size() - 1)] = '/';
        std::printf("%.1f s are missing at %.0f %%\n", cut.seconds, 100.0 * cut.fraction);
    }
    std::string labels(static_cast<std::size_t>(columns), ' ');
    for (const ZrTimeLine::Tick& tick : line.Ticks(columns, [](const QString& t) { return t.size(); })) {
        const auto left = static_cast<std::size_t>(tick.labelLeft);
        labels.replace(left, static_cast<std::size_t>(tick.label.size()), tick.label.toStdString());
    }
    std::printf("%s\n%s\n", axis.c_str(), labels.c_str());
}

/// Ten rows, the surface above.
void PrintPlot(const ZrPlotSeries& series, const ZrTimeLine& line, int columns)
{
    constexpr int rows = 10;
    const ZrPlotSeries::Extent extent = series.ExtentBetween(line.VisibleBegin(), line.VisibleEnd());
    if (!extent.IsKnown()) {
        std::printf("No depths\n");
        return;
    }
    std::vector<std::string> picture(rows, std::string(static_cast<std::size_t>(columns), ' '));
    const float span = std::max(extent.max - extent.min, 0.1F);
    ZrPlotDecimator decimator;
    for (const ZrPlotDecimator::Point& point : decimator.Decimate(series, line.Columns(columns))) {
        if (std::isnan(point.y))
            continue;
        const auto row = static_cast<std::size_t>((point.y - extent.min) / span * (rows - 1));
        const auto column = static_cast<std::size_t>(point.x);
        picture[std::min<std::size_t>(row, rows - 1)][std::min<std::size_t>(column, picture[0].size() - 1)]
            = '*';
    }
    std::printf("Depth %.1f to %.1f m\n", static_cast<double>(extent.min), static_cast<double>(extent.max));
    for (const std::string& row : picture)
        std::printf("%s\n", row.c_str());
}

/// What happens at ten times the speed over half a second.
void PrintPlayback(const ZrSteadyTime& times, const ZrTimeLine& line)
{
    ZrPlayClock clock;
    clock.SetRange(times.Begin(), times.End());
    clock.SetGaps(line.Gaps());
    clock.SetRate(10.0);
    clock.Play();
    for (int frame = 0; frame <= 30; ++frame)
        clock.Advance(frame / 60.0); // an application gives it a monotonic clock
    std::printf("Played %.1f s, up to record %zu of %zu\n", clock.Time() - clock.Begin(),
        times.RecordAt(clock.Time()) + 1, times.Count());
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication app(argc, argv);
    bool ok = argc == 2 || argc == 3;
    const int columns = argc == 3 ? QString::fromLocal8Bit(argv[2]).toInt(&ok) : 100;
    if (!ok || columns < 10 || columns > 1000) {
        std::fprintf(stderr, "Usage: ex_review_log LOG [COLUMNS]\n");
        return 1;
    }
    const QString path = QString::fromLocal8Bit(argv[1]);

    // An application runs this in a ZrWorker.
    ZrSurveySeries series;
    ZrSurveySeriesReader reader;
    if (!reader.Read(path, series)) {
        std::fprintf(stderr, "%s\n", qPrintable(reader.Error()));
        return 2;
    }
    if (!reader.Damage().isEmpty())
        std::fprintf(stderr, "%s\n", qPrintable(reader.Damage()));
    if (series.times->IsEmpty()) {
        std::fprintf(stderr, "The log has no navigation\n");
        return 2;
    }

    ZrTimeLine line;
    line.SetLog(series.times);
    PrintTimeLine(line, columns);
    PrintPlot(series.depth, line, columns);
    PrintPlayback(*series.times, line);

    ZrEventList events;
    QString error;
    if (!events.Load(path, &error))
        std::fprintf(stderr, "%s\n", qPrintable(error));
    for (std::size_t i = 0; i < events.Count(); ++i)
        std::printf("%s\n", qPrintable(events.At(i).text));
    return 0;
}
