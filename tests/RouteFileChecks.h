#pragma once

#include "ProgramOutput.h"
#include "ZrKit/planning/ZrRouteFile.h"
#include "ZrUtil/ZrSetModule.h"
#include "ZrUtil/ZrWpts.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonObject>
#include <QRandomGenerator>
#include <QtTest/QtTest>

#include <cmath>
#include <limits>
#include <memory>
#include <random>

constexpr ZrRouteFile::eFormat AllFormats[] = {ZrRouteFile::Settings, ZrRouteFile::Store, ZrRouteFile::Gpx,
    ZrRouteFile::Kml, ZrRouteFile::GeoJson, ZrRouteFile::List};

inline const char* NameOf(ZrRouteFile::eFormat format)
{
    constexpr const char* names[] = {"settings", "store", "gpx", "kml", "geojson", "list"};
    return names[format];
}

/// A row of a test table for each form.
inline void EveryFormat()
{
    QTest::addColumn<int>("format");
    for (const ZrRouteFile::eFormat format : AllFormats)
        QTest::newRow(NameOf(format)) << int(format);
}

inline void Append(ZrWpts& route, const ZrWpt& wpt)
{
    route.AddTail(new ZrWpt(wpt));
}

inline ZrWpt At(double lat, double lng, const QString& name = QString())
{
    ZrWpt wpt;
    wpt.lat = lat;
    wpt.lng = lng;
    wpt.name = name;
    return wpt;
}

inline ZrWpt NthOf(const ZrWpts& route, int index)
{
    ZrListPos* pos = route.GetHeadPos();
    for (; index > 0 && pos; --index)
        route.GetNext(pos);
    return pos ? *route.GetAt(pos) : ZrWpt();
}

inline double Between(std::mt19937& random, double low, double high)
{
    return std::uniform_real_distribution<double>(low, high)(random);
}

/// A waypoint in whose every field stands something.
inline ZrWpt RandomWpt(std::mt19937& random)
{
    const auto number = [&] { return Between(random, -1e6, 1e6); };
    const auto single = [&] { return static_cast<float>(Between(random, 0.0, 100.0)); };
    const auto byte = [&] { return static_cast<u8>(random() & 0xFF); };
    const auto integer = [&] { return static_cast<int>(random()); };
    ZrWpt wpt = At(Between(random, -80.0, 84.0), Between(random, -180.0, 180.0));
    wpt.name = QStringLiteral("Wreck %1").arg(random() % 1000);
    wpt.filename = QStringLiteral("line %1.log").arg(random() % 1000);
    wpt.fileType = byte();
    wpt.gridId = QUuid::createUuid();
    wpt.colour = QColor::fromRgba(static_cast<QRgb>(random()));
    for (double* field :
        {&wpt.z, &wpt.alt, &wpt.r, &wpt.p, &wpt.rx, &wpt.rz, &wpt.speed, &wpt.time, &wpt.head})
        *field = number();
    for (int* field : {&wpt.headType, &wpt.zType, &wpt.bottomN})
        *field = integer();
    wpt.spdType = 4 + (integer() & 0xFF); // a speed of its own
    wpt.flags = static_cast<unsigned int>(random());
    wpt.atWpt = wpt.veg = true;
    wpt.lookAt = QUuid::createUuid();
    for (u8* field :
        {&wpt.type, &wpt.src, &wpt.shape, &wpt.bottom, &wpt.classA, &wpt.classB, &wpt.classC, &wpt.classD})
        *field = byte();
    for (float* field :
        {&wpt.burial, &wpt.length, &wpt.height, &wpt.width, &wpt.viz, &wpt.ripples, &wpt.current})
        *field = single();
    wpt.bottomA = QLatin1Char(static_cast<char>('B' + random() % 20));
    return wpt;
}

inline ZrWpts RandomRoute(int count, unsigned int seed, bool linked, bool closed)
{
    std::mt19937 random(seed);
    ZrWpts route;
    route.prefix = QStringLiteral("Harbour %1").arg(seed);
    route.linked = linked;
    route.closed = closed;
    route.speed = Between(random, 0.1, 5.0);
    for (int i = 0; i < count; ++i)
        Append(route, RandomWpt(random));
    route.UpdatePseudo();
    route.Recalc(true);
    return route;
}

/// Every field of \p wpt by its settings key.
inline QJsonObject FieldsOf(const ZrWpt& wpt)
{
    QJsonObject object;
    zr::ZrSetModule module(zr::ePersistStoring, object);
    ZrWpt copy = wpt;
    ZrWpt::serialise(copy, module);
    return object;
}

/// What the route computes from the positions, which the form may have rounded.
inline bool IsComputed(const QString& key)
{
    static const QStringList keys{QStringLiteral("x"), QStringLiteral("y"), QStringLiteral("q"),
        QStringLiteral("RICX"), QStringLiteral("RICY"), QStringLiteral("RIT"), QStringLiteral("TP1X"),
        QStringLiteral("TP1Y"), QStringLiteral("TP1Q"), QStringLiteral("TP2X"), QStringLiteral("TP2Y"),
        QStringLiteral("TP2Q")};
    return keys.contains(key);
}

/// The fields in which two routes differ, one a line; positions count as equal within 1e-7 degrees, computed
/// fields not at all, and the others where \p same says so.
inline QStringList Differences(
    const ZrWpts& a, const ZrWpts& b,
    const std::function<bool(const QString& key, const QJsonValue& a, const QJsonValue& b)>& same
    = [](const QString&, const QJsonValue& left, const QJsonValue& right) { return left == right; })
{
    QStringList all;
    if (a.prefix != b.prefix || a.linked != b.linked || a.closed != b.closed
        || !same(QStringLiteral("route speed"), a.speed, b.speed))
        all << QStringLiteral("route: %1/%2/%3/%4 and %5/%6/%7/%8")
                   .arg(a.prefix)
                   .arg(a.linked)
                   .arg(a.closed)
                   .arg(a.speed, 0, 'g', 17)
                   .arg(b.prefix)
                   .arg(b.linked)
                   .arg(b.closed)
                   .arg(b.speed, 0, 'g', 17);
    if (a.GetCount() != b.GetCount())
        return all << QStringLiteral("%1 and %2 waypoints").arg(a.GetCount()).arg(b.GetCount());
    ZrListPos* other = b.GetHeadPos();
    int index = 0;
    for (ZrListPos* pos = a.GetHeadPos(); pos; ++index) {
        const QJsonObject left = FieldsOf(*a.GetNext(pos));
        const QJsonObject right = FieldsOf(*b.GetNext(other));
        for (const QString& key : left.keys()) {
            if (IsComputed(key))
                continue;
            const bool isPosition = key == QLatin1String("lat") || key == QLatin1String("long");
            const bool equal = isPosition
                ? std::fabs(left.value(key).toDouble() - right.value(key).toDouble()) <= 1e-7
                : same(key, left.value(key), right.value(key));
            if (!equal)
                all << QStringLiteral("%1: %2: %3 and %4")
                           .arg(index)
                           .arg(key)
                           .arg(left.value(key).toVariant().toString(),
                               right.value(key).toVariant().toString());
        }
    }
    return all;
}

/// Reads \p bytes into \p route; what failed, or an empty text.
inline QString FromBytes(const QByteArray& bytes, ZrWpts& route, QStringList* warnings = nullptr)
{
    ZrRouteFile file;
    const bool read = file.FromBytes(bytes, route);
    if (warnings)
        *warnings = file.Warnings();
    if (read != file.Error().isEmpty())
        return QStringLiteral("result and error do not agree: ") + file.Error();
    return file.Error();
}

inline QByteArray ToBytes(int format, const ZrWpts& route)
{
    QByteArray bytes;
    ZrRouteFile file;
    return file.ToBytes(ZrRouteFile::eFormat(format), route, bytes) ? bytes : QByteArray();
}

inline QByteArray ReadWhole(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
}

inline bool WriteWhole(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

/// The positions of \p route, "lat long name" each.
inline QStringList Summary(const ZrWpts& route)
{
    QStringList all;
    for (ZrListPos* pos = route.GetHeadPos(); pos;) {
        const ZrWpt& wpt = *route.GetNext(pos);
        all << QStringLiteral("%1 %2 %3")
                   .arg(wpt.lat, 0, 'g', 12)
                   .arg(wpt.lng, 0, 'g', 12)
                   .arg(wpt.name)
                   .trimmed();
    }
    return all;
}
