#include "ZrUtil/ZrUnits.h"
#include "ZrUtil/ZrUtil.h"
#include "ZrUtil/ZrWpts.h"

#include <algorithm>
#include <cmath>

namespace {

struct Vec
{
    double x;
    double y;
};

Vec operator-(Vec a, Vec b)
{
    return {a.x - b.x, a.y - b.y};
}

Vec operator+(Vec a, Vec b)
{
    return {a.x + b.x, a.y + b.y};
}

Vec operator*(double k, Vec v)
{
    return {k * v.x, k * v.y};
}

double Dot(Vec a, Vec b)
{
    return a.x * b.x + a.y * b.y;
}

double Length(Vec v)
{
    return std::sqrt(Dot(v, v));
}

double Cross(Vec a, Vec b)
{
    return a.x * b.y - a.y * b.x;
}

Vec Grid(const ZrWpt& wpt)
{
    return {wpt.x, wpt.y};
}

/// The way between two points: its direction as a unit vector, unless it has no length.
struct Leg
{
    Vec direction{};
    double length = 0.0;

    Leg() = default;

    Leg(Vec from, Vec to)
        : direction(to - from)
        , length(Length(direction))
    {
        if (length != 0.0)
            direction = {direction.x / length, direction.y / length};
    }
};

Vec Project(double lat, double lng)
{
    Vec v{};
    ZrUnits::LLToEN(lat, lng, v.x, v.y);
    return v;
}

void ClearTurn(ZrWpt& wpt)
{
    wpt.ricX = wpt.ricY = wpt.rit = 0.0;
    wpt.tp1X = wpt.tp1Y = wpt.tp1Q = 0.0;
    wpt.tp2X = wpt.tp2Y = wpt.tp2Q = 0.0;
}

/// The angle swept from \p from to \p to the shorter way round; half a circle goes counter-clockwise.
double Sweep(Vec from, Vec to)
{
    const double cross = Cross(from, to);
    const double dot = Dot(from, to);
    if (cross == 0.0)
        return dot < 0.0 ? ZrUtil::pi : 0.0;
    return std::atan2(cross, dot);
}

/// The turn at \p wpt from the leg in the direction \p in to that in the direction \p out, both unit vectors.
/// False where the path doubles back: the former turn stays.
bool CalcTurn(ZrWpt& wpt, Vec in, Vec out)
{
    // Rounding takes the product of parallel unit vectors beyond 1.
    const double cosine = std::clamp(-Dot(in, out), -1.0, 1.0);
    if (cosine == 1.0)
        return false;
    const double t = std::sqrt((1.0 - cosine) / (1.0 + cosine)); // tangent of half the angle between the legs
    const double radius = std::fabs(wpt.r);
    const double k = radius / t; // from the waypoint to the tangent points
    const Vec w = Grid(wpt);
    const Vec tp1 = w - k * in;
    const Vec tp2 = w + k * out;
    const Vec left = radius * Vec{-in.y, in.x};
    Vec centre = tp1 + left;
    if (std::fabs(Length(tp2 - centre) - radius) > 0.05)
        centre = tp1 - left;
    wpt.tp1X = tp1.x;
    wpt.tp1Y = tp1.y;
    wpt.tp2X = tp2.x;
    wpt.tp2Y = tp2.y;
    wpt.ricX = centre.x;
    wpt.ricY = centre.y;
    wpt.rit = Sweep(tp1 - centre, tp2 - centre);
    return true;
}

/// Brings the turn of a waypoint up to date; \p in and \p out are null where there is no leg. True when it
/// turns.
bool UpdateTurn(ZrWpt& wpt, const Leg* in, const Leg* out)
{
    if (!in || !out) {
        if (wpt.r != 0.0) {
            wpt.r = 0.0;
            ClearTurn(wpt);
        }
        return false;
    }
    if (in->length == 0.0 || out->length == 0.0)
        return false;
    if (wpt.r == 0.0) {
        ClearTurn(wpt);
        return false;
    }
    return CalcTurn(wpt, in->direction, out->direction);
}

/// Brings the turns of \p route up to date and hands each waypoint on, with whether it turns.
template <class Then> void UpdateTurns(const ZrWpts& route, Then then)
{
    Leg in;
    bool first = true;
    for (ZrListPos* pos = route.GetHeadPos(); pos; first = false) {
        ZrWpt* wpt = route.GetNext(pos);
        const ZrWpt* after = route.GetAt(pos);
        const Leg out = after ? Leg(Grid(*wpt), Grid(*after)) : Leg();
        const bool turns = UpdateTurn(*wpt, first ? nullptr : &in, after ? &out : nullptr);
        then(*wpt, turns);
        in = out;
    }
}

/// The speed of a kind of speed, m/s; \p own where it is none of the presets.
double SpeedOf(int type, double own)
{
    switch (type) {
    case 1:
        return static_cast<double>(ZrWpts::s_msSlow);
    case 2:
        return static_cast<double>(ZrWpts::s_msMedium);
    case 3:
        return static_cast<double>(ZrWpts::s_msFast);
    default:
        return own;
    }
}

/// Fills the distances of one waypoint after the other.
class Odometer
{
public:
    explicit Odometer(bool force)
        : m_force(force)
    {
    }

    void Pass(ZrWpt& wpt, bool turns)
    {
        const Vec to = turns ? Vec{wpt.tp1X, wpt.tp1Y} : Grid(wpt);
        const double reached = m_first ? 0.0 : m_base + Length(to - m_from);
        const double arc = turns ? std::fabs(wpt.r) * wpt.rit : 0.0;
        const bool kept = !m_force && wpt.q != 0.0;
        if (!kept)
            wpt.q = reached + arc;
        if (turns) {
            wpt.tp1Q = kept ? wpt.q - arc : reached;
            wpt.tp2Q = wpt.q;
        }
        m_from = turns ? Vec{wpt.tp2X, wpt.tp2Y} : Grid(wpt);
        m_base = wpt.q;
        m_first = false;
    }

private:
    bool m_force;
    bool m_first = true;
    Vec m_from{}; // where the way to the next waypoint begins
    double m_base = 0.0; // distance along the route there
};

/// Where the perpendicular from \p t meets the line through \p a and \p b, as a fraction of a → b; 0 when
/// they coincide.
double FootFraction(Vec t, Vec a, Vec b)
{
    const Vec leg = b - a;
    const double square = Dot(leg, leg);
    return square > 0.0 ? Dot(t - a, leg) / square : 0.0;
}

double FootDistance(Vec t, Vec a, Vec b, double fraction)
{
    return Length(t - (a + fraction * (b - a)));
}

bool OnLeg(double fraction)
{
    return fraction >= 0.0 && fraction <= 1.0;
}

/// Whether \p t, nearest to the waypoint \p n, belongs to the leg \p p → \p n rather than to \p n → \p f.
bool IsOnFirstLeg(Vec t, Vec p, Vec n, Vec f)
{
    const double tP = FootFraction(t, p, n);
    const double tF = FootFraction(t, n, f);
    if (!OnLeg(tF))
        return OnLeg(tP) || tP - 1.0 < -tF;
    return OnLeg(tP) && FootDistance(t, p, n, tP) < FootDistance(t, n, f, tF);
}

} // namespace

void ZrWpts::Recalc(bool force)
{
    CalcXY();
    speed = SpeedOf(speedType, speed);
    double running = speed;
    Odometer odometer(force);
    UpdateTurns(*this, [&running, &odometer](ZrWpt& wpt, bool turns) {
        if (wpt.spdType == 0)
            wpt.speed = running;
        else
            running = SpeedOf(wpt.spdType, wpt.speed);
        odometer.Pass(wpt, turns);
    });
}

void ZrWpts::CalcXY()
{
    if (const ZrWpt* first = GetHead())
        ZrUnits::CalcUTM(first->lat, first->lng);
    for (ZrListPos* pos = GetHeadPos(); pos;) {
        ZrWpt* wpt = GetNext(pos);
        ZrUnits::LLToEN(wpt->lat, wpt->lng, wpt->x, wpt->y);
    }
}

void ZrWpts::CalcTangentPoints()
{
    UpdateTurns(*this, [](ZrWpt&, bool) {});
}

int ZrWpts::LL2Segment(double lat, double lng, ZrWpt*& from, ZrWpt*& to) const
{
    from = nullptr;
    to = nullptr;
    ZrListPos* nearest = NearestTo(lat, lng);
    if (!nearest)
        return 0;
    ZrWpt* n = GetAt(nearest);
    ZrWpt* p = GetAt(PrecedingUnique(nearest));
    ZrWpt* f = GetAt(FollowingUnique(nearest));

    ZrUnits::CalcUTM(n->lat, n->lng);
    const Vec gT = Project(lat, lng);
    const Vec gN = Project(n->lat, n->lng);
    const Vec gP = p ? Project(p->lat, p->lng) : gN;
    const Vec gF = f ? Project(f->lat, f->lng) : gN;

    if (!f) {
        from = p;
        to = n;
        return p && FootFraction(gT, gP, gN) >= 1.0 ? 1 : 0;
    }
    if (!p) {
        from = n;
        to = f;
        return FootFraction(gT, gN, gF) <= 0.0 ? -1 : 0;
    }
    const bool first = IsOnFirstLeg(gT, gP, gN, gF);
    from = first ? p : n;
    to = first ? n : f;
    return 0;
}
