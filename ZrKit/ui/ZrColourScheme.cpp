#include "ZrKit/ui/ZrColourScheme.h"

#include "ZrUtil/ZrTheme.h"

#include <QCoreApplication>

int ZrColourScheme::s_current = ZrColourScheme::dusk;

namespace {

struct Colour
{
    QColor* colour;
    QRgb values[ZrColourScheme::Count]; ///< day, dusk, night
};

// Alpha, red, green, blue. Nights have neither green nor blue lights: the eye adapts to the dark by what it
// does not see of red.
const Colour colours[] = {
    {&ZrTheme::ctrlOutlineCol, {0xff5a6b78, 0xff6f8799, 0xff7c3a30}},
    {&ZrTheme::ctrlActiveCol, {0xffa9d6ee, 0xff0b4a73, 0xff3a0e0b}},
    {&ZrTheme::ctrlHighlightCol, {0xff00658a, 0xff2fa6c4, 0xffc05a44}},
    {&ZrTheme::ctrlCheckCol, {0xff0079a8, 0xff46b4d4, 0xffb8543f}},
    {&ZrTheme::ctrlHintCol, {0x2000803c, 0x2046d48c, 0x20c8503c}},
    {&ZrTheme::ctrlCol, {0xff0b1720, 0xfff2f6f9, 0xffd8664e}},
    {&ZrTheme::titleCol, {0xff000a12, 0xffffffff, 0xffe0705a}},
    {&ZrTheme::bodyCol, {0xff26363f, 0xffc5d1da, 0xffc05a46}},
    {&ZrTheme::formBdr, {0xff5a6b78, 0xff3c5264, 0xff5a2820}},
    {&ZrTheme::formMgr, {0xf0dfe7ec, 0xf0182836, 0xf0140605}},
    {&ZrTheme::formBack, {0xfff6f9fb, 0xff0e1822, 0xff080202}},
    {&ZrTheme::goodCol, {0xff006b2f, 0xff4cd07d, 0xffa05040}},
    {&ZrTheme::warnCol, {0xff7a4a00, 0xffffc24b, 0xffd87850}},
    {&ZrTheme::errorCol, {0xffa8101a, 0xffff7a6e, 0xffff8064}},
    {&ZrTheme::gridCol, {0x5052707f, 0x688fa6b5, 0x787c3a30}},
    {&ZrTheme::toolBack, {0xf4e8eef2, 0xec14222f, 0xec0e0403}},
    {&ZrTheme::darken, {0x24000000, 0x50000000, 0x60000000}},
    {&ZrTheme::lighten, {0x60ffffff, 0x20ffffff, 0x18ff6040}},
    {&ZrTheme::sea, {0xffd3e5ef, 0xff15283a, 0xff0a0303}},
    {&ZrTheme::seabed, {0xff8aa3ad, 0xff5f8ea0, 0xff4a1f18}},
    {&ZrTheme::track, {0xffb03600, 0xffff9f43, 0xffd8704a}},
    {&ZrTheme::vehicle, {0xff7a3fb0, 0xffffd23f, 0xffff8a60}},
    {&ZrTheme::posA, {0xffa8101a, 0xffff7a6e, 0xffd86a50}},
    {&ZrTheme::posB, {0xff006b2f, 0xff4cd07d, 0xffa85a44}},
    {&ZrTheme::posC, {0xff1648a8, 0xff7db4ff, 0xff8c4434}},
    {&ZrTheme::marker, {0xff33424c, 0xffd7dee3, 0xffc05a46}},
    {&ZrTheme::waypoint, {0xff0b3c5c, 0xffe6eef3, 0xffd8664e}},
    {&ZrTheme::route, {0xff006b8f, 0xff5ee0d0, 0xffb8543f}},
};

constexpr QRgb trackAhead[ZrColourScheme::Count] = {0xff26363f, 0xff7d95a7, 0xff98493a};

} // namespace

void ZrColourScheme::Apply(int scheme)
{
    s_current = scheme >= 0 && scheme < Count ? scheme : static_cast<int>(dusk);
    for (const Colour& entry : colours)
        *entry.colour = QColor::fromRgba(entry.values[s_current]);
    ZrTheme::bodyText.setColor(ZrTheme::bodyCol);
    ZrTheme::titleText.setColor(ZrTheme::titleCol);
    ZrTheme::ctrlText.setColor(ZrTheme::ctrlCol);
    ZrTheme::ctrlOutline.setColor(ZrTheme::ctrlOutlineCol);
    ZrTheme::ctrlHighlight.setColor(ZrTheme::ctrlHighlightCol);
    ZrTheme::ctrlActive.setColor(ZrTheme::ctrlActiveCol);
    ZrTheme::ctrlCheck.setColor(ZrTheme::ctrlCheckCol);
    ZrTheme::ctrlHint.setColor(ZrTheme::ctrlHintCol);
}

QColor ZrColourScheme::TrackAhead()
{
    return QColor::fromRgba(trackAhead[s_current]);
}

QColor ZrColourScheme::OverPicture(const QColor& colour)
{
    if (s_current != night)
        return colour;
    // White becomes the light red of the night's text.
    const int light = qGray(colour.rgb());
    return {light * 216 / 255, light * 102 / 255, light * 78 / 255, colour.alpha()};
}

QString ZrColourScheme::Name(int scheme)
{
    switch (scheme) {
    case day:
        return QCoreApplication::translate("ZrColourScheme", "Day");
    case dusk:
        return QCoreApplication::translate("ZrColourScheme", "Dusk");
    case night:
        return QCoreApplication::translate("ZrColourScheme", "Night");
    default:
        return {};
    }
}
