#include "ZrKit/planning/ZrRouteTab.h"

#include "ZrKit/planning/ZrGeoShapes.h"
#include "ZrKit/planning/ZrRouteFields.h"
#include "ZrKit/planning/ZrTextLines.h"
#include "ZrUtil/ZrUnits.h"
#include "ZrUtil/ZrWpts.h"

#include <QCoreApplication>
#include <QJsonDocument>

namespace {

const QString& RouteComment()
{
    static const QString begin = QStringLiteral("# route ");
    return begin;
}

constexpr const char* Columns[] = {"z", "r", "speedtype", "speed"}; // behind position and name

/// The settings key of a column as people name it.
QString KeyOf(const QString& column)
{
    const QString name = column.trimmed().toLower();
    if (name == QLatin1String("latitude"))
        return QStringLiteral("lat");
    if (name == QLatin1String("lng") || name == QLatin1String("lon") || name == QLatin1String("longitude"))
        return QStringLiteral("long");
    return name == QLatin1String("lat") || name == QLatin1String("long") || name == QLatin1String("name")
        ? name
        : column.trimmed();
}

QString Decoded(const QByteArray& bytes)
{
    // With their size: without it the text would end at the first zero byte.
    return ZrTextLines::OfBadUtf8(bytes) == 0 ? QString::fromUtf8(bytes.constData(), bytes.size())
                                              : QString::fromLatin1(bytes.constData(), bytes.size());
}

/// Whether \p text has the letter of the other axis: latitude and longitude have been exchanged.
bool HasOneOf(const QString& text, const QString& letters)
{
    return !text.isEmpty() && (letters.contains(text.front()) || letters.contains(text.back()));
}

QString ReadDegrees(const QString& text, bool isLat, double& value)
{
    bool ok = false;
    value = ZrUnits::GetValue(text, ok);
    if (ok && !HasOneOf(text, isLat ? QStringLiteral("EW") : QStringLiteral("NS")))
        return {};
    return QCoreApplication::translate("ZrRouteTab", "\"%1\" is no %2")
        .arg(text, isLat ? QStringLiteral("latitude") : QStringLiteral("longitude"));
}

class Reader
{
public:
    explicit Reader(ZrGeoShapes& shapes)
        : m_shapes(shapes)
    {
    }

    bool Run(const QString& text, QString& error)
    {
        error.clear();
        int number = 1;
        for (int begin = 0; begin < text.size() && error.isEmpty(); ++number) {
            int end = text.indexOf(QLatin1Char('\n'), begin);
            if (end < 0)
                end = text.size();
            QString line = text.mid(begin, end - begin);
            if (line.endsWith(QLatin1Char('\r')))
                line.chop(1);
            if (line.startsWith(QLatin1Char('#')))
                error = Comment(line);
            else if (!line.trimmed().isEmpty())
                error = Line(line.split(QLatin1Char('\t')));
            if (!error.isEmpty())
                error = QStringLiteral("line %1: %2").arg(number).arg(error);
            begin = end + 1;
        }
        return error.isEmpty();
    }

private:
    QString Comment(const QString& line)
    {
        if (!line.startsWith(RouteComment() + QLatin1Char('{')))
            return {};
        QJsonParseError parse;
        const QJsonObject route
            = QJsonDocument::fromJson(line.mid(RouteComment().size()).toUtf8(), &parse).object();
        if (parse.error != QJsonParseError::NoError)
            return QCoreApplication::translate("ZrRouteTab", "the fields of the route are damaged: %1")
                .arg(parse.errorString());
        for (auto field = route.begin(); field != route.end(); ++field)
            if (!ZrRouteFields::AddRoute(m_shapes.route, field.key(), field.value()))
                return QCoreApplication::translate(
                    "ZrRouteTab", "\"%1\" is no field of a route, or its value is none")
                    .arg(field.key());
        return {};
    }

    QString Line(const QStringList& cells)
    {
        if (!m_begun && IsHeader(cells)) {
            m_begun = true;
            return {};
        }
        m_begun = true;
        if (cells.size() < 2)
            return QCoreApplication::translate("ZrRouteTab", "no columns; they are separated by tabs");
        static const QStringList pair{QStringLiteral("lat"), QStringLiteral("long")};
        static const QStringList named = QStringList{QStringLiteral("name")} + pair;
        const QStringList& keys = !m_keys.isEmpty() ? m_keys : cells.size() == 2 ? pair : named;
        ZrShapePoint point;
        for (int i = 0; i < keys.size(); ++i) {
            const QString error = Cell(keys[i], cells.value(i).trimmed(), point);
            if (!error.isEmpty())
                return error;
        }
        QString error;
        if (ZrGeoShapes::Check(point.position, error))
            m_shapes.points.push_back(point);
        return error;
    }

    bool IsHeader(const QStringList& cells)
    {
        QStringList keys;
        for (const QString& cell : cells)
            keys << KeyOf(cell);
        if (!keys.contains(QLatin1String("lat")) || !keys.contains(QLatin1String("long")))
            return false;
        m_keys = keys;
        return true;
    }

    QString Cell(const QString& key, const QString& text, ZrShapePoint& point)
    {
        if (key == QLatin1String("lat"))
            return ReadDegrees(text, true, point.position.lat);
        if (key == QLatin1String("long"))
            return ReadDegrees(text, false, point.position.lng);
        if (key == QLatin1String("name"))
            point.name = text;
        else if (!text.isEmpty() && ZrRouteFields::IsField(key)
            && !ZrRouteFields::Add(point.fields, key, text))
            return QCoreApplication::translate("ZrRouteTab", "\"%1\" is no value of \"%2\"").arg(text, key);
        return {};
    }

    ZrGeoShapes& m_shapes;
    QStringList m_keys; ///< of the columns; empty when they are not named
    bool m_begun = false; ///< a line that is no comment has been read
};

/// \p name in one cell.
QString CellOf(QString name)
{
    for (QChar& c : name)
        if (c == QLatin1Char('\t') || c == QLatin1Char('\n') || c == QLatin1Char('\r'))
            c = QLatin1Char(' ');
    return name;
}

} // namespace

QByteArray ZrRouteTab::Write(const ZrWpts& route)
{
    const QString routeFields
        = QString::fromUtf8(QJsonDocument(ZrRouteFields::Of(route)).toJson(QJsonDocument::Compact));
    QString text = RouteComment() + routeFields + QStringLiteral("\nlat\tlong\tname");
    for (const char* column : Columns)
        text += QLatin1Char('\t') + QLatin1String(column);
    text += QLatin1Char('\n');
    for (ZrListPos* pos = route.GetHeadPos(); pos;) {
        const ZrWpt& wpt = *route.GetNext(pos);
        text += QString::number(wpt.lat, 'f', 9) + QLatin1Char('\t') + QString::number(wpt.lng, 'f', 9)
            + QLatin1Char('\t') + CellOf(wpt.name);
        const QJsonObject fields = ZrRouteFields::Of(wpt);
        for (const char* column : Columns)
            text += QLatin1Char('\t') + ZrRouteFields::Text(fields.value(QLatin1String(column)));
        text += QLatin1Char('\n');
    }
    return text.toUtf8();
}

bool ZrRouteTab::Read(const QByteArray& bytes, ZrGeoShapes& shapes, QString& error)
{
    return Reader(shapes).Run(Decoded(bytes), error);
}
