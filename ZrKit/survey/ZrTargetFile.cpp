#include "ZrKit/survey/ZrTargetFile.h"

#include "ZrKit/export/ZrTrackText.h"
#include "ZrKit/files/ZrReplaceFile.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStringList>

#include <cmath>

namespace {

struct Measure
{
    const char* name;
    double ZrSonarTarget::*value;
};

constexpr Measure measures[] = {{"slant_range", &ZrSonarTarget::slantRange},
    {"ground_range", &ZrSonarTarget::groundRange}, {"altitude", &ZrSonarTarget::altitude},
    {"length", &ZrSonarTarget::length}, {"width", &ZrSonarTarget::width}, {"height", &ZrSonarTarget::height}};

constexpr int places = 3; ///< of metres

QString Side(const ZrSonarTarget& target)
{
    return target.spot.side == sidePort ? QStringLiteral("port") : QStringLiteral("starboard");
}

QString Time(double time)
{
    return ZrTrackText().Time(time);
}

/// As one field; in quotes when it could be taken for several.
QString Field(const QString& text)
{
    QString field = ZrTrackText::Clean(text);
    bool isPlain = true;
    for (const QChar c : field)
        isPlain = isPlain && c != QLatin1Char(',') && c != QLatin1Char('"') && c >= QLatin1Char(' ');
    if (isPlain)
        return field;
    field.replace(QLatin1Char('"'), QStringLiteral("\"\""));
    return QLatin1Char('"') + field + QLatin1Char('"');
}

QJsonValue Number(double value, int decimals)
{
    if (!std::isfinite(value))
        return QJsonValue(QJsonValue::Null);
    return QString::number(value, 'f', decimals).toDouble();
}

} // namespace

QByteArray ZrTargetFile::Csv(const std::vector<ZrSonarTarget>& targets)
{
    QStringList columns{QStringLiteral("name"), QStringLiteral("time"), QStringLiteral("latitude"),
        QStringLiteral("longitude"), QStringLiteral("side"), QStringLiteral("ping"),
        QStringLiteral("sample")};
    for (const Measure& measure : measures)
        columns << QLatin1String(measure.name);
    columns << QStringLiteral("remark");
    QString text = columns.join(QLatin1Char(',')) + QStringLiteral("\r\n");
    for (const ZrSonarTarget& target : targets) {
        QStringList fields{Field(target.name), Time(target.time)};
        const bool isPlaced = target.position.IsValid();
        fields << (isPlaced ? ZrTrackText::Latitude(target.position.lat) : QString())
               << (isPlaced ? ZrTrackText::Longitude(target.position.lng) : QString()) << Side(target)
               << QString::number(target.spot.ping) << ZrTrackText::Number(target.spot.sample, 1);
        for (const Measure& measure : measures)
            fields << ZrTrackText::Number(target.*measure.value, places);
        fields << Field(target.remark);
        text += fields.join(QLatin1Char(',')) + QStringLiteral("\r\n");
    }
    return text.toUtf8();
}

QByteArray ZrTargetFile::GeoJson(const std::vector<ZrSonarTarget>& targets)
{
    QJsonArray features;
    for (const ZrSonarTarget& target : targets) {
        QJsonObject properties;
        const QString time = Time(target.time);
        properties.insert(QStringLiteral("name"), target.name);
        properties.insert(QStringLiteral("time"), time.isEmpty() ? QJsonValue(QJsonValue::Null) : time);
        properties.insert(QStringLiteral("side"), Side(target));
        properties.insert(QStringLiteral("ping"), static_cast<double>(target.spot.ping));
        properties.insert(QStringLiteral("sample"), Number(target.spot.sample, 1));
        for (const Measure& measure : measures)
            properties.insert(QLatin1String(measure.name), Number(target.*measure.value, places));
        properties.insert(QStringLiteral("remark"), target.remark);
        QJsonObject feature;
        feature.insert(QStringLiteral("type"), QStringLiteral("Feature"));
        QJsonValue geometry(QJsonValue::Null);
        if (target.position.IsValid()) {
            QJsonObject point;
            point.insert(QStringLiteral("type"), QStringLiteral("Point"));
            point.insert(QStringLiteral("coordinates"),
                QJsonArray{Number(target.position.lng, 8), Number(target.position.lat, 8)});
            geometry = point;
        }
        feature.insert(QStringLiteral("geometry"), geometry);
        feature.insert(QStringLiteral("properties"), properties);
        features.append(feature);
    }
    QJsonObject root;
    root.insert(QStringLiteral("type"), QStringLiteral("FeatureCollection"));
    root.insert(QStringLiteral("features"), features);
    return QJsonDocument(root).toJson();
}

bool ZrTargetFile::Write(const std::vector<ZrSonarTarget>& targets, const QString& path)
{
    m_error.clear();
    const QString suffix = QFileInfo(path).suffix().toLower();
    QByteArray bytes;
    if (suffix == QLatin1String("csv")) {
        bytes = Csv(targets);
    } else if (suffix == QLatin1String("geojson") || suffix == QLatin1String("json")) {
        bytes = GeoJson(targets);
    } else {
        m_error = tr("%1: targets are written as .csv or .geojson.").arg(path);
        return false;
    }
    return zr::replace_file(path, bytes, &m_error);
}
