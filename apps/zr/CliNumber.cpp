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

QString cli::metres_text(double metres)
{
    return std::isfinite(metres) ? QString::number(metres, 'f', 3) + QStringLiteral(" m")
                                 : QStringLiteral("-");
}
