#include "ZrKit/planning/ZrRouteTab.h"

#include "ZrKit/planning/ZrGeoShapes.h"
#include "ZrKit/planning/ZrRouteFields.h"
#include "ZrUtil/ZrUnits.h"
#include "ZrUtil/ZrWpts.h"

#include <QJsonDocument>

namespace {

    const QString& RouteComment()
    {
        static const QString begin = QStringLiteral("# route ");
        return begin;
    }

    constexpr const char* Columns[] = {"z", "r", "speedtype", "speed"}; // behind name and position

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

    class Reader
    {
    public:
        explicit Reader(ZrGeoShapes& shapes)
            : m_shapes(shapes)
        {
        }

        bool Run(const QString& text, QString& error)
        {
            const QStringList lines = text.split(QLatin1Char('\n'));
            for (int i = 0; i < lines.size() && error.isEmpty(); ++i) {
                QString line = lines[i];
                if (line.endsWith(QLatin1Char('\r')))
                    line.chop(1);
                if (line.startsWith(QLatin1Char('#')))
                    Comment(line);
                else if (!line.trimmed().isEmpty())
                    error = Line(line.split(QLatin1Char('\t')));
                if (!error.isEmpty())
                    error = QStringLiteral("line %1: %2").arg(i + 1).arg(error);
            }
            return error.isEmpty();
        }

    private:
        void Comment(const QString& line)
        {
            if (line.startsWith(RouteComment()))
                m_shapes.route = QJsonDocument::fromJson(line.mid(RouteComment().size()).toUtf8()).object();
        }

        QString Line(const QStringList& cells)
        {
            if (!m_begun && IsHeader(cells)) {
                m_begun = true;
                return {};
            }
            m_begun = true;
            QStringList keys = m_keys;
            if (keys.isEmpty())
                keys = cells.size() == 2 ? QStringList {QStringLiteral("lat"), QStringLiteral("long")}
                                         : QStringList {QStringLiteral("name"), QStringLiteral("lat"), QStringLiteral("long")};
            if (cells.size() < 2)
                return QStringLiteral("no columns; they are separated by tabs");
            ZrShapePoint point;
            for (int i = 0; i < cells.size() && i < keys.size(); ++i) {
                const QString error = Cell(keys[i], cells[i].trimmed(), point);
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
            if (key == QLatin1String("lat") || key == QLatin1String("long")) {
                bool ok = false;
                const bool isLat = key == QLatin1String("lat");
                (isLat ? point.position.lat : point.position.lng) = ZrUnits::GetValue(text, ok);
                if (!ok)
                    return QStringLiteral("\"%1\" is no %2").arg(text, isLat ? QStringLiteral("latitude") : QStringLiteral("longitude"));
            } else if (key == QLatin1String("name")) {
                point.name = text;
            } else if (!text.isEmpty()) {
                QJsonObject known;
                if (ZrRouteFields::AddText(known, key, text))
                    point.fields.insert(key, known.value(key));
                else if (ZrRouteFields::Of(ZrWpt()).contains(key) || IsColumn(key))
                    return QStringLiteral("\"%1\" is no value of \"%2\"").arg(text, key);
            }
            return {};
        }

        static bool IsColumn(const QString& key)
        {
            for (const char* column : Columns)
                if (key == QLatin1String(column))
                    return true;
            return false;
        }

        ZrGeoShapes& m_shapes;
        QStringList m_keys; ///< of the columns; empty when they are not named
        bool m_begun = false; ///< a line that is no comment has been read
    };

} // namespace

QByteArray ZrRouteTab::Write(const ZrWpts& route)
{
    const QString routeFields
        = QString::fromUtf8(QJsonDocument(ZrRouteFields::Of(route)).toJson(QJsonDocument::Compact));
    QString text = RouteComment() + routeFields + QStringLiteral("\nname\tlat\tlong");
    for (const char* column : Columns)
        text += QLatin1Char('\t') + QLatin1String(column);
    text += QLatin1Char('\n');
    for (ZrListPos* pos = route.GetHeadPos(); pos;) {
        const ZrWpt& wpt = *route.GetNext(pos);
        text += wpt.name.simplified() + QLatin1Char('\t') + QString::number(wpt.lat, 'f', 9) + QLatin1Char('\t')
            + QString::number(wpt.lng, 'f', 9);
        const QJsonObject fields = ZrRouteFields::Of(wpt);
        for (const char* column : Columns)
            text += QLatin1Char('\t') + ZrRouteFields::Text(fields.value(QLatin1String(column)));
        text += QLatin1Char('\n');
    }
    return text.toUtf8();
}

bool ZrRouteTab::Read(const QByteArray& bytes, ZrGeoShapes& shapes, QString& error)
{
    error.clear();
    return Reader(shapes).Run(QString::fromUtf8(bytes), error);
}
