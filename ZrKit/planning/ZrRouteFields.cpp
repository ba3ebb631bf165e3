#include "ZrKit/planning/ZrRouteFields.h"

#include "ZrUtil/ZrSetModule.h"
#include "ZrUtil/ZrWpts.h"

#include <algorithm>

namespace {

    /// Keys that are not fields of a file: the position and the name have places of their own, and the rest
    /// is computed.
    constexpr const char* NotFields[] = {"name", "pseudo", "lat", "long", "x", "y", "q", "RICX", "RICY", "RIT", "TP1X",
        "TP1Y", "TP1Q", "TP2X", "TP2Y", "TP2Q"};

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

    /// \p text in the form of \p like, undefined when it has not that form.
    QJsonValue ValueLike(const QJsonValue& like, const QString& text)
    {
        if (like.isBool()) {
            if (text == QLatin1String("true"))
                return true;
            return text == QLatin1String("false") ? QJsonValue(false) : QJsonValue(QJsonValue::Undefined);
        }
        if (like.isDouble()) {
            bool ok = false;
            const double number = text.toDouble(&ok);
            return ok ? QJsonValue(number) : QJsonValue(QJsonValue::Undefined);
        }
        return text;
    }

    bool Add(QJsonObject& fields, const QJsonObject& like, const QString& key, const QString& text)
    {
        const auto found = like.find(key);
        if (found == like.end())
            return false;
        const QJsonValue value = ValueLike(*found, text);
        if (value.isUndefined())
            return false;
        fields.insert(key, value);
        return true;
    }

} // namespace

QJsonObject ZrRouteFields::Of(const ZrWpt& wpt)
{
    QJsonObject fields = Stored(wpt);
    for (auto field = fields.begin(); field != fields.end();) {
        const bool same = field.key() != QLatin1String("UUID") && field.value() == NewWaypoint().value(field.key());
        field = same ? fields.erase(field) : std::next(field);
    }
    return fields;
}

void ZrRouteFields::Apply(const QJsonObject& fields, ZrWpt& wpt)
{
    QJsonObject known;
    for (auto field = fields.begin(); field != fields.end(); ++field)
        if (NewWaypoint().contains(field.key()))
            known.insert(field.key(), field.value());
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

bool ZrRouteFields::AddText(QJsonObject& fields, const QString& key, const QString& text)
{
    return Add(fields, NewWaypoint(), key, text);
}

bool ZrRouteFields::AddRouteText(QJsonObject& fields, const QString& key, const QString& text)
{
    return Add(fields, NewRoute(), key, text);
}

QString ZrRouteFields::Text(const QJsonValue& value)
{
    if (value.isBool())
        return value.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    if (value.isDouble())
        return QString::number(value.toDouble(), 'g', QLocale::FloatingPointShortest);
    return value.isNull() ? QStringLiteral("nan") : value.toString();
}
