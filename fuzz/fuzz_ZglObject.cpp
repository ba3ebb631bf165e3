// A mesh of any bytes: it is loaded with arrays in step or refused, and what was loaded is written and loaded
// again as the same triangles. Its figures add up.

#include "FuzzFile.h"
#include "ZrKit/mesh/ZrMeshFacts.h"
#include "ZrUtil/ZglObject.h"
#include "ZrUtil/ZrObjReader.h"

#include <cmath>
#include <cstdlib>
#include <cstring>

namespace {

void Require(bool condition)
{
    if (!condition)
        std::abort();
}

bool IsSame(float a, float b)
{
    return std::isnan(a) ? std::isnan(b) : std::memcmp(&a, &b, sizeof a) == 0;
}

QByteArray Number(float value)
{
    if (!std::isfinite(value))
        return std::isnan(value) ? " nan" : value < 0.0F ? " -inf" : " inf";
    return ' ' + QByteArray::number(static_cast<double>(value), 'g', 17);
}

/// The mesh as a file, with lists as long as the corners.
QByteArray Text(const ZglObject& mesh)
{
    QByteArray lists;
    QByteArray faces;
    for (std::size_t i = 0; i < mesh.m_vertices.size(); ++i) {
        const QVector3D& p = mesh.m_vertices[i];
        const QVector2D& t = mesh.m_texCoords[i];
        const QVector3D& n = mesh.m_normals[i];
        lists += 'v' + Number(p.x()) + Number(p.y()) + Number(p.z()) + '\n';
        lists += "vt" + Number(t.x()) + Number(t.y()) + '\n';
        lists += "vn" + Number(n.x()) + Number(n.y()) + Number(n.z()) + '\n';
        const QByteArray index = QByteArray::number(static_cast<qulonglong>(i + 1));
        faces += (i % 3 == 0 ? "\nf " : " ") + index + '/' + index + '/' + index;
    }
    return lists + faces;
}

void RequireSame(const ZglObject& a, const ZglObject& b)
{
    Require(a.m_vertices.size() == b.m_vertices.size());
    for (std::size_t i = 0; i < a.m_vertices.size(); ++i) {
        for (int axis = 0; axis < 3; ++axis) {
            Require(IsSame(a.m_vertices[i][axis], b.m_vertices[i][axis]));
            Require(IsSame(a.m_normals[i][axis], b.m_normals[i][axis]));
        }
        Require(IsSame(a.m_texCoords[i].x(), b.m_texCoords[i].x()));
        Require(IsSame(a.m_texCoords[i].y(), b.m_texCoords[i].y()));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* data, std::size_t size)
{
    SilenceDebugOutput();
    const QString path = FuzzFile(data, size);
    ZglObject mesh;
    ZrObjReader reader;
    const bool read = reader.Read(path, mesh);
    Require(read == reader.Error().isEmpty() && read == (reader.Line() == 0));
    const std::size_t corners = mesh.m_vertices.size();
    Require(corners % 3 == 0 && mesh.m_texCoords.size() == corners && mesh.m_normals.size() == corners);
    Require(read || corners == 0);
    ZglObject loaded;
    Require(ZglObject::LoadObj(path, loaded) == read && loaded.m_vertices.size() == corners);
    const ZrMeshFacts facts(mesh);
    Require(
        facts.triangles == corners / 3 && facts.positions <= corners && facts.degenerate <= facts.triangles);
    const QByteArray text = Text(mesh);
    ZglObject again;
    Require(ZglObject::LoadObj(
        FuzzFile(reinterpret_cast<const u8*>(text.constData()), static_cast<std::size_t>(text.size())),
        again));
    RequireSame(mesh, again);
    return 0;
}
