#include "ZrKit/geo/ZrAnglePair.h"

#include <QCoreApplication>
#include <QRegularExpression>
#include <QVector>

#include <cmath>

namespace {

// What words become, so that one character is one sign.
const QChar latWord(0x03C6);
const QChar lngWord(0x03BB);
const QChar degreeSign(0x00B0);

bool IsDigit(QChar c)
{
    return c >= QLatin1Char('0') && c <= QLatin1Char('9');
}

bool IsHemisphere(QChar c)
{
    return c == QLatin1Char('N') || c == QLatin1Char('S') || c == QLatin1Char('E') || c == QLatin1Char('W');
}

bool IsSign(QChar c)
{
    return c == QLatin1Char('+') || c == QLatin1Char('-');
}

enum class Axis
{
    Unknown,
    Lat,
    Lng
};

/// One of the two values.
struct Angle
{
    double value = 0.0;
    Axis axis = Axis::Unknown;
    int parts = 0; ///< degrees; and minutes; and seconds
    bool units = false; ///< ° ' " or a colon is there
    bool beginsMarked = false; ///< with a letter, a word or a sign
    bool endsMarked = false; ///< with a letter
    QString problem; ///< of the values, when the form is right
};

/// Walks through the text of one value.
class Reader
{
public:
    explicit Reader(const QString& text)
        : m_text(text)
    {
    }

    /// False when the text does not have the form of an angle.
    bool Read(Angle& angle)
    {
        Axis word = Axis::Unknown;
        if (Take(latWord))
            word = Axis::Lat;
        else if (Take(lngWord))
            word = Axis::Lng;
        QChar letter = TakeLetter();
        const QChar sign = IsSign(Peek()) ? m_text[m_at++] : QChar(); // directly before the number
        angle.beginsMarked = word != Axis::Unknown || !letter.isNull() || !sign.isNull();
        if (!ReadParts(angle))
            return false;
        const QChar behind = TakeLetter();
        if (m_at != m_text.size() || (!letter.isNull() && !behind.isNull()))
            return false;
        angle.endsMarked = !behind.isNull();
        if (letter.isNull())
            letter = behind;
        if (!letter.isNull() && sign == QLatin1Char('-'))
            angle.problem
                = QCoreApplication::translate("ZrAnglePair", "%1 has a minus sign and a letter").arg(Text());
        angle.axis = word;
        if (!letter.isNull()) {
            const bool isLat = letter == QLatin1Char('N') || letter == QLatin1Char('S');
            angle.axis = isLat ? Axis::Lat : Axis::Lng;
            if (word != Axis::Unknown && word != angle.axis)
                angle.problem
                    = QCoreApplication::translate("ZrAnglePair", "The letter %1 does not belong to a %2")
                          .arg(letter)
                          .arg(isLat ? QLatin1String("longitude") : QLatin1String("latitude"));
        }
        if (sign == QLatin1Char('-') || letter == QLatin1Char('S') || letter == QLatin1Char('W'))
            angle.value = -angle.value;
        return true;
    }

private:
    /// For messages.
    QString Text() const
    {
        QString text = m_text;
        return text.remove(latWord).remove(lngWord).trimmed();
    }

    QChar Peek() const { return m_at < m_text.size() ? m_text[m_at] : QChar(); }

    void SkipBlank()
    {
        if (Peek() == QLatin1Char(' '))
            ++m_at;
    }

    QChar TakeAny()
    {
        const QChar c = m_text[m_at++];
        SkipBlank();
        return c;
    }

    bool Take(QChar c)
    {
        if (Peek() != c)
            return false;
        TakeAny();
        return true;
    }

    QChar TakeLetter() { return IsHemisphere(Peek()) ? TakeAny() : QChar(); }

    /// A number without sign or exponent; false when there is none.
    bool ReadNumber(double& value, bool& whole)
    {
        const int start = m_at;
        int digits = 0;
        whole = true;
        for (; m_at < m_text.size(); ++m_at) {
            if (IsDigit(m_text[m_at]))
                ++digits;
            else if (m_text[m_at] == QLatin1Char('.') && whole)
                whole = false;
            else
                break;
        }
        if (digits == 0)
            return false;
        value = m_text.mid(start, m_at - start).toDouble();
        return true;
    }

    bool ReadParts(Angle& angle)
    {
        static const QChar marks[] = {degreeSign, QLatin1Char('\''), QLatin1Char('"')};
        static const double shares[] = {1.0, 60.0, 3600.0};
        bool whole = true;
        while (angle.parts < 3) {
            double number = 0.0;
            if (!whole)
                angle.problem
                    = QCoreApplication::translate("ZrAnglePair", "Only the last part of %1 may have decimals")
                          .arg(Text());
            if (!ReadNumber(number, whole))
                return false;
            if (angle.parts > 0 && number > 60.0)
                angle.problem
                    = QCoreApplication::translate("ZrAnglePair", "The %1 of %2 are more than 60")
                          .arg(
                              angle.parts == 1 ? QLatin1String("minutes") : QLatin1String("seconds"), Text());
            angle.value += number / shares[angle.parts];
            ++angle.parts;
            SkipBlank();
            if (Take(marks[angle.parts - 1])) {
                angle.units = true;
            } else if (Peek() == QLatin1Char(':') && angle.parts < 3) {
                angle.units = true;
                TakeAny();
                if (!IsDigit(Peek()))
                    return false;
            }
            if (!IsDigit(Peek()))
                break;
        }
        return true;
    }

    const QString m_text;
    int m_at = 0;
};

/// One way to read the text.
struct Reading
{
    double lat;
    double lng;
};

/// All readings that make sense, and the first problem among those that have the right form only.
struct Readings
{
    QVector<Reading> found;
    QString problem;

    void Add(double lat, double lng)
    {
        for (const Reading& r : found) {
            if (r.lat == lat && r.lng == lng)
                return;
        }
        found.append({lat, lng});
    }

    void Problem(const QString& text)
    {
        if (problem.isEmpty())
            problem = text;
    }
};

QString Figures(double value)
{
    return QString::number(value, 'g', 10);
}

/// Takes the two sides of a place where the text may part. \p firm: a comma, semicolon or slash stands there.
void TryParts(const QString& left, const QString& right, bool firm, Readings& readings)
{
    Angle a;
    Angle b;
    if (!Reader(left.trimmed()).Read(a) || !Reader(right.trimmed()).Read(b))
        return;
    // Blanks part the numbers of an angle as well: "51 7 1 30" falls into halves of one form.
    const bool marked = a.endsMarked || b.beginsMarked;
    if (!firm && !marked && !a.units && !b.units && a.parts != b.parts)
        return;
    if (!a.problem.isEmpty() || !b.problem.isEmpty())
        return readings.Problem(a.problem.isEmpty() ? b.problem : a.problem);
    if (a.axis != Axis::Unknown && a.axis == b.axis)
        return readings.Problem(a.axis == Axis::Lat
                ? QCoreApplication::translate("ZrAnglePair", "Both values are latitudes")
                : QCoreApplication::translate("ZrAnglePair", "Both values are longitudes"));
    const bool swapped = a.axis == Axis::Lng || b.axis == Axis::Lat;
    const double lat = swapped ? b.value : a.value;
    const double lng = swapped ? a.value : b.value;
    if (std::fabs(lat) > 90.0) {
        const bool turned = a.axis == Axis::Unknown && b.axis == Axis::Unknown && std::fabs(lng) <= 90.0
            && std::fabs(lat) <= 180.0;
        return readings.Problem(
            QCoreApplication::translate("ZrAnglePair", "The latitude %1 is beyond 90 degrees%2")
                .arg(Figures(lat),
                    turned ? QCoreApplication::translate("ZrAnglePair", "; the latitude comes first")
                           : QString()));
    }
    if (std::fabs(lng) > 180.0)
        return readings.Problem(
            QCoreApplication::translate("ZrAnglePair", "The longitude %1 is beyond 180 degrees")
                .arg(Figures(lng)));
    readings.Add(lat, lng);
}

/// Tries every place where \p text may part; all its commas part.
void TryPlaces(const QString& text, Readings& readings)
{
    for (int i = 1; i < text.size(); ++i) {
        const QChar c = text[i];
        const QChar before = text[i - 1];
        const auto parted
            = [&](int skip, bool firm) { TryParts(text.left(i), text.mid(i + skip), firm, readings); };
        if (c == QLatin1Char(';') || c == QLatin1Char(',') || c == QLatin1Char('/') || c == QLatin1Char('|'))
            parted(1, true);
        else if (c == QLatin1Char(' '))
            parted(1, false);
        else if (before != QLatin1Char(' ')
            && (IsHemisphere(c) || IsHemisphere(before) || c == latWord || c == lngWord
                || (IsSign(c) && IsSign(text[0])))) // "+51.5-001.25"; "51-30" is no pair
            parted(0, false);
    }
}

QString WithSigns(QString text)
{
    static const QVector<QPair<QRegularExpression, QString>> words = [] {
        const auto word = [](const char* names, const QString& sign) {
            return qMakePair(
                QRegularExpression(QStringLiteral("(?<![A-Z])(?:%1)(?![A-Z])\\.?").arg(QLatin1String(names))),
                sign);
        };
        const auto axis = [](const char* names, QChar sign) {
            return qMakePair(
                QRegularExpression(
                    QStringLiteral("(?<![A-Z])(?:%1)(?![A-Z])[.:= ]*").arg(QLatin1String(names))),
                QString(sign));
        };
        return QVector<QPair<QRegularExpression, QString>>{
            axis("LATITUDE|LAT", latWord),
            axis("LONGITUDE|LONG|LNG|LON", lngWord),
            word("DEGREES|DEGREE|DEGS|DEG", QString(degreeSign)),
            word("MINUTES|MINUTE|MINS|MIN", QStringLiteral("'")),
            word("SECONDS|SECOND|SECS|SEC", QStringLiteral("\"")),
            word("NORTH", QStringLiteral("N")),
            word("SOUTH", QStringLiteral("S")),
            word("EAST", QStringLiteral("E")),
            word("WEST", QStringLiteral("W")),
        };
    }();
    // Greek letters of the text itself are no words.
    text.replace(latWord, QLatin1Char('?'));
    text.replace(lngWord, QLatin1Char('?'));
    for (const auto& [pattern, sign] : words)
        text.replace(pattern, sign);
    return text.simplified();
}

/// The text with its decimal commas as points: those between two digits. Unchanged when there are none, or
/// when a point shows that commas part.
QString WithPoints(const QString& text)
{
    static const QRegularExpression comma(QStringLiteral("(?<=[0-9]),(?=[0-9])"));
    QString pointed = text;
    return text.contains(QLatin1Char('.')) ? text : pointed.replace(comma, QStringLiteral("."));
}

/// What is wrong with a text that cannot be read at all.
QString Reason(const QString& text)
{
    static const QString known
        = QStringLiteral("0123456789.,;:/|+-NSEW'\" ") + degreeSign + latWord + lngWord;
    for (const QChar c : text) {
        if (!known.contains(c))
            return QCoreApplication::translate("ZrAnglePair",
                "It is not a position in latitude and longitude, nor with zone, easting and northing");
    }
    Angle alone;
    if (Reader(text).Read(alone) || Reader(WithPoints(text)).Read(alone))
        return QCoreApplication::translate(
            "ZrAnglePair", "It is one value; a position needs a latitude and a longitude");
    return QCoreApplication::translate("ZrAnglePair",
        "Latitude and longitude cannot be told apart; write a semicolon between them, and "
        "N, S, E or W behind");
}

} // namespace

bool ZrAnglePair::Parse(const QString& text, ZrAnglePair& pair, QString& error)
{
    const QString signs = WithSigns(text);
    const QString points = WithPoints(signs);
    Readings readings;
    TryPlaces(points, readings);
    if (points != signs)
        TryPlaces(signs, readings);
    if (readings.found.isEmpty()) {
        error = readings.problem.isEmpty() ? Reason(signs) : readings.problem;
        return false;
    }
    if (readings.found.size() > 1) {
        const auto words
            = [](const Reading& r) { return QStringLiteral("%1; %2").arg(Figures(r.lat), Figures(r.lng)); };
        error = QCoreApplication::translate(
            "ZrAnglePair", "It can be read as %1 and as %2 degrees; write a semicolon between the two values")
                    .arg(words(readings.found[0]), words(readings.found[1]));
        return false;
    }
    pair.lat = readings.found[0].lat;
    pair.lng = readings.found[0].lng;
    return true;
}
