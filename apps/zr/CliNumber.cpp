#include "CliNumber.h"

#include <cmath>
#include <optional>

namespace {

std::optional<double> Parse(const std::string& text)
{
    // The conversion alone would pass blanks around the number, "nan" and "inf".
    if (text.find_first_not_of("0123456789+-.eE") != std::string::npos)
        return {};
    bool ok = false;
    const double value = QString::fromStdString(text).toDouble(&ok);
    if (!ok || !std::isfinite(value))
        return {};
    return value;
}

/// In megabytes unless a unit follows.
std::optional<double> ParseBytes(const std::string& text)
{
    struct Unit
    {
        const char* name;
        double bytes;
    };

    static constexpr Unit units[] = {{"KiB", 0x1p10}, {"MiB", 0x1p20}, {"GiB", 0x1p30}, {"TiB", 0x1p40},
        {"kB", 1e3}, {"MB", 1e6}, {"GB", 1e9}, {"TB", 1e12}, {"B", 1.0}};
    QString number = QString::fromStdString(text);
    double factor = 1e6;
    for (const Unit& unit : units) {
        const QLatin1String name(unit.name);
        if (!number.endsWith(name, Qt::CaseInsensitive))
            continue;
        number.chop(name.size());
        if (number.endsWith(QLatin1Char(' ')))
            number.chop(1);
        factor = unit.bytes;
        break;
    }
    const std::optional<double> value = Parse(number.toStdString());
    if (!value || !(*value >= 0.0) || *value * factor > cli::MostBytes)
        return {};
    return *value * factor;
}

} // namespace

double cli::number(const std::string& text, double otherwise)
{
    return text.empty() ? otherwise : Parse(text).value_or(otherwise);
}

std::string cli::check_number(const std::string& text, double least, double most, const char* unit)
{
    const std::optional<double> value = Parse(text);
    if (value && *value >= least && *value <= most)
        return {};
    return QStringLiteral("\"%1\" is no number of %2 from %3 to %4")
        .arg(QString::fromStdString(text), QLatin1String(unit), QString::number(least, 'g', 9),
            QString::number(most, 'g', 9))
        .toStdString();
}

std::string cli::check_length(const std::string& text)
{
    return check_number(text, 0.0, 10000.0, "metres");
}

std::string cli::check_spacing(const std::string& text)
{
    return check_number(text, 0.01, 1e6, "metres");
}

std::string cli::check_heading(const std::string& text)
{
    return check_number(text, -360.0, 360.0, "degrees");
}

double cli::bytes(const std::string& text)
{
    return ParseBytes(text).value_or(0.0);
}

std::string cli::check_bytes(const std::string& text)
{
    if (ParseBytes(text))
        return {};
    return QStringLiteral(
        "\"%1\" is no number of megabytes, nor one with a unit such as GB or MiB, from 0 to 1000 TB")
        .arg(QString::fromStdString(text))
        .toStdString();
}

QString cli::metres_text(double metres)
{
    return std::isfinite(metres) ? QString::number(metres, 'f', 3) + QStringLiteral(" m")
                                 : QStringLiteral("-");
}
