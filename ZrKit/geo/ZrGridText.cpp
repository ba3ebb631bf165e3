#include "ZrKit/geo/ZrGridText.h"

#include "ZrUtil/ZrUnits.h"

#include <QCoreApplication>
#include <QRegularExpression>

#include <cmath>
#include <vector>

namespace {

constexpr double surveyFoot = 1200.0 / 3937.0; // metres
constexpr double smallestEast = 100000.0;
constexpr double largestEast = 900000.0;
constexpr double largestNorth = 10000000.0;

/// Degrees from the central meridian beyond which the series is off by decimetres, and no easting is meant.
constexpr double farthest = 9.0;

/// Bands of 8 degrees from 80 south on; the last one, X, has 12.
const QString bands = QStringLiteral("CDEFGHJKLMNPQRSTUVWX");

/// Degrees that a position may lie outside of its band: who wrote it looked at a map.
constexpr double bandSlack = 0.05;

struct Zone
{
    int number = 0;
    QString hemisphere; ///< a band letter, "NORTH" or "SOUTH"
    QString rest; ///< of the text
};

bool FindZone(const QString& text, Zone& zone)
{
    static const QRegularExpression front(QStringLiteral(
        "^(?:UTM[ :,]*)?(?:ZONE[ :]*)?([0-9]{1,2}) ?(NORTH|SOUTH|[A-Z])(?![A-Z])[ ,;:]*(.*)$"));
    static const QRegularExpression behind(
        QStringLiteral("^(.*?)[ ,;:(]+(?:UTM[ :,]*)?(?:ZONE[ :]*)?([0-9]{1,2}) ?(NORTH|SOUTH|[A-Z])\\)?$"));
    QRegularExpressionMatch match = front.match(text);
    if (match.hasMatch()) {
        zone = {match.captured(1).toInt(), match.captured(2), match.captured(3)};
        return true;
    }
    match = behind.match(text);
    if (!match.hasMatch())
        return false;
    zone = {match.captured(2).toInt(), match.captured(3), match.captured(1)};
    return true;
}

/// One grid value with its label.
struct Value
{
    double number = 0.0;
    QChar axis; ///< 'E', 'N' or null
    bool feet = false;
};

bool ReadValue(const QString& front, QString figures, const QString& behind, bool commasGroup, Value& value)
{
    figures.replace(QLatin1Char(','), commasGroup ? QString() : QStringLiteral("."));
    bool ok = false;
    value.number = figures.toDouble(&ok);
    value.feet = behind.startsWith(QLatin1String("FT"));
    const QChar letter = !front.isEmpty() ? front[0] : behind.isEmpty() ? QChar() : behind.back();
    if (letter == QLatin1Char('E') || letter == QLatin1Char('N'))
        value.axis = letter;
    return ok;
}

/// The two values of "444500 mE 5551200 mN" in the order of the text.
bool ReadValues(const QString& text, Value& first, Value& second)
{
    struct Form
    {
        QRegularExpression pattern;
        bool commasGroup;
    };

    static const std::vector<Form> forms = [] {
        // With points commas part; a decimal comma has more than three figures before it; groups are of
        // three.
        static const struct
        {
            const char* number;
            const char* gap;
            bool commasGroup;
        } figures[] = {
            {"[+-]?[0-9]+(?:\\.[0-9]*)?", "[ ,;/]+", false},
            {"[+-]?[0-9]{4,}(?:,[0-9]+)?", "(?: ?[;/] ?|,? )", false},
            {"[+-]?[0-9]{1,3}(?:,[0-9]{3})+(?:\\.[0-9]*)?", "(?: ?[;/] ?|,? )", true},
        };
        static const char* const labels[] = {
            "(E|N|EASTING|NORTHING)[ :=]*(%1) ?(FT|M)?",
            "()(%1) ?(ME|MN|FTE|FTN|FT|E|N|M)?",
        };
        std::vector<Form> all;
        for (const auto& f : figures) {
            for (const char* label : labels) {
                const QString value = QString::fromLatin1(label).arg(QLatin1String(f.number));
                all.push_back({QRegularExpression(QLatin1Char('^') + value + QLatin1String(f.gap) + value
                                   + QLatin1Char('$')),
                    f.commasGroup});
            }
        }
        return all;
    }();
    for (const Form& f : forms) {
        const QRegularExpressionMatch match = f.pattern.match(text);
        if (match.hasMatch()) {
            return ReadValue(match.captured(1), match.captured(2), match.captured(3), f.commasGroup, first)
                && ReadValue(match.captured(4), match.captured(5), match.captured(6), f.commasGroup, second);
        }
    }
    return false;
}

/// Easting and northing in metres; false with a sentence when the text holds no such values.
bool ReadEastNorth(const QString& text, double& east, double& north, QString& error)
{
    static const QRegularExpression square(QStringLiteral("^[A-Z]{2} ?[0-9]"));
    if (square.match(text).hasMatch()) {
        error = QCoreApplication::translate(
            "ZrGridText", "Grid squares of two letters are not read; write the whole easting and northing");
        return false;
    }
    Value first;
    Value second;
    if (!ReadValues(text, first, second)) {
        error = QCoreApplication::translate("ZrGridText",
            "Beside the zone there must be an easting and a northing, as in 30U 444500 5551200");
        return false;
    }
    if (!first.axis.isNull() && first.axis == second.axis) {
        error = first.axis == QLatin1Char('E')
            ? QCoreApplication::translate("ZrGridText", "Both values are eastings")
            : QCoreApplication::translate("ZrGridText", "Both values are northings");
        return false;
    }
    if (first.feet != second.feet) {
        error = QCoreApplication::translate("ZrGridText", "One value is in feet, the other is not");
        return false;
    }
    const bool turned = first.axis == QLatin1Char('N') || second.axis == QLatin1Char('E');
    const double scale = first.feet ? surveyFoot : 1.0;
    east = (turned ? second : first).number * scale;
    north = (turned ? first : second).number * scale;
    return true;
}

QString Metres(double value)
{
    return QString::number(value, 'f', 0);
}

/// The hemisphere that the letter or word behind the zone names; false with a sentence when that is not
/// clear.
bool ReadHemisphere(const Zone& zone, double north, bool& south, QString& error)
{
    if (zone.hemisphere == QLatin1String("NORTH") || zone.hemisphere == QLatin1String("SOUTH")) {
        south = zone.hemisphere == QLatin1String("SOUTH");
        return true;
    }
    const int band = bands.indexOf(zone.hemisphere);
    if (band < 0) {
        error = QCoreApplication::translate(
            "ZrGridText", "%1 is no band of a zone; they go from C to X without I and O")
                    .arg(zone.hemisphere);
        return false;
    }
    south = band < bands.indexOf(QLatin1Char('N'));
    if (zone.hemisphere == QLatin1String("S")) {
        // Northings of 32 to 40 degrees north, with some slack.
        const bool maybeBand = north > 3500000.0 && north < 4500000.0;
        if (maybeBand) {
            error = QCoreApplication::translate("ZrGridText",
                "%1S may be the band S, 32 to 40 degrees north, or the southern "
                "hemisphere; write %1 north or %1 south")
                        .arg(zone.number);
            return false;
        }
        south = true;
    }
    return true;
}

/// Whether \p lat lies in the band that the text names, if it does.
bool CheckBand(const Zone& zone, double lat, QString& error)
{
    const int band = zone.hemisphere.size() == 1 ? bands.indexOf(zone.hemisphere) : -1;
    if (band < 0 || zone.hemisphere == QLatin1String("N") || zone.hemisphere == QLatin1String("S"))
        return true;
    const double from = 8.0 * band - 80.0;
    const double to = zone.hemisphere == QLatin1String("X") ? 84.0 : from + 8.0;
    if (lat >= from - bandSlack && lat <= to + bandSlack)
        return true;
    error = QCoreApplication::translate(
        "ZrGridText", "The band %1 goes from latitude %2 to %3, the position is at %4")
                .arg(zone.hemisphere)
                .arg(from)
                .arg(to)
                .arg(lat, 0, 'f', 4);
    return false;
}

} // namespace

bool ZrGridText::IsGrid(const QString& text)
{
    static const QRegularExpression sign(
        QStringLiteral("(?<![0-9.,])[0-9]{5,}|(?<![0-9.,])[0-9]{1,3},[0-9]{3},[0-9]{3}(?![0-9])"
                       "|[0-9] ?(?:M|FT)[EN](?![A-Z])|\\b(?:UTM|ZONE|EASTING|NORTHING)\\b"));
    return sign.match(text).hasMatch();
}

bool ZrGridText::Parse(const QString& text, ZrGridText& grid, QString& error)
{
    Zone zone;
    if (!FindZone(text, zone)) {
        error = QCoreApplication::translate(
            "ZrGridText", "The zone with its letter is missing; write for instance 30U or 30 north in front");
        return false;
    }
    if (zone.number < 1 || zone.number > 60) {
        error = QCoreApplication::translate("ZrGridText", "There is no zone %1; they go from 1 to 60")
                    .arg(zone.number);
        return false;
    }
    ZrGridText read;
    read.zone = zone.number;
    if (!ReadEastNorth(zone.rest, read.east, read.north, error)
        || !ReadHemisphere(zone, read.north, read.south, error))
        return false;
    if (!(read.east >= smallestEast && read.east <= largestEast)) {
        error = QCoreApplication::translate("ZrGridText", "The easting %1 m is not between %2 and %3 m")
                    .arg(Metres(read.east), Metres(smallestEast), Metres(largestEast));
        return false;
    }
    if (!(read.north >= 0.0 && read.north <= largestNorth)) {
        error = QCoreApplication::translate("ZrGridText", "The northing %1 m is not between 0 and %2 m")
                    .arg(Metres(read.north), Metres(largestNorth));
        return false;
    }
    ZrProj proj;
    proj.SetupUTM(read.south ? -1.0 : 1.0, 6.0 * zone.number - 183.0);
    ZrUnits::EN2LL(ZrSphd(), proj, read.east, read.north, read.lat, read.lng);
    if (!(read.lat >= -80.5 && read.lat <= 84.5)) {
        error = QCoreApplication::translate("ZrGridText",
            "The northing %1 m is beyond the grid, which goes from 80 degrees south to 84 north")
                    .arg(Metres(read.north));
        return false;
    }
    if (!CheckBand(zone, read.lat, error))
        return false;
    if (std::fabs(read.lng - (6.0 * zone.number - 183.0)) > farthest) {
        error = QCoreApplication::translate(
            "ZrGridText", "The easting %1 m is too far from the middle of the zone at this latitude")
                    .arg(Metres(read.east));
        return false;
    }
    read.lng = std::remainder(read.lng, 360.0);
    grid = read;
    return true;
}
