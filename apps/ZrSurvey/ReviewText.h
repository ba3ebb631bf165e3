#pragma once

#include <QColor>
#include <QFont>
#include <QString>

/// Values as the pages show them: in the units and the style of positions in force, a dash for what is not
/// known.
namespace review {

QString length_text(double metres, int places);
QString speed_text(double metresPerSecond);
QString angle_text(double degrees);
QString position_text(double latitude, double longitude);

/// "7.38 × 0.48 × 1.03 m", in the units in force: what is known of a target's length along the track, its
/// width and its height, all in metres, NaN where one is not known, which is a dash; without the last where
/// that is not known. Empty when nothing is.
QString size_text(double length, double width, double height);

/// Of marks over the waterfall, which at night is a dim red: as bright as the night allows, where
/// `ZrColourScheme::OverPicture` would keep them as dark as what is below.
QColor mark_ink(const QColor& colour);

QFont body_font(); ///< the theme's, never smaller than can be read at arm's length

} // namespace review
