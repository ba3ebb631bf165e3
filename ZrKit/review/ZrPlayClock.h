#pragma once

#include "ZrKit/ZrKitExport.h"
#include "ZrKit/review/ZrGaps.h"
#include "ZrUtil/ZrSpan.h"

#include <deque>

/// Where playback is: goes on with a clock that is given to it, skips gaps, repeats a range, stops at the
/// ends.
///
/// \code
/// clock.SetRange(steady.Begin(), steady.End());
/// clock.SetGaps(ZrGaps(steady.Times()));
/// clock.Play();
/// // on every frame, with a monotonic clock in seconds:
/// if (clock.Advance(elapsed.nsecsElapsed() * 1e-9) != ZrPlayClock::Still)
///     Show(steady.RecordAt(clock.Time()));
/// \endcode
///
/// Times are steady times (see `ZrSteadyTime`), seconds. While it plays evenly the position is computed from
/// where that began, never by adding up, so it does not drift. A call that comes more than `mostStep` seconds
/// after the one before counts as one that came in time: after a stall playback goes on where it was. Clock
/// readings that are not finite or fall are passed over, as are times that are not finite.
///
/// A value; one thread at a time.
class ZR_KIT_EXPORT ZrPlayClock
{
public:
    enum eMove : int
    {
        Still, ///< not playing, or no time has passed
        Moved, ///< everything in between was passed, in the direction of `Rate`
        Jumped, ///< the range began anew: what is shown must be found again
        Ended ///< the end of the recording was reached, and playback stopped
    };

    static constexpr double SlowestRate = 0.1;
    static constexpr double FastestRate = 50.0;
    static constexpr double ShortestLoop = 0.001; ///< seconds

    double mostStep = 1.0; ///< seconds of the clock between two calls that count at most

    ZrPlayClock();

    /// The rates that `Faster` and `Slower` go through, from `SlowestRate` to `FastestRate`.
    static zr::span<const double> Rates();

    /// Where playback may go, from the first to the last record. The position is moved inside; at first, and
    /// from an empty range, to the begin. A range that is not finite is none: nothing plays.
    void SetRange(double begin, double end);

    double Begin() const { return m_begin; } ///< NaN without range

    double End() const { return m_end; }

    /// Gaps that are skipped while `SetSkipGaps` says so.
    void SetGaps(ZrGaps gaps);

    /// True at first.
    void SetSkipGaps(bool skip);

    bool SkipsGaps() const { return m_skip; }

    double Time() const { return m_time; } ///< the position; NaN without range

    /// Moves to \p time, or to the nearer end of the range. False, and nothing done, without range and for
    /// times that are not finite.
    bool SetTime(double time);

    /// Starts; from the end (backwards: the begin) at the other one. Nothing without range.
    void Play();

    void Pause();

    bool IsPlaying() const { return m_playing; }

    /// Seconds of the recording for each second of the clock; below 0 backwards. Magnitudes are brought
    /// within `SlowestRate` and `FastestRate`; 0 and what is not finite changes nothing.
    void SetRate(double rate);

    double Rate() const { return m_rate; }

    void Faster(); ///< the next rate of `Rates`, in the same direction
    void Slower();

    void Reverse() { SetRate(-m_rate); }

    /// Repeats \p a ... \p b, in any order. False, and nothing done, when that is shorter than
    /// `ShortestLoop`, not finite or outside the range. A position outside is moved in by the next `Advance`.
    bool SetLoop(double a, double b);

    void ClearLoop();

    bool HasLoop() const { return m_hasLoop; }

    double LoopBegin() const { return m_loopBegin; } ///< meaningful with a loop

    double LoopEnd() const { return m_loopEnd; }

    /// Goes on to the reading \p now of a monotonic clock, seconds. The first call after `Play` only tells
    /// when it began.
    eMove Advance(double now);

    /// Seconds of the recording for each second of the clock that were really reached over the last second or
    /// so, gaps that were skipped not counted; 0 when paused, NaN before two calls of `Advance`.
    double RateReached() const;

    /// Moves by \p count of the ascending \p times (records, events), below 0 backwards; of equal ones to
    /// the first. Pauses. False, and nothing moved, when there are none on that side within the range; when
    /// there are fewer than \p count, to the last of them.
    bool Step(zr::span<const double> times, int count);

    /// Moves by \p seconds, below 0 backwards, without those of gaps that are skipped. Pauses. False when
    /// it cannot be moved.
    bool StepSeconds(double seconds);

private:
    struct Sample
    {
        double now;
        double played; ///< seconds, without a sign
    };

    bool HasRange() const { return m_begin <= m_end; }

    bool SkipsNow() const;

    double ToPlayed(double time) const { return m_skipsNow ? m_gaps.Cut(time) : time; }

    double FromPlayed(double played) const { return m_skipsNow ? m_gaps.Whole(played) : played; }

    void Anchor();
    eMove Reach(double played);
    void Note(double played);

    double m_begin;
    double m_end;
    ZrGaps m_gaps;
    bool m_skip = true;
    double m_time;
    bool m_playing = false;
    double m_rate = 1.0;
    bool m_hasLoop = false;
    double m_loopBegin;
    double m_loopEnd;
    bool m_hasNow = false; ///< there was a reading since `Play`
    double m_now = 0.0; ///< the last one
    bool m_skipsNow = false; ///< gaps are skipped, so that played time is cut time
    double m_anchor = 0.0; ///< the played time where even playback began
    double m_anchorNow = 0.0; ///< and the reading then
    std::deque<Sample> m_samples; ///< of the last second
};
