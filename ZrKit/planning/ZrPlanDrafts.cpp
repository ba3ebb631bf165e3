#include "ZrKit/planning/ZrPlanDrafts.h"

#include "ZrKit/files/ZrReplaceFile.h"
#include "ZrKit/planning/ZrPlanAreas.h"
#include "ZrKit/planning/ZrPlanSketch.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStringList>

#include <algorithm>

namespace {

const auto formatName = QLatin1String("zr-plan-draft");
const auto keptKey = QLatin1String("kept");
const auto prefix = QLatin1String("plan-");
const auto suffix = QLatin1String(".json");

constexpr int mostNumber = 1000000000; ///< files of higher ones are of somebody else

QByteArray Content(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The plan in the file; an empty object for none.
QJsonObject PlanIn(const QString& path)
{
    const QJsonObject root = QJsonDocument::fromJson(Content(path)).object();
    return root[QLatin1String("format")].toString() == formatName ? root : QJsonObject();
}

/// How kept plans begin; a quotation mark and a comma end the time. Other plans are not made anew for it.
QByteArray Stamp()
{
    return QByteArrayLiteral("{\"kept\":\"");
}

/// \p plan as it was given to be kept.
QByteArray WithoutTime(const QByteArray& plan)
{
    const int end = plan.startsWith(Stamp()) ? plan.indexOf("\",", Stamp().size()) : -1;
    return end < 0 ? plan : QByteArrayLiteral("{") + plan.mid(end + 2);
}

QByteArray WithTime(const QByteArray& plan)
{
    const QByteArray bare = WithoutTime(plan);
    const QByteArray now = QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs).toLatin1();
    return Stamp() + now + "\"," + bare.mid(bare.indexOf('{') + 1);
}

} // namespace

ZrPlanDrafts::ZrPlanDrafts(const QString& folder)
    : m_folder(folder)
{
}

QString ZrPlanDrafts::NameOf(const QString& path)
{
    return path.isEmpty() ? tr("New plan") : QFileInfo(path).completeBaseName();
}

QString ZrPlanDrafts::PathOf(int number) const
{
    return m_folder + QLatin1Char('/') + prefix + QString::number(number) + suffix;
}

/// Of the files, the latest first.
std::vector<int> ZrPlanDrafts::Numbers() const
{
    std::vector<int> numbers;
    const QStringList names = QDir(m_folder).entryList({prefix + QLatin1Char('*') + suffix}, QDir::Files);
    for (const QString& name : names) {
        bool isNumber = false;
        const int number
            = name.mid(prefix.size(), name.size() - prefix.size() - suffix.size()).toInt(&isNumber);
        if (isNumber && number > 0 && number < mostNumber)
            numbers.push_back(number);
    }
    std::sort(numbers.rbegin(), numbers.rend());
    return numbers;
}

QString ZrPlanDrafts::Keep(const QByteArray& state, const QString& spared)
{
    m_error.clear();
    if (QJsonDocument::fromJson(state).object()[QLatin1String("format")].toString() != formatName) {
        m_error = tr("This is no draft of a plan");
        return {};
    }
    const QByteArray plan = WithTime(state);
    const std::vector<int> before = Numbers();
    const int last = std::max(m_last, before.empty() ? 0 : before.front());
    const QString path = PathOf(last + 1);
    QDir().mkpath(m_folder);
    if (!zr::replace_file(path, plan, &m_error))
        return {};
    m_last = last + 1;
    int count = 1;
    for (const int number : before) {
        const QString other = PathOf(number);
        if (other == spared)
            continue;
        if (count >= Most || WithoutTime(Content(other)) == WithoutTime(plan))
            QFile::remove(other);
        else
            ++count;
    }
    return path;
}

bool ZrPlanDrafts::IsEmpty() const
{
    const std::vector<int> numbers = Numbers();
    return std::none_of(numbers.begin(), numbers.end(), [this](int number) {
        QFile file(PathOf(number));
        return file.open(QIODevice::ReadOnly) && file.read(Stamp().size()) == Stamp();
    });
}

std::vector<ZrPlanDrafts::Entry> ZrPlanDrafts::List() const
{
    std::vector<Entry> entries;
    const std::vector<int> numbers = Numbers();
    for (const int number : numbers) {
        Entry entry;
        entry.path = PathOf(number);
        const QJsonObject plan = PlanIn(entry.path);
        if (plan.isEmpty())
            continue;
        entry.name = NameOf(plan[QLatin1String("path")].toString());
        entry.kept = QDateTime::fromString(plan[keptKey].toString(), Qt::ISODateWithMs);
        entry.waypoints
            = plan[QLatin1String("route")].toObject()[QLatin1String("waypoints")].toArray().size();
        QStringList parts;
        if (entry.waypoints > 0)
            parts << (entry.waypoints == 1 ? tr("1 waypoint") : tr("%1 waypoints").arg(entry.waypoints));
        const QString areas = ZrPlanAreas::FromJson(plan).Text();
        if (!areas.isEmpty())
            parts << areas;
        if (!ZrPlanSketch::FromJson(plan[QLatin1String("sketch")].toObject()).IsEmpty())
            parts << tr("an area being drawn");
        entry.content = parts.join(QLatin1String(", "));
        entries.push_back(entry);
    }
    return entries;
}

QByteArray ZrPlanDrafts::Read(const QString& path)
{
    m_error.clear();
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        m_error = QStringLiteral("%1: %2").arg(path, file.errorString());
        return {};
    }
    const QByteArray plan = file.readAll();
    if (QJsonDocument::fromJson(plan).object()[QLatin1String("format")].toString() != formatName) {
        m_error = tr("%1: this is no draft of a plan").arg(path);
        return {};
    }
    return WithoutTime(plan);
}

bool ZrPlanDrafts::Remove(const QString& path)
{
    const std::vector<int> numbers = Numbers();
    return std::any_of(numbers.begin(), numbers.end(), [&](int number) { return PathOf(number) == path; })
        && QFile::remove(path);
}
