// Texts that people type and paste as values, positions and grid values, and positions through the grid.
//
// The first byte chooses the units and the style; the rest is the text, and its first bytes are two numbers.

#include "ZrKit/geo/ZrPositionText.h"
#include "ZrUtil/ZrUnits.h"

#include <cmath>
#include <cstdlib>
#include <cstring>

namespace {

void Require(bool condition)
{
    if (!condition)
        std::abort();
}

void CheckValue(const QString& text)
{
    bool ok = false;
    const double value = ZrUnits::GetValue(text, ok);
    bool again = !ok;
    const double same = ZrUnits::GetValue(text, again);
    Require(ok == again && std::memcmp(&value, &same, sizeof value) == 0);
    if (!ok) {
        Require(value == 0.0 && !std::signbit(value));
        return;
    }
    if (text.simplified().isEmpty())
        std::abort();
    // What was read is written and read again, to the figures of the style.
    if (std::fabs(value) > 360.0 || std::isnan(value))
        return;
    static const double figures[] = {0.51e-8, 0.51e-5 / 60.0, 0.51 / 3600.0, 0.51e-3 / 3600.0};
    const QString shown = ZrUnits::GetLatString(value);
    const double back = ZrUnits::GetValue(shown, ok);
    if (!ok)
        Require(shown.contains(QLatin1String(" 60\"")) || shown.contains(QLatin1String(" 60.000\"")));
    else
        Require(std::fabs(back - value) <= figures[int(ZrUnits::GetGeoStyle()) % 4]);
}

void CheckGridValue(const QString& text)
{
    bool ok = false;
    const double value = ZrUnits::GetGridValue(text, ok);
    if (!ok) {
        Require(value == 0.0);
        return;
    }
    if (std::fabs(value) < 1e9) {
        const double back = ZrUnits::GetGridValue(ZrUnits::GetEString(value, 3, true), ok);
        Require(ok && std::fabs(back - value) < 0.00051);
    }
}

void CheckPosition(const QString& text)
{
    ZrPositionText position;
    QString error;
    if (!ZrPositionText::Parse(text, position, &error)) {
        Require(!error.isEmpty() && std::isnan(position.lat));
        return;
    }
    Require(error.isEmpty() && std::fabs(position.lat) <= 90.0 && std::fabs(position.lng) <= 180.0);
    Require(position.isGrid == (position.zone != 0));
    // The plain form is read as the same position.
    ZrPositionText plain;
    Require(ZrPositionText::Parse(
        QString::number(position.lat, 'f', 12) + QLatin1String("; ") + QString::number(position.lng, 'f', 12),
        plain));
    Require(std::fabs(plain.lat - position.lat) < 1e-11 && std::fabs(plain.lng - position.lng) < 1e-11);
}

void CheckGrid(const unsigned char* data, std::size_t size)
{
    double numbers[2] = {0.0, 0.0};
    std::memcpy(numbers, data, std::min(size, sizeof numbers));
    double a = 0.0;
    double b = 0.0;
    ZrUnits::CalcUTM(numbers[0], numbers[1]);
    ZrUnits::LLToEN(numbers[0], numbers[1], a, b);
    ZrUnits::EN2LL(numbers[0], numbers[1], a, b);
    ZrUnits::GetLngString(numbers[0]);
    QString east, north;
    ZrUnits::GetENStrings(numbers[0], numbers[1], east, north);
    Require(!east.isEmpty() && !north.isEmpty());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    if (size == 0)
        return 0;
    ZrUnits::SetGeoStyle(static_cast<eGeoStyle>(data[0] % 8));
    if ((data[0] & 0x80) != 0)
        ZrUnits::SetToImperial();
    else
        ZrUnits::SetToMetric();
    const QString text
        = QString::fromUtf8(reinterpret_cast<const char*>(data + 1), static_cast<int>(size - 1));
    CheckValue(text);
    CheckGridValue(text);
    CheckPosition(text);
    CheckGrid(data + 1, size - 1);
    bool ok = false;
    const double metres = ZrUnits::GetShortLengthValue(text, ok);
    Require(ok || metres == 0.0);
    return 0;
}
