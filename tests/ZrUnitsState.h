#pragma once

#include "ZrUtil/ZrUnits.h"

/// Keeps the units, the spheroid and the projection of the process and puts them back: tests that set them
/// leave nothing behind for the next one.
class ZrUnitsState
{
public:
    ZrUnitsState() = default;
    ZrUnitsState(const ZrUnitsState&) = delete;
    ZrUnitsState& operator=(const ZrUnitsState&) = delete;

    ~ZrUnitsState()
    {
        ZrUnits::wgs84 = m_wgs84;
        ZrUnits::utm = m_utm;
        ZrUnits::degrees = m_degrees;
        ZrUnits::tinyLengthUnit = m_tinyUnit;
        ZrUnits::tinyLengthScale = m_tinyScale;
        ZrUnits::shortLengthUnit = m_shortUnit;
        ZrUnits::shortLengthScale = m_shortScale;
        ZrUnits::longLengthUnit = m_longUnit;
        ZrUnits::longLengthScale = m_longScale;
        ZrUnits::temperatureUnit = m_temperatureUnit;
        ZrUnits::temperatureScale = m_temperatureScale;
        ZrUnits::temperatureOffset = m_temperatureOffset;
        ZrUnits::speedUnit = m_speedUnit;
        ZrUnits::speedScale = m_speedScale;
        ZrUnits::geoStyle = m_geoStyle;
    }

private:
    ZrSphd m_wgs84 = ZrUnits::wgs84;
    ZrProj m_utm = ZrUnits::utm;
    QChar m_degrees = ZrUnits::degrees;
    QString m_tinyUnit = ZrUnits::tinyLengthUnit;
    double m_tinyScale = ZrUnits::tinyLengthScale;
    QString m_shortUnit = ZrUnits::shortLengthUnit;
    double m_shortScale = ZrUnits::shortLengthScale;
    QString m_longUnit = ZrUnits::longLengthUnit;
    double m_longScale = ZrUnits::longLengthScale;
    QString m_temperatureUnit = ZrUnits::temperatureUnit;
    double m_temperatureScale = ZrUnits::temperatureScale;
    double m_temperatureOffset = ZrUnits::temperatureOffset;
    QString m_speedUnit = ZrUnits::speedUnit;
    double m_speedScale = ZrUnits::speedScale;
    eGeoStyle m_geoStyle = ZrUnits::geoStyle;
};
