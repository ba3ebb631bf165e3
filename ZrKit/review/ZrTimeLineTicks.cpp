// The ticks of a time axis.

#include "ZrKit/review/ZrTimeLine.h"

#include <QDateTime>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr i64 second = 1000; ///< all steps are milliseconds
constexpr i64 minute = 60 * second;
constexpr i64 hour = 60 * minute;
constexpr i64 day = 24 * hour;
constexpr i64 steps[] = {1, 2, 5, 10, 20, 50, 100, 200, 500, second, 2 * second, 5 * second, 10 * second,
    15 * second, 30 * second, minute, 2 * minute, 5 * minute, 10 * minute, 15 * minute, 30 * minute, hour,
    2 * hour, 3 * hour, 6 * hour, 12 * hour, day, 2 * day, 5 * day, 10 * day, 20 * day, 50 * day, 100 * day,
    200 * day, 500 * day, 1000 * day, 10000 * day, 100000 * day};

constexpr int labelSpace = 12; ///< pixels between labels
constexpr int tickSpace = 6; ///< and between ticks without labels

i64 FloorDiv(i64 a, i64 b)
{
    return a / b - (a % b < 0 ? 1 : 0);
}

i64 DayOf(i64 ms)
{
    return FloorDiv(ms, day);
}

QString DateText(i64 ms)
{
    return QDateTime::fromMSecsSinceEpoch(ms, Qt::UTC).toString(QStringLiteral("yyyy-MM-dd"));
}

/// The time of day with the digits that multiples of \p step need.
QString TimeText(i64 ms, i64 step)
{
    const QDateTime time = QDateTime::fromMSecsSinceEpoch(ms, Qt::UTC);
    if (step >= minute)
        return time.toString(QStringLiteral("HH:mm"));
    if (step >= second)
        return time.toString(QStringLiteral("HH:mm:ss"));
    const QString text = time.toString(QStringLiteral("HH:mm:ss.zzz"));
    return text.left(text.size() - (step >= 100 ? 2 : step >= 10 ? 1 : 0));
}

/// The smallest step whose labels have room at \p msPerPixel.
i64 StepFor(double msPerPixel, const ZrTimeLine::Measure& measure)
{
    for (const i64 step : steps) {
        // From half a day on nearly every label has a date.
        const QString sample = step >= day ? DateText(0)
            : step >= day / 2              ? DateText(0) + QLatin1Char(' ') + TimeText(0, step)
                                           : TimeText(0, step);
        const int label = measure(sample);
        if (static_cast<double>(step) >= msPerPixel * (label + labelSpace))
            return step;
    }
    return steps[std::size(steps) - 1];
}

/// Places ticks from left to right.
class Ticker
{
public:
    Ticker(int width, i64 step, const ZrTimeLine::Measure& measure)
        : m_width(width)
        , m_step(step)
        , m_measure(measure)
    {
    }

    /// A tick of the log's time \p ms at \p fraction, if there is room for it.
    void Add(double fraction, double steady, i64 ms)
    {
        const double x = fraction * m_width;
        if (!ticks.empty() && x < m_lastX + tickSpace)
            return;
        ZrTimeLine::Tick tick{fraction, steady, QString(), 0, false};
        const bool newDay = DayOf(ms) != m_day;
        QString label = m_step >= day ? DateText(ms) : TimeText(ms, m_step);
        if (newDay && m_step < day)
            label = DateText(ms) + QLatin1Char(' ') + label;
        const int size = m_measure(label);
        const int left = std::max(0, std::min(static_cast<int>(std::lround(x - size / 2.0)), m_width - size));
        // A label that the edge pushes away from its tick would tell a wrong time.
        const bool fits = size <= m_width && x >= left && x <= left + size;
        // A date is worth the labels in front of it, up to another date.
        while (fits && newDay && left < m_free && left >= m_freeOfDate && !ticks[m_placed.back()].newDay) {
            ticks[m_placed.back()].label.clear();
            m_placed.pop_back();
            m_free = m_placed.empty() ? 0 : RightOf(ticks[m_placed.back()]);
        }
        if (fits && left >= m_free) {
            tick.label = label;
            tick.labelLeft = left;
            tick.newDay = newDay;
            m_placed.push_back(ticks.size());
            m_free = RightOf(tick);
            m_day = DayOf(ms);
            if (newDay)
                m_freeOfDate = m_free;
        }
        ticks.push_back(tick);
        m_lastX = x;
    }

    std::vector<ZrTimeLine::Tick> ticks;

private:
    int RightOf(const ZrTimeLine::Tick& tick) const
    {
        return tick.labelLeft + m_measure(tick.label) + labelSpace;
    }

    int m_width;
    i64 m_step;
    const ZrTimeLine::Measure& m_measure;
    double m_lastX = 0.0;
    std::vector<std::size_t> m_placed; ///< the ticks with labels
    int m_free = 0; ///< pixel from which on there is room for a label
    int m_freeOfDate = 0; ///< the same behind the last label with a date
    i64 m_day = std::numeric_limits<i64>::min(); ///< of the label placed last
};

std::size_t LabelsIn(const std::vector<ZrTimeLine::Tick>& ticks)
{
    return static_cast<std::size_t>(std::count_if(
        ticks.begin(), ticks.end(), [](const ZrTimeLine::Tick& tick) { return !tick.label.isEmpty(); }));
}

/// The first multiple of \p step, ms, at or behind \p time, seconds; what is 1 µs before counts as there.
i64 MultipleFrom(double time, i64 step)
{
    return -FloorDiv(-static_cast<i64>(std::ceil(time * 1000.0 - 1e-3)), step) * step;
}

using Run = ZrSteadyTime::Run;

/// The stretch of the log that begins behind \p steady.
std::vector<Run>::const_iterator RunBehind(const std::vector<Run>& runs, double steady)
{
    return std::upper_bound(
        runs.begin(), runs.end(), steady, [](double t, const Run& run) { return t < run.begin; });
}

/// Ticks at the round times that are not cut out: stretch by stretch, each up to a gap that is cut out or to
/// a setting of the clock. Every turn goes on by a pixel at least, so that their number does not depend on
/// the log; stretches too narrow to be seen may be passed over.
std::vector<ZrTimeLine::Tick> TicksOfStretches(const ZrTimeLine& line, Ticker ticker, int width, i64 step)
{
    const std::vector<Run>& runs = line.Log()->Runs();
    const std::vector<ZrGaps::Gap>& gaps = line.Gaps().All();
    const double last = line.VisibleEnd();
    for (double at = line.VisibleBegin(); at <= last;) {
        double end = last;
        double next = std::numeric_limits<double>::infinity();
        const auto run = RunBehind(runs, at);
        if (run != runs.end() && run->begin <= end) {
            end = std::nextafter(run->begin, at);
            next = run->begin;
        }
        const std::size_t gap = line.AreGapsCut() ? line.Gaps().From(at) : gaps.size();
        if (gap < gaps.size() && gaps[gap].begin <= end) {
            end = gaps[gap].begin;
            next = gaps[gap].end;
        }
        const double shift = at - line.Log()->LogTime(at);
        double farthest = line.Fraction(at);
        for (i64 ms = MultipleFrom(at - shift, step);; ms += step) {
            const double steady = static_cast<double>(ms) / 1000.0 + shift;
            if (steady > end + 1e-6)
                break;
            const double inside = std::min(std::max(steady, at), end);
            farthest = line.Fraction(inside);
            ticker.Add(farthest, inside, ms);
        }
        next = std::max(next, line.At(farthest + 1.0 / width));
        if (!(next > at))
            break;
        at = next;
    }
    return ticker.ticks;
}

/// Ticks at all round times, at the place of the gap for those that are cut out: for logs that consist of
/// stretches too narrow to be seen.
std::vector<ZrTimeLine::Tick> TicksOfAll(const ZrTimeLine& line, Ticker ticker, int width, i64 step)
{
    const std::vector<Run>& runs = line.Log()->Runs();
    const double last = line.VisibleEnd();
    for (double at = line.VisibleBegin(); at <= last;) {
        const double shift = at - line.Log()->LogTime(at);
        const i64 ms = MultipleFrom(at - shift, step);
        const double steady = std::max(static_cast<double>(ms) / 1000.0 + shift, at);
        const auto run = RunBehind(runs, at);
        if (run != runs.end() && run->begin <= steady) {
            at = run->begin;
            continue;
        }
        if (steady > last)
            break;
        const double fraction = line.Fraction(steady);
        ticker.Add(fraction, steady, ms);
        at = std::max(line.At(fraction + static_cast<double>(tickSpace) / width),
            std::nextafter(steady, std::numeric_limits<double>::infinity()));
    }
    return ticker.ticks;
}

} // namespace

std::vector<ZrTimeLine::Tick> ZrTimeLine::Ticks(int width, const Measure& measure) const
{
    if (!m_log || width <= 0)
        return {};
    const i64 step = StepFor(VisibleLength() * 1000.0 / width, measure);
    std::vector<Tick> ticks = TicksOfStretches(*this, Ticker(width, step, measure), width, step);
    constexpr std::size_t few = 2;
    if (LabelsIn(ticks) < few && m_cut && !m_gaps.All().empty()) {
        std::vector<Tick> all = TicksOfAll(*this, Ticker(width, step, measure), width, step);
        if (LabelsIn(all) > LabelsIn(ticks))
            ticks.swap(all);
    }
    if (LabelsIn(ticks) > 0)
        return ticks;
    const double middle = At(0.5);
    Ticker single(width, std::min(step, second), measure);
    single.Add(Fraction(middle), middle, static_cast<i64>(std::llround(m_log->LogTime(middle) * 1000.0)));
    return LabelsIn(single.ticks) > 0 ? single.ticks : ticks;
}
