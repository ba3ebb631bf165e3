#include "ZrKit/review/ZrPlayClock.h"

#include "ZrUtil/ZrTypes.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace {

constexpr double unknown = std::numeric_limits<double>::quiet_NaN();
constexpr double rates[]
    = {ZrPlayClock::SlowestRate, 0.2, 0.5, 1.0, 2.0, 5.0, 10.0, 20.0, ZrPlayClock::FastestRate};
constexpr double rateWindow = 1.0; ///< seconds over which the rate is measured

} // namespace

ZrPlayClock::ZrPlayClock()
    : m_begin(unknown)
    , m_end(unknown)
    , m_time(unknown)
    , m_loopBegin(unknown)
    , m_loopEnd(unknown)
{
}

zr::span<const double> ZrPlayClock::Rates()
{
    return zr::span<const double>(rates);
}

void ZrPlayClock::SetRange(double begin, double end)
{
    if (!std::isfinite(begin) || !std::isfinite(end)) {
        Pause();
        ClearLoop();
        m_begin = m_end = m_time = unknown;
        return;
    }
    m_begin = std::min(begin, end);
    m_end = std::max(begin, end);
    m_time = std::isnan(m_time) ? m_begin : std::min(std::max(m_time, m_begin), m_end);
    if (m_hasLoop && (m_loopBegin < m_begin || m_loopEnd > m_end))
        ClearLoop();
    Anchor();
}

void ZrPlayClock::SetGaps(ZrGaps gaps)
{
    m_gaps = std::move(gaps);
    Anchor();
}

void ZrPlayClock::SetSkipGaps(bool skip)
{
    m_skip = skip;
    Anchor();
}

/// A loop inside a gap, of which nothing would be left, is played as it is.
bool ZrPlayClock::SkipsNow() const
{
    return m_skip && (!m_hasLoop || m_gaps.Cut(m_loopEnd) - m_gaps.Cut(m_loopBegin) >= ShortestLoop);
}

/// Even playback begins here and now.
void ZrPlayClock::Anchor()
{
    m_skipsNow = SkipsNow();
    m_anchor = ToPlayed(m_time);
    m_anchorNow = m_now;
}

bool ZrPlayClock::SetTime(double time)
{
    if (!HasRange() || !std::isfinite(time))
        return false;
    m_time = std::min(std::max(time, m_begin), m_end);
    Anchor();
    return true;
}

void ZrPlayClock::Play()
{
    if (!HasRange() || m_playing)
        return;
    m_playing = true;
    m_hasNow = false;
    m_samples.clear();
    Anchor();
    if (m_hasLoop)
        return;
    if (m_rate > 0.0 && ToPlayed(m_time) >= ToPlayed(m_end))
        m_time = m_begin;
    else if (m_rate < 0.0 && ToPlayed(m_time) <= ToPlayed(m_begin))
        m_time = m_end;
    Anchor();
}

void ZrPlayClock::Pause()
{
    m_playing = false;
    m_samples.clear();
}

void ZrPlayClock::SetRate(double rate)
{
    if (!std::isfinite(rate) || !(std::fabs(rate) > 0.0))
        return;
    m_rate = std::copysign(std::min(std::max(std::fabs(rate), SlowestRate), FastestRate), rate);
    Anchor();
}

void ZrPlayClock::Faster()
{
    const double* const next = std::upper_bound(std::begin(rates), std::end(rates), std::fabs(m_rate));
    if (next != std::end(rates))
        SetRate(std::copysign(*next, m_rate));
}

void ZrPlayClock::Slower()
{
    const double* const next = std::lower_bound(std::begin(rates), std::end(rates), std::fabs(m_rate));
    if (next != std::begin(rates))
        SetRate(std::copysign(next[-1], m_rate));
}

bool ZrPlayClock::SetLoop(double a, double b)
{
    const double begin = std::min(a, b);
    const double end = std::max(a, b);
    if (!(end - begin >= ShortestLoop) || !HasRange() || !(begin >= m_begin) || !(end <= m_end))
        return false;
    m_hasLoop = true;
    m_loopBegin = begin;
    m_loopEnd = end;
    Anchor();
    return true;
}

void ZrPlayClock::ClearLoop()
{
    m_hasLoop = false;
    m_loopBegin = m_loopEnd = unknown;
    Anchor();
}

ZrPlayClock::eMove ZrPlayClock::Advance(double now)
{
    if (!m_playing || !std::isfinite(now))
        return Still;
    if (!m_hasNow || now < m_now) {
        m_hasNow = true;
        m_now = now;
        m_samples.clear();
        Note(0.0);
        Anchor();
        return Still;
    }
    if (!(now > m_now))
        return Still;
    if (now - m_now > mostStep) {
        m_now = now - mostStep;
        Anchor();
    }
    m_now = now;
    return Reach(m_anchor + m_rate * (m_now - m_anchorNow));
}

/// Goes to the played time \p played, as far as loop and range allow.
ZrPlayClock::eMove ZrPlayClock::Reach(double played)
{
    const bool forward = m_rate > 0.0;
    const double first = m_hasLoop ? m_loopBegin : m_begin;
    const double last = m_hasLoop ? m_loopEnd : m_end;
    if (m_time < first || m_time > last) {
        m_time = forward ? first : last;
        Note(0.0);
        Anchor();
        return Jumped;
    }
    Note(std::fabs(played - ToPlayed(m_time)));
    const double begin = ToPlayed(first);
    const double end = ToPlayed(last);
    if (forward ? played < end : played > begin) {
        const double time = FromPlayed(played);
        m_time = forward ? std::max(m_time, std::min(time, last)) : std::min(m_time, std::max(time, first));
        return Moved;
    }
    if (!m_hasLoop) {
        m_time = forward ? last : first;
        Pause();
        return Ended;
    }
    const double over = std::fmod(forward ? played - begin : end - played, end - begin);
    m_anchor = forward ? begin + over : end - over;
    m_anchorNow = m_now;
    m_time = std::min(std::max(FromPlayed(m_anchor), first), last);
    return Jumped;
}

void ZrPlayClock::Note(double played)
{
    m_samples.push_back({m_now, (m_samples.empty() ? 0.0 : m_samples.back().played) + played});
    while (m_samples.size() > 2 && m_now - m_samples[1].now >= rateWindow)
        m_samples.pop_front();
}

double ZrPlayClock::RateReached() const
{
    if (!m_playing)
        return 0.0;
    if (m_samples.size() < 2)
        return unknown;
    const Sample& first = m_samples.front();
    const Sample& last = m_samples.back();
    return std::copysign((last.played - first.played) / (last.now - first.now), m_rate);
}

bool ZrPlayClock::Step(zr::span<const double> times, int count)
{
    Pause();
    if (!HasRange() || count == 0)
        return false;
    const double* const first = std::lower_bound(times.begin(), times.end(), m_begin);
    const double* const end = std::upper_bound(first, static_cast<const double*>(times.end()), m_end);
    const i64 most = std::abs(static_cast<i64>(count));
    const double* target;
    if (count > 0) {
        const double* const next = std::upper_bound(first, end, m_time);
        if (next == end)
            return false;
        target = next + (std::min<i64>(most, end - next) - 1);
    } else {
        const double* const here = std::lower_bound(first, end, m_time);
        if (here == first)
            return false;
        target = here - std::min<i64>(most, here - first);
    }
    return SetTime(*target);
}

bool ZrPlayClock::StepSeconds(double seconds)
{
    Pause();
    if (!HasRange() || !std::isfinite(seconds))
        return false;
    Anchor();
    const double before = m_time;
    SetTime(FromPlayed(ToPlayed(m_time) + seconds));
    return m_time > before || m_time < before;
}
