#include "ZrKit/sonar/ZrSonarPalette.h"

#include "ZrUtil/LqColourMap.h"

#include <QCoreApplication>
#include <QMap>

#include <iterator>
#include <mutex>

namespace {

/// The ramp that needs no file.
const auto linearName = QLatin1String("linear");

using MapColours = std::array<QRgb, 256>;

/// The colours of a map; false when it cannot be read.
bool ReadColours(const QString& name, MapColours& colours)
{
    LqColourMap map;
    map.ReadCMap(QStringLiteral(":/%1.cmap.json").arg(name));
    if (map.m_count != static_cast<int>(colours.size()))
        return false;
    for (std::size_t i = 0; i < colours.size(); ++i)
        colours[i] = qRgb(map.m_rgb[3 * i], map.m_rgb[3 * i + 1], map.m_rgb[3 * i + 2]);
    return true;
}

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

QString ZrSonarPalette::Title(const QString& name)
{
    // In the order of the names.
    static constexpr const char* titles[] = {
        QT_TRANSLATE_NOOP("ZrSonarPalette", "Copper"),
        QT_TRANSLATE_NOOP("ZrSonarPalette", "Linear"),
        QT_TRANSLATE_NOOP("ZrSonarPalette", "Gray"),
        QT_TRANSLATE_NOOP("ZrSonarPalette", "Hot"),
        QT_TRANSLATE_NOOP("ZrSonarPalette", "Thermal"),
        QT_TRANSLATE_NOOP("ZrSonarPalette", "Green"),
        QT_TRANSLATE_NOOP("ZrSonarPalette", "Ice"),
        QT_TRANSLATE_NOOP("ZrSonarPalette", "Deep"),
        QT_TRANSLATE_NOOP("ZrSonarPalette", "Haline"),
        QT_TRANSLATE_NOOP("ZrSonarPalette", "Amp"),
        QT_TRANSLATE_NOOP("ZrSonarPalette", "Speed"),
        QT_TRANSLATE_NOOP("ZrSonarPalette", "Topo"),
        QT_TRANSLATE_NOOP("ZrSonarPalette", "Cool"),
        QT_TRANSLATE_NOOP("ZrSonarPalette", "Jet"),
    };
    const int index = Names().indexOf(name);
    return index >= 0 && index < static_cast<int>(std::size(titles))
        ? QCoreApplication::translate("ZrSonarPalette", titles[index])
        : name;
}

bool ZrSonarPalette::Load(const QString& name)
{
    if (!Names().contains(name))
        return false;
    if (name == linearName) {
        *this = ZrSonarPalette();
        return true;
    }
    // Each map is read once: they are text.
    static std::mutex mutex;
    static QMap<QString, MapColours> read;
    const std::lock_guard lock(mutex);
    auto found = read.constFind(name);
    if (found == read.constEnd()) {
        MapColours colours;
        if (!ReadColours(name, colours))
            return false;
        found = read.insert(name, colours);
    }
    m_name = name;
    m_colours = *found;
    return true;
}
