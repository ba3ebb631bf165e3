#include "ZrKit/sonar/ZrMosaicFrame.h"

#include <cmath>

ZrGeoPoint ZrMosaicFrame::Position(double column, double row) const
{
    const double east[] = {East(column)};
    const double northing[] = {North(row)};
    double lat[1];
    double lng[1];
    Grid().ToLatLng(east, northing, lat, lng);
    return {lat[0], std::remainder(lng[0], 360.0)};
}

bool ZrMosaicFrame::Find(ZrGeoPoint at, double& column, double& row) const
{
    if (!at.IsValid())
        return false;
    // Longitudes run on across the antimeridian, as seen from the zone.
    const double lat[] = {at.lat};
    const double lng[] = {CentralMeridian() + std::remainder(at.lng - CentralMeridian(), 360.0)};
    double east[1];
    double northing[1];
    Grid().ToGrid(lat, lng, east, northing);
    column = (east[0] - west) / resolution;
    row = (north - northing[0]) / resolution;
    return true;
}

ZrMosaicFrame ZrMosaicFrame::ZoneAt(ZrGeoPoint at)
{
    ZrProj proj;
    proj.SetupUTM(at.lat, at.lng);
    constexpr double degPerRad = 57.295779513082320877;
    ZrMosaicFrame frame;
    frame.zone = static_cast<int>(std::lround((proj.lngOrigin * degPerRad + 183.0) / 6.0));
    frame.south = at.lat < 0.0;
    return frame;
}
