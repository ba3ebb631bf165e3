#include "ZrKit/records/ZrNmeaFields.h"

#include <algorithm>
#include <cmath>

namespace {

bool AllDigits(const QByteArray& text)
{
    return !text.isEmpty()
        && std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

bool IsLetter(const QByteArray& field, char letter)
{
    return field.size() == 1 && field[0] == letter;
}

/// The digits before the point of a text of digits with at most one point, which is neither first nor last;
/// empty for any other text.
QByteArray WholeDigits(const QByteArray& text)
{
    const int point = text.indexOf('.');
    if (point < 0)
        return AllDigits(text) ? text : QByteArray();
    const QByteArray whole = text.left(point);
    return AllDigits(whole) && AllDigits(text.mid(point + 1)) ? whole : QByteArray();
}

} // namespace

double zr::nmea::first_known(std::initializer_list<double> values)
{
    const auto known = std::find_if(values.begin(), values.end(), [](double v) { return !std::isnan(v); });
    return known == values.end() ? notKnown : *known;
}

float zr::nmea::single(double value)
{
    return std::abs(value) <= std::numeric_limits<float>::max() ? static_cast<float>(value)
                                                                : std::numeric_limits<float>::quiet_NaN();
}

double zr::nmea::angle(double degrees)
{
    return degrees >= 0.0 && degrees <= 360.0 ? degrees : notKnown;
}

double zr::nmea::wrapped(double degrees)
{
    const double turned = std::fmod(degrees, 360.0);
    return turned < 0.0 ? turned + 360.0 : turned;
}

double zr::nmea::measured(const ZrNmeaSentence& s, int i, char letter)
{
    const QByteArray told = s.Field(i + 1);
    return told.isEmpty() || IsLetter(told, letter) ? s.Number(i) : notKnown;
}

double zr::nmea::correction(const ZrNmeaSentence& s, int i)
{
    const QByteArray side = s.Field(i + 1);
    if (side != "E" && side != "W")
        return notKnown;
    return side == "E" ? s.Number(i) : -s.Number(i);
}

double zr::nmea::coordinate(const ZrNmeaSentence& s, int i, char positive, char negative, double limit)
{
    const QByteArray text = s.Field(i);
    const QByteArray side = s.Field(i + 1);
    if (!IsLetter(side, positive) && !IsLetter(side, negative))
        return notKnown;
    // The last two digits before the point are whole minutes, the one to three before them degrees.
    const int digits = WholeDigits(text).size();
    if (digits < 3 || digits > 5)
        return notKnown;
    const double minutes = text.mid(digits - 2).toDouble();
    const double degrees = text.left(digits - 2).toInt() + minutes / 60.0;
    if (minutes >= 60.0 || degrees > limit)
        return notKnown;
    return side[0] == negative ? -degrees : degrees;
}

u8 zr::nmea::small_number(const ZrNmeaSentence& s, int i)
{
    const QByteArray text = s.Field(i);
    const int value = AllDigits(text) && text.size() <= 3 ? text.toInt() : 255;
    return static_cast<u8>(std::min(value, 255));
}

u8 zr::nmea::quality_of_mode(const QByteArray& mode)
{
    static constexpr struct
    {
        char letter;
        u8 quality;
    } table[] = {{'N', 0}, {'A', 1}, {'D', 2}, {'P', 3}, {'R', 4}, {'F', 5}, {'E', 6}, {'M', 7}, {'S', 8}};

    for (const auto& entry : table) {
        if (IsLetter(mode, entry.letter))
            return entry.quality;
    }
    return 255;
}

double zr::nmea::seconds_of_day(const QByteArray& text)
{
    if (WholeDigits(text).size() != 6)
        return notKnown;
    const int hours = text.left(2).toInt();
    const int minutes = text.mid(2, 2).toInt();
    const double seconds = text.mid(4).toDouble();
    if (hours > 23 || minutes > 59 || seconds >= 61.0)
        return notKnown;
    return hours * 3600 + minutes * 60 + seconds;
}

QDate zr::nmea::date(const QByteArray& day, const QByteArray& month, const QByteArray& year)
{
    if (!AllDigits(day) || !AllDigits(month) || !AllDigits(year) || (year.size() != 2 && year.size() != 4))
        return QDate();
    int fullYear = year.toInt();
    if (year.size() == 2)
        fullYear += fullYear >= 80 ? 1900 : 2000;
    return fullYear >= 1970 ? QDate(fullYear, month.toInt(), day.toInt()) : QDate();
}
