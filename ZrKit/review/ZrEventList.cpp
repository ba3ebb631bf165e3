#include "ZrKit/review/ZrEventList.h"

#include "ZrKit/review/ZrEventFile.h"

#include <QHash>
#include <QSet>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <optional>
#include <utility>

namespace {

/// No index of a list.
constexpr std::size_t anywhere = std::numeric_limits<std::size_t>::max();

/// Place in the list, as in the event file.
double SortKey(const ZrLogEvt& evt)
{
    return std::isnan(evt.time) ? std::numeric_limits<double>::infinity() : evt.time;
}

/// Equal in all that is stored; a time that is no number is equal to itself.
bool Same(const ZrLogEvt& a, const ZrLogEvt& b)
{
    return std::memcmp(&a.time, &b.time, sizeof a.time) == 0 && a.code == b.code && a.src == b.src
        && a.uid == b.uid && a.text == b.text && a.detail == b.detail;
}

/// Whether the order does not tell the two apart.
bool IsAtOnce(const ZrLogEvt& a, const ZrLogEvt& b)
{
    return !(SortKey(a) < SortKey(b)) && !(SortKey(b) < SortKey(a));
}

/// Where \p evt of the list stands among \p events: by its uid, without one as it is. Their end when it is
/// not there any more.
std::vector<ZrLogEvt>::iterator Find(std::vector<ZrLogEvt>& events, const ZrLogEvt& evt)
{
    return std::find_if(events.begin(), events.end(),
        [&evt](const ZrLogEvt& other) { return evt.uid.isNull() ? Same(evt, other) : evt.uid == other.uid; });
}

} // namespace

bool ZrEventList::Load(const QString& logPath, QString* error)
{
    m_logPath = logPath;
    m_entries.clear();
    m_saved.clear();
    m_found.clear();
    m_known = 0;
    m_unsaved.clear();
    m_isToSave = false;
    m_steps.clear();
    m_done = 0;
    ZrEventFile file;
    const ZrEventFile::eState state = file.Read(logPath);
    Adopt(file.events);
    if (state == ZrEventFile::Missing || state == ZrEventFile::Whole)
        return true;
    if (error) {
        *error = ZrEventFile::PathOf(logPath) + QLatin1String(": ")
            + (state == ZrEventFile::Damaged ? tr("The event file is damaged; events may be missing")
                                             : tr("The event file cannot be read"));
    }
    return false;
}

/// Takes over \p events, the file's, as list and as what was saved. Those known already keep their ids.
void ZrEventList::Adopt(const std::vector<ZrLogEvt>& events)
{
    QHash<QUuid, u64> ids;
    std::vector<const Entry*> nameless;
    for (const Entry& entry : m_entries) {
        if (entry.evt.uid.isNull())
            nameless.push_back(&entry);
        else
            ids.insert(entry.evt.uid, entry.id);
    }
    std::vector<Entry> entries;
    entries.reserve(events.size());
    for (const ZrLogEvt& evt : events) {
        u64 id = 0;
        if (!evt.uid.isNull()) {
            id = ids.take(evt.uid); // each id once
        } else {
            const auto known = std::find_if(nameless.begin(), nameless.end(),
                [&evt](const Entry* entry) { return Same(entry->evt, evt); });
            if (known != nameless.end()) {
                id = (*known)->id;
                nameless.erase(known);
            }
        }
        entries.push_back({id != 0 ? id : ++m_lastId, evt});
    }
    std::stable_sort(entries.begin(), entries.end(),
        [](const Entry& a, const Entry& b) { return SortKey(a.evt) < SortKey(b.evt); });
    m_entries = std::move(entries);
    m_saved = m_entries;
    m_unsaved.clear();
}

void ZrEventList::AddUnsaved(const std::vector<ZrLogEvt>& found, std::size_t known)
{
    if (found.empty())
        return;
    m_found = found;
    m_known = known;
    ZrEventFile file;
    file.Read(m_logPath);
    const ZrMergedEvents merged = file.Merged(found, known);
    file.events.clear();
    for (const Entry& entry : m_entries)
        file.events.push_back(entry.evt);
    for (const ZrLogEvt& evt : file.NewOf(found, merged)) {
        m_unsaved.push_back({++m_lastId, evt});
        Put(m_lastId, true, evt, anywhere);
    }
    m_isToSave = m_isToSave || !m_unsaved.empty();
}

bool ZrEventList::IsChanged() const
{
    return m_isToSave
        || !std::equal(m_entries.begin(), m_entries.end(), m_saved.begin(), m_saved.end(),
            [](const Entry& a, const Entry& b) { return a.id == b.id && Same(a.evt, b.evt); });
}

bool ZrEventList::Save(QString* error)
{
    if (!IsChanged())
        return true;
    QHash<u64, const ZrLogEvt*> now;
    for (const Entry& entry : m_entries)
        now.insert(entry.id, &entry.evt);
    std::vector<Entry> known = m_saved; // to the file, which takes over those of the log first
    known.insert(known.end(), m_unsaved.begin(), m_unsaved.end());
    QSet<u64> before;
    for (const Entry& entry : known)
        before.insert(entry.id);

    const auto change = [&](ZrEventFile& file) {
        for (const Entry& entry : known) {
            const ZrLogEvt* const changed = now.value(entry.id);
            if (changed && Same(*changed, entry.evt))
                continue;
            const auto there = Find(file.events, entry.evt);
            const bool isThere = there != file.events.end();
            if (changed && isThere && IsAtOnce(*there, *changed)) {
                *there = *changed; // its place among those of the same time stays
                continue;
            }
            if (isThere)
                file.events.erase(there);
            if (changed)
                file.Add(*changed);
        }
        // From the last one on: of equal times the one added last stands first.
        for (auto entry = m_entries.rbegin(); entry != m_entries.rend(); ++entry) {
            if (!before.contains(entry->id))
                file.Add(entry->evt);
        }
    };
    QString reason = tr("There is no recording to which the events belong");
    std::optional<std::vector<ZrLogEvt>> written;
    const bool isSaved = !m_logPath.isEmpty()
        && ZrEventFile::TakeOver(m_logPath, m_found, m_known, change, written, &reason);
    if (written) {
        Adopt(*written);
        m_known = m_found.size();
        m_isToSave = !isSaved;
    }
    if (isSaved)
        m_found.clear();
    else if (error)
        *error = reason;
    return isSaved;
}

std::size_t ZrEventList::IndexOf(u64 id) const
{
    const auto found = std::find_if(
        m_entries.begin(), m_entries.end(), [id](const Entry& entry) { return entry.id == id; });
    return static_cast<std::size_t>(found - m_entries.begin());
}

std::vector<double> ZrEventList::Times() const
{
    std::vector<double> times;
    times.reserve(m_entries.size());
    for (const Entry& entry : m_entries) {
        if (!std::isnan(entry.evt.time))
            times.push_back(entry.evt.time);
    }
    return times;
}

u64 ZrEventList::Add(ZrLogEvt evt)
{
    if (evt.uid.isNull())
        evt.uid = QUuid::createUuid();
    const u64 id = ++m_lastId;
    Do({id, false, true, ZrLogEvt(), std::move(evt), 0});
    return id;
}

bool ZrEventList::Edit(u64 id, ZrLogEvt evt)
{
    const std::size_t index = IndexOf(id);
    if (index == Count())
        return false;
    evt.uid = At(index).uid;
    if (Same(evt, At(index)))
        return false;
    Do({id, true, true, At(index), std::move(evt), index});
    return true;
}

bool ZrEventList::Remove(u64 id)
{
    const std::size_t index = IndexOf(id);
    if (index == Count())
        return false;
    Do({id, true, false, At(index), ZrLogEvt(), index});
    return true;
}

void ZrEventList::Do(Step step)
{
    m_steps.resize(m_done);
    if (m_steps.size() == MostSteps)
        m_steps.erase(m_steps.begin());
    Put(step.id, step.hasAfter, step.after, anywhere);
    m_steps.push_back(std::move(step));
    m_done = m_steps.size();
}

/// Brings the event \p id into the state \p evt, or out of the list. It goes to the index \p hint where the
/// order allows it, which undoes the change of a place among events of the same time.
void ZrEventList::Put(u64 id, bool there, const ZrLogEvt& evt, std::size_t hint)
{
    const std::size_t index = IndexOf(id);
    const auto at = [this](std::size_t i) { return m_entries.begin() + static_cast<std::ptrdiff_t>(i); };
    if (there && index < Count() && IsAtOnce(evt, At(index))) {
        at(index)->evt = evt;
        return;
    }
    if (index < Count())
        m_entries.erase(at(index));
    if (!there)
        return;
    const auto before = [](const Entry& entry, double key) { return SortKey(entry.evt) < key; };
    const auto behind = [](double key, const Entry& entry) { return key < SortKey(entry.evt); };
    const double key = SortKey(evt);
    const auto first = std::lower_bound(m_entries.begin(), m_entries.end(), key, before);
    const auto last = std::upper_bound(first, m_entries.end(), key, behind);
    const bool fits = hint <= Count() && at(hint) >= first && at(hint) <= last;
    m_entries.insert(fits ? at(hint) : first, {id, evt});
}

u64 ZrEventList::Undo()
{
    if (!CanUndo())
        return 0;
    const Step& step = m_steps[--m_done];
    Put(step.id, step.hadBefore, step.before, step.index);
    return step.id;
}

u64 ZrEventList::Redo()
{
    if (!CanRedo())
        return 0;
    const Step& step = m_steps[m_done++];
    Put(step.id, step.hasAfter, step.after, anywhere);
    return step.id;
}

QString ZrEventList::TextOf(const Step& step)
{
    if (!step.hadBefore)
        return tr("Add event \"%1\"").arg(step.after.text);
    if (!step.hasAfter)
        return tr("Remove event \"%1\"").arg(step.before.text);
    return tr("Change event \"%1\"").arg(step.before.text);
}

QString ZrEventList::UndoText() const
{
    return CanUndo() ? TextOf(m_steps[m_done - 1]) : QString();
}

QString ZrEventList::RedoText() const
{
    return CanRedo() ? TextOf(m_steps[m_done]) : QString();
}

std::size_t ZrEventList::Next(double time) const
{
    const auto behind = std::upper_bound(m_entries.begin(), m_entries.end(), time,
        [](double t, const Entry& entry) { return t < SortKey(entry.evt); });
    const bool found = behind != m_entries.end() && behind->evt.time > time;
    return found ? static_cast<std::size_t>(behind - m_entries.begin()) : Count();
}

std::size_t ZrEventList::Previous(double time) const
{
    const auto from = std::lower_bound(m_entries.begin(), m_entries.end(), time,
        [](const Entry& entry, double t) { return SortKey(entry.evt) < t; });
    const bool found = from != m_entries.begin() && std::prev(from)->evt.time < time;
    return found ? static_cast<std::size_t>(from - m_entries.begin()) - 1 : Count();
}
