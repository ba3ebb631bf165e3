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

    Vec Grid(const ZrWpt& wpt)
    {
        return {wpt.x, wpt.y};
    }

    Vec Project(double lat, double lng)
    {
        Vec v {};
        ZrUnits::LLToEN(lat, lng, v.x, v.y);
        return v;
    }

    /// Angle of \p v; on the vertical axis +π/2 or −π/2 by the sign of y, where 0 counts as negative.
    double AngleOf(Vec v)
    {
        if (v.x == 0.0)
            return v.y > 0.0 ? ZrUtil::pi_2 : -ZrUtil::pi_2;
        return std::atan2(v.y, v.x);
    }

    Vec Polar(double radius, double angle)
    {
        return {radius * std::cos(angle), radius * std::sin(angle)};
    }

    void ClearTurn(ZrWpt& wpt)
    {
        wpt.ricX = wpt.ricY = wpt.rit = 0.0;
        wpt.tp1X = wpt.tp1Y = wpt.tp1Q = 0.0;
        wpt.tp2X = wpt.tp2Y = wpt.tp2Q = 0.0;
    }

    /// The angle swept from \p a1 to \p a2 the shorter way round; a tie goes counter-clockwise.
    double Sweep(double a1, double a2)
    {
        double c1 = a1;
        double c2 = a2;
        if (a2 > a1)
            while (c1 < a2)
                c1 += ZrUtil::pi2;
        if (a1 > a2)
            while (c2 < a1)
                c2 += ZrUtil::pi2;
        const double ccw = std::fabs(c2 - a1);
        const double cw = std::fabs(c1 - a2);
        return ccw > cw ? -cw : ccw;
    }

    /// The turn at \p wpt from the leg \p u, which ends there, to the leg \p v, which begins there, both unit
    /// vectors towards the waypoint. False where the path doubles back: the former turn stays.
    bool CalcTurn(ZrWpt& wpt, Vec u, Vec v)
    {
        // Rounding takes the product of parallel unit vectors beyond 1.
        const double t = std::tan(std::acos(std::clamp(Dot(u, v), -1.0, 1.0)) / 2.0);
        if (t == 0.0)
            return false;
        const double radius = std::fabs(wpt.r);
        const double k = radius / t;
        const Vec w = Grid(wpt);
        const Vec tp1 = w - k * u;
        const Vec tp2 = w - k * v;
        Vec centre = tp1 + Polar(radius, AngleOf(u) + ZrUtil::pi_2);
        if (std::fabs(Length(tp2 - centre) - radius) > 0.05)
            centre = tp1 + Polar(radius, ZrUtil::ATan2(u.y, u.x) - ZrUtil::pi_2);
        wpt.tp1X = tp1.x;
        wpt.tp1Y = tp1.y;
        wpt.tp2X = tp2.x;
        wpt.tp2Y = tp2.y;
        wpt.ricX = centre.x;
        wpt.ricY = centre.y;
        wpt.rit = Sweep(AngleOf(tp1 - centre), AngleOf(tp2 - centre));
        return true;
    }

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
    const std::vector<bool> turns = CalcTurns();
    CalcSpeeds();
    CalcDistances(force, turns);
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
    CalcTurns();
}

std::vector<bool> ZrWpts::CalcTurns()
{
    std::vector<bool> turns;
    const ZrWpt* before = nullptr;
    for (ZrListPos* pos = GetHeadPos(); pos;) {
        ZrWpt* wpt = GetNext(pos);
        const ZrWpt* after = GetAt(pos);
        bool turned = false;
        if (!before || !after) {
            if (wpt->r != 0.0) {
                wpt->r = 0.0;
                ClearTurn(*wpt);
            }
        } else {
            const Vec u = Grid(*wpt) - Grid(*before);
            const Vec v = Grid(*wpt) - Grid(*after);
            const double uLength = Length(u);
            const double vLength = Length(v);
            if (uLength != 0.0 && vLength != 0.0) {
                if (wpt->r == 0.0)
                    ClearTurn(*wpt);
                else
                    turned = CalcTurn(*wpt, {u.x / uLength, u.y / uLength}, {v.x / vLength, v.y / vLength});
            }
        }
        turns.push_back(turned);
        before = wpt;
    }
    return turns;
}

void ZrWpts::CalcSpeeds()
{
    const auto preset = [](int type, double own) {
        switch (type) {
        case 1:
            return static_cast<double>(s_msSlow);
        case 2:
            return static_cast<double>(s_msMedium);
        case 3:
            return static_cast<double>(s_msFast);
        default:
            return own;
        }
    };
    speed = preset(speedType, speed);
    double running = speed;
    for (ZrListPos* pos = GetHeadPos(); pos;) {
        ZrWpt* wpt = GetNext(pos);
        if (wpt->spdType == 0)
            wpt->speed = running;
        else
            running = preset(wpt->spdType, wpt->speed);
    }
}

void ZrWpts::CalcDistances(bool force, const std::vector<bool>& turns)
{
    Vec from {}; // where the way to the next waypoint begins
    double base = 0.0; // distance along the route there
    const ZrWpt* before = nullptr;
    auto turned = turns.begin();
    for (ZrListPos* pos = GetHeadPos(); pos; ++turned) {
        ZrWpt* wpt = GetNext(pos);
        const Vec to = *turned ? Vec {wpt->tp1X, wpt->tp1Y} : Grid(*wpt);
        const double reached = before ? base + Length(to - from) : 0.0;
        const double arc = *turned ? std::fabs(wpt->r) * wpt->rit : 0.0;
        const bool kept = !force && wpt->q != 0.0;
        if (!kept)
            wpt->q = reached + arc;
        if (*turned) {
            wpt->tp1Q = kept ? wpt->q - arc : reached;
            wpt->tp2Q = wpt->q;
        }
        from = *turned ? Vec {wpt->tp2X, wpt->tp2Y} : Grid(*wpt);
        base = wpt->q;
        before = wpt;
    }
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
