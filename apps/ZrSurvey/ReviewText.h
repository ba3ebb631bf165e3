#pragma once

#include <QFont>
#include <QString>

/// Values as the pages show them: in the units and the style of positions in force, a dash for what is not
/// known.
namespace review {

QString length_text(double metres, int places);
QString speed_text(double metresPerSecond);
QString angle_text(double degrees);
QString position_text(double latitude, double longitude);

QFont body_font(); ///< the theme's, never smaller than can be read at arm's length

} // namespace review
