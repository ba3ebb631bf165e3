#include "ZrUtil/ZrFromJson.h"

#include "ZrUtil/ZrTypes.h"

#include <QColor>

#include <cmath>
#include <cstring>
#include <limits>

namespace zr {
namespace {

/// Built from its bits: `quiet_NaN()` has the other sign.
template <class Number, class Bits> Number FromBits(Bits bits)
{
    static_assert(sizeof(Number) == sizeof(Bits));
    Number number;
    std::memcpy(&number, &bits, sizeof number);
    return number;
}

/// Rounded to nearest; beyond the range of `float`, where the conversion of the language is undefined, to
/// its largest number or, from half a step above that on, an infinity.
float ToFloat(double value)
{
    using Limits = std::numeric_limits<float>;
    constexpr double halfStepAbove = 0x1.ffffffp127;
    if (!(std::fabs(value) > static_cast<double>(Limits::max())))
        return static_cast<float>(value);
    const float size = std::fabs(value) < halfStepAbove ? Limits::max() : Limits::infinity();
    return std::signbit(value) ? -size : size;
}

std::string ToLatin1(const QJsonValue& value)
{
    return value.toString().toLatin1().toStdString();
}

QJsonValue FromLatin1(const std::string& text)
{
    return QString::fromLatin1(text.data(), static_cast<int>(text.size()));
}

} // namespace

template <> bool from_json<bool>(const QJsonValue& value)
{
    return value.toBool(false);
}

template <> signed char from_json<signed char>(const QJsonValue& value)
{
    return static_cast<signed char>(value.toString().toShort(nullptr, 10));
}

template <> unsigned char from_json<unsigned char>(const QJsonValue& value)
{
    return static_cast<unsigned char>(value.toString().toUShort(nullptr, 10));
}

template <> short from_json<short>(const QJsonValue& value)
{
    return value.toString().toShort(nullptr, 10);
}

template <> unsigned short from_json<unsigned short>(const QJsonValue& value)
{
    return value.toString().toUShort(nullptr, 10);
}

template <> int from_json<int>(const QJsonValue& value)
{
    return value.toString().toInt(nullptr, 10);
}

template <> unsigned int from_json<unsigned int>(const QJsonValue& value)
{
    return value.toString().toUInt(nullptr, 10);
}

template <> long long from_json<long long>(const QJsonValue& value)
{
    return value.toString().toLongLong(nullptr, 10);
}

template <> unsigned long long from_json<unsigned long long>(const QJsonValue& value)
{
    return value.toString().toULongLong(nullptr, 10);
}

template <> float from_json<float>(const QJsonValue& value)
{
    return value.isNull() ? FromBits<float>(u32{0xFFC00000}) : ToFloat(value.toDouble(0.0));
}

template <> double from_json<double>(const QJsonValue& value)
{
    return value.isNull() ? FromBits<double>(u64{0xFFF8000000000000}) : value.toDouble(0.0);
}

template <> QString from_json<QString>(const QJsonValue& value)
{
    return value.toString();
}

template <> std::string from_json<std::string>(const QJsonValue& value)
{
    return ToLatin1(value);
}

template <> std::filesystem::path from_json<std::filesystem::path>(const QJsonValue& value)
{
    return {ToLatin1(value)};
}

template <> QColor from_json<QColor>(const QJsonValue& value)
{
    return QColor::fromRgba(value.toString().toUInt(nullptr, 16));
}

template <> QJsonArray from_json<QJsonArray>(const QJsonValue& value)
{
    return value.toArray();
}

QJsonValue to_json(bool value)
{
    return value;
}

QJsonValue to_json(signed char value)
{
    return QString::number(value, 10);
}

QJsonValue to_json(unsigned char value)
{
    return QString::number(value, 10);
}

QJsonValue to_json(short value)
{
    return QString::number(value, 10);
}

QJsonValue to_json(unsigned short value)
{
    return QString::number(value, 10);
}

QJsonValue to_json(int value)
{
    return QString::number(value, 10);
}

QJsonValue to_json(unsigned int value)
{
    return QString::number(value, 10);
}

QJsonValue to_json(long long value)
{
    return QString::number(value, 10);
}

QJsonValue to_json(unsigned long long value)
{
    return QString::number(value, 10);
}

QJsonValue to_json(float value)
{
    return static_cast<double>(value);
}

QJsonValue to_json(double value)
{
    return value;
}

QJsonValue to_json(const QString& value)
{
    return value;
}

QJsonValue to_json(const std::string& value)
{
    return FromLatin1(value);
}

QJsonValue to_json(const std::filesystem::path& value)
{
    return FromLatin1(value.string());
}

QJsonValue to_json(const QColor& value)
{
    return QString::number(value.rgba(), 16).rightJustified(8, QLatin1Char('0'));
}

QJsonValue to_json(const QJsonArray& value)
{
    return value;
}

} // namespace zr
