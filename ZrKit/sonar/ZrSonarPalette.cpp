#include "ZrKit/sonar/ZrSonarPalette.h"

#include "ZrUtil/LqColourMap.h"

namespace {

/// The ramp that needs no file.
const auto linearName = QLatin1String("linear");

} // namespace

ZrSonarPalette::ZrSonarPalette()
    : m_name(linearName)
{
    for (int i = 0; i < 256; ++i)
        m_colours[static_cast<std::size_t>(i)] = qRgb(i, i, i);
}

QStringList ZrSonarPalette::Names()
{
    return {QStringLiteral("copper"), linearName, QStringLiteral("gray"), QStringLiteral("hot"),
        QStringLiteral("thermal"), QStringLiteral("green"), QStringLiteral("ice"), QStringLiteral("deep"),
        QStringLiteral("haline"), QStringLiteral("amp"), QStringLiteral("speed"), QStringLiteral("topo"),
        QStringLiteral("cool"), QStringLiteral("jet")};
}

bool ZrSonarPalette::Load(const QString& name)
{
    if (!Names().contains(name))
        return false;
    if (name == linearName) {
        *this = ZrSonarPalette();
        return true;
    }
    LqColourMap map;
    map.ReadCMap(QStringLiteral(":/%1.cmap.json").arg(name));
    if (map.m_count != 256)
        return false;
    m_name = name;
    for (std::size_t i = 0; i < m_colours.size(); ++i)
        m_colours[i] = qRgb(map.m_rgb[3 * i], map.m_rgb[3 * i + 1], map.m_rgb[3 * i + 2]);
    return true;
}
