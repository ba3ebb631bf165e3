// `ZglObject::LoadObj` against tinyobjloader on the same files: the largest mesh of the test data, and one of
// 500,000 triangles made here.
//
// tinyobjloader keeps indices, `LoadObj` lays the corners out one by one, which is part of its time.

#include "ZrUtil/ZglObject.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdlib>

#ifdef ZR_HAS_TINYOBJLOADER
#include <tiny_obj_loader.h>
#endif

namespace {

/// A rolling surface of 2 × 500 × 500 triangles with six decimals, as programs write them.
QByteArray Surface()
{
    constexpr int side = 500;
    QByteArray text = "o surface\n";
    const auto number = [](double value) { return ' ' + QByteArray::number(value, 'f', 6); };
    for (int y = 0; y <= side; ++y) {
        for (int x = 0; x <= side; ++x) {
            const double height = 3.0 * std::sin(0.031 * x) * std::cos(0.047 * y);
            const double slopeX = 0.093 * std::cos(0.031 * x) * std::cos(0.047 * y);
            const double slopeY = -0.141 * std::sin(0.031 * x) * std::sin(0.047 * y);
            const double length = std::sqrt(slopeX * slopeX + slopeY * slopeY + 1.0);
            text += 'v' + number(0.1 * x) + number(0.1 * y) + number(height) + '\n';
            text += "vt" + number(static_cast<double>(x) / side) + number(static_cast<double>(y) / side)
                + '\n';
            text += "vn" + number(-slopeX / length) + number(-slopeY / length) + number(1.0 / length) + '\n';
        }
    }
    const auto corner = [](int x, int y) {
        const QByteArray index = QByteArray::number(y * (side + 1) + x + 1);
        return ' ' + index + '/' + index + '/' + index;
    };
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            text += 'f' + corner(x, y) + corner(x + 1, y) + corner(x, y + 1) + '\n';
            text += 'f' + corner(x + 1, y) + corner(x + 1, y + 1) + corner(x, y + 1) + '\n';
        }
    }
    return text;
}

/// The mesh that \p which names: 0 of the test data, 1 made here.
QString Path(std::int64_t which)
{
    static const QTemporaryDir folder;
    static const QString made = [] {
        const QString path = folder.filePath(QStringLiteral("surface.obj"));
        QFile file(path);
        const QByteArray text = Surface();
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
            std::abort();
        return path;
    }();
    return which == 0 ? QStringLiteral(ZR_SOURCE_DIR "/tests/data/obj-vessel/capsule.obj") : made;
}

void PerByte(benchmark::State& state, const QString& path)
{
    state.SetBytesProcessed(state.iterations() * QFileInfo(path).size());
}

void LoadObj(benchmark::State& state)
{
    const QString path = Path(state.range(0));
    for (auto _ : state) {
        ZglObject object;
        if (!ZglObject::LoadObj(path, object))
            state.SkipWithError("the mesh cannot be loaded");
        benchmark::DoNotOptimize(object.m_vertices.data());
    }
    PerByte(state, path);
}

#ifdef ZR_HAS_TINYOBJLOADER
void TinyObjLoader(benchmark::State& state)
{
    const QString path = Path(state.range(0));
    const std::string name = path.toStdString();
    for (auto _ : state) {
        tinyobj::attrib_t attributes;
        std::vector<tinyobj::shape_t> shapes;
        std::vector<tinyobj::material_t> materials;
        std::string warning;
        std::string error;
        if (!tinyobj::LoadObj(&attributes, &shapes, &materials, &warning, &error, name.c_str()))
            state.SkipWithError("the mesh cannot be loaded");
        benchmark::DoNotOptimize(attributes.vertices.data());
    }
    PerByte(state, path);
}
#endif

} // namespace

BENCHMARK(LoadObj)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);
#ifdef ZR_HAS_TINYOBJLOADER
BENCHMARK(TinyObjLoader)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);
#endif
