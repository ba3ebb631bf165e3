#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/review/ZrGaps.h"
#include "ZrKit/review/ZrSteadyTime.h"

#include <QString>

#include <cstddef>
#include <functional>
#include <memory>
#include <vector>

/// The time axis of a recording: which moment lies where on the screen, and what is written below it.
///
/// The axis shows a part of the recording, at first all of it, across its whole width; places on it are
/// fractions, 0 at the left edge and 1 at the right one. Times are steady times (see `ZrSteadyTime`). Gaps
/// can be cut out: then each is a single place, where `Cuts` tells what is missing.
///
/// \code
/// ZrTimeLine line;
/// line.SetLog(steady);
/// line.Zoom(1.25, double(mouse.x()) / width()); // the moment below the mouse stays there
/// for (const ZrTimeLine::Tick& tick : line.Ticks(width(), [&](const QString& text) {
///          return metrics.horizontalAdvance(text); }))
///     …
/// \endcode
///
/// Without any known time fractions and times are NaN and there are no ticks. NaN and infinities given to a
/// function that moves the visible part change nothing. A value; one thread at a time.
class ZR_KIT_EXPORT ZrTimeLine
{
public:
    static constexpr double Shortest = 0.01; ///< seconds that the visible part is long at least

    struct Tick
    {
        double fraction;
        double steady; ///< seconds
        QString label; ///< UTC; empty where there was no room
        int labelLeft; ///< pixels from the left edge of the axis to that of the label
        bool newDay; ///< the label names the date
    };

    /// Gaps that are cut out at one place of the screen.
    struct Cut
    {
        double fraction;
        double seconds; ///< missing here
        std::size_t gap; ///< the first of them, in `Gaps().All()`
    };

    /// The width of a label in pixels.
    using Measure = std::function<int(const QString&)>;

    /// Takes over the times of \p log, which must not grow meanwhile; null for none. A log that has grown is
    /// set again: the visible part stays, unless all was visible, which then is all of the new one.
    void SetLog(std::shared_ptr<const ZrSteadyTime> log);

    const std::shared_ptr<const ZrSteadyTime>& Log() const { return m_log; }

    /// Steps of more than \p seconds are gaps; `ZrGaps::DefaultLongest` at first.
    void SetLongestStep(double seconds);

    double LongestStep() const { return m_longest; }

    const ZrGaps& Gaps() const { return m_gaps; }

    /// Whether gaps are cut out; true at first. What was visible stays so.
    void SetGapsCut(bool cut);

    bool AreGapsCut() const { return m_cut; }

    double Length() const { return m_length; } ///< seconds of the whole axis, without what is cut out

    double VisibleLength() const { return m_last - m_first; } ///< seconds of the visible part

    double VisibleBegin() const { return At(0.0); } ///< steady time at the left edge

    double VisibleEnd() const { return At(1.0); } ///< and at the right one

    bool IsAllVisible() const;

    void ShowAll();

    /// Makes \p from ... \p to visible, in any order.
    void Show(double from, double to);

    /// Shows \p factor times as large what lies around \p fraction, which stays where it is; below 1 smaller.
    void Zoom(double factor, double fraction);

    /// Moves the visible part to later times, by this share of its length.
    void Pan(double share);

    /// Moves it as little as is needed to show \p steady, which then has \p margin, a share of the visible
    /// part below 0.5, to either edge, if the recording goes on so far.
    void Reveal(double steady, double margin);

    /// Below 0 and above 1 outside of the visible part.
    double Fraction(double steady) const;

    /// The steady time at \p fraction, within the recording. At a cut that of the last record before it.
    double At(double fraction) const;

    /// Steady times at the edges of \p columns equal columns, one more than there are columns; none without
    /// log.
    std::vector<double> Columns(int columns) const;

    /// Ticks for an axis of \p width pixels, at round times of the log's own clock: as close as their labels
    /// allow, which never overlap and stay on the axis. The first label of each day begins with the date. An
    /// axis of some 100 pixels has one label at least.
    std::vector<Tick> Ticks(int width, const Measure& measure) const;

    /// What is cut out of the visible part, at most one for each of the \p width pixels.
    std::vector<Cut> Cuts(int width) const;

    /// Which of the ascending times \p times lies nearest to the pixel \p x of an axis of \p width pixels,
    /// and within \p pixels of it; their number when none does.
    std::size_t HitTest(double x, int width, zr::span<const double> times, double pixels) const;

    /// The gap below \p x: inside its stretch, or, when it is cut out, within \p pixels of its place. The
    /// number of gaps when there is none.
    std::size_t GapHitTest(double x, int width, double pixels) const;

    /// The time at \p x, or that of a target of \p times within \p pixels, see `HitTest`.
    double Snap(double x, int width, zr::span<const double> times, double pixels) const;

private:
    double ToAxis(double steady) const;
    double FromAxis(double seconds) const;
    void SetVisible(double first, double last);
    void FindGaps();
    void Remake();

    std::shared_ptr<const ZrSteadyTime> m_log;
    ZrGaps m_gaps;
    double m_longest = ZrGaps::DefaultLongest;
    bool m_cut = true;
    double m_length = 0.0;
    double m_first = 0.0; ///< seconds from the begin of the axis
    double m_last = 0.0;
};
