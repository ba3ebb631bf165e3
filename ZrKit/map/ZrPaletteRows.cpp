#include "ZrKit/map/ZrPaletteRows.h"

#include <iterator>

namespace {

/// As they stand in the picture of palettes; null where no sonar palette has the colours.
constexpr const char* rows[] = {"linear", nullptr, nullptr, "copper", "hot", "jet", "cool", "green", "amp",
    "deep", "gray", "haline", "ice", "speed", "thermal", "topo"};

} // namespace

int ZrPaletteRows::Of(const QString& name)
{
    for (int row = 0; row < static_cast<int>(std::size(rows)); ++row) {
        if (rows[row] && name == QLatin1String(rows[row]))
            return row;
    }
    return -1;
}
