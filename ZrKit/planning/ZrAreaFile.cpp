#include "ZrKit/planning/ZrAreaFile.h"

#include "ZrKit/planning/ZrGeoShapes.h"

#include <QCoreApplication>
#include <QFileInfo>

namespace {

ZrArea AreaOf(const QString& name, const std::vector<ZrShapePoint>& points)
{
    ZrArea area;
    area.name = name;
    for (const ZrShapePoint& point : points)
        area.ring.push_back(point.position);
    area.ring = ZrGeoShapes::Open(area.ring);
    return area;
}

std::vector<ZrArea> AreasOf(const ZrGeoShapes& shapes)
{
    std::vector<ZrArea> areas = shapes.areas;
    if (areas.empty())
        for (const ZrShapeLine& line : shapes.lines)
            areas.push_back(AreaOf(line.name, line.points));
    if (areas.empty() && !shapes.points.empty())
        areas.push_back(AreaOf({}, shapes.points));
    return areas;
}

} // namespace

bool ZrAreaFile::Read(const QString& path, std::vector<ZrArea>& areas)
{
    return Load(path) && Finish(areas);
}

bool ZrAreaFile::Load(const QString& path)
{
    m_path = path;
    m_warnings.clear();
    const bool isLoaded = m_file.Load(path);
    m_error = m_file.Error();
    return isLoaded;
}

bool ZrAreaFile::Finish(std::vector<ZrArea>& areas)
{
    const QString path = m_path;
    ZrGeoShapes shapes;
    if (!m_file.FinishShapes(shapes)) {
        m_error = m_file.Error();
        return false;
    }
    m_error.clear();
    m_warnings = m_file.Warnings();
    std::vector<ZrArea> found = AreasOf(shapes);
    if (found.empty()) {
        m_error = path + QLatin1String(": no area and no points in it");
        return false;
    }
    const QString base = QFileInfo(path).completeBaseName();
    for (std::size_t i = 0; i < found.size(); ++i) {
        ZrArea& area = found[i];
        if (area.name.isEmpty())
            area.name = found.size() == 1 ? base : QStringLiteral("%1 %2").arg(base).arg(i + 1);
        if (area.ring.size() < 3) {
            m_error = QCoreApplication::translate(
                "ZrAreaFile", "%1: area \"%2\" has %3 corners, at least 3 are needed")
                          .arg(path, area.name)
                          .arg(area.ring.size());
            return false;
        }
    }
    areas = found;
    return true;
}
