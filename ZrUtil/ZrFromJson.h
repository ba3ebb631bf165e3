#pragma once

#include "ZrUtil/ZrExport.h"

#include <QJsonArray>
#include <QJsonValue>
#include <QString>

#include <filesystem>
#include <string>

class QColor;

/// \file
/// The forms that the values of settings have in JSON.
///
/// | type | stored as | a value of another kind reads as |
/// |---|---|---|
/// | `bool` | boolean | false |
/// | integers | string of the decimal number | 0, JSON numbers included |
/// | `float`, `double` | number | 0.0; null as NaN |
/// | `QString`, `std::string`, path | string | empty |
/// | `QColor` | string of 8 hexadecimal digits, AARRGGBB | transparent black |
/// | `QJsonArray` | array | empty |
///
/// Integers travel as strings so that 64-bit values survive JSON's double-precision numbers; the small types
/// do as the large ones. JSON text has no NaN and no infinities: it holds null in their
/// place (Qt's binary form keeps them). `std::string` and paths are Latin-1 bytes; characters beyond it
/// become "?".
///
/// All functions may be called from any thread.

namespace zr {

/// The value of type \a T that \p value holds. Never fails: what does not convert gives the value of the
/// table.
///
/// 8-bit integers are parsed as 16-bit ones and cut to their low byte ("300" reads 44 as `unsigned char`); a
/// number outside the range of the parse and a negative one for an unsigned type read 0. A JSON null gives
/// the quiet NaN 0xFFF8000000000000 as `double` and 0xFFC00000 as `float`; numbers that round beyond the
/// range of `float` read as an infinity.
///
/// Defined for the types below; others do not compile.
template <class T> T from_json(const QJsonValue& value) = delete;

template <> ZR_UTIL_EXPORT bool from_json<bool>(const QJsonValue& value);
template <> ZR_UTIL_EXPORT signed char from_json<signed char>(const QJsonValue& value);
template <> ZR_UTIL_EXPORT unsigned char from_json<unsigned char>(const QJsonValue& value);
template <> ZR_UTIL_EXPORT short from_json<short>(const QJsonValue& value);
template <> ZR_UTIL_EXPORT unsigned short from_json<unsigned short>(const QJsonValue& value);
template <> ZR_UTIL_EXPORT int from_json<int>(const QJsonValue& value);
template <> ZR_UTIL_EXPORT unsigned int from_json<unsigned int>(const QJsonValue& value);
template <> ZR_UTIL_EXPORT long long from_json<long long>(const QJsonValue& value);
template <> ZR_UTIL_EXPORT unsigned long long from_json<unsigned long long>(const QJsonValue& value);
template <> ZR_UTIL_EXPORT float from_json<float>(const QJsonValue& value);
template <> ZR_UTIL_EXPORT double from_json<double>(const QJsonValue& value);
template <> ZR_UTIL_EXPORT QString from_json<QString>(const QJsonValue& value);
template <> ZR_UTIL_EXPORT std::string from_json<std::string>(const QJsonValue& value);
template <> ZR_UTIL_EXPORT std::filesystem::path from_json<std::filesystem::path>(const QJsonValue& value);
template <> ZR_UTIL_EXPORT QColor from_json<QColor>(const QJsonValue& value);
template <> ZR_UTIL_EXPORT QJsonArray from_json<QJsonArray>(const QJsonValue& value);

/// The form of \p value in the settings, see the table.
ZR_UTIL_EXPORT QJsonValue to_json(bool value);
ZR_UTIL_EXPORT QJsonValue to_json(signed char value);
ZR_UTIL_EXPORT QJsonValue to_json(unsigned char value);
ZR_UTIL_EXPORT QJsonValue to_json(short value);
ZR_UTIL_EXPORT QJsonValue to_json(unsigned short value);
ZR_UTIL_EXPORT QJsonValue to_json(int value);
ZR_UTIL_EXPORT QJsonValue to_json(unsigned int value);
ZR_UTIL_EXPORT QJsonValue to_json(long long value);
ZR_UTIL_EXPORT QJsonValue to_json(unsigned long long value);
ZR_UTIL_EXPORT QJsonValue to_json(float value);
ZR_UTIL_EXPORT QJsonValue to_json(double value);
ZR_UTIL_EXPORT QJsonValue to_json(const QString& value);
ZR_UTIL_EXPORT QJsonValue to_json(const std::string& value);
ZR_UTIL_EXPORT QJsonValue to_json(const std::filesystem::path& value);
ZR_UTIL_EXPORT QJsonValue to_json(const QColor& value);
ZR_UTIL_EXPORT QJsonValue to_json(const QJsonArray& value);
/// Pointers would turn into `bool`, character literals among them.
template <class T> QJsonValue to_json(const T* value) = delete;

} // namespace zr
