#include "ZrKit/planning/ZrRouteHistory.h"

#include "ZrKit/planning/ZrAreaCheck.h"
#include "ZrKit/planning/ZrPlanAreas.h"
#include "ZrUtil/ZrWpts.h"

#include <QCoreApplication>
#include <QMultiHash>

#include <algorithm>
#include <array>
#include <cstring>

namespace {

/// Whether both have the same bits: NaN is itself, and the zeros differ.
template <class T> bool SameBits(T a, T b)
{
    std::array<char, sizeof(T)> bitsOfA{};
    std::array<char, sizeof(T)> bitsOfB{};
    std::memcpy(bitsOfA.data(), &a, sizeof(T));
    std::memcpy(bitsOfB.data(), &b, sizeof(T));
    return bitsOfA == bitsOfB;
}

template <class T> bool AllSameBits(const ZrWpt& a, const ZrWpt& b, std::initializer_list<T ZrWpt::*> members)
{
    return std::all_of(
        members.begin(), members.end(), [&](T ZrWpt::*member) { return SameBits(a.*member, b.*member); });
}

bool SamePosition(const ZrWpt& a, const ZrWpt& b)
{
    return AllSameBits(a, b,
        {&ZrWpt::lat, &ZrWpt::lng, &ZrWpt::x, &ZrWpt::y, &ZrWpt::z, &ZrWpt::alt, &ZrWpt::r, &ZrWpt::p,
            &ZrWpt::q, &ZrWpt::rx, &ZrWpt::rz, &ZrWpt::speed, &ZrWpt::time, &ZrWpt::head, &ZrWpt::ricX,
            &ZrWpt::ricY, &ZrWpt::rit, &ZrWpt::tp1X, &ZrWpt::tp1Y, &ZrWpt::tp1Q, &ZrWpt::tp2X, &ZrWpt::tp2Y,
            &ZrWpt::tp2Q});
}

bool SameTarget(const ZrWpt& a, const ZrWpt& b)
{
    return AllSameBits(a, b,
               {&ZrWpt::burial, &ZrWpt::length, &ZrWpt::height, &ZrWpt::width, &ZrWpt::viz, &ZrWpt::ripples,
                   &ZrWpt::current})
        && AllSameBits(a, b,
            {&ZrWpt::fileType, &ZrWpt::type, &ZrWpt::src, &ZrWpt::shape, &ZrWpt::bottom, &ZrWpt::classA,
                &ZrWpt::classB, &ZrWpt::classC, &ZrWpt::classD})
        && a.bottomA == b.bottomA && a.bottomN == b.bottomN && a.veg == b.veg;
}

bool SameText(const ZrWpt& a, const ZrWpt& b)
{
    return a.name == b.name && a.pseudo == b.pseudo && a.filename == b.filename;
}

/// Whether all members are the same.
bool Same(const ZrWpt& a, const ZrWpt& b)
{
    return SamePosition(a, b) && SameTarget(a, b) && SameText(a, b) && a.uuid == b.uuid
        && a.gridId == b.gridId && a.lookAt == b.lookAt && a.colour == b.colour && a.spdType == b.spdType
        && a.flags == b.flags && a.headType == b.headType && a.zType == b.zType && a.atWpt == b.atWpt;
}

i64 BytesOf(const ZrWpt& wpt)
{
    const int letters = wpt.name.size() + wpt.pseudo.size() + wpt.filename.size();
    return static_cast<i64>(sizeof(ZrWpt)) + 2 * static_cast<i64>(letters);
}

i64 BytesOf(const std::vector<ZrArea>& areas)
{
    i64 bytes = 0;
    for (const ZrArea& area : areas)
        bytes += static_cast<i64>(sizeof(ZrArea) + area.ring.size() * sizeof(ZrGeoPoint))
            + 2 * area.name.size();
    return bytes;
}

QString NameOf(const ZrWpts& route, const ZrWpt& wpt)
{
    return ZrAreaCheck::NameOf(wpt, route.GetIndex(&wpt));
}

} // namespace

/// A route as a step left it.
struct ZrRouteHistory::State
{
    QString name; ///< of the step
    QString prefix;
    bool linked = false;
    bool closed = false;
    int speedType = 0;
    double speed = 0.0;
    std::vector<std::shared_ptr<const ZrWpt>> wpts;
    std::shared_ptr<const ZrPlanAreas> areas; ///< null where the history has none
    i64 bytes = 0; ///< of what it does not share with the state before
};

ZrRouteHistory::ZrRouteHistory(ZrWpts& route)
    : ZrRouteHistory(route, nullptr, Limits())
{
}

ZrRouteHistory::ZrRouteHistory(ZrWpts& route, Limits limits)
    : ZrRouteHistory(route, nullptr, limits)
{
}

ZrRouteHistory::ZrRouteHistory(ZrWpts& route, ZrPlanAreas& areas)
    : ZrRouteHistory(route, &areas, Limits())
{
}

ZrRouteHistory::ZrRouteHistory(ZrWpts& route, ZrPlanAreas& areas, Limits limits)
    : ZrRouteHistory(route, &areas, limits)
{
}

ZrRouteHistory::ZrRouteHistory(ZrWpts& route, ZrPlanAreas* areas, Limits limits)
    : m_route(route)
    , m_areas(areas)
    , m_limits(limits)
{
    m_states.push_back(Capture(nullptr));
}

ZrRouteHistory::~ZrRouteHistory() = default;

bool ZrRouteHistory::CanUndo() const
{
    return m_now > 0;
}

bool ZrRouteHistory::CanRedo() const
{
    return m_now + 1 < m_states.size();
}

QString ZrRouteHistory::UndoName() const
{
    return CanUndo() ? m_states[m_now].name : QString();
}

QString ZrRouteHistory::RedoName() const
{
    return CanRedo() ? m_states[m_now + 1].name : QString();
}

int ZrRouteHistory::Steps() const
{
    return static_cast<int>(m_states.size()) - 1;
}

i64 ZrRouteHistory::Bytes() const
{
    i64 bytes = 0;
    for (std::size_t i = 1; i < m_states.size(); ++i)
        bytes += m_states[i].bytes;
    return bytes;
}

bool ZrRouteHistory::IsClean() const
{
    return m_clean == static_cast<int>(m_now) && IsSame(m_states[m_now]);
}

ZrWpt* ZrRouteHistory::Add(double lat, double lng, eZrWptType type, int where)
{
    RecordOutside();
    ZrWpt* wpt = m_route.Add(lat, lng, type, where);
    if (IsOnRoute(wpt))
        Push(QCoreApplication::translate("ZrRouteHistory", "Add waypoint %1").arg(NameOf(m_route, *wpt)));
    return wpt;
}

bool ZrRouteHistory::Delete(ZrWpt* wpt)
{
    if (!IsOnRoute(wpt))
        return false;
    RecordOutside();
    const QString name
        = QCoreApplication::translate("ZrRouteHistory", "Delete waypoint %1").arg(NameOf(m_route, *wpt));
    m_route.Delete(wpt);
    return Push(name);
}

bool ZrRouteHistory::Move(ZrWpt* wpt, double lat, double lng)
{
    if (!IsOnRoute(wpt))
        return false;
    RecordOutside();
    wpt->lat = lat;
    wpt->lng = lng;
    m_route.Recalc(true);
    const QString name
        = QCoreApplication::translate("ZrRouteHistory", "Move waypoint %1").arg(NameOf(m_route, *wpt));
    return PushMove(name, *wpt);
}

void ZrRouteHistory::CloseMove()
{
    m_moving = nullptr;
}

bool ZrRouteHistory::Reorder(ZrWpt* wpt, int index)
{
    if (!IsOnRoute(wpt) || index < 0 || index >= m_route.GetCount())
        return false;
    RecordOutside();
    const QString name
        = QCoreApplication::translate("ZrRouteHistory", "Reorder waypoint %1").arg(NameOf(m_route, *wpt));
    // Exchanged with its neighbour until it is there.
    ZrListPos* pos = m_route.Find(wpt);
    for (int at = m_route.GetIndex(pos); at < index; ++at, pos = pos->next)
        m_route.ShiftUp(pos);
    for (int at = m_route.GetIndex(pos); at > index; --at, pos = pos->prev)
        m_route.ShiftDn(pos);
    Recompute();
    return Push(name);
}

void ZrRouteHistory::Reverse()
{
    RecordOutside();
    m_route.Reverse();
    Push(QCoreApplication::translate("ZrRouteHistory", "Reverse route"));
}

bool ZrRouteHistory::Change(ZrWpt* wpt, const QString& what, const std::function<void(ZrWpt&)>& edit)
{
    if (!IsOnRoute(wpt))
        return false;
    RecordOutside();
    edit(*wpt);
    Recompute();
    return Push(
        QCoreApplication::translate("ZrRouteHistory", "Change %1 of %2").arg(what, NameOf(m_route, *wpt)));
}

void ZrRouteHistory::ChangeRoute(const QString& what, const std::function<void(ZrWpts&)>& edit)
{
    RecordOutside();
    edit(m_route);
    Recompute();
    Push(QCoreApplication::translate("ZrRouteHistory", "Change %1 of the route").arg(what));
}

bool ZrRouteHistory::ChangeAreas(const QString& name, const std::function<void(ZrPlanAreas&)>& edit)
{
    if (!m_areas)
        return false;
    RecordOutside();
    edit(*m_areas);
    return Push(name);
}

bool ZrRouteHistory::InsertPattern(const std::vector<ZrWpt>& points, int index, const QString& name)
{
    if (points.empty() || index < 0 || index > m_route.GetCount())
        return false;
    RecordOutside();
    ZrListPos* behind = m_route.FindIndex(index);
    for (const ZrWpt& point : points) {
        auto copy = std::make_unique<ZrWpt>(point);
        if (behind)
            m_route.InsertBefore(behind, copy.get());
        else
            m_route.AddTail(copy.get());
        static_cast<void>(copy.release());
    }
    Recompute();
    const QString step = QCoreApplication::translate("ZrRouteHistory", "Insert pattern");
    return Push(name.isEmpty() ? step : step + QLatin1Char(' ') + name);
}

bool ZrRouteHistory::Record(const QString& name)
{
    return Push(name);
}

bool ZrRouteHistory::Undo()
{
    RecordOutside();
    m_moving = nullptr;
    if (!CanUndo())
        return false;
    Restore(m_states[--m_now]);
    return true;
}

bool ZrRouteHistory::Redo()
{
    RecordOutside();
    m_moving = nullptr;
    if (!CanRedo())
        return false;
    Restore(m_states[++m_now]);
    return true;
}

void ZrRouteHistory::SetClean()
{
    RecordOutside();
    m_moving = nullptr;
    m_clean = static_cast<int>(m_now);
}

void ZrRouteHistory::Reset()
{
    m_states.clear();
    m_states.push_back(Capture(nullptr));
    m_now = 0;
    m_clean = 0;
    m_moving = nullptr;
}

bool ZrRouteHistory::RecordOutside()
{
    return !IsSame(m_states[m_now]) && Push(QCoreApplication::translate("ZrRouteHistory", "Change route"));
}

/// Makes a step of what differs from the last state; false if nothing does.
bool ZrRouteHistory::Push(const QString& name)
{
    m_moving = nullptr;
    if (IsSame(m_states[m_now]))
        return false;
    State state = Capture(&m_states[m_now]);
    state.name = name;
    m_states.erase(m_states.begin() + static_cast<std::ptrdiff_t>(m_now) + 1, m_states.end());
    if (m_clean > static_cast<int>(m_now))
        m_clean = -1;
    m_states.push_back(std::move(state));
    ++m_now;
    Forget();
    return true;
}

bool ZrRouteHistory::PushMove(const QString& name, const ZrWpt& wpt)
{
    const bool goesOn = m_moving == &wpt;
    if (goesOn) {
        // The step is made anew. It is the last one, since every other edit ends the move.
        if (IsSame(m_states[m_now]))
            return false;
        m_states.pop_back();
        --m_now;
    }
    const bool isStep = Push(name);
    m_moving = isStep ? &wpt : nullptr;
    return isStep || goesOn;
}

ZrRouteHistory::State ZrRouteHistory::Capture(const State* before) const
{
    State state;
    state.prefix = m_route.prefix;
    state.linked = m_route.linked;
    state.closed = m_route.closed;
    state.speedType = m_route.speedType;
    state.speed = m_route.speed;
    std::size_t i = 0;
    for (ZrListPos* pos = m_route.GetHeadPos(); pos; ++i) {
        const ZrWpt* wpt = m_route.GetNext(pos);
        if (before && i < before->wpts.size() && Same(*wpt, *before->wpts[i])) {
            state.wpts.push_back(before->wpts[i]);
        } else {
            state.wpts.push_back(std::make_shared<const ZrWpt>(*wpt));
            state.bytes += BytesOf(*wpt);
        }
    }
    if (m_areas && before && before->areas && *before->areas == *m_areas) {
        state.areas = before->areas;
    } else if (m_areas) {
        state.areas = std::make_shared<const ZrPlanAreas>(*m_areas);
        state.bytes += BytesOf(m_areas->areas) + BytesOf(m_areas->noGo);
    }
    state.bytes += static_cast<i64>(sizeof(State) + state.wpts.size() * sizeof(state.wpts.front()));
    return state;
}

bool ZrRouteHistory::IsSame(const State& state) const
{
    if (m_route.prefix != state.prefix || m_route.linked != state.linked || m_route.closed != state.closed
        || m_route.speedType != state.speedType || !SameBits(m_route.speed, state.speed)
        || (m_areas && *m_areas != *state.areas))
        return false;
    std::size_t i = 0;
    for (ZrListPos* pos = m_route.GetHeadPos(); pos; ++i) {
        if (i == state.wpts.size() || !Same(*m_route.GetNext(pos), *state.wpts[i]))
            return false;
    }
    return i == state.wpts.size();
}

void ZrRouteHistory::Restore(const State& state)
{
    m_route.prefix = state.prefix;
    m_route.linked = state.linked;
    m_route.closed = state.closed;
    m_route.speedType = state.speedType;
    m_route.speed = state.speed;
    if (m_areas)
        *m_areas = *state.areas;

    // The objects leave the list, which keeps its nodes; those that the state knows come back.
    QMultiHash<QUuid, ZrWpt*> known;
    std::vector<std::unique_ptr<ZrWpt>> former;
    for (ZrListPos* pos = m_route.GetHeadPos(); pos; pos = pos->next) {
        former.emplace_back(m_route.GetAt(pos));
        m_route.SetAt(pos, nullptr);
    }
    m_route.RemoveAll();
    for (auto& wpt : former)
        known.insert(wpt->uuid, wpt.get());
    std::vector<const ZrWpt*> kept;
    for (const auto& wpt : state.wpts) {
        ZrWpt* object = known.take(wpt->uuid);
        if (object) {
            *object = *wpt;
            kept.push_back(object);
            m_route.AddTail(object);
        } else {
            auto copy = std::make_unique<ZrWpt>(*wpt);
            m_route.AddTail(copy.get());
            static_cast<void>(copy.release());
        }
    }
    std::sort(kept.begin(), kept.end());
    for (auto& wpt : former) {
        if (std::binary_search(kept.begin(), kept.end(), wpt.get()))
            static_cast<void>(wpt.release());
    }
}

/// Forgets the oldest steps until the limits hold.
void ZrRouteHistory::Forget()
{
    i64 bytes = Bytes();
    while (m_states.size() > 2 && (Steps() > m_limits.steps || bytes > m_limits.bytes)) {
        bytes -= m_states[1].bytes;
        m_states.erase(m_states.begin());
        --m_now;
        m_clean = std::max(m_clean - 1, -1);
    }
}

void ZrRouteHistory::Recompute()
{
    m_route.UpdatePseudo();
    m_route.Recalc(true);
}

bool ZrRouteHistory::IsOnRoute(const ZrWpt* wpt) const
{
    return wpt && m_route.Find(wpt);
}
