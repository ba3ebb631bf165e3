#pragma once

#include "ZrKit/ZrKitExport.h"

#include <QRgb>
#include <QString>
#include <QStringList>

#include <array>

/// A palette of 256 colours for sonar intensities, weakest first.
///
/// \code
/// ZrSonarPalette palette;
/// if (!palette.Load(QStringLiteral("copper")))
///     return tr("Palettes: %1").arg(ZrSonarPalette::Names().join(", "));
/// \endcode
///
/// The maps are resources of the kit, ":/copper.cmap.json" and so on, which `SonarDataPkt::BuildPalettes`
/// finds too; each is read once in the process, when it is loaded first. A plain value; `Load` in any thread.
class ZR_KIT_EXPORT ZrSonarPalette
{
public:
    ZrSonarPalette(); ///< grey, black to white

    /// The names that `Load` knows, in the order in which to offer them.
    static QStringList Names();

    /// What the palette called \p name, one of `Names`, is called on the screen, translated: "Copper".
    /// Another name stays as it is.
    static QString Title(const QString& name);

    /// Takes the palette called \p name. False, and the palette stays, when there is none.
    bool Load(const QString& name);

    const QString& Name() const { return m_name; }

    QRgb Colour(int index) const { return m_colours[static_cast<std::size_t>(index)]; } ///< 0 to 255

    const std::array<QRgb, 256>& Colours() const { return m_colours; }

private:
    QString m_name;
    std::array<QRgb, 256> m_colours;
};
