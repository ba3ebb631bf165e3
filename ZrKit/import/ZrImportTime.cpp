#include "ZrKit/import/ZrImportTime.h"

#include <QDate>

#include <cmath>
#include <limits>

namespace {

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

/// Walks over a text; every reader returns false, and the text is then of no use, at the first mismatch.
class Cursor
{
public:
    explicit Cursor(std::string_view text)
        : m_text(text)
    {
    }

    bool Digits(int count, int& value)
    {
        value = 0;
        for (int i = 0; i < count; ++i) {
            if (!isDigit(Peek()))
                return false;
            value = 10 * value + (m_text[m_at++] - '0');
        }
        return true;
    }

    bool Is(char c)
    {
        if (Peek() != c)
            return false;
        ++m_at;
        return true;
    }

    /// The part behind the decimal point; 0 when there is none. A comma counts only when a digit follows, for
    /// it may be a separator as well.
    double Fraction()
    {
        const char next = m_at + 1 < m_text.size() ? m_text[m_at + 1] : '\0';
        if (!(Peek() == '.' || Peek() == ',') || !isDigit(next))
            return 0.0;
        ++m_at;
        double digits = 0.0;
        double scale = 1.0;
        for (int count = 0; isDigit(Peek()); ++m_at, ++count) {
            // Fifteen digits are exact in a double, and beyond any clock.
            if (count < 15) {
                digits = 10.0 * digits + (m_text[m_at] - '0');
                scale *= 10.0;
            }
        }
        return digits / scale;
    }

    char Peek() const { return m_at < m_text.size() ? m_text[m_at] : '\0'; }

    void Back(std::size_t to) { m_at = to; }

    std::size_t Used() const { return m_at; }

private:
    std::string_view m_text;
    std::size_t m_at = 0;
};

bool readClock(Cursor& in, int& hour, int& minute, double& second)
{
    int whole = 0;
    if (!in.Digits(2, hour) || !in.Is(':') || !in.Digits(2, minute) || !in.Is(':') || !in.Digits(2, whole))
        return false;
    second = whole + in.Fraction();
    return true;
}

/// Seconds east of Greenwich written at the cursor: 0 for "Z" or nothing.
double readOffset(Cursor& in)
{
    if (in.Is('Z'))
        return 0.0;
    const std::size_t begin = in.Used();
    const double sign = in.Peek() == '-' ? -1.0 : 1.0;
    int hours = 0;
    int minutes = 0;
    if (!(in.Is('+') || in.Is('-')) || !in.Digits(2, hours)) {
        in.Back(begin);
        return 0.0;
    }
    const std::size_t behindHours = in.Used();
    in.Is(':');
    if (!in.Digits(2, minutes)) {
        minutes = 0;
        in.Back(behindHours);
    }
    return sign * (3600.0 * hours + 60.0 * minutes);
}

} // namespace

double zr::utc_seconds(int year, int month, int day, int hour, int minute, double second)
{
    constexpr qint64 EpochDay = 2440588; // Julian day of 1970-01-01
    const QDate date(year, month, day);
    const bool clock = hour >= 0 && hour < 24 && minute >= 0 && minute < 60 && second >= 0.0 && second < 60.0;
    if (!date.isValid() || year < 1970 || !clock)
        return std::numeric_limits<double>::quiet_NaN();
    const qint64 days = date.toJulianDay() - EpochDay;
    return static_cast<double>(((days * 24 + hour) * 60 + minute) * 60) + second;
}

std::size_t zr::read_iso_time(std::string_view text, double& time)
{
    Cursor in(text);
    int year = 0, month = 0, day = 0, hour = 0, minute = 0;
    double second = 0.0;
    if (!in.Digits(4, year) || !in.Is('-') || !in.Digits(2, month) || !in.Is('-') || !in.Digits(2, day))
        return 0;
    if (!(in.Is('T') || in.Is(' ')) || !readClock(in, hour, minute, second))
        return 0;
    const double seconds = utc_seconds(year, month, day, hour, minute, second) - readOffset(in);
    if (std::isnan(seconds))
        return 0;
    time = seconds;
    return in.Used();
}

std::size_t zr::read_day_first_time(std::string_view text, double& time)
{
    Cursor in(text);
    int year = 0, month = 0, day = 0, hour = 0, minute = 0;
    double second = 0.0;
    if (!in.Digits(2, day) || !in.Is('/') || !in.Digits(2, month) || !in.Is('/') || !in.Digits(4, year))
        return 0;
    if (!in.Is(' ') || !readClock(in, hour, minute, second))
        return 0;
    const double seconds = utc_seconds(year, month, day, hour, minute, second);
    if (std::isnan(seconds))
        return 0;
    time = seconds;
    return in.Used();
}

std::size_t zr::read_epoch_time(std::string_view text, double& time)
{
    std::size_t digits = 0;
    double value = 0.0;
    while (digits < text.size() && digits < 14 && isDigit(text[digits]))
        value = 10.0 * value + (text[digits++] - '0');
    if (digits != 10 && digits != 13)
        return 0;
    Cursor in(text);
    in.Back(digits);
    value += in.Fraction();
    time = digits == 10 ? value : value / 1000.0;
    return in.Used();
}
