#include "ZrKit/planning/ZrRouteFields.h"

#include "ZrUtil/ZrSetModule.h"
#include "ZrUtil/ZrWpts.h"

#include <QUuid>

#include <iterator>
#include <limits>

namespace {

/// Keys that are not fields of a file: the position and the name have places of their own, and the rest
/// is computed.
constexpr const char* NotFields[] = {"name", "pseudo", "lat", "long", "x", "y", "q", "RICX", "RICY", "RIT",
    "TP1X", "TP1Y", "TP1Q", "TP2X", "TP2Y", "TP2Q"};

constexpr const char* Uuids[] = {"UUID", "GridId", "LookAt"};

constexpr qint64 MaxByte = 255;
constexpr qint64 MinInt = std::numeric_limits<int>::min();
constexpr qint64 MaxInt = std::numeric_limits<int>::max();

/// The fields that the settings hold as the text of an integer, with the range of their types.
constexpr struct
{
    const char* key;
    qint64 min;
    qint64 max;
} Integers[] = {{"filetype", 0, MaxByte}, {"speedtype", MinInt, MaxInt},
    {"flags", 0, std::numeric_limits<unsigned int>::max()}, {"head type", MinInt, MaxInt},
    {"z type", MinInt, MaxInt}, {"type", 0, MaxByte}, {"src", 0, MaxByte}, {"shape", 0, MaxByte},
    {"bottomN", MinInt, MaxInt}, {"bottom", 0, MaxByte}, {"classA", 0, MaxByte}, {"classB", 0, MaxByte},
    {"classC", 0, MaxByte}, {"classD", 0, MaxByte}};

QJsonObject Stored(const ZrWpt& wpt)
{
    QJsonObject object;
    zr::ZrSetModule module(zr::ePersistStoring, object);
    ZrWpt copy = wpt;
    ZrWpt::serialise(copy, module);
    for (const char* key : NotFields)
        object.remove(QLatin1String(key));
    return object;
}

const QJsonObject& NewWaypoint()
{
    static const QJsonObject fields = Stored(ZrWpt());
    return fields;
}

const QJsonObject& NewRoute()
{
    static const QJsonObject fields = ZrRouteFields::Of(ZrWpts());
    return fields;
}

QJsonValue Undefined()
{
    return QJsonValue(QJsonValue::Undefined);
}

QJsonValue Boolean(const QJsonValue& value)
{
    if (value.isBool())
        return value;
    if (value == QLatin1String("true"))
        return true;
    return value == QLatin1String("false") ? QJsonValue(false) : Undefined();
}

/// Null is what the settings make of NaN.
QJsonValue Number(const QJsonValue& value)
{
    if (value.isDouble() || value.isNull())
        return value;
    bool ok = false;
    const double number = value.toString().toDouble(&ok);
    return ok ? QJsonValue(number) : Undefined();
}

QJsonValue Integer(const QString& text, qint64 min, qint64 max)
{
    bool ok = false;
    const qint64 number = text.toLongLong(&ok);
    return ok && number >= min && number <= max ? QJsonValue(QString::number(number)) : Undefined();
}

QJsonValue Uuid(const QString& text)
{
    const QUuid uuid(text);
    return uuid.isNull() && text != QUuid().toString() ? Undefined() : QJsonValue(uuid.toString());
}

QJsonValue Colour(const QString& text)
{
    bool ok = text.size() == 8;
    if (ok)
        text.toUInt(&ok, 16);
    return ok ? QJsonValue(text.toLower()) : Undefined();
}

QJsonValue Texts(const QString& key, const QJsonValue& value)
{
    if (!value.isString() && !value.isDouble())
        return Undefined();
    const QString text = ZrRouteFields::Text(value);
    for (const auto& integer : Integers)
        if (key == QLatin1String(integer.key))
            return Integer(text, integer.min, integer.max);
    for (const char* uuid : Uuids)
        if (key == QLatin1String(uuid))
            return Uuid(text);
    return key == QLatin1String("colour") ? Colour(text) : QJsonValue(text);
}

bool AddLike(QJsonObject& fields, const QJsonObject& like, const QString& key, const QJsonValue& value)
{
    const auto found = like.find(key);
    if (found == like.end())
        return false;
    const QJsonValue fitting = (*found).isBool() ? Boolean(value)
        : (*found).isDouble()                    ? Number(value)
                                                 : Texts(key, value);
    if (fitting.isUndefined())
        return false;
    fields.insert(key, fitting);
    return true;
}

} // namespace

QJsonObject ZrRouteFields::Of(const ZrWpt& wpt)
{
    QJsonObject fields = Stored(wpt);
    for (auto field = fields.begin(); field != fields.end();) {
        const bool same
            = field.key() != QLatin1String("UUID") && field.value() == NewWaypoint().value(field.key());
        field = same ? fields.erase(field) : std::next(field);
    }
    return fields;
}

void ZrRouteFields::Apply(const QJsonObject& fields, ZrWpt& wpt)
{
    QJsonObject known = fields;
    zr::ZrSetModule module(zr::ePersistLoading, known);
    ZrWpt::serialise(wpt, module);
}

QJsonObject ZrRouteFields::Of(const ZrWpts& route)
{
    return {{QStringLiteral("prefix"), route.prefix}, {QStringLiteral("linked"), route.linked},
        {QStringLiteral("closed"), route.closed}, {QStringLiteral("speed"), route.speed}};
}

void ZrRouteFields::Apply(const QJsonObject& fields, ZrWpts& route)
{
    QJsonObject known = fields;
    zr::ZrSetModule module(zr::ePersistLoading, known);
    module.item(QStringLiteral("prefix"), route.prefix);
    module.item(QStringLiteral("linked"), route.linked);
    module.item(QStringLiteral("closed"), route.closed);
    module.item(QStringLiteral("speed"), route.speed);
}

bool ZrRouteFields::IsField(const QString& key)
{
    return NewWaypoint().contains(key);
}

bool ZrRouteFields::Add(QJsonObject& fields, const QString& key, const QJsonValue& value)
{
    return AddLike(fields, NewWaypoint(), key, value);
}

bool ZrRouteFields::AddRoute(QJsonObject& fields, const QString& key, const QJsonValue& value)
{
    return AddLike(fields, NewRoute(), key, value);
}

QString ZrRouteFields::Text(const QJsonValue& value)
{
    if (value.isBool())
        return value.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    if (value.isDouble())
        return QString::number(value.toDouble(), 'g', QLocale::FloatingPointShortest);
    return value.isNull() ? QStringLiteral("nan") : value.toString();
}
