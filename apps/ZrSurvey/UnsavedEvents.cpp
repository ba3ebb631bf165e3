#include "apps/ZrSurvey/UnsavedEvents.h"

#include "ZrKit/review/ZrEventTable.h"

#include <QFileInfo>
#include <QStringList>

#include <algorithm>
#include <iterator>
#include <utility>

namespace {

bool IsSame(const ZrLogEvt& event, const ZrLogEvt& other)
{
    return event.uid.isNull() ? event.time == other.time && event.text == other.text : event.uid == other.uid;
}

} // namespace

std::size_t UnsavedEvents::Count() const
{
    std::size_t count = 0;
    for (const Group& group : m_groups)
        count += group.events.size();
    return count;
}

std::vector<UnsavedEvents::Group>::iterator UnsavedEvents::Find(const QString& path)
{
    return std::find_if(
        m_groups.begin(), m_groups.end(), [&path](const Group& group) { return group.path == path; });
}

void UnsavedEvents::Set(const QString& path, std::vector<ZrLogEvt> events, const QString& reason)
{
    const auto known = Find(path);
    if (events.empty() && known == m_groups.end())
        return;
    if (known != m_groups.end())
        m_groups.erase(known);
    if (!events.empty())
        m_groups.push_back({path, std::move(events), reason});
    Q_EMIT Changed();
}

void UnsavedEvents::Add(const QString& path, const std::vector<ZrLogEvt>& events, const QString& reason)
{
    const auto known = Find(path);
    std::vector<ZrLogEvt> all = known != m_groups.end() ? known->events : std::vector<ZrLogEvt>();
    all.insert(all.end(), events.begin(), events.end());
    Set(path, std::move(all), reason);
}

QString UnsavedEvents::Text() const
{
    QStringList lines;
    for (const Group& group : m_groups) {
        const QString name
            = group.path.isEmpty() ? tr("a recording without a log") : QFileInfo(group.path).fileName();
        const QString text = group.events.size() == 1 ? tr("1 event of %1 is in memory only: %2")
                                                      : tr("%3 events of %1 are in memory only: %2");
        lines << (group.events.size() == 1
                ? text.arg(name, group.reason)
                : text.arg(name, group.reason, QString::number(group.events.size())));
    }
    return lines.join(QLatin1Char('\n'));
}

bool UnsavedEvents::Export(const QString& path, QString& error)
{
    std::vector<ZrLogEvt> all;
    for (const Group& group : m_groups)
        all.insert(all.end(), group.events.begin(), group.events.end());
    if (!ZrEventTable::Write(all, path, &error))
        return false;
    Forget();
    return true;
}

void UnsavedEvents::Restore(std::vector<Group> groups)
{
    for (Group& group : groups) {
        const auto known = Find(group.path);
        if (known == m_groups.end()) {
            m_groups.push_back(std::move(group));
            continue;
        }
        // What came since stands, behind what only the one before has.
        const std::vector<ZrLogEvt> newer = std::exchange(known->events, {});
        const auto isThere = [&newer](const ZrLogEvt& event) {
            return std::any_of(
                newer.begin(), newer.end(), [&event](const ZrLogEvt& other) { return IsSame(event, other); });
        };
        std::remove_copy_if(
            group.events.begin(), group.events.end(), std::back_inserter(known->events), isThere);
        known->events.insert(known->events.end(), newer.begin(), newer.end());
    }
    Q_EMIT Changed();
}

void UnsavedEvents::Forget()
{
    if (IsEmpty())
        return;
    m_groups.clear();
    Q_EMIT Changed();
}
